#include "pan_control.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_context.h"
#include "pan_render.h"
#include "pan_workspace.h"
#include "ztk_system.h"

#include <algorithm>
#include <utility>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

const xml::XmlNode& emptyDocument() {
    static const xml::XmlNode document(nullptr);
    return document;
}

// How many controls are above one, and how many levels of them are below.
int depthOf(const Control& control) {
    int depth = 0;
    for (const Control* above = control.mParent; above; above = above->mParent)
        ++depth;
    return depth;
}

int heightOf(const Control& control) {
    int height = 0;
    for (const Control* child : control.mControls)
        height = std::max(height, 1 + heightOf(*child));
    return height;
}

} // namespace

void Callback::contextAction(Context*, std::string) {}

Control::Control() {
    mBack.border = {Vector4f(0.1f, 0.1f, 0.1f, 1), Vector4f(0, 0, 0, 1)};
}

Control::~Control() {
    for (Alive* alive = mAlive; alive; alive = alive->mNext)
        alive->mControl = nullptr;
    releaseMouse();
    if (mIsChild) // not deleted by its parent
        leaveParent();
    Control::deleteControls();
    Context::letGo(*this);
}

// Removes it from its parent, which no longer owns it.
void Control::leaveParent() {
    mIsChild = false;
    std::erase(mParent->mControls, this);
    if (mParent->mFocus == this)
        mParent->mFocus = nullptr;
    mParent->forget(this);
}

void Control::forget(Control*) {}

std::string Control::getType() {
    return mType;
}

std::string Control::getName() {
    return mName;
}

void Control::setName(std::string name) {
    mName = std::move(name);
}

std::string Control::getCaption() {
    return mCaptionText;
}

void Control::setCaption(std::string caption) {
    mCaptionText = std::move(caption);
}

void Control::setInactive(bool inactive) {
    mInactive = inactive;
}

bool Control::getInactive() {
    return mInactive;
}

void Control::setVisible(bool visible) {
    mVisible = visible;
    if (visible)
        setFocus(nullptr);
}

bool Control::getVisible() {
    return mVisible;
}

bool Control::isShown() const {
    const Control* control = this;
    while (control && control->mVisible)
        control = control->mParent;
    return !control;
}

Box2 Control::getArea() {
    return mArea.area;
}

Box2 Control::getAreaWorld() {
    return mArea.world;
}

Box2 Control::getChildArea() {
    return mChildArea.area;
}

Box2 Control::getChildAreaWorld() {
    return mChildArea.world;
}

bool Control::getMaximized() {
    return mMaximized;
}

Vector2f Control::getOffset() {
    return mOffset;
}

Control* Control::getFocus() {
    return mFocus;
}

void Control::setCallback(Callback* callback) {
    if (callback)
        mCallbacks.push_back(callback);
}

// Answered by the parents

void Control::setParent(Control* parent) {
    for (const Control* above = parent; above; above = above->mParent) {
        if (above == this) {
            ZTK_LOG("error", "app", "The control '%.100s' can't be inside itself", mName.c_str());
            return;
        }
    }
    mParent = parent;
    mRender = nullptr;
}

Control* Control::getParent() {
    return mParent;
}

Control* Control::getRoot() {
    Control* root = this;
    while (root->mParent)
        root = root->mParent;
    return root;
}

display::DisplayGL* Control::getDisplay() {
    return mParent ? mParent->getDisplay() : nullptr;
}

Render* Control::getRender() {
    if (!mRender && mParent)
        mRender = mParent->getRender();
    return mRender;
}

xml::IteratorConst Control::getStyle(const std::string& name) {
    return mParent ? mParent->getStyle(name) : xml::IteratorConst(&emptyDocument(), name);
}

void Control::setContext(Context* context) {
    if (!context)
        return;
    if (!context->getParent())
        context->setParent(this);
    if (mParent)
        mParent->setContext(context);
}

void Control::resetContext() {
    if (mParent)
        mParent->resetContext();
}

// Layout

void Control::setArea(Box2 area) {
    layoutSelf(area);
    layoutChildren();
}

// All of setArea but the children.
void Control::layoutSelf(const Box2& area) {
    mArea.area = area;
    buildChildArea();
    buildArea(mArea, false);
    buildArea(mChildArea, true);
    mChildArea.clip = cutOrZero(mChildArea.clip, mArea.clip);
}

