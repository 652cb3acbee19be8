// Mixes any number of channels down to two: each goes to its side, a centre channel to both at -3 dB, and the
// subwoofer to neither. OpenAL Soft can't do it: it supports only some channel counts, and version 1.19,
// which Debian 12 has, plays nothing but the front pair unless everything goes through a virtual room.
#pragma once

#include <string>

namespace zentrak::audiere {

class Downmix {
public:
    Downmix() = default; // of no channels

    // One letter per channel: L left, R right, C centre, S subwoofer.
    explicit Downmix(const std::string& places) : mPlaces(places) {}

    // The letters of `count` channels in the default order of WAV and FLAC, and in that of Vorbis. More than
    // eight alternate between left and right.
    static std::string usualPlaces(int count);
    static std::string vorbisPlaces(int count);

    // Mixes `frames` samples of one channel, `stride` apart, into the stereo buffer `out`.
    void add(int channel, const float* in, int stride, int frames, float* out) const;

private:
    std::string mPlaces;
};

} // namespace zentrak::audiere
