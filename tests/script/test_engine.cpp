// The timeline driven by hand: which spans run when, in which order, with which values.
#include "allocations.h"
#include "recorder.h"
#include "script_engine.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using namespace zentrak::script;
using zentrak::test::Recorder;

namespace {

using Calls = std::vector<std::string>;

Effect* makeEffect(const std::string& name, float start, float end) {
    auto* effect = new Effect;
    effect->mName = name;
    effect->mEnabled = true;
    effect->mStart = start;
    effect->mEnd = end;
    return effect;
}

Trigger* makeTrigger(const std::string& name, const std::string& value, float start, int repeat = 1,
                     float delay = 0) {
    auto* trigger = new Trigger;
    trigger->mName = name;
    trigger->mValue = value;
    trigger->mStart = start;
    trigger->mRepeat = repeat;
    trigger->mDelay = delay;
    return trigger;
}

Spline* makeLine(const std::string& name, float t0, float v0, float t1, float v1) {
    auto* spline = new Spline;
    spline->mName = name;
    spline->mMode = 1;
    spline->addKey({t0, v0, 0, 0});
    spline->addKey({t1, v1, 0, 0});
    return spline;
}

// An engine with the callbacks "a" and "b".
struct Timeline : ScriptEngine {
    Calls calls;
    Recorder a{"a", calls}, b{"b", calls};

    Timeline() {
        addCallback("a", &a);
        addCallback("b", &b);
    }
    Effect* add(Effect* effect) {
        mEffects.push_back(effect);
        init();
        return effect;
    }
    Calls at(float time) {
        calls.clear();
        update(time);
        return calls;
    }
};

} // namespace

TEST(ScriptRecords, StartInTheirInitialState) {
    const ScriptEngine engine;
    EXPECT_EQ(engine.mPreviousTime, 0);
    EXPECT_EQ(engine.mScriptLength, 0);
    EXPECT_TRUE(engine.mCallbacks.empty());
    EXPECT_TRUE(engine.mEffects.empty());
    const Effect effect;
    EXPECT_EQ(effect.mName, "new");
    EXPECT_FALSE(effect.mEnabled);
    EXPECT_EQ(effect.mStart, 0);
    EXPECT_EQ(effect.mEnd, 0);
    EXPECT_TRUE(effect.mNeedReset);
    const Trigger trigger;
    EXPECT_EQ(trigger.mFired, 0);
    EXPECT_EQ(trigger.mName, "new");
    EXPECT_EQ(trigger.mValue, "");
    EXPECT_EQ(trigger.mStart, 0);
    EXPECT_EQ(trigger.mRepeat, 1);
    EXPECT_EQ(trigger.mDelay, 0);
    const Spline spline;
    EXPECT_EQ(spline.mName, "new");
    EXPECT_EQ(spline.mMode, 2);
}

TEST(ScriptEngine, TimeAtTheStartOfASpanIsActiveAndAtItsEndIsNot) {
    Timeline line;
    line.add(makeEffect("a", 1, 3));
    line.add(makeEffect("b", 0, 10));
    EXPECT_EQ(line.at(0.5f), (Calls{"b reset", "b update 0.5 0.5 0.05", "b post 0.5 0.5 0.05"}));
    EXPECT_EQ(line.at(1), (Calls{"a reset", "a update 0 0.5 0", "a post 0 0.5 0", "b update 1 0.5 0.1",
                                 "b post 1 0.5 0.1"}));
    EXPECT_EQ(line.at(2),
              (Calls{"a update 1 1 0.5", "a post 1 1 0.5", "b update 2 1 0.2", "b post 2 1 0.2"}));
    EXPECT_EQ(line.at(3), (Calls{"b update 3 1 0.3", "b post 3 1 0.3"}));
}

TEST(ScriptEngine, ATimeBelowZeroChangesNothing) {
    Timeline line;
    line.add(makeEffect("a", -5, 10));
    line.at(4);
    line.calls.clear();
    EXPECT_TRUE(line.update(-0.001f));
    EXPECT_TRUE(line.calls.empty());
    EXPECT_EQ(line.mPreviousTime, 4);
}

