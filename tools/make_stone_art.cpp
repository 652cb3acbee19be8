// Paints the two pictures of the stone: its colours, whose alpha cuts gaps between plates, and its heights.
//   make_stone_art FOLDER       writes sten.png and height.png

#include "canvas.h"
#include "command/command.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

using namespace zentrak::art;

namespace {

constexpr float PI = 3.14159265f;
constexpr int PLATES = 64;
constexpr float GAP = 0.02f; // half of it, in radii of the stone

struct Point {
    float x, y, z;

    float dot(const Point& p) const { return x * p.x + y * p.y + z * p.z; }
};

// 3D noise on a surface, several octaves, about -1 to 1.
float rough(const Point& p, float scale, unsigned seed) {
    float sum = 0, weight = 0.5f;
    for (unsigned octave = 0; octave < 5; ++octave) {
        sum += weight *
               (noise(p.x * scale, p.y * scale + 3.1f, seed + octave) +
                noise(p.y * scale, p.z * scale + 7.7f, seed + 20 + octave) +
                noise(p.z * scale, p.x * scale + 1.3f, seed + 40 + octave)) /
               1.7f;
        weight *= 0.55f;
        scale *= 2.07f;
    }
    return sum;
}

// The direction from the centre for a point of the pictures, which wrap round the stone once, from top to
// bottom.
Point direction(float s, float t) {
    const float phi = 2 * PI * (1 - s), theta = PI * t;
    return {sinf(theta) * cosf(phi), cosf(theta), sinf(theta) * sinf(phi)};
}

// The centres of the plates: evenly distributed over a sphere, then jittered.
std::vector<Point> middles() {
    std::vector<Point> points;
    for (int i = 0; i < PLATES; ++i) {
        const float y = 1 - 2 * (float(i) + 0.5f) / PLATES, r = sqrtf(1 - y * y), a = 2.399963f * float(i);
        Point p = {r * cosf(a), y, r * sinf(a)};
        const float at = float(i) * 1.37f;
        p = {p.x + 0.13f * noise(at, 0.5f, 1), p.y + 0.13f * noise(at, 0.5f, 2),
             p.z + 0.13f * noise(at, 0.5f, 3)};
        const float length = sqrtf(p.dot(p));
        points.push_back({p.x / length, p.y / length, p.z / length});
    }
    return points;
}

// The position of a point among the plates.
struct Place {
    int plate;
    float edge; // distance from the plate's edge, in radii
};

Place placeOf(const Point& n) {
    static const std::vector<Point> points = middles();
    const Point warped = {n.x + 0.05f * rough(n, 3, 101), n.y + 0.05f * rough(n, 3, 111),
                          n.z + 0.05f * rough(n, 3, 121)};
    int nearest = 0;
    for (int i = 1; i < PLATES; ++i)
        if (points[size_t(i)].dot(warped) > points[size_t(nearest)].dot(warped))
            nearest = i;
    const Point& own = points[size_t(nearest)];
    float edge = 10;
    for (int i = 0; i < PLATES; ++i) {
        const Point& p = points[size_t(i)];
        const Point way = {own.x - p.x, own.y - p.y, own.z - p.z};
        const float length = sqrtf(way.dot(way));
        if (i != nearest)
            edge = fminf(edge, way.dot(warped) / length);
    }
    return {nearest, edge};
}

Colour stone(float s, float t) {
    static const Colour tones[] = {{0.47f, 0.44f, 0.40f},
                                   {0.56f, 0.51f, 0.43f},
                                   {0.38f, 0.37f, 0.37f},
                                   {0.60f, 0.57f, 0.52f},
                                   {0.45f, 0.38f, 0.33f}};
    const Point n = direction(s, t);
    const Place place = placeOf(n);
    const unsigned kind = unsigned(place.plate) * 2654435761u >> 16;
    Colour colour = tones[kind % 5];
    const float grain = 1 + 0.28f * rough(n, 7, 11) + 0.14f * rough(n, 40, 21);
    colour = {colour.r * grain, colour.g * grain, colour.b * grain};
    const float lichen = smoothstep(0.12f, 0.34f, rough(n, 2.6f, 31) + 0.25f * rough(n, 17, 41));
    colour = mix(colour, {0.50f, 0.56f, 0.20f}, 0.75f * lichen);
    const float rust = smoothstep(0.22f, 0.5f, rough(n, 3.4f, 61));
    colour = mix(colour, {0.66f, 0.36f, 0.15f}, 0.6f * rust);
    colour = mix({0.13f, 0.11f, 0.10f}, colour, 0.25f + 0.75f * smoothstep(GAP, GAP + 0.05f, place.edge));
    colour.a = smoothstep(GAP - 0.008f, GAP + 0.008f, place.edge);
    return {clamp01(colour.r), clamp01(colour.g), clamp01(colour.b), colour.a};
}

Colour height(float s, float t) {
    const Point n = direction(s, t);
    const Place place = placeOf(n);
    const float bevel = sqrtf(smoothstep(GAP - 0.01f, GAP + 0.11f, place.edge));
    const float h =
        clamp01(0.74f * bevel + 0.13f + 0.16f * rough(n, 8, 71) * bevel + 0.05f * rough(n, 30, 81));
    return {h, h, h, 1};
}

bool write(const std::filesystem::path& path, int width, int height, Colour (*colour)(float, float)) {
    Canvas canvas(width, height);
    canvas.paint([&](float x, float y) { return colour(x / float(width), y / float(height)); });
    return canvas.write(path);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || zentrak::command::isOption(argv[1])) {
        fprintf(stderr, "usage: make_stone_art FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    return write(folder / "sten.png", 1024, 512, stone) && write(folder / "height.png", 512, 256, height) ? 0
                                                                                                          : 1;
}
