#include "synth.h"

#include <algorithm>
#include <cmath>

namespace zentrak::music {

namespace {

const float TURN = 6.28318531f;

// The correction that turns a step at phase 0 into a smooth one over two samples.
float roundedStep(float phase, float increment) {
    if (phase < increment) {
        float t = phase / increment;
        return t + t - t * t - 1;
    }
    if (phase > 1 - increment) {
        float t = (phase - 1) / increment;
        return t * t + t + t + 1;
    }
    return 0;
}

} // namespace

void Track::add(int frame, float toLeft, float toRight) {
    if (frame >= 0 && frame < frames()) {
        left[size_t(frame)] += toLeft;
        right[size_t(frame)] += toRight;
    }
}

Pan::Pan(float place) : left(std::cos((place + 1) * TURN / 8)), right(std::sin((place + 1) * TURN / 8)) {}

float pitchToFrequency(float pitch) {
    return 440 * std::exp2((pitch - 69) / 12);
}

float fade(float time, float constant) {
    return std::exp(-time / constant);
}

float Noise::next() {
    return float(int(mRandom.draw())) * (1.0f / 2147483648.0f);
}

float Saw::next(float frequency) {
    float increment = frequency / RATE;
    mPhase += increment;
    mPhase -= mPhase >= 1 ? 1.0f : 0.0f;
    return 2 * mPhase - 1 - roundedStep(mPhase, increment);
}

float Sine::next(float frequency, float modulation) {
    mPhase += frequency / RATE;
    mPhase -= mPhase >= 1 ? 1.0f : 0.0f;
    return std::sin((mPhase + modulation) * TURN);
}

// A topology-preserving state variable filter.
void Filter::set(float frequency, float resonance) {
    mG = std::tan(0.5f * TURN * std::clamp(frequency, 10.0f, 0.45f * RATE) / RATE);
    mK = 2 - 1.95f * resonance;
    mA = 1 / (1 + mG * (mG + mK));
}

void Filter::run(float in) {
    in += 1e-20f; // keeps the state clear of denormal numbers, which are slow
    mHigh = (in - (mG + mK) * mS1 - mS2) * mA;
    mBand = mG * mHigh + mS1;
    mLow = mG * mBand + mS2;
    mS1 = mG * mHigh + mBand;
    mS2 = mG * mBand + mLow;
}

float Filter::low(float in) {
    run(in);
    return mLow;
}

float Filter::band(float in) {
    run(in);
    return mBand * mK;
}

float Filter::high(float in) {
    run(in);
    return mHigh;
}

float Envelope::at(float time, float held) const {
    float level =
        time < attack ? time / attack : sustain + (1 - sustain) * std::exp(-(time - attack) / decay);
    return time < held ? level : level * std::max(0.0f, 1 - (time - held) / release);
}

} // namespace zentrak::music
