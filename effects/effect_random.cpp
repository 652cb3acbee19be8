#include "effect_random.h"

#include <ctime>
#include <optional>

namespace zentrak::kindler {

namespace {

std::optional<uint32_t> fixedStart;

} // namespace

EffectRandom::EffectRandom() : Random(fixedStart.value_or(uint32_t(clock()))) {
    draw();
    draw();
}

void EffectRandom::fixStart(uint32_t start) {
    fixedStart = start;
}
void EffectRandom::freeStart() {
    fixedStart.reset();
}

} // namespace zentrak::kindler
