// The driver with a real window, and with music on a silent sound device.
#include "allocations.h"
#include "am_archivemanager.h"
#include "am_videofile.h"
#include "gl_fixture.h"
#include "kin_main.h"
#include "music.h"
#include "pan_button.h"
#include "picture.h"
#include "support.h"
#include "ztk_system.h"

#include <cmath>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

using namespace zentrak;
using kindler::Kindler;
using test::CaptureStdout;
using test::makeWav;
using test::Picture;

namespace {

// An effect that does in each frame what the test wants, and records its calls.
struct Probe : kindler::Effect {
    std::function<void(float time)> onUpdate = [](float) {};
    std::function<void()> onSetup = [] {};
    std::vector<float> times;
    int setups = 0;

    void setup() override {
        ++setups;
        onSetup();
    }
    void update(float time, float, float) override {
        times.push_back(time);
        onUpdate(time);
    }
};

// A show of `music` and one span of the effect "probe" from 0 to 1000, in its own folder.
class Show : public ::testing::Test {
protected:
    test::TempDir mDir;
    test::WorkingDir mWorking{mDir.path()};
    Probe mProbe;

    void write(const std::string& name, const std::string& bytes) { test::writeFile(mDir.file(name), bytes); }

    void writeShow(const std::string& more, const std::string& display = "width=\"320\" height=\"200\"") {
        write("show.xml", "<script><effect name=\"probe\" end=\"1000\"/></script>");
        write("setup.xml", "<demo><archive path=\"" + test::sourcePath("data") +
                               "\"/><display title=\"Probe\" " + display +
                               "/><script filename=\"show.xml\"/>" + more + "</demo>");
    }

    // Runs the show until the effect has been called `frames` times, or forever if it never is.
    void run(Kindler& kindler, int frames) {
        const auto inner = mProbe.onUpdate;
        mProbe.onUpdate = [&kindler, inner, frames, this](float time) {
            inner(time);
            if (int(mProbe.times.size()) >= frames)
                kindler.mDisplay->mQuittingBlocking = true;
        };
        kindler.setup();
        kindler.addCallback("probe", mProbe);
        kindler.run();
    }

    static display::KeyEvent key(display::Key code, int control = 0) {
        display::KeyEvent event;
        event.key = code;
        event.control = control;
        return event;
    }
};

// Music goes to a silent device unless the environment says otherwise.
const int NULL_DEVICE = setenv("ALSOFT_DRIVERS", "null", 0);

constexpr const char* NOSOUND = "<music mute=\"nosound\"/>";

} // namespace

TEST_F(Show, EffectsLoadInTheOrderOfTheirNamesUsedOrNot) {
    writeShow(NOSOUND);
    std::vector<std::string> order;
    CaptureStdout out;
    Kindler kindler;
    Probe zebra, ant, Big;
    auto loads = [&](Probe& probe, const char* name) {
        probe.onSetup = [&order, &probe, name, &kindler] {
            order.push_back(name);
            EXPECT_EQ(probe.mName, name);
            EXPECT_EQ(probe.mDisplay, kindler.mDisplay);
            EXPECT_TRUE(probe.mDisplay && probe.mDisplay->mOpened);
        };
        kindler.addCallback(name, probe);
        EXPECT_EQ(probe.mDisplay, nullptr); // there is no window yet
    };
    loads(zebra, "zebra");
    loads(ant, "ant");
    loads(Big, "Big");
    mProbe.onSetup = [&] { order.push_back("probe"); };
    run(kindler, 1);
    EXPECT_EQ(order, (std::vector<std::string>{"Big", "ant", "probe", "zebra"}));
    EXPECT_TRUE(zebra.times.empty());
    const std::string text = out.text();
    EXPECT_NE(text.find("[log][loadEffects], Loading effect: ant. (kin_main.cpp:"), std::string::npos)
        << text;
    EXPECT_NE(text.find("Loading effect 'ant' took 0.0"), std::string::npos) << text;
    EXPECT_NE(text.find(" seconds\n (kin_main.cpp:"), std::string::npos) << text;
}

