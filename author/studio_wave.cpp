#include "studio_wave.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>

namespace zentrak::studio {

void Wave::open(const am::File& file) {
    *this = Wave();
    if (file.isNull() || file->length > INT_MAX)
        return;
    mSource =
        audiere::AdrOpenSampleSourceFromFile(audiere::AdrCreateMemoryFile(file->data, int(file->length)), 0);
    if (!mSource)
        return;
    audiere::SampleFormat format;
    mSource->getFormat(mChannels, mRate, format);
    mLength = mSource->getLength();
    mSamples.resize(size_t(BLOCK * FACTOR * mChannels));
}

bool Wave::decode(double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (mSource && Clock::now() < end) {
        const int frames = mSource->read(BLOCK * FACTOR, mSamples.data());
        add(frames);
        if (frames < BLOCK * FACTOR)
            mSource = nullptr;
    }
    return bool(mSource);
}

void Wave::add(int frames) {
    for (int first = 0; first < frames; first += BLOCK) {
        Peak peak;
        for (int i = first * mChannels; i < std::min(first + BLOCK, frames) * mChannels; ++i) {
            peak.low = std::min(peak.low, mSamples[size_t(i)]);
            peak.high = std::max(peak.high, mSamples[size_t(i)]);
        }
        const size_t block = mPeaks[0].size();
        mPeaks[0].push_back(peak);
        for (size_t level = 1, index = block / FACTOR; level < LEVELS; ++level, index /= FACTOR) {
            mPeaks[level].resize(std::max(mPeaks[level].size(), index + 1));
            Peak& above = mPeaks[level][index];
            above.low = std::min(above.low, peak.low);
            above.high = std::max(above.high, peak.high);
        }
    }
}

std::pair<float, float> Wave::getPeak(double from, double to) const {
    if (mRate <= 0 || !(to > 0) || !(from < getLength()) || !std::isfinite(from) || !std::isfinite(to))
        return {0.0f, 0.0f};
    double size = double(BLOCK) / mRate; // seconds of a block
    size_t level = 0;
    for (; level + 1 < LEVELS && to - from > size * FACTOR * 2; ++level)
        size *= FACTOR;
    const std::vector<Peak>& peaks = mPeaks[level];
    const size_t first = size_t(std::max(0.0, from / size));
    const size_t last = std::min(size_t(to / size) + 1, peaks.size());
    Peak all;
    for (size_t i = first; i < last; ++i) {
        all.low = std::min(all.low, peaks[i].low);
        all.high = std::max(all.high, peaks[i].high);
    }
    return all.high < all.low ? std::pair(0.0f, 0.0f) : std::pair(all.low, all.high);
}

} // namespace zentrak::studio
