// A real window with a real keyboard, mouse and window manager.
#include "glfw2.h"
#include "input.h"
#include "support.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace zentrak::glfw2;
using zentrak::test::OtherWindow;
using zentrak::test::runCommand;
using zentrak::test::Viewer;

namespace {

using Log = std::vector<std::string>;

Log events;          // the calls of the callbacks, as text: "key 65 1"
int closeAnswer;     // what the close callback returns
void (*onKeyDown)(); // called at each press, if set
void (*onKeyUp)();   // ... at each release

void note(const std::string& kind, int a, int b) {
    events.push_back(kind + " " + std::to_string(a) + " " + std::to_string(b));
}

void sizeFun(int width, int height) {
    note("size", width, height);
}
void refreshFun() {
    events.push_back("refresh");
}
void charFun(int character, int action) {
    note("char", character, action);
}
void buttonFun(int button, int action) {
    note("button", button, action);
}
void mouseFun(int x, int y) {
    note("mouse", x, y);
}
void wheelFun(int position) {
    events.push_back("wheel " + std::to_string(position));
}
int closeFun() {
    events.push_back("close");
    return closeAnswer;
}
void keyFun(int key, int action) {
    note("key", key, action);
    if (action == GLFW_PRESS && onKeyDown)
        onKeyDown();
    if (action == GLFW_RELEASE && onKeyUp)
        onKeyUp();
}

bool holds(const std::string& event) {
    return std::find(events.begin(), events.end(), event) != events.end();
}
bool isOpen() {
    return glfwGetWindowParam(GLFW_OPENED) == 1;
}

int count(const std::string& event) {
    return int(std::count(events.begin(), events.end(), event));
}

// The events of one press and release of a key that types nothing.
Log pressOf(int key) {
    return {"key " + std::to_string(key) + " 1", "key " + std::to_string(key) + " 0"};
}

// The events of one key that types a character.
Log typed(int key, int character) {
    const std::string k = "key " + std::to_string(key), c = "char " + std::to_string(character);
    return {k + " 1", c + " 1", k + " 0", c + " 0"};
}

int openWindow(int mode = GLFW_WINDOW, int width = 400, int height = 300) {
    return glfwOpenWindow(width, height, 0, 0, 0, 0, 16, 0, mode);
}

class Glfw2 : public testing::Test {
protected:
    static constexpr const char* Title = "Window under test";

    void SetUp() override {
        events.clear();
        closeAnswer = 0;
        onKeyDown = nullptr;
        onKeyUp = nullptr;
        ASSERT_EQ(glfwInit(), 1);
    }

    void TearDown() override {
        mViewer.reset();
        glfwTerminate();
    }

    // Opens the window in front, gives it the focus, and logs keys and characters.
    void open(bool resizable = true) {
        glfwOpenWindowHint(GLFW_WINDOW_NO_RESIZE, resizable ? 0 : 1);
        ASSERT_EQ(openWindow(), 1);
        look();
    }

    void look() {
        glfwSetWindowTitle(Title);
        mViewer = std::make_unique<Viewer>(Title, [] { glfwPollEvents(); });
        viewer().focus();
        viewer().until("the focus", [] { return glfwGetWindowParam(GLFW_ACTIVE) == 1; });
        glfwSetKeyCallback(keyFun);
        glfwSetCharCallback(charFun);
        events.clear();
    }

    Viewer& viewer() { return *mViewer; }

    // Performs an action and returns its events: all those before the events of the F12 key, which is pressed
    // last.
    template <typename Action>
    Log after(Action action) {
        events.clear();
        action();
        viewer().key("F12");
        viewer().until("F12", [] { return holds("key 269 0"); });
        Log seen = events;
        seen.erase(std::find(seen.begin(), seen.end(), "key 269 1"), seen.end());
        events.clear();
        return seen;
    }

    Log afterKey(const std::string& name) {
        return after([&] { viewer().key(name); });
    }

private:
    std::unique_ptr<Viewer> mViewer;
};

} // namespace

// Opening and closing.

TEST_F(Glfw2, AWindowOpensWithACompatibilityContext) {
    EXPECT_EQ(glfwGetWindowParam(GLFW_OPENED), 0);
    ASSERT_EQ(openWindow(), 1);
    EXPECT_EQ(glfwGetWindowParam(GLFW_OPENED), 1);
    const auto* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    ASSERT_NE(version, nullptr);
    EXPECT_GE(std::atof(version), 2.1);
    GLint depth = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depth);
    EXPECT_GE(depth, 16);
    // Calls that a core profile rejects.
    glBegin(GL_TRIANGLES);
    glEnd();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPopAttrib();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Glfw2, ASecondWindowIsRefused) {
    ASSERT_EQ(openWindow(), 1);
    EXPECT_EQ(openWindow(GLFW_WINDOW, 200, 200), 0);
    EXPECT_TRUE(isOpen());
    int width = 0, height = 0;
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
}

