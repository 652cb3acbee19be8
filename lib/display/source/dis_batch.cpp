#include "dis_batch.h"

#include "dis_glcheck.h"
#include "ztk_system.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>
#include <emmintrin.h>
#include <limits>
#include <new>
#include <utility>

namespace zentrak::display {

namespace {

constexpr size_t MIN_VERTICES = 1024;
constexpr size_t DRAW_VERTICES = size_t(1)
                                 << 20; // between two primitives beyond this, what is there is drawn
constexpr size_t MOST_VERTICES = size_t(1) << 29; // three indices each are as many as an int counts
constexpr uint32_t SHORT_RUN = 24;                // vertices
constexpr size_t LINE = 64;                       // bytes of a cache line

// Faces of less than this area, in pixels, are tried for whether they cover the middle of one, unless too
// many pixels are around them.
constexpr float SMALL_AREA = 2;
constexpr float MANY_PIXELS = 32.5f;
constexpr float MOST_MARGIN = 0.25f; // pixels: what may be off by more is not tried
constexpr float ROUNDINGS = 8;       // on the way of a corner to the window

// Corners of a box are numbered by their signs: bit 0 for +x, bit 1 for +y, bit 2 for +z. Each face has its
// lower left, lower right, upper right and upper left corner as seen from outside.
enum Face { BACK, LEFT, RIGHT, BOTTOM, TOP, FRONT, FACES };
constexpr unsigned char FACE_CORNERS[FACES][4] = {{1, 0, 2, 3}, {0, 4, 6, 2}, {5, 1, 3, 7},
                                                  {0, 1, 5, 4}, {6, 7, 3, 2}, {4, 5, 7, 6}};
// The faces towards +x, +y and +z by a mask of the three, and those towards -x, -y and -z.
constexpr unsigned char UPPER_FACES[8] = {0, 4, 16, 20, 32, 36, 48, 52};
constexpr unsigned char LOWER_FACES[8] = {0, 2, 8, 10, 1, 3, 9, 11};
constexpr int FACE_AXIS[FACES] = {2, 0, 0, 1, 1, 2};
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

template <int LANE>
__m128 spread(__m128 v) {
    return _mm_shuffle_ps(v, v, _MM_SHUFFLE(LANE, LANE, LANE, LANE));
}

// The matrix of four columns applied to a vector, whose w counts nothing, and to a point.
__m128 productVector(const float* columns, __m128 v) {
    return _mm_add_ps(_mm_add_ps(_mm_mul_ps(_mm_load_ps(columns), spread<0>(v)),
                                 _mm_mul_ps(_mm_load_ps(columns + 4), spread<1>(v))),
                      _mm_mul_ps(_mm_load_ps(columns + 8), spread<2>(v)));
}

__m128 productPoint(const float* columns, __m128 v) {
    return _mm_add_ps(productVector(columns, v), _mm_load_ps(columns + 12));
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
    mView.edges = !solid && !glIsEnabled(GL_CULL_FACE);
    mView.sample = mView.cull && solid && !glIsEnabled(GL_POLYGON_SMOOTH);
    if (mView.cull)
        lookVolume();
    if (mView.sample)
        lookWindow();
}

// The way to clip space, the eye and the faces that are culled, all ahead of the model-view matrix.
void Batch::lookVolume() {
    float view[16], project[16], row[4][4];
    GL_CALL(glGetFloatv(GL_MODELVIEW_MATRIX, view));
    GL_CALL(glGetFloatv(GL_PROJECTION_MATRIX, project));
    for (int c = 0; c < 4; ++c) {
        mView.weight[c] = 0;
        for (int r = 0; r < 4; ++r) {
            float sum = 0, weight = 0;
            for (int k = 0; k < 4; ++k) {
                sum += project[k * 4 + r] * view[c * 4 + k];
                weight += std::fabs(project[k * 4 + r] * view[c * 4 + k]);
            }
            row[r][c] = mView.clip[c][r] = sum;
            mView.weight[c] = std::max(mView.weight[c], weight);
        }
    }
    mView.planes = GLEW_ARB_depth_clamp && glIsEnabled(GL_DEPTH_CLAMP) ? 11 : 15;

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
        float bc[3];
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

// The way from clip space to pixels. OpenGL has so many bits of a pixel only, and may move a corner by that.
void Batch::lookWindow() {
    GLint viewport[4] = {0, 0, 0, 0}, samples = 0, bits = 0;
    GL_CALL(glGetIntegerv(GL_VIEWPORT, viewport));
    GL_CALL(glGetIntegerv(GL_SUBPIXEL_BITS, &bits));
    if (GLEW_VERSION_1_3)
        GL_CALL(glGetIntegerv(GL_SAMPLE_BUFFERS, &samples));
    mView.sample = samples == 0;
    for (int i = 0; i < 4; ++i) {
        const float sign = i < 2 ? 1.0f : -1.0f, half = 0.5f * float(viewport[2 + i % 2]);
        mView.scale[i] = sign * half;
        mView.offset[i] = sign * (float(viewport[i % 2]) + half);
        mView.limit[i] = mView.offset[i] + half;
    }
    mView.margin = std::ldexp(1.0f, -std::clamp(bits, 0, 16)) + 1.0f / 64;
    mView.size = float(std::max(viewport[2], viewport[3]));
}

// How far, in clip space, what OpenGL makes of the points of a shape, a centre and some axes, may be off what
// is made of them here: its roundings on the way are others.
float Batch::roundingOf(const float* shape, int axes) const {
    __m128 size = absolute(_mm_load_ps(shape));
    for (int i = 1; i <= axes; ++i)
        size = _mm_add_ps(size, absolute(_mm_load_ps(shape + 4 * i)));
    size = _mm_mul_ps(size, _mm_load_ps(mView.weight));
    return ROUNDINGS * std::numeric_limits<float>::epsilon() *
           (_mm_cvtss_f32(size) + _mm_cvtss_f32(spread<1>(size)) + _mm_cvtss_f32(spread<2>(size)) +
            mView.weight[3]);
}

// Where a shape, a centre plus and minus each of some axes, 4 floats each one after the other, lies: outside
// one plane of the view volume, inside all of them, or else across. `clip` is the same in clip space.
Batch::Place Batch::placeOf(const float* clip, const float* shape, int axes) const {
    const __m128 c = _mm_load_ps(clip), w = spread<3>(c), zero = _mm_setzero_ps();
    const __m128 above = _mm_add_ps(w, c),
                 below = _mm_sub_ps(w, c); // over the lower and under the upper planes
    __m128 reachAbove = zero, reachBelow = zero;
    for (int i = 1; i <= axes; ++i) {
        const __m128 axis = _mm_load_ps(clip + 4 * i), axisW = spread<3>(axis);
        reachAbove = _mm_add_ps(reachAbove, absolute(_mm_add_ps(axisW, axis)));
        reachBelow = _mm_add_ps(reachBelow, absolute(_mm_sub_ps(axisW, axis)));
    }
    const __m128 farthest = _mm_min_ps(_mm_add_ps(above, reachAbove), _mm_add_ps(below, reachBelow));
    if (_mm_movemask_ps(_mm_cmplt_ps(farthest, zero)) & mView.planes) {
        const __m128 rounding = _mm_set1_ps(-roundingOf(shape, axes));
        return _mm_movemask_ps(_mm_cmplt_ps(farthest, rounding)) & mView.planes ? OUTSIDE : ACROSS;
    }
    const __m128 across = _mm_or_ps(_mm_cmpnge_ps(_mm_sub_ps(above, reachAbove), zero),
                                    _mm_cmpnge_ps(_mm_sub_ps(below, reachBelow), zero));
    return _mm_movemask_ps(across) & mView.planes ? ACROSS : INSIDE;
}

// How far, in pixels, the corners of a shape of a centre and two or three axes may be off, if one of its
// faces is so small that it may well cover the middle of no pixel; else, and where that can't be told, -1.
float Batch::marginOf(const float* clip, const float* shape, int axes) const {
    const __m128 c = _mm_load_ps(clip), toPixels = _mm_div_ps(_mm_load_ps(mView.scale), spread<3>(c));
    const __m128 place = _mm_div_ps(c, spread<3>(c));
    __m128 reach = _mm_setzero_ps();
    __m128 axis[3] = {place, place, place};
    for (int i = 0; i < axes; ++i) {
        const __m128 a = _mm_load_ps(clip + 4 * i + 4);
        reach = _mm_add_ps(reach, absolute(a));
        axis[i] = _mm_mul_ps(_mm_sub_ps(a, _mm_mul_ps(place, spread<3>(a))), toPixels); // as seen from here
    }
    const float w = clip[3] - _mm_cvtss_f32(spread<3>(reach)); // at least
    if (!(w > 0))
        return -1;
    // The areas of the faces, a quarter of each.
    const __m128 xy = _mm_unpacklo_ps(axis[0], axis[1]), yz = _mm_unpacklo_ps(axis[1], axis[2]);
    const __m128 x = _mm_shuffle_ps(xy, yz, _MM_SHUFFLE(1, 1, 1, 0)),
                 y = _mm_shuffle_ps(xy, yz, _MM_SHUFFLE(3, 3, 3, 2));
    const __m128 nextX = _mm_shuffle_ps(x, x, _MM_SHUFFLE(3, 0, 2, 1)),
                 nextY = _mm_shuffle_ps(y, y, _MM_SHUFFLE(3, 0, 2, 1));
    const __m128 area = absolute(_mm_sub_ps(_mm_mul_ps(x, nextY), _mm_mul_ps(y, nextX)));
    if (!(_mm_movemask_ps(_mm_cmplt_ps(area, _mm_set1_ps(SMALL_AREA / 4))) & (axes == 2 ? 1 : 7)))
        return -1;
    const float margin = mView.margin + mView.size * roundingOf(shape, axes) / w;
    return margin < MOST_MARGIN ? margin : -1;
}

// Where a point of clip space, with w above 0, is in the window: x, y, -x, -y, so that one greatest value of
// many tells all four sides of the box around them.
__m128 Batch::toWindow(const View& view, __m128 clip) {
    const __m128 xy = _mm_shuffle_ps(clip, clip, _MM_SHUFFLE(1, 0, 1, 0));
    return _mm_add_ps(_mm_mul_ps(xy, _mm_div_ps(_mm_load_ps(view.scale), spread<3>(clip))),
                      _mm_load_ps(view.offset));
}

// Whether the quad of four of these points, plane and convex, may cover the middle of a pixel when each of
// them is off by a margin.
bool Batch::mayCover(const float* window, const unsigned char* corners, float margin) const {
    const __m128 a = _mm_load_ps(window + 4 * corners[0]), b = _mm_load_ps(window + 4 * corners[1]);
    const __m128 c = _mm_load_ps(window + 4 * corners[2]), d = _mm_load_ps(window + 4 * corners[3]);
    const __m128 most = _mm_max_ps(_mm_max_ps(a, b), _mm_max_ps(c, d));
    const __m128 bounds = _mm_add_ps(_mm_min_ps(_mm_load_ps(mView.limit), most),
                                     _mm_setr_ps(margin - 0.5f, margin - 0.5f, margin + 0.5f, margin + 0.5f));
    // The last column and row whose middles are in the box, and how many are before them.
    const __m128 last = _mm_cvtepi32_ps(_mm_cvttps_epi32(bounds));
    const __m128 room = _mm_add_ps(last, _mm_movehl_ps(bounds, bounds));
    if (_mm_movemask_ps(_mm_cmplt_ps(room, _mm_setzero_ps())) & 3)
        return false;
    alignas(16) float lasts[4], rooms[4];
    _mm_store_ps(lasts, last);
    _mm_store_ps(rooms, room);
    if (!((rooms[0] + 1) * (rooms[1] + 1) < MANY_PIXELS))
        return true;
    alignas(16) float diagonal[8]; // their product is twice the area
    _mm_store_ps(diagonal, _mm_sub_ps(c, a));
    _mm_store_ps(diagonal + 4, _mm_sub_ps(d, b));
    if (!(std::fabs(diagonal[0] * diagonal[5] - diagonal[1] * diagonal[4]) < 2 * SMALL_AREA))
        return true;

    // On which side of the four edges are they?
    const __m128 ab = _mm_unpacklo_ps(a, b), cd = _mm_unpacklo_ps(c, d);
    const __m128 x = _mm_movelh_ps(ab, cd), y = _mm_movehl_ps(cd, ab);
    const __m128 alongX = _mm_sub_ps(_mm_shuffle_ps(x, x, _MM_SHUFFLE(0, 3, 2, 1)), x);
    const __m128 alongY = _mm_sub_ps(_mm_shuffle_ps(y, y, _MM_SHUFFLE(0, 3, 2, 1)), y);
    const __m128 off = _mm_mul_ps(_mm_add_ps(absolute(alongX), absolute(alongY)), _mm_set1_ps(margin));
    for (float i = 0; i <= rooms[0]; ++i)
        for (float j = 0; j <= rooms[1]; ++j) {
            const __m128 side =
                _mm_sub_ps(_mm_mul_ps(alongX, _mm_sub_ps(_mm_set1_ps(lasts[1] - j + 0.5f), y)),
                           _mm_mul_ps(alongY, _mm_sub_ps(_mm_set1_ps(lasts[0] - i + 0.5f), x)));
            const bool left = _mm_movemask_ps(_mm_cmpgt_ps(side, off));
            const bool right = _mm_movemask_ps(_mm_cmplt_ps(_mm_add_ps(side, off), _mm_setzero_ps()));
            if (!(left && right))
                return true;
        }
    return false;
}

// The same as placeOf of the vertices from `first` on.
Batch::Place Batch::placeOf(size_t first) const {
    int outside[2] = {mView.planes, mView.planes}, across = 0;
    const __m128 zero = _mm_setzero_ps();
    for (const float *p = mPosition.data + 4 * first, *end = mPosition.data + 4 * mCount; p != end; p += 4) {
        const __m128 clip = productPoint(mView.clip[0], _mm_load_ps(p)), w = spread<3>(clip);
        const int under = _mm_movemask_ps(_mm_cmpnge_ps(_mm_add_ps(w, clip), zero));
        const int over = _mm_movemask_ps(_mm_cmpnge_ps(_mm_sub_ps(w, clip), zero));
        outside[0] &= under;
        outside[1] &= over;
        across |= under | over;
    }
    return outside[0] || outside[1] ? OUTSIDE : across & mView.planes ? ACROSS : INSIDE;
}

// The shape that begins here, with the vertex now to come. Those that lie inside the view are drawn apart
// from those that reach across its edge: in the driver one vertex outside makes all of a draw slow.
void Batch::markRun(Place place) {
    if (mCount == 0) {
        mRuns.clear();
        mFirstPlace = mPlace = place;
    } else if (place != mPlace) {
        mRuns.push_back(uint32_t(mCount));
        mPlace = place;
    }
}

// The eye as seen from a centre along three axes, which follow it, 4 floats each: its coordinates and its w,
// all times the determinant of the axes.
void Batch::localEye(const float* shape, float* eye) const {
    __m128 x = _mm_load_ps(shape + 4), y = _mm_load_ps(shape + 8), z = _mm_load_ps(shape + 12);
    __m128 none = _mm_setzero_ps();
    _MM_TRANSPOSE4_PS(x, y, z, none);
    const auto next = [](__m128 v) { return _mm_shuffle_ps(v, v, _MM_SHUFFLE(3, 0, 2, 1)); };
    const auto last = [](__m128 v) { return _mm_shuffle_ps(v, v, _MM_SHUFFLE(3, 1, 0, 2)); };
    const auto less = [](__m128 a, __m128 b, __m128 c, __m128 d) {
        return _mm_sub_ps(_mm_mul_ps(a, b), _mm_mul_ps(c, d));
    };
    // The normals of the faces, one a lane: the cross product of the next axis and the one after.
    const __m128 normalX = less(next(y), last(z), next(z), last(y));
    const __m128 normalY = less(next(z), last(x), next(x), last(z));
    const __m128 normalZ = less(next(x), last(y), next(y), last(x));
    const auto dots = [&](__m128 a, __m128 b, __m128 c) {
        return _mm_add_ps(_mm_add_ps(_mm_mul_ps(a, normalX), _mm_mul_ps(b, normalY)), _mm_mul_ps(c, normalZ));
    };
    const __m128 to =
        _mm_sub_ps(_mm_load_ps(mView.eye), _mm_mul_ps(_mm_set1_ps(mView.eye[3]), _mm_load_ps(shape)));
    _mm_store_ps(eye, dots(spread<0>(to), spread<1>(to), spread<2>(to)));
    eye[3] = mView.eye[3] * _mm_cvtss_f32(dots(x, y, z));
}

// Which of four faces, by the area they show, GL_CULL_FACE lets through: a mask. What can't be told is let
// through.
int Batch::keptFaces(const View& view, __m128 area) {
    const __m128 zero = _mm_setzero_ps();
    const int culled = (view.keepCounter ? _mm_movemask_ps(_mm_cmple_ps(area, zero)) : 15) &
                       (view.keepClockwise ? _mm_movemask_ps(_mm_cmpge_ps(area, zero)) : 15);
    return ~culled & 15;
}

// The faces of a box, three half axes after its centre, that GL_CULL_FACE lets through: bit 1 << Face.
unsigned Batch::visibleFaces(const float* shape) const {
    alignas(16) float eye[4];
    localEye(shape, eye);
    const __m128 to = _mm_load_ps(eye), w = _mm_set1_ps(eye[3]);
    return UPPER_FACES[keptFaces(mView, _mm_sub_ps(to, w)) & 7] |
           LOWER_FACES[keptFaces(mView, _mm_sub_ps(_mm_setzero_ps(), _mm_add_ps(to, w))) & 7];
}

// Whether the sprite of a centre and two axes may cover the middle of a pixel.
bool Batch::coversSprite(const float* clip, float margin) const {
    static constexpr unsigned char corners[4] = {0, 1, 2, 3};
    const __m128 c = _mm_load_ps(clip), r = _mm_load_ps(clip + 4), u = _mm_load_ps(clip + 8);
    const __m128 rising = _mm_add_ps(u, r), falling = _mm_sub_ps(u, r);
    alignas(16) float window[16];
    _mm_store_ps(window, toWindow(mView, _mm_add_ps(c, falling)));
    _mm_store_ps(window + 4, toWindow(mView, _mm_sub_ps(c, rising)));
    _mm_store_ps(window + 8, toWindow(mView, _mm_sub_ps(c, falling)));
    _mm_store_ps(window + 12, toWindow(mView, _mm_add_ps(c, rising)));
    return mayCover(window, corners, margin);
}

// Those of `faces` that may be seen. With a rounding of 0 and more, those that don't lie beyond the view's
// edge, and with a margin, those that may cover the middle of a pixel. The corners are in clip space, 4
// floats each.
unsigned Batch::seenFaces(const float* corners, int count, const unsigned char (*face)[4], unsigned faces,
                          float rounding, float margin) const {
    const auto leaveOut = [&](const auto& isSeen) {
        for (unsigned left = faces; left; left &= left - 1) {
            const int f = std::countr_zero(left);
            if (!isSeen(face[f]))
                faces &= ~(1u << f);
        }
    };
    if (rounding >= 0) {
        int beyond[Solid::MOST];
        const __m128 below = _mm_set1_ps(-rounding);
        for (int i = 0; i < count; ++i) {
            const __m128 c = _mm_load_ps(corners + 4 * i), w = spread<3>(c);
            beyond[i] = (_mm_movemask_ps(_mm_cmplt_ps(_mm_add_ps(w, c), below)) & mView.planes) |
                        (_mm_movemask_ps(_mm_cmplt_ps(_mm_sub_ps(w, c), below)) & mView.planes) << 4;
        }
        leaveOut([&](const unsigned char* f) {
            return !(beyond[f[0]] & beyond[f[1]] & beyond[f[2]] & beyond[f[3]]);
        });
    }
    if (margin >= 0 && faces) {
        alignas(16) float window[4 * Solid::MOST];
        for (int i = 0; i < count; ++i)
            _mm_store_ps(window + 4 * i, toWindow(mView, _mm_load_ps(corners + 4 * i)));
        leaveOut([&](const unsigned char* f) { return mayCover(window, f, margin); });
    }
    return faces;
}

// The same of a box, three half axes after its centre in clip space.
unsigned Batch::seenFaces(const float* clip, unsigned faces, float rounding, float margin) const {
    const __m128 c = _mm_load_ps(clip), x = _mm_load_ps(clip + 4), y = _mm_load_ps(clip + 8),
                 z = _mm_load_ps(clip + 12);
    alignas(16) float corners[32];
    for (int i = 0; i < 8; ++i) {
        const __m128 cx = i & 1 ? _mm_add_ps(c, x) : _mm_sub_ps(c, x);
        const __m128 cxy = i & 2 ? _mm_add_ps(cx, y) : _mm_sub_ps(cx, y);
        _mm_store_ps(corners + 4 * i, i & 4 ? _mm_add_ps(cxy, z) : _mm_sub_ps(cxy, z));
    }
    return seenFaces(corners, 8, FACE_CORNERS, faces, rounding, margin);
}

// Whether GL_CULL_FACE removes the triangle of three corners.
bool Batch::isCulled(const float* a, const float* b, const float* c) const {
    const float ab[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const float ac[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    const float* eye = mView.eye;
    const float toEye[3] = {eye[0] - eye[3] * a[0], eye[1] - eye[3] * a[1], eye[2] - eye[3] * a[2]};
    float normal[3];
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
    uint32_t* out = mIndex.data + mIndices;
    const uint32_t v = uint32_t(first), n = uint32_t(count);
    const auto line = [&](uint32_t a, uint32_t b) {
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

// The centre of a box and its three half axes, transformed.
void Batch::boxAxes(const mathbase::Vector3f& centre, const mathbase::Vector3f& half, float* shape) const {
    _mm_store_ps(shape, transformPoint(mTransform, centre.x, centre.y, centre.z));
    _mm_store_ps(shape + 4, _mm_mul_ps(_mm_load_ps(mTransform), _mm_set1_ps(half.x)));
    _mm_store_ps(shape + 8, _mm_mul_ps(_mm_load_ps(mTransform + 4), _mm_set1_ps(half.y)));
    _mm_store_ps(shape + 12, _mm_mul_ps(_mm_load_ps(mTransform + 8), _mm_set1_ps(half.z)));
}

// A centre and some axes in clip space, and where they lie.
Batch::Place Batch::toClip(const float* shape, float* clip, int axes) const {
    _mm_store_ps(clip, productPoint(mView.clip[0], _mm_load_ps(shape)));
    for (int i = 1; i <= axes; ++i)
        _mm_store_ps(clip + 4 * i, productVector(mView.clip[0], _mm_load_ps(shape + 4 * i)));
    return placeOf(clip, shape, axes);
}

void Batch::box(const mathbase::Vector3f& centre, const mathbase::Vector3f& half) {
    openPrimitive(GL_QUADS);
    alignas(16) float shape[16], clip[16];
    boxAxes(centre, half, shape);
    unsigned faces = (1u << FACES) - 1;
    Place place = ACROSS;
    if (mView.cull) {
        place = toClip(shape, clip, 3);
        if (place == OUTSIDE)
            return;
        if (!mView.edges)
            faces = visibleFaces(shape);
        const float margin = mView.sample ? marginOf(clip, shape, 3) : -1;
        if (place == ACROSS || margin >= 0)
            faces = seenFaces(clip, faces, place == ACROSS ? roundingOf(shape, 3) : -1, margin);
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

    const __m128 c = _mm_load_ps(shape), ax = _mm_load_ps(shape + 4), ay = _mm_load_ps(shape + 8),
                 az = _mm_load_ps(shape + 12);
    const __m128 back = _mm_sub_ps(c, az), front = _mm_add_ps(c, az);
    const __m128 low = _mm_add_ps(ax, ay), high = _mm_sub_ps(ax, ay); // to (+x, +y) and to (+x, -y)
    const __m128 corner[8] = {_mm_sub_ps(back, low),   _mm_add_ps(back, high), _mm_sub_ps(back, high),
                              _mm_add_ps(back, low),   _mm_sub_ps(front, low), _mm_add_ps(front, high),
                              _mm_sub_ps(front, high), _mm_add_ps(front, low)};
    float* position = mPosition.data + 4 * first;
    for (unsigned left = faces; left; left &= left - 1) {
        const unsigned char* corners = FACE_CORNERS[std::countr_zero(left)];
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
            const int f = std::countr_zero(left);
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

int Batch::Solid::addCorner(const mathbase::Vector3f& place, int color) {
    assert(mCorners < MOST);
    assert(color >= 0);
    mColor[mCorners] = color;
    setCorner(mCorners++, place);
    return mCorners - 1;
}

void Batch::Solid::setCorner(int corner, const mathbase::Vector3f& place) {
    assert(corner >= 0 && corner < mCorners);
    const float four[4] = {place.x, place.y, place.z, 1};
    std::memcpy(mCorner[corner], four, sizeof four);
    mPrepared = false;
}

void Batch::Solid::addFace(int a, int b, int c, int d) {
    assert(mFaces < MOST);
    const int corners[4] = {a, b, c, d};
    for (int i = 0; i < 4; ++i) {
        assert(corners[i] >= 0 && corners[i] < mCorners);
        mFace[mFaces][i] = static_cast<unsigned char>(corners[i]);
    }
    ++mFaces;
    mPrepared = false;
}

// The planes of the faces, from their diagonals, and the box around the corners.
void Batch::Solid::prepare() {
    mPrepared = true;
    std::memset(mPlane, 0, sizeof mPlane);
    for (int f = 0; f < mFaces; ++f) {
        const float *a = mCorner[mFace[f][0]], *b = mCorner[mFace[f][1]], *c = mCorner[mFace[f][2]],
                    *d = mCorner[mFace[f][3]];
        const float ac[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const float bd[3] = {d[0] - b[0], d[1] - b[1], d[2] - b[2]};
        float normal[3];
        cross(ac, bd, normal);
        for (int i = 0; i < 3; ++i)
            mPlane[f / 4][i][f % 4] = normal[i];
        mPlane[f / 4][3][f % 4] = -dot(normal, a);
    }
    float least[3] = {0, 0, 0}, most[3] = {0, 0, 0};
    for (int i = 0; i < mCorners; ++i)
        for (int k = 0; k < 3; ++k) {
            least[k] = i ? std::min(least[k], mCorner[i][k]) : mCorner[i][k];
            most[k] = i ? std::max(most[k], mCorner[i][k]) : mCorner[i][k];
        }
    const mathbase::Vector3f low(least[0], least[1], least[2]), high(most[0], most[1], most[2]);
    mCentre = (low + high) * 0.5f;
    mHalf = (high - low) * 0.5f;
}

unsigned Batch::visibleFaces(const Solid& solid) const {
    alignas(16) float shape[16], eye[4];
    std::memcpy(shape, mTransform + 12, 4 * sizeof(float));
    std::memcpy(shape + 4, mTransform, 12 * sizeof(float));
    localEye(shape, eye);
    const __m128 x = _mm_set1_ps(eye[0]), y = _mm_set1_ps(eye[1]), z = _mm_set1_ps(eye[2]),
                 w = _mm_set1_ps(eye[3]);
    unsigned faces = 0;
    for (int f = 0; f < solid.mFaces; f += 4) {
        const float* plane = solid.mPlane[f / 4][0];
        const __m128 area = _mm_add_ps(
            _mm_add_ps(_mm_mul_ps(x, _mm_load_ps(plane)), _mm_mul_ps(y, _mm_load_ps(plane + 4))),
            _mm_add_ps(_mm_mul_ps(z, _mm_load_ps(plane + 8)), _mm_mul_ps(w, _mm_load_ps(plane + 12))));
        faces |= unsigned(keptFaces(mView, area)) << f;
    }
    return faces;
}

unsigned Batch::seenFaces(const Solid& solid, unsigned faces, float rounding, float margin) const {
    alignas(16) float columns[16], corners[4 * Solid::MOST];
    for (int i = 0; i < 3; ++i)
        _mm_store_ps(columns + 4 * i, productVector(mView.clip[0], _mm_load_ps(mTransform + 4 * i)));
    _mm_store_ps(columns + 12, productPoint(mView.clip[0], _mm_load_ps(mTransform + 12)));
    for (int i = 0; i < solid.mCorners; ++i)
        _mm_store_ps(corners + 4 * i, productPoint(columns, _mm_load_ps(solid.mCorner[i])));
    return seenFaces(corners, solid.mCorners, solid.mFace, faces, rounding, margin);
}

void Batch::solid(Solid& solid, const mathbase::Vector4f* colors) {
    if (!solid.mPrepared)
        solid.prepare();
    if (!solid.mFaces)
        return;
    openPrimitive(GL_QUADS);
    unsigned faces = unsigned((uint64_t(1) << solid.mFaces) - 1);
    Place place = ACROSS;
    if (mView.cull) {
        alignas(16) float shape[16], clip[16];
        boxAxes(solid.mCentre, solid.mHalf, shape);
        place = toClip(shape, clip, 3);
        if (place == OUTSIDE)
            return;
        if (!(mView.keepCounter && mView.keepClockwise))
            faces &= visibleFaces(solid);
        const float margin = mView.sample ? marginOf(clip, shape, 3) : -1;
        if (place == ACROSS || margin >= 0)
            faces = seenFaces(solid, faces, place == ACROSS ? roundingOf(shape, 3) : -1, margin);
        if (!faces)
            return;
    }
    markRun(place);

    if (colors && !(mHas & HAS_COLOR))
        startChannel(HAS_COLOR);
    const size_t first = mCount, count = 4 * size_t(std::popcount(faces));
    reserveVertices(count);
    alignas(16) float corners[4 * Solid::MOST];
    for (int i = 0; i < solid.mCorners; ++i)
        _mm_store_ps(corners + 4 * i, productPoint(mTransform, _mm_load_ps(solid.mCorner[i])));
    float *position = mPosition.data + 4 * first, *color = colors ? mColor.data + 4 * first : nullptr;
    for (unsigned left = faces; left; left &= left - 1) {
        for (const unsigned char corner : solid.mFace[std::countr_zero(left)]) {
            _mm_store_ps(position, _mm_load_ps(corners + 4 * corner));
            position += 4;
            if (color) {
                _mm_store_ps(color, _mm_loadu_ps(&colors[solid.mColor[corner]].x));
                color += 4;
            }
        }
    }
    fill(first, count, colors ? mHas & ~unsigned(HAS_COLOR) : mHas);
    if (colors)
        std::memcpy(mCurrentColor, color - 4, sizeof mCurrentColor);
    mCount = first + count;
    closePrimitive(GL_QUADS, first);
}

bool Batch::isVisible(const mathbase::Vector3f& centre, const mathbase::Vector3f& half) {
    if (!mLooked)
        look();
    if (!mView.cull)
        return true;
    alignas(16) float shape[16], clip[16];
    boxAxes(centre, half, shape);
    return toClip(shape, clip, 3) != OUTSIDE;
}

// Quads of four corners of 4 floats each, already transformed, and of 2 of the texture.
void Batch::addQuads(const float* corners, const float* texture, size_t quads) {
    const bool textured = mView.channels & CHANNEL_TEXCOORD;
    if (textured && !(mHas & HAS_TEXCOORD))
        startChannel(HAS_TEXCOORD);
    const size_t first = mCount, count = 4 * quads;
    reserveVertices(count);
    std::memcpy(mPosition.data + 4 * first, corners, 4 * count * sizeof(float));
    unsigned rest = mHas;
    if (textured) {
        rest &= ~HAS_TEXCOORD;
        std::memcpy(mTexCoord.data + 2 * first, texture, 2 * count * sizeof(float));
        std::memcpy(mCurrentTexCoord, texture + 2 * count - 2, sizeof mCurrentTexCoord);
    }
    fill(first, count, rest);
    mCount = first + count;
    closePrimitive(GL_QUADS, first);
}

// A sprite's centre and two half axes, transformed, and where they lie: also outside if they cover the middle
// of no pixel.
Batch::Place Batch::placeSprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                                const mathbase::Vector3f& up, float* shape) const {
    __m128 c = _mm_setr_ps(centre.x, centre.y, centre.z, 1), r = _mm_setr_ps(right.x, right.y, right.z, 0),
           u = _mm_setr_ps(up.x, up.y, up.z, 0);
    if (!mIdentity) {
        c = transformPoint(mTransform, centre.x, centre.y, centre.z);
        r = transformVector(mTransform, right.x, right.y, right.z);
        u = transformVector(mTransform, up.x, up.y, up.z);
    }
    _mm_store_ps(shape, c);
    _mm_store_ps(shape + 4, r);
    _mm_store_ps(shape + 8, u);
    if (!mView.cull)
        return ACROSS;
    alignas(16) float clip[12];
    const Place place = toClip(shape, clip, 2);
    if (place == OUTSIDE || !mView.sample)
        return place;
    const float margin = marginOf(clip, shape, 2);
    return margin >= 0 && !coversSprite(clip, margin) ? OUTSIDE : place;
}

void Batch::sprite(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                   const mathbase::Vector3f& up, float s0, float t0, float s1, float t1) {
    openPrimitive(GL_QUADS);
    alignas(16) float shape[12], corners[16];
    const Place place = placeSprite(centre, right, up, shape);
    if (place == OUTSIDE)
        return;
    markRun(place);
    const __m128 c = _mm_load_ps(shape), r = _mm_load_ps(shape + 4), u = _mm_load_ps(shape + 8);
    const __m128 rising = _mm_add_ps(u, r), falling = _mm_sub_ps(u, r);
    _mm_store_ps(corners, _mm_add_ps(c, falling));
    _mm_store_ps(corners + 4, _mm_sub_ps(c, rising));
    _mm_store_ps(corners + 8, _mm_sub_ps(c, falling));
    _mm_store_ps(corners + 12, _mm_add_ps(c, rising));
    const float texture[8] = {s0, t0, s0, t1, s1, t1, s1, t0};
    addQuads(corners, texture, 1);
}

void Batch::octagon(const mathbase::Vector3f& centre, const mathbase::Vector3f& right,
                    const mathbase::Vector3f& up, float s0, float t0, float s1, float t1) {
    // The corners by their place along the axes.
    static constexpr int CORNERS = 12;
    static constexpr float SIDE = 0.41421356f; // half of one
    static constexpr float PLACE[CORNERS][2] = {{-SIDE, 1}, {-1, SIDE},  {-1, -SIDE}, {-SIDE, -1},
                                                {-SIDE, 1}, {-SIDE, -1}, {SIDE, -1},  {SIDE, 1},
                                                {SIDE, 1},  {SIDE, -1},  {1, -SIDE},  {1, SIDE}};
    openPrimitive(GL_QUADS);
    alignas(16) float shape[12], corners[4 * CORNERS];
    const Place place = placeSprite(centre, right, up, shape);
    if (place == OUTSIDE)
        return;
    markRun(place);
    const __m128 c = _mm_load_ps(shape), r = _mm_load_ps(shape + 4), u = _mm_load_ps(shape + 8);
    const float s = 0.5f * (s0 + s1), t = 0.5f * (t0 + t1), ds = 0.5f * (s1 - s0), dt = 0.5f * (t0 - t1);
    float texture[2 * CORNERS];
    for (int i = 0; i < CORNERS; ++i) {
        const float x = PLACE[i][0], y = PLACE[i][1];
        _mm_store_ps(corners + 4 * i,
                     _mm_add_ps(c, _mm_add_ps(_mm_mul_ps(r, _mm_set1_ps(x)), _mm_mul_ps(u, _mm_set1_ps(y)))));
        texture[2 * i] = s + ds * x;
        texture[2 * i + 1] = t + dt * y;
    }
    addQuads(corners, texture, CORNERS / 4);
}

void Batch::quad(const mathbase::Vector3f& a, const mathbase::Vector3f& b, const mathbase::Vector3f& c,
                 const mathbase::Vector3f& d, float s0, float t0, float s1, float t1) {
    openPrimitive(GL_QUADS);
    const mathbase::Vector3f* const given[4] = {&a, &b, &c, &d};
    alignas(16) float corners[16];
    for (int i = 0; i < 4; ++i)
        _mm_store_ps(corners + 4 * i,
                     mIdentity ? _mm_setr_ps(given[i]->x, given[i]->y, given[i]->z, 1)
                               : transformPoint(mTransform, given[i]->x, given[i]->y, given[i]->z));
    markRun(ACROSS);
    const float texture[8] = {s0, t0, s1, t0, s1, t1, s0, t1};
    addQuads(corners, texture, 1);
}

void Batch::rect(float x0, float y0, float x1, float y1, float s0, float t0, float s1, float t1, float z) {
    quad({x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}, s0, t0, s1, t1);
}

size_t Batch::getMemory() const {
    size_t floats = mPosition.capacity + mColor.capacity + mTexCoord.capacity + mNormal.capacity;
    for (const Array<float>& array : mAttrib)
        floats += array.capacity;
    return floats * sizeof(float) + (mIndex.capacity + mRuns.capacity()) * sizeof(uint32_t) +
           mFirsts.capacity() * sizeof(GLint) + mCounts.capacity() * sizeof(GLsizei);
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
    mRuns.push_back(uint32_t(count));
    mFirsts.clear();
    mCounts.clear();
    Place place = mFirstPlace;
    uint32_t start = 0;
    bool open = false; // the last range is one across, and may grow
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
    try {
        drawCollected();
    } catch (...) {
        clear(); // what was read of OpenGL's state, too
        throw;
    }
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
