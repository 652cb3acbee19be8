// Shows a render target through a lens.
#pragma once

#include "dis_batch.h"
#include "effect_resource.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "amount" (of the lens, 0 for none), "brus" (of grain). Triggers: "which" (its value is the name of
// the target).
class Fisheye : public ScriptedEffect {
public:
    explicit Fisheye(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    Common* mCommon; // not owned
    EffectProgram mProgram;
    std::string which;
    float amount = 0;
    float brus = 0;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
