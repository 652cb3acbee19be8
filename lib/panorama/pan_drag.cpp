#include "pan_drag.h"

#include "pan_control.h"
#include "pan_workspace.h"

namespace zentrak::panorama {

namespace {

// How often the left button has been released in the window that the control stands in.
unsigned countReleases(Control& control) {
    Workspace* const root = dynamic_cast<Workspace*>(control.getRoot());
    return root ? root->getReleases() : 0;
}

} // namespace

void Drag::start(Control& control, const Event& event) {
    mReleases = countReleases(control);
    mPlace = event.mousePos;
    mTold = false;
}

bool Drag::isLost(Control& control, const Event& event) const {
    return event.type != "mouseup" && countReleases(control) != mReleases;
}

bool Drag::movesOn(const Event& event) {
    const bool known = event.mousePos == mPlace;
    if (event.type == "reset") {
        if (known)
            return false;
        mPlace = event.mousePos;
        mTold = true;
        return true;
    }
    if (event.type != "mousemove" || (known && mTold))
        return false;
    mPlace = event.mousePos;
    mTold = false;
    return true;
}

} // namespace zentrak::panorama
