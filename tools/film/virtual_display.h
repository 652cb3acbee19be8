// An X display in memory, for machines without a screen.
#pragma once

#include <sys/types.h>

namespace zentrak::film {

// Starts Xvfb with a screen of the given size, and points DISPLAY at it, for as long as this lives. Drawing
// on it is done in software. Throws Exception if there is no Xvfb or it does not start.
class VirtualDisplay {
public:
    VirtualDisplay(int width, int height);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

private:
    pid_t mServer;
};

} // namespace zentrak::film
