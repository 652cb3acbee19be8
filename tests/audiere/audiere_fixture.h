// What the tests of sound share: files in every format, sources of known samples, and a device that plays
// into memory.
#pragma once

#include "audiere.h"
#include "audiere_device.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace zentrak::test {

const int RATE = 44100;

// The bytes of a sound file made by stock tools, kept for the whole run: three seconds of a sweep and noise,
// stereo at 44100 Hz unless the name says otherwise. Names: wav, wav8, wav24, wavfloat, wavmono, flac, ogg,
// oggmono, mp3, mp3vbr, mp3bare (variable rate and no word on its length), and mod (a tracker module of our
// own making).
const std::string& sound(const std::string& name);

// All names that sound() knows.
const std::vector<std::string>& soundNames();

// A file of these bytes, and a source of it; null if it can't be decoded.
audiere::RefPtr<audiere::File> memoryFile(const std::string& bytes);
audiere::RefPtr<audiere::SampleSource> openSource(const std::string& bytes);

// All that the source has from its position on, in reads of odd sizes.
std::vector<float> readAll(audiere::SampleSource& source);

// Waits until `condition` holds. False, and a failure, if it doesn't within a minute.
bool waitFor(const std::function<bool()>& condition);

// Frame n is n / 2^20 on the left and its negative on the right, so that every frame heard can be identified.
// It may be read on a thread of the stream's.
class CountingSource : public audiere::SampleSource {
public:
    explicit CountingSource(int length, int channelCount = 2, int rate = RATE, int readable = -1);

    void getFormat(int& channelCount, int& sampleRate, audiere::SampleFormat& sampleFormat) override;
    int getLength() override { return mLength; }
    int read(int frameCount, void* buffer) override;
    void setPosition(int position) override { mPosition = position; }
    int getPosition() override { return mPosition; }

    static float sample(int frame) { return float(frame) / 1048576.0f; }

    // While it is locked, nothing can be read.
    std::mutex mReading;

private:
    int mLength, mChannelCount, mRate, mReadable;
    std::atomic<int> mPosition = 0;
};

// A device that plays into memory: time is what the test renders.
class Loopback {
public:
    explicit Loopback(int rate = RATE);

    audiere::RefPtr<audiere::AudioDevice> device() { return mDevice; }

    // What is heard in the next `frames`: left and right by turns.
    std::vector<float> render(int frames);

    // The same in frames of the show, 60 per second, with the calls that the driver makes in each.
    std::vector<float> play(audiere::OutputStream& stream, int frames);

    std::atomic<bool> mConnected = true; // false: the device was unplugged

private:
    ALCdevice* mOpenAL;
    audiere::RefPtr<audiere::AudioDevice> mDevice;
};

} // namespace zentrak::test
