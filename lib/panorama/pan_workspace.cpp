#include "pan_workspace.h"

#include "dis_key.h"
#include "pan_alive.h"
#include "pan_box.h"
#include "pan_context.h"

#include <algorithm>
#include <utility>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;

namespace {

constexpr float LIMIT = 10000.0f; // pixels, of the tree's coordinates

} // namespace

Workspace::Workspace() {
    mName = mType = "workspace";
}

Workspace::~Workspace() {
    setCapture(nullptr, 0);
    deleteControls(); // while the members they use still exist
    delete mStyle;
}

Control* Workspace::clone() {
    return new Workspace;
}

// A workspace inside another asks its parent.

display::DisplayGL* Workspace::getDisplay() {
    return mParent ? Control::getDisplay() : mDisplay;
}

Render* Workspace::getRender() {
    return mParent ? Control::getRender() : &mRender;
}

xml::IteratorConst Workspace::getStyle(const std::string& name) {
    return mStyle ? std::as_const(*mStyle).createIterator(name) : Control::getStyle(name);
}

void Workspace::setContext(Context* context) {
    if (mParent || !context) {
        Control::setContext(context);
        return;
    }
    endCapture(); // the menu takes the release
    if (!context->getParent())
        context->setParent(this);
    mContext = context;
    mContext->resize();
    mContextFresh = true;
}

void Workspace::resetContext() {
    mContext = nullptr;
    Control::resetContext();
}

Box2 Workspace::getWorldClipArea(bool) {
    return Box2(-LIMIT, -LIMIT, LIMIT, LIMIT);
}

void Workspace::load(xml::IteratorConst& it) {
    Control::load(it);
    if (mName.empty())
        mName = "workspace";
}

void Workspace::setDisplay(display::DisplayGL* display) {
    mDisplay = display;
    if (display && mRender.mDisplay != display)
        mRender.setup(display);
}

void Workspace::loadStyle(xml::XmlParser* style) {
    if (style != mStyle)
        delete std::exchange(mStyle, style);
}

// The mouse capture

void Workspace::setCapture(Control* control, int button) {
    if (mCapture && mCapture != control)
        endCapture();
    mCapture = control;
    mCaptureButton = button;
    if (control)
        control->mCapturing = this;
}

void Workspace::endCapture() {
    if (Control* const before = mCapture) {
        before->releaseMouse();
        before->onCaptureLost();
    }
}

// A move clears the hover state of the tree as any other does.
int Workspace::handleCaptured(Event& event) {
    if (event.type == "mousemove") {
        mHoverStale = true;
        Event reset(event);
        reset.type = "reset";
        if (!resetChildren(reset) || !mCapture)
            return 0;
    }
    Control* const control = mCapture;
    if (event.type == "mouseup" && event.button == mCaptureButton)
        control->releaseMouse();
    return control->handleEvent(event);
}

// An open menu gets every event first. The release of the click that opened it leaves it open; the next
// release closes it, and so does Esc. Unless it is a menu bar's, the controls below get nothing. What the
// menu takes (a dropdown's list takes keys) goes no further, even if that has closed it; everything else goes
// on to the next listener.
int Workspace::handleEvent(Event& event) {
    int taken = 0;
    if (mContext) {
        taken = mContext->handleEvent(event);
        const bool release = event.type == "mouseup" && event.button == 0;
        if (release && !mContextFresh)
            resetContext();
        else
            mContextFresh = false;
        if (mContext && !taken && event.type == "keydown" && event.key == display::KEY_ESC) {
            resetContext();
            return 1;
        }
        if (mContext && !(mContext->getParent() && mContext->getParent()->getType() == "menubar"))
            return taken;
    }
    if (taken)
        return taken;

    if (mCapture && !mCapture->isShown())
        endCapture();
    if (mCapture && (event.type == "mousemove" || event.type == "mouseup"))
        return handleCaptured(event);
    const bool press = event.type == "mousedown", wheel = event.type == "mousewheel";
    const bool stale = mHoverStale;
    if (press || wheel || event.type == "mousemove")
        mHoverStale = false;
    if (stale && (press || wheel)) {
        Event move(event);
        move.type = "mousemove";
        Alive alive(*this);
        Control::handleEvent(move);
        if (!alive)
            return 0;
    }
    if (press && !mParent && !isOverChild(event.mousePos))
        setFocus(nullptr); // keys go past the controls from now on, as this press does
    return Control::handleEvent(event);
}

bool Workspace::isOverChild(const Vector2f& position) const {
    return std::any_of(mControls.begin(), mControls.end(), [&](Control* child) {
        return child->getVisible() && isInside(child->mArea.clip, position);
    });
}

void Workspace::draw() {
    Control::draw();
    if (!mContext)
        return;
    if (Render* render = getRender())
        render->setClipArea(mArea.clip);
    mContext->draw();
}

} // namespace zentrak::panorama
