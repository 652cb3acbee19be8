#include "dis_batch.h"

#include "dis_glcheck.h"
#include "ztk_system.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>
#include <xmmintrin.h>

namespace zentrak::display {

namespace {

constexpr size_t MIN_VERTICES = 1024;
constexpr size_t DRAW_VERTICES = size_t(1)
                                 << 20; // between two primitives beyond this, what is there is drawn
constexpr size_t   MOST_VERTICES = size_t(1) << 30; // what OpenGL's int counts and 32-bit indices take
constexpr uint32_t SHORT_RUN = 64;                  // vertices
constexpr size_t   LINE = 64;                       // bytes of a cache line

// Corners of a box are numbered by their signs: bit 0 for +x, bit 1 for +y, bit 2 for +z. Each face has its
// lower left, lower right, upper right and upper left corner as seen from outside.
enum Face { BACK, LEFT, RIGHT, BOTTOM, TOP, FRONT, FACES };
constexpr int   FACE_CORNERS[FACES][4] = {{1, 0, 2, 3}, {0, 4, 6, 2}, {5, 1, 3, 7},
                                          {0, 1, 5, 4}, {6, 7, 3, 2}, {4, 5, 7, 6}};
constexpr int   FACE_AXIS[FACES] = {2, 0, 0, 1, 1, 2};
constexpr float FACE_SIGN[FACES] = {-1, -1, 1, -1, 1, 1};
constexpr float FACE_TEXTURE[8] = {0, 1, 1, 1, 1, 0, 0, 0};

bool isSeparate(GLenum mode) {
    return mode == GL_POINTS || mode == GL_LINES || mode == GL_TRIANGLES || mode == GL_QUADS;
}

// The form that all primitives of a kind can be turned into.
GLenum baseOf(GLenum mode) {
    if (mode == GL_POINTS)
        return GL_POINTS;
    return mode == GL_LINES || mode == GL_LINE_LOOP || mode == GL_LINE_STRIP ? GL_LINES : GL_TRIANGLES;
}

// How many of `count` vertices complete a primitive.
size_t completeOf(GLenum mode, size_t count) {
    switch (mode) {
    case GL_POINTS:
        return count;
    case GL_LINES:
        return count & ~size_t(1);
    case GL_LINE_STRIP:
    case GL_LINE_LOOP:
        return count < 2 ? 0 : count;
    case GL_TRIANGLES:
        return count - count % 3;
    case GL_QUADS:
        return count & ~size_t(3);
    case GL_QUAD_STRIP:
        return count < 4 ? 0 : count & ~size_t(1);
    default: // strips, fans and polygons of triangles
        return count < 3 ? 0 : count;
    }
}

// a x b for the first three components.
void cross(const float* a, const float* b, float* out) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

float dot(const float* a, const float* b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

__m128 absolute(__m128 v) {
    return _mm_andnot_ps(_mm_set1_ps(-0.0f), v);
}

// A column-major matrix with the last row (0, 0, 0, 1), applied to the point (x, y, z).
__m128 transformPoint(const float* m, float x, float y, float z) {
    const __m128 xy = _mm_add_ps(_mm_mul_ps(_mm_load_ps(m), _mm_set1_ps(x)),
                                 _mm_mul_ps(_mm_load_ps(m + 4), _mm_set1_ps(y)));
    return _mm_add_ps(_mm_add_ps(xy, _mm_mul_ps(_mm_load_ps(m + 8), _mm_set1_ps(z))), _mm_load_ps(m + 12));
}

__m128 transformVector(const float* m, float x, float y, float z) {
    const __m128 xy = _mm_add_ps(_mm_mul_ps(_mm_load_ps(m), _mm_set1_ps(x)),
                                 _mm_mul_ps(_mm_load_ps(m + 4), _mm_set1_ps(y)));
    return _mm_add_ps(xy, _mm_mul_ps(_mm_load_ps(m + 8), _mm_set1_ps(z)));
}

} // namespace

template <class T>
void Batch::Array<T>::grow(size_t used, size_t wanted) {
    T* bigger = static_cast<T*>(::operator new(wanted * sizeof(T), std::align_val_t(LINE)));
    if (used)
        std::memcpy(bigger, data, used * sizeof(T));
    release();
    data = bigger;
    capacity = wanted;
}

template <class T>
void Batch::Array<T>::release() {
    ::operator delete(data, std::align_val_t(LINE));
    data = nullptr;
    capacity = 0;
}

Batch::Batch() = default;
Batch::~Batch() = default;

void Batch::setChannels(unsigned channels) {
    mChannels = channels;
    mLooked = false;
}

void Batch::setCulling(Culling culling) {
    mCulling = culling;
    mLooked = false;
}

void Batch::setTransform(const mathbase::Matrix4x4Col& transform) {
    std::memcpy(mTransform, transform.mData, sizeof mTransform);
    mTransform[3] = mTransform[7] = mTransform[11] = 0;
    mTransform[15] = 1;
    mIdentity = false;
    mNormalDirty = true;
}

void Batch::resetTransform() {
    static constexpr float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::memcpy(mTransform, identity, sizeof mTransform);
    mIdentity = true;
    mNormalDirty = true;
}

void Batch::attrib(int slot, const mathbase::Vector4f& value) {
    const int i = slot - FIRST_ATTRIB;
    assert(i >= 0 && i < ATTRIBS);
    if (!(mHas & (HAS_ATTRIB << i)))
        startChannel(HAS_ATTRIB << i);
    const float four[4] = {value.x, value.y, value.z, value.w};
    std::memcpy(mCurrentAttrib[i], four, sizeof four);
}

// Makes a value part of every vertex. Those that are there already have OpenGL's current value.
void Batch::startChannel(unsigned channel) {
    mHas |= channel;
    mRoom = mCount;
    if (!mCount)
        return;
    reserveVertices(1);
    if (channel == HAS_COLOR)
        GL_CALL(glGetFloatv(GL_CURRENT_COLOR, mCurrentColor));
    else if (channel == HAS_NORMAL) {
        GL_CALL(glGetFloatv(GL_CURRENT_NORMAL, mCurrentNormal));
        mNormalDirty = true;
    } else if (channel == HAS_TEXCOORD) {
        float four[4];
        GL_CALL(glGetFloatv(GL_CURRENT_TEXTURE_COORDS, four));
        std::memcpy(mCurrentTexCoord, four, sizeof mCurrentTexCoord);
    } else {
        const int i = std::countr_zero(channel / HAS_ATTRIB);
        GL_CALL(glGetVertexAttribfvARB(GLuint(FIRST_ATTRIB + i), GL_CURRENT_VERTEX_ATTRIB_ARB, mCurrentAttrib[i]));
    }
    fill(0, mCount, channel);
}

// Room for `more` vertices in every array in use.
void Batch::reserveVertices(size_t more) {
    const size_t wanted = mCount + more;
    if (wanted <= mRoom)
        return;
    if (wanted > MOST_VERTICES)
        throw Exception("Batch; Too many vertices in one primitive");
    size_t vertices = std::max(mPosition.capacity / 4, MIN_VERTICES);
    if (wanted > vertices)
        vertices = std::max(wanted, 2 * vertices);
    const auto ensure = [&](Array<float>& array, size_t components, bool used) {
        if (used && array.capacity < vertices * components)
            array.grow(std::min(array.capacity, mCount * components), vertices * components);
    };
    ensure(mPosition, 4, true);
    ensure(mColor, 4, mHas & HAS_COLOR);
    ensure(mTexCoord, 2, mHas & HAS_TEXCOORD);
    ensure(mNormal, 4, mHas & HAS_NORMAL);
    for (int i = 0; i < ATTRIBS; ++i)
        ensure(mAttrib[i], 4, mHas & (HAS_ATTRIB << i));
    mRoom = vertices;
}

// Writes the current values of the given channels into vertices.
void Batch::fill(size_t first, size_t count, unsigned channels) {
    const auto put = [&](Array<float>& array, const float* value) {
        const __m128 v = _mm_load_ps(value);
        for (float *p = array.data + 4 * first, *end = p + 4 * count; p != end; p += 4)
            _mm_store_ps(p, v);
    };
    if (channels & HAS_COLOR)
        put(mColor, mCurrentColor);
    if (channels & HAS_TEXCOORD)
        for (size_t i = first; i < first + count; ++i)
            std::memcpy(mTexCoord.data + 2 * i, mCurrentTexCoord, sizeof mCurrentTexCoord);
    if (channels & HAS_NORMAL) {
        updateNormal();
        put(mNormal, mOutNormal);
    }
    if (channels >= HAS_ATTRIB)
        for (int i = 0; i < ATTRIBS; ++i)
            if (channels & (HAS_ATTRIB << i))
                put(mAttrib[i], mCurrentAttrib[i]);
}

// The three columns, four floats each, that take a normal through the transform: its inverse, transposed.
void Batch::normalMatrix(float* columns) const {
    const float *a = mTransform, *b = mTransform + 4, *c = mTransform + 8;
    cross(b, c, columns);
    cross(c, a, columns + 4);
    cross(a, b, columns + 8);
    const float determinant = dot(a, columns);
    const float scale = determinant != 0 ? 1 / determinant : 0; // a flat transform has no inverse
    for (int i = 0; i < 12; ++i)
        columns[i] = i % 4 == 3 ? 0 : columns[i] * scale;
}

void Batch::updateNormal() {
    if (!mNormalDirty)
        return;
    mNormalDirty = false;
    if (mIdentity) {
        std::memcpy(mOutNormal, mCurrentNormal, sizeof mOutNormal);
        return;
    }
    alignas(16) float columns[12] = {};
    normalMatrix(columns);
    _mm_store_ps(mOutNormal,
                 transformVector(columns, mCurrentNormal[0], mCurrentNormal[1], mCurrentNormal[2]));
}

// Reads what of OpenGL's state the shapes depend on.
void Batch::look() {
    mLooked = true;
    GLint program = 0, polygonMode[2] = {GL_FILL, GL_FILL}, shading = GL_SMOOTH;
    if (GLEW_VERSION_2_0)
        GL_CALL(glGetIntegerv(GL_CURRENT_PROGRAM, &program));
    GL_CALL(glGetIntegerv(GL_POLYGON_MODE, polygonMode));
    GL_CALL(glGetIntegerv(GL_SHADE_MODEL, &shading));
    mView.flat = shading == GL_FLAT;
    const bool solid = polygonMode[0] == GL_FILL && polygonMode[1] == GL_FILL;
    mView.separate = !solid || glIsEnabled(GL_LINE_STIPPLE);
    mView.channels = mChannels;
    if (mChannels & CHANNEL_AUTO) {
        const bool generated = glIsEnabled(GL_TEXTURE_GEN_S) || glIsEnabled(GL_TEXTURE_GEN_T);
        const bool textured = glIsEnabled(GL_TEXTURE_2D) || glIsEnabled(GL_TEXTURE_1D) ||
                              glIsEnabled(GL_TEXTURE_3D) || glIsEnabled(GL_TEXTURE_CUBE_MAP);
        mView.channels = 0;
        if (program || textured)
            mView.channels |= CHANNEL_TEXCOORD;
        if (program || (textured && generated) || glIsEnabled(GL_LIGHTING))
            mView.channels |= CHANNEL_NORMAL;
    }
    mView.cull = mCulling == CULLING_ON || (mCulling == CULLING_AUTO && !program);
    if (mView.cull)
        lookVolume();
}

// The view volume's planes, the eye and the faces that are culled, all ahead of the model-view matrix.
void Batch::lookVolume() {
    float view[16], project[16], row[4][4];
    GL_CALL(glGetFloatv(GL_MODELVIEW_MATRIX, view));
    GL_CALL(glGetFloatv(GL_PROJECTION_MATRIX, project));
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            row[r][c] = 0;
            for (int k = 0; k < 4; ++k)
                row[r][c] += project[k * 4 + r] * view[c * 4 + k];
        }
    const bool depthClamped = GLEW_ARB_depth_clamp && glIsEnabled(GL_DEPTH_CLAMP);
    for (int c = 0; c < 4; ++c)
        for (int i = 0; i < 8; ++i) {
            const bool empty = i >= 6 || (depthClamped && i >= 4);
            mView.plane[c][i] = empty ? 0 : row[3][c] + (i % 2 ? -1.0f : 1.0f) * row[i / 2][c];
        }

