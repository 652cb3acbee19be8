// Fifty wheels of ten black blades, each seen by a camera of its own: a fan of rays that darkens the picture.
#pragma once

#include "dis_batch.h"
#include "effect_random.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha".
class Grid : public ScriptedEffect {
public:
    explicit Grid(Common* common);

    void update(float time, float delta, float progress) override;

private:
    EffectRandom mRandom;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
