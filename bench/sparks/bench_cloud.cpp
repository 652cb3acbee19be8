// The 10,000 sprites of Cloud, compared with one call per vertex: in a window so small that fill time hides
// nothing, and (...Filled) at 1280 by 800, where it is nearly everything.
#include "am_archivemanager.h"
#include "cloud.h"
#include "dis_display.h"
#include "dis_texture.h"
#include "effect_random.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <benchmark/benchmark.h>

using namespace zentrak;
using kindler::getCloudPath;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

struct Setup {
    am::ArchiveManager archives;
    display::DisplayGL display;
    display::Texture texture{&display};
    kindler::Cloud cloud{nullptr};
    Vector3f path[10000];

    Setup(int width, int height) : display(display::WindowMode("bench", width, height, false)) {
        archives.addArchive("data");
        display.setArchive(&archives);
        display.open();
        display.setFps(display::DisplayGL::FPS_VARIABLE, 0);
        display.update();
        cloud.mDisplay = &display;
        cloud.setup();
        cloud.updateSpline(0, "alpha", 1);
        texture.load("hurry/particle.png", true);
        kindler::EffectRandom random;
        for (int i = 0; i < 10000; ++i)
            path[i] = getCloudPath(float(i) / 100) + random.unitSphere() * 10;
    }
};

void plain(Setup& setup, float progress) {
    display::DisplayGL& display = setup.display;
    display.resetStates();
    kindler::setPerspective(display, 0.7853982f, 0.015f, 1000);
    const Vector3f eye = getCloudPath(100 * (1 - progress)), target = eye + Vector3f(0, 0, 10);
    kindler::setCamera(display, eye, target, 10 * progress);
    const kindler::Billboard board(eye, target, 10 * progress);
    const Vector3f right = board.right, up = board.up;
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    setup.texture.bind();
    glBegin(GL_QUADS);
    for (int i = 9999; i >= 0; --i) {
        const Vector3f& p = setup.path[i];
        const float a = 0.15f * (1 - 0.003f * (p - eye).length());
        if (a <= 0)
            continue;
        glColor4f(1, 0.9f, 0.8f, a);
        glTexCoord2f(0, 0);
        glVertex3fv(p + (up - right) * 7);
        glTexCoord2f(0, 1);
        glVertex3fv(p + (-up - right) * 7);
        glTexCoord2f(1, 1);
        glVertex3fv(p + (-up + right) * 7);
        glTexCoord2f(1, 0);
        glVertex3fv(p + (up + right) * 7);
    }
    glEnd();
    setup.texture.unbind();
    display.resetStates();
}

enum Way { EFFECT, PLAIN };

void frame(benchmark::State& state, Way way, int width, int height, float step) {
    Setup setup(width, height);
    float progress = 0;
    for (auto _ : state) {
        progress = progress > 0.98f ? 0 : progress + step;
        if (way == PLAIN)
            plain(setup, progress);
        else
            setup.cloud.update(0, 0, progress);
        glFinish();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * 10000);
}
BENCHMARK_CAPTURE(frame, cloud, EFFECT, 16, 10, 0.01f)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(frame, cloudPlain, PLAIN, 16, 10, 0.01f)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(frame, cloudFilled, EFFECT, 1280, 800, 0.247f)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(4);
BENCHMARK_CAPTURE(frame, cloudFilledPlain, PLAIN, 1280, 800, 0.247f)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(4);

} // namespace

BENCHMARK_MAIN();
