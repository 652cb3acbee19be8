#include "pan_overlay.h"

#include "dis_key.h"
#include "pan_box.h"
#include "pan_look.h"

#include <cctype>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float MARGIN = 6;
constexpr float BUTTON_HEIGHT = 26;
constexpr float LINE = 18;

std::string lower(std::string text) {
    for (char& c : text)
        c = char(tolower(static_cast<unsigned char>(c)));
    return text;
}

} // namespace

Overlay::Overlay() {
    mName = mType = "overlay";
    mMaximized = true;
    mRaiseOnFocus = false;
    look::setRaisedLook(mBack);
    look::setPair(mBack.color, look::field);
    look::setTextLook(mText);
    look::setPair(mCaption.color, look::bright);
    look::setPair(mCaption.inactive, look::faint);
}

Control* Overlay::clone() {
    return new Overlay;
}

void Overlay::openMenu(Vector2f place, std::vector<MenuItem> items, std::string title) {
    mMode = Mode::MENU;
    mTitle = std::move(title);
    mItems = std::move(items);
    mTyped.clear();
    mFresh = true;
    mPlace = place;
    filter();
    mRow = -1;
}

void Overlay::openDialog(std::string title, std::vector<std::string> lines,
                         std::vector<DialogButton> buttons) {
    mMode = Mode::DIALOG;
    mTitle = std::move(title);
    mLines = std::move(lines);
    mButtons = std::move(buttons);
    mRow = -1;
}

void Overlay::openHelp(std::vector<std::pair<std::string, std::string>> rows) {
    mMode = Mode::HELP;
    mHelp = std::move(rows);
}

// Menu

void Overlay::filter() {
    mShown.clear();
    mFirst = 0;
    const std::string typed = lower(mTyped);
    for (size_t i = 0; i < mItems.size(); ++i)
        if (typed.empty() ||
            (!mItems[i].label.empty() && lower(mItems[i].label).find(typed) != std::string::npos))
            mShown.push_back(i);
    mRow = mShown.empty() || typed.empty() ? -1 : 0;
}

float Overlay::getHeadHeight() const {
    return mTyped.empty() && mTitle.empty() ? 0 : ROW;
}

size_t Overlay::getRows() const {
    const float room = mArea.world.getHeight() - 2 * MARGIN - ROW;
    return std::min(mShown.size(), size_t(std::max(1.0f, room / ROW)));
}

Box2 Overlay::getMenuBox() const {
    Render* const render = const_cast<Overlay*>(this)->getRender();
    float width = render ? std::max(120.0f, render->getTextLength(mTitle) + 30) : 120;
    for (const MenuItem& item : mItems)
        if (render)
            width = std::max(width, render->getTextLength(item.label) + render->getTextLength(item.key) + 50);
    const float height = float(getRows()) * ROW + 2 * MARGIN + getHeadHeight();
    const Box2& all = mArea.world;
    const float x = std::max(0.0f, std::min(mPlace.x, all.x2 - width - 2));
    const float y = std::max(0.0f, std::min(mPlace.y, all.y2 - height - 2));
    return Box2(x, y, x + width, y + height);
}

Box2 Overlay::getRowBox(size_t shown) const {
    const Box2 menu = getMenuBox();
    const float y = menu.y1 + MARGIN + getHeadHeight() + float(shown - mFirst) * ROW;
    return Box2(menu.x1 + 3, y, menu.x2 - 3, y + ROW);
}

Box2 Overlay::getBox(const std::string& label) const {
    if (mMode == Mode::MENU)
        for (size_t i = mFirst; i < mFirst + getRows(); ++i)
            if (mItems[mShown[i]].label == label)
                return getRowBox(i);
    if (mMode == Mode::DIALOG)
        for (size_t i = 0; i < mButtons.size(); ++i)
            if (mButtons[i].label == label)
                return getButtonBox(i);
    return Box2();
}

void Overlay::choose(int row) {
    if (row < 0 || size_t(row) >= mShown.size())
        return;
    const MenuItem item = mItems[mShown[size_t(row)]];
    if (!item.enabled || !item.action)
        return;
    close();
    item.action(); // last: it may open another
}

