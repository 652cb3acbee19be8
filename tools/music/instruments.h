// The instruments. Each call adds one note or stroke to a track: from a frame on, for a number of frames
// (plus its decay), at a level from 0 to about 1.
#pragma once

#include "synth.h"

namespace zentrak::music {

void kick(Track& track, int frame, float level);
void clap(Track& track, int frame, float level);
void hat(Track& track, int frame, float level, bool open);
void snare(Track& track, int frame, float level);
void shaker(Track& track, int frame, float level, float place);
void ride(Track& track, int frame, float level);
void tom(Track& track, int frame, float level, float pitch, float place);
void crash(Track& track, int frame, float level);

// A sweep of noise, rising or falling, over some frames.
void riser(Track& track, int frame, int frames, float level);
void fall(Track& track, int frame, int frames, float level);
void swell(Track& track, int frame, int frames, float level); // a reversed cymbal
void boom(Track& track, int frame, float level);              // a deep stroke at the start of a section

// Brightness goes from 0 (dark) to 1. `from` is the pitch that a note slides from; equal to `pitch`, or 0 for
// the bass, for no slide.
void bass(Track& track, int frame, int frames, int pitch, float level, float brightness, int from = 0);
void pad(Track& track, int frame, int frames, int pitch, float level, float brightness);
void choir(Track& track, int frame, int frames, int pitch, float level, float brightness);
void saws(Track& track, int frame, int frames, int pitch, float level, float brightness);
void pluck(Track& track, int frame, int frames, int pitch, float level, float brightness, float place);
void bell(Track& track, int frame, int frames, int pitch, float level);
void lead(Track& track, int frame, int frames, int from, int pitch, float level, float brightness = 0.5f);
void reed(Track& track, int frame, int frames, int from, int pitch, float level);
void counter(Track& track, int frame, int frames, int pitch, float level);

} // namespace zentrak::music
