#include "pan_panel.h"

#include "pan_render.h"

#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float INDENT = 10.0f; // pixels from the left edge to the caption
constexpr float GAP = 5.0f;     // pixels from the caption to the line, and from the left edge to the gap

} // namespace

Panel::Panel() {
    mType = "panel";
    mCaptionText.clear();
    mBack.color = {Vector4f(0.6f, 0.6f, 0.6f, 0.6f), Vector4f(1, 1, 1, 0.07f)};
    mText.color.first = Vector4f(1, 1, 1, 1);
}

Control* Panel::clone() {
    return new Panel;
}

void Panel::load(xml::IteratorConst& it) {
    Control::load(it);
    const std::string& caption = it->getValue("caption");
    if (!caption.empty())
        setCaption(caption);
}

void Panel::buildChildArea() {
    mChildArea.area = Box2(5, 15, mArea.area.getWidth() - 6, mArea.area.getHeight() - 6);
}

void Panel::draw() {
    Render* render = getRender();
    if (!render)
        return;
    const float half = std::floor(render->getFontHeight() * 0.5f);
    const Box2& world = mArea.world;
    const float left = world.x1, right = world.x2, top = world.y1 + half, bottom = world.y2;
    render->setColor(mBack.color.second, NO_COLOR);
    render->drawBox(Box2(left, top, right, bottom), 0);

    // From the caption's end round the box to where the caption's gap begins, each pixel once.
    const float end = left + INDENT + render->getTextLength(mCaptionText) + GAP;
    render->setColor(mBack.color.first, NO_COLOR);
    if (end < right)
        render->drawLine(Vector2f(end, top), Vector2f(right, top));
    render->drawLine(Vector2f(right - 1, top + 1), Vector2f(right - 1, bottom));
    render->drawLine(Vector2f(right - 1, bottom - 1), Vector2f(left, bottom - 1));
    render->drawLine(Vector2f(left, bottom - 1), Vector2f(left, top));
    render->drawLine(Vector2f(left + 1, top), Vector2f(left + GAP, top));

    render->setFontMode(display::Font::ALIGN_LEFT);
    render->setColor(mText.color.first, NO_COLOR);
    render->drawText(mCaptionText, Vector2f(left + INDENT, top));
    Control::draw();
}

} // namespace zentrak::panorama
