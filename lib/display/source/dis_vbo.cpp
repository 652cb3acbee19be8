#include "dis_vbo.h"

#include "ztk_system.h"

#include <cstdint>

namespace zentrak::display {

namespace {

constexpr GLuint FIRST_ATTRIB = 6; // the slot of va[0]

// Slots from uv[0] to the last one in use; a driver needs as many texture units.
int unitsOf(const VertexDef& format) {
    int units = 0;
    for (int i = 0; i < VertexDef::UVS; ++i)
        if (VertexDef::present(format.uv[i]))
            units = i + 1;
    for (int i = 0; i < VertexDef::VAS; ++i)
        if (VertexDef::present(format.va[i]))
            units = VertexDef::UVS + i + 1;
    return units;
}

void checkUnits(const VertexDef& format) {
    const int needed = unitsOf(format);
    if (needed <= 1)
        return;
    if (!DisplayGL::hasExtension("GL_ARB_multitexture"))
        throw Exception("Your card does not support multi-texturing");
    GLint units = 0;
    if (DisplayGL::hasExtension("GL_ARB_fragment_program"))
        GL_CALL(glGetIntegerv(GL_MAX_TEXTURE_COORDS, &units));
    else
        GL_CALL(glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units));
    if (needed > units)
        throw Exception("Your card does not support %d texture channels (only %d)", needed, units);
}

} // namespace

VBO::VBO(DisplayGL* display) : BufferObject(display), mFormat(nullptr) {}

VBO::~VBO() {
    leaveDisplay();
}

void VBO::setup(const VertexDef& format, int numVertices, void* data) {
    clear();
    if (!isSupported())
        ZTK_LOG("warning", "display", "GL_ARB_vertex_buffer_object not supported, emulating fool");
    else {
        GLint recommended = 0;
        GL_CALL(glGetIntegerv(GL_MAX_ELEMENTS_VERTICES, &recommended));
        if (numVertices > recommended)
            ZTK_LOG("warning", "display",
                    "Creating vertex buffer with too many vertices (%d when %d recommended)", numVertices,
                    recommended);
    }
    checkUnits(format);
    mFormat = &format;
    initBO(GL_ARRAY_BUFFER, format.size, numVertices, data);
}

void VBO::bind() {
    BufferObject::bind();
    if (!mFormat)
        return;
    const GLsizei stride = mFormat->size;
    const uint8_t* offset = mCompPtr; // null with an OpenGL buffer, so that it is an offset
    if (VertexDef::present(mFormat->pos)) {
        GL_CALL(glEnableClientState(GL_VERTEX_ARRAY));
        GL_CALL(glVertexPointer(VertexDef::channels(mFormat->pos), VertexDef::channelGL(mFormat->pos), stride, offset));
        offset += VertexDef::channelsSize(mFormat->pos);
    }
    if (VertexDef::present(mFormat->nor)) {
        GL_CALL(glEnableClientState(GL_NORMAL_ARRAY));
        GL_CALL(glNormalPointer(VertexDef::channelGL(mFormat->nor), stride, offset));
        offset += VertexDef::channelsSize(mFormat->nor);
    }
    if (VertexDef::present(mFormat->col)) {
        GL_CALL(glEnableClientState(GL_COLOR_ARRAY));
        GL_CALL(glColorPointer(VertexDef::channels(mFormat->col), VertexDef::channelGL(mFormat->col), stride, offset));
        offset += VertexDef::channelsSize(mFormat->col);
    }
    for (int i = 0; i < VertexDef::UVS; ++i)
        if (const VertexDef::CHANNEL uv = mFormat->uv[i]; VertexDef::present(uv)) {
            GL_CALL(glClientActiveTexture(GLenum(GL_TEXTURE0 + i)));
            GL_CALL(glEnableClientState(GL_TEXTURE_COORD_ARRAY));
            GL_CALL(glTexCoordPointer(VertexDef::channels(uv), VertexDef::channelGL(uv), stride, offset));
            GL_CALL(glClientActiveTexture(GL_TEXTURE0));
            offset += VertexDef::channelsSize(uv);
        }
    for (GLuint i = 0; i < VertexDef::VAS; ++i)
        if (const VertexDef::CHANNEL va = mFormat->va[i]; VertexDef::present(va)) {
            const GLint numChannels = VertexDef::channels(va);
            const GLenum type = VertexDef::channelGL(va);
            GL_CALL(glEnableVertexAttribArrayARB(6 + i));
            GL_CALL(glVertexAttribPointerARB(6 + i, numChannels, type, false, mFormat->size, offset));
            offset += VertexDef::channelsSize(va);
        }
}

void VBO::unbind() {
    if (mBound && mFormat) {
        if (VertexDef::present(mFormat->pos))
            GL_CALL(glDisableClientState(GL_VERTEX_ARRAY));
        if (VertexDef::present(mFormat->nor))
            GL_CALL(glDisableClientState(GL_NORMAL_ARRAY));
        if (VertexDef::present(mFormat->col))
            GL_CALL(glDisableClientState(GL_COLOR_ARRAY));
        for (int i = 0; i < VertexDef::UVS; ++i)
            if (VertexDef::present(mFormat->uv[i])) {
                GL_CALL(glClientActiveTexture(GLenum(GL_TEXTURE0 + i)));
                GL_CALL(glDisableClientState(GL_TEXTURE_COORD_ARRAY));
                GL_CALL(glClientActiveTexture(GL_TEXTURE0));
            }
        for (int i = 0; i < VertexDef::VAS; ++i)
            if (VertexDef::present(mFormat->va[i])) {
                const GLuint index = FIRST_ATTRIB + GLuint(i);
                GL_CALL(glDisableVertexAttribArrayARB(index));
            }
    }
    BufferObject::unbind();
}

void VBO::clear() {
    leaveDisplay();
    BufferObject::clear();
    mFormat = nullptr;
}

// A deleted buffer's arrays must no longer be read, nor may the display keep a pointer to it.
void VBO::leaveDisplay() noexcept {
    if (mBound && mFormat && DisplayGL::currentDisplay && DisplayGL::currentDisplay->mOpened) {
        glDisableClientState(GL_VERTEX_ARRAY);
        glDisableClientState(GL_NORMAL_ARRAY);
        glDisableClientState(GL_COLOR_ARRAY);
        for (int i = VertexDef::UVS; i-- > 0;)
            if (VertexDef::present(mFormat->uv[i])) {
                glClientActiveTexture(GLenum(GL_TEXTURE0 + i));
                glDisableClientState(GL_TEXTURE_COORD_ARRAY);
                glClientActiveTexture(GL_TEXTURE0);
            }
        for (int i = 0; i < VertexDef::VAS; ++i)
            if (VertexDef::present(mFormat->va[i]))
                glDisableVertexAttribArrayARB(FIRST_ATTRIB + GLuint(i));
    }
    if (DisplayGL::currentDisplay && DisplayGL::currentDisplay->mCurrentVBO == this)
        DisplayGL::currentDisplay->mCurrentVBO = nullptr;
}

void VBO::unbindAny() {
    if (isSupported())
        GL_CALL(glBindBufferARB( GL_ARRAY_BUFFER_ARB, 0));
}

} // namespace zentrak::display
