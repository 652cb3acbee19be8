// Without a display: key codes, what is down and what it typed, the order of video modes, and every call
// without a window.
#include "glfw2.h"
#include "glfw2_input.h"
#include "glfw2_keys.h"
#include "glfw2_window.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

using namespace zentrak::glfw2;

namespace {

// Events as text: "key 65 1, char 97 1".
std::string text(const InputEvents& events) {
    std::string all;
    for (const InputEvent& event : events) {
        const char* const kind = event.kind == InputEvent::Key    ? "key "
                                 : event.kind == InputEvent::Char ? "char "
                                                                  : "button ";
        all += (all.empty() ? "" : ", ") + std::string(kind) + std::to_string(event.code) + " " +
               std::to_string(event.action);
    }
    return all;
}

} // namespace

// Keys, by GLFW 3's names for their positions.

TEST(KeyCode, LettersAreTheUpperCaseOfWhatTheLayoutGives) {
    EXPECT_EQ(keyCode('Q', "q"), 'Q');
    EXPECT_EQ(keyCode('Q', "a"), 'A'); // French
    EXPECT_EQ(keyCode('Y', "z"), 'Z'); // German
    EXPECT_EQ(keyCode('[', "\xC3\xBC"), 0xDC);
    EXPECT_EQ(keyCode('2', "\xC3\xA9"), 0xC9);
    EXPECT_EQ(keyCode(';', "\xC3\xB0"), 0xD0);
}

TEST(KeyCode, CharactersWithoutAnUpperCaseInLatin1Stay) {
    EXPECT_EQ(keyCode('-', "\xC3\x9F"), 0xDF); // sharp s
    EXPECT_EQ(keyCode('-', "\xC3\xBF"), 0xFF); // y with two dots, whose upper case is elsewhere
    EXPECT_EQ(keyCode('-', "\xC3\xB7"), 0xF7); // division sign
    EXPECT_EQ(keyCode('-', "\xC2\xA7"), 0xA7); // section sign
}

TEST(KeyCode, DigitsAndPunctuationAreWhatTheLayoutGives) {
    EXPECT_EQ(keyCode('1', "1"), '1');
    EXPECT_EQ(keyCode('1', "&"), '&');
    EXPECT_EQ(keyCode('/', "-"), '-');
    EXPECT_EQ(keyCode(161, "<"), '<'); // the key that US keyboards lack
}

TEST(KeyCode, AKeyOutsideLatin1HasTheCodeOfItsPositionOnAUsKeyboard) {
    EXPECT_EQ(keyCode('Q', "\xD0\xB9"), 'Q');     // Cyrillic
    EXPECT_EQ(keyCode('E', "\xE2\x82\xAC"), 'E'); // euro sign
    EXPECT_EQ(keyCode('`', nullptr), '`');        // dead key
    EXPECT_EQ(keyCode('P', ""), 'P');
    EXPECT_EQ(keyCode(161, nullptr), GLFW_KEY_UNKNOWN);
}

TEST(KeyCode, BrokenNamesAreNoNames) {
    EXPECT_EQ(keyCode('A', "\xC3"), 'A');
    EXPECT_EQ(keyCode('A', "\xC3z"), 'A');
    EXPECT_EQ(keyCode('A', "\x80"), 'A');
    EXPECT_EQ(keyCode('A', "\xC2\x80"), 'A');
    EXPECT_EQ(keyCode('A', "\x1B"), 'A');
}

TEST(KeyCode, SpaceIs32) {
    EXPECT_EQ(keyCode(32, nullptr), 32);
}

TEST(KeyCode, SpecialKeysRunFrom257To318) {
    EXPECT_EQ(keyCode(256, nullptr), 257); // Esc
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(keyCode(290 + i, nullptr), 258 + i); // F1 to F25
    EXPECT_EQ(keyCode(265, nullptr), 283);             // up, down, left, right
    EXPECT_EQ(keyCode(264, nullptr), 284);
    EXPECT_EQ(keyCode(263, nullptr), 285);
    EXPECT_EQ(keyCode(262, nullptr), 286);
    EXPECT_EQ(keyCode(340, nullptr), 287); // shift, control, alt, left before right
    EXPECT_EQ(keyCode(344, nullptr), 288);
    EXPECT_EQ(keyCode(341, nullptr), 289);
    EXPECT_EQ(keyCode(345, nullptr), 290);
    EXPECT_EQ(keyCode(342, nullptr), 291);
    EXPECT_EQ(keyCode(346, nullptr), 292);
    EXPECT_EQ(keyCode(258, nullptr), 293); // tab, enter, backspace
    EXPECT_EQ(keyCode(257, nullptr), 294);
    EXPECT_EQ(keyCode(259, nullptr), 295);
    EXPECT_EQ(keyCode(260, nullptr), 296); // insert, delete, page up and down, home, end
    EXPECT_EQ(keyCode(261, nullptr), 297);
    EXPECT_EQ(keyCode(266, nullptr), 298);
    EXPECT_EQ(keyCode(267, nullptr), 299);
    EXPECT_EQ(keyCode(268, nullptr), 300);
    EXPECT_EQ(keyCode(269, nullptr), 301);
}

