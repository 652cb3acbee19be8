// Three rotation angles and the order to take them in.
#pragma once

#include "mb_rotationorder.h"
#include "mb_vector3.h"

namespace zentrak::mathbase {

struct Euler {
    Vector3f angles; // radians about x, y and z
    RotationOrder order;

    constexpr Euler() = default;
    constexpr Euler(const Vector3f& someAngles, RotationOrder anOrder = RotationOrder::XYZ)
        : angles(someAngles), order(anOrder) {}
    constexpr Euler(float x, float y, float z, RotationOrder anOrder = RotationOrder::XYZ)
        : angles(x, y, z), order(anOrder) {}
};

using Eulerf = Euler;

} // namespace zentrak::mathbase
