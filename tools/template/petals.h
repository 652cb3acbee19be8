// A flower of light that opens, turns, and swells on the beat, before a sky.
#pragma once

#include "dis_batch.h"
#include "effect_resource.h"
#include "effect_script.h"

// Splines: "alpha", the brightness, 0 to 1; "open", 0 closed to 1 open. Triggers: "beat".
class Petals : public zentrak::kindler::ScriptedEffect {
public:
    Petals();

    void setup() override;
    void update(float time, float delta, float progress) override;

    float getSwell() const { return mSwell; }

private:
    void drawSky(float time);
    void drawRing(int petals, float radius, float size, float turn);

    zentrak::kindler::EffectTexture mPetal;
    zentrak::kindler::EffectProgram mSky;
    zentrak::display::Batch mBatch;
    float mAlpha = 0;
    float mOpen = 0;
    float mSwell = 0; // 1 on a beat, down to 0 in half a second
};
