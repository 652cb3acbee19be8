// One frame of the timeline: 10,000 top-level spans, a tenth of them active with five splines of ten keys
// each. Compared with a naive engine that searches a list for every span's callback, active or not, and walks
// every spline from its first key.
#include "script_engine.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

using namespace zentrak::script;

namespace {

constexpr int SPANS = 10000;
constexpr int NAMES = 24;
constexpr int SPLINES = 5;
constexpr int KEYS = 10;
constexpr float LENGTH = 200.0f;

// Adds up its arguments, so that nothing can be optimised away.
struct Sum : Callback {
    float sum = 0;
    long updates = 0;

    void updateSpline(float, const std::string& name, float value) override {
        sum += name == "alpha" ? value : -value;
    }
    void update(float, float, float progress) override {
        sum += progress;
        ++updates;
    }
};

struct Show {
    ScriptEngine engine;
    Sum callbacks[NAMES];

    Show() {
        for (int i = 0; i < NAMES; ++i)
            engine.addCallback(nameOf(i), &callbacks[i]);
        for (int i = 0; i < SPANS; ++i) {
            auto* effect = new Effect;
            effect->mName = nameOf(i % NAMES);
            effect->mEnabled = true;
            effect->mStart = float(i % 10) * LENGTH / 10; // a tenth of them at any time
            effect->mEnd = effect->mStart + LENGTH / 10;
            for (int s = 0; s < SPLINES; ++s) {
                auto* spline = new Spline;
                spline->mName = s == 0 ? "alpha" : "spline " + std::to_string(s);
                spline->mMode = s % 3;
                for (int k = 0; k < KEYS; ++k)
                    spline->addKey(
                        {float(k) * LENGTH / 10 / (KEYS - 1), float((i + s * 7 + k * 13) % 11), 0, 0});
                effect->mSplines.push_back(spline);
            }
            engine.mEffects.push_back(effect);
        }
        engine.init();
    }
    static std::string nameOf(int i) { return "effect number " + std::to_string(i); }
    long updates() const {
        long sum = 0;
        for (const Sum& callback : callbacks)
            sum += callback.updates;
        return sum;
    }
};

float evaluatePlainly(const Spline& spline, float time) {
    const auto& keys = spline.mKeys;
    if (time < keys.front().time)
        return keys.front().value;
    for (size_t i = 0; i + 1 < keys.size(); ++i) {
        if (time >= keys[i].time && time < keys[i + 1].time) {
            const auto& a = keys[i];
            const auto& b = keys[i + 1];
            const float u = (time - a.time) / (b.time - a.time);
            const float d = b.value - a.value;
            if (spline.mMode == 0)
                return a.value;
            if (spline.mMode == 1)
                return (1 - u) * a.value + u * b.value;
            return a.value + a.tangentOut * u + (3 * d - 2 * a.tangentOut + b.tangentIn) * u * u +
                   (a.tangentOut - 2 * d - b.tangentIn) * u * u * u;
        }
    }
    return keys.back().value;
}

void updatePlainly(Show& show, float time, float delta) {
    std::vector<std::pair<std::string, Callback*>> callbacks(show.engine.mCallbacks.begin(),
                                                             show.engine.mCallbacks.end());
    for (const Effect* effect : show.engine.mEffects) {
        Callback* callback = nullptr;
        for (const auto& [name, candidate] : callbacks)
            if (name == effect->mName)
                callback = candidate;
        if (!callback || !effect->isActive(time))
            continue;
        const float local = time - effect->mStart;
        for (const Spline* spline : effect->mSplines)
            callback->updateSpline(local, spline->mName, evaluatePlainly(*spline, local));
        callback->update(local, delta, local / (effect->mEnd - effect->mStart));
        callback->postUpdate(local, delta, local / (effect->mEnd - effect->mStart));
    }
}

// Plays the show repeatedly in frames of a sixtieth of a second.
template <typename Update>
void play(benchmark::State& state, Update update) {
    Show show;
    float time = 0;
    for (auto _ : state) {
        update(show, time);
        time = time < LENGTH - 1 ? time + 1.0f / 60.0f : 0;
    }
    state.counters["spans a frame"] = double(show.updates()) / double(state.iterations());
}

void Engine(benchmark::State& state) {
    play(state, [](Show& show, float time) { show.engine.update(time); });
}
void Plain(benchmark::State& state) {
    play(state, [](Show& show, float time) { updatePlainly(show, time, 1.0f / 60.0f); });
}

BENCHMARK(Engine)->Unit(benchmark::kMicrosecond);
BENCHMARK(Plain)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
