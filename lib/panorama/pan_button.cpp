#include "pan_button.h"

#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;

namespace {

constexpr float MARGIN = 4.0f; // pixels left and right of the caption

} // namespace

Button::Button() : InputControl(false) {
    mType = "button";
    mCaptionText = "button";
    setRaisedLook(mBack);
    setTextLook(mText);
}

Control* Button::clone() {
    return new Button;
}

void Button::load(xml::IteratorConst& it) {
    Control::load(it);
    if (!it->getValue("caption").empty())
        setCaption(it->getValue("caption"));
    if (!it->getValue("toggled").empty())
        toggleMode = it->getValue("toggled") == "true";
}

int Button::handleEvent(Event& event) {
    int result = 0;
    if (!hears(event, result))
        return result;
    if (startsPress(event)) {
        pushed = true;
        result = 1;
        if (!toggleMode)
            sendAction(ACTION_PRESS, nullptr);
    } else if (event.type == "mouseup" && event.button == 0) {
        const bool on = mHover && pushed;
        pushed = false;
        endPress();
        if (on) {
            result = 1;
            if (toggleMode)
                toggled = !toggled;
            sendAction(toggleMode && toggled ? ACTION_PRESS : ACTION_RELEASE, nullptr);
        }
    }
    return result;
}

void Button::onCaptureLost() {
    pushed = false;
    InputControl::onCaptureLost();
}

void Button::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 box = toPixels(mArea.world);
    const bool in = toggled || (pushed && mHover);
    fill(*render, box, pick(mBack, mInactive, in, mHover));
    outline(*render, box, mBack.border);
    render->setColor(pick(mText, mInactive, in, mHover).first, NO_COLOR);
    mLine.set(mCaptionText);
    mLine.draw(*render, Box2(box.x1 + MARGIN, box.y1, box.x2 - MARGIN, box.y2), TextLine::MIDDLE,
               TextLine::MIDDLE);
    Control::draw();
}

} // namespace zentrak::panorama
