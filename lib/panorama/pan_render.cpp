#include "pan_render.h"

#include "dis_glcheck.h"
#include "pan_box.h"
#include "pan_number.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr float PI = 3.1415927f;
constexpr float FAR_AWAY = 1e6f;  // pixels; no window is as large
constexpr int MAX_SEGMENTS = 720; // of a circle: more would make no difference
constexpr float SPACE = 3.0f;     // pixels, the advance of a blank

// As a cast to int, for any number.
float toInt(float value) {
    return value > FAR_AWAY    ? FAR_AWAY
           : value < -FAR_AWAY ? -FAR_AWAY
           : value == value    ? std::trunc(value)
                               : 0;
}

bool hasExtent(const Box2& box) {
    return box.x2 > box.x1 && box.y2 > box.y1;
}

// How far along a side something is, 0 to 1; the start of one without an end.
float share(float part, float whole) {
    const float result = part / whole;
    return result >= 0 && result <= 1 ? result : result > 1 ? 1.0f : 0.0f;
}

Vector4f mix(const Vector4f& a, const Vector4f& b, float t) {
    return a + (b - a) * t;
}

} // namespace

// Setting up

Render::Render() : mColorFirst(1, 1, 1, 1), mColorSecond(1, 1, 1, 1), mPixel(1, 1) {}

Render::~Render() {
    delete mFont;
}

void Render::setup(display::DisplayGL* display) {
    mDisplay = display;
    auto font = std::make_unique<display::Font>(display);
    font->load("fonthelvete2.png", false,
               Vector2f(float(display->mWindowMode.width), float(display->mWindowMode.height)));
    font->setSizeOfSpace(SPACE);
    font->setAlignment(display::Font::ALIGN_CENTER);
    delete mFont;
    mFont = font.release();
}

void Render::setupDraw(Vector2f size, Vector2f offset, float margin) {
    assert(mDisplay);
    mSize = size;
    mDrawOffset = offset;
    mMargin = margin;
    mPixel = Vector2f(size.x > 0 ? (size.x + 2 * margin) / size.x : 1.0f,
                      size.y > 0 ? (size.y + 2 * margin) / size.y : 1.0f);
    mView = mClip =
        Box2(offset.x - margin, offset.y - margin, size.x + offset.x + margin, size.y + offset.y + margin);
    mWhole = margin == 0 && isWhole(offset.x) && isWhole(offset.y) && isWhole(size.x) && isWhole(size.y);
    mShapes.clear();

    mDisplay->resetStates();
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    for (GLenum state : {GL_CULL_FACE, GL_DEPTH_TEST, GL_TEXTURE_2D, GL_LIGHTING, GL_SCISSOR_TEST})
        GL_CALL(glDisable(state));
    GL_CALL(glMatrixMode(GL_PROJECTION));
    GL_CALL(glLoadIdentity());
    GL_CALL(glOrtho(double(offset.x - margin), double(size.x + offset.x + margin), double(size.y + offset.y + margin),
                    double(offset.y - margin), -1, 1));
    GL_CALL(glViewport(0, 0, GLsizei(toInt(size.x)), GLsizei(toInt(size.y))));
    GL_CALL(glMatrixMode(GL_MODELVIEW));
    GL_CALL(glLoadIdentity());
}

void Render::setColor(const Vector4f& first, const Vector4f& second) {
    mColorFirst = first;
    mColorSecond = second.w < 0 ? first : second;
}

// The area is in pixels of the window, even where a margin scales the drawing down. The window's rows count
// from the bottom, so fractions of a pixel are truncated there.
void Render::setClipArea(Box2 area) {
    if (area.y2 == -1) {
        mClip = mView;
        return;
    }
    const float left = toInt(area.x1 - mDrawOffset.x), right = left + toInt(area.x2 - area.x1);
    const float bottom = mSize.y - toInt(mSize.y - area.y2 + mDrawOffset.y);
    const float top = bottom - toInt(area.y2 - area.y1);
    const auto x = [this](float pixel) { return pixel * mPixel.x + mDrawOffset.x - mMargin; };
    const auto y = [this](float pixel) { return pixel * mPixel.y + mDrawOffset.y - mMargin; };
    mClip = cut(Box2(x(left), y(top), x(right), y(bottom)), mView);
}

// Drawing

void Render::flush() {
    if (!mShapes.isEmpty())
        mShapes.draw(mFont ? &mFont->getTexture() : nullptr, mWhole);
}

