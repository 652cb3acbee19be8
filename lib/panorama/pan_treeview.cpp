#include "pan_treeview.h"

#include "dis_key.h"
#include "pan_look.h"
#include "ztk_system.h"

namespace zentrak::panorama {

using namespace look;
using namespace display; // the keys
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float HEADING = 18.0f;     // height of the heading, pixels
constexpr float ARROW = 16.0f;       // width of the room for an arrow
constexpr float GAP = 4.0f;          // after a text
constexpr float LEAST_THUMB = 16.0f; // length, pixels
constexpr float WHEEL = 50.0f;       // pixels a step

bool isSize(float size) {
    return size >= 1 && size <= 1000;
}

} // namespace

TreeView::TreeView() : InputControl(true) {
    mType = "treeview";
    mCaptionText.clear();
    setSunkLook(mBack);
    setPair(mBack.highlight, Vector4f(1.0f, 1.0f, 1.0f, 0.07f)); // the row under the mouse
    setPair(mBack.pushed, accent);                               // the selected one
    setTextLook(mText);
    setPair(mCaption.border, bright);                             // the outline of the one that has the keys
    setPair(mCaption.color, Vector4f(0.36f, 0.36f, 0.42f, 1.0f)); // the bars
    setPair(mCaption.pushed, bright);
}

Control* TreeView::clone() {
    return new TreeView;
}

void TreeView::load(xml::IteratorConst& it) {
    Control::load(it);
    float size = 0;
    readNumber(it->getValue("size"), size);
    if (isSize(size))
        mSize = size;
    if (!it->getValue("text").empty())
        setCaption(it->getValue("text"));

    // Walks down and up without recursion.
    struct Level {
        xml::IteratorConst it;
        int node;
    };
    std::vector<Level> levels;
    levels.push_back({it.createIterator("item"), -1});
    bool first = true;
    while (!levels.empty()) {
        if (!++levels.back().it) {
            if (levels.back().node != -1)
                mNodes[size_t(levels.back().node)].next = getItemCount();
            levels.pop_back();
            continue;
        }
        if (first)
            deleteItems();
        first = false;
        const xml::IteratorConst& item = levels.back().it;
        Node node;
        node.id = item->getValue("id");
        node.text.set(item->getValue("text"));
        float height = 0;
        readNumber(item->getValue("size"), height);
        node.size = isSize(height) ? height : mSize;
        node.depth = int(levels.size()) - 1;
        node.parent = levels.back().node;
        node.next = getItemCount() + 1;
        mNodes.push_back(std::move(node));
        xml::IteratorConst inner = item.createIterator("item");
        levels.push_back({std::move(inner), getItemCount() - 1});
    }
    mBuilt = false;
}

int TreeView::addItem(int parent, const std::string& id, const std::string& text, float size) {
    if (!getItem(parent))
        parent = -1;
    const int at = parent == -1 ? getItemCount() : mNodes[size_t(parent)].next;
    Node node;
    node.id = id;
    node.text.set(text);
    node.size = isSize(size) ? size : mSize;
    node.depth = parent == -1 ? 0 : mNodes[size_t(parent)].depth + 1;
    node.parent = parent;
    node.next = at + 1;
    for (int up = parent; up != -1; up = mNodes[size_t(up)].parent)
        ++mNodes[size_t(up)].next;
    for (size_t i = size_t(at); i < mNodes.size(); ++i) {
        ++mNodes[i].next;
        if (mNodes[i].parent >= at)
            ++mNodes[i].parent;
    }
    mNodes.insert(mNodes.begin() + at, std::move(node));
    if (mSelected >= at)
        ++mSelected;
    mBuilt = false;
    return at;
}

void TreeView::deleteItems() {
    mNodes.clear();
    mSelected = mHoverRow = -1;
    mScrollX = mScrollY = 0;
    mBuilt = false;
}

const TreeView::Node* TreeView::getItem(int index) const {
    return index >= 0 && index < getItemCount() ? &mNodes[size_t(index)] : nullptr;
}

void TreeView::setSelected(int index) {
    if (index == -1 || getItem(index))
        mSelected = index;
}

