// The real show, played in a small window by this process, for tests that look at its OpenGL.
#pragma once

#include "dis_display.h"
#include "effect_names.h"
#include "kin_main.h"
#include "support.h"
#include "ztk_system.h"

#include <filesystem>
#include <functional>
#include <string>

namespace zentrak::test {

// A folder with links to the files of data/, a window of 64 by 40, and no sound. It is the working directory
// while this lives.
class SmallShow {
public:
    SmallShow() {
        for (const auto& entry : std::filesystem::directory_iterator(sourcePath("data")))
            if (entry.path().filename() != "setup.xml")
                std::filesystem::create_symlink(entry.path(), mDir.file(entry.path().filename().string()));
        writeFile("setup.xml", "<demo><display title=\"Small\" width=\"64\" height=\"40\"/>"
                               "<script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    }

private:
    TempDir mDir;
    WorkingDir mInside{mDir.path()};
};

// Plays the show in the working directory. `afterFrame` is called with the frames so far, from 1, and ends
// the show with false. Returns the text of the exception that ended it, or nothing.
inline std::string playShow(const std::function<bool(kindler::Kindler&, int frames)>& afterFrame) {
    class Watcher : public kindler::Effect, public display::Listener {
    public:
        Watcher(kindler::Kindler& kindler, const std::function<bool(kindler::Kindler&, int)>& afterFrame)
            : mKindler(kindler), mAfterFrame(afterFrame) {}

        void setup() override {
            attachToDisplay(mDisplay);
            mDisplay->setFps(display::DisplayGL::FPS_VARIABLE, 0);
        }
        void update(float, float, float) override {}
        void onDraw() override { mDisplay->mQuittingBlocking |= !mAfterFrame(mKindler, ++mFrames); }

    private:
        using kindler::Effect::mDisplay;

        kindler::Kindler& mKindler;
        const std::function<bool(kindler::Kindler&, int)>& mAfterFrame;
        int mFrames = 0;
    };

    kindler::Kindler kindler;
    try {
        kindler.setup();
        kindler::Common common;
        kindler::EffectSet effects(common);
        effects.forEach(
            [&](const char* name, kindler::Effect& effect) { kindler.addCallback(name, effect); });
        Watcher watcher(kindler, afterFrame);
        kindler.addCallback("watcher", watcher);
        kindler.run();
    } catch (const Exception& e) {
        return e.what();
    }
    return "";
}

} // namespace zentrak::test
