// The real show on an OpenGL without memory: each call that allocates fails once, while the show loads or in
// one of its frames. The show has to end with an exception that says so, and the next one plays.
#include "dis_display.h"
#include "dis_key.h"
#include "effect_names.h"
#include "kin_gui.h"
#include "kin_main.h"
#include "refuse_gl.h"
#include "support.h"
#include "ztk_system.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

using namespace zentrak;
using namespace zentrak::test;

namespace {

constexpr float STEP = 20; // seconds of the show between two frames
constexpr int FRAMES = 10;

// Jumps from frame to frame, with the editor open in every second one, and ends the show.
class Jumps : public kindler::Effect, public display::Listener {
public:
    explicit Jumps(kindler::Kindler& kindler) : mKindler(kindler) {}

    int count() const { return mCount; }

    void setup() override { attachToDisplay(mDisplay); }
    void update(float, float, float) override {}
    void onDraw() override {
        if (++mCount == FRAMES)
            mDisplay->mQuittingBlocking = true;
        mKindler.setTime(float(mCount) * STEP);
        display::KeyEvent tab;
        tab.key = display::KEY_TAB;
        mKindler.mGui->onKeyDown(tab);
    }

private:
    using kindler::Effect::mDisplay;

    kindler::Kindler& mKindler;
    int mCount = 0;
};

// Plays the show, and returns what ended it: empty for its end.
std::string play(int& frames) {
    kindler::Kindler kindler;
    try {
        kindler.setup();
        kindler::Common common;
        kindler::EffectSet effects(common);
        effects.forEach(
            [&](const char* name, kindler::Effect& effect) { kindler.addCallback(name, effect); });
        Jumps jumps(kindler);
        kindler.addCallback("jumps", jumps);
        kindler.run();
        frames = jumps.count();
    } catch (const Exception& e) {
        return e.what();
    }
    return "";
}

bool saysSo(const std::string& text) {
    for (const char* part : {"'GL_OUT_OF_MEMORY'", "Could not compile '", "Could not link."})
        if (text.find(part) != std::string::npos)
            return true;
    return false;
}

} // namespace

TEST(GlRefused, EachAllocationEndsTheShowWithAWord) {
    TempDir dir;
    const WorkingDir inside(dir.path());
    for (const auto& entry : std::filesystem::directory_iterator(sourcePath("data")))
        if (entry.path().filename() != "setup.xml")
            std::filesystem::create_symlink(entry.path(), dir.file(entry.path().filename().string()));
    writeFile("setup.xml", "<demo><display title=\"Refused\" width=\"64\" height=\"40\"/>"
                           "<script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    int number = 0, frames = 0;
    for (bool refused = true; refused; ++number) {
        std::string end;
        {
            CaptureStdout quiet;
            refuseGl(number + 1);
            end = play(frames);
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
