// A scene with ambient occlusion and glow, both made on the screen from one pass over the scene.
#pragma once

#include "dis_batch.h"
#include "dis_fbo.h"
#include "dis_material.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "kasper.h"
#include "kin_effect.h"

namespace zentrak::kindler {

// The scene goes into two targets at once: its colours with the distance in the fourth channel, and what
// glows, with the distance again. The second is blurred in two passes; the last pass puts all three together.
class SSAO : public Effect {
public:
    explicit SSAO(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    void linkPrograms();
    void setupTargets();
    void attachTextures();
    void drawScene(float time);
    void blur(display::ShaderProgram& program, display::Texture& source, display::FBO& target);
    void combineTargets();

    Kasper mKasper;
    display::ShaderProgram base;
    display::ShaderProgram combine;
    display::ShaderProgram blurX;
    display::ShaderProgram blurY;
    display::Material baseMaterial;
    display::Material combineMaterial;
    display::FBO fboBlurX;
    display::FBO fboBlurY;
    display::FBO fboMain;
    display::Texture texBlurX;
    display::Texture texBlurY;
    display::Texture tex0; // of fboMain: colours and distance
    display::Texture tex1; // of fboMain: what glows, and distance
    display::Batch mBatch;
    int mContext; // the opening of the window that the programs belong to
    bool mReady;  // setup has come to its end
};

} // namespace zentrak::kindler
