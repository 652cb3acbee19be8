// A soft ball that wanders through a grid of 25 by 25 by 25 boxes.
#pragma once

#include "dis_material.h"
#include "dis_texture.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "mb_vector3.h"

#include <string>

namespace zentrak::kindler {

// Splines: "intensity" (0: the ball fills the grid; 3: it is gone).
class Vul : public ScriptedEffect {
public:
    explicit Vul(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectTexture mTexture;
    EffectProgram mProgram;     // the programs and the materials
    EffectProgram mEnvironment; // are built and not drawn with
    EffectRandom mRandom;       // drawn from by nothing
    display::Material mMaterial{nullptr};
    display::Material mEnvironmentMaterial{nullptr};
    display::Texture mCube{nullptr};
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
