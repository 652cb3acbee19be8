// Closes, from a span of its own, the render target that a WaxOn opened.
#pragma once

#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Triggers: "which" (its value is the name of the target).
class WaxOff : public ScriptedEffect {
public:
    explicit WaxOff(Common* common);

    void update(float time, float delta, float progress) override;

private:
    Common* mCommon; // not owned
    std::string which;
};

} // namespace zentrak::kindler
