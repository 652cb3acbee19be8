// A flight backwards along a winding path through ten thousand sprites.
#pragma once

#include "dis_batch.h"
#include "dis_shader.h"
#include "dis_spritecut.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "mb_vector3.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha".
class Cloud : public ScriptedEffect {
public:
    explicit Cloud(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectTexture mTexture;
    EffectRandom mRandom;
    display::ShaderProgram mProgram{nullptr}; // never linked
    display::SpriteCut mCut;
    display::Batch mBatch;
};

// The path that the sprites lie around, for a `t` from 0 to 100.
mathbase::Vector3f getCloudPath(float t);

} // namespace zentrak::kindler
