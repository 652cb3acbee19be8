// Walks a stream of nested chunks in memory.
#pragma once

#include <cstdint>
#include <cstring>
#include <deque>
#include <string>

namespace zentrak::chunklib {

// The payload size that the low four bits of a chunk ID imply, or -1 where a size field follows the ID.
int impliedSize(uint16_t id);

// A stream is a header of six bytes (four characters of format, two bytes of version) and chunks. A chunk is
// a 16-bit ID, a 32-bit payload size unless the ID implies it, and the payload: plain values first, then
// chunks of the same shape. Every number is little-endian.
//
// The shape of a loader is: read the plain values, then openChunk() until it gives 0, and closeChunk() after
// each. Nothing here throws or reports: a read that does not fit leaves its target as it was. Whatever the
// bytes say, no read leaves the stream and the walk ends.
class ReadBuffer {
public:
    struct ChunkData {
        uint16_t mId;
        uint32_t mSize; // of the payload, in bytes, as the stream claims it
        uint32_t mEnd;  // position just past the payload; at most the largest that 32 bits hold
    };

    enum Flags : uint32_t {
        FLAG_TYPETAG = 1 // IDs with 1 to 7 in their low four bits carry no size field
    };

    // Reads the header. The bytes belong to the caller and must outlive this object. With 5 bytes or fewer
    // nothing is read: format "void", version 0 and 0.
    ReadBuffer(const void* pData, int32_t pLength);

    // The ID of the chunk now open, or 0 where the enclosing payload has no more (then nothing was opened).
    uint16_t openChunk();
    // Leaves the innermost chunk, however much of it was read, for the byte after it. Nothing happens where
    // none is open.
    void closeChunk();
    // May `pLength` more bytes be read? Only the innermost chunk counts, and the stream itself: a chunk that
    // reaches past its parent's end may be read there.
    bool checkBoundaries(unsigned int pLength) const { return pLength <= remaining(); }
    // Copies `pLength` bytes and moves on, or does nothing where they do not fit.
    void loadType(void* pTarget, size_t pLength) {
        if (pLength <= remaining()) {
            if (pLength != 0)
                memcpy(pTarget, mData + mPosition, pLength);
            mPosition += uint32_t(pLength);
        }
    }

    // The payload size of the innermost chunk as the stream claims it; 0 where none is open.
    uint32_t currentChunkSize() const { return mChunks.empty() ? 0 : mChunks.back().mSize; }
    // Bytes that can still be read from the innermost chunk: never more than the stream has. Loaders limit
    // what they allocate by this.
    uint32_t remaining() const {
        const uint32_t end = mChunks.empty() || mChunks.back().mEnd > mLength ? mLength : mChunks.back().mEnd;
        return mPosition < end ? end - mPosition : 0;
    }
    // How many chunks are open.
    size_t depth() const { return mChunks.size(); }

    const std::string& getFormat() const { return mFormat; }
    unsigned char getVersionFirst() const { return mVersionFirst; }
    unsigned char getVersionSecond() const { return mVersionSecond; }

    std::string mFormat;
    unsigned char mVersionFirst;
    unsigned char mVersionSecond;
    uint32_t mFlags;
    std::deque<ChunkData> mChunks; // innermost at the back
    const unsigned char* mData;    // not owned
    uint32_t mPosition;            // from the first byte of the header; past mLength after a chunk that lies
    uint32_t mLength;              // header included

private:
    // A chunk that ends before its child sends the walk back over bytes already read. If such chunks are
    // nested, the number of times that the stream is read doubles with each level. The bytes that may be read
    // again are therefore limited; past the limit the stream counts as ended.
    uint64_t mReread;
};

} // namespace zentrak::chunklib
