// Three numbers: a point, a direction, a colour or three angles.
#pragma once

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

template <class FLOAT>
struct Vector3T {
    FLOAT x = 0, y = 0, z = 0;

    Vector3T() = default;
    Vector3T(FLOAT x_, FLOAT y_, FLOAT z_) : x(x_), y(y_), z(z_) {}
    explicit Vector3T(const FLOAT* v) : x(v[0]), y(v[1]), z(v[2]) {} // three of them

    static constexpr int size() { return 3; }

    Vector3T  operator+(const Vector3T& v) const { return Vector3T(x + v.x, y + v.y, z + v.z); }
    Vector3T  operator-(const Vector3T& v) const { return Vector3T(x - v.x, y - v.y, z - v.z); }
    Vector3T  operator-() const { return Vector3T(-x, -y, -z); }
    Vector3T  operator*(FLOAT f) const { return Vector3T(x * f, y * f, z * f); }
    Vector3T& operator+=(const Vector3T& v) { return x += v.x, y += v.y, z += v.z, *this; }
    Vector3T& operator-=(const Vector3T& v) { return x -= v.x, y -= v.y, z -= v.z, *this; }
    Vector3T& operator*=(FLOAT f) { return x *= f, y *= f, z *= f, *this; }
    Vector3T& operator/=(FLOAT f) { return x /= f, y /= f, z /= f, *this; }

    // Component by component.
    Vector3T  multiply(const Vector3T& v) const { return Vector3T(x * v.x, y * v.y, z * v.z); }
    Vector3T  operator*(const Vector3T& v) const { return multiply(v); }
    Vector3T& operator*=(const Vector3T& v) { return x *= v.x, y *= v.y, z *= v.z, *this; }

    FLOAT dot(const Vector3T& v) const { return x * v.x + y * v.y + z * v.z; }

    // The right-handed cross product, and the left-handed one, which is its opposite.
    Vector3T crossRHS(const Vector3T& v) const {
        return Vector3T(y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x);
    }
    Vector3T cross(const Vector3T& v) const { return crossRHS(v); }
    Vector3T crossLHS(const Vector3T& v) const { return v.crossRHS(*this); }

    FLOAT length2() const { return x * x + y * y + z * z; }
    FLOAT length() const { return std::sqrt(length2()); }
    FLOAT product() const { return x * y * z; }

    // To unit length. Asserts "length!=0".
    void normalize() {
        const FLOAT length = this->length();
        assert(length!=0);
        x /= length, y /= length, z /= length;
    }
    Vector3T getNormalized() const {
        Vector3T v = *this;
        v.normalize();
        return v;
    }

    // The mirror image of this direction in a plane with the unit normal `n`.
    Vector3T reflection(const Vector3T& n) const { return *this - n * (FLOAT(2) * dot(n)); }
    // The index of the component that is nearest to, or farthest from, 0; the first of several.
    int getMinorAxis() const {
        const FLOAT ax = std::abs(x), ay = std::abs(y), az = std::abs(z);
        return ax <= ay && ax <= az ? 0 : ay <= az ? 1 : 2;
    }
    int getMajorAxis() const {
        const FLOAT ax = std::abs(x), ay = std::abs(y), az = std::abs(z);
        return ax >= ay && ax >= az ? 0 : ay >= az ? 1 : 2;
    }
    // 1 over each component.
    Vector3T byOne() const { return Vector3T(FLOAT(1) / x, FLOAT(1) / y, FLOAT(1) / z); }

    FLOAT&       operator[](int i) { return component(i); }
    const FLOAT& operator[](int i) const { return const_cast<Vector3T*>(this)->component(i); }
    FLOAT&       operator()(int i) { return component(i); }
    const FLOAT& operator()(int i) const { return const_cast<Vector3T*>(this)->component(i); }

    // Component by component, in place: the greater or the lesser of the two.
    void max(const Vector3T& v) { x = v.x > x ? v.x : x, y = v.y > y ? v.y : y, z = v.z > z ? v.z : z; }
    void min(const Vector3T& v) { x = v.x < x ? v.x : x, y = v.y < y ? v.y : y, z = v.z < z ? v.z : z; }
    void maxi(const Vector3T& v) { max(v); }
    void mini(const Vector3T& v) { min(v); }

    // Over the three components.
    FLOAT getMin() const { return x < y ? (x < z ? x : z) : (y < z ? y : z); }
    FLOAT getMax() const { return x > y ? (x > z ? x : z) : (y > z ? y : z); }
    FLOAT getMean() const { return (x + y + z) / FLOAT(3); }
    // Of a colour, red, green and blue: its brightness to the eye.
    FLOAT getIntensity() const { return FLOAT(0.3) * x + FLOAT(0.59) * y + FLOAT(0.11) * z; }

    operator const FLOAT*() const { return &x; } // three of them

private:
    FLOAT& component(int i) {
        assert(i>=0 && i<3);
        return i == 0 ? x : i == 1 ? y : z;
    }
};

typedef Vector3T<float> Vector3f;
static_assert(sizeof(Vector3f) == 3 * sizeof(float));

} // namespace zentrak::mathbase
