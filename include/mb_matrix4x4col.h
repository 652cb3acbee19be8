// 4 by 4 matrices, laid out as OpenGL wants them: column-major, acting on column vectors. Element (row r,
// column c) is mData[c * 4 + r]; the translation is in mData[12] to mData[14]. Angles are radians.
#pragma once

#include "mb_quat.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

// A setter replaces the whole matrix.
struct Matrix4x4Col {
    float mData[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}; // the identity at first

    void setZero() {
        for (float& f : mData) {
            f = 0;
        }
    }
    void setDiagonal(float x, float y, float z, float w) {
        setZero();
        mData[0] = x, mData[5] = y, mData[10] = z, mData[15] = w;
    }
    void setIdentity() { setDiagonal(1, 1, 1, 1); }

    // About x and z the usual right-handed rotations; about y deliberately the opposite of the usual sense.
    void setRotX(float a) {
        const float c = cosf(a), s = sinf(a);
        setIdentity();
        mData[5] = c, mData[6] = s, mData[9] = -s, mData[10] = c;
    }
    void setRotY(float a) {
        const float c = cosf(a), s = sinf(a);
        setIdentity();
        mData[0] = c, mData[2] = s, mData[8] = -s, mData[10] = c;
    }
    void setRotZ(float a) {
        const float c = cosf(a), s = sinf(a);
        setIdentity();
        mData[0] = c, mData[1] = s, mData[4] = -s, mData[5] = c;
    }
    void setRot(const Quatf& q) { buildPRS(Vector3f(0, 0, 0), q, Vector3f(1, 1, 1)); } // of a unit quaternion

    void setTranslation(const Vector3f& v) {
        setIdentity();
        mData[12] = v.x, mData[13] = v.y, mData[14] = v.z;
    }
    void setTranslation(const Vector4f& v) {
        setIdentity();
        mData[12] = v.x, mData[13] = v.y, mData[14] = v.z, mData[15] = v.w;
    }
    void setScale(const Vector3f& s) { setDiagonal(s.x, s.y, s.z, 1); }
    void setScale(const Vector3f& s, const Vector3f& centre) {
        setScale(s);
        mData[12] = (1 - s.x) * centre.x, mData[13] = (1 - s.y) * centre.y, mData[14] = (1 - s.z) * centre.z;
    }
    void setShear(const Vector3f& v) {
        setIdentity();
        mData[4] = v.x * v.y, mData[8] = v.x * v.z, mData[9] = v.y * v.z;
    }
    // Scale after shear, both about `centre`.
    void setScaleAndShear(const Vector3f& scale, const Vector3f& centre, const Vector3f& shear) {
        Matrix4x4Col m;
        setTranslation(centre);
        m.setScale(scale);
        multiplyFromRight(m);
        m.setShear(shear);
        multiplyFromRight(m);
        m.setTranslation(-centre);
        multiplyFromRight(m);
    }

    // Perspective; `fov` is the full vertical angle.
    void setProject(float fov, float aspect, float near, float far) {
        const float h = near * tanf(fov / 2), w = aspect * h;
        setFrustum(-w, w, -h, h, near);
        mData[10] = -(near + far) / (far - near);
        mData[14] = -2 * far * near / (far - near);
    }
    // The same with the far plane at infinity.
    void setProjectInf(float fov, float aspect, float near) {
        const float h = float(near * tan(double(fov) / 2)), w = aspect * h;
        setFrustum(-w, w, -h, h, near);
        mData[10] = -1;
        mData[14] = -2 * near;
    }
    // mData[10] is positive, unlike that of glOrtho, and meant to be.
    void setProjectOrtho(float left, float right, float bottom, float top, float near, float far) {
        setDiagonal(2 / (right - left), 2 / (top - bottom), 2 / (far - near), 1);
        mData[12] = -(right + left) / (right - left);
        mData[13] = -(top + bottom) / (top - bottom);
        mData[14] = -(far + near) / (far - near);
    }
    // For flat drawing: depths -1 to 1 as they are.
    void setProjectOrtho2D(float left, float right, float bottom, float top) {
        setProjectOrtho(left, right, bottom, top, -1, 1);
    }

