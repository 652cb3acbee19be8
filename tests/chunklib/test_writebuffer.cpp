#include "cl_readbuffer.h"
#include "cl_writebuffer.h"
#include "support.h"
#include "ztk_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

using zentrak::chunklib::ReadBuffer;
using zentrak::chunklib::WriteBuffer;

namespace {

std::string bytesOf(const WriteBuffer& buffer) {
    return std::string(buffer.mData.begin(), buffer.mData.end());
}

std::string text(const char* bytes, size_t length) {
    return std::string(bytes, length);
}

TEST(WriteBuffer, HeaderIsFourCharactersAndTwoVersionBytes) {
    EXPECT_EQ("O3DF\x01\x02", bytesOf(WriteBuffer("O3DF", 1, 2, 1)));
    EXPECT_EQ("LONG\xFF\x80", bytesOf(WriteBuffer("LONGER", 255, 128, 0)));
    EXPECT_EQ(text("AB\0\0\x01\x01", 6), bytesOf(WriteBuffer("AB", 1, 1, 1)));
}

TEST(WriteBuffer, ChunkHasIdSizeAndPayload) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.openChunk(0x2000);
    buffer.store("abc", 4);
    buffer.closeChunk();
    EXPECT_EQ(text("O3DF\1\1\x00\x20\4\0\0\0abc\0", 16), bytesOf(buffer));
}

TEST(WriteBuffer, SizeIsAPlaceholderOfOnesUntilTheChunkCloses) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.openChunk(0x2000);
    EXPECT_EQ(text("O3DF\1\1\x00\x20\xFF\xFF\xFF\xFF", 12), bytesOf(buffer));
    ASSERT_EQ(1u, buffer.mChunks.size());
    EXPECT_EQ(0x2000, buffer.mChunks.back().mId);
    EXPECT_EQ(8u, buffer.mChunks.back().mPosition);
}

TEST(WriteBuffer, TypedChunkHasNoSizeField) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.openChunk(0xF004);
    buffer.store("abcd", 4);
    buffer.closeChunk();
    EXPECT_EQ(text("O3DF\1\1\x04\xF0"
                   "abcd",
                   12),
              bytesOf(buffer));
}

TEST(WriteBuffer, WithoutTheTagRuleATypedChunkHasASize) {
    WriteBuffer buffer("O3DF", 1, 1, 0);
    buffer.openChunk(0xF004);
    buffer.store("abcd", 4);
    buffer.closeChunk();
    EXPECT_EQ(text("O3DF\1\1\x04\xF0\4\0\0\0"
                   "abcd",
                   16),
              bytesOf(buffer));
}

TEST(WriteBuffer, EmptyChunkLeavesNoTraceUnlessEmptyChunksAreKept) {
    WriteBuffer dropping("O3DF", 1, 1, 1);
    dropping.openChunk(0x2000);
    dropping.closeChunk();
    EXPECT_EQ("O3DF\1\1", bytesOf(dropping));

    WriteBuffer keeping("O3DF", 1, 1, 3);
    keeping.openChunk(0x2000);
    keeping.closeChunk();
    EXPECT_EQ(text("O3DF\1\1\x00\x20\0\0\0\0", 12), bytesOf(keeping));
}

TEST(WriteBuffer, AChunkThatHeldOnlyEmptyOnesIsEmptyItself) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.openChunk(0x1000);
    buffer.openChunk(0x2000);
    buffer.closeChunk();
    buffer.closeChunk();
    EXPECT_EQ("O3DF\1\1", bytesOf(buffer));
}

TEST(WriteBuffer, TypedChunkWithoutPayloadLeavesItsIdBehind) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.openChunk(0xF006);
    buffer.closeChunk();
    EXPECT_EQ(text("O3DF\1\1\x06\xF0", 8), bytesOf(buffer));
}

TEST(WriteBuffer, ClosingWhenNothingIsOpenDoesNothing) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.closeChunk();
    EXPECT_EQ("O3DF\1\1", bytesOf(buffer));
}

TEST(WriteBuffer, BothStoresOverwriteInPlace) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.store("X", 1, 0);
    buffer.storeType("YZ", 2, 4);
    EXPECT_EQ("X3DFYZ", bytesOf(buffer));
}

