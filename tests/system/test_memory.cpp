#include "ztk_memory.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <malloc.h>

#if !defined(__SANITIZE_ADDRESS__) // whose heap is another

TEST(KeepFreedMemory, MegabytesThatAreFreedStayInTheHeap) {
    constexpr size_t SIZE = size_t(8) << 20;
    zentrak::keepFreedMemory();
    const size_t mapped = mallinfo2().hblks;
    char* block = static_cast<char*>(malloc(SIZE));
    ASSERT_NE(block, nullptr);
    memset(block, 1, SIZE);
    EXPECT_EQ(mallinfo2().hblks, mapped); // no mapping of its own
    free(block);
    EXPECT_GE(mallinfo2().fordblks, SIZE);
}

#endif