TEST_F(Glfw2, ClosingAndOpeningMakesANewContext) {
    ASSERT_EQ(openWindow(), 1);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    EXPECT_TRUE(glIsTexture(texture));
    glfwCloseWindow();
    EXPECT_FALSE(isOpen());
    glfwCloseWindow();
    ASSERT_EQ(openWindow(), 1);
    EXPECT_FALSE(glIsTexture(texture));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Glfw2, ArgumentsOutOfRangeOpenNothing) {
    const int most = std::numeric_limits<int>::max();
    EXPECT_EQ(openWindow(GLFW_WINDOW, 40000, 300), 0);
    EXPECT_EQ(openWindow(GLFW_WINDOW, 300, most), 0);
    EXPECT_EQ(openWindow(0), 0);
    EXPECT_EQ(openWindow(most), 0);
    EXPECT_EQ(glfwOpenWindow(400, 300, 0, 0, 0, 0, -16, 0, GLFW_WINDOW), 0);
    EXPECT_EQ(glfwOpenWindow(400, 300, std::numeric_limits<int>::min(), 0, 0, 0, 16, 0, GLFW_WINDOW), 0);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(openWindow(), 1);
}

TEST_F(Glfw2, ASizeOfZeroFollowsFromTheOther) {
    const auto sizeOf = [](int width, int height) {
        EXPECT_EQ(openWindow(GLFW_WINDOW, width, height), 1);
        int w = 0, h = 0;
        glfwGetWindowSize(&w, &h);
        glfwCloseWindow();
        return std::pair(w, h);
    };
    EXPECT_EQ(sizeOf(0, 0), std::pair(640, 480));
    EXPECT_EQ(sizeOf(-1, -1), std::pair(640, 480));
    EXPECT_EQ(sizeOf(0, 300), std::pair(400, 300));
    EXPECT_EQ(sizeOf(400, 0), std::pair(400, 300));
}

TEST_F(Glfw2, TheTitleIsThatOfTheWindow) {
    open();
    glfwSetWindowTitle("D\xC3\xA9monstration");
    glfwSetWindowTitle(nullptr);
    viewer().until("the title", [this] {
        return runCommand("xdotool getwindowname " + viewer().window()).second == "D\xC3\xA9monstration\n";
    });
}

TEST_F(Glfw2, TheSizeCallbackIsCalledWhenItIsSet) {
    ASSERT_EQ(openWindow(), 1);
    glfwSetWindowSizeCallback(sizeFun);
    EXPECT_EQ(events, Log{"size 400 300"});
}

TEST_F(Glfw2, ThePositionAndWheelCallbacksAreCalledWhenTheyAreSet) {
    open();
    glfwSetMousePosCallback(mouseFun);
    glfwSetMouseWheelCallback(wheelFun);
    viewer().moveTo(33, 44);
    viewer().until("the mouse", [] { return holds("mouse 33 44"); });
    viewer().wheel(2);
    viewer().until("the wheel", [] { return holds("wheel 2"); });
    events.clear();
    glfwSetMousePosCallback(mouseFun);
    glfwSetMouseWheelCallback(wheelFun);
    EXPECT_EQ(events, (Log{"mouse 33 44", "wheel 2"}));
}

TEST_F(Glfw2, EverythingStartsAfreshWithTheNextWindow) {
    open();
    glfwSetMouseWheelCallback(wheelFun);
    glfwSetMouseButtonCallback(buttonFun);
    glfwSetKeyCallback(keyFun);
    viewer().moveTo(200, 150);
    viewer().wheel(3);
    viewer().until("the wheel", [] { return holds("wheel 3"); });
    glfwEnable(GLFW_KEY_REPEAT);
    glfwDisable(GLFW_AUTO_POLL_EVENTS);
    viewer().keyDown("q");
    viewer().until("the key", [] { return holds("key 81 1"); });
    glfwCloseWindow();
    viewer().keyUp("q");

    open();
    events.clear();
    glfwSetMouseWheelCallback(wheelFun);
    EXPECT_EQ(events, Log{"wheel 0"});
    glfwSetMouseWheelCallback(nullptr);
    const Log seen = after([this] {
        viewer().moveTo(100, 100);
        viewer().click(1);
        viewer().wheel(1);
    });
    EXPECT_EQ(seen, Log{}); // no callback for any of these
}

// Keys.

TEST_F(Glfw2, LettersAreUpperCaseAndCharactersAsTyped) {
    open();
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
    EXPECT_EQ(afterKey("1"), typed('1', '1'));
    EXPECT_EQ(afterKey("minus"), typed('-', '-'));
    EXPECT_EQ(afterKey("space"), typed(32, ' '));
}

TEST_F(Glfw2, AShiftedLetterHasTheSameCodeAndAnotherCharacter) {
    open();
    const Log seen = after([this] {
        viewer().keyDown("Shift_L");
        viewer().key("24");
        viewer().keyUp("Shift_L");
    });
    EXPECT_EQ(seen, (Log{"key 287 1", "key 81 1", "char 81 1", "key 81 0", "char 81 0", "key 287 0"}));
}

