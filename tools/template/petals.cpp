#include "petals.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

#include <algorithm>
#include <cmath>

using zentrak::kindler::PI;
using zentrak::kindler::setClipSpace;
using zentrak::kindler::setView;
using zentrak::mathbase::Vector3f;

// No graphics here: an effect is built before there is a window.
Petals::Petals() {
    bindSpline("alpha", mAlpha);
    bindSpline("open", mOpen);
    bindTrigger("beat", [this](float, const std::string&) { mSwell = 1; });
}

// Everything is loaded here; update() opens no file.
void Petals::setup() {
    mPetal.loadFile(*mDisplay, "petals/petal.png", true);
    mSky.linkFiles(*mDisplay, "petals/sky.vert", "petals/sky.frag");
}

// `time` is that of the span, `delta` the time since the last frame, negative after a jump back.
void Petals::update(float time, float delta, float) {
    mSwell = std::clamp(mSwell - 2 * delta, 0.0f, 1.0f);
    drawSky(time);

    setView(*mDisplay, {}, Vector3f(0, 0.6f * std::sin(0.4f * time), 5), Vector3f(0, 0, 0), 0.1f * time);
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE)); // light adds up
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mPetal.bind();
    for (int ring = 0; ring < 4; ++ring) {
        const float outwards = float(ring) / 3;
        mBatch.color(1.0f, 0.75f - 0.5f * outwards, 0.45f + 0.4f * outwards, 0.7f * mAlpha);
        drawRing(6 + 4 * ring, mOpen * (0.25f + 0.4f * float(ring)), 0.6f + 0.25f * float(ring),
                 (ring % 2 ? -0.25f : 0.25f) * time);
    }
    mBatch.flush();
    mPetal.unbind();
    mDisplay->resetStates();
}

void Petals::drawSky(float time) {
    setClipSpace(*mDisplay);
    mSky.bind();
    mSky.set("time", time);
    mSky.set("light", mAlpha * (0.75f + 0.25f * mSwell));
    mBatch.rect(-1, -1, 1, 1);
    mBatch.flush();
    mSky.unbind();
}

// Petals around the origin that point away from it.
void Petals::drawRing(int petals, float radius, float size, float turn) {
    const float length = size * (1 + 0.3f * mSwell);
    for (int i = 0; i < petals; ++i) {
        const float angle = turn + 2 * PI * float(i) / float(petals);
        const Vector3f out(std::cos(angle), std::sin(angle), 0);
        const Vector3f across(out.y, -out.x, 0);
        mBatch.sprite(out * (radius + 0.4f * length), across * (0.22f * size), out * (0.5f * length));
    }
}
