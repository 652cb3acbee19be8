#include "am_imagecodec.h"

namespace zentrak::am {

ImageCodec::~ImageCodec() = default;

bool ImageCodec::encodeImage(unsigned char**, unsigned long*, ImageObject&) {
    return false;
}

bool ImageCodec::canWrite() const {
    return false;
}

} // namespace zentrak::am
