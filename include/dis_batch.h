// Many small shapes in one draw: the words of immediate mode, collected in memory and sent together.
#pragma once

#include "mb_matrix4x4col.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <GL/glew.h>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zentrak::display {

// Takes what glBegin, glColor, glTexCoord, glNormal, glVertex and glEnd take, and whole boxes, sprites and
// quads, writes all of it into arrays in the order given, and draws them with one call at flush():
//
//     batch.begin(GL_QUAD_STRIP);              for (each of many) {
//     batch.color(0, 0, 0, 1);                     batch.setTransform(matrix);
//     batch.vertex(x, y, z);                       batch.color(red, green, blue, alpha);
//     ...                                          batch.box(centre, half);
//     batch.end();                             }
//     batch.flush();                           batch.flush();
//
// The picture is that of the same shapes drawn one at a time: strips, fans and loops become separate
// triangles or lines in the same order, so blending and the depth test see the same sequence. Points, lines
// and surfaces may follow each other; each change between the three costs a draw call of its own.
//
// All state of OpenGL (program, textures, blending, culling, matrices) is that of the moment of flush(). It
// must not change between the first shape and the flush: so flush before changing it. setTransform() is what
// differs from shape to shape: it is applied here, to positions and normals, ahead of the model-view matrix
// of OpenGL. A program therefore gets gl_Vertex and gl_Normal after the transform, and before the model-view
// matrix.
//
// A value that was not given (no color() since the last flush, say) is OpenGL's current one, and after
// flush() the last values given are OpenGL's current ones, as after glEnd.
//
// The memory grows to what the largest flush needed and is kept: once warm nothing is allocated. A Batch
// makes no OpenGL object: it can be built before the window is open, and lives through a change of context.
class Batch {
public:
    // What box(), sprite(), quad() and rect() write besides the position and the colour.
    enum Channel : unsigned {
        CHANNEL_NONE = 0,
        CHANNEL_TEXCOORD = 1,
        CHANNEL_NORMAL = 2, // of box() alone
        CHANNEL_AUTO = 4, // what the state of OpenGL reads: texturing, lighting; with a program in use, both
    };

    // Whether shapes that cannot be seen are left out here, ahead of OpenGL: boxes, sprites and primitives of
    // faces outside the view volume, and the faces of boxes and of GL_QUADS that GL_CULL_FACE removes (with
    // GL_CULL_FACE off no face is left out). quad() and rect() are drawn as they come.
    enum Culling {
        CULLING_AUTO, // when no program is in use
        CULLING_ON,   // always; right for a program that puts its vertices where fixed function would
        CULLING_OFF,  // never
    };

    Batch();
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    // Options; they hold for the shapes that follow, and stay until set again.
    void setChannels(unsigned channels); // a mask of Channel; CHANNEL_AUTO at the start
    void setCulling(Culling culling);    // CULLING_AUTO at the start

    // The transform of all positions and normals that follow. Its last row is taken as (0, 0, 0, 1). Identity
    // at the start and after flush().
    void setTransform(const mathbase::Matrix4x4Col& transform);
    void resetTransform(); // identity

    // Values of the vertices and shapes that follow, as in OpenGL: kept until given anew.
    void color(float r, float g, float b, float a = 1.0f) {
        if (!(mHas & HAS_COLOR))
            startChannel(HAS_COLOR);
        mCurrentColor[0] = r, mCurrentColor[1] = g, mCurrentColor[2] = b, mCurrentColor[3] = a;
    }
    void color(const mathbase::Vector4f& rgba) { color(rgba.x, rgba.y, rgba.z, rgba.w); }
    void color(const mathbase::Vector3f& rgb, float a = 1.0f) { color(rgb.x, rgb.y, rgb.z, a); }
    void texCoord(float s, float t) {
        if (!(mHas & HAS_TEXCOORD))
            startChannel(HAS_TEXCOORD);
        mCurrentTexCoord[0] = s, mCurrentTexCoord[1] = t;
    }
    void normal(float x, float y, float z) {
        if (!(mHas & HAS_NORMAL))
            startChannel(HAS_NORMAL);
        mCurrentNormal[0] = x, mCurrentNormal[1] = y, mCurrentNormal[2] = z;
        mNormalDirty = true;
    }
    void normal(const mathbase::Vector3f& n) { normal(n.x, n.y, n.z); }
    void attrib(int                       slot,
                const mathbase::Vector4f& value); // generic attribute 6 to 9 of a program; not transformed

    // One primitive: `mode` is one of the ten of glBegin, GL_POINTS to GL_POLYGON; vertices that complete no
    // point, line or face are dropped, as in OpenGL. A vertex outside begin() and end() is ignored. Asserts
    // that begin() and end() come in pairs.
    void begin(GLenum mode);
    void vertex(float x, float y, float z = 0.0f);
    void vertex(const mathbase::Vector2f& p) { vertex(p.x, p.y, 0.0f); }
    void vertex(const mathbase::Vector3f& p) { vertex(p.x, p.y, p.z); }
    void end();

    // The box from centre - half to centre + half, in the current colour. Six faces in the order -z, -x, +x,
    // -y, +y, +z, each counter-clockwise seen from outside (for positive halves), with its outward unit
    // normal and the whole texture upright on it: texture (0, 1) at its lower left corner, (1, 0) at its
    // upper right one. "Up" is +y on the four sides, -z on the top and +z on the bottom.
    void box(const mathbase::Vector3f& centre, const mathbase::Vector3f& half);

