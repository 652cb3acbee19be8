#include "mb_random.h"
#include "mb_splinebase.h"

#include <cmath>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak::mathbase;

namespace {

using Key = SplineBaseKey<float>;
using Spline = SplineBase<float, Key>;

Spline splineOf(int mode, std::initializer_list<Key> keys) {
    Spline spline;
    spline.mMode = mode;
    for (const Key& key : keys)
        spline.addKey(key);
    return spline;
}

std::vector<float> values(const Spline& spline) {
    std::vector<float> result;
    for (const Key& key : spline.mKeys)
        result.push_back(key.value);
    return result;
}

const float notANumber = std::numeric_limits<float>::quiet_NaN();
const float infinity = std::numeric_limits<float>::infinity();

} // namespace

TEST(Spline, StartsEmptyAndSmooth) {
    const Spline spline;
    EXPECT_EQ(-1, spline.mCurrent);
    EXPECT_EQ(0.0f, spline.mMin);
    EXPECT_EQ(0.0f, spline.mMax);
    EXPECT_EQ(2, spline.mMode);
    EXPECT_EQ(0, spline.getNumKeys());
    EXPECT_TRUE(spline.mAutoTangents);
}

TEST(Spline, ModeNames) {
    EXPECT_EQ("square", Spline::getModeName(0));
    EXPECT_EQ("linear", Spline::getModeName(1));
    EXPECT_EQ("smooth", Spline::getModeName(2));
    EXPECT_EQ("unknown", Spline::getModeName(3));
    EXPECT_EQ("unknown", Spline::getModeName(-1));
}

TEST(Spline, EmptyEvaluatesToZero) {
    for (const int mode : {0, 1, 2}) {
        Spline spline;
        spline.mMode = mode;
        EXPECT_EQ(0.0f, spline.evaluate(1)) << mode;
        EXPECT_EQ(-3, spline.mCurrent);
    }
}

TEST(Spline, OneKeyEvaluatesToItsValueAtAllTimes) {
    for (const int mode : {0, 1, 2}) {
        const Spline spline = splineOf(mode, {{2, 7}});
        for (const float time : {-infinity, -5.0f, 2.0f, 9.0f, infinity})
            EXPECT_EQ(7.0f, spline.evaluate(time)) << mode << " " << time;
    }
}

TEST(Spline, ConstantBeforeTheFirstAndAfterTheLastKeyInAllModes) {
    for (const int mode : {0, 1, 2, 7}) {
        const Spline spline = splineOf(mode, {{1, 3}, {2, -4}, {4, 11}});
        EXPECT_EQ(3.0f, spline.evaluate(0.999f)) << mode;
        EXPECT_EQ(-1, spline.mCurrent);
        EXPECT_EQ(3.0f, spline.evaluate(-1e9f)) << mode;
        EXPECT_EQ(11.0f, spline.evaluate(4.001f)) << mode;
        EXPECT_EQ(-2, spline.mCurrent);
        EXPECT_EQ(11.0f, spline.evaluate(1e9f)) << mode;
    }
}

TEST(Spline, SquareAtExactlyAKeysTimeGivesThatKeysValue) {
    for (const int count : {1, 2, 3, 4, 5, 6, 7}) {
        Spline spline;
        spline.mMode = 0;
        for (int i = 0; i < count; ++i)
            spline.addKey({float(i), float(10 + i)});
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(float(10 + i), spline.evaluate(float(i))) << i << " of " << count;
    }
}

TEST(Spline, SquareHoldsTheKeyToTheLeft) {
    const Spline spline = splineOf(0, {{0, 1}, {1, 2}, {3, 5}});
    EXPECT_EQ(1.0f, spline.evaluate(0.999f));
    EXPECT_EQ(2.0f, spline.evaluate(1.001f));
    EXPECT_EQ(2.0f, spline.evaluate(2.999f));
}

