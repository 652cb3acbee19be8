// A comet of two hundred large boxes that follows a knotted path.
#pragma once

#include "dis_shader.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "shot" (a flash of blue that fades in a second). The path lasts for 100
// seconds; after that the comet stays at its end.
class Xor : public ScriptedEffect {
public:
    explicit Xor(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectTexture mTexture;                   // loaded, and not drawn with
    display::ShaderProgram mProgram{nullptr}; // never linked
    EffectRandom mRandom;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
