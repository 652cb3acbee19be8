#include "audiere_sndfilesource.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace zentrak::audiere {

namespace {

const int MIX_FRAMES = 1024; // per mixing step

// File callbacks for libsndfile.
sf_count_t fileLength(void* user) {
    File* file = static_cast<File*>(user);
    int position = file->tell();
    file->seek(0, File::END);
    int length = file->tell();
    file->seek(position, File::BEGIN);
    return length;
}

sf_count_t fileSeek(sf_count_t offset, int whence, void* user) {
    File* file = static_cast<File*>(user);
    return seekFile(*file, offset, whence) ? file->tell() : -1;
}

sf_count_t fileRead(void* buffer, sf_count_t size, void* user) {
    return static_cast<File*>(user)->read(buffer, int(std::min<sf_count_t>(size, INT_MAX)));
}

sf_count_t fileTell(void* user) {
    return static_cast<File*>(user)->tell();
}

sf_count_t fileWrite(const void*, sf_count_t, void*) {
    return 0;
}

// libsndfile reads many more formats, which we don't support.
bool hasMark(File& file) {
    char mark[4] = {};
    file.seek(0, File::BEGIN);
    file.read(mark, 4);
    file.seek(0, File::BEGIN);
    for (const char* known : {"RIFF", "RIFX", "RF64", "fLaC"})
        if (std::memcmp(mark, known, 4) == 0)
            return true;
    return false;
}

} // namespace

RefPtr<SampleSource> SndfileSource::open(const RefPtr<File>& file) {
    return openAs<SndfileSource>(file);
}

SndfileSource::SndfileSource(const RefPtr<File>& file) : mFile(file) {
    static SF_VIRTUAL_IO access = {fileLength, fileSeek, fileRead, fileWrite, fileTell};
    if (!hasMark(*mFile))
        return;
    mDecoder = sf_open_virtual(&access, SFM_READ, &mInfo, mFile.get());
    if (!mDecoder)
        return;
    mLength = int(std::clamp<sf_count_t>(mInfo.frames, 0, INT_MAX));
    if (mInfo.channels > 2) {
        mDownmix = Downmix(channelPlaces());
        mSurround.resize(size_t(MIX_FRAMES * mInfo.channels));
    }
}

SndfileSource::~SndfileSource() {
    if (mDecoder)
        sf_close(mDecoder);
}

// From the file, or the default.
std::string SndfileSource::channelPlaces() {
    std::string places = Downmix::usualPlaces(mInfo.channels);
    std::vector<int> map(places.size());
    if (!sf_command(mDecoder, SFC_GET_CHANNEL_MAP_INFO, map.data(), int(map.size() * sizeof(int))))
        return places;
    for (size_t channel = 0; channel < map.size(); ++channel) {
        switch (map[channel]) {
        case SF_CHANNEL_MAP_LEFT:
        case SF_CHANNEL_MAP_FRONT_LEFT:
        case SF_CHANNEL_MAP_REAR_LEFT:
        case SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER:
        case SF_CHANNEL_MAP_SIDE_LEFT:
        case SF_CHANNEL_MAP_TOP_FRONT_LEFT:
        case SF_CHANNEL_MAP_TOP_REAR_LEFT:
            places[channel] = 'L';
            break;
        case SF_CHANNEL_MAP_RIGHT:
        case SF_CHANNEL_MAP_FRONT_RIGHT:
        case SF_CHANNEL_MAP_REAR_RIGHT:
        case SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER:
        case SF_CHANNEL_MAP_SIDE_RIGHT:
        case SF_CHANNEL_MAP_TOP_FRONT_RIGHT:
        case SF_CHANNEL_MAP_TOP_REAR_RIGHT:
            places[channel] = 'R';
            break;
        case SF_CHANNEL_MAP_MONO:
        case SF_CHANNEL_MAP_CENTER:
        case SF_CHANNEL_MAP_REAR_CENTER:
        case SF_CHANNEL_MAP_TOP_CENTER:
        case SF_CHANNEL_MAP_TOP_FRONT_CENTER:
        case SF_CHANNEL_MAP_TOP_REAR_CENTER:
            places[channel] = 'C';
            break;
        case SF_CHANNEL_MAP_LFE:
            places[channel] = 'S';
            break;
        }
    }
    return places;
}

void SndfileSource::getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) {
    channelCount = std::min(mInfo.channels, 2);
    sampleRate = mInfo.samplerate;
    sampleFormat = SF_F32;
}

int SndfileSource::read(int frameCount, void* buffer) {
    int count = decode(std::min(frameCount, mLength - mPosition), static_cast<float*>(buffer));
    mPosition += count;
    return count;
}

// Decodes, and mixes down more than two channels; returns the frames written to `out`.
int SndfileSource::decode(int frameCount, float* out) {
    if (mInfo.channels <= 2)
        return int(std::max<sf_count_t>(sf_readf_float(mDecoder, out, frameCount), 0));
    int done = 0;
    while (done < frameCount) {
        int count = int(sf_readf_float(mDecoder, mSurround.data(), std::min(frameCount - done, MIX_FRAMES)));
        if (count <= 0)
            break;
        std::fill_n(out + 2 * done, 2 * count, 0.0f);
        for (int channel = 0; channel < mInfo.channels; ++channel)
            mDownmix.add(channel, mSurround.data() + channel, mInfo.channels, count, out + 2 * done);
        done += count;
    }
    return done;
}

void SndfileSource::setPosition(int position) {
    position = std::clamp(position, 0, mLength);
    mPosition = int(std::clamp<sf_count_t>(sf_seek(mDecoder, position, SEEK_SET), 0, mLength));
}

} // namespace zentrak::audiere
