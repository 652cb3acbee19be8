#include "glfw2_window.h"

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <tuple>
#include <utility>

// From GLFW/glfw3native.h, which would also require the RandR headers.
extern "C" {
Display* glfwGetX11Display();
::Window glfwGetX11Window(GLFWwindow*);
}

namespace zentrak::glfw2 {
namespace {

constexpr double LONGEST_WAIT = 5.0; // seconds for the window manager to show a window

GLFWwindow* window = nullptr; // the open one
bool initialised = false;
bool polling = false; // inside an event handler, where GLFW 3 must neither destroy a window nor terminate
bool terminateDue = false; // at the end of the poll
char lastError[256];       // of GLFW 3

// Windows closed inside an event handler; GLFW 3 needs them until the end of the poll.
std::vector<GLFWwindow*> retired;

void onError(int, const char* description) {
    std::snprintf(lastError, sizeof lastError, "%s", description);
}

void report(const char* what) {
    std::fprintf(stderr, "glfw2: %s: %s\n", what, lastError);
}

WindowEvents* eventsOf(GLFWwindow* of) {
    return static_cast<WindowEvents*>(glfwGetWindowUserPointer(of));
}

void onSize(GLFWwindow* of, int width, int height) {
    eventsOf(of)->onSize(width, height);
}
void onClose(GLFWwindow* of) {
    eventsOf(of)->onClose();
}
void onRefresh(GLFWwindow* of) {
    eventsOf(of)->onRefresh();
}
void onFocus(GLFWwindow* of, int focused) {
    eventsOf(of)->onFocus(focused != 0);
}
void onIconify(GLFWwindow* of, int iconified) {
    eventsOf(of)->onIconify(iconified != 0);
}
void onCharacter(GLFWwindow* of, unsigned character) {
    eventsOf(of)->onCharacter(character);
}
void onMouseMove(GLFWwindow* of, double x, double y) {
    eventsOf(of)->onMouseMove(x, y);
}
void onWheel(GLFWwindow* of, double, double steps) {
    eventsOf(of)->onWheel(steps);
}
void onButton(GLFWwindow* of, int button, int action, int) {
    eventsOf(of)->onButton(button, action == GLFW_PRESS);
}
void onKey(GLFWwindow* of, int position, int scancode, int action, int) {
    eventsOf(of)->onKey(position, scancode, action != GLFW_RELEASE);
}

void connect(GLFWwindow* of, bool on) {
    glfwSetWindowSizeCallback(of, on ? onSize : nullptr);
    glfwSetWindowCloseCallback(of, on ? onClose : nullptr);
    glfwSetWindowRefreshCallback(of, on ? onRefresh : nullptr);
    glfwSetWindowFocusCallback(of, on ? onFocus : nullptr);
    glfwSetWindowIconifyCallback(of, on ? onIconify : nullptr);
    glfwSetKeyCallback(of, on ? onKey : nullptr);
    glfwSetCharCallback(of, on ? onCharacter : nullptr);
    glfwSetMouseButtonCallback(of, on ? onButton : nullptr);
    glfwSetCursorPosCallback(of, on ? onMouseMove : nullptr);
    glfwSetScrollCallback(of, on ? onWheel : nullptr);
}

// Hides a window, and frees its monitor and the context; it is destroyed later.
void retire(GLFWwindow* old) {
    connect(old, false);
    glfwMakeContextCurrent(nullptr);
    if (glfwGetWindowMonitor(old)) {
        int width = 0, height = 0;
        glfwGetWindowSize(old, &width, &height);
        glfwSetWindowMonitor(old, nullptr, 0, 0, width, height, GLFW_DONT_CARE);
    }
    glfwHideWindow(old);
    retired.push_back(old);
}

// Without this, a program that ends by exit() would leave the monitor in another video mode.
void terminateAtExit() {
    if (initialised || terminateDue)
        glfwTerminate();
    initialised = terminateDue = false;
    window = nullptr;
}

// Processes events, then does what they deferred.
void run(void (*process)()) {
    if (!window || polling)
        return;
    polling = true;
    process();
    polling = false;
    for (GLFWwindow* old : retired)
        glfwDestroyWindow(old);
    retired.clear();
    if (terminateDue) {
        terminateDue = false;
        glfwTerminate();
    }
}

// Shows a new window with the focus and waits for the window manager to map it, with a timeout:
// glfwCreateWindow and glfwShowWindow would spin forever if it never does while other events arrive. Returns
// whether the window is visible.
bool show(GLFWwindow* of, bool fullscreen) {
    Display* const display = glfwGetX11Display();
    if (fullscreen) { // from the start
        const Atom state = XInternAtom(display, "_NET_WM_STATE_FULLSCREEN", False);
        XChangeProperty(display, glfwGetX11Window(of), XInternAtom(display, "_NET_WM_STATE", False), XA_ATOM,
                        32, PropModeReplace, reinterpret_cast<const unsigned char*>(&state), 1);
    }
    XMapWindow(display, glfwGetX11Window(of));
    const double start = glfwGetTime();
    while (!glfwGetWindowAttrib(of, GLFW_VISIBLE)) { // asks the server, so no event is lost
        if (glfwGetTime() - start > LONGEST_WAIT)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    glfwFocusWindow(of);
    return true;
}

// Sets the hints of a request. The defaults are right for the rest: double buffering and the newest
// compatibility profile.
void setHints(const WindowRequest& request) {
    const auto orDefault = [](int bits) { return bits > 0 ? bits : 8; };
    glfwDefaultWindowHints();
    glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
    glfwWindowHint(GLFW_RESIZABLE, request.resizable);
    glfwWindowHint(GLFW_RED_BITS, orDefault(request.red));
    glfwWindowHint(GLFW_GREEN_BITS, orDefault(request.green));
    glfwWindowHint(GLFW_BLUE_BITS, orDefault(request.blue));
    glfwWindowHint(GLFW_ALPHA_BITS, request.alpha);
    glfwWindowHint(GLFW_DEPTH_BITS, request.depth);
    glfwWindowHint(GLFW_STENCIL_BITS, request.stencil);
}

} // namespace

// GLFW 3 lists a mode once per refresh rate.
std::vector<VideoMode> inOrder(std::vector<VideoMode> modes) {
    const auto rank = [](const VideoMode& mode) {
        return std::tuple(mode.red + mode.green + mode.blue, mode.width * mode.height, mode.width, mode.red,
                          mode.green);
    };
    std::sort(modes.begin(), modes.end(),
              [&rank](const VideoMode& a, const VideoMode& b) { return rank(a) < rank(b); });
    modes.erase(std::unique(modes.begin(), modes.end()), modes.end());
    return modes;
}

bool Window::initialise() {
    if (initialised)
        return true;
    if (terminateDue) { // the library is still initialised
        terminateDue = false;
        glfwSetTime(0.0);
        return initialised = true;
    }
    glfwSetErrorCallback(onError);
#ifdef GLFW_PLATFORM_X11
    // Since 3.4 GLFW chooses the platform at run time, but GLEW only finds contexts through GLX.
    glfwInitHint(GLFW_PLATFORM, GLFW_PLATFORM_X11);
#endif
    initialised = glfwInit() == GLFW_TRUE;
    if (!initialised)
        report("no display");
    return initialised;
}

bool Window::isInitialised() {
    return initialised;
}

void Window::terminate() {
    if (!initialised)
        return;
    close();
    initialised = false;
    if (polling)
        terminateDue = true;
    else
        glfwTerminate();
}

void Window::version(int& major, int& minor, int& revision) {
    glfwGetVersion(&major, &minor, &revision);
}

bool Window::open(const WindowRequest& request, WindowEvents& events) {
    if (!initialised || window)
        return false;
    setHints(request);
    GLFWmonitor* const monitor = request.fullscreen ? glfwGetPrimaryMonitor() : nullptr;
    GLFWwindow* const opened =
        glfwCreateWindow(request.width, request.height, "GLFW Window", nullptr, nullptr);
    if (!opened) {
        report("no window");
        return false;
    }
    glfwMakeContextCurrent(opened);
    if (glfwGetCurrentContext() != opened) {
        report("no context");
        glfwDestroyWindow(opened);
        return false;
    }
    if (!show(opened, monitor))
        std::fprintf(stderr, "glfw2: the window manager has not shown the window yet: going on without it\n");
    else if (monitor)
        glfwSetWindowMonitor(opened, monitor, 0, 0, request.width, request.height, GLFW_DONT_CARE);
    glfwSetWindowUserPointer(opened, &events);
    connect(opened, true);
    if (monitor)
        glfwSetInputMode(opened, GLFW_CURSOR, GLFW_CURSOR_HIDDEN);
    window = opened;
    // Registered after the OpenGL driver was loaded, so that it runs before the driver's own exit handlers.
    [[maybe_unused]] static const int registered = std::atexit(terminateAtExit);
    return true;
}

void Window::close() {
    if (!window)
        return;
    GLFWwindow* const old = window;
    window = nullptr;
    if (polling)
        retire(old);
    else
        glfwDestroyWindow(old);
}

bool Window::isOpen() {
    return window != nullptr;
}
void Window::poll() {
    run(glfwPollEvents);
}
void Window::wait() {
    run(glfwWaitEvents);
}

void Window::setTitle(const char* title) {
    if (window)
        glfwSetWindowTitle(window, title);
}

void Window::setSize(int width, int height) {
    if (window)
        glfwSetWindowSize(window, width, height);
}

void Window::getSize(int& width, int& height) {
    width = height = 0;
    if (window)
        glfwGetWindowSize(window, &width, &height);
}

void Window::getMouse(double& x, double& y) {
    x = y = 0.0;
    if (window)
        glfwGetCursorPos(window, &x, &y);
}

bool Window::isFocused() {
    return window && glfwGetWindowAttrib(window, GLFW_FOCUSED);
}
bool Window::isIconified() {
    return window && glfwGetWindowAttrib(window, GLFW_ICONIFIED);
}

void Window::swapBuffers() {
    if (window)
        glfwSwapBuffers(window);
}

void Window::swapInterval(int interval) {
    if (window)
        glfwSwapInterval(interval);
}

const char* Window::keyName(int position, int scancode) {
    return initialised ? glfwGetKeyName(position, scancode) : nullptr;
}

std::vector<VideoMode> Window::videoModes() {
    std::vector<VideoMode> modes;
    GLFWmonitor* const monitor = initialised ? glfwGetPrimaryMonitor() : nullptr;
    int count = 0;
    const GLFWvidmode* found = monitor ? glfwGetVideoModes(monitor, &count) : nullptr;
    for (int i = 0; found && i < count; ++i)
        modes.push_back(
            {found[i].width, found[i].height, found[i].redBits, found[i].greenBits, found[i].blueBits});
    return inOrder(std::move(modes));
}

double Window::time() {
    return initialised ? glfwGetTime() : 0.0;
}

} // namespace zentrak::glfw2
