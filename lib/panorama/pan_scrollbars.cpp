#include "pan_scrollbars.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_look.h"
#include "xml_iterator.h"

#include <algorithm>
#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float WHEEL = -50.0f;       // pixels of content for one step upward
constexpr float LEAST_WINDOW = 80.0f; // pixels that a window keeps in both directions
constexpr float THUMB_INSET = 2.0f;   // pixels between a thumb and its track

// A thumb's position, limited to its travel in pixels; NaN is the start.
float clampPosition(float position, float travel) {
    return position > 0 ? std::max(std::min(position, travel), 0.0f) : 0.0f;
}

// How far the content is scrolled, in pixels. A track no longer than its thumb scrolls nothing.
float scrolled(float position, float travel, float overflow) {
    return travel > 0 ? position / travel * overflow : 0.0f;
}

// A step of NaN moves nothing.
void moveBy(float& position, float step) {
    if (!std::isnan(step))
        position += step;
}

} // namespace

Scrollbars::Scrollbars() {
    mType = "scrollbar";
    mMaximized = true;
    const Vector4f black(0, 0, 0, 1), white(1, 1, 1, 1), pushed(1, 1, 1, 0.71f);
    mBack.border = {black, black};
    mBack.color = {black, Vector4f(0.2f, 0.2f, 0.2f, 1)};
    mBack.pushed.second = white;
    mCaption.color = {white, white};
    mCaption.pushed = {pushed, pushed};
}

Control* Scrollbars::clone() {
    return new Scrollbars;
}

void Scrollbars::load(xml::IteratorConst& it) {
    Control::load(it);
    const std::string& direction = it->getValue("direction");
    if (direction == "horisontal")
        mVertical = false;
    if (direction == "vertical")
        mHorisontal = false;
    setArea(mArea.area); // the children get the room of the hidden bar
}

float Scrollbars::getTravelX() const {
    return mTrackHorisontal.getWidth() - mThumbSize;
}

float Scrollbars::getTravelY() const {
    return mTrackVertical.getHeight() - mThumbSize;
}

void Scrollbars::setArea(Box2 box) {
    Control::setArea(box);
    mTrackVertical = mTrackHorisontal = mArea.world;
    if (mVertical) {
        mTrackHorisontal.x2 -= mBarSize;
        mTrackVertical.x1 = mTrackVertical.x2 - mBarSize;
    }
    if (mHorisontal) {
        mTrackVertical.y2 -= mBarSize;
        mTrackHorisontal.y1 = mTrackHorisontal.y2 - mBarSize;
    }
    mCorner = Box2();
    if (mVertical && mHorisontal)
        mCorner = Box2(mTrackVertical.x1, mTrackHorisontal.y1, mTrackVertical.x2, mTrackHorisontal.y2);
    buildScrollbars();
}

void Scrollbars::buildChildArea() {
    Control::buildChildArea();
    if (mVertical)
        mChildArea.area.x2 -= mBarSize;
    if (mHorisontal)
        mChildArea.area.y2 -= mBarSize;
}

void Scrollbars::buildScrollbars() {
    const float travelX = getTravelX(), travelY = getTravelY();
    if (mVertical)
        mPosY = clampPosition(mPosY, travelY);
    if (mHorisontal)
        mPosX = clampPosition(mPosX, travelX);

    mThumbVertical = mTrackVertical;
    mThumbVertical.y1 += mPosY;
    mThumbVertical.y2 = mThumbVertical.y1 + mThumbSize;
    mThumbHorisontal = mTrackHorisontal;
    mThumbHorisontal.x1 += mPosX;
    mThumbHorisontal.x2 = mThumbHorisontal.x1 + mThumbSize;

    const Box2 occupied = getOccupiedArea();
    const float overflowX = std::max(occupied.getWidth() - mChildArea.world.getWidth(), 0.0f);
    const float overflowY = std::max(occupied.getHeight() - mChildArea.world.getHeight(), 0.0f);
    const Vector2f offset(scrolled(mPosX, travelX, overflowX), scrolled(mPosY, travelY, overflowY));
    for (Control* child : mControls)
        child->setOffset(offset);
}

bool Scrollbars::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || isHeld();
}

int Scrollbars::handleEvent(Event& event) {
    Alive alive(*this);
    const int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (event.type == "mousedown" && event.button == 0)
        press(event);
    else if (event.type == "mouseup")
        release();
    else if (event.type == "mousewheel" && result != 1)
        return turnWheel(event);
    else if (event.type == "mousemove" && isHeld())
        drag(event.mouseDelta);
    return result;
}

void Scrollbars::press(const Event& event) {
    const Vector2f position = event.mousePos;
    if (mVertical && isInside(mThumbVertical, position))
        mDragVertical = true;
    if (mHorisontal && isInside(mThumbHorisontal, position))
        mDragHorisontal = true;
    if (isInside(mCorner, position) && mParent && !mParent->getMaximized())
        mDragResize = true;
    if (isHeld())
        captureMouse(event);
}

void Scrollbars::release() {
    const bool held = mDragVertical || mDragHorisontal;
    onCaptureLost();
    releaseMouse();
    if (held)
        sendAction(ACTION_SCROLL, nullptr);
}

void Scrollbars::onCaptureLost() {
    mDragVertical = mDragHorisontal = mDragResize = false;
}

// Without content a step is infinite: the thumb goes to the end.
int Scrollbars::turnWheel(const Event& event) {
    const Box2 occupied = getOccupiedArea();
    if (!event.ctrl() && mVertical)
        moveBy(mPosY, event.wheelDelta * WHEEL * getTravelY() / occupied.getHeight());
    if (event.ctrl() && mHorisontal)
        moveBy(mPosX, event.wheelDelta * WHEEL * getTravelX() / occupied.getWidth());
    buildScrollbars();
    sendAction(ACTION_SCROLL, nullptr);
    return 1;
}

void Scrollbars::drag(Vector2f delta) {
    if (mDragVertical)
        moveBy(mPosY, -delta.y);
    if (mDragHorisontal)
        moveBy(mPosX, -delta.x);
    if (mDragResize)
        resizeWindow(delta);
    if (mDragVertical || mDragHorisontal) {
        buildScrollbars();
        sendAction(ACTION_SCROLL, nullptr); // last: the receiver may delete this
    }
}

void Scrollbars::resizeWindow(Vector2f delta) {
    if (!mParent || mParent->getType() != "window")
        return;
    Box2 box = mParent->mArea.area;
    box.x2 -= delta.x;
    box.y2 -= delta.y;
    if (box.getWidth() > LEAST_WINDOW && box.getHeight() > LEAST_WINDOW && std::isfinite(box.x2 + box.y2))
        mParent->setArea(box);
}

void Scrollbars::draw() {
    if (Render* render = getRender()) {
        if (mVertical)
            drawBar(*render, mTrackVertical, mThumbVertical, mDragVertical);
        if (mHorisontal)
            drawBar(*render, mTrackHorisontal, mThumbHorisontal, mDragHorisontal);
    }
    Control::draw();
}

void Scrollbars::drawBar(Render& render, const Box2& track, const Box2& thumb, bool held) {
    const Box2 shownTrack = cut(track, mArea.clip);
    look::fill(render, shownTrack, mBack.border);
    look::fill(render, shownTrack, mBack.color);
    look::fill(render, cut(look::shrunk(thumb, THUMB_INSET), mArea.clip),
               held ? mCaption.pushed : mCaption.color);
}

} // namespace zentrak::panorama
