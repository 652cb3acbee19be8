// What a frame of the show costs, by the scenes of data/script.xml:
//     build/bench/bench/app/bench_show [WIDTH HEIGHT [RATE [FROM TO]]]
// plays it at exact times, RATE frames to each second of the show (5), on a virtual display if there is no
// real one, up to the finished pixels. One line per scene, which begins where the script's `clear` or `waxon`
// changes: its start; the mean by the clock and by processor time over all threads, which is steadier on a
// busy machine; the slowest frame; the four seconds that take the most processor time, which begin in the
// scene and may end in the next; and the effects that draw. At the end the peak memory.
// Targets on software OpenGL with two cores: no four seconds above 33 ms at 640x400, 66 ms at 1280x800.
#include "command/virtual_display.h"
#include "effect_names.h"
#include "film/player.h"
#include "mb_random.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <sys/resource.h>
#include <vector>

using namespace zentrak;

namespace {

constexpr double WINDOW = 4; // seconds

struct Frame {
    double time, wall, processor; // seconds, milliseconds, milliseconds
};

// The beginnings of the scenes, and the end of the last.
std::vector<float> scenesOf(const script::ScriptEngine& script) {
    std::set<float> starts = {script.mScriptLength};
    for (const script::Effect* effect : script.mEffects)
        if (effect->mName == "clear" || effect->mName == "waxon")
            starts.insert(effect->mStart);
    return {starts.begin(), starts.end()};
}

void addNames(const std::vector<script::Effect*>& effects, float from, float to,
              std::set<std::string>& names) {
    for (const script::Effect* effect : effects) {
        if (effect->mStart >= to || effect->mEnd <= from)
            continue;
        names.insert(effect->mName.rfind("credits_", 0) == 0 ? "credits" : effect->mName);
        addNames(effect->mChildren, from - effect->mStart, to - effect->mStart, names);
    }
}

Frame playFrame(film::Player& player, double time) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const clock_t before = clock();
    player.playFrame(true); // reads the pixels, and so waits for them
    const double processor = 1000.0 * double(clock() - before) / CLOCKS_PER_SEC;
    return {time, std::chrono::duration<double, std::milli>(Clock::now() - start).count(), processor};
}

struct Cost {
    double wall = 0, processor = 0, slowest = 0;
};

Cost costOf(const std::vector<Frame>& frames, double from, double to) {
    Cost cost;
    int count = 0;
    for (const Frame& frame : frames) {
        if (frame.time < from || frame.time >= to)
            continue;
        cost.wall += frame.wall;
        cost.processor += frame.processor;
        cost.slowest = std::max(cost.slowest, frame.wall);
        ++count;
    }
    cost.wall /= std::max(1, count);
    cost.processor /= std::max(1, count);
    return cost;
}

struct Window {
    double start = 0;
    Cost cost;
};

// The four seconds that begin in from to `to` and take the most processor time.
Window worstWindow(const std::vector<Frame>& frames, double from, double to) {
    Window worst;
    for (const Frame& frame : frames) {
        if (frame.time < from || frame.time >= to || frame.time + WINDOW > frames.back().time)
            continue;
        const Cost cost = costOf(frames, frame.time, frame.time + WINDOW);
        if (cost.processor > worst.cost.processor)
            worst = {frame.time, cost};
    }
    return worst;
}

void reportScene(const script::ScriptEngine& script, const std::vector<Frame>& frames, float from, float to) {
    const Cost cost = costOf(frames, double(from), double(to));
    if (cost.wall == 0)
        return;
    fprintf(stderr, "%8.3f %6.1f (%6.1f) %6.1f ", double(from), cost.wall, cost.processor, cost.slowest);
    const Window worst = worstWindow(frames, double(from), double(to));
    if (worst.cost.wall > 0)
        fprintf(stderr, "%8.1f: %5.1f (%6.1f) ", worst.start, worst.cost.wall, worst.cost.processor);
    else
        fprintf(stderr, "%25s", "");
    std::set<std::string> names;
    addNames(script.mEffects, from, to, names);
    for (const std::string& name : names)
        fprintf(stderr, " %s", name.c_str());
    fputc('\n', stderr);
}

} // namespace

int main(int argc, char** argv) {
    const auto number = [&](int i, double otherwise) { return argc > i ? atof(argv[i]) : otherwise; };
    const int width = int(number(1, 640)), height = int(number(2, 400)), rate = int(number(3, 5));
    std::filesystem::current_path(ZENTRAK_DATA_DIR);
    std::optional<command::VirtualDisplay> screen; // outlives the window
    if (command::VirtualDisplay::isNeeded())
        screen.emplace(width, height);
    mathbase::fixRandomStart(1);
    film::Player player(rate);
    player.setup();
    kindler::Common common;
    kindler::EffectSet effects(common);
    effects.forEach([&](const char* name, kindler::Effect& effect) { player.addCallback(name, effect); });
    player.open(width, height);

    const double from = number(4, 0), to = std::min(number(5, 1e6), double(player.mScript.mScriptLength));
    std::vector<Frame> frames;
    while (double(player.getNextFrame()) / rate < to) {
        const double time = double(player.getNextFrame()) / rate;
        if (time < from)
            player.playFrame(false);
        else
            frames.push_back(playFrame(player, time));
    }

    fprintf(stderr, "%dx%d, milliseconds a frame: start, mean (by processor time), slowest, worst 4 s\n",
            width, height);
    const std::vector<float> scenes = scenesOf(player.mScript);
    for (size_t i = 0; i + 1 < scenes.size(); ++i)
        reportScene(player.mScript, frames, scenes[i], scenes[i + 1]);
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    fprintf(stderr, "peak memory: %.1f MB\n", double(usage.ru_maxrss) / 1024);
}