TEST(ScriptEngine, TimeAtTheScriptLengthReturnsTrueAndRunsNoSpanThatEndsThere) {
    Timeline line;
    line.add(makeEffect("a", 0, 5));
    line.calls.clear();
    EXPECT_TRUE(line.update(5));
    EXPECT_TRUE(line.calls.empty());
    EXPECT_FALSE(line.update(5.001f));
    EXPECT_EQ(line.mPreviousTime, 5.001f);
    EXPECT_TRUE(line.calls.empty());
}

TEST(ScriptEngine, PastTheEndNothingIsCalledAndNoRewindHappens) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 5));
    effect->mTriggers.push_back(makeTrigger("t", "", 0));
    line.at(1);
    line.at(9);
    line.at(8); // lower than the last, but past the end
    EXPECT_EQ(effect->mTriggers[0]->mFired, 1);
    line.at(2); // this is the rewind
    EXPECT_EQ(line.calls, (Calls{"a reset", "a trigger 2 t=", "a update 2 -6 0.4", "a post 2 -6 0.4"}));
}

TEST(ScriptEngine, ANotANumberTimeRunsNothingAndHurtsNothing) {
    Timeline line;
    line.add(makeEffect("a", 0, 5));
    line.at(1);
    line.calls.clear();
    EXPECT_TRUE(line.update(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_TRUE(line.calls.empty());
    EXPECT_TRUE(std::isnan(line.mPreviousTime)); // not refused as a time below 0 is
    EXPECT_EQ(line.at(2), (Calls{"a update 2 nan 0.4", "a post 2 nan 0.4"}));
    EXPECT_EQ(line.at(3), (Calls{"a update 3 1 0.6", "a post 3 1 0.6"}));
}

TEST(ScriptEngine, OverlappingSpansRunInFileOrderAndShareTheirCallback) {
    Timeline line;
    line.add(makeEffect("b", 0, 4));
    line.add(makeEffect("a", 1, 4));
    line.add(makeEffect("b", 2, 4));
    line.at(1);
    EXPECT_EQ(line.at(2), (Calls{"b update 2 1 0.5", "b post 2 1 0.5", "a update 1 1 0.333333",
                                 "a post 1 1 0.333333", "b reset", "b update 0 1 0", "b post 0 1 0"}));
}

TEST(ScriptEngine, ALaterRegistrationReplacesTheEarlier) {
    Timeline line;
    line.add(makeEffect("a", 0, 4));
    line.addCallback("a", &line.b);
    EXPECT_EQ(line.at(1), (Calls{"b reset", "b update 1 1 0.25", "b post 1 1 0.25"}));
}

TEST(ScriptEngine, InitTakesTheLargestEndOfTheTopLevelAndNeverLessThanZero) {
    Timeline line;
    line.add(makeEffect("a", 0, -3));
    EXPECT_EQ(line.mScriptLength, 0);
    Effect* const effect = line.add(makeEffect("a", 0, 7));
    effect->mChildren.push_back(makeEffect("b", 0, 90));
    line.add(makeEffect("a", 0, 2));
    EXPECT_EQ(line.mScriptLength, 7);
    line.add(makeEffect("b", 20, 12)); // never active, and counted
    EXPECT_EQ(line.mScriptLength, 12);
}

TEST(ScriptEngine, BeforeInitEveryTimeAboveZeroIsPastTheEnd) {
    Timeline line;
    line.mEffects.push_back(makeEffect("a", 0, 7));
    EXPECT_FALSE(line.update(0.1f));
    EXPECT_TRUE(line.calls.empty());
}

TEST(ScriptEngine, ADisabledSpanSkipsItsChildrenAndIsStillRewound) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 10));
    effect->mChildren.push_back(makeEffect("b", 0, 10));
    effect->mTriggers.push_back(makeTrigger("t", "", 0));
    line.at(1);
    EXPECT_EQ(effect->mTriggers[0]->mFired, 1);
    EXPECT_FALSE(effect->mNeedReset);
    effect->mEnabled = false;
    EXPECT_EQ(line.at(2), Calls{});
    EXPECT_EQ(line.at(1), Calls{});
    EXPECT_EQ(effect->mTriggers[0]->mFired, 0);
    EXPECT_TRUE(effect->mNeedReset);
}

