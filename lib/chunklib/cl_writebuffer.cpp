#include "cl_writebuffer.h"

#include "cl_readbuffer.h"
#include "ztk_system.h"

#include <cassert>
#include <cstdio>
#include <cstring>

namespace zentrak::chunklib {

WriteBuffer::WriteBuffer(const std::string& pFormat, unsigned char pVersionFirst,
                         unsigned char pVersionSecond, unsigned int pFlags)
    : mFormat(pFormat), mVersionFirst(pVersionFirst), mVersionSecond(pVersionSecond), mFlags(pFlags) {
    writeHeader();
}

void WriteBuffer::writeHeader() {
    for (size_t i = 0; i < 4; ++i) {
        const char character = i < mFormat.size() ? mFormat[i] : '\0';
        storeType(&character, 1);
    }
    storeType(&mVersionFirst, 1);
    storeType(&mVersionSecond, 1);
}

// Does the ID imply the size, so that no size field is written?
static bool isTyped(uint32_t flags, uint16_t id) {
    return (flags & WriteBuffer::FLAG_TYPETAG) != 0 && impliedSize(id) >= 0;
}

void WriteBuffer::openChunk(unsigned short pId) {
    storeType(&pId, 2);
    mChunks.push_back({pId, uint32_t(mData.size())});
    if (isTyped(mFlags, pId))
        return;
    const uint32_t sizeToCome = 0xFFFFFFFF;
    storeType(&sizeToCome, 4);
}

void WriteBuffer::closeChunk() {
    if (mChunks.empty())
        return;
    const ChunkData& chunk = mChunks.back();
    if (!isTyped(mFlags, chunk.mId)) {
        const size_t payload = mData.size() - chunk.mPosition - 4;
        if (payload > UINT32_MAX)
            throw Exception("WriteBuffer::closeChunk, chunk 0x%X is too long (%zu bytes)", chunk.mId,
                            payload);
        const uint32_t size = uint32_t(payload);
        if (size == 0 && (mFlags & FLAG_KEEPEMPTY) == 0)
            mData.resize(chunk.mPosition - 2);
        else
            storeType(&size, 4, chunk.mPosition);
    }
    mChunks.pop_back();
}

void WriteBuffer::storeType(const void* pData, size_t pLength, uint32_t pPosition) {
    const unsigned char* bytes = static_cast<const unsigned char*>(pData);
    if (pPosition == APPEND) {
        mData.insert(mData.end(), bytes, bytes + pLength);
        return;
    }
    assert(pPosition+pLength <= mData.size());
    if (pLength != 0)
        memcpy(mData.data() + pPosition, bytes, pLength);
}

void WriteBuffer::store(const void* pData, size_t pLength, uint32_t pPosition) {
    if (pPosition == APPEND) {
        storeType(pData, pLength);
        return;
    }
    if (pLength == 0 || pLength > mData.size() || pPosition > mData.size() - pLength)
        return;
    memcpy(mData.data() + pPosition, pData, pLength);
}

void WriteBuffer::save(const std::string& pFilename) const {
    FILE* file = fopen(pFilename.c_str(), "wb");
    if (file == nullptr)
        throw Exception("WriteBuffer::save, can't open '%s'", pFilename.c_str());
    const size_t written = fwrite(mData.data(), 1, mData.size(), file);
    const bool closed = fclose(file) == 0;
    if (written != mData.size() || !closed)
        throw Exception("WriteBuffer::save, can't write '%s'", pFilename.c_str());
}

} // namespace zentrak::chunklib
