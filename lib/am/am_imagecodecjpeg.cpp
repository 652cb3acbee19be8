#include "am_imagecodecjpeg.h"

#include "am_swizzle.h"
#include "ztk_system.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <jpeglib.h> // needs FILE and size_t

#include <jerror.h>

// The handlers throw through libjpeg's frames: on x86-64 C functions have unwind tables too.

namespace zentrak::am {

namespace {

// Frees what the library holds, which may be done twice.
struct Decompress : jpeg_decompress_struct {
    Decompress() : jpeg_decompress_struct() {}
    Decompress(const Decompress&) = delete;
    Decompress& operator=(const Decompress&) = delete;
    ~Decompress() { jpeg_destroy_decompress(this); }
};

[[noreturn]] void fail(j_common_ptr cinfo, const char* text) {
    jpeg_destroy(cinfo);
    throw Exception("Internal jpeglib error; %s", text);
}

// Warnings end up here too and are just as fatal.
[[noreturn]] void ImageCodec_JPEG_output_message(j_common_ptr cinfo) {
    char text[JMSG_LENGTH_MAX];
    cinfo->err->format_message(cinfo, text);
    fail(cinfo, text);
}

[[noreturn]] void ImageCodec_JPEG_error_exit(j_common_ptr cinfo) {
    cinfo->err->output_message(cinfo);
    std::abort(); // never reached: the output handler throws
}

void ImageCodec_JPEG_init_source(j_decompress_ptr) {}

void ImageCodec_JPEG_term_source(j_decompress_ptr) {}

// The whole file is in memory, so a request for more means that it is truncated. The warning ends the
// decoding; the marker is for a library that carries on regardless.
boolean ImageCodec_JPEG_fill_input_buffer(j_decompress_ptr cinfo) {
    static const JOCTET endOfImage[] = {0xff, JPEG_EOI};
    cinfo->src->next_input_byte = endOfImage;
    cinfo->src->bytes_in_buffer = sizeof endOfImage;
    WARNMS(cinfo, JWRN_JPEG_EOF);
    return TRUE;
}

void ImageCodec_JPEG_skip_input_data(j_decompress_ptr cinfo, long count) {
    jpeg_source_mgr& source = *cinfo->src;
    size_t bytes = count < 0 ? 0 : size_t(count);
    if (bytes > source.bytes_in_buffer)
        bytes = source.bytes_in_buffer;
    source.next_input_byte += bytes;
    source.bytes_in_buffer -= bytes;
}

unsigned long pixelsOf(const jpeg_decompress_struct& cinfo) {
    return static_cast<unsigned long>(cinfo.image_width) * cinfo.image_height;
}

// A scan of the whole picture can take a few bytes, so a small file could keep us busy for hours. The largest
// picture may have 64 scans, more than any encoder makes; smaller ones may have more.
void limitScans(j_common_ptr common) {
    constexpr unsigned long maxScans = 500;
    constexpr unsigned long maxPixels = 64 * ImageCodec::MAX_PIXELS; // over all scans
    const jpeg_decompress_struct& cinfo = *reinterpret_cast<j_decompress_ptr>(common);
    const unsigned long scans = static_cast<unsigned long>(cinfo.input_scan_number);
    if (scans > maxScans || scans * pixelsOf(cinfo) > maxPixels)
        fail(common, "Too many scans");
}

// Can a file of this length hold the picture? Each block takes at least one bit, and with 4x subsampling in
// both directions it covers 32 by 32 pixels. Arithmetic coding is denser.
bool fits(const jpeg_decompress_struct& cinfo, unsigned long length) {
    constexpr unsigned long pixelsPerByte = 32 * 32 * 8;
    return cinfo.arith_code || pixelsOf(cinfo) <= length * pixelsPerByte;
}

// The library converts colour and gray to our byte order; CMYK is converted here.
void chooseOutput(jpeg_decompress_struct& cinfo) {
    switch (cinfo.jpeg_color_space) {
    case JCS_GRAYSCALE:
    case JCS_RGB:
    case JCS_YCbCr:
        cinfo.out_color_space = JCS_EXT_BGRA;
        break;
    case JCS_CMYK:
    case JCS_YCCK:
        cinfo.out_color_space = JCS_CMYK;
        break;
    default:
        ERREXIT(&cinfo, JERR_CONVERSION_NOTIMPL);
    }
}

void readRows(jpeg_decompress_struct& cinfo, unsigned char* pixels) {
    const size_t width = cinfo.output_width;
    const bool isCmyk = cinfo.out_color_space == JCS_CMYK;
    std::vector<unsigned char> inks(isCmyk ? width * 4 : 0);
    while (cinfo.output_scanline < cinfo.output_height) {
        unsigned char* to = pixels + cinfo.output_scanline * width * 4;
        JSAMPROW rows[] = {isCmyk ? inks.data() : to};
        if (jpeg_read_scanlines(&cinfo, rows, 1) == 1 && isCmyk)
            convertCmyk(to, inks.data(), width, cinfo.saw_Adobe_marker);
    }
}

} // namespace

void ImageCodecJPEG::decodeImage(const unsigned char* data, unsigned long length, ImageObject& image) {
    jpeg_error_mgr errors;
    jpeg_progress_mgr progress{};
    jpeg_source_mgr source{};
    Decompress cinfo;
    cinfo.err = jpeg_std_error(&errors);
    errors.error_exit = ImageCodec_JPEG_error_exit;
    errors.output_message = ImageCodec_JPEG_output_message;
    jpeg_create_decompress(&cinfo);

    source.init_source = ImageCodec_JPEG_init_source;
    source.fill_input_buffer = ImageCodec_JPEG_fill_input_buffer;
    source.skip_input_data = ImageCodec_JPEG_skip_input_data;
    source.resync_to_restart = jpeg_resync_to_restart;
    source.term_source = ImageCodec_JPEG_term_source;
    source.next_input_byte = data;
    source.bytes_in_buffer = length;
    cinfo.src = &source;
    progress.progress_monitor = limitScans;
    cinfo.progress = &progress;

    jpeg_read_header(&cinfo, TRUE);
    checkSize(cinfo.image_width, cinfo.image_height);
    if (!fits(cinfo, length))
        ERREXIT(&cinfo, JERR_INPUT_EOF);
    chooseOutput(cinfo);
    jpeg_start_decompress(&cinfo);
    const unsigned width = cinfo.output_width, height = cinfo.output_height;
    std::unique_ptr<unsigned char[]> pixels(new unsigned char[size_t(width) * height * 4]);
    readRows(cinfo, pixels.get());
    jpeg_finish_decompress(&cinfo);
    image.setData(pixels.release(), int(width), int(height));
}

std::string ImageCodecJPEG::getFormatString() const {
    return "jpg";
}

} // namespace zentrak::am
