#include "fisheye.h"

#include "dis_display.h"
#include "effect_target.h"
#include "effect_view.h"

namespace zentrak::kindler {

Fisheye::Fisheye(Common* common) : mCommon(common), mProgram(nullptr) {}

void Fisheye::setup() {
    mProgram.setDisplay(mDisplay);
    mProgram.link("fisheye/fisheye.vert", "fisheye/fisheye.frag");
}

void Fisheye::executeTrigger(float, const std::string& name, const std::string& value) {
    if (name == "which")
        which = value;
}

void Fisheye::updateSpline(float, const std::string& name, float value) {
    if (name == "amount")
        amount = value * 1.2f;
    if (name == "brus")
        brus = value;
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
