// Faint sprites that drift and turn, and a ring that runs out from the centre at each shot.
#pragma once

#include "dis_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "shot".
class Rund : public ScriptedEffect {
public:
    explicit Rund(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    void drawSprites(float time, float delta);
    void drawRing(float time);

    EffectTexture mTexture;
    EffectRandom mRandom;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