    // The view from `eye` to `target`, turned by `roll` about the line of sight, and its inverse, the
    // camera's frame in the world. Both assert "length!=0" where the two points are one.
    void setCamera(const Vector3f& eye, const Vector3f& target, float roll) {
        const Frame f(eye, target);
        for (int i = 0; i < 3; ++i) {
            mData[i * 4] = f.side[i], mData[i * 4 + 1] = f.up[i], mData[i * 4 + 2] = -f.ahead[i];
            mData[i * 4 + 3] = 0;
        }
        mData[12] = -f.side.dot(eye), mData[13] = -f.up.dot(eye), mData[14] = f.ahead.dot(eye), mData[15] = 1;
        Matrix4x4Col turn;
        turn.setRotZ(-roll);
        multiplyFromLeft(turn);
    }
    void setCameraInv(const Vector3f& eye, const Vector3f& target, float roll) {
        const Frame f(eye, target);
        for (int i = 0; i < 3; ++i) {
            mData[i] = f.side[i], mData[4 + i] = f.up[i], mData[8 + i] = -f.ahead[i], mData[12 + i] = eye[i];
        }
        mData[3] = mData[7] = mData[11] = 0, mData[15] = 1;
        Matrix4x4Col turn;
        turn.setRotZ(roll);
        multiplyFromRight(turn);
    }

    // Translation times rotation, by a unit quaternion, times scale; and its inverse, built without
    // inverting.
    void buildPRS(const Vector3f& p, const Quatf& q, const Vector3f& s) {
        const float x = q.x, y = q.y, z = q.z, w = q.w;
        mData[0] = s.x * (1 - 2 * (y * y + z * z));
        mData[1] = s.x * (2 * (x * y + w * z));
        mData[2] = s.x * (2 * (x * z - w * y));
        mData[3] = 0;
        mData[4] = s.y * (2 * (x * y - w * z));
        mData[5] = s.y * (1 - 2 * (z * z + x * x));
        mData[6] = s.y * (2 * (y * z + w * x));
        mData[7] = 0;
        mData[8] = s.z * (2 * (x * z + w * y));
        mData[9] = s.z * (2 * (y * z - w * x));
        mData[10] = s.z * (1 - 2 * (x * x + y * y));
        mData[11] = 0;
        mData[12] = p.x, mData[13] = p.y, mData[14] = p.z, mData[15] = 1;
    }
    void buildPRSinverse(const Vector3f& p, const Quatf& q, const Vector3f& s) {
        Matrix4x4Col m;
        setScale(s.byOne());
        m.setRot(Quatf(q.w, -q.x, -q.y, -q.z));
        multiplyFromRight(m);
        m.setTranslation(-p);
        multiplyFromRight(m);
    }
    // The frame of a camera that looks along its own -z with +y up, as scenes keep it; and its inverse, the
    // view matrix.
    void buildBlenderCamera(const Vector3f& p, const Quatf& q, const Vector3f& s) {
        Matrix4x4Col r;
        r.setRotX(-1.5707964f);
        buildPRS(p, q, s);
        multiplyFromRight(r);
    }
    void buildBlenderCameraInverse(const Vector3f& p, const Quatf& q, const Vector3f& s) {
        Matrix4x4Col r;
        r.setRotX(1.5707964f);
        buildPRSinverse(p, q, s);
        multiplyFromLeft(r);
    }

    // this = this * b, and this = b * this. `b` may be this matrix.
    void multiplyFromRight(const Matrix4x4Col& b) { *this = product(*this, b); }
    void multiplyFromLeft(const Matrix4x4Col& b) { *this = product(b, *this); }

    Matrix4x4Col& operator*=(const Matrix4x4Col& b) { return *this = product(*this, b); }
    Matrix4x4Col  operator*(const Matrix4x4Col& b) const { return product(*this, b); }

    // The point (v, 1), with no division by w.
    Vector3f multiply(const Vector3f& v) const {
        const float* m = mData;
        return Vector3f(m[0] * v.x + m[4] * v.y + m[8] * v.z + m[12],
                        m[1] * v.x + m[5] * v.y + m[9] * v.z + m[13],
                        m[2] * v.x + m[6] * v.y + m[10] * v.z + m[14]);
    }
    Vector4f multiply(const Vector4f& v) const {
        const float* m = mData;
        return Vector4f(m[0] * v.x + m[4] * v.y + m[8] * v.z + m[12] * v.w,
                        m[1] * v.x + m[5] * v.y + m[9] * v.z + m[13] * v.w,
                        m[2] * v.x + m[6] * v.y + m[10] * v.z + m[14] * v.w,
                        m[3] * v.x + m[7] * v.y + m[11] * v.z + m[15] * v.w);
    }
    Vector3f operator*(const Vector3f& v) const { return multiply(v); }
    Vector4f operator*(const Vector4f& v) const { return multiply(v); }

