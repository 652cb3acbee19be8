// A vector of three numbers: a point, a direction or a colour. Axes are right-handed.
#pragma once

#include <cassert>
#include <cmath>
#include <cstddef>

namespace zentrak::mathbase {

template <typename FLOAT>
struct Vector3T {
    FLOAT x = 0;
    FLOAT y = 0;
    FLOAT z = 0;

    constexpr Vector3T() = default;
    constexpr Vector3T(FLOAT ax, FLOAT ay, FLOAT az) : x(ax), y(ay), z(az) {}
    // From three numbers in a row; must not be null.
    constexpr explicit Vector3T(const FLOAT* v) : x(v[0]), y(v[1]), z(v[2]) {}
    Vector3T(std::nullptr_t) = delete; // Vector3f(0) is a slip, not a null pointer

    static constexpr int size() { return 3; }

    constexpr Vector3T operator+(const Vector3T& v) const { return Vector3T(x + v.x, y + v.y, z + v.z); }
    constexpr Vector3T operator-(const Vector3T& v) const { return Vector3T(x - v.x, y - v.y, z - v.z); }
    constexpr Vector3T operator-() const { return Vector3T(-x, -y, -z); }
    constexpr Vector3T operator*(FLOAT s) const { return Vector3T(x * s, y * s, z * s); }
    constexpr Vector3T operator*(const Vector3T& v) const { return multiply(v); }

    constexpr Vector3T& operator+=(const Vector3T& v) {
        x += v.x;
        y += v.y;
        z += v.z;
        return *this;
    }
    constexpr Vector3T& operator-=(const Vector3T& v) {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        return *this;
    }
    constexpr Vector3T& operator*=(FLOAT s) {
        x *= s;
        y *= s;
        z *= s;
        return *this;
    }
    constexpr Vector3T& operator*=(const Vector3T& v) {
        x *= v.x;
        y *= v.y;
        z *= v.z;
        return *this;
    }
    constexpr Vector3T& operator/=(FLOAT s) {
        x /= s;
        y /= s;
        z /= s;
        return *this;
    }

    constexpr bool operator==(const Vector3T& v) const = default;

    // The product component by component.
    constexpr Vector3T multiply(const Vector3T& v) const { return Vector3T(x * v.x, y * v.y, z * v.z); }
    constexpr FLOAT dot(const Vector3T& v) const { return x * v.x + y * v.y + z * v.z; }

    // The cross product, right-handed, and its left-handed mirror image.
    constexpr Vector3T cross(const Vector3T& v) const {
        return Vector3T(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x);
    }
    constexpr Vector3T crossRHS(const Vector3T& v) const { return cross(v); }
    constexpr Vector3T crossLHS(const Vector3T& v) const { return v.cross(*this); }

    FLOAT length() const { return std::sqrt(length2()); }
    constexpr FLOAT length2() const { return x * x + y * y + z * z; }
    constexpr FLOAT product() const { return x * y * z; }

    // Makes it one long. Asserts that it has a length.
    void normalize() {
        const FLOAT length = this->length();
        assert(length!=0);
        x /= length;
        y /= length;
        z /= length;
    }
    Vector3T getNormalized() const {
        Vector3T result = *this;
        result.normalize();
        return result;
    }

    // Mirrored by a plane through the origin whose normal is `n`, of unit length.
    constexpr Vector3T reflection(const Vector3T& n) const { return *this - n * (FLOAT(2) * dot(n)); }

    // Index of the component of least or of greatest magnitude, the first of equals.
    int getMinorAxis() const {
        const FLOAT ax = std::fabs(x), ay = std::fabs(y), az = std::fabs(z);
        return ay < ax ? (az < ay ? 2 : 1) : (az < ax ? 2 : 0);
    }
    int getMajorAxis() const {
        const FLOAT ax = std::fabs(x), ay = std::fabs(y), az = std::fabs(z);
        return ay > ax ? (az > ay ? 2 : 1) : (az > ax ? 2 : 0);
    }

    // One divided by each component.
    constexpr Vector3T byOne() const { return Vector3T(FLOAT(1) / x, FLOAT(1) / y, FLOAT(1) / z); }

    // Component `index`, 0 to 2. Any other index means the last one. (The index is as wide as a pointer
    // difference so that no index prefers the conversion below.)
    constexpr FLOAT operator[](ptrdiff_t index) const { return index == 0 ? x : index == 1 ? y : z; }
    constexpr FLOAT& operator[](ptrdiff_t index) { return index == 0 ? x : index == 1 ? y : z; }
    constexpr FLOAT operator()(ptrdiff_t index) const { return (*this)[index]; }
    constexpr FLOAT& operator()(ptrdiff_t index) { return (*this)[index]; }

    // In place and component by component, the greater or the lesser of the two.
    constexpr void max(const Vector3T& v) {
        x = v.x > x ? v.x : x;
        y = v.y > y ? v.y : y;
        z = v.z > z ? v.z : z;
    }
    constexpr void min(const Vector3T& v) {
        x = v.x < x ? v.x : x;
        y = v.y < y ? v.y : y;
        z = v.z < z ? v.z : z;
    }
    constexpr void maxi(const Vector3T& v) { max(v); }
    constexpr void mini(const Vector3T& v) { min(v); }

    // Over the three components.
    constexpr FLOAT getMin() const { return y < x ? (z < y ? z : y) : (z < x ? z : x); }
    constexpr FLOAT getMax() const { return y > x ? (z > y ? z : y) : (z > x ? z : x); }
    constexpr FLOAT getMean() const { return (x + y + z) / FLOAT(3); }
    // Brightness of a colour in red, green, blue, as the eye weighs them.
    constexpr FLOAT getIntensity() const { return x * FLOAT(0.299) + y * FLOAT(0.587) + z * FLOAT(0.114); }

    // The components in a row, as OpenGL takes them; valid while the vector lives.
    operator const FLOAT*() const { return reinterpret_cast<const FLOAT*>(this); }
};

using Vector3f = Vector3T<float>;

} // namespace zentrak::mathbase