TEST_F(Show, ASecondRegistrationReplacesTheFirst) {
    writeShow(NOSOUND);
    Kindler kindler;
    Probe first;
    kindler.addCallback("probe", first);
    run(kindler, 1);
    EXPECT_EQ(first.setups, 0);
    EXPECT_EQ(mProbe.setups, 1);
}

TEST_F(Show, OpensTheWindowOfTheSetupFile) {
    writeShow(NOSOUND);
    Kindler kindler;
    mProbe.onUpdate = [&](float) {
        EXPECT_EQ(kindler.mDisplay->mWindowMode.title, "Probe");
        EXPECT_EQ(kindler.mDisplay->mWindowMode.width, 320);
        EXPECT_EQ(kindler.mDisplay->mWindowMode.height, 200);
        EXPECT_FALSE(kindler.mDisplay->mWindowMode.fullscreen);
        EXPECT_TRUE(kindler.mDisplay->mWindowMode.canResize);
        EXPECT_EQ(kindler.mDisplay->mFpsType, display::DisplayGL::FPS_VSYNC);
        EXPECT_EQ(kindler.mDisplay->mArchiveManager, &kindler.mArchives);
        ASSERT_EQ(kindler.mDisplay->mListeners.size(), 3u); // the editor and its controls come after it
        EXPECT_EQ(kindler.mDisplay->mListeners[0], &kindler);
    };
    run(kindler, 1);
    EXPECT_FALSE(mProbe.times.empty());
}

TEST_F(Show, WithoutADisplayElementNothingIsShownOrPlayed) {
    write("setup.xml", "<demo><music filename=\"tune.wav\"/></demo>");
    write("tune.wav", makeWav(8000));
    Kindler kindler;
    kindler.setup();
    kindler.addCallback("probe", mProbe);
    kindler.run();
    EXPECT_EQ(kindler.mDisplay, nullptr);
    EXPECT_EQ(mProbe.setups, 0);
    EXPECT_FALSE(kindler.mNoSound); // opened but not played
    EXPECT_FALSE(kindler.mMusic.mStream->isPlaying());
}

TEST_F(Show, ADisplayOpenedBeforeRunHasNoListener) {
    writeShow(NOSOUND);
    Kindler kindler;
    kindler.setup();
    kindler.openDevices();
    ASSERT_NE(kindler.mDisplay, nullptr);
    EXPECT_TRUE(kindler.mDisplay->mListeners.empty());
    EXPECT_TRUE(kindler.mNoSound);
}

TEST_F(Show, ALaunchersButtonsCloseTheWindowOrEndTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe"; // the child has a window of its own
    writeShow(NOSOUND);
    Kindler kindler;
    kindler.setup();
    kindler.openDevices();
    panorama::Button start, leave, other;
    start.setName("button_run");
    leave.setName("button_exit");
    for (panorama::Button* button : {&start, &leave})
        kindler.controlAction(button, panorama::ACTION_PRESS);
    kindler.controlAction(&other, panorama::ACTION_RELEASE);
    EXPECT_TRUE(kindler.mDisplay->mOpened);
    kindler.controlAction(&start, panorama::ACTION_RELEASE);
    EXPECT_FALSE(kindler.mDisplay->mOpened);
    EXPECT_EXIT(kindler.controlAction(&leave, panorama::ACTION_RELEASE), testing::ExitedWithCode(0), "");
}

TEST_F(Show, AnExceptionWhileLoadingLeavesRunAndStillSaves) {
    writeShow(NOSOUND);
    write("setup.local.xml", test::readFile("setup.xml"));
    mProbe.onSetup = [] { throw Exception("no such picture: %d%%", 7); };
    std::string message;
    try {
        Kindler kindler;
        run(kindler, 1);
    } catch (const std::exception& e) {
        message = e.what();
    }
    EXPECT_EQ(message, "no such picture: 7%");
    EXPECT_EQ(display::DisplayGL::currentDisplay, nullptr); // the window is closed
    EXPECT_NE(test::readFile("setup.local.xml").find("mute=\"off\""), std::string::npos);
}

