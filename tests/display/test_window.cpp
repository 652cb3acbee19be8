// Opening, closing, full screen, and the display's queries.
#include "dis_clock.h"
#include "dis_display.h"
#include "dis_texture.h"
#include "extensions.h"
#include "fake_time.h"
#include "glfw2.h"
#include "input.h"
#include "recorder.h"
#include "support.h"
#include "ztk_system.h"

#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <regex>

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::CaptureStdout;
using zentrak::test::FakeTime;
using zentrak::test::Recorder;
using zentrak::test::runCommand;
using zentrak::test::Viewer;
using zentrak::test::WithoutExtensions;

typedef std::vector<std::string> Log;

static const WindowMode WINDOW("A window under test", 320, 240, false);

// The window's title according to the window manager, and its size according to the window system.
static std::string shownTitle(Viewer& viewer) {
    const std::string text = runCommand("xdotool getwindowname " + viewer.window()).second;
    return text.substr(0, text.find('\n'));
}

static std::string shownSize(Viewer& viewer) {
    const std::string text = runCommand("xdotool getwindowgeometry --shell " + viewer.window()).second;
    std::smatch match;
    return std::regex_search(text, match, std::regex("WIDTH=([0-9]+)\nHEIGHT=([0-9]+)"))
               ? match[1].str() + "x" + match[2].str()
               : text;
}

TEST(Window, ResourcesOfAnEarlierDisplayDoNotTouchThoseOfALaterOne) {
    const auto make = [](DisplayGL& display) {
        auto texture = std::make_unique<Texture>(&display);
        texture->setup(4, 4, Texture::CHAN_RGBA, Texture::FORMAT_UINT8, Texture::TARGET_2D);
        texture->bind();
        return texture;
    };
    auto earlier = std::make_unique<DisplayGL>(WINDOW);
    earlier->open();
    auto old = make(*earlier);
    earlier.reset();
    DisplayGL later(WINDOW);
    later.open();
    const auto texture = make(later);
    GLint name = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &name);
    old.reset();
    EXPECT_TRUE(glIsTexture(GLuint(name)));
}

TEST(Window, OpensClosesAndOpensAgainWithANewContext) {
    DisplayGL display(WINDOW);
    display.open();
    EXPECT_TRUE(display.mOpened);
    EXPECT_EQ(1, display.mContextCount);
    EXPECT_EQ(DisplayGL::FPS_VSYNC, display.mFpsType);
    EXPECT_EQ(30.0f, display.mFps);
    EXPECT_TRUE(display.update());
    EXPECT_TRUE(display.mPushedStates);
    {
        Viewer viewer(WINDOW.title, [&] { display.update(); });
        EXPECT_EQ(WINDOW.title, shownTitle(viewer));
        EXPECT_EQ("320x240", shownSize(viewer));
    }
    display.close();
    EXPECT_FALSE(display.mOpened);
    EXPECT_FALSE(display.mPushedStates);
    EXPECT_EQ(1, display.mContextCount);
    EXPECT_FALSE(display.update());
    display.open();
    EXPECT_TRUE(display.mOpened);
    EXPECT_EQ(2, display.mContextCount);
    EXPECT_TRUE(display.update());
}

TEST(Window, OpenedTwiceTakesTheNewSizeAndTitleInTheSameContext) {
    DisplayGL display(WINDOW);
    display.open();
    Viewer viewer(WINDOW.title, [&] { display.update(); });
    viewer.window();
    display.mWindowMode.width = 400;
    display.mWindowMode.height = 300;
    display.mWindowMode.title = "Another title";
    display.open();
    EXPECT_EQ(1, display.mContextCount);
    EXPECT_TRUE(viewer.until("the size", [&] { return shownSize(viewer) == "400x300"; }));
    EXPECT_TRUE(viewer.until("the title", [&] { return shownTitle(viewer) == "Another title"; }));
    EXPECT_EQ(400, display.mWindowMode.width);
    EXPECT_EQ(300, display.mWindowMode.height);
}

TEST(Window, OpeningIsLogged) {
    DisplayGL display(WINDOW);
    CaptureStdout captured;
    display.open();
    const std::string text = captured.text();
    EXPECT_TRUE(std::regex_search(text, std::regex("\\[info\\]\\[[A-Za-z]+\\], GL_SHADING_LANGUAGE_VERSION: "
                                                   "'[0-9.]+'\n \\(dis_display\\.cpp:[0-9]+\\)\n")))
        << text;
    EXPECT_TRUE(std::regex_search(text, std::regex("\\[info\\]\\[open\\], Opened window of resolution "
                                                   "320x240 \\(glfw version: 3\\.[0-9]+\\.[0-9]+\\)\n"
                                                   " \\(dis_display\\.cpp:[0-9]+\\)\n")))
        << text;
}

