#include "disc.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

#include <algorithm>

namespace zentrak::kindler {

Disc::Disc(Common*) {
    bindSpline("alpha", mAlpha);
    bindTrigger("flash", [this](float, const std::string&) { mFlash = 1; });
}

void Disc::setup() {
    mTexture.loadFile(*mDisplay, "disc/disc.png", true);
}

void Disc::update(float, float delta, float) {
    mFlash = std::max(0.0f, mFlash - delta);
    setClipSpace(*mDisplay);
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mTexture.bind();
    mBatch.color(1, 1, 1, std::min(1.0f, mAlpha + mFlash));
    mBatch.rect(-0.5f, -0.8f, 0.5f, 0.8f, 0, 1, 1, 0);
    mBatch.flush();
    mTexture.unbind();
    mDisplay->resetStates();
}

} // namespace zentrak::kindler
