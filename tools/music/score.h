// The score: harmony, melodies, rhythms, and what each layer plays in every bar. Nothing here makes a sound.
#pragma once

#include "form.h"

#include <string>
#include <vector>

namespace zentrak::music {

// A note of a melody. `step` counts sixteenths from the start of its line, `pitch` is a MIDI number (A4 is
// 69).
struct Note {
    int step, steps, pitch;
};

// A melody at its position in the piece, and the instrument that plays it.
struct Line {
    enum Instrument { LEAD, REED, COUNTER, CHOIR, BELL, ANSWER };

    int bar;
    Instrument instrument;
    float level;
    const char* text; // see readLine
};

// One chord of the harmony, held for some steps.
struct Chord {
    int step, steps;         // from the start of the piece
    int bass;                // MIDI, the second octave
    std::vector<int> voices; // MIDI, from low to high
};

// A rhythm of one bar: a digit from 1 to 9 is a stroke of that strength, a point a rest. For an arpeggio the
// digit is the voice of the chord instead, from 0.
struct Rhythm {
    char name;
    const char* strokes;
};

// The pitches are those of the chord's bass (0), the fifth (f) and the octave (o) above it.
struct BassRhythm {
    char name;
    const char* strokes;
    const char* pitches;
    float gate; // steps that a note is held at most
};

// A value that goes from one to another over some bars, in equal ratios.
struct Ramp {
    float bar, end, from, to;
};

// Everything but reverb and echo stops for the rest of the bar.
struct Breath {
    int bar, step;
};

// The transposition of a bar in semitones, relative to D minor.
int transposition(int bar);

std::vector<Chord> harmony();
const std::vector<Line>& lines();

// What a layer of the arrangement plays, one character a bar; see the charts in score.cpp.
const std::string& chart(const std::string& layer);

// In Hz: the low-pass of chords and arpeggios and the high-pass of everything, outside the ramps open; and
// the level of the whole.
const std::vector<Ramp>& lowPassRamps();
const std::vector<Ramp>& highPassRamps();
const std::vector<Ramp>& levelRamps();
const std::vector<Breath>& breaths();

// The strokes of a rhythm by its letter, rests for an unknown one. The layers are "kick", "snare", "hat",
// "open hat", "shaker", "ride", "toms", "stabs" and "figure"; any other throws std::out_of_range.
const char* rhythm(const std::string& layer, char name);
const BassRhythm& bassRhythm(char name);

// Parses a line like "A4:3 D5:13 | -:16": notes and rests with their length in steps. Every bar must add up
// to 16 steps. Throws std::runtime_error if one does not, or for a bad note.
std::vector<Note> readLine(const std::string& text);

} // namespace zentrak::music
