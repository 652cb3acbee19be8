#include "pan_layoutstack.h"

#include "pan_look.h"
#include "xml_iterator.h"

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector4f;

LayoutStack::LayoutStack() {
    mType = "layoutstack";
    const Vector4f yellow(1, 1, 0, 0.6f);
    mBack.color = {yellow, yellow * 0.8f};
}

Control* LayoutStack::clone() {
    return new LayoutStack;
}

void LayoutStack::load(xml::IteratorConst& it) {
    mLoading = true; // the children are placed once, at the end
    Control::load(it);
    mLoading = false;
    if (it->getValue("direction") == "horisontal")
        setHorisontal();
    else
        setVertical();
}

void LayoutStack::setVertical() {
    mDirection = 1;
    recalculate();
}

void LayoutStack::setHorisontal() {
    mDirection = 0;
    recalculate();
}

void LayoutStack::addControl(Control* control, int index) {
    Control::addControl(control, index);
    if (!mLoading)
        recalculate();
}

void LayoutStack::append(Control* control) {
    Control::addControl(control, -1);
}

void LayoutStack::deleteControl(unsigned int index) {
    Control::deleteControl(index);
    recalculate();
}

// Skips children that are already in position.
void LayoutStack::recalculate() {
    float position = 0;
    for (Control* child : mControls) {
        Box2 box = child->mArea.area;
        const float extent = mDirection == 1 ? box.getHeight() : box.getWidth();
        if (mDirection == 1) {
            box.y1 = position;
            box.y2 = position + extent;
        } else {
            box.x1 = position;
            box.x2 = position + extent;
        }
        if (box != child->mArea.area)
            child->setArea(box);
        position += extent;
    }
}

void LayoutStack::draw() {
    if (Render* render = getRender())
        look::fill(*render, mArea.clip, mBack.color);
    Control::draw();
}

} // namespace zentrak::panorama
