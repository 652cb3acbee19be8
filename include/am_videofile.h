// A video written or read frame by frame, and the only kind so far: a numbered image file for each frame.
#pragma once

#include "am_image.h"

#include <string>

namespace zentrak::am {

class ArchiveManager;

class VideoFile {
public:
    // Copied as a whole. The rate is mRate / mScale frames a second.
    struct Format {
        int mWidth = 0;  // pixels
        int mHeight = 0; // pixels
        int mRate = 0;   // frames in mScale seconds
        int mScale = 1;  // seconds
    };

    VideoFile() = default;
    VideoFile(const VideoFile&) = delete;
    VideoFile& operator=(const VideoFile&) = delete;
    virtual ~VideoFile();

    virtual bool readFrame();                                        // false
    virtual bool writeFrame();                                       // false
    virtual bool openForRead(const std::string& name);               // false
    virtual bool openForRead(const unsigned char* data, int length); // false
    virtual bool openForWrite(const std::string& name, const Format& format,
                              ArchiveManager* archive); // false

    virtual void attach(Image& image); // the image that readFrame fills and writeFrame writes
    virtual void close();              // drops image and archive

    virtual int getWidth() const;  // 0 until opened
    virtual int getHeight() const; // 0 until opened
    virtual Format getFormat() const;

    // The first implementation that accepts, owned by the caller. They throw "Could not find something that
    // could write to '%s'", "Could not find something that could read from '%s'" and "Could not find
    // something that could read from buffer".
    static VideoFile* createForWrite(const std::string& name, const Format& format, ArchiveManager* archive);
    static VideoFile* createForRead(const std::string& name);
    static VideoFile* createForRead(const unsigned char* data, int length);

protected:
    static VideoFile* getImpl(int index); // a new object, or null past the last implementation
};

static_assert(sizeof(VideoFile::Format) == 16);

// Opened as "dump.png" it writes "dump.000000.png", "dump.000001.png" and so on into the first archive. A
// link with a frame's name is replaced, and no linked folder is entered.
class VideoFileImageDumper : public VideoFile {
public:
    // Writes the attached image under the next number, and ignores a failure to do so. False if the dumper is
    // not open. Throws for a null image and for one held by the image cache.
    bool writeFrame() override;

    using VideoFile::openForRead;
    // False without an archive, for an extension other than "png", and for a name that leaves the archive's
    // folder: an absolute one, or one with "..".
    bool openForWrite(const std::string& name, const Format& format, ArchiveManager* archive) override;

    void attach(Image& image) override; // keeps a handle on the image, which has to be a private one
    void close() override;
    int getWidth() const override;
    int getHeight() const override;
    Format getFormat() const override;

protected:
    ArchiveManager* mArchive = nullptr; // not owned
    Format mFormat;
    int mFrame = 0;         // number of the next frame
    std::string mBase;      // the name up to its last "."
    std::string mExtension; // "png"
    Image mImage;
};

} // namespace zentrak::am
