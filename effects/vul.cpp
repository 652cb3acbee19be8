#include "vul.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zentrak::kindler {

using display::Texture;
using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

constexpr int SIDE = 25;

struct State {
    float vol[SIDE][SIDE][SIDE] = {}; // z, y, x
    float last = 0;                   // time of the last frame; not read
    float intensity = 0;
} state;

// Adds a soft ball to the grid: 1.5 at its centre, less `threshold` everywhere, never below 0.
void addBall(const Vector3f& centre, float threshold) {
    for (int z = 0; z < SIDE; ++z) {
        for (int y = 0; y < SIDE; ++y) {
            for (int x = 0; x < SIDE; ++x) {
                const float l = (centre - Vector3f(float(x), float(y), float(z))).length() / 25.0f;
                const float f = 1.0f / (1.0f + l * l);
                const float v = 1.5f * (f * f * f * f) - threshold;
                if (v > 0)
                    state.vol[z][y][x] = std::max(0.0f, state.vol[z][y][x] + v);
            }
        }
    }
}

} // namespace

Vul::Vul(Common*) {
    state = State();
    bindSpline("intensity", state.intensity);
}

void Vul::setup() {
    mTexture.loadFile(*mDisplay, "vul/vul.png", true);
    memset(state.vol, 0, sizeof state.vol);

    mProgram.linkFiles(*mDisplay, "vul/vul.vert", "vul/vul.frag");
    mEnvironment.linkFiles(*mDisplay, "vul/env.vert", "vul/env.frag");
    if (!mCube.isLoaded()) {
        mCube.setDisplay(mDisplay);
        mCube.setup(-1, -1, Texture::CHAN_RGB, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
        mCube.load("cubemap/cube1.png", true);
    }

    mMaterial.setProgram(&mProgram);
    mMaterial.set("texture", static_cast<display::Texture*>(&mTexture));
    mMaterial.set("environment", &mCube);
    mEnvironmentMaterial.setProgram(&mEnvironment);
    mEnvironmentMaterial.set("environment", &mCube);
}

void Vul::update(float time, float, float) {
    const float t = 0.2f * time;
    setView(*mDisplay, Lens(), Vector3f(20.0f * sinf(time), 20.0f * cosf(time), -20.0f * cosf(t)),
            Vector3f(0.1f, 0, 0));

    memset(state.vol, 0, sizeof state.vol);
    addBall(Vector3f(12.5f - 12.5f * cosf(4.2f * t), 12.5f - 12.5f * sinf(1.1f * t + PI),
                     12.5f + 12.5f * sinf(1.14f * t)),
            0.5f * state.intensity);
    state.last = time;

    GL_CALL(glDisable(GL_BLEND));
    GL_CALL(glEnable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glClear(GL_DEPTH_BUFFER_BIT));
    mTexture.bind();
    for (int z = 0; z < SIDE; ++z) {
        for (int y = 0; y < SIDE; ++y) {
            for (int x = 0; x < SIDE; ++x) {
                const float v = state.vol[z][y][x];
                if (!(v > 0.005f))
                    continue;
                const float s = 0.75f * v;
                Matrix4x4Col transform;
                transform.buildPRS(Vector3f(float(x - 10), float(y - 10), float(z - 10)),
                                   Quatf(Eulerf(float(x) * s, float(y) * s, float(z) * s)),
                                   Vector3f(1, 1, 1));
                mBatch.setTransform(transform);
                mBatch.color(1, 1.0f - s, 0);
                mBatch.box(Vector3f(0, 0, 0), Vector3f(s, s, s));
            }
        }
    }
    mBatch.flush();
    mTexture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
}

} // namespace zentrak::kindler
