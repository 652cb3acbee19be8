// Greetings stamped into a slab of voxels, where they fade.
#pragma once

#include "am_image.h"
#include "dis_texture.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Triggers: any name stamps the next band, 192 by 24 pixels, of "greet/greet.png"; past the last one nothing
// is stamped.
class Greet : public Effect {
public:
    explicit Greet(Common* common);

    void setup() override;
    void resetTriggers() override; // the first band again, into an empty slab; the camera stays
    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void update(float time, float delta, float progress) override;

private:
    am::Image mImage;
    display::Texture mTexture;
    EffectRandom mRandom; // drawn from by nothing
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
