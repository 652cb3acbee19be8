// The real show on an OpenGL without memory: each call that allocates fails once, while the show loads or in
// one of its frames. The show has to end with an exception that says so, and the next one plays.
#include "dis_key.h"
#include "kin_gui.h"
#include "played_show.h"
#include "refuse_gl.h"

#include <gtest/gtest.h>
#include <string>

using namespace zentrak;
using namespace zentrak::test;

namespace {

constexpr float STEP = 20; // seconds of the show between two frames
constexpr int FRAMES = 10;

// Jumps from frame to frame, with the editor open in every second one.
std::string jumpThroughShow(int& frames) {
    return playShow([&](kindler::Kindler& kindler, int count) {
        frames = count;
        kindler.setTime(float(count) * STEP);
        display::KeyEvent tab;
        tab.key = display::KEY_TAB;
        kindler.mGui->onKeyDown(tab);
        return count < FRAMES;
    });
}

bool saysSo(const std::string& text) {
    for (const char* part : {"'GL_OUT_OF_MEMORY'", "Could not compile '", "Could not link."})
        if (text.find(part) != std::string::npos)
            return true;
    return false;
}

} // namespace

TEST(GlRefused, EachAllocationEndsTheShowWithAWord) {
    const SmallShow show;
    int number = 0, frames = 0;
    for (bool refused = true; refused; ++number) {
        std::string end;
        {
            CaptureStdout quiet;
            refuseGl(number + 1);
            end = jumpThroughShow(frames);
            refused = wasGlRefused();
            refuseGl(0);
        }
        ASSERT_EQ(saysSo(end), refused) << "allocation " << number + 1 << ": " << end;
    }
    EXPECT_GT(number, 100);
    EXPECT_EQ(frames, FRAMES); // when nothing was refused any more
    printf("%d allocations\n", number - 1);
}

// As with a libOpenGL that isn't from the vendor of the libGL beside it.
TEST(GlRefused, LibrariesThatDoNotFitTogetherAreNotUsed) {
    display::DisplayGL display(display::WindowMode("Separate", 64, 40, false));
    std::string end, log;
    {
        CaptureStdout out;
        separateGl(true);
        try {
            display.open();
        } catch (const Exception& e) {
            end = e.what();
        }
        separateGl(false);
        log = out.text();
    }
    EXPECT_EQ(end, "DisplayGL: Could not initialize GLEW!");
    EXPECT_NE(log.find("OpenGL has no version: its libraries don't fit together"), std::string::npos) << log;
    display.open(); // once they do
    EXPECT_TRUE(display.mOpened);
}
