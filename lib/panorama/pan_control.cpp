#include "pan_control.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_context.h"
#include "pan_controlfactory.h"
#include "pan_flow.h"
#include "pan_number.h"
#include "pan_render.h"
#include "ztk_system.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr size_t MAX_STYLED = 20000; // controls that styles bring into one layout

// The style elements that are being loaded, and how many controls they have made. A style that holds a
// control of its own kind would never end, and one that holds two of the next kind, and so on, not soon
// enough.
std::vector<const xml::XmlTag*> loadingStyles;
size_t styledControls = 0;
int loadDepth = 0;

struct LoadScope {
    LoadScope() {
        if (loadDepth++ == 0)
            styledControls = 0;
    }
    ~LoadScope() { --loadDepth; }
};

void loadStyle(Control& control, xml::IteratorConst& style) {
    const xml::XmlTag* tag = style.operator->();
    if (std::find(loadingStyles.begin(), loadingStyles.end(), tag) != loadingStyles.end()) {
        ZTK_LOG("warning", "app", "The style '%.100s' holds a control of its own style",
                tag->getName().c_str());
        return;
    }
    struct Scope {
        explicit Scope(const xml::XmlTag* tag) { loadingStyles.push_back(tag); }
        ~Scope() { loadingStyles.pop_back(); }
    } scope(tag);
    control.load(style);
}

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

ColorSet* paletteOf(Control& control, const std::string& name) {
    return name == "back"      ? &control.mBack
           : name == "caption" ? &control.mCaption
           : name == "text"    ? &control.mText
                               : nullptr;
}

ColorPair* pairOf(ColorSet& set, const std::string& name) {
    return name == "border"      ? &set.border
           : name == "color"     ? &set.color
           : name == "highlight" ? &set.highlight
           : name == "pushed"    ? &set.pushed
           : name == "inactive"  ? &set.inactive
                                 : nullptr;
}

} // namespace

void Callback::contextAction(Context*, std::string) {}

Control::Control() {
    mBack.border = {Vector4f(0.1f, 0.1f, 0.1f, 1), Vector4f(0, 0, 0, 1)};
}

Control::~Control() {
    for (Alive* alive = mAlive; alive; alive = alive->mNext)
        alive->mControl = nullptr;
    if (mIsChild) // deleted past its parent
        leaveParent();
    Control::deleteControls();
    Context::letGo(*this);
}

// Takes it out of its parent's children, which no longer own it then.
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

// What the parents answer

