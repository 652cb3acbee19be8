// Greetings stamped into a slab of voxels, where they fade.
#pragma once

#include "am_image.h"
#include "effect_batch.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Triggers: any name stamps the next band, 192 by 24 pixels, of "greet/greet.png"; past the last one nothing
// is stamped.
class Greet : public ScriptedEffect {
public:
    explicit Greet(Common* common);

    void setup() override;
    void resetTriggers() override; // the first band again, into an empty slab; the camera stays
    void update(float time, float delta, float progress) override;

private:
    void stamp(); // the next band

    am::Image mImage;
    EffectTexture mTexture;
    EffectRandom mRandom; // drawn from by nothing
    display::Batch& mBatch = sharedBatch();
};

} // namespace zentrak::kindler
