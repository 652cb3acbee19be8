#include "effect_test.h"
#include "xor.h"

#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using test::matchesReference;
using test::Picture;

namespace {

class XorTest : public test::EffectTest {
protected:
    kindler::Xor mXor{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mXor, display(), "xor");
    }
    Picture at(float time, float delta = 0.02f, float alpha = 1) {
        return over(0.95f, 0.93f, 0.9f, [&] {
            mXor.updateSpline(time, "alpha", alpha);
            mXor.update(time, delta, 0);
        });
    }
};

} // namespace

TEST_F(XorTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("xor_5", at(5)));
    EXPECT_TRUE(matchesReference("xor_42", at(42.25f, 0.02f, 0.6f)));
    mXor.executeTrigger(6, "shot", "");
    EXPECT_TRUE(matchesReference("xor_shot", at(6, 0.5f)));
    EXPECT_TRUE(matchesReference("xor_shot_later", at(6.5f, 0.3f)));
}

TEST_F(XorTest, AtTimeZeroThereIsNoBox) {
    const Picture ground = over(0.95f, 0.93f, 0.9f, [] {});
    EXPECT_EQ(test::comparePictures(at(0), ground).mean, 0);
    EXPECT_EQ(test::comparePictures(at(-4), ground).mean, 0); // nor before it
    EXPECT_GT(test::covered(at(1), ground), 0.01);
}

TEST_F(XorTest, TheCometStaysAtTheEndOfItsPathFromAHundredSecondsOn) {
    // The head stays; the eye goes on.
    const Picture ground = over(0.95f, 0.93f, 0.9f, [] {});
    for (float time : {99.998f, 100.0f, 250.0f, 1e9f, 3e38f})
        EXPECT_GT(test::covered(at(time), ground), 0.001) << time;
}

TEST_F(XorTest, AFlashFadesInASecondAndIsGone) {
    const Picture quiet = at(8, 0);
    mXor.executeTrigger(8, "shot", "any value");
    const Picture flash = at(8, 0.5f);
    const Picture half = at(8, 0.6f);
    const Picture gone = at(8, 0);
    const auto blue = [](const Picture& picture) {
        double sum = 0;
        for (size_t i = 0; i < picture.rgba.size(); i += 4)
            sum += picture.rgba[i + 2];
        return sum;
    };
    EXPECT_GT(blue(flash), blue(half));
    EXPECT_GT(blue(half), blue(quiet));
    EXPECT_EQ(test::comparePictures(gone, quiet).mean, 0);
}

TEST_F(XorTest, ANegativeDeltaBringsAFlashBack) {
    const Picture quiet = at(8, -0.25f);
    const Picture back = at(8, 0.25f);
    EXPECT_GT(test::comparePictures(back, quiet).mean, 0.1);
    EXPECT_EQ(test::comparePictures(at(8, 0), quiet).mean, 0);
}

TEST_F(XorTest, OtherTriggersAndSplinesAreDropped) {
    const Picture before = at(9, 0);
    mXor.executeTrigger(9, "Shot", "shot");
    mXor.updateSpline(9, "alph", 0);
    EXPECT_EQ(test::comparePictures(over(0.95f, 0.93f, 0.9f, [&] { mXor.update(9, 0, 0); }), before).mean, 0);
}

TEST_F(XorTest, ATimeOfNanIsHarmless) {
    at(std::numeric_limits<float>::quiet_NaN());
    at(std::numeric_limits<float>::infinity());
    at(-std::numeric_limits<float>::infinity());
}

TEST_F(XorTest, TheStatesAreResetAfterwards) {
    over(0, 0, 0, [&] {
        mXor.update(3, 0.02f, 0);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
        EXPECT_EQ(display().mCameraMatrix, mathbase::Matrix4x4Col());
    });
}

TEST_F(XorTest, NothingVisibleIsLeftOutByTheBatch) {
    mXor.executeTrigger(0, "shot", "");
    for (float time : {0.05f, 3.0f, 17.25f, 99.9f}) {
        const Picture drawn = at(time, 0);
        const test::SendEverything all(false);
        EXPECT_TRUE(test::samePicture(drawn, at(time, 0))) << time;
    }
}
