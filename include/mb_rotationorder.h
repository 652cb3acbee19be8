// In which order the three angles of an Euler rotation apply.
#pragma once

namespace zentrak::mathbase {

struct RotationOrder {
    enum Order : int { XYZ = 0, XZY = 1, YXZ = 2, ZXY = 3, YZX = 4, ZYX = 5 };

    int value = XYZ; // an enumerator of Order

    RotationOrder() = default;
    RotationOrder(int order) : value(order) {}
};

} // namespace zentrak::mathbase