void TreeView::setOpen(int index, bool open) {
    if (!getItem(index) || mNodes[size_t(index)].open == open)
        return;
    mNodes[size_t(index)].open = open;
    mHoverRow = -1;
    mBuilt = false;
}

void TreeView::setArea(Box2 box) {
    InputControl::setArea(box);
    mHoverRow = -1;
}

int TreeView::getRowCount() {
    buildRows();
    return int(mRows.size());
}

int TreeView::getRow(int index) {
    buildRows();
    const auto found = std::lower_bound(mRows.begin(), mRows.end(), index);
    return found != mRows.end() && *found == index ? int(found - mRows.begin()) : -1;
}

void TreeView::buildRows() {
    if (mBuilt)
        return;
    mBuilt = true;
    mMeasured = false;
    mRows.clear();
    mTops.clear();
    double top = 0;
    for (int i = 0; i < getItemCount();) {
        const Node& node = mNodes[size_t(i)];
        mRows.push_back(i);
        mTops.push_back(float(top));
        top += double(node.size);
        i = node.open ? i + 1 : node.next;
    }
    mTops.push_back(float(top));
}

// Each text is measured once, when it is first seen or could be.
void TreeView::measureRows() {
    buildRows();
    Render* render = getRender();
    if (mMeasured || !render)
        return;
    mMeasured = true;
    mWidth = 0;
    for (const int i : mRows) {
        Node& node = mNodes[size_t(i)];
        if (node.length < 0) {
            node.text.fit(*render, LONGEST);
            node.length = node.text.getLength();
        }
        mWidth = std::max(mWidth, float(node.depth) * INDENT + ARROW + node.length + GAP);
    }
}

// The inner area without the heading and, where needed, the bars.
Box2 TreeView::getView() {
    measureRows();
    Box2 view = shrunk(toPixels(mArea.world), 1);
    if (!mCaptionText.empty())
        view.y1 += HEADING;
    const bool down = mTops.back() > view.getHeight();
    const bool across = mWidth > view.getWidth() - (down ? BAR : 0);
    if (down || (across && mTops.back() > view.getHeight() - BAR))
        view.x2 -= BAR;
    if (across)
        view.y2 -= BAR;
    return Box2(view.x1, view.y1, std::max(view.x1, view.x2), std::max(view.y1, view.y2));
}

float TreeView::getOverflow(bool across) {
    const Box2 view = getView();
    return std::max(0.0f, across ? mWidth - view.getWidth() : mTops.back() - view.getHeight());
}

void TreeView::setScroll(bool across, float pixels) {
    float& scroll = across ? mScrollX : mScrollY;
    scroll = pixels > 0 ? std::floor(std::min(pixels, getOverflow(across))) : 0;
}

// Empty if everything is visible.
Box2 TreeView::getThumb(bool across) {
    const float overflow = getOverflow(across);
    if (!(overflow > 0))
        return Box2();
    const Box2 view = getView();
    const float track = across ? view.getWidth() : view.getHeight();
    const float length = std::min(track, std::max(LEAST_THUMB, track * track / (track + overflow)));
    const float at =
        (across ? view.x1 : view.y1) + (track - length) * (across ? mScrollX : mScrollY) / overflow;
    return toPixels(across ? Box2(at, view.y2, at + length, view.y2 + BAR)
                           : Box2(view.x2, at, view.x2 + BAR, at + length));
}

int TreeView::rowAt(const Vector2f& place) {
    const Box2 view = getView();
    if (!isInside(cut(view, mArea.clip), place))
        return -1;
    const float y = place.y - view.y1 + mScrollY;
    const auto behind = std::upper_bound(mTops.begin(), mTops.end(), y);
    return behind == mTops.begin() || behind == mTops.end() ? -1 : int(behind - mTops.begin()) - 1;
}

bool TreeView::overArrow(int row, float x) {
    const int index = mRows[size_t(row)];
    const Node& node = mNodes[size_t(index)];
    const float left = getView().x1 - mScrollX + float(node.depth) * INDENT;
    return node.next > index + 1 && x >= left && x < left + ARROW;
}

