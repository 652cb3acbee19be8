#include "o3d_track.h"

#include "o3d_chunk.h"
#include "o3d_load.h"
#include "o3d_value.h"

#include <algorithm>
#include <cmath>

namespace zentrak::o3d {

// Component lists in the order of their chunks: three components start at CHUNK_KEYS1, four at CHUNK_KEYS0.
static constexpr uint16_t KEYS_OF_THREE[] = {CHUNK_KEYS1, CHUNK_KEYS2, CHUNK_KEYS3};
static constexpr uint16_t KEYS_OF_FOUR[] = {CHUNK_KEYS0, CHUNK_KEYS1, CHUNK_KEYS2, CHUNK_KEYS3};

// Reads the key list if `id` is one of these; does nothing otherwise.
static void loadKeysOf(chunklib::ReadBuffer& buffer, uint16_t id, const uint16_t* ids,
                       TrackBlenderFloat* const* tracks, size_t count) {
    for (size_t i = 0; i < count; ++i)
        if (ids[i] == id)
            tracks[i]->loadKeys(buffer);
}

void TrackFloat::loadChunk(chunklib::ReadBuffer& buffer) {
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_KEYS1)
            mX.loadKeys(buffer);
        else if (id == CHUNK_DEFAULT1)
            loadValue(buffer, &mX.mValue);
        buffer.closeChunk();
    }
}

void TrackFloat::writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const {
    buffer.openChunk(id);
    mX.writeChunk(buffer, CHUNK_KEYS1);
    buffer.openChunk(CHUNK_DEFAULT1);
    writeValue(buffer, mX.mValue);
    buffer.closeChunk();
    buffer.closeChunk();
}

static void loadThree(chunklib::ReadBuffer& buffer, TrackBlenderFloat& x, TrackBlenderFloat& y,
                      TrackBlenderFloat& z) {
    TrackBlenderFloat* const tracks[] = {&x, &y, &z};
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_DEFAULT3) {
            Vector3f value(0.0f, 0.0f, 0.0f);
            loadValue(buffer, &value);
            x.mValue = value.x;
            y.mValue = value.y;
            z.mValue = value.z;
        } else {
            loadKeysOf(buffer, id, KEYS_OF_THREE, tracks, 3);
        }
        buffer.closeChunk();
    }
}

static void writeThree(chunklib::WriteBuffer& buffer, unsigned short id, const TrackBlenderFloat& x,
                       const TrackBlenderFloat& y, const TrackBlenderFloat& z) {
    buffer.openChunk(id);
    x.writeChunk(buffer, CHUNK_KEYS1);
    y.writeChunk(buffer, CHUNK_KEYS2);
    z.writeChunk(buffer, CHUNK_KEYS3);
    buffer.openChunk(CHUNK_DEFAULT3);
    writeValue(buffer, Vector3f(x.mValue, y.mValue, z.mValue));
    buffer.closeChunk();
    buffer.closeChunk();
}

void TrackVector3f::clear(float value) {
    mX.clear(value);
    mY.clear(value);
    mZ.clear(value);
}

void TrackVector3f::loadChunk(chunklib::ReadBuffer& buffer) {
    loadThree(buffer, mX, mY, mZ);
}

void TrackVector3f::writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const {
    writeThree(buffer, id, mX, mY, mZ);
}

bool TrackVector3f::isStatic() const {
    return mX.isStatic() && mY.isStatic() && mZ.isStatic();
}

float TrackVector3f::getLength() const {
    return std::max({mX.getLength(), mY.getLength(), mZ.getLength()});
}

mathbase::Vector3f TrackVector3f::getValue(float time) const {
    const float x = mX.getValue(time);
    const float y = mY.getValue(time);
    const float z = mZ.getValue(time);
    return mathbase::Vector3f(x, y, z);
}

TrackEulerf::TrackEulerf() {
    clear();
}

void TrackEulerf::clear() {
    mX.clear(0.0f);
    mY.clear(0.0f);
    mZ.clear(0.0f);
    mOrder.value = mathbase::RotationOrder::YZX;
}

void TrackEulerf::loadChunk(chunklib::ReadBuffer& buffer) {
    loadThree(buffer, mX, mY, mZ);
}

void TrackEulerf::writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const {
    writeThree(buffer, id, mX, mY, mZ);
}

bool TrackEulerf::isStatic() const {
    return mX.isStatic() && mY.isStatic() && mZ.isStatic();
}

