// A rectangle of the screen.
#pragma once

namespace zentrak::mathbase {

struct Box2 {
    float x1 = 0, y1 = 0; // minimum corner
    float x2 = 0, y2 = 0; // maximum corner

    Box2() = default;
    Box2(float x1_, float y1_, float x2_, float y2_) : x1(x1_), y1(y1_), x2(x2_), y2(y2_) {}

    bool isEmpty() const { return x2 < x1 || y2 < y1; }
};

} // namespace zentrak::mathbase