TEST(Spline, EveryModeGivesTheLastKeysValueAtItsTime) {
    for (const int mode : {0, 1, 2}) {
        EXPECT_EQ(5.0f, splineOf(mode, {{0, 1}, {1, 2}, {3, 5}}).evaluate(3)) << mode;
        EXPECT_EQ(5.0f, splineOf(mode, {{0, 1}, {3, 5}}).evaluate(3)) << mode;
    }
}

TEST(Spline, LinearGoesStraight) {
    const Spline spline = splineOf(1, {{1, 2}, {3, 10}, {4, 0}});
    EXPECT_EQ(2.0f, spline.evaluate(1));
    EXPECT_EQ(4.0f, spline.evaluate(1.5f));
    EXPECT_EQ(10.0f, spline.evaluate(3));
    EXPECT_EQ(2.5f, spline.evaluate(3.75f));
}

TEST(Spline, SmoothIsTheHermiteCurveWithTheIncomingTangentNegated) {
    Spline spline;
    spline.mAutoTangents = false;
    spline.mKeys = {{0, 1, 0, 3}, {2, 4, -5, 0}};
    for (const float time : {0.25f, 0.5f, 1.0f, 1.75f}) {
        const double u = time / 2.0, m = 3, w = -5, d = 3;
        const double expected = 1 + m * u + (3 * d - 2 * m + w) * u * u + (m - 2 * d - w) * u * u * u;
        EXPECT_NEAR(expected, spline.evaluate(time), 1e-5) << time;
        // the same in the usual form, with end slope -w
        const double h = (2 * u * u * u - 3 * u * u + 1) * 1 + (u * u * u - 2 * u * u + u) * m +
                         (-2 * u * u * u + 3 * u * u) * 4 + (u * u * u - u * u) * -w;
        EXPECT_NEAR(h, spline.evaluate(time), 1e-5) << time;
    }
    spline.mMode = 9;
    EXPECT_NEAR(1 + 1.5 + (9 - 6 - 5) * 0.25 + (3 - 6 + 5) * 0.125, spline.evaluate(1), 1e-5);
}

TEST(Spline, TangentsOfEndKeysMultiplyByTheSpan) {
    const Spline spline = splineOf(2, {{0, 1}, {4, 3}});
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentIn);
    EXPECT_EQ(8.0f, spline.mKeys[0].tangentOut);
    EXPECT_EQ(-8.0f, spline.mKeys[1].tangentIn);
    EXPECT_EQ(0.0f, spline.mKeys[1].tangentOut);
}

TEST(Spline, TangentsOfAMiddleKeyWeighEachDifferenceByTheOtherSidesSpan) {
    const Spline spline = splineOf(2, {{0, 1}, {2, 4}, {6, 5}});
    const float s = (5.0f - 4.0f) * (0.5f / 2.0f) + (4.0f - 1.0f) * (0.5f / 4.0f);
    EXPECT_EQ(s * 4.0f, spline.mKeys[1].tangentOut);
    EXPECT_EQ(-s * 2.0f, spline.mKeys[1].tangentIn);
    EXPECT_EQ(6.0f, spline.mKeys[0].tangentOut);
    EXPECT_EQ(-4.0f, spline.mKeys[2].tangentIn);
}

TEST(Spline, LoneKeyHasNoTangents) {
    const Spline spline = splineOf(2, {{1, 5, 7, 8}});
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentIn);
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentOut);
}

TEST(Spline, TangentsStayInOtherModesAndWhenSetByHand) {
    EXPECT_EQ(8.0f, splineOf(1, {{0, 1, 7, 8}, {1, 2}}).mKeys[0].tangentOut);
    Spline spline;
    spline.mAutoTangents = false;
    spline.addKey({0, 1, 7, 8});
    spline.addKey({1, 2, 5, 6});
    EXPECT_EQ(8.0f, spline.mKeys[0].tangentOut);
    EXPECT_EQ(5.0f, spline.mKeys[1].tangentIn);
}

