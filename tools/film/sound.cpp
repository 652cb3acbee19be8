#include "film/sound.h"

#include "ztk_system.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <filesystem>
#include <memory>
#include <sndfile.h>
#include <unistd.h>
#include <vector>

namespace zentrak::film {

Sound::Sound(const am::File& file) {
    if (file.isNull() || file->length > INT_MAX)
        return;
    mSource =
        audiere::AdrOpenSampleSourceFromFile(audiere::AdrCreateMemoryFile(file->data, int(file->length)), 0);
    audiere::SampleFormat format;
    if (mSource)
        mSource->getFormat(mChannels, mRate, format);
}

Sound::~Sound() {
    if (!mFileName.empty())
        unlink(mFileName.c_str());
}

double Sound::getLength() const {
    return mSource ? double(mSource->getLength()) / mRate : 0;
}

std::string Sound::writeFile(double from, double to) {
    if (!mSource)
        return "";
    mFileName = (std::filesystem::temp_directory_path() / "zentrak-film-XXXXXX").string();
    const int descriptor = mkstemp(mFileName.data());
    if (descriptor < 0) {
        mFileName.clear();
        throw Exception("zentrak-film: no temporary file for the sound");
    }
    SF_INFO info = {};
    info.samplerate = mRate;
    info.channels = mChannels;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> out(sf_open_fd(descriptor, SFM_WRITE, &info, 1),
                                                          sf_close);
    bool written = out != nullptr;

    mSource->setPosition(int(std::min(std::llround(from * mRate), 2147483647LL)));
    long long left = std::llround((to - from) * mRate);
    std::vector<float> samples(size_t(mRate) * size_t(mChannels));
    while (written && left > 0) {
        const int count = mSource->read(int(std::min<long long>(left, mRate)), samples.data());
        if (count <= 0)
            break;
        written = sf_writef_float(out.get(), samples.data(), count) == count;
        left -= count;
    }
    if (!written)
        throw Exception("zentrak-film: can't write the sound to '%s': is the disk full?", mFileName.c_str());
    return mFileName;
}

} // namespace zentrak::film
