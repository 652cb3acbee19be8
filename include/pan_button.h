// A push button, or one that stays in until it is pushed again.
#pragma once

#include "pan_inputcontrol.h"
#include "pan_textline.h"

namespace zentrak::panorama {

// Sends action 0 when it is pushed and 1 when it is released on it; a toggle button, on the release, 0 when
// it is now in and 1 when it is now out. A release elsewhere sends nothing.
class Button : public InputControl {
public:
    bool pushed = false;     // held down by the mouse
    bool toggled = false;    // in
    bool toggleMode = false; // it stays in

    Button();

    Control* clone() override; // a plain new one, owned by the caller

    // "caption", and "toggled", which with "true" makes it a toggle button and with any other word a plain
    // one.
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override; // 1 for a press and a release that it takes
    void draw() override;

private:
    void onCaptureLost() override;

    TextLine mLine; // the caption
};

} // namespace zentrak::panorama
