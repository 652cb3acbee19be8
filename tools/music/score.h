// The score: sections, harmony, melodies and rhythms. Nothing here makes a sound.
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
    enum Instrument { LEAD, COUNTER, BELL, PLUCK };

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

// What a layer of the arrangement plays in each bar; see the charts in score.cpp.
struct Charts {
    std::string kick, clap, hat, crash, bass, pad, saws, arp;
};

// A rhythm of one bar: a digit from 1 to 9 is a stroke of that strength, a point a rest.
struct Rhythm {
    char name;
    const char* strokes;
};

// The transposition of a bar in semitones, relative to D minor.
int transposition(int bar);

std::vector<Chord> harmony();
const Charts& charts();
const std::vector<Line>& lines();

// The strokes of a rhythm by its letter; `table` is that of the drum or bass.
const char* strokes(const std::vector<Rhythm>& table, char name);
const std::vector<Rhythm>& kickRhythms();
const std::vector<Rhythm>& clapRhythms();
const std::vector<Rhythm>& hatRhythms(); // closed; see openHatRhythms
const std::vector<Rhythm>& openHatRhythms();
const std::vector<Rhythm>& bassRhythms();

// Parses a line like "A4:3 D5:13 | -:16": notes and rests with their length in steps. Every bar must add up
// to 16 steps. Throws std::runtime_error if one does not, or for a bad note.
std::vector<Note> readLine(const std::string& text);

} // namespace zentrak::music
