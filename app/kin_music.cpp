#include "kin_music.h"

#include "ztk_system.h"

#include <climits>
#include <cstdio>

namespace zentrak::kindler {

// A file that is missing or too long for the sound library counts as one that can't be decoded.
bool Music::setup(am::TSmartPtr<am::FileStructure, am::TRefCount<am::FileStructure>> file) {
    *this = Music();
    mDevice = audiere::AdrOpenDevice("autodetect", nullptr);
    if (!mDevice) {
        ztk_megasuperlogger("error", "Kindler", "../include/kin_music", 38, "setup", "No sound device!\n");
        return false;
    }
    if (!file.isNull() && file->length <= INT_MAX)
        mFile = audiere::AdrCreateMemoryFile(file->data, int(file->length));
    mSource = audiere::AdrOpenSampleSourceFromFile(mFile, 0);
    if (!mSource) {
        puts("Could not open file");
        return false;
    }
    int channelCount;
    audiere::SampleFormat sampleFormat;
    mSource->getFormat(channelCount, mRate, sampleFormat);
    mLength = mSource->getLength();

    mStream = audiere::AdrOpenSound(mDevice, mSource, true);
    if (!mStream) {
        puts("Could not open sound!, muting");
        return false;
    }
    return true;
}

} // namespace zentrak::kindler
