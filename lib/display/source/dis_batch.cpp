// Collecting shapes. dis_batch_draw.cpp draws them.
#include "dis_batch.h"

#include "dis_culling.h"

#include <bit>
#include <cassert>
#include <utility>

namespace zentrak::display {

using mathbase::Matrix4x4Col;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

// A box's corners are numbered by their signs: bit 0 for +x, bit 1 for +y, bit 2 for +z. Each face has its
// lower left, lower right, upper right and upper left corner as seen from outside.
constexpr unsigned char FACE_CORNERS[NUM_FACES][4] = {{1, 0, 2, 3}, {0, 4, 6, 2}, {5, 1, 3, 7},
                                                      {0, 1, 5, 4}, {6, 7, 3, 2}, {4, 5, 7, 6}};
constexpr int FACE_AXIS[NUM_FACES] = {2, 0, 0, 1, 1, 2};
constexpr float FACE_SIGN[NUM_FACES] = {-1, -1, 1, -1, 1, 1};
constexpr float FACE_TEXTURE[4][2] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
constexpr unsigned ALL_FACES = (1u << NUM_FACES) - 1;

// Vertices of a separate primitive, which joins the one before; 0 for a connected one.
size_t verticesOf(GLenum mode) {
    switch (mode) {
    case GL_POINTS:
        return 1;
    case GL_LINES:
        return 2;
    case GL_TRIANGLES:
        return 3;
    case GL_QUADS:
        return 4;
    default:
        return 0;
    }
}

template <size_t COUNT>
Location locate(const Matrix4x4Col& clip, const Vector3f (&points)[COUNT]) {
    Locator locator(clip);
    for (const Vector3f& point : points)
        locator.add(point);
    return locator.get();
}

Vector3f column(const Matrix4x4Col& m, int c) {
    return Vector3f(m.mData[c * 4], m.mData[c * 4 + 1], m.mData[c * 4 + 2]);
}

} // namespace

void Batch::setTransform(const Matrix4x4Col& transform) {
    mTransform = transform;
    mIdentity = false;
    const Vector3f x = column(transform, 0), y = column(transform, 1), z = column(transform, 2);
    const Vector3f columns[3] = {y.cross(z), z.cross(x), x.cross(y)};
    const float determinant = x.dot(columns[0]);
    const float scale = determinant != 0 ? 1 / determinant : 0; // a flat transform has no inverse
    for (int c = 0; c < 3; ++c) {
        mNormalMatrix.mData[c * 4 + 0] = columns[c].x * scale;
        mNormalMatrix.mData[c * 4 + 1] = columns[c].y * scale;
        mNormalMatrix.mData[c * 4 + 2] = columns[c].z * scale;
    }
    transformNormal();
}

void Batch::resetTransform() {
    mTransform.setIdentity();
    mNormalMatrix.setIdentity();
    mIdentity = true;
    transformNormal();
}

Vector3f Batch::transformed(const Vector3f& point) const {
    return mIdentity ? point : mTransform.multiply(point);
}

void Batch::transformNormal() {
    mTransformedNormal = mNormalMatrix.multiplyVector(mNormal);
}

Batch::Vertex* Batch::append(size_t count) {
    const size_t first = mVertices.size();
    mVertices.resize(first + count);
    return mVertices.data() + first;
}

// With the current colour and texture coordinates.
void Batch::write(Vertex& vertex, const Vector3f& position, const Vector3f& normal) const {
    vertex.texCoord[0] = mTexCoord.x, vertex.texCoord[1] = mTexCoord.y;
    vertex.color[0] = mColor.x, vertex.color[1] = mColor.y, vertex.color[2] = mColor.z,
    vertex.color[3] = mColor.w;
    vertex.normal[0] = normal.x, vertex.normal[1] = normal.y, vertex.normal[2] = normal.z;
    vertex.position[0] = position.x, vertex.position[1] = position.y, vertex.position[2] = position.z;
}

// Takes the vertices from `first` on as a primitive, or drops them if none of it is visible. Separate
// primitives join the run before where they can.
void Batch::addRun(GLenum mode, Location location, size_t first) {
    if (mCulls && location == Location::OUTSIDE)
        mVertices.resize(first);
    const bool inside = location == Location::INSIDE;
    const GLsizei count = GLsizei(mVertices.size() - first);
    if (!count)
        return;
    if (verticesOf(mode) && !mRuns.empty() && mRuns.back().mode == mode && mRuns.back().inside == inside)
        mRuns.back().count += count;
    else
        mRuns.push_back({mode, inside, GLint(first), count});
}

