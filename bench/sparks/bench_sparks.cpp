// 50,000 live particles: one update, and update and draw, compared with one call per vertex over the same
// list, with powf:
//     tests/with_display build/bench/bench/sparks/bench_sparks
// from the root of the source tree. ...NotFilled leaves out the pixels (GL_RASTERIZER_DISCARD). What the
// particles cost a frame of the show: bench_effects, "spark".
#include "am_archivemanager.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "plain_sparks.h"
#include "sparks_engine.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <filesystem>

using namespace zentrak;
using namespace zentrak::sparks;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

constexpr int PARTICLES = 50000;

struct Setup {
    am::ArchiveManager archives;
    display::DisplayGL display{display::WindowMode("bench", 640, 400, false)};
    Engine engine{&display};
    Matrix4x4Col cameraInverse;
    float time = 1;

    // `distance`: from the camera to the centre of the particles. From far away it sees them all, from the
    // centre as many as the effect's camera does.
    explicit Setup(float distance = 4000) {
        archives.addArchive("data");
        display.setArchive(&archives);
        display.open();
        display.setFps(display::DisplayGL::FPS_VARIABLE, 0);
        display.update();
        mathbase::Random random(1);
        for (int i = 0; i < PARTICLES; ++i) { // they outlive the measurement
            Spark spark;
            spark.position = random.unitSphere() * (20 * random.uniform());
            spark.velocity = random.unitSphere() * 1e-4f;
            spark.colour = Vector3f(1, 0.5f, 0.2f);
            spark.size = 0.9f + 0.1f * random.uniform();
            spark.sizedecay = 1e-7f * random.uniform();
            spark.energy = 1 + random.uniform();
            spark.energydecay = 1e-7f * random.uniform();
            spark.intensity = 0.5f;
            spark.noise = random.uniform();
            spark.texture = i % 8;
            spark.mass = float(i % 2) * 1e-3f;
            engine.addSpark(spark);
        }
        shuffle(random);
        engine.update(time);
        const Vector3f eye(0, 0, distance), target(0, 0, distance - 1);
        cameraInverse.setCameraInv(eye, target, 0);
        Matrix4x4Col matrix;
        matrix.setProject(0.7853982f, 1.6f, 0.15f, 10000);
        display.setProject(matrix);
        matrix.setCamera(eye, target, 0);
        display.setCamera(matrix);
    }

    // Shuffles the list as births and deaths do: in no memory order.
    void shuffle(mathbase::Random& random) {
        std::vector<Spark*> all;
        for (Spark* s = engine.live; s; s = s->next)
            all.push_back(s);
        for (size_t i = all.size() - 1; i > 0; --i)
            std::swap(all[i], all[random.draw() % (i + 1)]);
        for (size_t i = 0; i + 1 < all.size(); ++i)
            all[i]->next = all[i + 1];
        all.back()->next = nullptr;
        engine.live = all.front();
    }

    void update() { engine.update(time += 0.001f); }
};

void plainUpdate(Engine& engine, float dt) {
    for (Spark** link = &engine.live; *link;) {
        Spark* s = *link;
        if (s->mass > 0.01f)
            s->velocity.y += -9.81f * dt;
        s->position += s->velocity * dt;
        s->size = s->size * powf(2.7182817f, -s->sizedecay * dt);
        s->energy = s->energy * powf(2.7182817f, -s->energydecay * dt);
        if (s->size < 0.8f || s->energy < 0.1f) {
            *link = s->next;
            s->next = engine.free;
            engine.free = s;
        } else {
            link = &s->next;
        }
    }
}

void plainDraw(Setup& setup) {
    test::drawPlainSparks(setup.engine, setup.cameraInverse, float(setup.display.getTime()) + 1,
                          setup.engine.random);
}

void items(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * PARTICLES);
}

void update(benchmark::State& state) {
    Setup setup;
    for (auto _ : state)
        setup.update();
    items(state);
}
BENCHMARK(update)->Unit(benchmark::kMillisecond);

void updatePlain(benchmark::State& state) {
    Setup setup;
    for (auto _ : state)
        plainUpdate(setup.engine, 0.001f);
    items(state);
}
BENCHMARK(updatePlain)->Unit(benchmark::kMillisecond);

enum Way { BATCH, PLAIN };

void frame(benchmark::State& state, Way way, float distance, bool discard) {
    Setup setup(distance);
    if (discard)
        glEnable(GL_RASTERIZER_DISCARD);
    for (auto _ : state) {
        if (way == PLAIN) {
            plainUpdate(setup.engine, 0.001f);
            plainDraw(setup);
        } else {
            setup.update();
            setup.engine.draw(&setup.cameraInverse);
        }
        glFinish();
    }
    items(state);
}
BENCHMARK_CAPTURE(frame, seenWhole, BATCH, 4000.0f, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, seenWholePlain, PLAIN, 4000.0f, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, seenWholeNotFilled, BATCH, 4000.0f, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, seenWholeNotFilledPlain, PLAIN, 4000.0f, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, fromInsideNotFilled, BATCH, 0.0f, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(frame, fromInsideNotFilledPlain, PLAIN, 0.0f, true)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
