// Shared by all effects, without a window: random numbers, billboards.
#include "effect_random.h"
#include "effect_test.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "mb_random.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Billboard;
using kindler::EffectRandom;
using mathbase::Random;
using mathbase::Vector3f;

TEST(Random, DrawsTheKnownSequence) {
    Random random(1);
    EXPECT_EQ(random.draw(), 69074u);     // 1 * 69069 + 5
    EXPECT_EQ(random.draw(), 475904815u); // 69074 * 69069 + 5 = 4770872111, less 2^32
    EXPECT_EQ(random.mState, 475904815u);
    Random high(0xFFFFFFFFu);
    EXPECT_EQ(high.draw(), 4294898232u); // -69069 + 5
}

TEST(Random, AUniformNumberIsTheStateOverTwoToTheThirtyTwo) {
    Random random(0);
    EXPECT_EQ(random.uniform(), 5 * 0x1p-32f);
    EXPECT_EQ(random.uniform(), float(5u * 69069u + 5u) * 0x1p-32f);
    // A state with all upper bits set rounds up to 1. Since 69069 is odd, its inverse gives the state before.
    uint32_t inverse = 1;
    for (int i = 0; i < 5; ++i)
        inverse *= 2 - 69069u * inverse;
    Random last((0xFFFFFFFFu - 5u) * inverse);
    EXPECT_EQ(last.uniform(), 1.0f);
    EXPECT_EQ(last.mState, 0xFFFFFFFFu);
}

TEST(Random, AUniformNumberStaysInItsRangeAndSpreadsEvenly) {
    Random random(7);
    int counts[10] = {};
    for (int i = 0; i < 100000; ++i) {
        const float u = random.uniform();
        ASSERT_GE(u, 0.0f);
        ASSERT_LE(u, 1.0f);
        ++counts[std::min(9, int(u * 10))];
    }
    for (int count : counts)
        EXPECT_NEAR(count, 10000, 500);
}

TEST(Random, APointOnTheSphereTakesTheAngleAndThenTheHeight) {
    Random random(123), same(123);
    const float phi = 6.2831855f * same.uniform();
    const float z = 2 * same.uniform() - 1;
    const float r = std::sqrt(1 - z * z);
    const auto point = random.unitSphere();
    EXPECT_EQ(point.z, z);
    EXPECT_NEAR(point.x, r * std::cos(phi), 1e-6);
    EXPECT_NEAR(point.y, r * std::sin(phi), 1e-6);
    EXPECT_EQ(random.mState, same.mState); // two draws
}

TEST(Random, PointsOnTheSphereHaveItsRadiusAndNoDirection) {
    Random random(99);
    Vector3f sum(0, 0, 0);
    for (int i = 0; i < 20000; ++i) {
        const Vector3f point = random.unitSphere();
        ASSERT_NEAR(point.length(), 1.0f, 1e-5);
        sum += point;
    }
    EXPECT_LT(sum.length() / 20000, 0.02f);
}

TEST(EffectRandom, StartsFromTheClockAndTwoDraws) {
    const auto before = uint32_t(clock());
    const EffectRandom random;
    const auto after = uint32_t(clock());
    bool found = false;
    for (uint32_t start = before; start <= after; ++start)
        found = found || (start * 69069u + 5u) * 69069u + 5u == random.mState;
    EXPECT_TRUE(found);
}

TEST(EffectRandom, AFixedStartGivesTheSameNumbersUntilItIsFreed) {
    {
        const test::FixedRandom fixed(1);
        EXPECT_EQ(EffectRandom().mState, 475904815u);
        EXPECT_EQ(EffectRandom().mState, 475904815u);
    }
    for (int i = 0; i < 1000000 && clock() == 1; ++i) {
    }
    EXPECT_NE(EffectRandom().mState, 475904815u);
}

TEST(Billboard, FacesTheCameraWithHalfAxes) {
    const Vector3f eye(3, 4, 12), target(-1, 2, 0);
    const Billboard board(eye, target, 0);
    const Vector3f view = target - eye;
    EXPECT_NEAR(board.right.length(), 0.5f, 1e-6);
    EXPECT_NEAR(board.up.length(), 0.5f, 1e-6);
    EXPECT_NEAR(board.right.dot(view), 0.0f, 1e-5);
    EXPECT_NEAR(board.up.dot(view), 0.0f, 1e-5);
    EXPECT_NEAR(board.right.dot(board.up), 0.0f, 1e-6);
    EXPECT_NEAR(board.right.y, 0.0f, 1e-6); // level without a roll
    EXPECT_GT(board.up.y, 0.0f);
}

TEST(Billboard, IsUprightOnTheScreenAtAnyRoll) {
    const Vector3f eye(1, 2, 3), target(0, 0, -5);
    mathbase::Matrix4x4Col camera;
    for (float roll : {0.0f, 1.0f, -2.5f}) {
        const Billboard board(eye, target, roll);
        camera.setCamera(eye, target, roll);
        const Vector3f right = camera.multiplyVector(board.right), up = camera.multiplyVector(board.up);
        EXPECT_NEAR(right.x, 0.5f, 1e-5);
        EXPECT_NEAR(right.y, 0.0f, 1e-5);
        EXPECT_NEAR(up.x, 0.0f, 1e-5);
        EXPECT_NEAR(up.y, 0.5f, 1e-5);
    }
}

TEST(BillboardDeathTest, ACameraWithoutADirectionFailsItsAssertion) {
    const Vector3f eye(1, 1, 1);
    EXPECT_DEATH(Billboard(eye, eye, 0), "length!=0");
}