TEST_F(Glfw2, KeysFollowTheFrenchLayout) {
    Viewer("", [] {}).layout("fr");
    open();
    viewer().layout("fr");
    EXPECT_EQ(afterKey("24"), typed('A', 'a'));
    EXPECT_EQ(afterKey("25"), typed('Z', 'z'));
    EXPECT_EQ(afterKey("47"), typed('M', 'm'));
    EXPECT_EQ(afterKey("10"), typed('&', '&'));
    EXPECT_EQ(afterKey("11"), typed(0xC9, 0xE9)); // e with an acute accent
    EXPECT_EQ(afterKey("94"), typed('<', '<'));   // the key that US keyboards lack
    EXPECT_EQ(afterKey("34"), pressOf('^'));      // dead circumflex: types nothing yet
}

TEST_F(Glfw2, KeysFollowTheGermanLayout) {
    Viewer("", [] {}).layout("de");
    open();
    viewer().layout("de");
    EXPECT_EQ(afterKey("29"), typed('Z', 'z'));
    EXPECT_EQ(afterKey("52"), typed('Y', 'y'));
    EXPECT_EQ(afterKey("34"), typed(0xDC, 0xFC)); // u with two dots
    EXPECT_EQ(afterKey("20"), typed(0xDF, 0xDF)); // sharp s
    EXPECT_EQ(afterKey("35"), typed('+', '+'));
}

TEST_F(Glfw2, KeysFollowALayoutThatChangesUnderWay) {
    open();
    EXPECT_EQ(afterKey("29"), typed('Y', 'y'));
    viewer().layout("de");
    EXPECT_EQ(afterKey("29"), typed('Z', 'z'));
    viewer().layout("us");
    EXPECT_EQ(afterKey("29"), typed('Y', 'y'));
}

TEST_F(Glfw2, LettersOfAnotherAlphabetHaveTheCodeOfTheirKey) {
    Viewer("", [] {}).layout("ru");
    open();
    viewer().layout("ru");
    EXPECT_EQ(afterKey("24"), typed('Q', 0x439));
}

TEST_F(Glfw2, SpecialKeysTypeNothing) {
    open();
    EXPECT_EQ(afterKey("Escape"), pressOf(GLFW_KEY_ESC));
    EXPECT_EQ(afterKey("Up"), pressOf(GLFW_KEY_UP));
    EXPECT_EQ(afterKey("Down"), pressOf(GLFW_KEY_DOWN));
    EXPECT_EQ(afterKey("Left"), pressOf(GLFW_KEY_LEFT));
    EXPECT_EQ(afterKey("Right"), pressOf(GLFW_KEY_RIGHT));
    EXPECT_EQ(afterKey("Tab"), pressOf(GLFW_KEY_TAB));
    EXPECT_EQ(afterKey("Return"), pressOf(GLFW_KEY_ENTER));
    EXPECT_EQ(afterKey("BackSpace"), pressOf(GLFW_KEY_BACKSPACE));
    EXPECT_EQ(afterKey("Insert"), pressOf(GLFW_KEY_INSERT));
    EXPECT_EQ(afterKey("Delete"), pressOf(GLFW_KEY_DEL));
    EXPECT_EQ(afterKey("Prior"), pressOf(GLFW_KEY_PAGEUP));
    EXPECT_EQ(afterKey("Next"), pressOf(GLFW_KEY_PAGEDOWN));
    EXPECT_EQ(afterKey("Home"), pressOf(GLFW_KEY_HOME));
    EXPECT_EQ(afterKey("End"), pressOf(GLFW_KEY_END));
    for (int i = 1; i <= 11; ++i)
        EXPECT_EQ(afterKey("F" + std::to_string(i)), pressOf(GLFW_KEY_F1 + i - 1));
}

// By key code: for some key names the tool adds modifiers of its own.
TEST_F(Glfw2, ModifiersAreLeftAndRight) {
    open();
    EXPECT_EQ(afterKey("50"), pressOf(GLFW_KEY_LSHIFT));
    EXPECT_EQ(afterKey("62"), pressOf(GLFW_KEY_RSHIFT));
    EXPECT_EQ(afterKey("37"), pressOf(GLFW_KEY_LCTRL));
    EXPECT_EQ(afterKey("105"), pressOf(GLFW_KEY_RCTRL));
    EXPECT_EQ(afterKey("64"), pressOf(GLFW_KEY_LALT));
    EXPECT_EQ(afterKey("108"), pressOf(GLFW_KEY_RALT));
}

TEST_F(Glfw2, KeysWithoutACodeAreNotReported) {
    open();
    for (const char* name : {"Caps_Lock", "Caps_Lock", "Num_Lock", "Num_Lock", "Super_L", "Menu", "Pause"})
        EXPECT_EQ(afterKey(name), Log{}) << name;
}

