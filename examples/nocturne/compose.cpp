// Makes the music: compose FILE.ogg. 21 bars at 126 beats a minute, 40 seconds, in B minor: a slow beginning
// on bells, the city from bar 4, a break for the cathedral at bar 12, the storm from bar 17, and the last
// chord.

#include "music/effects.h"
#include "music/instruments.h"
#include "music/vorbis.h"

#include <cstdio>
#include <exception>

using namespace zentrak::music;

namespace {

constexpr int BARS = 21;
constexpr int BEAT = BAR / 4;

struct Harmony {
    int bass;
    int voices[4];
};

const Harmony chords[4] = {
    {35, {59, 62, 66, 73}}, // B minor, with the ninth
    {31, {59, 62, 67, 71}}, // G
    {38, {57, 62, 66, 69}}, // D
    {33, {57, 61, 64, 71}}, // A, with the ninth
};

struct Tracks {
    Track drums{BARS * BAR}, low{BARS * BAR}, chords{BARS * BAR}, melody{BARS * BAR};
    std::vector<int> kicks;
};

void playBeat(Tracks& tracks, int bar) {
    const int start = bar * BAR;
    const bool storm = bar >= 17;
    for (int beat = 0; beat < 4; ++beat) {
        kick(tracks.drums, start + beat * BEAT, 0.9f);
        tracks.kicks.push_back(start + beat * BEAT);
        hat(tracks.drums, start + beat * BEAT + BEAT / 2, 0.5f, true);
        if (bar >= 8 && beat % 2 == 1)
            clap(tracks.drums, start + beat * BEAT, 0.6f);
    }
    for (int step = 0; step < STEPS_PER_BAR; ++step) {
        if (step % 4 != 0)
            bass(tracks.low, start + step * STEP, STEP * 3 / 4,
                 chords[bar % 4].bass + (step % 4 == 3 ? 12 : 0), 0.7f, storm ? 0.8f : 0.4f);
        if (bar >= 8 && step % 2 == 1)
            hat(tracks.drums, start + step * STEP, 0.25f, false);
    }
}

void playBar(Tracks& tracks, int bar) {
    const int start = bar * BAR;
    const Harmony& chord = chords[bar % 4];
    const bool beat = (bar >= 4 && bar < 12) || (bar >= 15 && bar < 20);
    const bool last = bar == 20;
    for (const int voice : chord.voices) {
        pad(tracks.chords, start, BAR, voice, 0.28f, beat ? 0.6f : 0.3f);
        if (bar >= 8 && beat)
            for (int i = 0; i < 4; ++i)
                saws(tracks.chords, start + i * BEAT, BEAT - 400, voice, 0.20f, 0.6f);
    }
    if (beat)
        playBeat(tracks, bar);
    else
        bass(tracks.low, start, BAR, chord.bass, 0.6f, 0.2f);
    const int order[8] = {3, 1, 2, 0, 3, 2, 1, 2};
    for (int i = 0; i < 8 && !last; ++i) {
        if (!beat && i % 2 == 1)
            continue;
        const int pitch = chord.voices[order[i]] + 12;
        if (bar < 4 || (bar >= 12 && bar < 15))
            bell(tracks.melody, start + i * 2 * STEP, 4 * STEP, pitch, 0.34f);
        else
            pluck(tracks.melody, start + i * 2 * STEP, 2 * STEP, pitch, 0.6f, 0.6f, i % 2 ? 0.5f : -0.5f);
    }
    if (bar == 4 || bar == 8 || bar == 12 || bar == 15 || bar == 17 || last) {
        crash(tracks.drums, start, 0.7f);
        boom(tracks.drums, start, 0.7f);
    }
}

Track perform() {
    Tracks tracks;
    for (int bar = 0; bar < BARS; ++bar)
        playBar(tracks, bar);
    for (const int bar : {4, 8, 15})
        riser(tracks.chords, (bar - 2) * BAR, 2 * BAR, 0.4f);
    duck(tracks.low, tracks.kicks, 0.7f);
    duck(tracks.chords, tracks.kicks, 0.6f);
    highPass(tracks.chords, 170);

    Track out(BARS * BAR), room(BARS * BAR), master(BARS * BAR);
    mix(room, tracks.melody, 0.5f);
    mix(room, tracks.chords, 0.3f);
    mix(out, tracks.drums, 0.42f);
    mix(out, tracks.low, 0.28f);
    mix(out, tracks.chords, 0.4f);
    mix(out, tracks.melody, 0.5f);
    echo(out, tracks.melody, 3 * STEP, 0.45f, 0.3f);
    reverb(out, room, 2.8f, 0.2f);
    mix(master, out, 0.7f);
    saturate(master, 0.6f);
    highPass(master, 28);
    limit(master, 0.8f);
    fadeEnds(master, 441, BAR);
    return master;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: compose FILE.ogg\n", stderr);
        return 2;
    }
    try {
        writeVorbis(argv[1], perform(), 0.4f, "nocturne");
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "compose: %s\n", failure.what());
        return 1;
    }
    return 0;
}
