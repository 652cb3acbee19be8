// Building blocks of the instruments. Frequencies are in Hz, times in seconds; each call produces one sample.
#pragma once

#include "form.h"
#include "mb_random.h"

#include <vector>

namespace zentrak::music {

// A stereo track as long as the piece, to which notes are added.
struct Track {
    explicit Track(int frames) : left(size_t(frames)), right(size_t(frames)) {}

    int frames() const { return int(left.size()); }
    void add(int frame, float toLeft, float toRight); // ignored past the end

    std::vector<float> left, right;
};

// Equal-power panning from left (-1) to right (1).
struct Pan {
    explicit Pan(float place);
    float left, right;
};

float pitchToFrequency(float pitch); // MIDI

const int CONTROL = 16; // frames between updates of a filter that moves

inline float seconds(int frames) {
    return float(frames) / RATE;
}
inline int frames(float seconds) {
    return int(seconds * RATE);
}

// Exponential decay from 1.
float fade(float time, float constant);

// White noise from -1 to 1, determined by the seed.
class Noise {
public:
    explicit Noise(unsigned seed) : mRandom(seed * 2654435761u + 1) {}
    float next();
    float unit() { return 0.5f + 0.5f * next(); } // 0 to 1

private:
    mathbase::Random mRandom;
};

// A sawtooth from -1 to 1 with rounded edges against aliasing. The initial phase is from 0 to 1.
class Saw {
public:
    explicit Saw(float phase = 0) : mPhase(phase) {}
    float next(float frequency);

private:
    float mPhase;
};

class Sine {
public:
    float next(float frequency, float modulation = 0); // the modulation is in turns

private:
    float mPhase = 0;
};

// A two-pole filter that can be swept at every sample. The resonance goes from 0 (none) to 1
// (self-oscillation).
class Filter {
public:
    void set(float frequency, float resonance);
    float low(float in);
    float band(float in);
    float high(float in);

private:
    void run(float in);
    float mG = 0, mK = 2, mA = 1; // coefficients
    float mS1 = 0, mS2 = 0;       // state
    float mLow = 0, mBand = 0, mHigh = 0;
};

// Rises in `attack`, decays towards `sustain` with the time constant `decay`, and falls to nothing within
// `release` after `held` seconds.
struct Envelope {
    float attack, decay, sustain, release;
    float at(float time, float held) const;
};

} // namespace zentrak::music
