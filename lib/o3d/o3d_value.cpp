#include "o3d_value.h"

#include "cl_readbuffer.h"
#include "cl_writebuffer.h"

#include <cassert>

namespace zentrak::o3d {

// A field of four bytes, or of one.
template <typename T>
static void loadField(chunklib::ReadBuffer& buffer, T& field) {
    buffer.loadType(&field, sizeof(T));
}

template <typename T>
static void writeField(chunklib::WriteBuffer& buffer, const T& field) {
    buffer.storeType(&field, sizeof(T));
}

void loadValue(chunklib::ReadBuffer& buffer, std::string* value) {
    value->clear();
    for (;;) {
        if (!buffer.checkBoundaries(1)) {
            assert(false);
            return;
        }
        char character = 0;
        buffer.loadType(&character, 1);
        if (character == '\0')
            return;
        *value += character;
    }
}

void loadValue(chunklib::ReadBuffer& buffer, Index* value) {
    loadField(buffer, value->mValue);
}

void loadValue(chunklib::ReadBuffer& buffer, Triangle* value) {
    loadField(buffer, value->mFlag);
    for (int32_t& index : value->mIndex)
        loadField(buffer, index);
}

void loadValue(chunklib::ReadBuffer& buffer, Quatf* value) {
    loadField(buffer, value->w);
    loadField(buffer, value->x);
    loadField(buffer, value->y);
    loadField(buffer, value->z);
}

void loadValue(chunklib::ReadBuffer& buffer, BoneGroupWeight* value) {
    loadField(buffer, value->mFirst);
    loadField(buffer, value->mSecond);
}

void loadValue(chunklib::ReadBuffer& buffer, Vector4f* value) {
    loadField(buffer, value->x);
    loadField(buffer, value->y);
    loadField(buffer, value->z);
    loadField(buffer, value->w);
}

void loadValue(chunklib::ReadBuffer& buffer, float* value) {
    loadField(buffer, *value);
}

void loadValue(chunklib::ReadBuffer& buffer, Vector3f* value) {
    loadField(buffer, value->x);
    loadField(buffer, value->y);
    loadField(buffer, value->z);
}

void loadValue(chunklib::ReadBuffer& buffer, Vector2f* value) {
    loadField(buffer, value->x);
    loadField(buffer, value->y);
}

void writeValue(chunklib::WriteBuffer& buffer, const std::string& value) {
    buffer.store(value.c_str(), value.size() + 1);
}

void writeValue(chunklib::WriteBuffer& buffer, const Index& value) {
    writeField(buffer, value.mValue);
}

void writeValue(chunklib::WriteBuffer& buffer, const Triangle& value) {
    writeField(buffer, value.mFlag);
    for (const int32_t& index : value.mIndex)
        writeField(buffer, index);
}

void writeValue(chunklib::WriteBuffer& buffer, const Quatf& value) {
    writeField(buffer, value.w);
    writeField(buffer, value.x);
    writeField(buffer, value.y);
    writeField(buffer, value.z);
}

void writeValue(chunklib::WriteBuffer& buffer, const BoneGroupWeight& value) {
    writeField(buffer, value.mFirst);
    writeField(buffer, value.mSecond);
}

void writeValue(chunklib::WriteBuffer& buffer, const Vector4f& value) {
    writeField(buffer, value.x);
    writeField(buffer, value.y);
    writeField(buffer, value.z);
    writeField(buffer, value.w);
}

void writeValue(chunklib::WriteBuffer& buffer, const float& value) {
    writeField(buffer, value);
}

void writeValue(chunklib::WriteBuffer& buffer, const Vector3f& value) {
    writeField(buffer, value.x);
    writeField(buffer, value.y);
    writeField(buffer, value.z);
}

void writeValue(chunklib::WriteBuffer& buffer, const Vector2f& value) {
    writeField(buffer, value.x);
    writeField(buffer, value.y);
}

} // namespace zentrak::o3d
