// Brings sound of many channels to two: each channel goes to its side, one in the middle to both, 3 dB down,
// and the subwoofer to none.
#pragma once

#include <string>

namespace zentrak::audiere {

class Downmix {
public:
    Downmix() = default; // of no channels

    // One letter per channel: L left, R right, C middle, S subwoofer.
    explicit Downmix(const std::string& places) : mPlaces(places) {}

    // The places of `count` channels in the order that WAV and FLAC files have without saying so, and in that
    // of Vorbis. More than eight are left and right by turns.
    static std::string usualPlaces(int count);
    static std::string vorbisPlaces(int count);

    // Adds `frames` samples of a channel, `stride` apart, to the two channels interleaved in `out`.
    void add(int channel, const float* in, int stride, int frames, float* out) const;

private:
    std::string mPlaces;
};

} // namespace zentrak::audiere
