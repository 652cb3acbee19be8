// A page of a TabView: a frame that starts hidden and fills the view.
#pragma once

#include "pan_frame.h"

namespace zentrak::panorama {

class TabFrame : public Frame {
public:
    TabFrame();

    Control* clone() override;                  // owned by the caller
    void load(xml::IteratorConst& it) override; // `caption`: the text of its tab
};

} // namespace zentrak::panorama
