// A stream on an OpenAL source: a ring of equal buffers, filled with what the sample source decodes, and with
// silence after its end. Because of that silence the position can run past the last frame, so that the end is
// known to have been heard, whatever the delay of the device.
//
// A thread of the stream's own tops up the queue while it plays. Every public call does the same, so that
// what it returns is current. All of them hold mMutex, which guards everything below it, OpenAL's source and
// the sample source included.
#pragma once

#include "audiere_device.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace zentrak::audiere {

class OpenALStream : public OutputStream {
public:
    // Null when the device takes no more sources, or the sample rate is beyond reason.
    static RefPtr<OutputStream> open(const RefPtr<OpenALDevice>& device, const RefPtr<SampleSource>& source);

    void play() override;
    void stop() override;
    bool isPlaying() override;
    void setVolume(float volume) override;
    float getVolume() override;
    void setPosition(int position) override;
    int getPosition() override;
    int getLength() override { return mLength; }

private:
    using Clock = std::chrono::steady_clock;

    OpenALStream(const RefPtr<OpenALDevice>& device, const RefPtr<SampleSource>& source);
    ~OpenALStream() override;

    bool setup();
    void serve();
    void moveTo(int position);
    void update();
    void updateSilently();
    void fill();
    void decode();
    void drop(int count);
    void flush(int position);
    void advance(double position);
    bool isRunning() const;
    double offset(bool heard) const;

    enum {
        BUFFERS_PER_SECOND = 8,
        BUFFER_COUNT = 12, // a second and a half
    };

    const RefPtr<OpenALDevice> mDevice;
    const RefPtr<SampleSource> mSource;
    int mChannelCount = 0; // of the source; two are played in any case
    int mSampleRate = 0;
    int mLength = 0;
    std::mutex mMutex;
    std::condition_variable mChanged; // mPlaying was set, or mQuit
    std::thread mThread;              // starts with the first play
    bool mQuit = false;
    int mBufferFrames = 0;
    std::vector<float> mSamples; // of one buffer, in stereo
    ALuint mName = 0;            // of the OpenAL source
    ALuint mBuffers[BUFFER_COUNT] = {};
    int mFirst = 0;     // index of the oldest buffer queued
    int mQueued = 0;    // how many are, from mFirst on, round the ring
    long mQueuedAt = 0; // frame at the start of mFirst
    int mEnd = 0;       // frame at which the sound ends, as far as known
    int mPosition = 0;  // frame last reported, never past mEnd
    bool mPlaying = false;
    bool mRanOut = false; // played to the end and not moved since
    float mVolume = 1;
    Clock::time_point mUpdated;                   // time of the last update, while playing
    LPALGETSOURCEI64VSOFT mGetSource64 = nullptr; // null without the extension for the device's delay
};

} // namespace zentrak::audiere
