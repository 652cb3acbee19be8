#include "dis_bufferobject.h"

#include "dis_context.h"
#include "ztk_system.h"

#include <cassert>
#include <cstring>

namespace zentrak::display {

BufferObject::BufferObject(DisplayGL* display)
    : Resource(display, STATIC),
      mEntities(0),
      mEntitySize(0),
      mID(0),
      mBound(false),
      mMapped(false),
      mCompPtr(nullptr),
      mTarget(0),
      mContext(0) {}

BufferObject::~BufferObject() {
    release();
}

bool BufferObject::isSupported() {
    return DisplayGL::hasExtension("GL_ARB_vertex_buffer_object");
}

void BufferObject::initBO(GLenum target, int entitySize, int count, void* data) {
    const GLsizeiptrARB numEntities = count; // as wide as its product with the size may be
    mEntitySize = entitySize;
    mEntities = count;
    mTarget = target;
    if (!isSupported()) {
        if (entitySize < 0 || numEntities < 0) {
            mEntities = 0;
            throw Exception("BufferObject; A buffer of %d entries of %d bytes can not be made", count,
                            entitySize);
        }
        const size_t bytes = size_t(entitySize) * size_t(numEntities);
        mCompPtr = new uint8_t[bytes]();
        if (data)
            std::memcpy(mCompPtr, data, bytes);
        return;
    }
    const GLenum usage = mResourceMode == STREAM    ? GL_STREAM_DRAW
                         : mResourceMode == DYNAMIC ? GL_DYNAMIC_DRAW
                                                    : GL_STATIC_DRAW;
    GL_CALL(glGenBuffersARB(1, &mID));
    mContext = currentContext();
    GL_CALL(glBindBufferARB(mTarget, mID));
    GL_CALL(glBufferDataARB( mTarget, mEntitySize*numEntities, data, usage ));
    GL_CALL(glBindBufferARB(mTarget, 0));
}

void BufferObject::bind() {
    assert(mBound==false);
    if (mID)
        GL_CALL(glBindBufferARB(mTarget, mID));
    mBound = true;
}

void BufferObject::unbind() {
    assert(mBound);
    mBound = false;
    if (mID)
        GL_CALL(glBindBufferARB(mTarget, 0));
}

void* BufferObject::lock(bool write, bool read) {
    assert(write==true || read==true);
    assert(mBound);
    if (!mID) {
        mMapped = true;
        return mCompPtr;
    }
    if (!mEntities || !mEntitySize)
        return nullptr; // OpenGL maps no empty buffer
    const GLenum access = !write ? GL_READ_ONLY : read ? GL_READ_WRITE : GL_WRITE_ONLY;
    void* memory = nullptr;
    GL_CALL(memory = glMapBuffer(mTarget, access));
    mMapped = memory != nullptr;
    return memory;
}

void BufferObject::unlock() {
    if (mID && mMapped) {
        GLboolean whole = GL_TRUE;
        GL_CALL(whole = glUnmapBuffer(mTarget));
        if (whole != GL_TRUE)
            ZTK_LOG("warning", "display", "Buffer object corrupted?!");
    }
    mMapped = false;
}

// Whether the entries are all inside the buffer.
bool BufferObject::inRange(int firstEntity, int numEntities) const {
    return firstEntity >= 0 && numEntities >= 0 && numEntities <= mEntities &&
           firstEntity <= mEntities - numEntities;
}

void BufferObject::replace(int first, int count, void* data) {
    assert(mBound);
    if (!inRange(first, count))
        throw Exception("BufferObject; Entries %d and %d more are not in a buffer of %d", first, count,
                        mEntities);
    if (!data || !count)
        return;
    const GLintptr firstEntity = first, numEntities = count; // as wide as their products may be
    if (mID)
        GL_CALL(glBufferSubData(mTarget, firstEntity*mEntitySize, numEntities*mEntitySize, data));
    else
        std::memcpy(mCompPtr + size_t(firstEntity) * size_t(mEntitySize), data,
                    size_t(numEntities) * size_t(mEntitySize));
}

void BufferObject::clear() {
    struct Released {
        BufferObject& buffer;
        ~Released() { buffer.release(); }
    } released{*this};
    unmap();
    if (mID && contextIsCurrent(mContext))
        GL_CALL(glDeleteBuffersARB(1, &mID));
}

void BufferObject::unmap() noexcept {
    if (mID && mMapped && contextIsCurrent(mContext)) {
        glBindBufferARB(mTarget, mID);
        glUnmapBuffer(mTarget);
        if (!mBound)
            glBindBufferARB(mTarget, 0);
    }
    mMapped = false;
}

// clear() without its check, for the destructor too.
void BufferObject::release() noexcept {
    unmap();
    if (mID && contextIsCurrent(mContext))
        glDeleteBuffersARB(1, &mID); // a bound name goes back to 0 with it; one that is gone is ignored
    delete[] mCompPtr;
    mEntities = mEntitySize = 0;
    mID = 0;
    mBound = mMapped = false;
    mCompPtr = nullptr;
    mTarget = 0;
    mContext = 0;
}

} // namespace zentrak::display
