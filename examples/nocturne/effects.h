// The effects of the nocturne: those of the engine that it uses, and two of its own.
#pragma once

#include "abc.h"
#include "clear.h"
#include "hurry.h"
#include "kin_main.h"
#include "photon.h"
#include "recurse.h"
#include "ssao.h"

namespace nocturne {

// Golden spheres over dark water, made of points of light.
class Embers : public zentrak::kindler::Photon {
public:
    using Photon::Photon;

protected:
    void setupScene() override;
};

// Over all: a frame of bars, darker corners, a tint, fades and flashes.
// Splines: "light", 0 black to 1; "warm", 0 as it is to 1 amber. Triggers: "flash".
class Veil : public zentrak::kindler::ScriptedEffect {
public:
    Veil();

    void setup() override;
    void update(float time, float delta, float progress) override;

private:
    zentrak::kindler::EffectProgram mProgram;
    zentrak::display::Batch mBatch;
    float mLight = 1;
    float mWarm = 0;
    float mFlash = 0; // 1 at a flash, down to 0 in half a second
};

struct Effects {
    zentrak::kindler::Common common;
    zentrak::kindler::Clear clear;
    Embers embers{&common};
    zentrak::kindler::SSAO city{&common};
    zentrak::kindler::Abc cathedral{&common};
    zentrak::kindler::Recurse recurse{&common};
    zentrak::kindler::Hurry storm{&common};
    Veil veil;

    explicit Effects(zentrak::kindler::Kindler& kindler);
};

} // namespace nocturne
