// Vorbis, decoded by libvorbisfile.
#pragma once

#include "audiere_downmix.h"

#include "audiere.h"

#define OV_EXCLUDE_STATIC_CALLBACKS
#include <vorbis/vorbisfile.h>

namespace zentrak::audiere {

class VorbisSource : public SampleSource {
public:
    // Null when the file is of another kind, or holds nothing to play.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int  getLength() override { return mLength; }
    int  read(int frameCount, void* buffer) override;
    void setPosition(int position) override;
    int  getPosition() override { return mPosition; }

private:
    explicit VorbisSource(const RefPtr<File>& file);
    ~VorbisSource() override;

    void write(float** channels, int frames, float* out) const;

    RefPtr<File>   mFile;
    OggVorbis_File mDecoder = {};
    bool           mIsOpen = false;
    int            mFileChannels = 0;
    int            mSampleRate = 0;
    int            mLength = 0; // 0 when the file can't be decoded
    int            mPosition = 0;
    Downmix        mDownmix; // used for more than two channels
};

} // namespace zentrak::audiere
