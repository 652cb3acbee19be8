#include "pan_spline.h"

#include "dis_key.h"
#include "pan_alive.h"
#include "pan_box.h"
#include "pan_look.h"
#include "pan_number.h"
#include "pan_render.h"
#include "xml_iterator.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <string_view>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr int LEAST_STEPS = 10;   // points of a curve: 1.2 times this, or half its pixels if more
constexpr int MOST_STEPS = 16384; // of a widget wider than any window
constexpr float POINTS_PER_STEP = 1.2f;
constexpr float SMALL_KEY = 2.0f;   // radius in pixels, without the focus
constexpr float SUBMENU_GAP = 2.0f; // pixels between a menu and its sub-menu

// What the menus report.
constexpr std::string_view ADD_KEY = "spline.add key";
constexpr std::string_view DELETE_KEY = "spline.delete key";
constexpr std::string_view TYPE = "spline.type."; // and the name of a mode

constexpr int MODES[] = {mathbase::SPLINE_SQUARE, mathbase::SPLINE_LINEAR, mathbase::SPLINE_SMOOTH};

} // namespace

Spline::Spline() {
    mType = mName = mCaptionText = "spline";
    mBack.color = {Vector4f(0.2f, 0, 0, 1), Vector4f(0.13f, 0, 0, 1)};
    mBack.border = {Vector4f(1, 1, 0.2f, 1), Vector4f(0.87f, 0.87f, 0.87f, 1)};
    mBack.highlight.first = Vector4f(1, 1, 0.2f, 1);
    mBack.pushed = {Vector4f(1, 1, 1, 1), Vector4f(0.3f, 0.85f, 1, 1)};
    mText.color.first = Vector4f(0.85f, 0.75f, 0.7f, 1);
    mContextEmpty.setCaption("spline");
    mContextEmpty.addOption("add key", "");
    mContextEmpty.addOption("-------", "");
    mContext.setCaption("spline");
    mContext.addOption("delete key", "");
    mContext.addOption("---------", "");
    mContextType.setCaption("type");
    for (const int mode : MODES)
        mContextType.addOption(SplineBase::getModeName(mode), "");
    mContextEmpty.addControl(&mContextType, -1);
    mContext.addControl(&mContextType, -1);
    mContextType.setParent(nullptr); // until one of the two opens it
}

// The sub-menu belongs to neither of the menus that it is in.
Spline::~Spline() {
    for (Context* menu : {&mContextEmpty, &mContext}) {
        menu->mOpenOption = menu->mHighlight = -1;
        std::erase(menu->mControls, &mContextType);
    }
    mContextType.setParent(nullptr);
    if (mOwnsSpline)
        delete mSpline;
}

Control* Spline::clone() {
    return new Spline;
}

void Spline::setSpline(SplineBase* spline, bool own) {
    if (mOwnsSpline && mSpline != spline)
        delete mSpline;
    mSpline = spline;
    mOwnsSpline = own;
    mDirty = true;
    mHoverKey = mDragKey = mSelected = mDeleteIndex = -1;
}

void Spline::setSplineType(std::string type) {
    for (const int mode : MODES)
        if (mSpline && type == SplineBase::getModeName(mode))
            mSpline->mMode = mode;
    mDirty = true;
}

void Spline::load(xml::IteratorConst& it) {
    setSpline(new SplineBase, true);
    Control::load(it);
    setSplineType(it->getValue("type"));
    xml::IteratorConst item = it.createIterator("item");
    while (++item) {
        Key key;
        key.time = float(toNumber(item->getValue("x")));
        key.value = float(toNumber(item->getValue("y")));
        mSpline->addKey(key);
    }
}

bool Spline::isFocused() const {
    return mParent && mParent->getFocus() == this;
}

bool Spline::hasKey(int index) const {
    return mSpline && index >= 0 && index < mSpline->getNumKeys();
}

Vector2f Spline::toWindow(float time, float value) const {
    const Box2& box = mArea.world;
    const float half = 0.5f * box.getHeight();
    return Vector2f(box.x1 + box.getWidth() * time, box.y1 + half + value * half);
}

Vector2f Spline::toWindow(int index) const {
    const Key& key = mSpline->mKeys[size_t(index)];
    return toWindow(key.time, key.value);
}

// False in a widget without width or height.
bool Spline::fromWindow(const Vector2f& position, Key& key) const {
    const Box2& box = mArea.world;
    const float half = 0.5f * box.getHeight();
    if (!(box.getWidth() > 0 && half > 0))
        return false;
    key.time = (position.x - box.x1) / box.getWidth();
    key.value = (position.y - box.y1 - half) / half;
    return true;
}

// The first key whose box is hit, or -1.
int Spline::findKey(const Vector2f& position) const {
    const float reach = mSize + 1.0f;
    for (int i = 0; hasKey(i); ++i) {
        const Vector2f at = toWindow(i);
        if (std::abs(at.x - position.x) <= reach && std::abs(at.y - position.y) <= reach)
            return i;
    }
    return -1;
}

