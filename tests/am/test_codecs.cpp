#include "../../lib/am/am_swizzle.h"
#include "am_imagecodecjpeg.h"
#include "am_imagecodecpng.h"
#include "am_imagecodectga.h"
#include "am_imagemanager.h"
#include "am_testing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>
#include <zlib.h>

#include <jpeglib.h>

using namespace zentrak::test;
using zentrak::am::ImageCodec;
using zentrak::am::ImageCodecJPEG;
using zentrak::am::ImageCodecPNG;
using zentrak::am::ImageCodecTGA;
using zentrak::am::ImageManager;
using zentrak::am::ImageObject;

namespace {

const char cHeader[] = "[loadPNG] Not a png-file! Header is wrong!";
const char cDecoding[] = "[loadPNG] Error when decoding png-file!";
const char cGray[] = "[loadPNG] No support for grayscale images yet";
const char cPremature[] = "Internal jpeglib error; Premature end of JPEG file";

const unsigned char* asBytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// Decodes from an array of exactly that size, so that sanitizers see every byte read past it.
void decode(ImageCodec&& codec, const std::string& bytes, ImageObject& image) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size()]);
    if (!bytes.empty())
        std::memcpy(exact.get(), bytes.data(), bytes.size());
    codec.decodeImage(exact.get(), bytes.size(), image);
}

// The exception text for these bytes; in any case the image must be unchanged.
template <class Codec>
std::string refusal(const std::string& bytes) {
    ImageObject image;
    std::string text = thrownBy([&] { decode(Codec(), bytes, image); });
    if (text != "(nothing)") {
        EXPECT_EQ(image.getWidth(), 0);
        EXPECT_EQ(image.getData(), nullptr);
    }
    return text;
}

void expectFixture(const ImageObject& image, bool alpha, const std::string& name) {
    ASSERT_EQ(image.getWidth(), cFixtureWidth) << name;
    ASSERT_EQ(image.getHeight(), cFixtureHeight) << name;
    for (int y = 0; y < cFixtureHeight; ++y)
        for (int x = 0; x < cFixtureWidth; ++x)
            ASSERT_EQ(pixel(image, x, y), fixturePixel(x, y, alpha)) << name << " at " << x << ", " << y;
}

// The largest difference of a colour channel from `expected`; alpha must be 255.
int distance(const ImageObject& image, unsigned (*expected)(int x, int y)) {
    EXPECT_EQ(image.getWidth(), cFixtureWidth);
    EXPECT_EQ(image.getHeight(), cFixtureHeight);
    int most = 0;
    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x) {
            unsigned is = pixel(image, x, y), should = expected(x, y);
            EXPECT_EQ(is >> 24, 255u);
            for (int shift : {0, 8, 16})
                most = std::max(most, std::abs(int(is >> shift & 255) - int(should >> shift & 255)));
        }
    return most;
}

unsigned fixtureColour(int x, int y) {
    return fixturePixel(x, y, false);
}

unsigned fixtureGray(int x, int y) {
    unsigned p = fixturePixel(x, y, false);
    double light = 0.2126 * (p >> 16 & 255) + 0.7152 * (p >> 8 & 255) + 0.0722 * (p & 255);
    unsigned v = unsigned(std::lround(light));
    return v << 16 | v << 8 | v;
}

// Patches the width and height of a PNG file and fixes the checksum.
std::string withPngSize(std::string bytes, unsigned width, unsigned height) {
    for (int i = 0; i < 4; ++i) {
        bytes[size_t(16 + i)] = char(width >> (24 - 8 * i));
        bytes[size_t(20 + i)] = char(height >> (24 - 8 * i));
    }
    unsigned long sum = crc32(0, asBytes(bytes) + 12, 17);
    for (int i = 0; i < 4; ++i)
        bytes[size_t(29 + i)] = char(sum >> (24 - 8 * i));
    return bytes;
}