void Batch::begin(GLenum mode) {
    assert(mode <= GL_POLYGON);
    assert(mMode == NO_MODE);
    if (!mLooked)
        look();
    mMode = mode;
    mFirst = mVertices.size();
    mLocator = Locator(mClip);
}

void Batch::vertex(float x, float y, float z) {
    if (mMode == NO_MODE)
        return;
    const Vector3f position = transformed(Vector3f(x, y, z));
    mLocator.add(position);
    write(mVertices.emplace_back(), position, mTransformedNormal);
}

void Batch::end() {
    assert(mMode != NO_MODE);
    const GLenum mode = std::exchange(mMode, NO_MODE);
    if (const size_t each = verticesOf(mode))
        mVertices.resize(mVertices.size() - (mVertices.size() - mFirst) % each);
    addRun(mode, mLocator.get(), mFirst);
}

void Batch::box(const Vector3f& centre, const Vector3f& half) {
    assert(mMode == NO_MODE);
    if (!mLooked)
        look();
    const Vector3f c = transformed(centre);
    const Vector3f axes[3] = {column(mTransform, 0) * half.x, column(mTransform, 1) * half.y,
                              column(mTransform, 2) * half.z};
    Vector3f corners[8];
    for (int i = 0; i < 8; ++i)
        corners[i] =
            c + (i & 1 ? axes[0] : -axes[0]) + (i & 2 ? axes[1] : -axes[1]) + (i & 4 ? axes[2] : -axes[2]);
    const Location location = locate(mClip, corners);
    if (location != Location::OUTSIDE || !mCulls) {
        const unsigned faces = mSide != 0 ? facesTowards(mEye, c, axes, mSide) : ALL_FACES;
        const size_t first = mVertices.size();
        Vertex* out = append(4 * size_t(std::popcount(faces)));
        for (int face = 0; face < NUM_FACES; ++face) {
            if (!(faces & (1u << face)))
                continue;
            const Vector3f normal = column(mNormalMatrix, FACE_AXIS[face]) * FACE_SIGN[face];
            for (int i = 0; i < 4; ++i) {
                mTexCoord = Vector2f(FACE_TEXTURE[i][0], FACE_TEXTURE[i][1]);
                write(*out++, corners[FACE_CORNERS[face][i]], normal);
            }
        }
        addRun(GL_QUADS, location, first);
    }
    texCoord(FACE_TEXTURE[3][0], FACE_TEXTURE[3][1]);
    normal(0, 0, FACE_SIGN[FACE_FRONT]);
}

void Batch::sprite(const Vector3f& centre, const Vector3f& right, const Vector3f& up, float s0, float t0,
                   float s1, float t1) {
    const Vector3f corners[4] = {transformed(centre + up - right), transformed(centre - up - right),
                                 transformed(centre - up + right), transformed(centre + up + right)};
    const float texture[4][2] = {{s0, t0}, {s0, t1}, {s1, t1}, {s1, t0}};
    addQuad(corners, texture);
}

void Batch::quad(const Vector3f& a, const Vector3f& b, const Vector3f& c, const Vector3f& d, float s0,
                 float t0, float s1, float t1) {
    const Vector3f corners[4] = {transformed(a), transformed(b), transformed(c), transformed(d)};
    const float texture[4][2] = {{s0, t0}, {s1, t0}, {s1, t1}, {s0, t1}};
    addQuad(corners, texture);
}

void Batch::addQuad(const Vector3f (&corners)[4], const float (&texture)[4][2]) {
    assert(mMode == NO_MODE);
    if (!mLooked)
        look();
    const size_t first = mVertices.size();
    Vertex* out = append(4);
    for (int i = 0; i < 4; ++i) {
        texCoord(texture[i][0], texture[i][1]);
        write(out[i], corners[i], mTransformedNormal);
    }
    addRun(GL_QUADS, locate(mClip, corners), first);
}

void Batch::rect(float x0, float y0, float x1, float y1, float s0, float t0, float s1, float t1, float z) {
    quad({x0, y0, z}, {x1, y0, z}, {x1, y1, z}, {x0, y1, z}, s0, t0, s1, t1);
}

void Batch::clear() {
    mVertices.clear();
    mRuns.clear();
    mMode = NO_MODE;
    mGiven = 0;
    mLooked = false;
    resetTransform();
}

} // namespace zentrak::display