// A visible key at the left or right edge can be hit across its whole width.
bool Spline::acceptEvents(Event& event) {
    if (Control::acceptEvents(event) || mDragKey != -1)
        return true;
    const Box2& clip = mArea.clip;
    const float reach = mSize + 1.0f;
    if (!(clip.x2 > clip.x1) ||
        !isInside(Box2(clip.x1 - reach, clip.y1, clip.x2 + reach, clip.y2), event.mousePos))
        return false;
    const int key = findKey(event.mousePos);
    return hasKey(key) && toWindow(key).x >= clip.x1 && toWindow(key).x <= clip.x2;
}

// Keys are taken with the focus only; a parent knows who has it.
int Spline::handleEvent(Event& event) {
    Alive alive(*this);
    int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (!mVisible)
        return 0;
    if (event.type == "mousemove") {
        mMouseX = event.mousePos.x;
        if (hasKey(mDragKey))
            dragKey(event.mousePos);
        else
            mHoverKey = findKey(event.mousePos);
    } else if (event.type == "mousedown") {
        onMouseDown(event);
        result = 1;
    } else if (event.type == "mouseup") {
        mDragKey = mHoverKey = -1;
        releaseMouse();
    } else if (event.type == "reset") {
        if (mDragKey == -1)
            mHoverKey = -1;
    } else if (event.type == "keydown" && (!mParent || isFocused())) {
        if (onKeyDown(event))
            result = 1;
    } else if (event.type == "context") {
        onContext(event.text);
    }
    return result;
}

void Spline::onCaptureLost() {
    mDragKey = mHoverKey = -1;
}

// The key follows the mouse without limits. Past a neighbour it moves in the list and is still dragged.
void Spline::dragKey(const Vector2f& position) {
    std::vector<Key>& keys = mSpline->mKeys;
    Key& key = keys[size_t(mDragKey)];
    if (!fromWindow(position, key))
        return;
    mSpline->mCurrent = -1;
    const bool before = mDragKey > 0 && key.time < keys[size_t(mDragKey - 1)].time;
    const bool after = hasKey(mDragKey + 1) && key.time > keys[size_t(mDragKey + 1)].time;
    if (before || after) {
        const Key moved = key;
        mSpline->removeKey(mDragKey);
        mDragKey = mSpline->addKey(moved);
    } else {
        mSpline->updateTangents(mDragKey, mDragKey, mDragKey);
    }
    mSelected = mHoverKey = mDragKey;
    mDirty = true;
    sendAction(ACTION_SPLINE, nullptr);
}

// After a release the mouse may still be on the key.
void Spline::onMouseDown(const Event& event) {
    if (!hasKey(mHoverKey))
        mHoverKey = findKey(event.mousePos);
    const bool onKey = hasKey(mHoverKey);
    if (event.button == 0) {
        if (onKey) {
            mDragKey = mSelected = mHoverKey;
            captureMouse(event);
            if (mParent && !isFocused()) // on the part of a key that lies outside
                mParent->setFocus(this);
        }
        return;
    }
    if (!mSpline)
        return;
    if (onKey)
        mDeleteIndex = mHoverKey;
    else
        mContextPos = event.mousePos;
    openMenu(onKey ? mContext : mContextEmpty, event.mousePos);
}

// As close to the position as fits into the window together with its sub-menu.
void Spline::openMenu(Context& menu, const Vector2f& position) {
    mContextType.setHighlight(SplineBase::getModeName(mSpline->mMode));
    mContextType.setParent(&menu);
    menu.setParent(this);
    menu.setPosition(position);
    setContext(&menu); // sizes it
    mContextType.resize();
    const display::DisplayGL* const display = getDisplay();
    if (!display)
        return;
    const Box2 &area = menu.mArea.area, &types = mContextType.mArea.area;
    const float width = area.getWidth() + SUBMENU_GAP + types.getWidth();
    const float height =
        std::max(area.getHeight(), types.getHeight() + 2 * (menu.mRowGap + Context::ROW_HEIGHT));
    const float right = float(display->mWindowMode.width), bottom = float(display->mWindowMode.height);
    menu.setPosition(Vector2f(std::max(0.0f, std::min(position.x, right - width)),
                              std::max(0.0f, std::min(position.y, bottom - height))));
}

// Returns whether it is one of the four keys used here.
bool Spline::onKeyDown(const Event& event) {
    if (!mSpline)
        return false;
    const int last = mSpline->getNumKeys() - 1;
    switch (event.key) {
    case display::KEY_LEFT:
    case display::KEY_RIGHT:
        mSelected =
            std::clamp(mSelected + (event.key == display::KEY_LEFT ? -1 : 1), std::min(0, last), last);
        return true;
    case display::KEY_DEL:
        if (hasKey(mSelected))
            removeKey(mSelected);
        return true;
    case display::KEY_INSERT:
        insertKey();
        return true;
    default:
        return false;
    }
}

