#include "pan_splineorg.h"

#include "dis_key.h"
#include "pan_alive.h"
#include "pan_curvemenu.h"
#include "pan_look.h"
#include "pan_number.h"
#include "pan_render.h"
#include "xml_iterator.h"

#include <algorithm>
#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float SMALL_NODE = 2.0f; // radius in pixels, without the focus
constexpr float STEP = 2.0f;       // pixels of a smooth curve that are one line

bool isBefore(const SplineNodeOrg& a, const SplineNodeOrg& b) {
    return a.x < b.x;
}

} // namespace

SplineOrg::SplineOrg() {
    mType = mName = mCaptionText = "splineorg";
    mBack.color = {Vector4f(0, 0.1f, 0.2f, 1), Vector4f(0, 0.06f, 0.13f, 1)};
    mBack.border = {Vector4f(1, 1, 0.2f, 1), Vector4f(0.87f, 0.87f, 0.87f, 1)};
    mBack.highlight.first = Vector4f(1, 0.7f, 0.2f, 1);
    mBack.pushed = {Vector4f(1, 1, 1, 1), Vector4f(0.3f, 0.85f, 1, 1)};
    mText.color.first = Vector4f(0.7f, 0.75f, 0.85f, 1);
    curve::buildMenus(mContextEmpty, mContext, mContextType);
}

SplineOrg::~SplineOrg() {
    curve::releaseMenus(mContextEmpty, mContext, mContextType);
}

Control* SplineOrg::clone() {
    return new SplineOrg;
}

int SplineOrg::addNode(const SplineNodeOrg& node) {
    const auto place = std::upper_bound(mNodes.begin(), mNodes.end(), node, isBefore);
    return int(mNodes.insert(place, node) - mNodes.begin());
}

void SplineOrg::setSplineType(std::string type) {
    if (type == "square" || type == "linear" || type == "smooth")
        mMode = std::move(type);
}

void SplineOrg::load(xml::IteratorConst& it) {
    Control::load(it);
    setSplineType(it->getValue("type"));
    xml::IteratorConst item = it.createIterator("item");
    while (++item)
        addNode({float(toNumber(item->getValue("x"))), float(toNumber(item->getValue("y")))});
}

bool SplineOrg::hasNode(int index) const {
    return index >= 0 && size_t(index) < mNodes.size();
}

float SplineOrg::evaluate(float x) const {
    if (mNodes.empty())
        return 0;
    const auto next = std::upper_bound(mNodes.begin(), mNodes.end(), SplineNodeOrg{x, 0}, isBefore);
    if (next == mNodes.begin())
        return mNodes.front().y;
    if (next == mNodes.end() || mMode == "square")
        return next[-1].y;
    const SplineNodeOrg &a = next[-1], &b = *next;
    const float u = (x - a.x) / (b.x - a.x);
    if (mMode == "linear")
        return a.y + (b.y - a.y) * u;
    // The slope at a node, over the length of this part of the curve.
    const auto slope = [&](const SplineNodeOrg& before, const SplineNodeOrg& behind) {
        return behind.x > before.x ? (behind.y - before.y) / (behind.x - before.x) * (b.x - a.x) : 0.0f;
    };
    const float from = slope(next - 1 == mNodes.begin() ? a : next[-2], b);
    const float to = slope(a, next + 1 == mNodes.end() ? b : next[1]);
    const float d = b.y - a.y;
    return a.y + u * (from + u * (3 * d - 2 * from - to + u * (from + to - 2 * d)));
}

Vector2f SplineOrg::toWindow(const SplineNodeOrg& node) const {
    return curve::toWindow(mArea.world, node.x, node.y);
}

// The first node of the list whose box is hit, or -1.
int SplineOrg::findNode(const Vector2f& place) const {
    return curve::findPoint(int(mNodes.size()), mSize + 1.0f, place,
                            [this](int i) { return toWindow(mNodes[size_t(i)]); });
}

bool SplineOrg::acceptEvents(Event& event) {
    return Control::acceptEvents(event) || mDragNode != -1;
}

int SplineOrg::handleEvent(Event& event) {
    Alive alive(*this);
    int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (!mVisible)
        return 0;
    if (mDragNode != -1 && mDrag.isLost(*this, event))
        mDragNode = -1;
    if (hasNode(mDragNode) && mDrag.movesOn(event)) {
        dragNode(event.mousePos);
    } else if (event.type == "mousemove" && mDragNode == -1) {
        mHoverNode = findNode(event.mousePos);
    } else if (event.type == "mousedown") {
        onMouseDown(event);
        result = 1;
    } else if (event.type == "mouseup") {
        mDragNode = mHoverNode = -1;
    } else if (event.type == "reset") {
        if (mDragNode == -1)
            mHoverNode = -1;
    } else if (event.type == "keydown" && (!mParent || mParent->getFocus() == this)) {
        if (onKeyDown(event))
            result = 1;
    } else if (event.type == "context") {
        onContext(event.text);
    }
    return result;
}

// A node that passes a neighbour finds its new place in the list, and stays the one that is held.
void SplineOrg::dragNode(const Vector2f& place) {
    SplineNodeOrg node;
    if (!curve::fromWindow(mArea.world, place, node.x, node.y))
        return;
    mNodes.erase(mNodes.begin() + mDragNode);
    mDragNode = mSelected = mHoverNode = addNode(node);
    sendAction(ACTION_SPLINE, nullptr);
}

