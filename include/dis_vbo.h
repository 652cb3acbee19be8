// A buffer of vertices.
#pragma once

#include "dis_bufferobject.h"
#include "dis_vertexformat.h"

namespace zentrak::display {

// Drawn by DisplayGL::draw, after DisplayGL::setVBO.
class VBO : public BufferObject {
public:
    explicit VBO(DisplayGL* display);
    ~VBO() override;

    // Makes room for `numVertices` of `format`, which is not owned and must live as long as this; `data`
    // holds them, or is null. Throws "Your card does not support multi-texturing" and "Your card does not
    // support %d texture channels (only %d)"; missing buffers and a size beyond what the driver recommends
    // are warnings.
    void setup(const VertexDef& format, int numVertices, void* data);

    void bind() override;   // and enables the arrays of the format's channels
    void unbind() override; // and disables exactly these
    void clear() override;

    static void unbindAny(); // no buffer of vertices is bound in OpenGL; arrays are not touched

    const VertexDef* getFormat() const { return mFormat; } // null until setup

private:
    void leaveDisplay() noexcept;

    const VertexDef* mFormat; // not owned
};

// A VBO that knows the type of its vertices.
template <class T>
class VBO_wrap : public VBO {
public:
    explicit VBO_wrap(DisplayGL* display) : VBO(display) {}

    void setup(int numVertices, T* data) { VBO::setup(T::format, numVertices, data); }
    T* lock(bool write, bool read) { return static_cast<T*>(VBO::lock(write, read)); }
    void replace(int firstEntity, int numEntities, T* data) { VBO::replace(firstEntity, numEntities, data); }
};

} // namespace zentrak::display
