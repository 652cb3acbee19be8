// Counts the calls of `new`, and refuses some. Link zentrak_test_allocations.
#pragma once

#include <cstddef>

namespace zentrak::test {

size_t allocationCount(); // since the start of the program
long allocationsInUse();  // less those that were deleted

// The `number`-th call from now on fails, as if there were no memory left, and with `andAllAfter` every later
// one too. 0: none fails.
void refuseAllocation(size_t number, bool andAllAfter = false);
bool wasRefused(); // since then

} // namespace zentrak::test
