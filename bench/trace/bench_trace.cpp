// Rays against three spheres: converting only the nearest hit, compared with converting every hit.

#include "mb_random.h"
#include "trc_primitive.h"

#include <benchmark/benchmark.h>

using namespace zentrak;
using mathbase::Vector3f;

namespace {

struct Setup {
    trace::PrimSphere spheres[3] = {{Vector3f(-3, 2.1f, 0), 2.3f, nullptr},
                                    {Vector3f(3, 2.1f, 0), 2.3f, nullptr},
                                    {Vector3f(0, -140, 5), 140, nullptr}};
    trace::PrimScene scene;
    std::vector<Vector3f> directions;
    const Vector3f light{5, 8, 0};

    Setup() {
        for (trace::PrimSphere& sphere : spheres)
            scene.instances.push_back({&sphere});
        mathbase::Random random(1);
        for (int i = 0; i < 4096; ++i)
            directions.push_back(random.unitSphere());
    }
};

void nearestHit(benchmark::State& state) {
    Setup setup;
    size_t n = 0;
    for (auto _ : state) {
        trace::Intersection i;
        benchmark::DoNotOptimize(
            setup.scene.trace(i, setup.light, setup.directions[n++ & 4095], 0.0001f, 1e20f));
        benchmark::DoNotOptimize(i);
    }
    state.SetItemsProcessed(int64_t(state.iterations()));
}
BENCHMARK(nearestHit);

void everyHitConverted(benchmark::State& state) {
    Setup setup;
    size_t n = 0;
    for (auto _ : state) {
        const Vector3f direction = setup.directions[n++ & 4095];
        trace::Intersection best;
        best.t = 1e20f;
        for (const trace::PrimScene::Instance& instance : setup.scene.instances) {
            trace::PreIntersection pi;
            trace::Intersection i;
            if (instance.primitive->trace(pi, setup.light, direction, 0.0001f, 1e20f)) {
                instance.primitive->convertIntersection(pi, i, setup.light, direction);
                if (i.t <= best.t)
                    best = i;
            }
        }
        benchmark::DoNotOptimize(best);
    }
    state.SetItemsProcessed(int64_t(state.iterations()));
}
BENCHMARK(everyHitConverted);

} // namespace

BENCHMARK_MAIN();
