// The music of the show: the sound device, the stream, and what converts its position into seconds.
#pragma once

#include "am_file.h"
#include "audiere.h"

namespace zentrak::kindler {

// The driver controls mStream directly. Seconds are mStream->getPosition() / mRate, both as floats; the
// length of the show is mLength / mRate.
struct Music {
    int mLength = 0; // of the source, in sample frames
    audiere::RefPtr<audiere::AudioDevice> mDevice;
    audiere::RefPtr<audiere::OutputStream> mStream;
    audiere::RefPtr<audiere::SampleSource> mSource;
    audiere::RefPtr<audiere::File> mFile; // the bytes that mSource decodes
    int mRate = 0;                        // of the source, in sample frames per second
    bool mPaused = false;                 // stopped by the viewer, as opposed to having ended

    // Opens all of it from a file in memory, whose bytes are copied; the stream is stopped, at the beginning.
    // False, with a line on standard output that says why, if there is no sound device, or the file is
    // missing (a null pointer) or can't be decoded.
    bool setup(am::TSmartPtr<am::FileStructure, am::TRefCount<am::FileStructure>> file);
};

} // namespace zentrak::kindler
