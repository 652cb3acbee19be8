// Pixels in memory, and the counted handle through which they are held.
#pragma once

#include <string>

namespace zentrak::am {

class ImageManager;

// A block of pixels: 4 bytes each in the order blue, green, red, alpha; rows from the top, without padding.
class ImageObject {
public:
    ImageObject() = default;
    ImageObject(const ImageObject&) = delete;
    ImageObject& operator=(const ImageObject&) = delete;
    ~ImageObject();

    ImageManager* getManager() const { return mLoader; } // null for a private image
    void setManager(ImageManager* manager) { mLoader = manager; }
    const std::string& getId() const { return mId; }
    void setId(const std::string& id) { mId = id; }

    // Sets the size and makes new pixels, all zero. With a side of 0 there are none; with a negative one the
    // size becomes 0 by 0.
    void resize(int width, int height);

    // Takes over an array of width * height * 4 bytes made with new[], or null; the old one is freed. The
    // short form keeps the size.
    void setData(unsigned char* data);
    void setData(unsigned char* data, int width, int height);

    int getWidth() const { return mImageWidth; }
    int getHeight() const { return mImageHeight; }
    const unsigned char* getData() const { return mImageData; } // null when the image has no pixels

    // The pixels for writing. Throws "ImageObbject::getWriteData, Access not allowed!" if a manager holds the
    // image.
    unsigned char* getWriteData();

private:
    std::string mId;                     // the name
    ImageManager* mLoader = nullptr;     // not owned
    int mImageWidth = 0;                 // pixels
    int mImageHeight = 0;                // pixels
    unsigned char* mImageData = nullptr; // owned
};

// The object and the number of handles on it.
class ImageRefCounter {
public:
    explicit ImageRefCounter(ImageObject* object) : mObject(object) {} // takes over the object
    ImageRefCounter(const ImageRefCounter&) = delete;
    ImageRefCounter& operator=(const ImageRefCounter&) = delete;

    void addRef() { ++mRef; }
    int getRef() const { return mRef; }

    // Drops a reference. When only the cache's is left, the image leaves the cache; when none is left, the
    // object and this counter are deleted.
    void decRef(ImageObject* object);

    ImageObject* getObject() const { return mObject; }

private:
    ~ImageRefCounter() = default; // only by decRef

    ImageObject* mObject;
    int mRef = 0;
};

// A handle on an image, possibly null. Copies share the image.
class Image {
public:
    Image() = default;
    explicit Image(ImageObject* object); // takes over an object made with new; null makes a null image
    Image(const Image& other);
    Image(Image&& other) noexcept;
    ~Image();
    Image& operator=(const Image& other);
    Image& operator=(Image&& other) noexcept;

    void assign(const Image& other);
    void assign(ImageObject* object); // takes over an object made with new, as the constructor does
    void release();                   // makes the handle null
    bool isNull() const { return !mObjectRef; }

    // The image. A null handle throws "Image::operator->() - Attempt to dereference (NULL)ImageObject!" and
    // "Image::operator*() Attempt to dereference (NULL)ImageObject!".
    ImageObject* operator->() const;
    ImageObject& operator*() const;

    int getRef() const { return mObjectRef ? mObjectRef->getRef() : 0; } // handles on the image, 0 when null

private:
    ImageRefCounter* mObjectRef = nullptr;
};

} // namespace zentrak::am
