// Counts the calls of `new` since the start of the program. Link zentrak_test_allocations.
#pragma once

#include <cstddef>

namespace zentrak::test {

size_t allocationCount();

} // namespace zentrak::test
