// Real keys, mouse and window manager.
#include "fake_time.h"
#include "gl_fixture.h"
#include "glfw2.h"
#include "input.h"
#include "recorder.h"
#include "support.h"

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::FakeTime;
using zentrak::test::GlWindow;
using zentrak::test::OtherWindow;
using zentrak::test::Recorder;
using zentrak::test::Viewer;

typedef std::vector<std::string> Log;

namespace zentrak::display {

// The callbacks themselves, for what cannot be sent.
struct DisplayCallbacks {
    static void key(int code, int action) { DisplayGL::keyFun(code, action); }
    static void character(int code, int action) { DisplayGL::charFun(code, action); }
    static void mouse(int x, int y) { DisplayGL::mousePosFun(x, y); }
    static void button(int code, int action) { DisplayGL::mouseButtonFun(code, action); }
    static void wheel(int position) { DisplayGL::mouseWheelFun(position); }
    static void resize(int width, int height) { DisplayGL::reshape(width, height); }
    static int close() { return DisplayGL::closeFun(); }

    static void everythingButClose() {
        key(65, 1);
        character(65, 1);
        mouse(5, 5);
        button(0, 1);
        wheel(5);
        resize(5, 5);
    }
};

} // namespace zentrak::display

// A window with the focus and two listeners, "first" and "second".
class Input : public ::testing::Test {
protected:
    Input()
        : window(320, 240),
          first("first", log),
          second("second", log),
          viewer("test", [this] { going = window.display().update(); }) {
        first.attachToDisplay(&display());
        second.attachToDisplay(&display());
        viewer.focus();
        viewer.moveTo(100, 120);
        settle();
    }

    DisplayGL& display() { return window.display(); }

    // Sends a key that no test uses and waits for it, and so for everything sent before it. Then clears all
    // logs.
    void settle() {
        viewer.key("F12");
        const std::string end = "first keyup " + std::to_string(KEY_F12);
        viewer.until("the last key", [&] { return !log.empty() && log.back() == end; });
        forget();
    }

    void forget() {
        log.clear();
        for (Recorder* recorder : {&first, &second}) {
            recorder->buttons.clear();
            recorder->moves.clear();
            recorder->wheels.clear();
            recorder->keys.clear();
        }
    }

    // The log once it ends with the last entry of what was sent.
    Log heard(const std::string& last) {
        viewer.until(last, [&] { return !log.empty() && log.back() == last; });
        return log;
    }

    Log log;
    GlWindow window;
    Recorder first, second;
    bool going = true;
    Viewer viewer;
};

TEST_F(Input, ReachesTheLastListenerFirst) {
    viewer.key("a");
    EXPECT_EQ((Log{"second key 65", "first key 65", "second char 97", "first char 97", "second keyup 65",
                   "first keyup 65", "second charup 97", "first charup 97"}),
              heard("first charup 97"));
}

TEST_F(Input, BlockedStopsItFromReachingOlderListenersAndDrawingReachesAll) {
    second.answer = Listener::BLOCK;
    const int firstDraws = first.draws, secondDraws = second.draws;
    viewer.key("a");
    EXPECT_EQ((Log{"second key 65", "second char 97", "second keyup 65", "second charup 97"}),
              heard("second charup 97"));
    viewer.click(3);
    viewer.moveTo(110, 130);
    viewer.wheel(1);
    viewer.until("the wheel", [&] { return second.wheels.size() == 1; });
    EXPECT_FALSE(second.moves.empty());
    EXPECT_TRUE(first.moves.empty());
    EXPECT_TRUE(first.keys.empty());
    EXPECT_TRUE(first.buttons.empty());
    EXPECT_TRUE(first.wheels.empty());
    display().update();
    EXPECT_LT(firstDraws, first.draws);
    EXPECT_EQ(first.draws - firstDraws, second.draws - secondDraws);

    second.noteDraws = first.noteDraws = true;
    log.clear();
    display().update();
    EXPECT_EQ((Log{"first draw", "second draw"}), log); // in the opposite order
}

