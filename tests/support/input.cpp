#include "input.h"

#include "support.h"

#include <gtest/gtest.h>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

namespace zentrak::test {
namespace {

// Quotes a text for the shell.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

// A regular expression that matches exactly this text.
std::string pattern(const std::string& text) {
    std::string expression = "^";
    for (char c : text) {
        if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos)
            expression += '\\';
        expression += c;
    }
    return expression + "$";
}

// A connection to the X server for one request.
struct Server {
    Display* display = XOpenDisplay(nullptr);

    Server() = default;
    ~Server() {
        if (display)
            XCloseDisplay(display);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
};

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

bool isThere(Display* display, Window window) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, window, &attributes) != 0;
}

// Whether the window manager still has a window that is gone.
bool lagsBehind(Display* display) {
    const Atom list = XInternAtom(display, "_NET_CLIENT_LIST", False);
    Atom type;
    int format;
    unsigned long count = 0, left;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), list, 0, 100, False, XA_WINDOW, &type, &format,
                       &count, &left, &data);
    const Window* const windows = reinterpret_cast<const Window*>(data);
    const bool lags = std::any_of(windows, windows + count, [&](Window w) { return !isThere(display, w); });
    if (data)
        XFree(data);
    return lags;
}

// After each test, waits until the window manager has let go of its windows. The X server gives the ids of a
// closed connection out again: a window manager that lags behind takes the next test's window for the old
// one, and gives it the old one's size, or takes the keys away from it.
class WindowManagerKeepsUp : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        Display* const display = XOpenDisplay(nullptr);
        if (!display)
            return;
        const auto before = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (lagsBehind(display) && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        XSetErrorHandler(before);
        XCloseDisplay(display);
    }
};

[[maybe_unused]] const bool listening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new WindowManagerKeepsUp);
    return true;
}();

} // namespace

Viewer::Viewer(std::string title, std::function<void()> poll)
    : mTitle(std::move(title)), mPoll(std::move(poll)) {}

Viewer::~Viewer() {
    while (!mKeysDown.empty())
        keyUp(std::string(mKeysDown.back()));
    while (!mButtonsDown.empty())
        buttonUp(mButtonsDown.back());
    if (mOtherLayout)
        layout("us");
}

