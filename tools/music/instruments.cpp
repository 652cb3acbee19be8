#include "instruments.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zentrak::music {

namespace {

const int CONTROL = 16; // frames between filter updates

float seconds(int frames) {
    return float(frames) / RATE;
}

int frames(float time) {
    return int(time * RATE);
}

float fade(float time, float constant) {
    return std::exp(-time / constant);
}

// Each note has its own phases, the same on every run.
unsigned seedOf(int frame, int pitch) {
    return unsigned(frame) * 31u + unsigned(pitch);
}

// Several detuned saws, spread from left to right.
template <int COUNT>
class Swarm {
public:
    Swarm(float pitch, float detune, float width, unsigned seed) {
        Noise noise(seed);
        float offset = -1; // -1 to 1
        for (Voice& voice : mVoices) {
            voice.frequency = pitchToFrequency(pitch + detune * (offset + 0.1f * noise.next()));
            voice.saw = Saw(noise.unit());
            voice.pan = Pan(width * offset);
            width = -width;
            offset += 2.0f / (COUNT - 1);
        }
    }

    void next(float& left, float& right, float bend = 1) {
        left = right = 0;
        for (Voice& voice : mVoices) {
            float sample = LOUDNESS * voice.saw.next(voice.frequency * bend);
            left += voice.pan.left * sample;
            right += voice.pan.right * sample;
        }
    }

private:
    struct Voice {
        float frequency = 0;
        Saw saw = Saw(0);
        Pan pan = Pan(0);
    };
    const float LOUDNESS = 1 / std::sqrt(float(COUNT));
    std::array<Voice, COUNT> mVoices;
};

// A stereo pair of two equal filters in series: 24 dB per octave.
class StereoLowPass {
public:
    void set(float frequency, float resonance) {
        for (Filter* filter : {&mLeft1, &mRight1})
            filter->set(frequency, resonance);
        for (Filter* filter : {&mLeft2, &mRight2})
            filter->set(frequency, 0.3f);
    }
    void run(float& left, float& right) {
        left = mLeft2.low(mLeft1.low(left));
        right = mRight2.low(mRight1.low(right));
    }

private:
    Filter mLeft1, mLeft2, mRight1, mRight2;
};

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

// A sine that drops from a click to a thump at 47 Hz.
void kick(Track& track, int frame, float level) {
    Sine body;
    Noise noise(1);
    for (int i = 0; i < frames(0.42f); ++i) {
        float t = seconds(i);
        float pitch = 47 + 130 * fade(t, 0.032f) + 900 * fade(t, 0.004f);
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
        float sample =
            level * body.next(36 + 45 * fade(t, 0.12f)) * fade(t, 0.55f) * ends * std::min(1.0f, t / 0.004f);
        track.add(frame + i, sample, sample);
    }
}

// A saw and its octave through a filter that snaps shut, over a sine for the fundamental.
void bass(Track& track, int frame, int length, int pitch, float level, float brightness) {
    const Envelope loud = {0.004f, 0.25f, 0.75f, 0.05f};
    float frequency = pitchToFrequency(float(pitch));
    float held = seconds(length);
    Saw first(0.1f), second(0.6f);
    Sine ground;
    Filter filter1, filter2;
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float t = seconds(i);
        if (i % CONTROL == 0) {
            float cutoff = 140 + 350 * brightness + 2600 * brightness * fade(t, 0.09f);
            filter1.set(cutoff, 0.45f);
            filter2.set(cutoff * 1.2f, 0.1f);
        }
        float buzz = 0.6f * first.next(frequency * 2.004f) + 0.7f * second.next(frequency);
        float sample = std::tanh(1.3f * (filter2.low(filter1.low(buzz)) + 0.75f * ground.next(frequency)));
        sample *= level * loud.at(t, held);
        track.add(frame + i, sample, sample);
    }
}

void pad(Track& track, int frame, int length, int pitch, float level, float brightness) {
    const Envelope loud = {0.35f, 1.0f, 0.9f, 0.9f};
    Swarm<5> swarm(float(pitch), 0.14f, 0.95f, seedOf(frame, pitch));
    StereoLowPass filter;
    Sine slow;
    float held = seconds(length);
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float t = seconds(i);
        float wave = slow.next(0.23f);
        if (i % CONTROL == 0)
            filter.set((350 + 4200 * brightness * brightness) * (1 + 0.25f * wave), 0.25f);
        float left, right;
        swarm.next(left, right);
        filter.run(left, right);
        float gain = level * loud.at(t, held);
        track.add(frame + i, gain * left, gain * right);
    }
}