TEST(Window, ClosingIsLogged) {
    DisplayGL display(WINDOW);
    display.open();
    CaptureStdout captured;
    display.close();
    EXPECT_TRUE(std::regex_match(
        captured.text(),
        std::regex("\\[info\\]\\[close\\], closing display \\(dis_display\\.cpp:[0-9]+\\)\n")))
        << captured.text();
}

TEST(Window, OpensWithoutTheShadingLanguage) {
    DisplayGL display(WINDOW);
    const WithoutExtensions without{"GL_ARB_shading_language_100"};
    CaptureStdout captured;
    display.open();
    EXPECT_EQ(std::string::npos, captured.text().find("GL_SHADING_LANGUAGE_VERSION"));
    EXPECT_TRUE(display.mOpened);
}

TEST(Window, WithoutASizeTakesOne) {
    for (const auto& [width, height, wide, high] :
         {std::tuple(0, 0, 640, 480), std::tuple(-5, -7, 640, 480), std::tuple(0, 240, 320, 240),
          std::tuple(320, -1, 320, 240), std::tuple(-1, 1, 1, 1)}) {
        DisplayGL display(WindowMode("sized", width, height, false));
        display.open();
        EXPECT_EQ(wide, display.mWindowMode.width);
        EXPECT_EQ(high, display.mWindowMode.height);
        EXPECT_TRUE(display.update());
    }
}

TEST(Window, OfAHugeSizeDoesNotOpenAndLeavesTheDisplayUsable) {
    DisplayGL display(WindowMode("huge", 300, 300, false));
    for (const auto& [width, height] :
         {std::pair(32768, 100), std::pair(100, 32768), std::pair(2147483647, 0), std::pair(0, 2147483647),
          std::pair(32767, 32767), std::pair(16385, 16384)}) {
        display.mWindowMode.width = width;
        display.mWindowMode.height = height;
        std::string text = "nothing";
        try {
            display.open();
        } catch (const Exception& exception) {
            text = exception.what();
        }
        EXPECT_EQ("Could not open window", text) << width << "x" << height;
        EXPECT_FALSE(display.mOpened);
        EXPECT_EQ(0, display.mContextCount);
    }
    display.mWindowMode.width = display.mWindowMode.height = 300;
    display.open();
    EXPECT_TRUE(display.update());
    display.mWindowMode.height = 40000;
    EXPECT_THROW(display.open(), Exception);
    EXPECT_TRUE(display.mOpened);
}

TEST(Window, CanBeOddlySized) {
    DisplayGL display(WindowMode("odd", 201, 101, false));
    display.open();
    EXPECT_TRUE(display.update());
    EXPECT_EQ(201, display.mWindowMode.width);
    EXPECT_EQ(101, display.mWindowMode.height);
}

TEST(Window, HasExtensionsByName) {
    DisplayGL display(WINDOW);
    display.open();
    EXPECT_TRUE(display.hasExtension("GL_ARB_vertex_buffer_object"));
    EXPECT_TRUE(display.hasExtension("GL_ARB_vertex_buffer_object GL_ARB_multitexture"));
    EXPECT_FALSE(display.hasExtension("GL_ARB_vertex_buffer_objects"));
    EXPECT_FALSE(display.hasExtension("GL_XYZ_no_such_thing"));
}

TEST(Window, LacksASetOfExtensionsIfItLacksOne) {
    DisplayGL display(WINDOW);
    display.open();
    const WithoutExtensions without{"GL_ARB_vertex_buffer_object", "GL_ARB_multi"};
    EXPECT_FALSE(display.hasExtension("GL_ARB_vertex_buffer_object"));
    EXPECT_FALSE(display.hasExtension("GL_ARB_multitexture GL_ARB_vertex_buffer_object"));
    EXPECT_TRUE(display.hasExtension("GL_ARB_multitexture"));
}

TEST(Window, KnowsTheModesOfTheMonitor) {
    DisplayGL display(WINDOW);
    std::vector<WindowMode> modes(3);
    display.getModes(modes);
    ASSERT_FALSE(modes.empty());
    ASSERT_GE(2048u, modes.size());
    for (const WindowMode& mode : modes) {
        EXPECT_LT(0, mode.width);
        EXPECT_LT(0, mode.height);
        EXPECT_EQ(24, mode.bitdepth);
        EXPECT_TRUE(mode.fullscreen);
    }
    display.open();
    std::vector<WindowMode> again;
    display.getModes(again);
    EXPECT_EQ(modes.size(), again.size());
}

