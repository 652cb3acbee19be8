// A box around controls that belong together, with a caption in its outline.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

class Panel : public Control {
public:
    Panel();

    Control* clone() override; // without children; owned by the caller

    void load(xml::IteratorConst& it) override; // `caption`
    void buildChildArea() override;
    void draw() override;
};

} // namespace zentrak::panorama