TEST_F(Glfw2, TheKeypadIsTheSameWithAndWithoutNumLock) {
    open();
    const int codes[] = {90, 87, 88, 89, 83, 84, 85, 79, 80, 81}; // the key codes of 0 to 9
    for (int digit = 0; digit < 10; ++digit)
        EXPECT_EQ(afterKey(std::to_string(codes[digit])), pressOf(GLFW_KEY_KP_0 + digit));
    EXPECT_EQ(afterKey("91"), pressOf(GLFW_KEY_KP_DECIMAL));
    EXPECT_EQ(afterKey("104"), pressOf(GLFW_KEY_KP_ENTER));
    EXPECT_EQ(afterKey("106"), typed(GLFW_KEY_KP_DIVIDE, '/'));
    EXPECT_EQ(afterKey("63"), typed(GLFW_KEY_KP_MULTIPLY, '*'));
    EXPECT_EQ(afterKey("82"), typed(GLFW_KEY_KP_SUBTRACT, '-'));
    EXPECT_EQ(afterKey("86"), typed(GLFW_KEY_KP_ADD, '+'));
    EXPECT_EQ(afterKey("125"), typed(GLFW_KEY_KP_EQUAL, '='));

    viewer().key("Num_Lock");
    for (int digit = 0; digit < 10; ++digit)
        EXPECT_EQ(afterKey(std::to_string(codes[digit])), typed(GLFW_KEY_KP_0 + digit, '0' + digit));
    EXPECT_EQ(afterKey("91"), typed(GLFW_KEY_KP_DECIMAL, '.'));
    viewer().key("Num_Lock");
}

TEST_F(Glfw2, ACharacterIsReleasedWithItsKeyWhateverTheModifiers) {
    open();
    const Log seen = after([this] {
        viewer().keyDown("Shift_L");
        viewer().keyDown("24");
        viewer().keyUp("Shift_L");
        viewer().keyUp("24");
    });
    EXPECT_EQ(seen, (Log{"key 287 1", "key 81 1", "char 81 1", "key 287 0", "key 81 0", "char 81 0"}));
}

TEST_F(Glfw2, SeveralKeysDownReleaseTheirOwnCharacters) {
    open();
    const Log seen = after([this] {
        viewer().keyDown("a");
        viewer().keyDown("b");
        viewer().keyUp("a");
        viewer().keyUp("b");
    });
    EXPECT_EQ(seen, (Log{"key 65 1", "char 97 1", "key 66 1", "char 98 1", "key 65 0", "char 97 0",
                         "key 66 0", "char 98 0"}));
}

TEST_F(Glfw2, AShortcutWithControlTypesNothing) {
    open();
    const Log seen = after([this] {
        viewer().keyDown("Control_L");
        viewer().key("t");
        viewer().keyUp("Control_L");
    });
    EXPECT_EQ(seen, (Log{"key 289 1", "key 84 1", "key 84 0", "key 289 0"}));
}

TEST_F(Glfw2, AKeyHeldDownRepeatsAsPressesWhenEnabled) {
    open();
    glfwEnable(GLFW_KEY_REPEAT);
    viewer().keyDown("a");
    viewer().until("repeats", [] { return count("key 65 1") >= 4 && count("char 97 1") >= 4; });
    EXPECT_EQ(count("key 65 0"), 0);
    EXPECT_EQ(count("char 97 0"), 0);
    viewer().keyUp("a");
    viewer().until("the release", [] { return holds("char 97 0"); });
    EXPECT_EQ(count("key 65 0"), 1);
    EXPECT_EQ(count("char 97 0"), 1);
}

TEST_F(Glfw2, AKeyHeldDownIsPressedOnceWhileRepeatIsDisabled) {
    open();
    glfwEnable(GLFW_KEY_REPEAT);
    viewer().keyDown("a");
    viewer().until("repeats", [] { return count("key 65 1") >= 2; });
    glfwDisable(GLFW_KEY_REPEAT);
    events.clear();
    for (int i = 0; i < 5; ++i)
        glfwWaitEvents(); // for further repeats; nothing else is sent
    EXPECT_EQ(events, Log{});
    viewer().keyUp("a");
    viewer().until("the release", [] { return holds("char 97 0"); });
    EXPECT_EQ(events, (Log{"key 65 0", "char 97 0"}));
}

TEST_F(Glfw2, TypedTextArrivesWhole) {
    open();
    const std::string text = "Hello, World (42) ~ {x|y}";
    events.clear();
    viewer().type(text);
    viewer().until("the text", [] { return holds("char 125 0"); });
    std::string read;
    for (const std::string& event : events)
        if (event.starts_with("char ") && event.ends_with(" 1"))
            read += char(std::atoi(event.c_str() + 5));
    EXPECT_EQ(read, text);
}

// Mouse.

TEST_F(Glfw2, TheMousePositionIsInWholePixels) {
    open();
    viewer().moveTo(5, 5);
    viewer().until("the mouse", [] {
        glfwSetMousePosCallback(mouseFun); // which reports the position
        return holds("mouse 5 5");
    });
    const Log seen = after([this] {
        viewer().moveTo(123, 45);
        viewer().moveTo(0, 10);
        viewer().moveTo(399, 299);
        viewer().moveTo(399, 299);
    });
    EXPECT_EQ(seen, (Log{"mouse 123 45", "mouse 0 10", "mouse 399 299"}));
}