// By the user. Sends the action last: its receiver may delete this.
void TreeView::selectRow(int row) {
    if (row < 0 || row >= getRowCount())
        return;
    mSelected = mRows[size_t(row)];
    showRow(row);
    ZTK_LOG("log", "app", "item name : %s\n", mNodes[size_t(mSelected)].text.get().c_str());
    sendAction(ACTION_CHANGE, nullptr);
}

// By the keys, which may have nowhere to go.
void TreeView::goToRow(int row) {
    if (row >= 0 && row < getRowCount() && mRows[size_t(row)] != mSelected)
        selectRow(row);
}

void TreeView::showRow(int row) {
    const Box2 view = getView();
    const float top = mTops[size_t(row)], bottom = mTops[size_t(row) + 1];
    setScroll(false, std::min(std::max(mScrollY, std::ceil(bottom - view.getHeight())), top));
    const Node& node = mNodes[size_t(mRows[size_t(row)])];
    const float left = float(node.depth) * INDENT, right = left + ARROW + std::max(0.0f, node.length) + GAP;
    setScroll(true, std::min(std::max(mScrollX, std::ceil(right - view.getWidth())), left));
}

bool TreeView::handlePress(const Event& event) {
    for (const bool across : {false, true}) {
        const Box2 thumb = getThumb(across), view = getView();
        const Box2 track =
            across ? Box2(view.x1, thumb.y1, view.x2, thumb.y2) : Box2(thumb.x1, view.y1, thumb.x2, view.y2);
        if (!isInside(track, event.mousePos) || thumb == Box2())
            continue;
        const float place = across ? event.mousePos.x : event.mousePos.y,
                    start = across ? thumb.x1 : thumb.y1;
        if (isInside(thumb, event.mousePos)) {
            mDrag = across ? ACROSS : VERTICAL;
            mGrip = place - start;
        } else { // off the thumb: a page towards the mouse
            const float page = across ? view.getWidth() : view.getHeight();
            setScroll(across, (across ? mScrollX : mScrollY) + (place < start ? -page : page));
        }
        return true;
    }
    const int row = rowAt(event.mousePos);
    if (row == -1)
        return true;
    const int index = mRows[size_t(row)];
    const bool arrow = overArrow(row, event.mousePos.x);
    if (arrow || (event.doubleClick && mNodes[size_t(index)].next > index + 1))
        setOpen(index, !mNodes[size_t(index)].open);
    if (!arrow)
        selectRow(getRow(index));
    return true;
}

bool TreeView::handleKey(const Event& event) {
    if (!hasKeys() || !getRowCount())
        return false;
    // If the selected item is hidden, its nearest shown ancestor counts.
    int index = mSelected;
    while (index != -1 && getRow(index) == -1)
        index = mNodes[size_t(index)].parent;
    const int row = index == -1 ? -1 : getRow(index), last = getRowCount() - 1;
    const float page = std::max(1.0f, std::floor(getView().getHeight() / mSize) - 1); // may exceed any int
    const Node* node = getItem(index);
    const bool inner = node && node->next > index + 1;
    switch (event.key) {
    case KEY_UP:
        goToRow(std::max(0, row - 1));
        return true;
    case KEY_DOWN:
        goToRow(std::min(last, row + 1));
        return true;
    case KEY_PAGEUP:
        goToRow(int(std::max(0.0f, float(row) - page)));
        return true;
    case KEY_PAGEDOWN:
        goToRow(int(std::min(float(last), float(std::max(0, row)) + page)));
        return true;
    case KEY_HOME:
        goToRow(0);
        return true;
    case KEY_END:
        goToRow(last);
        return true;
    case KEY_LEFT:
        if (inner && node->open)
            setOpen(index, false);
        else if (node && node->parent != -1)
            goToRow(getRow(node->parent));
        return true;
    case KEY_RIGHT:
        if (inner && !node->open)
            setOpen(index, true);
        else if (inner)
            goToRow(row + 1);
        return true;
    case KEY_ENTER:
    case KEY_KP_ENTER:
        if (inner)
            setOpen(index, !node->open);
        return true;
    default:
        return false;
    }
}