TEST_F(Show, WithSoundTheLengthIsThatOfTheMusicAndItPlays) {
    writeShow("<music filename=\"tune.wav\"/>");
    write("tune.wav", makeWav(60 * 8000));
    Kindler kindler;
    mProbe.onUpdate = [&](float) {
        EXPECT_EQ(kindler.mDemoLength, 60.0f);
        EXPECT_FALSE(kindler.mNoSound);
        EXPECT_TRUE(kindler.mMusic.mStream->isPlaying());
        EXPECT_FALSE(kindler.mMusic.mPaused);
        EXPECT_GE(kindler.mTime, 0.0f);
        EXPECT_LT(kindler.mTime, 50.0f);
        EXPECT_LT(std::fabs(kindler.mRawTime - kindler.mTime), 10.0f); // two clocks that started together
    };
    run(kindler, 3);
    EXPECT_GE(mProbe.times.size(), 3u);
}

TEST_F(Show, MissingAndUndecodableMusicFallBackToTheClock) {
    for (const char* name : {"missing.wav", "noise.wav", ""}) {
        CaptureStdout out;
        writeShow(std::string("<music filename=\"") + name + "\"/>");
        write("noise.wav", "this is no music");
        mProbe.times.clear();
        Kindler kindler;
        run(kindler, 2);
        EXPECT_TRUE(kindler.mNoSound) << name;
        EXPECT_EQ(kindler.mDemoLength, 500.0f) << name;
        EXPECT_GE(mProbe.times.size(), 2u) << name;
        EXPECT_EQ(kindler.mTime, kindler.mRawTime);
        EXPECT_NE(out.text().find("Could not open file\n"), std::string::npos) << name << out.text();
    }
}

TEST_F(Show, StartsAtTheStartTimeWithoutRaisingTheOnScreenDisplay) {
    writeShow("<time start=\"20\"/><music filename=\"tune.wav\"/>");
    write("tune.wav", makeWav(60 * 8000));
    Kindler kindler;
    run(kindler, 1);
    EXPECT_GE(mProbe.times[0], 20.0f);
    EXPECT_LT(mProbe.times[0], 40.0f);
    EXPECT_GE(kindler.mMusic.mStream->getPosition(), 20 * 8000);
    EXPECT_EQ(kindler.mOsdTime, -100.0f);
    EXPECT_EQ(kindler.mStartTime, 20.0f);
}

TEST_F(Show, ANegativeStartTimeStartsAtZeroAndKeepsItsValue) {
    writeShow(std::string("<time start=\"-30\"/>") + NOSOUND);
    Kindler kindler;
    run(kindler, 1);
    EXPECT_GE(mProbe.times[0], 0.0f);
    EXPECT_EQ(kindler.mStartTime, -30.0f);
}

TEST_F(Show, AStartTimeThatIsNotANumberStartsAtZero) {
    writeShow(std::string("<time start=\"nan\"/>") + NOSOUND);
    Kindler kindler;
    run(kindler, 1);
    EXPECT_GE(mProbe.times[0], 0.0f);
}

// -- seeks; the stream is stopped, so that it stays where it is put

class Seek : public Show {
protected:
    Kindler mKindler;

    void open(bool sound, int frames = 10 * 8000) {
        write("tune.wav", makeWav(frames));
        writeShow(sound ? "<music filename=\"tune.wav\"/>" : NOSOUND);
        mKindler.setup();
        if (sound)
            mKindler.openSound("tune.wav");
    }
};

