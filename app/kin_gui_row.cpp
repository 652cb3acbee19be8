#include "kin_gui_row.h"

#include "dis_key.h"
#include "kin_gui_effect.h"
#include "pan_alive.h"
#include "pan_layoutstack.h"
#include "pan_render.h"
#include "pan_slider.h"
#include "pan_spline.h"
#include "script_effect.h"
#include "script_spline.h"

#include <algorithm>
#include <cmath>

namespace zentrak::kindler {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;
using panorama::Alive;
using panorama::Control;
using panorama::Event;
using panorama::NO_COLOR;
using panorama::Render;

namespace {

constexpr float LABEL_LEFT = 5.0f; // pixels before a label
constexpr float INDENT = 20.0f;    // pixels for each level

// The control of this name and type, which a script may have given to rows too.
template <class Type>
Type* findTyped(Control& control, const std::string& name) {
    if (control.getName() == name)
        if (Type* const found = dynamic_cast<Type*>(&control))
            return found;
    for (unsigned int i = 0; i < control.getChildCount(); ++i)
        if (Type* const found = findTyped<Type>(*control.getChild(i), name))
            return found;
    return nullptr;
}

} // namespace

Row::Row() {
    const Vector4f black(0, 0, 0, 1), shade(0, 0, 0, 0.1f), focused(0, 0, 0, 0.3f);
    mBack.border = {black, black};
    mBack.color = {shade, shade};
    mBack.pushed = {focused, focused};
    mText.color.first = Vector4f(1, 1, 1, 1);
}

Control* Row::clone() {
    return new Row;
}

void Row::loadEffect(script::Effect* effect, int level) {
    setName(effect->mName);
    setCaption(effect->mName);
    mLevel = level;
    Effector* const bar = new Effector;
    bar->setArea(Effector::getBar(*effect));
    bar->mEffect = effect;
    addControl(bar, -1);

    Control* const rows = getRoot()->findControl("effects");
    if (!rows)
        return;
    for (script::Spline* spline : effect->mSplines) {
        Row* const row = addRow(*rows, CURVE_HEIGHT);
        row->loadSpline(bar->getArea(), spline, level);
        bar->addFollower(row->getControl(0));
    }
    for (script::Effect* child : effect->mChildren)
        addRow(*rows, getArea().getHeight())->loadEffect(child, level + 1);
}

// A new row at the end, as wide as this one.
Row* Row::addRow(Control& rows, float height) {
    Row* const row = new Row;
    Box2 area = getArea();
    area.y2 = area.y1 + height;
    row->setArea(area);
    append(rows, row);
    return row;
}

void Row::append(Control& rows, Row* row) {
    if (panorama::LayoutStack* const stack = dynamic_cast<panorama::LayoutStack*>(&rows))
        stack->append(row);
    else
        rows.addControl(row, -1);
}

void Row::loadSpline(Box2 area, script::Spline* spline, int level) {
    setName(spline->mName);
    setCaption(spline->mName);
    mLevel = level;
    panorama::Spline* const curve = new panorama::Spline;
    curve->mBack.color = {hex2vec("330000ff"), hex2vec("220000ff")};
    curve->mBack.border = {hex2vec("ffff33ff"), hex2vec("ddddddff")};
    curve->mBack.highlight.first = hex2vec("ffff33ff");
    curve->mBack.pushed.first = hex2vec("ffffffff");
    curve->setArea(Box2(area.x1, area.y1, area.x2, area.y1 + CURVE_HEIGHT));
    curve->setSpline(spline, false);
    addControl(curve, -1);
}

void Row::setScrollPos(float position) {
    for (unsigned int i = 0; i < getControlSize(); ++i)
        getControl(i)->setOffset(Vector2f(position, 0));
}

void Row::buildChildArea() {
    mChildArea.area = Box2(LABEL_WIDTH, 0, mArea.area.getWidth(), mArea.area.getHeight());
}

int Row::handleEvent(Event& event) {
    Alive alive(*this);
    const int result = Control::handleEvent(event);
    if (!alive)
        return result;
    if (!mVisible)
        return 0;
    if (event.isKey())
        return takesKey(event) ? 1 : result;
    if (event.type == "mousewheel" && event.ctrl()) {
        if (panorama::Slider* const slider = findTyped<panorama::Slider>(*getRoot(), "timeslider"))
            slider->turn(event.wheelDelta);
        return 1;
    }
    return result;
}

// The keys of a row with the focus don't steer the show. Tab is the editor's own.
bool Row::takesKey(const Event& event) {
    if (!mParent || mParent->getFocus() != this)
        return false;
    const bool down = event.type == "keydown";
    if (down && event.key == display::KEY_ESC)
        getRoot()->setFocus(nullptr);
    return !(down && event.key == display::KEY_TAB);
}

void Row::draw() {
    Render* const render = getRender();
    if (!render)
        return;
    const bool focused = mParent && mParent->getFocus() == this;
    const panorama::ColorPair& back = focused ? mBack.pushed : mBack.color;
    render->setColor(back.first, back.second);
    render->drawBox(mArea.clip, 0);
    render->setColor(mBack.border.first, mBack.border.second);
    render->drawBorder(mArea.clip);
    render->setColor(mText.color.first, NO_COLOR);
    render->setFontMode(display::Font::ALIGN_LEFT);
    render->drawText(mCaptionText, Vector2f(mArea.world.x1 + LABEL_LEFT + INDENT * float(mLevel),
                                            std::floor((mArea.world.y1 + mArea.world.y2) * 0.5f)));
    Control::draw();
}

} // namespace zentrak::kindler