TEST_F(Glfw2, TheMouseIsFollowedOutsideWhileAButtonIsDown) {
    open();
    viewer().moveTo(200, 150);
    glfwSetMousePosCallback(mouseFun);
    viewer().buttonDown(1);
    viewer().moveTo(450, 320);
    viewer().until("the mouse outside", [] { return holds("mouse 450 320"); });
    viewer().buttonUp(1);
}

TEST_F(Glfw2, ButtonsAreLeftRightAndMiddle) {
    open();
    viewer().moveTo(200, 150);
    glfwSetMouseButtonCallback(buttonFun);
    const Log seen = after([this] {
        viewer().click(1);
        viewer().click(3);
        viewer().click(2);
    });
    EXPECT_EQ(seen,
              (Log{"button 0 1", "button 0 0", "button 1 1", "button 1 0", "button 2 1", "button 2 0"}));
}

TEST_F(Glfw2, TheWheelIsARunningSum) {
    open();
    viewer().moveTo(200, 150);
    glfwSetMouseWheelCallback(wheelFun);
    const Log seen = after([this] {
        viewer().wheel(3);
        viewer().wheel(-4);
        viewer().wheel(1);
    });
    EXPECT_EQ(seen,
              (Log{"wheel 1", "wheel 2", "wheel 3", "wheel 2", "wheel 1", "wheel 0", "wheel -1", "wheel 0"}));
}

// Close requests.

TEST_F(Glfw2, ACloseRequestCanBeRefused) {
    open();
    glfwSetWindowCloseCallback(closeFun);
    for (int i = 1; i <= 2; ++i) {
        viewer().requestClose();
        viewer().until("the request", [i] { return count("close") == i; });
        EXPECT_TRUE(isOpen());
    }
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
}

TEST_F(Glfw2, ACloseRequestThatIsGrantedClosesTheWindow) {
    open();
    glfwSetWindowCloseCallback(closeFun);
    closeAnswer = 1;
    viewer().requestClose();
    viewer().until("the end", [] { return !isOpen(); });
    EXPECT_EQ(count("close"), 1);
    EXPECT_EQ(openWindow(), 1);
}

TEST_F(Glfw2, WithoutACallbackACloseRequestClosesTheWindow) {
    open();
    viewer().requestClose();
    viewer().until("the end", [] { return !isOpen(); });
}

// Calls inside a callback.

TEST_F(Glfw2, AWindowCanBeClosedInACallback) {
    open();
    onKeyDown = [] { glfwCloseWindow(); };
    viewer().key("q");
    viewer().until("the end", [] { return !isOpen(); });
    EXPECT_EQ(events, Log{"key 81 1"}); // nothing comes after
    glfwPollEvents();
    onKeyDown = nullptr;
    open();
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
}

TEST_F(Glfw2, AWindowCanBeClosedAndOpenedInACallback) {
    open();
    onKeyDown = [] {
        glfwCloseWindow();
        ASSERT_EQ(openWindow(GLFW_WINDOW, 320, 200), 1);
        glfwSetKeyCallback(keyFun);
        glfwSetCharCallback(charFun);
    };
    viewer().key("q");
    viewer().until("the key", [] { return holds("key 81 1"); });
    onKeyDown = nullptr;
    EXPECT_EQ(events, Log{"key 81 1"}); // the character belonged to the previous window
    int width = 0, height = 0;
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 320);
    EXPECT_EQ(height, 200);
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
    look();
    EXPECT_EQ(afterKey("w"), typed('W', 'w'));
}

TEST_F(Glfw2, AWindowOpenedInACallbackHasNoPartInTheOneBefore) {
    open();
    onKeyUp = [] {
        glfwCloseWindow();
        ASSERT_EQ(openWindow(), 1);
        glfwSetCharCallback(charFun);
    };
    viewer().key("q");
    viewer().until("the release", [] { return holds("key 81 0"); });
    onKeyUp = nullptr;
    EXPECT_EQ(events, (Log{"key 81 1", "char 113 1", "key 81 0"}));
}

TEST_F(Glfw2, AFullScreenWindowCanBeLeftInACallback) {
    ASSERT_EQ(openWindow(GLFW_FULLSCREEN), 1);
    look();
    onKeyDown = [] {
        glfwCloseWindow();
        ASSERT_EQ(openWindow(), 1);
    };
    viewer().key("q");
    viewer().until("the key", [] { return holds("key 81 1"); });
    onKeyDown = nullptr;
    look();
    EXPECT_EQ(afterKey("w"), typed('W', 'w'));
}

TEST_F(Glfw2, TheLibraryCanBeTerminatedInACallback) {
    open();
    onKeyDown = [] { glfwTerminate(); };
    viewer().key("q");
    viewer().until("the end", [] { return !isOpen(); });
    EXPECT_EQ(events, Log{"key 81 1"});
    EXPECT_EQ(glfwGetTime(), 0.0);
    EXPECT_EQ(openWindow(), 0);
    onKeyDown = nullptr;
    ASSERT_EQ(glfwInit(), 1);
    open();
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
}

