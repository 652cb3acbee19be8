// The music of the show: the sound device, the stream that plays, and what turns its position into seconds.
#pragma once

#include "am_file.h"
#include "audiere.h"

namespace zentrak::kindler {

// The driver plays through mStream itself. Seconds are mStream->getPosition() / mRate, both as floats; the
// length of the show is mLength / mRate.
struct Music {
    int mLength = 0; // of the source, in sample frames
    audiere::RefPtr<audiere::AudioDevice> mDevice;
    audiere::RefPtr<audiere::OutputStream> mStream;
    audiere::RefPtr<audiere::SampleSource> mSource;
    audiere::RefPtr<audiere::File> mFile; // the bytes that mSource decodes
    int mRate = 0;                        // of the source, in sample frames a second
    bool mPaused = false;                 // stopped by the viewer, not by the end of the music

    // Opens all of it from a file in memory, whose bytes are copied; the stream is left at the beginning,
    // stopped. False, with a line on standard output that says why, when there is no sound device, or the
    // file is missing (an empty pointer) or can't be decoded.
    bool setup(am::TSmartPtr<am::FileStructure, am::TRefCount<am::FileStructure>> file);
};

} // namespace zentrak::kindler
