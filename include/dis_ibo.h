// A buffer of indices.
#pragma once

#include "dis_bufferobject.h"

namespace zentrak::display {

// Drawn by DisplayGL::draw, after DisplayGL::setIBO.
class IBO : public BufferObject {
public:
    enum Format : int {
        FORMAT_NONE = 0,
        FORMAT_UINT8 = 5121,  // GL_UNSIGNED_BYTE
        FORMAT_UINT16 = 5123, // GL_UNSIGNED_SHORT
        FORMAT_UINT32 = 5125  // GL_UNSIGNED_INT
    };

    explicit IBO(DisplayGL* display);
    ~IBO() override;

    // Makes room for `numIndices` of `format`; `data` holds them, or is null. Any other format throws "Wrong
    // format for IBO::setup!". Missing buffers and a size beyond what the driver recommends are warnings.
    void setup(Format format, int numIndices, void* data);

    // The same from indices of another format, adding `offset` to each; what does not fit into `format` loses
    // its upper bits. With equal formats the data is taken as it is, and `offset` is ignored. A source of any
    // other format throws "IBO::setup; Unknown dataformat".
    void setup(Format format, int numIndices, void* data, int offset, Format sourceFormat);

    // Replaces indices likewise, adding `offset` also where the formats are equal. Asserts "mBound".
    void replace(int firstEntity, int numEntities, void* data, int offset, Format sourceFormat);
    using BufferObject::replace;

    // The first index, as the last argument of glDrawElements: an offset into the buffer, or an address under
    // emulation.
    const void* getPointerGL(int firstIndex) const;
    GLenum getFormatGL() const { return GLenum(mFormat); }

    // The range of vertices that the indices use; recorded, but not read.
    void setLimits(int first, int last);
    bool isLimited() const { return mLow >= 0 && mHigh >= mLow; }
    int getFirstIndex() const { return mLow; } // -1 without limits
    int getLastIndex() const { return mHigh; } // -1 without limits

    void clear() override;

    static void unbindAny(); // no buffer of indices is bound in OpenGL

private:
    void leaveDisplay() noexcept;

    int mLow;
    int mHigh;
    Format mFormat;
};

} // namespace zentrak::display
