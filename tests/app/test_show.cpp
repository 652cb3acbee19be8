// The show in data/ against the form of its music, and for what it uses of the effects.
#include "effect_names.h"
#include "music/form.h"
#include "script_engine.h"
#include "script_loadxml.h"
#include "support.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

using namespace zentrak;

namespace {

constexpr double TOLERANCE = 0.02; // seconds

class Show : public testing::Test {
protected:
    Show() {
        const std::string text = test::readFile(test::sourcePath("data/script.xml"));
        mLoaded = script::LoadXML().loadMem(text.data(), long(text.size()), mScript);
    }

    // Calls visit(effect, start, parent) for every span, with its start in seconds of the show and the one it
    // is nested in, or null.
    using Visit = std::function<void(const script::Effect&, double, const script::Effect*)>;
    void forEach(const Visit& visit) const {
        for (const script::Effect* effect : mScript.mEffects)
            forEach(*effect, 0, nullptr, visit);
    }

    bool mLoaded = false;
    script::ScriptEngine mScript;

private:
    static void forEach(const script::Effect& effect, double offset, const script::Effect* parent,
                        const Visit& visit) {
        const double start = offset + double(effect.mStart);
        visit(effect, start, parent);
        for (const script::Effect* child : effect.mChildren)
            forEach(*child, start, &effect, visit);
    }
};

// How far `time` is from the nearest multiple of `step` frames of the music, in seconds.
double distanceToGrid(double time, int step) {
    const double grid = double(step) / music::RATE;
    return std::abs(time - std::round(time / grid) * grid);
}

} // namespace

TEST_F(Show, EveryCutFallsOnABeat) {
    ASSERT_TRUE(mLoaded);
    forEach([](const script::Effect& effect, double start, const script::Effect*) {
        const double end = start + double(effect.mEnd) - double(effect.mStart);
        EXPECT_LE(distanceToGrid(start, music::BEAT), TOLERANCE) << effect.mName << " starts at " << start;
        EXPECT_LE(distanceToGrid(end, music::BEAT), TOLERANCE) << effect.mName << " ends at " << end;
    });
}

TEST_F(Show, EveryTriggerFallsOnABeat) {
    ASSERT_TRUE(mLoaded);
    forEach([](const script::Effect& effect, double start, const script::Effect*) {
        for (const script::Trigger* trigger : effect.mTriggers) {
            for (int i = 0; i < trigger->mRepeat; ++i) {
                const double time = start + double(trigger->mStart) + i * double(trigger->mDelay);
                EXPECT_LE(distanceToGrid(time, music::BEAT), TOLERANCE)
                    << effect.mName << ", " << trigger->mName << " at " << time;
            }
        }
    });
}

// Curves turn on sixteenths: what jumps or swells does it on the beat, what decays may end in between.
TEST_F(Show, EveryKeyFallsOnASixteenth) {
    ASSERT_TRUE(mLoaded);
    forEach([](const script::Effect& effect, double start, const script::Effect*) {
        for (const script::Spline* spline : effect.mSplines)
            for (const auto& key : spline->mKeys)
                EXPECT_LE(distanceToGrid(start + double(key.time), music::STEP), TOLERANCE)
                    << effect.mName << ", " << spline->mName << " at " << start + double(key.time);
    });
}

// A flat maximum doesn't count, nor does one in the middle of a ramp.
TEST_F(Show, EveryPeakOfACurveFallsOnABeat) {
    ASSERT_TRUE(mLoaded);
    forEach([](const script::Effect& effect, double start, const script::Effect*) {
        for (const script::Spline* spline : effect.mSplines) {
            for (size_t i = 1; i + 1 < spline->mKeys.size(); ++i) {
                const auto& key = spline->mKeys[i];
                if (key.value <= spline->mKeys[i - 1].value || key.value <= spline->mKeys[i + 1].value)
                    continue;
                const double time = start + double(key.time);
                EXPECT_LE(distanceToGrid(time, music::BEAT), TOLERANCE)
                    << effect.mName << ", " << spline->mName << " at " << time;
            }
        }
    });
}

TEST_F(Show, EverySectionOfTheMusicBeginsWithACut) {
    ASSERT_TRUE(mLoaded);
    std::set<int> cuts; // beats
    forEach([&](const script::Effect&, double start, const script::Effect*) {
        cuts.insert(int(std::lround(start * music::RATE / music::BEAT)));
    });
    for (const music::Section& section : music::SECTIONS)
        EXPECT_TRUE(cuts.count(section.bar * 4)) << section.name;
    EXPECT_TRUE(cuts.count(music::PEAK_BAR * 4)) << "the peak";
}

TEST_F(Show, SomethingIsDrawnFromTheFirstBeatToTheLast) {
    ASSERT_TRUE(mLoaded);
    for (int beat = 0; beat < music::BARS * 4; ++beat) {
        const double time = music::beatTime(beat) + 0.1;
        bool drawn = false;
        for (const script::Effect* effect : mScript.mEffects)
            drawn = drawn || (effect->mName != "clear" && double(effect->mStart) <= time &&
                              time < double(effect->mEnd));
        EXPECT_TRUE(drawn) << time;
    }
    EXPECT_GE(double(mScript.mScriptLength), music::barTime(music::BARS));
}

TEST_F(Show, UsesEveryEffectWithAllItsSplinesAndTriggers) {
    ASSERT_TRUE(mLoaded);
    std::map<std::string, std::set<std::string>> splines, triggers;
    std::set<std::string> names;
    forEach([&](const script::Effect& effect, double, const script::Effect*) {
        names.insert(effect.mName);
        for (const script::Spline* spline : effect.mSplines)
            splines[effect.mName].insert(spline->mName);
        for (const script::Trigger* trigger : effect.mTriggers)
            triggers[effect.mName].insert(trigger->mName);
    });
    for (const kindler::EffectNames& effect : kindler::effectNames()) {
        EXPECT_TRUE(names.count(effect.name)) << effect.name;
        for (const char* spline : effect.splines)
            EXPECT_TRUE(splines[effect.name].count(spline)) << effect.name << ", spline " << spline;
        for (const kindler::TriggerNames& trigger : effect.triggers)
            EXPECT_TRUE(triggers[effect.name].count(trigger.name)) << effect.name << ", " << trigger.name;
        if (effect.anyTrigger) {
            EXPECT_FALSE(triggers[effect.name].empty()) << effect.name;
        }
    }
    EXPECT_EQ(names.size(), kindler::effectNames().size()); // no span that only groups, or is misspelt
}

TEST_F(Show, UsesEveryKindOfSplineAndTheTargetMoreThanOnce) {
    ASSERT_TRUE(mLoaded);
    std::set<int> modes;
    std::set<const script::Effect*> targets;
    forEach([&](const script::Effect& effect, double, const script::Effect* parent) {
        for (const script::Spline* spline : effect.mSplines)
            modes.insert(spline->mMode);
        if (parent && parent->mName == "waxon")
            targets.insert(parent);
    });
    EXPECT_EQ(modes, (std::set<int>{0, 1, 2}));
    EXPECT_GT(targets.size(), 1u);
}
