#include "dis_listener.h"

#include "dis_display.h"

#include <algorithm>
#include <cassert>

namespace zentrak::display {

Listener::Listener(DisplayGL* attachTo) {
    attachToDisplay(attachTo);
}

Listener::~Listener() {
    attachToDisplay(nullptr);
}

void Listener::attachToDisplay(DisplayGL* newDisplay) {
    if (display)
        display->removeListener(this);
    if (newDisplay)
        newDisplay->addListener(this);
}

int Listener::onMouseUp(const MouseButtonEvent&) {
    return WHATEVER;
}
int Listener::onMouseDown(const MouseButtonEvent&) {
    return WHATEVER;
}
int Listener::onMouseMove(const MouseMoveEvent&) {
    return WHATEVER;
}
int Listener::onMouseWheel(const MouseMoveEvent&) {
    return WHATEVER;
}
int Listener::onKeyDown(const KeyEvent&) {
    return WHATEVER;
}
int Listener::onKeyUp(const KeyEvent&) {
    return WHATEVER;
}
int Listener::onCharDown(const CharEvent&) {
    return WHATEVER;
}
int Listener::onCharUp(const CharEvent&) {
    return WHATEVER;
}
int Listener::onQuit() {
    return WHATEVER;
}
void Listener::onResize(int, int) {}
void Listener::onMove() {}
void Listener::onDraw() {}
void Listener::onIconify(bool) {}
void Listener::onChangeFocus(bool) {}

// Walks over the listeners of a display. They are out of line because compilers that inline them warn of
// the address that stays in the display, though the destructor removes it.

DisplayGL::Walk::Walk(DisplayGL& display, bool forward)
    : mDisplay(display),
      mForward(forward),
      mNext(forward ? 0 : display.mListeners.size()),
      mEnd(display.mListeners.size()),
      mOuter(display.mWalks) {
    mDisplay.mWalks = this;
}

DisplayGL::Walk::~Walk() {
    mDisplay.mWalks = mOuter;
}

Listener* DisplayGL::Walk::next() {
    if (mForward)
        return mNext < mEnd ? mDisplay.mListeners[mNext++] : nullptr;
    return mNext > 0 ? mDisplay.mListeners[--mNext] : nullptr;
}

void DisplayGL::addListener(Listener* listener) {
    assert(listener!=0);
    if (listener->display == this)
        return;
    mListeners.push_back(listener);
    listener->display = this;
}

void DisplayGL::removeListener(Listener* listener) {
    assert(listener!=0);
    const auto found = std::find(mListeners.begin(), mListeners.end(), listener);
    if (found == mListeners.end())
        return;
    const size_t index = size_t(found - mListeners.begin());
    mListeners.erase(found);
    for (Walk* walk = mWalks; walk; walk = walk->mOuter) {
        if (index < walk->mNext)
            --walk->mNext;
        if (index < walk->mEnd)
            --walk->mEnd;
    }
    listener->display = nullptr;
}

} // namespace zentrak::display