// A maximized child is laid out by its setMaximized. Doing it twice at each level would take exponential
// time.
void Control::layoutChildren() {
    for (size_t i = 0; i < mControls.size(); ++i) {
        Control* child = mControls[i];
        if (child->mMaximized)
            child->setMaximized(true);
        else
            child->setArea(child->mArea.area);
    }
}

void Control::setPosition(Vector2f position) {
    const Box2& area = mArea.area;
    setArea(Box2(position.x, position.y, position.x + area.getWidth(), position.y + area.getHeight()));
}

void Control::setOffset(Vector2f offset) {
    if (mOffset == offset)
        return;
    mOffset = offset;
    setArea(mArea.area);
}

void Control::buildChildArea() {
    mChildArea.area = Box2(0, 0, mArea.area.getWidth(), mArea.area.getHeight());
}

void Control::buildArea(AreaSet& set, bool child) {
    set.world = shifted(set.area, getLocalOffset(child));
    set.clip = cutOrZero(getLocalClipArea(child), set.world);
}

Vector2f Control::getLocalOffset(bool child) {
    Vector2f offset = mParent ? mParent->getWorldOffset() : Vector2f();
    if (child)
        offset += Vector2f(mArea.area.x1, mArea.area.y1);
    return offset - mOffset;
}

Vector2f Control::getWorldOffset() {
    Vector2f offset = mParent ? mParent->getWorldOffset() : Vector2f();
    offset += Vector2f(mArea.area.x1, mArea.area.y1);
    offset += Vector2f(mChildArea.area.x1, mChildArea.area.y1);
    return offset - mOffset;
}

Box2 Control::getLocalClipArea(bool child) {
    const Box2& box = child ? mChildArea.world : mArea.world;
    return mParent ? cut(mParent->getWorldClipArea(child), box) : box;
}

Box2 Control::getWorldClipArea(bool) {
    return mParent ? cut(mChildArea.world, mParent->getWorldClipArea(true)) : mChildArea.world;
}

void Control::setMaximized(bool on) {
    const bool before = mMaximized;
    mMaximized = on;
    if (mParent && on) {
        if (!before)
            mSavedArea = mArea.area;
        const Box2& room = mParent->mChildArea.area;
        setArea(Box2(0, 0, room.getWidth(), room.getHeight()));
        if (!before)
            mAreaSaved = true;
        return; // the children are laid out
    }
    if (mParent && mAreaSaved) {
        mAreaSaved = false;
        setArea(mSavedArea);
        return;
    }
    for (size_t i = 0; i < mControls.size(); ++i)
        mControls[i]->setMaximized(mControls[i]->mMaximized);
}

Box2 Control::getOccupiedArea() {
    Box2 occupied;
    for (Control* child : mControls) {
        if (!child->getVisible())
            continue;
        const Box2& area = child->mArea.area;
        occupied.x1 = std::min(occupied.x1, area.x1);
        occupied.y1 = std::min(occupied.y1, area.y1);
        occupied.x2 = std::max(occupied.x2, area.x2);
        occupied.y2 = std::max(occupied.y2, area.y2);
    }
    return occupied;
}

// Children

unsigned int Control::getChildCount() {
    return static_cast<unsigned int>(mControls.size());
}

size_t Control::getControlSize() {
    return mControls.size();
}

Control* Control::getChild(unsigned int index) {
    return index < mControls.size() ? mControls[index] : nullptr;
}

Control* Control::getControl(unsigned int index) {
    return getChild(index);
}

void Control::addControl(Control* control, int index) {
    if (!control)
        return;
    if (depthOf(*this) + 1 + heightOf(*control) > MAX_DEPTH) {
        ZTK_LOG("error", "app", "The %.100s '%.100s' is left out: it would be nested more than %d deep",
                control->mType.c_str(), control->mName.c_str(), MAX_DEPTH);
        return;
    }
    Control* const before = control->mParent;
    control->setParent(this);
    if (control->mParent != this)
        return;
    if (control->mIsChild) { // it moves
        control->mParent = before;
        control->leaveParent();
        control->mParent = this;
    }
    control->setArea(control->mArea.area);
    control->setMaximized(control->mMaximized);
    const bool atEnd = index < 0 || size_t(index) > mControls.size();
    mControls.insert(atEnd ? mControls.end() : mControls.begin() + index, control);
    control->mIsChild = true;
    setFocus(control);
}

void Control::deleteControl(unsigned int index) {
    if (index >= mControls.size())
        return;
    Control* child = mControls[index];
    if (mFocus == child)
        setFocus(nullptr);
    child->leaveParent();
    delete child;
}

