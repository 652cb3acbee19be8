#include "am_imagemanager.h"

#include "am_imagecodecjpeg.h"
#include "am_imagecodecpng.h"
#include "am_imagecodectga.h"
#include "am_text.h"
#include "ztk_system.h"

#include <memory>
#include <utility>

namespace zentrak::am {

ImageManager::ImageManager() {
    const auto add = [this](std::unique_ptr<ImageCodec> codec) {
        mImageCodecs[codec->getFormatString()] = std::move(codec);
    };
    add(std::make_unique<ImageCodecPNG>());
    add(std::make_unique<ImageCodecJPEG>());
    add(std::make_unique<ImageCodecTGA>());
}

ImageManager::~ImageManager() {
    empty();
}

Image ImageManager::getImage(const std::string& name) const {
    auto found = mImageCache.find(name);
    return found == mImageCache.end() ? Image() : found->second;
}

Image ImageManager::loadImage(const std::string& name, File file, bool writable) {
    if (!writable) {
        Image cached = getImage(name);
        if (!cached.isNull())
            return cached;
    }
    auto object = std::make_unique<ImageObject>();
    object->setId(name);
    object->setManager(writable ? nullptr : this);

    ImageCodec* codec = codecFor(name);
    if (!codec)
        throw Exception("ImageManager::loadImage, No decoder found for %s", name.c_str());
    bool hasBytes = !file.isNull() && file->data && file->length > 0;
    readNamed(name, [&] {
        codec->decodeImage(hasBytes ? file->data : nullptr,
                           hasBytes ? static_cast<unsigned long>(file->length) : 0, *object);
    });

    Image image(object.release());
    if (!writable)
        mImageCache[name] = image;
    return image;
}

File ImageManager::encodeImage(const std::string& name, Image& image) {
    ImageCodec* codec = codecFor(name);
    if (!codec || !codec->canWrite())
        return File();
    auto file = std::make_unique<FileStructure>();
    unsigned long length = 0;
    if (!codec->encodeImage(&file->data, &length, *image))
        return File();
    file->filename = name;
    file->length = long(length);
    return File(file.release());
}

// An image that is still in use turns private, as in empty().
int ImageManager::removeImage(const std::string& name) {
    auto found = mImageCache.find(name);
    if (found == mImageCache.end())
        throw Exception("ImageManager::removeImage, Image %s not found!", name.c_str());
    Image image = std::move(found->second);
    mImageCache.erase(found);
    image->setManager(nullptr);
    return 1;
}

std::string ImageManager::getExtension(const std::string& name) const {
    return extensionOf(name, std::string());
}

ImageCodec* ImageManager::getCodec(const std::string& extension) const {
    auto found = mImageCodecs.find(extension);
    return found == mImageCodecs.end() ? nullptr : found->second.get();
}

ImageCodec* ImageManager::codecFor(const std::string& name) const {
    return getCodec(toLower(getExtension(name)));
}

void ImageManager::empty() {
    for (auto& [name, image] : mImageCache)
        image->setManager(nullptr);
    mImageCache.clear();
}

} // namespace zentrak::am
