#include "effect_test.h"
#include "hurry.h"
#include "support.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Hurry;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class HurryTest : public test::GlTest {
protected:
    test::FixedRandom mFixed{1};
    Hurry mHurry{nullptr};

    void SetUp() override {
        window(320, 200).archives().addArchive(test::sourcePath("tests/effects/data"));
        test::prepare(mHurry, display(), "hurry");
    }
    Picture at(float time) {
        return frame([&] { mHurry.update(time, 0.02f, 0.5f); });
    }
};

// Where the sprites are, by the order of the random numbers.
std::vector<Vector3f> positions() {
    mathbase::Random random(475904815u); // a start of 1 and two draws
    std::vector<Vector3f> result;
    for (int i = 0; i < 2500; ++i) {
        const float r = 1.5f + 10.8f * random.uniform();
        random.draw();
        random.draw();
        result.push_back(random.unitSphere() * r);
    }
    return result;
}

} // namespace

TEST(HurryNoise, IsThatOfItsFormula) {
    const Vector3f n = Hurry::evaluateNoise(Vector3f(0.3f, 1.7f, -0.4f));
    EXPECT_NEAR(n.x, std::sin(4.9834 * 0.3), 1e-6);
    EXPECT_NEAR(n.y, std::cos(3.7 * 0.3), 1e-6);
    EXPECT_NEAR(n.z, std::sin(5.434234 * -0.4) - std::cos(0.6 * 1.7), 1e-6);
    EXPECT_EQ(Hurry::evaluateNoise(Vector3f(0, 0, 0)), Vector3f(0, 1, -1));
}

TEST_F(HurryTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("hurry_0", at(0.1f)));
    mHurry.executeTrigger(7.0f, "bolt", "");
    mHurry.executeTrigger(7.0f, "bolt", "");
    mHurry.executeTrigger(7.0f, "bolt", "");
    EXPECT_TRUE(matchesReference("hurry_7", at(7.3f)));
}

TEST_F(HurryTest, SpritesAreSortedFromBackToFront) {
    const std::vector<Vector3f> where = positions();
    for (float time : {0.0f, 3.0f, 17.0f, 40.0f}) {
        at(time);
        const Vector3f eye(1.5f * sinf(0.1f * time), 0.5f * sinf(0.05f * time), 1.5f * cosf(0.1f * time));
        const Vector3f axis = eye - Vector3f(0, 0.4f, 0);
        std::vector<uint32_t> order = mHurry.getOrder();
        ASSERT_EQ(order.size(), 2500u);
        for (size_t i = 1; i < order.size(); ++i)
            ASSERT_LE(where[order[i - 1] / 4].dot(axis), where[order[i] / 4].dot(axis) + 1e-4f);
        std::sort(order.begin(), order.end());
        for (size_t i = 0; i < order.size(); ++i)
            ASSERT_EQ(order[i], 4 * i); // each of them once
    }
}

TEST_F(HurryTest, ABoltGoesTwoSecondsAfterItsTrigger) {
    mHurry.executeTrigger(5, "bolt", "anything");
    ASSERT_EQ(mHurry.getBolts().size(), 1u);
    EXPECT_EQ(mHurry.getBolts()[0].start, 5.0f);
    EXPECT_EQ(mHurry.getBolts()[0].strength, 1.0f);
    EXPECT_NEAR(mHurry.getBolts()[0].target.length(), 5.5f, 1e-5);
    at(5);
    at(6.5f);
    EXPECT_EQ(mHurry.getBolts().size(), 1u);
    mHurry.executeTrigger(6, "bolt", "");
    at(7);
    EXPECT_EQ(mHurry.getBolts().size(), 2u); // within two seconds
    at(7.01f);
    ASSERT_EQ(mHurry.getBolts().size(), 1u);
    EXPECT_EQ(mHurry.getBolts()[0].start, 6.0f);
    at(9);
    EXPECT_TRUE(mHurry.getBolts().empty());
}

TEST_F(HurryTest, BoltsAreVisibleWhileTheyLast) {
    const Picture without = at(7.5f);
    for (int i = 0; i < 20; ++i)
        mHurry.executeTrigger(7.0f, "bolt", "");
    EXPECT_GT(test::comparePictures(at(7.5f), without).changed, 0.01);
    at(9.1f);
    EXPECT_EQ(test::comparePictures(at(7.5f), without).mean, 0);
}

TEST_F(HurryTest, OnlyABoltIsABolt) {
    mHurry.executeTrigger(1, "Bolt", "");
    mHurry.executeTrigger(1, "", "bolt");
    EXPECT_TRUE(mHurry.getBolts().empty());
}

TEST_F(HurryTest, ABoltAtATimeOfNanEnds) {
    mHurry.executeTrigger(NAN, "bolt", "");
    at(1);
    EXPECT_TRUE(mHurry.getBolts().empty());
}

TEST_F(HurryTest, TheLightsFlicker) {
    const float pi = 3.14159265f;
    const float bright = (0.5f * pi) / 10,
                dark = (1.5f * pi) / 10; // of the first light, 10 radians per second
    EXPECT_GT(test::brightness(at(bright)), test::brightness(at(dark)) * 1.15);
}

TEST_F(HurryTest, LeavesTheStatesReset) {
    mHurry.executeTrigger(1, "bolt", "");
    frame([&] {
        mHurry.update(1, 0.02f, 0.5f);
        for (GLenum state : {GL_TEXTURE_2D, GL_DEPTH_TEST, GL_BLEND})
            EXPECT_FALSE(glIsEnabled(state));
        GLboolean mask = 0;
        GLint program = -1, bound = -1;
        glGetBooleanv(GL_DEPTH_WRITEMASK, &mask);
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_TRUE(mask);
        EXPECT_EQ(program, 0);
        EXPECT_EQ(bound, 0);
        EXPECT_EQ(display().mCurrentVBO, nullptr);
        EXPECT_EQ(display().mCurrentIBO, nullptr);
    });
}

TEST_F(HurryTest, RunsBackwardsToo) {
    mHurry.executeTrigger(5, "bolt", "");
    for (float time : {5.0f, -3.0f, 1e6f, 2.0f})
        at(time);
}
