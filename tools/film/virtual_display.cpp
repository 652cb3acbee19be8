#include "film/virtual_display.h"

#include "film/child.h"
#include "ztk_system.h"

#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace zentrak::film {

VirtualDisplay::VirtualDisplay(int width, int height) {
    int ends[2];
    if (pipe(ends) != 0)
        throw Exception("zentrak-film: no pipe to Xvfb");
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    const std::string number = std::to_string(ends[1]);
    mServer = startChild({"Xvfb", "-displayfd", number, "-screen", "0", screen, "-nolisten", "tcp",
                          "-noreset", "+extension", "GLX", "+extension", "RANDR"},
                         -1, true, ends[0]);
    ::close(ends[1]);

    std::string display = ":";
    for (char c; read(ends[0], &c, 1) == 1 && c != '\n';)
        display += c;
    ::close(ends[0]);
    if (display == ":") {
        waitForChild(mServer);
        throw Exception("zentrak-film: there is no display, and Xvfb does not start: is the package xvfb "
                        "installed?");
    }
    setenv("DISPLAY", display.c_str(), 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
}

VirtualDisplay::~VirtualDisplay() {
    kill(mServer, SIGTERM);
    waitForChild(mServer);
}

} // namespace zentrak::film
