#include "instruments.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zentrak::music {

namespace {

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

// Adds a note to a track: sample(i, t, left, right) gives its frame i, t seconds after its start, before the
// envelope and the level. `left` and `right` are 0 at first.
template <class Sample>
void play(Track& track, int frame, int length, const Envelope& loud, float level, Sample sample) {
    const float held = seconds(length);
    for (int i = 0; i < length + frames(loud.release); ++i) {
        float left = 0, right = 0;
        sample(i, seconds(i), left, right);
        const float gain = level * loud.at(seconds(i), held);
        track.add(frame + i, gain * left, gain * right);
    }
}

// Both channels of a sound that is nearly in the centre.
void narrow(float& left, float& right) {
    const float first = left, second = right;
    left = 0.8f * first + 0.2f * second;
    right = 0.2f * first + 0.8f * second;
}

} // namespace

// A saw and its octave through a filter that snaps shut, over a sine for the fundamental.
void bass(Track& track, int frame, int length, int pitch, float level, float brightness, int from) {
    const Envelope loud = {0.004f, 0.25f, 0.75f, 0.05f};
    float frequency = pitchToFrequency(float(pitch));
    Saw first(0.1f), second(0.6f);
    Sine ground;
    Filter filter1, filter2;
    float now = frequency;
    play(track, frame, length, loud, level, [&](int i, float t, float& left, float& right) {
        if (i % CONTROL == 0) {
            float cutoff = 140 + 350 * brightness + 2600 * brightness * fade(t, 0.09f);
            filter1.set(cutoff, 0.45f);
            filter2.set(cutoff * 1.2f, 0.1f);
            now = from ? frequency * std::exp2(float(from - pitch) / 12 * fade(t, 0.02f)) : frequency;
        }
        float buzz = 0.6f * first.next(now * 2.004f) + 0.7f * second.next(now);
        left = right = std::tanh(1.3f * (filter2.low(filter1.low(buzz)) + 0.75f * ground.next(now)));
    });
}

void pad(Track& track, int frame, int length, int pitch, float level, float brightness) {
    const Envelope loud = {0.35f, 1.0f, 0.9f, 0.9f};
    Swarm<5> swarm(float(pitch), 0.14f, 0.95f, seedOf(frame, pitch));
    StereoLowPass filter;
    Sine slow;
    play(track, frame, length, loud, level, [&](int i, float, float& left, float& right) {
        float wave = slow.next(0.23f);
        if (i % CONTROL == 0)
            filter.set((350 + 4200 * brightness * brightness) * (1 + 0.25f * wave), 0.25f);
        swarm.next(left, right);
        filter.run(left, right);
    });
}

void saws(Track& track, int frame, int length, int pitch, float level, float brightness) {
    const Envelope loud = {0.006f, 0.5f, 0.7f, 0.09f};
    Swarm<7> swarm(float(pitch), 0.21f, 1, seedOf(frame, pitch) + 7);
    StereoLowPass filter;
    play(track, frame, length, loud, level, [&](int i, float t, float& left, float& right) {
        if (i % CONTROL == 0)
            filter.set(500 + 5500 * brightness + 3500 * brightness * fade(t, 0.15f), 0.15f);
        swarm.next(left, right);
        filter.run(left, right);
    });
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
    float frequency = pitchToFrequency(float(pitch));
    Sine carrier, partner, modulator, tine;
    play(track, frame, length, loud, level, [&](int, float t, float& left, float& right) {
        float bend = 0.22f * modulator.next(2 * frequency) * fade(t, 0.35f) +
                     0.06f * tine.next(7.01f * frequency) * fade(t, 0.06f);
        left = carrier.next(frequency * 1.0008f, bend);
        right = partner.next(frequency * 0.9992f, bend);
        narrow(left, right);
    });
}

