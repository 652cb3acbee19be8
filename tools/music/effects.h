// What is done to whole tracks: room, echo, ducking under the kick, and the last steps before the file.
#pragma once

#include "synth.h"

namespace zentrak::music {

void mix(Track& into, const Track& track, float level);

// The echo goes from side to side every `frames`, darker each time. Adds it to `into`.
void echo(Track& into, const Track& send, int frames, float feedback, float level);

// A hall: eight delays that feed each other. `seconds` is the time to fall by 60 dB.
void reverb(Track& into, const Track& send, float seconds, float level);

// Makes way for each of the strokes, at once, and comes back within a beat. Depth from 0 (not at all) to 1.
void duck(Track& track, const std::vector<int>& strokes, float depth);

// Takes away what is below `frequency`.
void highPass(Track& track, float frequency);

// Makes what is above `frequency` louder by a factor of 1 or more.
void brighten(Track& track, float frequency, float factor);

// Rounds off peaks as a driven amplifier does, and keeps all that is left below `ceiling` by looking ahead.
void saturate(Track& track, float drive);
void limit(Track& track, float ceiling);

// Fades the first and the last frames to nothing.
void fadeEnds(Track& track, int in, int out);

} // namespace zentrak::music
