// Which context an OpenGL name belongs to.
#pragma once

#include "dis_display.h"

namespace zentrak::display {

// The opening of a window that is current (DisplayGL::getContext); 0 while there is none. Names made under
// another number are gone, and may by now belong to something else: they are never deleted.
inline int currentContext() {
    const DisplayGL* display = DisplayGL::currentDisplay;
    return display ? display->getContext() : 0;
}

inline bool contextIsCurrent(int context) {
    return context != 0 && context == currentContext();
}

} // namespace zentrak::display