void Overlay::handleMenu(Event& event) {
    const auto find = [&] {
        for (size_t i = mFirst; i < mFirst + getRows(); ++i)
            if (isInside(getRowBox(i), event.mousePos))
                return int(i);
        return -1;
    };
    const int last = int(mShown.size()) - 1;
    if (event.type == "mousemove")
        mRow = find();
    if (event.type == "mousewheel") {
        const int most = int(mShown.size() - getRows());
        mFirst = size_t(std::clamp(int(mFirst) - int(event.wheelDelta), 0, most));
        mRow = find();
    }
    if (event.type == "mousedown") {
        mFresh = false;
        if (!isInside(getMenuBox(), event.mousePos))
            close();
    }
    if (event.type == "mouseup") {
        if (find() >= 0 && (!mFresh || event.button == 0))
            choose(find());
        mFresh = false;
    }
    if (event.type == "keychardown" && event.character > ' ' && event.character < 127) {
        mTyped += char(event.character);
        filter();
    }
    if (event.type != "keydown")
        return;
    if (event.key == display::KEY_ESC)
        close();
    if (event.key == display::KEY_BACKSPACE && !mTyped.empty()) {
        mTyped.pop_back();
        filter();
    }
    if (event.key == display::KEY_DOWN)
        mRow = std::min(mRow + 1, last);
    if (event.key == display::KEY_UP)
        mRow = std::max(mRow - 1, 0);
    if (mRow >= 0 && size_t(mRow) >= mFirst + getRows())
        mFirst = size_t(mRow) + 1 - getRows();
    if (mRow >= 0 && size_t(mRow) < mFirst)
        mFirst = size_t(mRow);
    if (event.key == display::KEY_ENTER || event.key == display::KEY_KP_ENTER)
        choose(mRow);
}

void Overlay::drawMenu(Paint& paint) {
    const Box2 menu = getMenuBox();
    paint.box(Box2(menu.x1 + 4, menu.y1 + 4, menu.x2 + 4, menu.y2 + 4), Vector4f(0, 0, 0, 0.4f));
    paint.box(menu, mBack.color.first);
    paint.frame(menu, mBack.border.first);
    const bool typed = !mTyped.empty();
    paint.text(menu.x1 + 12, menu.y1 + MARGIN + ROW / 2 - 1, typed ? mTyped + "_" : mTitle,
               typed ? mCaption.color.first : mCaption.inactive.first);
    for (size_t i = mFirst; i < mFirst + getRows(); ++i) {
        const MenuItem& item = mItems[mShown[i]];
        const Box2 row = getRowBox(i);
        const float middle = (row.y1 + row.y2) / 2;
        if (item.label.empty()) {
            paint.line(row.x1 + 8, middle, row.x2 - 8, middle, mBack.border.first);
            continue;
        }
        if (int(i) == mRow && item.enabled)
            paint.box(row, mBack.highlight.first);
        const Vector4f& ink = !item.enabled    ? mText.inactive.first
                              : int(i) == mRow ? mText.highlight.first
                                               : mText.color.first;
        paint.text(row.x1 + 9, middle, item.label, ink);
        paint.textRight(row.x2 - 9, middle, item.key, mCaption.inactive.first);
    }
}

// Question

Box2 Overlay::getDialogBox() const {
    Render* const render = const_cast<Overlay*>(this)->getRender();
    float width = 360;
    for (const std::string& line : mLines)
        if (render)
            width = std::max(width, render->getTextLength(line) + 60);
    width = std::max(width, 150.0f * float(mButtons.size()) + 40);
    const float height = 90 + LINE * float(mLines.size()) + BUTTON_HEIGHT;
    const Box2& all = mArea.world;
    const float x = std::floor((all.x1 + all.x2 - width) / 2), y = std::floor((all.y1 + all.y2 - height) / 2);
    return Box2(x, y, x + width, y + height);
}