    // A direction: the upper left 3 by 3, or its transpose, times v.
    Vector3f multiplyVector(const Vector3f& v) const {
        const float* m = mData;
        return Vector3f(m[0] * v.x + m[4] * v.y + m[8] * v.z, m[1] * v.x + m[5] * v.y + m[9] * v.z,
                        m[2] * v.x + m[6] * v.y + m[10] * v.z);
    }
    Vector3f multiplyVectorWithTransponate(const Vector3f& v) const {
        const float* m = mData;
        return Vector3f(m[0] * v.x + m[1] * v.y + m[2] * v.z, m[4] * v.x + m[5] * v.y + m[6] * v.z,
                        m[8] * v.x + m[9] * v.y + m[10] * v.z);
    }

    void transponate() {
        for (int c = 0; c < 4; ++c) {
            for (int r = 0; r < c; ++r) {
                const float f = mData[c * 4 + r];
                mData[c * 4 + r] = mData[r * 4 + c];
                mData[r * 4 + c] = f;
            }
        }
    }

    // i is 0 to 3.
    Vector4f getColumn(int i) const {
        assert(i>=0 && i<4);
        return Vector4f(mData + i * 4);
    }
    Vector4f getRow(int i) const {
        assert(i>=0 && i<4);
        return Vector4f(mData[i], mData[4 + i], mData[8 + i], mData[12 + i]);
    }

    // The point at the depth p.z that this projection sends to (p.x, p.y).
    Vector3f getUnprojectedPoint(const Vector3f& p) const {
        return Vector3f((-p.x * p.z - p.z * mData[8]) / mData[0], (-p.y * p.z - p.z * mData[9]) / mData[5],
                        p.z);
    }
    // From the point at the depth -a to the one at -b, not normalised.
    Vector3f getUnprojectedDirection(const Vector3f& p, float a, float b) const {
        return getUnprojectedPoint(Vector3f(p.x, p.y, -b)) - getUnprojectedPoint(Vector3f(p.x, p.y, -a));
    }

private:
    // The three axes of a view.
    struct Frame {
        Vector3f ahead, side, up;

        Frame(const Vector3f& eye, const Vector3f& target) : ahead(target - eye) {
            ahead.normalize();
            Vector3f above(0, 1, 0);
            if (ahead.x == 0 && ahead.z == 0) {
                above = Vector3f(-ahead.y, 0, 0);
            }
            side = ahead.cross(above);
            side.normalize();
            up = side.cross(ahead);
        }
    };

    void setFrustum(float left, float right, float bottom, float top, float near) {
        setZero();
        mData[0] = 2 * near / (right - left), mData[5] = 2 * near / (top - bottom);
        mData[8] = (right + left) / (right - left), mData[9] = (top + bottom) / (top - bottom);
        mData[11] = -1;
    }

    static Matrix4x4Col product(const Matrix4x4Col& a, const Matrix4x4Col& b) {
        Matrix4x4Col m;
        for (int c = 0; c < 4; ++c) {
            const float* v = b.mData + c * 4;
            for (int r = 0; r < 4; ++r) {
                m.mData[c * 4 + r] = a.mData[r] * v[0] + a.mData[4 + r] * v[1] + a.mData[8 + r] * v[2] +
                                     a.mData[12 + r] * v[3];
            }
        }
        return m;
    }
};

typedef Matrix4x4Col MatrixGL;
static_assert(sizeof(Matrix4x4Col) == 16 * sizeof(float));

inline Vector3f Quatf::operator*(const Vector3f& v) const {
    Matrix4x4Col m;
    m.setRot(*this);
    return m.multiply(v);
}

inline Vector4f Quatf::operator*(const Vector4f& v) const {
    Matrix4x4Col m;
    m.setRot(*this);
    return m.multiply(v);
}

} // namespace zentrak::mathbase
