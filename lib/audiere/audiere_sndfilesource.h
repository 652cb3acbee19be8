// FLAC and WAV, decoded by libsndfile.
#pragma once

#include "audiere_downmix.h"

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

    std::string channelPlaces();
    int         decode(int frameCount, float* out);

    RefPtr<File>       mFile;
    SNDFILE*           mDecoder = nullptr;
    SF_INFO            mInfo = {};
    int                mLength = 0; // 0 when the file can't be decoded
    int                mPosition = 0;
    Downmix            mDownmix;  // used for more than two channels
    std::vector<float> mSurround; // frames to be mixed down, as decoded
};

} // namespace zentrak::audiere
