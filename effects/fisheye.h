// Shows a render target through a lens.
#pragma once

#include "dis_batch.h"
#include "dis_shader.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Splines: "amount" (of the lens, 0 for none), "brus" (of grain). Triggers: "which" (its value is the name of
// the target).
class Fisheye : public Effect {
public:
    explicit Fisheye(Common* common);

    void setup() override;
    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    Common* mCommon; // not owned
    display::ShaderProgram mProgram;
    std::string which;
    float amount = 0;
    float brus = 0;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
