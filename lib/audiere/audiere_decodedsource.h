// What all sources that decode a file share.
#pragma once

#include "audiere.h"

#include <cstdint>

namespace zentrak::audiere {

class DecodedSource : public SampleSource {
public:
    int getLength() override { return mLength; }
    int getPosition() override { return mPosition; }

protected:
    // A new Source of the file. Null when the file is of another kind, or holds nothing to play.
    template <class Source>
    static RefPtr<SampleSource> openAs(const RefPtr<File>& file) {
        const RefPtr<Source> source = new Source(file);
        return source->mLength > 0 ? RefPtr<SampleSource>(source.get()) : nullptr;
    }

    int mLength = 0;   // in frames; 0 when the file can't be decoded
    int mPosition = 0; // in frames
};

// Seeks in the manner of fseek: `whence` is SEEK_SET, SEEK_CUR or SEEK_END. False, with nothing moved, if
// that is outside the file.
bool seekFile(File& file, int64_t offset, int whence);

} // namespace zentrak::audiere
