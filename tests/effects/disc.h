// A white disc that flashes.
#pragma once

#include "dis_batch.h"
#include "effect_resource.h"
#include "effect_script.h"

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "flash".
class Disc : public ScriptedEffect {
public:
    explicit Disc(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectTexture mTexture;
    display::Batch mBatch;
    float mAlpha = 0;
    float mFlash = 0; // 1 at a flash, down to 0 in a second
};

} // namespace zentrak::kindler