TEST_F(Seek, BeyondTheEndOfTheMusicGoesToItsEnd) {
    open(true);
    mKindler.mPaused = true;
    for (float t : {11.0f, 1e9f, 1e38f, INFINITY}) {
        mKindler.setTime(t);
        EXPECT_EQ(mKindler.mMusic.mStream->getPosition(), 10 * 8000) << t;
        EXPECT_EQ(mKindler.mPausedTime, 10.0f) << t;
        EXPECT_NEAR(mKindler.mClock.getTime(), 10.0f, 5.0f) << t;
        EXPECT_EQ(mKindler.mOsdTime, 10.0f) << t;
    }
}

// Frame numbers above 2^24 are not all floats.
TEST_F(Seek, OneFrameBeforeTheEndOfLongMusicIsNotItsEnd) {
    open(true, (1 << 24) + 1);
    mKindler.mPaused = true;
    mKindler.setTime(float(1 << 24) / 8000);
    EXPECT_EQ(mKindler.mMusic.mStream->getPosition(), 1 << 24);
    mKindler.setTime(float((1 << 24) + 2) / 8000);
    EXPECT_EQ(mKindler.mMusic.mStream->getPosition(), (1 << 24) + 1);
}

TEST_F(Seek, BelowZeroGoesToZero) {
    open(true);
    mKindler.mPaused = true;
    mKindler.setTime(5);
    for (float t : {-1.0f, -INFINITY, NAN}) {
        mKindler.setTime(t);
        EXPECT_EQ(mKindler.mPausedTime, 0.0f) << t;
        EXPECT_EQ(mKindler.mMusic.mStream->getPosition(), 0) << t;
    }
}

TEST_F(Seek, TheClockTakesTheFrameThatTheStreamReached) {
    open(true);
    mKindler.mPaused = true;
    mKindler.setTime(1.00009f); // 8000.72 frames
    EXPECT_EQ(mKindler.mMusic.mStream->getPosition(), 8000);
    EXPECT_EQ(mKindler.mPausedTime, 1.0f);
    EXPECT_EQ(mKindler.mOsdTime, 1.0f);
    mKindler.getTime();
    EXPECT_EQ(mKindler.mRawTime, 1.0f);
    EXPECT_EQ(mKindler.mTime, 1.0f);
}

TEST_F(Seek, WithoutSoundOnlyTheClockMoves) {
    open(false);
    mKindler.setTime(123.5f);
    EXPECT_EQ(mKindler.mOsdTime, 123.5f);
    EXPECT_EQ(mKindler.mPausedTime, 0.0f); // not paused
    mKindler.getTime();
    EXPECT_GE(mKindler.mRawTime, 123.5f);
    EXPECT_EQ(mKindler.mTime, mKindler.mRawTime);
}

TEST_F(Seek, BeforeTheSoundIsOpenOnlyTheClockMoves) {
    Kindler kindler;
    kindler.setTime(3);
    kindler.getTime();
    EXPECT_GE(kindler.mRawTime, 3);
}

// -- keys

class Keys : public Seek {
protected:
    int press(display::Key code, int control = 0) { return mKindler.onKeyDown(key(code, control)); }
    void at(float time) { mKindler.mRawTime = mKindler.mTime = time; }
};

TEST_F(Keys, EscAndQQuitWithAnyModifierAndNothingElseDoes) {
    open(false);
    for (int code = 0; code < display::KEY_LAST; ++code) {
        const bool quits = code == display::KEY_ESC || code == display::KEY_q;
        for (int control : {0, int(display::KEYMOD_LCTRL), int(display::KEYMOD_RALT)})
            EXPECT_EQ(press(display::Key(code), control),
                      quits ? display::Listener::QUIT : display::Listener::WHATEVER)
                << code;
    }
}

