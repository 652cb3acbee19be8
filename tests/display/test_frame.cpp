// The frame step: pacing, counting, and that it allocates nothing.
#include "allocations.h"
#include "fake_time.h"
#include "gl_fixture.h"
#include "glfw2.h"
#include "input.h"
#include "recorder.h"

#include <cmath>
#include <numeric>

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::allocationCount;
using zentrak::test::FakeTime;
using zentrak::test::GlTest;
using zentrak::test::Recorder;
using zentrak::test::Viewer;

typedef std::vector<std::string> Log;

class Frame : public GlTest {
protected:
    Frame() : recorder("r", log) { recorder.attachToDisplay(&display()); }

    Log log;
    Recorder recorder;
};

TEST_F(Frame, InDeltaTimeRisesByOneFrameAnUpdate) {
    display().setFps(DisplayGL::FPS_DELTA, 25);
    EXPECT_EQ(0.0, display().getTime());
    for (int frame = 1; frame <= 200; ++frame) {
        ASSERT_TRUE(display().update());
        ASSERT_EQ(double(float(frame * 0.04)), display().getTime()) << frame;
    }
    EXPECT_EQ(200, recorder.draws);
}

TEST_F(Frame, InDeltaTimeGoesOnFromWhereItIsSet) {
    display().setFps(DisplayGL::FPS_DELTA, 25);
    display().update();
    display().setTime(10);
    EXPECT_EQ(10.0, display().getTime());
    display().update();
    display().update();
    EXPECT_EQ(double(10.08f), display().getTime());
    display().setFps(DisplayGL::FPS_DELTA, 50);
    EXPECT_EQ(0.0, display().getTime());
    display().update();
    EXPECT_EQ(double(0.02f), display().getTime());
}

TEST_F(Frame, InDeltaATimeThatIsSetCounts) {
    display().setFps(DisplayGL::FPS_DELTA, 25);
    display().update();
    display().mFpsLastTime = 10;
    display().update();
    EXPECT_EQ(double(10.04f), display().getTime());
    display().mFps = 50;
    display().update();
    EXPECT_EQ(double(10.06f), display().getTime());
}

TEST_F(Frame, InDeltaModeTimeStandsStillAtAnInvalidRate) {
    for (float fps : {0.0f, -25.0f, NAN, INFINITY, -INFINITY}) {
        display().setFps(DisplayGL::FPS_DELTA, fps);
        display().update();
        display().update();
        EXPECT_EQ(0.0, display().getTime()) << fps;
    }
}

// One frame of FPS_FIXED under a clock that stands at `now` and moves only by readings and sleeps.
class FixedFrame : public Frame {
protected:
    FixedFrame() { display().setFps(DisplayGL::FPS_FIXED, 1); }

    // Draws a frame at `now`, with the last one at `last`.
    void draw(double now, float last) {
        display().setTime(now);
        display().mFpsLastTime = last;
        time.clear();
        EXPECT_TRUE(display().update());
    }

    double slept() const { return std::accumulate(time.sleeps.begin(), time.sleeps.end(), 0.0); }

    bool hasWaited() const { return !time.sleeps.empty() || time.readings > 4; }

    FakeTime time;
};

TEST_F(FixedFrame, SleepsUntilFiveMillisecondsBeforeItIsDueAndSpinsThose) {
    for (const float seconds : {0.02f, 1.0f, 12.0f, 3600.0f}) { // also beyond ten seconds
        display().mFps = 1 / seconds;
        draw(100, 100);
        EXPECT_EQ(1u, time.sleeps.size()) << seconds;
        EXPECT_NEAR(seconds - 0.005, slept(), 0.002) << seconds;
        EXPECT_LT(0.004 / FakeTime::TICK, time.readings) << seconds;
        EXPECT_NEAR(100 + seconds, display().mFpsLastTime, 0.001) << seconds;
    }
    EXPECT_EQ(4, recorder.draws);
}

TEST_F(FixedFrame, SpinsAloneThroughTheLastTenMilliseconds) {
    display().mFps = 1;
    draw(100.992, 100);
    EXPECT_TRUE(time.sleeps.empty());
    EXPECT_LT(0.007 / FakeTime::TICK, time.readings);
    EXPECT_NEAR(101, display().mFpsLastTime, 0.001);
}

TEST_F(FixedFrame, FollowsTheOneBeforeByItsPeriod) {
    display().mFps = 50;
    draw(100, 100);
    for (int frame = 2; frame <= 6; ++frame)
        display().update();
    EXPECT_NEAR(100.12, display().mFpsLastTime, 0.004);
    EXPECT_EQ(6, recorder.draws);
}

TEST_F(FixedFrame, ThatIsLongDueDoesNotWait) {
    display().mFps = 0.1f;
    draw(500, 0);
    EXPECT_NEAR(500, display().mFpsLastTime, 0.01);
    EXPECT_FALSE(hasWaited());
}

TEST_F(FixedFrame, IsDueAPeriodAfterTheTimeThatIsWritten) {
    display().mFps = 1;
    draw(100, 107); // ahead of the clock
    EXPECT_NEAR(8 - 0.005, slept(), 0.002);
    EXPECT_NEAR(108, display().mFpsLastTime, 0.001);
    draw(100, 99.5f);
    EXPECT_NEAR(0.5 - 0.005, slept(), 0.002);
    EXPECT_NEAR(100.5, display().mFpsLastTime, 0.001);
}

