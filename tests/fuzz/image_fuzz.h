// Shared by the image targets.
#pragma once

#include "am_imagecodec.h"
#include "ztk_system.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>
#include <zlib.h>

namespace zentrak::am {

// Decodes any bytes. The image must be complete, to its last pixel, or as empty as before; returns true if
// complete.
inline bool decodesWhole(ImageCodec& codec, const uint8_t* data, size_t size, ImageObject& image) {
    try {
        codec.decodeImage(data, size, image);
    } catch (const Exception&) {
        if (image.getWidth() != 0 || image.getHeight() != 0 || image.getData())
            abort();
        return false;
    }
    size_t pixels = size_t(image.getWidth()) * size_t(image.getHeight());
    if (image.getWidth() <= 0 || image.getHeight() <= 0 || pixels > ImageCodec::MAX_PIXELS)
        abort();
    volatile unsigned sum = 0;
    for (size_t i : {size_t(0), pixels * 2, pixels * 4 - 1})
        sum = sum + image.getData()[i];
    return true;
}

inline size_t bigEndian(const uint8_t* at) {
    return size_t(at[0]) << 24 | size_t(at[1]) << 16 | size_t(at[2]) << 8 | size_t(at[3]);
}

// Fixes the checksums of a PNG file, without which most mutations would be rejected early. A chunk is its
// length, its type, its data and the checksum of the last two.
inline void repairChecksums(std::vector<uint8_t>& file) {
    for (size_t at = 8; at + 12 <= file.size();) {
        size_t length = bigEndian(&file[at]);
        if (length > file.size() - at - 12)
            return;
        unsigned long sum = crc32_z(0, &file[at + 4], length + 4);
        at += 8 + length;
        for (int shift : {24, 16, 8, 0})
            file[at++] = uint8_t(sum >> shift);
    }
}

} // namespace zentrak::am