void Control::setParent(Control* parent) {
    for (const Control* above = parent; above; above = above->mParent) {
        if (above == this) {
            ZTK_LOG("error", "app", "The control '%.100s' can't hang below itself", mName.c_str());
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

// A maximized child is laid out by its setMaximized: once is enough, and twice at each level would make a
// deep tree take for ever.
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
        ZTK_LOG("error", "app", "The control '%.100s' is not taken: it would lie deeper than %d others",
                control->mName.c_str(), MAX_DEPTH);
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

// Focus. What has it is the end of a path from the root: above it every control's mFocus is the next below.

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

/*
 * A button's press or release hits whatever it lies on, but for the root: that is the background. A wheel is
 * whose who turns with it. A key hits the end of the focus's path where that holds no other controls; only
 * Tab is everybody's.
 */
int Control::handleEvent(Event& event) {
    if (!mVisible)
        return 0;
    if (mFocus && mFocus != this && event.isKey())
        return mFocus->handleEvent(event);

    int result = 0;
    if (event.type == "reset") {
        mHover = false;
        resetChildren(event);
        return 0;
    }
    if (event.type == "mousemove") {
        mHover = isInside(mArea.clip, event.mousePos);
        result = mHover;
        Event reset(event);
        reset.type = "reset";
        if (!resetChildren(reset))
            return result;
    } else if (event.type == "mousedown" || event.type == "mouseup") {
        result = mParent && isInside(mArea.clip, event.mousePos);
    } else if (event.isKey()) {
        result = mControls.empty() && mParent && mParent->mFocus == this && event.key != display::KEY_TAB;
    }

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

// Takes the hover state back in all that is below. False if who heard of it has deleted this control.
bool Control::resetChildren(Event& reset) {
    Alive alive(*this);
    for (size_t i = 0; alive && i < mControls.size(); ++i)
        mControls[i]->handleEvent(reset);
    return bool(alive);
}

void Control::draw() {
    Render* render = getRender();
    if (!render)
        return;
    const bool all = mType == "workspace";
    for (size_t i = 0; i < mControls.size(); ++i) {
        Control* child = mControls[i];
        const Box2 box = cut(mChildArea.clip, child->mArea.clip);
        if (!(all || (box.getWidth() >= 1 && box.getHeight() >= 1)) || !child->getVisible())
            continue; // most of a long list is out of sight, and that is told by its area alone
        render->setClipArea(box);
        child->draw();
    }
}

// Layout files

// A character that is no digit is a 0, the "#" that the display's colours may begin with too.
Vector4f Control::hex2vec(const std::string& text) {
    if (text.empty() || text[0] != '#')
        return display::DisplayGL::hex2vec(text);
    return display::DisplayGL::hex2vec("0" + text.substr(1));
}

void Control::load(xml::IteratorConst& it) {
    LoadScope scope;
    mName = it->getValue("id");
    mVisible = it->getValue("hidden") != "true" && it->getValue("visible") != "false";
    loadChildren(it);

    setMaximized(true);
    xml::IteratorConst area = it.createIterator("area");
    while (++area)
        loadArea(area);
    xml::IteratorConst color = it.createIterator("color");
    while (++color)
        loadColor(color);
}

void Control::loadChildren(xml::IteratorConst& it) {
    xml::IteratorConst list = it.createIterator("child");
    while (++list) {
        xml::IteratorConst child = list.createIterator("");
        while (++child)
            if (child->getType() == xml::XmlTag::Normal)
                loadChild(child);
    }
}

void Control::loadChild(xml::IteratorConst& it) {
    const std::string& type = it->getName();
    if (depthOf(*this) >= MAX_DEPTH) {
        ZTK_LOG("error", "app", "The control '%.100s' is left out: it lies deeper than %d others",
                type.c_str(), MAX_DEPTH);
        return;
    }
    if (!loadingStyles.empty() && styledControls++ >= MAX_STYLED) {
        if (styledControls == MAX_STYLED + 1) // said once
            ZTK_LOG("error", "app", "The styles hold more than %zu controls: '%.100s' and more are left out",
                    MAX_STYLED, type.c_str());
        return;
    }
    std::unique_ptr<Control> made(controlFactory.create(type));
    if (!made) {
        ZTK_LOG("log", "app", " -> Control type '%s' not found", type.c_str());
        return;
    }
    Control* control = made.release();
    addControl(control, -1);

    const std::string& styleClass = it->getValue("class");
    xml::IteratorConst style = getStyle(styleClass.empty() ? type : styleClass);
    if (++style)
        loadStyle(*control, style);
    control->load(it);

    if (Flow* flow = dynamic_cast<Flow*>(this)) {
        xml::IteratorConst area = it.createIterator("area");
        while (++area) {
            if (!area->getValue("size").empty())
                flow->setSize(control, float(toNumber(area->getValue("size"))));
            if (!area->getValue("percent").empty())
                flow->setPercent(control, float(toNumber(area->getValue("percent"))));
        }
    }
}

void Control::loadArea(xml::IteratorConst& it) {
    float x = 0, y = 0, width = 0, height = 0, w = 0, h = 0;
    readNumber(it->getValue("x"), x);
    readNumber(it->getValue("y"), y);
    readNumber(it->getValue("width"), width);
    readNumber(it->getValue("height"), height);
    readNumber(it->getValue("w"), w);
    readNumber(it->getValue("h"), h);
    const Box2 area(x, y, width + x + w, height + y + h);

    setMaximized(false);
    if (it->getValue("maximized") == "true") {
        setMaximized(true);
        mSavedArea = area; // where it goes when it is not maximized any more
    }
    setArea(area);
}

void Control::loadColor(xml::IteratorConst& it) {
    const std::string& name = it->getValue("name");
    const size_t dot = name.find('.');
    if (dot == std::string::npos)
        return;
    ColorSet* palette = paletteOf(*this, name.substr(0, dot));
    ColorPair* pair = palette ? pairOf(*palette, name.substr(dot + 1)) : nullptr;
    if (!pair)
        return;
    pair->first = hex2vec(it->getValue("first"));
    pair->second = hex2vec(it->getValue("second"));
}

} // namespace zentrak::panorama