TEST_F(Glfw2, TheLibraryCanBeTerminatedAndInitialisedInACallback) {
    open();
    glfwSetTime(1000.0);
    onKeyDown = [] {
        glfwTerminate();
        ASSERT_EQ(glfwInit(), 1);
        ASSERT_EQ(openWindow(), 1);
    };
    viewer().key("q");
    viewer().until("the key", [] { return holds("key 81 1"); });
    onKeyDown = nullptr;
    EXPECT_TRUE(isOpen());
    EXPECT_LT(glfwGetTime(), 900.0);
    look();
    EXPECT_EQ(afterKey("w"), typed('W', 'w'));
}

TEST_F(Glfw2, PollingInACallbackReturnsAtOnce) {
    open();
    onKeyDown = [] {
        glfwPollEvents();
        glfwWaitEvents();
        glfwSwapBuffers(); // which polls too
    };
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
}

TEST_F(Glfw2, AnExceptionOfACallbackPassesThroughThePoll) {
    open();
    onKeyDown = [] {
        onKeyDown = nullptr;
        throw std::runtime_error("from the key");
    };
    viewer().keyDown("q");
    std::string caught;
    while (caught.empty()) {
        try {
            glfwWaitEvents();
        } catch (const std::runtime_error& error) {
            caught = error.what();
        }
    }
    EXPECT_EQ(caught, "from the key");
    viewer().keyUp("q");
    viewer().until("the release", [] { return holds("key 81 0"); });
    EXPECT_EQ(afterKey("w"), typed('W', 'w'));
}

// Icon, focus, size.

TEST_F(Glfw2, IconifyingAndRestoringAreDetected) {
    open();
    EXPECT_EQ(glfwGetWindowParam(GLFW_ICONIFIED), 0);
    viewer().iconify();
    viewer().until("the icon", [] { return glfwGetWindowParam(GLFW_ICONIFIED) == 1; });
    viewer().until("the focus lost", [] { return glfwGetWindowParam(GLFW_ACTIVE) == 0; });
    viewer().restore();
    viewer().until("the window", [] { return glfwGetWindowParam(GLFW_ICONIFIED) == 0; });
    viewer().until("the focus", [] { return glfwGetWindowParam(GLFW_ACTIVE) == 1; });
}

TEST_F(Glfw2, LosingTheFocusReleasesWhatIsDown) {
    open();
    glfwSetMouseButtonCallback(buttonFun);
    viewer().moveTo(200, 150);
    viewer().keyDown("Control_L");
    viewer().keyDown("Shift_L");
    viewer().buttonDown(1);
    viewer().until("all down",
                   [] { return holds("button 0 1") && holds("key 287 1") && holds("key 289 1"); });
    events.clear();
    OtherWindow other;
    other.focus();
    viewer().until("the focus lost", [] { return glfwGetWindowParam(GLFW_ACTIVE) == 0; });
    EXPECT_EQ(events.size(), 3u);
    EXPECT_EQ(count("key 287 0"), 1);
    EXPECT_EQ(count("key 289 0"), 1);
    EXPECT_EQ(count("button 0 0"), 1);
    viewer().keyUp("Shift_L");
    viewer().keyUp("Control_L");
    viewer().buttonUp(1);
    viewer().focus();
    viewer().until("the focus", [] { return glfwGetWindowParam(GLFW_ACTIVE) == 1; });
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
}

TEST_F(Glfw2, LosingTheFocusReleasesWhatWasTyped) {
    open();
    viewer().keyDown("q");
    viewer().until("the character", [] { return holds("char 113 1"); });
    events.clear();
    OtherWindow other;
    other.focus();
    viewer().until("the focus lost", [] { return glfwGetWindowParam(GLFW_ACTIVE) == 0; });
    EXPECT_EQ(events, (Log{"key 81 0", "char 113 0"}));
    viewer().keyUp("q");
}

TEST_F(Glfw2, TheUserCanResizeAWindow) {
    open();
    EXPECT_EQ(glfwGetWindowParam(GLFW_WINDOW_NO_RESIZE), 0);
    glfwSetWindowSizeCallback(sizeFun);
    viewer().dragCorner(60, 40);
    viewer().until("the size", [] { return holds("size 460 340"); });
    int width = 0, height = 0;
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 460);
    EXPECT_EQ(height, 340);
}

TEST_F(Glfw2, TheUserCannotResizeAWindowOpenedWithTheHint) {
    open(false);
    EXPECT_EQ(glfwGetWindowParam(GLFW_WINDOW_NO_RESIZE), 1);
    glfwSetWindowSizeCallback(sizeFun);
    const Log seen = after([this] { viewer().dragCorner(60, 40); });
    EXPECT_EQ(
        std::count_if(seen.begin(), seen.end(), [](const auto& event) { return event.starts_with("size"); }),
        0);
    int width = 0, height = 0;
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
}

