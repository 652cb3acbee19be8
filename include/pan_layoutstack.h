// Children one after the other, without gaps, each at its own size.
#pragma once

#include "pan_control.h"

namespace zentrak::panorama {

class LayoutStack : public Control {
public:
    int mDirection = 1; // 1: downward, 0: to the right

    LayoutStack();

    Control* clone() override; // without children; owned by the caller

    void load(xml::IteratorConst& it) override; // `direction`: "horisontal", or anything else for vertical
    void addControl(Control* control, int index) override;
    void deleteControl(unsigned int index) override;
    void draw() override;

    virtual void setVertical();
    virtual void setHorisontal();
    virtual void recalculate(); // places the children; to be called when one has changed its size

    // Adds a child at the end and leaves the placing to the next recalculate: for many at once.
    void append(Control* control);

private:
    bool mLoading = false;
};

} // namespace zentrak::panorama
