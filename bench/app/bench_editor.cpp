// The timeline editor's share of a frame for scripts of several sizes, alternating within one run:
//     tests/with_display build/bench/bench/app/bench_editor [FRAMES]
// One line per script, in milliseconds: the editor's part of a frame, open and closed, up to the finished
// pixels; building the rows; one mouse move and one step of the wheel. Medians by the clock and, in brackets,
// by processor time; for the open editor also by that of the drawing thread. Targets with 500 spans and 2,000
// splines: 5 ms open, 0.05 closed. What is clipped should cost nothing, so the times should not depend on the
// size of the script.
#include "am_archivemanager.h"
#include "dis_display.h"
#include "kin_gui.h"
#include "pan_slider.h"
#include "script_engine.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

using namespace zentrak;

namespace {

constexpr int WIDTH = 1280, HEIGHT = 800;

// By the clock; by processor time over all threads, which is steadier on a busy machine; and by processor
// time of this thread, without the driver's threads that fill pixels.
struct Taken {
    double wall = 0, processor = 0, thread = 0;
};

double threadTime() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

Taken milliseconds(const std::function<void()>& work) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const clock_t before = clock();
    const double thread = threadTime();
    work();
    const double threadAfter = threadTime();
    const clock_t after = clock();
    return {std::chrono::duration<double, std::milli>(Clock::now() - start).count(),
            1000.0 * double(after - before) / CLOCKS_PER_SEC, threadAfter - thread};
}

// The medians.
Taken median(const std::vector<Taken>& list) {
    std::vector<double> wall, processor, thread;
    for (const Taken& taken : list) {
        wall.push_back(taken.wall);
        processor.push_back(taken.processor);
        thread.push_back(taken.thread);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(processor.begin(), processor.end());
    std::sort(thread.begin(), thread.end());
    return {wall[wall.size() / 2], processor[processor.size() / 2], thread[thread.size() / 2]};
}

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
        mBuilt = milliseconds([&] { mGui->setup(); });
        mMain = mGui->mPanorama.mWorkspace.findControl("main");
    }

    void frame(bool open) {
        mMain->mVisible = open;
        mDisplay.resetAllStates();
        glClear(GL_COLOR_BUFFER_BIT);
        glFinish();
        (open ? mOpen : mClosed).push_back(milliseconds([&] {
            mGui->onDraw();
            mGui->mPanorama.onDraw();
            glFinish();
        }));
        if (!open)
            return;
        static int moves = 0; // of all editors: a move to the same pixel is none
        ++moves;
        display::MouseMoveEvent event;
        event.mousePos = mathbase::Vector2f(300 + float(moves % 700), 420 + float(moves % 300));
        mMoves.push_back(milliseconds([&] { mGui->mPanorama.onMouseMove(event); }));
        event.mouseDeltaWheel = mOpen.size() % 20 < 10 ? -1 : 1;
        mWheels.push_back(milliseconds([&] { mGui->mPanorama.onMouseWheel(event); }));
    }

    void print() const {
        const Taken open = median(mOpen), closed = median(mClosed), move = median(mMoves);
        const Taken wheel = median(mWheels);
        printf("%5d spans, %5d splines: open %.3f (%.3f, %.3f), closed %.4f (%.4f), a move %.3f (%.3f), "
               "a step of the wheel %.3f (%.3f), rows built in %.0f (%.0f)\n",
               mSpans, mSpans * 4, open.wall, open.processor, open.thread, closed.wall, closed.processor,
               move.wall, move.processor, wheel.wall, wheel.processor, mBuilt.wall, mBuilt.processor);
    }

private:
    display::DisplayGL& mDisplay;
    int mSpans;
    script::ScriptEngine mEngine;
    std::unique_ptr<kindler::Gui> mGui;
    panorama::Control* mMain = nullptr;
    Taken mBuilt;
    std::vector<Taken> mOpen, mClosed, mMoves, mWheels;
};

} // namespace

int main(int argc, char** argv) {
    const int frames = argc > 1 ? atoi(argv[1]) : 200;
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
        editor->print();
}
