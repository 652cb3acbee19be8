// A flight backwards along a winding path through ten thousand sprites.
#pragma once

#include "dis_batch.h"
#include "dis_shader.h"
#include "dis_spritecut.h"
#include "dis_texture.h"
#include "effect_random.h"
#include "kin_effect.h"
#include "mb_vector3.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha".
class Cloud : public Effect {
public:
    explicit Cloud(Common* common);

    void setup() override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    display::Texture mTexture;
    EffectRandom mRandom;
    display::ShaderProgram mProgram; // never linked
    display::SpriteCut mCut;
    display::Batch mBatch;
};

// The path that the sprites lie around, for a `t` from 0 to 100.
mathbase::Vector3f getCloudPath(float t);

} // namespace zentrak::kindler