TEST_F(Input, AnsweredWithDirtySetsIt) {
    display().setDirty(false);
    viewer.key("a");
    heard("first charup 97");
    EXPECT_FALSE(display().mDirty);
    first.answer = Listener::DIRTY;
    viewer.key("a");
    viewer.until("dirty", [&] { return display().mDirty; });
}

TEST_F(Input, AnsweredWithQuitEndsTheLoopOnceAndGoesOnToTheOthers) {
    second.answer = Listener::QUIT;
    viewer.keyDown("q");
    viewer.until("the end", [&] { return !going; });
    EXPECT_EQ((Log{"second key 81", "second quit", "first quit", "first key 81"}),
              Log(log.begin(), log.begin() + std::min<size_t>(4, log.size())));
    EXPECT_FALSE(display().mQuittingBlocking);
    EXPECT_TRUE(display().mOpened);
    second.answer = Listener::WHATEVER;
    viewer.keyUp("q");
    settle();
    EXPECT_TRUE(display().update());
}

TEST_F(Input, AQuitThatAListenerVetoesDoesNotHappen) {
    second.answer = Listener::QUIT;
    first.quitAnswer = Listener::BLOCK;
    viewer.keyDown("q");
    viewer.until("the key", [&] { return !first.keys.empty(); });
    EXPECT_EQ((Log{"second key 81", "second quit", "first quit", "first key 81"}),
              Log(log.begin(), log.begin() + std::min<size_t>(4, log.size())));
    EXPECT_FALSE(display().mQuittingBlocking);
    EXPECT_TRUE(going);
    EXPECT_TRUE(display().update());
}

TEST_F(Input, BlockedAndAnsweredWithQuitBothStopsAndQuits) {
    second.answer = Listener::BLOCK | Listener::QUIT;
    viewer.keyDown("q");
    viewer.until("the end", [&] { return !going; });
    EXPECT_TRUE(first.keys.empty());
}

TEST_F(Input, TheCloseButtonAsksAllAndEndsTheLoopWithTheWindowStillThere) {
    viewer.requestClose();
    viewer.until("the end", [&] { return !going; });
    EXPECT_EQ((Log{"second quit", "first quit"}), log);
    EXPECT_TRUE(display().mOpened);
    EXPECT_TRUE(display().update()); // reported once
}

TEST_F(Input, TheCloseButtonCanBeVetoed) {
    second.quitAnswer = Listener::BLOCK;
    viewer.requestClose();
    heard("first quit");
    EXPECT_EQ((Log{"second quit", "first quit"}), log);
    settle();
    EXPECT_TRUE(going);
    EXPECT_TRUE(display().mOpened);
}

// Keys

TEST_F(Input, KeysAreNamedByTheirCharactersOrTheirOwnCodes) {
    const std::pair<const char*, int> keys[] = {
        {"a", KEY_a},
        {"z", KEY_z},
        {"0", KEY_0},
        {"space", KEY_SPACE},
        {"comma", KEY_COMMA},
        {"bracketleft", KEY_LEFTBRACKET},
        {"grave", KEY_BACKQUOTE},
        {"Escape", KEY_ESC},
        {"F1", KEY_F1},
        {"F11", KEY_F11},
        {"Up", KEY_UP},
        {"Down", KEY_DOWN},
        {"Left", KEY_LEFT},
        {"Right", KEY_RIGHT},
        {"Tab", KEY_TAB},
        {"Return", KEY_ENTER},
        {"BackSpace", KEY_BACKSPACE},
        {"Insert", KEY_INSERT},
        {"Delete", KEY_DEL},
        {"Prior", KEY_PAGEUP},
        {"Next", KEY_PAGEDOWN},
        {"Home", KEY_HOME},
        {"End", KEY_END},
        {"KP_Divide", KEY_KP_DIVIDE},
        {"KP_Multiply", KEY_KP_MULTIPLY},
        {"KP_Subtract", KEY_KP_SUBTRACT},
        {"KP_Add", KEY_KP_ADD},
        {"KP_Enter", KEY_KP_ENTER},
    };
    for (const auto& [name, key] : keys) {
        first.keys.clear();
        viewer.key(name);
        viewer.until(name, [&] { return first.keys.size() >= 2; });
        ASSERT_LE(2u, first.keys.size()) << name;
        EXPECT_EQ(key, first.keys[0].key) << name;
        EXPECT_EQ(key, first.keys.back().key) << name;
    }
}

