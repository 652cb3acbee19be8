// Paints the pictures of the set pieces, whose pixels become boxes, and the small textures that they share.
//   make_voxel_art FOLDER
// Writes kub/, credits/, grand/, greet/, vul/, cubemap/ and hurry/ below the show's data folder.

#include "canvas.h"
#include "command/command.h"
#include "lettering.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

using namespace zentrak::art;

namespace {

const Colour bone = {0.97f, 0.94f, 0.86f, 1};
const Colour ember = {0.98f, 0.48f, 0.20f, 1};
const Colour teal = {0.18f, 0.62f, 0.66f, 1};

// An eye with lashes, 64 by 32: each pixel is a cube, and black ones are left out.
Canvas eye() {
    Canvas canvas(64, 32);
    canvas.paint([](float x, float y) {
        const Colour none = {0, 0, 0, 1};
        const float dx = (x - 32) / 30, dy = y - 17;
        if (fabsf(dx) >= 1)
            return none;
        const float upper = -13.0f * powf(1 - dx * dx, 0.75f), lower = 9.0f * powf(1 - dx * dx, 0.9f);
        const float r = hypotf(x - 32, dy + 1.5f);
        const float angle = atan2f(dy + 1.5f, x - 32);
        // The fold above the lid.
        if (dy > upper - 3.2f && dy < upper - 2.0f && fabsf(dx) < 0.86f)
            return Colour{0.62f, 0.30f, 0.26f, 1};
        if (dy < upper || dy > lower)
            return none;
        if (dy < upper + 1.5f) // lashes
            return Colour{0.22f, 0.13f, 0.16f, 1};
        if (dy > lower - 1.0f)
            return Colour{0.83f, 0.45f, 0.42f, 1};
        if (hypotf(x - 28.5f, dy + 5.0f) < 1.7f) // the glint
            return Colour{1, 1, 1, 1};
        if (r < 3.4f)
            return Colour{0.10f, 0.07f, 0.12f, 1};
        if (r < 9.2f) {
            const float ray = 0.5f + 0.5f * cosf(11 * angle + 3 * r);
            Colour iris = mix(Colour{0.98f, 0.66f, 0.16f, 1}, Colour{0.06f, 0.52f, 0.56f, 1},
                              smoothstep(3.6f, 7.2f, r + 1.2f * ray));
            return mix(iris, Colour{0.03f, 0.16f, 0.26f, 1}, smoothstep(7.8f, 9.2f, r));
        }
        const float shade = clamp01(0.25f + 0.75f * smoothstep(0, 7, dy - upper)) * (1 - 0.3f * dx * dx);
        const float veins = dx * dx > 0.3f && noise(x / 2.5f, y / 1.4f, 5) > 0.45f ? 0.25f : 0.0f;
        return mix(Colour{0.95f * shade, 0.93f * shade, 0.90f * shade, 1}, Colour{0.85f, 0.35f, 0.32f, 1},
                   veins + 0.35f * smoothstep(0.8f, 1, fabsf(dx)));
    });
    return canvas;
}

// One face of a lit box: pale in the middle, darker towards the edges, with a bright bevel.
Canvas tile(float dark, float bevel) {
    Canvas canvas(64, 64);
    canvas.paint([=](float x, float y) {
        const float edge = -distanceToBox(x, y, 32, 32, 32, 32, 0);
        const float rim = smoothstep(0, 3, edge);
        float light = mix(dark, 1.0f, smoothstep(0, 26, edge)) * (0.35f + 0.65f * rim);
        light += bevel * expf(-powf((edge - 5) / 1.8f, 2)) * (1 - y / 64);
        return Colour{clamp01(light), clamp01(light), clamp01(light * 0.985f), 1};
    });
    return canvas;
}

// A role in the upper half or a name in the lower one, 160 by 64, so that one of each fits on the screen.
Canvas credit(const std::string& text, bool role) {
    Canvas canvas(160, 64);
    Lettering line(text, role ? 15.0f : 20.0f, 0.34f);
    if (line.width() > 148)
        line = Lettering(text, 17, 0.22f);
    const float left = 80 - line.width() / 2, top = role ? 6.0f : 36.0f;
    const Colour from = role ? teal : bone, to = role ? bone : ember;
    const float weight = role ? 3.0f : 4.2f;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 160; ++x) {
            const float d = line.distance(float(x) + 0.5f - left, float(y) + 0.5f - top) - weight / 2;
            if (d < 0.5f) {
                Colour c = mix(from, to, clamp01((float(y) - top) / line.height()));
                c.a = clamp01(0.5f - d) > 0.5f ? 1.0f : 0.55f;
                canvas.at(x, y) = c;
            }
        }
    }
    return canvas;
}

