// A vector of four floats: a homogeneous point, or a colour in red, green, blue, alpha.
#pragma once

#include "mb_vector3.h"

#include <cassert>
#include <cmath>
#include <cstddef>

namespace zentrak::mathbase {

struct Vector4f {
    union {
        float x = 0;
        float r;
    };
    union {
        float y = 0;
        float g;
    };
    union {
        float z = 0;
        float b;
    };
    union {
        float w = 0;
        float a;
    };

    constexpr Vector4f() = default;
    constexpr Vector4f(float ax, float ay, float az, float aw) : x(ax), y(ay), z(az), w(aw) {}
    constexpr Vector4f(const Vector3f& v, float aw) : x(v.x), y(v.y), z(v.z), w(aw) {}
    // From four floats in a row; must not be null.
    constexpr explicit Vector4f(const float* v) : x(v[0]), y(v[1]), z(v[2]), w(v[3]) {}
    Vector4f(std::nullptr_t) = delete;

    // Sets x, y and z; w stays.
    constexpr Vector4f& operator=(const Vector3f& v) {
        x = v.x;
        y = v.y;
        z = v.z;
        return *this;
    }

    static constexpr int size() { return 4; }

    constexpr Vector4f operator+(const Vector4f& v) const {
        return Vector4f(x + v.x, y + v.y, z + v.z, w + v.w);
    }
    constexpr Vector4f operator-(const Vector4f& v) const {
        return Vector4f(x - v.x, y - v.y, z - v.z, w - v.w);
    }
    constexpr Vector4f operator-() const { return Vector4f(-x, -y, -z, -w); }
    constexpr Vector4f operator*(float s) const { return Vector4f(x * s, y * s, z * s, w * s); }
    constexpr Vector4f operator*(const Vector4f& v) const { return multiply(v); }

    constexpr Vector4f& operator+=(const Vector4f& v) {
        x += v.x;
        y += v.y;
        z += v.z;
        w += v.w;
        return *this;
    }
    constexpr Vector4f& operator-=(const Vector4f& v) {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        w -= v.w;
        return *this;
    }
    // Takes from x, y and z; w stays.
    constexpr Vector4f& operator-=(const Vector3f& v) {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        return *this;
    }
    constexpr Vector4f& operator*=(float s) {
        x *= s;
        y *= s;
        z *= s;
        w *= s;
        return *this;
    }
    constexpr Vector4f& operator*=(const Vector4f& v) {
        x *= v.x;
        y *= v.y;
        z *= v.z;
        w *= v.w;
        return *this;
    }
    constexpr Vector4f& operator/=(float s) {
        x /= s;
        y /= s;
        z /= s;
        w /= s;
        return *this;
    }

    constexpr bool operator==(const Vector4f& v) const {
        return x == v.x && y == v.y && z == v.z && w == v.w;
    }

    // The product component by component.
    constexpr Vector4f multiply(const Vector4f& v) const {
        return Vector4f(x * v.x, y * v.y, z * v.z, w * v.w);
    }
    constexpr float dot(const Vector4f& v) const { return x * v.x + y * v.y + z * v.z + w * v.w; }
    // Of x, y and z only.
    constexpr float dot(const Vector3f& v) const { return x * v.x + y * v.y + z * v.z; }

    float length() const { return sqrtf(length2()); }
    constexpr float length2() const { return x * x + y * y + z * z + w * w; }
    constexpr float product() const { return x * y * z * w; }

    // Makes it one long. Asserts that it has a length.
    void normalize() {
        const float length = this->length();
        assert(length!=0);
        x /= length;
        y /= length;
        z /= length;
        w /= length;
    }
    Vector4f getNormalized() const {
        Vector4f result = *this;
        result.normalize();
        return result;
    }

    // Mirrored by a plane through the origin whose normal is `n`, of unit length.
    constexpr Vector4f reflection(const Vector4f& n) const { return *this - n * (2.0f * dot(n)); }

    // Index of the component of least or of greatest magnitude, the first of equals.
    int getMinorAxis() const {
        const int i = Vector3f(x, y, z).getMinorAxis();
        return fabsf(w) < fabsf((*this)[i]) ? 3 : i;
    }
    int getMajorAxis() const {
        const int i = Vector3f(x, y, z).getMajorAxis();
        return fabsf(w) > fabsf((*this)[i]) ? 3 : i;
    }

    // One divided by each component.
    constexpr Vector4f byOne() const { return Vector4f(1.0f / x, 1.0f / y, 1.0f / z, 1.0f / w); }

    // Component `index`, 0 to 3. Any other index means the last one.
    constexpr float operator[](ptrdiff_t index) const {
        return index == 0 ? x : index == 1 ? y : index == 2 ? z : w;
    }
    constexpr float& operator[](ptrdiff_t index) {
        return index == 0 ? x : index == 1 ? y : index == 2 ? z : w;
    }
    constexpr float operator()(ptrdiff_t index) const { return (*this)[index]; }
    constexpr float& operator()(ptrdiff_t index) { return (*this)[index]; }

    // In place and component by component, the greater or the lesser of the two.
    constexpr void max(const Vector4f& v) {
        x = v.x > x ? v.x : x;
        y = v.y > y ? v.y : y;
        z = v.z > z ? v.z : z;
        w = v.w > w ? v.w : w;
    }
    constexpr void min(const Vector4f& v) {
        x = v.x < x ? v.x : x;
        y = v.y < y ? v.y : y;
        z = v.z < z ? v.z : z;
        w = v.w < w ? v.w : w;
    }
    constexpr void maxi(const Vector4f& v) { max(v); }
    constexpr void mini(const Vector4f& v) { min(v); }

    // Brings every component between `least` and `most`.
    constexpr void setMinMax(float least, float most) {
        max(Vector4f(least, least, least, least));
        min(Vector4f(most, most, most, most));
    }

    // Over the four components.
    constexpr float getMin() const {
        const float least = Vector3f(x, y, z).getMin();
        return w < least ? w : least;
    }
    constexpr float getMax() const {
        const float most = Vector3f(x, y, z).getMax();
        return w > most ? w : most;
    }
    constexpr float getMean() const { return (x + y + z + w) / 4.0f; }
    // Brightness of the colour as the eye weighs red, green and blue; alpha has no part in it.
    constexpr float getIntensity() const { return Vector3f(x, y, z).getIntensity(); }

    // The components in a row, as OpenGL takes them; valid while the vector lives.
    operator const float*() const { return reinterpret_cast<const float*>(this); }
};

} // namespace zentrak::mathbase
