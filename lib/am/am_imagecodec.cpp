#include "am_imagecodec.h"

#include "ztk_system.h"

namespace zentrak::am {

ImageCodec::~ImageCodec() = default;

bool ImageCodec::encodeImage(unsigned char**, unsigned long*, ImageObject&) {
    return false;
}

bool ImageCodec::canWrite() const {
    return false;
}

void ImageCodec::checkSize(unsigned long width, unsigned long height) {
    if (height != 0 && width > MAX_PIXELS / height)
        throw Exception("[ImageCodec] %lu by %lu pixels are too many, %lu is the most", width, height,
                        MAX_PIXELS);
}

} // namespace zentrak::am
