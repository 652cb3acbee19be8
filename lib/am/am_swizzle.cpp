#include "am_swizzle.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace zentrak::am {

static_assert(std::endian::native == std::endian::little, "pixels are taken as words, first byte lowest");

namespace {

uint32_t load(const unsigned char* from) {
    uint32_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

void store(unsigned char* to, uint32_t word) {
    std::memcpy(to, &word, sizeof word);
}

} // namespace

void swapRedBlue(unsigned char* __restrict to, const unsigned char* __restrict from, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        uint32_t pixel = load(from + i * 4);
        store(to + i * 4, (pixel & 0xff00ff00u) | ((pixel & 0xffu) << 16) | ((pixel >> 16) & 0xffu));
    }
}

void expandRgb(unsigned char* __restrict to, const unsigned char* __restrict from, size_t count) {
    if (count == 0)
        return;
    // A word holds a pixel and the first byte of the next one, which the last pixel lacks.
    for (size_t i = 0; i + 1 < count; ++i)
        store(to + i * 4, (__builtin_bswap32(load(from + i * 3)) >> 8) | 0xff000000u);
    const unsigned char* last = from + (count - 1) * 3;
    store(to + (count - 1) * 4,
          uint32_t(last[2]) | uint32_t(last[1]) << 8 | uint32_t(last[0]) << 16 | 0xff000000u);
}

void convertCmyk(unsigned char* __restrict to, const unsigned char* __restrict from, size_t count,
                 bool inverted) {
    const unsigned flip = inverted ? 0 : 255; // from here on 255 is no ink
    for (size_t i = 0; i < count; ++i) {
        unsigned light = from[i * 4 + 3] ^ flip;
        for (size_t c = 0; c < 3; ++c)
            to[i * 4 + 2 - c] = static_cast<unsigned char>(((from[i * 4 + c] ^ flip) * light + 127) / 255);
        to[i * 4 + 3] = 255;
    }
}

} // namespace zentrak::am