TEST(Spline, SmoothBoundsSpanAllKeys) {
    Spline spline = splineOf(2, {{0, 1}, {1, 9}, {2, -3}});
    EXPECT_EQ(-3.0f, spline.mMin);
    EXPECT_EQ(9.0f, spline.mMax);
    spline.removeKey(1);
    EXPECT_EQ(-3.0f, spline.mMin);
    EXPECT_EQ(1.0f, spline.mMax);
}

TEST(Spline, SquareSplinesBoundsAreBothItsFirstKeysValue) {
    for (const int mode : {0, 1}) {
        const Spline spline = splineOf(mode, {{1, 9}, {2, -3}, {0, 4}});
        EXPECT_EQ(4.0f, spline.mMin);
        EXPECT_EQ(4.0f, spline.mMax);
    }
}

TEST(Spline, KeysOutOfTimeOrderYieldASortedList) {
    Spline spline;
    EXPECT_EQ(0, spline.addKey({3, 3}));
    EXPECT_EQ(0, spline.addKey({1, 1}));
    EXPECT_EQ(1, spline.addKey({2, 2}));
    EXPECT_EQ(3, spline.addKey({5, 5}));
    EXPECT_EQ(3, spline.addKey({4, 4}));
    EXPECT_EQ(0, spline.addKey({0, 0}));
    EXPECT_EQ((std::vector<float>{0, 1, 2, 3, 4, 5}), values(spline));
    EXPECT_EQ(-1, spline.mCurrent);
}

TEST(Spline, LaterAddedOfTwoKeysWithEqualTimesFollowsTheEarlierOne) {
    for (const float time : {1.0f, 2.0f, 3.0f, 4.0f}) {
        for (int count = int(time); count <= 4; ++count) {
            Spline spline;
            for (int i = 1; i <= count; ++i)
                spline.addKey({float(i), float(i)});
            EXPECT_EQ(int(time), spline.addKey({time, 100})) << time << " of " << count;
            EXPECT_EQ(int(time) + 1, spline.addKey({time, 200})) << time << " of " << count;
            EXPECT_EQ(count + 2, spline.getNumKeys());
        }
    }
}

TEST(Spline, RemoveKeyClosesTheGap) {
    Spline spline = splineOf(2, {{0, 0}, {1, 1}, {2, 2}, {3, 3}});
    spline.mCurrent = 2;
    spline.removeKey(1);
    EXPECT_EQ((std::vector<float>{0, 2, 3}), values(spline));
    EXPECT_EQ(-1, spline.mCurrent);
    spline.removeKey(2);
    EXPECT_EQ((std::vector<float>{0, 2}), values(spline));
    EXPECT_EQ(4.0f, spline.mKeys[0].tangentOut);
    spline.removeKey(1);
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentOut);
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentIn);
}

TEST(Spline, RemovingTheFirstOfTwoClearsTheOthersTangents) {
    Spline spline = splineOf(2, {{0, 0}, {1, 1}});
    ASSERT_NE(0.0f, spline.mKeys[1].tangentIn);
    spline.removeKey(0);
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentIn);
    EXPECT_EQ(0.0f, spline.mKeys[0].tangentOut);
}

TEST(Spline, RemovingTheLastKeyKeepsBoundsAndCacheAndEvaluatesToZero) {
    Spline spline = splineOf(2, {{0, 5}});
    spline.mCurrent = 3;
    spline.removeKey(0);
    EXPECT_EQ(5.0f, spline.mMin);
    EXPECT_EQ(5.0f, spline.mMax);
    EXPECT_EQ(3, spline.mCurrent);
    EXPECT_EQ(0.0f, spline.evaluate(0));
}

TEST(Spline, RemoveKeyOutsideTheListAborts) {
    Spline spline = splineOf(2, {{0, 5}});
    for (const int index : {-1, 1, 99}) {
        EXPECT_EXIT(spline.removeKey(index), testing::KilledBySignal(SIGABRT),
                    "mb_splinebase:165: .*Assertion `index>=0 && index<\\(int\\)mKeys.size\\(\\)' failed");
    }
}