TEST_F(Keys, LeftAndRightGoFiveSecondsAndLeftAtThreeGoesToZero) {
    open(false);
    mKindler.mPaused = true;
    at(30);
    press(display::KEY_LEFT);
    EXPECT_EQ(mKindler.mPausedTime, 25.0f);
    EXPECT_EQ(mKindler.mOsdTime, 25.0f);
    press(display::KEY_RIGHT, display::KEYMOD_LCTRL); // from the time of the last frame, which is still 30
    EXPECT_EQ(mKindler.mPausedTime, 35.0f);
    at(3);
    press(display::KEY_LEFT);
    EXPECT_EQ(mKindler.mPausedTime, 0.0f);
    EXPECT_EQ(mKindler.mOsdTime, 0.0f);
}

TEST_F(Keys, PPrintsTheTimeOfTheScript) {
    open(false);
    at(12.25f);
    CaptureStdout out;
    press(display::KEY_p);
    EXPECT_EQ(out.text(), "12.250000\n");
}

TEST_F(Keys, SpacePausesTheMusicAndResumesFromThere) {
    open(true);
    mKindler.mMusic.mStream->play();
    at(4);
    press(display::KEY_SPACE);
    EXPECT_TRUE(mKindler.mPaused);
    EXPECT_EQ(mKindler.mPausedTime, 4.0f);
    EXPECT_EQ(mKindler.mOsdTime, 4.0f);
    EXPECT_FALSE(mKindler.mMusic.mStream->isPlaying());
    EXPECT_TRUE(mKindler.mMusic.mPaused); // so that a frame does not mistake it for the end
    mKindler.getTime();
    EXPECT_EQ(mKindler.mRawTime, 4.0f);

    mKindler.setTime(6); // a seek moves the frozen time
    mKindler.getTime();
    EXPECT_EQ(mKindler.mRawTime, 6.0f);
    press(display::KEY_SPACE);
    EXPECT_FALSE(mKindler.mPaused);
    EXPECT_TRUE(mKindler.mMusic.mStream->isPlaying());
    EXPECT_FALSE(mKindler.mMusic.mPaused);
    mKindler.getTime();
    EXPECT_GE(mKindler.mRawTime, 6.0f);
    EXPECT_LT(mKindler.mRawTime, 60.0f);
}

TEST_F(Keys, CtrlTStoresTheTimeOfTheMusicAndDoesNotJump) {
    open(false);
    mKindler.mPaused = true;
    mKindler.mPausedTime = 1;
    for (int control : {int(display::KEYMOD_LCTRL), int(display::KEYMOD_RCTRL),
                        display::KEYMOD_LCTRL | display::KEYMOD_LALT}) {
        mKindler.mStartTime = 0;
        mKindler.mRawTime = 40;
        mKindler.mTime = 41;
        press(display::KEY_t, control);
        EXPECT_EQ(mKindler.mStartTime, 41.0f);
        EXPECT_EQ(mKindler.mPausedTime, 1.0f);
        EXPECT_EQ(mKindler.mOsdTime, 40.0f);
    }
}

TEST_F(Keys, AltTForgetsTheStartTimeAndGoesToZero) {
    open(false);
    mKindler.mPaused = true;
    for (int control : {int(display::KEYMOD_LALT), int(display::KEYMOD_RALT)}) {
        mKindler.mStartTime = 30;
        mKindler.mPausedTime = 50;
        at(50);
        press(display::KEY_t, control);
        EXPECT_EQ(mKindler.mStartTime, 0.0f);
        EXPECT_EQ(mKindler.mPausedTime, 0.0f);
        EXPECT_EQ(mKindler.mOsdTime, 50.0f); // the time before the seek
    }
}

TEST_F(Keys, TGoesToTheStartTime) {
    open(false);
    mKindler.mPaused = true;
    mKindler.mStartTime = 30;
    at(50);
    press(display::KEY_t);
    EXPECT_EQ(mKindler.mPausedTime, 30.0f);
    EXPECT_EQ(mKindler.mOsdTime, 50.0f);
    mKindler.mStartTime = -30;
    press(display::KEY_t, display::KEYMOD_LSHIFT);
    EXPECT_EQ(mKindler.mPausedTime, 0.0f);
    EXPECT_EQ(mKindler.mStartTime, -30.0f);
}

