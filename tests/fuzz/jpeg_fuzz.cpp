// Reads any bytes as a JPEG file.

#include "am_imagecodecjpeg.h"
#include "image_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zentrak::am::ImageCodecJPEG codec;
    zentrak::am::ImageObject image;
    decodesWhole(codec, data, size, image);
    return 0;
}
