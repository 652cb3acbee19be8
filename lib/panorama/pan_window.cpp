#include "pan_window.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_look.h"
#include "pan_tabcolors.h"
#include "xml_iterator.h"

#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;

namespace {

constexpr float TITLE = 18.0f; // pixels, the height of the bar
constexpr int STEPS = 100000;  // more than any screen is wide

// Moves a span by whole pixels until it does not start before `limit`; at once if that is too far away for
// steps of a pixel.
void keepBehind(float& begin, float& end, float limit) {
    for (int i = 0; i < STEPS && begin < limit; ++i) {
        begin += 1.0f;
        end += 1.0f;
    }
    if (begin < limit) {
        end += limit - begin;
        begin = limit;
    }
}

bool isFinite(const Box2& box) {
    return std::isfinite(box.x1) && std::isfinite(box.y1) && std::isfinite(box.x2) && std::isfinite(box.y2);
}

} // namespace

Window::Window() {
    mType = "window";
    setTabColors(*this);
}

Control* Window::clone() {
    return new Window;
}

void Window::load(xml::IteratorConst& it) {
    Control::load(it);
    const std::string& caption = it->getValue("caption");
    if (!caption.empty())
        setCaption(caption);
}

void Window::setArea(Box2 box) {
    mTitleArea.area = Box2(box.x1, box.y1, box.x2, box.y1 + TITLE);
    Control::setArea(box);
    buildArea(mTitleArea, false);
}

void Window::buildChildArea() {
    mChildArea.area = Box2(0, mTitleArea.area.getHeight(), mArea.area.getWidth(), mArea.area.getHeight());
}

bool Window::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mDragging;
}

int Window::handleEvent(Event& event) {
    Alive alive(*this);
    const int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (event.type == "mousedown" && event.button == 0 && mHover && isInside(mTitleArea.clip, event.mousePos))
        pressTitle(event);
    else if (event.type == "mouseup" && event.button == 0)
        mDragging = false;
    else if (event.type == "mousemove" && mDragging && !getMaximized())
        drag(event.mousePos);
    return result;
}

void Window::pressTitle(const Event& event) {
    mDragStart = event.mousePos;
    mDragArea = mArea.area;
    if (event.doubleClick) {
        setMaximized(!getMaximized());
        setArea(mArea.area);
        mDragging = false;
        return;
    }
    mDragging = true;
    captureMouse(event);
}

void Window::onCaptureLost() {
    mDragging = false;
}

void Window::drag(Vector2f position) {
    const Vector2f offset = getLocalOffset(false);
    const Vector2f move = position - mDragStart + offset;
    Box2 box = shifted(mDragArea, move);
    if (!isFinite(box))
        return;
    if (mParent && mParent->getType() != "workspace") {
        keepBehind(box.y1, box.y2, mParent->mChildArea.world.y1);
        keepBehind(box.x1, box.x2, mParent->mChildArea.world.x1);
    }
    setArea(shifted(box, Vector2f(-offset.x, -offset.y)));
}

void Window::draw() {
    if (Render* render = getRender()) {
        render->setClipArea(look::noClip);
        const bool focused = mParent && mParent->getFocus() == this;
        look::fill(*render, mTitleArea.clip, focused ? mCaption.highlight : mCaption.color);
        render->setClipArea(mTitleArea.clip);
        look::drawCentred(*render, mCaptionText, (focused ? mText.highlight : mText.color).first,
                          mTitleArea.world);
        render->setClipArea(look::noClip);
        look::outline(*render, mTitleArea.clip, mBack.border);
        look::fill(*render, mChildArea.clip, mBack.color);
        look::outline(*render, mArea.clip, mBack.border);
    }
    Control::draw();
}

} // namespace zentrak::panorama
