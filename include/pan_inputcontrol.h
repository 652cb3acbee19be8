// The base of input controls: a press that continues outside the control, and keyboard input.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

class InputControl : public Control {
public:
    // The base's test, or while a press that began here is held.
    bool acceptEvents(Event& event) override;

    // Whether it uses keys and they are meant for it: it was clicked, or takeKeys was called, and has kept
    // the focus since. Being loaded last gives the focus too, but not the keys. While it has them it takes
    // all but Tab; Esc gives them back.
    bool hasKeys();
    void takeKeys(); // and the focus
    virtual void leaveKeys();

protected:
    explicit InputControl(bool usesKeys);

    // The base's share of an event, with its answer in `result`. False if there is nothing more to do: this
    // is hidden, was deleted by a receiver, or has given the keys back.
    bool hears(Event& event, int& result);

    // The left button goes down on it, and it is active. Captures the mouse and takes the keys.
    bool startsPress(const Event& event);
    bool isHeld() const { return mHeld; } // since startsPress, until endPress
    void endPress();
    void onCaptureLost() override; // ends the press

private:
    const bool mUsesKeys;
    bool mHeld = false;
    bool mKeys = false;
};

} // namespace zentrak::panorama
