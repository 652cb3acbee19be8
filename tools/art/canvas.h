// A canvas for the programs that make the show's art: floats in, a PNG file out, reproducible to the byte.
#pragma once

#include <filesystem>
#include <functional>
#include <vector>

namespace zentrak::art {

struct Colour {
    float r = 0, g = 0, b = 0, a = 1; // 0 to 1, not premultiplied
};

inline float clamp01(float f) {
    return f < 0 ? 0 : f > 1 ? 1 : f;
}
inline float mix(float a, float b, float t) {
    return a + (b - a) * t;
}
inline Colour mix(const Colour& a, const Colour& b, float t) {
    return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t), mix(a.a, b.a, t)};
}
// 0 below `from`, 1 above `to`, smooth in between.
float smoothstep(float from, float to, float f);
// Smooth noise on a unit grid, -1 to 1, the same on every machine.
float noise(float x, float y, unsigned seed);

class Canvas {
public:
    Canvas(int width, int height); // transparent black

    int width() const { return mWidth; }
    int height() const { return mHeight; }

    const Colour& at(int x, int y) const { return mPixels[size_t(y) * size_t(mWidth) + size_t(x)]; }
    Colour& at(int x, int y) { return mPixels[size_t(y) * size_t(mWidth) + size_t(x)]; }

    // Sets every pixel to what `paint` returns for its centre, in pixels from the upper left corner.
    void paint(const std::function<Colour(float x, float y)>& paint);
    // Lays `colour` over the pixels where `distance`, in pixels, is below 0, with an edge one pixel wide; or
    // with an edge `soft` pixels wide.
    void fill(const Colour& colour, const std::function<float(float x, float y)>& distance, float soft = 1);
    // Blends a colour over a pixel.
    void blend(int x, int y, const Colour& colour);

    // Writes 8-bit RGBA and creates missing folders. Returns false, after a line on standard error, if the
    // file can't be written.
    bool write(const std::filesystem::path& path) const;

private:
    int mWidth, mHeight;
    std::vector<Colour> mPixels;
};

// Signed distances to shapes, in the units of their points; negative inside.
float distanceToSegment(float x, float y, float x0, float y0, float x1, float y1);
float distanceToBox(float x, float y, float cx, float cy, float halfWidth, float halfHeight, float round);

} // namespace zentrak::art
