// A box with a background and an outline.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

class Frame : public Control {
public:
    Frame();

    Control* clone() override; // owned by the caller
    void draw() override;
};

} // namespace zentrak::panorama
