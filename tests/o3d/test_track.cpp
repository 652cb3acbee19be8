#include "cl_readbuffer.h"
#include "cl_writebuffer.h"
#include "o3d_bytes.h"
#include "o3d_track.h"
#include "support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

using namespace zentrak;
using namespace zentrak::test;
using Track = o3d::TrackBlenderFloat;
using Key = Track::Key;

namespace {

Key plain(float time, float value) {
    return {time, value, time, value, time, value};
}

Track makeTrack(int interpolation, int extrapolation, std::vector<Key> keys) {
    Track track(99.0f);
    track.mInterpolation = interpolation;
    track.mExtrapolation = extrapolation;
    track.mKeys = std::move(keys);
    return track;
}

// The keys as loading leaves them.
Track loadTrack(int interpolation, int extrapolation, const std::vector<Key>& keys) {
    const std::string payload = u8(interpolation) + u8(extrapolation) + bytes(keys.data(), keys.size() * 24);
    const std::string stream = "O3DF\x01\x01" + chunk(0xFB10, payload);
    chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
    buffer.openChunk();
    Track track(99.0f);
    track.loadKeys(buffer);
    return track;
}

TEST(Track, WithoutKeysGivesItsDefaultAtAnyTime) {
    const Track track(3.5f);
    for (const float time : {-1e9f, 0.0f, 1e9f})
        EXPECT_EQ(3.5f, track.getValue(time));
    EXPECT_TRUE(track.isStatic());
}

TEST(Track, OneKeyWithConstantExtrapolationGivesItsValueBeforeAndAfter) {
    for (int interpolation = 0; interpolation < 3; ++interpolation) {
        const Track track = makeTrack(interpolation, 0, {{0, 1, 2, 5, 3, 4}});
        EXPECT_EQ(5.0f, track.getValue(1));
        EXPECT_EQ(5.0f, track.getValue(2));
        EXPECT_EQ(5.0f, track.getValue(3));
    }
}

TEST(Track, OneKeyWithLinearExtrapolationAndConstantInterpolationGivesItsValue) {
    const Track track = makeTrack(0, 1, {{0, 1, 2, 5, 3, 4}});
    EXPECT_EQ(5.0f, track.getValue(-7));
    EXPECT_EQ(5.0f, track.getValue(2));
    EXPECT_EQ(5.0f, track.getValue(9));
}

TEST(Track, LinearExtrapolationMixesTheTimeOfTheKeyWithTheValueOfTheHandle) {
    // Before: s = (t - 2) / (1 - 2), after: s = (t - 2) / (4 - 2).
    for (const int interpolation : {1, 2, 7}) {
        const Track track = makeTrack(interpolation, 1, {{1, 10, 2, 5, 4, 20}});
        EXPECT_EQ((1 - 2.0f) * 2 + 2.0f * 10, track.getValue(0));
        EXPECT_EQ((1 - 1.5f) * 2 + 1.5f * 20, track.getValue(5));
        EXPECT_EQ(2.0f, track.getValue(2)); // the key's time, not its value of 5
    }
}

TEST(Track, LinearExtrapolationUsesTheOuterKeys) {
    const Track track = makeTrack(1, 1, {{-1, 7, 0, 1, 1, 1}, {2, 2, 4, 2, 6, 9}});
    EXPECT_EQ((1 - 3.0f) * 0 + 3.0f * 7, track.getValue(-3));
    EXPECT_EQ((1 - 2.0f) * 4 + 2.0f * 9, track.getValue(8));
    EXPECT_EQ(1.5f, track.getValue(2));
}

TEST(Track, TimeExactlyAtTheLastKeyGivesTheLastValue) {
    for (int interpolation = 0; interpolation < 3; ++interpolation) {
        const Track track = makeTrack(interpolation, 0, {plain(0, 1), plain(1, 2), plain(3, 7)});
        EXPECT_EQ(7.0f, track.getValue(3));
        EXPECT_EQ(7.0f, track.getValue(4));
        EXPECT_EQ(1.0f, track.getValue(-1));
    }
}

TEST(Track, TimeExactlyAtTheFirstKeyGivesTheFirstValue) {
    CaptureStdout capture;
    for (int interpolation = 0; interpolation < 3; ++interpolation)
        for (int extrapolation = 0; extrapolation < 4; ++extrapolation) {
            const Track two =
                loadTrack(interpolation, extrapolation, {{-1, 4, 0, 1, 1, 3}, {2, 2, 3, 7, 4, 7}});
            EXPECT_EQ(1.0f, two.getValue(0)) << interpolation << extrapolation;
            const Track three = loadTrack(interpolation, extrapolation,
                                          {{-1, 4, 0, 1, 1, 3}, {2, 2, 3, 7, 4, 7}, plain(6, 5)});
            EXPECT_EQ(1.0f, three.getValue(0)) << interpolation << extrapolation;
        }
    EXPECT_EQ("", capture.text());
}

TEST(Track, TimeAtAKeyInTheMiddleGivesItsValue) {
    for (int interpolation = 0; interpolation < 3; ++interpolation) {
        const Track track = makeTrack(interpolation, 0, {plain(0, 1), plain(1, 2), plain(3, 7), plain(4, 8)});
        EXPECT_FLOAT_EQ(2.0f, track.getValue(1));
        EXPECT_FLOAT_EQ(7.0f, track.getValue(3));
    }
}

TEST(Track, ConstantInterpolationHoldsTheLeftValue) {
    const Track track = makeTrack(0, 0, {plain(0, 1), plain(1, 2), plain(3, 7)});
    EXPECT_EQ(1.0f, track.getValue(0.999f));
    EXPECT_EQ(2.0f, track.getValue(2.999f));
}

TEST(Track, LinearInterpolationIsLinearInTime) {
    const Track track = makeTrack(1, 0, {{0, 50, 0, 1, 0, -50}, {9, 9, 4, 3, 9, 9}});
    EXPECT_EQ(1.5f, track.getValue(1));
    EXPECT_EQ(2.5f, track.getValue(3));
}

TEST(Track, InterpolationModeSevenActsAsConstantAndLeavesTheHandles) {
    const Track track = loadTrack(7, 0, {{0, 0, 0, 1, 100, 5}, {-100, 5, 1, 3, 2, 3}});
    EXPECT_EQ(7, track.mInterpolation);
    EXPECT_EQ(100.0f, track.mKeys[0].mHandleOutTime);
    EXPECT_EQ(-100.0f, track.mKeys[1].mHandleInTime);
    EXPECT_EQ(1.0f, track.getValue(0.5f));
}

TEST(Track, CyclicExtrapolationRepeats) {
    const Track track = makeTrack(1, 2, {plain(5, 0), plain(15, 10)});
    EXPECT_EQ(2.0f, track.getValue(5 + 2));
    EXPECT_EQ(2.0f, track.getValue(5 + 12));
    EXPECT_EQ(2.0f, track.getValue(5 - 8));
    EXPECT_EQ(2.0f, track.getValue(5 - 98));
    EXPECT_EQ(2.0f, track.getValue(5 + 1002));
    EXPECT_EQ(0.0f, track.getValue(15));
}

TEST(Track, CyclicExtrapolationOfManyKeysRepeats) {
    const Track track = makeTrack(1, 2, {plain(0, 0), plain(1, 4), plain(3, 6), plain(4, 0)});
    for (float time = 0; time < 4; time += 0.25f) {
        EXPECT_EQ(track.getValue(time), track.getValue(time + 8)) << time;
        if (time > 0) {
            EXPECT_EQ(track.getValue(time), track.getValue(time - 12)) << time;
        }
    }
}

TEST(Track, CyclicWithOffsetRisesWithEachRepetition) {
    const Track track = makeTrack(1, 3, {plain(5, 0), plain(15, 5)});
    for (const float time : {5.0f, 6.0f, 9.5f, 14.0f}) {
        const float value = track.getValue(time);
        EXPECT_FLOAT_EQ(value + 5, track.getValue(time + 10));
        EXPECT_FLOAT_EQ(value + 15, track.getValue(time + 30));
        EXPECT_FLOAT_EQ(value - 5, track.getValue(time - 10));
        EXPECT_FLOAT_EQ(value - 20, track.getValue(time - 40));
    }
    EXPECT_EQ(5.0f, track.getValue(15));
}

TEST(Track, CyclicWithOffsetAppliesToEveryInterpolation) {
    for (const int interpolation : {0, 1, 2}) {
        const Track track =
            makeTrack(interpolation, 3, {{0, 1, 0, 1, 1, 1}, {2, 6, 3, 6, 3, 6}, {5, 9, 6, 9, 6, 9}});
        for (const float time : {0.0f, 0.5f, 3.25f, 5.5f})
            EXPECT_FLOAT_EQ(track.getValue(time) + 2 * 8, track.getValue(time + 12)) << interpolation << time;
    }
}

TEST(Track, OneKeyThatIsCyclicGivesItsValue) {
    for (const int extrapolation : {2, 3})
        for (const float time : {-5.0f, 2.0f, 9.0f})
            EXPECT_EQ(4.0f, makeTrack(2, extrapolation, {plain(2, 4)}).getValue(time));
}

TEST(Track, OneKeyWithAnExtrapolationThatIsNoneGivesItsValue) {
    for (const float time : {-5.0f, 2.0f, 9.0f})
        EXPECT_EQ(4.0f, makeTrack(2, 9, {plain(2, 4)}).getValue(time));
}

TEST(Track, CyclicTimeThatLandsOnTheLastKeyIsReportedAndHasAValue) {
    for (const std::vector<Key>& keys : {std::vector<Key>{plain(0, 1), plain(10, 3)},
                                         std::vector<Key>{plain(-10, 1), plain(0, 1), plain(10, 3)}}) {
        CaptureStdout capture;
        const float start = keys.front().mTime;
        const Track track = makeTrack(1, 2, keys);
        EXPECT_EQ(3.0f, track.getValue(start - (10 - start)));
        EXPECT_EQ("error (0.000000,10.000000),10.000000!\n", capture.text());
    }
}

TEST(Track, UnknownExtrapolationContinuesTheNearestSegment) {
    CaptureStdout capture;
    const Track track = makeTrack(1, 4, {plain(0, 0), plain(1, 10), plain(2, 12)});
    EXPECT_EQ(16.0f, track.getValue(4));
    EXPECT_EQ(-10.0f, track.getValue(-1));
    EXPECT_EQ("error (1.000000,2.000000),4.000000!\nerror (0.000000,1.000000),-1.000000!\n", capture.text());
}

TEST(Track, TimeWithoutARootIsReportedAndGivesTheLeftValue) {
    CaptureStdout capture;
    const Track track = makeTrack(2, 4, {{0, 0, 0, 5, 1, 6}, {2, 7, 3, 8, 3, 8}});
    EXPECT_EQ(5.0f, track.getValue(7));
    EXPECT_EQ("error (0.000000,3.000000),7.000000!\nerror, solveForTime returned zero\n", capture.text());
}

TEST(Track, WithoutARootTheOffsetOfTheCycleIsKept) {
    CaptureStdout capture;
    const float none = std::numeric_limits<float>::quiet_NaN();
    const Track track = makeTrack(2, 3, {{0, 0, 0, 5, none, 6}, {2, 7, 4, 8, 5, 8}});
    EXPECT_EQ(5.0f + 3.0f, track.getValue(6));
    EXPECT_EQ("error, solveForTime returned zero\n", capture.text());
}

TEST(Track, HandlesThatReachPastTheSpanAreShortenedInProportion) {
    // Out 3, in 6, span 6: each shrinks to two thirds.
    const Track track = loadTrack(2, 0, {{0, 0, 1, 10, 4, 13}, {1, 2, 7, 20, 8, 30}});
    EXPECT_FLOAT_EQ(3.0f, track.mKeys[0].mHandleOutTime);
    EXPECT_FLOAT_EQ(12.0f, track.mKeys[0].mHandleOutValue);
    EXPECT_FLOAT_EQ(3.0f, track.mKeys[1].mHandleInTime);
    EXPECT_FLOAT_EQ(8.0f, track.mKeys[1].mHandleInValue);
    // The outer handles are unaffected.
    EXPECT_EQ(0.0f, track.mKeys[0].mHandleInTime);
    EXPECT_EQ(8.0f, track.mKeys[1].mHandleOutTime);
}

TEST(Track, HandlesThatFitStay) {
    for (const float reach : {2.0f, 3.0f}) { // together less than the span, and exactly the span
        const Track track = loadTrack(2, 0, {{0, 0, 1, 10, 1 + reach, 13}, {7 - reach, 2, 7, 20, 8, 30}});
        EXPECT_EQ(1 + reach, track.mKeys[0].mHandleOutTime);
        EXPECT_EQ(13.0f, track.mKeys[0].mHandleOutValue);
        EXPECT_EQ(7 - reach, track.mKeys[1].mHandleInTime);
        EXPECT_EQ(2.0f, track.mKeys[1].mHandleInValue);
    }
}

TEST(Track, HandlesThatReachExactlyToEachOtherKeepTheirValues) {
    // Shortening by a factor of one would round the handle's value away.
    const Track track = loadTrack(2, 0, {{0, 0, 1, 1e8f, 4, 0.1f}, {4, 0.1f, 7, 1e8f, 8, 30}});
    EXPECT_EQ(0.1f, track.mKeys[0].mHandleOutValue);
    EXPECT_EQ(0.1f, track.mKeys[1].mHandleInValue);
}

TEST(Track, HandlesThatPointBackwardsCountByTheirLength) {
    const Track track = loadTrack(2, 0, {{0, 0, 0, 0, -4, 4}, {5, 4, 4, 0, 5, 0}});
    // Lengths 4 and 1, span 4: scaled by 0.8, keeping their directions.
    EXPECT_FLOAT_EQ(-3.2f, track.mKeys[0].mHandleOutTime);
    EXPECT_FLOAT_EQ(3.2f, track.mKeys[0].mHandleOutValue);
    EXPECT_FLOAT_EQ(4.8f, track.mKeys[1].mHandleInTime);
    EXPECT_FLOAT_EQ(3.2f, track.mKeys[1].mHandleInValue);
}

TEST(Track, HandlesWithoutLengthStay) {
    const Track track = loadTrack(2, 0, {{0, 0, 3, 1, 3, 9}, {3, 8, 3, 2, 3, 2}});
    EXPECT_EQ(9.0f, track.mKeys[0].mHandleOutValue);
    EXPECT_EQ(8.0f, track.mKeys[1].mHandleInValue);
}

TEST(Track, KeysAreCountedByTheSizeOfTheChunk) {
    const std::string keys = key(0, 1) + key(1, 2);
    for (const size_t extra : {0u, 1u, 23u}) {
        const std::string stream = "O3DF\x01\x01" + keyList(0xFB10, 1, 0, keys + std::string(extra, 'x'));
        chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
        buffer.openChunk();
        Track track;
        track.loadKeys(buffer);
        EXPECT_EQ(2u, track.mKeys.size());
    }
    for (const size_t size : {0u, 1u, 2u, 25u}) {
        const std::string stream = "O3DF\x01\x01" + chunk(0xFB10, std::string(size, '\1'));
        chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
        buffer.openChunk();
        Track track;
        track.loadKeys(buffer);
        EXPECT_EQ(0u, track.mKeys.size()) << size;
    }
}

// solveForTime

std::vector<float> roots(float q0, float q1, float q2, float q3, float time) {
    Key a = plain(q0, 0), b = plain(q3, 0);
    a.mHandleOutTime = q1;
    b.mHandleInTime = q2;
    float found[3] = {};
    const int count = Track().solveForTime(a, b, time, found);
    return std::vector<float>(found, found + count);
}

void expectRoots(const std::vector<float>& expected, const std::vector<float>& found) {
    ASSERT_EQ(expected.size(), found.size());
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(expected[i], found[i], 1e-6f) << i;
}

TEST(SolveForTime, ACurveThatStandsStillHasARootAtItsTimeOnly) {
    EXPECT_EQ((std::vector<float>{0.0f}), roots(5, 5, 5, 5, 5));
    EXPECT_TRUE(roots(5, 5, 5, 5, 6).empty());
}

TEST(SolveForTime, EvenlySpacedHandlesAreLinear) {
    EXPECT_EQ((std::vector<float>{0.0f}), roots(0, 1, 2, 3, 0));
    EXPECT_EQ((std::vector<float>{0.5f}), roots(0, 1, 2, 3, 1.5f));
    EXPECT_EQ((std::vector<float>{1.0f}), roots(0, 1, 2, 3, 3));
    EXPECT_TRUE(roots(0, 1, 2, 3, 3.1f).empty());
    EXPECT_TRUE(roots(0, 1, 2, 3, -0.1f).empty());
}

TEST(SolveForTime, QuadraticTimeWithTwoCandidatesKeepsThoseThatCount) {
    // 1.5 u^2 + 1.5 u: the first candidate is negative.
    expectRoots({(-1.5f + sqrtf(2.25f + 6)) / 3}, roots(0, 0.5f, 1.5f, 3, 1));
    // 9 u^2 - 6 u from a fold: two roots at -0.75, smaller first.
    expectRoots({1.0f / 6, 0.5f}, roots(0, -2, -1, 3, -0.75f));
}

TEST(SolveForTime, QuadraticTimeThatTouchesHasOneRoot) {
    expectRoots({1.0f / 6}, roots(0, -1, 1, 6, -0.25f));
    EXPECT_TRUE(roots(0, -1, 1, 6, -1).empty());
}

TEST(SolveForTime, CubicTimeWithOneRealRoot) {
    expectRoots({0.5f}, roots(0, 0, 1, 1, 0.5f));
    expectRoots({0.5f}, roots(0, 0.9f, 0.1f, 1, 0.5f));
}

TEST(SolveForTime, CubicTimeWithADoubleRootGivesTheSimpleOneFirst) {
    // 16 u^3 - 24 u^2 + 9 u is 1 at 1 and, touching, at a quarter.
    expectRoots({1.0f, 0.25f}, roots(0, 3, -2, 1, 1));
}

TEST(SolveForTime, CubicTimeThatFoldsHasThreeRootsInTheOrderOfTheFormula) {
    const float r = sqrtf(0.1875f);
    expectRoots({0.5f + r, 0.5f - r, 0.5f}, roots(0, 3, -2, 1, 0.5f));
}

TEST(SolveForTime, RootsCountALittleOutsideTheirRange) {
    EXPECT_EQ(1u, roots(0, 1, 2, 3, 3 * 1.0000009f).size());
    EXPECT_EQ(0u, roots(0, 1, 2, 3, 3 * 1.0000015f).size());
    EXPECT_EQ(1u, roots(0, 1, 2, 3, -2e-10f).size());
    EXPECT_EQ(0u, roots(0, 1, 2, 3, -4e-10f).size());
}

TEST(SolveForTime, RandomCurvesGiveRootsOfTheCurve) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> any(-3, 3);
    int several = 0;
    for (int round = 0; round < 20000; ++round) {
        const float q0 = any(random), q1 = any(random), q2 = any(random), q3 = any(random);
        const float time = any(random);
        const std::vector<float> found = roots(q0, q1, q2, q3, time);
        several += found.size() > 1;
        for (const double u : found) {
            const double v = 1 - u;
            EXPECT_NEAR(time, v * v * v * q0 + 3 * u * v * v * q1 + 3 * u * u * v * q2 + u * u * u * q3,
                        2e-5);
        }
        // A curve that passes the time must be found there.
        if ((time - q0) * (time - q3) < -1e-3f) {
            EXPECT_FALSE(found.empty()) << q0 << " " << q1 << " " << q2 << " " << q3 << " " << time;
        }
    }
    EXPECT_GT(several, 100);
}

