// A release over another control is not told to the one that was pressed: this tells it.
#pragma once

#include "pan_workspace.h"

namespace zentrak::panorama {

// How often the left button has been released in the window that the control stands in.
inline unsigned countReleases(Control& control) {
    Workspace* const root = dynamic_cast<Workspace*>(control.getRoot());
    return root ? root->getReleases() : 0;
}

} // namespace zentrak::panorama
