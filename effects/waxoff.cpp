#include "waxoff.h"

#include "dis_display.h"
#include "effect_target.h"

namespace zentrak::kindler {

WaxOff::WaxOff(Common* common) : mCommon(common) {
    bindTrigger("which", TriggerNames::TARGET, {"vaddr"},
                [this](float, const std::string& value) { which = value; });
}

void WaxOff::update(float, float, float) {
    if (which.empty())
        return;
    findTarget(*mCommon, which).mFbo.unbind();
    mDisplay->resetStates();
}

} // namespace zentrak::kindler
