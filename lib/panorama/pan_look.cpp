#include "pan_look.h"

namespace zentrak::panorama::look {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

void setTextLook(ColorSet& set) {
    setPair(set.color, ink, NO_COLOR);
    setPair(set.highlight, white, NO_COLOR);
    setPair(set.pushed, white, NO_COLOR);
    setPair(set.inactive, faint, NO_COLOR);
}

void setRaisedLook(ColorSet& set) {
    setPair(set.border, edge);
    setPair(set.color, Vector4f(0.23f, 0.23f, 0.27f, 0.96f), Vector4f(0.16f, 0.16f, 0.19f, 0.96f));
    setPair(set.highlight, Vector4f(0.31f, 0.31f, 0.38f, 0.98f), Vector4f(0.23f, 0.23f, 0.29f, 0.98f));
    setPair(set.pushed, Vector4f(0.25f, 0.25f, 0.43f, 1.0f), accent);
    setPair(set.inactive, Vector4f(0.13f, 0.13f, 0.15f, 0.8f));
}

void setSunkLook(ColorSet& set) {
    setPair(set.border, edge);
    setPair(set.color, field);
    setPair(set.highlight, Vector4f(0.10f, 0.10f, 0.13f, 0.94f));
    setPair(set.pushed, field);
    setPair(set.inactive, Vector4f(0.13f, 0.13f, 0.15f, 0.8f));
}

namespace {

bool isSeen(const Box2& box, const ColorPair& pair) {
    return box.x2 > box.x1 && box.y2 > box.y1 && (pair.first.w > 0 || pair.second.w > 0);
}

} // namespace

void fill(Render& render, const Box2& box, const ColorPair& pair) {
    if (!isSeen(box, pair))
        return;
    render.setColor(pair.first, pair.second);
    render.drawBox(box, 0);
}

void outline(Render& render, const Box2& box, const ColorPair& pair) {
    if (!isSeen(box, pair))
        return;
    render.setColor(pair.first, pair.second);
    render.drawBorder(box);
}

void clipTo(Render& render, const Box2& a, const Box2& b) {
    Box2 box = cut(a, b);
    if (!(box.x2 > box.x1 && box.y2 > box.y1))
        box = Box2();
    render.setClipArea(box);
}

void drawText(Render& render, const std::string& caption, const Vector4f& color, const Vector2f& position) {
    render.setColor(color, NO_COLOR);
    render.setFontMode(display::Font::ALIGN_LEFT);
    render.drawText(caption, position);
}

void drawCentred(Render& render, const std::string& caption, const Vector4f& color, const Box2& box) {
    render.setColor(color, NO_COLOR);
    render.setFontMode(display::Font::ALIGN_CENTER);
    render.drawText(caption, Vector2f(0.5f * (box.x1 + box.x2), 0.5f * (box.y1 + box.y2)));
}

float getTextLength(Control& control, const std::string& caption) {
    Render* const render = control.getRender();
    return render ? render->getTextLength(caption) : 0.0f;
}

// A pixel is covered by as much of it as lies within the radius, taken along the line from the centre.
void drawDisc(Render& render, const Vector2f& centre, float radius, const Vector4f& color) {
    const float left = std::floor(centre.x - radius), top = std::floor(centre.y - radius);
    const float right = centre.x + radius, bottom = centre.y + radius;
    const auto span = [&](float x1, float x2, float y, float cover) {
        render.setColor(Vector4f(color.x, color.y, color.z, color.w * cover), NO_COLOR);
        render.drawBox(Box2(x1, y, x2, y + 1), 0);
    };
    for (float y = top; y < bottom; ++y) {
        float begin = right, end = left; // of the pixels of this row that are covered whole
        for (float x = left; x < right; ++x) {
            const float dx = x + 0.5f - centre.x, dy = y + 0.5f - centre.y;
            const float cover = radius + 0.5f - std::sqrt(dx * dx + dy * dy);
            if (cover >= 1) {
                begin = std::min(begin, x);
                end = x + 1;
            } else if (cover > 0) {
                span(x, x + 1, y, cover);
            }
        }
        if (begin < end)
            span(begin, end, y, 1);
    }
}

// Rows of one pixel: 7, 5, 3 and 1 long.
void drawArrow(Render& render, const Vector2f& centre, Arrow arrow) {
    const float x = toPixel(centre.x - 0.5f), y = toPixel(centre.y - 0.5f);
    for (int row = 0; row < 4; ++row) {
        const float at = float(row) - 2.0f, half = 3.0f - float(row);
        if (arrow == Arrow::DOWN)
            render.drawBox(Box2(x - half, y + at, x + half + 1.0f, y + at + 1.0f), 0);
        else
            render.drawBox(Box2(x + at, y - half, x + at + 1.0f, y + half + 1.0f), 0);
    }
}

} // namespace zentrak::panorama::look