    // The cofactors of the rows of x, y and w: a face is counter-clockwise on the screen where the product of
    // its plane with them is positive.
    const float *x = row[0], *y = row[1], *w = row[3];
    for (int skip = 0; skip < 4; ++skip) {
        int column[3], n = 0;
        for (int c = 0; c < 4; ++c)
            if (c != skip)
                column[n++] = c;
        const float a[3] = {x[column[0]], x[column[1]], x[column[2]]};
        const float b[3] = {y[column[0]], y[column[1]], y[column[2]]};
        const float c[3] = {w[column[0]], w[column[1]], w[column[2]]};
        float       bc[3];
        cross(b, c, bc);
        mView.eye[skip] = (skip % 2 ? -1.0f : 1.0f) * dot(a, bc);
    }

    mView.keepCounter = mView.keepClockwise = true;
    if (glIsEnabled(GL_CULL_FACE)) {
        GLint culled = GL_BACK, front = GL_CCW;
        GL_CALL(glGetIntegerv(GL_CULL_FACE_MODE, &culled));
        GL_CALL(glGetIntegerv(GL_FRONT_FACE, &front));
        const bool keepFront = culled == GL_BACK, keepBack = culled == GL_FRONT;
        mView.keepCounter = front == GL_CCW ? keepFront : keepBack;
        mView.keepClockwise = front == GL_CCW ? keepBack : keepFront;
    }
}

// Where `centre` plus and minus each of `count` axes (4 floats each) lies: outside one plane of the view
// volume, inside all of them, or else across.
Batch::Place Batch::placeOf(const float* centre, const float* axes, int count) const {
    Place place = INSIDE;
    for (int half = 0; half < 8; half += 4) {
        const __m128 x = _mm_loadu_ps(mView.plane[0] + half), y = _mm_loadu_ps(mView.plane[1] + half);
        const __m128 z = _mm_loadu_ps(mView.plane[2] + half), w = _mm_loadu_ps(mView.plane[3] + half);
        const auto   product = [&](const float* v) {
            return _mm_add_ps(_mm_add_ps(_mm_mul_ps(x, _mm_set1_ps(v[0])), _mm_mul_ps(y, _mm_set1_ps(v[1]))),
                                _mm_mul_ps(z, _mm_set1_ps(v[2])));
        };
        const __m128 middle = _mm_add_ps(product(centre), w);
        __m128       reach = _mm_setzero_ps();
        for (int i = 0; i < count; ++i)
            reach = _mm_add_ps(reach, absolute(product(axes + 4 * i)));
        if (_mm_movemask_ps(_mm_cmplt_ps(_mm_add_ps(middle, reach), _mm_setzero_ps())))
            return OUTSIDE;
        if (_mm_movemask_ps(_mm_cmpnge_ps(_mm_sub_ps(middle, reach), _mm_setzero_ps())))
            place = ACROSS;
    }
    return place;
}

// The same of the vertices from `first` on.
Batch::Place Batch::placeOf(size_t first) const {
    int  outside[2] = {15, 15};
    bool inside = true;
    for (const float *p = mPosition.data + 4 * first, *end = mPosition.data + 4 * mCount; p != end; p += 4) {
        for (int half = 0; half < 2; ++half) {
            const float* plane[4] = {mView.plane[0] + 4 * half, mView.plane[1] + 4 * half,
                                     mView.plane[2] + 4 * half, mView.plane[3] + 4 * half};
            const __m128 distance = _mm_add_ps(
                _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(plane[0]), _mm_set1_ps(p[0])),
                           _mm_mul_ps(_mm_loadu_ps(plane[1]), _mm_set1_ps(p[1]))),
                _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(plane[2]), _mm_set1_ps(p[2])), _mm_loadu_ps(plane[3])));
            const int beyond = _mm_movemask_ps(_mm_cmpnge_ps(distance, _mm_setzero_ps()));
            outside[half] &= beyond;
            inside = inside && !beyond;
        }
    }
    return outside[0] || outside[1] ? OUTSIDE : inside ? INSIDE : ACROSS;
}

