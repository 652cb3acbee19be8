// FLAC and WAV, decoded by libsndfile.
#pragma once

#include "audiere_decodedsource.h"
#include "audiere_downmix.h"

#include <sndfile.h>
#include <vector>

namespace zentrak::audiere {

class SndfileSource : public DecodedSource {
public:
    // Null if the file is of another kind or empty.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int read(int frameCount, void* buffer) override;
    void setPosition(int position) override;

private:
    friend class DecodedSource;

    explicit SndfileSource(const RefPtr<File>& file);
    ~SndfileSource() override;

    std::string channelPlaces();
    int decode(int frameCount, float* out);

    RefPtr<File> mFile;
    SNDFILE* mDecoder = nullptr;
    SF_INFO mInfo = {};
    Downmix mDownmix;             // used for more than two channels
    std::vector<float> mSurround; // frames to be mixed down, as decoded
};

} // namespace zentrak::audiere