TEST(KeyCode, TheKeypadIsItselfWhateverItTypes) {
    for (int i = 0; i < 10; ++i) {
        const char digit[] = {char('0' + i), 0};
        EXPECT_EQ(keyCode(320 + i, digit), 302 + i);
        EXPECT_EQ(keyCode(320 + i, nullptr), 302 + i);
    }
    EXPECT_EQ(keyCode(331, "/"), 312);
    EXPECT_EQ(keyCode(332, "*"), 313);
    EXPECT_EQ(keyCode(333, "-"), 314);
    EXPECT_EQ(keyCode(334, "+"), 315);
    EXPECT_EQ(keyCode(330, ","), 316);
    EXPECT_EQ(keyCode(336, "="), 317);
    EXPECT_EQ(keyCode(335, nullptr), 318);
}

TEST(KeyCode, KeysWithoutACodeAreUnknown) {
    for (int position : {280, 281, 282, 283, 284, 343, 347, 348}) // locks, print, pause, super, menu
        EXPECT_EQ(keyCode(position, nullptr), GLFW_KEY_UNKNOWN) << position;
    EXPECT_EQ(keyCode(-1, "x"), GLFW_KEY_UNKNOWN);
    EXPECT_EQ(keyCode(100000, nullptr), GLFW_KEY_UNKNOWN);
    EXPECT_EQ(keyCode(std::numeric_limits<int>::min(), nullptr), GLFW_KEY_UNKNOWN);
}

TEST(KeyCode, EveryCodeIsAtMostTheLast) {
    for (int position = -10; position < 1000; ++position)
        EXPECT_LE(keyCode(position, nullptr), GLFW_KEY_LAST);
}

// Keys and buttons that are down, by arbitrary numbers.

TEST(Input, AKeyAndWhatItTypedAreReleasedTogether) {
    Input input;
    EXPECT_EQ(text(input.press(7, 'A')), "key 65 1");
    EXPECT_EQ(text(input.character('a')), "char 97 1");
    EXPECT_EQ(text(input.release(7)), "key 65 0, char 97 0");
    EXPECT_EQ(text(input.release(7)), "");
}

TEST(Input, SeveralKeysReleaseWhatEachTyped) {
    Input input;
    input.press(1, 'A');
    input.character('a');
    input.press(2, 'B');
    input.character('b');
    EXPECT_EQ(text(input.release(1)), "key 65 0, char 97 0");
    EXPECT_EQ(text(input.release(2)), "key 66 0, char 98 0");
}

TEST(Input, ACharacterIsReleasedAsItWasTyped) {
    Input input;
    input.press(1, GLFW_KEY_LSHIFT);
    input.press(2, 'A');
    input.character('A');
    EXPECT_EQ(text(input.release(1)), "key 287 0");
    EXPECT_EQ(text(input.release(2)), "key 65 0, char 65 0");
}

TEST(Input, AKeyIsReleasedByTheCodeThatItHadWhenItWentDown) {
    Input input;
    input.press(1, 'Q');
    input.mKeyRepeat = true;
    EXPECT_EQ(text(input.press(1, 'A')), "key 81 1"); // after a change of layout
    EXPECT_EQ(text(input.release(1)), "key 81 0");
}

TEST(Input, RepeatsAreReportedOnlyWhenEnabled) {
    Input input;
    input.press(1, 'A');
    input.character('a');
    EXPECT_EQ(text(input.press(1, 'A')), "");
    EXPECT_EQ(text(input.character('a')), "");
    input.mKeyRepeat = true;
    EXPECT_EQ(text(input.press(1, 'A')), "key 65 1");
    EXPECT_EQ(text(input.character('a')), "char 97 1");
    EXPECT_EQ(text(input.release(1)), "key 65 0, char 97 0"); // each character once
}

