#include "audiere_sndfilesource.h"

#include <algorithm>
#include <climits>

namespace zentrak::audiere {

namespace {

const int MIX_FRAMES = 1024; // mixed down at a time
const int LEAD_IN = 8192;    // the longest block of Vorbis

// What libsndfile calls to reach the file.
sf_count_t fileLength(void* user) {
    File* file = static_cast<File*>(user);
    int   position = file->tell();
    file->seek(0, File::END);
    int length = file->tell();
    file->seek(position, File::BEGIN);
    return length;
}

sf_count_t fileSeek(sf_count_t offset, int whence, void* user) {
    File*          file = static_cast<File*>(user);
    File::SeekMode mode = whence == SEEK_SET ? File::BEGIN : whence == SEEK_CUR ? File::CURRENT : File::END;
    if (offset < INT_MIN || offset > INT_MAX || !file->seek(int(offset), mode)) {
        return -1;
    }
    return file->tell();
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

} // namespace

RefPtr<SampleSource> SndfileSource::open(const RefPtr<File>& file) {
    RefPtr<SndfileSource> source = new SndfileSource(file);
    if (source->mLength <= 0) {
        return nullptr;
    }
    return source.get();
}

SndfileSource::SndfileSource(const RefPtr<File>& file) : mFile(file) {
    static SF_VIRTUAL_IO access = {fileLength, fileSeek, fileRead, fileWrite, fileTell};
    mFile->seek(0, File::BEGIN);
    mDecoder = sf_open_virtual(&access, SFM_READ, &mInfo, mFile.get());
    if (!mDecoder) {
        return;
    }
    switch (mInfo.format & SF_FORMAT_TYPEMASK) {
    case SF_FORMAT_WAV:
    case SF_FORMAT_WAVEX:
    case SF_FORMAT_FLAC:
    case SF_FORMAT_OGG:
        mLength = int(std::clamp<sf_count_t>(mInfo.frames, 0, INT_MAX));
        chooseMix();
    }
}

SndfileSource::~SndfileSource() {
    if (mDecoder) {
        sf_close(mDecoder);
    }
}

// Sets mMix for sound of more than two channels: each goes to its side, and those in the middle to both, 3 dB
// down; the subwoofer is left out. Channels of unknown place are taken to be left and right by turns.
void SndfileSource::chooseMix() {
    if (mInfo.channels <= 2) {
        return;
    }
    std::vector<int> map(size_t(mInfo.channels), SF_CHANNEL_MAP_INVALID);
    sf_command(mDecoder, SFC_GET_CHANNEL_MAP_INFO, map.data(), int(map.size() * sizeof(int)));
    const float middle = 0.70710678f;
    for (size_t channel = 0; channel < map.size(); ++channel) {
        switch (map[channel]) {
        case SF_CHANNEL_MAP_LEFT:
        case SF_CHANNEL_MAP_FRONT_LEFT:
        case SF_CHANNEL_MAP_REAR_LEFT:
        case SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER:
        case SF_CHANNEL_MAP_SIDE_LEFT:
        case SF_CHANNEL_MAP_TOP_FRONT_LEFT:
        case SF_CHANNEL_MAP_TOP_REAR_LEFT:
            mMix.push_back({1, 0});
            break;
        case SF_CHANNEL_MAP_RIGHT:
        case SF_CHANNEL_MAP_FRONT_RIGHT:
        case SF_CHANNEL_MAP_REAR_RIGHT:
        case SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER:
        case SF_CHANNEL_MAP_SIDE_RIGHT:
        case SF_CHANNEL_MAP_TOP_FRONT_RIGHT:
        case SF_CHANNEL_MAP_TOP_REAR_RIGHT:
            mMix.push_back({0, 1});
            break;
        case SF_CHANNEL_MAP_MONO:
        case SF_CHANNEL_MAP_CENTER:
        case SF_CHANNEL_MAP_FRONT_CENTER:
        case SF_CHANNEL_MAP_REAR_CENTER:
        case SF_CHANNEL_MAP_TOP_CENTER:
        case SF_CHANNEL_MAP_TOP_FRONT_CENTER:
        case SF_CHANNEL_MAP_TOP_REAR_CENTER:
            mMix.push_back({middle, middle});
            break;
        case SF_CHANNEL_MAP_LFE:
            mMix.push_back({0, 0});
            break;
        default:
            mMix.push_back(channel % 2 == 0 ? Pan{1, 0} : Pan{0, 1});
        }
    }
    mSurround.resize(MIX_FRAMES * map.size());
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

// As the decoder gives them, or mixed down; returns the frames written to `out`.
int SndfileSource::decode(int frameCount, float* out) {
    if (mMix.empty()) {
        return int(std::max<sf_count_t>(sf_readf_float(mDecoder, out, frameCount), 0));
    }
    int done = 0;
    while (done < frameCount) {
        int count = int(sf_readf_float(mDecoder, mSurround.data(), std::min(frameCount - done, MIX_FRAMES)));
        if (count <= 0) {
            break;
        }
        const float* in = mSurround.data();
        for (int frame = 0; frame < count; ++frame, out += 2) {
            out[0] = out[1] = 0;
            for (const Pan& pan : mMix) {
                out[0] += pan.left * *in;
                out[1] += pan.right * *in++;
            }
        }
        done += count;
    }
    return done;
}

// Vorbis decodes a block exactly only after the one before it, so the seek goes to a point ahead of the
// position, and what lies between is read and dropped.
void SndfileSource::setPosition(int position) {
    position = std::clamp(position, 0, mLength);
    bool ogg = (mInfo.format & SF_FORMAT_TYPEMASK) == SF_FORMAT_OGG;
    int  start = ogg ? std::max(position - LEAD_IN, 0) : position;
    mPosition = int(std::max<sf_count_t>(sf_seek(mDecoder, start, SEEK_SET), 0));

    float dropped[2 * 512];
    while (mPosition < position && read(std::min(position - mPosition, 512), dropped) > 0) {
    }
}

} // namespace zentrak::audiere
