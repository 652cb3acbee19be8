// Quaternions: rotations, w first. Angles are radians, axes are right-handed.
#pragma once

#include "mb_euler.h"
#include "mb_vector3.h"
#include "mb_vector4.h"
#include "ztk_system.h"

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

struct Quatf {
    float w = 1, x = 0, y = 0, z = 0;

    Quatf() = default; // no rotation
    Quatf(float w_, float x_, float y_, float z_) : w(w_), x(x_), y(y_), z(z_) {}
    explicit Quatf(const Eulerf& e) { setEuler(e); }
    Quatf(float angle, const Vector3f& axis) { setAngleAxis(angle, axis); }
    Quatf(const Vector3f& from, const Vector3f& to) { setOrientation(from, to); }

    // The rotations about the three axes, multiplied left to right as the order spells them. Asserts "false"
    // for an order that is none.
    void   setEuler(const Eulerf& e);
    Quatf& operator=(const Eulerf& e) { return setEuler(e), *this; }

    // The shortest rotation that takes the direction `a` to the direction `b`, of any lengths above 0. For
    // opposite directions one of the many.
    void setOrientation(const Vector3f& a, const Vector3f& b);

    void setRotX(float angle) { *this = Quatf(cosf(angle * 0.5f), sinf(angle * 0.5f), 0, 0); }
    void setRotY(float angle) { *this = Quatf(cosf(angle * 0.5f), 0, sinf(angle * 0.5f), 0); }
    void setRotZ(float angle) { *this = Quatf(cosf(angle * 0.5f), 0, 0, sinf(angle * 0.5f)); }

    // `axis` is of unit length.
    void setAngleAxis(float angle, const Vector3f& axis) {
        const float s = sinf(angle * 0.5f);
        *this = Quatf(cosf(angle * 0.5f), axis.x * s, axis.y * s, axis.z * s);
    }
    // Of a unit quaternion: an angle from 0 to 2 pi and a unit axis; without a rotation the x axis.
    void getAngleAxis(float& angle, Vector3f& axis) const {
        const float s = sqrtf(x * x + y * y + z * z);
        angle = 2.0f * atan2f(s, w);
        axis = s > 0 ? Vector3f(x / s, y / s, z / s) : Vector3f(1, 0, 0);
    }

    // As a vector of four.
    Quatf  operator+(const Quatf& q) const { return Quatf(w + q.w, x + q.x, y + q.y, z + q.z); }
    Quatf  operator-(const Quatf& q) const { return Quatf(w - q.w, x - q.x, y - q.y, z - q.z); }
    Quatf  operator*(float f) const { return Quatf(w * f, x * f, y * f, z * f); }
    Quatf& operator+=(const Quatf& q) { return *this = *this + q; }
    Quatf& operator-=(const Quatf& q) { return *this = *this - q; }
    Quatf& operator*=(float f) { return *this = *this * f; }

    // Hamilton product: the rotation `q`, then this one.
    Quatf operator*(const Quatf& q) const {
        return Quatf(w * q.w - x * q.x - y * q.y - z * q.z, w * q.x + x * q.w + y * q.z - z * q.y,
                     w * q.y - x * q.z + y * q.w + z * q.x, w * q.z + x * q.y - y * q.x + z * q.w);
    }
    Quatf& operator*=(const Quatf& q) { return *this = *this * q; }

    // The vector rotated, by a unit quaternion; see Matrix4x4Col::setRot.
    Vector3f operator*(const Vector3f& v) const;
    Vector4f operator*(const Vector4f& v) const;

    float length2() const { return w * w + x * x + y * y + z * z; }
    float length() const { return sqrtf(length2()); }
    // To unit length. Asserts "length!=0".
    void normalize() {
        const float length = this->length();
        assert(length!=0);
        *this *= 1.0f / length;
    }
    // The opposite rotation, for any length but 0.
    Quatf getInverse() const {
        const float f = 1.0f / length2();
        return Quatf(w * f, -x * f, -y * f, -z * f);
    }
    void invert() { *this = getInverse(); }
};

inline void Quatf::setEuler(const Eulerf& e) {
    Quatf qx, qy, qz;
    qx.setRotX(e.angles.x);
    qy.setRotY(e.angles.y);
    qz.setRotZ(e.angles.z);
    switch (e.order.value) {
    case RotationOrder::XYZ:
        *this = qx * qy * qz;
        break;
    case RotationOrder::XZY:
        *this = qx * qz * qy;
        break;
    case RotationOrder::YXZ:
        *this = qy * qx * qz;
        break;
    case RotationOrder::ZXY:
        *this = qz * qx * qy;
        break;
    case RotationOrder::YZX:
        *this = qy * qz * qx;
        break;
    case RotationOrder::ZYX:
        *this = qz * qy * qx;
        break;
    default:
        ZTK_ASSERT_AT(false, "false", "mb_quat", 48);
    }
}

inline void Quatf::setOrientation(const Vector3f& a, const Vector3f& b) {
    const Vector3f from = a.getNormalized();
    const Vector3f to = b.getNormalized();
    const float    d = from.dot(to);
    if (d < -0.999999f) {
        // Half a turn about any axis across: one that is far from the direction itself.
        const Vector3f across = fabsf(from.x) < 0.7f ? Vector3f(1, 0, 0) : Vector3f(0, 1, 0);
        const Vector3f axis = from.cross(across).getNormalized();
        *this = Quatf(0, axis.x, axis.y, axis.z);
        return;
    }
    const Vector3f c = from.cross(to);
    *this = Quatf(1.0f + d, c.x, c.y, c.z);
    normalize();
}

} // namespace zentrak::mathbase

#include "mb_matrix4x4col.h" // for the two that rotate a vector
