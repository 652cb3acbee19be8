// Four floats: a homogeneous point, or a colour with alpha.
#pragma once

#include "mb_vector3.h"

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

struct Vector4f {
    // One of the two sets of names, for the same four floats.
    __extension__ union {
        struct {
            float x, y, z, w;
        };
        struct {
            float r, g, b, a;
        };
    };

    Vector4f() : x(0), y(0), z(0), w(0) {}
    Vector4f(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    Vector4f(const Vector3f& v, float w_) : x(v.x), y(v.y), z(v.z), w(w_) {}
    explicit Vector4f(const float* v) : x(v[0]), y(v[1]), z(v[2]), w(v[3]) {} // four of them

    static constexpr int size() { return 4; }

    // Takes x, y and z; w stays.
    Vector4f& operator=(const Vector3f& v) { return x = v.x, y = v.y, z = v.z, *this; }

    Vector4f  operator+(const Vector4f& v) const { return Vector4f(x + v.x, y + v.y, z + v.z, w + v.w); }
    Vector4f  operator-(const Vector4f& v) const { return Vector4f(x - v.x, y - v.y, z - v.z, w - v.w); }
    Vector4f  operator-() const { return Vector4f(-x, -y, -z, -w); }
    Vector4f  operator*(float f) const { return Vector4f(x * f, y * f, z * f, w * f); }
    Vector4f& operator+=(const Vector4f& v) { return x += v.x, y += v.y, z += v.z, w += v.w, *this; }
    Vector4f& operator-=(const Vector4f& v) { return x -= v.x, y -= v.y, z -= v.z, w -= v.w, *this; }
    Vector4f& operator-=(const Vector3f& v) { return x -= v.x, y -= v.y, z -= v.z, *this; }
    Vector4f& operator*=(float f) { return x *= f, y *= f, z *= f, w *= f, *this; }
    Vector4f& operator/=(float f) { return x /= f, y /= f, z /= f, w /= f, *this; }

    // Component by component.
    Vector4f  multiply(const Vector4f& v) const { return Vector4f(x * v.x, y * v.y, z * v.z, w * v.w); }
    Vector4f  operator*(const Vector4f& v) const { return multiply(v); }
    Vector4f& operator*=(const Vector4f& v) { return x *= v.x, y *= v.y, z *= v.z, w *= v.w, *this; }

    float dot(const Vector4f& v) const { return x * v.x + y * v.y + z * v.z + w * v.w; }
    float dot(const Vector3f& v) const { return x * v.x + y * v.y + z * v.z; } // of the first three

    float length2() const { return dot(*this); }
    float length() const { return sqrtf(length2()); }
    float product() const { return x * y * z * w; }

    // To unit length. Asserts "length!=0".
    void normalize() {
        const float length = this->length();
        assert(length!=0);
        *this /= length;
    }
    Vector4f getNormalized() const {
        Vector4f v = *this;
        v.normalize();
        return v;
    }

    // 1 over each component.
    Vector4f byOne() const { return Vector4f(1.0f / x, 1.0f / y, 1.0f / z, 1.0f / w); }

    float&       operator[](int i) { return component(i); }
    const float& operator[](int i) const { return const_cast<Vector4f*>(this)->component(i); }
    float&       operator()(int i) { return component(i); }
    const float& operator()(int i) const { return const_cast<Vector4f*>(this)->component(i); }

    // Component by component, in place: the greater or the lesser of the two.
    void max(const Vector4f& v) {
        x = v.x > x ? v.x : x, y = v.y > y ? v.y : y, z = v.z > z ? v.z : z, w = v.w > w ? v.w : w;
    }
    void min(const Vector4f& v) {
        x = v.x < x ? v.x : x, y = v.y < y ? v.y : y, z = v.z < z ? v.z : z, w = v.w < w ? v.w : w;
    }
    void maxi(const Vector4f& v) { max(v); }
    void mini(const Vector4f& v) { min(v); }
    // Brings every component into `low` to `high`.
    void setMinMax(float low, float high) {
        max(Vector4f(low, low, low, low));
        min(Vector4f(high, high, high, high));
    }

    // Over the four components.
    float getMin() const { return fminf(fminf(x, y), fminf(z, w)); }
    float getMax() const { return fmaxf(fmaxf(x, y), fmaxf(z, w)); }
    float getMean() const { return (x + y + z + w) / 4.0f; }
    // Of a colour: its brightness to the eye.
    float getIntensity() const { return 0.3f * r + 0.59f * g + 0.11f * b; }

    operator const float*() const { return &x; } // four of them

private:
    float& component(int i) {
        assert(i>=0 && i<4);
        return i == 0 ? x : i == 1 ? y : i == 2 ? z : w;
    }
};
static_assert(sizeof(Vector4f) == 4 * sizeof(float));

} // namespace zentrak::mathbase
