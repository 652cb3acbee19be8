// A thousand rods around a point, all turned to it, which the camera leaves behind.
#pragma once

#include "effect_batch.h"
#include "effect_random.h"
#include "effect_script.h"
#include "mb_vector3.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha", "bw" (1: grey), "zoom" (faded from 0.25 on). Triggers: "drum1" to "drum4", which have
// no visible effect.
class Cubejox : public ScriptedEffect {
public:
    static constexpr int NUM_RODS = 1000;

    struct Rod {
        mathbase::Vector3f pos;
        mathbase::Vector3f axis; // of unit length, from pos to the origin
        float angle;             // about its own axis, radians
        unsigned char sides;     // not used: every rod has 12
        float radius;
        float spin; // 1 if it turns, else 0
    };

    static const Rod* rods(); // NUM_RODS of them

    explicit Cubejox(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectRandom mRandom;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
