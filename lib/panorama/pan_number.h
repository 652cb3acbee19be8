// Numbers in layout files, and coordinates between pixels.
#pragma once

#include "ztk_text.h"

#include <cmath>
#include <string>

namespace zentrak::panorama {

// Sets `value` to the number in `text`, unless that is empty or the number is not finite.
void readNumber(const std::string& text, float& value);

// Whether a coordinate lies on a pixel edge.
inline bool isWhole(float value) {
    return std::floor(value) == value;
}

// To the nearest pixel edge, halves up.
inline float toPixel(float value) {
    return std::floor(value + 0.5f);
}

} // namespace zentrak::panorama
