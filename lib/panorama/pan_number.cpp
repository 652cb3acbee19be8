#include "pan_number.h"

#include <cstdlib>
#include <locale.h>

namespace zentrak::panorama {

double toNumber(const std::string& text) {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr); // lives as long as the program
    return plain ? strtod_l(text.c_str(), nullptr, plain) : atof(text.c_str());
}

void readNumber(const std::string& text, float& value) {
    if (text.empty())
        return;
    const float number = float(toNumber(text));
    if (std::isfinite(number))
        value = number;
}

} // namespace zentrak::panorama
