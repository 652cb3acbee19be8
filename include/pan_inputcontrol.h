// What the controls that a user acts on share: a press that goes on outside of them, and the keys.
#pragma once

#include "pan_control.h"

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

    // The mouse went on to a place where this press has not been told it yet. Within one move a control can
    // hear of the same place several times.
    bool movesOn(const Event& event);

private:
    bool               mHeld = false;
    bool               mKeys = false;
    unsigned           mReleases = 0; // of the left button anywhere, at the press
    bool               mPlaced = false;
    mathbase::Vector2f mPlace; // of the mouse, when this press was last told it
};

} // namespace zentrak::panorama
