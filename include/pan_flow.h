// Lays out its children in a row: some of a fixed size, the others sharing the rest.
#pragma once

#include "pan_control.h"

#include <map>

namespace zentrak::panorama {

class Flow : public Control {
public:
    enum Direction : int { HORIZONTAL = 0, VERTICAL = 1 };

    // Above 0: pixels; else a share, relative to those of the others.
    std::map<Control*, float> mSizes;
    int mDirection = VERTICAL;

    Flow();

    Control* clone() override; // without children; owned by the caller

    void load(xml::IteratorConst& it) override; // `direction`: "horisontal", or else vertical
    void setArea(mathbase::Box2 area) override;
    void addControl(Control* control, int index) override; // 10 pixels, unless it has a size already
    void deleteControls() override;

    void addControl(Control* control); // at the end

    // From the next layout on.
    void setSize(Control* control, float size);       // pixels
    void setPercent(Control* control, float percent); // a share
    float getSize(Control* control);                  // as in mSizes; 0 if it isn't a child
    void setDirection(Direction direction);

protected:
    void forget(Control* child) override;
};

} // namespace zentrak::panorama
