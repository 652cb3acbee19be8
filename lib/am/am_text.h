// Letters of names.
#pragma once

#include <string>

namespace zentrak::am {

// A to Z only, whatever the locale.
inline std::string toLower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = char(c - 'A' + 'a');
    return text;
}

} // namespace zentrak::am
