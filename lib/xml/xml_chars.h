// Character classes of the dialect.
#pragma once

#include <array>
#include <cstdint>

namespace zentrak::xml {

enum CharKind : uint8_t {
    CHAR_WORD = 1,        // ASCII letter or digit
    CHAR_SPACE = 2,       // space, tab, carriage return, line feed
    CHAR_COLON = 4,       // also part of an element's name
    CHAR_GREATER = 8,     // also part of a processing instruction's name
    CHAR_VALUE_STOP = 16, // ends a run of plain bytes in a quoted value
    CHAR_TEXT_STOP = 32,  // the same for character data
};

inline constexpr std::array<uint8_t, 256> charKinds = [] {
    std::array<uint8_t, 256> kinds{};
    for (int c = 0; c < 256; ++c) {
        const bool word = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        const bool control = c == '\n' || c == '\r' || c == '\t';
        kinds[c] = uint8_t((word ? CHAR_WORD : 0) | (control || c == ' ' ? CHAR_SPACE : 0) |
                           (c == ':' ? CHAR_COLON : 0) | (c == '>' ? CHAR_GREATER : 0) |
                           (control || c == '"' || c == '\'' ? CHAR_VALUE_STOP : 0) |
                           (control || c == '<' ? CHAR_TEXT_STOP : 0));
    }
    return kinds;
}();

inline bool isKind(char c, int kinds) {
    return (charKinds[static_cast<unsigned char>(c)] & kinds) != 0;
}

} // namespace zentrak::xml
