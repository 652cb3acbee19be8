// Two floats: a point of the screen, or a size.
#pragma once

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

struct Vector2f {
    float x = 0, y = 0;

    Vector2f() = default;
    Vector2f(float x_, float y_) : x(x_), y(y_) {}

    Vector2f  operator+(const Vector2f& v) const { return Vector2f(x + v.x, y + v.y); }
    Vector2f  operator-(const Vector2f& v) const { return Vector2f(x - v.x, y - v.y); }
    Vector2f  operator*(float f) const { return Vector2f(x * f, y * f); }
    Vector2f& operator+=(const Vector2f& v) { return x += v.x, y += v.y, *this; }
    Vector2f& operator-=(const Vector2f& v) { return x -= v.x, y -= v.y, *this; }

    float length2() const { return x * x + y * y; }
    float length() const { return sqrtf(length2()); }
    float product() const { return x * y; }

    // To unit length. Asserts "length!=0".
    void normalize() {
        const float length = this->length();
        assert(length!=0);
        x /= length, y /= length;
    }
    Vector2f getNormalized() const {
        Vector2f v = *this;
        v.normalize();
        return v;
    }

    // Component by component, in place: the greater or the lesser of the two.
    void max(const Vector2f& v) { x = v.x > x ? v.x : x, y = v.y > y ? v.y : y; }
    void min(const Vector2f& v) { x = v.x < x ? v.x : x, y = v.y < y ? v.y : y; }
    void maxi(const Vector2f& v) { max(v); }
    void mini(const Vector2f& v) { min(v); }
};

} // namespace zentrak::mathbase
