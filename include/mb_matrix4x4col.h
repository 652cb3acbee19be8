// A 4 x 4 matrix, stored column by column as OpenGL takes it: element (row r, column c) is mData[c * 4 + r].
// Vectors are columns, so A x B applies B first. Angles are in radians.
#pragma once

#include "mb_quat.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <cmath>

namespace zentrak::mathbase {

struct Matrix4x4Col {
    float mData[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; // identity

    constexpr bool operator==(const Matrix4x4Col& m) const = default;

    // Setters: each replaces the whole matrix.

    constexpr void setIdentity() { setDiagonal(1, 1, 1, 1); }
    constexpr void setZero() { setDiagonal(0, 0, 0, 0); }

    // Rotations about one axis. X and Z are right-handed; Y turns the other way, on purpose.
    void setRotX(float angle) {
        const float c = cosf(angle), s = sinf(angle);
        setDiagonal(1, c, c, 1);
        mData[6] = s;
        mData[9] = -s;
    }
    void setRotY(float angle) {
        const float c = cosf(angle), s = sinf(angle);
        setDiagonal(c, 1, c, 1);
        mData[2] = s;
        mData[8] = -s;
    }
    void setRotZ(float angle) {
        const float c = cosf(angle), s = sinf(angle);
        setDiagonal(c, c, 1, 1);
        mData[1] = s;
        mData[4] = -s;
    }
    // The rotation of a quaternion of unit length.
    constexpr void setRot(const Quatf& q) {
        setRotationPart(q);
        setColumn(3, 0, 0, 0, 1);
    }

    constexpr void setTranslation(const Vector3f& v) {
        setIdentity();
        setColumn(3, v.x, v.y, v.z, 1);
    }
    constexpr void setTranslation(const Vector4f& v) {
        setIdentity();
        setColumn(3, v.x, v.y, v.z, v.w);
    }

    constexpr void setScale(const Vector3f& s) { setDiagonal(s.x, s.y, s.z, 1); }
    // About the point `centre`, which stays where it is.
    constexpr void setScale(const Vector3f& s, const Vector3f& centre) {
        setScale(s);
        setColumn(3, (1.0f - s.x) * centre.x, (1.0f - s.y) * centre.y, (1.0f - s.z) * centre.z, 1);
    }
    constexpr void setShear(const Vector3f& v) {
        setIdentity();
        mData[4] = v.x * v.y;
        mData[8] = v.x * v.z;
        mData[9] = v.y * v.z;
    }
    // setScale(scale) x setShear(shear) about the point `centre`, which stays where it is.
    constexpr void setScaleAndShear(const Vector3f& scale, const Vector3f& centre, const Vector3f& shear) {
        setShear(shear);
        for (int c = 0; c < 3; ++c) {
            mData[c * 4 + 0] *= scale.x;
            mData[c * 4 + 1] *= scale.y;
            mData[c * 4 + 2] *= scale.z;
        }
        const Vector3f moved = centre - multiplyVector(centre);
        setColumn(3, moved.x, moved.y, moved.z, 1);
    }

    // Perspective; `fov` is the full vertical angle, `aspect` width by height, the planes distances.
    void setProject(float fov, float aspect, float near, float far) {
        const float h = near * tanf(fov / 2.0f);
        const float w = aspect * h;
        setDiagonal(near / w, near / h, -(near + far) / (far - near), 0);
        mData[8] = (w + -w) / (w - -w);
        mData[9] = (h + -h) / (h - -h);
        mData[11] = -1.0f;
        mData[14] = -2.0f * far * near / (far - near);
    }
    // The same with the far plane at infinity.
    void setProjectInf(float fov, float aspect, float near) {
        const float h = float(near * tan(double(fov) / 2.0));
        const float w = aspect * h;
        setDiagonal(near / w, near / h, -1.0f, 0);
        mData[8] = (w + -w) / (w - -w);
        mData[9] = (h + -h) / (h - -h);
        mData[11] = -1.0f;
        mData[14] = -2.0f * near;
    }
    // Parallel projection. Depth keeps its sign, unlike glOrtho's, and is meant to.
    constexpr void setProjectOrtho(float left, float right, float bottom, float top, float near, float far) {
        setDiagonal(2.0f / (right - left), 2.0f / (top - bottom), 2.0f / (far - near), 1);
        mData[12] = -(right + left) / (right - left);
        mData[13] = -(top + bottom) / (top - bottom);
        mData[14] = -(far + near) / (far - near);
    }
    // The same for flat drawing: depths from -1 to 1.
    constexpr void setProjectOrtho2D(float left, float right, float bottom, float top) {
        setProjectOrtho(left, right, bottom, top, -1.0f, 1.0f);
    }

    // The view from `eye` towards `target` with y up, turned by `roll` about the line of sight. Looking
    // straight up or down, x stands in for up. Asserts that the two points differ.
    void setCamera(const Vector3f& eye, const Vector3f& target, float roll) {
        const CameraFrame frame(eye, target);
        const Vector3f& s = frame.side;
        const Vector3f& u = frame.up;
        const Vector3f& f = frame.forward;
        setColumn(0, s.x, u.x, -f.x, 0);
        setColumn(1, s.y, u.y, -f.y, 0);
        setColumn(2, s.z, u.z, -f.z, 0);
        setColumn(3, -s.dot(eye), -u.dot(eye), f.dot(eye), 1);
        Matrix4x4Col rotation;
        rotation.setRotZ(-roll);
        multiplyFromLeft(rotation);
    }
    // The inverse of setCamera's matrix: the columns are the camera's right, up, backward and position.
    void setCameraInv(const Vector3f& eye, const Vector3f& target, float roll) {
        const CameraFrame frame(eye, target);
        setColumn(0, frame.side.x, frame.side.y, frame.side.z, 0);
        setColumn(1, frame.up.x, frame.up.y, frame.up.z, 0);
        setColumn(2, -frame.forward.x, -frame.forward.y, -frame.forward.z, 0);
        setColumn(3, eye.x, eye.y, eye.z, 1);
        Matrix4x4Col rotation;
        rotation.setRotZ(roll);
        multiplyFromRight(rotation);
    }

    // Translation x rotation x scale, and its inverse. The quaternion is of unit length.
    constexpr void buildPRS(const Vector3f& position, const Quatf& rotation, const Vector3f& scale) {
        setRotationPart(rotation);
        for (int r = 0; r < 3; ++r) {
            mData[0 + r] *= scale.x;
            mData[4 + r] *= scale.y;
            mData[8 + r] *= scale.z;
        }
        setColumn(3, position.x, position.y, position.z, 1);
    }
    constexpr void buildPRSinverse(const Vector3f& position, const Quatf& rotation, const Vector3f& scale) {
        const Vector3f s = scale.byOne();
        setRotationPart(Quatf(rotation.w, -rotation.x, -rotation.y, -rotation.z));
        for (int c = 0; c < 3; ++c) {
            mData[c * 4 + 0] *= s.x;
            mData[c * 4 + 1] *= s.y;
            mData[c * 4 + 2] *= s.z;
        }
        const Vector3f p = multiplyVector(-position);
        setColumn(3, p.x, p.y, p.z, 1);
    }

    // The frame of a camera that looks along y with z up, as modelled; and its inverse, the view matrix.
    void buildBlenderCamera(const Vector3f& position, const Quatf& rotation, const Vector3f& scale) {
        Matrix4x4Col turn;
        turn.setRotX(-halfPi);
        buildPRS(position, rotation, scale);
        multiplyFromRight(turn);
    }
    void buildBlenderCameraInverse(const Vector3f& position, const Quatf& rotation, const Vector3f& scale) {
        Matrix4x4Col turn;
        turn.setRotX(halfPi);
        buildPRSinverse(position, rotation, scale);
        multiplyFromLeft(turn);
    }

    // Products. Either way the other matrix may be this one.

    // this = this x b
    constexpr void multiplyFromRight(const Matrix4x4Col& b) { *this = product(*this, b); }
    // this = b x this
    constexpr void multiplyFromLeft(const Matrix4x4Col& b) { *this = product(b, *this); }

    constexpr Matrix4x4Col& operator*=(const Matrix4x4Col& b) {
        multiplyFromRight(b);
        return *this;
    }

    // A point: the translation is added, and nothing is divided by w.
    constexpr Vector3f multiply(const Vector3f& v) const {
        return Vector3f(mData[0] * v.x + mData[4] * v.y + mData[8] * v.z + mData[12],
                        mData[1] * v.x + mData[5] * v.y + mData[9] * v.z + mData[13],
                        mData[2] * v.x + mData[6] * v.y + mData[10] * v.z + mData[14]);
    }
    constexpr Vector4f multiply(const Vector4f& v) const {
        return Vector4f(mData[0] * v.x + mData[4] * v.y + mData[8] * v.z + mData[12] * v.w,
                        mData[1] * v.x + mData[5] * v.y + mData[9] * v.z + mData[13] * v.w,
                        mData[2] * v.x + mData[6] * v.y + mData[10] * v.z + mData[14] * v.w,
                        mData[3] * v.x + mData[7] * v.y + mData[11] * v.z + mData[15] * v.w);
    }
    constexpr Vector3f operator*(const Vector3f& v) const { return multiply(v); }
    constexpr Vector4f operator*(const Vector4f& v) const { return multiply(v); }

    // A direction: by the upper left 3 x 3 only, and by its transpose.
    constexpr Vector3f multiplyVector(const Vector3f& v) const {
        return Vector3f(mData[0] * v.x + mData[4] * v.y + mData[8] * v.z,
                        mData[1] * v.x + mData[5] * v.y + mData[9] * v.z,
                        mData[2] * v.x + mData[6] * v.y + mData[10] * v.z);
    }
    constexpr Vector3f multiplyVectorWithTransponate(const Vector3f& v) const {
        return Vector3f(mData[0] * v.x + mData[1] * v.y + mData[2] * v.z,
                        mData[4] * v.x + mData[5] * v.y + mData[6] * v.z,
                        mData[8] * v.x + mData[9] * v.y + mData[10] * v.z);
    }

    // Turns rows into columns, in place.
    constexpr void transponate() {
        for (int c = 1; c < 4; ++c) {
            for (int r = 0; r < c; ++r) {
                const float swapped = mData[c * 4 + r];
                mData[c * 4 + r] = mData[r * 4 + c];
                mData[r * 4 + c] = swapped;
            }
        }
    }

    // Column or row `i`, 0 to 3; of any other number the lowest two bits count.
    constexpr Vector4f getColumn(int i) const {
        const float* d = mData + (i & 3) * 4;
        return Vector4f(d[0], d[1], d[2], d[3]);
    }
    constexpr Vector4f getRow(int i) const {
        const float* d = mData + (i & 3);
        return Vector4f(d[0], d[4], d[8], d[12]);
    }

    // The point at depth p.z (in front of the camera: negative) that this projection sends to (p.x, p.y),
    // both -1 to 1.
    constexpr Vector3f getUnprojectedPoint(const Vector3f& p) const {
        return Vector3f((-p.x * p.z - p.z * mData[8]) / mData[0], (-p.y * p.z - p.z * mData[9]) / mData[5],
                        p.z);
    }
    // From the unprojected point at depth -a to that at depth -b; not normalised.
    constexpr Vector3f getUnprojectedDirection(const Vector2f& p, float a, float b) const {
        return getUnprojectedPoint(Vector3f(p.x, p.y, -b)) - getUnprojectedPoint(Vector3f(p.x, p.y, -a));
    }

private:
    static constexpr float halfPi = 1.5707964f;

    struct CameraFrame {
        Vector3f forward, side, up;

        CameraFrame(const Vector3f& eye, const Vector3f& target) : forward(target - eye) {
            forward.normalize();
            const bool vertical = forward.x == 0 && forward.z == 0;
            const Vector3f upwards = vertical ? Vector3f(-forward.y, 0, 0) : Vector3f(0, 1, 0);
            side = forward.cross(upwards);
            side.normalize();
            up = side.cross(forward);
        }
    };

    constexpr void setColumn(int c, float x, float y, float z, float w) {
        mData[c * 4 + 0] = x;
        mData[c * 4 + 1] = y;
        mData[c * 4 + 2] = z;
        mData[c * 4 + 3] = w;
    }

    constexpr void setDiagonal(float x, float y, float z, float w) {
        setColumn(0, x, 0, 0, 0);
        setColumn(1, 0, y, 0, 0);
        setColumn(2, 0, 0, z, 0);
        setColumn(3, 0, 0, 0, w);
    }

    // Columns 0 to 2.
    constexpr void setRotationPart(const Quatf& q) {
        for (int c = 0; c < 3; ++c) {
            const Vector3f column = q.getColumn(c);
            setColumn(c, column.x, column.y, column.z, 0);
        }
    }

    static constexpr Matrix4x4Col product(const Matrix4x4Col& a, const Matrix4x4Col& b) {
        Matrix4x4Col result;
        for (int c = 0; c < 4; ++c) {
            const float* column = b.mData + c * 4;
            for (int r = 0; r < 4; ++r) {
                result.mData[c * 4 + r] = a.mData[r] * column[0] + a.mData[4 + r] * column[1] +
                                          a.mData[8 + r] * column[2] + a.mData[12 + r] * column[3];
            }
        }
        return result;
    }
};

using MatrixGL = Matrix4x4Col;

} // namespace zentrak::mathbase
