// A stream on an OpenAL source: a ring of equal buffers, filled from the sample source and, after its end,
// with silence. Thanks to that silence the position can pass the last frame, which shows that the end has
// been heard, whatever the latency of the device.
//
// Each stream has a thread that tops up the queue while it plays. Every public call does the same, so that
// what it returns is current. All of them hold mMutex, which guards everything below it, including the OpenAL
// source and the sample source.
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
    // Null if the device has no more sources or the sample rate is out of range.
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

    OpenALDevice& device() const { return mReplacement ? *mReplacement : *mDevice; }
    bool setup();
    bool connect();
    void disconnect();
    void serve();
    void reconnect(std::unique_lock<std::mutex>& lock);
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
    int mChannelCount = 0; // of the source; output is always stereo
    int mSampleRate = 0;
    int mLength = 0;
    std::mutex mMutex;
    std::condition_variable mChanged; // mPlaying was set, or mQuit
    std::thread mThread;              // starts with the first play
    bool mQuit = false;
    RefPtr<OpenALDevice> mReplacement; // of a device that was lost; this stream's alone
    Clock::time_point mReconnected;    // time of the last attempt
    int mBufferFrames = 0;
    std::vector<float> mSamples; // of one buffer, in stereo
    ALuint mName = 0;            // of the OpenAL source
    ALuint mBuffers[BUFFER_COUNT] = {};
    int mFirst = 0;     // index of the oldest buffer queued
    int mQueued = 0;    // number of buffers queued from mFirst
    long mQueuedAt = 0; // frame at the start of mFirst
    int mEnd = 0;       // frame at which the sound ends, as far as known
    int mPosition = 0;  // frame last reported, never past mEnd
    bool mPlaying = false;
    bool mRanOut = false; // played to the end, position not set since
    float mVolume = 1;
    Clock::time_point mUpdated;                   // time of the last update, while playing
    LPALGETSOURCEI64VSOFT mGetSource64 = nullptr; // null without the latency extension
};

} // namespace zentrak::audiere