TEST(ScriptEngine, ASpanThatEndsWhereItStartsOrBeforeIsNeverActive) {
    Timeline line;
    line.add(makeEffect("a", 2, 2));
    line.add(makeEffect("a", 3, 1));
    line.add(makeEffect("b", 0, 9));
    for (float time : {1.0f, 2.0f, 2.5f, 3.0f})
        for (const std::string& call : line.at(time))
            EXPECT_EQ(call[0], 'b') << call;
}

TEST(ScriptEngine, ARewindWhileASpanIsInactiveLeavesItsResetDue) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 2));
    line.add(makeEffect("b", 0, 20));
    line.at(1);
    line.at(10);
    line.at(9); // a rewind with "a" inactive
    line.at(9.5f);
    EXPECT_TRUE(effect->mNeedReset);
    EXPECT_EQ(line.at(1)[0], "a reset");
    EXPECT_FALSE(effect->mNeedReset);
}

TEST(ScriptEngine, AStartAboveZeroCatchesUpWithoutARewind) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 60));
    effect->mTriggers.push_back(makeTrigger("t", "v", 10));
    EXPECT_EQ(line.at(30), (Calls{"a reset", "a trigger 30 t=v", "a update 30 30 0.5", "a post 30 30 0.5"}));
}

TEST(ScriptEffect, RunsTriggersThenSplinesThenItselfThenChildrenThenPost) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 2, 12));
    Effect* const child = makeEffect("b", 1, 5);
    effect->mSplines.push_back(makeLine("s1", 0, 0, 10, 100));
    effect->mSplines.push_back(makeLine("s2", 0, 1, 10, 1));
    effect->mTriggers.push_back(makeTrigger("t1", "x", 2));
    effect->mTriggers.push_back(makeTrigger("t2", "y", 1));
    effect->mChildren.push_back(child);
    child->mSplines.push_back(makeLine("s3", 0, 0, 4, 4));
    EXPECT_EQ(line.at(4), (Calls{"a reset", "a trigger 2 t1=x", "a trigger 2 t2=y", "a spline 2 s1=20",
                                 "a spline 2 s2=1", "a update 2 4 0.2", "b reset", "b spline 1 s3=1",
                                 "b update 1 4 0.25", "b post 1 4 0.25", "a post 2 4 0.2"}));
}

TEST(ScriptEffect, ANestedSpanIsActiveInTheLocalTimeOfItsParent) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 10, 40));
    effect->mChildren.push_back(makeEffect("b", 5, 10)); // 15 to 20 of the script
    auto childRuns = [&](float time) {
        for (const std::string& call : line.at(time))
            if (call[0] == 'b')
                return true;
        return false;
    };
    EXPECT_FALSE(childRuns(14.99f));
    EXPECT_TRUE(childRuns(15));
    EXPECT_TRUE(childRuns(19.99f));
    EXPECT_FALSE(childRuns(20));
    effect->mChildren[0]->mEnabled = false;
    EXPECT_FALSE(childRuns(21));
}

TEST(ScriptEffect, ASpanOfUnknownNamePlaysItsChildrenAndNothingElse) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("nobody", 3, 10));
    effect->mTriggers.push_back(makeTrigger("t", "", 0));
    effect->mSplines.push_back(makeLine("s", 0, 0, 1, 1));
    effect->mChildren.push_back(makeEffect("b", 1, 3));
    EXPECT_EQ(line.at(5), (Calls{"b reset", "b update 1 5 0.5", "b post 1 5 0.5"}));
    EXPECT_TRUE(effect->mNeedReset);
    EXPECT_EQ(effect->mTriggers[0]->mFired, 0);
    EXPECT_EQ(line.mCallbacks.count("nobody"), 0u);
}