TEST_F(Input, EveryCodeMapsToItsKeyOrToMinusOne) {
    for (int code = -2; code <= 400; ++code) {
        int expected = -1;
        if (code < 256 || (code >= 257 && code <= 292))
            expected = code;
        else if (code == 293)
            expected = KEY_TAB;
        else if (code == 294)
            expected = KEY_ENTER;
        else if (code == 295)
            expected = KEY_BACKSPACE;
        else if (code >= 296 && code <= 318)
            expected = code - 3;
        first.keys.clear();
        DisplayCallbacks::key(code, 1);
        DisplayCallbacks::key(code, 0);
        ASSERT_EQ(2u, first.keys.size()) << code;
        EXPECT_EQ(expected, first.keys[0].key) << code;
        EXPECT_EQ(expected, first.keys[1].key) << code;
    }
}

TEST_F(Input, CodesOutOfRangePressNothing) {
    for (int code : {-1, -1000000, -2147483647, 256, 319, 400, 316 + 1000000, 2147483647})
        DisplayCallbacks::key(code, 1);
    for (bool pressed : display().mPressed)
        EXPECT_FALSE(pressed);
    DisplayCallbacks::key(318, 1); // the last one of the table
    EXPECT_TRUE(display().mPressed[KEY_KP_ENTER]);
    DisplayCallbacks::key(318, 0);
    EXPECT_FALSE(display().mPressed[KEY_KP_ENTER]);
}

TEST_F(Input, CallbacksOfAClosedWindowReachNobody) {
    display().close();
    log.clear();
    DisplayCallbacks::everythingButClose();
    EXPECT_EQ(1, DisplayCallbacks::close()); // there is no listener to keep it open
    EXPECT_EQ((Log{}), log);
    EXPECT_FALSE(display().mPressed[65]);
    EXPECT_EQ(320, display().mWindowMode.width);
    EXPECT_NE(5.0f, display().mMouseX);
}

TEST_F(Input, ButtonsOutOfRangeAreIgnored) {
    for (int button : {-1, 3, 7, 2147483647}) {
        DisplayCallbacks::button(button, 1);
        DisplayCallbacks::button(button, 0);
    }
    EXPECT_EQ((Log{}), log);
}

TEST_F(Input, PressedIsTrueWhileAKeyIsDown) {
    viewer.keyDown("b");
    viewer.until("the key", [&] { return display().mPressed[KEY_b]; });
    EXPECT_FALSE(display().mPressed[KEY_a]);
    viewer.keyUp("b");
    viewer.until("its release", [&] { return !display().mPressed[KEY_b]; });
}

TEST(InputWithoutADisplay, ReachesNobody) {
    DisplayCallbacks::everythingButClose();
    EXPECT_EQ(1, DisplayCallbacks::close());
}

TEST_F(Input, AKeyHeldDownIsPressedAgainAndAgain) {
    viewer.keyDown("b");
    viewer.until("repeats", [&] { return first.keys.size() >= 4; });
    viewer.keyUp("b");
    viewer.until("its release", [&] { return !display().mPressed[KEY_b]; });
    const size_t presses = size_t(std::count(log.begin(), log.end(), "first key 66"));
    EXPECT_LE(3u, presses);
    EXPECT_EQ(1, std::count(log.begin(), log.end(), "first keyup 66"));
}

