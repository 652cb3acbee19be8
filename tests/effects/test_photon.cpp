#include "dis_display.h"
#include "effect_test.h"
#include "effect_view.h"
#include "photon.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

using namespace zentrak;
using kindler::Photon;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

constexpr float PI = 3.14159265f;
constexpr int SIZE = 256;

// A Photon whose scene a test can choose.
class Open : public Photon {
public:
    std::function<void(Open&)> scene;

    explicit Open(std::function<void(Open&)> s = nullptr) : Photon(nullptr), scene(std::move(s)) {}
    using Photon::addSphere;
    using Photon::drawPhotons;
    using Photon::mLights;
    using Photon::mMaterials;
    using Photon::mRandom;
    using Photon::mScene;

protected:
    void setupScene() override {
        if (scene)
            scene(*this);
        else
            Photon::setupScene();
    }
};

class PhotonTest : public test::GlTest {
protected:
    test::FixedRandom mFixed{1};

    void prepare(Photon& photon) { test::prepare(photon, window(SIZE, SIZE).display(), "photon"); }
    Picture at(Photon& photon, float time) {
        return frame([&] { photon.update(time, 0.02f, 0); });
    }
};

// The same scene, traced independently.
struct Sphere {
    Vector3f centre;
    float radius;
    Vector3f color; // of a point on it: many times its material's, so clamped to 0 or 1
};
const Sphere spheres[] = {{Vector3f(-3, 2.1f, 0), 2.3f, Vector3f(1, 1, 1)},
                          {Vector3f(3, 2.1f, 0), 2.3f, Vector3f(1, 1, 0)},
                          {Vector3f(0, -140, 5), 140, Vector3f(1, 1, 1)}};

// The nearest sphere along a unit ray, beyond 1e-3.
std::optional<std::pair<double, const Sphere*>> nearest(const Vector3f& from, const Vector3f& direction) {
    std::optional<std::pair<double, const Sphere*>> best;
    for (const Sphere& s : spheres) {
        const Vector3f oc = from - s.centre;
        const double b = oc.dot(direction), c = double(oc.dot(oc)) - double(s.radius) * s.radius;
        if (b * b < c)
            continue;
        const double t = -b - std::sqrt(b * b - c);
        if (t > 1e-3 && (!best || t < best->first))
            best = {t, &s};
    }
    return best;
}

// Whether a photon at `p` counts as visible. The formula for unit directions gets the vector to the eye as it
// is.
bool seen(const Vector3f& p, const Vector3f& eye) {
    const Vector3f way = eye - p;
    for (const Sphere& s : spheres) {
        const Vector3f oc = p - s.centre;
        const double b = oc.dot(way), c = double(oc.dot(oc)) - double(s.radius) * s.radius;
        if ((c > 0 && b > 0) || b * b < c)
            continue;
        const double root = std::sqrt(b * b - c);
        if ((-b - root >= 0 && -b - root <= 1) || (root - b >= 0 && root - b <= 1))
            return false;
    }
    return true;
}

} // namespace

TEST(PointLight, FallsWithTheSquareOfTheDistance) {
    const Photon::PointLight light(Vector3f(1, 2, 3), Vector3f(8, 4, 2));
    EXPECT_EQ(light.eval(Vector3f(1, 4, 3)), Vector3f(2, 1, 0.5f));
}

TEST_F(PhotonTest, MatchesItsReferencePictures) {
    Open photon;
    prepare(photon);
    Picture picture;
    for (int i = 0; i <= 40; ++i)
        picture = at(photon, 2.0f + 0.02f * float(i));
    EXPECT_TRUE(matchesReference("photon_2", picture));
    for (int i = 0; i <= 40; ++i)
        picture = at(photon, 9.0f + 0.02f * float(i));
    EXPECT_TRUE(matchesReference("photon_9", picture));
}

