#include "grid.h"

#include "dis_display.h"
#include "dis_resource.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"

#include <cmath>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

constexpr int NUM_WHEELS = 50;

struct State {
    float offset[NUM_WHEELS]; // phase and speed of a wheel's camera, radians
    float col[NUM_WHEELS];    // darkness of a wheel at its rim
    float alpha = 0;
} state;

} // namespace

Grid::Grid(Common*) {
    state = State();
    bindSpline("alpha", state.alpha);
    for (int i = 0; i < NUM_WHEELS; ++i) {
        state.offset[i] = 2.0f * PI * mRandom.uniform() - PI;
        state.col[i] = 0.05f * mRandom.uniform() + 0.05f;
    }
}

// All wheels go to the card in one draw, with their cameras applied as transforms. The display keeps the
// camera of the last one.
void Grid::update(float time, float, float) {
    const Vector3f origin(0, 0, 0);
    setPerspective(*mDisplay, PI / 4.0f, 0.15f, 10000.0f);
    mDisplay->setTransform(Matrix4x4Col());
    mDisplay->setCamera(Matrix4x4Col());
    GL_CALL(glEnable(GL_BLEND));
    Vector3f eye = origin;
    for (int i = 0; i < NUM_WHEELS; ++i) {
        eye = Vector3f(3.0f * sinf(state.offset[i] * time), 3.0f * cosf(state.offset[i] * 1.2f * time), 5.0f);
        Matrix4x4Col camera;
        camera.setCamera(eye, origin, 0.0f);
        mBatch.setTransform(camera);
        mBatch.begin(GL_TRIANGLES);
        for (int e = 0; e < 20; e += 2) {
            const float o = state.offset[NUM_WHEELS - 1 - i];
            const float a = 2.0f * PI * float(e) / 20.0f + o;
            const float b = 2.0f * PI * float(e + 1) / 20.0f + o;
            const float m = (a + b) / 2.0f;
            mBatch.color(0, 0, 0, 0);
            mBatch.vertex(sinf(m), cosf(m), 0);
            mBatch.color(0, 0, 0, state.col[i] * state.alpha);
            mBatch.vertex(20.0f * sinf(a), 20.0f * cosf(a), 0);
            mBatch.vertex(20.0f * sinf(b), 20.0f * cosf(b), 0);
        }
        mBatch.end();
    }
    mBatch.flush();
    GL_CALL(glDisable(GL_BLEND));
    setCamera(*mDisplay, eye, origin);
}

} // namespace zentrak::kindler
