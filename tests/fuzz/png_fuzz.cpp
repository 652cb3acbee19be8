// Reads any bytes as a PNG file: as they are, and with the checksums fixed, without which most mutations
// would be rejected early. What loads must survive writing and loading again.

#include "am_imagecodecpng.h"
#include "image_fuzz.h"

#include <cstring>
#include <memory>
#include <vector>

using namespace zentrak::am;

namespace {

void check(const uint8_t* data, size_t size) {
    ImageCodecPNG codec;
    ImageObject image, back;
    if (!decodesWhole(codec, data, size, image))
        return;
    unsigned char* bytes = nullptr;
    unsigned long length = 0;
    if (!codec.encodeImage(&bytes, &length, image))
        abort();
    std::unique_ptr<unsigned char[]> file(bytes);
    if (!decodesWhole(codec, bytes, length, back) || back.getWidth() != image.getWidth() ||
        back.getHeight() != image.getHeight() ||
        std::memcmp(back.getData(), image.getData(),
                    size_t(image.getWidth()) * size_t(image.getHeight()) * 4) != 0)
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    check(data, size);
    std::vector<uint8_t> repaired(data, data + size);
    repairChecksums(repaired);
    check(repaired.data(), repaired.size());
    return 0;
}
