// A vector of two floats.
#pragma once

#include <cassert>
#include <cmath>

namespace zentrak::mathbase {

struct Vector2f {
    float x = 0;
    float y = 0;

    constexpr Vector2f() = default;
    constexpr Vector2f(float ax, float ay) : x(ax), y(ay) {}

    constexpr Vector2f operator+(const Vector2f& v) const { return Vector2f(x + v.x, y + v.y); }
    constexpr Vector2f operator-(const Vector2f& v) const { return Vector2f(x - v.x, y - v.y); }
    constexpr Vector2f operator*(float s) const { return Vector2f(x * s, y * s); }

    constexpr Vector2f& operator+=(const Vector2f& v) {
        x += v.x;
        y += v.y;
        return *this;
    }
    constexpr Vector2f& operator-=(const Vector2f& v) {
        x -= v.x;
        y -= v.y;
        return *this;
    }

    constexpr bool operator==(const Vector2f& v) const = default;

    float length() const { return sqrtf(length2()); }
    constexpr float length2() const { return x * x + y * y; }
    constexpr float product() const { return x * y; }

    // Makes it one long. Asserts that it has a length.
    void normalize() {
        const float length = this->length();
        assert(length!=0);
        x /= length;
        y /= length;
    }
    Vector2f getNormalized() const {
        Vector2f result = *this;
        result.normalize();
        return result;
    }

    // In place and component by component, the greater or the lesser of the two.
    constexpr void max(const Vector2f& v) {
        x = v.x > x ? v.x : x;
        y = v.y > y ? v.y : y;
    }
    constexpr void min(const Vector2f& v) {
        x = v.x < x ? v.x : x;
        y = v.y < y ? v.y : y;
    }
    constexpr void maxi(const Vector2f& v) { max(v); }
    constexpr void mini(const Vector2f& v) { min(v); }
};

} // namespace zentrak::mathbase
