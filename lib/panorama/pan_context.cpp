#include "pan_context.h"

#include "pan_alive.h"
#include "pan_box.h"
#include "pan_look.h"
#include "pan_workspace.h"
#include "xml_iterator.h"
#include "ztk_system.h"

#include <algorithm>
#include <memory>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float SUBMENU_GAP = 2.0f; // pixels between a menu and the one that it opens

const std::string ARROW = ">"; // marks a row with a sub-menu

// Clamps a row index; NaN is the first.
int clampRow(float row, int rows) {
    return row > 0 ? row < float(rows) ? int(row) : rows : 0;
}

} // namespace

Context* Context::sFirst = nullptr;

Context::Context() {
    const Vector4f white(1, 1, 1, 1);
    mType = mName = mCaptionText = "context";
    mBack.color = {Vector4f(0, 0, 0, 0.8f), Vector4f(0.1f, 0.15f, 0.1f, 0.8f)};
    mBack.highlight = {white, Vector4f(1, 1, 1, 0.8f)};
    mText.color.first = white;
    mText.highlight = {Vector4f(0, 0, 0, 1), Vector4f(1, 1, 0.7f, 1)};
}

Context::~Context() {
    close();
    if (Context* menu = dynamic_cast<Context*>(mParent)) // not deleted by it
        std::erase(menu->mControls, this);
    unlink();
}

Control* Context::clone() {
    return new Context;
}

void Context::load(xml::IteratorConst& it) {
    Control::load(it);
    xml::IteratorConst item = it.createIterator("item");
    const bool tooDeep = getDepth() >= MAX_DEPTH;
    while (++item) {
        if (tooDeep) {
            ZTK_LOG("warning", "app", "Menus nested deeper than %d are left out", MAX_DEPTH);
            return;
        }
        addOption(item->getValue("caption"), "")->load(item);
    }
}

void Context::setParent(Control* parent) {
    const bool shared = mParent && mParent != parent; // a row of several menus
    unlink();
    Control::setParent(parent);
    if (mParent && (shared || !dynamic_cast<Context*>(mParent)))
        link();
}

// Not cached: a menu may belong to one control after another.
Render* Context::getRender() {
    return mParent ? mParent->getRender() : nullptr;
}

void Context::setArea(Box2 area) {
    mArea.area = area;
    buildChildArea();
    buildArea(mArea, false);
    buildArea(mChildArea, true);
}

// If it is the one that is open in its window.
void Context::close() {
    Workspace* const root = dynamic_cast<Workspace*>(getRoot());
    if (root && root->mContext == this)
        root->resetContext();
}

void Context::link() {
    mNext = sFirst;
    if (mNext)
        mNext->mPrevious = this;
    sFirst = this;
}

void Context::unlink() {
    if (mPrevious)
        mPrevious->mNext = mNext;
    else if (sFirst == this)
        sFirst = mNext;
    if (mNext)
        mNext->mPrevious = mPrevious;
    mPrevious = mNext = nullptr;
}

void Context::letGo(Control& owner) {
    Context* next = nullptr;
    for (Context* menu = sFirst; menu; menu = next) {
        next = menu->mNext;
        if (menu->mParent != &owner)
            continue;
        menu->close();
        menu->setParent(nullptr);
    }
}

// How many menus this one is inside of.
int Context::getDepth() const {
    int depth = 0;
    for (const Control* above = mParent; above && dynamic_cast<const Context*>(above); above = above->mParent)
        ++depth;
    return depth;
}

void Context::addControl(Control* control, int index) {
    if (!control)
        return;
    if (Control* before = control->mParent; before && !dynamic_cast<Context*>(before)) // it moves
        std::erase(before->mControls, control);
    const size_t rows = mControls.size();
    const size_t place = index < 0 ? rows : std::min(size_t(index), rows);
    control->setParent(this);
    control->setArea(control->mArea.area);
    control->setMaximized(control->mMaximized);
    mControls.insert(mControls.begin() + ptrdiff_t(place), control);
}

void Context::deleteOptions() {
    mHighlight = mOpenOption = -1;
    mSelected.clear();
    deleteControls();
}

Context* Context::addOption(std::string caption, std::string name) {
    auto option = std::make_unique<Context>();
    option->setCaption(std::move(caption));
    option->setName(std::move(name));
    addControl(option.get(), -1);
    return option.release();
}

void Context::setOption(std::string caption, int index) {
    if (index < 0)
        index = std::max(mHighlight, 0);
    if (Control* option = getRow(index))
        option->setCaption(std::move(caption));
}

int Context::setHighlight(const std::string& caption) {
    for (size_t i = 0; i < mControls.size(); ++i)
        if (mControls[i]->mCaptionText == caption) {
            mSelected = caption;
            return int(i);
        }
    return -1;
}

void Context::setFixedWidth(float width) {
    mFixedWidth = width;
}

void Context::resize() {
    float width = mFixedWidth;
    if (!(width > 0)) {
        float widest = 0;
        for (const Control* option : mControls)
            widest = std::max(widest, look::getTextLength(*this, option->mCaptionText));
        width = widest + 2.0f * mMargin + mExtraWidth;
    }
    const float height = 2.0f * mMargin + float(mControls.size()) * (mRowGap + ROW_HEIGHT) - mRowGap;
    const Box2& area = mArea.area;
    setArea(Box2(area.x1, area.y1, area.x1 + width, area.y1 + height));
    mHighlight = mOpenOption = -1;
}

