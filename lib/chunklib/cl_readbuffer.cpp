#include "cl_readbuffer.h"

#include <algorithm>
#include <bit>

namespace zentrak::chunklib {

static_assert(std::endian::native == std::endian::little,
              "the stream is little-endian and is copied as it stands");

// Chunks that reach past their parents make parts of a stream be read again: the limit, in stream lengths.
static constexpr uint64_t MAX_REREAD = 4;

int impliedSize(uint16_t id) {
    switch (id & 15) {
    case 1:
        return 1;
    case 2:
        return 2;
    case 3:
        return 4;
    case 4:
        return 4;
    case 5:
        return 8;
    case 6:
        return 12;
    case 7:
        return 16;
    default:
        return -1;
    }
}

ReadBuffer::ReadBuffer(const void* pData, int32_t pLength)
    : mFormat("void"),
      mVersionFirst(0),
      mVersionSecond(0),
      mFlags(0),
      mData(static_cast<const unsigned char*>(pData)),
      mPosition(0),
      mLength(pData != nullptr && pLength > 0 ? uint32_t(pLength) : 0),
      mReread(0) {
    if (mLength > 5) {
        for (char& character : mFormat)
            loadType(&character, 1);
        loadType(&mVersionFirst, 1);
        loadType(&mVersionSecond, 1);
        mFlags = FLAG_TYPETAG;
    }
}

uint16_t ReadBuffer::openChunk() {
    if (!checkBoundaries(2))
        return 0;
    uint16_t id = 0;
    loadType(&id, 2);

    const int implied = (mFlags & FLAG_TYPETAG) != 0 ? impliedSize(id) : -1;
    uint32_t size = uint32_t(implied);
    if (implied < 0) {
        if (!checkBoundaries(4))
            return 0;
        loadType(&size, 4);
    }
    // If the sum overflowed 32 bits, closeChunk() would go backwards and the caller would loop forever.
    const uint64_t end = std::min<uint64_t>(uint64_t(mPosition) + size, UINT32_MAX);
    mChunks.push_back({id, size, uint32_t(end)});
    return id;
}

void ReadBuffer::closeChunk() {
    if (mChunks.empty())
        return;
    const uint32_t end = mChunks.back().mEnd;
    mChunks.pop_back();

    const uint32_t reached = std::min(mPosition, mLength);
    if (end < reached)
        mReread += reached - end;
    mPosition = mReread <= MAX_REREAD * mLength ? end : mLength;
}

} // namespace zentrak::chunklib
