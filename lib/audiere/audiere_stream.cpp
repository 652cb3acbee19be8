#include "audiere_stream.h"

#include <algorithm>

namespace zentrak::audiere {

namespace {

constexpr ALint REMIX_UNMATCHED = 2; // AL_REMIX_UNMATCHED_SOFT, which older headers lack
constexpr int LOWEST_RATE = 1000;    // frames per second
constexpr int HIGHEST_RATE = 768000;
constexpr double LONGEST_DELAY = 0.5;            // seconds; a device that reports more is wrong
constexpr float LOUDEST = 8;                     // louder samples come from damaged files
constexpr std::chrono::milliseconds PERIOD(100); // between top-ups; the queue lasts much longer
constexpr std::chrono::seconds RETRY(2);         // between attempts to open a device that was lost

} // namespace

RefPtr<OutputStream> OpenALStream::open(const RefPtr<OpenALDevice>& device,
                                        const RefPtr<SampleSource>& source) {
    RefPtr<OpenALStream> stream = new OpenALStream(device, source);
    if (!stream->setup())
        return nullptr;
    return stream.get();
}

OpenALStream::OpenALStream(const RefPtr<OpenALDevice>& device, const RefPtr<SampleSource>& source)
    : mDevice(device), mSource(source) {}

// False if the stream can't be opened.
bool OpenALStream::setup() {
    SampleFormat sampleFormat;
    mSource->getFormat(mChannelCount, mSampleRate, sampleFormat);
    mLength = mEnd = mSource->getLength();
    if (mSampleRate < LOWEST_RATE || mSampleRate > HIGHEST_RATE)
        return false;
    mBufferFrames = mSampleRate / BUFFERS_PER_SECOND;
    mSamples.resize(size_t(2 * mBufferFrames));
    mSource->setPosition(0);
    return connect();
}

// Makes the OpenAL source and its buffers on the current device.
bool OpenALStream::connect() {
    device().makeCurrent();
    alGetError();
    alGenSources(1, &mName);
    alGenBuffers(BUFFER_COUNT, mBuffers);
    if (alGetError() != AL_NO_ERROR || !alIsExtensionPresent("AL_EXT_FLOAT32"))
        return false;
    // Left to left and right to right, not through a virtual room around the listener.
    if (alIsExtensionPresent("AL_SOFT_direct_channels_remix"))
        alSourcei(mName, AL_DIRECT_CHANNELS_SOFT, REMIX_UNMATCHED);
    else if (alIsExtensionPresent("AL_SOFT_direct_channels"))
        alSourcei(mName, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
    if (alIsExtensionPresent("AL_SOFT_source_resampler"))
        alSourcei(mName, AL_SOURCE_RESAMPLER_SOFT, alGetInteger(AL_NUM_RESAMPLERS_SOFT) - 1); // the best
    if (alIsExtensionPresent("AL_SOFT_source_latency"))
        mGetSource64 = reinterpret_cast<LPALGETSOURCEI64VSOFT>(alGetProcAddress("alGetSourcei64vSOFT"));
    return true;
}

OpenALStream::~OpenALStream() {
    {
        const std::lock_guard lock(mMutex);
        mQuit = true;
    }
    mChanged.notify_one();
    if (mThread.joinable())
        mThread.join();
    disconnect();
}

void OpenALStream::disconnect() {
    device().makeCurrent();
    if (mName)
        alDeleteSources(1, &mName);
    alDeleteBuffers(BUFFER_COUNT, mBuffers); // 0 is a valid name here
    mName = 0;
    std::fill(std::begin(mBuffers), std::end(mBuffers), 0);
}

// The thread: keeps the queue full while the stream plays.
void OpenALStream::serve() {
    std::unique_lock lock(mMutex);
    while (!mQuit) {
        if (mPlaying) {
            update();
            if (!device().isConnected())
                reconnect(lock);
            mChanged.wait_for(lock, PERIOD);
        } else {
            mChanged.wait(lock);
        }
    }
    device().releaseCurrent();
}

// Continues on the device once it can be opened again. A sound server may take its time to answer, so the
// stream isn't locked meanwhile and goes on in silence.
void OpenALStream::reconnect(std::unique_lock<std::mutex>& lock) {
    if (Clock::now() < mReconnected + RETRY)
        return;
    lock.unlock();
    const RefPtr<OpenALDevice> found = mDevice->reopen();
    lock.lock();
    mReconnected = Clock::now();
    if (!found)
        return;
    update(); // the time that this took
    disconnect();
    device().releaseCurrent();
    mReplacement = found;
    if (!connect()) {
        disconnect();
        device().releaseCurrent();
        mReplacement = nullptr;
        return;
    }
    alSourcef(mName, AL_GAIN, mVolume);
    flush(mPosition);
    if (mPlaying) {
        fill();
        alSourcePlay(mName);
    }
}

void OpenALStream::play() {
    const std::lock_guard lock(mMutex);
    if (mPlaying)
        return;
    if (mRanOut)
        moveTo(0);
    mPlaying = true;
    mUpdated = Clock::now();
    device().makeCurrent();
    fill();
    alSourcePlay(mName);
    if (!mThread.joinable())
        mThread = std::thread(&OpenALStream::serve, this);
    mChanged.notify_one();
}

// What the device has buffered will still be heard, so the position is where OpenAL is, ignoring the latency.
void OpenALStream::stop() {
    const std::lock_guard lock(mMutex);
    update();
    if (!mPlaying)
        return;
    mPlaying = false;
    alSourcePause(mName);
    const double where = offset(false);
    ALint state;
    alGetSourcei(mName, AL_SOURCE_STATE, &state);
    if (state == AL_PAUSED)
        advance(double(mQueuedAt) + where);
}

bool OpenALStream::isPlaying() {
    const std::lock_guard lock(mMutex);
    update();
    return mPlaying;
}

int OpenALStream::getPosition() {
    const std::lock_guard lock(mMutex);
    update();
    return mPosition;
}

void OpenALStream::setVolume(float volume) {
    const std::lock_guard lock(mMutex);
    mVolume = volume > 0 ? std::min(volume, 1.0f) : 0.0f; // NaN is silence
    device().makeCurrent();
    alSourcef(mName, AL_GAIN, mVolume);
}

float OpenALStream::getVolume() {
    const std::lock_guard lock(mMutex);
    return mVolume;
}

void OpenALStream::setPosition(int position) {
    const std::lock_guard lock(mMutex);
    moveTo(position);
}

void OpenALStream::moveTo(int position) {
    device().makeCurrent();
    flush(std::clamp(position, 0, mLength));
    mRanOut = false;
    if (mPlaying) {
        fill();
        alSourcePlay(mName);
    }
}

// Reads how far OpenAL has come, and tops up the queue. A source that ran dry, because this was not called
// for too long, has played everything queued and continues from there.
void OpenALStream::update() {
    if (!mPlaying)
        return;
    device().makeCurrent();
    if (!device().isConnected()) {
        updateSilently();
        return;
    }
    mUpdated = Clock::now();
    // Before the state: a source that stops in between reports offset 0.
    const double where = offset(true);
    if (isRunning())
        advance(double(mQueuedAt) + where);
    else
        advance(double(mQueuedAt) + double(mQueued) * mBufferFrames);
    if (mPosition >= mEnd) {
        mPlaying = false;
        mRanOut = true;
        flush(mPosition);
        return;
    }
    ALint processed;
    alGetSourcei(mName, AL_BUFFERS_PROCESSED, &processed);
    drop(processed);
    const int kept = mQueued;
    fill();
    if (!isRunning()) {
        drop(kept); // played meanwhile
        fill();
        alSourcePlay(mName);
    }
}

// Without a device the stream continues silently: time passes, and it ends when it would have.
void OpenALStream::updateSilently() {
    const std::chrono::duration<double> passed = Clock::now() - mUpdated;
    const int frames = int(std::min(passed.count() * mSampleRate, double(mEnd - mPosition)));
    mUpdated += std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(double(frames) / mSampleRate));
    flush(mPosition + frames);
    if (mPosition >= mEnd) {
        mPlaying = false;
        mRanOut = true;
    }
}

// Fills and queues every free buffer.
void OpenALStream::fill() {
    while (mQueued < BUFFER_COUNT) {
        decode();
        ALuint buffer = mBuffers[(mFirst + mQueued) % BUFFER_COUNT];
        alBufferData(buffer, AL_FORMAT_STEREO_FLOAT32, mSamples.data(),
                     ALsizei(mSamples.size() * sizeof(float)), mSampleRate);
        alSourceQueueBuffers(mName, 1, &buffer);
        ++mQueued;
    }
}

// Decodes the next block into mSamples, with silence after the end.
void OpenALStream::decode() {
    int count = 0;
    if (mSource->getPosition() < mEnd) {
        count = mSource->read(mBufferFrames, mSamples.data());
        if (count < mBufferFrames)
            mEnd = mSource->getPosition();
    }
    if (mChannelCount == 1)
        for (int frame = count; frame-- > 0;)
            mSamples[size_t(2 * frame)] = mSamples[size_t(2 * frame + 1)] = mSamples[size_t(frame)];
    auto end = mSamples.begin() + 2 * count;
    for (auto sample = mSamples.begin(); sample != end; ++sample)
        *sample = *sample == *sample ? std::clamp(*sample, -LOUDEST, LOUDEST) : 0.0f;
    std::fill(end, mSamples.end(), 0.0f);
}

// Removes the oldest `count` buffers, all of them played, from the queue.
void OpenALStream::drop(int count) {
    for (; count > 0 && mQueued > 0; --count) {
        ALuint buffer;
        alSourceUnqueueBuffers(mName, 1, &buffer);
        mFirst = (mFirst + 1) % BUFFER_COUNT;
        mQueuedAt += mBufferFrames;
        --mQueued;
    }
}

// Stops OpenAL, empties the queue, and moves everything to `position`.
void OpenALStream::flush(int position) {
    alSourceStop(mName);
    alSourcei(mName, AL_BUFFER, 0);
    mQueued = 0;
    mQueuedAt = position;
    mPosition = position;
    mSource->setPosition(position);
}

// The position never goes back by itself: a device's latency is a fluctuating estimate.
void OpenALStream::advance(double position) {
    mPosition = int(std::min(std::max(position, double(mPosition)), double(mEnd)));
}

bool OpenALStream::isRunning() const {
    ALint state;
    alGetSourcei(mName, AL_SOURCE_STATE, &state);
    return state == AL_PLAYING;
}

// Frames from the start of the queue to the one being mixed or, if `heard`, the one being heard.
double OpenALStream::offset(bool heard) const {
    if (!heard || !mGetSource64) {
        ALint frames = 0;
        alGetSourcei(mName, AL_SAMPLE_OFFSET, &frames);
        return frames;
    }
    ALint64SOFT both[2] = {}; // frames in 32.32 fixed point; latency in ns
    mGetSource64(mName, AL_SAMPLE_OFFSET_LATENCY_SOFT, both);
    const double delay = std::clamp(double(both[1]) / 1e9, 0.0, LONGEST_DELAY);
    return double(both[0]) / 4294967296.0 - delay * mSampleRate;
}

} // namespace zentrak::audiere
