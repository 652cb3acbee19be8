// Numbers in texts, the same whatever the locale.
#pragma once

#include <string>

namespace zentrak {

// As atof in the "C" locale: the number at the start of the text, 0 for anything that isn't a number.
double toNumber(const std::string& text);

// The value of a hexadecimal digit of either case; 0 for any other byte.
int hexDigit(char c);

} // namespace zentrak
