#include "am_imagecodectga.h"

#include "ztk_system.h"

namespace zentrak::am {

void ImageCodecTGA::decodeImage(const unsigned char*, unsigned long, ImageObject&) {
    throw Exception("[ImageCodec] TGA-reader is not done yet!");
}

std::string ImageCodecTGA::getFormatString() const {
    return "tga";
}

} // namespace zentrak::am
