#include "ssao.h"

#include "dis_display.h"
#include "dis_glcheck.h"

namespace zentrak::kindler {

using display::Batch;
using display::FBO;
using display::Material;
using display::ShaderProgram;
using display::Texture;

namespace {

constexpr int TARGET_SIZE = 512; // pixels, whatever the size of the window
constexpr float ZNEAR = 0.1f;    // the distances that the targets hold
constexpr float ZFAR = 50.0f;
constexpr float GLOW_THRESHOLD = 0.9f;

// Sets a uniform of the material's program once, instead of at each bind of the material.
void setConstant(Material& material, const char* name, float value) {
    material.removeAttrib(name);
    material.getProgram()->set(name, value);
}

// A part of the picture, 0 to 1, with the whole texture on it.
void drawQuad(Batch& batch, float x0, float y0, float x1, float y1) {
    batch.rect(2 * x0 - 1, 2 * y0 - 1, 2 * x1 - 1, 2 * y1 - 1);
    batch.flush();
}

} // namespace

SSAO::SSAO(Common*) {}

void SSAO::setup() {
    mReady = false;
    mKasper.loadScene(mDisplay, "ssao/scene.o3d");
    linkPrograms();
    setupTargets();
    mReady = true;
}

void SSAO::linkPrograms() {
    base.linkFiles(*mDisplay, "ssao/basepass.vert", "ssao/basepass.frag");
    baseMaterial.setProgram(&base);
    setConstant(baseMaterial, "znear", ZNEAR);
    setConstant(baseMaterial, "zfar", ZFAR);
    setConstant(baseMaterial, "glowThresh", GLOW_THRESHOLD);
    combine.linkFiles(*mDisplay, "ssao/combine.vert", "ssao/combine.frag");
    combineMaterial.setProgram(&combine);
    setConstant(combineMaterial, "znear", ZNEAR);
    setConstant(combineMaterial, "zfar", ZFAR);
    blurX.linkFiles(*mDisplay, "ssao/blur.vert", "ssao/blurX.frag");
    blurY.linkFiles(*mDisplay, "ssao/blur.vert", "ssao/blurY.frag");
}

// A target makes itself at its first bind, which would unbind a texture that is to be read: so bind all now.
void SSAO::setupTargets() {
    if (fboMain.attachments.empty())
        attachTextures();
    for (FBO* target : {&fboMain, &fboBlurX, &fboBlurY}) {
        target->bind();
        target->unbind();
    }
}

void SSAO::attachTextures() {
    for (Texture* texture : {&texBlurX, &texBlurY, &tex0, &tex1}) {
        texture->setDisplay(mDisplay);
        texture->setup(-1, -1, Texture::CHAN_RGBA, Texture::FORMAT_UINT16, Texture::TARGET_DEFAULT);
    }
    for (FBO* target : {&fboMain, &fboBlurX, &fboBlurY}) {
        target->setDisplay(mDisplay);
        target->setup(TARGET_SIZE, TARGET_SIZE, target == &fboMain);
    }
    fboMain.attach(FBO::COLOR0, &tex0);
    fboMain.attach(FBO::COLOR1, &tex1);
    fboBlurX.attach(FBO::COLOR0, &texBlurX);
    fboBlurY.attach(FBO::COLOR0, &texBlurY);
}

void SSAO::update(float time, float, float) {
    if (!mReady)
        return;
    mDisplay->resetStates();
    GL_CALL(glEnable(GL_DEPTH_TEST));
    drawScene(time);
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_CULL_FACE)); // the last mesh may have been a mirrored one
    blur(blurX, tex1, fboBlurX);
    blur(blurY, texBlurX, fboBlurY);
    combineTargets();
    mDisplay->resetStates();
}

void SSAO::drawScene(float time) {
    const GLenum buffers[] = {GL_COLOR_ATTACHMENT0_EXT, GL_COLOR_ATTACHMENT1_EXT};
    fboMain.bind();
    GL_CALL(glDrawBuffers(2, buffers));
    GL_CALL(glClearColor(0, 0, 0, 0));
    GL_CALL(glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT));
    baseMaterial.bind();
    mKasper.render(time);
    baseMaterial.unbind();
    // Before the unbind, since the draw buffers belong to the target.
    GL_CALL(glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT));
    fboMain.unbind();
}

void SSAO::blur(ShaderProgram& program, Texture& source, FBO& target) {
    program.bind();
    program.set("sourceTexture", 0);
    source.bind();
    target.bind();
    drawQuad(mBatch, 0, 0, 1, 1);
    program.unbind();
    source.unbind();
    target.unbind();
}

// The projection is still that of the scene, by which the program turns distances into positions.
void SSAO::combineTargets() {
    combineMaterial.set("texture0", &tex0);
    combineMaterial.set("texture1", &tex1);
    combineMaterial.set("texture1_blur", &texBlurY);
    combineMaterial.bind();
    drawQuad(mBatch, 0, 0, 1, 1);
    combineMaterial.unbind();
    for (const GLenum unit : {GL_TEXTURE2, GL_TEXTURE1, GL_TEXTURE0}) { // the first is the active one again
        GL_CALL(glActiveTexture(unit));
        tex0.unbind();
    }
}

} // namespace zentrak::kindler