TEST(Sqrt3d, IsTheRealCubeRoot) {
    EXPECT_EQ(0.0, o3d::Sqrt3d(0));
    EXPECT_NEAR(2.0, o3d::Sqrt3d(8), 1e-14);
    EXPECT_NEAR(-3.0, o3d::Sqrt3d(-27), 1e-14);
    EXPECT_NEAR(0.1, o3d::Sqrt3d(0.001), 1e-15);
}

// Sampling compared with bisection of the time curve in double precision

struct Bezier {
    double time[4];
    double value[4];

    static double at(const double (&p)[4], double u) {
        const double v = 1 - u;
        return v * v * v * p[0] + 3 * u * v * v * p[1] + 3 * u * u * v * p[2] + u * u * u * p[3];
    }
    // The parameter at which the rising time curve reaches `t`.
    double find(double t) const {
        double lo = 0, hi = 1;
        for (int i = 0; i < 80; ++i) {
            const double mid = (lo + hi) / 2;
            (at(time, mid) < t ? lo : hi) = mid;
        }
        return (lo + hi) / 2;
    }
};

// Random keys, as left by loading, whose handles point the right way, some too far.
Track randomBezier(std::mt19937& random, int count, int extrapolation) {
    std::uniform_real_distribution<float> step(0.3f, 3), reach(0, 1.6f), value(-10, 10);
    std::vector<Key> keys;
    float time = value(random);
    for (int i = 0; i < count; ++i) {
        const float length = reach(random);
        keys.push_back(
            {time - length, value(random), time, value(random), time + reach(random), value(random)});
        time += step(random);
    }
    return loadTrack(2, extrapolation, keys);
}

