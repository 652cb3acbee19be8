// Loading a script of one spline with many keys, by the order of their times. The time must grow hardly
// faster than the number of keys: compare the two sizes of a row.
#include "script_loadxml.h"

#include <benchmark/benchmark.h>
#include <string>

using namespace zentrak::script;

namespace {

template <typename Time>
void load(benchmark::State& state, const char* type, Time time) {
    const int count = int(state.range(0));
    std::string text = "<script><effect name=\"e\" end=\"1\"><spline type=\"" + std::string(type) + "\">";
    for (int i = 0; i < count; ++i)
        text +=
            "<key time=\"" + std::to_string(time(i, count)) + "\" value=\"" + std::to_string(i % 7) + "\"/>";
    text += "</spline></effect></script>";
    for (auto _ : state) {
        ScriptEngine engine;
        LoadXML().loadMem(text.data(), long(text.size()), engine);
        benchmark::DoNotOptimize(engine.mScriptLength);
    }
}

void SmoothRising(benchmark::State& state) {
    load(state, "smooth", [](int i, int) { return i; });
}
void LinearFalling(benchmark::State& state) {
    load(state, "linear", [](int i, int count) { return count - i; });
}
void SmoothShuffled(benchmark::State& state) {
    load(state, "smooth", [](int i, int count) { return int(long(i) * 7919 % count); });
}

BENCHMARK(SmoothRising)->Arg(30000)->Arg(80000)->Unit(benchmark::kMillisecond);
BENCHMARK(LinearFalling)->Arg(30000)->Arg(300000)->Unit(benchmark::kMillisecond);
BENCHMARK(SmoothShuffled)->Arg(30000)->Arg(300000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
