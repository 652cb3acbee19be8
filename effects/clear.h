// The background: a flat colour, or a light gradient laid over the last picture.
#pragma once

#include "dis_batch.h"
#include "kin_effect.h"
#include "mb_vector4.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "type" ("gradient", or anything else for flat), "color".
class Clear : public Effect {
public:
    mathbase::Vector4f color1; // of the flat background
    mathbase::Vector4f color2; // kept and not drawn
    std::string type;
    float alpha = 1.0f; // of the gradient

    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    display::Batch mBatch;
};

} // namespace zentrak::kindler
