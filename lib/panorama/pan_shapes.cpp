#include "pan_shapes.h"

#include "dis_glcheck.h"

#include <algorithm>

namespace zentrak::panorama {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;

namespace {

constexpr size_t MOST_WAITING = 256; // texts

bool touch(const Box2& a, const Box2& b) {
    return a.x1 < b.x2 && b.x1 < a.x2 && a.y1 < b.y2 && b.y1 < a.y2;
}

void setFilter(GLint filter) {
    GL_CALL(glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter));
    GL_CALL(glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter));
}

} // namespace

void Shapes::addRun(Kind kind) {
    if (mRuns.empty() || mRuns.back().kind != kind)
        mRuns.push_back({kind, mVertices.size()});
}

// Deferring text keeps runs long: an editor's frame of 500 spans at 1280x800 takes 6.2 ms of processor time,
// and 8.2 without (bench/app/bench_editor).
void Shapes::begin(bool opaque, const Box2& bounds) {
    if (mTextBoxes.size() > MOST_WAITING ||
        std::any_of(mTextBoxes.begin(), mTextBoxes.end(),
                    [&](const Box2& text) { return touch(text, bounds); }))
        endTexts();
    addRun(opaque ? OPAQUE : BLENDED);
}

void Shapes::endTexts() {
    if (mText.empty())
        return;
    addRun(TEXTURED);
    mVertices.insert(mVertices.end(), mText.begin(), mText.end());
    mText.clear();
    mTextBoxes.clear();
}

void Shapes::add(float x, float y, const Vector4f& color) {
    mVertices.push_back({Vector2f(x, y), Vector2f(), color});
}

// As triangles, since OpenGL may cut a quad along either diagonal.
void Shapes::addBox(const Box2& box, const Corners& colors) {
    const bool opaque = colors.upperLeft.w >= 1 && colors.upperRight.w >= 1 && colors.lowerRight.w >= 1 &&
                        colors.lowerLeft.w >= 1;
    begin(opaque, box);
    add(box.x1, box.y1, colors.upperLeft);
    add(box.x2, box.y1, colors.upperRight);
    add(box.x2, box.y2, colors.lowerRight);
    add(box.x1, box.y1, colors.upperLeft);
    add(box.x2, box.y2, colors.lowerRight);
    add(box.x1, box.y2, colors.lowerLeft);
}

void Shapes::addPolygon(const Vector2f* points, int count, const Box2& bounds, const Vector4f& color) {
    begin(color.w >= 1, bounds);
    for (int i = 1; i + 1 < count; ++i)
        for (const Vector2f& point : {points[0], points[i], points[i + 1]})
            add(point.x, point.y, color);
}

void Shapes::addGlyph(const Box2& box, float s0, float t0, float s1, float t1, const Vector4f& color) {
    const Vertex upperLeft{Vector2f(box.x1, box.y1), Vector2f(s0, t0), color},
        upperRight{Vector2f(box.x2, box.y1), Vector2f(s1, t0), color},
        lowerRight{Vector2f(box.x2, box.y2), Vector2f(s1, t1), color},
        lowerLeft{Vector2f(box.x1, box.y2), Vector2f(s0, t1), color};
    mText.insert(mText.end(), {upperLeft, upperRight, lowerRight, upperLeft, lowerRight, lowerLeft});
    Box2& all = mTextBoxes.back();
    all = all == Box2() ? box
                        : Box2(std::min(all.x1, box.x1), std::min(all.y1, box.y1), std::max(all.x2, box.x2),
                               std::max(all.y2, box.y2));
}

void Shapes::beginText() {
    mTextBoxes.push_back(Box2());
}

void Shapes::clear() {
    mVertices.clear();
    mRuns.clear();
    mText.clear();
    mTextBoxes.clear();
}

void Shapes::draw(display::Texture* texture, bool nearest) {
    endTexts();
    if (texture) {
        texture->bind();
        setFilter(nearest ? GL_NEAREST : GL_LINEAR); // the same where a texel is a pixel, and cheaper
    }
    const Vertex& first = mVertices.front();
    GL_CALL(glEnableClientState(GL_VERTEX_ARRAY));
    GL_CALL(glEnableClientState(GL_COLOR_ARRAY));
    GL_CALL(glEnableClientState(GL_TEXTURE_COORD_ARRAY));
    GL_CALL(glVertexPointer(2, GL_FLOAT, sizeof(Vertex), &first.position));
    GL_CALL(glColorPointer(4, GL_FLOAT, sizeof(Vertex), &first.color));
    GL_CALL(glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), &first.texture));
    for (size_t i = 0; i < mRuns.size(); ++i) {
        const Run& run = mRuns[i];
        const size_t end = i + 1 < mRuns.size() ? mRuns[i + 1].first : mVertices.size();
        if (run.kind == TEXTURED)
            GL_CALL(glEnable(GL_TEXTURE_2D));
        if (run.kind == OPAQUE)
            GL_CALL(glDisable(GL_BLEND));
        GL_CALL(glDrawArrays(GL_TRIANGLES, GLint(run.first), GLsizei(end - run.first)));
        if (run.kind == TEXTURED)
            GL_CALL(glDisable(GL_TEXTURE_2D));
        if (run.kind == OPAQUE)
            GL_CALL(glEnable(GL_BLEND));
    }
    GL_CALL(glDisableClientState(GL_TEXTURE_COORD_ARRAY));
    GL_CALL(glDisableClientState(GL_COLOR_ARRAY));
    GL_CALL(glDisableClientState(GL_VERTEX_ARRAY));
    if (texture) {
        setFilter(GL_LINEAR);
        texture->unbind();
    }
    clear();
}

} // namespace zentrak::panorama
