// Stands in for a TGA reader, so that the failure says that there is none.
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