// By key code: a tool asked for a right modifier by name presses the left one with it.
TEST_F(Input, ModifiersComeWithEveryEvent) {
    const std::tuple<const char*, Key, int> modifiers[] = {
        {"50", KEY_LSHIFT, KEYMOD_LSHIFT}, {"62", KEY_RSHIFT, KEYMOD_RSHIFT}, {"37", KEY_LCTRL, KEYMOD_LCTRL},
        {"105", KEY_RCTRL, KEYMOD_RCTRL},  {"64", KEY_LALT, KEYMOD_LALT},     {"108", KEY_RALT, KEYMOD_RALT},
    };
    for (const auto& [code, key, mask] : modifiers) {
        viewer.keyDown(code);
        viewer.key("F9");
        viewer.until("the key", [&] { return !log.empty() && log.back() == "first keyup 266"; });
        ASSERT_EQ(3u, first.keys.size()) << code;
        EXPECT_EQ(key, first.keys[0].key) << code;
        EXPECT_EQ(mask, first.keys[0].control) << code; // with the modifier's own press, too
        EXPECT_EQ(KEY_F9, first.keys[1].key) << code;
        EXPECT_EQ(mask, first.keys[1].control) << code;
        viewer.keyUp(code);
        viewer.until("its release", [&] { return first.keys.size() >= 4; });
        ASSERT_EQ(4u, first.keys.size()) << code;
        EXPECT_EQ(KEYMOD_NONE, first.keys[3].control) << code; // and not with its release
        forget();
    }

    viewer.keyDown("50");
    viewer.keyDown("105");
    viewer.wheel(1);
    viewer.moveTo(101, 120);
    viewer.click(3);
    viewer.until("the click", [&] { return first.buttons.size() >= 2; });
    ASSERT_LE(1u, first.wheels.size());
    ASSERT_LE(1u, first.moves.size());
    ASSERT_LE(2u, first.buttons.size());
    EXPECT_EQ(KEYMOD_LSHIFT | KEYMOD_RCTRL, first.wheels[0].control);
    EXPECT_EQ(KEYMOD_LSHIFT | KEYMOD_RCTRL, first.moves[0].control);
    EXPECT_EQ(KEYMOD_LSHIFT | KEYMOD_RCTRL, first.buttons[1].control);
    EXPECT_TRUE(first.wheels[0].shift());
    EXPECT_TRUE(first.wheels[0].rightCtrl());
    EXPECT_FALSE(first.wheels[0].alt());
}

TEST_F(Input, LockKeysSetNoModifier) {
    viewer.key("Caps_Lock");
    viewer.key("F9");
    viewer.until("the key", [&] { return !first.keys.empty() && first.keys.back().key == KEY_F9; });
    EXPECT_EQ(KEYMOD_NONE, first.keys.back().control);
    viewer.key("Caps_Lock");
    settle();
}

// Mouse

TEST_F(Input, AMoveToTheRightAndDownHasANegativeDelta) {
    viewer.moveTo(110, 125);
    viewer.until("the move", [&] { return !first.moves.empty() && first.moves.back().mousePos.x == 110; });
    ASSERT_FALSE(first.moves.empty());
    const MouseMoveEvent& move = first.moves.back();
    EXPECT_EQ(-10.0f, move.mouseDelta.x);
    EXPECT_EQ(-5.0f, move.mouseDelta.y);
    EXPECT_EQ(0.0f, move.mouseDeltaWheel);
    EXPECT_EQ(110.0f, move.mousePos.x);
    EXPECT_EQ(125.0f, move.mousePos.y);
    EXPECT_EQ(110.0f / 320.0f, move.mousePosUnit.x);
    EXPECT_EQ(125.0f / 240.0f, move.mousePosUnit.y);
    EXPECT_EQ(110.0f, display().getMousePosition().x);
    EXPECT_EQ(125.0f, display().getMousePosition().y);
}

TEST_F(Input, TheUnitPositionOfAWindowWithoutASizeIsZero) {
    display().mWindowMode.width = 0;
    display().mWindowMode.height = 0;
    viewer.wheel(1);
    viewer.until("the wheel", [&] { return !first.wheels.empty(); });
    ASSERT_FALSE(first.wheels.empty());
    EXPECT_EQ(100.0f, first.wheels[0].mousePos.x);
    EXPECT_EQ(0.0f, first.wheels[0].mousePosUnit.x);
    EXPECT_EQ(0.0f, first.wheels[0].mousePosUnit.y);
}