// The range of values of the curve within `slack` of `time`: the possible effect of rounding the time.
void expectOnCurve(const Track& track, double time, double slack, float found) {
    size_t segment = 0;
    while (segment + 2 < track.mKeys.size() && track.mKeys[segment + 1].mTime <= time)
        ++segment;
    const Key& a = track.mKeys[segment];
    const Key& b = track.mKeys[segment + 1];
    const Bezier bezier = {{a.mTime, a.mHandleOutTime, b.mHandleInTime, b.mTime},
                           {a.mValue, a.mHandleOutValue, b.mHandleInValue, b.mValue}};
    const double from = bezier.find(time - slack), to = bezier.find(time + slack);
    double lowest = 1e9, highest = -1e9;
    for (int i = 0; i <= 40; ++i) {
        const double value = Bezier::at(bezier.value, from + (to - from) * i / 40);
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
    }
    EXPECT_GE(found, lowest - 2e-5) << time;
    EXPECT_LE(found, highest + 2e-5) << time;
    EXPECT_LT(highest - lowest, 3.0) << "the slack hides too much";
}

TEST(Track, BezierSamplesLieOnTheCurveThatBisectionFinds) {
    std::mt19937 random(5);
    CaptureStdout capture;
    for (int round = 0; round < 400; ++round) {
        const int count = 2 + int(random() % 20);
        const Track track = randomBezier(random, count, 0);
        std::uniform_real_distribution<float> inside(track.mKeys.front().mTime, track.mKeys.back().mTime);
        for (int i = 0; i < 50; ++i) {
            const float time = std::min(inside(random), std::nextafter(track.mKeys.back().mTime, -1e9f));
            expectOnCurve(track, time, 3e-5, track.getValue(time));
        }
    }
    EXPECT_EQ("", capture.text());
}

