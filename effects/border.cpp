#include "border.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

namespace zentrak::kindler {

using mathbase::Vector3f;

namespace {

struct State {
    float alpha = 0;
    float border = 0;
} state;

} // namespace

Border::Border(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
    bindSpline("border", state.border);
}

void Border::setup() {
    mTexture.loadFile(*mDisplay, "border/border2.png", false);
}

void Border::update(float, float, float) {
    setClipSpace(*mDisplay);
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_LIGHTING));
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mTexture.bind();

    GL_CALL(glRotatef(50.0f * state.border, 0, 0, 1)); // degrees
    const float edge = 1.0f + state.border;
    mBatch.color(1, 1, 1, state.alpha);
    mBatch.quad(Vector3f(-edge, -edge, 0), Vector3f(edge, -edge, 0), Vector3f(edge, edge, 0),
                Vector3f(-edge, edge, 0), 0, 1, 1, 0);
    mBatch.flush();

    mTexture.unbind();
    mDisplay->resetStates();
}

} // namespace zentrak::kindler