Box2 Overlay::getButtonBox(size_t button) const {
    const Box2 box = getDialogBox();
    const float x = box.x2 - 20 - 150 * float(mButtons.size() - button) + 10;
    return Box2(x, box.y2 - 20 - BUTTON_HEIGHT, x + 140, box.y2 - 20);
}

void Overlay::press(size_t button) {
    const DialogButton pressed = button < mButtons.size() ? mButtons[button] : DialogButton();
    close();
    if (pressed.action)
        pressed.action(); // last: it may open another
}

void Overlay::handleDialog(Event& event) {
    if (event.type == "mousemove" || event.type == "mouseup") {
        mRow = -1;
        for (size_t i = 0; i < mButtons.size(); ++i)
            if (isInside(getButtonBox(i), event.mousePos))
                mRow = int(i);
        if (event.type == "mouseup" && event.button == 0 && mRow >= 0)
            press(size_t(mRow));
        return;
    }
    if (event.type != "keydown")
        return;
    if (event.key == display::KEY_ENTER || event.key == display::KEY_KP_ENTER)
        press(0);
    else if (event.key == display::KEY_ESC)
        press(mButtons.size() - 1);
}

void Overlay::drawDialog(Paint& paint) {
    paint.box(mArea.world, Vector4f(0, 0, 0, 0.5f));
    const Box2 box = getDialogBox();
    paint.box(box, mBack.color.first);
    paint.frame(box, mBack.border.first);
    paint.text(box.x1 + 20, box.y1 + 26, mTitle, mCaption.color.first);
    for (size_t i = 0; i < mLines.size(); ++i)
        paint.text(box.x1 + 20, box.y1 + 54 + LINE * float(i), mLines[i], mText.color.first);
    for (size_t i = 0; i < mButtons.size(); ++i) {
        const Box2 button = getButtonBox(i);
        paint.box(button, int(i) == mRow ? mBack.pushed.first : mBack.highlight.first);
        paint.frame(button, i == 0 ? mCaption.color.first : mBack.border.first);
        const float x = (button.x1 + button.x2 - paint.width(mButtons[i].label)) / 2;
        paint.text(x, (button.y1 + button.y2) / 2, mButtons[i].label, mText.color.first);
    }
}

void Overlay::drawHelp(Paint& paint) {
    paint.box(mArea.world, Vector4f(0, 0, 0, 0.82f));
    const Box2& all = mArea.world;
    const size_t columns = 2, rows = (mHelp.size() + columns - 1) / columns;
    const float width = std::min(610.0f, (all.getWidth() - 20) / float(columns));
    const float left = std::floor((all.x1 + all.x2 - width * float(columns)) / 2);
    const float line = std::min(20.0f, (all.getHeight() - 20) / float(rows + 1));
    const float top = std::floor((all.y1 + all.y2 - line * float(rows)) / 2);
    paint.text(left + 208, top - line * 1.5f, "Keys and mouse", mText.highlight.first);
    for (size_t i = 0; i < mHelp.size(); ++i) {
        const float x = left + width * float(i / rows), y = top + line * (float(i % rows) + 0.5f);
        paint.textRight(x + 195, y, mHelp[i].first, mCaption.color.first);
        paint.text(x + 208, y, paint.fit(mHelp[i].second, width - 212), mText.color.first);
    }
}

// All input is its own while it is open.

bool Overlay::acceptEvents(Event&) {
    return isOpen();
}

int Overlay::handleEvent(Event& event) {
    if (event.type == "reset" || !isOpen())
        return 0;
    if (mMode == Mode::MENU)
        handleMenu(event);
    else if (mMode == Mode::DIALOG)
        handleDialog(event);
    else if (event.type == "mousedown" || event.type == "keydown")
        close();
    return 1;
}

void Overlay::draw() {
    Render* const render = getRender();
    if (!render || !isOpen())
        return;
    Paint paint(*render);
    paint.unclip();
    if (mMode == Mode::MENU)
        drawMenu(paint);
    else if (mMode == Mode::DIALOG)
        drawDialog(paint);
    else
        drawHelp(paint);
}

} // namespace zentrak::panorama