Control* Context::getRow(int index) const {
    return index >= 0 && size_t(index) < mControls.size() ? mControls[size_t(index)] : nullptr;
}

// The menu that a row opens, or null.
Context* Context::getSubMenu(int index) const {
    Control* row = getRow(index);
    return row && !row->mControls.empty() ? dynamic_cast<Context*>(row) : nullptr;
}

float Context::getRowTop(int index) const {
    return mArea.area.y1 + mMargin + (mRowGap + ROW_HEIGHT) * float(index);
}

// The rows that may reach into the span between two heights, as the first and one past the last: a few too
// many, never too few.
std::pair<int, int> Context::getRowsBetween(float y1, float y2) const {
    const int rows = int(mControls.size());
    const float pitch = mRowGap + ROW_HEIGHT;
    if (!(pitch > 0)) // all on top of each other, or upward
        return {0, rows};
    const float top = mArea.area.y1 + mMargin;
    return {clampRow((y1 - top - ROW_HEIGHT) / pitch - 1.0f, rows),
            clampRow((y2 - top) / pitch + 2.0f, rows)};
}

int Context::handleEvent(Event& event) {
    Alive alive(*this);
    if (event.type == "mousemove")
        hover(event.mousePos);
    if (Context* menu = getSubMenu(mOpenOption)) {
        menu->handleEvent(event);
        if (!alive)
            return 0;
    }
    const Control* row = getRow(mHighlight);
    if (event.type == "mouseup" && event.button == 0 && row) {
        Event report;
        report.type = "context";
        report.text = row->mCaptionText;
        sendContextEvent(report); // last: the receiver may delete this
    }
    return 0;
}

void Context::hover(Vector2f position) {
    mHighlight = -1;
    const auto [first, end] = getRowsBetween(position.y, position.y);
    for (int i = first; i < end; ++i) {
        const float top = getRowTop(i);
        if (!isInside(Box2(mArea.area.x1, top, mArea.area.x2, top + ROW_HEIGHT), position))
            continue;
        mHighlight = i;
        if (mOpenOption != i)
            mOpenOption = -1;
        if (Context* menu = getSubMenu(i))
            openOption(i, *menu);
    }
}

// A menu that is a row in several others reports to the one that has opened it.
void Context::openOption(int index, Context& menu) {
    mOpenOption = index;
    if (menu.mParent != this)
        menu.setParent(this);
    menu.setPosition(Vector2f(mArea.area.x2 + SUBMENU_GAP, getRowTop(index) - mMargin));
    menu.resize();
}

void Context::sendContextEvent(Event& event) {
    Control* const owner = mParent;
    if (!owner)
        return;
    Event report = event;
    report.text = mCaptionText + "." + event.text;
    if (Context* menu = dynamic_cast<Context*>(owner)) {
        menu->sendContextEvent(report);
        return;
    }
    const std::string path = report.text;
    Alive alive(*this);
    owner->handleEvent(report);
    if (alive && mParent == owner)
        owner->sendContextAction(this, path);
}

void Context::draw() {
    Render* render = getRender();
    if (!render)
        return;
    if (mParent && !mParent->isShown()) {
        close();
        return;
    }
    look::fill(*render, mArea.area, mBack.color);
    look::outline(*render, mArea.area, mBack.border);
    const float windowTop = render->mDrawOffset.y;
    const auto [first, end] = getRowsBetween(windowTop, windowTop + render->mSize.y);
    for (int i = first; i < end; ++i)
        drawRow(*render, i);
    if (Context* menu = getSubMenu(mOpenOption))
        menu->draw();
}

void Context::drawRow(Render& render, int index) {
    const Control& row = *mControls[size_t(index)];
    const Box2& area = mArea.area;
    const float left = area.x1 + mMargin, right = area.x2 - mMargin;
    const float top = getRowTop(index), middle = top + 0.5f * ROW_HEIGHT;
    if (index == mHighlight)
        look::fill(render, Box2(left, top, right, top + ROW_HEIGHT), mBack.highlight);
    const Vector4f& color = index == mHighlight             ? mText.highlight.first
                            : row.mCaptionText == mSelected ? mText.highlight.second
                                                            : mText.color.first;
    look::drawText(render, fit(render, row.mCaptionText), color, Vector2f(left, middle));
    if (getSubMenu(index))
        look::drawText(render, ARROW, color, Vector2f(right - render.getTextLength(ARROW), middle));
}

// A caption, cut where it would leave the menu or start beyond the window's right edge. Valid until the next
// call.
const std::string& Context::fit(const Render& render, const std::string& caption) {
    const float room = mArea.area.getWidth() - 2.0f * mMargin;
    const float shown = render.mDrawOffset.x + render.mSize.x - mArea.area.x1 - mMargin;
    float length = 0;
    size_t count = 0;
    while (count < caption.size() && !(length > shown)) {
        length += render.getAdvance(uint8_t(caption[count]));
        if (length > room)
            break;
        ++count;
    }
    return count == caption.size() ? caption : mFitted.assign(caption, 0, count);
}

} // namespace zentrak::panorama
