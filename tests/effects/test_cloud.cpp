#include "cloud.h"
#include "dis_texture.h"
#include "effect_test.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Cloud;
using kindler::getCloudPath;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class CloudTest : public test::GlTest {
protected:
    test::FixedRandom mFixed{1};
    Cloud mCloud{nullptr};

    void SetUp() override { test::prepare(mCloud, window(240, 150).display(), "cloud"); }

    Picture at(float progress, float alpha = 1) {
        return frame([&] {
            mCloud.updateSpline(0, "alpha", alpha);
            mCloud.update(0, 0.02f, progress);
        });
    }
};

// The same picture, one call per vertex.
void drawPlainly(display::DisplayGL& display, float progress, float alpha) {
    display::Texture texture(&display);
    texture.load("hurry/particle.png", true);
    texture.init();
    mathbase::Random random(475904815u); // a start of 1 and two draws
    Vector3f path[10000];
    for (int i = 0; i < 10000; ++i) {
        const float phi = 2 * 3.14159265f * random.uniform();
        const float z = 2 * random.uniform() - 1;
        const float r = sqrtf(1 - z * z);
        path[i] = getCloudPath(float(i) / 100) + Vector3f(r * cosf(phi), r * sinf(phi), z) * 10;
    }
    display.resetStates();
    Matrix4x4Col matrix;
    matrix.setProject(3.14159265f / 4, 1.6f, 0.015f, 1000);
    display.setProject(matrix);
    const Vector3f eye = getCloudPath(100 * (1 - progress));
    matrix.setCamera(eye, eye + Vector3f(0, 0, 10), 10 * progress);
    display.setCamera(matrix);
    matrix.setCameraInv(eye, eye + Vector3f(0, 0, 10), 10 * progress);
    const Vector3f right = matrix.multiplyVector(Vector3f(1, 0, 0)).getNormalized() * 0.5f;
    const Vector3f up = matrix.multiplyVector(Vector3f(0, 1, 0)).getNormalized() * 0.5f;
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    texture.bind();
    glBegin(GL_QUADS);
    const int s = progress >= 0.2f ? int((1 - alpha) * 10000) : 0;
    for (int k = s; k <= 9999; ++k) {
        const Vector3f& p = path[9999 - k];
        float a = 0.15f * (1 - 0.003f * (p - eye).length());
        if (progress < 0.5f)
            a *= alpha;
        if (a <= 0)
            continue;
        glColor4f(1, 0.9f, 0.8f, a);
        glTexCoord2f(0, 0);
        glVertex3fv(p + (up - right) * 7);
        glTexCoord2f(0, 1);
        glVertex3fv(p + (-up - right) * 7);
        glTexCoord2f(1, 1);
        glVertex3fv(p + (-up + right) * 7);
        glTexCoord2f(1, 0);
        glVertex3fv(p + (up + right) * 7);
    }
    glEnd();
    texture.unbind();
    display.resetStates();
}

bool isBlack(const Picture& picture) {
    for (size_t i = 0; i < picture.rgba.size(); i += 4)
        if (picture.rgba[i] || picture.rgba[i + 1] || picture.rgba[i + 2])
            return false;
    return true;
}

} // namespace

TEST(CloudPath, WindsAndClimbsByThree) {
    EXPECT_FLOAT_EQ(getCloudPath(0).x, float(5.05 * std::sin(1.5)));
    EXPECT_FLOAT_EQ(getCloudPath(0).y, 1);
    EXPECT_EQ(getCloudPath(0).z, 0);
    const Vector3f p = getCloudPath(40);
    EXPECT_FLOAT_EQ(p.x, float(std::sin(4.8) + 5.05 * std::cos(8.0) * std::sin(1.9)));
    EXPECT_FLOAT_EQ(p.y, float(std::cos(8.4) + 2 * std::sin(12.0)));
    EXPECT_FLOAT_EQ(p.z, 120);
}

TEST_F(CloudTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("cloud_1", at(0.1f)));
    EXPECT_TRUE(matchesReference("cloud_5", at(0.5f)));
    EXPECT_TRUE(matchesReference("cloud_9", at(0.9f, 0.6f)));
}

TEST_F(CloudTest, IsThePictureOfOneCallPerVertex) {
    for (const auto& state : {std::pair(0.3f, 0.8f), std::pair(0.8f, 1.0f)}) {
        const float progress = state.first, alpha = state.second;
        const Picture plain = frame([&] { drawPlainly(display(), progress, alpha); });
        const auto difference = test::comparePictures(at(progress, alpha), plain);
        EXPECT_LT(difference.mean, 0.2);
        EXPECT_LT(difference.changed, 0.001);
        EXPECT_FALSE(isBlack(plain));
    }
}

TEST_F(CloudTest, AnAlphaOfZeroDrawsNothingEarlyOrLate) {
    for (float progress : {0.0f, 0.1f, 0.19f, 0.2f, 0.4f, 0.5f, 0.7f, 0.99f})
        EXPECT_TRUE(isBlack(at(progress, 0))) << progress;
    EXPECT_FALSE(isBlack(at(0.1f, 1)));
}

TEST_F(CloudTest, BelowATenthsTwoAlphaOnlyScales) {
    const double whole = test::brightness(at(0.15f, 0.2f)), half = test::brightness(at(0.15f, 0.1f));
    EXPECT_GT(half, 1);
    EXPECT_NEAR(whole / half, 2, 0.3);
}

TEST_F(CloudTest, LateInTheEntryAlphaThinsFromTheFarEndOfTheList) {
    // At 0.9 the eye is at 10 on the path and looks up along it. An alpha of 0.05 leaves only the points up
    // to 5, which are behind it.
    EXPECT_LT(test::brightness(at(0.9f, 0.05f)), test::brightness(at(0.9f, 1)) / 4);
    EXPECT_LT(test::brightness(at(0.9f, 0.3f)), test::brightness(at(0.9f, 1)));
}

TEST_F(CloudTest, AnAlphaOutsideOfItsRangeReadsNothingOutside) {
    for (float alpha : {5.0f, 1e30f, -3.0f, -1e30f, NAN, INFINITY, -INFINITY})
        for (float progress : {0.1f, 0.3f, 0.9f})
            at(progress, alpha);
    EXPECT_EQ(test::comparePictures(at(0.9f, 5), at(0.9f, 1)).mean, 0);
}

TEST_F(CloudTest, AnotherSplineIsDropped) {
    const Picture before = at(0.6f, 0.5f);
    const Picture after = frame([&] {
        mCloud.updateSpline(0, "Alpha", 0);
        mCloud.update(0, 0.02f, 0.6f);
    });
    EXPECT_EQ(test::comparePictures(before, after).mean, 0);
}

TEST_F(CloudTest, LeavesEverythingOffThatItUsed) {
    frame([&] {
        glEnable(GL_CULL_FACE);
        glEnable(GL_DEPTH_TEST);
        mCloud.updateSpline(0, "alpha", 1);
        mCloud.update(0, 0.02f, 0.6f);
        for (GLenum state : {GL_TEXTURE_2D, GL_CULL_FACE, GL_DEPTH_TEST, GL_BLEND})
            EXPECT_FALSE(glIsEnabled(state));
        GLint bound = -1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(bound, 0);
    });
}
