// Paints the pictures of the screen effects: the frame, the round sprite, the logo and the last card.
//   make_screen_art FOLDER      writes border/, rund/, icons/ and overlay/ below the show's data folder

#include "canvas.h"
#include "command/command.h"
#include "lettering.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

using namespace zentrak::art;

namespace {

const Colour ink = {0.055f, 0.05f, 0.075f, 1};
const Colour bone = {0.96f, 0.94f, 0.88f, 1};
const Colour ember = {0.98f, 0.52f, 0.22f, 1};

// A frame for a 16:10 picture: dark worn edges that fade to the middle, a hairline with cut corners, and
// register marks.
Canvas border() {
    Canvas canvas(1280, 800);
    const float width = 1280, height = 800;
    canvas.paint([&](float x, float y) {
        const float edge = -distanceToBox(x, y, width / 2, height / 2, width / 2, height / 2, 0);
        const float wear =
            7 * noise(x / 90, y / 90, 1) + 3 * noise(x / 23, y / 23, 2) + 1.2f * noise(x / 5, y / 5, 3);
        const float solid = 1 - smoothstep(20, 24, edge + wear);
        const float shade = 0.55f * (1 - smoothstep(0, 190, edge));
        return Colour{ink.r, ink.g, ink.b, std::max(solid, shade * shade * 1.5f)};
    });
    // The hairline, open in the middle of each side.
    canvas.fill({bone.r, bone.g, bone.b, 0.55f}, [&](float x, float y) {
        const float dx = fabsf(x - width / 2), dy = fabsf(y - height / 2);
        const float line = std::max(std::max(dx - 586, dy - 346), (dx + dy - 586 - 346 + 26) * 0.7071f);
        const bool open = dx < 200 || dy < 110;
        return open ? 10.0f : fabsf(line) - 0.8f;
    });
    for (const int sx : {-1, 1}) {
        for (const int sy : {-1, 1}) {
            const float cx = width / 2 + float(sx) * 600, cy = height / 2 + float(sy) * 360;
            canvas.fill({ember.r, ember.g, ember.b, 0.9f}, [&](float x, float y) {
                return std::min(distanceToBox(x, y, cx, cy, 9, 1, 0), distanceToBox(x, y, cx, cy, 1, 9, 0));
            });
        }
    }
    // Ticks along the top and the bottom, as on a ruler.
    for (int i = -14; i <= 14; ++i) {
        const float cx = width / 2 + float(i) * 13;
        const float half = i % 7 == 0 ? 5.0f : 2.5f;
        for (const float cy : {54.0f, height - 54})
            canvas.fill({bone.r, bone.g, bone.b, 0.45f},
                        [&](float x, float y) { return distanceToBox(x, y, cx, cy, 0.7f, half, 0); });
    }
    return canvas;
}

// White concentric rings with a bright rim, the shape in the alpha channel; the effects tint it.
Canvas rund() {
    Canvas canvas(256, 256);
    canvas.paint([](float x, float y) {
        const float dx = x - 128, dy = y - 128;
        const float r = hypotf(dx, dy) / 124;
        const float angle = atan2f(dy, dx);
        float a = 0.42f * (1 - smoothstep(0.1f, 1.0f, r));
        a += 0.75f * expf(-powf((r - 0.86f) / 0.035f, 2));
        a += 0.35f * expf(-powf((r - 0.62f) / 0.012f, 2));
        a += 0.30f * expf(-powf((r - 0.40f) / 0.060f, 2)) * (0.5f + 0.5f * cosf(12 * angle));
        a += 0.45f * expf(-powf((r - 0.74f) / 0.025f, 2)) * (cosf(48 * angle) > 0.2f ? 1.0f : 0.0f);
        a *= 1 - smoothstep(0.93f, 1.0f, r);
        return Colour{1, 1, 1, clamp01(a)};
    });
    return canvas;
}

// Text in `colour`, centred at (x, y), over a soft dark halo.
void letter(Canvas& canvas, const std::string& text, float x, float y, float height, float weight,
            float tracking, const Colour& colour, float halo) {
    const Lettering line(text, height, tracking);
    const float left = x - line.width() / 2, top = y - height / 2;
    if (halo > 0)
        canvas.fill(
            {0, 0, 0, 0.55f}, [&](float px, float py) { return line.distance(px - left, py - top) - weight; },
            halo);
    canvas.fill(colour, [&](float px, float py) { return line.distance(px - left, py - top) - weight / 2; });
}

// The logo, for a light background: four cubes and the name between two rules.
Canvas logo() {
    Canvas canvas(704, 192);
    for (int i = 0; i < 4; ++i) {
        const float cx = 62 + 40 * float(i % 2), cy = 76 + 40 * float(i / 2);
        const Colour face = i == 1 ? ember : ink;
        canvas.fill({face.r, face.g, face.b, i == 2 ? 0.5f : 1.0f},
                    [&](float x, float y) { return distanceToBox(x, y, cx, cy, 17, 17, 3); });
    }
    letter(canvas, "ZENTRAK", 412, 96, 64, 11.5f, 0.42f, ink, 0);
    for (const float y : {20.0f, 172.0f})
        canvas.fill({ink.r, ink.g, ink.b, 0.6f},
                    [&](float px, float py) { return distanceToBox(px, py, 352, y, 316, 0.8f, 0); });
    return canvas;
}

// The last card.
Canvas last() {
    Canvas canvas(1024, 640);
    canvas.paint([](float x, float y) {
        const float d = hypotf((x - 512) / 560, (y - 320) / 300);
        return Colour{ink.r, ink.g, ink.b, 0.82f * (1 - smoothstep(0.35f, 1.0f, d))};
    });
    letter(canvas, "FINALLY", 512, 268, 128, 20, 0.46f, bone, 40);
    letter(canvas, "THAT WAS ZENTRAK", 512, 398, 30, 4.5f, 0.62f, ember, 14);
    letter(canvas, "THANK YOU FOR WATCHING", 512, 452, 20, 3, 0.62f, bone, 10);
    for (const float x : {150.0f, 874.0f})
        canvas.fill({ember.r, ember.g, ember.b, 0.9f},
                    [&](float px, float py) { return distanceToBox(px, py, x, 398, 38, 1.2f, 0); });
    return canvas;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2 || zentrak::command::isOption(argv[1])) {
        fprintf(stderr, "usage: make_screen_art FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    const bool done = border().write(folder / "border/border2.png") &&
                      rund().write(folder / "rund/rund.png") && logo().write(folder / "icons/icons.png") &&
                      last().write(folder / "overlay/finally.png");
    return done ? 0 : 1;
}
