// Many small shapes in one draw: the words of immediate mode, collected in memory and sent together.
#pragma once

#include "mb_matrix4x4col.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <GL/glew.h>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>
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
    // What box(), sprite(), octagon(), quad() and rect() write besides the position and the colour.
    enum Channel : unsigned {
        CHANNEL_NONE = 0,
        CHANNEL_TEXCOORD = 1,
        CHANNEL_NORMAL = 2, // of box() alone
        CHANNEL_AUTO = 4, // what the state of OpenGL reads: texturing, lighting; with a program in use, both
    };

    // Whether shapes that cannot be seen are left out here, ahead of OpenGL: boxes, solids, sprites and
    // primitives of faces outside the view volume; the faces of boxes, solids and GL_QUADS that GL_CULL_FACE
    // removes (with GL_CULL_FACE off none but those of boxes that are seen exactly edge-on); and small faces
    // of boxes and solids, and small sprites, that cover the middle of no pixel. quad() and rect() are drawn
    // as they come. It does not show at scales of 1e-12 to 1e12; faces a tenth of a unit wide and 300,000
    // units from the middle of things may, with GL_CULL_FACE, miss a pixel of their rim.
    enum Culling {
        CULLING_AUTO, // when no program is in use
        CULLING_ON,   // always; right for a program that puts its vertices where fixed function would
        CULLING_OFF,  // never
    };

    // Corners and faces that are set once and drawn many times by solid(): 32 of each at most, which is
    // asserted. Nothing is allocated.
    class Solid {
    public:
        // Returns the corner's number, from 0 on. `color` says which of the colours of solid() it has.
        int addCorner(const mathbase::Vector3f& place, int color = 0);

        // The quad of four corners in the order of GL_QUADS: plane and convex.
        void addFace(int a, int b, int c, int d);

        void setCorner(int corner, const mathbase::Vector3f& place);

    private:
        friend class Batch;
        static constexpr int MOST = 32;

        void prepare();

        int mCorners = 0, mFaces = 0;
        bool mPrepared = false;
        unsigned char mFace[MOST][4];
        int mColor[MOST];
        alignas(16) float mCorner[MOST][4];       // x, y, z, 1
        alignas(16) float mPlane[MOST / 4][4][4]; // of four faces each: the normals' x, y, z, and offset
        mathbase::Vector3f mCentre, mHalf;        // the box around it
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
    void attrib(int slot,
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

    // All faces of a solid in order, each corner in its colour of `colors` (from then on the current one is
    // the last corner's), or all in the current one if null. Texture coordinates and normals are the current
    // ones.
    void solid(Solid& solid, const mathbase::Vector4f* colors = nullptr);

    // Whether something may be seen of the box from centre - half to centre + half: for leaving out at once
    // what lies in it. Reads the state of OpenGL as a shape does.
    bool isVisible(const mathbase::Vector3f& centre, const mathbase::Vector3f& half);

    // The parallelogram spanned by `right` and `up` around `centre`, in the current colour: texture (s0, t0)
    // at centre + up - right, (s0, t1) at centre - up - right, (s1, t1) at centre - up + right, (s1, t0) at
    // centre + up + right, in this order. (With `up` and `right` as seen, that is counter-clockwise.)
    void sprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                const mathbase::Vector3f& up, float s0 = 0.0f, float t0 = 0.0f, float s1 = 1.0f,
                float t1 = 1.0f);

    // The same with its corners cut off, as three quads: the left part, the middle and the right one. What is
    // left is a regular octagon where `right` and `up` are as long and stand at a right angle.
    void octagon(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
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
    static constexpr int ATTRIBS = 4;
    static constexpr int FIRST_ATTRIB = 6;

    // Of a shape, against the view volume.
    enum Place { INSIDE, ACROSS, OUTSIDE };

    // Memory that grows and is kept; its start lies on a cache line.
    template <class T>
    struct Array {
        T* data = nullptr;
        size_t capacity = 0; // elements

        ~Array() { release(); }
        void grow(size_t used, size_t wanted); // keeps the first `used` elements
        void release();
    };

    // What the state of OpenGL means for the shapes; read at the first shape after a draw.
    struct View {
        unsigned channels = 0;     // what the whole shapes write: CHANNEL_TEXCOORD, CHANNEL_NORMAL
        bool separate = false;     // primitives keep their form: polygons' edges alone, stippled lines
        bool edges = false;        // a face may be seen edge-on
        bool flat = false;         // a face has the colour of one of its corners
        bool cull = false;         // leave out what cannot be seen
        bool sample = false;       // a face covers a pixel where it covers the pixel's middle, else not
        bool keepCounter = true;   // GL_CULL_FACE lets counter-clockwise faces through
        bool keepClockwise = true; // and clockwise ones
        int planes = 15;           // those of x, y, z and w that count: a mask
        float margin = 0;          // how far OpenGL may move a corner, pixels
        float size = 0;            // of the window, pixels

        alignas(16) float eye[4] = {};     // the point that is projected to x = y = w = 0
        alignas(16) float clip[4][4] = {}; // columns: what x, y, z and 1 are in clip space
        alignas(16) float weight[4] = {};  // and what their magnitudes come to there at most
        alignas(16) float scale[4] = {};   // from the unit square to the window: x, y, -x, -y
        alignas(16) float offset[4] = {};
        alignas(16) float limit[4] = {}; // right, top, -left and -bottom of the viewport
    };

    void look();
    void lookVolume();
    void lookWindow();

    // A shape is a centre and its half axes, 4 floats each one after the other, and `clip` the same in clip
    // space; faces are masks, one bit each.
    void boxAxes(const mathbase::Vector3f& centre, const mathbase::Vector3f& half, float* shape) const;
    Place toClip(const float* shape, float* clip, int axes) const;
    float roundingOf(const float* shape, int axes) const;
    Place placeOf(const float* clip, const float* shape, int axes) const;
    float marginOf(const float* clip, const float* shape, int axes) const;
    void localEye(const float* shape, float* eye) const;
    unsigned visibleFaces(const float* shape) const;
    unsigned visibleFaces(const Solid& solid) const;
    unsigned seenFaces(const float* corners, int count, const unsigned char (*face)[4], unsigned faces,
                       float rounding, float margin) const;
    unsigned seenFaces(const float* clip, unsigned faces, float rounding, float margin) const;
    unsigned seenFaces(const Solid& solid, unsigned faces, float rounding, float margin) const;
    bool coversSprite(const float* clip, float margin) const;
    Place placeSprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                      const mathbase::Vector3f& up, float* shape) const;
    bool mayCover(const float* window, const unsigned char* corners, float margin) const;

    static __m128 toWindow(const View& view, __m128 clip);
    static int keptFaces(const View& view, __m128 area);

    void openPrimitive(GLenum mode);
    void closePrimitive(GLenum mode, size_t first);
    void addIndices(GLenum mode, size_t first, size_t count);
    void addQuads(const float* corners, const float* texture, size_t quads);
    Place placeOf(size_t first) const;
    bool isCulled(const float* a, const float* b, const float* c) const;
    void cullQuads();
    void moveQuad(size_t from, size_t to);
    void markRun(Place place);
    void fill(size_t first, size_t count, unsigned channels);
    void startChannel(unsigned channel);
    void reserveVertices(size_t more);
    void updateNormal();
    void normalMatrix(float* columns) const;
    void drawCollected();
    void drawRuns(GLenum mode, size_t count);
    void putArraysAside();

    Array<float> mPosition;        // 4 a vertex: x, y, z, 1
    Array<float> mColor;           // 4 a vertex
    Array<float> mTexCoord;        // 2 a vertex
    Array<float> mNormal;          // 4 a vertex: x, y, z, 0
    Array<float> mAttrib[ATTRIBS]; // 4 a vertex
    Array<uint32_t> mIndex;

    std::vector<uint32_t> mRuns; // the vertices at which shapes change between inside and across
    std::vector<GLint> mFirsts;
    std::vector<GLsizei> mCounts;
    Place mFirstPlace = ACROSS;
    Place mPlace = ACROSS; // of the last shape

    size_t mCount = 0;   // vertices
    size_t mRoom = 0;    // vertices for which every array in use has room
    size_t mIndices = 0; // 0 while the vertices are drawn as they lie
    size_t mFirst = 0;   // first vertex of the open primitive
    size_t mDraws = 0;
    GLenum mMode = NOTHING;     // the open primitive
    GLenum mDrawMode = NOTHING; // of what is collected
    unsigned mHas = 0;          // the values that were given since the last flush: a mask of HAS_
    bool mLooked = false;       // mView is valid
    View mView;

    alignas(16) float mCurrentColor[4] = {1, 1, 1, 1};
    alignas(16) float mCurrentNormal[4] = {0, 0, 1, 0};
    alignas(16) float mOutNormal[4] = {0, 0, 1, 0}; // mCurrentNormal, transformed
    alignas(16) float mCurrentAttrib[ATTRIBS][4] = {};
    alignas(16) float mTransform[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float mCurrentTexCoord[2] = {0, 0};
    bool mIdentity = true;
    bool mNormalDirty = false;

    unsigned mChannels = CHANNEL_AUTO;
    Culling mCulling = CULLING_AUTO;
};

} // namespace zentrak::display
