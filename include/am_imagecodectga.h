// Holds the place of a TGA reader, so that a failure says so.
#pragma once

#include "am_imagecodec.h"

namespace zentrak::am {

class ImageCodecTGA : public ImageCodec {
public:
    // Throws "[ImageCodec] TGA-reader is not done yet!".
    void decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) override;
    std::string getFormatString() const override; // "tga"
};

} // namespace zentrak::am