TEST_F(Input, TheWheelIsARunningSum) {
    viewer.wheel(2);
    viewer.until("two steps", [&] { return first.wheels.size() >= 2; });
    viewer.wheel(-1);
    viewer.until("a step back", [&] { return first.wheels.size() >= 3; });
    ASSERT_EQ(3u, first.wheels.size());
    EXPECT_EQ(1.0f, first.wheels[0].mouseWheel);
    EXPECT_EQ(1.0f, first.wheels[0].mouseDeltaWheel);
    EXPECT_EQ(2.0f, first.wheels[1].mouseWheel);
    EXPECT_EQ(1.0f, first.wheels[1].mouseDeltaWheel);
    EXPECT_EQ(1.0f, first.wheels[2].mouseWheel);
    EXPECT_EQ(-1.0f, first.wheels[2].mouseDeltaWheel);
    EXPECT_EQ(0.0f, first.wheels[2].mouseDelta.x);
    EXPECT_EQ(0.0f, first.wheels[2].mouseDelta.y);
    EXPECT_EQ(1.0f, display().mMouseWheel);
}

TEST_F(Input, ThreeMouseButtonsHaveNames) {
    viewer.click(1);
    viewer.click(2);
    viewer.click(3);
    EXPECT_EQ(
        (Log{"second down 0", "first down 0", "second up 0", "first up 0", "second down 2", "first down 2",
             "second up 2", "first up 2", "second down 1", "first down 1", "second up 1", "first up 1"}),
        heard("first up 1"));
    EXPECT_EQ(100.0f, first.buttons[0].mousePos.x);
    EXPECT_EQ(120.0f, first.buttons[0].mousePos.y);
}

TEST_F(Input, FurtherMouseButtonsAreIgnored) {
    viewer.click(8);
    viewer.click(9);
    viewer.click(3);
    EXPECT_EQ((Log{"second down 1", "first down 1", "second up 1", "first up 1"}), heard("first up 1"));
}

// The test advances the display's time in steps, so its own speed doesn't matter.
class DoubleClick : public Input {
protected:
    DoubleClick() {
        display().setFps(DisplayGL::FPS_DELTA, 0);
        display().setTime(100);
        settle();
    }

    // The entries of the first listener for the presses of a button.
    Log presses() {
        settleButtons();
        Log all;
        for (const std::string& entry : log)
            if (entry.rfind("first down", 0) == 0)
                all.push_back(entry);
        return all;
    }

    void settleButtons() {
        viewer.key("F12");
        const std::string end = "first keyup " + std::to_string(KEY_F12);
        viewer.until("the last key", [&] { return !log.empty() && log.back() == end; });
    }

    // A click, with no event left pending.
    void click(int button = 1) {
        viewer.click(button);
        settleButtons();
    }

    // Like setTime, which would forget the first click.
    void wait(float seconds) { display().mFpsLastTime += seconds; }
};

TEST_F(DoubleClick, IsTheSecondOfTwoLeftClicksWithinItsTime) {
    click();
    EXPECT_EQ(100.0f, display().mLastClickTime);
    wait(0.75f);
    click();
    EXPECT_EQ(-1.0f, display().mLastClickTime);
    EXPECT_EQ((Log{"first down 0", "first down 0 double"}), presses());
}

TEST_F(DoubleClick, IsNoneAfterItsTime) {
    click();
    wait(0.85f);
    click();
    EXPECT_EQ((Log{"first down 0", "first down 0"}), presses());
}

TEST_F(DoubleClick, IsNoneWithAMoveBetween) {
    click();
    viewer.moveTo(101, 120);
    settleButtons();
    EXPECT_EQ(-1.0f, display().mLastClickTime);
    click();
    EXPECT_EQ((Log{"first down 0", "first down 0"}), presses());
}

TEST_F(DoubleClick, ThirdClickIsAFirstOne) {
    for (int i = 0; i < 4; ++i)
        click();
    EXPECT_EQ((Log{"first down 0", "first down 0 double", "first down 0", "first down 0 double"}), presses());
}

TEST_F(DoubleClick, IsOnlyOfTheLeftButton) {
    click(3);
    click(3);
    EXPECT_EQ(-1.0f, display().mLastClickTime);
    click(1);
    click(3);
    EXPECT_EQ((Log{"first down 1", "first down 1", "first down 0", "first down 1"}), presses());
    for (const MouseButtonEvent& event : first.buttons)
        EXPECT_FALSE(event.doubleClick);
}

