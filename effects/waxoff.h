// Closes, from a span of its own, the render target that a WaxOn opened.
#pragma once

#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Triggers: "which" (its value is the name of the target).
class WaxOff : public Effect {
public:
    explicit WaxOff(Common* common);

    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void update(float time, float delta, float progress) override;

private:
    Common* mCommon; // not owned
    std::string which;
};

} // namespace zentrak::kindler
