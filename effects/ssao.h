// A scene with ambient occlusion and glow, both made in screen space from one pass over the scene.
#pragma once

#include "dis_batch.h"
#include "dis_fbo.h"
#include "dis_material.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_resource.h"
#include "effect_script.h"
#include "kasper.h"

namespace zentrak::kindler {

// The scene goes into two targets at once, each with the distance in its fourth channel: its colours, and
// what glows. The second is blurred in two passes; the last pass combines all three.
class SSAO : public ScriptedEffect {
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
    EffectProgram base;
    EffectProgram combine;
    EffectProgram blurX;
    EffectProgram blurY;
    display::Material baseMaterial{nullptr};
    display::Material combineMaterial{nullptr};
    display::FBO fboBlurX{nullptr};
    display::FBO fboBlurY{nullptr};
    display::FBO fboMain{nullptr};
    display::Texture texBlurX{nullptr};
    display::Texture texBlurY{nullptr};
    display::Texture tex0{nullptr}; // of fboMain: colours and distance
    display::Texture tex1{nullptr}; // of fboMain: what glows, and distance
    display::Batch mBatch;
    bool mReady = false; // setup() succeeded
};

} // namespace zentrak::kindler
