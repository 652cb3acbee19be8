#include "rund.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <cmath>

namespace zentrak::kindler {

using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

constexpr int NUM_SPRITES = 20;
constexpr int RING_STEPS = 80;

struct Sprite {
    float x, y;  // clip space; the sprite's corner, not its centre
    float scale; // 1 to 2
    float speed; // a second, -1 to 1
};

struct State {
    float alpha = 0;
    float arne = 5; // radius of the ring, which shows below 2
    Sprite rundData[NUM_SPRITES];
} state;

} // namespace

Rund::Rund(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
    bindTrigger("shot", [](float, const std::string&) { state.arne = 0.5f; });
}

void Rund::setup() {
    mTexture.loadFile(*mDisplay, "rund/rund.png", true);
    for (Sprite& sprite : state.rundData) {
        sprite.x = 2.4f * mRandom.uniform() - 1.2f;
        sprite.y = 2.4f * mRandom.uniform() - 1.2f;
        sprite.scale = mRandom.uniform() + 1.0f;
        sprite.speed = 2.0f * mRandom.uniform() - 1.0f;
    }
}

void Rund::update(float time, float delta, float) {
    state.arne += 0.5f * delta;
    setClipSpace(*mDisplay);
    drawSprites(time, delta);
    if (state.arne < 2.0f)
        drawRing(time);
    mDisplay->resetStates();
}

void Rund::drawSprites(float time, float delta) {
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_LIGHTING));
    GL_CALL(glEnable(GL_BLEND));
    GL_CALL(glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mTexture.bind();

    const float unitX = 2.0f * float(mTexture.getWidth()) / float(mDisplay->mWindowMode.width);
    const float unitY = 2.0f * float(mTexture.getHeight()) / float(mDisplay->mWindowMode.height);
    for (int i = 0; i < NUM_SPRITES; ++i) {
        Sprite& sprite = state.rundData[i];
        sprite.x += delta * sprite.speed;
        if (sprite.x > 1.2f)
            sprite.x -= 3.4f;
        const float w = unitX * sprite.scale;
        const float h = unitY * sprite.scale;
        Matrix4x4Col transform;
        transform.buildPRS(Vector3f(sprite.x, sprite.y, 0),
                           Quatf(Eulerf(0, 0, float(i) + sprite.scale * time)), Vector3f(1, 1, 1));
        mBatch.setTransform(transform);
        mBatch.color(1, 0, 0, 0.03f * sprite.scale * state.alpha + 0.03f);
        mBatch.quad(Vector3f(0, h, 0), Vector3f(w, h, 0), Vector3f(w, 0, 0), Vector3f(0, 0, 0));
    }
    mBatch.flush();

    mTexture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
}

// Two bands of 80 steps, from a transparent inner rim to the bright line and on to a transparent outer rim.
// The rims are a little ahead of the line, which twists the ring.
void Rund::drawRing(float time) {
    Matrix4x4Col transform;
    transform.buildPRS(Vector3f(0, 0, 0), Quatf(Eulerf(sinf(time) * PI, time, 0)), Vector3f(1, 1, 1));
    mBatch.setTransform(transform);

    const float bright = -1.2f * state.arne + 1.3f;
    const auto ringVertex = [this](float angle, float radius, float opacity) {
        mBatch.color(0.43f, 0, 0.34f, opacity);
        mBatch.vertex(0.625f * sinf(angle) * radius, cosf(angle) * radius, 0);
    };
    for (const bool inner : {true, false}) {
        mBatch.begin(GL_QUAD_STRIP);
        for (int k = 0; k <= RING_STEPS; ++k) {
            const float a = 2.0f * PI * float(k) / 80.0f;
            const float a2 = a + 0.03925f;
            if (inner)
                ringVertex(a2, state.arne - 0.08f, 0);
            ringVertex(a, state.arne, bright);
            if (!inner)
                ringVertex(a2, state.arne + 0.02f, 0);
        }
        mBatch.end();
    }
    mBatch.flush();
}

} // namespace zentrak::kindler
