#include "effect_test.h"
#include "tunnel.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using kindler::Tunnel;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class TunnelTest : public test::EffectTest {
protected:
    Tunnel mTunnel{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mTunnel, display(), "tunnel");
    }
    Picture at(float time, float delta = 0.02f) {
        return over(0.02f, 0.02f, 0.05f, [&] { mTunnel.update(time, delta, 0); });
    }
};

struct Wanted {
    size_t ring;
    Vector3f pos;
    float rot, spin;
    Vector3f col;
    float inner, outer;
};

} // namespace

TEST_F(TunnelTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("tunnel_0", at(0.25f)));
    EXPECT_TRUE(matchesReference("tunnel_5", at(5)));
    EXPECT_TRUE(matchesReference("tunnel_14", at(14)));
    EXPECT_TRUE(matchesReference("tunnel_26", at(26)));
}

// Computed independently: seed 1, two draws, 2000 for the table, then six per ring.
TEST_F(TunnelTest, TheFirstAndTheLastRingsAreThoseOfTheSeed) {
    const Wanted wanted[] = {
        {0, {5.03735f, 1.0f, 0.0f}, 0, -5, {0.51f, 0.56f, 0.56f}, 1.0f, 1.5f},
        {1, {5.15397f, 2.35263f, 3.98693f}, 1, 5, {0.372416f, 0.4086f, 0.409776f}, 1.030799f, 1.535933f},
        {2, {4.44936f, 2.7001f, 7.94771f}, 2, 5, {0.512734f, 0.564122f, 0.559775f}, 1.061596f, 1.592393f},
        {75, {0.15615f, 1.14081f, 226.47059f}, 3, 5, {0.527643f, 0.504856f, 0.371334f}, 1.0f, 3.240335f},
        {151, {2.39627f, -1.31351f, 305.94771f}, 3, 5, {0.54961f, 0.672689f, 0.549617f}, 1.0f, 3.999473f},
        {152,
         {2.41453f, -1.31171f, 305.98693f},
         0,
         5,
         {0.890176f, 0.619605f, 0.537256f},
         2.999895f,
         6.99971f},
    };
    ASSERT_EQ(Tunnel::rings().size(), 153u);
    for (const Wanted& w : wanted) {
        const Tunnel::Ring& ring = Tunnel::rings()[w.ring];
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(ring.pos[i], w.pos[i], 1e-4) << w.ring;
            EXPECT_NEAR(ring.col[i], w.col[i], 1e-5) << w.ring;
            EXPECT_EQ(ring.rot[i], i == 2 ? w.rot : 0) << w.ring;
            EXPECT_EQ(ring.spin[i], i == 2 ? w.spin : 0) << w.ring;
        }
        EXPECT_NEAR(ring.inner, w.inner, 1e-5) << w.ring;
        EXPECT_NEAR(ring.outer, w.outer, 1e-5) << w.ring;
    }
}

TEST_F(TunnelTest, ASecondSetupMakesTheRingsAgain) {
    mTunnel.setup();
    EXPECT_EQ(Tunnel::rings().size(), 153u);
}

TEST_F(TunnelTest, TheCurveIsValidAtAnyParameter) {
    const Vector3f start = Tunnel::getPath(0);
    EXPECT_NEAR(start.x, 5.05 * sin(1.5), 1e-5);
    EXPECT_EQ(start.y, 1);
    EXPECT_EQ(start.z, 0);
    const Vector3f before = Tunnel::getPath(-1);
    EXPECT_NEAR(before.x, sin(-1.0) + 5.05 * cos(-0.2) * sin(0.5), 1e-5);
    EXPECT_NEAR(before.y, cos(-1.0) + 2 * sin(-2.0), 1e-5);
    EXPECT_EQ(before.z, -10);
}

TEST_F(TunnelTest, BeforeTimeOneTheEyeIsAheadOfTheFirstRing) {
    const Picture ground = over(0.02f, 0.02f, 0.05f, [] {});
    for (float time : {-1.0f, 0.0f, 0.5f}) {
        EXPECT_GT(test::comparePictures(at(time), ground).mean, 0) << time;
    }
}