TEST(Track, CyclicBezierSamplesLieOnTheCurveThatBisectionFinds) {
    std::mt19937 random(6);
    for (int round = 0; round < 200; ++round) {
        const int extrapolation = 2 + round % 2;
        const Track track = randomBezier(random, 2 + int(random() % 6), extrapolation);
        const double first = track.mKeys.front().mTime;
        const double span = double(track.mKeys.back().mTime) - first;
        const double rise = extrapolation == 3 ? track.mKeys.back().mValue - track.mKeys.front().mValue : 0;
        for (int i = 0; i < 30; ++i) {
            const int cycle = int(random() % 9) - 4;
            const double place = span * (0.01 + 0.98 * (random() % 1000) / 1000.0);
            const float time = float(first + span * cycle + place);
            const float value = track.getValue(time);
            expectOnCurve(track, first + place, 1e-4, float(value - rise * cycle));
        }
    }
}

TEST(Track, ValueDoesNotDependOnWhatWasSampledBefore) {
    std::mt19937 random(8);
    const Track used = randomBezier(random, 21, 0);
    const float first = used.mKeys.front().mTime, last = used.mKeys.back().mTime;
    for (int i = 0; i < 5000; ++i) {
        const float time = first + (last - first) * float(random() % 10000) / 10000.0f;
        Track fresh = used;
        fresh.mIndex = -1;
        EXPECT_EQ(fresh.getValue(time), used.getValue(time));
        EXPECT_LE(used.mKeys[size_t(used.mIndex)].mTime, time);
    }
}

