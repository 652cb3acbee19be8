// The random numbers of one effect.
#pragma once

#include "mb_random.h"

#include <cstdint>

namespace zentrak::kindler {

class EffectRandom : public mathbase::Random {
public:
    // Starts from the processor time used so far and takes two draws: the pictures differ a little from run
    // to run.
    EffectRandom();

    // From now on every EffectRandom starts from `start` instead, for pictures that can be compared, or from
    // the processor time again.
    static void fixStart(uint32_t start);
    static void freeStart();
};

} // namespace zentrak::kindler