// The shape that begins here, with the vertex now to come. Those that lie inside the view are drawn apart
// from those that reach across its edge: in the driver one vertex outside makes all of a draw slow.
void Batch::markRun(Place place) {
    if (mCount == 0) {
        mRuns.clear();
        mFirstPlace = mPlace = place;
    } else if (place != mPlace) {
        mRuns.push_back(static_cast<uint32_t>(mCount));
        mPlace = place;
    }
}

// The faces of a box, three half axes of 4 floats each around `centre`, that GL_CULL_FACE lets through: bit 1
// << Face.
unsigned Batch::visibleFaces(const float* centre, const float* axes) const {
    float normal[3][3];
    cross(axes + 4, axes + 8, normal[0]);
    cross(axes + 8, axes, normal[1]);
    cross(axes, axes + 4, normal[2]);
    const float* eye = mView.eye;
    const float  toEye[3] = {eye[0] - eye[3] * centre[0], eye[1] - eye[3] * centre[1],
                             eye[2] - eye[3] * centre[2]};
    const float  depth = eye[3] * dot(axes, normal[0]);
    unsigned     faces = 0;
    for (int f = 0; f < FACES; ++f) {
        const float area = FACE_SIGN[f] * dot(toEye, normal[FACE_AXIS[f]]) - depth;
        if ((area > 0 && mView.keepCounter) || (area < 0 && mView.keepClockwise))
            faces |= 1u << f;
    }
    return faces;
}

