// Nineteen pictures as the layers of one block, which falls back column by column.
#pragma once

#include "effect_batch.h"
#include "effect_random.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". The pictures are "grand/grand01.png" to "grand/grand19.png"; of one that is wider than
// 128 the columns from 128 on are left out.
class Grand : public ScriptedEffect {
public:
    explicit Grand(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectRandom mRandom;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