TEST(Input, AKeyThatRepeatsWithOtherModifiersReleasesAllThatItTyped) {
    Input input;
    input.mKeyRepeat = true;
    input.press(1, 'A');
    input.character('a');
    input.press(2, GLFW_KEY_LSHIFT);
    input.press(1, 'A');
    EXPECT_EQ(text(input.character('A')), "char 65 1");
    EXPECT_EQ(text(input.release(1)), "key 65 0, char 97 0, char 65 0");
}

TEST(Input, ACharacterWithoutItsKeyIsReleasedAtOnce) {
    Input input;
    EXPECT_EQ(text(input.character(0x3B1)), "char 945 1, char 945 0"); // from an input method
    input.press(1, 'A');
    input.release(1);
    EXPECT_EQ(text(input.character('a')), "char 97 1, char 97 0");
}

TEST(Input, ControlCharactersAreNoText) {
    Input input;
    input.press(1, GLFW_KEY_ENTER);
    for (unsigned character : {0u, 8u, 13u, 31u, 127u, 159u, 0x110000u, 0xFFFFFFFFu})
        EXPECT_EQ(text(input.character(character)), "") << character;
    EXPECT_EQ(text(input.release(1)), "key 294 0");
}

TEST(Input, MoreCharactersThanAKeyRemembersAreReleasedAtOnce) {
    Input input;
    input.press(1, 'A');
    for (unsigned i = 0; i < 8; ++i)
        EXPECT_EQ(text(input.character('a' + i)), "char " + std::to_string('a' + i) + " 1");
    EXPECT_EQ(text(input.character('i')), "char 105 1, char 105 0");
    EXPECT_EQ(text(input.release(1)), "key 65 0, char 97 0, char 98 0, char 99 0, char 100 0, char 101 0, "
                                      "char 102 0, char 103 0, char 104 0");
}

TEST(Input, AKeyWithoutACodeHasThatOfWhatItTypes) {
    Input input;
    EXPECT_EQ(text(input.press(600, GLFW_KEY_UNKNOWN)), "");
    EXPECT_EQ(text(input.character('/')), "key 47 1, char 47 1");
    EXPECT_EQ(text(input.release(600)), "key 47 0, char 47 0");
    EXPECT_EQ(text(input.press(600, GLFW_KEY_UNKNOWN)), "");
    EXPECT_EQ(text(input.release(600)), "");
}

TEST(Input, TwoKeysWithOneCodeAreOneKeyThatRepeats) {
    Input input;
    EXPECT_EQ(text(input.press(1, 'A')), "key 65 1");
    EXPECT_EQ(text(input.press(2, 'A')), "");
    EXPECT_EQ(text(input.release(1)), "key 65 0");
    EXPECT_EQ(text(input.release(2)), "");
}

TEST(Input, EverythingThatIsDownCanBeReleased) {
    Input input;
    input.press(3, 'A');
    input.character('a');
    input.press(9, GLFW_KEY_UNKNOWN); // nothing to report
    input.press(500, GLFW_KEY_LCTRL);
    input.button(2, true);
    EXPECT_EQ(text(input.releaseAny()), "key 65 0, char 97 0");
    EXPECT_EQ(text(input.releaseAny()), "key 289 0");
    EXPECT_EQ(text(input.releaseAny()), "button 2 0");
    EXPECT_EQ(text(input.releaseAny()), "");
    EXPECT_EQ(text(input.release(3)), "");
    EXPECT_EQ(text(input.button(2, false)), "");
}

TEST(Input, ButtonsArePressedAndReleasedOnce) {
    Input input;
    EXPECT_EQ(text(input.button(1, false)), "");
    EXPECT_EQ(text(input.button(1, true)), "button 1 1");
    EXPECT_EQ(text(input.button(1, true)), "");
    EXPECT_EQ(text(input.button(1, false)), "button 1 0");
    EXPECT_EQ(text(input.button(7, true)), "button 7 1");
}

