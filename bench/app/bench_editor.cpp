// The timeline editor's share of a frame for scripts of several sizes, alternating within one run:
//     tests/with_display build/bench/bench/app/bench_editor [FRAMES]
// One line per script, in milliseconds: the editor's part of a frame, open and closed, up to the finished
// pixels; one mouse move and one step of the wheel; building the rows. Medians by the clock and, in brackets,
// as processor time of all threads. Targets with 500 spans and 2,000 splines: 5 ms open, 0.05 closed. What is
// clipped should cost nothing, so the times should not depend on the size of the script.
#include "../measure.h"
#include "am_archivemanager.h"
#include "dis_display.h"
#include "kin_gui.h"
#include "pan_slider.h"
#include "script_engine.h"

#include <cstdio>
#include <memory>
#include <vector>

using namespace zentrak;

namespace {

constexpr int WIDTH = 1280, HEIGHT = 800;

// Spans of 4 to 23 seconds spread over a show of 200, each with four curves of five keys.
void fill(script::ScriptEngine& engine, int spans) {
    for (int i = 0; i < spans; ++i) {
        auto* const effect = new script::Effect;
        effect->mName = "effect " + std::to_string(i);
        effect->mStart = float(i * 37 % 180);
        effect->mEnd = effect->mStart + 4 + float(i % 20);
        for (int s = 0; s < 4; ++s) {
            auto* const spline = new script::Spline;
            spline->mName = "curve " + std::to_string(s);
            for (int k = 0; k < 5; ++k)
                spline->addKey({float(k) / 4, float((i + s + k) % 7) / 7 - 0.4f, 0, 0});
            effect->mSplines.push_back(spline);
        }
        engine.mEffects.push_back(effect);
    }
    engine.init();
}

// A separate editor on the existing display.
class Edited {
public:
    Edited(display::DisplayGL& display, int spans) : mDisplay(display), mSpans(spans) {
        fill(mEngine, spans);
        mGui = std::make_unique<kindler::Gui>(&display, &mEngine);
        mGui->mDemoLength = 200;
        mBuilt.add([&] { mGui->setup(); });
        mMain = mGui->mPanorama.mWorkspace.findControl("main");
    }

    void frame(bool open) {
        mMain->mVisible = open;
        mDisplay.resetAllStates();
        glClear(GL_COLOR_BUFFER_BIT);
        glFinish();
        (open ? mOpen : mClosed).add([&] {
            mGui->onDraw();
            mGui->mPanorama.onDraw();
            glFinish();
        });
        if (!open)
            return;
        static int moves = 0; // of all editors: a move to the same pixel is none
        ++moves;
        display::MouseMoveEvent event;
        event.mousePos = mathbase::Vector2f(300 + float(moves % 700), 420 + float(moves % 300));
        mMoves.add([&] { mGui->mPanorama.onMouseMove(event); });
        event.mouseDeltaWheel = mOpen.wall.size() % 20 < 10 ? -1 : 1;
        mWheels.add([&] { mGui->mPanorama.onMouseWheel(event); });
    }

    void print(FILE* to) const {
        fprintf(to, "%5d spans, %5d splines:", mSpans, mSpans * 4);
        const std::pair<const char*, const bench::Times*> all[] = {{"open", &mOpen},
                                                                   {"closed", &mClosed},
                                                                   {"a move", &mMoves},
                                                                   {"a wheel step", &mWheels},
                                                                   {"rows built", &mBuilt}};
        for (const auto& [name, times] : all)
            fprintf(to, "  %s %.3f (%.3f)", name, bench::median(times->wall),
                    bench::median(times->processor));
        fprintf(to, "\n");
    }

private:
    display::DisplayGL& mDisplay;
    int mSpans;
    script::ScriptEngine mEngine;
    std::unique_ptr<kindler::Gui> mGui;
    panorama::Control* mMain = nullptr;
    bench::Times mBuilt, mOpen, mClosed, mMoves, mWheels;
};

} // namespace

int main(int argc, char** argv) {
    const int frames = bench::roundsOf(argc, argv, 200);
    FILE* const results = bench::separateResults();
    display::DisplayGL display(display::WindowMode("bench", WIDTH, HEIGHT, false));
    am::ArchiveManager archives;
    archives.addArchive(ZENTRAK_DATA_DIR);
    display.setArchive(&archives);
    display.open();
    display.setFps(display::DisplayGL::FPS_VARIABLE, 0);
    display.update();

    std::vector<std::unique_ptr<Edited>> editors;
    for (const int spans : {5, 500, 5000})
        editors.push_back(std::make_unique<Edited>(display, spans));
    for (int i = 0; i < frames; ++i)
        for (const auto& editor : editors)
            for (const bool open : {true, false})
                editor->frame(open);
    for (const auto& editor : editors)
        editor->print(results);
}
