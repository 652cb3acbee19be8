// The check after each GL call. This program replaces glGetError: a test can make any check of the library
// find an error.
#include "dis_display.h"
#include "dis_glcheck.h"
#include "gl_fixture.h"
#include "recorder.h"
#include "ztk_system.h"

#include <dlfcn.h>
#include <regex>

using namespace zentrak;
using namespace zentrak::display;
using zentrak::test::GlWindow;
using zentrak::test::Recorder;

static int checksUntilError = 0; // 0: no error
static GLenum errorMade = GL_NO_ERROR;

extern "C" GLenum glGetError() {
    static const auto real = reinterpret_cast<GLenum (*)()>(dlsym(RTLD_NEXT, "glGetError"));
    if (checksUntilError > 0 && --checksUntilError == 0)
        return errorMade;
    return real();
}

// The whole text of what the call throws when the n-th check finds the error, or "nothing".
template <class Call>
static std::string thrownAt(int check, GLenum error, Call call) {
    checksUntilError = check;
    errorMade = error;
    std::string text = "nothing";
    try {
        call();
    } catch (const Exception& exception) {
        text = exception.what();
    }
    checksUntilError = 0;
    return text;
}

// The call that a report of dis_display.cpp names; any other text as it is.
static std::string callOf(const std::string& report) {
    std::smatch match;
    const std::regex form(
        "GL-error at \\[[0-9]+\\] dis_display\\.cpp\nLine: (.*)\nError: 'GL_INVALID_VALUE'\n");
    return std::regex_match(report, match, form) ? match[1].str() : report;
}

TEST(GlReportError, PassesWithoutAnError) {
    GL_REPORT_ERROR("file.cpp", 12, "text");
}

TEST(GlReportError, NamesLineFileTextAndError) {
    EXPECT_EQ(
        "GL-error at [12] file.cpp\nLine: glDepthFunc(GL_LEQUAL)\nError: 'GL_INVALID_ENUM'\n",
        thrownAt(1, GL_INVALID_ENUM, [] { GL_REPORT_ERROR("file.cpp", 12, "glDepthFunc(GL_LEQUAL)"); }));
    EXPECT_EQ("GL-error at [7] a.cpp\nLine: t\nError: 'GL_STACK_OVERFLOW'\n",
              thrownAt(1, GL_STACK_OVERFLOW, [] { GL_REPORT_ERROR("a.cpp", 7, "t"); }));
    EXPECT_EQ("GL-error at [7] a.cpp\nLine: t\nError: 'GL_TABLE_TOO_LARGE'\n",
              thrownAt(1, GL_TABLE_TOO_LARGE, [] { GL_REPORT_ERROR("a.cpp", 7, "t"); }));
}

TEST(GlReportError, ValuesOutsideTheSevenCodesPassSilently) {
    for (GLenum code : {0x0506u, 0x0507u, 0x1234u, 0x04ffu, 0xffffffffu})
        EXPECT_EQ("nothing", thrownAt(1, code, [] { GL_REPORT_ERROR("file.cpp", 12, "text"); })) << code;
}

TEST(GlCall, NamesItsFileAndLineAndTheCallLetterForLetter) {
    int calls = 0;
    const int line = __LINE__ + 1;
    const std::string text = thrownAt(1, GL_INVALID_VALUE, [&] { GL_CALL(calls+=  1); });
    EXPECT_EQ("GL-error at [" + std::to_string(line) +
                  "] test_glcheck.cpp\nLine: calls+= 1\nError: 'GL_INVALID_VALUE'\n",
              text);
    EXPECT_EQ(1, calls);
}

TEST(GlChecks, EveryCallOfResetStatesIsCheckedUnderItsOwnText) {
    GlWindow window;
    std::vector<std::string> texts;
    for (int check = 1; check < 100; ++check) {
        const std::string text = thrownAt(check, GL_INVALID_VALUE, [&] { window.display().resetStates(); });
        if (text == "nothing")
            break;
        texts.push_back(callOf(text));
    }
    const std::vector<std::string> expected = {
        "glMatrixMode(GL_TEXTURE)",
        "glLoadIdentity()",
        "glMatrixMode(GL_MODELVIEW)",
        "glLoadMatrixf(modelView.mData)",
        "glMatrixMode(GL_MODELVIEW)",
        "glLoadMatrixf(modelView.mData)",
        "glMatrixMode(GL_PROJECTION)",
        "glLoadMatrixf(matrix.mData)",
        "glShadeModel(GL_SMOOTH)",
        "glClearDepth(1.0f)",
        "glDisable(GL_DEPTH_TEST)",
        "glDepthFunc(GL_LEQUAL)",
        "glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST)",
        "glDisable(GL_LIGHTING)",
        "glColor4f(1.0f,1.0f,1.0f,0.5f)",
        "glDisable(GL_BLEND)",
        "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)",
        "glDisable(GL_TEXTURE_2D)",
    };
    EXPECT_EQ(expected, texts);
}

