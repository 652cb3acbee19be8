// Decodes images through the codecs and keeps those in use in a cache by name.
#pragma once

#include "am_file.h"
#include "am_image.h"
#include "am_imagecodec.h"

#include <map>
#include <memory>
#include <string>

namespace zentrak::am {

class ImageManager {
public:
    ImageManager(); // registers the codecs "png", "jpg" and "tga"
    ~ImageManager();
    ImageManager(const ImageManager&) = delete;
    ImageManager& operator=(const ImageManager&) = delete;

    Image getImage(const std::string& name) const; // the cached image, or a null image

    // Decodes `file` with the codec for the name's extension, lower-cased. With `writable` false the result
    // is shared and read-only: the cached image of that name, or a new one that is cached while any other
    // handle holds it. With true it is the caller's own. Throws "ImageManager::loadImage, No decoder found
    // for %s" with the name, and what the codec throws.
    Image loadImage(const std::string& name, File file, bool writable);

    // A file called `name` in the format of its extension; empty if no codec writes that. Throws for a null
    // image and for one held by the cache.
    File encodeImage(const std::string& name, Image& image);

    // Drops the cache's reference and returns the number of images dropped, 1. Other handles keep the image
    // as a private one. Throws "ImageManager::removeImage, Image %s not found!".
    int removeImage(const std::string& name);

    std::string getExtension(const std::string& name) const;  // after the last ".", empty if there is none
    ImageCodec* getCodec(const std::string& extension) const; // by lower-case extension; null, owned here
    void empty();                                             // empties the cache; images in use turn private

private:
    ImageCodec* codecFor(const std::string& name) const;

    std::map<std::string, Image> mImageCache;
    std::map<std::string, std::unique_ptr<ImageCodec>> mImageCodecs;
};

} // namespace zentrak::am
