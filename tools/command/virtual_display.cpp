#include "command/virtual_display.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zentrak::command {

namespace {

constexpr int START_SECONDS = 20;

// The server writes its number and a newline once it accepts connections.
std::string readNumber(int file) {
    std::string number;
    pollfd wait{file, POLLIN, 0};
    while (number.find('\n') == std::string::npos && poll(&wait, 1, START_SECONDS * 1000) > 0) {
        char part[32];
        const ssize_t count = read(file, part, sizeof part);
        if (count <= 0)
            break;
        number.append(part, size_t(count));
    }
    if (!number.empty() && number.back() == '\n')
        number.pop_back();
    return number;
}

} // namespace

VirtualDisplay::VirtualDisplay(int width, int height) : mServer(-1) {
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("there is no display, and none can be started");
    const std::string number = std::to_string(ends[1]);
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    mServer = fork();
    if (mServer == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        close(ends[0]);
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", screen.c_str(), "-nolisten",
               "tcp", "-noreset", "+extension", "GLX", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    const std::string display = readNumber(ends[0]);
    close(ends[0]);
    if (display.empty()) {
        if (mServer > 0) {
            kill(mServer, SIGTERM);
            waitpid(mServer, nullptr, 0);
        }
        throw std::runtime_error("there is no display, and Xvfb does not start: is it installed?");
    }
    setenv("DISPLAY", (":" + display).c_str(), 1);
}

VirtualDisplay::~VirtualDisplay() {
    kill(mServer, SIGTERM);
    while (waitpid(mServer, nullptr, 0) < 0 && errno == EINTR)
        ;
}

bool VirtualDisplay::isNeeded() {
    const char* const display = getenv("DISPLAY");
    return !display || !*display;
}

} // namespace zentrak::command