bool Viewer::until(const std::string& what, const std::function<bool()>& done, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (true) {
        mPoll();
        if (done())
            return true;
        if (Clock::now() > deadline) {
            ADD_FAILURE() << "waited in vain for: " << what;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

// The timeout is for a tool that waits for something that never happens.
void Viewer::tool(const std::string& arguments) {
    const auto [status, text] = runCommand("timeout 60 xdotool " + arguments);
    EXPECT_EQ(status, 0) << "xdotool " << arguments << ": " << text;
}

const std::string& Viewer::window() {
    if (mWindow.empty()) {
        const std::string search = "timeout 60 xdotool search --name " + quoted(pattern(mTitle));
        until("a window with the title " + mTitle, [&] {
            const auto [status, text] = runCommand(search + " 2>/dev/null");
            mWindow = status == 0 ? firstLine(text) : "";
            return !mWindow.empty();
        });
    }
    return mWindow;
}

void Viewer::key(const std::string& name) {
    tool("key " + quoted(name));
}

void Viewer::keyDown(const std::string& name) {
    tool("keydown " + quoted(name));
    mKeysDown.push_back(name);
}

void Viewer::keyUp(const std::string& name) {
    tool("keyup " + quoted(name));
    mKeysDown.erase(std::remove(mKeysDown.begin(), mKeysDown.end(), name), mKeysDown.end());
}

void Viewer::type(const std::string& text) {
    tool("type --delay 2 -- " + quoted(text));
}

void Viewer::layout(const std::string& name) {
    const auto [status, text] = runCommand("timeout 60 setxkbmap " + quoted(name));
    EXPECT_EQ(status, 0) << "setxkbmap " << name << ": " << text;
    mOtherLayout = name != "us";
}

void Viewer::moveTo(int x, int y) {
    tool("mousemove --window " + window() + " -- " + std::to_string(x) + " " + std::to_string(y));
}

void Viewer::buttonDown(int button) {
    tool("mousedown " + std::to_string(button));
    mButtonsDown.push_back(button);
}

void Viewer::buttonUp(int button) {
    tool("mouseup " + std::to_string(button));
    mButtonsDown.erase(std::remove(mButtonsDown.begin(), mButtonsDown.end(), button), mButtonsDown.end());
}

void Viewer::click(int button) {
    tool("click --delay 2 " + std::to_string(button)); // it would wait for 100 ms after it
}

void Viewer::wheel(int steps) {
    if (steps != 0)
        tool("click --delay 2 --repeat " + std::to_string(std::abs(steps)) + (steps > 0 ? " 4" : " 5"));
}

void Viewer::focus() {
    tool("windowactivate " + window());
    until("the focus", [&] {
        const auto [status, text] = runCommand("timeout 60 xdotool getwindowfocus -f");
        return status == 0 && firstLine(text) == mWindow;
    });
}

// Sends the window manager a message about the window; 2 says that it comes from the user.
void Viewer::askManager(const char* message, std::initializer_list<long> values) {
    const Server server;
    ASSERT_NE(server.display, nullptr);
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = std::strtoul(window().c_str(), nullptr, 10);
    event.xclient.message_type = XInternAtom(server.display, message, False);
    event.xclient.format = 32;
    std::copy(values.begin(), values.end(), event.xclient.data.l);
    XSendEvent(server.display, DefaultRootWindow(server.display), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &event);
}

// What a panel or pager sends: the window manager then sends the window a close request, as its close button
// does.
void Viewer::requestClose() {
    askManager("_NET_CLOSE_WINDOW", {CurrentTime, 2});
}

void Viewer::fullScreen(bool on) {
    const Server server;
    askManager("_NET_WM_STATE",
               {on, long(XInternAtom(server.display, "_NET_WM_STATE_FULLSCREEN", False)), 0, 2});
}

void Viewer::iconify() {
    tool("windowminimize " + window());
}

void Viewer::restore() {
    tool("windowactivate " + window());
}

// Moves the pointer in steps: the window manager recognises a drag only after some pixels.
void Viewer::dragCorner(int dx, int dy) {
    const auto [status, text] = runCommand("timeout 60 xdotool getwindowgeometry --shell " + window());
    EXPECT_EQ(status, 0) << text;
    const auto value = [&text = text](const std::string& name) {
        const size_t at = text.find("\n" + name + "=");
        return at == std::string::npos ? 0 : std::atoi(text.c_str() + at + name.size() + 2);
    };
    moveTo(value("WIDTH") - 20, value("HEIGHT") - 20);
    keyDown("Alt_L");
    buttonDown(3);
    constexpr int Steps = 5;
    for (int i = 0; i < Steps; ++i) {
        const int x = dx * (i + 1) / Steps - dx * i / Steps, y = dy * (i + 1) / Steps - dy * i / Steps;
        tool("mousemove_relative -- " + std::to_string(x) + " " + std::to_string(y));
    }
    buttonUp(3);
    keyUp("Alt_L");
}

struct OtherWindow::Connection {
    Display* display;
    Window window;
};

OtherWindow::OtherWindow() : mConnection(new Connection{XOpenDisplay(nullptr), None}) {
    if (!mConnection->display) {
        ADD_FAILURE() << "no display for another window";
        return;
    }
    Display* const display = mConnection->display;
    mConnection->window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 100, 100, 0, 0, 0);
    XStoreName(display, mConnection->window, "Other");
    XSelectInput(display, mConnection->window, StructureNotifyMask);
    XMapWindow(display, mConnection->window);
    XEvent event;
    do {
        XNextEvent(display, &event);
    } while (event.type != MapNotify);
}

OtherWindow::~OtherWindow() {
    if (mConnection->display)
        XCloseDisplay(mConnection->display);
    delete mConnection;
}

void OtherWindow::focus() {
    const auto [status, text] =
        runCommand("timeout 60 xdotool windowactivate " + std::to_string(mConnection->window));
    EXPECT_EQ(status, 0) << text;
}

} // namespace zentrak::test
