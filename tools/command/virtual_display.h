// An invisible display, for a machine without one.
#pragma once

#include <sys/types.h>

namespace zentrak::command {

// Starts Xvfb, which must be installed, with a screen of this size and makes it the display of this process.
// Throws std::runtime_error if that fails. The destructor stops it.
class VirtualDisplay {
public:
    VirtualDisplay(int width, int height);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    static bool isNeeded(); // true if DISPLAY is not set

private:
    pid_t mServer;
};

} // namespace zentrak::command