void lead(Track& track, int frame, int length, int from, int pitch, float level, float brightness) {
    const Envelope loud = {0.008f, 0.4f, 0.75f, 0.14f};
    Swarm<5> swarm(float(pitch), 0.10f, 0.5f, seedOf(frame, pitch) + 1);
    Saw octave(0.3f);
    Sine vibrato;
    StereoLowPass filter;
    float frequency = pitchToFrequency(float(pitch));
    float bend = 1;
    play(track, frame, length, loud, level, [&](int i, float t, float& left, float& right) {
        float wave = vibrato.next(5.6f) * 0.18f * std::clamp((t - 0.22f) / 0.3f, 0.0f, 1.0f);
        if (i % CONTROL == 0) {
            bend = std::exp2((float(from - pitch) * fade(t, 0.018f) + wave) / 12);
            filter.set(1300 + 2000 * brightness + (2000 + 3600 * brightness) * fade(t, 0.2f), 0.3f);
        }
        swarm.next(left, right, bend);
        float below = 0.35f * octave.next(0.5f * frequency * bend);
        left += below;
        right += below;
        filter.run(left, right);
    });
}

// A pulse of changing width, slow to speak: between a clarinet and a brass section.
void reed(Track& track, int frame, int length, int from, int pitch, float level) {
    const Envelope loud = {0.035f, 0.5f, 0.8f, 0.18f};
    Saw leftFirst(0.1f), leftSecond(0.4f), rightFirst(0.2f), rightSecond(0.85f);
    Sine vibrato, slow;
    StereoLowPass filter;
    float frequency = pitchToFrequency(float(pitch));
    float bend = 1;
    play(track, frame, length, loud, level, [&](int i, float t, float& left, float& right) {
        float wave = vibrato.next(5.1f) * 0.22f * std::clamp((t - 0.3f) / 0.4f, 0.0f, 1.0f);
        if (i % CONTROL == 0) {
            bend = std::exp2((float(from - pitch) * fade(t, 0.03f) + wave) / 12);
            filter.set((900 + 3200 * std::min(1.0f, t / 0.09f)) * (0.6f + 0.4f * fade(t, 0.5f)), 0.4f);
        }
        // Two saws against each other are a pulse. The drift moves its width between a third and a half.
        float now = frequency * bend, drift = 0.68f * slow.next(0.9f);
        left = 0.6f * (leftFirst.next(now * 1.0012f) - leftSecond.next(now * 1.0012f + drift));
        right = 0.6f * (rightFirst.next(now * 0.9988f) - rightSecond.next(now * 0.9988f - drift));
        filter.run(left, right);
        narrow(left, right);
    });
}

// Voices on an open vowel: saws through three formants.
void choir(Track& track, int frame, int length, int pitch, float level, float brightness) {
    const Envelope loud = {0.16f, 1.0f, 0.9f, 0.6f};
    const float FORMANTS[] = {690, 1130, 2600}, STRENGTHS[] = {1.0f, 0.75f, 0.3f + 0.6f * brightness};
    Swarm<5> swarm(float(pitch), 0.16f, 0.9f, seedOf(frame, pitch) + 4);
    Filter left[3], right[3], body[2];
    Sine vibrato;
    float bend = 1;
    for (int k = 0; k < 3; ++k) {
        left[k].set(0.97f * FORMANTS[k], 0.86f);
        right[k].set(1.03f * FORMANTS[k], 0.86f);
    }
    for (Filter& filter : body)
        filter.set(1.3f * pitchToFrequency(float(pitch)), 0.2f);
    play(track, frame, length, loud, level, [&](int i, float t, float& outLeft, float& outRight) {
        float wave = vibrato.next(4.7f) * 0.14f * std::min(1.0f, t / 0.6f);
        if (i % CONTROL == 0)
            bend = std::exp2(wave / 12);
        float inLeft, inRight;
        swarm.next(inLeft, inRight, bend);
        outLeft = 0.5f * body[0].low(inLeft);
        outRight = 0.5f * body[1].low(inRight);
        for (int k = 0; k < 3; ++k) {
            outLeft += STRENGTHS[k] * left[k].band(inLeft);
            outRight += STRENGTHS[k] * right[k].band(inRight);
        }
    });
}

// Warm and dark like strings, below the lead.
void counter(Track& track, int frame, int length, int pitch, float level) {
    const Envelope loud = {0.06f, 0.8f, 0.85f, 0.25f};
    Swarm<5> swarm(float(pitch), 0.12f, 0.8f, seedOf(frame, pitch) + 2);
    StereoLowPass filter;
    filter.set(2100, 0.15f);
    play(track, frame, length, loud, level, [&](int, float, float& left, float& right) {
        swarm.next(left, right);
        filter.run(left, right);
    });
}

} // namespace zentrak::music