// Patches the width and height in the frame header of a JPEG file.
std::string withJpegSize(std::string bytes, unsigned width, unsigned height) {
    size_t at = std::min(bytes.find("\xff\xc0"), bytes.find("\xff\xc2"));
    EXPECT_NE(at, std::string::npos);
    bytes[at + 5] = char(height >> 8);
    bytes[at + 6] = char(height);
    bytes[at + 7] = char(width >> 8);
    bytes[at + 8] = char(width);
    return bytes;
}

// A picture filled with `value`, with this many components, written by the library itself. `tune` changes its
// settings.
std::string makeJpeg(
    int width, int height, int components, J_COLOR_SPACE space, int value,
    const std::function<void(jpeg_compress_struct&)>& tune = [](jpeg_compress_struct&) {}) {
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors;
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    unsigned char* bytes = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&cinfo, &bytes, &length);
    cinfo.image_width = JDIMENSION(width);
    cinfo.image_height = JDIMENSION(height);
    cinfo.input_components = components;
    cinfo.in_color_space = space;
    jpeg_set_defaults(&cinfo);
    tune(cinfo);
    jpeg_start_compress(&cinfo, TRUE);
    std::vector<unsigned char> row(size_t(width * components), static_cast<unsigned char>(value));
    while (cinfo.next_scanline < cinfo.image_height) {
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&cinfo, rows, 1);
    }
    jpeg_finish_compress(&cinfo);
    jpeg_destroy_compress(&cinfo);
    std::string file(reinterpret_cast<char*>(bytes), length);
    free(bytes);
    return file;
}

// The peak memory of this process since it was last reset, in KiB.
long residentPeak() {
    std::string status = readFile("/proc/self/status");
    size_t at = status.find("VmHWM:");
    return at == std::string::npos ? 0 : std::atol(status.c_str() + at + 6);
}

void resetResidentPeak() {
    writeFile("/proc/self/clear_refs", "5");
}

// Captures standard error while it lives.
class CaptureStderr {
public:
    CaptureStderr() { ::testing::internal::CaptureStderr(); }
    std::string text() { return ::testing::internal::GetCapturedStderr(); }
};

} // namespace

// ---- PNG, reading

TEST(Png, RgbLoadsWithFullAlpha) {
    for (const char* name : {"rgb.png", "rgb-interlaced.png"}) {
        ImageObject image;
        decode(ImageCodecPNG(), fixture(name), image);
        expectFixture(image, false, name);
    }
}

TEST(Png, RgbaLoads) {
    for (const char* name : {"rgba.png", "rgba-interlaced.png"}) {
        ImageObject image;
        decode(ImageCodecPNG(), fixture(name), image);
        expectFixture(image, true, name);
    }
}

TEST(Png, DecodingReplacesWhatTheImageHeld) {
    ImageObject image;
    image.resize(100, 100);
    decode(ImageCodecPNG(), fixture("rgba.png"), image);
    expectFixture(image, true, "rgba.png");
}

TEST(Png, BytesAfterTheEndAreIgnored) {
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("rgba.png") + "and more"), "(nothing)");
}

TEST(Png, SevenBytesThrowTheHeaderText) {
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("rgb.png").substr(0, 7)), cHeader);
    EXPECT_EQ(refusal<ImageCodecPNG>(""), cHeader);
    EXPECT_EQ(refusal<ImageCodecPNG>(std::string(8, 'x')), cHeader);
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("baseline.jpg")), cHeader);
}

TEST(Png, GrayscaleIsRefused) {
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("gray.png")), cGray);
}

TEST(Png, AnIndexedPngIsRefused) {
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("palette.png")),
              "[loadPNG] Bad color format of image (type 3, 8 bits per channel)");
}

TEST(Png, SixteenBitsAChannelAreRefused) {
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("rgb16.png")),
              "[loadPNG] Bad color format of image (type 2, 16 bits per channel)");
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("rgba16.png")),
              "[loadPNG] Bad color format of image (type 6, 16 bits per channel)");
}

