#include "audiere_vorbissource.h"

#include <algorithm>
#include <climits>

namespace zentrak::audiere {

namespace {

// File callbacks for libvorbisfile.
size_t fileRead(void* buffer, size_t size, size_t count, void* user) {
    if (size == 0)
        return 0;
    int bytes = int(std::min<size_t>(size * count, INT_MAX));
    return size_t(static_cast<File*>(user)->read(buffer, bytes)) / size;
}

int fileSeek(void* user, ogg_int64_t offset, int whence) {
    return seekFile(*static_cast<File*>(user), offset, whence) ? 0 : -1;
}

long fileTell(void* user) {
    return static_cast<File*>(user)->tell();
}

} // namespace

RefPtr<SampleSource> VorbisSource::open(const RefPtr<File>& file) {
    return openAs<VorbisSource>(file);
}

// Of chained streams, plays the leading ones that share the format of the first.
VorbisSource::VorbisSource(const RefPtr<File>& file) : mFile(file) {
    const ov_callbacks access = {fileRead, fileSeek, nullptr, fileTell};
    mFile->seek(0, File::BEGIN);
    mIsOpen = ov_open_callbacks(mFile.get(), &mDecoder, nullptr, 0, access) == 0;
    if (!mIsOpen)
        return;
    vorbis_info* first = ov_info(&mDecoder, 0);
    mFileChannels = first->channels;
    mSampleRate = int(std::min<long>(first->rate, INT_MAX));
    mDownmix = Downmix(Downmix::vorbisPlaces(mFileChannels));
    ogg_int64_t length = 0;
    for (int link = 0; link < ov_streams(&mDecoder); ++link, ++mLinks) {
        vorbis_info* info = ov_info(&mDecoder, link);
        if (info->channels != first->channels || info->rate != first->rate)
            break;
        length += std::max<ogg_int64_t>(ov_pcm_total(&mDecoder, link), 0);
    }
    mLength = int(std::min<ogg_int64_t>(length, INT_MAX));
}

VorbisSource::~VorbisSource() {
    if (mIsOpen)
        ov_clear(&mDecoder);
}

void VorbisSource::getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) {
    channelCount = std::min(mFileChannels, 2);
    sampleRate = mSampleRate;
    sampleFormat = SF_F32;
}

// A hole in the data is skipped; the missing frames are not taken from a following stream of another format.
int VorbisSource::read(int frameCount, void* buffer) {
    int wanted = std::min(frameCount, mLength - mPosition);
    int done = 0;
    while (done < wanted) {
        float** channels;
        int link = 0;
        long count = ov_read_float(&mDecoder, &channels, wanted - done, &link);
        if (count == OV_HOLE)
            continue;
        if (count <= 0 || link >= mLinks)
            break;
        write(channels, int(count), static_cast<float*>(buffer) + done * std::min(mFileChannels, 2));
        done += int(count);
    }
    mPosition += done;
    return done;
}

// Interleaves, mixing down more than two channels.
void VorbisSource::write(float** channels, int frames, float* out) const {
    if (mFileChannels > 2) {
        std::fill_n(out, 2 * frames, 0.0f);
        for (int channel = 0; channel < mFileChannels; ++channel)
            mDownmix.add(channel, channels[channel], 1, frames, out);
        return;
    }
    for (int frame = 0; frame < frames; ++frame)
        for (int channel = 0; channel < mFileChannels; ++channel)
            *out++ = channels[channel][frame];
}

void VorbisSource::setPosition(int position) {
    position = std::clamp(position, 0, mLength);
    ov_pcm_seek(&mDecoder, position);
    mPosition = int(std::clamp<ogg_int64_t>(ov_pcm_tell(&mDecoder), 0, mLength));
}

} // namespace zentrak::audiere