TEST(Track, EveryNumberOfKeysFindsItsSegment) {
    for (int count = 2; count < 40; ++count) {
        std::vector<Key> keys;
        for (int i = 0; i < count; ++i)
            keys.push_back(plain(float(i), float(10 * i)));
        const Track track = makeTrack(0, 0, keys);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(10.0f * float(i), track.getValue(float(i)));
            EXPECT_EQ(10.0f * float(i), track.getValue(float(i) + (i + 1 < count ? 0.9f : 0)));
        }
    }
}

TEST(Track, KeysOutOfOrderAndNanAreHarmless) {
    const float none = std::numeric_limits<float>::quiet_NaN(), huge = std::numeric_limits<float>::infinity();
    const float odd[] = {none, huge, -huge, 0, -0.0f, 1, -1, 3e38f, -3e38f, 1e-40f, 2.5f, 7};
    std::mt19937 random(9);
    CaptureStdout capture;
    for (int round = 0; round < 20000; ++round) {
        std::vector<Key> keys(random() % 6);
        for (Key& key : keys)
            for (float* field : {&key.mHandleInTime, &key.mHandleInValue, &key.mTime, &key.mValue,
                                 &key.mHandleOutTime, &key.mHandleOutValue})
                *field = odd[random() % 12];
        Track track = loadTrack(int(random() % 4), int(random() % 5), keys);
        track.mIndex = int(random() % 9) - 2;
        for (int i = 0; i < 4; ++i)
            track.getValue(odd[random() % 12]);
    }
}