// A box with a colour at each corner, changing along one axis alone.
void Render::drawQuad(const Box2& box, const Vector4f& upperLeft, const Vector4f& upperRight,
                      const Vector4f& lowerRight, const Vector4f& lowerLeft) {
    const Box2 seen = cut(box, mClip);
    if (!hasExtent(seen) || !hasExtent(box))
        return;
    Shapes::Corners corners = {upperLeft, upperRight, lowerRight, lowerLeft};
    if (!(seen == box)) {
        const float left = share(seen.x1 - box.x1, box.getWidth());
        const float right = share(seen.x2 - box.x1, box.getWidth());
        const float top = share(seen.y1 - box.y1, box.getHeight());
        const float bottom = share(seen.y2 - box.y1, box.getHeight());
        const auto at = [&](float s, float t) {
            return mix(mix(upperLeft, upperRight, s), mix(lowerLeft, lowerRight, s), t);
        };
        corners = {at(left, top), at(right, top), at(right, bottom), at(left, bottom)};
    }
    mShapes.addBox(seen, corners);
}

void Render::drawBox(const Box2& box, int direction) {
    Vector4f first = mColorFirst, second = mColorSecond;
    Box2 upright = box;
    if (upright.x2 < upright.x1) {
        std::swap(upright.x1, upright.x2);
        if (direction == 1)
            std::swap(first, second);
    }
    if (upright.y2 < upright.y1) {
        std::swap(upright.y1, upright.y2);
        if (direction != 1)
            std::swap(first, second);
    }
    if (direction == 1)
        drawQuad(upright, first, second, second, first);
    else
        drawQuad(upright, first, first, second, second);
}

// The pixels that a loop of lines half a pixel inside the box goes through, each once.
void Render::drawBorder(const Box2& box) {
    float left = std::floor(box.x1 + 0.5f), right = std::floor(box.x2 - 0.5f);
    float top = std::floor(box.y1 + 0.5f), bottom = std::floor(box.y2 - 0.5f);
    if (right < left)
        std::swap(left, right);
    if (bottom < top)
        std::swap(top, bottom);
    const Vector4f first = mColorFirst, second = mColorSecond;
    drawQuad(Box2(left, top, right + 1, top + 1), first, first, first, first);
    if (bottom == top)
        return;
    drawQuad(Box2(left, bottom, right + 1, bottom + 1), second, second, second, second);
    const float half = 0.5f / (bottom - top);
    const Vector4f upper = mix(first, second, half), lower = mix(first, second, 1 - half);
    drawQuad(Box2(left, top + 1, left + 1, bottom), upper, upper, lower, lower);
    if (right != left)
        drawQuad(Box2(right, top + 1, right + 1, bottom), upper, upper, lower, lower);
}

void Render::drawCircle(const Box2& box, int segments, float start) {
    const float width = box.getWidth(), height = box.getHeight();
    if (segments == -1)
        segments = int(toInt((height + width) * PI * 0.5f));
    segments = std::clamp(segments, 3, MAX_SEGMENTS);
    const Vector2f centre(box.x1 + width * 0.5f, box.y1 + height * 0.5f);
    mPolygon.clear();
    for (int i = 1; i <= segments; ++i) {
        const float angle = (float(i % segments) / float(segments) + start) * 2 * PI;
        mPolygon.push_back(
            Vector2f(centre.x + width * 0.5f * sinf(angle), centre.y + height * 0.5f * cosf(angle)));
    }
    drawPolygon(mPolygon.data(), segments);
}

// A line is drawn as a quad one pixel wide, so that it joins the other shapes. Along an axis it fills whole
// pixels.
void Render::drawLine(const Vector2f& a, const Vector2f& b) {
    const Vector4f& color = mColorFirst;
    if (a.x == b.x || a.y == b.y) {
        const bool upright = a.x == b.x;
        Box2 box(std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y));
        if (upright)
            box.x1 = std::floor(a.x), box.x2 = box.x1 + 1;
        else
            box.y1 = std::floor(a.y), box.y2 = box.y1 + 1;
        drawQuad(box, color, color, color, color);
        return;
    }
    const bool flat = std::fabs(b.x - a.x) >= std::fabs(b.y - a.y);
    const Vector2f half = flat ? Vector2f(0, 0.5f) : Vector2f(0.5f, 0);
    const Vector2f points[] = {a - half, b - half, b + half, a + half};
    drawPolygon(points, 4);
}

