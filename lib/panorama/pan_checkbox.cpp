#include "pan_checkbox.h"

#include "pan_look.h"

namespace zentrak::panorama {

using namespace look;
using mathbase::Box2;

namespace {

// The rows of a tick, from its upper left corner: where each begins and how long it is, in pixels. It is nine
// pixels wide and seven high.
constexpr struct {
    int x, length;
} tick[][2] = {{{7, 2}, {0, 0}}, {{6, 3}, {0, 0}}, {{0, 1}, {5, 3}}, {{0, 2}, {4, 3}},
               {{0, 6}, {0, 0}}, {{1, 4}, {0, 0}}, {{2, 2}, {0, 0}}};

} // namespace

Checkbox::Checkbox() {
    mType = "checkbox";
}

Control* Checkbox::clone() {
    return new Checkbox;
}

void Checkbox::setChecked(int index, bool checked) {
    if (has(index))
        mBoxes[size_t(index)].checked = checked;
}

void Checkbox::choose(int index) {
    mCursor = index;
    setChecked(index, !getChecked(index));
    sendAction(ACTION_CHANGE, nullptr);
}

bool Checkbox::moveCursor(int index) {
    if (!has(index))
        return false;
    mCursor = index;
    return true;
}

void Checkbox::drawMark(Render& render, const Box2& box, const BoxData& data, bool hover, bool pushed) {
    fill(render, box, pick(mBack, mInactive, pushed, hover));
    outline(render, box, mInactive ? mCaption.inactive : hover ? mCaption.color : mBack.border);
    if (!data.checked)
        return;
    render.setColor(mInactive ? mCaption.inactive.first : mCaption.color.first, NO_COLOR);
    const float x = box.x1 + 2, y = box.y1 + 3;
    for (int row = 0; row < 7; ++row)
        for (const auto& run : tick[row])
            if (run.length)
                render.drawBox(
                    Box2(x + float(run.x), y + float(row), x + float(run.x + run.length), y + float(row + 1)),
                    0);
}

} // namespace zentrak::panorama
