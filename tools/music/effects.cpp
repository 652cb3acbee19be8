#include "effects.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace zentrak::music {

namespace {

// A delay line of `length` samples.
class Delay {
public:
    explicit Delay(int length) : mSamples(size_t(length)) {}
    float read() const { return mSamples[mAt]; }
    void write(float sample) {
        mSamples[mAt] = sample;
        mAt = mAt + 1 == mSamples.size() ? 0 : mAt + 1;
    }

private:
    std::vector<float> mSamples;
    size_t mAt = 0;
};

// Smears a sound in time and keeps its spectrum.
class AllPass {
public:
    explicit AllPass(int length) : mDelay(length) {}
    float next(float in) {
        float delayed = mDelay.read();
        float stored = in + 0.6f * delayed;
        mDelay.write(stored);
        return delayed - 0.6f * stored;
    }

private:
    Delay mDelay;
};

class OnePole {
public:
    explicit OnePole(float frequency) : mKeep(std::exp(-6.2831853f * frequency / RATE)) {}
    float next(float in) { return mState = in + mKeep * (mState - in); }

private:
    float mKeep, mState = 0;
};

} // namespace

void mix(Track& into, const Track& track, float level) {
    for (int i = 0; i < into.frames(); ++i)
        into.add(i, level * track.left[size_t(i)], level * track.right[size_t(i)]);
}

void echo(Track& into, const Track& send, int frames, float feedback, float level) {
    Delay left(frames), right(frames);
    OnePole darkerLeft(3500), darkerRight(3500);
    Filter thinner;
    thinner.set(300, 0);
    for (int i = 0; i < send.frames(); ++i) {
        float in = thinner.high(0.5f * (send.left[size_t(i)] + send.right[size_t(i)]));
        float atLeft = left.read();
        float atRight = right.read();
        left.write(in + feedback * darkerLeft.next(atRight));
        right.write(feedback * darkerRight.next(atLeft));
        into.add(i, level * atLeft, level * atRight);
    }
}

void reverb(Track& into, const Track& send, float seconds, float level) {
    const int LENGTHS[8] = {1433, 1601, 1867, 2053, 2251, 2399, 2617, 2797};
    std::vector<Delay> lines;
    std::vector<OnePole> damping;
    std::vector<float> gains;
    for (int length : LENGTHS) {
        lines.emplace_back(length);
        damping.emplace_back(4800.0f);
        gains.push_back(std::pow(10.0f, -3 * float(length) / (seconds * RATE)));
    }
    std::vector<AllPass> left = {AllPass(142), AllPass(379), AllPass(107), AllPass(277)};
    std::vector<AllPass> right = {AllPass(151), AllPass(367), AllPass(113), AllPass(283)};
    Delay beforeLeft(882), beforeRight(882); // 20 ms
    Filter thinLeft, thinRight;
    thinLeft.set(180, 0);
    thinRight.set(180, 0);
    for (int i = 0; i < send.frames(); ++i) {
        float inLeft = beforeLeft.read(), inRight = beforeRight.read();
        beforeLeft.write(thinLeft.high(send.left[size_t(i)]));
        beforeRight.write(thinRight.high(send.right[size_t(i)]));
        for (int stage = 0; stage < 4; ++stage) {
            inLeft = left[size_t(stage)].next(inLeft);
            inRight = right[size_t(stage)].next(inRight);
        }
        float out[8], sum = 0;
        for (size_t line = 0; line < 8; ++line) {
            out[line] = gains[line] * damping[line].next(lines[line].read());
            sum += out[line];
        }
        // A lossless feedback matrix: each line gets all of them, mirrored.
        for (size_t line = 0; line < 8; ++line)
            lines[line].write((line % 2 ? inRight : inLeft) + 0.25f * sum - out[line]);
        into.add(i, level * (out[0] + out[2] - out[4] - out[6]), level * (out[1] + out[3] - out[5] - out[7]));
    }
}

void duck(Track& track, const std::vector<int>& strokes, float depth) {
    const int LENGTH = 4 * STEP;
    const int EDGE = 120; // frames of attack, so that it does not click
    const size_t COUNT = strokes.size();
    for (size_t stroke = 0; stroke < COUNT; ++stroke) {
        int end = std::min(strokes[stroke] + LENGTH, track.frames());
        if (stroke + 1 < COUNT)
            end = std::min(end, strokes[stroke + 1]);
        for (int i = strokes[stroke]; i < end; ++i) {
            int since = i - strokes[stroke];
            float x = float(since) / LENGTH;
            float gain = 1 - depth * (1 - x) * (1 - x);
            if (since < EDGE)
                gain = 1 + (gain - 1) * float(since) / EDGE;
            track.left[size_t(i)] *= gain;
            track.right[size_t(i)] *= gain;
        }
    }
}

void highPass(Track& track, float frequency) {
    for (std::vector<float>* side : {&track.left, &track.right}) {
        Filter filter;
        filter.set(frequency, 0.3f);
        for (float& sample : *side)
            sample = filter.high(sample);
    }
}

void lowPass(Track& track, float frequency) {
    for (std::vector<float>* side : {&track.left, &track.right}) {
        Filter filter;
        filter.set(frequency, 0.3f);
        for (float& sample : *side)
            sample = filter.low(sample);
    }
}

namespace {

// The value of the ramps in a frame.
float valueAt(const std::vector<Ramp>& ramps, int frame, float outside) {
    float bar = float(frame) / BAR;
    for (const Ramp& ramp : ramps)
        if (bar >= ramp.bar && bar < ramp.end)
            return ramp.from * std::pow(ramp.to / ramp.from, (bar - ramp.bar) / (ramp.end - ramp.bar));
    return outside;
}

} // namespace

