// Makes the music of the show: make_music FILE.ogg [BARS]
// The same bytes each time. With a number of bars it stops there, and fades out.
#include "command/command.h"
#include "music/effects.h"
#include "music/instruments.h"
#include "music/score.h"
#include "music/vorbis.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

using namespace zentrak::music;

namespace {

// Tracks by their processing: the drums stay as they are, the others are ducked under the kick.
struct Tracks {
    explicit Tracks(int frames)
        : drums(frames),
          cymbals(frames),
          low(frames),
          chords(frames),
          plucks(frames),
          melody(frames),
          noise(frames) {}
    Track drums, cymbals, low, chords, plucks, melody, noise;
};

int frameOf(int bar, int step = 0) {
    return bar * BAR + step * STEP;
}

// Loudness of a stroke from its digit; a point is a rest.
float strength(char stroke) {
    return stroke == '.' ? 0 : float(stroke - '0') / 9;
}

// Loudness or brightness of a layer from its digit in a chart: 0.1 to 1.
float chartLevel(char digit) {
    return digit == '.' ? 0 : float(digit - '0' + 1) / 10;
}

std::vector<int> playDrums(Tracks& tracks, int bars) {
    std::vector<int> kicks;
    for (int bar = 0; bar < bars; ++bar) {
        const char* kickStrokes = strokes(kickRhythms(), charts().kick[size_t(bar)]);
        const char* clapStrokes = strokes(clapRhythms(), charts().clap[size_t(bar)]);
        const char* hatStrokes = strokes(hatRhythms(), charts().hat[size_t(bar)]);
        const char* openStrokes = strokes(openHatRhythms(), charts().hat[size_t(bar)]);
        bool heart = charts().kick[size_t(bar)] == 'h';
        for (int step = 0; step < STEPS_PER_BAR; ++step) {
            int frame = frameOf(bar, step);
            if (float level = strength(kickStrokes[step])) {
                kick(tracks.drums, frame, heart ? 0.6f * level : level);
                kicks.push_back(frame);
            }
            if (float level = strength(clapStrokes[step]))
                clap(tracks.drums, frame, level);
            if (float level = strength(openStrokes[step]))
                hat(tracks.cymbals, frame, level, true);
            else if ((level = strength(hatStrokes[step])))
                hat(tracks.cymbals, frame, level, false);
        }
        if (charts().crash[size_t(bar)] == '1')
            crash(tracks.cymbals, frameOf(bar), 0.8f);
    }
    return kicks;
}

// Transitions between sections: toms in the last half bar, noise that rises before the change and falls after
// it, and a boom on the first beat.
void playTransitions(Tracks& tracks) {
    const float TOMS[] = {50, 50, 47, 45, 45, 43, 40, 38};
    const int SLOWEST = 4; // bars, the longest riser
    for (const Section& section : SECTIONS) {
        int bar = section.bar;
        if (bar > 0) {
            bool full = charts().kick[size_t(bar - 1)] == 's'; // the kick has made room
            for (int i = 0; full && i < 8; ++i) {
                if (i != 1 && i != 4) {
                    tom(tracks.drums, frameOf(bar - 1, 8 + i), 0.45f + 0.05f * float(i), TOMS[i] + 3,
                        0.6f - 0.17f * float(i));
                }
            }
            int rise = charts().kick[size_t(bar)] == '.' ? SLOWEST / 2 : SLOWEST;
            riser(tracks.noise, frameOf(bar - rise), rise * BAR, 0.5f);
            fall(tracks.noise, frameOf(bar), 2 * BAR, 0.45f);
            boom(tracks.drums, frameOf(bar), 0.7f);
        }
    }
    int last = BARS - 4; // the last chord
    boom(tracks.drums, frameOf(last), 0.8f);
    fall(tracks.noise, frameOf(last), 3 * BAR, 0.4f);
}

void playBass(Tracks& tracks, const Chord& chord) {
    int bar = chord.step / STEPS_PER_BAR;
    char name = charts().bass[size_t(bar)];
    const char* rhythm = strokes(bassRhythms(), name);
    for (int step = chord.step; step < chord.step + chord.steps; ++step) {
        float level = strength(rhythm[step % STEPS_PER_BAR]);
        if (level == 0)
            continue;
        bool held = name == 'w' || name == '1';
        // the rolling bass leaps to the octave at the end of a beat
        int octave = name == 'r' && step % 4 == 3 ? 12 : 0;
        int length = held          ? chord.steps * STEP * (name == '1' ? 2 : 1)
                     : name == 'p' ? STEP * 3 / 2
                                   : STEP * 9 / 10;
        float brightness = name == 'p' ? 0.08f * float(bar - 6) : held ? 0.25f : 0.75f;
        bass(tracks.low, step * STEP, length, chord.bass + octave, level, brightness);
    }
}

// One long note for consecutive equal chords.
void playPad(Tracks& tracks, const std::vector<Chord>& chords, size_t first) {
    const Chord& chord = chords[first];
    float soft = chartLevel(charts().pad[size_t(chord.step / STEPS_PER_BAR)]);
    if (soft == 0 || (first > 0 && chords[first - 1].voices == chord.voices))
        return;
    int steps = 0;
    for (size_t i = first; i < chords.size() && chords[i].voices == chord.voices; ++i)
        steps += chords[i].steps;
    for (int voice : chord.voices)
        pad(tracks.chords, chord.step * STEP, steps * STEP, voice, 0.16f + 0.16f * soft, soft);
}

// Restarts on every beat, where the kick leaves room.
void playSaws(Tracks& tracks, const Chord& chord) {
    float bright = chartLevel(charts().saws[size_t(chord.step / STEPS_PER_BAR)]);
    for (int step = 0; bright > 0 && step < chord.steps; step += 4)
        for (int voice : chord.voices)
            saws(tracks.chords, (chord.step + step) * STEP, 4 * STEP - 400, voice, 0.30f * bright, bright);
}

// Up and down the chord over two octaves, three against four.
void playArpeggio(Tracks& tracks, const Chord& chord) {
    const int ORDER[] = {0, 2, 4, 1, 3, 5, 2, 4, 6, 3, 5, 7, 4, 2, 5, 3};
    float level = chartLevel(charts().arp[size_t(chord.step / STEPS_PER_BAR)]);
    const auto& voices = chord.voices;
    for (int step = chord.step; level > 0 && step < chord.step + chord.steps; ++step) {
        int at = ORDER[step % STEPS_PER_BAR];
        int voice = voices[size_t(at % 4)] + 12 * (at / 4);
        float accent = step % 4 == 2 ? 1.0f : step % 2 == 0 ? 0.8f : 0.65f;
        float place = (step % 2 ? 0.55f : -0.55f);
        pluck(tracks.plucks, step * STEP, STEP * 4 / 5, voice + 12, accent * (0.15f + 0.45f * level),
              0.15f + 0.7f * level, place);
    }
}

void playLine(Tracks& tracks, const Line& line, int end) {
    int before = 0;
    for (const Note& note : readLine(line.text)) {
        int step = line.bar * STEPS_PER_BAR + note.step;
        int lift = transposition(step / STEPS_PER_BAR);
        int pitch = note.pitch + lift;
        int frame = step * STEP;
        int length = note.steps * STEP;
        if (frame >= end)
            return;
        switch (line.instrument) {
        case Line::LEAD:
            lead(tracks.melody, frame, length - 500, before ? before : pitch, pitch, 0.42f * line.level);
            break;
        case Line::COUNTER:
            counter(tracks.melody, frame, length - 300, pitch, 0.36f * line.level);
            break;
        case Line::BELL:
            bell(tracks.melody, frame, length, pitch, 0.36f * line.level);
            break;
        case Line::PLUCK:
            pluck(tracks.melody, frame, length, pitch, 0.8f * line.level, 0.6f, 0);
            break;
        }
        before = pitch;
    }
}

// Plays and mixes everything. The melody, the plucks and the chords also go to the reverb and the echo.
Track perform(int bars) {
    const int FRAMES = bars * BAR;
    Tracks tracks(FRAMES);

    std::vector<int> kicks = playDrums(tracks, bars);
    playTransitions(tracks);
    const std::vector<Chord> chords = harmony();
    for (size_t i = 0; i < chords.size() && chords[i].step < bars * STEPS_PER_BAR; ++i) {
        playBass(tracks, chords[i]);
        playPad(tracks, chords, i);
        playSaws(tracks, chords[i]);
        playArpeggio(tracks, chords[i]);
    }
    for (const Line& line : lines())
        playLine(tracks, line, FRAMES);

    highPass(tracks.chords, 170);
    highPass(tracks.plucks, 250);
    highPass(tracks.melody, 180);
    duck(tracks.low, kicks, 0.75f);
    duck(tracks.chords, kicks, 0.70f);
    duck(tracks.plucks, kicks, 0.35f);
    duck(tracks.noise, kicks, 0.5f);

    Track out(FRAMES), room(FRAMES), echoes(FRAMES);
    mix(room, tracks.drums, 0.05f);
    mix(room, tracks.cymbals, 0.10f);
    mix(room, tracks.chords, 0.30f);
    mix(room, tracks.plucks, 0.45f);
    mix(room, tracks.melody, 0.40f);
    mix(room, tracks.noise, 0.40f);
    mix(echoes, tracks.plucks, 0.45f);
    mix(echoes, tracks.melody, 0.35f);
    echo(room, echoes, 3 * STEP, 0.45f, 0.35f);

    mix(out, tracks.drums, 0.41f);
    mix(out, tracks.cymbals, 0.34f);
    mix(out, tracks.low, 0.24f);
    mix(out, tracks.chords, 0.36f);
    mix(out, tracks.plucks, 0.50f);
    mix(out, tracks.melody, 0.33f);
    mix(out, tracks.noise, 0.17f);
    echo(out, echoes, 3 * STEP, 0.45f, 0.36f);
    reverb(out, room, 2.4f, 0.17f);

    Track master(FRAMES);
    mix(master, out, 0.70f);
    brighten(master, 4000, 1.4f);
    saturate(master, 0.6f);
    highPass(master, 28);
    limit(master, 0.80f);
    fadeEnds(master, 441, bars == BARS ? 2 * BAR : BAR / 8);
    return master;
}

} // namespace

int main(int argc, char** argv) {
    int bars = BARS;
    if (argc < 2 || argc > 3 || zentrak::command::hasOption(argc, argv, 1) ||
        (argc == 3 && !zentrak::command::readNumber(argv[2], 1, BARS, bars))) {
        std::fprintf(stderr, "usage: make_music FILE.ogg [BARS]     the first BARS, 1 to %d\n", BARS);
        return 2;
    }
    try {
        writeVorbis(argv[1], perform(bars), 0.5f, "zentrak");
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make_music: %s\n", failure.what());
        return 1;
    }
    return 0;
}
