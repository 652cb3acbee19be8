// A layer over the whole picture: the render target "vaddr" through a program, a white flash or fade, or a
// picture.
#pragma once

#include "dis_batch.h"
#include "dis_texture.h"
#include "effect_random.h"
#include "effect_resource.h"
#include "effect_script.h"

#include <string>

namespace zentrak::kindler {

// Splines: "alpha" (of the pictures). Triggers: "type" ("shader", "solid", "flash", "logo" or "finally";
// anything else draws nothing).
class Overlay : public ScriptedEffect {
public:
    explicit Overlay(Common* common);

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    void drawTarget(float time);
    void drawWhite(float opacity);
    void drawPicture(display::Texture& picture, float fullWidth, float fullHeight);

    Common* mCommon;      // not owned
    EffectRandom mRandom; // drawn from by nothing
    EffectProgram mProgram;
    EffectTexture icons;
    EffectTexture finally;
    display::Batch mBatch;
};

} // namespace zentrak::kindler