TEST_F(DoubleClick, IsNoneForAFirstClickAtTimeZeroOrBefore) {
    display().setTime(0);
    click();
    display().setTime(-5);
    click();
    EXPECT_EQ((Log{"first down 0", "first down 0"}), presses());
}

// Window

TEST_F(Input, AnIconifiedWindowRunsPacingAndCountButDoesNotDraw) {
    viewer.iconify();
    heard("second focus 0");
    EXPECT_EQ((Log{"first iconify 1", "second iconify 1", "first focus 0", "second focus 0"}), log);
    EXPECT_TRUE(display().mIconified);
    EXPECT_FALSE(display().mFocused);

    display().setFps(DisplayGL::FPS_DELTA, 25);
    const int draws = first.draws;
    const float frames = display().mFpsCountFrames;
    for (int frame = 1; frame <= 10; ++frame) {
        EXPECT_TRUE(display().update());
        EXPECT_EQ(double(float(frame * 0.04)), display().getTime());
    }
    EXPECT_EQ(draws, first.draws);
    EXPECT_EQ(frames + 10, display().mFpsCountFrames);

    display().setFps(DisplayGL::FPS_VSYNC, 30); // does not run hot without a swap
    {
        FakeTime time;
        display().update();
        ASSERT_EQ(1u, time.sleeps.size());
        EXPECT_NEAR(1.0 / 60, time.sleeps[0], 1e-6);
    }

    log.clear();
    viewer.restore();
    viewer.until("a frame", [&] { return first.draws > draws; });
    EXPECT_FALSE(display().mIconified);
    EXPECT_EQ(1, std::count(log.begin(), log.end(), "first iconify 0"));
    EXPECT_EQ(1, std::count(log.begin(), log.end(), "second iconify 0"));
    viewer.until("the focus", [&] { return display().mFocused; });
}

TEST_F(Input, WhileTheListenersHearOfAChangeTheDisplayHasTheStateBefore) {
    struct Watcher : Listener {
        using Listener::Listener;
        void onIconify(bool iconified) override { agree |= display->mIconified == iconified; }
        void onChangeFocus(bool focused) override { agree |= display->mFocused == focused, ++told; }
        bool agree = false;
        int told = 0;
    } watcher(&display());
    viewer.iconify();
    viewer.until("both", [&] { return watcher.told > 0; });
    EXPECT_FALSE(watcher.agree);
    EXPECT_TRUE(display().mIconified);
    EXPECT_FALSE(display().mFocused);
}

TEST_F(Input, TheFocusGoesAndComesBack) {
    {
        OtherWindow other;
        other.focus();
        heard("second focus 0");
        EXPECT_EQ((Log{"first focus 0", "second focus 0"}), log);
        EXPECT_FALSE(display().mFocused);
        const int draws = first.draws;
        display().update();
        EXPECT_LT(draws, first.draws); // drawn anyway
    }
    log.clear();
    viewer.focus();
    heard("second focus 1");
    EXPECT_TRUE(display().mFocused);
}

TEST(Resizable, GivesTheListenersTheOldSizeAndDrawsInTheNew) {
    WindowMode mode("resizable", 320, 240, false);
    mode.canResize = true;
    DisplayGL display(mode);
    Log log;
    Recorder first("first", log), second("second", log);
    first.attachToDisplay(&display);
    second.attachToDisplay(&display);
    display.open();
    EXPECT_EQ("first resize 320x240 to 320x240",
              log.at(0)); // the callback reports the current size immediately
    Viewer viewer("resizable", [&] { display.update(); });
    viewer.focus();
    GLint viewport[4] = {};
    first.draw = [&] { glGetIntegerv(GL_VIEWPORT, viewport); };
    log.clear();
    display.setDirty(false);
    zentrak::test::runCommand("xdotool windowsize " + viewer.window() + " 400 260");
    viewer.until("the size", [&] { return display.mWindowMode.width == 400; });
    EXPECT_EQ("first resize 320x240 to 400x260", log.at(0));
    EXPECT_EQ("second resize 320x240 to 400x260", log.at(1));
    EXPECT_TRUE(display.mDirty);
    viewer.until("a frame", [&] { return viewport[2] == 400; });
    EXPECT_EQ(260, viewport[3]);

    viewer.dragCorner(30, 20);
    viewer.until("the drag",
                 [&] { return display.mWindowMode.width > 400 && display.mWindowMode.height > 260; });
}

