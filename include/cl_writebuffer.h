// Builds a stream of nested chunks in a growing vector of bytes.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace zentrak::chunklib {

// The counterpart of ReadBuffer, which describes the stream.
class WriteBuffer {
public:
    struct ChunkData {
        uint16_t mId;
        uint32_t mPosition; // index in mData just after the ID: of the size field, if the chunk has one
    };

    enum Flags : uint32_t {
        FLAG_TYPETAG = 1,  // IDs with 1 to 7 in their low four bits carry no size field
        FLAG_KEEPEMPTY = 2 // chunks without a payload stay in the stream
    };

    static constexpr uint32_t APPEND = ~0u;

    // Writes the header at once. Of the format the first four characters count; a shorter one is filled up
    // with zero bytes.
    WriteBuffer(const std::string& pFormat, unsigned char pVersionFirst, unsigned char pVersionSecond,
                unsigned int pFlags);

    void writeHeader();

    // Between the two the payload is stored: plain values first, then child chunks. A chunk whose ID implies
    // its size must get a payload of exactly that size: nothing checks it. closeChunk() does nothing where
    // none is open, and throws Exception if the payload's size needs more than 32 bits.
    void openChunk(unsigned short pId);
    void closeChunk();

    // Both copy `pLength` bytes to the end of the stream, or overwrite those at `pPosition`. Where that is
    // outside the stream, store() does nothing and storeType() asserts.
    void store(const void* pData, size_t pLength, uint32_t pPosition = APPEND);
    void storeType(const void* pData, size_t pLength, uint32_t pPosition = APPEND);

    // Writes the stream to a file; throws Exception if that fails.
    void save(const std::string& pFilename) const;

    std::string mFormat;
    unsigned char mVersionFirst;
    unsigned char mVersionSecond;
    uint32_t mFlags;
    std::deque<ChunkData> mChunks;    // innermost at the back
    std::vector<unsigned char> mData; // the whole stream, header included
};

} // namespace zentrak::chunklib
