// The state of Kub lives as long as the program, and its triggers are for good: what is shown here is one
// life of it, in order.
#include "effect_test.h"
#include "kub.h"
#include "plain.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using kindler::Kub;
using test::matchesReference;
using test::Picture;

namespace {

class KubTest : public test::EffectTest {
protected:
    Kub              mKub{&mCommon};
    test::plain::Kub mPlain{START};

    void SetUp() override {
        EffectTest::SetUp();
        srand(1);
        test::prepare(mKub, display(), "kub");
        srand(1);
        mPlain.setup(display());
    }
    Picture at(float time, float delta, float progress) {
        return over(0.1f, 0.1f, 0.1f, [&] { mKub.update(time, delta, progress); });
    }
    Picture plainAt(float time, float delta, float progress) {
        mPlain.step(time, delta);
        return over(0.1f, 0.1f, 0.1f, [&] { mPlain.draw(display(), time, progress); });
    }
    // Both ways, held against each other; the effect's own.
    Picture both(float time, float delta, float progress) {
        const Picture drawn = at(time, delta, progress);
        EXPECT_TRUE(test::samePicture(drawn, plainAt(time, delta, progress), 0.005)) << time;
        return drawn;
    }
    void trigger(float time, const char* name) {
        mKub.executeTrigger(time, name, "");
        if (std::string(name) == "expand")
            mPlain.rexpandOn = true, mPlain.rexpand = time;
        if (std::string(name) == "turn")
            mPlain.turnOn = true;
        if (std::string(name) == "turn2")
            mPlain.turnOn2 = true;
    }
};

} // namespace

TEST_F(KubTest, ScattersAsASearchOverAllCubesDoes) {
    const std::vector<Kub::Poxel>& cubes = Kub::poxels();
    ASSERT_EQ(cubes.size(), mPlain.cubes.size());
    ASSERT_GT(cubes.size(), 500u);
    EXPECT_EQ(Kub::currentFrame(), 120);
    size_t moves = 0;
    for (size_t i = 0; i < cubes.size(); ++i) {
        const Kub::Poxel&             a = cubes[i];
        const test::plain::Kub::Cube& b = mPlain.cubes[i];
        ASSERT_EQ(a.mods.size(), b.mods.size()) << i;
        ASSERT_EQ(a.count, b.count) << i;
        ASSERT_EQ(a.x, b.x) << i;
        ASSERT_EQ(a.y, b.y) << i;
        ASSERT_FLOAT_EQ(a.expand, b.expand) << i;
        ASSERT_EQ(a.col.x, b.col.x) << i;
        for (size_t m = 0; m < a.mods.size(); ++m) {
            ASSERT_EQ(a.mods[m].dx, b.mods[m].dx) << i;
            ASSERT_EQ(a.mods[m].dy, b.mods[m].dy) << i;
            ASSERT_EQ(a.mods[m].step, b.mods[m].step) << i;
        }
        moves += a.mods.size();
    }
    EXPECT_GT(moves, 5000u);
}

TEST_F(KubTest, ItsLifeLooksAsItShould) {
    // Below second 9.8 nothing rolls, however long it has run.
    EXPECT_TRUE(matchesReference("kub_scattered", both(5, 0.02f, 0.2f)));
    both(9.7f, 4.0f, 0.2f);
    EXPECT_EQ(Kub::currentFrame(), 120);

    EXPECT_TRUE(matchesReference("kub_rolling", both(12, 2.1f, 0.25f)));
    EXPECT_EQ(Kub::currentFrame(), 111);
    both(12.1f, 0.1f, 0.25f);
    // A negative delta takes time back and undoes nothing.
    const int frame = Kub::currentFrame();
    both(12.0f, -0.05f, 0.25f);
    EXPECT_EQ(Kub::currentFrame(), frame);

    both(25, 13, 0.5f);
    EXPECT_TRUE(matchesReference("kub_whole", both(40, 15, 0.8f)));
    EXPECT_LT(Kub::currentFrame(), 0);
    for (const Kub::Poxel& cube : Kub::poxels())
        ASSERT_EQ(cube.count, 0);
}

// A new life for the same program: setup() scatters anew.
TEST_F(KubTest, ItsTriggersLookAsTheyShould) {
    mKub.update(0, 40, 0); // lifts the camera
    mKub.executeTrigger(1, "unknown", "");
    mKub.updateSpline(0, "ilvo marsten", 0.02f);
    mPlain.modAngle = 0.02f;
    mPlain.pd = 0;
    trigger(10, "expand");
    EXPECT_TRUE(matchesReference("kub_expanded", at(14, 0.02f, 0.5f)));
    trigger(15, "turn");
    EXPECT_TRUE(matchesReference("kub_turned", at(70, 0.02f, 0.6f)));
    trigger(17, "turn2");
    EXPECT_TRUE(matchesReference("kub_turned_twice", at(110, 0.02f, 0.6f)));
}

// At the end, since the camera is not to be had back from such steps.
TEST_F(KubTest, StepsOfAnyLengthEnd) {
    at(41, 1e9f, 0.8f);
    EXPECT_LT(Kub::currentFrame(), 0);
    at(41, std::numeric_limits<float>::infinity(), 0.8f);
    at(41, std::numeric_limits<float>::quiet_NaN(), 0.8f);
    at(std::numeric_limits<float>::quiet_NaN(), 0.02f, 0.8f);
}
