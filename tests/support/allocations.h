// How often the running program has asked for memory by `new`. Link zentrak_test_allocations.
#pragma once

#include <cstddef>

namespace zentrak::test {

size_t allocationCount();

} // namespace zentrak::test
