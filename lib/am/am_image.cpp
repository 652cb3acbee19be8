#include "am_image.h"

#include "am_imagemanager.h"
#include "ztk_system.h"

#include <exception>
#include <memory>
#include <utility>

namespace zentrak::am {

ImageObject::~ImageObject() {
    delete[] mImageData;
}

void ImageObject::resize(int width, int height) {
    if (width < 0 || height < 0)
        width = height = 0;
    size_t bytes = size_t(width) * size_t(height) * 4;
    setData(bytes ? new unsigned char[bytes]() : nullptr, width, height);
}

void ImageObject::setData(unsigned char* data) {
    if (data != mImageData)
        delete[] mImageData;
    mImageData = data;
}

void ImageObject::setData(unsigned char* data, int width, int height) {
    setData(data);
    mImageWidth = width;
    mImageHeight = height;
}

unsigned char* ImageObject::getWriteData() {
    if (mLoader)
        throw Exception("ImageObbject::getWriteData, Access not allowed!");
    return mImageData;
}

// Removing the image from its cache calls this function again for the cache's reference, which deletes the
// counter: don't touch members after that.
void ImageRefCounter::decRef(ImageObject*) {
    if (mRef > 0)
        --mRef;
    if (mObject && mObject->getManager() && mRef == 1) {
        mObject->getManager()->removeImage(mObject->getId());
        return;
    }
    if (mRef == 0) {
        delete mObject;
        delete this;
    }
}

Image::Image(ImageObject* object) {
    assign(object);
}

Image::Image(const Image& other) {
    assign(other);
}

Image::Image(Image&& other) noexcept : mObjectRef(std::exchange(other.mObjectRef, nullptr)) {}

// An image whose name or manager was changed by hand is in no cache. Removing it fails, which is logged, but
// the reference is dropped all the same.
Image::~Image() {
    try {
        release();
    } catch (const std::exception&) {
    }
}

Image& Image::operator=(const Image& other) {
    assign(other);
    return *this;
}

Image& Image::operator=(Image&& other) noexcept {
    Image taken(std::move(other));
    std::swap(mObjectRef, taken.mObjectRef);
    return *this;
}

void Image::assign(const Image& other) {
    ImageRefCounter* counter = other.mObjectRef;
    if (counter == mObjectRef)
        return;
    if (counter)
        counter->addRef();
    Image old;
    old.mObjectRef = std::exchange(mObjectRef, counter);
}

void Image::assign(ImageObject* object) {
    if (object && mObjectRef && mObjectRef->getObject() == object)
        return;
    std::unique_ptr<ImageObject> guard(object);
    ImageRefCounter* counter = object ? new ImageRefCounter(object) : nullptr;
    guard.release();
    if (counter)
        counter->addRef();
    Image old;
    old.mObjectRef = std::exchange(mObjectRef, counter);
}

void Image::release() {
    if (ImageRefCounter* counter = std::exchange(mObjectRef, nullptr))
        counter->decRef(counter->getObject());
}

ImageObject* Image::operator->() const {
    if (!mObjectRef)
        throw Exception("Image::operator->() - Attempt to dereference (NULL)ImageObject!");
    return mObjectRef->getObject();
}

ImageObject& Image::operator*() const {
    if (!mObjectRef)
        throw Exception("Image::operator*() Attempt to dereference (NULL)ImageObject!");
    return *mObjectRef->getObject();
}

} // namespace zentrak::am
