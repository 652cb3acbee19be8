// An OpenGL buffer of entries of one size, or plain memory where buffers are not supported.
#pragma once

#include "dis_resource.h"

#include <GL/glew.h>
#include <cstdint>

namespace zentrak::display {

// Without GL_ARB_vertex_buffer_object the entries lie in process memory, with the same interface. A
// buffer doesn't outlive its context: when the window is opened again, its owner sets it up again.
class BufferObject : public Resource {
public:
    explicit BufferObject(
        DisplayGL* display); // the mode is STATIC; setResourceMode before the set-up changes it
    ~BufferObject() override;
    BufferObject(const BufferObject&) = delete;
    BufferObject& operator=(const BufferObject&) = delete;

    static bool isSupported(); // GL_ARB_vertex_buffer_object

    virtual void bind();   // for writing and for drawing; asserts "mBound==false"
    virtual void unbind(); // asserts "mBound"
    virtual void clear();  // frees everything; a bound buffer is unbound, a current one leaves its display

    // Makes `count` entries of `entitySize` bytes; `data` holds them all, or is null. Nothing is bound
    // afterwards. What was held before is not freed: clear() does that.
    void initBO(GLenum target, int entitySize, int count, void* data);

    // The entries' memory, for writing, reading or both, until unlock(); null if OpenGL refuses or there are
    // no entries. Asserts "write==true || read==true" and "mBound".
    void* lock(bool write, bool read);
    void unlock(); // a damaged buffer is a warning: "Buffer object corrupted?!"

    // Replaces `count` entries from `first` on by those in `data`. Asserts "mBound". A range
    // outside the buffer throws Exception.
    void replace(int first, int count, void* data);

    int getEntitySize() const { return mEntitySize; } // bytes
    int getSize() const { return mEntities; }         // entries

protected:
    bool inRange(int firstEntity, int numEntities) const;

    int mEntities;   // entries
    int mEntitySize; // bytes of one
    GLuint mID;      // 0 when emulated
    bool mBound;
    bool mMapped;
    uint8_t* mCompPtr; // the emulation's memory; null with a buffer of OpenGL
    GLenum mTarget;

private:
    void unmap() noexcept;
    void release() noexcept;

    int mContext; // the opening of the window that the buffer belongs to
};

} // namespace zentrak::display
