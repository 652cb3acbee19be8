// Pictures of 1280 by 1024: decoding and encoding compared with the bare library, and byte-order conversion
// compared with a loop over bytes.
#include "../../lib/am/am_swizzle.h"
#include "am_archivemanager.h"
#include "am_imagecodecpng.h"
#include "am_videofile.h"
#include "mb_random.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <png.h>
#include <stdexcept>
#include <string>
#include <vector>

using namespace zentrak::am;

namespace {

constexpr int WIDTH = 1280;
constexpr int HEIGHT = 1024;

// Smooth colours, a few hard edges and some noise: compresses about as well as a frame of the show.
void paint(ImageObject& image) {
    image.resize(WIDTH, HEIGHT);
    unsigned char* to = image.getWriteData();
    zentrak::mathbase::Random random(5);
    for (int y = 0; y < HEIGHT; ++y)
        for (int x = 0; x < WIDTH; ++x, to += 4) {
            const unsigned draw = random.draw();
            const unsigned noise = (x / 160 + y / 128) % 3 == 0 ? draw >> 30 : 0;
            to[0] = static_cast<unsigned char>(x * 255 / WIDTH + int(noise));
            to[1] = static_cast<unsigned char>(y * 255 / HEIGHT);
            to[2] = static_cast<unsigned char>((x / 64 + y / 64) % 2 ? 200 : (x * y) >> 13);
            to[3] = 255;
        }
}

// A PNG file in memory, with or without alpha.
std::vector<unsigned char> makePng(bool alpha) {
    ImageObject image;
    paint(image);
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    header.width = WIDTH;
    header.height = HEIGHT;
    header.format = alpha ? PNG_FORMAT_BGRA : PNG_FORMAT_BGR;
    std::vector<unsigned char> pixels;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        pixels.insert(pixels.end(), image.getData() + i * 4, image.getData() + i * 4 + (alpha ? 4 : 3));
    png_alloc_size_t size = 0;
    png_image_write_to_memory(&header, nullptr, &size, 0, pixels.data(), 0, nullptr);
    std::vector<unsigned char> file(size);
    png_image_write_to_memory(&header, file.data(), &size, 0, pixels.data(), 0, nullptr);
    file.resize(size);
    return file;
}

struct Cursor {
    const unsigned char* at;
};

void readFromCursor(png_structp png, png_bytep to, size_t count) {
    auto* cursor = static_cast<Cursor*>(png_get_io_ptr(png));
    std::memcpy(to, cursor->at, count);
    cursor->at += count;
}

// The library alone, rows in file order, without conversion.
void decodeRaw(benchmark::State& state) {
    const std::vector<unsigned char> file = makePng(state.range(0) != 0);
    std::vector<unsigned char> pixels(size_t(WIDTH) * HEIGHT * 4);
    for (auto _ : state) {
        png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        Cursor cursor{file.data()};
        png_set_read_fn(png, &cursor, readFromCursor);
        png_read_info(png, info);
        for (size_t y = 0; y < HEIGHT; ++y)
            png_read_row(png, pixels.data() + y * WIDTH * 4, nullptr);
        png_read_end(png, nullptr);
        png_destroy_read_struct(&png, &info, nullptr);
        benchmark::DoNotOptimize(pixels.data());
    }
}
BENCHMARK(decodeRaw)
    ->Name("png decode, libpng alone")
    ->ArgName("alpha")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

void decodeOurs(benchmark::State& state) {
    const std::vector<unsigned char> file = makePng(state.range(0) != 0);
    for (auto _ : state) {
        ImageObject image;
        ImageCodecPNG().decodeImage(file.data(), file.size(), image);
        benchmark::DoNotOptimize(image.getData());
    }
}
BENCHMARK(decodeOurs)
    ->Name("png decode, codec")
    ->ArgName("alpha")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

void swapPlain(benchmark::State& state) {
    std::vector<unsigned char> from(size_t(WIDTH) * HEIGHT * 4, 7), to(from.size());
    for (auto _ : state) {
        for (size_t i = 0; i < from.size(); i += 4) {
            to[i] = from[i + 2];
            to[i + 1] = from[i + 1];
            to[i + 2] = from[i];
            to[i + 3] = from[i + 3];
        }
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(swapPlain)->Name("swap of RGBA, byte by byte")->Unit(benchmark::kMicrosecond);

void swapOurs(benchmark::State& state) {
    std::vector<unsigned char> from(size_t(WIDTH) * HEIGHT * 4, 7), to(from.size());
    for (auto _ : state) {
        swapRedBlue(to.data(), from.data(), size_t(WIDTH) * HEIGHT);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(swapOurs)->Name("swap of RGBA, as words")->Unit(benchmark::kMicrosecond);

void expandPlain(benchmark::State& state) {
    std::vector<unsigned char> from(size_t(WIDTH) * HEIGHT * 3, 7), to(size_t(WIDTH) * HEIGHT * 4);
    for (auto _ : state) {
        for (size_t i = 0, o = 0; i < from.size(); i += 3, o += 4) {
            to[o] = from[i + 2];
            to[o + 1] = from[i + 1];
            to[o + 2] = from[i];
            to[o + 3] = 255;
        }
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(expandPlain)->Name("RGB to BGRA, byte by byte")->Unit(benchmark::kMicrosecond);

void expandOurs(benchmark::State& state) {
    std::vector<unsigned char> from(size_t(WIDTH) * HEIGHT * 3, 7), to(size_t(WIDTH) * HEIGHT * 4);
    for (auto _ : state) {
        expandRgb(to.data(), from.data(), size_t(WIDTH) * HEIGHT);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(expandOurs)->Name("RGB to BGRA, as words")->Unit(benchmark::kMicrosecond);

// The library alone, with the same settings, from pixels already in file order.
void encodeRaw(benchmark::State& state) {
    ImageObject image;
    paint(image);
    for (auto _ : state) {
        std::vector<unsigned char> file;
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_set_write_fn(
            png, &file,
            [](png_structp p, png_bytep data, size_t count) {
                auto* to = static_cast<std::vector<unsigned char>*>(png_get_io_ptr(p));
                to->insert(to->end(), data, data + count);
            },
            [](png_structp) {});
        png_set_IHDR(png, info, WIDTH, HEIGHT, 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        for (size_t y = 0; y < HEIGHT; ++y)
            png_write_row(png, image.getData() + y * WIDTH * 4);
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        benchmark::DoNotOptimize(file.data());
    }
}
BENCHMARK(encodeRaw)->Name("png encode, libpng alone")->Unit(benchmark::kMillisecond);

// One dumped frame, including the write to disk.
void dumpFrame(benchmark::State& state) {
    char pattern[] = "/tmp/zentrak-bench-XXXXXX";
    if (!mkdtemp(pattern))
        throw std::runtime_error("no temporary folder");
    {
        ArchiveManager archives;
        archives.addArchive(pattern);
        Image image(new ImageObject());
        paint(*image);
        VideoFile::Format format{WIDTH, HEIGHT, 60, 1};
        std::unique_ptr<VideoFile> video(VideoFile::createForWrite("frame.png", format, &archives));
        video->attach(image);
        for (auto _ : state)
            video->writeFrame();
    }
    std::filesystem::remove_all(pattern);
}
BENCHMARK(dumpFrame)->Name("frame dump, one frame")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
