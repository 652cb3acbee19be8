#include "kin_gui_effect.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_render.h"
#include "script_effect.h"

#include <algorithm>
#include <cmath>

namespace zentrak::kindler {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;
using panorama::Alive;
using panorama::Event;
using panorama::isInside;
using panorama::Render;

namespace {

constexpr float TOP = 2.0f;      // pixels below the top of the row
constexpr float BOTTOM = 27.0f;  // the same
constexpr float HANDLE = 10.0f;  // pixels of an end that are its handle
constexpr float FARTHEST = 1e7f; // pixels; what lies beyond is drawn there, and can't be reached either way

} // namespace

Effector::Effector() {
    mType = mName = "effect";
    const Vector4f color = hex2vec("6D6459");
    mBack.color = {color, color};
    mBack.highlight = {color * 1.4f, color * 1.4f};
    mBack.pushed = {color * 2.0f, color * 2.0f};
}

panorama::Control* Effector::clone() {
    return new Effector;
}

void Effector::load(xml::IteratorConst& it) {
    Control::load(it);
}

Box2 Effector::getBar(const script::Effect& effect) {
    const float start = SCALE * effect.mStart, end = SCALE * effect.mEnd;
    if (std::isnan(start) || std::isnan(end))
        return Box2(0, TOP, 0, BOTTOM);
    const float left = std::clamp(start, -FARTHEST, FARTHEST), right = std::clamp(end, -FARTHEST, FARTHEST);
    return Box2(left, TOP, std::max(left, right), BOTTOM);
}

bool Effector::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mHoverPart != PART_NONE || mDragPart != PART_NONE;
}

int Effector::handleEvent(Event& event) {
    Alive alive(*this);
    const int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (!mVisible)
        return 0;
    if (event.type == "mousedown" && mHoverPart != PART_NONE) {
        mDragPart = mHoverPart;
        captureMouse(event);
        return 1;
    }
    if (event.type == "mouseup") {
        mDragPart = PART_NONE;
        releaseMouse();
    }
    if (mDragPart != PART_NONE) {
        if (mEffect && event.type == "mousemove")
            drag(event.mouseDelta.x / -SCALE);
    } else if (event.type == "mousemove") {
        mHoverPart = findPart(event.mousePos);
        follow();
    } else if (event.type == "reset") {
        mHoverPart = PART_NONE;
    }
    return result;
}

void Effector::onCaptureLost() {
    mDragPart = mHoverPart = PART_NONE;
}

// On a bar shorter than its two handles the right one wins.
int Effector::findPart(const Vector2f& place) const {
    for (const int handle : {PART_RIGHT, PART_LEFT})
        if (isInside(getHandle(handle), place))
            return handle;
    return mHover ? PART_BAR : PART_NONE;
}

// The visible part of one end of the bar.
Box2 Effector::getHandle(int part) const {
    Box2 box = mArea.world;
    if (part == PART_LEFT)
        box.x2 = box.x1 + HANDLE;
    else
        box.x1 = box.x2 - HANDLE;
    return panorama::cut(box, mArea.clip);
}

// By a number of seconds.
void Effector::drag(float delta) {
    float& start = mEffect->mStart;
    float& end = mEffect->mEnd;
    if (mDragPart == PART_BAR) {
        const float moved = std::max(0.0f, start + delta);
        end += moved - start;
        start = moved;
    } else if (mDragPart == PART_LEFT) {
        start += delta;
        if (start < 0)
            start = 0;
        if (start > end - 1)
            start = end - 1;
    } else {
        end = std::max(start + 1, end + delta);
    }
    follow();
}

// The bar and its curves are placed where the script says.
void Effector::follow() {
    if (!mEffect)
        return;
    const Box2 bar = getBar(*mEffect);
    if (bar != mArea.area)
        setArea(bar);
    for (Control* follower : mFollowers) {
        Box2 box = follower->getArea();
        if (box.x1 == bar.x1 && box.x2 == bar.x2)
            continue;
        box.x1 = bar.x1;
        box.x2 = bar.x2;
        follower->setArea(box);
    }
}

void Effector::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const panorama::ColorPair& bar = mDragPart == PART_BAR    ? mBack.pushed
                                     : mHoverPart == PART_BAR ? mBack.highlight
                                                              : mBack.color;
    render->setColor(bar.first, bar.second);
    render->drawBox(mArea.clip, 0);
    if (mDragPart == PART_NONE && mHoverPart > PART_BAR) {
        render->setColor(mBack.highlight.first, mBack.highlight.second);
        render->drawBox(getHandle(mHoverPart), 0);
    }
    if (mDragPart > PART_BAR) {
        render->setColor(mBack.pushed.first, mBack.pushed.second);
        render->drawBox(getHandle(mDragPart), 0);
    }
    render->setColor(mBack.border.first, mBack.border.second);
    render->drawBorder(mArea.clip);
    Control::draw();
}

} // namespace zentrak::kindler