// After a release the mouse may be on the node still.
void SplineOrg::onMouseDown(const Event& event) {
    if (!hasNode(mHoverNode))
        mHoverNode = findNode(event.mousePos);
    const bool onNode = hasNode(mHoverNode);
    if (event.button == 0) {
        if (onNode) {
            mDragNode = mSelected = mHoverNode;
            mDrag.start(*this, event);
        }
        return;
    }
    if (onNode)
        mDeleteIndex = mHoverNode;
    else
        mContextPos = event.mousePos;
    curve::openMenu(*this, onNode ? mContext : mContextEmpty, mContextType, event.mousePos, mMode);
}

// Whether the key is one of the four that it knows.
bool SplineOrg::onKeyDown(const Event& event) {
    if (curve::stepSelection(event.key, int(mNodes.size()), mSelected))
        return true;
    switch (event.key) {
    case display::KEY_DEL:
        removeNode(mSelected);
        return true;
    case display::KEY_INSERT:
        insertNode();
        return true;
    default:
        return false;
    }
}

// Behind the selected node: halfway to the next one, or, where there is none, at the right edge.
void SplineOrg::insertNode() {
    SplineNodeOrg node;
    if (hasNode(mSelected) && hasNode(mSelected + 1)) {
        const SplineNodeOrg &a = mNodes[size_t(mSelected)], &b = mNodes[size_t(mSelected + 1)];
        node = {(a.x + b.x) * 0.5f, (a.y + b.y) * 0.5f};
    } else if (!mNodes.empty()) {
        node = {1.0f, mNodes.back().y};
    }
    const int index = addNode(node);
    if (hasNode(mSelected) && index <= mSelected)
        ++mSelected;
    mHoverNode = mDragNode = -1;
}

void SplineOrg::removeNode(int index) {
    if (!hasNode(index))
        return;
    mNodes.erase(mNodes.begin() + index);
    if (index < mSelected)
        --mSelected;
    mSelected = std::min(mSelected, int(mNodes.size()) - 1);
    mHoverNode = mDragNode = -1;
}

void SplineOrg::onContext(const std::string& text) {
    SplineNodeOrg node;
    if (text == curve::DELETE_KEY)
        removeNode(mDeleteIndex);
    else if (text == curve::ADD_KEY && curve::fromWindow(mArea.world, mContextPos, node.x, node.y))
        mSelected = addNode(node);
    else if (text.compare(0, curve::TYPE.size(), curve::TYPE) == 0)
        setSplineType(text.substr(curve::TYPE.size()));
}

void SplineOrg::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2& world = mArea.world;
    render->setColor(mBack.color.first, mBack.color.second);
    render->drawBox(mArea.clip, 0);
    render->setColor(mText.color.first, look::none);
    render->setFontMode(display::Font::ALIGN_LEFT);
    render->drawText(mMode, Vector2f(world.x1 + 2, world.y1 + 4));
    if (!mNodes.empty() && world.getWidth() > 0) {
        render->setColor(mBack.border.first, mBack.border.second);
        if (mMode == "linear")
            drawLinear(*render);
        else if (mMode == "square")
            drawSquare(*render);
        else
            drawSmooth(*render);
        drawNodes(*render);
    }
    Control::draw();
}

// From node to node, and level before the first and behind the last.
void SplineOrg::drawLinear(Render& render) {
    Vector2f from(mArea.world.x1, toWindow(mNodes.front()).y);
    for (const SplineNodeOrg& node : mNodes) {
        const Vector2f to = toWindow(node);
        render.drawLine(from, to);
        from = to;
    }
    render.drawLine(from, Vector2f(mArea.world.x2, from.y));
}

void SplineOrg::drawSquare(Render& render) {
    Vector2f from(mArea.world.x1, toWindow(mNodes.front()).y);
    for (const SplineNodeOrg& node : mNodes) {
        const Vector2f to = toWindow(node);
        render.drawLine(from, Vector2f(to.x, from.y));
        render.drawLine(Vector2f(to.x, from.y), to);
        from = to;
    }
    render.drawLine(from, Vector2f(mArea.world.x2, from.y));
}

// Only the part that can be seen.
void SplineOrg::drawSmooth(Render& render) {
    const Box2 &world = mArea.world, &clip = mArea.clip;
    const auto pointAt = [&](float x) {
        const float place = (x - world.x1) / world.getWidth();
        return Vector2f(x, toWindow({place, evaluate(place)}).y);
    };
    Vector2f from = pointAt(clip.x1);
    for (float x = clip.x1; x < clip.x2; x += STEP) {
        const Vector2f to = pointAt(std::min(x + STEP, clip.x2));
        render.drawLine(from, to);
        from = to;
    }
}

void SplineOrg::drawNodes(Render& render) {
    const bool focused = mParent && mParent->getFocus() == this;
    const curve::Marks marks{mHoverNode, mSelected, mDragNode != -1, focused};
    for (int i = 0; hasNode(i); ++i)
        curve::drawPoint(render, *this, toWindow(mNodes[size_t(i)]), focused ? mSize : SMALL_NODE, i, marks);
}

} // namespace zentrak::panorama
