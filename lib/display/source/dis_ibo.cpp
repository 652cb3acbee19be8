#include "dis_ibo.h"

#include "ztk_system.h"

#include <cassert>
#include <cstring>
#include <memory>

namespace zentrak::display {

namespace {

// Bytes of an index; 0 for an unknown format.
int sizeOf(IBO::Format format) {
    switch (format) {
    case IBO::FORMAT_UINT8:
        return 1;
    case IBO::FORMAT_UINT16:
        return 2;
    case IBO::FORMAT_UINT32:
        return 4;
    default:
        return 0;
    }
}

template <class Target, class Source>
void convert(uint8_t* target, const uint8_t* source, int count, int offset) {
    for (int i = 0; i < count; ++i) {
        Source from;
        std::memcpy(&from, source + size_t(i) * sizeof from, sizeof from);
        const Target to = Target(Target(from) + Target(offset));
        std::memcpy(target + size_t(i) * sizeof to, &to, sizeof to);
    }
}

template <class Target>
void convertTo(uint8_t* target, const uint8_t* source, int count, int offset, IBO::Format sourceFormat) {
    switch (sourceFormat) {
    case IBO::FORMAT_UINT8:
        return convert<Target, uint8_t>(target, source, count, offset);
    case IBO::FORMAT_UINT16:
        return convert<Target, uint16_t>(target, source, count, offset);
    default:
        return convert<Target, uint32_t>(target, source, count, offset);
    }
}

// `count` indices with `offset` added, as the target's type. Both formats are valid.
std::unique_ptr<uint8_t[]> converted(IBO::Format format, const void* data, int count, int offset,
                                     IBO::Format sourceFormat) {
    std::unique_ptr<uint8_t[]> target(new uint8_t[size_t(count) * size_t(sizeOf(format))]);
    const uint8_t* source = static_cast<const uint8_t*>(data);
    switch (format) {
    case IBO::FORMAT_UINT8:
        convertTo<uint8_t>(target.get(), source, count, offset, sourceFormat);
        break;
    case IBO::FORMAT_UINT16:
        convertTo<uint16_t>(target.get(), source, count, offset, sourceFormat);
        break;
    default:
        convertTo<uint32_t>(target.get(), source, count, offset, sourceFormat);
        break;
    }
    return target;
}

} // namespace

IBO::IBO(DisplayGL* display) : BufferObject(display), mLow(-1), mHigh(-1), mFormat(FORMAT_NONE) {}

IBO::~IBO() {
    leaveDisplay();
}

void IBO::setup(Format format, int numIndices, void* data) {
    clear();
    const int size = sizeOf(format);
    if (!size)
        throw Exception("Wrong format for IBO::setup!");
    mFormat = format;
    if (!isSupported())
        ZTK_LOG("warning", "display", "GL_ARB_vertex_buffer_object not supported, emulating fool");
    else {
        GLint recommended = 0;
        GL_CALL(glGetIntegerv(GL_MAX_ELEMENTS_INDICES, &recommended));
        if (numIndices > recommended)
            ZTK_LOG("warning", "display",
                    "Creating index buffer with too many indices (%d when %d recommended)", numIndices,
                    recommended);
    }
    initBO(GL_ELEMENT_ARRAY_BUFFER, size, numIndices, data);
}

void IBO::setup(Format format, int numIndices, void* data, int offset, Format sourceFormat) {
    if (format == sourceFormat)
        return setup(format, numIndices, data);
    if (!sizeOf(sourceFormat))
        throw Exception("IBO::setup; Unknown dataformat");
    if (!data || numIndices <= 0 || !sizeOf(format))
        return setup(format, numIndices, data);
    setup(format, numIndices, converted(format, data, numIndices, offset, sourceFormat).get());
}

void IBO::replace(int firstEntity, int numEntities, void* data, int offset, Format sourceFormat) {
    assert(mBound);
    ZTK_LOG("info", "display", "replace(%d, %d, %p)", firstEntity, numEntities, data);
    if (!sizeOf(sourceFormat))
        throw Exception("IBO::setup; Unknown dataformat");
    if (!data || numEntities <= 0 || !inRange(firstEntity, numEntities))
        return BufferObject::replace(firstEntity, numEntities,
                                     data); // nothing to convert, or a range it refuses
    BufferObject::replace(firstEntity, numEntities,
                          converted(mFormat, data, numEntities, offset, sourceFormat).get());
}

const void* IBO::getPointerGL(int firstIndex) const {
    return reinterpret_cast<const void*>(reinterpret_cast<intptr_t>(mCompPtr) +
                                         intptr_t(firstIndex) * mEntitySize);
}

void IBO::setLimits(int first, int last) {
    mLow = first;
    mHigh = last;
}

void IBO::clear() {
    leaveDisplay();
    BufferObject::clear();
    mLow = mHigh = -1;
    mFormat = FORMAT_NONE;
}

void IBO::leaveDisplay() noexcept {
    if (DisplayGL::currentDisplay && DisplayGL::currentDisplay->mCurrentIBO == this)
        DisplayGL::currentDisplay->mCurrentIBO = nullptr;
}

void IBO::unbindAny() {
    if (isSupported())
        GL_CALL(glBindBufferARB( GL_ELEMENT_ARRAY_BUFFER_ARB, 0));
}

} // namespace zentrak::display
