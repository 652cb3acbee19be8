#include "glfw2_keys.h"

#include "glfw2.h"

namespace {

// Defined before GLFW 3's header is included, which has macros of the same names.
constexpr int Unknown = zentrak::glfw2::GLFW_KEY_UNKNOWN;
constexpr int FirstSpecial = zentrak::glfw2::GLFW_KEY_ESC;
constexpr int LastSpecial = zentrak::glfw2::GLFW_KEY_LAST;

} // namespace

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <algorithm>
#include <iterator>

namespace zentrak::glfw2 {
namespace {

// GLFW 3's names of the keys from 257 to 318, in the order of those codes.
// clang-format off
constexpr int specialKeys[] = {
    GLFW_KEY_ESCAPE,
    GLFW_KEY_F1,      GLFW_KEY_F2,      GLFW_KEY_F3,      GLFW_KEY_F4,      GLFW_KEY_F5,
    GLFW_KEY_F6,      GLFW_KEY_F7,      GLFW_KEY_F8,      GLFW_KEY_F9,      GLFW_KEY_F10,
    GLFW_KEY_F11,     GLFW_KEY_F12,     GLFW_KEY_F13,     GLFW_KEY_F14,     GLFW_KEY_F15,
    GLFW_KEY_F16,     GLFW_KEY_F17,     GLFW_KEY_F18,     GLFW_KEY_F19,     GLFW_KEY_F20,
    GLFW_KEY_F21,     GLFW_KEY_F22,     GLFW_KEY_F23,     GLFW_KEY_F24,     GLFW_KEY_F25,
    GLFW_KEY_UP,            GLFW_KEY_DOWN,          GLFW_KEY_LEFT,          GLFW_KEY_RIGHT,
    GLFW_KEY_LEFT_SHIFT,    GLFW_KEY_RIGHT_SHIFT,   GLFW_KEY_LEFT_CONTROL,  GLFW_KEY_RIGHT_CONTROL,
    GLFW_KEY_LEFT_ALT,      GLFW_KEY_RIGHT_ALT,
    GLFW_KEY_TAB,           GLFW_KEY_ENTER,         GLFW_KEY_BACKSPACE,
    GLFW_KEY_INSERT,        GLFW_KEY_DELETE,        GLFW_KEY_PAGE_UP,       GLFW_KEY_PAGE_DOWN,
    GLFW_KEY_HOME,          GLFW_KEY_END,
    GLFW_KEY_KP_0,    GLFW_KEY_KP_1,    GLFW_KEY_KP_2,    GLFW_KEY_KP_3,    GLFW_KEY_KP_4,
    GLFW_KEY_KP_5,    GLFW_KEY_KP_6,    GLFW_KEY_KP_7,    GLFW_KEY_KP_8,    GLFW_KEY_KP_9,
    GLFW_KEY_KP_DIVIDE,     GLFW_KEY_KP_MULTIPLY,   GLFW_KEY_KP_SUBTRACT,   GLFW_KEY_KP_ADD,
    GLFW_KEY_KP_DECIMAL,    GLFW_KEY_KP_EQUAL,      GLFW_KEY_KP_ENTER,
};
// clang-format on
static_assert(std::size(specialKeys) == LastSpecial - FirstSpecial + 1);

// The first character of a UTF-8 string if it is in Latin-1, otherwise 0.
unsigned firstOfLatin1(const char* text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return first;
    if (first != 0xC2 && first != 0xC3)
        return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    return (second & 0xC0) == 0x80 ? (first & 0x03u) << 6 | (second & 0x3Fu) : 0;
}

} // namespace

int keyCode(int position, const char* name) {
    const int* const special = std::find(std::begin(specialKeys), std::end(specialKeys), position);
    if (special != std::end(specialKeys))
        return FirstSpecial + int(special - specialKeys);
    if (position == GLFW_KEY_SPACE)
        return GLFW_KEY_SPACE;
    // Keys that type something are below 256, those on a US keyboard are ASCII.
    if (position < 32 || position > 255)
        return Unknown;
    const int code = name ? characterCode(firstOfLatin1(name)) : Unknown;
    if (code != Unknown)
        return code;
    return position < 127 ? position : Unknown;
}

int characterCode(unsigned character) {
    const bool lower =
        (character >= 'a' && character <= 'z') ||
        (character >= 0xE0 && character <= 0xFE && character != 0xF7); // except the division sign
    if (lower)
        return int(character - 32);
    const bool printable = (character >= 32 && character <= 126) || (character >= 160 && character <= 255);
    return printable ? int(character) : Unknown;
}

} // namespace zentrak::glfw2
