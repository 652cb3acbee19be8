// A soft ball that wanders through a grid of 25 by 25 by 25 boxes.
#pragma once

#include "dis_material.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "kin_effect.h"
#include "mb_vector3.h"

#include <string>

namespace zentrak::kindler {

// Splines: "intensity" (0: the ball fills the grid; 3: it is gone).
class Vul : public Effect {
public:
    explicit Vul(Common* common);

    void setup() override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    display::Texture mTexture;
    display::ShaderProgram mProgram;     // the programs and the materials
    display::ShaderProgram mEnvironment; // are built and not drawn with
    EffectRandom mRandom;                // drawn from by nothing
    display::Material mMaterial;
    display::Material mEnvironmentMaterial;
    display::Texture mCube;
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
