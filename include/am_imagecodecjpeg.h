// JPEG, read only: colour, grayscale and CMYK, all with alpha 255.
#pragma once

#include "am_imagecodec.h"

namespace zentrak::am {

class ImageCodecJPEG : public ImageCodec {
public:
    // Throws "Internal jpeglib error; %s" with the library's text, for its warnings as for its errors.
    void decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) override;
    std::string getFormatString() const override; // "jpg"
};

} // namespace zentrak::am
