// A display that nobody sees, for a machine without one.
#pragma once

#include <sys/types.h>

namespace zentrak::command {

// Starts Xvfb, which has to be installed, with a screen of this size, and makes it the display of this
// process. Throws std::runtime_error where that fails. It ends with the object.
class VirtualDisplay {
public:
    VirtualDisplay(int width, int height);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    static bool isNeeded(); // no display is named in the environment

private:
    pid_t mServer;
};

} // namespace zentrak::command