TEST(Spline, UpdateTangentsOfAnEmptyListOrAForeignIndexTouchesNothing) {
    Spline spline;
    spline.updateTangents(0, 0, 0);
    EXPECT_EQ(0, spline.getNumKeys());
    spline.mKeys = {{1, 5, 7, 8}};
    spline.updateTangents(4, 0, 0);
    EXPECT_EQ(7.0f, spline.mKeys[0].tangentIn);
    EXPECT_EQ(5.0f, spline.mMin);
}

TEST(Spline, AnEditShowsAtTheNextEvaluation) {
    Spline spline = splineOf(1, {{0, 0}, {1, 1}, {2, 2}});
    EXPECT_EQ(0.5f, spline.evaluate(0.5f));
    spline.mKeys[0].value = 1;
    EXPECT_EQ(1.0f, spline.evaluate(0.5f));
    spline.removeKey(1);
    EXPECT_EQ(1.25f, spline.evaluate(0.5f));
}

TEST(Spline, NanAndKeysOutOfOrderReadNothingOutside) {
    for (int count = 0; count < 6; ++count) {
        for (const int mode : {-1, 0, 1, 2}) {
            Spline spline;
            spline.mMode = mode;
            for (int i = 0; i < count; ++i)
                spline.addKey({i % 2 ? notANumber : float(i), float(i)});
            for (const float time : {notANumber, -infinity, infinity, 0.0f, 1.0f, 2.5f}) {
                spline.evaluate(time);
                EXPECT_LT(spline.mCurrent, count == 0 ? 0 : count);
            }
        }
    }
    Spline spline;
    spline.mMode = 1;
    spline.mKeys = {{5, 1}, {1, 2}, {9, 3}, {0, 4}, {7, 5}};
    for (float time = -1; time < 11; time += 0.25f) {
        spline.evaluate(time);
        EXPECT_LT(spline.mCurrent, 5);
    }
}

TEST(Spline, KeysOfEqualTimeJumpFromTheEarlierToTheLater) {
    const Spline spline = splineOf(1, {{0, 0}, {1, 1}, {1, 5}, {2, 6}});
    EXPECT_EQ(0.5f, spline.evaluate(0.5f));
    EXPECT_EQ(5.0f, spline.evaluate(1));
    EXPECT_EQ(5.5f, spline.evaluate(1.5f));
}

TEST(Spline, KeysSetAtOnceAreThoseAddedOneByOne) {
    Random random(1);
    const auto draw = [&random](int below) { return int(random.draw() >> 16) % below; };
    for (int count = 0; count < 40; ++count) {
        for (const int mode : {0, 1, 2}) {
            std::vector<Key> keys;
            Spline added, set;
            added.mMode = set.mMode = mode;
            for (int i = 0; i < count; ++i) {
                keys.push_back({float(draw(20)), float(draw(1000)), 0, 0});
                added.addKey(keys.back());
            }
            set.setKeys(keys);
            ASSERT_EQ(set.getNumKeys(), count);
            EXPECT_EQ(set.mCurrent, added.mCurrent);
            EXPECT_EQ(set.mMin, added.mMin);
            EXPECT_EQ(set.mMax, added.mMax);
            for (size_t i = 0; i < size_t(count); ++i)
                EXPECT_EQ(memcmp(&set.mKeys[i], &added.mKeys[i], sizeof(Key)), 0);
        }
    }
}

TEST(Spline, KeysSetAtOnceHaveThoseWithoutATimeLast) {
    Spline spline;
    spline.mMode = 1;
    spline.setKeys({{notANumber, 3}, {infinity, 2}, {notANumber, 4}, {0, 0}, {1, 1}});
    EXPECT_EQ(values(spline), (std::vector<float>{0, 1, 2, 3, 4}));
}
