// Turns the bytes of an image file into pixels, and perhaps back.
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
    // is, if the bytes aren't a whole image of a supported kind.
    virtual void decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) = 0;

    // Encodes the pixels of a private image; the caller owns `*data`, made with new[]. False, with nothing
    // changed, if that can't be done. Throws "ImageObbject::getWriteData, Access not allowed!" for a cached
    // one.
    virtual bool encodeImage(unsigned char** data, unsigned long* length, ImageObject& image);

    virtual std::string getFormatString() const = 0; // the extension, lower-case
    virtual bool canWrite() const;                   // false

    // The most pixels of a picture, for example 8192 by 8192.
    static constexpr unsigned long MAX_PIXELS = 1UL << 26;

protected:
    // Throws "[ImageCodec] %lu by %lu pixels are too many, %lu is the most" for more than MAX_PIXELS.
    static void checkSize(unsigned long width, unsigned long height);
};

} // namespace zentrak::am
