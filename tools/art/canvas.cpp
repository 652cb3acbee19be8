#include "canvas.h"

#include "command/command.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <png.h>

namespace zentrak::art {

float smoothstep(float from, float to, float f) {
    const float t = clamp01((f - from) / (to - from));
    return t * t * (3 - 2 * t);
}

namespace {

// A lattice point's value, -1 to 1.
float lattice(int x, int y, unsigned seed) {
    uint32_t h = uint32_t(x) * 0x9E3779B1u ^ uint32_t(y) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    h ^= h >> 15;
    return float(h & 0xFFFFFF) / float(0x7FFFFF) - 1;
}

} // namespace

float noise(float x, float y, unsigned seed) {
    const float fx = floorf(x), fy = floorf(y);
    const int ix = int(fx), iy = int(fy);
    const float u = smoothstep(0, 1, x - fx), v = smoothstep(0, 1, y - fy);
    return mix(mix(lattice(ix, iy, seed), lattice(ix + 1, iy, seed), u),
               mix(lattice(ix, iy + 1, seed), lattice(ix + 1, iy + 1, seed), u), v);
}

Canvas::Canvas(int width, int height)
    : mWidth(width), mHeight(height), mPixels(size_t(width) * size_t(height), Colour{0, 0, 0, 0}) {}

void Canvas::paint(const std::function<Colour(float x, float y)>& paint) {
    for (int y = 0; y < mHeight; ++y)
        for (int x = 0; x < mWidth; ++x)
            at(x, y) = paint(float(x) + 0.5f, float(y) + 0.5f);
}

void Canvas::fill(const Colour& colour, const std::function<float(float x, float y)>& distance, float soft) {
    for (int y = 0; y < mHeight; ++y) {
        for (int x = 0; x < mWidth; ++x) {
            const float d = distance(float(x) + 0.5f, float(y) + 0.5f);
            const float cover = clamp01(0.5f - d / soft);
            if (cover > 0)
                blend(x, y, {colour.r, colour.g, colour.b, colour.a * cover});
        }
    }
}

void Canvas::blend(int x, int y, const Colour& colour) {
    Colour& under = at(x, y);
    const float a = colour.a + under.a * (1 - colour.a);
    if (a <= 0)
        return;
    const float t = colour.a / a;
    under = {mix(under.r, colour.r, t), mix(under.g, colour.g, t), mix(under.b, colour.b, t), a};
}

bool Canvas::write(const std::filesystem::path& path) const {
    std::error_code without; // a failure shows when the file is written
    std::filesystem::create_directories(path.parent_path(), without);

    std::vector<uint8_t> bytes;
    bytes.reserve(mPixels.size() * 4);
    for (const Colour& c : mPixels)
        for (const float f : {c.r, c.g, c.b, c.a})
            bytes.push_back(uint8_t(lrintf(clamp01(f) * 255)));

    png_image image;
    memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(mWidth);
    image.height = png_uint_32(mHeight);
    image.format = PNG_FORMAT_RGBA;
    // Encodes to memory first: libpng deletes a file that it can't write.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<uint8_t> file(size);
    if (!png_image_write_to_memory(&image, file.data(), &size, 0, bytes.data(), 0, nullptr)) {
        fprintf(stderr, "%s: %s\n", path.c_str(), image.message);
        return false;
    }
    return command::writeFile(path.string(), file.data(), size);
}

float distanceToSegment(float x, float y, float x0, float y0, float x1, float y1) {
    const float dx = x1 - x0, dy = y1 - y0;
    const float length2 = dx * dx + dy * dy;
    const float t = length2 > 0 ? clamp01(((x - x0) * dx + (y - y0) * dy) / length2) : 0;
    return hypotf(x - x0 - t * dx, y - y0 - t * dy);
}

float distanceToBox(float x, float y, float cx, float cy, float halfWidth, float halfHeight, float round) {
    const float dx = fabsf(x - cx) - halfWidth + round, dy = fabsf(y - cy) - halfHeight + round;
    return hypotf(std::max(dx, 0.0f), std::max(dy, 0.0f)) + std::min(std::max(dx, dy), 0.0f) - round;
}

} // namespace zentrak::art