int TreeView::handleEvent(Event& event) {
    int result = 0;
    if (!hears(event, result))
        return result;
    if (startsPress(event)) {
        handlePress(event);
        return 1;
    }
    if (event.type == "mouseup" && event.button == 0 && isHeld()) {
        mDrag = NOTHING;
        endPress();
        return 1;
    }
    if (event.type == "mousemove" && mDrag != NOTHING) {
        const bool across = mDrag == ACROSS;
        const Box2 view = getView(), thumb = getThumb(across);
        const float track =
            across ? view.getWidth() - thumb.getWidth() : view.getHeight() - thumb.getHeight();
        const float at = (across ? event.mousePos.x - view.x1 : event.mousePos.y - view.y1) - mGrip;
        setScroll(across, track > 0 ? at / track * getOverflow(across) : 0);
        return 1;
    }
    if (event.type == "mousewheel" && mHover) {
        const bool across = event.ctrl();
        if (getOverflow(across) > 0) {
            setScroll(across, (across ? mScrollX : mScrollY) - event.wheelDelta * WHEEL);
            mHoverRow = rowAt(event.mousePos);
            return 1;
        }
    }
    if (event.type == "reset")
        mHoverRow = -1;
    else if (event.type == "mousemove")
        mHoverRow = mHover ? rowAt(event.mousePos) : -1;
    else if (event.type == "keydown" && handleKey(event))
        return 1;
    return result;
}

void TreeView::onCaptureLost() {
    mDrag = NOTHING;
    InputControl::onCaptureLost();
}

void TreeView::drawNode(const Node& node, int depth, const Box2& row, bool selected, bool hover) {
    Render* render = getRender();
    if (selected)
        fill(*render, row, mInactive ? mBack.inactive : mBack.pushed);
    else if (hover && !mInactive)
        fill(*render, row, mBack.highlight);
    const float x = row.x1 - mScrollX + float(depth) * INDENT;
    render->setColor(pick(mText, mInactive, selected, hover).first, NO_COLOR);
    if (node.next > int(&node - mNodes.data()) + 1)
        drawArrow(*render, Vector2f(x + ARROW * 0.5f, (row.y1 + row.y2) * 0.5f),
                  node.open ? Arrow::DOWN : Arrow::RIGHT);
    mNodes[size_t(&node - mNodes.data())].text.draw(
        *render, Box2(x + ARROW, row.y1, x + ARROW + LONGEST, row.y2), TextLine::START, TextLine::MIDDLE);
}

void TreeView::drawBar(bool across) {
    const Box2 thumb = getThumb(across);
    if (!(thumb == Box2()))
        fill(*getRender(), shrunk(thumb, 1),
             mDrag == (across ? ACROSS : VERTICAL) ? mCaption.pushed : mCaption.color);
}

void TreeView::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 box = toPixels(mArea.world);
    fill(*render, box, mInactive ? mBack.inactive : mBack.color);
    const Box2 view = getView();
    setScroll(false, mScrollY); // the content may have shrunk
    setScroll(true, mScrollX);
    if (!mCaptionText.empty()) {
        mHeading.set(mCaptionText);
        render->setColor(pick(mText, mInactive, false, false).first, NO_COLOR);
        mHeading.draw(*render, Box2(view.x1 + GAP, box.y1 + 1, view.x2, box.y1 + 1 + HEADING),
                      TextLine::START, TextLine::MIDDLE);
    }

    clipTo(*render, view, mArea.clip);
    const auto top = std::upper_bound(mTops.begin(), mTops.end(), mScrollY);
    for (size_t row = size_t(std::max<ptrdiff_t>(0, top - mTops.begin() - 1)); row < mRows.size(); ++row) {
        const float y1 = view.y1 + mTops[row] - mScrollY, y2 = view.y1 + mTops[row + 1] - mScrollY;
        if (y1 >= view.y2)
            break;
        const Node& node = mNodes[size_t(mRows[row])];
        drawNode(node, node.depth, toPixels(Box2(view.x1, y1, view.x2, y2)), mRows[row] == mSelected,
                 int(row) == mHoverRow);
    }
    render->setClipArea(mArea.clip);
    drawBar(false);
    drawBar(true);
    outline(*render, box, hasKeys() ? mCaption.border : mBack.border);
    Control::draw();
}

} // namespace zentrak::panorama
