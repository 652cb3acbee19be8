#include "cubejox.h"
#include "effect_test.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>

using namespace zentrak;
using kindler::Cubejox;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class CubejoxTest : public test::EffectTest {
protected:
    Cubejox mCubejox{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mCubejox, display(), "cubejox");
    }
    Picture at(float time, float bw, float zoom, float alpha = 1, float delta = 0.02f) {
        return over(1, 0.85f, 0.45f, [&] {
            mCubejox.updateSpline(time, "alpha", alpha);
            mCubejox.updateSpline(time, "bw", bw);
            mCubejox.updateSpline(time, "zoom", zoom);
            mCubejox.update(time, delta, 0);
        });
    }
};

} // namespace

TEST_F(CubejoxTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("cubejox_near", at(1, 0, 0)));
    EXPECT_TRUE(matchesReference("cubejox_bw", at(1, 0.9f, 0)));
    EXPECT_TRUE(matchesReference("cubejox_zoomed", at(3, 0, 0.12f)));
    EXPECT_TRUE(matchesReference("cubejox_dim", at(2, 0.3f, 0.05f, 0.5f)));
}

TEST_F(CubejoxTest, NothingVisibleIsLeftOutByTheBatch) {
    const Picture ground = over(1, 0.85f, 0.45f, [] {});
    for (const auto& [time, bw, zoom] :
         {std::tuple(0.0f, 0.0f, 0.0f), std::tuple(2.0f, 0.5f, 0.0f), std::tuple(4.5f, 0.0f, 0.1f),
          std::tuple(5.0f, 1.0f, 0.15f), std::tuple(-3.0f, 0.2f, 0.05f), std::tuple(6.0f, 0.0f, 0.02f)}) {
        const Picture drawn = at(time, bw, zoom, 1, 0);
        EXPECT_GT(test::covered(drawn, ground), 0.02) << time;
        const test::SendEverything all(false);
        EXPECT_TRUE(test::samePicture(drawn, at(time, bw, zoom, 1, 0), 0.005)) << time;
    }
}

// Computed independently: seed 1, two draws, then five per rod.
TEST_F(CubejoxTest, TheRodsAreThoseOfTheSeed) {
    struct Wanted {
        int i;
        Vector3f pos, axis;
        float angle;
        int sides;
        float spin;
    };
    const Wanted wanted[] = {
        {0, {70.259f, 629.091f, 160.364f}, {-0.107594f, -0.963387f, -0.245581f}, 3.15009f, 4, 0},
        {1, {73.663f, -320.427f, 156.194f}, {-0.202372f, 0.880293f, -0.429104f}, 2.39967f, 5, 1},
        {2, {211.102f, 205.609f, 150.737f}, {-0.637771f, -0.621175f, -0.4554f}, 3.2456f, 6, 0},
        {999, {-239.073f, -237.997f, -107.32f}, {0.675346f, 0.672309f, 0.303163f}, 5.65837f, 8, 1},
    };
    for (const Wanted& w : wanted) {
        const Cubejox::Rod& rod = Cubejox::rods()[w.i];
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(rod.pos[i], w.pos[i], 2e-3) << w.i;
            EXPECT_NEAR(rod.axis[i], w.axis[i], 1e-5) << w.i;
        }
        EXPECT_NEAR(rod.angle, w.angle, 1e-5) << w.i;
        EXPECT_EQ(rod.sides, w.sides) << w.i;
        EXPECT_EQ(rod.spin, w.spin) << w.i;
        EXPECT_EQ(rod.radius, 8.0f) << w.i;
    }
}

TEST_F(CubejoxTest, HalfOfTheRodsTurnAndANegativeDeltaTurnsThemBack) {
    const auto angle = [](int i) { return Cubejox::rods()[i].angle; };
    const float still = angle(0), turning = angle(1);
    at(1, 0, 0, 1, 0.5f);
    EXPECT_EQ(angle(0), still);
    EXPECT_FLOAT_EQ(angle(1), turning + 5.1f * 0.5f);
    at(0.5f, 0, 0, 1, -0.5f);
    EXPECT_NEAR(angle(1), turning, 1e-5);
    int turns = 0;
    for (int i = 0; i < Cubejox::NUM_RODS; ++i)
        turns += Cubejox::rods()[i].spin == 1;
    EXPECT_NEAR(turns, 500, 60);
}

