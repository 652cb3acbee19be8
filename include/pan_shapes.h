// The shapes of a frame as triangles, collected in order and drawn in a few calls.
#pragma once

#include "dis_font.h"
#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"

#include <vector>

namespace zentrak::panorama {

// The picture is that of each shape drawn by itself. Consecutive shapes that need the same state of OpenGL
// share a call, and text waits until something is drawn over it.
class Shapes {
public:
    struct Corners { // of a box, clockwise
        mathbase::Vector4f upperLeft, upperRight, lowerRight, lowerLeft;
    };

    void addBox(const mathbase::Box2& box, const Corners& colors);
    // A convex one; `bounds` is the box around it.
    void addPolygon(const mathbase::Vector2f* points, int count, const mathbase::Box2& bounds,
                    const mathbase::Vector4f& color);
    // A text is all glyphs from here to the next one. Texture coordinates are those of the texture given to
    // draw().
    void beginText();
    void addGlyph(const mathbase::Box2& box, float s0, float t0, float s1, float t1,
                  const mathbase::Vector4f& color);

    void clear();
    bool isEmpty() const { return mVertices.empty() && mText.empty(); }

    // Draws what was added and drops it. Expects the state that Render::setupDraw sets, and leaves it. The
    // memory is kept.
    void draw(display::Texture* texture, bool nearest);

private:
    struct Vertex {
        mathbase::Vector2f position, texture;
        mathbase::Vector4f color;
    };
    enum Kind { OPAQUE, BLENDED, TEXTURED };
    struct Run {
        Kind kind;
        size_t first; // of mVertices
    };

    void begin(bool opaque, const mathbase::Box2& bounds);
    void add(float x, float y, const mathbase::Vector4f& color);
    void addRun(Kind kind);
    void endTexts();

    std::vector<Vertex> mVertices;
    std::vector<Run> mRuns;
    std::vector<Vertex> mText;              // that waits
    std::vector<mathbase::Box2> mTextBoxes; // of each text in it
};

} // namespace zentrak::panorama