TEST(ScriptEffect, ANullCallbackMakesASpanThatOnlyGroups) {
    Timeline line;
    line.addCallback("none", nullptr);
    line.add(makeEffect("none", 0, 10))->mChildren.push_back(makeEffect("b", 0, 4));
    EXPECT_EQ(line.at(1), (Calls{"b reset", "b update 1 1 0.25", "b post 1 1 0.25"}));
}

TEST(ScriptEffect, AfterARewindNestedTriggersDoNotFireAgain) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 10));
    Effect* const child = makeEffect("b", 0, 10);
    effect->mChildren.push_back(child);
    effect->mTriggers.push_back(makeTrigger("own", "", 1));
    child->mTriggers.push_back(makeTrigger("nested", "", 1));
    line.at(2);
    EXPECT_EQ(line.at(1.5f),
              (Calls{"a reset", "a trigger 1.5 own=", "a update 1.5 -0.5 0.15", "b update 1.5 -0.5 0.15",
                     "b post 1.5 -0.5 0.15", "a post 1.5 -0.5 0.15"}));
    EXPECT_EQ(child->mTriggers[0]->mFired, 1);
}

TEST(ScriptEffect, ReverseRewindsItsOwnTriggersWhateverItsArgument) {
    Effect effect;
    effect.mNeedReset = false;
    effect.mTriggers.push_back(makeTrigger("t", "", 0));
    effect.mTriggers[0]->mFired = 7;
    effect.mChildren.push_back(makeEffect("b", 0, 1));
    effect.mChildren[0]->mNeedReset = false;
    effect.reverse(3);
    EXPECT_EQ(effect.mTriggers[0]->mFired, 0);
    EXPECT_TRUE(effect.mNeedReset);
    EXPECT_FALSE(effect.mChildren[0]->mNeedReset);
}

TEST(ScriptTrigger, FiresAtItsTimesAndGetsTheTimeNow) {
    Timeline line;
    line.add(makeEffect("a", 10, 40))->mTriggers.push_back(makeTrigger("flash", "", 2, 4, 0.5f));
    auto firings = [&](float time) {
        Calls found;
        for (const std::string& call : line.at(time))
            if (call.find(" trigger ") != std::string::npos)
                found.push_back(call);
        return found;
    };
    EXPECT_EQ(firings(11.9375f), Calls{});
    EXPECT_EQ(firings(12), Calls{"a trigger 2 flash="});
    EXPECT_EQ(firings(12.25f), Calls{});
    EXPECT_EQ(firings(13.25f), (Calls{"a trigger 3.25 flash=", "a trigger 3.25 flash="}));
    EXPECT_EQ(firings(13.5f), Calls{"a trigger 3.5 flash="});
    EXPECT_EQ(firings(20), Calls{});
}

TEST(ScriptTrigger, ARepeatOfZeroNeverFiresAndThreeWithoutDelayFireAtOnce) {
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 10));
    effect->mTriggers.push_back(makeTrigger("never", "", 0, 0));
    effect->mTriggers.push_back(makeTrigger("below", "", 0, -5));
    effect->mTriggers.push_back(makeTrigger("thrice", "", 1, 3, 0));
    EXPECT_EQ(line.at(1), (Calls{"a reset", "a trigger 1 thrice=", "a trigger 1 thrice=",
                                 "a trigger 1 thrice=", "a update 1 1 0.1", "a post 1 1 0.1"}));
}

TEST(ScriptTrigger, ADueTimeThatPassedWhileTheSpanWasInactiveIsCaughtUp) {
    Timeline line;
    Effect* const parent = line.add(makeEffect("group", 0, 100));
    Effect* const child = makeEffect("a", 0, 50);
    parent->mChildren.push_back(child);
    child->mTriggers.push_back(makeTrigger("late", "", 5));
    line.at(1);
    child->mEnabled = false;
    line.at(10);
    child->mEnabled = true;
    EXPECT_EQ(line.at(20)[0], "a trigger 20 late=");
}

