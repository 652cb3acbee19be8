// PNG with 8 bits a channel, as RGB or RGBA, in both directions.
#pragma once

#include "am_imagecodec.h"

namespace zentrak::am {

class ImageCodecPNG : public ImageCodec {
public:
    // Throws "[loadPNG] Not a png-file! Header is wrong!", "[loadPNG] Could not setup libpng (pngstruct)!",
    // "[loadPNG] Could not setup libpng (pnginfo)!", "[loadPNG] Error when decoding png-file!", "[loadPNG] No
    // support for grayscale images yet" and "[loadPNG] Bad color format of image (type %d, %d bits per
    // channel)".
    void decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) override;

    bool encodeImage(unsigned char** data, unsigned long* length, ImageObject& image) override; // RGBA
    std::string getFormatString() const override;                                               // "png"
    bool canWrite() const override;                                                             // true
};

} // namespace zentrak::am
