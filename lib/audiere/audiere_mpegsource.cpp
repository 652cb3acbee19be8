#include "audiere_mpegsource.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <sys/types.h>

namespace zentrak::audiere {

namespace {

// File callbacks for libmpg123.
ssize_t fileRead(void* user, void* buffer, size_t size) {
    return static_cast<File*>(user)->read(buffer, int(std::min<size_t>(size, INT_MAX)));
}

off_t fileSeek(void* user, off_t offset, int whence) {
    File* file = static_cast<File*>(user);
    return seekFile(*file, offset, whence) ? file->tell() : -1;
}

// A tag, or a valid layer 3 frame header. The library itself would search any file for something that looks
// like one.
bool beginsLikeMp3(File& file) {
    unsigned char mark[4] = {};
    file.seek(0, File::BEGIN);
    if (file.read(mark, 4) < 4)
        return false;
    if (mark[0] == 'I' && mark[1] == 'D' && mark[2] == '3')
        return true;
    const int version = mark[1] >> 3 & 3, layer = mark[1] >> 1 & 3, bitrate = mark[2] >> 4,
              rate = mark[2] >> 2 & 3;
    return mark[0] == 0xFF && mark[1] >> 5 == 7 && version != 1 && layer == 1 && bitrate != 0 &&
           bitrate != 15 && rate != 3;
}

} // namespace

RefPtr<SampleSource> MpegSource::open(const RefPtr<File>& file) {
    return openAs<MpegSource>(file);
}

// Scans the whole file: the length in the header may be missing or wrong.
MpegSource::MpegSource(const RefPtr<File>& file) : mFile(file) {
    if (!beginsLikeMp3(*mFile))
        return;
    mFile->seek(0, File::BEGIN);
    mDecoder = mpg123_new(nullptr, nullptr);
    long rate;
    int encoding;
    if (!mDecoder ||
        mpg123_param(mDecoder, MPG123_ADD_FLAGS, MPG123_FORCE_FLOAT | MPG123_QUIET, 0) != MPG123_OK ||
        mpg123_replace_reader_handle(mDecoder, fileRead, fileSeek, nullptr) != MPG123_OK ||
        mpg123_open_handle(mDecoder, mFile.get()) != MPG123_OK ||
        mpg123_getformat(mDecoder, &rate, &mChannelCount, &encoding) != MPG123_OK ||
        mpg123_format_none(mDecoder) != MPG123_OK ||
        mpg123_format(mDecoder, rate, mChannelCount, MPG123_ENC_FLOAT_32) != MPG123_OK ||
        mpg123_param(mDecoder, MPG123_RESYNC_LIMIT, -1, 0) != MPG123_OK || mpg123_scan(mDecoder) != MPG123_OK)
        return;
    mSampleRate = int(rate);
    mLength = int(std::clamp<off_t>(mpg123_length(mDecoder), 0, INT_MAX));
}

MpegSource::~MpegSource() {
    mpg123_delete(mDecoder); // null is allowed
}

void MpegSource::getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) {
    channelCount = mChannelCount;
    sampleRate = mSampleRate;
    sampleFormat = SF_F32;
}

int MpegSource::read(int frameCount, void* buffer) {
    size_t frameSize = sizeof(float) * size_t(mChannelCount);
    size_t wanted = frameSize * size_t(std::max(std::min(frameCount, mLength - mPosition), 0));
    size_t done = 0;
    while (done < wanted) {
        size_t count = 0;
        int status = mpg123_read(mDecoder, static_cast<unsigned char*>(buffer) + done, wanted - done, &count);
        done += count;
        if (status != MPG123_NEW_FORMAT && (status != MPG123_OK || count == 0))
            break;
    }
    int frames = int(done / frameSize);
    mPosition += frames;
    return frames;
}

// If other data follows the MP3, the library may report a position far past the end.
void MpegSource::setPosition(int position) {
    position = std::clamp(position, 0, mLength);
    mPosition = int(std::clamp<off_t>(mpg123_seek(mDecoder, position, SEEK_SET), 0, mLength));
}

} // namespace zentrak::audiere