    // The parallelogram spanned by `right` and `up` around `centre`, in the current colour: texture (s0, t0)
    // at centre + up - right, (s0, t1) at centre - up - right, (s1, t1) at centre - up + right, (s1, t0) at
    // centre + up + right, in this order. (With `up` and `right` as seen, that is counter-clockwise.)
    void sprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                const mathbase::Vector3f& up, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
                float t1 = 1.0f);

    // Four corners in the order of GL_QUADS, in the current colour, with texture (s0, t0), (s1, t0), (s1,
    // t1), (s0, t1).
    void quad(const mathbase::Vector3f& a, const mathbase::Vector3f& b, const mathbase::Vector3f& c,
              const mathbase::Vector3f& d, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
              float t1 = 1.0f);

    // The quad (x0, y0), (x1, y0), (x1, y1), (x0, y1) at height z, in the current colour, with texture (s0,
    // t0), (s1, t0), (s1, t1), (s0, t1) at these corners.
    void rect(float x0, float y0, float x1, float y1, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
              float t1 = 1.0f, float z = 0.0f);

    // Draws everything collected; then the Batch is empty, and the transform is identity. A pending error of
    // OpenGL throws zentrak::Exception (the collected shapes are dropped).
    void flush();
    void clear(); // drops everything collected instead

    size_t getVertices() const { return mCount; } // collected and not yet drawn
    size_t getDraws() const { return mDraws; }    // draw calls made since the construction
    size_t getMemory() const;                     // bytes held

private:
    enum : unsigned {
        HAS_COLOR = 1,
        HAS_TEXCOORD = 2,
        HAS_NORMAL = 4,
        HAS_ATTRIB = 8
    }; // HAS_ATTRIB << 0 to 3

    static constexpr GLenum NOTHING = 0xFFFFFFFF;
    static constexpr int    ATTRIBS = 4;
    static constexpr int    FIRST_ATTRIB = 6;

    // Of a shape, against the view volume.
    enum Place { INSIDE, ACROSS, OUTSIDE };

    // Memory that grows and is kept; its start lies on a cache line.
    template <class T>
    struct Array {
        T*     data = nullptr;
        size_t capacity = 0; // elements

        ~Array() { release(); }
        void grow(size_t used, size_t wanted); // keeps the first `used` elements
        void release();
    };

    // What the state of OpenGL means for the shapes; read at the first shape after a draw.
    struct View {
        unsigned channels = 0;         // what the whole shapes write: CHANNEL_TEXCOORD, CHANNEL_NORMAL
        bool     separate = false;     // primitives keep their form: polygons' edges alone, stippled lines
        bool     flat = false;         // a face has the colour of one of its corners
        bool     cull = false;         // leave out what cannot be seen
        bool     keepCounter = true;   // GL_CULL_FACE lets counter-clockwise faces through
        bool     keepClockwise = true; // and clockwise ones
        float    eye[4] = {};          // the point that is projected to x = y = w = 0
        float    plane[4][8] = {};     // six planes around the view, by coordinate; the last two are empty
    };

    void     look();
    void     lookVolume();
    void     openPrimitive(GLenum mode);
    void     closePrimitive(GLenum mode, size_t first);
    void     addIndices(GLenum mode, size_t first, size_t count);
    Place    placeOf(const float* centre, const float* axes, int count) const;
    Place    placeOf(size_t first) const;
    bool     isCulled(const float* a, const float* b, const float* c) const;
    void     cullQuads();
    void     moveQuad(size_t from, size_t to);
    void     markRun(Place place);
    void     drawRuns(GLenum mode, size_t count);
    unsigned visibleFaces(const float* centre, const float* axes) const;
    void     addQuad(const float* corners, float s0, float t0, float s1, float t1, bool columnFirst);
    void     fill(size_t first, size_t count, unsigned channels);
    void     startChannel(unsigned channel);
    void     reserveVertices(size_t more);
    void     updateNormal();
    void     normalMatrix(float* columns) const;
    void     drawCollected();
    void     putArraysAside();

    Array<float>    mPosition;        // 4 a vertex: x, y, z, 1
    Array<float>    mColor;           // 4 a vertex
    Array<float>    mTexCoord;        // 2 a vertex
    Array<float>    mNormal;          // 4 a vertex: x, y, z, 0
    Array<float>    mAttrib[ATTRIBS]; // 4 a vertex
    Array<uint32_t> mIndex;

    std::vector<uint32_t> mRuns; // the vertices at which shapes change between inside and across
    std::vector<GLint>    mFirsts;
    std::vector<GLsizei>  mCounts;
    Place                 mFirstPlace = ACROSS;
    Place                 mPlace = ACROSS; // of the last shape

    size_t   mCount = 0;   // vertices
    size_t   mRoom = 0;    // vertices for which every array in use has room
    size_t   mIndices = 0; // 0 while the vertices are drawn as they lie
    size_t   mFirst = 0;   // first vertex of the open primitive
    size_t   mDraws = 0;
    GLenum   mMode = NOTHING;     // the open primitive
    GLenum   mDrawMode = NOTHING; // of what is collected
    unsigned mHas = 0;            // the values that were given since the last flush: a mask of HAS_
    bool     mLooked = false;     // mView is valid
    View     mView;

    alignas(16) float mCurrentColor[4] = {1, 1, 1, 1};
    alignas(16) float mCurrentNormal[4] = {0, 0, 1, 0};
    alignas(16) float mOutNormal[4] = {0, 0, 1, 0}; // mCurrentNormal, transformed
    alignas(16) float mCurrentAttrib[ATTRIBS][4] = {};
    alignas(16) float mTransform[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float mCurrentTexCoord[2] = {0, 0};
    bool  mIdentity = true;
    bool  mNormalDirty = false;

    unsigned mChannels = CHANNEL_AUTO;
    Culling  mCulling = CULLING_AUTO;
};

} // namespace zentrak::display
