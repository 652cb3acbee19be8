// Base of all sources that decode a file.
#pragma once

#include "audiere.h"

#include <cstdint>

namespace zentrak::audiere {

class DecodedSource : public SampleSource {
public:
    int getLength() override { return mLength; }
    int getPosition() override { return mPosition; }

protected:
    // Creates a Source for the file. Null if the file is of another kind or empty.
    template <class Source>
    static RefPtr<SampleSource> openAs(const RefPtr<File>& file) {
        const RefPtr<Source> source = new Source(file);
        return source->mLength > 0 ? RefPtr<SampleSource>(source.get()) : nullptr;
    }

    int mLength = 0;   // in frames; 0 when the file can't be decoded
    int mPosition = 0; // in frames
};

// Like fseek: `whence` is SEEK_SET, SEEK_CUR or SEEK_END. Returns false and moves nothing if the target is
// outside the file.
bool seekFile(File& file, int64_t offset, int whence);

} // namespace zentrak::audiere
