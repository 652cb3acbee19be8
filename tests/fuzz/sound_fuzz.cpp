// Reads any bytes as music: the target of all kinds, each with a corpus of its own. Whatever opens must keep
// to its length, also after seeking.

#include "audiere.h"
#include "fuzz.h"

#include <algorithm>
#include <climits>
#include <vector>

using namespace zentrak;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > INT_MAX)
        return 0;
    const auto source =
        audiere::AdrOpenSampleSourceFromFile(audiere::AdrCreateMemoryFile(data, int(size)), 0);
    if (!source)
        return 0;
    int channels = 0, rate = 0;
    audiere::SampleFormat format;
    source->getFormat(channels, rate, format);
    const int length = source->getLength();
    fuzz::check((channels == 1 || channels == 2) && rate > 0 && format == audiere::SF_F32 && length > 0);

    constexpr int MOST = 1 << 14; // frames to a read
    std::vector<float> samples(size_t(MOST) * size_t(channels));
    const int within = std::min(length, rate); // seeking in a module renders all that lies before
    for (const int position : {0, within / 3, within - 100, 1, length, -1}) {
        source->setPosition(position);
        for (const int frames : {1, 777, MOST}) {
            const int before = source->getPosition();
            fuzz::check(before >= 0 && before <= length);
            const int read = source->read(frames, samples.data());
            fuzz::check(read >= 0 && read <= frames && read <= length - before);
            fuzz::check(source->getPosition() == before + read);
        }
    }
    return 0;
}