void Control::deleteControls() {
    const std::vector<Control*> children = std::exchange(mControls, {});
    if (mFocus != this)
        mFocus = nullptr; // it was one of these
    for (Control* child : children) {
        child->mIsChild = false;
        delete child;
    }
}

Control* Control::findControl(const std::string& name) {
    if (mName == name)
        return this;
    for (Control* child : mControls)
        if (Control* found = child->findControl(name))
            return found;
    return nullptr;
}

// Focus: it belongs to the end of a path from the root on which each mFocus is the next control.

void Control::setFocus(Control* control) {
    if (mParent)
        mParent->setFocus(this);
    clearFocus();
    mFocus = control;
    if (!control || control == this || !mRaiseOnFocus || mControls.empty() || mControls.back() == control)
        return;
    const auto place = std::find(mControls.begin(), mControls.end(), control);
    if (place != mControls.end())
        std::rotate(place, place + 1, mControls.end());
}

// Down the path, and not over all children: there may be thousands.
void Control::clearFocus() {
    Control* const next = mFocus;
    mFocus = nullptr;
    if (next && next != this)
        next->clearFocus();
}

// Actions and events

void Control::sendAction(Action action, Control* source) {
    if (!source)
        source = this;
    if (mCallbacks.empty()) {
        if (mParent)
            mParent->sendAction(action, source);
        return;
    }
    Alive alive(*this);
    for (size_t i = 0; alive && i < mCallbacks.size(); ++i)
        mCallbacks[i]->controlAction(source, action);
}

void Control::sendContextAction(Context* context, std::string text) {
    Alive alive(*this);
    for (size_t i = 0; alive && i < mCallbacks.size(); ++i)
        mCallbacks[i]->contextAction(context, text);
}

bool Control::acceptEvents(Event& event) {
    if (mHover || isInside(mArea.clip, event.mousePos))
        return true;
    for (Control* child : mControls)
        if (child->getVisible() && child->acceptEvents(event))
            return true;
    return false;
}

// A button's press or release hits whatever it lies on, except the root, which is the background. A wheel and
// a key belong to whoever uses them.
int Control::handleEvent(Event& event) {
    if (!mVisible)
        return 0;
    if (mFocus && mFocus != this && event.isKey())
        return mFocus->handleEvent(event);
    if (event.type == "reset") {
        mHover = false;
        resetChildren(event);
        return 0;
    }

    int result = 0;
    if (event.type == "mousemove") {
        mHover = isInside(mArea.clip, event.mousePos);
        result = mHover;
        if (!event.hoverCleared) { // once for the whole tree
            Event copy(event);
            copy.type = "reset";
            if (!resetChildren(copy))
                return result;
            copy.type = event.type;
            copy.hoverCleared = true;
            return passDown(copy, result);
        }
    } else if (event.type == "mousedown" || event.type == "mouseup") {
        result = mParent && isInside(mArea.clip, event.mousePos);
    }
    return passDown(event, result);
}

// To the topmost child that accepts it.
int Control::passDown(Event& event, int result) {
    const bool press = event.type == "mousedown";
    for (size_t i = mControls.size(); i-- > 0;) {
        Control* child = mControls[i];
        if (press && isInside(child->mArea.clip, event.mousePos))
            setFocus(child);
        if (!child->getVisible() || !child->acceptEvents(event))
            continue;
        const int hit = child->handleEvent(event);
        return result ? result : hit;
    }
    return result;
}

bool Control::resetChildren(Event& reset) {
    Alive alive(*this);
    for (size_t i = 0; alive && i < mControls.size(); ++i)
        mControls[i]->handleEvent(reset);
    return bool(alive);
}

void Control::captureMouse(const Event& press) {
    if (Workspace* const root = dynamic_cast<Workspace*>(getRoot()))
        root->setCapture(this, press.button);
}

void Control::releaseMouse() {
    if (mCapturing)
        mCapturing->mCapture = nullptr;
    mCapturing = nullptr;
}

void Control::onCaptureLost() {}

void Control::draw() {
    Render* render = getRender();
    if (!render)
        return;
    const bool all = mType == "workspace";
    for (size_t i = 0; i < mControls.size(); ++i) {
        Control* child = mControls[i];
        const Box2 box = cut(mChildArea.clip, child->mArea.clip);
        if (!(all || (box.getWidth() >= 1 && box.getHeight() >= 1)) || !child->getVisible())
            continue; // cheap for the hidden part of a long list
        render->setClipArea(box);
        child->draw();
    }
}

} // namespace zentrak::panorama
