// The wave of the music: the loudest and the softest sample of every stretch of it.
#pragma once

#include "am_file.h"
#include "audiere.h"

#include <array>
#include <utility>
#include <vector>

namespace zentrak::studio {

// Decodes a piece at a time, so that nothing waits for it.
class Wave {
public:
    // Begins with a file in memory, whose bytes are copied. A null file, or one that can't be decoded, has no
    // wave.
    void open(const am::File& file);
    // Decodes for about so many seconds. Whether there is more.
    bool decode(double seconds);

    double getLength() const { return mRate > 0 ? double(mLength) / mRate : 0; } // seconds, of all of it
    // The lowest and the highest sample between two times, -1 to 1; 0 and 0 where nothing is decoded.
    std::pair<float, float> getPeak(double from, double to) const;

private:
    static constexpr int BLOCK = 256; // frames of the finest level
    static constexpr int FACTOR = 16; // blocks of one level in one of the next
    static constexpr size_t LEVELS = 3;

    struct Peak {
        float low = 1;
        float high = -1;
    };

    audiere::RefPtr<audiere::SampleSource> mSource;
    int mChannels = 0;
    int mRate = 0;
    int mLength = 0; // frames
    std::array<std::vector<Peak>, LEVELS> mPeaks;
    std::vector<float> mSamples;

    void add(int frames);
};

} // namespace zentrak::studio
