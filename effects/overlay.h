// A layer over the whole picture: the render target "vaddr" through a program, a white flash or fade, or a
// picture.
#pragma once

#include "dis_batch.h"
#include "dis_shader.h"
#include "dis_texture.h"
#include "effect_random.h"
#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha" (of the pictures). Triggers: "type" ("shader", "solid", "flash", "logo" or "finally";
// anything else draws nothing).
class Overlay : public Effect {
public:
    explicit Overlay(Common* common);

    void setup() override;
    void executeTrigger(float time, const std::string& name, const std::string& value) override;
    void updateSpline(float time, const std::string& name, float value) override;
    void update(float time, float delta, float progress) override;

private:
    void drawTarget(float time);
    void drawWhite(float opacity);
    void drawPicture(display::Texture& picture, float fullWidth, float fullHeight);

    Common* mCommon;      // not owned
    EffectRandom mRandom; // drawn from by nothing
    display::ShaderProgram mProgram;
    display::Texture icons;
    display::Texture finally;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
