// A frame around the picture, which can be pushed out and turned.
#pragma once

#include "dis_batch.h"
#include "effect_resource.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha", "border" (0: on the edge; above, out of the picture and turned).
class Border : public ScriptedEffect {
public:
    explicit Border(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    EffectTexture mTexture;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
