// A window manager that never shows a window, for as long as a command runs:
//   never_maps COMMAND [ARGUMENT...]
// It takes every request to map a window, touches a property of the window, so that its owner gets an event,
// and does nothing else. The exit status is the command's; 125 if the display has a window manager already.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <cstdio>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int onError(Display*, XErrorEvent* error) {
    if (error->error_code != BadAccess)
        return 0; // a window that is gone
    fputs("never_maps: there is another window manager\n", stderr);
    _exit(125);
}

void refuse(Display* display) {
    const unsigned char byte = 1;
    while (XPending(display)) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == MapRequest)
            XChangeProperty(display, event.xmaprequest.window, XInternAtom(display, "NEVER_MAPPED", False),
                            XA_CARDINAL, 8, PropModeReplace, &byte, 1);
    }
    XFlush(display);
}

} // namespace

int main(int count, char** arguments) {
    Display* const display = XOpenDisplay(nullptr);
    if (!display || count < 2)
        return 125;
    XSetErrorHandler(onError);
    XSelectInput(display, DefaultRootWindow(display), SubstructureRedirectMask);
    XSync(display, False);

    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments[1], arguments + 1);
        _exit(127);
    }
    pollfd files[2] = {{ConnectionNumber(display), POLLIN, 0},
                       {int(syscall(SYS_pidfd_open, child, 0)), POLLIN, 0}};
    while (poll(files, 2, -1) >= 0 && !files[1].revents)
        refuse(display);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