// The height of an island, 0 to 1, over a map of 128 by 80.
float island(float x, float y) {
    const float dx = (x - 64) / 60, dy = (y - 40) / 36;
    const float shore = 1 - (dx * dx + dy * dy);
    const float ground = 0.55f * noise(x / 24, y / 24, 11) + 0.28f * noise(x / 11, y / 11, 12) +
                         0.12f * noise(x / 5, y / 5, 13);
    const float peak = 0.85f * expf(-(powf((x - 52) / 17, 2) + powf((y - 36) / 13, 2))) +
                       0.55f * expf(-(powf((x - 88) / 12, 2) + powf((y - 47) / 10, 2)));
    return clamp01(shore * 0.42f + ground * 0.30f * clamp01(shore + 0.25f) + peak * 0.75f);
}

// One of the nineteen layers of the island: the parts that reach above it, except where the next layer hides
// them.
Canvas islandLayer(int layer) {
    Canvas canvas(128, 80);
    const float floor = 0.06f + 0.048f * float(layer), next = floor + 0.048f;
    struct Step {
        float height;
        Colour colour;
    };
    static const std::vector<Step> steps = {
        {0.06f, {0.93f, 0.82f, 0.58f, 1}}, {0.16f, {0.45f, 0.62f, 0.26f, 1}},
        {0.36f, {0.16f, 0.44f, 0.26f, 1}}, {0.56f, {0.47f, 0.36f, 0.30f, 1}},
        {0.74f, {0.62f, 0.58f, 0.58f, 1}}, {0.86f, {0.98f, 0.98f, 1.00f, 1}}};
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 128; ++x) {
            const float h = island(float(x), float(y));
            if (h < floor)
                continue;
            // Hidden where the next layer covers it and all its neighbours.
            bool hidden = true;
            for (const int d : {-1, 1})
                hidden = hidden && island(float(x + d), float(y)) >= next &&
                         island(float(x), float(y + d)) >= next;
            if (hidden && layer < 18)
                continue;
            Colour c = steps.back().colour;
            for (size_t i = 1; i < steps.size(); ++i) {
                if (floor < steps[i].height) {
                    c = mix(steps[i - 1].colour, steps[i].colour,
                            clamp01((floor - steps[i - 1].height) / (steps[i].height - steps[i - 1].height)));
                    break;
                }
            }
            // Light from the upper left.
            const float slope = island(float(x) + 1, float(y) + 1) - island(float(x) - 1, float(y) - 1);
            const float light = clamp01(0.86f - 2.6f * slope);
            canvas.at(x, y) = {c.r * light, c.g * light, c.b * light, 1};
        }
    }
    return canvas;
}

// The greetings: strips of 192 by 24, one below the other.
Canvas greetings() {
    const char* const texts[] = {"GREETINGS TO", "NIGHT OWLS",    "PIXEL BAKERS",  "BIT WEAVERS",
                                 "SINE RIDERS",  "LOOP KEEPERS",  "CUBE HERDERS",  "WAX MOTHS",
                                 "CYCLE MISERS", "FLOAT SAILORS", "RING BUILDERS", "AND TO YOU"};
    const int bands = int(std::size(texts));
    Canvas canvas(192, 24 * bands);
    const Colour colours[] = {
        bone, ember, {0.95f, 0.78f, 0.30f, 1}, teal, {0.86f, 0.36f, 0.52f, 1}, {0.58f, 0.78f, 0.36f, 1}};
    for (int band = 0; band < bands; ++band) {
        Lettering line(texts[band], 14, 0.30f);
        if (line.width() > 180)
            line = Lettering(texts[band], 14, 0.22f);
        const float left = 96 - line.width() / 2;
        const Colour top = colours[band % 6], bottom = colours[(band + 1) % 6];
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 192; ++x) {
                const float cover = clamp01(1.9f - line.distance(float(x) + 0.5f - left, float(y) - 4.5f));
                if (cover > 0) {
                    Colour c = mix(top, bottom, float(y) / 24);
                    c.a = cover;
                    canvas.at(x, band * 24 + y) = c;
                }
            }
        }
    }
    return canvas;
}

