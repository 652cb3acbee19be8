// A frame of the effects that draw many shapes, sprites or a scene:
//     tests/with_display build/bench/bench/effects/bench_effects [ROUNDS [WIDTHxHEIGHT [WHICH]]]
// from the root of the source tree; WHICH selects the lines whose names contain it. Medians in milliseconds,
// up to the finished picture, by the clock and as processor time of all threads; and "own", the processor
// time of the update without the draw calls. In a window of 16x10 pixels, fill time hides nothing. To see
// what a change is worth, build without and with it, and let bench/effects/compare run both in turn.
#include "../measure.h"
#include "abc.h"
#include "am_archivemanager.h"
#include "cloud.h"
#include "credits.h"
#include "cubejox.h"
#include "dis_display.h"
#include "effect_random.h"
#include "face.h"
#include "grand.h"
#include "greet.h"
#include "grid.h"
#include "kub.h"
#include "overlay.h"
#include "rund.h"
#include "spark.h"
#include "sparks_engine.h"
#include "ssao.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"
#include "ztk_memory.h"
#include "ztk_system.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <string>
#include <vector>

using namespace zentrak;
using kindler::Effect;

namespace {

bool muted = false; // draw calls do nothing

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// Override OpenGL's own.
extern "C" void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    static const auto real = next<void(GLenum, GLint, GLsizei)>("glDrawArrays");
    if (!muted)
        real(mode, first, count);
}

extern "C" void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    static const auto real = next<void(GLenum, GLsizei, GLenum, const void*)>("glDrawElements");
    if (!muted)
        real(mode, count, type, indices);
}

namespace {

class Bench {
public:
    FILE* const results = bench::separateResults();
    const int rounds;
    const char* const wanted;
    display::DisplayGL window;

    Bench(int roundCount, int width, int height, const char* which)
        : rounds(roundCount), wanted(which), window(display::WindowMode("bench", width, height, false)) {
        mArchives.addArchive("data");
        mArchives.addArchive("tests/data");
        window.setArchive(&mArchives);
        window.open();
        window.setFps(display::DisplayGL::FPS_VARIABLE, 0);
        window.update();
        std::fprintf(results, "%s, %d x %d, medians of %d rounds, milliseconds\n", glGetString(GL_RENDERER),
                     width, height, rounds);
        std::fprintf(results, "%-26s %9s %9s %9s\n", "", "clock", "processor", "own");
    }

    void prepare(Effect& effect, const char* name) {
        effect.mDisplay = &window;
        effect.mName = name;
        effect.setup();
    }

