#include "pan_flow.h"

#include <algorithm>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector4f;

namespace {

constexpr float DEFAULT_SIZE = 10.0f; // pixels

// To the nearest pixel, as a cast to int does it; nothing where there is no such number.
float toPixels(float size) {
    return size < 1e9f && size > -1e9f ? float(int(size + 0.5f)) : 0.0f;
}

} // namespace

Flow::Flow() {
    mType = "flow";
    mRaiseOnFocus = false; // the children keep their order
    mBack.color = {Vector4f(1, 1, 1, 1), Vector4f(1, 0, 0, 1)};
}

Control* Flow::clone() {
    return new Flow;
}

void Flow::load(xml::IteratorConst& it) {
    Control::load(it);
    if (it->getValue("direction") == "horisontal") {
        setDirection(HORIZONTAL);
        setArea(mArea.area);
    }
}

// Lays the children out only once: twice would double the work with each level of nested flows.
void Flow::setArea(Box2 area) {
    layoutSelf(area);
    float fixed = 0, shares = 0;
    for (Control* child : mControls) {
        const float size = getSize(child);
        (size > 0 ? fixed : shares) += size > 0 ? size : -size;
    }
    const bool vertical = mDirection == VERTICAL;
    const float length = vertical ? area.getHeight() : area.getWidth();
    const float breadth = vertical ? area.getWidth() : area.getHeight();
    const float rest = std::max(0.0f, length - fixed);

    float place = 0;
    for (Control* child : mControls) {
        const float size = getSize(child);
        const float extent = size > 0 ? size : shares > 0 ? toPixels(-size * rest / shares) : 0.0f;
        child->setArea(vertical ? Box2(0, place, breadth, place + extent)
                                : Box2(place, 0, place + extent, breadth));
        place += extent;
    }
}

void Flow::addControl(Control* control, int index) {
    Control::addControl(control, index);
    if (control && control->getParent() == this)
        mSizes.emplace(control, DEFAULT_SIZE);
}

void Flow::addControl(Control* control) {
    addControl(control, -1);
}

void Flow::forget(Control* child) {
    mSizes.erase(child);
}

void Flow::deleteControls() {
    mSizes.clear();
    Control::deleteControls();
}

void Flow::setSize(Control* control, float size) {
    mSizes[control] = size;
}

void Flow::setPercent(Control* control, float percent) {
    mSizes[control] = -percent;
}

float Flow::getSize(Control* control) {
    const auto found = mSizes.find(control);
    return found == mSizes.end() ? 0 : found->second;
}

void Flow::setDirection(Direction direction) {
    mDirection = direction;
}

} // namespace zentrak::panorama