void saws(Track& track, int frame, int length, int pitch, float level, float brightness) {
    const Envelope loud = {0.006f, 0.5f, 0.7f, 0.09f};
    Swarm<7> swarm(float(pitch), 0.21f, 1, seedOf(frame, pitch) + 7);
    StereoLowPass filter;
    float held = seconds(length);
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float t = seconds(i);
        if (i % CONTROL == 0)
            filter.set(500 + 5500 * brightness + 3500 * brightness * fade(t, 0.15f), 0.15f);
        float left, right;
        swarm.next(left, right);
        filter.run(left, right);
        float gain = level * loud.at(t, held);
        track.add(frame + i, gain * left, gain * right);
    }
}

void pluck(Track& track, int frame, int length, int pitch, float level, float brightness, float place) {
    const Envelope loud = {0.002f, 0.16f, 0.0f, 0.06f};
    Swarm<3> swarm(float(pitch), 0.07f, 0.3f, seedOf(frame, pitch) + 3);
    StereoLowPass filter;
    Pan pan(place);
    float held = std::max(seconds(length), 0.22f);
    for (int i = 0; i < frames(held + loud.release); ++i) {
        float t = seconds(i);
        if (i % CONTROL == 0)
            filter.set(250 + 900 * brightness + 6500 * brightness * fade(t, 0.055f), 0.35f);
        float left, right;
        swarm.next(left, right);
        filter.run(left, right);
        float gain = 1.4f * level * loud.at(t, held);
        track.add(frame + i, gain * left * pan.left, gain * right * pan.right);
    }
}

// Frequency modulation: a struck tine over a soft fundamental.
void bell(Track& track, int frame, int length, int pitch, float level) {
    const Envelope loud = {0.003f, 0.9f, 0.15f, 0.8f};
    float frequency = pitchToFrequency(float(pitch)), held = seconds(length);
    Sine carrier, partner, modulator, tine;
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float t = seconds(i);
        float bend = 0.22f * modulator.next(2 * frequency) * fade(t, 0.35f) +
                     0.06f * tine.next(7.01f * frequency) * fade(t, 0.06f);
        float left = carrier.next(frequency * 1.0008f, bend);
        float right = partner.next(frequency * 0.9992f, bend);
        float gain = level * loud.at(t, held);
        track.add(frame + i, gain * (0.8f * left + 0.2f * right), gain * (0.2f * left + 0.8f * right));
    }
}

void lead(Track& track, int frame, int length, int from, int pitch, float level) {
    const Envelope loud = {0.008f, 0.4f, 0.75f, 0.14f};
    Swarm<5> swarm(float(pitch), 0.10f, 0.5f, seedOf(frame, pitch) + 1);
    Saw octave(0.3f);
    Sine vibrato;
    StereoLowPass filter;
    float frequency = pitchToFrequency(float(pitch)), held = seconds(length);
    float bend = 1;
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float t = seconds(i);
        float wave = vibrato.next(5.6f) * 0.18f * std::clamp((t - 0.22f) / 0.3f, 0.0f, 1.0f);
        if (i % CONTROL == 0) {
            bend = std::exp2((float(from - pitch) * fade(t, 0.018f) + wave) / 12);
            filter.set(2300 + 3800 * fade(t, 0.2f), 0.3f);
        }
        float left, right;
        swarm.next(left, right, bend);
        float below = 0.35f * octave.next(0.5f * frequency * bend);
        left += below;
        right += below;
        filter.run(left, right);
        float gain = level * loud.at(t, held);
        track.add(frame + i, gain * left, gain * right);
    }
}

// Warm and dark like strings, below the lead.
void counter(Track& track, int frame, int length, int pitch, float level) {
    const Envelope loud = {0.06f, 0.8f, 0.85f, 0.25f};
    Swarm<5> swarm(float(pitch), 0.12f, 0.8f, seedOf(frame, pitch) + 2);
    StereoLowPass filter;
    filter.set(2100, 0.15f);
    float held = seconds(length);
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float left, right;
        swarm.next(left, right);
        filter.run(left, right);
        float gain = level * loud.at(seconds(i), held);
        track.add(frame + i, gain * left, gain * right);
    }
}

} // namespace zentrak::music
