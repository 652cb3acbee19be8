#include "overlay.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_target.h"
#include "effect_view.h"

#include <algorithm>

namespace zentrak::kindler {

using mathbase::Vector3f;

namespace {

struct State {
    std::string type = "shader";
    float alpha = 0;
} state;

} // namespace

Overlay::Overlay(Common* common) : mCommon(common) {
    state = State();
    bindSpline("alpha", state.alpha);
    bindTrigger("type", TriggerNames::WORDS, {"shader", "solid", "flash", "logo", "finally"},
                [](float, const std::string& value) { state.type = value; });
}

void Overlay::setup() {
    mProgram.linkFiles(*mDisplay, "overlay/overlay.vert", "overlay/satin.frag");
    icons.loadFile(*mDisplay, "icons/icons.png", false);
    finally.loadFile(*mDisplay, "overlay/finally.png", false);
}

void Overlay::update(float time, float, float progress) {
    setClipSpace(*mDisplay);
    if (state.type == "shader")
        drawTarget(time);
    if (state.type == "solid")
        drawWhite(progress);
    if (state.type == "flash")
        drawWhite(1.0f - progress);
    if (state.type == "logo") // pixel for pixel
        drawPicture(icons, float(mDisplay->mWindowMode.width), float(mDisplay->mWindowMode.height));
    if (state.type == "finally") // the same part of every window
        drawPicture(finally, 1024, 640);
}

void Overlay::drawTarget(float time) {
    GL_CALL(glEnable(GL_TEXTURE_2D));
    display::Texture& texture = findTarget(*mCommon, "vaddr").mTexture;
    texture.bind();
    mProgram.bind();
    const float m = std::max(0.0f, 10.0f - time);
    mProgram.set("satin", Vector3f(1, m, m));
    mProgram.set("maxx", float(mDisplay->mWindowMode.width));
    mProgram.set("maxy", float(mDisplay->mWindowMode.height));
    mBatch.color(1, 1, 1, 1);
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    mProgram.unbind();
    texture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
    mDisplay->resetStates();
}

void Overlay::drawWhite(float opacity) {
    GL_CALL(glEnable(GL_BLEND));
    mBatch.color(1, 1, 1, opacity);
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    GL_CALL(glDisable(GL_BLEND));
}

// The whole of `picture` around the middle, on a window of `fullWidth` by `fullHeight` of its pixels.
void Overlay::drawPicture(display::Texture& picture, float fullWidth, float fullHeight) {
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    picture.bind();
    const float x = float(picture.getWidth()) / fullWidth;
    const float y = float(picture.getHeight()) / fullHeight;
    mBatch.color(1, 1, 1, state.alpha);
    mBatch.rect(-x, -y, x, y, 0, 1, 1, 0);
    mBatch.flush();
    picture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
    GL_CALL(glDisable(GL_BLEND));
}

} // namespace zentrak::kindler
