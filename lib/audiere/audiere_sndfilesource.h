// Vorbis, FLAC and WAV, decoded by libsndfile.
#pragma once

#include "audiere.h"

#include <sndfile.h>
#include <vector>

namespace zentrak::audiere {

class SndfileSource : public SampleSource {
public:
    // Null when the file is of another kind, or holds nothing to play.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int  getLength() override { return mLength; }
    int  read(int frameCount, void* buffer) override;
    void setPosition(int position) override;
    int  getPosition() override { return mPosition; }

private:
    explicit SndfileSource(const RefPtr<File>& file);
    ~SndfileSource() override;

    void chooseMix();
    int  decode(int frameCount, float* out);

    // How loud one channel of the file is in each of the two that are heard.
    struct Pan {
        float left, right;
    };

    RefPtr<File>       mFile;
    SNDFILE*           mDecoder = nullptr; // null when the file can't be decoded
    SF_INFO            mInfo = {};
    int                mLength = 0;
    int                mPosition = 0;
    std::vector<Pan>   mMix;      // per channel of the file; empty for mono and stereo
    std::vector<float> mSurround; // frames to be mixed down, as decoded
};

} // namespace zentrak::audiere
