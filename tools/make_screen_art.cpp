// Paints the pictures of the screen effects: the frame, the round sprite, the logo and the last card.
//   make_screen_art FOLDER      writes border/, rund/, icons/ and overlay/ below the show's data folder

#include "canvas.h"
#include "command/command.h"
#include "lettering.h"
#include "palette.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>
#include <string>

using namespace zentrak::art;

namespace {

// A frame for a 16:10 picture of paper: worn dark edges, a warm tint over all that they enclose, a hairline
// with cut corners, and register marks.
Canvas border() {
    Canvas canvas(1280, 800);
    const float width = 1280, height = 800;
    canvas.paint([&](float x, float y) {
        const float edge = -distanceToBox(x, y, width / 2, height / 2, width / 2, height / 2, 0);
        const float wear =
            7 * noise(x / 90, y / 90, 1) + 3 * noise(x / 23, y / 23, 2) + 1.2f * noise(x / 5, y / 5, 3);
        const float solid = 1 - smoothstep(20, 24, edge + wear);
        const float shade = 1 - smoothstep(0, 230, edge);
        const Colour tint =
            mix(Colour{0.80f, 0.66f, 0.42f, 0.11f}, Colour{0.30f, 0.22f, 0.14f, 0.45f}, shade * shade);
        return mix(tint, ink, solid);
    });
    // The hairline, open in the middle of each side.
    canvas.fill({ink.r, ink.g, ink.b, 0.45f}, [&](float x, float y) {
        const float dx = fabsf(x - width / 2), dy = fabsf(y - height / 2);
        const float line = std::max(std::max(dx - 586, dy - 346), (dx + dy - 586 - 346 + 26) * 0.7071f);
        const bool open = dx < 200 || dy < 110;
        return open ? 10.0f : fabsf(line) - 0.8f;
    });
    for (const int sx : {-1, 1}) {
        for (const int sy : {-1, 1}) {
            const float cx = width / 2 + float(sx) * 600, cy = height / 2 + float(sy) * 360;
            canvas.fill({orange.r, orange.g, orange.b, 0.9f}, [&](float x, float y) {
                return std::min(distanceToBox(x, y, cx, cy, 9, 1, 0), distanceToBox(x, y, cx, cy, 1, 9, 0));
            });
        }
    }
    // Ticks along the top and the bottom, as on a ruler.
    for (int i = -14; i <= 14; ++i) {
        const float cx = width / 2 + float(i) * 13;
        const float half = i % 7 == 0 ? 5.0f : 2.5f;
        for (const float cy : {54.0f, height - 54})
            canvas.fill({ink.r, ink.g, ink.b, 0.45f},
                        [&](float x, float y) { return distanceToBox(x, y, cx, cy, 0.7f, half, 0); });
    }
    return canvas;
}

// An iris in ink: rings and fibres, the shape in the alpha channel. The effect multiplies with red, so only
// black stays what it is.
Canvas rund() {
    Canvas canvas(96, 96);
    canvas.paint([](float x, float y) {
        const float dx = x - 48, dy = y - 48;
        const float r = hypotf(dx, dy) / 47;
        const float angle = atan2f(dy, dx);
        float a = 0.42f * (1 - smoothstep(0.1f, 1.0f, r));
        a += 0.75f * expf(-powf((r - 0.86f) / 0.035f, 2));
        a += 0.35f * expf(-powf((r - 0.62f) / 0.012f, 2));
        a += 0.30f * expf(-powf((r - 0.40f) / 0.060f, 2)) * (0.5f + 0.5f * cosf(12 * angle));
        a += 0.45f * expf(-powf((r - 0.74f) / 0.025f, 2)) * (cosf(48 * angle) > 0.2f ? 1.0f : 0.0f);
        a *= 1 - smoothstep(0.93f, 1.0f, r);
        return Colour{0, 0, 0, clamp01(a)};
    });
    return canvas;
}

// Text in `colour`, centred at (x, y).
void letter(Canvas& canvas, const std::string& text, float x, float y, float height, float weight,
            float tracking, const Colour& colour) {
    const Lettering line(text, height, tracking);
    const float left = x - line.width() / 2, top = y - height / 2;
    canvas.fill(colour, [&](float px, float py) { return line.distance(px - left, py - top) - weight / 2; });
}

// The upper and the lower edge of an eye `half` wide to each side, at `x` from its middle; y goes down.
float upperLid(float x, float half) {
    return -0.62f * half * powf(std::max(0.0f, 1 - x * x / (half * half)), 0.75f);
}
float lowerLid(float x, float half) {
    return 0.42f * half * powf(std::max(0.0f, 1 - x * x / (half * half)), 0.9f);
}

// The distance of a point from the line of a lid, from corner to corner.
float lidDistance(float (*lid)(float, float), float half, float x, float y) {
    constexpr int STEPS = 96;
    constexpr float PI = std::numbers::pi_v<float>;
    float distance = 10 * half;
    for (int i = 0; i < STEPS; ++i) {
        // Denser towards the corners, where the line is steep.
        const float x0 = -half * cosf(PI * float(i) / STEPS), x1 = -half * cosf(PI * float(i + 1) / STEPS);
        distance = std::min(distance, distanceToSegment(x, y, x0, lid(x0, half), x1, lid(x1, half)));
    }
    return distance;
}

// The sign of the show: an eye, drawn with a pen. `half` is half its width.
void openEye(Canvas& canvas, float cx, float cy, float half) {
    const float pen = half / 22;
    canvas.fill(orange, [&](float x, float y) {
        const float r = hypotf(x - cx, y - cy + half * 0.07f);
        return fabsf(r - half * 0.30f) - half * 0.075f;
    });
    canvas.fill(ink, [&](float x, float y) { return hypotf(x - cx, y - cy + half * 0.07f) - half * 0.15f; });
    canvas.fill(ink, [&](float x, float y) {
        const float upper = lidDistance(upperLid, half, x - cx, y - cy);
        const float lower = lidDistance(lowerLid, half, x - cx, y - cy);
        const float middle = clamp01(1 - powf((x - cx) / half, 2)); // 0 in the corners
        return std::min(upper - pen * (0.7f + 0.7f * middle), lower - pen * 0.7f);
    });
}

// The same with its lid down.
void closedEye(Canvas& canvas, float cx, float cy, float half) {
    const float pen = half / 22;
    canvas.fill(ink,
                [&](float x, float y) { return lidDistance(lowerLid, half, x - cx, y - cy) - pen * 1.3f; });
    for (int i = -4; i <= 4; ++i) {
        const float at = float(i) * half * 0.19f, length = half * (0.30f - 0.009f * float(i * i));
        const float x0 = cx + at, y0 = cy + lowerLid(at, half);
        const float x1 = x0 + 0.5f * at * length / half, y1 = y0 + length;
        canvas.fill(i == 0 ? orange : ink,
                    [&](float x, float y) { return distanceToSegment(x, y, x0, y0, x1, y1) - pen * 0.7f; });
    }
}

// The logo, for a light background. It fits a window 640 pixels wide.
Canvas logo() {
    Canvas canvas(576, 256);
    openEye(canvas, 288, 88, 116);
    letter(canvas, "ZENTRAK", 288, 214, 58, 10.5f, 0.62f, ink);
    return canvas;
}

// The last card, for a light background.
Canvas last() {
    Canvas canvas(1024, 640);
    closedEye(canvas, 512, 176, 150);
    letter(canvas, "GOOD NIGHT", 512, 400, 66, 11.5f, 0.50f, ink);
    letter(canvas, "THAT WAS ZENTRAK", 512, 480, 24, 4.2f, 0.62f, teal);
    letter(canvas, "THANK YOU FOR WATCHING", 512, 528, 17, 3.0f, 0.62f, ink);
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
