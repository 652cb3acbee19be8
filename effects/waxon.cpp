#include "waxon.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_target.h"

#include <cstdio>

namespace zentrak::kindler {

using display::FBO;
using display::Texture;

WaxOn::WaxOn(Common* common) : mCommon(common) {
    bindTrigger("which", TriggerNames::TARGET, {"vaddr"},
                [this](float, const std::string& value) { which = value; });
}

WaxOn::~WaxOn() {
    const auto entry = mCommon->mFbos.find("vaddr");
    if (mTarget != nullptr && entry != mCommon->mFbos.end() && entry->second == mTarget.get())
        mCommon->mFbos.erase(entry);
}

void WaxOn::setup() {
    mTarget = std::make_unique<Common::FBOData>();
    mTarget->mFbo.setDisplay(mDisplay);
    mTarget->mTexture.setDisplay(mDisplay);
    mTarget->mTexture.setup(-1, -1, Texture::CHAN_DEFAULT, Texture::FORMAT_DEFAULT, Texture::TARGET_DEFAULT);
    mTarget->mFbo.setup(WIDTH, HEIGHT, true);
    mTarget->mFbo.attach(FBO::COLOR0, &mTarget->mTexture);
    mTarget->mTexture.bind();
    mTarget->mTexture.setRepeat(false);
    mTarget->mTexture.unbind();
    mCommon->mFbos["vaddr"] = mTarget.get();
    puts("WaxOn::setup:after()");
}

void WaxOn::update(float, float, float) {
    if (which.empty())
        return;
    mDisplay->resetStates();
    findTarget(*mCommon, which).mFbo.bind();
    GL_CALL(glClearColor(0, 0, 0, 0));
    GL_CALL(glClearDepth(1.0));
    GL_CALL(glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
}

void WaxOn::postUpdate(float, float, float) {
    if (which.empty())
        return;
    findTarget(*mCommon, which).mFbo.unbind();
    mDisplay->resetStates();
}

} // namespace zentrak::kindler
