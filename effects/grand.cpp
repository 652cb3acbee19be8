#include "grand.h"

#include "dis_display.h"
#include "dis_glcheck.h"
#include "effect_image.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

constexpr int NUM_LAYERS = 19;
constexpr int NUM_COLUMNS = 128;

struct Voxel {
    Vector3f pos; // clip space
    Vector3f col;
    float weight; // 0.2 to 1, of the opacity
};

struct State {
    float alpha = 0;
    std::array<std::vector<Voxel>, NUM_COLUMNS> pix;
} state;

// How far a column has fallen back, in degrees, 0 to -90.
float tilt(int column, float progress) {
    const float s = 10.0f * progress - 3.85f;
    const float v = s - 0.0152f * float(column);
    return v < 0 ? 0.0f : v > 1 ? -90.0f : -90.0f * v;
}

} // namespace

Grand::Grand(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
}

void Grand::setup() {
    size_t boxes = 0;
    for (std::vector<Voxel>& column : state.pix)
        column.clear();
    for (int n = 1; n <= NUM_LAYERS; ++n) {
        char name[32];
        snprintf(name, sizeof name, "grand/grand%02d.png", n);
        const am::Image image = loadPixels(*mDisplay, name);
        const float w = float(image->getWidth()), h = float(image->getHeight());
        const float z = 0.015f * float(n - 1);
        for (int y = 0; y < image->getHeight(); ++y) {
            for (int x = 0; x < std::min(image->getWidth(), NUM_COLUMNS); ++x) {
                const Vector4f colour = pixelAt(*image, x, y);
                if (!(colour.a > 0.1f))
                    continue;
                checkBoxes(boxes++, name);
                Voxel voxel;
                voxel.pos = Vector3f(0.015f * (float(x) - 0.5f * w), 0.015f * (0.5f * h - float(y)), z);
                voxel.col = Vector3f(colour.r, colour.g, colour.b);
                voxel.weight = 0.8f * mRandom.uniform() + 0.2f;
                state.pix[x].push_back(voxel);
            }
        }
    }
}

// Everything is in clip space, without a camera: a column tips by a rotation of its own about the x axis.
void Grand::update(float, float, float progress) {
    setClipSpace(*mDisplay);
    GL_CALL(glEnable(GL_BLEND));
    for (int c = 0; c < NUM_COLUMNS; ++c) {
        Matrix4x4Col fall;
        fall.setRotX(tilt(c, progress) * PI / 180.0f);
        mBatch.setTransform(fall);
        for (const Voxel& voxel : state.pix[c]) {
            mBatch.color(voxel.col, std::min(1.0f, voxel.weight * state.alpha));
            mBatch.box(voxel.pos, Vector3f(0.01f, 0.01f, 0.01f));
        }
    }
    mBatch.flush();
    GL_CALL(glDisable(GL_BLEND));
}

} // namespace zentrak::kindler
