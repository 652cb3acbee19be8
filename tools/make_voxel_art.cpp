// Paints the pictures of the set pieces, whose pixels become boxes, and the small textures that they share.
//   make_voxel_art FOLDER
// Writes kub/, credits/, grand/, greet/, vul/, cubemap/ and hurry/ below the show's data folder.

#include "canvas.h"
#include "command/command.h"
#include "lettering.h"
#include "palette.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

using namespace zentrak::art;

namespace {

const Colour none = {0, 0, 0, 0};
const Colour lash = {0.10f, 0.10f, 0.12f, 1};

// The eye that the show is about, on a ground of 64 by 32. Transparent around it. `y` goes down.
struct Eye {
    static float upper(float x) {
        return 17 - 13.0f * powf(std::max(0.0f, 1 - square((x - 32) / 30)), 0.75f);
    }
    static float lower(float x) { return 17 + 9.0f * powf(std::max(0.0f, 1 - square((x - 32) / 30)), 0.9f); }
    static float square(float f) { return f * f; }

    static Colour iris(float r, float angle) {
        if (r < 3.6f)
            return {0.075f, 0.075f, 0.085f, 1};
        const float ray = 0.5f + 0.5f * cosf(11 * angle + 3 * r);
        const Colour inner = mix(Colour{1.0f, 0.66f, 0.24f, 1}, orange, smoothstep(3.6f, 5.2f, r));
        const Colour fibres = mix(inner, teal, smoothstep(4.4f, 7.0f, r + 1.2f * ray));
        return mix(fibres, Colour{0.03f, 0.17f, 0.21f, 1}, smoothstep(7.9f, 9.2f, r));
    }

