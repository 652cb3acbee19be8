#include "am_imagecodecpng.h"

#include "am_swizzle.h"
#include "ztk_system.h"

#include <csetjmp>
#include <cstring>
#include <memory>
#include <new>
#include <png.h>
#include <vector>

// libpng reports errors by longjmp, which runs no destructors. So each jump stays within `readPng` or
// `writePng`, which have only trivial variables; their callers own everything that has to be freed.

namespace zentrak::am {

namespace {

constexpr size_t cSignatureLength = 8;

// The bytes of a file and the read position.
struct Source {
    const unsigned char* mData;
    size_t mLength;
    size_t mPosition;
};

// The file being written, and its pixels.
struct Target {
    std::vector<unsigned char> mBytes;
    std::vector<unsigned char> mRow; // one row, red first
    const unsigned char* mPixels = nullptr;
    unsigned mWidth = 0;
    unsigned mHeight = 0;
};

struct ReadStruct {
    png_structp mPng = nullptr;
    png_infop mInfo = nullptr;

    ReadStruct() = default;
    ReadStruct(const ReadStruct&) = delete;
    ReadStruct& operator=(const ReadStruct&) = delete;
    ~ReadStruct() { png_destroy_read_struct(&mPng, &mInfo, nullptr); }
};

struct WriteStruct {
    png_structp mPng = nullptr;
    png_infop mInfo = nullptr;

    WriteStruct() = default;
    WriteStruct(const WriteStruct&) = delete;
    WriteStruct& operator=(const WriteStruct&) = delete;
    ~WriteStruct() { png_destroy_write_struct(&mPng, &mInfo); }
};

// Replace the library's own handlers, which print.
void pngError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}
void pngWarning(png_structp, png_const_charp) {}

void pngReadData(png_structp png, png_bytep to, png_size_t count) {
    Source& source = *static_cast<Source*>(png_get_io_ptr(png));
    if (count > source.mLength - source.mPosition)
        png_error(png, "read past the end");
    std::memcpy(to, source.mData + source.mPosition, count);
    source.mPosition += count;
}

void pngWriteData(png_structp png, png_bytep from, png_size_t count) {
    Target& target = *static_cast<Target*>(png_get_io_ptr(png));
    bool ok = true;
    try {
        target.mBytes.insert(target.mBytes.end(), from, from + count);
    } catch (const std::bad_alloc&) {
        ok = false; // longjmp must not leave a catch block
    }
    if (!ok)
        png_error(png, "out of memory");
}

void pngWriteFlush(png_structp) {}

unsigned bigEndian(const unsigned char* bytes) {
    return unsigned(bytes[0]) << 24 | unsigned(bytes[1]) << 16 | unsigned(bytes[2]) << 8 | bytes[3];
}

struct Header {
    unsigned long mWidth = 0; // 0 without a header
    unsigned long mHeight = 0;
    unsigned long mBitsPerPixel = 0;

    Header(const unsigned char* data, unsigned long length) {
        constexpr size_t headerType = 12, width = 16, height = 20, depth = 24, colourType = 25,
                         headerEnd = 33;
        constexpr unsigned channels[] = {1, 1, 3, 1, 2, 1, 4, 1}; // by colour type
        if (length < headerEnd || std::memcmp(data + headerType, "IHDR", 4) != 0)
            return;
        mWidth = bigEndian(data + width);
        mHeight = bigEndian(data + height);
        mBitsPerPixel = channels[data[colourType] & 7] * (data[depth] & 31);
    }

    // Can a file of this length hold as many pixels? Deflate packs no better than 1032 to 1, and libpng
    // allocates all of them before it reads the first.
    bool fits(unsigned long length) const { return mWidth * mHeight * mBitsPerPixel / 8 <= 1032 * length; }
};

bool readPng(png_structp png, png_infop info, Source* source) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_read_fn(png, source, pngReadData);
    png_set_sig_bytes(png, int(cSignatureLength));
    // Only the pixels are wanted. For text, profiles and the like libpng would allocate and clear as much
    // memory as the chunk claims to need.
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    return true;
}

bool writePng(png_structp png, png_infop info, Target* target) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_write_fn(png, target, pngWriteData, pngWriteFlush);
    png_set_IHDR(png, info, target->mWidth, target->mHeight, 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (size_t y = 0; y < target->mHeight; ++y) {
        swapRedBlue(target->mRow.data(), target->mPixels + y * target->mWidth * 4, target->mWidth);
        png_write_row(png, target->mRow.data());
    }
    png_write_end(png, info);
    return true;
}

} // namespace

void ImageCodecPNG::decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) {
    if (length < cSignatureLength || png_sig_cmp(data, 0, cSignatureLength) != 0)
        throw Exception("[loadPNG] Not a png-file! Header is wrong!");

    const Header header(data, length);
    checkSize(header.mWidth, header.mHeight);

    ReadStruct read;
    read.mPng = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, pngError, pngWarning);
    if (!read.mPng)
        throw Exception("[loadPNG] Could not setup libpng (pngstruct)!");
    read.mInfo = png_create_info_struct(read.mPng);
    if (!read.mInfo)
        throw Exception("[loadPNG] Could not setup libpng (pnginfo)!");

    Source source{data, length, cSignatureLength};
    if (!header.fits(length) || !readPng(read.mPng, read.mInfo, &source))
        throw Exception("[loadPNG] Error when decoding png-file!");

    unsigned width = png_get_image_width(read.mPng, read.mInfo);
    unsigned height = png_get_image_height(read.mPng, read.mInfo);
    int depth = png_get_bit_depth(read.mPng, read.mInfo);
    int type = png_get_color_type(read.mPng, read.mInfo);
    if (depth == 8 && type == PNG_COLOR_TYPE_GRAY)
        throw Exception("[loadPNG] No support for grayscale images yet");
    if (depth != 8 || (type != PNG_COLOR_TYPE_RGB && type != PNG_COLOR_TYPE_RGBA))
        throw Exception("[loadPNG] Bad color format of image (type %d, %d bits per channel)", type, depth);

    std::unique_ptr<unsigned char[]> pixels(new unsigned char[size_t(width) * height * 4]);
    png_bytepp rows = png_get_rows(read.mPng, read.mInfo);
    auto* const convert = type == PNG_COLOR_TYPE_RGB ? expandRgb : swapRedBlue;
    for (size_t y = 0; y < height; ++y)
        convert(pixels.get() + y * width * 4, rows[y], width);
    image.setData(pixels.release(), int(width), int(height));
}

bool ImageCodecPNG::encodeImage(unsigned char** data, unsigned long* length, ImageObject& image) {
    Target target;
    target.mPixels = image.getWriteData();
    if (!target.mPixels || image.getWidth() <= 0 || image.getHeight() <= 0)
        return false;
    target.mWidth = unsigned(image.getWidth());
    target.mHeight = unsigned(image.getHeight());
    target.mRow.resize(size_t(target.mWidth) * 4);

    WriteStruct write;
    write.mPng = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, pngError, pngWarning);
    if (!write.mPng)
        return false;
    write.mInfo = png_create_info_struct(write.mPng);
    if (!write.mInfo || !writePng(write.mPng, write.mInfo, &target))
        return false;

    *data = new unsigned char[target.mBytes.size()];
    std::memcpy(*data, target.mBytes.data(), target.mBytes.size());
    *length = target.mBytes.size();
    return true;
}

std::string ImageCodecPNG::getFormatString() const {
    return "png";
}

bool ImageCodecPNG::canWrite() const {
    return true;
}

} // namespace zentrak::am
