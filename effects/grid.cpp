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
constexpr float PI = 3.14159265f;

float offset[NUM_WHEELS]; // phase and speed of a wheel's camera, radians
float col[NUM_WHEELS];    // darkness of a wheel at its rim
float alpha;

} // namespace

Grid::Grid(Common*) {
    for (int i = 0; i < NUM_WHEELS; ++i) {
        offset[i] = 2.0f * PI * mRandom.uniform() - PI;
        col[i] = 0.05f * mRandom.uniform() + 0.05f;
    }
}

void Grid::updateSpline(float, const std::string& name, float value) {
    if (name == "alpha")
        alpha = value;
}

/*
 * The wheels go to the card in one draw: their cameras are applied here, as transforms, and the display gets
 * the last of them once all are drawn.
 */
void Grid::update(float time, float, float) {
    const Vector3f origin(0, 0, 0);
    Matrix4x4Col identity;
    identity.setIdentity();

    setPerspective(*mDisplay, PI / 4.0f, 0.15f, 10000.0f);
    mDisplay->setTransform(identity);
    mDisplay->setCamera(identity);
    GL_CALL(glEnable(GL_BLEND));
    Vector3f eye = origin;
    for (int i = 0; i < NUM_WHEELS; ++i) {
        eye = Vector3f(3.0f * sinf(offset[i] * time), 3.0f * cosf(offset[i] * 1.2f * time), 5.0f);
        Matrix4x4Col camera;
        camera.setCamera(eye, origin, 0.0f);
        mBatch.setTransform(camera);
        mBatch.begin(GL_TRIANGLES);
        for (int e = 0; e < 20; e += 2) {
            const float o = offset[NUM_WHEELS - 1 - i];
            const float a = 2.0f * PI * float(e) / 20.0f + o;
            const float b = 2.0f * PI * float(e + 1) / 20.0f + o;
            const float m = (a + b) / 2.0f;
            mBatch.color(0, 0, 0, 0);
            mBatch.vertex(sinf(m), cosf(m), 0);
            mBatch.color(0, 0, 0, col[i] * alpha);
            mBatch.vertex(20.0f * sinf(a), 20.0f * cosf(a), 0);
            mBatch.vertex(20.0f * sinf(b), 20.0f * cosf(b), 0);
        }
        mBatch.end();
    }
    mBatch.flush();
    GL_CALL(glDisable(GL_BLEND));
    setCamera(*mDisplay, eye, origin, 0.0f);
}

} // namespace zentrak::kindler