TEST_F(PhotonTest, TheSceneIsThreeSpheresAndOneLight) {
    Open photon;
    prepare(photon);
    const Vector3f colors[] = {Vector3f(1, 0.6f, 0.6f), Vector3f(0.1f, 1, 0), Vector3f(0.1f, 0.1f, 1),
                               Vector3f(1, 1, 1), Vector3f(1, 0.1f, 1)};
    ASSERT_EQ(photon.mMaterials.size(), 5u);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(photon.mMaterials[size_t(i)]->color, colors[i]);
    ASSERT_EQ(photon.mScene.instances.size(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        const auto* sphere = dynamic_cast<trace::PrimSphere*>(photon.mScene.instances[i].primitive);
        ASSERT_NE(sphere, nullptr);
        EXPECT_EQ(sphere->centre, spheres[i].centre);
        EXPECT_EQ(sphere->radius, spheres[i].radius);
        EXPECT_EQ(sphere->material, photon.mMaterials[i]);
    }
    ASSERT_EQ(photon.mLights.size(), 1u);
    const auto* light = dynamic_cast<Photon::PointLight*>(photon.mLights[0]);
    EXPECT_EQ(light->pos, Vector3f(5, 8, 0));
    EXPECT_EQ(light->col, Vector3f(10, 10, 10));
    at(photon, 10);
    EXPECT_FLOAT_EQ(light->pos.x, 7 * sinf(1.5f));
    EXPECT_EQ(light->pos.y, 8.0f);
    EXPECT_FLOAT_EQ(light->pos.z, 7 * cosf(1.5f));
}

// Every pixel's share of the photons by the solid angles, against the mean of many frames of points that
// start from black. A point covers 6 by 6 pixels with an alpha of 0.3: where it takes on average n of them, a
// pixel is 1 - e^(-0.3 n) of full.
TEST_F(PhotonTest, TheMeanOfManyFramesIsTheLightComputedDirectly) {
    constexpr int FRAMES = 400, COUNT = 2500;
    const Vector3f eye(0, 4, 11), target(0, 1.5f, 0), lightPosition(2, 8, 6);
    Open photon;
    std::vector<double> mean(SIZE * SIZE * 3);
    prepare(photon);
    dynamic_cast<Photon::PointLight&>(*photon.mLights[0]).pos = lightPosition;
    for (int f = 0; f < FRAMES; ++f) {
        const Picture picture = frame([&] {
            display().resetStates();
            glEnable(GL_BLEND);
            kindler::setPerspective(display(), PI / 2, 0.1f, 1000);
            kindler::setCamera(display(), eye, target, 0);
            photon.drawPhotons(COUNT, 0, eye);
        });
        for (size_t i = 0; i < SIZE * SIZE; ++i)
            for (size_t c = 0; c < 3; ++c)
                mean[3 * i + c] += picture.rgba[4 * i + c] / 255.0 / FRAMES;
    }

    const Vector3f forward = (target - eye).getNormalized();
    const Vector3f right = forward.cross(Vector3f(0, 1, 0)).getNormalized(), up = right.cross(forward);
    std::vector<double> photons(SIZE * SIZE); // of a frame, by the pixel that they hit
    std::vector<Vector3f> colors(SIZE * SIZE);
    for (int y = 0; y < SIZE; ++y)
        for (int x = 0; x < SIZE; ++x)
            for (int sub = 0; sub < 9; ++sub) {
                const float sx = 2 * (float(x) + (float(sub % 3) + 0.5f) / 3) / SIZE - 1;
                const float sy = 1 - 2 * (float(y) + (float(sub / 3) + 0.5f) / 3) / SIZE;
                const Vector3f way = forward + right * (1.6f * sx) + up * sy; // one deep
                const Vector3f direction = way.getNormalized();
                const auto hit = nearest(eye, direction);
                if (!hit)
                    continue;
                const Vector3f p = eye + direction * float(hit->first);
                const Vector3f normal = (p - hit->second->centre).getNormalized();
                const Vector3f toLight = lightPosition - p;
                const Vector3f lit = toLight.getNormalized();
                colors[size_t(y * SIZE + x)] = hit->second->color;
                if (normal.dot(lit) <= 0 || nearest(p + normal * 0.01f, lit) ||
                    !seen(p + normal * 0.01f, eye))
                    continue;
                const double flux =
                    COUNT * double(normal.dot(lit)) / (4 * double(PI) * double(toLight.length2()));
                const double solid = 2.0 / SIZE * (2.0 / SIZE * 1.6) / std::pow(double(way.length()), 3);
                const double area = hit->first * hit->first * solid / double(-normal.dot(direction));
                photons[size_t(y * SIZE + x)] += flux * area / 9;
            }

    // In squares of 8 by 8 pixels, to average out noise.
    double worst = 0, difference = 0, sum = 0;
    for (int by = 8; by < SIZE - 8; by += 8)
        for (int bx = 8; bx < SIZE - 8; bx += 8) {
            double drawn = 0, direct = 0;
            for (int y = by; y < by + 8; ++y)
                for (int x = bx; x < bx + 8; ++x) {
                    double around = 0;
                    for (int dy = -2; dy < 4; ++dy)
                        for (int dx = -2; dx < 4; ++dx)
                            around += photons[size_t((y + dy) * SIZE + x + dx)];
                    direct += (1 - std::exp(-0.3 * around)) / 64;
                    drawn += mean[size_t(3 * (y * SIZE + x))] / 64; // red, which all of the spheres have
                }
            worst = std::max(worst, std::fabs(drawn - direct));
            difference += std::fabs(drawn - direct);
            sum += direct;
        }
    EXPECT_GT(sum / (30 * 30), 0.01);
    EXPECT_LT(difference / sum, 0.06);
    EXPECT_LT(worst, 0.05);

    // And each sphere has its own colour.
    for (const auto& [p, c] :
         {std::pair(Vector3f(-2.5f, 3.2f, 2), 2), std::pair(Vector3f(2.5f, 3.2f, 2), 2)}) {
        const Vector3f way = p - eye;
        const float depth = way.dot(forward);
        const int x = int((way.dot(right) / depth / 1.6f + 1) / 2 * SIZE);
        const int y = int((1 - way.dot(up) / depth) / 2 * SIZE);
        const double* pixel = &mean[size_t(3 * (y * SIZE + x))];
        const Vector3f color = colors[size_t(y * SIZE + x)];
        EXPECT_GT(pixel[0], 0.02);
        EXPECT_NEAR(pixel[c] / pixel[0], double(color.z), 0.15);
    }
}

TEST_F(PhotonTest, RaysThatMissEverythingDrawNothing) {
    Open photon([](Open& p) {
        p.mLights.push_back(new Photon::PointLight(Vector3f(5, 8, 0), Vector3f(10, 10, 10)));
    });
    prepare(photon);
    mathbase::Random random = photon.mRandom;
    EXPECT_EQ(test::brightness(at(photon, 1)), 0);
    // exactly two draws per photon
    for (int i = 0; i < 2 * 15000; ++i)
        random.draw();
    EXPECT_EQ(photon.mRandom.mState, random.mState);
}

TEST_F(PhotonTest, WithoutLightsThePictureOnlyFades) {
    Open photon;
    prepare(photon);
    at(photon, 1);
    for (int i = 0; i < 10; ++i)
        at(photon, 1);
    const double lit = test::brightness(at(photon, 1));
    EXPECT_GT(lit, 5);
    for (Photon::Light* light : photon.mLights)
        delete light;
    photon.mLights.clear();
    const uint32_t state = photon.mRandom.mState;
    const double one = test::brightness(at(photon, 1));
    EXPECT_NEAR(one / lit, 0.88, 0.01);
    EXPECT_NEAR(test::brightness(at(photon, 1)) / one, 0.88, 0.01);
    EXPECT_EQ(photon.mRandom.mState, state);
}

TEST_F(PhotonTest, OnlyFacesTowardsTheLightAndTheEyeAreVisible) {
    // One sphere between the light above and the eye below: nothing lit is visible.
    Open photon([](Open& p) {
        p.mMaterials.push_back(new Photon::Material(Vector3f(1, 1, 1)));
        p.addSphere(Vector3f(0, 0, 0), 2, p.mMaterials[0]);
        p.mLights.push_back(new Photon::PointLight(Vector3f(0, 8, 0), Vector3f(10, 10, 10)));
    });
    prepare(photon);
    const auto from = [&](const Vector3f& eye) {
        return test::brightness(frame([&] {
            glEnable(GL_BLEND);
            kindler::setPerspective(display(), PI / 2, 0.1f, 1000);
            kindler::setCamera(display(), eye, Vector3f(0, 0, 0), 0);
            photon.drawPhotons(5000, 0, eye);
        }));
    };
    EXPECT_EQ(from(Vector3f(0, -8, 0.1f)), 0);
    EXPECT_GT(from(Vector3f(0, 6, 3)), 1);
}

TEST_F(PhotonTest, TheLightInsideASphereIsNotVisible) {
    Open photon([](Open& p) {
        p.mMaterials.push_back(new Photon::Material(Vector3f(1, 1, 1)));
        p.addSphere(Vector3f(0, 8, 0), 20, p.mMaterials[0]);
        p.mLights.push_back(new Photon::PointLight(Vector3f(0, 8, 0), Vector3f(10, 10, 10)));
    });
    prepare(photon);
    // The rays that leave the surface hit it from the inside, where the normal points along the ray.
    EXPECT_EQ(test::brightness(at(photon, 1)), 0);
}
