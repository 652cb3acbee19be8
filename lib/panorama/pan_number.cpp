#include "pan_number.h"

namespace zentrak::panorama {

void readNumber(const std::string& text, float& value) {
    if (text.empty())
        return;
    const float number = float(toNumber(text));
    if (std::isfinite(number))
        value = number;
}

} // namespace zentrak::panorama
