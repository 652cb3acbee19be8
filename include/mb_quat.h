// A quaternion, w first. One of unit length is a right-handed rotation about its axis. Angles are in radians.
#pragma once

#include "mb_assert.h"
#include "mb_euler.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

struct Quatf {
    float w = 1;
    float x = 0;
    float y = 0;
    float z = 0;

    constexpr Quatf() = default; // no rotation
    constexpr Quatf(float aw, float ax, float ay, float az) : w(aw), x(ax), y(ay), z(az) {}
    explicit Quatf(const Eulerf& euler) { setEuler(euler); }
    Quatf(float angle, const Vector3f& axis) { setAngleAxis(angle, axis); }
    Quatf(const Vector3f& from, const Vector3f& to) { setOrientation(from, to); }

    Quatf& operator=(const Eulerf& euler) {
        setEuler(euler);
        return *this;
    }

    // The product of the rotations about the three axes, in the order's spelling: XYZ is Rx x Ry x Rz, which
    // turns about z first. Asserts that the order is one of the six.
    void setEuler(const Eulerf& euler) {
        const float halfX = euler.angles.x * 0.5f;
        const float halfY = euler.angles.y * 0.5f;
        const float halfZ = euler.angles.z * 0.5f;
        const Quatf qx(cosf(halfX), sinf(halfX), 0, 0);
        const Quatf qy(cosf(halfY), 0, sinf(halfY), 0);
        const Quatf qz(cosf(halfZ), 0, 0, sinf(halfZ));
        switch (euler.order.value) {
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
            MB_ASSERT_AT(false, "false", "mb_quat", 48);
        }
    }

    // The shortest rotation that turns direction `from` into direction `to`, of any lengths but 0 (asserted).
    // Opposite directions turn about some axis across them.
    void setOrientation(const Vector3f& from, const Vector3f& to) {
        const Vector3f a = from.getNormalized();
        const Vector3f b = to.getNormalized();
        const Vector3f half = a + b;
        if (half.length2() < 1e-10f) {
            Vector3f across;
            across[a.getMinorAxis()] = 1.0f;
            const Vector3f axis = a.cross(across).getNormalized();
            *this = Quatf(0, axis.x, axis.y, axis.z);
            return;
        }
        const Vector3f middle = half.getNormalized();
        const Vector3f axis = a.cross(middle);
        *this = Quatf(a.dot(middle), axis.x, axis.y, axis.z);
        normalize();
    }

    // Rotations about one axis, each right-handed.
    void setRotX(float angle) { *this = Quatf(cosf(angle * 0.5f), sinf(angle * 0.5f), 0, 0); }
    void setRotY(float angle) { *this = Quatf(cosf(angle * 0.5f), 0, sinf(angle * 0.5f), 0); }
    void setRotZ(float angle) { *this = Quatf(cosf(angle * 0.5f), 0, 0, sinf(angle * 0.5f)); }
    // `axis` is of unit length.
    void setAngleAxis(float angle, const Vector3f& axis) {
        const float s = sinf(angle * 0.5f);
        *this = Quatf(cosf(angle * 0.5f), axis.x * s, axis.y * s, axis.z * s);
    }
    // The angle, 0 to 2 pi, and the axis of unit length; the x axis where there is no rotation.
    void getAngleAxis(float& angle, Vector3f& axis) const {
        const float s = sqrtf(x * x + y * y + z * z);
        angle = 2.0f * atan2f(s, w);
        axis = s != 0 ? Vector3f(x / s, y / s, z / s) : Vector3f(1, 0, 0);
    }

    // Component by component.
    constexpr Quatf operator+(const Quatf& q) const { return Quatf(w + q.w, x + q.x, y + q.y, z + q.z); }
    constexpr Quatf operator-(const Quatf& q) const { return Quatf(w - q.w, x - q.x, y - q.y, z - q.z); }
    constexpr Quatf operator*(float s) const { return Quatf(w * s, x * s, y * s, z * s); }

    constexpr Quatf& operator+=(const Quatf& q) { return *this = *this + q; }
    constexpr Quatf& operator-=(const Quatf& q) { return *this = *this - q; }
    constexpr Quatf& operator*=(float s) { return *this = *this * s; }

    constexpr bool operator==(const Quatf& q) const = default;

    // The Hamilton product: the rotation of `q`, then this one.
    constexpr Quatf operator*(const Quatf& q) const {
        return Quatf(w * q.w - x * q.x - y * q.y - z * q.z, w * q.x + x * q.w + y * q.z - z * q.y,
                     w * q.y - x * q.z + y * q.w + z * q.x, w * q.z + x * q.y - y * q.x + z * q.w);
    }
    constexpr Quatf& operator*=(const Quatf& q) { return *this = *this * q; }

    // Column 0, 1 or 2 of the 3 x 3 matrix of the rotation.
    constexpr Vector3f getColumn(int i) const {
        if (i == 0)
            return Vector3f(1.0f - 2.0f * (y * y + z * z), 2.0f * (x * y + w * z), 2.0f * (x * z - w * y));
        if (i == 1)
            return Vector3f(2.0f * (x * y - w * z), 1.0f - 2.0f * (z * z + x * x), 2.0f * (y * z + w * x));
        return Vector3f(2.0f * (x * z + w * y), 2.0f * (y * z - w * x), 1.0f - 2.0f * (x * x + y * y));
    }

    // The rotated vector; w of a Vector4f is unchanged.
    constexpr Vector3f operator*(const Vector3f& v) const {
        return getColumn(0) * v.x + getColumn(1) * v.y + getColumn(2) * v.z;
    }
    constexpr Vector4f operator*(const Vector4f& v) const {
        const Vector3f turned = *this * Vector3f(v.x, v.y, v.z);
        return Vector4f(turned.x, turned.y, turned.z, v.w);
    }

    float length() const { return sqrtf(length2()); }
    constexpr float length2() const { return w * w + x * x + y * y + z * z; }

    // Scales it to unit length. Asserts "length!=0".
    void normalize() {
        const float length = this->length();
        assert(length!=0);
        w /= length;
        x /= length;
        y /= length;
        z /= length;
    }

    // The quaternion that undoes this one: its product with this one is (1, 0, 0, 0).
    constexpr Quatf getInverse() const {
        const float l2 = length2();
        return Quatf(w / l2, -x / l2, -y / l2, -z / l2);
    }
    constexpr void invert() { *this = getInverse(); }
};

} // namespace zentrak::mathbase