// Convex, in the first colour.
void Render::drawPolygon(const Vector2f* points, int count) {
    Box2 bounds(points[0].x, points[0].y, points[0].x, points[0].y);
    for (int i = 0; i < count; ++i) {
        if (!std::isfinite(points[i].x) || !std::isfinite(points[i].y))
            return;
        bounds.x1 = std::min(bounds.x1, points[i].x);
        bounds.y1 = std::min(bounds.y1, points[i].y);
        bounds.x2 = std::max(bounds.x2, points[i].x);
        bounds.y2 = std::max(bounds.y2, points[i].y);
    }
    const Box2 seen = cut(bounds, mClip);
    if (!hasExtent(seen))
        return;
    if (!holds(mClip, bounds)) {
        count = clipPolygon(points, count);
        points = mCut.data();
        if (count < 3)
            return;
    }
    mShapes.addPolygon(points, count, seen, mColorFirst);
}

// Cuts a convex polygon at the four edges of the clip area, one after the other, into mCut. Returns how many
// points are left. In doubles: with a point very far out, rounding to float would put the cut hundreds of
// pixels off.
int Render::clipPolygon(const Vector2f* points, int count) {
    mCut.assign(points, points + count);
    const float edges[4] = {mClip.x1, mClip.y1, mClip.x2, mClip.y2};
    for (int edge = 0; edge < 4; ++edge) {
        const float Vector2f::*const axis = edge % 2 == 0 ? &Vector2f::x : &Vector2f::y;
        const auto inside = [&](const Vector2f& p) { // its distance
            const double along = double(p.*axis) - double(edges[edge]);
            return edge < 2 ? along : -along;
        };
        const size_t before = mCut.size();
        for (size_t i = 0; i < before; ++i) {
            const Vector2f a = mCut[i], b = mCut[i + 1 < before ? i + 1 : 0];
            const double from = inside(a), to = inside(b);
            if (from >= 0)
                mCut.push_back(a);
            if ((from >= 0) != (to >= 0)) {
                const double t = from / (from - to);
                Vector2f p(float(std::lerp(double(a.x), b.x, t)), float(std::lerp(double(a.y), b.y, t)));
                (edge % 2 == 0 ? p.x : p.y) = edges[edge];
                mCut.push_back(p);
            }
        }
        mCut.erase(mCut.begin(), mCut.begin() + ptrdiff_t(before));
    }
    return int(mCut.size());
}

void Render::drawText(const std::string& text, Vector2f position) {
    if (!mFont || text.empty())
        return;
    float x = position.x;
    if (mFont->getAlignment() != display::Font::ALIGN_LEFT)
        x -= getTextLength(text) * (mFont->getAlignment() == display::Font::ALIGN_CENTER ? 0.5f : 1.0f);
    const float width = mFont->getWidth(), height = mFont->getHeight();
    x = std::floor(x + 0.5f);
    const float y = std::floor(position.y - height * 0.5f + 0.5f);
    if (!(std::min(y + height, mClip.y2) > std::max(y, mClip.y1)) || !std::isfinite(x))
        return;

    mShapes.beginText();
    for (const char character : text) {
        if (x >= mClip.x2)
            break;
        const uint8_t c = uint8_t(character);
        const Box2 glyph = cut(shifted(mFont->getInk(c), Vector2f(x, y)), mClip);
        if (hasExtent(glyph)) {
            const display::Font::Cell cell = mFont->getCell(c);
            const float s = (cell.s1 - cell.s0) / width, t = (cell.t1 - cell.t0) / height;
            mShapes.addGlyph(glyph, cell.s0 + (glyph.x1 - x) * s, cell.t0 + (glyph.y1 - y) * t,
                             cell.s0 + (glyph.x2 - x) * s, cell.t0 + (glyph.y2 - y) * t, mColorFirst);
        }
        x += mFont->getAdvance(c);
    }
}

void Render::drawTexture(display::Texture& texture, const Box2& box) {
    const Box2 seen = cut(box, mClip);
    if (!hasExtent(seen) || !hasExtent(box))
        return;
    flush();
    mShapes.beginText();
    mShapes.addGlyph(seen, share(seen.x1 - box.x1, box.getWidth()), share(seen.y1 - box.y1, box.getHeight()),
                     share(seen.x2 - box.x1, box.getWidth()), share(seen.y2 - box.y1, box.getHeight()),
                     mColorFirst);
    mShapes.draw(&texture, false);
}

float Render::getTextLength(const std::string& text) {
    return mFont ? mFont->getLength(text) : 0.0f;
}

float Render::getAdvance(unsigned char c) const {
    return mFont ? mFont->getAdvance(c) : 0.0f;
}

float Render::getFontHeight() const {
    return mFont ? mFont->getHeight() : 0.0f;
}

void Render::setFontMode(int mode) {
    if (mFont)
        mFont->setAlignment(mode);
}

float Render::getTime() {
    return mDisplay ? float(mDisplay->getTime()) : 0.0f;
}

} // namespace zentrak::panorama
