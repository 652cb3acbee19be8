// The lettering of the show, drawn by zentrak-film and read by an OCR program: what a machine can read across
// a moving picture, a viewer can.
#include "mb_matrix4x4col.h"
#include "music/form.h"
#include "support.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace zentrak;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

constexpr int RATE = 4; // frames a second

struct Size {
    int width, height;
};

// Stills of the show, from `from` to `to` seconds of it.
class Stills {
public:
    Stills(const Size& size, double from, double to) : mFirst(std::lround(from * RATE)) {
        char command[512];
        snprintf(
            command, sizeof command,
            ZENTRAK_FILM " --virtual --seed 1 --size %dx%d --rate %d --from %.4f --to %.4f --frames '%s' "
                         "--show '%s'",
            size.width, size.height, RATE, from, to, mDir.path().c_str(), test::sourcePath("data").c_str());
        const auto [status, output] = test::runCommand(command);
        EXPECT_EQ(status, 0) << output;
    }

    // The first still at or after `time`.
    std::string at(double time) const {
        char name[32];
        snprintf(name, sizeof name, "%06ld.png", std::lround(std::ceil(time * RATE)) - mFirst);
        return mDir.file(name);
    }

private:
    test::TempDir mDir;
    long mFirst;
};

// The capitals that Tesseract reads in the picture, after ImageMagick has prepared it; everything else is
// left out.
std::string read(const std::string& picture, const std::string& prepare) {
    const auto [status, output] =
        test::runCommand("convert '" + picture + "' " + prepare +
                         " -bordercolor white -border 40 png:- | OMP_THREAD_LIMIT=1 "
                         "tesseract - - --psm 6 -l eng 2>/dev/null");
    EXPECT_EQ(status, 0) << "tesseract is missing: apt-get install tesseract-ocr, or it failed on "
                         << picture;
    std::string letters;
    for (const char c : output)
        if (isalpha(static_cast<unsigned char>(c)))
            letters += char(toupper(static_cast<unsigned char>(c)));
    return letters;
}

void expectText(const std::string& read, const std::string& text, const Size& size) {
    EXPECT_NE(read.find(text), std::string::npos)
        << text << " was read as " << read << " at " << size.width << "x" << size.height;
}

// The position in the window of a point on the slab of the greetings (from the third on).
struct Pixel {
    double x, y;
};
Pixel slantedPixel(const Size& size, float column, float row) {
    Matrix4x4Col camera;
    camera.setCamera(Vector3f(-90, 0, 30), Vector3f(-10, 0, 0), -0.8f);
    const Vector3f p = camera.multiply(Vector3f(column - 96, 12 - row, -0.5f));
    const double focal = 1 / std::tan(std::acos(-1.0) / 8);
    return {(1 + focal / 1.6 * double(p.x) / -double(p.z)) * size.width / 2,
            (1 - focal * double(p.y) / -double(p.z)) * size.height / 2};
}

// ImageMagick's arguments to see the slab from the front, as by tilting one's head; ten pixels per column.
std::string upright(const Size& size) {
    const float left = 44, right = 164;
    std::string command = "-virtual-pixel black -define distort:viewport=1200x240 -distort Perspective '";
    const float corners[4][2] = {{left, 0}, {right, 0}, {right, 24}, {left, 24}};
    for (const auto& corner : corners) {
        const Pixel pixel = slantedPixel(size, corner[0], corner[1]);
        char text[96];
        snprintf(text, sizeof text, "%.2f,%.2f %.0f,%.0f ", pixel.x, pixel.y, double(10 * (corner[0] - left)),
                 double(10 * corner[1]));
        command += text;
    }
    return command + "' ";
}

class ShowText : public testing::TestWithParam<Size> {};

} // namespace

TEST_P(ShowText, CreditsCanBeRead) {
    const char* const pairs[][2] = {
        {"CODE", "MOONPULSE"}, {"TRACKING", "ZAPLIN"}, {"GRAPHICS", "ORVO"}, {"BITCHING", "QARK"}};
    const Stills stills(GetParam(), music::barTime(8), music::barTime(16));
    for (int i = 0; i < 4; ++i) {
        // In place from the fourth beat on.
        const std::string text = read(stills.at(music::beatTime(32 + 8 * i + 4)),
                                      "-resize 1280x800! -gravity center -crop 800x330+0+0 +repage "
                                      "-colorspace Gray -blur 0x2 -threshold 52%");
        for (const char* word : pairs[i])
            expectText(text, word, GetParam());
    }
}

TEST_P(ShowText, GreetingsCanBeRead) {
    const char* const texts[] = {"GREETINGSTO", "ALLWHOLOOK", "NIGHTOWLS",  "PIXELBAKERS",
                                 "BITWEAVERS",  "SINERIDERS", "CUBEHERDERS"};
    const Stills stills(GetParam(), music::barTime(65), music::barTime(72));
    for (int i = 0; i < 7; ++i) {
        // Paper and orange are bright in red, and the tunnel is not.
        const std::string line =
            i < 2 ? "-resize 1280x800! -gravity center -crop 800x120+0+0 +repage -resize 200% "
                  : upright(GetParam()) + "-resize 720x240! ";
        const std::string text =
            read(stills.at(music::barTime(65 + i) + 0.3),
                 line + "-channel R -separate +channel -blur 0x4 -threshold 50% -negate");
        expectText(text, texts[i], GetParam());
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ShowText, testing::Values(Size{640, 400}, Size{1920, 1080}),
                         [](const auto& size) { return "At" + std::to_string(size.param.width); });
