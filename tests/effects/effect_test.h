// What tests of effects share.
#pragma once

#include "effect_random.h"
#include "gl_fixture.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::test {

// While it lives every effect that is built draws the same random numbers.
class FixedRandom {
public:
    explicit FixedRandom(uint32_t start = 1) { kindler::EffectRandom::fixStart(start); }
    ~FixedRandom() { kindler::EffectRandom::freeStart(); }
    FixedRandom(const FixedRandom&) = delete;
    FixedRandom& operator=(const FixedRandom&) = delete;
};

// Makes `effect` ready as the driver does.
inline void prepare(kindler::Effect& effect, display::DisplayGL& display, const std::string& name) {
    effect.mName = name;
    effect.mDisplay = &display;
    effect.setup();
}

} // namespace zentrak::test