float TrackEulerf::getLength() const {
    return std::max({mX.getLength(), mY.getLength(), mZ.getLength()});
}

mathbase::Eulerf TrackEulerf::getValue(float time) const {
    mathbase::Eulerf result;
    result.angles.x = mX.getValue(time);
    result.angles.y = mY.getValue(time);
    result.angles.z = mZ.getValue(time);
    result.order = mOrder;
    return result;
}

void TrackColor4f::clear(float value) {
    mR.clear(value);
    mG.clear(value);
    mB.clear(value);
    mA.clear(value);
}

void TrackColor4f::loadChunk(chunklib::ReadBuffer& buffer) {
    TrackBlenderFloat* const tracks[] = {&mR, &mG, &mB, &mA};
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_DEFAULT4) {
            Vector4f value(0.0f, 0.0f, 0.0f, 0.0f);
            loadValue(buffer, &value);
            mR.mValue = value.x;
            mG.mValue = value.y;
            mB.mValue = value.z;
            mA.mValue = value.w;
        } else {
            loadKeysOf(buffer, id, KEYS_OF_FOUR, tracks, 4);
        }
        buffer.closeChunk();
    }
}

static void writeFour(chunklib::WriteBuffer& buffer, unsigned short id,
                      const TrackBlenderFloat* const* tracks) {
    buffer.openChunk(id);
    for (size_t i = 0; i < 4; ++i)
        tracks[i]->writeChunk(buffer, KEYS_OF_FOUR[i]);
    buffer.openChunk(CHUNK_DEFAULT4);
    for (size_t i = 0; i < 4; ++i)
        writeValue(buffer, tracks[i]->mValue);
    buffer.closeChunk();
    buffer.closeChunk();
}

void TrackColor4f::writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const {
    const TrackBlenderFloat* const tracks[] = {&mR, &mG, &mB, &mA};
    writeFour(buffer, id, tracks);
}

bool TrackColor4f::isStatic() const {
    return mR.isStatic() && mG.isStatic() && mB.isStatic() && mA.isStatic();
}

float TrackColor4f::getLength() const {
    return std::max({mR.getLength(), mG.getLength(), mB.getLength(), mA.getLength()});
}

mathbase::Vector4f TrackColor4f::getValue(float time) const {
    const float r = mR.getValue(time);
    const float g = mG.getValue(time);
    const float b = mB.getValue(time);
    const float a = mA.getValue(time);
    return mathbase::Vector4f(r, g, b, a);
}

void TrackQuatf::clear() {
    mW.clear(1.0f);
    mX.clear(0.0f);
    mY.clear(0.0f);
    mZ.clear(0.0f);
}

void TrackQuatf::loadChunk(chunklib::ReadBuffer& buffer) {
    TrackBlenderFloat* const tracks[] = {&mW, &mX, &mY, &mZ};
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_DEFAULT4) {
            Quatf value(1.0f, 0.0f, 0.0f, 0.0f);
            loadValue(buffer, &value);
            // A file may hold a quaternion without direction, such as zero: fall back to the identity.
            if (!(value.length() > 0.0f && value.length() < INFINITY))
                value = Quatf(1.0f, 0.0f, 0.0f, 0.0f);
            value.normalize();
            // The second call removes the rounding error of the first.
            value.normalize();
            mW.mValue = value.w;
            mX.mValue = value.x;
            mY.mValue = value.y;
            mZ.mValue = value.z;
        } else {
            loadKeysOf(buffer, id, KEYS_OF_FOUR, tracks, 4);
        }
        buffer.closeChunk();
    }
}

void TrackQuatf::writeChunk(chunklib::WriteBuffer& buffer, unsigned short id) const {
    const TrackBlenderFloat* const tracks[] = {&mW, &mX, &mY, &mZ};
    writeFour(buffer, id, tracks);
}

bool TrackQuatf::isStatic() const {
    return mW.isStatic() && mX.isStatic() && mY.isStatic() && mZ.isStatic();
}

float TrackQuatf::getLength() const {
    return std::max({mW.getLength(), mX.getLength(), mY.getLength(), mZ.getLength()});
}

mathbase::Quatf TrackQuatf::getValue(float time) const {
    const float w = mW.getValue(time);
    const float x = mX.getValue(time);
    const float y = mY.getValue(time);
    const float z = mZ.getValue(time);
    return mathbase::Quatf(w, x, y, z);
}

} // namespace zentrak::o3d
