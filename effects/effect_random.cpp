#include "effect_random.h"

namespace zentrak::kindler {

EffectRandom::EffectRandom() : Random(mathbase::randomStart()) {
    draw();
    draw();
}

} // namespace zentrak::kindler
