#include "mb_random.h"

#include <ctime>

namespace zentrak::mathbase {

static std::optional<uint32_t> fixedStart;

uint32_t randomStart() {
    return fixedStart.value_or(uint32_t(clock()));
}

void fixRandomStart(std::optional<uint32_t> start) {
    fixedStart = start;
}

} // namespace zentrak::mathbase
