// The one window on GLFW 3, and its library. Whoever includes this needs to know nothing of GLFW 3.
#pragma once

#include <vector>

struct GLFWwindow;

namespace zentrak::glfw2 {

struct VideoMode {
    int width, height;    // pixels
    int red, green, blue; // bits

    bool operator==(const VideoMode&) const = default;
};

// Modes as they are told: ascending by the sum of their bits and then by area, each once.
std::vector<VideoMode> inOrder(std::vector<VideoMode> modes);

// What a window is asked to be.
struct WindowRequest {
    int width, height;         // pixels, 1 to 32767
    int red, green, blue;      // bits, a wish; 0 for the driver's own
    int alpha, depth, stencil; // bits, a wish
    bool fullscreen;           // on the primary monitor; as a window where there is none
    bool resizable;            // by the user
};

// What happens to the window. Called inside Window::poll and Window::wait only; may call everything in
// Window.
class WindowEvents {
public:
    virtual void onSize(int width, int height) = 0;
    virtual void onClose() = 0; // a request
    virtual void onRefresh() = 0;
    virtual void onFocus(bool focused) = 0;
    virtual void onIconify(bool iconified) = 0;
    virtual void onKey(int position, int scancode, bool down) = 0; // position -1 where it has no name
    virtual void onCharacter(unsigned character) = 0;              // after onKey of the key that typed it
    virtual void onButton(int button, bool down) = 0;              // left 0, right 1, middle 2
    virtual void onMouseMove(double x, double y) = 0;              // pixels
    virtual void onWheel(double steps) = 0;                        // up is positive

protected:
    ~WindowEvents() = default;
};

// All static: there is one. Every operation that acts on the window does nothing while none is open.
class Window {
public:
    static bool initialise(); // the library; whether it is
    static bool isInitialised();
    static void terminate(); // closes the window; put off until the end of a poll that is going on
    static void version(int& major, int& minor, int& revision);

    // Whether there is a window now, its context current; why not goes to the standard error stream. `events`
    // lives at least as long as the window.
    static bool open(const WindowRequest& request, WindowEvents& events);
    static void close();
    static bool isOpen();

    // Runs the events; both return at once inside one of them.
    static void poll();
    static void wait();

    static void setTitle(const char* title);
    static void setSize(int width, int height);
    static void getSize(int& width, int& height);
    static void getMouse(double& x, double& y);
    static bool isFocused();
    static bool isIconified();
    static void swapBuffers();
    static void swapInterval(int interval);

    static const char* keyName(int position, int scancode); // UTF-8, null for none; until the next call
    static std::vector<VideoMode> videoModes();             // of the primary monitor, inOrder
    static double time();                                   // seconds since initialise, 0 before
};

} // namespace zentrak::glfw2