TEST(Track, AllKeysAtOneTimeAreSurvived) {
    CaptureStdout capture;
    for (int interpolation = 0; interpolation < 3; ++interpolation)
        for (int extrapolation = 0; extrapolation < 5; ++extrapolation)
            for (const float time : {-1.0f, 1.0f, 2.0f})
                makeTrack(interpolation, extrapolation, {plain(1, 1), plain(1, 2), plain(1, 3)})
                    .getValue(time);
    SUCCEED(); // only shows that it ends, and that sanitizers are silent
}

// Track groups

// Loads the payload of a track chunk into the group.
template <typename GROUP>
GROUP loadGroup(const std::string& payload) {
    const std::string stream = "O3DF\x01\x01" + chunk(0xFA00, payload);
    chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
    buffer.openChunk();
    GROUP group;
    group.loadChunk(buffer);
    return group;
}

TEST(TrackGroup, KeyListsGoToTheirComponents) {
    const std::string lists = keyList(0xFB00, 1, 0, key(0, 10)) + keyList(0xFB10, 1, 0, key(0, 11)) +
                              keyList(0xFB20, 1, 0, key(0, 12)) + keyList(0xFB30, 1, 0, key(0, 13));
    EXPECT_EQ(11.0f, loadGroup<o3d::TrackFloat>(lists).getValue(0));
    EXPECT_EQ(o3d::Vector3f(11, 12, 13), loadGroup<o3d::TrackVector3f>(lists).getValue(0));
    EXPECT_EQ(o3d::Vector3f(11, 12, 13), loadGroup<o3d::TrackEulerf>(lists).getValue(0).angles);
    const o3d::Vector4f color = loadGroup<o3d::TrackColor4f>(lists).getValue(0);
    EXPECT_EQ(10.0f, color.x);
    EXPECT_EQ(11.0f, color.y);
    EXPECT_EQ(12.0f, color.z);
    EXPECT_EQ(13.0f, color.w);
    const o3d::Quatf rotation = loadGroup<o3d::TrackQuatf>(lists).getValue(0);
    EXPECT_EQ(10.0f, rotation.w);
    EXPECT_EQ(11.0f, rotation.x);
    EXPECT_EQ(12.0f, rotation.y);
    EXPECT_EQ(13.0f, rotation.z);
}

