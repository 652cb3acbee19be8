// A camera that orbits a point.
#pragma once

#include "mb_vector3.h"

#include <algorithm>
#include <cmath>

namespace zentrak::view {

struct Orbit {
    mathbase::Vector3f target{0, 0, 0};
    float distance = 5;
    float yaw = 0.5f;   // radians, about y, from +z
    float pitch = 0.4f; // radians, upward

    mathbase::Vector3f getBack() const { // from the target to the eye, unit
        return mathbase::Vector3f(sinf(yaw) * cosf(pitch), sinf(pitch), cosf(yaw) * cosf(pitch));
    }
    mathbase::Vector3f getEye() const { return target + getBack() * distance; }

    void turn(float dx, float dy) { // pixels
        yaw -= dx * 0.008f;
        pitch = std::clamp(pitch + dy * 0.008f, -1.55f, 1.55f);
    }

    // By pixels; a pixel is `size` units at the target.
    void pan(float dx, float dy, float size) {
        const mathbase::Vector3f right(cosf(yaw), 0, -sinf(yaw));
        const mathbase::Vector3f up = getBack().cross(right);
        target = target - right * (dx * size) + up * (dy * size);
    }

    void zoom(float steps) { distance = std::clamp(distance * powf(0.88f, steps), 1e-4f, 1e7f); }

    // Puts the eye at `eye`, looking along the unit vector `ahead` at a target `away` units from there.
    void standAt(const mathbase::Vector3f& eye, const mathbase::Vector3f& ahead, float away) {
        distance = away;
        target = eye + ahead * away;
        pitch = std::clamp(asinf(std::clamp(-ahead.y, -1.0f, 1.0f)), -1.55f, 1.55f);
        yaw = atan2f(-ahead.x, -ahead.z);
    }
};

} // namespace zentrak::view
