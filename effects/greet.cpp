#include "greet.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_image.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace zentrak::kindler {

using mathbase::Eulerf;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int LAYERS = 3;
constexpr int ROWS = 24; // of the slab, from the bottom, and of a band
constexpr int COLUMNS = 192;

struct State {
    float vol[LAYERS][ROWS][COLUMNS] = {}; // size of each voxel
    Vector3f col[LAYERS][ROWS][COLUMNS];
    int cindex = 0; // next band of the image
    Vector3f from{0, 0, 305}, to{0, 0, 0};
    float roll = 0;
} state;

} // namespace

Greet::Greet(Common*) {
    state = State();
    bindAnyTrigger([this](float, const std::string&) { stamp(); });
}

void Greet::setup() {
    mImage = loadPixels(*mDisplay, "greet/greet.png");
    mTexture.loadFile(*mDisplay, "vul/vul.png", true);
    resetTriggers();
}

void Greet::resetTriggers() {
    state.cindex = 0;
    memset(state.vol, 0, sizeof state.vol);
}

// The band is flipped upside down. The middle layer is bright, the outer ones are a thin halo.
void Greet::stamp() {
    const am::ImageObject& image = *mImage.operator->(); // which throws for a null image
    const int columns = std::min(COLUMNS, image.getWidth());
    const int bands = (image.getHeight() + ROWS - 1) / ROWS;
    const int rows = state.cindex < bands ? std::min(ROWS, image.getHeight() - ROWS * state.cindex) : 0;
    for (int l = 0; l < LAYERS; ++l) {
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < columns; ++x) {
                const Vector4f pixel = pixelAt(image, x, ROWS * state.cindex + y);
                if (!(pixel.a > 0.05f))
                    continue;
                const float b = std::min(1.0f, 1.5f * pixel.a);
                state.vol[l][ROWS - 1 - y][x] += l == 1 ? b : 0.3f * b;
                state.col[l][ROWS - 1 - y][x] = Vector3f(pixel.r, pixel.g, pixel.b);
            }
        }
    }
    if (state.cindex == 2) {
        state.from = Vector3f(-90, 0, 30);
        state.to = Vector3f(-10, 0, 0);
        state.roll = -0.8f;
    }
    if (state.cindex < INT_MAX)
        ++state.cindex;
}

void Greet::update(float, float delta, float) {
    setView(*mDisplay, Lens(), state.from, state.to, state.roll);
    if (delta > 0) {
        float* const size = &state.vol[0][0][0];
        for (int i = 0; i < LAYERS * ROWS * COLUMNS; ++i)
            size[i] = std::max(0.0f, size[i] - 0.5f * delta);
    }

    GL_CALL(glDisable(GL_BLEND));
    GL_CALL(glEnable(GL_CULL_FACE));
    GL_CALL(glEnable(GL_DEPTH_TEST));
    GL_CALL(glClear(GL_DEPTH_BUFFER_BIT));
    GL_CALL(glEnable(GL_TEXTURE_2D));
    mTexture.bind();
    for (int l = 0; l < LAYERS; ++l) {
        for (int y = 0; y < ROWS; ++y) {
            for (int x = 0; x < COLUMNS; ++x) {
                const float s = 0.75f * state.vol[l][y][x];
                if (s <= 0)
                    continue; // covers no pixel
                Matrix4x4Col transform;
                transform.buildPRS(Vector3f(float(x - 96), float(y - 12), float(l) - 1.5f),
                                   Quatf(Eulerf(s * float(x), s * float(y), s * float(l))),
                                   Vector3f(1, 1, 1));
                mBatch.setTransform(transform);
                mBatch.color(state.col[l][y][x], 1);
                mBatch.box(Vector3f(0, 0, 0), Vector3f(s, s, s));
            }
        }
    }
    mBatch.flush();
    mTexture.unbind();
    GL_CALL(glDisable(GL_TEXTURE_2D));
}

} // namespace zentrak::kindler