TEST(TrackGroup, DefaultChunksGiveEachComponentItsPart) {
    EXPECT_EQ(5.0f, loadGroup<o3d::TrackFloat>(chunk(0xF004, f32(5))).getValue(0));
    EXPECT_EQ(o3d::Vector3f(1, 2, 3),
              loadGroup<o3d::TrackVector3f>(chunk(0xF006, floats({1, 2, 3}))).getValue(0));
    EXPECT_EQ(o3d::Vector3f(1, 2, 3),
              loadGroup<o3d::TrackEulerf>(chunk(0xF006, floats({1, 2, 3}))).getValue(0).angles);
    const o3d::Vector4f color = loadGroup<o3d::TrackColor4f>(chunk(0xF007, floats({1, 2, 3, 4}))).getValue(0);
    EXPECT_EQ(1.0f, color.x);
    EXPECT_EQ(4.0f, color.w);
}

TEST(TrackGroup, DefaultQuaternionIsNormalised) {
    const o3d::Quatf rotation = loadGroup<o3d::TrackQuatf>(chunk(0xF007, floats({2, 0, 0, 2}))).getValue(0);
    EXPECT_FLOAT_EQ(0.70710678f, rotation.w);
    EXPECT_EQ(0.0f, rotation.x);
    EXPECT_FLOAT_EQ(0.70710678f, rotation.z);
}

TEST(TrackGroup, DefaultQuaternionWithoutADirectionIsTheIdentity) {
    for (const float value : {0.0f, 1e-40f, 3e38f, std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN()}) {
        const o3d::Quatf rotation =
            loadGroup<o3d::TrackQuatf>(chunk(0xF007, floats({value, 0, 0, 0}))).getValue(0);
        EXPECT_EQ(o3d::Quatf(1, 0, 0, 0), rotation);
    }
}