TEST(Png, GrayOfOtherKindsIsRefusedByTypeAndDepth) {
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("gray1.png")),
              "[loadPNG] Bad color format of image (type 0, 1 bits per channel)");
    EXPECT_EQ(refusal<ImageCodecPNG>(fixture("gray-alpha.png")),
              "[loadPNG] Bad color format of image (type 4, 8 bits per channel)");
}

TEST(Png, TruncatedAtEveryByteItThrowsTheDecodingText) {
    CaptureStderr errors;
    for (const char* name : {"rgb.png", "rgba-interlaced.png", "palette.png"}) {
        const std::string bytes = fixture(name);
        for (size_t length = 0; length < bytes.size(); ++length)
            ASSERT_EQ(refusal<ImageCodecPNG>(bytes.substr(0, length)), length < 8 ? cHeader : cDecoding)
                << name << " " << length;
    }
    EXPECT_EQ(errors.text(), ""); // the library's own messages are suppressed
}

TEST(Png, WithAnyByteChangedItLoadsOrIsRefusedAndTakesNoMemory) {
    CaptureStderr errors;
    resetResidentPeak();
    const long before = residentPeak();
    for (const char* name : {"rgba.png", "rgb-interlaced.png"}) {
        const std::string bytes = fixture(name);
        int refused = 0;
        for (size_t i = 0; i < bytes.size(); ++i) {
            std::string damaged = bytes;
            damaged[i] = char(damaged[i] ^ 0x41);
            refused += refusal<ImageCodecPNG>(damaged) != "(nothing)";
        }
        EXPECT_GT(refused, int(bytes.size() / 2)) << name;
    }
#ifdef __SANITIZE_ADDRESS__
    const long most = 256 * 1024; // the sanitizer holds back what is freed
#else
    const long most = 16 * 1024;
#endif
    EXPECT_LT(residentPeak() - before, most);
    EXPECT_EQ(errors.text(), "");
}

std::string tooMany(unsigned width, unsigned height) {
    return "[ImageCodec] " + std::to_string(width) + " by " + std::to_string(height) +
           " pixels are too many, 67108864 is the most";
}

TEST(Png, TooManyPixelsAreRefusedInATextOfTheirOwnAndTakeNoMemory) {
    resetResidentPeak();
    const long before = residentPeak();
    for (const char* name : {"rgba.png", "rgb-interlaced.png"}) {
        for (unsigned size : {0x80000000u, 0x7fffffffu, 1000000u, 16383u, 8193u})
            EXPECT_EQ(refusal<ImageCodecPNG>(withPngSize(fixture(name), size, size)), tooMany(size, size));
        EXPECT_EQ(refusal<ImageCodecPNG>(withPngSize(fixture(name), 0x7fffffff, 1)), tooMany(0x7fffffff, 1));
        EXPECT_EQ(refusal<ImageCodecPNG>(withPngSize(fixture(name), 1, 0x7fffffff)), tooMany(1, 0x7fffffff));
    }
    EXPECT_LT(residentPeak() - before, 16 * 1024);
}

TEST(Png, ASizeThatTheFileCanNotHoldThrowsTheDecodingTextAndTakesNoMemory) {
    resetResidentPeak();
    const long before = residentPeak();
    for (const char* name : {"rgba.png", "rgb-interlaced.png"}) {
        for (unsigned size : {8192u, 5000u})
            EXPECT_EQ(refusal<ImageCodecPNG>(withPngSize(fixture(name), size, size)), cDecoding) << size;
        EXPECT_EQ(refusal<ImageCodecPNG>(withPngSize(fixture(name), 0, 0)), cDecoding);
    }
    EXPECT_LT(residentPeak() - before, 16 * 1024);
}

TEST(Png, AHeaderClaimingAFewMoreRowsIsTruncated) {
    EXPECT_EQ(refusal<ImageCodecPNG>(withPngSize(fixture("rgba.png"), cFixtureWidth, cFixtureHeight + 1)),
              cDecoding);
}

