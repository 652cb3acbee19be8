#include "glfw2.h"

#include "glfw2_input.h"
#include "glfw2_keys.h"
#include "glfw2_window.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <thread>
#include <type_traits>
#include <utility>

namespace zentrak::glfw2 {
namespace {

constexpr int MaxSize = 32767;  // of an X window, pixels
constexpr int NoScancode = 512; // keys unknown to GLFW 3 are numbered from here, by scancode

struct Callbacks {
    GLFWwindowsizefun size = nullptr;
    GLFWwindowclosefun close = nullptr;
    GLFWwindowrefreshfun refresh = nullptr;
    GLFWkeyfun key = nullptr;
    GLFWcharfun character = nullptr;
    GLFWmousebuttonfun button = nullptr;
    GLFWmouseposfun mouse = nullptr;
    GLFWmousewheelfun wheel = nullptr;
};

// The state of an open window; each starts fresh.
struct Session {
    Callbacks callbacks;
    Input input;
    int width = 0; // pixels
    int height = 0;
    int mouseX = 0; // whole pixels
    int mouseY = 0;
    double wheelSum = 0.0; // steps
    int wheel = 0;         // whole steps, as reported
    bool focused = false;
    bool iconified = false;
    bool noResize = false;
    bool autoPoll = true;
};

Session session;
unsigned sessions = 0; // opened so far
bool noResizeHint = false;
double timeOffset = 0.0;   // seconds, added to GLFW 3's time
std::exception_ptr thrown; // by a callback; rethrown after the poll

// Calls a callback, unless it is null or an earlier one in this poll has thrown. Returns 0 if it was not
// called.
template <typename Callback, typename... Arguments>
int call(Callback callback, Arguments... arguments) {
    if (!callback || thrown)
        return 0;
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Callback, Arguments...>>)
            callback(arguments...);
        else
            return callback(arguments...);
    } catch (...) {
        thrown = std::current_exception(); // GLFW 3 is C: exceptions must not pass through it
    }
    return 0;
}

// Reports input in order. A callback may close the window and open another, which must not get the rest.
void report(const InputEvents& events) {
    const unsigned started = sessions;
    for (const InputEvent& event : events) {
        if (!Window::isOpen() || sessions != started)
            return;
        switch (event.kind) {
        case InputEvent::Key:
            call(session.callbacks.key, event.code, event.action);
            break;
        case InputEvent::Char:
            call(session.callbacks.character, event.code, event.action);
            break;
        case InputEvent::Button:
            call(session.callbacks.button, event.code, event.action);
            break;
        }
    }
}

int whole(double value) {
    return int(std::clamp(std::floor(value), -2147483648.0, 2147483647.0));
}

// Translates GLFW 3 events to those of GLFW 2.
class Events final : public WindowEvents {
    void onSize(int width, int height) override {
        session.width = width;
        session.height = height;
        call(session.callbacks.size, width, height);
    }

    // Without a callback a close request closes the window; a callback that throws refuses it.
    void onClose() override {
        const bool close = session.callbacks.close ? call(session.callbacks.close) != 0 : !thrown;
        if (close)
            glfwCloseWindow();
    }

    void onRefresh() override { call(session.callbacks.refresh); }
    void onIconify(bool iconified) override { session.iconified = iconified; }

    // Keys and buttons that are down when the focus is lost are released here, because their release goes to
    // another window. GLFW 3 does so too, but not for keys that it has no name for.
    void onFocus(bool focused) override {
        session.focused = focused;
        if (focused)
            return;
        const unsigned started = sessions;
        while (Window::isOpen() && sessions == started) {
            const InputEvents events = session.input.releaseAny();
            if (events.empty())
                return;
            report(events);
        }
    }

    void onKey(int position, int scancode, bool down) override {
        const int key = position >= 0 ? position : NoScancode + scancode;
        report(down ? session.input.press(key, keyCode(position, Window::keyName(position, scancode)))
                    : session.input.release(key));
    }

    void onCharacter(unsigned character) override { report(session.input.character(character)); }
    void onButton(int button, bool down) override { report(session.input.button(button, down)); }

    void onMouseMove(double x, double y) override {
        const int wholeX = whole(x), wholeY = whole(y);
        if (wholeX == session.mouseX && wholeY == session.mouseY)
            return;
        session.mouseX = wholeX;
        session.mouseY = wholeY;
        call(session.callbacks.mouse, wholeX, wholeY);
    }

    void onWheel(double steps) override {
        session.wheelSum += steps;
        const int position = whole(session.wheelSum);
        if (position == session.wheel)
            return;
        session.wheel = position;
        call(session.callbacks.wheel, position);
    }
};

Events events;

void rethrow() {
    if (thrown)
        std::rethrow_exception(std::exchange(thrown, nullptr));
}

// glfwEnable and glfwDisable.
void set(int token, bool enable) {
    if (!Window::isOpen())
        return;
    switch (token) {
    case GLFW_KEY_REPEAT:
        session.input.mKeyRepeat = enable;
        break;
    case GLFW_AUTO_POLL_EVENTS:
        session.autoPoll = enable;
        break;
    default:
        break;
    }
}

// Stores a callback of the open window. Returns true if there is a window and the callback isn't null.
template <typename Callback>
bool setCallback(Callback& slot, Callback callback) {
    if (!Window::isOpen())
        return false;
    slot = callback;
    return callback != nullptr;
}

bool isSize(int pixels) {
    return pixels >= 1 && pixels <= MaxSize;
}

} // namespace

int glfwInit() {
    const bool before = Window::isInitialised();
    if (!Window::initialise())
        return 0;
    if (!before)
        timeOffset = 0.0;
    return 1;
}