TEST_F(CubejoxTest, FromAZoomOfAQuarterOnTheFieldHasFaded) {
    const Picture ground = over(1, 0.85f, 0.45f, [] {});
    EXPECT_EQ(test::comparePictures(at(1, 0, 0.25f), ground).mean, 0);
    EXPECT_EQ(test::comparePictures(at(1, 0, 0.3f), ground).mean, 0);
    EXPECT_GT(test::comparePictures(at(1, 0, 0.2f), ground).mean, 0);
}

TEST_F(CubejoxTest, ABwOfOneGivesGreyRods) {
    const Picture grey = at(1, 1, 0);
    const Picture ground = over(1, 0.85f, 0.45f, [] {});
    int seen = 0;
    for (int y = 0; y < 250; y += 3)
        for (int x = 0; x < 400; x += 3) {
            const uint8_t* p = grey.at(x, y);
            if (p[0] == 255 && p[2] < 120)
                continue; // the ground
            ++seen;
            EXPECT_NEAR(p[0], p[1], 1);
            EXPECT_NEAR(p[0], p[2], 1);
        }
    EXPECT_GT(seen, 500);
}

// The ends of a rod then have one colour, so there are no more shades than kinds of rods.
TEST_F(CubejoxTest, ABwOfOneGivesABottomAsBrightAsTheTop) {
    const auto shades = [this](float bw) {
        const Picture picture = at(1, bw, 0);
        std::set<uint8_t> found;
        for (int y = 0; y < 250; ++y)
            for (int x = 0; x < 400; ++x)
                if (picture.at(x, y)[0] != 255)
                    found.insert(picture.at(x, y)[1]);
        return found.size();
    };
    EXPECT_LE(shades(1), 12u + 1u); // and the ground
    EXPECT_GE(shades(1), 6u);
    EXPECT_GT(shades(0.9f), 20u);
}

TEST_F(CubejoxTest, AnAlphaOfZeroGivesBlackRods) {
    const Picture black = at(1, 0, 0, 0);
    int dark = 0;
    for (int y = 0; y < black.height; ++y)
        for (int x = 0; x < black.width; ++x)
            dark += black.at(x, y)[0] == 0 && black.at(x, y)[1] == 0;
    EXPECT_GT(dark, 1000);
}

TEST_F(CubejoxTest, DrumsAreAcceptedAndChangeNothing) {
    const Picture before = at(2, 0, 0, 1, 0);
    for (const char* name : {"drum1", "drum2", "drum3", "drum4", "drum5", ""})
        mCubejox.executeTrigger(2, name, "");
    EXPECT_EQ(test::comparePictures(at(2, 0, 0, 1, 0), before).mean, 0);
    at(2, 0, 0, 1, -3);
    at(2, 0, 0, 1, 3);
}

TEST_F(CubejoxTest, AnotherSplineIsDropped) {
    const Picture before = at(2, 0, 0, 1, 0);
    for (const char* name : {"Alpha", "BW", "zoo"})
        mCubejox.updateSpline(2, name, 0.5f);
    EXPECT_EQ(test::comparePictures(over(1, 0.85f, 0.45f, [&] { mCubejox.update(2, 0, 0); }), before).mean,
              0);
}

TEST_F(CubejoxTest, AnyTimeIsHarmless) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    for (float time : {-100.0f, 1e30f, infinity, -infinity, nan})
        at(time, 0, 0);
    at(1, nan, nan, nan);
    at(1, 0, 0, 1, infinity);
    at(1, 0, 0, 1, nan);
}

TEST_F(CubejoxTest, BlendingAndTheDepthTestStayOn) {
    over(0, 0, 0, [&] {
        glEnable(GL_CULL_FACE);
        mCubejox.update(1, 0.02f, 0);
        EXPECT_TRUE(glIsEnabled(GL_BLEND));
        EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
        EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
        EXPECT_EQ(display().mTransformMatrix, mathbase::Matrix4x4Col());
    });
}
