#include "effects.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

#include <algorithm>
#include <cmath>

namespace nocturne {

using zentrak::mathbase::Vector3f;

void Embers::setupScene() {
    for (const Vector3f& color :
         {Vector3f(1, 0.30f, 0.06f), Vector3f(0.9f, 0.5f, 0.2f), Vector3f(0.05f, 0.09f, 0.2f)})
        mMaterials.push_back(new Material(color));
    addSphere(Vector3f(-3, 2.1f, 0), 2.3f, mMaterials[0]);
    addSphere(Vector3f(3, 2.1f, 0), 2.3f, mMaterials[1]);
    addSphere(Vector3f(0, -140, 5), 140, mMaterials[2]); // the water
    mLights.push_back(new PointLight(Vector3f(5, 8, 0), Vector3f(10, 10, 10)));
}

Veil::Veil() {
    bindSpline("light", mLight);
    bindSpline("warm", mWarm);
    bindTrigger("flash", [this](float, const std::string&) { mFlash = 1; });
}

void Veil::setup() {
    mProgram.linkFiles(*mDisplay, "veil/veil.vert", "veil/veil.frag");
}

void Veil::update(float, float delta, float) {
    mFlash = std::clamp(mFlash - 2 * delta, 0.0f, 1.0f);
    mDisplay->resetStates();
    zentrak::kindler::setClipSpace(*mDisplay);
    GL_CALL(glEnable(GL_BLEND));
    if (mFlash > 0) {
        GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE));
        mBatch.color(1, 0.85f, 0.6f, 0.8f * mFlash * mFlash);
        mBatch.rect(-1, -1, 1, 1);
        mBatch.flush();
    }
    GL_CALL(glBlendFunc(GL_DST_COLOR, GL_SRC_COLOR)); // 2 * source * destination
    mProgram.bind();
    mProgram.set("light", mLight);
    mProgram.set("tint", Vector3f(1, 1, 1) * (1 - mWarm) + Vector3f(1.25f, 0.85f, 0.45f) * mWarm);
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    mProgram.unbind();
    mDisplay->resetStates();
}

Effects::Effects(zentrak::kindler::Kindler& kindler) {
    kindler.addCallback("clear", clear);
    kindler.addCallback("embers", embers);
    kindler.addCallback("city", city);
    kindler.addCallback("cathedral", cathedral);
    kindler.addCallback("recurse", recurse);
    kindler.addCallback("storm", storm);
    kindler.addCallback("veil", veil);
}

} // namespace nocturne
