// A rotation as three angles and their order.
#pragma once

#include "mb_rotationorder.h"
#include "mb_vector3.h"

namespace zentrak::mathbase {

struct Euler {
    Vector3f      angles; // radians, about x, y and z
    RotationOrder order;

    Euler() = default;
    explicit Euler(const Vector3f& angles_, RotationOrder order_ = RotationOrder::XYZ)
        : angles(angles_), order(order_) {}
    Euler(float x, float y, float z, RotationOrder order_ = RotationOrder::XYZ)
        : angles(x, y, z), order(order_) {}
};

typedef Euler Eulerf;

} // namespace zentrak::mathbase
