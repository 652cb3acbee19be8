#include "border.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

namespace zentrak::kindler {

using mathbase::Vector3f;

namespace {

float alpha;
float border;

} // namespace

Border::Border(Common*) : mTexture(nullptr) {}

void Border::setup() {
    mTexture.setDisplay(mDisplay);
    mTexture.load("border/border2.png", false);
    mTexture.init();
}

void Border::updateSpline(float, const std::string& name, float value) {
    if (name == "alpha")
        alpha = value;
    if (name == "border")
        border = value;
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

    GL_CALL(glRotatef(50.0f * border, 0, 0, 1)); // degrees
    const float edge = 1.0f + border;
    mBatch.color(1, 1, 1, alpha);
    mBatch.quad(Vector3f(-edge, -edge, 0), Vector3f(edge, -edge, 0), Vector3f(edge, edge, 0),
                Vector3f(-edge, edge, 0), 0, 1, 1, 0);
    mBatch.flush();

    mTexture.unbind();
    mDisplay->resetStates();
}

} // namespace zentrak::kindler
