#include "effect_test.h"
#include "effect_view.h"
#include "recurse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

using namespace zentrak;
using kindler::Recurse;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

constexpr int SIZE = 64; // of the targets

class RecurseTest : public test::EffectTest {
protected:
    Recurse mRecurse{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mRecurse, display(), "recurse");
    }
    Picture at(float time) {
        return frame([&] { mRecurse.update(time, 0.02f, 0.5f); });
    }
};

// The effect again, by ray casting: what each pixel of a target sees.

using Vec = std::array<double, 3>;

Vec operator+(const Vec& a, const Vec& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Vec operator*(const Vec& a, double s) {
    return {a[0] * s, a[1] * s, a[2] * s};
}
double dot(const Vec& a, const Vec& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vec cross(const Vec& a, const Vec& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vec unit(const Vec& a) {
    return a * (1 / std::sqrt(dot(a, a)));
}

// `v` turned about the unit axis, right-handed (Rodrigues).
Vec turned(const Vec& v, const Vec& axis, double angle) {
    return v * std::cos(angle) + cross(axis, v) * std::sin(angle) +
           axis * (dot(axis, v) * (1 - std::cos(angle)));
}

// Does the ray hit the box around the origin, in front of its start?
bool meets(const Vec& start, const Vec& way, const Vec& half) {
    double near = 0.1, far = 1000;
    for (size_t i = 0; i < 3; ++i) {
        if (std::fabs(way[i]) < 1e-12) {
            if (std::fabs(start[i]) > half[i])
                return false;
            continue;
        }
        const double a = (-half[i] - start[i]) / way[i], b = (half[i] - start[i]) / way[i];
        near = std::max(near, std::min(a, b));
        far = std::min(far, std::max(a, b));
    }
    return near < far;
}

struct Rgb {
    std::array<double, 3> c{};
};
using Target = std::vector<Rgb>; // SIZE * SIZE, rows from the bottom

Rgb sampled(const Target& target, double s, double t) {
    const auto texel = [&](int x, int y) {
        return target[size_t((y + SIZE) % SIZE) * SIZE + size_t((x + SIZE) % SIZE)];
    };
    const double x = s * SIZE - 0.5, y = t * SIZE - 0.5, fx = x - std::floor(x), fy = y - std::floor(y);
    const int ix = int(std::floor(x)), iy = int(std::floor(y));
    Rgb result;
    for (size_t i = 0; i < 3; ++i)
        result.c[i] = (texel(ix, iy).c[i] * (1 - fx) + texel(ix + 1, iy).c[i] * fx) * (1 - fy) +
                      (texel(ix, iy + 1).c[i] * (1 - fx) + texel(ix + 1, iy + 1).c[i] * fx) * fy;
    return result;
}

// A wall's colour, and its texture coordinates at a position (-1 to 1 across the cube).
Rgb wall(const Target& last, const Vec& p) {
    size_t axis = 0;
    for (size_t i = 1; i < 3; ++i)
        if (std::fabs(p[i]) > std::fabs(p[axis]))
            axis = i;
    const bool plus = p[axis] > 0;
    const double sx = (p[0] + 1) / 2, sy = (p[1] + 1) / 2, sz = (p[2] + 1) / 2;
    double s = 0, t = 0;
    Vec color{};
    switch (axis) {
    case 0:
        s = plus ? 1 - sz : sz, t = sy, color = plus ? Vec{1, 0.5, 0} : Vec{1, 0, 0.5};
        break;
    case 1:
        s = sx, t = plus ? 1 - sz : sz, color = plus ? Vec{0, 1, 0.5} : Vec{0.5, 1, 0};
        break;
    default:
        s = plus ? sx : 1 - sx, t = sy, color = plus ? Vec{0.5, 0, 1} : Vec{0, 0.5, 1};
    }
    Rgb result = sampled(last, s, t);
    for (size_t i = 0; i < 3; ++i)
        result.c[i] *= color[i];
    return result;
}

// Sixteen rays per pixel for the bars' edges. OpenGL takes one sample, so a bar may be off by a pixel.
Target byRays(const Target& last, double time) {
    const Vec eye = {std::sin(time), std::cos(0.5 * time), std::cos(time)};
    const Vec forward = unit(eye * -1), right = unit(cross(forward, {0, 1, 0})), up = cross(right, forward);
    const Vec axis = unit({std::sin(0.7 * time), std::cos(0.4 * time), std::cos(0.63 * time)});
    const double angle = 0.3 * time;
    const Vec start = turned(eye, axis, -angle);
    Target result(SIZE * SIZE);
    for (int y = 0; y < SIZE; ++y)
        for (int x = 0; x < SIZE; ++x) {
            const double nx = 2 * (x + 0.5) / SIZE - 1, ny = 2 * (y + 0.5) / SIZE - 1;
            const Vec way = turned(forward + right * (1.6 * nx) + up * ny, axis, -angle);
            Rgb& pixel = result[size_t(y) * SIZE + size_t(x)];
            if (meets(start, way, {0.02, 0.02, 150}) || meets(start, way, {0.02, 150, 0.02}) ||
                meets(start, way, {150, 0.02, 0.02})) {
                pixel.c = {1, 1, 1};
                continue;
            }
            double far = 1e9;
            for (size_t i = 0; i < 3; ++i)
                if (std::fabs(way[i]) > 1e-12)
                    far = std::min(far, ((way[i] > 0 ? 1.5 : -1.5) - start[i]) / way[i]);
            pixel = wall(last, (start + way * far) * (1 / 1.5));
        }
    return result;
}

// The target as shown on the screen.
Picture shown(const Target& target, int width, int height) {
    Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            // Clamps inside the picture only: the test skips the outermost texels.
            const Rgb p = sampled(target, (x + 0.5) / width, 1 - (y + 0.5) / height);
            for (size_t i = 0; i < 3; ++i)
                picture.at(x, y)[i] = uint8_t(std::lround(255 * p.c[i]));
            picture.at(x, y)[3] = 255;
        }
    return picture;
}

} // namespace

TEST_F(RecurseTest, MatchesItsReferencePictures) {
    for (int i = 0; i < 8; ++i)
        at(0.05f * float(i));
    EXPECT_TRUE(matchesReference("recurse_0", at(0.4f)));
    for (int i = 0; i < 8; ++i)
        at(2.0f + 0.05f * float(i));
    EXPECT_TRUE(matchesReference("recurse_2", at(2.4f)));
    for (int i = 0; i < 8; ++i)
        at(9.0f + 0.05f * float(i));
    EXPECT_TRUE(matchesReference("recurse_9", at(9.4f)));
}

TEST_F(RecurseTest, IsThePictureOfRays) {
    for (const float start : {0.3f, 2.7f, 8.0f}) {
        Recurse recurse(&mCommon);
        test::prepare(recurse, display(), "recurse");
        Target last(SIZE * SIZE);
        for (int i = 0; i < 4; ++i) {
            const float time = start + 0.1f * float(i);
            const Picture drawn = frame([&] { recurse.update(time, 0.1f, 0); });
            last = byRays(last, double(time));
            const Picture wanted = shown(last, drawn.width, drawn.height);
            const test::PictureDifference difference = test::comparePictures(drawn, wanted);
            EXPECT_LT(difference.mean, 2.5) << start << " frame " << i;
            EXPECT_LT(difference.changed, 0.04) << start << " frame " << i;
            EXPECT_GT(test::comparePictures(wanted, Picture(drawn.width, drawn.height)).changed,
                      i ? 0.1 : 0.02);
        }
    }
}

TEST_F(RecurseTest, TheFirstFrameShowsTheClearedTargetInsideTheCube) {
    const Picture first = at(1);
    size_t white = 0, grey = 0;
    for (size_t i = 0; i < first.rgba.size(); i += 4) {
        const uint8_t* p = &first.rgba[i];
        EXPECT_TRUE(p[0] == p[1] && p[1] == p[2]); // bars, background, and blends of the two
        (p[0] > 128 ? white : grey) += 1;
    }
    EXPECT_GT(white, 1000u);
    EXPECT_GT(grey, 10 * white / 2);
    const Picture second = at(1); // shows the bars of the first on the walls
    EXPECT_GT(test::comparePictures(first, second).changed, 0.01);
}

TEST_F(RecurseTest, TheTargetsTakeTurns) {
    EXPECT_EQ(mRecurse.getIndex(), 0);
    at(0);
    EXPECT_EQ(mRecurse.getIndex(), 1);
    at(0);
    EXPECT_EQ(mRecurse.getIndex(), 0);
}

TEST_F(RecurseTest, EachFaceOfTheCubeHasItsColour) {
    struct Side {
        Vector3f from;
        int r, g, b;
    };
    const Side sides[] = {{{5, 0, 0}, 255, 128, 0},  {{-5, 0, 0}, 255, 0, 128}, {{0, 5, 0}, 0, 255, 128},
                          {{0, -5, 0}, 128, 255, 0}, {{0, 0, 5}, 128, 0, 255},  {{0, 0, -5}, 0, 128, 255}};
    for (const Side& side : sides) {
        const Picture picture = frame([&] {
            display::Batch batch;
            kindler::setPerspective(display(), 1, 0.1f, 100);
            kindler::setCamera(display(), side.from, Vector3f(0, 0, 0), 0);
            glEnable(GL_CULL_FACE); // faces are counter-clockwise from outside
            glFrontFace(GL_CCW);
            Recurse::drawColorCube(batch, Vector3f(0, 0, 0), Vector3f(1, 1, 1));
            batch.flush();
        });
        const uint8_t* p = picture.at(picture.width / 2, picture.height / 2);
        EXPECT_NEAR(p[0], side.r, 1);
        EXPECT_NEAR(p[1], side.g, 1);
        EXPECT_NEAR(p[2], side.b, 1);
    }
}

// Lit from the eye, a face whose normal points away is dark.
TEST_F(RecurseTest, TheCubesNormalsPointOutwards) {
    for (const Vector3f& from : {Vector3f(5, 0, 0), Vector3f(-5, 0, 0), Vector3f(0, 5, 0), Vector3f(0, -5, 0),
                                 Vector3f(0, 0, 5), Vector3f(0, 0, -5)}) {
        const Picture picture = frame([&] {
            display::Batch batch;
            const float light[] = {from.x, from.y, from.z, 0}, white[] = {1, 1, 1, 1}, none[] = {0, 0, 0, 1};
            kindler::setPerspective(display(), 1, 0.1f, 100);
            kindler::setCamera(display(), from, Vector3f(0, 0, 0), 0);
            glLightfv(GL_LIGHT0, GL_POSITION, light);
            glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
            glLightModelfv(GL_LIGHT_MODEL_AMBIENT, none);
            glEnable(GL_LIGHTING);
            glEnable(GL_LIGHT0);
            glEnable(GL_CULL_FACE);
            Recurse::drawColorCube(batch, Vector3f(0, 0, 0), Vector3f(1, 1, 1));
            batch.flush();
        });
        EXPECT_GT(picture.at(picture.width / 2, picture.height / 2)[0], 180) << from.x << from.y << from.z;
    }
}

TEST_F(RecurseTest, LeavesTheFrontFaceAndTheScreenAsTheyWere) {
    frame([&] {
        mRecurse.update(1, 0.02f, 0.5f);
        GLint front = 0, target = -1, bound = -1;
        glGetIntegerv(GL_FRONT_FACE, &front);
        glGetIntegerv(GL_FRAMEBUFFER_BINDING, &target);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(front, GL_CCW);
        EXPECT_EQ(target, 0);
        EXPECT_EQ(bound, 0);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
    });
}
