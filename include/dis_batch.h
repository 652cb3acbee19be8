// Many small shapes in few draw calls, through an immediate-mode interface.
#pragma once

#include "dis_culling.h"
#include "mb_matrix4x4col.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <GL/glew.h>
#include <cstddef>
#include <vector>

namespace zentrak::display {

// Collects what glBegin, glColor, glTexCoord, glNormal, glVertex and glEnd take, and whole boxes, sprites and
// quads, and draws all of it at flush():
//
//     batch.begin(GL_QUAD_STRIP);              for (each of many) {
//     batch.color(0, 0, 0, 1);                     batch.setTransform(matrix);
//     batch.vertex(x, y, z);                       batch.color(red, green, blue, alpha);
//     ...                                          batch.box(centre, half);
//     batch.end();                             }
//     batch.flush();                           batch.flush();
//
// The picture is that of the same shapes drawn one at a time, in the same order.
//
// The OpenGL state and the display's camera, transform and projection must not change between the first shape
// and the flush. setTransform() is what differs from shape to shape: it is applied here, to positions and
// normals, so a program gets gl_Vertex and gl_Normal after this transform and before the model-view matrix.
//
// Shapes outside the view, and faces of boxes that GL_CULL_FACE removes, are left out, unless a program is in
// use, which may put its vertices anywhere. This goes by the display's own matrices: a matrix loaded by other
// means than DisplayGL::setCamera, setTransform, setModelView or setProject is ignored.
//
// A color(), texCoord() or normal() that wasn't given since the last flush is OpenGL's current one, and after
// flush() the last one given, or written by the last shape, is OpenGL's current one, as after glEnd.
//
// Memory is kept: once warm, nothing is allocated. A Batch owns no OpenGL object: it can be made before the
// window is open, and survives a change of context.
class Batch {
public:
    Batch() = default;
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    // The transform of all positions and normals that follow. Its last row is taken as (0, 0, 0, 1). Identity
    // at the start and after flush().
    void setTransform(const mathbase::Matrix4x4Col& transform);
    void resetTransform();

    void color(float r, float g, float b, float a = 1.0f) {
        mColor = mathbase::Vector4f(r, g, b, a);
        mGiven |= COLOR;
    }
    void color(const mathbase::Vector4f& rgba) { color(rgba.x, rgba.y, rgba.z, rgba.w); }
    void color(const mathbase::Vector3f& rgb, float a = 1.0f) { color(rgb.x, rgb.y, rgb.z, a); }
    void texCoord(float s, float t) {
        mTexCoord = mathbase::Vector2f(s, t);
        mGiven |= TEXCOORD;
    }
    void normal(float x, float y, float z) {
        mNormal = mathbase::Vector3f(x, y, z);
        mGiven |= NORMAL;
        transformNormal();
    }
    void normal(const mathbase::Vector3f& n) { normal(n.x, n.y, n.z); }

    // One primitive, in any mode of glBegin; vertices that complete no point, line or face are dropped. A
    // vertex outside begin() and end() is ignored. Asserts that begin() and end() come in pairs.
    void begin(GLenum mode);
    void vertex(float x, float y, float z = 0.0f);
    void vertex(const mathbase::Vector2f& p) { vertex(p.x, p.y, 0.0f); }
    void vertex(const mathbase::Vector3f& p) { vertex(p.x, p.y, p.z); }
    void end();

    // DisplayGL::drawBox: from centre - half to centre + half, with outward normals and the whole texture
    // upright on each face.
    void box(const mathbase::Vector3f& centre, const mathbase::Vector3f& half);

    // The parallelogram spanned by `right` and `up` around `centre`: texture (s0, t0) at centre + up - right,
    // (s0, t1) at centre - up - right, (s1, t1) at centre - up + right, (s1, t0) at centre + up + right, in
    // this order. Counter-clockwise if `right` and `up` point right and up on the screen.
    void sprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                const mathbase::Vector3f& up, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
                float t1 = 1.0f);

    // Four corners in the order of GL_QUADS, with texture (s0, t0), (s1, t0), (s1, t1), (s0, t1).
    void quad(const mathbase::Vector3f& a, const mathbase::Vector3f& b, const mathbase::Vector3f& c,
              const mathbase::Vector3f& d, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
              float t1 = 1.0f);

    // The quad (x0, y0), (x1, y0), (x1, y1), (x0, y1) at height z.
    void rect(float x0, float y0, float x1, float y1, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
              float t1 = 1.0f, float z = 0.0f);

    // Draws everything collected; then the batch is empty and the transform identity, also if a pending
    // OpenGL error throws zentrak::Exception.
    void flush();
    void clear(); // drops everything collected instead

    size_t getVertices() const { return mVertices.size(); } // collected and not yet drawn

private:
    enum : unsigned { COLOR = 1, TEXCOORD = 2, NORMAL = 4 };
    static constexpr GLenum NO_MODE = 0xFFFFFFFF;

    // GL_T2F_C4F_N3F_V3F. Nothing is initialised: each vertex is written right after it is appended.
    struct Vertex {
        float texCoord[2], color[4], normal[3], position[3];
        Vertex() {} // NOLINT(modernize-use-equals-default)
    };

    // Primitives that are drawn by one glDrawArrays.
    struct Run {
        GLenum mode;
        bool inside; // nothing of it has to be clipped
        GLint first;
        GLsizei count; // vertices
    };

    void look();
    mathbase::Vector3f transformed(const mathbase::Vector3f& point) const;
    void transformNormal();
    Vertex* append(size_t count);
    void write(Vertex& vertex, const mathbase::Vector3f& position, const mathbase::Vector3f& normal) const;
    void addQuad(const mathbase::Vector3f (&corners)[4], const float (&texture)[4][2]);
    void addRun(GLenum mode, Location location, size_t first);
    void draw();

    std::vector<Vertex> mVertices;
    std::vector<Run> mRuns;
    std::vector<GLint> mFirsts; // of the draw calls
    std::vector<GLsizei> mCounts;

    GLenum mMode = NO_MODE; // of the open primitive
    size_t mFirst = 0;      // its first vertex
    Locator mLocator;       // of its vertices
    unsigned mGiven = 0;    // the values that were given since the last flush
    mathbase::Vector4f mColor{1, 1, 1, 1};
    mathbase::Vector2f mTexCoord{0, 0};
    mathbase::Vector3f mNormal{0, 0, 1};
    mathbase::Vector3f mTransformedNormal{0, 0, 1};

    mathbase::Matrix4x4Col mTransform;
    mathbase::Matrix4x4Col mNormalMatrix; // the inverse of mTransform, transposed; its upper left 3 by 3
    bool mIdentity = true;

    // The state, read at the first shape after a flush.
    bool mLooked = false;
    bool mCulls = false; // shapes outside the view are left out
    float mSide = 0;     // 1: GL_CULL_FACE removes clockwise faces, -1 counter-clockwise ones, 0 neither
    mathbase::Matrix4x4Col mClip; // to clip space
    mathbase::Vector4f mEye;
};

} // namespace zentrak::display
