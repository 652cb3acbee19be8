#include "cloud.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zentrak::kindler {

using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int NUM_SPRITES = 10000;
constexpr float SIZE = 7.0f; // world units

struct State {
    Vector3f path[NUM_SPRITES];
    float alpha = 0;
} state;

// The first sprite to draw, counted from the far end: in the later part "alpha" thins the cloud from there.
int firstSprite(float progress) {
    if (!(progress >= 0.2f))
        return 0;
    const float skipped = (1.0f - state.alpha) * float(NUM_SPRITES);
    return skipped > 0 ? int(std::min(skipped, float(NUM_SPRITES))) : 0;
}

} // namespace

Vector3f getCloudPath(float t) {
    const double d = t;
    return Vector3f(float(sin(0.12 * d) + 5.05 * cos(0.2 * d) * sin(0.01 * d + 1.5)),
                    float(cos(0.21 * d) + 2.0 * sin(0.3 * d)), float(3.0 * d));
}

Cloud::Cloud(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
}

void Cloud::setup() {
    mTexture.loadFile(*mDisplay, "hurry/particle.png", true);
    mTexture.bind();
    mCut.readTexture();
    mTexture.unbind();
    for (int i = 0; i < NUM_SPRITES; ++i)
        state.path[i] = getCloudPath(float(i) / 100.0f) + mRandom.unitSphere() * 10.0f;
}

void Cloud::update(float, float, float progress) {
    mDisplay->resetStates();
    const Vector3f eye = getCloudPath(100.0f * (1.0f - progress));
    const Vector3f target = eye + Vector3f(0, 0, 10);
    const float roll = 10.0f * progress;
    setView(*mDisplay, {PI / 4.0f, 0.015f, 1000.0f}, eye, target, roll);
    const Billboard board(eye, target, roll);

    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    GL_CALL(glEnable(GL_BLEND));
    mTexture.bind();
    mCut.look(board.right, board.up);
    const auto farthest = std::find_if(std::begin(state.path), std::end(state.path),
                                       [&](const Vector3f& p) { return !mCut.isMagnified(p, SIZE); });
    const int magnified = int(farthest - std::begin(state.path)); // so many at the near end
    for (int i = NUM_SPRITES - 1 - firstSprite(progress); i >= 0; --i) {
        if (i + 1 == magnified) {
            mBatch.flush();
            mCut.setMagnified(true);
        }
        const float distance = (state.path[i] - eye).length();
        float opacity = 0.15f * (1.0f - 0.003f * distance);
        if (progress < 0.5f)
            opacity *= state.alpha;
        if (!(opacity > 0))
            continue;
        const Vector4f color(1, 0.9f, 0.8f, opacity);
        mBatch.color(color);
        mCut.draw(mBatch, state.path[i], SIZE, color);
    }
    mBatch.flush();
    mCut.setMagnified(false);
    mTexture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
    GL_CALL(glDisable(GL_CULL_FACE));
    GL_CALL(glDisable(GL_DEPTH_TEST));
    GL_CALL(glDisable(GL_BLEND));
}

} // namespace zentrak::kindler
