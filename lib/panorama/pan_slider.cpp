#include "pan_slider.h"

#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float PAGE = 0.2f;   // of the track, for a press off the handle
constexpr float STEP = 0.1f;   // of the track, for a step of the wheel
constexpr float BEFORE = 2.0f; // pixels before the handle that also hit it
constexpr float BEHIND = 4.0f; // and after it
constexpr float GROOVE = 4.0f; // pixels across

// NaN is 0.
float limit(float position) {
    return position > 0 ? std::min(position, 1.0f) : 0;
}

} // namespace

Slider::Slider() : InputControl(false) {
    mType = "slider";
    setSunkLook(mBack);
    setPair(mBack.pushed, Vector4f(0.46f, 0.46f, 0.78f, 1.0f)); // the track up to the handle
    setRaisedLook(mCaption);
    setPair(mCaption.color, Vector4f(0.50f, 0.50f, 0.58f, 1.0f), Vector4f(0.38f, 0.38f, 0.45f, 1.0f));
    setPair(mCaption.highlight, Vector4f(0.68f, 0.68f, 0.78f, 1.0f), Vector4f(0.54f, 0.54f, 0.64f, 1.0f));
    setPair(mCaption.pushed, bright);
    setPair(mCaption.inactive, Vector4f(0.22f, 0.22f, 0.25f, 1.0f));
}

Control* Slider::clone() {
    return new Slider;
}

float Slider::getValue() {
    return float(double(mMin) + (double(mMax) - double(mMin)) * double(mPosition.get(true)));
}

void Slider::setValue(float value, bool immediately) {
    const double range = double(mMax) - double(mMin);
    mPosition.set(float((double(value) - double(mMin)) / range), immediately);
}

void Slider::load(xml::IteratorConst& it) {
    Control::load(it);
    float size = mSize;
    readNumber(it->getValue("size"), size);
    if (size >= 0)
        mSize = size;
    readNumber(it->getValue("min"), mMin);
    readNumber(it->getValue("max"), mMax);
    if (!it->getValue("percent").empty())
        mPosition.set(limit(float(toNumber(it->getValue("percent")))), true);
    if (!it->getValue("direction").empty())
        mDirection = it->getValue("direction") == "horisontal" ? 0 : 1;
}

float Slider::along(const Vector2f& place) const {
    return mDirection == 0 ? place.x : place.y;
}

float Slider::getStart() const {
    return mDirection == 0 ? mArea.world.x1 : mArea.world.y1;
}

float Slider::getLength() const {
    return mDirection == 0 ? mArea.world.getWidth() : mArea.world.getHeight();
}

float Slider::getHalf() const {
    return std::max(0.0f, std::min(mSize, getLength() * 0.5f));
}

float Slider::getHandle() {
    return (getLength() - 2 * getHalf()) * mPosition.get(false) + getStart();
}

Box2 Slider::getHandleBox() {
    const float handle = getHandle(), from = handle - BEFORE, to = handle + 2 * getHalf() + BEHIND;
    const Box2& world = mArea.world;
    return mDirection == 0 ? Box2(from, world.y1, to, world.y2) : Box2(world.x1, from, world.x2, to);
}

void Slider::moveTo(float position, bool immediately) {
    mPosition.set(limit(position), immediately);
    sendAction(ACTION_CHANGE, nullptr); // the receiver may delete this
}

int Slider::handleEvent(Event& event) {
    int result = 0;
    if (!hears(event, result))
        return result;
    if (event.type == "mouseup") {
        onCaptureLost();
        endPress();
        return result;
    }
    if (startsPress(event)) {
        if (mHoverAmount > 0) {
            mDragging = true;
        } else {
            const float position = mPosition.get(true);
            const float handle = (getLength() - 2 * getHalf()) * position + getStart() + getHalf();
            moveTo(along(event.mousePos) < handle ? position - PAGE : position + PAGE, false);
        }
        return 1;
    }
    if (event.type == "mousewheel" && mHover) { // inactive or not
        turn(event.wheelDelta);
        return 1;
    }
    const bool move = event.type == "mousemove";
    if (mDragging) {
        if (move)
            moveTo((along(event.mousePos) - getStart()) / getLength(), true);
        return move ? 1 : result;
    }
    if (move || event.type == "reset")
        mHoverAmount = move && isInside(getHandleBox(), event.mousePos) ? 1 : 0;
    return result;
}

void Slider::turn(float steps) {
    const float step = steps * STEP;
    moveTo(mPosition.get(true) + (mDirection == 0 ? step : -step), false);
}

void Slider::onCaptureLost() {
    mDragging = false;
    mHoverAmount = 0;
    InputControl::onCaptureLost();
}

void Slider::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 box = toPixels(mArea.world);
    const bool across = mDirection == 0;
    const float at = getHandle();
    const float from = toPixel(at), to = toPixel(at + 2 * getHalf());
    const float middle = std::floor((from + to) * 0.5f);

    // The groove, with the part up to the handle in colour, and the handle on it.
    const float start =
        across ? toPixel((box.y1 + box.y2 - GROOVE) * 0.5f) : toPixel((box.x1 + box.x2 - GROOVE) * 0.5f);
    const Box2 groove =
        across ? Box2(box.x1, start, box.x2, start + GROOVE) : Box2(start, box.y1, start + GROOVE, box.y2);
    fill(*render, groove, mInactive ? mBack.inactive : mBack.color);
    if (!mInactive) {
        const Box2 inside = shrunk(groove, 1);
        fill(*render,
             across ? Box2(inside.x1, inside.y1, middle, inside.y2)
                    : Box2(inside.x1, inside.y1, inside.x2, middle),
             mBack.pushed);
    }
    outline(*render, groove, mBack.border);

    const Box2 handle = across ? Box2(from, box.y1, to, box.y2) : Box2(box.x1, from, box.x2, to);
    fill(*render, handle, pick(mCaption, mInactive, mDragging, mHoverAmount > 0));
    outline(*render, handle, mCaption.border);
    Control::draw();
}

} // namespace zentrak::panorama
