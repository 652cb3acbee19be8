#include "cl_readbuffer.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using zentrak::chunklib::impliedSize;
using zentrak::chunklib::ReadBuffer;

namespace {

// A stream built byte by byte, independently of WriteBuffer.
struct Bytes {
    std::string mText = "O3DF\x01\x01";

    Bytes& u8(unsigned value) {
        mText += char(value);
        return *this;
    }
    Bytes& u16(unsigned value) { return u8(value & 255).u8(value >> 8); }
    Bytes& u32(uint32_t value) { return u16(value & 0xFFFF).u16(value >> 16); }
    Bytes& text(const std::string& value) {
        mText += value;
        return *this;
    }
};

// The reader keeps no copy, so the stream is stored with it.
struct Reader : ReadBuffer {
    explicit Reader(const Bytes& bytes) : ReadBuffer(bytes.mText.data(), int(bytes.mText.size())) {}
};

TEST(ReadBuffer, FiveBytesOrFewerReportFormatVoidAndVersionZero) {
    const char data[] = "O3DF\x01";
    for (int length = -3; length <= 5; ++length) {
        ReadBuffer buffer(data, length);
        EXPECT_EQ("void", buffer.getFormat()) << length;
        EXPECT_EQ(0, buffer.getVersionFirst()) << length;
        EXPECT_EQ(0, buffer.getVersionSecond()) << length;
        EXPECT_EQ(0, buffer.mPosition) << length;
        EXPECT_EQ(0u, buffer.mFlags) << length;
    }
}

TEST(ReadBuffer, NoDataAtAllIsAnEmptyStream) {
    ReadBuffer buffer(nullptr, 100);
    EXPECT_EQ("void", buffer.getFormat());
    EXPECT_EQ(0, buffer.openChunk());
}

TEST(ReadBuffer, SixBytesAreAHeaderWithoutChunks) {
    const Bytes bytes;
    Reader buffer(bytes);
    EXPECT_EQ("O3DF", buffer.getFormat());
    EXPECT_EQ(1, buffer.getVersionFirst());
    EXPECT_EQ(1, buffer.getVersionSecond());
    EXPECT_EQ(1u, buffer.mFlags);
    EXPECT_EQ(0, buffer.openChunk());
    EXPECT_EQ(6u, buffer.mPosition);
}

TEST(ReadBuffer, VersionBytesAreUnsignedAndInOrder) {
    const std::string data = "ABCD\xFE\x80";
    ReadBuffer buffer(data.data(), 6);
    EXPECT_EQ("ABCD", buffer.getFormat());
    EXPECT_EQ(254, buffer.getVersionFirst());
    EXPECT_EQ(128, buffer.getVersionSecond());
}

TEST(ReadBuffer, LowFourBitsOfTheIdImplyTheSize) {
    const int sizes[16] = {-1, 1, 2, 4, 4, 8, 12, 16, -1, -1, -1, -1, -1, -1, -1, -1};
    for (int tag = 0; tag < 16; ++tag) {
        EXPECT_EQ(sizes[tag], impliedSize(uint16_t(tag)));
        EXPECT_EQ(sizes[tag], impliedSize(uint16_t(0xABC0 | tag)));
    }
}

TEST(ReadBuffer, TypedChunkHasNoSizeField) {
    Bytes bytes;
    bytes.u16(0xF007).text("0123456789abcdef").u16(0x1000).u32(0);
    Reader buffer(bytes);
    EXPECT_EQ(0xF007, buffer.openChunk());
    EXPECT_EQ(16u, buffer.currentChunkSize());
    char payload[16] = {};
    buffer.loadType(payload, 16);
    EXPECT_EQ("0123456789abcdef", std::string(payload, 16));
    buffer.closeChunk();
    EXPECT_EQ(0x1000, buffer.openChunk());
}

TEST(ReadBuffer, EveryTagTakesItsSizeFromTheTable) {
    const unsigned sizes[16] = {9, 1, 2, 4, 4, 8, 12, 16, 9, 9, 9, 9, 9, 9, 9, 9};
    for (unsigned tag = 0; tag < 16; ++tag) {
        Bytes bytes;
        bytes.u16(0x7770 | tag);
        const bool typed = tag >= 1 && tag <= 7;
        if (!typed)
            bytes.u32(9);
        bytes.text(std::string(sizes[tag], 'x')).u16(0x1230).u32(0);
        Reader buffer(bytes);
        EXPECT_EQ(0x7770 | tag, buffer.openChunk());
        EXPECT_EQ(sizes[tag], buffer.currentChunkSize());
        buffer.closeChunk();
        EXPECT_EQ(0x1230, buffer.openChunk()) << tag;
    }
}

TEST(ReadBuffer, WithoutTheTagRuleTheSameIdIsFollowedByASize) {
    Bytes bytes;
    bytes.u16(0xF007).u32(3).text("abc").u16(0x1000).u32(0);
    Reader buffer(bytes);
    buffer.mFlags = 0;
    EXPECT_EQ(0xF007, buffer.openChunk());
    EXPECT_EQ(3u, buffer.currentChunkSize());
    buffer.closeChunk();
    EXPECT_EQ(0x1000, buffer.openChunk());
}

TEST(ReadBuffer, ClosingAChunkReadInPartLandsOnTheNextSibling) {
    Bytes bytes;
    bytes.u16(0x1000).u32(100);
    bytes.u16(0x2000).u32(10).text("abcdefghij");
    bytes.u16(0x3000).u32(0);
    for (size_t read = 0; read <= 10; ++read) {
        Reader buffer(bytes);
        ASSERT_EQ(0x1000, buffer.openChunk());
        ASSERT_EQ(0x2000, buffer.openChunk());
        char some[10];
        buffer.loadType(some, read);
        buffer.closeChunk();
        EXPECT_EQ(0x3000, buffer.openChunk()) << read;
    }
}

TEST(ReadBuffer, ClosingSkipsChildrenThatWereLeftUnread) {
    Bytes bytes;
    bytes.u16(0x1000).u32(14).u16(0x2000).u32(8).u16(0x2200).u32(2).u16(7).u16(0x4000).u32(0);
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    ASSERT_EQ(0x2000, buffer.openChunk());
    buffer.closeChunk();
    buffer.closeChunk();
    EXPECT_EQ(0x4000, buffer.openChunk());
}

TEST(ReadBuffer, AReadThatTheInnermostChunkHasNoRoomForDoesNothing) {
    Bytes bytes;
    bytes.u16(0x1000).u32(100).u16(0x2000).u32(3).text("abcdefghijk");
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    ASSERT_EQ(0x2000, buffer.openChunk());
    uint32_t value = 0xDEADBEEF;
    EXPECT_FALSE(buffer.checkBoundaries(4));
    EXPECT_TRUE(buffer.checkBoundaries(3));
    const uint32_t before = buffer.mPosition;
    buffer.loadType(&value, 4);
    EXPECT_EQ(0xDEADBEEF, value);
    EXPECT_EQ(before, buffer.mPosition);
    buffer.closeChunk();
    EXPECT_TRUE(buffer.checkBoundaries(4));
    buffer.loadType(&value, 4);
    EXPECT_EQ(0x67666564u, value); // "defg"
}

TEST(ReadBuffer, EndOfThePayloadGivesIdZeroAndOpensNothing) {
    Bytes bytes;
    bytes.u16(0x1000).u32(1).text("abcdefgh");
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    EXPECT_EQ(0, buffer.openChunk());
    EXPECT_EQ(1u, buffer.depth());
    EXPECT_EQ(12u, buffer.mPosition);
}

TEST(ReadBuffer, AnIdWithoutRoomForItsSizeIsLeftBehind) {
    Bytes bytes;
    bytes.u16(0x1000).u32(5).u16(0x2000).text("abc").u16(0x3000).u32(0);
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    EXPECT_EQ(0, buffer.openChunk());
    EXPECT_EQ(1u, buffer.depth());
    EXPECT_EQ(14u, buffer.mPosition);
    buffer.closeChunk();
    EXPECT_EQ(0x3000, buffer.openChunk());
}

TEST(ReadBuffer, ATypedChunkCutShortByItsParentStillOpens) {
    Bytes bytes;
    bytes.u16(0x1000).u32(6).u16(0xF007).text("abcd").u16(0x3000).u32(0).text("0123456789");
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    EXPECT_EQ(0xF007, buffer.openChunk());
    EXPECT_EQ(16u, buffer.currentChunkSize());
    buffer.closeChunk();
    buffer.closeChunk();
    EXPECT_EQ(0x3000, buffer.openChunk());
}

TEST(ReadBuffer, AChildThatReachesPastItsParentIsNotDetectedWhenItOpens) {
    Bytes bytes;
    bytes.u16(0x1000).u32(8).u16(0x2000).u32(10).text("abcdefghij").text("klm");
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    ASSERT_EQ(0x2000, buffer.openChunk());
    char payload[10];
    EXPECT_TRUE(buffer.checkBoundaries(10));
    buffer.loadType(payload, 10);
    EXPECT_EQ("abcdefghij", std::string(payload, 10));
    buffer.closeChunk();
    EXPECT_EQ(0, buffer.openChunk());
    buffer.closeChunk();
    EXPECT_EQ(20u, buffer.mPosition);
}

TEST(ReadBuffer, ChunkWithIdZeroStaysOpen) {
    Bytes bytes;
    bytes.u16(0x1000).u32(8).u16(0).u32(2).text("ab");
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    EXPECT_EQ(0, buffer.openChunk());
    EXPECT_EQ(2u, buffer.depth());
}

TEST(ReadBuffer, ClosingWhenNothingIsOpenDoesNothing) {
    Bytes bytes;
    bytes.u16(0x1000).u32(0);
    Reader buffer(bytes);
    buffer.closeChunk();
    EXPECT_EQ(6u, buffer.mPosition);
    EXPECT_EQ(0u, buffer.currentChunkSize());
}

TEST(ReadBuffer, ASizePastTheEndIsReadOnlyAsFarAsThereAreBytes) {
    Bytes bytes;
    bytes.u16(0x1000).u32(0x7FFFFFFF).text("abcd");
    Reader buffer(bytes);
    ASSERT_EQ(0x1000, buffer.openChunk());
    EXPECT_EQ(0x7FFFFFFFu, buffer.currentChunkSize());
    EXPECT_EQ(4u, buffer.remaining());
    EXPECT_FALSE(buffer.checkBoundaries(5));
    EXPECT_FALSE(buffer.checkBoundaries(0xFFFFFFFF));
    EXPECT_TRUE(buffer.checkBoundaries(4));
    buffer.closeChunk();
    EXPECT_EQ(0, buffer.openChunk());
}

TEST(ReadBuffer, ASizeThatWrapsRoundDoesNotSendTheWalkBackwards) {
    for (uint32_t size = 0xFFFFFFFF; size > 0xFFFFFFE0; --size) {
        Bytes bytes;
        bytes.u16(0x1000).u32(size).text("abcd");
        Reader buffer(bytes);
        ASSERT_EQ(0x1000, buffer.openChunk());
        buffer.closeChunk();
        EXPECT_GE(buffer.mPosition, 16u);
        EXPECT_EQ(0, buffer.openChunk());
    }
}

// Reads any data as nested chunks; returns the number of chunks.
size_t walk(ReadBuffer& buffer, size_t depth = 0) {
    size_t count = 0;
    while (depth < 200 && buffer.openChunk() != 0) {
        count += 1 + walk(buffer, depth + 1);
        buffer.closeChunk();
    }
    return count;
}

TEST(ReadBuffer, ChunksThatEndBeforeTheirChildrenCantMakeTheWalkExponential) {
    // Each chunk has room for its child's header only, and each child claims the rest of the stream:
    // unbounded, the walk would take 2^100 steps.
    Bytes bytes;
    for (int i = 0; i < 100; ++i)
        bytes.u16(0x1000).u32(6).u16(0x2000).u32(1000000);
    Reader buffer(bytes);
    EXPECT_LT(walk(buffer), 100u * 2 * 8);
}

TEST(ReadBuffer, AMillionNestedChunksOpenAndClose) {
    const size_t levels = 1000000;
    Bytes bytes;
    for (size_t i = 0; i < levels; ++i)
        bytes.u16(0x5130).u32(uint32_t(6 * (levels - 1 - i)));
    Reader buffer(bytes);
    size_t opened = 0;
    while (buffer.openChunk() != 0)
        ++opened;
    EXPECT_EQ(levels, opened);
    for (size_t i = 0; i < levels; ++i)
        buffer.closeChunk();
    EXPECT_EQ(0u, buffer.depth());
    EXPECT_EQ(bytes.mText.size(), buffer.mPosition);
}

TEST(ReadBuffer, RandomBytesNeverReadOutsideTheStream) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        Bytes bytes;
        for (int i = 0; i < 300; ++i)
            bytes.u8(random() % 3 == 0 ? random() : random() % 8);
        // A heap block of the exact size, so that sanitizers see any byte read past it.
        const std::vector<char> exact(bytes.mText.begin(), bytes.mText.end());
        ReadBuffer buffer(exact.data(), int(exact.size()));
        EXPECT_LT(walk(buffer), 10000u);
    }
}

} // namespace
