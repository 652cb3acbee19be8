// Shared by the image targets.
#pragma once

#include "am_imagecodec.h"
#include "ztk_system.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

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

} // namespace zentrak::am