TEST(Png, ThatPacksAsFarAsCanBeLoads) {
    ImageObject image;
    image.resize(4096, 512);
    unsigned char* data = nullptr;
    unsigned long length = 0;
    ASSERT_TRUE(ImageCodecPNG().encodeImage(&data, &length, image));
    std::unique_ptr<unsigned char[]> file(data);
    EXPECT_GT(image.getWidth() * image.getHeight() * 4UL, 900 * length); // close to the maximum ratio
    ImageObject back;
    ImageCodecPNG().decodeImage(data, length, back);
    EXPECT_EQ(back.getWidth(), 4096);
}

// ---- PNG, writing

TEST(Png, EncodedAndDecodedThePixelsAreIdentical) {
    ImageObject image, back;
    image.resize(61, 37);
    for (int i = 0; i < 61 * 37 * 4; ++i)
        image.getWriteData()[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
    unsigned char* data = nullptr;
    unsigned long length = 0;
    ASSERT_TRUE(ImageCodecPNG().encodeImage(&data, &length, image));
    std::unique_ptr<unsigned char[]> file(data);
    ImageCodecPNG().decodeImage(data, length, back);
    ASSERT_EQ(back.getWidth(), 61);
    ASSERT_EQ(back.getHeight(), 37);
    EXPECT_EQ(std::memcmp(image.getData(), back.getData(), 61 * 37 * 4), 0);
}

TEST(Png, AWrittenFileIsReadByTheStockTool) {
    TempDir folder;
    ImageObject image;
    decode(ImageCodecPNG(), fixture("rgba.png"), image);
    unsigned char* data = nullptr;
    unsigned long length = 0;
    ASSERT_TRUE(ImageCodecPNG().encodeImage(&data, &length, image));
    std::unique_ptr<unsigned char[]> file(data);
    writeFile(folder.file("x.png"), std::string(reinterpret_cast<char*>(data), length));
    std::string png = folder.file("x.png"), raw = folder.file("x.rgba");
    auto [status, text] = runCommand("convert '" + png + "' -depth 8 rgba:'" + raw + "'");
    ASSERT_EQ(status, 0) << text;
    std::string rgba = readFile(raw);
    ASSERT_EQ(rgba.size(), size_t(cFixtureWidth * cFixtureHeight * 4));
    for (int i = 0; i < cFixtureWidth * cFixtureHeight; ++i) {
        const unsigned char* p = asBytes(rgba) + i * 4;
        unsigned is = unsigned(p[3]) << 24 | unsigned(p[0]) << 16 | unsigned(p[1]) << 8 | p[2];
        ASSERT_EQ(is, fixturePixel(i % cFixtureWidth, i / cFixtureWidth, true)) << i;
    }
    EXPECT_EQ(data[24], 8);            // bits a channel
    EXPECT_EQ(data[25], 6);            // RGBA
    EXPECT_EQ(data[26] | data[27], 0); // default compression and filter
    EXPECT_EQ(data[28], 0);            // not interlaced
}

TEST(Png, ACachedImageIsNotEncoded) {
    ImageManager manager;
    ImageObject image;
    unsigned char dummy = 0, *data = &dummy;
    unsigned long length = 17;
    image.resize(2, 2);
    image.setManager(&manager);
    EXPECT_EQ(thrownBy([&] { ImageCodecPNG().encodeImage(&data, &length, image); }),
              "ImageObbject::getWriteData, Access not allowed!");
    EXPECT_EQ(data, &dummy);
    EXPECT_EQ(length, 17u);
}

TEST(Png, AnImageWithoutPixelsIsNotEncoded) {
    ImageObject image;
    unsigned char dummy = 0, *data = &dummy;
    unsigned long length = 17;
    EXPECT_FALSE(ImageCodecPNG().encodeImage(&data, &length, image));
    image.resize(5, 0);
    EXPECT_FALSE(ImageCodecPNG().encodeImage(&data, &length, image));
    image.setData(new unsigned char[4], 2000000,
                  1); // wider than the library accepts; checked before the pixels are read
    EXPECT_FALSE(ImageCodecPNG().encodeImage(&data, &length, image));
    EXPECT_EQ(data, &dummy);
    EXPECT_EQ(length, 17u);
}

// ---- JPEG

TEST(Jpeg, BaselineAndProgressiveLoad) {
    for (const char* name : {"baseline.jpg", "progressive.jpg"}) {
        ImageObject image;
        decode(ImageCodecJPEG(), fixture(name), image);
        EXPECT_LE(distance(image, fixtureColour), 6) << name;
    }
}

TEST(Jpeg, SubsampledColourLoads) {
    ImageObject image;
    decode(ImageCodecJPEG(), fixture("subsampled.jpg"), image);
    EXPECT_LE(distance(image, fixtureColour), 12);
}

TEST(Jpeg, GrayscaleLoadsAsGray) {
    ImageObject image;
    decode(ImageCodecJPEG(), fixture("gray.jpg"), image);
    EXPECT_LE(distance(image, fixtureGray), 6);
}

TEST(Jpeg, CmykLoadsAsColour) {
    ImageObject image;
    decode(ImageCodecJPEG(), fixture("cmyk.jpg"), image);
    EXPECT_LE(distance(image, fixtureColour), 12);
}

TEST(Jpeg, OtherNumbersOfComponentsAreRefused) {
    EXPECT_EQ(refusal<ImageCodecJPEG>(makeJpeg(16, 16, 2, JCS_UNKNOWN, 100)),
              "Internal jpeglib error; Unsupported color conversion request");
}

TEST(Jpeg, ArithmeticCodingLoads) {
    ImageObject image;
    decode(ImageCodecJPEG(),
           makeJpeg(2048, 2048, 1, JCS_GRAYSCALE, 200, [](auto& cinfo) { cinfo.arith_code = TRUE; }), image);
    EXPECT_EQ(image.getWidth(), 2048);
    EXPECT_EQ(pixel(image, 2047, 2047), 0xffc8c8c8u);
}

TEST(Jpeg, ThatPacksAsFarAsCanBeLoads) {
    ImageObject image;
    std::string bytes = makeJpeg(4096, 2048, 1, JCS_GRAYSCALE, 200);
    decode(ImageCodecJPEG(), bytes, image);
    EXPECT_EQ(pixel(image, 4095, 2047), 0xffc8c8c8u);
    EXPECT_EQ(refusal<ImageCodecJPEG>(withJpegSize(bytes, 4096, 2049)),
              "Internal jpeglib error; Corrupt JPEG data: premature end of data segment");
}

TEST(Jpeg, OtherDataThrowsTheLibrarysText) {
    EXPECT_EQ(refusal<ImageCodecJPEG>("hello"),
              "Internal jpeglib error; Not a JPEG file: starts with 0x68 0x65");
    EXPECT_EQ(refusal<ImageCodecJPEG>(""), cPremature);
    EXPECT_EQ(refusal<ImageCodecJPEG>(fixture("rgb.png")),
              "Internal jpeglib error; Not a JPEG file: starts with 0x89 0x50");
}

TEST(Jpeg, TruncatedAtEveryByteItThrows) {
    CaptureStderr errors;
    for (const char* name : {"baseline.jpg", "progressive.jpg", "cmyk.jpg"}) {
        const std::string bytes = fixture(name);
        for (size_t length = 0; length < bytes.size(); ++length)
            ASSERT_EQ(refusal<ImageCodecJPEG>(bytes.substr(0, length)), cPremature) << name << " " << length;
    }
    EXPECT_EQ(errors.text(), "");
}

TEST(Jpeg, AWarningIsFatal) {
    std::string bytes = fixture("baseline.jpg");
    bytes.insert(2, "\x01\x02"); // garbage between two markers, which the library would skip
    EXPECT_EQ(refusal<ImageCodecJPEG>(bytes),
              "Internal jpeglib error; Corrupt JPEG data: 2 extraneous bytes before marker 0xe0");
}

TEST(Jpeg, WithAnyByteChangedItLoadsOrIsRefused) {
    CaptureStderr errors;
    for (const char* name : {"baseline.jpg", "progressive.jpg", "gray.jpg", "cmyk.jpg"}) {
        const std::string bytes = fixture(name);
        int refused = 0;
        for (size_t i = 0; i < bytes.size(); ++i) {
            std::string damaged = bytes;
            damaged[i] = char(damaged[i] ^ 0x41);
            std::string text = refusal<ImageCodecJPEG>(damaged);
            refused += text != "(nothing)";
            ASSERT_TRUE(text == "(nothing)" || text.rfind("Internal jpeglib error; ", 0) == 0) << text;
        }
        EXPECT_GT(refused, 0) << name;
    }
    EXPECT_EQ(errors.text(), "");
}

TEST(Jpeg, TooManyPixelsAreRefusedInATextOfTheirOwnAndTakeNoMemory) {
    resetResidentPeak();
    const long before = residentPeak();
    for (const char* name : {"baseline.jpg", "progressive.jpg", "gray.jpg"}) {
        for (unsigned size : {65500u, 16384u, 8193u})
            EXPECT_EQ(refusal<ImageCodecJPEG>(withJpegSize(fixture(name), size, size)), tooMany(size, size))
                << name;
        for (unsigned size : {8192u, 5000u})
            EXPECT_EQ(refusal<ImageCodecJPEG>(withJpegSize(fixture(name), size, size)),
                      "Internal jpeglib error; Premature end of input file")
                << name << size;
        EXPECT_EQ(refusal<ImageCodecJPEG>(withJpegSize(fixture(name), 65535, 65535)),
                  "Internal jpeglib error; Maximum supported image dimension is 65500 pixels");
    }
    EXPECT_EQ(refusal<ImageCodecJPEG>(withJpegSize(fixture("baseline.jpg"), 0, 17)),
              "Internal jpeglib error; Empty JPEG image (DNL not supported)");
    EXPECT_LT(residentPeak() - before, 16 * 1024);
}

// A few bytes per scan, each over the whole picture: such a file would keep us busy for long. Here each
// coefficient has two scans of its own, one for the first bit and one that refines it.
std::string makeManyScans(int size, int coefficients) {
    const std::vector<jpeg_scan_info> scans{{1, {0}, 0, 0, 0, 0}, {1, {0}, 1, 1, 0, 1}, {1, {0}, 1, 1, 1, 0}};
    std::string bytes = makeJpeg(size, size, 1, JCS_GRAYSCALE, 200, [&](jpeg_compress_struct& cinfo) {
        cinfo.scan_info = scans.data();
        cinfo.num_scans = int(scans.size());
    });
    // These coefficients are all zero, so the first one's scans serve all others with another index.
    const std::string tables("\xff\xc4"), scan("\xff\xda"), end("\xff\xd9");
    const size_t first = bytes.find(scan), pair = bytes.find(tables, first), last = bytes.rfind(end);
    std::string file = bytes.substr(0, pair), both = bytes.substr(pair, last - pair);
    for (int coefficient = 1; coefficient <= coefficients; ++coefficient) {
        for (size_t at = both.find(scan); at != std::string::npos; at = both.find(scan, at + 1))
            both[at + 7] = both[at + 8] = char(coefficient);
        file += both;
    }
    return file + end;
}

TEST(Jpeg, TooManyScansAreRefused) {
    const char tooMany[] = "Internal jpeglib error; Too many scans";
    ImageObject image;
    decode(ImageCodecJPEG(), makeManyScans(2048, 63), image); // 127 scans
    EXPECT_EQ(pixel(image, 2047, 2047), 0xffc8c8c8u);
    EXPECT_EQ(refusal<ImageCodecJPEG>(makeManyScans(8192, 32)),
              tooMany); // 65, one more than this size is allowed
}

// Small pictures have a limit too: here each bit of each coefficient has its own scan.
TEST(Jpeg, MoreThanFiveHundredScansAreRefused) {
    auto withBits = [](int bits) {
        std::vector<jpeg_scan_info> scans{{1, {0}, 0, 0, 0, 0}};
        for (int coefficient = 1; coefficient < 64; ++coefficient)
            for (int bit = bits - 1; bit >= 0; --bit)
                scans.push_back({1, {0}, coefficient, coefficient, bit == bits - 1 ? 0 : bit + 1, bit});
        return makeJpeg(16, 16, 1, JCS_GRAYSCALE, 200, [&](jpeg_compress_struct& cinfo) {
            cinfo.scan_info = scans.data();
            cinfo.num_scans = int(scans.size());
        });
    };
    ImageObject image;
    decode(ImageCodecJPEG(), withBits(7), image); // 442 of them
    EXPECT_EQ(pixel(image, 15, 15), 0xffc8c8c8u);
    EXPECT_EQ(refusal<ImageCodecJPEG>(withBits(8)), "Internal jpeglib error; Too many scans"); // 505
}

TEST(Jpeg, DoesNotWrite) {
    ImageObject image;
    unsigned char* data = nullptr;
    unsigned long length = 0;
    image.resize(2, 2);
    EXPECT_FALSE(ImageCodecJPEG().encodeImage(&data, &length, image));
    EXPECT_FALSE(ImageCodecJPEG().canWrite());
    EXPECT_EQ(ImageCodecJPEG().getFormatString(), "jpg");
}

// ---- TGA

TEST(Tga, ThrowsThatItIsNotImplemented) {
    EXPECT_EQ(refusal<ImageCodecTGA>(fixture("picture.tga")), "[ImageCodec] TGA-reader is not done yet!");
    ImageObject image;
    unsigned char* data = nullptr;
    unsigned long length = 0;
    image.resize(2, 2);
    EXPECT_FALSE(ImageCodecTGA().encodeImage(&data, &length, image));
    EXPECT_FALSE(ImageCodecTGA().canWrite());
    EXPECT_EQ(ImageCodecTGA().getFormatString(), "tga");
}

// ---- byte order

TEST(Swizzle, EveryCountMatchesAPlainLoop) {
    std::vector<unsigned char> from(67 * 4);
    for (size_t i = 0; i < from.size(); ++i)
        from[i] = static_cast<unsigned char>(i * 2654435761u >> 11);
    for (size_t count = 0; count <= 67; ++count) {
        std::vector<unsigned char> swapped(count * 4), expanded(count * 4), plain(count * 4),
            plainRgb(count * 4);
        for (size_t i = 0; i < count; ++i)
            for (size_t c = 0; c < 4; ++c) {
                plain[i * 4 + c] = from[i * 4 + (c == 3 ? 3 : 2 - c)];
                plainRgb[i * 4 + c] = c == 3 ? 255 : from[i * 3 + 2 - c];
            }
        std::vector<unsigned char> four(from.begin(), from.begin() + long(count * 4));
        std::vector<unsigned char> three(from.begin(), from.begin() + long(count * 3));
        zentrak::am::swapRedBlue(swapped.data(), four.data(), count);
        zentrak::am::expandRgb(expanded.data(), three.data(), count);
        ASSERT_EQ(swapped, plain) << count;
        ASSERT_EQ(expanded, plainRgb) << count;
    }
}

TEST(Swizzle, InkOnWhitePaper) {
    const unsigned char inks[] = {0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 255, 0, 10, 20, 30, 255, 0, 0, 0, 128};
    const unsigned colours[] = {0xffffffff, 0xff00ffff, 0xffff0000, 0xff000000, 0xff7f7f7f};
    unsigned char inverted[sizeof inks], to[sizeof inks];
    for (size_t i = 0; i < sizeof inks; ++i)
        inverted[i] = static_cast<unsigned char>(255 - inks[i]);
    for (bool flip : {false, true}) {
        zentrak::am::convertCmyk(to, flip ? inverted : inks, 5, flip);
        for (size_t i = 0; i < 5; ++i) {
            unsigned is = unsigned(to[i * 4 + 3]) << 24 | unsigned(to[i * 4 + 2]) << 16 |
                          unsigned(to[i * 4 + 1]) << 8 | to[i * 4];
            EXPECT_EQ(is, colours[i]) << flip << " " << i;
        }
    }
}
