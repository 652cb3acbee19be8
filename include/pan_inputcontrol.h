// What the controls that a user acts on share: a press that goes on outside of them, and the keys.
#pragma once

#include "pan_control.h"
#include "pan_drag.h"

namespace zentrak::panorama {

class InputControl : public Control {
public:
    // The base's test, or while a press that began here is held: so it is followed wherever the mouse goes.
    bool acceptEvents(Event& event) override;

    // Whether keys that arrive here are meant for it: it was clicked, or takeKeys was called, and has kept
    // the focus since. Being loaded last gives the focus too, but not the keys.
    bool hasKeys();
    void takeKeys(); // and the focus
    void leaveKeys();

protected:
    InputControl();

    // The base's share of an event, with what that answers in `result`. False where this is hidden, or was
    // deleted by who heard of it.
    bool hears(Event& event, int& result);

    // The left button goes down on it, and it is active. Takes the keys.
    bool startsPress(const Event& event);
    bool isHeld() const { return mHeld; } // since startsPress, until endPress
    void endPress() { mHeld = false; }

    // To be called with every event: whether the button was released where the release was not told here, as
    // over a sibling. The press is then over.
    bool missedRelease(const Event& event);

    // Whether the event brings a new place of the mouse to the press that is held.
    bool movesOn(const Event& event);

private:
    Drag mPress; // the one that is held
    bool mHeld = false;
    bool mKeys = false;
};

} // namespace zentrak::panorama
