// What a codec can do: turn the bytes of an image file into pixels, and perhaps back.
#pragma once

#include "am_image.h"

#include <string>

namespace zentrak::am {

class ImageCodec {
public:
    ImageCodec() = default;
    ImageCodec(const ImageCodec&) = delete;
    ImageCodec& operator=(const ImageCodec&) = delete;
    virtual ~ImageCodec();

    // Gives `image` the size and the pixels in `data`. Throws zentrak::Exception, and leaves the image as it
    // is, if the bytes are no whole image of a supported kind.
    virtual void decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) = 0;

    // Encodes the pixels of a private image; the caller owns `*data`, made with new[]. False, and nothing
    // touched, if that can't be done. Throws "ImageObbject::getWriteData, Access not allowed!" for a cached
    // one.
    virtual bool encodeImage(unsigned char** data, unsigned long* length, ImageObject& image);

    virtual std::string getFormatString() const = 0; // the extension, lower-case
    virtual bool canWrite() const;                   // false

    // No picture has more pixels than this: 16384 by 16384, whatever its header claims.
    static constexpr unsigned long MAX_PIXELS = 1UL << 28;
};

} // namespace zentrak::am
