// How the studio looks: its colours, and shapes in them.
#pragma once

#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"
#include "pan_render.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace zentrak::studio {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace color {
inline const Vector4f ground(0.105f, 0.110f, 0.125f, 1);
inline const Vector4f lane(0.135f, 0.141f, 0.160f, 1);
inline const Vector4f laneOdd(0.150f, 0.156f, 0.177f, 1);
inline const Vector4f panel(0.170f, 0.177f, 0.200f, 1);
inline const Vector4f raised(0.235f, 0.245f, 0.275f, 1);
inline const Vector4f edge(0.060f, 0.062f, 0.070f, 1);
inline const Vector4f ink(0.88f, 0.89f, 0.92f, 1);
inline const Vector4f dim(0.58f, 0.60f, 0.66f, 1);
inline const Vector4f faint(0.40f, 0.42f, 0.47f, 1);
inline const Vector4f accent(1.00f, 0.78f, 0.30f, 1);
inline const Vector4f selected(1.00f, 1.00f, 1.00f, 1);
inline const Vector4f now(1.00f, 0.45f, 0.25f, 1);
inline const Vector4f wave(0.34f, 0.48f, 0.62f, 1);
inline const Vector4f curve(0.95f, 0.85f, 0.35f, 1);
inline const Vector4f bad(0.55f, 0.12f, 0.12f, 0.95f);
inline const Vector4f loop(0.30f, 0.55f, 0.35f, 0.25f);
inline const Vector4f bookmark(0.45f, 0.80f, 0.95f, 1);
} // namespace color

inline bool contains(const Box2& box, const Vector2f& at) {
    return at.x >= box.x1 && at.x < box.x2 && at.y >= box.y1 && at.y < box.y2;
}

inline Vector4f shade(const Vector4f& color, float factor, float alpha = 1) {
    return Vector4f(std::min(1.0f, color.x * factor), std::min(1.0f, color.y * factor),
                    std::min(1.0f, color.z * factor), alpha);
}

// A quiet colour for each name, always the same.
inline Vector4f colorOf(const std::string& name) {
    unsigned hash = 2166136261u;
    for (const char c : name)
        hash = (hash ^ unsigned(static_cast<unsigned char>(c))) * 16777619u;
    const float hue = float((hash >> 8) % 360) / 60.0f;
    const auto channel = [hue](float offset) {
        const float k = std::fmod(hue + offset, 6.0f);
        return 0.46f - 0.20f * std::max(0.0f, std::min({k, 4.0f - k, 1.0f}));
    };
    return Vector4f(channel(5), channel(3), channel(1), 1);
}

// Shapes in units of the interface, through the toolkit's Render.
class Paint {
public:
    explicit Paint(panorama::Render& render) : mRender(render) {}

    void clip(const Box2& box) { mRender.setClipArea(box); }
    void unclip() { mRender.setClipArea(Box2(0, 0, -1, -1)); }
    void box(const Box2& box, const Vector4f& fill) {
        mRender.setColor(fill, fill);
        mRender.drawBox(box, 0);
    }
    void frame(const Box2& box, const Vector4f& line) {
        mRender.setColor(line, line);
        mRender.drawBorder(box);
    }
    void line(float x1, float y1, float x2, float y2, const Vector4f& line) {
        mRender.setColor(line, line);
        mRender.drawLine(Vector2f(x1, y1), Vector2f(x2, y2));
    }
    // A square on its corner.
    void diamond(float x, float y, float radius, const Vector4f& fill) {
        mRender.setColor(fill, fill);
        mRender.drawCircle(Box2(x - radius, y - radius, x + radius, y + radius), 4, 0);
    }
    // Triangles of rows of pixels, from the middle of their longest one.
    void arrowDown(float x, float y, int size, const Vector4f& fill) {
        for (float half = float(size); half >= 0; --half, ++y)
            box(Box2(x - half, y, x + half + 1, y + 1), fill);
    }
    void arrowRight(float x, float y, int size, const Vector4f& fill) {
        for (float half = float(size); half >= 0; --half, ++x)
            box(Box2(x, y - half, x + 1, y + half + 1), fill);
    }
    float width(const std::string& text) { return mRender.getTextLength(text); }
    // From x to the right, centred on y.
    void text(float x, float y, const std::string& text, const Vector4f& ink) {
        mRender.setFontMode(0);
        mRender.setColor(ink, ink);
        mRender.drawText(text, Vector2f(x, y));
    }
    void textRight(float x, float y, const std::string& text, const Vector4f& ink) {
        this->text(x - width(text), y, text, ink);
    }
    // What of a text fits into so many pixels, with dots where it does not.
    std::string fit(const std::string& text, float room) {
        if (width(text) <= room)
            return text;
        std::string cut = text;
        while (!cut.empty() && width(cut + "...") > room)
            cut.pop_back();
        return cut.empty() ? cut : cut + "...";
    }

private:
    panorama::Render& mRender;
};

} // namespace zentrak::studio