void glfwTerminate() {
    glfwCloseWindow();
    Window::terminate();
}

void glfwGetVersion(int* major, int* minor, int* rev) {
    int found[3] = {0, 0, 0};
    Window::version(found[0], found[1], found[2]);
    if (major)
        *major = found[0];
    if (minor)
        *minor = found[1];
    if (rev)
        *rev = found[2];
}

int glfwOpenWindow(int width, int height, int redbits, int greenbits, int bluebits, int alphabits,
                   int depthbits, int stencilbits, int mode) {
    const bool noResize = std::exchange(noResizeHint, false);
    if (Window::isOpen() || width > MaxSize || height > MaxSize ||
        (mode != GLFW_WINDOW && mode != GLFW_FULLSCREEN))
        return 0;
    if (std::min({redbits, greenbits, bluebits, alphabits, depthbits, stencilbits}) < 0)
        return 0;
    if (width <= 0 && height <= 0) {
        width = 640;
        height = 480;
    } else if (width <= 0) {
        width = std::min(height * 4 / 3, MaxSize);
    } else if (height <= 0) {
        height = std::max(width * 3 / 4, 1);
    }
    const WindowRequest request = {.width = width,
                                   .height = height,
                                   .red = redbits,
                                   .green = greenbits,
                                   .blue = bluebits,
                                   .alpha = alphabits,
                                   .depth = depthbits,
                                   .stencil = stencilbits,
                                   .fullscreen = mode == GLFW_FULLSCREEN,
                                   .resizable = !noResize};
    if (!Window::open(request, events))
        return 0;

    ++sessions;
    session = Session{};
    double mouseX = 0.0, mouseY = 0.0;
    Window::getSize(session.width, session.height);
    Window::getMouse(mouseX, mouseY);
    session.mouseX = whole(mouseX);
    session.mouseY = whole(mouseY);
    session.focused = Window::isFocused();
    session.iconified = Window::isIconified();
    session.noResize = noResize;
    return 1;
}

void glfwOpenWindowHint(int target, int hint) {
    if (target == GLFW_WINDOW_NO_RESIZE)
        noResizeHint = hint != 0;
}

void glfwCloseWindow() {
    if (!Window::isOpen())
        return;
    Window::close();
    session = Session{};
}

void glfwSetWindowTitle(const char* title) {
    if (title)
        Window::setTitle(title);
}

void glfwGetWindowSize(int* width, int* height) {
    if (width)
        *width = session.width;
    if (height)
        *height = session.height;
}

void glfwSetWindowSize(int width, int height) {
    if (isSize(width) && isSize(height))
        Window::setSize(width, height);
}

int glfwGetWindowParam(int param) {
    switch (param) {
    case GLFW_OPENED:
        return Window::isOpen();
    case GLFW_ACTIVE:
        return session.focused;
    case GLFW_ICONIFIED:
        return session.iconified;
    case GLFW_WINDOW_NO_RESIZE:
        return session.noResize;
    default:
        return 0;
    }
}

void glfwSwapBuffers() {
    Window::swapBuffers();
    if (session.autoPoll)
        glfwPollEvents();
}

void glfwSwapInterval(int interval) {
    Window::swapInterval(std::max(interval, 0));
}

void glfwSetWindowSizeCallback(GLFWwindowsizefun callback) {
    if (setCallback(session.callbacks.size, callback))
        callback(session.width, session.height);
}

void glfwSetWindowCloseCallback(GLFWwindowclosefun callback) {
    setCallback(session.callbacks.close, callback);
}

void glfwSetWindowRefreshCallback(GLFWwindowrefreshfun callback) {
    setCallback(session.callbacks.refresh, callback);
}

void glfwSetKeyCallback(GLFWkeyfun callback) {
    setCallback(session.callbacks.key, callback);
}
void glfwSetCharCallback(GLFWcharfun callback) {
    setCallback(session.callbacks.character, callback);
}
void glfwSetMouseButtonCallback(GLFWmousebuttonfun callback) {
    setCallback(session.callbacks.button, callback);
}

void glfwSetMousePosCallback(GLFWmouseposfun callback) {
    if (setCallback(session.callbacks.mouse, callback))
        callback(session.mouseX, session.mouseY);
}

void glfwSetMouseWheelCallback(GLFWmousewheelfun callback) {
    if (setCallback(session.callbacks.wheel, callback))
        callback(session.wheel);
}

void glfwPollEvents() {
    Window::poll();
    rethrow();
}

void glfwWaitEvents() {
    Window::wait();
    rethrow();
}

void glfwEnable(int token) {
    set(token, true);
}
void glfwDisable(int token) {
    set(token, false);
}

int glfwGetVideoModes(GLFWvidmode* list, int maxcount) {
    if (!list || maxcount <= 0)
        return 0;
    const std::vector<VideoMode> modes = Window::videoModes();
    const int count = std::min(maxcount, int(modes.size()));
    for (int i = 0; i < count; ++i) {
        const VideoMode& mode = modes[size_t(i)];
        list[i] = {mode.width, mode.height, mode.red, mode.blue, mode.green};
    }
    return count;
}

double glfwGetTime() {
    return Window::isInitialised() ? Window::time() + timeOffset : 0.0;
}

void glfwSetTime(double time) {
    if (Window::isInitialised() && std::isfinite(time))
        timeOffset = time - Window::time();
}

void glfwSleep(double time) {
    if (!std::isfinite(time) || time <= 0.0)
        return;
    constexpr double Longest = 1e9; // seconds, about 30 years: the range of the clock
    std::this_thread::sleep_for(std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(std::min(time, Longest))));
}

} // namespace zentrak::glfw2