// Whether GL_CULL_FACE removes the triangle of three corners.
bool Batch::isCulled(const float* a, const float* b, const float* c) const {
    const float  ab[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const float  ac[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    const float* eye = mView.eye;
    const float  toEye[3] = {eye[0] - eye[3] * a[0], eye[1] - eye[3] * a[1], eye[2] - eye[3] * a[2]};
    float        normal[3];
    cross(ab, ac, normal);
    const float area = dot(toEye, normal);
    return !((area > 0 && mView.keepCounter) || (area < 0 && mView.keepClockwise));
}

// Drops those of the open primitive's quads of which GL_CULL_FACE leaves nothing.
void Batch::cullQuads() {
    mCount -= (mCount - mFirst) % 4;
    size_t kept = mFirst;
    for (size_t quad = mFirst; quad < mCount; quad += 4) {
        const float* p = mPosition.data + 4 * quad;
        if (isCulled(p, p + 4, p + 8) && isCulled(p, p + 8, p + 12) && isCulled(p, p + 4, p + 12) &&
            isCulled(p + 4, p + 8, p + 12))
            continue; // cut along either diagonal, should it be bent
        if (kept != quad)
            moveQuad(quad, kept);
        kept += 4;
    }
    mCount = kept;
}

void Batch::moveQuad(size_t from, size_t to) {
    const auto move = [&](Array<float>& array, size_t components) {
        std::memcpy(array.data + components * to, array.data + components * from,
                    4 * components * sizeof(float));
    };
    move(mPosition, 4);
    if (mHas & HAS_COLOR)
        move(mColor, 4);
    if (mHas & HAS_TEXCOORD)
        move(mTexCoord, 2);
    if (mHas & HAS_NORMAL)
        move(mNormal, 4);
    for (int i = 0; mHas >= HAS_ATTRIB && i < ATTRIBS; ++i)
        if (mHas & (HAS_ATTRIB << i))
            move(mAttrib[i], 4);
}

void Batch::openPrimitive(GLenum mode) {
    assert(mMode == NOTHING);
    if (!mLooked)
        look();
    const bool joins = mIndices == 0 && mDrawMode == mode && isSeparate(mode);
    if (mCount && !joins && (mView.separate || baseOf(mode) != baseOf(mDrawMode)))
        drawCollected();
    if (mCount >= DRAW_VERTICES)
        drawCollected();
}

// Takes the vertices from `first` on as one `mode`. What does not lie as one array of one separate form any
// more goes by indices from here on.
void Batch::closePrimitive(GLenum mode, size_t first) {
    const size_t count = completeOf(mode, mCount - first);
    mCount = first + count;
    if (!count)
        return;
    if (!first) {
        mDrawMode = mode;
        return;
    }
    if (!mIndices) {
        if (mDrawMode == mode && isSeparate(mode))
            return;
        addIndices(mDrawMode, 0, first);
        mDrawMode = baseOf(mode);
    }
    addIndices(mode, first, count);
}

// A primitive as separate points, lines or triangles: the same faces in the same order, cut along the same
// diagonals and with the same last corner, whose colour is that of a flat face.
void Batch::addIndices(GLenum mode, size_t first, size_t count) {
    const size_t most = mIndices + 3 * count + 2;
    if (most > mIndex.capacity)
        mIndex.grow(mIndices, std::max({most, 2 * mIndex.capacity, MIN_VERTICES}));
    uint32_t*      out = mIndex.data + mIndices;
    const uint32_t v = uint32_t(first), n = uint32_t(count);
    const auto     line = [&](uint32_t a, uint32_t b) {
        *out++ = v + a;
        *out++ = v + b;
    };
    const auto triangle = [&](uint32_t a, uint32_t b, uint32_t c) {
        *out++ = v + a;
        *out++ = v + b;
        *out++ = v + c;
    };
    switch (mode) {
    case GL_LINE_STRIP:
    case GL_LINE_LOOP:
        for (uint32_t i = 1; i < n; ++i)
            line(i - 1, i);
        if (mode == GL_LINE_LOOP)
            line(n - 1, 0);
        break;
    case GL_TRIANGLE_STRIP:
        for (uint32_t i = 2; i < n; ++i)
            i % 2 ? triangle(i - 1, i - 2, i) : triangle(i - 2, i - 1, i);
        break;
    case GL_TRIANGLE_FAN:
        for (uint32_t i = 2; i < n; ++i)
            triangle(0, i - 1, i);
        break;
    case GL_POLYGON:
        for (uint32_t i = 2; i < n; ++i)
            triangle(i - 1, i, 0);
        break;
    case GL_QUADS:
        for (uint32_t i = 0; i < n; i += 4)
            if (mView.flat) {
                triangle(i, i + 1, i + 3);
                triangle(i + 1, i + 2, i + 3);
            } else {
                triangle(i, i + 1, i + 2);
                triangle(i, i + 2, i + 3);
            }
        break;
    case GL_QUAD_STRIP:
        for (uint32_t i = 0; i + 3 < n; i += 2) {
            triangle(i + 2, i, i + 3);
            triangle(i, i + 1, i + 3);
        }
        break;
    default: // separate points, lines and triangles
        for (uint32_t i = 0; i < n; ++i)
            *out++ = v + i;
        break;
    }
    mIndices = size_t(out - mIndex.data);
}

void Batch::begin(GLenum mode) {
    assert(mode <= GL_POLYGON);
    openPrimitive(mode);
    mFirst = mCount;
    mMode = mode;
}

void Batch::vertex(float x, float y, float z) {
    if (mMode == NOTHING)
        return;
    if (mCount == mRoom)
        reserveVertices(1);
    _mm_store_ps(mPosition.data + 4 * mCount,
                 mIdentity ? _mm_setr_ps(x, y, z, 1) : transformPoint(mTransform, x, y, z));
    if (mHas)
        fill(mCount, 1, mHas);
    ++mCount;
}

void Batch::end() {
    assert(mMode != NOTHING);
    const GLenum mode = mMode;
    mMode = NOTHING;
    Place place = ACROSS;
    if (mView.cull && mCount != mFirst && baseOf(mode) == GL_TRIANGLES) {
        place = placeOf(mFirst);
        if (place == OUTSIDE) {
            mCount = mFirst;
            return;
        }
        if (mode == GL_QUADS && !(mView.keepCounter && mView.keepClockwise))
            cullQuads();
    }
    const size_t count = std::exchange(mCount, mFirst);
    markRun(place);
    mCount = count;
    closePrimitive(mode, mFirst);
}

void Batch::box(const mathbase::Vector3f& centre, const mathbase::Vector3f& half) {
    openPrimitive(GL_QUADS);
    const __m128 c = transformPoint(mTransform, centre.x, centre.y, centre.z);
    const __m128 ax = _mm_mul_ps(_mm_load_ps(mTransform), _mm_set1_ps(half.x));
    const __m128 ay = _mm_mul_ps(_mm_load_ps(mTransform + 4), _mm_set1_ps(half.y));
    const __m128 az = _mm_mul_ps(_mm_load_ps(mTransform + 8), _mm_set1_ps(half.z));
    unsigned     faces = (1u << FACES) - 1;
    Place        place = ACROSS;
    if (mView.cull) {
        alignas(16) float middle[4], axes[12];
        _mm_store_ps(middle, c);
        _mm_store_ps(axes, ax);
        _mm_store_ps(axes + 4, ay);
        _mm_store_ps(axes + 8, az);
        place = placeOf(middle, axes, 3);
        if (place == OUTSIDE)
            return;
        faces = visibleFaces(middle, axes);
        if (!faces)
            return;
    }
    markRun(place);

    const unsigned has = mView.channels;
    if ((has & CHANNEL_TEXCOORD) && !(mHas & HAS_TEXCOORD))
        startChannel(HAS_TEXCOORD);
    if ((has & CHANNEL_NORMAL) && !(mHas & HAS_NORMAL))
        startChannel(HAS_NORMAL);
    const size_t first = mCount, count = 4 * size_t(std::popcount(faces));
    reserveVertices(count);

    const __m128 back = _mm_sub_ps(c, az), front = _mm_add_ps(c, az);
    const __m128 low = _mm_add_ps(ax, ay), high = _mm_sub_ps(ax, ay); // to (+x, +y) and to (+x, -y)
    const __m128 corner[8] = {_mm_sub_ps(back, low),   _mm_add_ps(back, high), _mm_sub_ps(back, high),
                              _mm_add_ps(back, low),   _mm_sub_ps(front, low), _mm_add_ps(front, high),
                              _mm_sub_ps(front, high), _mm_add_ps(front, low)};
    float*       position = mPosition.data + 4 * first;
    for (unsigned left = faces; left; left &= left - 1) {
        const int* corners = FACE_CORNERS[std::countr_zero(left)];
        for (int i = 0; i < 4; ++i)
            _mm_store_ps(position + 4 * i, corner[corners[i]]);
        position += 16;
    }
    unsigned rest = mHas;
    if (has & CHANNEL_TEXCOORD) {
        rest &= ~HAS_TEXCOORD;
        for (size_t i = first; i < first + count; i += 4)
            std::memcpy(mTexCoord.data + 2 * i, FACE_TEXTURE, sizeof FACE_TEXTURE);
        std::memcpy(mCurrentTexCoord, FACE_TEXTURE + 6, sizeof mCurrentTexCoord);
    }
    if (has & CHANNEL_NORMAL) {
        rest &= ~HAS_NORMAL;
        alignas(16) float columns[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
        if (!mIdentity)
            normalMatrix(columns);
        float* out = mNormal.data + 4 * first;
        for (unsigned left = faces; left; left &= left - 1) {
            const int    f = std::countr_zero(left);
            const __m128 n = _mm_mul_ps(_mm_load_ps(columns + 4 * FACE_AXIS[f]), _mm_set1_ps(FACE_SIGN[f]));
            for (int i = 0; i < 4; ++i, out += 4)
                _mm_store_ps(out, n);
        }
        normal(0, 0, 1);
    }
    fill(first, count, rest);
    mCount = first + count;
    closePrimitive(GL_QUADS, first);
}

// Four corners of 4 floats each, already transformed. `columnFirst` says which way round the texture goes:
// (s0, t1) at the second corner instead of (s1, t0).
void Batch::addQuad(const float* corners, float s0, float t0, float s1, float t1, bool columnFirst) {
    const bool textured = mView.channels & CHANNEL_TEXCOORD;
    if (textured && !(mHas & HAS_TEXCOORD))
        startChannel(HAS_TEXCOORD);
    const size_t first = mCount;
    reserveVertices(4);
    std::memcpy(mPosition.data + 4 * first, corners, 16 * sizeof(float));
    unsigned rest = mHas;
    if (textured) {
        rest &= ~HAS_TEXCOORD;
        const float second[2] = {columnFirst ? s0 : s1, columnFirst ? t1 : t0};
        const float fourth[2] = {columnFirst ? s1 : s0, columnFirst ? t0 : t1};
        const float texture[8] = {s0, t0, second[0], second[1], s1, t1, fourth[0], fourth[1]};
        std::memcpy(mTexCoord.data + 2 * first, texture, sizeof texture);
        std::memcpy(mCurrentTexCoord, fourth, sizeof fourth);
    }
    fill(first, 4, rest);
    mCount = first + 4;
    closePrimitive(GL_QUADS, first);
}

void Batch::sprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                   const mathbase::Vector3f& up, float s0, float t0, float s1, float t1) {
    openPrimitive(GL_QUADS);
    __m128 c = _mm_setr_ps(centre.x, centre.y, centre.z, 1), r = _mm_setr_ps(right.x, right.y, right.z, 0),
           u = _mm_setr_ps(up.x, up.y, up.z, 0);
    if (!mIdentity) {
        c = transformPoint(mTransform, centre.x, centre.y, centre.z);
        r = transformVector(mTransform, right.x, right.y, right.z);
        u = transformVector(mTransform, up.x, up.y, up.z);
    }
    Place place = ACROSS;
    if (mView.cull) {
        alignas(16) float middle[4], axes[8];
        _mm_store_ps(middle, c);
        _mm_store_ps(axes, r);
        _mm_store_ps(axes + 4, u);
        place = placeOf(middle, axes, 2);
        if (place == OUTSIDE)
            return;
    }
    markRun(place);
    const __m128      rising = _mm_add_ps(u, r), falling = _mm_sub_ps(u, r);
    alignas(16) float corners[16];
    _mm_store_ps(corners, _mm_add_ps(c, falling));
    _mm_store_ps(corners + 4, _mm_sub_ps(c, rising));
    _mm_store_ps(corners + 8, _mm_sub_ps(c, falling));
    _mm_store_ps(corners + 12, _mm_add_ps(c, rising));
    addQuad(corners, s0, t0, s1, t1, true);
}

void Batch::quad(const mathbase::Vector3f& a, const mathbase::Vector3f& b, const mathbase::Vector3f& c,
                 const mathbase::Vector3f& d, float s0, float t0, float s1, float t1) {
    openPrimitive(GL_QUADS);
    const mathbase::Vector3f* const given[4] = {&a, &b, &c, &d};
    alignas(16) float               corners[16];
    for (int i = 0; i < 4; ++i)
        _mm_store_ps(corners + 4 * i,
                     mIdentity ? _mm_setr_ps(given[i]->x, given[i]->y, given[i]->z, 1)
                               : transformPoint(mTransform, given[i]->x, given[i]->y, given[i]->z));
    markRun(ACROSS);
    addQuad(corners, s0, t0, s1, t1, false);
}

void Batch::rect(float x0, float y0, float x1, float y1, float s0, float t0, float s1, float t1, float z) {
    quad({x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}, s0, t0, s1, t1);
}

size_t Batch::getMemory() const {
    size_t floats = mPosition.capacity + mColor.capacity + mTexCoord.capacity + mNormal.capacity;
    for (const Array<float>& array : mAttrib)
        floats += array.capacity;
    return floats * sizeof(float) + mIndex.capacity * sizeof(uint32_t);
}

// One draw call for all that is collected. The values given stay for what follows.
void Batch::drawCollected() {
    const size_t count = mCount, indices = mIndices;
    const GLenum mode = mDrawMode;
    mCount = mIndices = 0;
    mDrawMode = NOTHING;
    if (!count)
        return;
    ++mDraws;

    // A buffer may be bound for drawing: its arrays are put aside and come back.
    GLint buffers[2] = {0, 0};
    if (GLEW_ARB_vertex_buffer_object) {
        GL_CALL(glGetIntegerv(GL_ARRAY_BUFFER_BINDING_ARB, &buffers[0]));
        GL_CALL(glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING_ARB, &buffers[1]));
    }
    const bool aside = buffers[0] || buffers[1] || glIsEnabled(GL_VERTEX_ARRAY);
    if (aside)
        putArraysAside();

    GL_CALL(glEnableClientState(GL_VERTEX_ARRAY));
    GL_CALL(glVertexPointer(4, GL_FLOAT, 0, mPosition.data));
    if (mHas & HAS_COLOR) {
        GL_CALL(glEnableClientState(GL_COLOR_ARRAY));
        GL_CALL(glColorPointer(4, GL_FLOAT, 0, mColor.data));
    }
    if (mHas & HAS_TEXCOORD) {
        GL_CALL(glEnableClientState(GL_TEXTURE_COORD_ARRAY));
        GL_CALL(glTexCoordPointer(2, GL_FLOAT, 0, mTexCoord.data));
    }
    if (mHas & HAS_NORMAL) {
        GL_CALL(glEnableClientState(GL_NORMAL_ARRAY));
        GL_CALL(glNormalPointer(GL_FLOAT, 16, mNormal.data));
    }
    for (int i = 0; mHas >= HAS_ATTRIB && i < ATTRIBS; ++i)
        if (mHas & (HAS_ATTRIB << i)) {
            GL_CALL(glEnableVertexAttribArrayARB(GLuint(FIRST_ATTRIB + i)));
            GL_CALL(glVertexAttribPointerARB(GLuint(FIRST_ATTRIB + i), 4, GL_FLOAT, false, 0, mAttrib[i].data));
        }

    if (indices)
        GL_CALL(glDrawElements(mode, GLsizei(indices), GL_UNSIGNED_INT, mIndex.data));
    else
        drawRuns(mode, count);

    if (aside)
        GL_CALL(glPopClientAttrib());
    else {
        GL_CALL(glDisableClientState(GL_VERTEX_ARRAY));
        if (mHas & HAS_COLOR)
            GL_CALL(glDisableClientState(GL_COLOR_ARRAY));
        if (mHas & HAS_TEXCOORD)
            GL_CALL(glDisableClientState(GL_TEXTURE_COORD_ARRAY));
        if (mHas & HAS_NORMAL)
            GL_CALL(glDisableClientState(GL_NORMAL_ARRAY));
        for (int i = 0; mHas >= HAS_ATTRIB && i < ATTRIBS; ++i)
            if (mHas & (HAS_ATTRIB << i))
                GL_CALL(glDisableVertexAttribArrayARB(GLuint(FIRST_ATTRIB + i)));
    }
}

// The vertices in order, in as many ranges as they change between inside and across, but none inside so short
// that it is not worth a draw.
void Batch::drawRuns(GLenum mode, size_t count) {
    if (mRuns.empty()) {
        GL_CALL(glDrawArrays(mode, 0, GLsizei(count)));
        return;
    }
    mRuns.push_back(static_cast<uint32_t>(count));
    mFirsts.clear();
    mCounts.clear();
    Place    place = mFirstPlace;
    uint32_t start = 0;
    bool     open = false; // the last range is one across, and may grow
    for (const uint32_t end : mRuns) {
        const bool across = place == ACROSS || end - start < SHORT_RUN;
        if (across && open) {
            mCounts.back() += GLsizei(end - start);
        } else {
            mFirsts.push_back(GLint(start));
            mCounts.push_back(GLsizei(end - start));
        }
        open = across;
        start = end;
        place = place == ACROSS ? INSIDE : ACROSS;
    }
    mRuns.clear();
    GL_CALL(glMultiDrawArrays(mode, mFirsts.data(), mCounts.data(), GLsizei(mCounts.size())));
}

// Keeps the arrays that are now set up for glPopClientAttrib, and leaves none enabled and no buffer bound.
void Batch::putArraysAside() {
    GL_CALL(glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT));
    GL_CALL(glDisableClientState(GL_VERTEX_ARRAY));
    GL_CALL(glDisableClientState(GL_NORMAL_ARRAY));
    GL_CALL(glDisableClientState(GL_COLOR_ARRAY));
    if (GLEW_VERSION_1_3) {
        GL_CALL(glClientActiveTexture(GL_TEXTURE1));
        GL_CALL(glDisableClientState(GL_TEXTURE_COORD_ARRAY));
        GL_CALL(glClientActiveTexture(GL_TEXTURE0));
    }
    GL_CALL(glDisableClientState(GL_TEXTURE_COORD_ARRAY));
    if (GLEW_ARB_vertex_program || GLEW_ARB_vertex_shader)
        for (int i = 0; i < ATTRIBS; ++i)
            GL_CALL(glDisableVertexAttribArrayARB(GLuint(FIRST_ATTRIB + i)));
    if (GLEW_ARB_vertex_buffer_object) {
        GL_CALL(glBindBufferARB(GL_ARRAY_BUFFER_ARB, 0));
        GL_CALL(glBindBufferARB(GL_ELEMENT_ARRAY_BUFFER_ARB, 0));
    }
}

void Batch::flush() {
    assert(mMode == NOTHING);
    const unsigned has = mHas;
    drawCollected();
    clear();
    if (has & HAS_COLOR)
        glColor4fv(mCurrentColor);
    if (has & HAS_TEXCOORD)
        glTexCoord2fv(mCurrentTexCoord);
    if (has & HAS_NORMAL)
        glNormal3fv(mCurrentNormal);
    for (int i = 0; has >= HAS_ATTRIB && i < ATTRIBS; ++i)
        if (has & (HAS_ATTRIB << i))
            glVertexAttrib4fvARB(GLuint(FIRST_ATTRIB + i), mCurrentAttrib[i]);
}

void Batch::clear() {
    mCount = mIndices = 0;
    mRoom = 0;
    mMode = mDrawMode = NOTHING;
    mHas = 0;
    mLooked = false;
    resetTransform();
}

} // namespace zentrak::display