TEST(TrackGroup, ADefaultThatIsCutShortFallsBackToZeroForWhatIsMissing) {
    // The parent, and then the stream, ends within the chunk, whose size is implied.
    const std::string stream = "O3DF\x01\x01" + u16(0xFA00) + u32(10) + u16(0xF006) + floats({4, 5});
    chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
    buffer.openChunk();
    o3d::TrackVector3f track(1.0f);
    track.loadChunk(buffer);
    EXPECT_EQ(o3d::Vector3f(4, 5, 0), track.getValue(0));
}

TEST(TrackGroup, WithNeitherKeysNorDefaultStaysAsItWas) {
    EXPECT_EQ(o3d::Vector3f(0, 0, 0), loadGroup<o3d::TrackVector3f>("").getValue(0));
    EXPECT_EQ(o3d::Quatf(1, 0, 0, 0), loadGroup<o3d::TrackQuatf>("").getValue(0));
}

TEST(TrackGroup, ChunksOfOtherGroupsAreIgnored) {
    EXPECT_EQ(0.0f, loadGroup<o3d::TrackFloat>(
                        keyList(0xFB20, 1, 0, key(0, 1)) + keyList(0xFB00, 1, 0, key(0, 1)) +
                        chunk(0xF006, floats({1, 2, 3})) + chunk(0xF007, floats({1, 2, 3, 4})))
                        .getValue(0));
    EXPECT_EQ(
        o3d::Vector3f(0, 0, 0),
        loadGroup<o3d::TrackVector3f>(keyList(0xFB00, 1, 0, key(0, 1)) + chunk(0xF004, f32(1))).getValue(0));
}

std::string written(const std::function<void(chunklib::WriteBuffer&)>& write) {
    chunklib::WriteBuffer buffer("O3DF", 1, 1, 1);
    write(buffer);
    return std::string(buffer.mData.begin() + 6, buffer.mData.end());
}

TEST(TrackGroup, WritesItsKeyListsThenTheDefault) {
    o3d::TrackVector3f track(2.0f);
    track.mY.mKeys = {{1, 2, 3, 4, 5, 6}};
    track.mY.mInterpolation = 2;
    track.mY.mExtrapolation = 3;
    EXPECT_EQ(
        chunk(0xFA20, keyList(0xFB20, 2, 3, floats({1, 2, 3, 4, 5, 6})) + chunk(0xF006, floats({2, 2, 2}))),
        written([&](auto& buffer) { track.writeChunk(buffer, 0xFA20); }));
    o3d::TrackFloat single(7.0f);
    EXPECT_EQ(chunk(0xFA40, chunk(0xF004, f32(7))),
              written([&](auto& buffer) { single.writeChunk(buffer, 0xFA40); }));
    o3d::TrackColor4f color(1.0f);
    color.mR.mKeys = {plain(0, 1)};
    color.mA.mKeys = {plain(0, 2)};
    EXPECT_EQ(chunk(0xFA30, keyList(0xFB00, 0, 0, key(0, 1)) + keyList(0xFB30, 0, 0, key(0, 2)) +
                                chunk(0xF007, floats({1, 1, 1, 1}))),
              written([&](auto& buffer) { color.writeChunk(buffer, 0xFA30); }));
    o3d::TrackQuatf rotation;
    EXPECT_EQ(chunk(0xFA50, chunk(0xF007, floats({1, 0, 0, 0}))),
              written([&](auto& buffer) { rotation.writeChunk(buffer, 0xFA50); }));
    EXPECT_EQ("", written([&](auto& buffer) { Track().writeChunk(buffer, 0xFB10); }));
}

TEST(TrackGroup, LengthsAndStillnessCoverEveryComponent) {
    o3d::TrackColor4f color;
    o3d::TrackQuatf rotation;
    EXPECT_TRUE(color.isStatic() && rotation.isStatic());
    float length = 0;
    for (auto* track : {&color.mR, &color.mG, &color.mB, &color.mA}) {
        track->mKeys = {plain(0, 0), plain(++length, 0)};
        EXPECT_EQ(length, color.getLength());
        EXPECT_FALSE(color.isStatic());
    }
    for (auto* track : {&rotation.mW, &rotation.mX, &rotation.mY, &rotation.mZ}) {
        track->mKeys = {plain(0, 0), plain(++length, 0)};
        EXPECT_EQ(length, rotation.getLength());
        EXPECT_FALSE(rotation.isStatic());
    }
    rotation.clear();
    EXPECT_TRUE(rotation.isStatic());
    EXPECT_EQ(o3d::Quatf(1, 0, 0, 0), rotation.getValue(0));
}

} // namespace
