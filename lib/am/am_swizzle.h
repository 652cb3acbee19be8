// Byte orders of pixels, in files and in images. A unit of its own because it is always built optimised:
// whole pixels move as words, which the compiler vectorises.
#pragma once

#include <cstddef>

namespace zentrak::am {

// Copies `count` pixels of 4 bytes and swaps the first and the third byte of each: RGBA to BGRA and back. No
// overlap.
void swapRedBlue(unsigned char* to, const unsigned char* from, size_t count);

// Expands `count` pixels from RGB to BGRA with alpha 255. No overlap.
void expandRgb(unsigned char* to, const unsigned char* from, size_t count);

// Converts `count` pixels from CMYK to BGRA with alpha 255. No ink is 255 if `inverted`, otherwise 0. No
// overlap.
void convertCmyk(unsigned char* to, const unsigned char* from, size_t count, bool inverted);

} // namespace zentrak::am
