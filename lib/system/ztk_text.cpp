#include "ztk_text.h"

#include <cstdlib>
#include <locale.h>

namespace zentrak {

double toNumber(const std::string& text) {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr); // never freed
    return plain ? strtod_l(text.c_str(), nullptr, plain) : atof(text.c_str());
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return 0;
}

} // namespace zentrak
