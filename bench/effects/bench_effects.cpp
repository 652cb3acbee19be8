// A frame of each box effect through the batch, beside the same frame with one call per vertex. Run it in the
// root of the source tree on a display:
//   tests/with_display build/bench/bench/effects/bench_effects [small]
// With "small" the window is 16 by 10 pixels, so that filling, which costs both ways the same, hides nothing.

#include "am_archivemanager.h"
#include "credits.h"
#include "cubejox.h"
#include "dis_display.h"
#include "effect_image.h"
#include "grand.h"
#include "greet.h"
#include "grid.h"
#include "kub.h"
#include "overlay.h"
#include "plain.h"
#include "rund.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

using namespace zentrak;
using namespace zentrak::kindler;

namespace {

constexpr int FRAMES = 12;
constexpr int ROUNDS = 5;

// Milliseconds a frame, the best of some rounds, pixels and all.
double measure(display::DisplayGL& display, const std::function<void()>& draw) {
    double best = 1e9;
    for (int round = 0; round < ROUNDS; ++round) {
        display.resetAllStates();
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        draw();
        glFinish();
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < FRAMES; ++i) {
            display.resetAllStates();
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            draw();
            glFinish();
        }
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count() / FRAMES);
    }
    return best;
}

void report(display::DisplayGL& display, const char* name, const std::function<void()>& ours,
            const std::function<void()>& plain) {
    const double a = measure(display, ours);
    if (!plain) {
        printf("%-10s %8.2f ms\n", name, a);
        return;
    }
    const double b = measure(display, plain);
    printf("%-10s %8.2f ms, plain %8.2f ms: %5.1f times\n", name, a, b, b / a);
}

template <class EFFECT>
EFFECT& ready(EFFECT& effect, display::DisplayGL& display) {
    effect.mDisplay = &display;
    effect.setup();
    effect.updateSpline(0, "alpha", 1);
    return effect;
}

} // namespace

int main(int argc, char** argv) {
    const bool         small = argc > 1 && strcmp(argv[1], "small") == 0;
    am::ArchiveManager archives;
    display::DisplayGL display(small ? display::WindowMode("bench", 16, 10, false)
                                     : display::WindowMode("bench", 1280, 800, false));
    archives.addArchive("data");
    display.setArchive(&archives);
    display.open();
    display.setFps(display::DisplayGL::FPS_VARIABLE, 0);
    display.update();

    EffectRandom::fixStart(1);
    Common  common;
    Greet   greet(&common);
    Kub     kub(&common);
    Tunnel  tunnel(&common);
    Cubejox cubejox(&common);
    Credits credits(&common, "moonpulse");
    Grand   grand(&common);
    Vul     vul(&common);
    Xor     comet(&common);
    Rund    rund(&common);
    Grid    grid(&common);
    WaxOn   waxon(&common);
    Overlay overlay(&common);

    ready(greet, display);
    test::plain::Greet plainGreet;
    plainGreet.setup(display);
    greet.executeTrigger(0, "", "");
    plainGreet.trigger();
    report(
        display, "greet", [&] { greet.update(0, 0, 0); }, [&] { plainGreet.update(display, 0); });

    srand(1);
    const auto before = std::chrono::steady_clock::now();
    ready(kub, display);
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - before;
    test::plain::Kub                                plainKub(1);
    srand(1);
    plainKub.setup(display);
    kub.update(5, 12, 0.4f);
    plainKub.step(5, 12);
    report(
        display, "kub", [&] { kub.update(12, 0, 0.4f); }, [&] { plainKub.draw(display, 12, 0.4f); });

    ready(tunnel, display);
    test::plain::Tunnel plainTunnel(1);
    plainTunnel.setup(display);
    report(
        display, "tunnel", [&] { tunnel.update(14, 0.001f, 0); },
        [&] { plainTunnel.update(display, 14, 0.001f); });

    ready(cubejox, display);
    test::plain::Cubejox plainCubejox(1);
    plainCubejox.alpha = 1;
    report(
        display, "cubejox", [&] { cubejox.update(2, 0.001f, 0); },
        [&] { plainCubejox.update(display, 2, 0.001f); });

    ready(credits, display);
    test::plain::Credits plainCredits(1, *loadPixels(display, "credits/credits_moonpulse.png"));
    credits.updateSpline(0, "zoom", 0.7f);
    plainCredits.zoom = 0.7f;
    report(
        display, "credits", [&] { credits.update(0, 0, 0); }, [&] { plainCredits.update(display, 0); });

    ready(grand, display);
    test::plain::Grand plainGrand(1);
    plainGrand.setup(display);
    plainGrand.alpha = 1;
    report(
        display, "grand", [&] { grand.update(0, 0, 0.5f); }, [&] { plainGrand.update(display, 0.5f); });

    ready(vul, display);
    vul.updateSpline(0, "intensity", 1);
    test::plain::Vul plainVul;
    plainVul.setup(display);
    plainVul.intensity = 1;
    report(
        display, "vul", [&] { vul.update(3, 0, 0); }, [&] { plainVul.update(display, 3); });

    ready(comet, display);
    ready(rund, display);
    ready(grid, display);
    waxon.mDisplay = &display;
    waxon.setup();
    waxon.executeTrigger(0, "which", "vaddr");
    waxon.update(0, 0, 0);
    waxon.postUpdate(0, 0, 0);
    ready(overlay, display);
    report(
        display, "xor", [&] { comet.update(10, 0, 0); }, nullptr);
    report(
        display, "rund", [&] { rund.update(10, 0, 0); }, nullptr);
    report(
        display, "grid", [&] { grid.update(10, 0, 0); }, nullptr);
    report(
        display, "overlay", [&] { overlay.update(3, 0, 0); }, nullptr);
    printf("kub's setup took %.1f ms\n", took.count());
    return 0;
}
