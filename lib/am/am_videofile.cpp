#include "am_videofile.h"

#include "am_archivemanager.h"
#include "am_text.h"
#include "ztk_system.h"

#include <cstdio>
#include <memory>

namespace zentrak::am {

namespace {

std::string frameName(const std::string& base, int frame, const std::string& extension) {
    constexpr char format[] = "%s.%06d.%s";
    int length = std::snprintf(nullptr, 0, format, base.c_str(), frame, extension.c_str());
    std::string name(size_t(length) + 1, '\0');
    std::snprintf(name.data(), name.size(), format, base.c_str(), frame, extension.c_str());
    name.resize(size_t(length));
    return name;
}

} // namespace

VideoFile::~VideoFile() = default;

bool VideoFile::readFrame() {
    return false;
}

bool VideoFile::writeFrame() {
    return false;
}

bool VideoFile::openForRead(const std::string&) {
    return false;
}

bool VideoFile::openForRead(const unsigned char*, int) {
    return false;
}

bool VideoFile::openForWrite(const std::string&, const Format&, ArchiveManager*) {
    return false;
}

void VideoFile::attach(Image&) {}

void VideoFile::close() {}

int VideoFile::getWidth() const {
    return 0;
}

int VideoFile::getHeight() const {
    return 0;
}

VideoFile::Format VideoFile::getFormat() const {
    return Format();
}

VideoFile* VideoFile::getImpl(int index) {
    return index == 0 ? new VideoFileImageDumper() : nullptr;
}

VideoFile* VideoFile::createForWrite(const std::string& name, const Format& format, ArchiveManager* archive) {
    for (int i = 0; std::unique_ptr<VideoFile> video{getImpl(i)}; ++i)
        if (video->openForWrite(name, format, archive))
            return video.release();
    throw Exception("Could not find something that could write to '%s'", name.c_str());
}

VideoFile* VideoFile::createForRead(const std::string& name) {
    for (int i = 0; std::unique_ptr<VideoFile> video{getImpl(i)}; ++i)
        if (video->openForRead(name))
            return video.release();
    throw Exception("Could not find something that could read from '%s'", name.c_str());
}

VideoFile* VideoFile::createForRead(const unsigned char* data, int length) {
    for (int i = 0; std::unique_ptr<VideoFile> video{getImpl(i)}; ++i)
        if (video->openForRead(data, length))
            return video.release();
    throw Exception("Could not find something that could read from buffer");
}

// Without a dot the whole name is both base and extension: "png" gives "png.000000.png".
bool VideoFileImageDumper::openForWrite(const std::string& name, const Format& format,
                                        ArchiveManager* archive) {
    const std::string extension = extensionOf(name, name);
    if (!archive || extension != "png" || !staysInFolder(name))
        return false;
    mArchive = archive;
    mFormat = format;
    mFrame = 0;
    mBase = name.substr(0, name.rfind('.'));
    mExtension = extension;
    return true;
}

bool VideoFileImageDumper::writeFrame() {
    if (!mArchive)
        return false;
    mArchive->writeImage(frameName(mBase, mFrame, mExtension), mImage);
    ++mFrame;
    return true;
}

void VideoFileImageDumper::attach(Image& image) {
    mImage = image;
}

void VideoFileImageDumper::close() {
    mImage.release();
    mArchive = nullptr;
}

int VideoFileImageDumper::getWidth() const {
    return mFormat.mWidth;
}

int VideoFileImageDumper::getHeight() const {
    return mFormat.mHeight;
}

VideoFile::Format VideoFileImageDumper::getFormat() const {
    return mFormat;
}

} // namespace zentrak::am
