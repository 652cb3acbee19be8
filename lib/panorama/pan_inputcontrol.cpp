#include "pan_inputcontrol.h"

#include "pan_alive.h"

namespace zentrak::panorama {

InputControl::InputControl() = default;

bool InputControl::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mHeld;
}

bool InputControl::hears(Event& event, int& result) {
    Alive alive(*this);
    result = Control::handleEvent(event);
    return alive && mVisible;
}

bool InputControl::startsPress(const Event& event) {
    if (event.type != "mousedown" || event.button != 0 || !mHover || mInactive)
        return false;
    mHeld = true;
    mPress.start(*this, event);
    mKeys = true;
    return true;
}

bool InputControl::missedRelease(const Event& event) {
    if (!mHeld || !mPress.isLost(*this, event))
        return false;
    mHeld = false;
    return true;
}

bool InputControl::movesOn(const Event& event) {
    return mPress.movesOn(event);
}

bool InputControl::hasKeys() {
    if (!mKeys)
        return false;
    for (Control* control = this; control->getParent(); control = control->getParent()) {
        if (control->getParent()->getFocus() != control) {
            mKeys = false;
            return false;
        }
    }
    return !mInactive;
}

void InputControl::takeKeys() {
    mKeys = true;
    if (mParent)
        mParent->setFocus(this);
}

void InputControl::leaveKeys() {
    if (hasKeys() && mParent)
        mParent->setFocus(nullptr);
    mKeys = false;
}

} // namespace zentrak::panorama
