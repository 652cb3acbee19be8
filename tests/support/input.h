// A viewer at a window under test: real keys, a real mouse, and the window manager of the display that
// tests/with_display provides. Tests marked GL get both.
//
// An operation returns when the X server has the event; the program under test has it once it has polled. A
// test therefore waits for what it expects with `until`, and never sleeps. Events arrive in the order in
// which they were sent: to show that something doesn't happen, send something after it that does happen, and
// wait for that. A tool that fails or a deadline that passes fails the running test.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace zentrak::test {

class Viewer {
public:
    // For the window with this title. `poll` processes pending events of the program under test once, without
    // waiting (glfwPollEvents, or one DisplayGL::update).
    Viewer(std::string title, std::function<void()> poll);
    // Releases all keys and buttons, and restores the US layout.
    ~Viewer();
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;

    // Polls until `done` holds; false if `seconds` pass first. `what` names it in the failure.
    bool until(const std::string& what, const std::function<bool()>& done, double seconds = 30.0);

    // Keys, by X keysym name ("a", "Return", "KP_Add", "shift+a", "ctrl+t") or by key code as a number from
    // 10 on ("24" is the key right of Tab in any layout).
    void key(const std::string& name); // down and up, modifiers first
    void keyDown(const std::string& name);
    void keyUp(const std::string& name);
    void type(const std::string& text);   // with the modifiers that each character needs
    void layout(const std::string& name); // of the keyboard: "us", "de", "fr"

    // The mouse. Positions in pixels from the window's upper left corner, which the pointer may leave;
    // buttons are X's: 1 left, 2 middle, 3 right.
    void moveTo(int x, int y);
    void buttonDown(int button);
    void buttonUp(int button);
    void click(int button);
    void wheel(int steps); // up is positive

    // The window, through the window manager.
    void focus();        // gives it the focus, and waits until it has it
    void requestClose(); // as its close button does
    void iconify();
    void restore();           // from iconified, and gives it the focus
    void fullScreen(bool on); // as a window manager's own key does
    void dragCorner(int dx,
                    int dy); // drags the lower right corner with Alt and the right button

    const std::string& window(); // its X id, decimal; waits until it is there

private:
    void tool(const std::string& arguments); // xdotool
    void askManager(const char* message, std::initializer_list<long> values);

    std::string mTitle;
    std::function<void()> mPoll;
    std::string mWindow;
    std::vector<std::string> mKeysDown;
    std::vector<int> mButtonsDown;
    bool mOtherLayout = false;
};

// A second window on the display, for the focus to go to; closed on destruction.
class OtherWindow {
public:
    OtherWindow();
    ~OtherWindow();
    OtherWindow(const OtherWindow&) = delete;
    OtherWindow& operator=(const OtherWindow&) = delete;

    void focus(); // does not wait until it has it

private:
    struct Connection;
    Connection* mConnection; // owned
};

} // namespace zentrak::test