TEST(Input, NumbersOutOfRangeAreIgnored) {
    Input input;
    for (int number : {-1, 100000, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(text(input.press(number, 'A')), "");
        EXPECT_EQ(text(input.release(number)), "");
        EXPECT_EQ(text(input.button(number, true)), "");
        EXPECT_EQ(text(input.press(5, number)), "");
        EXPECT_EQ(text(input.release(5)), "");
    }
    EXPECT_EQ(text(input.button(8, true)), "");
}

// Video modes.

TEST(VideoModes, AscendByBitsThenByAreaEachOnce) {
    const VideoMode small{640, 480, 8, 8, 8}, wide{1280, 300, 8, 8, 8}, big{1024, 768, 8, 8, 8},
        coarse{1920, 1080, 5, 6, 5};
    const std::vector<VideoMode> expected{coarse, small, wide, big};
    EXPECT_EQ(inOrder({big, small, coarse, wide, small, big, coarse}), expected);
    EXPECT_TRUE(inOrder({}).empty());
}

// Every call without library or window. DISPLAY is unset, so that there can be none.
class WithoutDisplay : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("DISPLAY");
        unsetenv("WAYLAND_DISPLAY");
    }
};

TEST_F(WithoutDisplay, TheLibraryDoesNotStart) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(glfwInit(), 0);
    EXPECT_EQ(glfwInit(), 0);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("glfw2: no display: "), std::string::npos);
    EXPECT_EQ(glfwOpenWindow(640, 480, 0, 0, 0, 0, 16, 0, GLFW_WINDOW), 0);
    EXPECT_EQ(glfwOpenWindow(640, 480, 0, 0, 0, 0, 16, 0, GLFW_FULLSCREEN), 0);
    EXPECT_EQ(glfwGetWindowParam(GLFW_OPENED), 0);
}

TEST_F(WithoutDisplay, EveryCallDoesNothing) {
    glfwTerminate();
    glfwCloseWindow();
    glfwOpenWindowHint(GLFW_WINDOW_NO_RESIZE, 1);
    glfwOpenWindowHint(-1, 1);
    glfwSetWindowTitle("Title");
    glfwSetWindowTitle(nullptr);
    glfwSetWindowSize(100, 100);
    glfwSwapBuffers();
    glfwSwapInterval(1);
    glfwPollEvents();
    glfwWaitEvents();
    for (int token : {GLFW_STICKY_KEYS, GLFW_KEY_REPEAT, GLFW_AUTO_POLL_EVENTS, -1}) {
        glfwEnable(token);
        glfwDisable(token);
    }
    for (int param : {GLFW_OPENED, GLFW_ACTIVE, GLFW_ICONIFIED, GLFW_WINDOW_NO_RESIZE, -1})
        EXPECT_EQ(glfwGetWindowParam(param), 0);

    int width = -5, height = -5;
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(height, 0);
    glfwGetWindowSize(nullptr, nullptr);

    GLFWvidmode mode;
    EXPECT_EQ(glfwGetVideoModes(&mode, 1), 0);
    EXPECT_EQ(glfwGetVideoModes(nullptr, 1), 0);
}

TEST_F(WithoutDisplay, CallbacksAreNotCalled) {
    static int calls;
    calls = 0;
    glfwSetWindowSizeCallback([](int, int) { ++calls; });
    glfwSetMousePosCallback([](int, int) { ++calls; });
    glfwSetMouseWheelCallback([](int) { ++calls; });
    glfwSetWindowCloseCallback([] { return ++calls; });
    glfwSetWindowRefreshCallback([] { ++calls; });
    glfwSetKeyCallback([](int, int) { ++calls; });
    glfwSetCharCallback([](int, int) { ++calls; });
    glfwSetMouseButtonCallback([](int, int) { ++calls; });
    glfwPollEvents();
    EXPECT_EQ(calls, 0);
}

TEST_F(WithoutDisplay, TimeIsZeroAndCannotBeSet) {
    EXPECT_EQ(glfwGetTime(), 0.0);
    glfwSetTime(5.0);
    EXPECT_EQ(glfwGetTime(), 0.0);
}

TEST_F(WithoutDisplay, TheVersionIsThatOfTheLibrary) {
    int major = 0, minor = -1, rev = -1;
    glfwGetVersion(&major, &minor, &rev);
    EXPECT_EQ(major, 3);
    EXPECT_GE(minor, 3);
    EXPECT_GE(rev, 0);
    glfwGetVersion(nullptr, nullptr, nullptr);
}

TEST_F(WithoutDisplay, SleepReturnsAtOnceForInvalidTimes) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (double time : {0.0, -1.0, -infinity, infinity, std::nan("")})
        glfwSleep(time);
}
