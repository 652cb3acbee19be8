// Events, from the window system's callbacks to the listeners.
#include "dis_display.h"
#include "glfw2.h"

namespace zentrak::display {

using namespace glfw2;

static const double DOUBLE_CLICK_TIME = 0.8; // seconds

// Dispatch

// Passes the event to the listeners, the last one to join first.
template <class EventType>
void DisplayGL::dispatch(int (Listener::*operation)(const EventType&), const EventType& event) {
    Walk walk(*this, false);
    while (Listener* listener = walk.next())
        if (shallStop((listener->*operation)(event)))
            return;
}

// Acts on a listener's answer. Returns whether the event stops here.
bool DisplayGL::shallStop(int result) {
    bool stop = false;
    if (result & Listener::DIRTY)
        mDirty = true;
    if (result & Listener::BLOCK)
        stop = true;
    if (result & Listener::QUIT) {
        if (!mOpened) {
            mQuittingBlocking = true;
            stop = true;
        } else if (askQuit()) {
            mQuittingBlocking = true;
        }
    }
    return stop;
}

// Asks all listeners, the last one to join first. Returns whether none vetoes.
bool DisplayGL::askQuit() {
    bool veto = false;
    Walk walk(*this, false);
    while (Listener* listener = walk.next()) {
        const int result = listener->onQuit();
        if (result & Listener::DIRTY)
            mDirty = true;
        if (result & Listener::BLOCK)
            veto = true;
    }
    return !veto;
}

void DisplayGL::fillEvent(Event& event) const {
    event.mousePos = getMousePosition();
    event.mousePosUnit =
        mathbase::Vector2f(mWindowMode.width > 0 ? mMouseX / float(mWindowMode.width) : 0.0f,
                           mWindowMode.height > 0 ? mMouseY / float(mWindowMode.height) : 0.0f);
    event.mouseWheel = mMouseWheel;

    static const struct {
        Key key;
        KeyMod mod;
    } modifiers[] = {{KEY_LSHIFT, KEYMOD_LSHIFT}, {KEY_RSHIFT, KEYMOD_RSHIFT}, {KEY_LCTRL, KEYMOD_LCTRL},
                     {KEY_RCTRL, KEYMOD_RCTRL},   {KEY_LALT, KEYMOD_LALT},     {KEY_RALT, KEYMOD_RALT}};
    event.control = KEYMOD_NONE;
    for (const auto& modifier : modifiers)
        if (mPressed[modifier.key])
            event.control |= modifier.mod;
}

// Events

void DisplayGL::onResize(int width, int height) {
    if (!mOpened)
        return;
    const int oldWidth = mWindowMode.width;
    const int oldHeight = mWindowMode.height;
    mWindowMode.width = width;
    mWindowMode.height = height;
    Walk walk(*this, true);
    while (Listener* listener = walk.next())
        listener->onResize(oldWidth, oldHeight);
    mDirty = true;
}

// The close button. The answer is whether the window system is to close the window: that is left to the
// caller of update, unless there is no one to close it.
int DisplayGL::onClose() {
    if (!mOpened)
        return 1;
    if (askQuit())
        mQuittingBlocking = true;
    return 0;
}

// The Key for a code of GLFW 2. Characters and the special keys up to the modifiers have the same codes
// there.
static int keyFromGlfw(int code) {
    if (code < 256)
        return code;
    if (code >= GLFW_KEY_ESC && code <= GLFW_KEY_RALT)
        return code;
    switch (code) {
    case GLFW_KEY_TAB:
        return KEY_TAB;
    case GLFW_KEY_ENTER:
        return KEY_ENTER;
    case GLFW_KEY_BACKSPACE:
        return KEY_BACKSPACE;
    default:
        break;
    }
    if (code >= GLFW_KEY_INSERT && code <= GLFW_KEY_KP_ENTER)
        return code - GLFW_KEY_INSERT + KEY_INSERT;
    return -1;
}

void DisplayGL::onKey(int code, int action) {
    if (!mOpened)
        return;
    const int key = keyFromGlfw(code);
    if (key >= 0 && key < KEY_LAST)
        mPressed[key] = action == GLFW_PRESS;
    KeyEvent event;
    fillEvent(event);
    event.key = Key(key);
    dispatch(action == GLFW_PRESS ? &Listener::onKeyDown : &Listener::onKeyUp, event);
}

void DisplayGL::onChar(int character, int action) {
    if (!mOpened)
        return;
    CharEvent event;
    fillEvent(event);
    event.key = character;
    dispatch(action == GLFW_PRESS ? &Listener::onCharDown : &Listener::onCharUp, event);
}

void DisplayGL::onMousePos(int x, int y) {
    if (!mOpened)
        return;
    mLastClickTime = -1;
    MouseMoveEvent event;
    event.mouseDelta = mathbase::Vector2f(mMouseX - float(x), mMouseY - float(y));
    event.mouseDeltaWheel = 0;
    mMouseX = float(x);
    mMouseY = float(y);
    fillEvent(event);
    dispatch(&Listener::onMouseMove, event);
}

void DisplayGL::onMouseWheel(int position) {
    if (!mOpened)
        return;
    MouseMoveEvent event;
    event.mouseDelta = mathbase::Vector2f(0, 0);
    event.mouseDeltaWheel = float(position) - mMouseWheel;
    mMouseWheel = float(position);
    fillEvent(event);
    dispatch(&Listener::onMouseWheel, event);
}

void DisplayGL::onMouseButton(int button, int action) {
    if (!mOpened || button < MOUSE_LEFT || button > MOUSE_MIDDLE)
        return;
    MouseButtonEvent event;
    fillEvent(event);
    event.button = MouseButton(button);
    event.doubleClick = false;
    if (event.button == MOUSE_LEFT && action == GLFW_PRESS) {
        const double now = getTime();
        event.doubleClick = mLastClickTime != -1.0f && now - mLastClickTime < DOUBLE_CLICK_TIME;
        mLastClickTime = event.doubleClick ? -1.0f : float(now);
    }
    dispatch(action == GLFW_PRESS ? &Listener::onMouseDown : &Listener::onMouseUp, event);
}

// The callbacks themselves

void DisplayGL::reshape(int width, int height) {
    if (currentDisplay)
        currentDisplay->onResize(width, height);
}

void DisplayGL::refreshFun() {
    if (currentDisplay)
        currentDisplay->mDirty = true;
}

int DisplayGL::closeFun() {
    return currentDisplay ? currentDisplay->onClose() : 1;
}

void DisplayGL::keyFun(int key, int action) {
    if (currentDisplay)
        currentDisplay->onKey(key, action);
}

void DisplayGL::charFun(int character, int action) {
    if (currentDisplay)
        currentDisplay->onChar(character, action);
}

void DisplayGL::mousePosFun(int x, int y) {
    if (currentDisplay)
        currentDisplay->onMousePos(x, y);
}

void DisplayGL::mouseButtonFun(int button, int action) {
    if (currentDisplay)
        currentDisplay->onMouseButton(button, action);
}

void DisplayGL::mouseWheelFun(int position) {
    if (currentDisplay)
        currentDisplay->onMouseWheel(position);
}

} // namespace zentrak::display
