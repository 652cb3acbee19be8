// Reads any bytes as a PNG file: as they are, and with the checksums fixed, without which most mutations
// would be rejected early. What loads must survive writing and loading again.

#include "am_imagecodecpng.h"
#include "image_fuzz.h"

#include <cstring>
#include <memory>
#include <vector>
#include <zlib.h>

using namespace zentrak::am;

namespace {

size_t bigEndian(const uint8_t* at) {
    return size_t(at[0]) << 24 | size_t(at[1]) << 16 | size_t(at[2]) << 8 | size_t(at[3]);
}

// A chunk is its length, its type, its data and the checksum of the last two.
void repairChecksums(std::vector<uint8_t>& file) {
    for (size_t at = 8; at + 12 <= file.size();) {
        size_t length = bigEndian(&file[at]);
        if (length > file.size() - at - 12)
            return;
        unsigned long sum = crc32_z(0, &file[at + 4], length + 4);
        at += 8 + length;
        for (int shift : {24, 16, 8, 0})
            file[at++] = uint8_t(sum >> shift);
    }
}

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
