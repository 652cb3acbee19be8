// A head of points of light, which the camera circles.
#pragma once

#include "am_image.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "kin_effect.h"
#include "o3d_manager.h"

#include <string>

namespace zentrak::kindler {

// Spline: "alpha", the brightness. The blend function stays additive behind it.
class Face : public Effect {
public:
    explicit Face(Common* common);

    // Throws what a missing or foreign scene throws.
    void setup() override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta,
                float progress) override; // asserts "length!=0" for a point at the origin

    const o3d::Manager& getScene() const { return mScene; }

private:
    am::Image              mImage; // never set
    display::Texture       mTexture;
    display::ShaderProgram mProgram; // linked, and not bound by update
    EffectRandom           mRandom;
    o3d::Manager           mScene;
    display::Batch&        mBatch = sharedBatch();
};

} // namespace zentrak::kindler