TEST_F(Keys, MTogglesTheVolume) {
    open(true);
    press(display::KEY_m);
    EXPECT_TRUE(mKindler.mMuted);
    EXPECT_EQ(mKindler.mMusic.mStream->getVolume(), 0.0f);
    press(display::KEY_m);
    EXPECT_FALSE(mKindler.mMuted);
    EXPECT_EQ(mKindler.mMusic.mStream->getVolume(), 1.0f);
}

TEST_F(Keys, MutedInTheSetupFileStillSoundsUntilM) {
    write("tune.wav", makeWav(8000));
    write("setup.xml", "<demo><music filename=\"tune.wav\" mute=\"on\"/></demo>");
    mKindler.setup();
    mKindler.openSound("tune.wav");
    EXPECT_TRUE(mKindler.mMuted);
    EXPECT_EQ(mKindler.mMusic.mStream->getVolume(), 1.0f);
    press(display::KEY_m);
    EXPECT_FALSE(mKindler.mMuted);
    EXPECT_EQ(mKindler.mMusic.mStream->getVolume(), 1.0f);
}

TEST_F(Keys, MWithoutSoundTogglesOnlyTheFlag) {
    open(false);
    press(display::KEY_m);
    EXPECT_TRUE(mKindler.mMuted);
    press(display::KEY_m);
    EXPECT_FALSE(mKindler.mMuted);
}

TEST_F(Keys, ORaisesTheOnScreenDisplayAndThenMovesIt) {
    open(false);
    at(10);
    press(display::KEY_o);
    EXPECT_EQ(mKindler.mOsdLocation, 0);
    EXPECT_EQ(mKindler.mOsdTime, 10.0f);
    at(11.5f);
    press(display::KEY_o);
    EXPECT_EQ(mKindler.mOsdLocation, 1);
    EXPECT_EQ(mKindler.mOsdTime, 11.5f);
    press(display::KEY_o);
    press(display::KEY_o);
    EXPECT_EQ(mKindler.mOsdLocation, 0);
    at(13.5f); // just down again
    press(display::KEY_o);
    EXPECT_EQ(mKindler.mOsdLocation, 0);
    press(display::KEY_o, display::KEYMOD_LCTRL);
    EXPECT_FALSE(mKindler.mOsdShow);
    press(display::KEY_o, display::KEYMOD_RCTRL);
    EXPECT_TRUE(mKindler.mOsdShow);
    EXPECT_EQ(mKindler.mOsdLocation, 0);
}

// -- frames

TEST_F(Show, ASeekWhilePausedMovesThePictureAndTimeStandsStill) {
    writeShow(NOSOUND);
    Kindler kindler;
    mProbe.onUpdate = [&](float) {
        if (mProbe.times.size() == 2) {
            kindler.onKeyDown(key(display::KEY_SPACE));
            kindler.onKeyDown(key(display::KEY_RIGHT));
        }
    };
    run(kindler, 5);
    ASSERT_GE(mProbe.times.size(), 5u);
    EXPECT_EQ(mProbe.times[2], mProbe.times[1] + 5.0f); // a seek while paused moves the picture
    EXPECT_EQ(mProbe.times[3], mProbe.times[2]);
    EXPECT_EQ(mProbe.times[4], mProbe.times[2]);
}

TEST_F(Show, AtTheEndOfTheMusicALoopGoesBackAndStaysSilent) {
    writeShow("<time loop=\"on\"/><music filename=\"tune.wav\"/>");
    write("tune.wav", makeWav(400)); // a twentieth of a second
    Kindler kindler;
    bool ended = false;
    int after = 0;
    mProbe.onUpdate = [&](float) {
        if (!ended && !kindler.mMusic.mStream->isPlaying() && kindler.mMusic.mStream->getPosition() == 0)
            ended = true;
        if (ended) {
            ++after;
            EXPECT_FALSE(kindler.mMusic.mStream->isPlaying());
            EXPECT_EQ(kindler.mMusic.mStream->getPosition(), 0);
            EXPECT_EQ(kindler.mTime, 0.0f);
        }
        if (after == 5)
            kindler.mDisplay->mQuittingBlocking = true;
    };
    run(kindler, 1000000);
    EXPECT_EQ(after, 5);
}

