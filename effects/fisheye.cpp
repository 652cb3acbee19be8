#include "fisheye.h"

#include "dis_display.h"
#include "effect_target.h"
#include "effect_view.h"

namespace zentrak::kindler {

Fisheye::Fisheye(Common* common) : mCommon(common) {
    bindSpline("amount", amount, [](float value) { return value * 1.2f; });
    bindSpline("brus", brus);
    bindTrigger("which", TriggerNames::TARGET, {"vaddr"},
                [this](float, const std::string& value) { which = value; });
}

void Fisheye::setup() {
    mProgram.linkFiles(*mDisplay, "fisheye/fisheye.vert", "fisheye/fisheye.frag");
}

void Fisheye::update(float time, float, float) {
    setClipSpace(*mDisplay);
    if (which.empty())
        return;
    display::Texture& texture = findTarget(*mCommon, which).mTexture;
    texture.bind();
    mProgram.bind();
    mProgram.set("texture", 0);
    mProgram.set("amount", amount);
    mProgram.set("second", time);
    mProgram.set("brus", brus);
    mBatch.color(1, 1, 1, 1);
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    mProgram.unbind();
    texture.unbind();
}

} // namespace zentrak::kindler
