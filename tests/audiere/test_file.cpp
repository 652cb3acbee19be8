#include "audiere_fixture.h"

#include <gtest/gtest.h>

using namespace zentrak::audiere;
using namespace zentrak::test;

namespace {

struct Counted : RefCounted {
    explicit Counted(int& alive) : mAlive(alive) { ++mAlive; }
    ~Counted() override { --mAlive; }
    int& mAlive;
};

} // namespace

TEST(RefPtr, TheLastReferenceDeletes) {
    int alive = 0;
    {
        RefPtr<Counted> first = new Counted(alive);
        RefPtr<Counted> second = first;
        first = nullptr;
        EXPECT_EQ(alive, 1);
        EXPECT_FALSE(first);
        EXPECT_TRUE(second);
        second = std::move(second);
        EXPECT_EQ(alive, 1);
        RefPtr<Counted> third(std::move(second));
        EXPECT_FALSE(second);
        EXPECT_TRUE(third == RefPtr<Counted>(third.get()));
        third = new Counted(alive);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(MemoryFile, CopiesTheBytes) {
    char bytes[] = "0123456789";
    RefPtr<File> file = AdrCreateMemoryFile(bytes, 10);
    bytes[3] = 'x';
    char read[20] = {};
    EXPECT_EQ(file->read(read, 20), 10);
    EXPECT_STREQ(read, "0123456789");
    EXPECT_EQ(file->read(read, 20), 0);
    EXPECT_EQ(file->read(read, -1), 0);
}

TEST(MemoryFile, SeeksFromBeginningCurrentAndEnd) {
    RefPtr<File> file = AdrCreateMemoryFile("0123456789", 10);
    char read = 0;
    EXPECT_TRUE(file->seek(4, File::BEGIN));
    file->read(&read, 1);
    EXPECT_EQ(read, '4');
    EXPECT_TRUE(file->seek(2, File::CURRENT));
    EXPECT_EQ(file->tell(), 7);
    EXPECT_TRUE(file->seek(-1, File::END));
    file->read(&read, 1);
    EXPECT_EQ(read, '9');
    EXPECT_EQ(file->tell(), 10);
    EXPECT_FALSE(file->seek(1, File::END));
    EXPECT_FALSE(file->seek(-1, File::BEGIN));
    EXPECT_FALSE(file->seek(2147483647, File::CURRENT));
    EXPECT_EQ(file->tell(), 10);
}

TEST(MemoryFile, NoneOfNothing) {
    EXPECT_FALSE(AdrCreateMemoryFile("x", -1));
    EXPECT_FALSE(AdrCreateMemoryFile(nullptr, 1));
    EXPECT_TRUE(AdrCreateMemoryFile(nullptr, 0));
}
