// The update of each effect that draws many shapes beside the same effect drawn one call per vertex, the two
// ways in turn in one run, from the same numbers and with the same picture (which is checked):
//     tests/with_display build/bench/bench/effects/bench_effects [small] [ROUNDS [WHICH]]
// from the root of the source tree. With "small" the window is 16 by 10 pixels, so that filling, which costs
// both ways the same, hides nothing; WHICH is a part of the names of the lines wanted. Milliseconds of a
// frame by each way and how many times faster the effect is: processor time of all threads up to the finished
// picture; processor time of the update alone, before the driver's other threads fill pixels; and processor
// time with the pixels thrown away (GL_RASTERIZER_DISCARD), which leaves what it takes to get the shapes to
// the rasteriser. "own" is the effect's update with the draw calls themselves left out: what is ours of a
// frame. Medians.
#include "abc.h"
#include "am_archivemanager.h"
#include "am_image.h"
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
#include "plain.h"
#include "rund.h"
#include "ssao.h"
#include "tunnel.h"
#include "vul.h"
#include "waxon.h"
#include "xor.h"
#include "ztk_memory.h"
#include "ztk_system.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <functional>
#include <string>
#include <vector>

using namespace zentrak;
namespace plain = zentrak::test::plain;
using kindler::Effect;

