#include "effect_test.h"
#include "rund.h"

#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using test::matchesReference;
using test::Picture;

namespace {

class RundTest : public test::EffectTest {
protected:
    kindler::Rund mRund{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mRund, display(), "rund");
    }
    Picture step(float time, float delta, float alpha = 1) {
        return over(1, 0.97f, 0.9f, [&] {
            mRund.updateSpline(time, "alpha", alpha);
            mRund.update(time, delta, 0.5f);
        });
    }
    void shoot() { mRund.executeTrigger(0, "shot", ""); }
};

} // namespace

TEST_F(RundTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("rund_0", step(0, 0)));
    EXPECT_TRUE(matchesReference("rund_7", step(7.5f, 1)));
    shoot();
    EXPECT_TRUE(matchesReference("rund_shot", step(7.6f, 0.1f)));
    EXPECT_TRUE(matchesReference("rund_shot_later", step(8.1f, 0.5f)));
}

TEST_F(RundTest, NoRingIsVisibleBeforeTheFirstShot) {
    const Picture quiet = step(1, 0);
    shoot();
    const Picture shot = step(1, 0);
    EXPECT_GT(test::comparePictures(quiet, shot).changed, 0.005);
}

TEST_F(RundTest, TheRingRunsOutAtTwo) {
    shoot();
    step(1, 2.98f); // radius 1.99: faded long ago
    const Picture before = step(1, 0);
    step(1, 0.04f);
    mRund.executeTrigger(0, "Shot", "");                  // another name is no shot
    const Picture after = step(1, -0.04f - 2.98f - 1.0f); // back to radius 0, where a ring is drawn
    EXPECT_GT(test::comparePictures(before, after).mean, 0);
}

TEST_F(RundTest, AGrownRingHasLeftTheCentre) {
    shoot();
    const Picture young = step(0, 0);
    const Picture old = step(0, 1); // radius 1
    // A radius of 0.5 crosses the vertical axis at a quarter of the height from the top.
    const int x = 200, y = 250 / 4;
    EXPECT_NE(young.at(x, y)[1], old.at(x, y)[1]);
}

TEST_F(RundTest, ANegativeDeltaMovesTheSpritesBack) {
    const Picture before = step(2, 0);
    const Picture moved = step(2, 0.125f);
    const Picture back = step(2, -0.125f);
    EXPECT_GT(test::comparePictures(before, moved).mean, 0.2);
    EXPECT_LT(test::comparePictures(before, back).mean, 0.05);
}

TEST_F(RundTest, AnAlphaOfZeroLeavesATraceOfEachSprite) {
    const Picture ground = over(1, 0.97f, 0.9f, [] {});
    const double faint = test::comparePictures(step(0, 0, 0), ground).mean;
    const double full = test::comparePictures(step(0, 0, 1), ground).mean;
    EXPECT_GT(faint, 0.01);
    EXPECT_GT(full, 1.3 * faint);
}

TEST_F(RundTest, AnotherSplineIsDropped) {
    const Picture before = step(2, 0, 0.7f);
    mRund.updateSpline(2, "beta", 0);
    const Picture after = over(1, 0.97f, 0.9f, [&] { mRund.update(2, 0, 0); });
    EXPECT_EQ(test::comparePictures(before, after).mean, 0);
}

TEST_F(RundTest, AnyTimeAndDeltaAreHarmless) {
    shoot();
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (float time : {-3.0f, 1e38f, nan, inf})
        step(time, 0.01f);
    for (float delta : {1e30f, -1e30f, nan}) {
        step(1, delta);
        test::prepare(*std::make_unique<kindler::Rund>(&mCommon), display(), "rund"); // new positions
        mRund.executeTrigger(0, "shot", "");
    }
}

TEST_F(RundTest, TheStatesAreResetAfterwards) {
    shoot();
    over(1, 1, 1, [&] {
        mRund.update(1, 0.02f, 0);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_EQ(display().mTransformMatrix, mathbase::Matrix4x4Col());
        EXPECT_EQ(display().mCameraMatrix, mathbase::Matrix4x4Col());
    });
}

// When time goes back, sprites with a negative speed move right and wrap; the others come back afterwards.
TEST_F(RundTest, OnlyTheUpperEdgeWraps) {
    const Picture ground = over(1, 0.97f, 0.9f, [] {});
    const double before = test::covered(step(0, 0), ground);
    step(0, -9);
    const double after = test::covered(step(0, 9), ground);
    EXPECT_GT(after, 0);
    EXPECT_LT(after, before);
}
