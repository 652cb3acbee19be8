// The background: a flat colour, or a light gradient laid over the last picture.
#pragma once

#include "dis_batch.h"
#include "effect_script.h"
#include "mb_vector4.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha". Triggers: "type" ("gradient", or anything else for flat), "color".
class Clear : public ScriptedEffect {
public:
    mathbase::Vector4f color1; // of the flat background
    mathbase::Vector4f color2; // not drawn
    std::string type;
    float alpha = 1.0f; // of the gradient

    Clear();

    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void update(float time, float delta, float progress) override;

private:
    void setColor(const std::string& name);

    display::Batch mBatch;
};

} // namespace zentrak::kindler