namespace {

bool muted = false; // draw calls do nothing

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// In front of OpenGL's own.
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

double now(clockid_t clock) {
    timespec t;
    clock_gettime(clock, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

struct Cost {
    std::vector<double> wall, cpu, update;
    static double median(std::vector<double> v) {
        if (v.empty())
            return 0;
        std::nth_element(v.begin(), v.begin() + long(v.size() / 2), v.end());
        return v[v.size() / 2];
    }
};

class Bench {
public:
    int rounds = 15;
    const char* wanted = "";
    display::DisplayGL window;

    explicit Bench(bool small)
        : window(small ? display::WindowMode("bench", 16, 10, false)
                       : display::WindowMode("bench", 1280, 800, false)) {
        mArchives.addArchive("data");
        mArchives.addArchive("tests/data");
        window.setArchive(&mArchives);
        window.open();
        window.setFps(display::DisplayGL::FPS_VARIABLE, 0);
        window.update();
    }

    void prepare(Effect& effect, const char* name) {
        effect.mDisplay = &window;
        effect.mName = name;
        effect.setup();
    }
    bool wants(const char* name) const { return std::strstr(name, wanted) != nullptr; }

    // `draw` may move on in time: it is called the same number of times for both.
    void compare(const char* name, const std::function<void()>& effect,
                 const std::function<void()>& plainly) {
        if (!wants(name))
            return;
        const std::vector<uint8_t> drawn = picture(effect), same = picture(plainly);
        double apart = 0;
        size_t seen = 0;
        for (size_t i = 0; i < drawn.size(); ++i) {
            apart += std::abs(int(drawn[i]) - int(same[i]));
            seen += drawn[i] != drawn[i % 4];
        }
        Cost a, b, sentA, sentB, own;
        for (int i = 0; i < rounds; ++i) {
            measure(a, effect);
            measure(b, plainly);
        }
        glEnable(GL_RASTERIZER_DISCARD);
        for (int i = 0; i < rounds; ++i) {
            measure(sentA, effect);
            measure(sentB, plainly);
        }
        glDisable(GL_RASTERIZER_DISCARD);
        measureOwn(own, effect);
        const double cpu[2] = {Cost::median(b.cpu), Cost::median(a.cpu)};
        const double update[2] = {Cost::median(b.update), Cost::median(a.update)};
        const double sent[2] = {Cost::median(sentB.cpu), Cost::median(sentA.cpu)};
        std::printf("%-26s %7.1f %6.1f %5.1fx %7.2f %6.2f %5.1fx %7.2f %6.2f %5.1fx %8.3f   %.3f%s\n", name,
                    cpu[0], cpu[1], cpu[0] / cpu[1], update[0], update[1], update[0] / update[1], sent[0],
                    sent[1], sent[0] / sent[1], Cost::median(own.cpu), apart / double(drawn.size()),
                    seen > 0 ? "" : " (nothing is seen)");
        std::fflush(stdout);
    }

    // Without a plain way beside it: a whole frame, and what of it is ours.
    void alone(const char* name, const std::function<void()>& effect) {
        if (!wants(name))
            return;
        Cost whole, own;
        for (int i = 0; i < rounds; ++i)
            measure(whole, effect);
        measureOwn(own, effect);
        std::printf("%-26s %7.1f by the clock %8.1f processor time %8.3f own\n", name,
                    Cost::median(whole.wall), Cost::median(whole.cpu), Cost::median(own.cpu));
        std::fflush(stdout);
    }

private:
    void clear() {
        window.resetStates();
        glDisable(GL_CULL_FACE);
        glClearColor(0.1f, 0.12f, 0.15f, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    void measure(Cost& cost, const std::function<void()>& draw) {
        clear();
        glFinish();
        const double wall = now(CLOCK_MONOTONIC), cpu = now(CLOCK_PROCESS_CPUTIME_ID);
        const double thread = now(CLOCK_THREAD_CPUTIME_ID);
        draw();
        const double update = now(CLOCK_THREAD_CPUTIME_ID);
        glFinish();
        cost.wall.push_back(now(CLOCK_MONOTONIC) - wall);
        cost.cpu.push_back(now(CLOCK_PROCESS_CPUTIME_ID) - cpu);
        cost.update.push_back(update - thread);
    }
    void measureOwn(Cost& own, const std::function<void()>& draw) {
        const auto drawRanges = __glewMultiDrawArrays;
        __glewMultiDrawArrays = [](GLenum, const GLint*, const GLsizei*, GLsizei) {};
        for (int i = 0; i < rounds; ++i) {
            clear();
            glFinish();
            muted = true;
            const double cpu = now(CLOCK_THREAD_CPUTIME_ID);
            draw();
            own.cpu.push_back(now(CLOCK_THREAD_CPUTIME_ID) - cpu);
            muted = false;
        }
        __glewMultiDrawArrays = drawRanges;
    }
    std::vector<uint8_t> picture(const std::function<void()>& draw) {
        clear();
        draw();
        const int width = window.mWindowMode.width, height = window.mWindowMode.height;
        std::vector<uint8_t> bytes(size_t(width) * size_t(height) * 4);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
        return bytes;
    }

    am::ArchiveManager mArchives;
};

} // namespace

int main(int count, char** arguments) {
    keepFreedMemory(); // as the program does
    mathbase::fixRandomStart(1);
    const bool small = count > 1 && std::strcmp(arguments[1], "small") == 0;
    if (small)
        --count, ++arguments;
    Bench bench(small);
    if (count > 1)
        bench.rounds = std::max(1, std::atoi(arguments[1]));
    if (count > 2)
        bench.wanted = arguments[2];
    display::DisplayGL& window = bench.window;
    kindler::Common common;

    std::printf("%s, %d x %d, median of %d rounds, milliseconds; the last column is how far apart the two "
                "pictures are, of 255\n",
                glGetString(GL_RENDERER), window.mWindowMode.width, window.mWindowMode.height, bench.rounds);
    std::printf("%-26s %21s %21s %21s\n", "", "whole frame", "update", "without pixels");
    std::printf("%-26s %7s %6s %6s %7s %6s %6s %7s %6s %6s %8s\n", "", "plain", "effect", "", "plain",
                "effect", "", "plain", "effect", "", "own");

    {
        kindler::Greet greet(&common);
        plain::Greet plainGreet;
        bench.prepare(greet, "greet");
        plainGreet.setup(window);
        const auto both = [&](const char* name, int bands) {
            for (int i = 0; i < bands; ++i) {
                greet.executeTrigger(0, "next", "");
                plainGreet.trigger();
            }
            bench.compare(
                name, [&] { greet.update(0, 0, 0); }, [&] { plainGreet.update(window, 0); });
        };
        both("greet, first band", 1);
        both("greet, two bands", 1);
        both("greet, third, near", 1);
        both("greet, twelve bands, near", 9);
        greet.update(0, 4, 0);
        plainGreet.update(window, 4);
        both("greet, mostly decayed", 0);
    }
    {
        kindler::Kub kub(&common);
        plain::Kub plainKub(1);
        srand(1);
        const double start = now(CLOCK_PROCESS_CPUTIME_ID);
        bench.prepare(kub, "kub");
        const double ready = now(CLOCK_PROCESS_CPUTIME_ID);
        srand(1);
        plainKub.setup(window);
        std::printf("%-26s %7.1f (a search over all cubes: %.1f)\n", "kub, setup", ready - start,
                    now(CLOCK_PROCESS_CPUTIME_ID) - ready);
        const auto both = [&](const char* name, float time, float delta) {
            kub.update(time, delta, 0.5f);
            plainKub.step(time, delta);
            bench.compare(
                name, [&] { kub.update(time, 0, 0.5f); },
                [&] {
                    plainKub.step(time, 0);
                    plainKub.draw(window, time, 0.5f);
                });
        };
        both("kub, scattered", 5, 0);
        both("kub, rolling", 15, 5);
        both("kub, whole", 45, 40);
        kub.executeTrigger(45, "expand", "");
        plainKub.rexpandOn = true, plainKub.rexpand = 45;
        both("kub, expanded", 48, 0);
    }
    {
        kindler::Tunnel tunnel(&common);
        plain::Tunnel plainTunnel(1);
        bench.prepare(tunnel, "tunnel");
        plainTunnel.setup(window);
        for (const auto& [name, time] : {std::pair("tunnel, 2", 2.0f), std::pair("tunnel, 14", 14.0f),
                                         std::pair("tunnel, 24", 24.0f), std::pair("tunnel, 29", 29.0f)})
            bench.compare(
                name, [&, t = time] { tunnel.update(t, 0.001f, 0); },
                [&, t = time] { plainTunnel.update(window, t, 0.001f); });
    }
    {
        kindler::Cubejox cubejox(&common);
        plain::Cubejox plainCubejox(1);
        bench.prepare(cubejox, "cubejox");
        plainCubejox.alpha = 1;
        cubejox.updateSpline(0, "alpha", 1);
        for (const auto& [name, zoom] :
             {std::pair("cubejox, near", 0.0f), std::pair("cubejox, zoom 0.1", 0.1f),
              std::pair("cubejox, zoom 0.2", 0.2f)}) {
            plainCubejox.zoom = zoom;
            cubejox.updateSpline(0, "zoom", zoom);
            bench.compare(
                name, [&] { cubejox.update(1, 0.001f, 0); }, [&] { plainCubejox.update(window, 1, 0.001f); });
        }
    }
    {
        kindler::Face face(&common);
        plain::Face plainFace;
        bench.prepare(face, "face");
        plainFace.setup(window);
        face.updateSpline(0, "alpha", 0.4f);
        plainFace.alpha = 0.4f;
        bench.compare(
            "face, 0", [&] { face.update(0, 0, 0); }, [&] { plainFace.update(window, 0); });
    }
    {
        kindler::Credits credits(&common, "moonpulse");
        bench.prepare(credits, "credits_moonpulse");
        const am::Image image = window.mArchiveManager->loadImage("credits/credits_moonpulse.png", -1, false);
        plain::Credits plainCredits(1, *image);
        for (const auto& [name, zoom] :
             {std::pair("credits, arriving", 0.3f), std::pair("credits, whole", 1.0f)}) {
            credits.updateSpline(0, "zoom", zoom);
            plainCredits.zoom = sinf(zoom * 3.14159265f * 0.5f);
            bench.compare(
                name, [&] { credits.update(0, 0, 0); }, [&] { plainCredits.update(window, 0); });
        }
    }
    {
        kindler::Grand grand(&common);
        plain::Grand plainGrand(1);
        bench.prepare(grand, "grand");
        plainGrand.setup(window);
        plainGrand.alpha = 1;
        grand.updateSpline(0, "alpha", 1);
        for (const auto& [name, progress] :
             {std::pair("grand, before", 0.2f), std::pair("grand, sweep", 0.5f)})
            bench.compare(
                name, [&, p = progress] { grand.update(0, 0, p); },
                [&, p = progress] { plainGrand.update(window, p); });
    }
    {
        kindler::Vul vul(&common);
        plain::Vul plainVul;
        bench.prepare(vul, "vul");
        plainVul.setup(window);
        for (const auto& [name, intensity] : {std::pair("vul, small", 1.6f), std::pair("vul, large", 0.5f)}) {
            vul.updateSpline(0, "intensity", intensity);
            plainVul.intensity = intensity;
            bench.compare(
                name, [&] { vul.update(7, 0, 0); }, [&] { plainVul.update(window, 7); });
        }
    }
    {
        kindler::Xor comet(&common);
        plain::Xor plainComet(1);
        bench.prepare(comet, "xor");
        plainComet.alpha = 1;
        comet.updateSpline(0, "alpha", 1);
        bench.compare(
            "xor", [&] { comet.update(9, 0, 0); }, [&] { plainComet.update(window, 9, 0); });
        kindler::Rund rund(&common);
        plain::Rund plainRund(1);
        bench.prepare(rund, "rund");
        plainRund.setup(window);
        plainRund.alpha = 1;
        rund.updateSpline(0, "alpha", 1);
        rund.executeTrigger(0, "shot", "");
        plainRund.arne = 0.5f;
        bench.compare(
            "rund", [&] { rund.update(9, 0, 0); }, [&] { plainRund.update(window, 9, 0); });
        kindler::Grid grid(&common);
        bench.prepare(grid, "grid");
        grid.updateSpline(0, "alpha", 1);
        bench.alone("grid", [&] { grid.update(9, 0, 0); });
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
            bench.alone((std::string("overlay, ") + type).c_str(), [&] { overlay.update(5, 0, 0.5f); });
        }
    }
    { // the scenes, which nothing draws in another way
        kindler::Abc abc(&common);
        kindler::SSAO ssao(&common);
        Kasper kasper;
        bench.prepare(abc, "abc");
        bench.prepare(ssao, "ssao");
        kasper.loadScene(&window, "ssao/scene.o3d");
        bench.alone("abc", [&] {
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
            abc.update(3, 0, 0);
        });
        bench.alone("ssao", [&] { ssao.update(3, 0, 0); });
        bench.alone("kasper, light", [&] { kasper.renderLight(3, mathbase::Matrix4x4Col()); });
    }
    mathbase::fixRandomStart(std::nullopt);
    return 0;
}