// A sky for reflections: a vertical cross of six 64 by 64 faces.
Canvas sky() {
    const int s = 64;
    Canvas canvas(3 * s, 4 * s);
    const auto colourOf = [](float x, float y, float z) {
        const float length = sqrtf(x * x + y * y + z * z);
        const float up = y / length;
        const Colour ground = {0.12f, 0.09f, 0.10f, 1}, horizon = {0.98f, 0.64f, 0.38f, 1},
                     top = {0.10f, 0.22f, 0.46f, 1};
        Colour c =
            up < 0 ? mix(horizon, ground, smoothstep(0, 0.35f, -up)) : mix(horizon, top, powf(up, 0.5f));
        const float sun = (x * 0.5f + y * 0.35f + z * 0.79f) / length;
        return mix(c, Colour{1, 0.97f, 0.88f, 1}, smoothstep(0.93f, 0.99f, sun));
    };
    for (int y = 0; y < s; ++y) {
        for (int x = 0; x < s; ++x) {
            const float u = (float(x) + 0.5f) / 32 - 1, v = (float(y) + 0.5f) / 32 - 1;
            canvas.at(s + x, y) = colourOf(u, 1, v);           // up
            canvas.at(x, s + y) = colourOf(-1, -v, u);         // left
            canvas.at(s + x, s + y) = colourOf(u, -v, 1);      // ahead
            canvas.at(2 * s + x, s + y) = colourOf(1, -v, -u); // right
            canvas.at(s + x, 2 * s + y) = colourOf(u, -1, -v); // down
            canvas.at(s + x, 3 * s + y) = colourOf(u, v, -1);  // behind, upside down
            for (const int cx : {0, 2 * s})
                for (const int cy : {0, 2 * s, 3 * s})
                    canvas.at(cx + x, cy + y) = {0, 0, 0, 1};
        }
    }
    return canvas;
}

// A glowing point: white, with its brightness in the alpha channel and in the colours.
Canvas particle() {
    Canvas canvas(64, 64);
    canvas.paint([](float x, float y) {
        const float r = hypotf(x - 32, y - 32) / 32;
        const float light = r < 1 ? powf(1 - r, 2.2f) * 0.75f + 0.55f * expf(-r * r * 40) : 0.0f;
        const float l = clamp01(light * (1 - smoothstep(0.75f, 1.0f, r)));
        return Colour{1, 1, 1, l};
    });
    return canvas;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || zentrak::command::isOption(argv[1])) {
        fprintf(stderr, "usage: make_voxel_art FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    bool done = eye().write(folder / "kub/kub.png") && tile(0.62f, 0.16f).write(folder / "kub/shade.png") &&
                tile(0.45f, 0.30f).write(folder / "vul/vul.png") &&
                greetings().write(folder / "greet/greet.png") && sky().write(folder / "cubemap/cube1.png") &&
                particle().write(folder / "hurry/particle.png");
    for (const char* role : {"code", "tracking", "graphics", "bitching"})
        done = done && credit(role, true).write(folder / ("credits/credits_" + std::string(role) + ".png"));
    for (const char* name : {"moonpulse", "zaplin", "orvo", "qark"})
        done = done && credit(name, false).write(folder / ("credits/credits_" + std::string(name) + ".png"));
    for (int layer = 0; layer < 19; ++layer) {
        char name[32];
        snprintf(name, sizeof name, "grand/grand%02d.png", layer + 1);
        done = done && islandLayer(layer).write(folder / name);
    }
    return done ? 0 : 1;
}
