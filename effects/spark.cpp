#include "spark.h"

#include "dis_display.h"
#include "effect_view.h"
#include "mb_matrix4x4col.h"
#include "sparks_emitterinstance.h"
#include "sparks_engine.h"

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

constexpr float PI = 3.14159265f;

sparks::EmitterInstance sun;

} // namespace

Spark::Spark(Common*) {}

Spark::~Spark() {
    if (sun.engine == mEngine.get())
        sun.engine = nullptr;
}

void Spark::setup() {
    mEngine = std::make_unique<sparks::Engine>(mDisplay);
    mEngine->load("spark/spark.xml");
    const sparks::EmitterInstance* loaded = mEngine->getInstance("sun");
    if (!loaded)
        return;
    sun = *loaded;
    sun.engine = mEngine.get();
    mEngine->active.push_back(&sun);
}

/*
 * The camera looks along -z from wherever it is, and so at the centre. A point just ahead stands in for that,
 * since in the centre itself there would be nothing to look at.
 */
void Spark::update(float, float, float progress) {
    setPerspective(*mDisplay, PI / 4.0f, 0.15f, 1000.0f);
    const Vector3f eye(0, 0, 1500.0f * progress * progress);
    const Vector3f target = eye - Vector3f(0, 0, 1);
    Matrix4x4Col camera, cameraInverse;
    camera.setCamera(eye, target, 0.0f);
    cameraInverse.setCameraInv(eye, target, 0.0f);
    mDisplay->setCamera(camera);
    mDisplay->setTransform(Matrix4x4Col());
    mEngine->update(float(mDisplay->getTime()));
    mEngine->draw(&cameraInverse);
}

} // namespace zentrak::kindler
