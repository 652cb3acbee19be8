#include "pan_radiobutton.h"

#include "dis_key.h"
#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float GAP = 6.0f; // pixels between the mark and its text

} // namespace

RadioButton::RadioButton() : InputControl(true) {
    mType = "radiobutton";
    mCaptionText.clear();
    setSunkLook(mBack);
    setPair(mBack.pushed, accent);
    setTextLook(mText);
    setPair(mCaption.color, bright); // the mark itself
    setPair(mCaption.inactive, faint);
}

Control* RadioButton::clone() {
    return new RadioButton;
}

void RadioButton::load(xml::IteratorConst& it) {
    Control::load(it);
    if (!it->getValue("name").empty())
        setCaption(it->getValue("name"));
    xml::IteratorConst option = it.createIterator("option");
    for (bool first = true; ++option; first = false) {
        if (first)
            mBoxes.clear();
        addOption(option->getValue("name"), option->getValue("checked") == "true");
    }
    mHoverBox = mPushedBox = -1;
    mCursor = std::max(0, getSelected());
}

void RadioButton::addOption(const std::string& name, bool checked) {
    mBoxes.emplace_back();
    mBoxes.back().name.set(name);
    if (checked)
        setChecked(getOptionCount() - 1, true);
}

std::string RadioButton::getOption(int index) const {
    return has(index) ? mBoxes[size_t(index)].name.get() : std::string();
}

bool RadioButton::getChecked(int index) const {
    return has(index) && mBoxes[size_t(index)].checked;
}

void RadioButton::setChecked(int index, bool checked) {
    if (!has(index))
        return;
    if (checked)
        for (BoxData& box : mBoxes)
            box.checked = false;
    mBoxes[size_t(index)].checked = checked;
}

int RadioButton::getSelected() const {
    for (int i = 0; i < getOptionCount(); ++i)
        if (mBoxes[size_t(i)].checked)
            return i;
    return -1;
}

void RadioButton::choose(int index) {
    mCursor = index;
    if (getChecked(index))
        return;
    setChecked(index, true);
    sendAction(ACTION_CHANGE, nullptr);
}

bool RadioButton::moveCursor(int index) {
    if (!has(index))
        return false;
    choose(index);
    return true;
}

Box2 RadioButton::getRow(int index) const {
    const float top = toPixel(mArea.world.y1) + ROW * float(index + (heading().empty() ? 0 : 1));
    return Box2(toPixel(mArea.world.x1), top, toPixel(mArea.world.x2), top + ROW);
}

int RadioButton::rowAt(const Vector2f& place) const {
    if (!isInside(mArea.clip, place))
        return -1;
    const float row = std::floor((place.y - getRow(0).y1) / ROW);
    return row >= 0 && row < float(mBoxes.size()) ? int(row) : -1;
}

bool RadioButton::takesKey(const Event& event) {
    if (event.type != "keydown" || mBoxes.empty() || !hasKeys())
        return false;
    if (event.key == display::KEY_UP)
        moveCursor(mCursor - 1);
    else if (event.key == display::KEY_DOWN)
        moveCursor(mCursor + 1);
    else if (event.key == display::KEY_SPACE && has(mCursor))
        choose(mCursor);
    else
        return false;
    return true;
}

int RadioButton::handleEvent(Event& event) {
    int result = 0;
    if (!hears(event, result))
        return result;
    if (event.type == "reset") {
        mHoverBox = -1;
    } else if (event.type == "mousemove") {
        mHoverBox = mHover ? rowAt(event.mousePos) : -1;
    } else if (startsPress(event)) {
        mPushedBox = mHoverBox = rowAt(event.mousePos);
        return 1;
    } else if (event.type == "mouseup" && event.button == 0) {
        const int box = mHover ? rowAt(event.mousePos) : -1, pushed = mPushedBox;
        mPushedBox = -1;
        endPress();
        if (box != -1 && box == pushed) {
            choose(box);
            return 1;
        }
    } else if (takesKey(event)) {
        return 1;
    }
    return result;
}

void RadioButton::onCaptureLost() {
    mPushedBox = -1;
    InputControl::onCaptureLost();
}

void RadioButton::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const Box2 all = toPixels(mArea.world);
    if (!heading().empty()) {
        mHeading.set(heading());
        render->setColor(pick(mText, mInactive, false, false).first, NO_COLOR);
        mHeading.draw(*render, Box2(all.x1, all.y1, all.x2, all.y1 + ROW), TextLine::START, TextLine::MIDDLE);
    }
    // Only the visible rows.
    const float top = getRow(0).y1, count = float(mBoxes.size());
    const int first = int(std::clamp(std::floor((mArea.clip.y1 - top) / ROW), 0.0f, count));
    const int last = int(std::clamp(std::ceil((mArea.clip.y2 - top) / ROW), 0.0f, count));
    const bool keys = hasKeys();
    for (int i = first; i < last; ++i) {
        const bool hover = i == mHoverBox && (mPushedBox == -1 || mPushedBox == i);
        const bool pushed = i == mPushedBox && i == mHoverBox;
        const Box2 row = getRow(i);
        const float y = row.y1 + std::floor((ROW - BOX) * 0.5f);
        const Box2 mark(row.x1 + 2, y, row.x1 + 2 + BOX, y + BOX);
        drawMark(*render, mark, mBoxes[size_t(i)], hover, pushed);
        const Box2 text(mark.x2 + GAP, row.y1, row.x2, row.y2);
        render->setColor(pick(mText, mInactive, pushed, hover || (keys && i == mCursor)).first, NO_COLOR);
        mBoxes[size_t(i)].name.draw(*render, text, TextLine::START, TextLine::MIDDLE);
        if (keys && i == mCursor) {
            const float end = std::min(text.x2, text.x1 + mBoxes[size_t(i)].name.getLength());
            fill(*render, Box2(text.x1 + 1, row.y2 - 2, end, row.y2 - 1), mCaption.color);
        }
    }
    Control::draw();
}

// A disc with a rim.
void RadioButton::drawMark(Render& render, const Box2& box, const BoxData& data, bool hover, bool pushed) {
    const Vector2f centre((box.x1 + box.x2) * 0.5f, (box.y1 + box.y2) * 0.5f);
    const Vector4f back = pick(mBack, mInactive, pushed, hover).first;
    const ColorPair mark = mInactive ? mCaption.inactive : mCaption.color;
    drawDisc(render, centre, BOX * 0.5f, mInactive || hover ? mark.first : mBack.border.first);
    drawDisc(render, centre, BOX * 0.5f - 1.25f, Vector4f(back.x, back.y, back.z, 1.0f));
    if (data.checked)
        drawDisc(render, centre, BOX * 0.5f - 3.5f, mark.first);
}

} // namespace zentrak::panorama
