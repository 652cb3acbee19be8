// A comet of two hundred large boxes that follows a knotted path.
#pragma once

#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "shot" (a flash of blue that fades in a second). The path lasts for 100
// seconds; from then on the comet stands at its end.
class Xor : public Effect {
public:
    explicit Xor(Common* common);

    void setup() override;
    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    display::Texture mTexture;       // loaded, and not drawn with
    display::ShaderProgram mProgram; // never linked
    EffectRandom mRandom;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
