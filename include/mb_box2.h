// An axis-aligned rectangle by its two corners.
#pragma once

namespace zentrak::mathbase {

struct Box2 {
    float x1 = 0; // minimum corner
    float y1 = 0;
    float x2 = 0; // maximum corner
    float y2 = 0;

    constexpr Box2() = default;
    constexpr Box2(float left, float top, float right, float bottom)
        : x1(left), y1(top), x2(right), y2(bottom) {}

    // A box without extent, such as the default one, is not empty: only an inverted one is.
    constexpr bool isEmpty() const { return x2 < x1 || y2 < y1; }
    constexpr float getWidth() const { return x2 - x1; }
    constexpr float getHeight() const { return y2 - y1; }

    constexpr bool operator==(const Box2& other) const = default;
};

} // namespace zentrak::mathbase
