// The interface of a client of the display, which draws each frame and receives input.
#pragma once

#include "dis_event.h"

namespace zentrak::display {

class DisplayGL;

// Drawing reaches listeners in the order in which they joined, input in the reverse order. A listener may
// join or leave others, leave or delete itself, and close or re-open the window, all inside its own
// operations; one that joins in the middle of a walk is first called in the next. The display itself must not
// be deleted there.
class Listener {
public:
    // The result of an input operation: a mask.
    enum Action : int {
        WHATEVER = 0,
        BLOCK = 1, // the event goes no further; from onQuit: do not quit
        QUIT = 2,  // ask all listeners whether to quit
        DIRTY = 4  // the picture has to be drawn again
    };

    Listener() = default;
    explicit Listener(DisplayGL* attachTo); // null joins nothing
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    virtual ~Listener(); // leaves its display

    virtual int onMouseUp(const MouseButtonEvent& event);
    virtual int onMouseDown(const MouseButtonEvent& event);
    virtual int onMouseMove(const MouseMoveEvent& event);
    virtual int onMouseWheel(const MouseMoveEvent& event);
    virtual int onKeyDown(const KeyEvent& event);
    virtual int onKeyUp(const KeyEvent& event);
    virtual int onCharDown(const CharEvent& event);
    virtual int onCharUp(const CharEvent& event);
    virtual int onQuit();
    virtual void onResize(int oldWidth, int oldHeight); // the new size is in the display's mWindowMode
    virtual void onMove();                              // never called: the window system doesn't report it
    virtual void onDraw();                              // once a frame, with the GL states reset
    virtual void onIconify(bool iconified);
    virtual void onChangeFocus(bool focused);

    // Leaves the display that it is on, if any, and joins `newDisplay`, if not null.
    void attachToDisplay(DisplayGL* newDisplay);

    DisplayGL* display = nullptr; // the display that it is on, not owned; kept by the display itself
};

} // namespace zentrak::display
