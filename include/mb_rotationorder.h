// The order in which the three rotations of an Euler triple are multiplied.
#pragma once

namespace zentrak::mathbase {

struct RotationOrder {
    // Each spells the product from left to right: XYZ is the rotation about x times that about y times that
    // about z, so that z turns a vector first.
    enum Order { XYZ = 0, XZY = 1, YXZ = 2, ZXY = 3, YZX = 4, ZYX = 5 };

    int value = XYZ; // an Order; any other value fails where it is used

    constexpr RotationOrder() = default;
    constexpr RotationOrder(Order order) : value(order) {}

    constexpr bool operator==(const RotationOrder& other) const = default;
};

} // namespace zentrak::mathbase
