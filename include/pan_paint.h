// Shapes and text in plain colours, over Render.
#pragma once

#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"
#include "pan_render.h"

#include <string>

namespace zentrak::panorama {

// What a control draws most often, each in one call: plain colours, text centred on a line. It holds nothing
// but the Render, and may be made wherever one is at hand.
class Paint {
public:
    explicit Paint(Render& render) : mRender(render) {}

    void clip(const mathbase::Box2& box) { mRender.setClipArea(box); }
    void unclip() { mRender.setClipArea(mathbase::Box2(0, 0, -1, -1)); }
    void box(const mathbase::Box2& box, const mathbase::Vector4f& fill) {
        mRender.setColor(fill, fill);
        mRender.drawBox(box, 0);
    }
    void frame(const mathbase::Box2& box, const mathbase::Vector4f& line) {
        mRender.setColor(line, line);
        mRender.drawBorder(box);
    }
    void line(float x1, float y1, float x2, float y2, const mathbase::Vector4f& line) {
        mRender.setColor(line, line);
        mRender.drawLine(mathbase::Vector2f(x1, y1), mathbase::Vector2f(x2, y2));
    }
    // A square on its corner.
    void diamond(float x, float y, float radius, const mathbase::Vector4f& fill) {
        mRender.setColor(fill, fill);
        mRender.drawCircle(mathbase::Box2(x - radius, y - radius, x + radius, y + radius), 4, 0);
    }
    // Triangles of rows of pixels, from the middle of their longest one.
    void arrowDown(float x, float y, int size, const mathbase::Vector4f& fill) {
        for (float half = float(size); half >= 0; --half, ++y)
            box(mathbase::Box2(x - half, y, x + half + 1, y + 1), fill);
    }
    void arrowRight(float x, float y, int size, const mathbase::Vector4f& fill) {
        for (float half = float(size); half >= 0; --half, ++x)
            box(mathbase::Box2(x, y - half, x + 1, y + half + 1), fill);
    }
    float width(const std::string& text) { return mRender.getTextLength(text); }
    // From x to the right, centred on y.
    void text(float x, float y, const std::string& text, const mathbase::Vector4f& ink) {
        mRender.setFontMode(0);
        mRender.setColor(ink, ink);
        mRender.drawText(text, mathbase::Vector2f(x, y));
    }
    void textRight(float x, float y, const std::string& text, const mathbase::Vector4f& ink) {
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
    Render& mRender;
};

} // namespace zentrak::panorama
