// The form of the piece: the grid of bars and beats, and the sections. The picture is cut to it.
#pragma once

namespace zentrak::music {

// 126 beats a minute, four beats a bar: a whole number of frames for everything down to a sixteenth.
constexpr int RATE = 44100; // frames a second
constexpr int STEP = 5250;  // frames of a sixteenth
constexpr int STEPS_PER_BAR = 16;
constexpr int BEAT = 4 * STEP;
constexpr int BAR = STEPS_PER_BAR * STEP;

struct Section {
    const char* name;
    int bar, bars; // the first one, counted from 0, and how many
};

constexpr Section SECTIONS[] = {
    {"intro", 0, 8},          {"build", 8, 8}, {"main theme", 16, 16}, {"break", 32, 12},
    {"second theme", 44, 16}, {"rise", 60, 4}, {"finale", 64, 16},     {"outro", 80, 12},
};
constexpr int BARS = 92;

// From here on everything is a whole tone higher: the second half of the finale, the peak of the piece.
constexpr int PEAK_BAR = 72;

// When a bar or beat starts, in seconds. Beats are counted from 0 through the whole piece.
constexpr double barTime(int bar) {
    return double(bar) * BAR / RATE;
}
constexpr double beatTime(int beat) {
    return double(beat) * BEAT / RATE;
}

} // namespace zentrak::music