// After the selected key: halfway to the next one, or, where there is none, at the right edge.
void Spline::insertKey() {
    Key key;
    if (hasKey(mSelected) && hasKey(mSelected + 1)) {
        const Key& a = mSpline->mKeys[size_t(mSelected)];
        const Key& b = mSpline->mKeys[size_t(mSelected + 1)];
        key.time = (a.time + b.time) * 0.5f;
        key.value = (a.value + b.value) * 0.5f;
        key.tangentIn = (a.tangentIn + b.tangentIn) * 0.5f;
        key.tangentOut = (a.tangentOut + b.tangentOut) * 0.5f;
    } else if (mSpline->getNumKeys() > 0) {
        key.time = 1.0f;
        key.value = mSpline->mKeys.back().value;
    }
    addKey(key);
}

// The selection stays on its key.
void Spline::addKey(const Key& key) {
    const int index = mSpline->addKey(key);
    if (hasKey(mSelected) && index <= mSelected)
        ++mSelected;
    mHoverKey = mDragKey = -1;
    mDirty = true;
}

// If the selected key is gone, selects the next one, or the last.
void Spline::removeKey(int index) {
    mSpline->removeKey(index);
    if (index < mSelected)
        --mSelected;
    mSelected = std::min(mSelected, mSpline->getNumKeys() - 1);
    mHoverKey = mDragKey = -1;
    mDirty = true;
}

void Spline::onContext(const std::string& text) {
    SplineBase* const m_spline = mSpline;
    if (!m_spline)
        return;
    if (text == DELETE_KEY) {
        assert(mDeleteIndex>=0 && mDeleteIndex<(int)m_spline->getNumKeys());
        removeKey(mDeleteIndex);
    } else if (text == ADD_KEY) {
        Key key;
        if (fromWindow(mContextPos, key))
            addKey(key);
    } else if (text.starts_with(TYPE)) {
        setSplineType(text.substr(TYPE.size()));
    }
}

void Spline::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2& world = mArea.world;
    render->setColor(mBack.color.first, mBack.color.second);
    render->drawBox(mArea.clip, 0);
    if (mSpline && world.getWidth() > 0) {
        mMode = SplineBase::getModeName(mSpline->mMode);
        render->setColor(mText.color.first, NO_COLOR);
        render->setFontMode(display::Font::ALIGN_LEFT);
        render->drawText(mMode, Vector2f(world.x1 + 2, world.y1 + 4));
        drawCurve(*render);
        drawKeys(*render);
    }
    if (isFocused() && mHover) {
        render->setColor(mBack.border.first, NO_COLOR);
        render->drawLine(Vector2f(mMouseX, world.y1), Vector2f(mMouseX, world.y2));
    }
    Control::draw();
}

// Steps of equal time from 0 to 1.
void Spline::buildPoints(int steps) {
    const int count = int(POINTS_PER_STEP * float(steps));
    mPoints.resize(size_t(count));
    for (int i = 0; i < count; ++i) {
        const float time = float(i) / float(count - 1);
        mPoints[size_t(i)] = Vector2f(time, mSpline->evaluate(time));
    }
    mDirty = false;
}

// Only the visible part: a long span is many windows wide.
void Spline::drawCurve(Render& render) {
    const Box2& world = mArea.world;
    const float half = world.getWidth() * 0.5f;
    const int steps = half < float(MOST_STEPS) ? std::max(LEAST_STEPS, int(half)) : MOST_STEPS;
    if (mDirty || int(mPoints.size()) < steps)
        buildPoints(steps);
    render.setColor(mBack.border.first, mBack.border.second);
    const int last = int(mPoints.size()) - 1;
    const auto indexAt = [&](float x) { // as a float; a NaN is 0
        const float index = (x - world.x1) / world.getWidth() * float(last);
        return index > 0 ? std::min(index, float(last)) : 0.0f;
    };
    const int first = int(indexAt(mArea.clip.x1)), end = int(std::ceil(indexAt(mArea.clip.x2)));
    for (int i = first; i < end; ++i) {
        const Vector2f &from = mPoints[size_t(i)], &to = mPoints[size_t(i + 1)];
        if (std::isfinite(from.y) && std::isfinite(to.y))
            render.drawLine(toWindow(from.x, from.y), toWindow(to.x, to.y));
    }
}

void Spline::drawKeys(Render& render) {
    const bool focused = isFocused();
    const float radius = focused ? mSize : SMALL_KEY;
    for (int i = 0; hasKey(i); ++i) {
        const Vector2f at = toWindow(i);
        const Box2 disc(at.x - radius, at.y - radius, at.x + radius, at.y + radius);
        const Box2& clip = mArea.clip;
        if (!(disc.x2 > clip.x1 && disc.x1 < clip.x2 && disc.y2 > clip.y1 && disc.y1 < clip.y2))
            continue;
        const bool held = mDragKey != -1;
        render.setColor(i == mHoverKey              ? (held ? mBack.pushed : mBack.highlight).first
                        : focused && i == mSelected ? mBack.pushed.second
                                                    : mBack.border.first,
                        NO_COLOR);
        render.drawCircle(disc, -1, 0);
    }
}

} // namespace zentrak::panorama
