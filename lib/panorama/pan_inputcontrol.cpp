#include "pan_inputcontrol.h"

#include "pan_alive.h"
#include "pan_workspace.h"

namespace zentrak::panorama {

namespace {

// How often the left button has been released in the window that the control stands in.
unsigned countReleases(Control& control) {
    Workspace* root = dynamic_cast<Workspace*>(control.getRoot());
    return root ? root->getReleases() : 0;
}

} // namespace

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
    mPlaced = false;
    mReleases = countReleases(*this);
    mKeys = true;
    return true;
}

bool InputControl::missedRelease(const Event& event) {
    if (!mHeld || event.type == "mouseup" || countReleases(*this) == mReleases)
        return false;
    mHeld = false;
    return true;
}

bool InputControl::movesOn(const Event& event) {
    if (event.type != "mousemove" && event.type != "reset")
        return false;
    if (mPlaced && mPlace == event.mousePos)
        return false;
    mPlaced = true;
    mPlace = event.mousePos;
    return true;
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