TEST_F(Show, TheOnScreenDisplayShowsForItsDelayAndUnderItsConditions) {
    writeShow(NOSOUND);
    Kindler kindler;
    kindler.setup();
    kindler.addCallback("probe", mProbe);
    kindler.openDisplay(320, 200, false, "Bar");
    kindler.mPaused = true;
    mProbe.onUpdate = [&](float) {
        glClearColor(0.5f, 0.5f, 0.5f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    };
    auto shows = [&](float now) {
        kindler.mPausedTime = now;
        kindler.mDisplay->resetAllStates();
        kindler.onDraw();
        return test::grabPicture(*kindler.mDisplay).at(160, 7)[0] < 100; // where the bar is, at the top
    };
    kindler.mOsdTime = 10;
    EXPECT_TRUE(shows(10));
    EXPECT_TRUE(shows(11.9375f));
    EXPECT_FALSE(shows(12));
    EXPECT_TRUE(shows(1)); // the past is no bound
    kindler.mOsdShow = false;
    EXPECT_FALSE(shows(10));
    kindler.mOsdShow = true;
    kindler.mOsdDelay = -1;
    EXPECT_FALSE(shows(10));
    kindler.mOsdDelay = NAN;
    EXPECT_FALSE(shows(10));
}

TEST_F(Show, TheBarIsDrawnAtItsThreeLocationsWithItsMarkers) {
    writeShow(NOSOUND);
    Kindler kindler;
    kindler.setup();
    kindler.openDisplay(640, 400, false, "Bar");
    kindler.mDemoLength = 100;
    kindler.mStartTime = 25;
    kindler.mTime = 60;
    for (int location = 0; location < 3; ++location) {
        kindler.mDisplay->resetAllStates();
        glClearColor(0.5f, 0.6f, 0.7f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        kindler.mOsdLocation = location;
        glEnable(GL_CULL_FACE); // as an effect may have left it
        glEnable(GL_DEPTH_TEST);
        kindler.drawOsd();
        const Picture picture = test::grabPicture(*kindler.mDisplay);
        const int y = location == 0 ? 14 : location == 1 ? 200 : 386; // the middle of the bar
        // Through the bar 0.4 of the background is visible.
        EXPECT_NEAR(picture.at(100, y)[0], 0.5 * 0.4 * 255, 2);
        EXPECT_NEAR(picture.at(100, y)[2], 0.7 * 0.4 * 255, 2);
        // The markers, at most three pixels wide, at a quarter and at three fifths.
        EXPECT_GT(picture.at(164, y)[1], 150);
        EXPECT_LT(picture.at(164, y)[0], 60);
        EXPECT_GT(picture.at(383, y)[0], 180);
        EXPECT_GT(picture.at(383, y)[2], 180);
        EXPECT_NEAR(picture.at(320, y + (location == 2 ? -40 : 40))[1], 0.6 * 255,
                    2); // and nothing elsewhere
        EXPECT_TRUE(test::matchesReference("osd_" + std::to_string(location), picture));
    }
}

TEST_F(Show, MarkersPastTheEndLeaveTheBar) {
    writeShow(NOSOUND);
    Kindler kindler;
    kindler.setup();
    kindler.openDisplay(640, 400, false, "Bar");
    kindler.mDisplay->resetAllStates();
    glClear(GL_COLOR_BUFFER_BIT);
    kindler.mDemoLength = 100;
    kindler.mTime = 100.9f; // x = 0.99764, past the bar's end at 0.98
    kindler.drawOsd();
    EXPECT_GT(test::grabPicture(*kindler.mDisplay).at(639, 14)[0], 180);
    for (float length : {0.0f, -1.0f, NAN}) { // any length is harmless
        kindler.mDemoLength = length;
        kindler.drawOsd();
    }
}

TEST_F(Show, OnceWarmAFrameAllocatesNothing) {
    writeShow("<music filename=\"tune.wav\"/>");
    write("tune.wav", makeWav(60 * 8000));
    Kindler kindler;
    kindler.setup();
    struct Nothing : kindler::Effect {
        void update(float, float, float) override {}
    } nothing;
    kindler.addCallback("probe", nothing);
    kindler.openDisplay(320, 200, false, "Bar");
    kindler.openSound("tune.wav");
    kindler.mMusic.mStream->play();
    // Software OpenGL compiles code in the first frame and again in the fifth.
    constexpr int WARM = 5;
    size_t asked = 0;
    for (int i = 0; i < 12; ++i) {
        kindler.mDisplay->resetAllStates();
        const size_t before = test::allocationCount();
        kindler.setTime(float(i)); // raises the on-screen display
        kindler.onDraw();
        asked = i < WARM ? 0 : asked + test::allocationCount() - before;
    }
    EXPECT_EQ(asked, 0u);
}

// -- the dump

TEST_F(Show, ADumpWritesEveryFrameAsItWasShownWithoutTheOnScreenDisplay) {
    writeShow("<dump name=\"film/frame.png\" rate=\"25\"/><music filename=\"tune.wav\"/>");
    write("tune.wav", makeWav(8000));
    Kindler kindler;
    mProbe.onUpdate = [&](float) {
        EXPECT_TRUE(kindler.mNoSound);
        EXPECT_EQ(kindler.mDisplay->mFpsType, display::DisplayGL::FPS_DELTA);
        const float n = float(mProbe.times.size());
        EXPECT_NEAR(kindler.mDisplay->getTime(), (n - 1) / 25, 1e-6);
        glClearColor(n / 5, 0.2f, 1 - n / 5, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    };
    run(kindler, 4);
    ASSERT_EQ(mProbe.times.size(), 4u);
    for (int i = 0; i < 4; ++i) {
        Picture picture;
        ASSERT_TRUE(test::readPng("film/frame.00000" + std::to_string(i) + ".png", picture)) << i;
        EXPECT_EQ(picture.width, 320);
        EXPECT_EQ(picture.height, 200);
        for (int y : {7, 100}) { // where the bar was drawn afterwards, and elsewhere
            EXPECT_NEAR(picture.at(160, y)[0], (i + 1) * 51, 1) << i;
            EXPECT_NEAR(picture.at(160, y)[1], 51, 1);
            EXPECT_NEAR(picture.at(160, y)[2], 255 - (i + 1) * 51, 1);
        }
    }
    EXPECT_FALSE(test::fileExists("film/frame.000004.png"));
}

TEST_F(Show, ADumpDrawsTheOnScreenDisplayWhateverItsSwitchSays) {
    writeShow("<dump name=\"frame.png\"/>");
    Kindler kindler;
    kindler.setup();
    kindler.openDisplay(320, 200, false, "Bar");
    kindler.mOsdShow = false;
    kindler.mDisplay->resetAllStates();
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    kindler.onDraw();
    EXPECT_LT(test::grabPicture(*kindler.mDisplay).at(160, 7)[0], 200);
    Picture picture;
    ASSERT_TRUE(test::readPng("frame.000000.png", picture));
    EXPECT_EQ(picture.at(160, 7)[0], 255);
}

TEST_F(Show, ADumpOfOddHeightIsRefused) {
    writeShow("<dump name=\"frame.png\"/>", "width=\"320\" height=\"201\"");
    Kindler kindler;
    std::string message;
    try {
        run(kindler, 1);
    } catch (const std::exception& e) {
        message = e.what();
    }
    EXPECT_EQ(message, "[Kindler] A dump needs an even height of the window, not 201");
}
