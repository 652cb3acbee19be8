// MP3, decoded by libmpg123.
#pragma once

#include "audiere.h"

#include <mpg123.h>

namespace zentrak::audiere {

class MpegSource : public SampleSource {
public:
    // Null when the file is of another kind, or holds nothing to play.
    static RefPtr<SampleSource> open(const RefPtr<File>& file);

    void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) override;
    int  getLength() override { return mLength; }
    int  read(int frameCount, void* buffer) override;
    void setPosition(int position) override;
    int  getPosition() override { return mPosition; }

private:
    explicit MpegSource(const RefPtr<File>& file);
    ~MpegSource() override;

    RefPtr<File>   mFile;
    mpg123_handle* mDecoder = nullptr;
    int            mChannelCount = 0;
    int            mSampleRate = 0;
    int            mLength = 0; // 0 when the file can't be decoded
    int            mPosition = 0;
};

} // namespace zentrak::audiere
