// Drums, cymbals and sweeps of noise.
#include "instruments.h"

#include <algorithm>
#include <cmath>

namespace zentrak::music {

namespace {

// Six squares at inharmonic frequencies: the ring of cymbals.
class Metal {
public:
    float next() {
        const float FREQUENCIES[] = {2490, 3087, 4155, 5339, 6177, 8207};
        float sum = 0;
        for (int i = 0; i < 6; ++i) {
            mPhase[i] += FREQUENCIES[i] / RATE;
            mPhase[i] -= mPhase[i] >= 1 ? 1.0f : 0.0f;
            sum += mPhase[i] < 0.5f ? 1.0f : -1.0f;
        }
        return sum / 6;
    }

private:
    float mPhase[6] = {};
};

} // namespace

// A sine that drops from a click to a thump at 55 Hz, an A.
void kick(Track& track, int frame, float level) {
    Sine body;
    Noise noise(1);
    for (int i = 0; i < frames(0.42f); ++i) {
        float t = seconds(i);
        float pitch = 55 + 130 * fade(t, 0.032f) + 900 * fade(t, 0.004f);
        float ends = std::min(1.0f, (0.42f - t) / 0.05f);
        float sample = std::tanh(1.9f * body.next(pitch) * fade(t, 0.19f)) * ends;
        sample += 0.25f * noise.next() * fade(t, 0.0025f);
        track.add(frame + i, level * sample, level * sample);
    }
}

// Hand claps and a snare drum together: three short bursts of noise before the long one, and a body at 190
// Hz.
void clap(Track& track, int frame, float level) {
    const float BURSTS[] = {0, 0.011f, 0.021f, 0.031f};
    Noise left(11), right(23);
    Filter bandLeft, bandRight, top;
    Sine body;
    bandLeft.set(1500, 0.45f);
    bandRight.set(1700, 0.45f);
    top.set(6000, 0);
    for (int i = 0; i < frames(0.45f); ++i) {
        float t = seconds(i), loud = 0;
        for (float burst : BURSTS)
            if (t >= burst)
                loud += 0.5f * fade(t - burst, burst > 0.03f ? 0.11f : 0.005f);
        float drum = 0.55f * body.next(175 + 60 * fade(t, 0.02f)) * fade(t, 0.06f);
        float rattle = 0.25f * top.high(left.next()) * fade(t, 0.09f);
        track.add(frame + i, level * (1.5f * bandLeft.band(left.next()) * loud + drum + rattle),
                  level * (1.5f * bandRight.band(right.next()) * loud + drum + rattle));
    }
}

void hat(Track& track, int frame, float level, bool open) {
    float length = open ? 0.30f : 0.09f;
    float decay = open ? 0.11f : 0.022f;
    Noise noise(unsigned(frame) | 1);
    Metal metal;
    Filter top;
    Pan pan(open ? -0.25f : 0.3f);
    top.set(8200, 0.2f);
    for (int i = 0; i < frames(length); ++i) {
        float t = seconds(i);
        float ends = std::min(1.0f, (length - t) / 0.02f);
        float sample = top.high(0.8f * noise.next() + 0.25f * metal.next()) * fade(t, decay) * ends * level;
        track.add(frame + i, sample * pan.left, sample * pan.right);
    }
}

void tom(Track& track, int frame, float level, float pitch, float place) {
    Sine body;
    Noise noise(5);
    Pan pan(place);
    float base = pitchToFrequency(pitch);
    for (int i = 0; i < frames(0.4f); ++i) {
        float t = seconds(i);
        float ends = std::min(1.0f, (0.4f - t) / 0.05f);
        float sample =
            std::tanh(1.5f * body.next(base * (1 + 0.9f * fade(t, 0.04f))) * fade(t, 0.14f)) * ends;
        sample += 0.15f * noise.next() * fade(t, 0.012f);
        track.add(frame + i, level * sample * pan.left, level * sample * pan.right);
    }
}

void crash(Track& track, int frame, float level) {
    Noise left(unsigned(frame) + 3), right(unsigned(frame) + 4);
    Metal metal;
    Filter topLeft, topRight;
    topLeft.set(4200, 0.1f);
    topRight.set(4600, 0.1f);
    for (int i = 0; i < frames(2.8f); ++i) {
        float t = seconds(i);
        float loud = level * fade(t, 0.75f) * std::min(1.0f, (2.8f - t) / 0.5f);
        float ring = 0.35f * metal.next() * fade(t, 0.3f);
        track.add(frame + i, loud * topLeft.high(0.8f * left.next() + ring),
                  loud * topRight.high(0.8f * right.next() + ring));
    }
}

// A crack of noise over two modes of the skin.
void snare(Track& track, int frame, float level) {
    Noise left(unsigned(frame) * 2 + 1), right(unsigned(frame) * 2 + 2);
    Sine first, second;
    Filter topLeft, topRight;
    topLeft.set(1900, 0.3f);
    topRight.set(2100, 0.3f);
    for (int i = 0; i < frames(0.32f); ++i) {
        float t = seconds(i);
        float ends = std::min(1.0f, (0.32f - t) / 0.05f);
        float skin = 0.5f * first.next(186 + 90 * fade(t, 0.012f)) * fade(t, 0.07f) +
                     0.3f * second.next(331) * fade(t, 0.04f);
        float wires = 0.55f * (0.35f + 0.65f * level) * fade(t, 0.05f + 0.05f * level);
        track.add(frame + i, level * ends * (skin + wires * topLeft.high(left.next())),
                  level * ends * (skin + wires * topRight.high(right.next())));
    }
}

void shaker(Track& track, int frame, float level, float place) {
    Noise noise(unsigned(frame) + 17);
    Filter band;
    Pan pan(place);
    band.set(6200, 0.5f);
    for (int i = 0; i < frames(0.08f); ++i) {
        float t = seconds(i);
        float loud = std::min(t / 0.012f, 1.0f) * fade(t, 0.02f) * std::min(1.0f, (0.08f - t) / 0.02f);
        float sample = level * loud * band.band(noise.next());
        track.add(frame + i, sample * pan.left, sample * pan.right);
    }
}

void ride(Track& track, int frame, float level) {
    Noise noise(unsigned(frame) + 29);
    Metal metal;
    Sine bell;
    Filter top;
    Pan pan(0.45f);
    top.set(5200, 0.3f);
    for (int i = 0; i < frames(0.7f); ++i) {
        float t = seconds(i);
        float sample = top.high(0.5f * metal.next() + 0.3f * noise.next() * fade(t, 0.05f)) * fade(t, 0.22f) +
                       0.12f * bell.next(4310) * fade(t, 0.12f);
        sample *= level * std::min(1.0f, (0.7f - t) / 0.2f);
        track.add(frame + i, sample * pan.left, sample * pan.right);
    }
}

// A cymbal backwards: grows until it breaks off.
void swell(Track& track, int frame, int length, float level) {
    Noise left(unsigned(frame) + 5), right(unsigned(frame) + 6);
    Filter topLeft, topRight;
    for (int i = 0; i < length; ++i) {
        float before = seconds(length - 1 - i);
        if (i % CONTROL == 0) {
            topLeft.set(2600 + 2400 * fade(before, 0.4f), 0.15f);
            topRight.set(2800 + 2400 * fade(before, 0.4f), 0.15f);
        }
        float loud =
            level * fade(before, 0.38f) * std::min(1.0f, seconds(i) / 0.3f) * std::min(1.0f, before / 0.004f);
        track.add(frame + i, loud * topLeft.high(left.next()), loud * topRight.high(right.next()));
    }
}

void riser(Track& track, int frame, int length, float level) {
    Noise left(91), right(92);
    Filter bandLeft, bandRight;
    Saw low, high(0.5f);
    for (int i = 0; i < length; ++i) {
        float x = float(i) / float(length); // 0 to 1
        if (i % CONTROL == 0) {
            bandLeft.set(350 * std::exp2(4.6f * x), 0.55f);
            bandRight.set(370 * std::exp2(4.7f * x), 0.55f);
        }
        float loud = level * x * x * std::min(1.0f, float(length - i) / 800);
        float pitch = 110 * std::exp2(2 * x);
        float tone = 0.12f * (low.next(pitch) + high.next(pitch * 1.007f)) * x;
        track.add(frame + i, loud * (bandLeft.band(left.next()) + bandLeft.low(tone)),
                  loud * (bandRight.band(right.next()) + bandRight.low(tone)));
    }
}

void fall(Track& track, int frame, int length, float level) {
    Noise left(71), right(72);
    Filter bandLeft, bandRight;
    for (int i = 0; i < length; ++i) {
        float x = float(i) / float(length);
        if (i % CONTROL == 0) {
            bandLeft.set(6000 * std::exp2(-4.5f * x), 0.4f);
            bandRight.set(5700 * std::exp2(-4.4f * x), 0.4f);
        }
        float loud = level * (1 - x) * (1 - x) * std::min(1.0f, float(i) / 200);
        track.add(frame + i, loud * bandLeft.band(left.next()), loud * bandRight.band(right.next()));
    }
}

void boom(Track& track, int frame, float level) {
    Sine body;
    for (int i = 0; i < frames(2.0f); ++i) {
        float t = seconds(i);
        float ends = std::min(1.0f, (2.0f - t) / 0.4f);
        float sample = level * body.next(36.7f + 45 * fade(t, 0.12f)) * fade(t, 0.55f) * ends *
                       std::min(1.0f, t / 0.004f);
        track.add(frame + i, sample, sample);
    }
}

} // namespace zentrak::music