    static Colour at(float x, float y) {
        const float dx = (x - 32) / 30;
        if (fabsf(dx) >= 1)
            return none;
        const float top = upper(x), bottom = lower(x);
        if (y > top - 3.4f && y < top - 2.0f && fabsf(dx) < 0.86f) // the fold above the lid
            return mix(orange, Colour{0.35f, 0.17f, 0.10f, 1}, fabsf(dx));
        if (y < top || y > bottom)
            return none;
        if (y < top + 1.5f)
            return lash;
        if (y > bottom - 1.0f)
            return {0.90f, 0.56f, 0.36f, 1};
        if (hypotf(x - 28.5f, y - 12.0f) < 1.7f) // the glint
            return {1, 1, 1, 1};
        const float r = hypotf(x - 32, y - 15.5f);
        if (r < 9.2f)
            return iris(r, atan2f(y - 15.5f, x - 32));
        const float shade = clamp01(0.30f + 0.70f * smoothstep(0, 7, y - top)) * (1 - 0.3f * dx * dx);
        return mix(Colour{paper.r * shade, paper.g * shade, paper.b * shade, 1}, orange,
                   0.30f * smoothstep(0.78f, 1, fabsf(dx)));
    }
};

// 64 by 32: each pixel is a cube, and black ones are left out.
Canvas eye() {
    Canvas canvas(64, 32);
    canvas.paint([](float x, float y) {
        Colour colour = Eye::at(x, y);
        if (colour.a == 0)
            colour = {0, 0, 0, 1};
        return colour;
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
    const Colour from = role ? Colour{0.90f, 0.34f, 0.06f, 1} : Colour{0.13f, 0.13f, 0.15f, 1};
    const Colour to = role ? Colour{0.72f, 0.24f, 0.03f, 1} : Colour{0.03f, 0.03f, 0.04f, 1};
    const float weight = role ? 3.0f : line.height() < 20 ? 3.4f : 4.2f;
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

// One of the nineteen layers of the eye that closes, 128 by 80. Its picture lies in the last layer; below
// each lash hangs a stack of boxes, hidden behind its tip until the columns have tipped back and show the
// layers from the side.
Canvas eyeLayer(int layer) {
    Canvas canvas(128, 80);
    constexpr int LAST = 18;
    for (int x = 2; x < 126; ++x) {
        // Half the width of the picture's ground, a little lower.
        const float gx = (float(x) + 0.5f) / 2;
        for (int y = 0; y < 80 && layer == LAST; ++y) {
            const Colour colour = Eye::at(gx, (float(y) + 0.5f) / 2 - 4);
            if (colour.a > 0)
                canvas.at(x, y) = colour;
        }
        // The lash of this column, if it has one: longest in the middle.
        const bool hasLash = x % 9 == 1 && x > 10 && x < 120;
        const int length = 6 + int(11 * (1 - Eye::square((gx - 32) / 30)));
        if (layer == LAST || (hasLash && layer > LAST - length))
            canvas.at(x, int(2 * (Eye::upper(gx) + 4)) + 1) = layer == LAST || x != 64 ? lash : orange;
    }
    return canvas;
}

// The slab of the greetings is seen aslant from the third on: the camera stands at its near end, and what is
// further away shrinks. Letters therefore get wider from the first, at FIRST_COLUMN, by two GROWTHs each.
// Returns how many letters `column` lies behind the first.
float slantedLetters(float column) {
    constexpr float FIRST_COLUMN = 46, FIRST_WIDTH = 11.0f, GROWTH = 0.5f;
    const float c = column - FIRST_COLUMN;
    return c < 0 ? c / FIRST_WIDTH
                 : (sqrtf(FIRST_WIDTH * FIRST_WIDTH + 4 * GROWTH * c) - FIRST_WIDTH) / (2 * GROWTH);
}

// The greetings: strips of 192 by 24, one below the other. The first two are seen from the front and have one
// line, the others from the side and have two.
Canvas greetings() {
    struct Greeting {
        const char* upper;
        const char* lower;
    };
    const Greeting greetings[] = {{"GREETINGS TO", ""}, {"ALL WHO LOOK", ""}, {"NIGHT", "OWLS"},
                                  {"PIXEL", "BAKERS"},  {"BIT", "WEAVERS"},   {"SINE", "RIDERS"},
                                  {"CUBE", "HERDERS"}};
    Canvas canvas(192, 24 * int(std::size(greetings)));
    const Colour bright = {1.0f, 0.98f, 0.94f, 1}, warm = {1.0f, 0.56f, 0.20f, 1};
    int top = 0;
    const auto write = [&](const char* text, float row, float height, const Colour& colour, bool slanted) {
        const Lettering line(text, height, slanted ? 0.36f : 0.30f);
        const float left = 96 - line.width() / 2;
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 192; ++x) {
                const float at = slanted ? height * slantedLetters(float(x) + 0.5f) : float(x) + 0.5f - left;
                const float cover =
                    clamp01((slanted ? 1.3f : 1.7f) - line.distance(at, float(y) + 0.5f - row));
                if (cover > 0) {
                    Colour c = colour;
                    c.a = (slanted ? 0.66f : 1.0f) * cover;
                    canvas.at(x, top + y) = c;
                }
            }
        }
    };
    for (const Greeting& greeting : greetings) {
        const bool slanted = greeting.lower[0] != 0;
        if (slanted) {
            write(greeting.upper, 1.5f, 8.5f, bright, true);
            write(greeting.lower, 13.5f, 8.5f, warm, true);
        } else {
            write(greeting.upper, 5, 14, top == 0 ? warm : bright, false);
        }
        top += 24;
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
        const Colour ground = ink, horizon = orange, top = teal;
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

// A point of light: white, the light in the alpha channel, with a faint ring around it. It keeps to the
// middle of the picture: what `cloud` costs is the area of its ten thousand points.
Canvas particle() {
    Canvas canvas(64, 64);
    canvas.paint([](float x, float y) {
        const float r = hypotf(x - 32, y - 32) / 32;
        const float core = expf(-r * r * 300), glow = 0.55f * powf(clamp01(1 - r / 0.22f), 2);
        const float ring = 0.25f * expf(-powf((r - 0.16f) / 0.022f, 2));
        return Colour{1, 1, 1, clamp01(core + glow + ring) * (1 - smoothstep(0.20f, 0.24f, r))};
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
        done = done && eyeLayer(layer).write(folder / name);
    }
    return done ? 0 : 1;
}