TEST(ScriptTrigger, ExecuteTriggersIsOnlyTheTriggerStep) {
    Calls calls;
    Recorder callback("a", calls);
    Effect effect;
    effect.mTriggers.push_back(makeTrigger("t", "v", 1));
    effect.mSplines.push_back(makeLine("s", 0, 0, 1, 1));
    effect.executeTriggers(0.5f, &callback);
    EXPECT_EQ(calls, Calls{});
    effect.executeTriggers(1, &callback);
    effect.executeTriggers(2, &callback);
    EXPECT_EQ(calls, Calls{"a trigger 1 t=v"});
}

TEST(ScriptTrigger, NoRepeatCountStopsTheShow) {
    struct Counter : Callback {
        long fired = 0;
        void executeTrigger(float, const std::string&, const std::string&) override { ++fired; }
        void update(float, float, float) override {}
    } counter;
    Timeline line;
    line.addCallback("counter", &counter);
    Effect* const effect = line.add(makeEffect("counter", 0, 10));
    effect->mTriggers.push_back(makeTrigger("t", "", 0, 2147483647, 0));
    effect->mTriggers.push_back(makeTrigger("u", "", 0, 2000000000, -1));
    line.at(1);
    EXPECT_EQ(counter.fired, 2 * 2000);
    line.at(2); // the rest comes in the frames that follow
    EXPECT_EQ(counter.fired, 4 * 2000);
}

TEST(ScriptTrigger, ATriggerAtATimeThatIsNotANumberNeverFires) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Timeline line;
    Effect* const effect = line.add(makeEffect("a", 0, 10));
    effect->mTriggers.push_back(makeTrigger("start", "", nan));
    effect->mTriggers.push_back(makeTrigger("delay", "", 0, 5, nan));
    effect->mChildren.push_back(makeEffect("b", nan, 10));
    effect->mChildren.push_back(makeEffect("b", 0, nan));
    EXPECT_EQ(line.at(1), (Calls{"a reset", "a update 1 1 0.1", "a post 1 1 0.1"}));
}

TEST(ScriptSpline, HandsItsNameAndItsValueToTheCallback) {
    Calls calls;
    Recorder callback("a", calls);
    Spline spline;
    spline.mName = "alpha";
    spline.update(&callback, 3);
    EXPECT_EQ(calls, Calls{"a spline 3 alpha=0"}); // without keys
    spline.mMode = 1;
    spline.addKey({0, 1, 0, 0});
    spline.addKey({4, 5, 0, 0});
    calls.clear();
    spline.update(&callback, 3);
    EXPECT_EQ(calls, Calls{"a spline 3 alpha=4"});
}

TEST(ScriptEngine, SpansThatACallbackAddsRunInTheSameFrame) {
    struct Adder : Callback {
        Timeline* line = nullptr;
        void update(float, float, float) override {
            for (int i = 0; i < 100; ++i) // more than the vector had room for
                line->mEffects.push_back(makeEffect("b", 0, 1));
        }
    } adder;
    Timeline line;
    adder.line = &line;
    line.addCallback("adder", &adder);
    line.add(makeEffect("adder", 0, 10));
    EXPECT_EQ(line.at(0.5f).size(), 300u);
}

TEST(ScriptEngine, AFrameAllocatesNothing) {
    struct Nothing : Callback {
        void update(float, float, float) override {}
    } nothing;
    Timeline line;
    line.addCallback("a name too long to be kept without an allocation", &nothing);
    Effect* const effect = line.add(makeEffect("a name too long to be kept without an allocation", 0, 100));
    effect->mTriggers.push_back(
        makeTrigger("a trigger of a long name, and its value", std::string(100, 'v'), 0, 90, 1));
    effect->mSplines.push_back(makeLine("a spline whose name is long enough as well", 0, 0, 10, 1));
    effect->mChildren.push_back(makeEffect("a name too long to be kept without an allocation", 0, 50));
    const size_t before = zentrak::test::allocationCount();
    for (int i = 0; i < 100; ++i)
        line.update(float(i));
    line.update(3); // a rewind
    EXPECT_EQ(zentrak::test::allocationCount(), before);
    EXPECT_EQ(effect->mTriggers[0]->mFired, 4);
}
