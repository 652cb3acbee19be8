#include "pan_inputcontrol.h"

#include "dis_key.h"
#include "pan_alive.h"

namespace zentrak::panorama {

InputControl::InputControl(bool usesKeys) : mUsesKeys(usesKeys) {}

bool InputControl::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mHeld;
}

bool InputControl::hears(Event& event, int& result) {
    Alive alive(*this);
    result = Control::handleEvent(event);
    if (!alive || !mVisible)
        return false;
    if (!event.isKey() || !hasKeys())
        return true;
    const bool down = event.type == "keydown";
    result = !(down && event.key == display::KEY_TAB);
    if (!down || event.key != display::KEY_ESC)
        return true;
    leaveKeys();
    return false;
}

bool InputControl::startsPress(const Event& event) {
    if (event.type != "mousedown" || event.button != 0 || !mHover || mInactive)
        return false;
    mHeld = true;
    captureMouse(event);
    mKeys = mUsesKeys;
    return true;
}

void InputControl::endPress() {
    mHeld = false;
    releaseMouse();
}

void InputControl::onCaptureLost() {
    mHeld = false;
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
    mKeys = mUsesKeys;
    if (mParent)
        mParent->setFocus(this);
}

void InputControl::leaveKeys() {
    if (hasKeys() && mParent)
        mParent->setFocus(nullptr);
    mKeys = false;
}

} // namespace zentrak::panorama
