// Shared by the tests of sound: files in every format, sources of known samples, and a device that plays into
// memory.
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

// The bytes of a sound file made by stock tools, cached for the whole run: three seconds of a sweep and
// noise, stereo at 44100 Hz unless the name says otherwise. Names: wav, wav8, wav24, wavfloat, wavmono, flac,
// ogg, oggmono, mp3, mp3vbr, mp3bare (variable rate without a length header), and mod (a tracker module of
// our own).
const std::string& sound(const std::string& name);

// All names for sound().
const std::vector<std::string>& soundNames();

// A file of these bytes, and its source; null if it can't be decoded.
audiere::RefPtr<audiere::File> memoryFile(const std::string& bytes);
audiere::RefPtr<audiere::SampleSource> openSource(const std::string& bytes);

// Everything from the current position of the source, in reads of odd sizes.
std::vector<float> readAll(audiere::SampleSource& source);

// Waits until `condition` holds. Returns false, and fails the test, if it doesn't within a minute.
bool waitFor(const std::function<bool()>& condition);

// Frame n is n / 2^20 on the left and its negative on the right, which identifies every frame heard. May be
// read on a stream's thread.
class CountingSource : public audiere::SampleSource {
public:
    explicit CountingSource(int length, int channelCount = 2, int rate = RATE, int readable = -1);

    void getFormat(int& channelCount, int& sampleRate, audiere::SampleFormat& sampleFormat) override;
    int getLength() override { return mLength; }
    int read(int frameCount, void* buffer) override;
    void setPosition(int position) override { mPosition = position; }
    int getPosition() override { return mPosition; }

    static float sample(int frame) { return float(frame) / 1048576.0f; }

    // While locked, reads block.
    std::mutex mReading;

private:
    int mLength, mChannelCount, mRate, mReadable;
    std::atomic<int> mPosition = 0;
};

// A device that plays into memory: time advances as the test renders.
class Loopback {
public:
    explicit Loopback(int rate = RATE);

    const audiere::RefPtr<audiere::AudioDevice>& device() const { return mDevice; }

    // The next `frames` as heard, left and right interleaved.
    std::vector<float> render(int frames);

    // The same in video frames, 60 per second, with the calls that the driver makes in each.
    std::vector<float> play(audiere::OutputStream& stream, int frames);

    std::atomic<bool> mConnected = true;          // false: the device was unplugged
    std::atomic<const Loopback*> mNext = nullptr; // what is opened instead of it

private:
    ALCdevice* mOpenAL;
    audiere::RefPtr<audiere::AudioDevice> mDevice;
};

} // namespace zentrak::test
