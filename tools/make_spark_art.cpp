// Paints the strip of eight particle sprites and writes the particle file of the show.
//   make_spark_art FOLDER       writes sparks.png and spark/spark.xml below the show's data folder

#include "canvas.h"
#include "command/command.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>

using namespace zentrak::art;

namespace {

constexpr int CELLS = 8;
constexpr int CELL = 128; // pixels
constexpr float PI = 3.14159265f;

// A point of a cell: -1 to 1 from edge to edge.
struct Point {
    float x, y;

    float radius() const { return hypotf(x, y); }
    float angle() const { return atan2f(y, x); }
};

// Several octaves of noise, about -1 to 1.
float cloudNoise(float x, float y, unsigned seed) {
    float sum = 0, weight = 0.55f;
    for (unsigned octave = 0; octave < 5; ++octave) {
        sum += weight * noise(x, y, seed + octave);
        weight *= 0.52f;
        x *= 2.03f;
        y *= 2.03f;
    }
    return sum;
}

// Brightness of a sprite, 0 to 1. Each fades out well before the edge of its cell, so that no cell bleeds
// into the next.

float glow(Point p) {
    const float r = p.radius();
    return r < 1 ? powf(1 - r, 2.4f) * 0.7f + 0.3f * expf(-r * r * 14) : 0.0f;
}

float core(Point p) {
    const float r = p.radius();
    return expf(-r * r * 90) + 0.45f * expf(-r * 9) + 0.1f * expf(-r * r * 6);
}

// A convection cell: bright and lumpy, with darker lanes.
float granule(Point p) {
    const float warp = 0.16f * cloudNoise(3 * p.x, 3 * p.y, 11);
    const float r = p.radius() * (1.15f + warp);
    const float lanes = 1 - powf(1 - fabsf(cloudNoise(1.7f * p.x + 7, 1.7f * p.y, 23)), 5);
    return smoothstep(0, 0.8f, 0.9f - r) * (0.5f + 0.5f * lanes);
}

// Tongues of flame.
float flame(Point p) {
    const float r = p.radius();
    const float x = p.x / (r + 0.05f), y = p.y / (r + 0.05f);
    const float tongues = cloudNoise(1.9f * x + 1.2f * r, 1.9f * y - 1.2f * r, 31);
    const float reach = 0.62f + 0.5f * tongues;
    const float wisps = 0.75f + 0.5f * cloudNoise(3 * p.x + 4, 3 * p.y, 41);
    return smoothstep(0, 0.55f, reach - r) * clamp01(wisps) * (0.4f + 0.6f * expf(-4 * r * r));
}

// A thin shell, seen from outside.
float shell(Point p) {
    const float wave = 0.07f * cloudNoise(1.3f * p.x, 1.3f * p.y, 53);
    return 0.8f * expf(-powf((p.radius() - 0.64f + wave) / 0.085f, 2)) +
           0.12f * smoothstep(0, 0.7f, 0.75f - p.radius());
}

// An upright spindle.
float ray(Point p) {
    const float width = 0.05f + 0.09f * (1 - fabsf(p.y));
    return expf(-powf(p.x / width, 2)) * powf(clamp01(1 - fabsf(p.y) / 0.95f), 1.5f) +
           0.5f * expf(-(p.x * p.x + p.y * p.y) * 40);
}

// A four-pointed glint.
float star(Point p) {
    const float ax = fabsf(p.x), ay = fabsf(p.y);
    const float cross = expf(-ax * 34 - ay * 2.6f) + expf(-ay * 34 - ax * 2.6f);
    return clamp01(0.85f * cross + 0.6f * expf(-(p.x * p.x + p.y * p.y) * 70));
}

float smoke(Point p) {
    const float x = p.x + 0.35f * cloudNoise(1.7f * p.x, 1.7f * p.y, 61);
    const float y = p.y + 0.35f * cloudNoise(1.7f * p.x + 9, 1.7f * p.y, 67);
    const float r = hypotf(x, y);
    const float wisps = 0.55f + 0.75f * cloudNoise(2.2f * x, 2.2f * y, 71);
    return clamp01(wisps) * smoothstep(0, 0.8f, 0.85f - r);
}

Canvas strip() {
    using Sprite = float (*)(Point);
    static const Sprite sprites[CELLS] = {glow, core, granule, flame, shell, ray, star, smoke};
    Canvas canvas(CELLS * CELL, CELL);
    canvas.paint([](float x, float y) {
        const int cell = int(x) / CELL;
        const Point p = {2 * (x - float(cell * CELL)) / CELL - 1, 2 * y / CELL - 1};
        const float light = clamp01(sprites[cell](p));
        return Colour{1, 1, 1, light * (1 - smoothstep(0.8f, 0.98f, p.radius()))};
    });
    return canvas;
}

// One emitter of the particle file. All particles fly out from the centre; the energy starts far above 1, so
// that they shine evenly until about the radius of the sun and then go out quickly.
struct Stream {
    const char* name;
    int texture, rate;
    float speed[2]; // units per second
    float reach[2]; // units from the centre at which it has gone out
    float fade;     // units before that over which it fades
    const char* color[2];
    float size[2]; // units
    float sizedecay[2];
    float intensity[2];
    float noise[2];
    float angle[2]; // from the y axis, radians
    float timeoffset[2];
};

// The camera starts in the centre, leaves the sphere after half of the span, and ends 1500 units off. Its far
// plane is 1000 units away: the sun goes out from its rim while the camera leaves it. The outer streams
// stay hidden on their way from the centre.
// clang-format off
const Stream sun[] = {
    {"glow",     0,   14, {130, 160}, {300, 350}, 100, {"f26b1c", "f08a3c"}, { 60,  96}, {-0.10f, 0.05f},
     {0.22f, 0.30f}, {0.00f, 0.05f}, {PI, 0}, {0.15f, 0.50f}},
    {"granules", 2,  180, {150, 165}, {340, 370},  50, {"f26b1c", "f7d9b0"}, { 22,  38}, {-0.05f, 0.05f},
     {0.24f, 0.40f}, {0.05f, 0.25f}, {PI, 0}, {0.15f, 0.50f}},
    {"flames",   3,   40, {120, 200}, {280, 390},  80, {"c8480c", "f2812e"}, { 30,  54}, { 0.00f, 0.15f},
     {0.24f, 0.40f}, {0.10f, 0.35f}, {PI, 0}, {0.10f, 0.50f}},
    {"core",     1,   80, { 40,  90}, { 90, 170},  50, {"f7d9b0", "f6f1e6"}, { 18,  38}, { 0.10f, 0.30f},
     {0.30f, 0.45f}, {0.00f, 0.10f}, {PI, 0}, {0.10f, 0.40f}},
    {"sparks",   6,  200, {190, 270}, {390, 470},  50, {"f7c488", "f6f1e6"}, {  8,  18}, { 0.00f, 0.20f},
     {0.50f, 0.90f}, {0.30f, 0.80f}, {PI, 0}, {0.10f, 0.60f}},
    {"surface",  2, 2200, {194, 206}, {412, 430},  35, {"f26b1c", "f6b070"}, { 30,  50}, { 0.00f, 0.03f},
     {0.50f, 0.76f}, {0.05f, 0.25f}, {PI, 0}, {1.45f, 1.55f}},
    {"shine",    0,  230, {195, 205}, {408, 424},  35, {"e05810", "f2812e"}, { 76, 112}, { 0.00f, 0.03f},
     {0.36f, 0.50f}, {0.00f, 0.10f}, {PI, 0}, {1.45f, 1.55f}},
    {"corona",   3,  180, {195, 220}, {430, 480},  50, {"c8480c", "f08a3c"}, { 48,  80}, { 0.00f, 0.03f},
     {0.40f, 0.60f}, {0.10f, 0.35f}, {PI, 0}, {1.40f, 1.60f}},
};
// clang-format on

void writePair(std::ostream& out, const char* name, float v1, float v2) {
    char line[128];
    snprintf(line, sizeof line, "\t\t\t<%s v1=\"%.4g\" v2=\"%.4g\"/>\n", name, double(v1), double(v2));
    out << line;
}

void writeStream(std::ostream& out, const Stream& s) {
    out << "\t\t<emitter name=\"" << s.name << "\" texture=\"" << s.texture << "\" rate=\"" << s.rate
        << "\" num=\"-1\">\n";
    writePair(out, "speed", s.speed[0], s.speed[1]);
    writePair(out, "angle", s.angle[0], s.angle[1]);
    out << "\t\t\t<color v1=\"" << s.color[0] << "\" v2=\"" << s.color[1] << "\"/>\n";
    // Energy falls from 1 to 0.1 over the last `fade` units, and by the same factor over every such distance
    // before.
    const float speed = (s.speed[0] + s.speed[1]) / 2;
    const float decay = logf(10) * speed / s.fade;
    writePair(out, "energy", 0.1f * expf(decay * s.reach[0] / speed),
              0.1f * expf(decay * s.reach[1] / speed));
    writePair(out, "energydecay", decay, decay);
    writePair(out, "size", s.size[0], s.size[1]);
    writePair(out, "sizedecay", s.sizedecay[0], s.sizedecay[1]);
    writePair(out, "intensity", s.intensity[0], s.intensity[1]);
    writePair(out, "noise", s.noise[0], s.noise[1]);
    writePair(out, "timeoffset", s.timeoffset[0], s.timeoffset[1]);
    out << "\t\t</emitter>\n";
}

bool writeParticles(const std::filesystem::path& path) {
    std::error_code without; // a failure shows when the file is written
    std::filesystem::create_directories(path.parent_path(), without);
    std::ostringstream out;
    out << "<?xml version=\"1.0\"?>\n<!-- The particles of the show. Made by make_spark_art. -->\n<spark>\n"
           "\t<instance name=\"sun\">\n";
    for (const Stream& stream : sun)
        writeStream(out, stream);
    out << "\t</instance>\n</spark>\n";
    const std::string text = out.str();
    return zentrak::command::writeFile(path.string(), text.data(), text.size());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || zentrak::command::isOption(argv[1])) {
        fprintf(stderr, "usage: make_spark_art FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    return strip().write(folder / "sparks.png") && writeParticles(folder / "spark/spark.xml") ? 0 : 1;
}
