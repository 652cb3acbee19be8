// The window, its OpenGL context, input and time: the calls of GLFW 2 that the display is written against, on
// top of GLFW 3. docs/glfw2.md says what is relied on, and where this differs from GLFW 2.
//
// There is one window per program, and all calls belong to the main thread. Each may be made at any time:
// before glfwInit, without a window and inside a callback. Without anything to act on it does nothing.
//
// Callbacks run inside glfwPollEvents, glfwWaitEvents and, while GLFW_AUTO_POLL_EVENTS is enabled,
// glfwSwapBuffers. That call throws what a callback throws; no other callback runs before it does.
#pragma once

#ifdef GLFW_VERSION_MAJOR
#error "glfw2.h and GLFW/glfw3.h name the same constants: include glfw3.h nowhere but in lib/glfw2"
#endif

namespace zentrak::glfw2 {

// clang-format off

// The state of a key or a button, as reported to callbacks.
inline constexpr int GLFW_RELEASE = 0;
inline constexpr int GLFW_PRESS   = 1;

// Keys. A key that types a character of Latin-1 (32 to 255), unshifted and by the keyboard's layout, has the code
// of that character, letters in upper case: 'A', '1', 0xC9 for an e with an acute accent. The others have these.
inline constexpr int GLFW_KEY_UNKNOWN     = -1;
inline constexpr int GLFW_KEY_SPACE       = 32;
inline constexpr int GLFW_KEY_SPECIAL     = 256;               // not a key: the codes above are not characters
inline constexpr int GLFW_KEY_ESC         = 257;
inline constexpr int GLFW_KEY_F1          = 258;               // F1 to F25 in a row
inline constexpr int GLFW_KEY_F25         = 282;
inline constexpr int GLFW_KEY_UP          = 283;
inline constexpr int GLFW_KEY_DOWN        = 284;
inline constexpr int GLFW_KEY_LEFT        = 285;
inline constexpr int GLFW_KEY_RIGHT       = 286;
inline constexpr int GLFW_KEY_LSHIFT      = 287;
inline constexpr int GLFW_KEY_RSHIFT      = 288;
inline constexpr int GLFW_KEY_LCTRL       = 289;
inline constexpr int GLFW_KEY_RCTRL       = 290;
inline constexpr int GLFW_KEY_LALT        = 291;
inline constexpr int GLFW_KEY_RALT        = 292;
inline constexpr int GLFW_KEY_TAB         = 293;
inline constexpr int GLFW_KEY_ENTER       = 294;
inline constexpr int GLFW_KEY_BACKSPACE   = 295;
inline constexpr int GLFW_KEY_INSERT      = 296;
inline constexpr int GLFW_KEY_DEL         = 297;
inline constexpr int GLFW_KEY_PAGEUP      = 298;
inline constexpr int GLFW_KEY_PAGEDOWN    = 299;
inline constexpr int GLFW_KEY_HOME        = 300;
inline constexpr int GLFW_KEY_END         = 301;
inline constexpr int GLFW_KEY_KP_0        = 302;               // 0 to 9 in a row, with and without Num Lock
inline constexpr int GLFW_KEY_KP_9        = 311;
inline constexpr int GLFW_KEY_KP_DIVIDE   = 312;
inline constexpr int GLFW_KEY_KP_MULTIPLY = 313;
inline constexpr int GLFW_KEY_KP_SUBTRACT = 314;
inline constexpr int GLFW_KEY_KP_ADD      = 315;
inline constexpr int GLFW_KEY_KP_DECIMAL  = 316;
inline constexpr int GLFW_KEY_KP_EQUAL    = 317;
inline constexpr int GLFW_KEY_KP_ENTER    = 318;
inline constexpr int GLFW_KEY_LAST        = GLFW_KEY_KP_ENTER;

// Mouse buttons. A mouse may have more, up to GLFW_MOUSE_BUTTON_LAST.
inline constexpr int GLFW_MOUSE_BUTTON_LEFT   = 0;
inline constexpr int GLFW_MOUSE_BUTTON_RIGHT  = 1;
inline constexpr int GLFW_MOUSE_BUTTON_MIDDLE = 2;
inline constexpr int GLFW_MOUSE_BUTTON_LAST   = 7;

// Ways to open a window.
inline constexpr int GLFW_WINDOW     = 0x00010001;
inline constexpr int GLFW_FULLSCREEN = 0x00010002;

// For glfwGetWindowParam; the last one is also a hint.
inline constexpr int GLFW_OPENED           = 0x00020001;
inline constexpr int GLFW_ACTIVE           = 0x00020002; // it has the keyboard's focus
inline constexpr int GLFW_ICONIFIED        = 0x00020003;
inline constexpr int GLFW_WINDOW_NO_RESIZE = 0x00020012; // the user can't resize it

// For glfwEnable and glfwDisable; glfwOpenWindow sets the defaults.
inline constexpr int GLFW_STICKY_KEYS      = 0x00030002; // accepted, without effect: no call reads a key
inline constexpr int GLFW_KEY_REPEAT       = 0x00030005; // off; a key held down sends further presses
inline constexpr int GLFW_AUTO_POLL_EVENTS = 0x00030006; // on;  glfwSwapBuffers polls

// clang-format on

// A video mode of the primary monitor.
struct GLFWvidmode {
    int Width, Height;                // pixels
    int RedBits, BlueBits, GreenBits; // in this order
};

typedef void (*GLFWwindowsizefun)(int width, int height);
typedef int (*GLFWwindowclosefun)(); // whether to close; 0 keeps the window
typedef void (*GLFWwindowrefreshfun)();
typedef void (*GLFWmousebuttonfun)(int button, int action);
typedef void (*GLFWmouseposfun)(int x, int y);   // whole pixels from the upper left corner, y down
typedef void (*GLFWmousewheelfun)(int position); // steps since the window was opened, up counts as one
typedef void (*GLFWkeyfun)(int key, int action);
typedef void (*GLFWcharfun)(int character, int action); // Unicode; released with the key that typed it

// The library. glfwInit returns 1, or 0 without a display to open windows on, and sets the time to 0; a
// second call does nothing and returns 1. glfwTerminate closes the window; the library can be initialised
// again.
int glfwInit();
void glfwTerminate();

// The version of GLFW 3 in use. A null pointer is skipped.
void glfwGetVersion(int* major, int* minor, int* rev);

// Opens the window and makes its context current: the compatibility profile of the newest version that the
// driver has. Width and height are in pixels, at most 32767; if one is 0 or less it follows from the other at
// 4:3, if both are it is 640 x 480. The bits are a preference, 0 for the default colours; `mode` is
// GLFW_WINDOW or GLFW_FULLSCREEN, the latter in the video mode nearest to the size and without a mouse
// pointer. All callbacks, switches and input start fresh. Returns 1, or 0 if there is a window already, the
// library is not initialised, an argument is out of range or no window can be opened; the hints are reset in
// any case. A window that the window manager doesn't show within five seconds is open anyway, and appears
// whenever the window manager shows it.
int glfwOpenWindow(int width, int height, int redbits, int greenbits, int bluebits, int alphabits,
                   int depthbits, int stencilbits, int mode);
void glfwOpenWindowHint(int target,
                        int hint);          // GLFW_WINDOW_NO_RESIZE: 0 (default) or 1, for the next opening
void glfwCloseWindow();                     // and its context
void glfwSetWindowTitle(const char* title); // UTF-8; null is ignored
void glfwGetWindowSize(int* width, int* height); // as of the last poll; 0 without a window. Null is skipped
void glfwSetWindowSize(int width, int height);   // 1 to 32767; the change arrives with the events
int glfwGetWindowParam(int param);               // 0 or 1, as of the last poll; 0 without a window
void glfwSwapBuffers();
void glfwSwapInterval(int interval); // 0 swaps at once, n at every n-th refresh; below 0 is 0

// The callbacks of the open window, null for none, until it closes. Setting the size, position or wheel
// callback calls it once, with the present value.
void glfwSetWindowSizeCallback(GLFWwindowsizefun callback);
void glfwSetWindowCloseCallback(GLFWwindowclosefun callback);
void glfwSetWindowRefreshCallback(GLFWwindowrefreshfun callback);
void glfwSetKeyCallback(GLFWkeyfun callback);
void glfwSetCharCallback(GLFWcharfun callback);
void glfwSetMouseButtonCallback(GLFWmousebuttonfun callback);
void glfwSetMousePosCallback(GLFWmouseposfun callback);
void glfwSetMouseWheelCallback(GLFWmousewheelfun callback);

// Process events; the second waits for at least one. Both return at once without a window or inside a
// callback. A close request that no callback refuses has closed the window when they return.
void glfwPollEvents();
void glfwWaitEvents();

void glfwEnable(int token);
void glfwDisable(int token);

// The video modes of the primary monitor, ascending by colour bits and then by area, each once. At most
// `maxcount` are written to `list`; returns how many, 0 without a monitor.
int glfwGetVideoModes(GLFWvidmode* list, int maxcount);

// Seconds, monotonic, since glfwInit or as set. 0 while the library is not initialised; setting a time that
// is not finite does nothing. glfwSleep returns at once unless its time is positive and finite.
double glfwGetTime();
void glfwSetTime(double time);
void glfwSleep(double time);

} // namespace zentrak::glfw2
