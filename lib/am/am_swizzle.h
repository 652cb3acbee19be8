// The order of the bytes of a pixel, in files and in images. A file of its own, since it is worth being built
// for speed: whole pixels are moved as words, which the compiler turns into vectors.
#pragma once

#include <cstddef>

namespace zentrak::am {

// Copies `count` pixels of 4 bytes and swaps the first and the third byte of each: RGBA to BGRA and back.
// The two may not overlap.
void swapRedBlue(unsigned char* to, const unsigned char* from, size_t count);

// Copies `count` pixels of 3 bytes, red first, to pixels of 4 bytes, blue first, with alpha 255. No overlap.
void expandRgb(unsigned char* to, const unsigned char* from, size_t count);

// Copies `count` pixels of cyan, magenta, yellow and black to blue first, alpha 255. 255 is no ink if
// `inverted`, and full ink otherwise. No overlap.
void convertCmyk(unsigned char* to, const unsigned char* from, size_t count, bool inverted);

} // namespace zentrak::am