void sweepLowPass(Track& track, const std::vector<Ramp>& ramps) {
    for (std::vector<float>* side : {&track.left, &track.right}) {
        Filter first, second;
        for (int i = 0; i < track.frames(); ++i) {
            if (i % CONTROL == 0) {
                float frequency = valueAt(ramps, i, 19000);
                first.set(frequency, 0.35f);
                second.set(frequency, 0.1f);
            }
            float& sample = (*side)[size_t(i)];
            sample = second.low(first.low(sample));
        }
    }
}

void sweepHighPass(Track& track, const std::vector<Ramp>& ramps) {
    for (std::vector<float>* side : {&track.left, &track.right}) {
        Filter filter;
        for (int i = 0; i < track.frames(); ++i) {
            if (i % CONTROL == 0)
                filter.set(valueAt(ramps, i, 20), 0.3f);
            float& sample = (*side)[size_t(i)];
            sample = filter.high(sample);
        }
    }
}

void automate(Track& track, const std::vector<Ramp>& ramps) {
    float wanted = valueAt(ramps, 0, 1), gain = wanted;
    for (int i = 0; i < track.frames(); ++i) {
        if (i % CONTROL == 0)
            wanted = valueAt(ramps, i, 1);
        gain += 0.005f * (wanted - gain); // 5 ms
        track.left[size_t(i)] *= gain;
        track.right[size_t(i)] *= gain;
    }
}

void mute(Track& track, int from, int to) {
    const int OUT = 400, IN = 60; // frames; back before `to`, where the next notes start
    for (int i = from; i < std::min(to, track.frames()); ++i) {
        float gain = std::max({0.0f, 1 - float(i - from) / OUT, 1 - float(to - i) / IN});
        track.left[size_t(i)] *= gain;
        track.right[size_t(i)] *= gain;
    }
}

void widen(Track& track, float factor) {
    Filter low;
    low.set(200, 0.3f);
    for (int i = 0; i < track.frames(); ++i) {
        float& left = track.left[size_t(i)];
        float& right = track.right[size_t(i)];
        float middle = 0.5f * (left + right), side = factor * low.high(0.5f * (left - right));
        left = middle + side;
        right = middle - side;
    }
}

void boost(Track& track, float frequency, float factor) {
    for (std::vector<float>* side : {&track.left, &track.right}) {
        Filter filter;
        filter.set(frequency, 0);
        for (float& sample : *side)
            sample += (factor - 1) * filter.band(sample);
    }
}

void saturate(Track& track, float drive) {
    for (std::vector<float>* side : {&track.left, &track.right})
        for (float& sample : *side)
            sample = std::tanh(drive * sample) / std::tanh(drive);
}

namespace {

// The peak of one side at a frame and halfway to the next one, where the sound may be higher than at either.
float peakAt(const std::vector<float>& side, size_t frame) {
    float peak = std::fabs(side[frame]);
    if (frame > 0 && frame + 2 < side.size())
        peak = std::max(peak, std::fabs(0.5625f * (side[frame] + side[frame + 1]) -
                                        0.0625f * (side[frame - 1] + side[frame + 2])));
    return peak;
}

} // namespace

// The gain of a frame is the lowest that any frame in the window around it requires, smoothed over the first
// half of the window, so that it is down before the peak.
void limit(Track& track, float ceiling) {
    const int AHEAD = 200; // frames, 4.5 ms
    const float BACK = std::exp(-1.0f / (0.09f * RATE));
    std::deque<std::pair<int, float>> least; // of the frames ahead, ascending
    std::vector<float> smooth(AHEAD, 1.0f);
    double sum = AHEAD;
    float held = 1;
    size_t at = 0;
    std::vector<float> delayedLeft(track.left), delayedRight(track.right);
    for (int i = 0; i < track.frames() + AHEAD; ++i) {
        float wanted = 1;
        if (i < track.frames()) {
            float peak = std::max(peakAt(delayedLeft, size_t(i)), peakAt(delayedRight, size_t(i)));
            wanted = peak > ceiling ? ceiling / peak : 1.0f;
        }
        while (!least.empty() && least.back().second >= wanted)
            least.pop_back();
        least.push_back({i, wanted});
        if (least.front().first < i - AHEAD)
            least.pop_front();
        held = std::min(least.front().second, 1 - BACK * (1 - held)); // down at once, back slowly
        sum += double(held) - double(smooth[at]);
        smooth[at] = held;
        at = at + 1 == smooth.size() ? 0 : at + 1;
        int frame = i - AHEAD;
        if (frame >= 0) {
            float gain = float(sum / AHEAD);
            track.left[size_t(frame)] = std::clamp(gain * delayedLeft[size_t(frame)], -ceiling, ceiling);
            track.right[size_t(frame)] = std::clamp(gain * delayedRight[size_t(frame)], -ceiling, ceiling);
        }
    }
}

void fadeEnds(Track& track, int in, int out) {
    for (int i = 0; i < std::max(in, out); ++i) {
        for (std::vector<float>* side : {&track.left, &track.right}) {
            if (i < in)
                (*side)[size_t(i)] *= float(i) / float(in);
            if (i < out) {
                float x = float(i) / float(out);
                (*side)[side->size() - 1 - size_t(i)] *= x * x * (3 - 2 * x);
            }
        }
    }
}

} // namespace zentrak::music