TEST_F(Glfw2, TheHintIsForOneWindow) {
    glfwOpenWindowHint(GLFW_WINDOW_NO_RESIZE, 1);
    ASSERT_EQ(openWindow(), 1);
    EXPECT_EQ(glfwGetWindowParam(GLFW_WINDOW_NO_RESIZE), 1);
    EXPECT_EQ(openWindow(), 0);
    glfwCloseWindow();
    EXPECT_EQ(glfwGetWindowParam(GLFW_WINDOW_NO_RESIZE), 0);
    ASSERT_EQ(openWindow(), 1);
    EXPECT_EQ(glfwGetWindowParam(GLFW_WINDOW_NO_RESIZE), 0);
}

TEST_F(Glfw2, TheProgramCanResizeAWindowEitherWay) {
    for (bool resizable : {true, false}) {
        open(resizable);
        glfwSetWindowSizeCallback(sizeFun);
        glfwSetWindowSize(0, 100);
        glfwSetWindowSize(100, -1);
        glfwSetWindowSize(100, 32768);
        events.clear();
        glfwSetWindowSize(500, 350);
        viewer().until("the size", [] { return holds("size 500 350"); });
        EXPECT_EQ(events, Log{"size 500 350"});
        int width = 0, height = 0;
        glfwGetWindowSize(&width, &height);
        EXPECT_EQ(width, 500);
        EXPECT_EQ(height, 350);
        glfwCloseWindow();
    }
}

TEST_F(Glfw2, FullScreenAndBack) {
    int width = 0, height = 0;
    open();
    glfwCloseWindow();
    ASSERT_EQ(openWindow(GLFW_FULLSCREEN), 1);
    look();
    const std::string screen = runCommand("xdotool getdisplaygeometry").second;
    viewer().until("the whole screen", [&] {
        glfwGetWindowSize(&width, &height);
        return screen == std::to_string(width) + " " + std::to_string(height) + "\n";
    });
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
    glfwCloseWindow();
    open();
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
    EXPECT_EQ(afterKey("q"), typed('Q', 'q'));
}

TEST_F(Glfw2, WithoutAMonitorFullScreenIsAWindow) {
    // The screen turns off; xrandr then fails to set a size of zero.
    struct MonitorOff {
        MonitorOff() { runCommand("xrandr --output screen --off"); }
        ~MonitorOff() { EXPECT_EQ(runCommand("xrandr --output screen --auto").first, 0); }
    };
    glfwTerminate();
    const MonitorOff off;
    ASSERT_EQ(runCommand("xrandr | grep -F '*'").first, 1) << "the monitor is still on";
    ASSERT_EQ(glfwInit(), 1);
    GLFWvidmode mode;
    EXPECT_EQ(glfwGetVideoModes(&mode, 1), 0);
    EXPECT_EQ(openWindow(GLFW_FULLSCREEN), 1);
    glfwSwapBuffers();
    int width = 0, height = 0;
    glfwGetWindowSize(&width, &height);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 300);
    glfwTerminate();
}

// Drawing.

