// Counts the calls of `new`, and refuses one. Link zentrak_test_allocations.
#pragma once

#include <cstddef>

namespace zentrak::test {

size_t allocationCount(); // since the start of the program
long allocationsInUse();  // less those that were deleted

// The `number`-th call from now on fails, as if there were no memory left; 0 for none.
void refuseAllocation(size_t number);
bool wasRefused(); // since then

} // namespace zentrak::test
