// Input events: small records on the stack, handed to listeners by const reference.
#pragma once

#include "dis_key.h"
#include "mb_vector2.h"

namespace zentrak::display {

// Common to all input events.
struct Event {
    mathbase::Vector2f mousePos;     // pixels from the window's upper left corner
    mathbase::Vector2f mousePosUnit; // mousePos divided by the window's size
    float mouseWheel;                // steps, a running sum
    int control;                     // mask of KeyMod values: the modifier keys held down

    Event() : mousePos(0, 0), mousePosUnit(0, 0), mouseWheel(0), control(KEYMOD_NONE) {}

    bool leftCtrl() const { return (control & KEYMOD_LCTRL) != 0; }
    bool rightCtrl() const { return (control & KEYMOD_RCTRL) != 0; }
    bool ctrl() const { return (control & (KEYMOD_LCTRL | KEYMOD_RCTRL)) != 0; }
    bool leftShift() const { return (control & KEYMOD_LSHIFT) != 0; }
    bool rightShift() const { return (control & KEYMOD_RSHIFT) != 0; }
    bool shift() const { return (control & (KEYMOD_LSHIFT | KEYMOD_RSHIFT)) != 0; }
    bool leftAlt() const { return (control & KEYMOD_LALT) != 0; }
    bool rightAlt() const { return (control & KEYMOD_RALT) != 0; }
    bool alt() const { return (control & (KEYMOD_LALT | KEYMOD_RALT)) != 0; }
    bool numLock() const { return (control & KEYMOD_NUMLOCK) != 0; }
    bool capsLock() const { return (control & KEYMOD_CAPSLOCK) != 0; }
};

// A key going down, repeating (which is going down again) or going up.
struct KeyEvent : Event {
    Key key = KEY_UNKNOWN; // -1 for a key without a name
};

// A character typed, or released.
struct CharEvent : Event {
    int key = 0; // the character's code
};

struct MouseButtonEvent : Event {
    MouseButton button = MOUSE_LEFT;
    bool doubleClick = false; // the second press of the left button within 0.8 seconds, unmoved
};

// The mouse moved, or its wheel turned.
struct MouseMoveEvent : Event {
    mathbase::Vector2f mouseDelta; // old position minus new: a move to the right is negative
    float mouseDeltaWheel = 0;     // new wheel value minus old

    MouseMoveEvent() : mouseDelta(0, 0) {}
};

} // namespace zentrak::display