TEST(GlChecks, ResetAllStatesChecksThePopThePushAndTheViewport) {
    GlWindow window;
    std::vector<std::string> texts;
    for (int check = 1; check < 100; ++check) {
        window.display().resetAllStates(); // so that there is something to pop
        const std::string text =
            thrownAt(check, GL_INVALID_VALUE, [&] { window.display().resetAllStates(); });
        if (text == "nothing")
            break;
        texts.push_back(callOf(text));
    }
    ASSERT_EQ(21u, texts.size()); // 18 of them resetStates'
    EXPECT_EQ("glPopAttrib()", texts[0]);
    EXPECT_EQ("glPushAttrib(0xFFFFF)", texts[1]);
    EXPECT_EQ("glMatrixMode(GL_TEXTURE)", texts[2]);
    EXPECT_EQ("glDisable(GL_TEXTURE_2D)", texts[19]);
    EXPECT_EQ("glViewport(0,0,mWindowMode.width, mWindowMode.height)", texts[20]);
}

TEST(GlChecks, TheFrameHasOneBeforeAndOneAfterEachListener) {
    GlWindow window;
    std::vector<std::string> log;
    Recorder first("first", log), second("second", log);
    first.attachToDisplay(&window.display());
    second.attachToDisplay(&window.display());
    first.noteDraws = second.noteDraws = true;
    window.display().update();

    std::vector<std::string> steps;
    for (int check = 1; check <= 3; ++check) {
        log.clear();
        first.draw = [&] {
            checksUntilError = check;
            errorMade = GL_INVALID_VALUE;
        };
        std::string text = "nothing";
        try {
            window.display().update();
        } catch (const Exception& exception) {
            text = exception.what();
        }
        checksUntilError = 0;
        steps.push_back(callOf(text) + (log.size() == 1 ? ", before the second" : ", after the second"));
    }
    const std::vector<std::string> expected = {"Checking status, before the second", // after the first
                                               "Checking status, before the second", // before the second
                                               "Checking status, after the second"};
    EXPECT_EQ(expected, steps);
}

TEST(GlChecks, APendingErrorSurfacesAtTheNextCheckUnderThatChecksOwnText) {
    GlWindow window;
    window.frame([&] {
        glEnable(0x1234); // no such thing
        try {
            window.display().setColor(1, 1, 1, 1);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& exception) {
            const std::regex form(
                "GL-error at \\[[0-9]+\\] dis_display_draw\\.cpp\nLine: glColor4f\\(r, g, b, a\\)\n"
                "Error: 'GL_INVALID_ENUM'\n");
            EXPECT_TRUE(std::regex_match(exception.what(), form)) << exception.what();
        }
        window.display().setColor(1, 1, 1, 1); // the error is gone once it was reported
    });
}

TEST(GlChecks, AnErrorOfAListenerEndsTheFrame) {
    GlWindow window;
    std::vector<std::string> log;
    Recorder guilty("guilty", log), next("next", log);
    guilty.attachToDisplay(&window.display());
    next.attachToDisplay(&window.display());
    guilty.draw = [] { glBegin(12345); };
    try {
        window.display().update();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Exception& exception) {
        EXPECT_TRUE(std::regex_match(
            exception.what(), std::regex("GL-error at \\[[0-9]+\\] dis_display\\.cpp\nLine: Checking status\n"
                                         "Error: 'GL_INVALID_ENUM'\n")))
            << exception.what();
    }
    EXPECT_EQ(0, next.draws);
    guilty.draw = nullptr;
    EXPECT_TRUE(window.display().update()); // and the display continues
    EXPECT_EQ(1, next.draws);
}

TEST(GlChecks, AnIncompleteFramebufferIsNoneOfTheSevenCodes) {
    GlWindow window;
    ASSERT_TRUE(window.display().hasExtension("GL_EXT_framebuffer_object"));
    window.frame([&] {
        GLuint framebuffer = 0;
        glGenFramebuffersEXT(1, &framebuffer);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, framebuffer);
        glClear(GL_COLOR_BUFFER_BIT); // GL_INVALID_FRAMEBUFFER_OPERATION
        window.display().setColor(1, 1, 1, 1);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        glDeleteFramebuffersEXT(1, &framebuffer);
    });
}
