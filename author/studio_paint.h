// The colours of the studio.
#pragma once

#include "mb_box2.h"
#include "mb_vector2.h"
#include "mb_vector4.h"
#include "pan_box.h"
#include "pan_paint.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace zentrak::studio {

using mathbase::Box2;
using mathbase::Vector2f;
using mathbase::Vector4f;
using panorama::isInside;
using panorama::Paint;

namespace color {
inline const Vector4f ground(0.105f, 0.110f, 0.125f, 1);
inline const Vector4f lane(0.135f, 0.141f, 0.160f, 1);
inline const Vector4f laneOdd(0.150f, 0.156f, 0.177f, 1);
inline const Vector4f panel(0.170f, 0.177f, 0.200f, 1);
inline const Vector4f raised(0.235f, 0.245f, 0.275f, 1);
inline const Vector4f edge(0.060f, 0.062f, 0.070f, 1);
inline const Vector4f ink(0.88f, 0.89f, 0.92f, 1);
inline const Vector4f dim(0.58f, 0.60f, 0.66f, 1);
inline const Vector4f faint(0.40f, 0.42f, 0.47f, 1);
inline const Vector4f accent(1.00f, 0.78f, 0.30f, 1);
inline const Vector4f selected(1.00f, 1.00f, 1.00f, 1);
inline const Vector4f now(1.00f, 0.45f, 0.25f, 1);
inline const Vector4f wave(0.34f, 0.48f, 0.62f, 1);
inline const Vector4f curve(0.95f, 0.85f, 0.35f, 1);
inline const Vector4f bad(0.55f, 0.12f, 0.12f, 0.95f);
inline const Vector4f loop(0.30f, 0.55f, 0.35f, 0.25f);
inline const Vector4f bookmark(0.45f, 0.80f, 0.95f, 1);
} // namespace color

inline Vector4f shade(const Vector4f& color, float factor, float alpha = 1) {
    return Vector4f(std::min(1.0f, color.x * factor), std::min(1.0f, color.y * factor),
                    std::min(1.0f, color.z * factor), alpha);
}

// A quiet colour for each name, always the same.
inline Vector4f colorOf(const std::string& name) {
    unsigned hash = 2166136261u;
    for (const char c : name)
        hash = (hash ^ unsigned(static_cast<unsigned char>(c))) * 16777619u;
    // By the golden ratio: names that are alike come to lie apart.
    const float hue = float(hash * 2654435769u) / 4294967296.0f * 6;
    const auto channel = [hue](float offset) {
        const float k = std::fmod(hue + offset, 6.0f);
        return 0.46f - 0.20f * std::max(0.0f, std::min({k, 4.0f - k, 1.0f}));
    };
    return Vector4f(channel(5), channel(3), channel(1), 1);
}

} // namespace zentrak::studio
