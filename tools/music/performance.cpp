#include "performance.h"

#include "effects.h"
#include "instruments.h"

#include <algorithm>

namespace zentrak::music {

namespace {

int frameOf(int bar, int step = 0) {
    return bar * BAR + step * STEP;
}

char charted(const char* layer, int bar) {
    return chart(layer)[size_t(bar)];
}

const char* chartedRhythm(const char* layer, int bar) {
    return rhythm(layer, charted(layer, bar));
}

// Loudness of a stroke from its digit; a point is a rest.
float strength(char stroke) {
    return stroke == '.' ? 0 : float(stroke - '0') / 9;
}

// Loudness or brightness of a layer from its digit in a chart: 0.1 to 1.
float level(const char* layer, int bar) {
    char digit = charted(layer, bar);
    return digit == '.' ? 0 : float(digit - '0' + 1) / 10;
}

void playKick(Stems& stems, int bar) {
    char name = charted("kick", bar);
    const char* strokes = rhythm("kick", name);
    for (int step = 0; step < STEPS_PER_BAR; ++step)
        if (float loud = strength(strokes[step])) {
            music::kick(stems.kick, frameOf(bar, step), name == 'h' ? 0.6f * loud : loud);
            stems.kicks.push_back(frameOf(bar, step));
        }
}

// The strong strokes have the clap on top.
void playSnare(Stems& stems, int bar) {
    const char* strokes = chartedRhythm("snare", bar);
    for (int step = 0; step < STEPS_PER_BAR; ++step) {
        float loud = strength(strokes[step]);
        if (loud == 0)
            continue;
        snare(stems.snares, frameOf(bar, step), 0.75f * loud);
        if (loud == 1)
            clap(stems.snares, frameOf(bar, step), 0.75f);
    }
}

// From the highest to the lowest and from left to right in the course of the bar.
void playToms(Stems& stems, int bar) {
    const char* strokes = chartedRhythm("toms", bar);
    for (int step = 0; step < STEPS_PER_BAR; ++step)
        if (float loud = strength(strokes[step]))
            tom(stems.kick, frameOf(bar, step), 0.9f * loud, 54 - float(step), float(step) / 10 - 0.8f);
}

void playCymbals(Stems& stems, int bar) {
    const char *closed = chartedRhythm("hat", bar), *open = rhythm("open hat", charted("hat", bar));
    const char *shaken = chartedRhythm("shaker", bar), *ridden = chartedRhythm("ride", bar);
    for (int step = 0; step < STEPS_PER_BAR; ++step) {
        int frame = frameOf(bar, step);
        if (float loud = strength(open[step]))
            hat(stems.cymbals, frame, loud, true);
        else if ((loud = strength(closed[step])))
            hat(stems.cymbals, frame, loud, false);
        if (float loud = strength(shaken[step]))
            shaker(stems.cymbals, frame, loud, -0.6f);
        if (float loud = strength(ridden[step]))
            ride(stems.cymbals, frame, loud);
    }
    if (float loud = strength(charted("crash", bar)))
        crash(stems.cymbals, frameOf(bar), 0.9f * loud);
    if (float loud = strength(charted("swell", bar)))
        swell(stems.noise, frameOf(bar), BAR, 0.8f * loud);
}

// Noise that rises before a section and falls after its start, and a boom on its first beat.
void playTransitions(Stems& stems) {
    for (const Section& section : SECTIONS) {
        if (section.bar == 0)
            continue;
        bool lively = charted("kick", section.bar) != '.';
        riser(stems.noise, frameOf(section.bar - (lively ? 4 : 2)), (lively ? 4 : 2) * BAR, 0.5f);
        fall(stems.noise, frameOf(section.bar), 2 * BAR, 0.45f);
        boom(stems.kick, frameOf(section.bar), 0.7f);
    }
    fall(stems.noise, frameOf(PEAK_BAR), 2 * BAR, 0.5f);
    boom(stems.kick, frameOf(PEAK_BAR), 0.8f);
    int last = BARS - 4; // the last chord
    boom(stems.kick, frameOf(last), 0.8f);
    fall(stems.noise, frameOf(last), 3 * BAR, 0.4f);
}

// The fifth only where it belongs to the chord, which it does not over every inverted one.
int bassPitch(const Chord& chord, char name) {
    if (name == 'f')
        for (int voice : chord.voices)
            if ((voice - chord.bass) % 12 == 7)
                return chord.bass + 7;
    return chord.bass + (name == '0' ? 0 : 12);
}

// Each note lasts until the next one or its chord's end, but not longer than the rhythm's gate.
void playBass(Stems& stems, const Chord& chord) {
    int bar = chord.step / STEPS_PER_BAR, before = 0;
    const BassRhythm& rhythm = bassRhythm(charted("bass", bar));
    float brightness = level("tone", bar);
    for (int step = chord.step; step < chord.step + chord.steps; ++step) {
        int at = step % STEPS_PER_BAR;
        float loud = strength(rhythm.strokes[at]);
        if (loud == 0)
            continue;
        int rest = 1;
        while (rhythm.gate <= 16 && step + rest < chord.step + chord.steps &&
               rhythm.strokes[at + rest] == '.')
            ++rest;
        float steps = rhythm.gate > 16 ? rhythm.gate : std::min(rhythm.gate, float(rest) - 0.1f);
        int pitch = bassPitch(chord, rhythm.pitches[at]);
        bass(stems.bass, step * STEP, int(steps * STEP), pitch, loud, brightness * (0.6f + 0.45f * loud),
             before);
        before = pitch;
    }
}

// The steps for which a chord and equal ones after it last, 0 for one that continues the chord before it.
int heldSteps(const std::vector<Chord>& chords, size_t first) {
    if (first > 0 && chords[first - 1].voices == chords[first].voices)
        return 0;
    int steps = 0;
    for (size_t i = first; i < chords.size() && chords[i].voices == chords[first].voices; ++i)
        steps += chords[i].steps;
    return steps;
}

void playHeld(Stems& stems, const std::vector<Chord>& chords, size_t first) {
    const Chord& chord = chords[first];
    int bar = chord.step / STEPS_PER_BAR, steps = heldSteps(chords, first);
    float soft = level("pad", bar), loud = level("choir", bar);
    for (int voice : chord.voices) {
        if (steps > 0 && soft > 0)
            pad(stems.chords, chord.step * STEP, steps * STEP, voice, 0.16f + 0.16f * soft, soft);
        if (steps > 0 && loud > 0)
            choir(stems.voices, chord.step * STEP, steps * STEP - STEP / 2, voice, 0.36f * loud, loud);
    }
}

// Chords in the bar's rhythm, each until the next.
void playSaws(Stems& stems, const Chord& chord) {
    int bar = chord.step / STEPS_PER_BAR;
    float bright = level("saws", bar);
    const char* strokes = chartedRhythm("stabs", bar);
    for (int step = chord.step; bright > 0 && step < chord.step + chord.steps; ++step) {
        float loud = strength(strokes[step % STEPS_PER_BAR]);
        int steps = 1;
        while (step + steps < chord.step + chord.steps && strokes[(step + steps) % STEPS_PER_BAR] == '.')
            ++steps;
        for (int voice : chord.voices)
            if (loud > 0)
                saws(stems.chords, step * STEP, steps * STEP - 400, voice, 0.30f * bright * loud, bright);
    }
}

// The chord over two octaves and more, from side to side.
void playArpeggio(Stems& stems, const Chord& chord) {
    int bar = chord.step / STEPS_PER_BAR;
    float loud = level("arp", bar);
    const char* figure = chartedRhythm("figure", bar);
    for (int step = chord.step; loud > 0 && step < chord.step + chord.steps; ++step) {
        char at = figure[step % STEPS_PER_BAR];
        if (at == '.')
            continue;
        int voice = chord.voices[size_t(at - '0') % 4] + 12 * ((at - '0') / 4);
        float accent = step % 4 == 2 ? 1.0f : step % 2 == 0 ? 0.8f : 0.65f;
        pluck(stems.arpeggio, step * STEP, STEP * 4 / 5, voice + 12, accent * (0.15f + 0.45f * loud),
              0.15f + 0.7f * loud, step % 2 ? 0.7f : -0.7f);
    }
}

void playNote(Stems& stems, Line::Instrument instrument, int frame, int length, int before, int pitch,
              float loud) {
    // Answers come from the left and right in turn, every two bars.
    float place = frame / (2 * BAR) % 2 ? 0.75f : -0.75f;
    switch (instrument) {
    case Line::LEAD:
        lead(stems.lead, frame, length - 500, before, pitch, 0.42f * loud, 0.6f * loud);
        break;
    case Line::REED:
        reed(stems.lead, frame, length - 400, before, pitch, 0.50f * loud);
        break;
    case Line::COUNTER:
        counter(stems.voices, frame, length - 300, pitch, 0.36f * loud);
        break;
    case Line::CHOIR:
        choir(stems.voices, frame, length - 300, pitch, 0.42f * loud, 0.7f);
        break;
    case Line::BELL:
        bell(stems.lead, frame, length, pitch, 0.36f * loud);
        break;
    case Line::ANSWER:
        pluck(stems.answers, frame, length, pitch, 0.8f * loud, 0.4f + 0.4f * loud, place);
        pluck(stems.answers, frame, length, pitch + 12, 0.25f * loud, 0.7f, place);
        break;
    }
}

void playLine(Stems& stems, const Line& line) {
    int before = 0;
    for (const Note& note : readLine(line.text)) {
        int step = line.bar * STEPS_PER_BAR + note.step;
        int pitch = note.pitch + transposition(step / STEPS_PER_BAR);
        float accent = step % STEPS_PER_BAR == 0 ? 1.08f : note.steps <= 2 ? 0.9f : 1.0f;
        playNote(stems, line.instrument, step * STEP, note.steps * STEP, before ? before : pitch, pitch,
                 accent * line.level);
        before = pitch;
    }
}

// Risers go on through a breath, but not into the finale.
void breathe(Stems& stems) {
    for (const Breath& breath : breaths()) {
        int from = frameOf(breath.bar, breath.step), to = frameOf(breath.bar + 1);
        for (Track* track : {&stems.kick, &stems.snares, &stems.cymbals, &stems.bass, &stems.chords,
                             &stems.arpeggio, &stems.lead, &stems.voices, &stems.answers})
            mute(*track, from, to);
        if (breath.bar == 63)
            mute(stems.noise, from, to);
    }
}

} // namespace

Stems::Stems(int frames)
    : kick(frames),
      snares(frames),
      cymbals(frames),
      bass(frames),
      chords(frames),
      arpeggio(frames),
      lead(frames),
      voices(frames),
      answers(frames),
      noise(frames) {}

Stems perform(int bars) {
    Stems stems(bars * BAR);
    for (int bar = 0; bar < bars; ++bar) {
        playKick(stems, bar);
        playSnare(stems, bar);
        playToms(stems, bar);
        playCymbals(stems, bar);
    }
    playTransitions(stems);
    const std::vector<Chord> chords = harmony();
    for (size_t i = 0; i < chords.size() && chords[i].step < bars * STEPS_PER_BAR; ++i) {
        playBass(stems, chords[i]);
        playHeld(stems, chords, i);
        playSaws(stems, chords[i]);
        playArpeggio(stems, chords[i]);
    }
    for (const Line& line : lines())
        if (line.bar < bars)
            playLine(stems, line);
    breathe(stems);
    return stems;
}

} // namespace zentrak::music
