// What a frame of the show costs, by the scenes of data/script.xml:
//     build/bench/bench/app/bench_show [WIDTH HEIGHT [RATE [FROM TO]]]
// plays it at exact times, RATE frames to each second of the show (5), on a virtual display if there is no
// real one, up to the finished pixels. One line per scene, which begins where the script's `clear` or `waxon`
// changes: its start, the mean and the slowest frame by the clock, the mean by processor time over all
// threads (steadier on a busy machine), and the effects that draw. At the end the slowest four seconds.
// Targets on software OpenGL with two cores: 33 ms at 640x400, 66 ms at 1280x800.
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
#include <vector>

using namespace zentrak;

namespace {

constexpr float WINDOW = 4; // seconds

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

    const std::vector<float> scenes = scenesOf(player.mScript);
    fprintf(stderr, "%dx%d, milliseconds a frame: mean (by processor time), slowest\n", width, height);
    for (size_t i = 0; i + 1 < scenes.size(); ++i) {
        const Cost cost = costOf(frames, scenes[i], scenes[i + 1]);
        if (cost.wall == 0)
            continue;
        std::set<std::string> names;
        addNames(player.mScript.mEffects, scenes[i], scenes[i + 1], names);
        fprintf(stderr, "%8.3f %6.1f (%6.1f) %6.1f ", double(scenes[i]), cost.wall, cost.processor,
                cost.slowest);
        for (const std::string& name : names)
            fprintf(stderr, " %s", name.c_str());
        fputc('\n', stderr);
    }
    Cost slowest;
    double when = 0;
    for (const Frame& frame : frames) {
        const Cost cost = costOf(frames, frame.time, frame.time + double(WINDOW));
        if (frame.time + double(WINDOW) <= to && cost.wall > slowest.wall) {
            slowest = cost;
            when = frame.time;
        }
    }
    fprintf(stderr, "the slowest four seconds, from %.1f: %.1f (%.1f)\n", when, slowest.wall,
            slowest.processor);
}
