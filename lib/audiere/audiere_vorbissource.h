// Vorbis, decoded by libvorbisfile.
#pragma once

#include "audiere_decodedsource.h"
#include "audiere_downmix.h"

#define OV_EXCLUDE_STATIC_CALLBACKS
#include <vorbis/vorbisfile.h>

namespace zentrak::audiere {

class VorbisSource : public DecodedSource {
public:
    // Null if the file is of another kind or empty.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int read(int frameCount, void* buffer) override;
    void setPosition(int position) override;

private:
    friend class DecodedSource;

    explicit VorbisSource(const RefPtr<File>& file);
    ~VorbisSource() override;

    void write(float** channels, int frames, float* out) const;

    RefPtr<File> mFile;
    OggVorbis_File mDecoder = {};
    bool mIsOpen = false;
    int mLinks = 0; // leading streams in the format of the first
    int mFileChannels = 0;
    int mSampleRate = 0;
    Downmix mDownmix; // used for more than two channels
};

} // namespace zentrak::audiere
