// MP3, decoded by libmpg123.
#pragma once

#include "audiere_decodedsource.h"

#include <mpg123.h>

namespace zentrak::audiere {

class MpegSource : public DecodedSource {
public:
    // Null if the file is of another kind or empty.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int read(int frameCount, void* buffer) override;
    void setPosition(int position) override;

private:
    friend class DecodedSource;

    explicit MpegSource(const RefPtr<File>& file);
    ~MpegSource() override;

    RefPtr<File> mFile;
    mpg123_handle* mDecoder = nullptr;
    int mChannelCount = 0;
    int mSampleRate = 0;
};

} // namespace zentrak::audiere