TEST(Window, GoesFullScreenAndBackWithNewContextsAndTheTimeKept) {
    DisplayGL display(WINDOW);
    Log log;
    Recorder recorder("r", log);
    recorder.attachToDisplay(&display);
    display.open();
    display.setTime(100);
    display.mLastClickTime = 99;
    display.mFpsCountFinal = 60;
    display.setFullscreen(false); // no change, nothing happens
    EXPECT_EQ(1, display.mContextCount);
    EXPECT_EQ(60.0f, display.mFpsCountFinal);

    display.setFullscreen(true);
    EXPECT_TRUE(display.mWindowMode.fullscreen);
    EXPECT_EQ(2, display.mContextCount);
    EXPECT_TRUE(display.mOpened);
    EXPECT_LE(100, display.getTime());
    EXPECT_EQ(-1.0f, display.mLastClickTime);
    EXPECT_LE(100.0f, display.mFpsLastTime);
    EXPECT_EQ(display.mFpsLastTime, display.mFpsCountFinalTime);
    EXPECT_EQ(0.0f, display.mFpsCountFinal);
    EXPECT_EQ(0.0f, display.mFpsCountFrames);
    const int before = recorder.draws;
    {
        Viewer viewer(WINDOW.title, [&] { display.update(); });
        EXPECT_TRUE(viewer.until("a frame", [&] { return recorder.draws > before; }));
    }

    display.setFullscreen(false);
    EXPECT_FALSE(display.mWindowMode.fullscreen);
    EXPECT_EQ(3, display.mContextCount);
    EXPECT_LE(100, display.getTime());
    Viewer viewer(WINDOW.title, [&] { display.update(); });
    EXPECT_TRUE(viewer.until("the size", [&] { return shownSize(viewer) == "320x240"; }));
}

TEST(Window, SetTimeIsTheTime) {
    DisplayGL display(WINDOW);
    display.open();
    FakeTime time;
    display.mLastClickTime = 3;
    display.mFpsCountFinal = 5;
    display.mFpsCountFrames = 5;
    display.setTime(50);
    EXPECT_NEAR(50, display.getTime(), 0.01);
    EXPECT_EQ(-1.0f, display.mLastClickTime);
    EXPECT_EQ(50.0f, display.mFpsLastTime);
    EXPECT_EQ(0.0f, display.mFpsCountFinal);
    EXPECT_EQ(50.0f, display.mFpsCountFinalTime);
    EXPECT_EQ(0.0f, display.mFpsCountFrames);
}

TEST(Window, ATimeThatIsNotFiniteIsNotSet) {
    DisplayGL display(WINDOW);
    display.open();
    FakeTime time;
    display.setTime(50);
    display.setTime(INFINITY);
    display.setTime(-INFINITY);
    display.setTime(NAN);
    EXPECT_NEAR(50, display.getTime(), 0.01);
    EXPECT_EQ(50.0f, display.mFpsLastTime);
}

TEST(Window, SleepsAsLongAsAskedAndOnlyForAFiniteTimeAboveZero) {
    DisplayGL display(WINDOW);
    display.open();
    FakeTime time;
    display.sleep(0.5);
    EXPECT_EQ(std::vector<double>{0.5}, time.sleeps);
    time.clear();
    for (const double none : {0.0, -1.0, double(NAN), double(INFINITY), -double(INFINITY)})
        display.sleep(none);
    EXPECT_TRUE(time.sleeps.empty());
}

TEST(Window, AClockRunsWithTheDisplayUntilItsFirstUpdate) {
    DisplayGL display(WINDOW);
    display.open();
    FakeTime time;
    Clock clock;
    clock.setTime(10);
    clock.sleep(0.5f);
    EXPECT_EQ(std::vector<double>{0.5}, time.sleeps);
    EXPECT_NEAR(10.5, clock.getTime(), 0.01);
    clock.update();
    const float stopped = clock.getTime();
    clock.sleep(0.5f);
    EXPECT_EQ(stopped, clock.getTime());
    clock.update();
    EXPECT_NEAR(stopped + 0.5, clock.getTime(), 0.01);
}

TEST(Window, AClockJumpsWithTheTimeOfTheDisplay) {
    DisplayGL display(WINDOW);
    display.open();
    FakeTime time;
    display.setTime(0);
    Clock clock;
    display.setTime(1000);
    EXPECT_NEAR(1000, clock.getTime(), 0.01);
}

TEST(Window, ThatGlfwHasClosedEndsTheLoop) {
    DisplayGL display(WINDOW);
    Log log;
    Recorder recorder("r", log);
    recorder.attachToDisplay(&display);
    display.open();
    display.setFps(DisplayGL::FPS_VARIABLE, 0);
    recorder.draw = [] { glfw2::glfwCloseWindow(); };
    EXPECT_FALSE(display.update());
    display.mOpened = false;
}
