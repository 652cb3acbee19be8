// Sound: a device, a file in memory, a source of samples decoded from it, and a stream that plays the source.
//
// Every call is made from one thread. A playing stream decodes on a thread of its own, which keeps a second
// and a half queued and ends with the stream: the music goes on while its user is busy or asleep.
#pragma once

#include <utility>

namespace zentrak::audiere {

// The base of all objects here: an object counts its references and deletes itself when the last one goes.
// The count starts at 0; the RefPtr that an entry point returns is the first reference. Not thread-safe.
class RefCounted {
public:
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

    void ref() { ++mRefCount; }
    void unref() {
        if (--mRefCount == 0)
            delete this;
    }

protected:
    RefCounted() = default;
    virtual ~RefCounted() = default;

private:
    int mRefCount = 0;
};

// A reference to a T, or null. It keeps the object alive.
template <typename T>
class RefPtr {
public:
    RefPtr() = default;
    RefPtr(T* object) : mObject(object) { // may be null
        if (mObject)
            mObject->ref();
    }
    RefPtr(const RefPtr& other) : RefPtr(other.mObject) {}
    RefPtr(RefPtr&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
    ~RefPtr() {
        if (mObject)
            mObject->unref();
    }
    RefPtr& operator=(RefPtr other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }

    T* get() const { return mObject; }
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    explicit operator bool() const { return mObject != nullptr; }
    bool operator==(const RefPtr& other) const { return mObject == other.mObject; }

private:
    T* mObject = nullptr;
};

// The type of one sample of one channel.
enum SampleFormat {
    SF_F32, // float, full scale is -1 to 1; louder peaks are not clipped
};

// A seekable sequence of bytes.
class File : public RefCounted {
public:
    // What seek counts from.
    enum SeekMode { BEGIN, CURRENT, END };

    // Reads up to `size` bytes; returns how many: fewer only at the end of the file.
    virtual int read(void* buffer, int size) = 0;

    // Moves to a byte. False, and nothing moved, outside 0 to the size of the file.
    virtual bool seek(int position, SeekMode mode) = 0;

    // Bytes from the beginning.
    virtual int tell() = 0;
};

// Decoded sound. Lengths and positions are in frames: one sample of each channel.
class SampleSource : public RefCounted {
public:
    // One or two channels; frames per second; the type of a sample.
    virtual void getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) = 0;

    virtual int getLength() = 0;

    // Reads up to `frameCount` frames, channels interleaved; returns how many: fewer only at the end.
    virtual int read(int frameCount, void* buffer) = 0;

    // The next frame to be read; exact, and clamped to 0..length.
    virtual void setPosition(int position) = 0;
    virtual int getPosition() = 0;
};

// A sound device. Streams opened on it keep it alive. If it is lost, playing streams go on in silence, and
// look for it every two seconds.
class AudioDevice : public RefCounted {};

// One sound on a device. It starts out stopped, at the beginning, at full volume.
class OutputStream : public RefCounted {
public:
    // Plays on from the current position. A stream that ran out starts again from the beginning, unless
    // setPosition has moved it since. No effect on a playing stream.
    virtual void play() = 0;

    // Goes silent and keeps the position. No effect on a stopped stream.
    virtual void stop() = 0;

    // True from play until stop, or until the last frame was heard.
    virtual bool isPlaying() = 0;

    // 0 is silence, 1 the sound as it is; clamped to that range.
    virtual void setVolume(float volume) = 0;
    virtual float getVolume() = 0;

    // Moves to a frame, clamped to 0..length. A playing stream plays on from there at once, and has run out
    // if that is the length; a stopped one stays stopped.
    virtual void setPosition(int position) = 0;

    // The frame being heard. Constant while stopped, and the length after the last frame (for a damaged file:
    // the first frame that could not be read).
    virtual int getPosition() = 0;

    virtual int getLength() = 0; // in frames
};

// Opens a sound device: the system's default for "autodetect", "" or null, else the one of that name.
// `parameters` is not used and may be null. Null when there is none.
RefPtr<AudioDevice> AdrOpenDevice(const char* name, const char* parameters);

// A file that holds a copy of the `size` bytes at `data`. Null when `size` is negative, or `data` is null and
// `size` isn't 0.
RefPtr<File> AdrCreateMemoryFile(const void* data, int size);

// A source that decodes `file`: Vorbis, FLAC, WAV, MP3 or a tracker module, recognised by its first bytes.
// `format` must be 0. More than two channels are mixed down to two. The source keeps the file alive and must
// be its only user. Null when the file is null or can't be decoded.
RefPtr<SampleSource> AdrOpenSampleSourceFromFile(const RefPtr<File>& file, int format);

// A stream that plays `source` on `device`; it keeps both alive and must be the only user of the source,
// which it reads on its own thread. `streaming` is not used: every stream decodes while it plays. Null when
// one of them is null or the device takes no more.
RefPtr<OutputStream> AdrOpenSound(const RefPtr<AudioDevice>& device, const RefPtr<SampleSource>& source,
                                  bool streaming);

} // namespace zentrak::audiere