TEST_F(Input, AWindowOfFixedSizeDoesNotFollowTheMouse) {
    viewer.dragCorner(50, 50);
    settle();
    EXPECT_EQ(320, display().mWindowMode.width);
    int width = 0, height = 0;
    glfw2::glfwGetWindowSize(&width, &height);
    EXPECT_EQ(320, width);
    EXPECT_EQ(240, height);
}

// Callbacks that change things

TEST_F(Input, ACallbackThatClosesTheWindowEndsTheLoop) {
    second.onKey = [&] { display().close(); };
    viewer.keyDown("a");
    viewer.until("the end", [&] { return !going; });
    EXPECT_FALSE(display().mOpened);
    EXPECT_EQ((Log{"second key 65", "first key 65"}), log);
    EXPECT_FALSE(display().update());
}

TEST_F(Input, AQuitFromACallbackThatHasClosedTheWindowStopsTheWalk) {
    second.onKey = [&] { display().close(); };
    second.answer = Listener::QUIT;
    viewer.keyDown("a");
    viewer.until("the end", [&] { return !going; });
    EXPECT_EQ((Log{"second key 65"}), log);
    EXPECT_TRUE(display().mQuittingBlocking);
}

TEST_F(Input, ACallbackThatOpensAnotherWindowGoesOnInIt) {
    const int contexts = display().mContextCount;
    second.onKey = [&] {
        second.onKey = nullptr;
        display().setFullscreen(true);
    };
    viewer.keyDown("a");
    const int draws = first.draws;
    viewer.until("full screen", [&] { return display().mWindowMode.fullscreen; });
    EXPECT_EQ(contexts + 1, display().mContextCount);
    viewer.until("a frame", [&] { return first.draws > draws; });
    for (bool pressed : display().mPressed)
        EXPECT_FALSE(pressed); // the new window has received no key
}

TEST_F(Input, AListenerThatDeletesItselfInItsOwnCallbackSkipsNobody) {
    std::unique_ptr<Recorder> third(new Recorder("third", log));
    third->attachToDisplay(&display());
    third->onKey = [&] { third.reset(); };
    viewer.key("a");
    heard("first charup 97");
    EXPECT_EQ((Log{"third key 65", "second key 65", "first key 65"}), Log(log.begin(), log.begin() + 3));
    EXPECT_EQ("second char 97", log[3]);
}

TEST_F(Input, AListenerThatRemovesAnOlderOneKeepsItFromTheEvent) {
    second.onKey = [&] { first.attachToDisplay(nullptr); };
    viewer.key("a");
    heard("second charup 97");
    EXPECT_EQ((Log{"second key 65", "second char 97", "second keyup 65", "second charup 97"}), log);
}

TEST_F(Input, AListenerThatJoinsInACallbackGetsTheNextEvent) {
    std::unique_ptr<Recorder> third(new Recorder("third", log));
    first.onKey = [&] { third->attachToDisplay(&display()); };
    viewer.key("a");
    heard("first charup 97");
    EXPECT_EQ((Log{"second key 65", "first key 65", "third char 97"}), Log(log.begin(), log.begin() + 3));
}

TEST_F(Input, AnExceptionOfACallbackPassesThroughUpdate) {
    second.onKey = [] { throw 12; };
    viewer.keyDown("a");
    bool thrown = false;
    const auto update = [&] {
        try {
            display().update();
        } catch (int) {
            thrown = true;
        }
    };
    Viewer("test", update).until("the exception", [&] { return thrown; });
    EXPECT_TRUE(thrown);
    second.onKey = nullptr;
    EXPECT_TRUE(display().update());
    viewer.keyUp("a");
    settle();
}
