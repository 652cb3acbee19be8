// Effects on whole tracks: reverb, echo, ducking under the kick, and mastering.
#pragma once

#include "score.h"
#include "synth.h"

namespace zentrak::music {

void mix(Track& into, const Track& track, float level);

// Adds an echo to `into`, every `frames`, alternating between the sides and darker each time.
void echo(Track& into, const Track& send, int frames, float feedback, float level);

// A hall reverb: eight delays in a feedback network. `seconds` is the time to decay by 60 dB.
void reverb(Track& into, const Track& send, float seconds, float level);

// Ducks the track at each stroke, immediately, and recovers within a beat. Depth from 0 (none) to 1.
void duck(Track& track, const std::vector<int>& strokes, float depth);

// Remove what is below or above `frequency`.
void highPass(Track& track, float frequency);
void lowPass(Track& track, float frequency);

// Filters that move along the ramps; outside them the low-pass is open, and the high-pass at 20 Hz.
void sweepLowPass(Track& track, const std::vector<Ramp>& ramps);
void sweepHighPass(Track& track, const std::vector<Ramp>& ramps);

// Multiplies by the ramps' factor, 1 outside them.
void automate(Track& track, const std::vector<Ramp>& ramps);

// Silence from one frame to another, faded in a few milliseconds.
void mute(Track& track, int from, int to);

// Multiplies the difference of the sides above 200 Hz, and removes what is below.
void widen(Track& track, float factor);

// Boosts a range of some octaves around `frequency`, or cuts it with a factor below 1.
void boost(Track& track, float frequency, float factor);

// saturate() rounds off peaks like an overdriven amplifier; limit() keeps the rest below `ceiling` by looking
// ahead.
void saturate(Track& track, float drive);
void limit(Track& track, float ceiling);

// Fades in over the first frames and out over the last.
void fadeEnds(Track& track, int in, int out);

} // namespace zentrak::music