TEST_F(FixedFrame, AtAnInvalidRateDoesNotWait) {
    for (const float fps : {0.0f, -25.0f, NAN, INFINITY, -INFINITY}) {
        display().setFps(DisplayGL::FPS_FIXED, fps);
        draw(100, 100);
        EXPECT_NEAR(100, display().mFpsLastTime, 0.01) << fps;
        EXPECT_FALSE(hasWaited()) << fps;
    }
}

TEST_F(FixedFrame, AfterATimeThatIsNotFiniteDoesNotWait) {
    for (const float last : {NAN, INFINITY, -INFINITY}) {
        draw(100, last);
        EXPECT_NEAR(100, display().mFpsLastTime, 0.01) << last;
        EXPECT_FALSE(hasWaited()) << last;
    }
}

TEST_F(Frame, SetFpsStoresBothAndStartsOver) {
    display().mDirty = true;
    display().mFpsLastTime = 12;
    display().setFps(DisplayGL::FPS_FIXED, 12.5f);
    EXPECT_EQ(DisplayGL::FPS_FIXED, display().mFpsType);
    EXPECT_EQ(12.5f, display().mFps);
    EXPECT_EQ(0.0f, display().mFpsLastTime);
    EXPECT_FALSE(display().mDirty);
    display().setFps(DisplayGL::FPS_EVENT, 0);
    EXPECT_TRUE(display().mDirty);
    display().setDirty(false);
    EXPECT_FALSE(display().mDirty);
}

TEST_F(Frame, TheRateIsFramesOverTheTimeThatPassed) {
    display().setFps(DisplayGL::FPS_DELTA, 50);
    display().setTime(0);
    for (int frame = 0; frame < 50; ++frame)
        display().update();
    EXPECT_EQ(0.0f, display().mFpsCountFinal); // one second is not passed yet
    EXPECT_EQ(50.0f, display().mFpsCountFrames);
    display().update();
    EXPECT_FLOAT_EQ(50.0f, display().mFpsCountFinal);
    EXPECT_FLOAT_EQ(1.02f, display().mFpsCountFinalTime);
    EXPECT_EQ(0.0f, display().mFpsCountFrames);
}

// Polls in FPS_EVENT, where an update waits for an event: sends one each time.
TEST_F(Frame, InEventWithoutDirtyNoFrameIsDrawnAndUpdateIsTrue) {
    Viewer viewer("test", [&] { glfw2::glfwPollEvents(); });
    viewer.focus();
    display().setFps(DisplayGL::FPS_EVENT, 0);
    viewer.moveTo(10, 10);
    EXPECT_TRUE(display().update()); // setFps has made it dirty
    EXPECT_EQ(1, recorder.draws);

    // Once a later key has arrived, nothing else is pending.
    recorder.moves.clear();
    viewer.key("a");
    viewer.until("the key", [&] { return recorder.keys.size() >= 2; });
    display().setDirty(false);
    const int draws = recorder.draws;
    for (int i = 0; i < 5; ++i) {
        viewer.moveTo(20 + i, 20);
        EXPECT_TRUE(display().update());
    }
    EXPECT_EQ(draws, recorder.draws);
    EXPECT_LE(1u, recorder.moves.size());

    recorder.answer = Listener::DIRTY;
    for (int i = 0; i < 20 && recorder.draws == draws; ++i) {
        viewer.moveTo(50 + i, 50);
        EXPECT_TRUE(display().update());
    }
    EXPECT_EQ(draws + 1, recorder.draws);
    EXPECT_FALSE(display().mDirty);
}

TEST_F(Frame, InEventAnUncoveredWindowIsDirty) {
    Viewer viewer("test", [&] { glfw2::glfwPollEvents(); });
    viewer.focus();
    display().setFps(DisplayGL::FPS_EVENT, 0);
    viewer.iconify();
    viewer.until("the icon", [&] { return glfw2::glfwGetWindowParam(glfw2::GLFW_ICONIFIED) == 1; });
    display().setDirty(false);
    viewer.restore();
    EXPECT_TRUE(viewer.until("dirty", [&] { return display().mDirty; }));
}

TEST_F(Frame, AllocatesNothing) {
    Viewer viewer("test", [&] { display().update(); });
    viewer.focus();
    Listener plain; // a recorder would allocate
    recorder.attachToDisplay(nullptr);
    plain.attachToDisplay(&display());
    const auto mode = [&](DisplayGL::FpsMode type) {
        display().setFps(type, 1000);
        for (int frame = 0; frame < 5; ++frame)
            display().update();
        viewer.moveTo(10, 10);
        viewer.wheel(1);
        viewer.key("a");
        viewer.click(1);
        const size_t before = allocationCount();
        for (int frame = 0; frame < 50; ++frame)
            display().update();
        EXPECT_EQ(before, allocationCount()) << type;
    };
    mode(DisplayGL::FPS_VARIABLE);
    mode(DisplayGL::FPS_VSYNC);
    mode(DisplayGL::FPS_FIXED);
    mode(DisplayGL::FPS_DELTA);
    EXPECT_NE(10.0f, display().mMouseX + display().mMouseY); // the events did come
}

TEST_F(Frame, ASecondUpdateBlockingGoesOn) {
    for (int round = 1; round <= 2; ++round) {
        recorder.draw = [&] { display().mQuittingBlocking = true; };
        display().updateBlocking();
        EXPECT_FALSE(display().mQuittingBlocking);
        EXPECT_EQ(round, recorder.draws);
        EXPECT_TRUE(display().mOpened);
    }
}
