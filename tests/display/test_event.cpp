// Events and listeners without a window.
#include "dis_listener.h"

#include <gtest/gtest.h>

using namespace zentrak::display;

TEST(Event, StartsEmpty) {
    const Event event;
    EXPECT_EQ(0.0f, event.mousePos.x);
    EXPECT_EQ(0.0f, event.mousePos.y);
    EXPECT_EQ(0.0f, event.mousePosUnit.x);
    EXPECT_EQ(0.0f, event.mousePosUnit.y);
    EXPECT_EQ(0.0f, event.mouseWheel);
    EXPECT_EQ(KEYMOD_NONE, event.control);
}

// All tests of a mask, one letter each.
static std::string modifiers(int control) {
    Event event;
    event.control = control;
    std::string text;
    if (event.leftCtrl())
        text += "lc ";
    if (event.rightCtrl())
        text += "rc ";
    if (event.ctrl())
        text += "c ";
    if (event.leftShift())
        text += "ls ";
    if (event.rightShift())
        text += "rs ";
    if (event.shift())
        text += "s ";
    if (event.leftAlt())
        text += "la ";
    if (event.rightAlt())
        text += "ra ";
    if (event.alt())
        text += "a ";
    if (event.numLock())
        text += "num ";
    if (event.capsLock())
        text += "caps ";
    return text;
}

TEST(Event, ReadsTheModifiers) {
    EXPECT_EQ("", modifiers(KEYMOD_NONE));
    EXPECT_EQ("lc c ", modifiers(KEYMOD_LCTRL));
    EXPECT_EQ("rc c ", modifiers(KEYMOD_RCTRL));
    EXPECT_EQ("ls s ", modifiers(KEYMOD_LSHIFT));
    EXPECT_EQ("rs s ", modifiers(KEYMOD_RSHIFT));
    EXPECT_EQ("la a ", modifiers(KEYMOD_LALT));
    EXPECT_EQ("ra a ", modifiers(KEYMOD_RALT));
    EXPECT_EQ("num ", modifiers(KEYMOD_NUMLOCK));
    EXPECT_EQ("caps ", modifiers(KEYMOD_CAPSLOCK));
    EXPECT_EQ("lc c rs s la a ", modifiers(KEYMOD_LCTRL | KEYMOD_RSHIFT | KEYMOD_LALT));
}

TEST(Listener, AnswersWhateverToEveryEvent) {
    Listener listener;
    EXPECT_EQ(Listener::WHATEVER, listener.onMouseUp(MouseButtonEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onMouseDown(MouseButtonEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onMouseMove(MouseMoveEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onMouseWheel(MouseMoveEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onKeyDown(KeyEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onKeyUp(KeyEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onCharDown(CharEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onCharUp(CharEvent()));
    EXPECT_EQ(Listener::WHATEVER, listener.onQuit());
    listener.onResize(1, 2);
    listener.onMove();
    listener.onDraw();
    listener.onIconify(true);
    listener.onChangeFocus(true);
    EXPECT_EQ(nullptr, listener.display);
}

TEST(Listener, AttachedToNothingIsOnNoDisplay) {
    Listener listener(nullptr);
    EXPECT_EQ(nullptr, listener.display);
    listener.attachToDisplay(nullptr);
    EXPECT_EQ(nullptr, listener.display);
}
