// Operations on boxes that the whole toolkit uses.
#pragma once

#include "mb_box2.h"
#include "mb_vector2.h"

namespace zentrak::panorama {

// The greater and the lesser of two; NaN if either is.
inline float greater(float a, float b) {
    return a > b || a != a ? a : b;
}
inline float lesser(float a, float b) {
    return a < b || a != a ? a : b;
}

// The intersection of two boxes. Its size is negative where they don't overlap; an edge that is NaN in either
// is NaN.
inline mathbase::Box2 cut(const mathbase::Box2& a, const mathbase::Box2& b) {
    return mathbase::Box2(greater(a.x1, b.x1), greater(a.y1, b.y1), lesser(a.x2, b.x2), lesser(a.y2, b.y2));
}

// The same; all zero where they don't overlap or an edge is NaN.
inline mathbase::Box2 cutOrZero(const mathbase::Box2& a, const mathbase::Box2& b) {
    const mathbase::Box2 box = cut(a, b);
    return box.getWidth() >= 0 && box.getHeight() >= 0 ? box : mathbase::Box2();
}

inline mathbase::Box2 shifted(const mathbase::Box2& box, const mathbase::Vector2f& by) {
    return mathbase::Box2(box.x1 + by.x, box.y1 + by.y, box.x2 + by.x, box.y2 + by.y);
}

inline bool holds(const mathbase::Box2& outer, const mathbase::Box2& inner) {
    return inner.x1 >= outer.x1 && inner.y1 >= outer.y1 && inner.x2 <= outer.x2 && inner.y2 <= outer.y2;
}

// The lower edges belong to a box, the upper ones do not.
inline bool isInside(const mathbase::Box2& box, const mathbase::Vector2f& point) {
    return point.x >= box.x1 && point.x < box.x2 && point.y >= box.y1 && point.y < box.y2;
}

} // namespace zentrak::panorama
