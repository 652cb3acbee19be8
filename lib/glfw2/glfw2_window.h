// The window and library functions on GLFW 3, for callers that know nothing of GLFW 3.
#pragma once

#include <vector>

struct GLFWwindow;

namespace zentrak::glfw2 {

struct VideoMode {
    int width, height;    // pixels
    int red, green, blue; // bits

    bool operator==(const VideoMode&) const = default;
};

// Sorted as glfwGetVideoModes reports them: ascending by total bits, then by area, without duplicates.
std::vector<VideoMode> inOrder(std::vector<VideoMode> modes);

struct WindowRequest {
    int width, height;         // pixels, 1 to 32767
    int red, green, blue;      // bits, a preference; 0 for the default
    int alpha, depth, stencil; // bits, a preference
    bool fullscreen;           // on the primary monitor; a window if there is none
    bool resizable;            // by the user
};

// Events of the window. Called only inside Window::poll and Window::wait; handlers may call all of Window.
class WindowEvents {
public:
    virtual void onSize(int width, int height) = 0;
    virtual void onClose() = 0; // a request
    virtual void onRefresh() = 0;
    virtual void onFocus(bool focused) = 0;
    virtual void onIconify(bool iconified) = 0;
    virtual void onKey(int position, int scancode, bool down) = 0; // position -1: the key has no name
    virtual void onCharacter(unsigned character) = 0;              // follows the onKey that typed it
    virtual void onButton(int button, bool down) = 0;              // left 0, right 1, middle 2
    virtual void onMouseMove(double x, double y) = 0;              // pixels
    virtual void onWheel(double steps) = 0;                        // up is positive

protected:
    ~WindowEvents() = default;
};

// All static: there is one window. Without an open one, calls that act on it do nothing.
class Window {
public:
    static bool initialise(); // initialises GLFW; returns whether it is ready
    static bool isInitialised();
    static void terminate(); // closes the window; inside a poll, takes effect at its end
    static void version(int& major, int& minor, int& revision);

    // Opens the window and makes its context current. On failure returns false after writing the reason to
    // standard error. `events` must outlive the window.
    static bool open(const WindowRequest& request, WindowEvents& events);
    static void close();
    static bool isOpen();

    // Process events; both return at once when called inside one.
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
    static std::vector<VideoMode> videoModes();             // of the primary monitor, sorted by inOrder
    static double time();                                   // seconds since initialise, 0 before
};

} // namespace zentrak::glfw2
