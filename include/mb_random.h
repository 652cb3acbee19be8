// The random numbers of particles and effects: one 32-bit state, the same sequence on every machine.
#pragma once

#include "mb_vector3.h"

#include <cmath>
#include <cstdint>
#include <optional>

namespace zentrak::mathbase {

// A start for sequences that differ from run to run: the processor time used so far, or the fixed
// start.
uint32_t randomStart();

// From now on randomStart() returns `start`, so that pictures can be compared. This can't be undone.
void fixRandomStart(std::optional<uint32_t> start);

struct Random {
    uint32_t mState = 0;

    Random() = default;
    explicit Random(uint32_t state) : mState(state) {}

    // The next state.
    uint32_t draw() { return mState = mState * 69069u + 5u; }
    // One draw as a number from 0 to 1, 1 included: the largest states round up to it.
    float uniform() { return float(draw()) * 0x1p-32f; }
    // Two draws as a point of the unit sphere, evenly spread.
    Vector3f unitSphere() {
        const float phi = 6.2831855f * uniform();
        const float z = 2.0f * uniform() - 1.0f;
        const float r = sqrtf(1.0f - z * z);
        return Vector3f(r * cosf(phi), r * sinf(phi), z);
    }
};

} // namespace zentrak::mathbase
