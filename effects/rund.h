// Faint sprites that drift and turn, and a ring that runs out from the middle at each shot.
#pragma once

#include "dis_batch.h"
#include "dis_texture.h"
#include "effect_random.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "shot".
class Rund : public Effect {
public:
    explicit Rund(Common* common);

    void setup() override;
    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    void drawSprites(float time, float delta);
    void drawRing(float time);

    display::Texture mTexture;
    EffectRandom mRandom;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
