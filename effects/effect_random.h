// The random numbers of one effect.
#pragma once

#include "mb_random.h"

namespace zentrak::kindler {

class EffectRandom : public mathbase::Random {
public:
    // Starts from mathbase::randomStart() and takes two draws: the pictures differ a little from run to run.
    EffectRandom();
};

} // namespace zentrak::kindler