TEST_F(Glfw2, TheDrawnPictureIsSwapped) {
    open();
    for (int interval : {0, 1, -1, 0})
        glfwSwapInterval(interval);
    glClearColor(1.0f, 0.5f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glfwSwapBuffers();
    viewer().until("the colour", [this] {
        return runCommand("import -window " + viewer().window() + " -crop 1x1+200+150 -depth 8 txt:-")
                   .second.find("#FF8000") != std::string::npos;
    });
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Glfw2, ADamagedWindowAsksForARefresh) {
    open();
    glfwSetWindowRefreshCallback(refreshFun);
    viewer().iconify();
    viewer().until("the icon", [] { return glfwGetWindowParam(GLFW_ICONIFIED) == 1; });
    events.clear();
    viewer().restore();
    viewer().until("a refresh", [] { return holds("refresh"); });
}

TEST_F(Glfw2, SwappingPollsWhileEnabled) {
    open();
    viewer().key("q");
    while (!holds("char 113 0"))
        glfwSwapBuffers();
    EXPECT_EQ(events, typed('Q', 'q'));
}

TEST_F(Glfw2, SwappingDoesNotPollWhileDisabled) {
    open();
    glfwDisable(GLFW_AUTO_POLL_EVENTS);
    viewer().key("q");
    for (int i = 0; i < 20; ++i)
        glfwSwapBuffers();
    EXPECT_EQ(events, Log{});
    viewer().until("the key", [] { return holds("char 113 0"); });
    EXPECT_EQ(events, typed('Q', 'q'));
}

TEST_F(Glfw2, WaitingWakesUpForAnEvent) {
    open();
    std::thread hand([this] { viewer().key("q"); });
    while (!holds("char 113 0"))
        glfwWaitEvents();
    hand.join();
    EXPECT_EQ(events, typed('Q', 'q'));
}

TEST_F(Glfw2, WaitingWithoutAWindowReturnsAtOnce) {
    glfwWaitEvents();
    glfwPollEvents();
    glfwSwapBuffers();
    EXPECT_FALSE(isOpen());
}

// Time and modes.

TEST_F(Glfw2, TimeRunsFromWhereItIsSet) {
    EXPECT_GE(glfwGetTime(), 0.0);
    glfwSetTime(100.0);
    const double first = glfwGetTime();
    EXPECT_GE(first, 100.0);
    EXPECT_GE(glfwGetTime(), first);
    glfwSetTime(-50.0);
    EXPECT_GE(glfwGetTime(), -50.0);
    EXPECT_LT(glfwGetTime(), 100.0);
    glfwSetTime(std::nan(""));
    glfwSetTime(std::numeric_limits<double>::infinity());
    EXPECT_GE(glfwGetTime(), -50.0);
    EXPECT_LT(glfwGetTime(), 100.0);
}

TEST_F(Glfw2, TimeIsNotTouchedByWindows) {
    glfwSetTime(1000.0);
    open();
    glfwCloseWindow();
    EXPECT_GE(glfwGetTime(), 1000.0);
    EXPECT_EQ(glfwInit(), 1);
    EXPECT_GE(glfwGetTime(), 1000.0);
}

TEST_F(Glfw2, TimeStartsAgainWithTheLibrary) {
    glfwSetTime(1000.0);
    glfwTerminate();
    EXPECT_EQ(glfwGetTime(), 0.0);
    ASSERT_EQ(glfwInit(), 1);
    EXPECT_LT(glfwGetTime(), 1000.0);
}

TEST_F(Glfw2, SleepTakesAtLeastItsTime) {
    const double start = glfwGetTime();
    glfwSleep(0.05);
    EXPECT_GE(glfwGetTime() - start, 0.05);
}

TEST_F(Glfw2, VideoModesAscendToTheScreen) {
    GLFWvidmode modes[256];
    const int found = glfwGetVideoModes(modes, 256);
    ASSERT_GE(found, 1);
    for (int i = 0; i < found; ++i) {
        EXPECT_EQ(modes[i].RedBits + modes[i].GreenBits + modes[i].BlueBits, 24);
        EXPECT_LE(i > 0 ? modes[i - 1].Width * modes[i - 1].Height : 1, modes[i].Width * modes[i].Height);
    }
    const GLFWvidmode& last = modes[found - 1];
    EXPECT_EQ(runCommand("xdotool getdisplaygeometry").second,
              std::to_string(last.Width) + " " + std::to_string(last.Height) + "\n");
}

TEST_F(Glfw2, VideoModesFillNoMoreThanThereIsRoomFor) {
    GLFWvidmode mode = {-1, -1, -1, -1, -1};
    EXPECT_EQ(glfwGetVideoModes(&mode, 0), 0);
    EXPECT_EQ(glfwGetVideoModes(&mode, -1), 0);
    EXPECT_EQ(mode.Width, -1);
    EXPECT_EQ(glfwGetVideoModes(&mode, 1), 1);
    EXPECT_GT(mode.Width, 0);
}

// The end of the program, in child processes.

class Glfw2Exit : public testing::Test {
protected:
    void SetUp() override { testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(Glfw2Exit, AProgramMayEndWithItsWindowOpen) {
    const auto program = [] {
        if (glfwInit() == 1 && openWindow(GLFW_FULLSCREEN) == 1) {
            glfwSwapBuffers();
            std::exit(7);
        }
        std::exit(8);
    };
    EXPECT_EXIT(program(), testing::ExitedWithCode(7), "");
}

TEST_F(Glfw2Exit, AProgramMayEndInACallback) {
    const auto program = [] {
        if (glfwInit() == 1 && openWindow() == 1)
            glfwSetWindowRefreshCallback([] { std::exit(7); });
        while (isOpen())
            glfwWaitEvents();
        std::exit(8);
    };
    EXPECT_EXIT(program(), testing::ExitedWithCode(7), "");
}

// On a display that has no OpenGL.
TEST_F(Glfw2Exit, AWindowThatCannotOpenSaysWhy) {
    const auto program = [] {
        FILE* const server =
            popen("echo $$; exec Xvfb -displayfd 1 -nolisten tcp -extension GLX 2>/dev/null", "r");
        char process[32] = "", number[32] = "";
        if (!server || !std::fgets(process, sizeof process, server) ||
            !std::fgets(number, sizeof number, server))
            std::exit(9);
        setenv("DISPLAY", (":" + std::string(number, std::strcspn(number, "\n"))).c_str(), 1);
        const bool refused =
            glfwInit() == 1 && openWindow() == 0 && !isOpen() && openWindow(GLFW_FULLSCREEN) == 0;
        glfwPollEvents();
        glfwTerminate();
        kill(std::atoi(process), SIGTERM);
        std::exit(refused ? 7 : 8);
    };
    EXPECT_EXIT(program(), testing::ExitedWithCode(7), "glfw2: no window: GLX");
}
