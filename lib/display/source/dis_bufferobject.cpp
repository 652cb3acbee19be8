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

void BufferObject::initBO(GLenum target, int entitySize, int numEntities, void* data) {
    mEntitySize = entitySize;
    mEntities = numEntities;
    mTarget = target;
    if (!isSupported()) {
        if (entitySize < 0 || numEntities < 0) {
            mEntities = 0;
            throw Exception("BufferObject; A buffer of %d entries of %d bytes can not be made", numEntities,
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
    GL_CALL(glBufferDataARB( mTarget, GLsizeiptrARB(mEntitySize)*mEntities, data, usage ));
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
    mMapped = true;
    if (!mID)
        return mCompPtr;
    const GLenum access = !write ? GL_READ_ONLY : read ? GL_READ_WRITE : GL_WRITE_ONLY;
    void* memory = nullptr;
    GL_CALL(memory = glMapBuffer(mTarget, access));
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

void BufferObject::replace(int firstEntity, int numEntities, void* data) {
    assert(mBound);
    if (!inRange(firstEntity, numEntities))
        throw Exception("BufferObject; Entries %d and %d more are not in a buffer of %d", firstEntity,
                        numEntities, mEntities);
    if (!data || !numEntities)
        return;
    if (mID)
        GL_CALL(glBufferSubData(mTarget, GLintptr(firstEntity)*mEntitySize, GLsizeiptr(numEntities)*mEntitySize, data));
    else
        std::memcpy(mCompPtr + size_t(firstEntity) * size_t(mEntitySize), data,
                    size_t(numEntities) * size_t(mEntitySize));
}

void BufferObject::clear() {
    release();
}

// What clear does, without a check: it also ends the object's life.
void BufferObject::release() noexcept {
    if (mID && contextIsCurrent(mContext)) {
        if (mMapped) {
            glBindBufferARB(mTarget, mID);
            glUnmapBuffer(mTarget);
            if (!mBound)
                glBindBufferARB(mTarget, 0);
        }
        glDeleteBuffersARB(1, &mID); // a bound name goes back to 0 with it
    }
    delete[] mCompPtr;
    mEntities = mEntitySize = 0;
    mID = 0;
    mBound = mMapped = false;
    mCompPtr = nullptr;
    mTarget = 0;
    mContext = 0;
}

} // namespace zentrak::display