TEST(WriteBuffer, StorePastTheEndDoesNothing) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.store("ab", 2, 5);
    buffer.store("ab", 2, 6);
    buffer.store("ab", 2, 0xFFFFFFFE);
    buffer.store("ab", 0, 2);
    buffer.store("ab", SIZE_MAX, 3);
    EXPECT_EQ("O3DF\1\1", bytesOf(buffer));
}

TEST(WriteBuffer, StoringNothingAppendsNothing) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.store(nullptr, 0);
    buffer.storeType(nullptr, 0);
    EXPECT_EQ("O3DF\1\1", bytesOf(buffer));
}

TEST(WriteBufferDeathTest, StoreTypePastTheEndAsserts) {
    WriteBuffer buffer("O3DF", 1, 1, 1);
    EXPECT_DEATH(buffer.storeType("ab", 2, 5), "pPosition\\+pLength <= mData\\.size\\(\\)");
}

TEST(WriteBuffer, SaveWritesTheWholeStream) {
    zentrak::test::TempDir dir;
    WriteBuffer buffer("O3DF", 1, 1, 3);
    buffer.openChunk(0x1000);
    buffer.store("payload", 8);
    buffer.closeChunk();
    buffer.save(dir.file("stream"));
    EXPECT_EQ(bytesOf(buffer), zentrak::test::readFile(dir.file("stream")));
}

TEST(WriteBuffer, SaveThatCantBeDoneThrows) {
    zentrak::test::TempDir dir;
    WriteBuffer buffer("O3DF", 1, 1, 1);
    const std::string missing = dir.file("no/such/folder");
    try {
        buffer.save(missing);
        FAIL() << "nothing thrown";
    } catch (const zentrak::Exception& exception) {
        EXPECT_EQ("WriteBuffer::save, can't open '" + missing + "'", exception.what());
    }
    try {
        buffer.save("/dev/full");
        FAIL() << "nothing thrown";
    } catch (const zentrak::Exception& exception) {
        EXPECT_STREQ("WriteBuffer::save, can't write '/dev/full'", exception.what());
    }
}

// Writes a random tree of chunks; returns as text what a reader should find. A chunk whose size is not
// implied starts with the number of plain bytes before its children.
std::string writeTree(WriteBuffer& buffer, std::mt19937& random, int depth) {
    static const size_t typedSizes[8] = {0, 1, 2, 4, 4, 8, 12, 16};
    std::string expected;
    const int count = int(random() % 4);
    for (int i = 0; i < count; ++i) {
        const unsigned short id = static_cast<unsigned short>(0x1000 + random() % 0xE000);
        const bool typed = (id & 15) >= 1 && (id & 15) <= 7;
        std::string plain(typed ? typedSizes[id & 15] : random() % 9, '\0');
        for (char& character : plain)
            character = char(random());
        buffer.openChunk(id);
        const unsigned char length = static_cast<unsigned char>(plain.size());
        if (!typed)
            buffer.store(&length, 1);
        buffer.store(plain.data(), plain.size());
        expected += "(" + std::to_string(id) + ":" + plain;
        if (!typed && depth < 6)
            expected += writeTree(buffer, random, depth + 1);
        buffer.closeChunk();
        expected += ")";
    }
    return expected;
}

std::string readTree(ReadBuffer& buffer) {
    std::string found;
    while (const unsigned short id = buffer.openChunk()) {
        unsigned char length = static_cast<unsigned char>(buffer.currentChunkSize());
        const bool typed = (id & 15) >= 1 && (id & 15) <= 7;
        if (!typed)
            buffer.loadType(&length, 1);
        std::string plain(length, '\0');
        buffer.loadType(plain.data(), length);
        found += "(" + std::to_string(id) + ":" + plain + readTree(buffer) + ")";
        buffer.closeChunk();
    }
    return found;
}

TEST(WriteBuffer, WhatItWritesAReaderReadsBack) {
    std::mt19937 random(11);
    size_t longest = 0;
    for (int round = 0; round < 300; ++round) {
        WriteBuffer buffer("O3DF", 1, 1, 1);
        const std::string expected = writeTree(buffer, random, 0);
        ReadBuffer reader(buffer.mData.data(), int(buffer.mData.size()));
        EXPECT_EQ(expected, readTree(reader)) << round;
        EXPECT_EQ(buffer.mData.size(), reader.mPosition);
        longest = std::max(longest, expected.size());
    }
    EXPECT_GT(longest, 200u);
}

} // namespace