    template <class Draw>
    void measure(const char* name, const Draw& draw) {
        if (!std::strstr(name, wanted))
            return;
        bench::Times whole, own;
        for (int i = 0; i < rounds; ++i) {
            clear();
            whole.add([&] {
                draw();
                glFinish();
            });
        }
        const auto drawRanges = __glewMultiDrawArrays;
        __glewMultiDrawArrays = [](GLenum, const GLint*, const GLsizei*, GLsizei) {};
        for (int i = 0; i < rounds; ++i) {
            clear();
            muted = true;
            own.add(draw);
            muted = false;
        }
        __glewMultiDrawArrays = drawRanges;
        std::fprintf(results, "%-26s %9.2f %9.2f %9.3f\n", name, bench::median(whole.wall),
                     bench::median(whole.processor), bench::median(own.thread));
    }

private:
    void clear() {
        window.resetStates();
        glDisable(GL_CULL_FACE);
        glClearColor(0.1f, 0.12f, 0.15f, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glFinish();
    }

    am::ArchiveManager mArchives;
};

} // namespace

int main(int count, char** arguments) {
    keepFreedMemory(); // as the program does
    mathbase::fixRandomStart(1);
    int width = 1280, height = 800;
    if (count > 2 && std::sscanf(arguments[2], "%dx%d", &width, &height) != 2) {
        std::fprintf(stderr, "bench_effects [ROUNDS [WIDTHxHEIGHT [WHICH]]]\n");
        return 2;
    }
    Bench bench(bench::roundsOf(count, arguments, 15), width, height, count > 3 ? arguments[3] : "");
    display::DisplayGL& window = bench.window;
    kindler::Common common;

    {
        kindler::Greet greet(&common);
        bench.prepare(greet, "greet");
        const auto stamp = [&](const char* name, int bands) {
            for (int i = 0; i < bands; ++i)
                greet.executeTrigger(0, "next", "");
            bench.measure(name, [&] { greet.update(0, 0, 0); });
        };
        stamp("greet, first band", 1);
        stamp("greet, third, near", 2);
        stamp("greet, twelve bands, near", 9);
    }
    {
        kindler::Kub kub(&common);
        srand(1);
        bench.prepare(kub, "kub");
        const auto at = [&](const char* name, float time, float delta) {
            kub.update(time, delta, 0.5f);
            bench.measure(name, [&] { kub.update(time, 0, 0.5f); });
        };
        at("kub, scattered", 5, 0);
        at("kub, rolling", 15, 5);
        at("kub, whole", 45, 40);
        kub.executeTrigger(45, "expand", "");
        at("kub, expanded", 48, 0);
    }
    {
        kindler::Tunnel tunnel(&common);
        bench.prepare(tunnel, "tunnel");
        for (const auto& [name, time] : {std::pair("tunnel, 2", 2.0f), std::pair("tunnel, 14", 14.0f),
                                         std::pair("tunnel, 24", 24.0f), std::pair("tunnel, 29", 29.0f)})
            bench.measure(name, [&, t = time] { tunnel.update(t, 0.001f, 0); });
    }
    {
        kindler::Cubejox cubejox(&common);
        bench.prepare(cubejox, "cubejox");
        cubejox.updateSpline(0, "alpha", 1);
        for (const auto& [name, zoom] :
             {std::pair("cubejox, near", 0.0f), std::pair("cubejox, zoom 0.1", 0.1f),
              std::pair("cubejox, zoom 0.2", 0.2f)}) {
            cubejox.updateSpline(0, "zoom", zoom);
            bench.measure(name, [&] { cubejox.update(1, 0.001f, 0); });
        }
    }
    {
        kindler::Face face(&common);
        bench.prepare(face, "face");
        face.updateSpline(0, "alpha", 0.4f);
        bench.measure("face, 0", [&] { face.update(0, 0, 0); });
        kindler::Cloud cloud(&common);
        bench.prepare(cloud, "cloud");
        cloud.updateSpline(0, "alpha", 1);
        for (const auto& [name, progress] :
             {std::pair("cloud, start", 0.05f), std::pair("cloud, middle", 0.5f),
              std::pair("cloud, end", 0.95f)})
            bench.measure(name, [&, p = progress] { cloud.update(0, 0, p); });
    }
    {
        kindler::Spark spark(&common);
        bench.prepare(spark, "spark");
        window.setFps(display::DisplayGL::FPS_DELTA, 0);
        for (int frame = 0; frame < 5 * 60; ++frame) { // until the sun burns steadily
            window.setTime(frame / 60.0);
            spark.getEngine()->update(float(window.getTime()));
        }
        for (const auto& [name, progress] : {std::pair("spark, centre", 0.0f),
                                             std::pair("spark, midway", 0.6f), std::pair("spark, far", 1.0f)})
            bench.measure(name, [&, p = progress] { spark.update(0, 0, p); });
        window.setFps(display::DisplayGL::FPS_VARIABLE, 0);
    }
    {
        kindler::Credits credits(&common, "moonpulse");
        bench.prepare(credits, "credits_moonpulse");
        for (const auto& [name, zoom] :
             {std::pair("credits, arriving", 0.3f), std::pair("credits, whole", 1.0f)}) {
            credits.updateSpline(0, "zoom", zoom);
            bench.measure(name, [&] { credits.update(0, 0, 0); });
        }
    }
    {
        kindler::Grand grand(&common);
        bench.prepare(grand, "grand");
        grand.updateSpline(0, "alpha", 1);
        for (const auto& [name, progress] :
             {std::pair("grand, before", 0.2f), std::pair("grand, sweep", 0.5f)})
            bench.measure(name, [&, p = progress] { grand.update(0, 0, p); });
    }
    {
        kindler::Vul vul(&common);
        bench.prepare(vul, "vul");
        for (const auto& [name, intensity] : {std::pair("vul, small", 1.6f), std::pair("vul, large", 0.5f)}) {
            vul.updateSpline(0, "intensity", intensity);
            bench.measure(name, [&] { vul.update(7, 0, 0); });
        }
    }
    {
        kindler::Xor comet(&common);
        bench.prepare(comet, "xor");
        comet.updateSpline(0, "alpha", 1);
        bench.measure("xor", [&] { comet.update(9, 0, 0); });
        kindler::Rund rund(&common);
        bench.prepare(rund, "rund");
        rund.updateSpline(0, "alpha", 1);
        rund.executeTrigger(0, "shot", "");
        bench.measure("rund", [&] { rund.update(9, 0, 0); });
        kindler::Grid grid(&common);
        bench.prepare(grid, "grid");
        grid.updateSpline(0, "alpha", 1);
        bench.measure("grid", [&] { grid.update(9, 0, 0); });
        kindler::WaxOn waxon(&common);
        kindler::Overlay overlay(&common);
        bench.prepare(waxon, "waxon");
        bench.prepare(overlay, "overlay");
        overlay.updateSpline(0, "alpha", 1);
        waxon.executeTrigger(0, "which", "vaddr");
        waxon.update(0, 0, 0);
        waxon.postUpdate(0, 0, 0);
        for (const char* type : {"shader", "solid", "finally"}) {
            overlay.executeTrigger(0, "type", type);
            bench.measure((std::string("overlay, ") + type).c_str(), [&] { overlay.update(5, 0, 0.5f); });
        }
    }
    {
        kindler::Abc abc(&common);
        kindler::SSAO ssao(&common);
        Kasper kasper;
        bench.prepare(abc, "abc");
        bench.prepare(ssao, "ssao");
        kasper.loadScene(&window, "ssao/scene.o3d");
        bench.measure("abc", [&] {
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            abc.update(3, 0, 0);
        });
        bench.measure("ssao", [&] { ssao.update(3, 0, 0); });
        bench.measure("kasper, light", [&] { kasper.renderLight(3, mathbase::Matrix4x4Col()); });
    }
    mathbase::fixRandomStart(std::nullopt);
    return 0;
}
