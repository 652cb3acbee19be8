#include "pan_curvemenu.h"

#include "dis_display.h"
#include "dis_key.h"
#include "mb_splinebase.h"
#include "pan_look.h"
#include "pan_render.h"

#include <algorithm>

namespace zentrak::panorama::curve {

using mathbase::Box2;
using mathbase::Vector2f;

namespace {

constexpr float SUBMENU_GAP = 2.0f; // pixels between a menu and its sub-menu

using Modes = mathbase::SplineBase<float, mathbase::SplineBaseKey<float>>;

} // namespace

void buildMenus(Context& empty, Context& key, Context& types) {
    empty.setCaption("spline");
    empty.addOption("add key", "");
    empty.addOption("-------", "");
    key.setCaption("spline");
    key.addOption("delete key", "");
    key.addOption("---------", "");
    types.setCaption("type");
    for (const int mode : {mathbase::SPLINE_SQUARE, mathbase::SPLINE_LINEAR, mathbase::SPLINE_SMOOTH})
        types.addOption(Modes::getModeName(mode), "");
    empty.addControl(&types, -1);
    key.addControl(&types, -1);
    types.setParent(nullptr); // it is whichever menu's opens it
}

void releaseMenus(Context& empty, Context& key, Context& types) {
    for (Context* menu : {&empty, &key}) {
        menu->mOpenOption = menu->mHighlight = -1;
        std::erase(menu->mControls, &types);
    }
    types.setParent(nullptr);
}

void openMenu(Control& owner, Context& menu, Context& types, const Vector2f& place, const std::string& mode) {
    types.setHighlight(mode);
    types.setParent(&menu);
    menu.setParent(&owner);
    menu.setPosition(place);
    owner.setContext(&menu); // gives both their sizes
    types.resize();
    const display::DisplayGL* const display = owner.getDisplay();
    if (!display)
        return;
    const Box2& area = menu.getArea();
    const float width = area.getWidth() + SUBMENU_GAP + types.getArea().getWidth();
    const float height =
        std::max(area.getHeight(), types.getArea().getHeight() + 2 * (menu.mRowGap + Context::ROW_HEIGHT));
    const float right = float(display->mWindowMode.width), bottom = float(display->mWindowMode.height);
    menu.setPosition(Vector2f(std::max(0.0f, std::min(place.x, right - width)),
                              std::max(0.0f, std::min(place.y, bottom - height))));
}

bool stepSelection(int key, int count, int& selected) {
    if (key != display::KEY_LEFT && key != display::KEY_RIGHT)
        return false;
    const int step = key == display::KEY_LEFT ? -1 : 1;
    selected = std::clamp(selected + step, std::min(0, count - 1), count - 1);
    return true;
}

void drawPoint(Render& render, const Control& owner, const Vector2f& at, float radius, int index,
               const Marks& marks) {
    const Box2& clip = owner.mArea.clip;
    if (!(at.x + radius > clip.x1 && at.x - radius < clip.x2 && at.y + radius > clip.y1 &&
          at.y - radius < clip.y2))
        return;
    const ColorSet& back = owner.mBack;
    const auto& color = index == marks.hover ? marks.held ? back.pushed.first : back.highlight.first
                        : marks.focused && index == marks.selected ? back.pushed.second
                                                                   : back.border.first;
    render.setColor(color, look::none);
    render.drawCircle(Box2(at.x - radius, at.y - radius, at.x + radius, at.y + radius), -1, 0);
}

} // namespace zentrak::panorama::curve