TEST_F(TunnelTest, AfterTheLastRingNothingShows) {
    const Picture ground = over(0.02f, 0.02f, 0.05f, [] {});
    EXPECT_EQ(test::comparePictures(at(40), ground).mean, 0);
    EXPECT_EQ(test::comparePictures(at(-10), ground).mean, 0); // the first ring is far off
}

// 64 steps of 0.05 * delta a frame for a ring without gaps, 60 for every fifth.
TEST_F(TunnelTest, TheSpinTakesAStepForEachBlockThatIsDrawn) {
    const auto before = Tunnel::rings();
    at(2, 0.1f);
    const auto rings = Tunnel::rings();
    const float eyeZ = Tunnel::getPath(1).z;
    bool whole = false, gaps = false, far = false;
    for (size_t i = 0; i < rings.size(); ++i) {
        const Vector3f d = rings[i].pos - Tunnel::getPath(1);
        const float start = before[i].spin.z;
        const float sign = start > 0 ? -1.0f : 1.0f;
        if (rings[i].pos.z <= eyeZ || d.length() >= 24.6f) {
            EXPECT_EQ(rings[i].spin.z, start) << i;
            far = true;
        } else if (d.length() < 24.4f) {
            const int blocks = i % 5 == 0 ? 60 : 64;
            EXPECT_NEAR(rings[i].spin.z, start + sign * 0.05f * 0.1f * float(blocks), 1e-4) << i;
            (i % 5 == 0 ? gaps : whole) = true;
        }
    }
    EXPECT_TRUE(whole && gaps && far);
}

TEST_F(TunnelTest, TheSpinSettlesNearATenth) {
    for (int i = 0; i < 100; ++i)
        at(2, 0.1f);
    int settled = 0;
    for (const Tunnel::Ring& ring : Tunnel::rings())
        settled += std::fabs(ring.spin.z - 0.1f) < 0.011f;
    EXPECT_GT(settled, 5);
}

TEST_F(TunnelTest, ANegativeDeltaTakesTheSpinBack) {
    at(2, 0.1f);
    const auto before = Tunnel::rings();
    at(2, -0.1f);
    at(2, 0.1f);
    for (size_t i = 0; i < before.size(); ++i)
        EXPECT_NEAR(Tunnel::rings()[i].spin.z, before[i].spin.z, 1e-4) << i;
}

TEST_F(TunnelTest, ATimeThatIsNotANumberIsHarmless) {
    at(std::numeric_limits<float>::quiet_NaN());
    at(1, std::numeric_limits<float>::quiet_NaN());
    at(std::numeric_limits<float>::infinity());
    at(-std::numeric_limits<float>::infinity());
    at(1, std::numeric_limits<float>::infinity());
    at(1, 1e30f);
    at(1e6f);
}

TEST_F(TunnelTest, TriggersAndSplinesOfAnyNameAreIgnored) {
    const Picture before = at(4, 0);
    mTunnel.executeTrigger(4, "shot", "value");
    mTunnel.updateSpline(4, "alpha", 0);
    mTunnel.resetTriggers();
    EXPECT_EQ(test::comparePictures(at(4, 0), before).mean, 0);
}

TEST_F(TunnelTest, NoStateIsLeftBehind) {
    over(0, 0, 0, [&] {
        mTunnel.update(5, 0.02f, 0);
        for (GLenum state : {GL_TEXTURE_2D, GL_CULL_FACE, GL_DEPTH_TEST, GL_BLEND})
            EXPECT_FALSE(glIsEnabled(state));
        int texture = 1, program = 1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        EXPECT_EQ(texture, 0);
        EXPECT_EQ(program, 0);
        EXPECT_EQ(display().mTransformMatrix, mathbase::Matrix4x4Col());
    });
}

TEST_F(TunnelTest, AProgramThatMovesVerticesGetsAllFaces) {
    test::OwnFiles files(display());
    files.write("tunnel/tunnel.vert", test::MIRROR);
    files.write("tunnel/tunnel.frag", test::WHITE);
    Tunnel tunnel(&mCommon);
    test::prepare(tunnel, display(), "tunnel");
    const Picture drawn = over(0, 0, 0, [&] { tunnel.update(14, 0, 0); });
    EXPECT_GT(test::covered(drawn, over(0, 0, 0, [] {})), 0.05);
}
