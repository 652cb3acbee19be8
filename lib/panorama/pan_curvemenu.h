// What the two editors of a curve share: their menus, their points, and where a time and a value stand in a
// box.
#pragma once

#include "mb_box2.h"
#include "mb_vector2.h"
#include "pan_context.h"
#include "pan_control.h"

#include <cmath>
#include <string>

namespace zentrak::panorama::curve {

// What the menus report.
inline const std::string ADD_KEY = "spline.add key";
inline const std::string DELETE_KEY = "spline.delete key";
inline const std::string TYPE = "spline.type."; // and the name of a mode

// Fills the menu beside the keys, the menu of a key, and the sub-menu that stands in both.
void buildMenus(Context& empty, Context& key, Context& types);
// To be called before the three are destroyed: the sub-menu belongs to none of the two others.
void releaseMenus(Context& empty, Context& key, Context& types);
// Opens one of the two for `owner`, at `place` or as near to it as it is in the window with the sub-menu,
// which marks the row `mode`.
void openMenu(Control& owner, Context& menu, Context& types, const mathbase::Vector2f& place,
              const std::string& mode);

// From time and value to pixels. The widget of a box without a side shows nothing.
inline mathbase::Vector2f toWindow(const mathbase::Box2& box, float time, float value) {
    const float half = 0.5f * box.getHeight();
    return mathbase::Vector2f(box.x1 + box.getWidth() * time, box.y1 + half + value * half);
}
inline bool fromWindow(const mathbase::Box2& box, const mathbase::Vector2f& place, float& time,
                       float& value) {
    const float half = 0.5f * box.getHeight();
    if (!(box.getWidth() > 0 && half > 0))
        return false;
    time = (place.x - box.x1) / box.getWidth();
    value = (place.y - box.y1 - half) / half;
    return true;
}

// The first of `count` points whose box, of `reach` pixels to each side, holds `place`; or -1. Where a point
// stands in the window is what `point` makes of its index.
template <class Point>
int findPoint(int count, float reach, const mathbase::Vector2f& place, Point point) {
    for (int i = 0; i < count; ++i) {
        const mathbase::Vector2f at = point(i);
        if (std::abs(at.x - place.x) <= reach && std::abs(at.y - place.y) <= reach)
            return i;
    }
    return -1;
}

// Whether `key` is Left or Right: then the selection goes to the point before or behind, of `count`; to none
// of none.
bool stepSelection(int key, int count, int& selected);

// Draws the point `index` of `owner` as a disc, if it is in sight; the one under the mouse and the selected
// one in colours of their own.
struct Marks {
    int hover, selected; // or -1
    bool held;           // the one under the mouse
    bool focused;        // the selected one shows
};
void drawPoint(Render& render, const Control& owner, const mathbase::Vector2f& at, float radius, int index,
               const Marks& marks);

} // namespace zentrak::panorama::curve
