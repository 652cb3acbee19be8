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

constexpr float PI = 3.14159265f;
constexpr int SIDE = 25;

float vol[SIDE][SIDE][SIDE]; // z, y, x
float last;                  // time of the last frame
float intensity;

// Adds a soft ball to the grid: 1.5 in its middle, less `threshold` everywhere, never below 0.
void addBall(const Vector3f& centre, float threshold) {
    for (int z = 0; z < SIDE; ++z) {
        for (int y = 0; y < SIDE; ++y) {
            for (int x = 0; x < SIDE; ++x) {
                const float l = (centre - Vector3f(float(x), float(y), float(z))).length() / 25.0f;
                const float f = 1.0f / (1.0f + l * l);
                const float v = 1.5f * (f * f * f * f) - threshold;
                if (v > 0)
                    vol[z][y][x] = std::max(0.0f, vol[z][y][x] + v);
            }
        }
    }
}

} // namespace

Vul::Vul(Common*)
    : mTexture(nullptr),
      mProgram(nullptr),
      mEnvironment(nullptr),
      mMaterial(nullptr),
      mEnvironmentMaterial(nullptr),
      mCube(nullptr) {}

void Vul::setup() {
    mTexture.setDisplay(mDisplay);
    mTexture.load("vul/vul.png", true);
    mTexture.init();
    memset(vol, 0, sizeof vol);

    mProgram.setDisplay(mDisplay);
    mProgram.link("vul/vul.vert", "vul/vul.frag");
    mEnvironment.setDisplay(mDisplay);
    mEnvironment.link("vul/env.vert", "vul/env.frag");
    mCube.setDisplay(mDisplay);
    mCube.setup(-1, -1, Texture::CHAN_RGB, Texture::FORMAT_UINT8, Texture::TARGET_CUBE);
    mCube.load("cubemap/cube1.png", true);

    mMaterial.setProgram(&mProgram);
    mMaterial.set("texture", &mTexture);
    mMaterial.set("environment", &mCube);
    mEnvironmentMaterial.setProgram(&mEnvironment);
    mEnvironmentMaterial.set("environment", &mCube);
}

void Vul::updateSpline(float, const std::string& name, float value) {
    if (name == "intensity")
        intensity = value;
}

void Vul::update(float time, float, float) {
    const float t = 0.2f * time;
    setPerspective(*mDisplay, PI / 4.0f, 0.15f, 1000.0f);
    mDisplay->setTransform(Matrix4x4Col());
    setCamera(*mDisplay, Vector3f(20.0f * sinf(time), 20.0f * cosf(time), -20.0f * cosf(t)),
              Vector3f(0.1f, 0, 0), 0);

    memset(vol, 0, sizeof vol);
    addBall(Vector3f(12.5f - 12.5f * cosf(4.2f * t), 12.5f - 12.5f * sinf(1.1f * t + PI),
                     12.5f + 12.5f * sinf(1.14f * t)),
            0.5f * intensity);
    last = time;

    GL_CALL(glDisable(GL_BLEND));
    GL_CALL(glEnable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glClear(GL_DEPTH_BUFFER_BIT));
    mTexture.bind();
    for (int z = 0; z < SIDE; ++z) {
        for (int y = 0; y < SIDE; ++y) {
            for (int x = 0; x < SIDE; ++x) {
                const float v = vol[z][y][x];
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
