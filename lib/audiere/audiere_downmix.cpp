#include "audiere_downmix.h"

namespace zentrak::audiere {

namespace {

// Row n is for n channels.
const char* const USUAL[] = {"", "C", "LR", "LRC", "LRLR", "LRCLR", "LRCSLR", "LRCSCLR", "LRCSLRLR"};
const char* const VORBIS[] = {"", "C", "LR", "LCR", "LRLR", "LCRLR", "LCRLRS", "LCRLRCS", "LCRLRLRS"};

std::string places(const char* const* table, int count) {
    if (count <= 8)
        return table[count];
    std::string turns;
    for (int channel = 0; channel < count; ++channel)
        turns += channel % 2 == 0 ? 'L' : 'R';
    return turns;
}

} // namespace

std::string Downmix::usualPlaces(int count) {
    return places(USUAL, count);
}

std::string Downmix::vorbisPlaces(int count) {
    return places(VORBIS, count);
}

void Downmix::add(int channel, const float* in, int stride, int frames, float* out) const {
    const float centre = 0.70710678f;
    char place = mPlaces[size_t(channel)];
    float left = place == 'L' ? 1 : place == 'C' ? centre : 0;
    float right = place == 'R' ? 1 : place == 'C' ? centre : 0;
    for (int frame = 0; frame < frames; ++frame, in += stride, out += 2) {
        out[0] += left * *in;
        out[1] += right * *in;
    }
}

} // namespace zentrak::audiere
