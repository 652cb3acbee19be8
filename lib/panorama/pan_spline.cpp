#include "pan_spline.h"

#include "dis_key.h"
#include "pan_alive.h"
#include "pan_curvemenu.h"
#include "pan_look.h"
#include "pan_number.h"
#include "pan_render.h"
#include "xml_iterator.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr int LEAST_STEPS = 10;   // points of a curve: 1.2 times this, or half its pixels if more
constexpr int MOST_STEPS = 16384; // of a widget wider than any window
constexpr float POINTS_PER_STEP = 1.2f;
constexpr float SMALL_KEY = 2.0f; // radius in pixels, without the focus

} // namespace

Spline::Spline() {
    mType = mName = mCaptionText = "spline";
    mBack.color = {Vector4f(0.2f, 0, 0, 1), Vector4f(0.13f, 0, 0, 1)};
    mBack.border = {Vector4f(1, 1, 0.2f, 1), Vector4f(0.87f, 0.87f, 0.87f, 1)};
    mBack.highlight.first = Vector4f(1, 1, 0.2f, 1);
    mBack.pushed = {Vector4f(1, 1, 1, 1), Vector4f(0.3f, 0.85f, 1, 1)};
    mText.color.first = Vector4f(0.85f, 0.75f, 0.7f, 1);
    curve::buildMenus(mContextEmpty, mContext, mContextType);
}

Spline::~Spline() {
    curve::releaseMenus(mContextEmpty, mContext, mContextType);
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
    for (const int mode : {mathbase::SPLINE_SQUARE, mathbase::SPLINE_LINEAR, mathbase::SPLINE_SMOOTH})
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

Vector2f Spline::toWindow(int index) const {
    const Key& key = mSpline->mKeys[size_t(index)];
    return curve::toWindow(mArea.world, key.time, key.value);
}

// The first key of the list whose box is hit, or -1.
int Spline::findKey(const Vector2f& place) const {
    return curve::findPoint(mSpline ? mSpline->getNumKeys() : 0, mSize + 1.0f, place,
                            [this](int i) { return toWindow(i); });
}

bool Spline::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mDragKey != -1;
}

/*
 * Keys are taken with the focus only: without it they belong to whoever comes next. A parent says who has it.
 */
int Spline::handleEvent(Event& event) {
    Alive alive(*this);
    int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (!mVisible)
        return 0;
    if (mDragKey != -1 && mDrag.isLost(*this, event))
        mDragKey = -1;
    if (hasKey(mDragKey) && mDrag.movesOn(event)) {
        mMouseX = event.mousePos.x;
        dragKey(event.mousePos);
    } else if (event.type == "mousemove" && mDragKey == -1) {
        mMouseX = event.mousePos.x;
        mHoverKey = findKey(event.mousePos);
    } else if (event.type == "mousedown") {
        onMouseDown(event);
        result = 1;
    } else if (event.type == "mouseup") {
        mDragKey = mHoverKey = -1;
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

/*
 * The key goes where the mouse is, wherever that is. One that passes a neighbour finds its new place in the
 * list, and stays the one that is held.
 */
void Spline::dragKey(const Vector2f& place) {
    std::vector<Key>& keys = mSpline->mKeys;
    Key& key = keys[size_t(mDragKey)];
    if (!curve::fromWindow(mArea.world, place, key.time, key.value))
        return;
    mSpline->mCurrent = -1;
    const bool before = mDragKey > 0 && key.time < keys[size_t(mDragKey - 1)].time;
    const bool behind = hasKey(mDragKey + 1) && key.time > keys[size_t(mDragKey + 1)].time;
    if (before || behind) {
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

// After a release the mouse may be on the key still.
void Spline::onMouseDown(const Event& event) {
    if (!hasKey(mHoverKey))
        mHoverKey = findKey(event.mousePos);
    const bool onKey = hasKey(mHoverKey);
    if (event.button == 0) {
        if (onKey) {
            mDragKey = mSelected = mHoverKey;
            mDrag.start(*this, event);
        }
        return;
    }
    if (!mSpline)
        return;
    if (onKey)
        mDeleteIndex = mHoverKey;
    else
        mContextPos = event.mousePos;
    curve::openMenu(*this, onKey ? mContext : mContextEmpty, mContextType, event.mousePos,
                    SplineBase::getModeName(mSpline->mMode));
}

// Whether the key is one of the four that it knows.
bool Spline::onKeyDown(const Event& event) {
    if (!mSpline)
        return false;
    if (curve::stepSelection(event.key, mSpline->getNumKeys(), mSelected))
        return true;
    switch (event.key) {
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

/*
 * Behind the selected key: halfway to the next one, or, where there is none, at the right edge.
 */
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

// A selection that has lost its key goes to the next one, or, behind the last, to the one before.
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
    if (text == curve::DELETE_KEY) {
        assert(mDeleteIndex>=0 && mDeleteIndex<(int)m_spline->getNumKeys());
        removeKey(mDeleteIndex);
    } else if (text == curve::ADD_KEY) {
        Key key;
        if (curve::fromWindow(mArea.world, mContextPos, key.time, key.value))
            addKey(key);
    } else if (text.compare(0, curve::TYPE.size(), curve::TYPE) == 0) {
        setSplineType(text.substr(curve::TYPE.size()));
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
        render->setColor(mText.color.first, look::none);
        render->setFontMode(display::Font::ALIGN_LEFT);
        render->drawText(mMode, Vector2f(world.x1 + 2, world.y1 + 4));
        drawCurve(*render);
        drawKeys(*render);
    }
    if (isFocused() && mHover) {
        render->setColor(mBack.border.first, look::none);
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

/*
 * Only the part that can be seen: a long span is many windows wide.
 */
void Spline::drawCurve(Render& render) {
    const Box2& world = mArea.world;
    const float half = world.getWidth() * 0.5f;
    const int steps = half < float(MOST_STEPS) ? std::max(LEAST_STEPS, int(half)) : MOST_STEPS;
    if (mDirty || int(mPoints.size()) < steps)
        buildPoints(steps);
    render.setColor(mBack.border.first, mBack.border.second);
    const int last = int(mPoints.size()) - 1;
    const float scale = float(last) / world.getWidth();
    const int first = int(std::clamp((mArea.clip.x1 - world.x1) * scale, 0.0f, float(last)));
    const int end = int(std::clamp(std::ceil((mArea.clip.x2 - world.x1) * scale), 0.0f, float(last)));
    for (int i = first; i < end; ++i) {
        const Vector2f &from = mPoints[size_t(i)], &to = mPoints[size_t(i + 1)];
        if (std::isfinite(from.y) && std::isfinite(to.y))
            render.drawLine(curve::toWindow(world, from.x, from.y), curve::toWindow(world, to.x, to.y));
    }
}

void Spline::drawKeys(Render& render) {
    const curve::Marks marks{mHoverKey, mSelected, mDragKey != -1, isFocused()};
    for (int i = 0; hasKey(i); ++i)
        curve::drawPoint(render, *this, toWindow(i), marks.focused ? mSize : SMALL_KEY, i, marks);
}

} // namespace zentrak::panorama
