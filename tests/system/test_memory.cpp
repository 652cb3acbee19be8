#include "ztk_memory.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <malloc.h>

#if !defined(__SANITIZE_ADDRESS__) // which replaces the heap

TEST(KeepFreedMemory, MegabytesThatAreFreedStayInTheHeap) {
    constexpr size_t SIZE = size_t(8) << 20;
    zentrak::keepFreedMemory();
    const size_t mapped = mallinfo2().hblks;
    char* block = static_cast<char*>(malloc(SIZE));
    ASSERT_NE(block, nullptr);
    memset(block, 1, SIZE);
    EXPECT_EQ(mallinfo2().hblks, mapped); // not in a separate mapping
    free(block);
    EXPECT_GE(mallinfo2().fordblks, SIZE);
}

#endif
