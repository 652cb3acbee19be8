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

struct State {
    sparks::EmitterInstance sun;
} state;

} // namespace

Spark::Spark(Common*) {
    state = State();
}

Spark::~Spark() {
    if (state.sun.engine == mEngine.get())
        state.sun.engine = nullptr;
}

void Spark::setup() {
    mEngine = std::make_unique<sparks::Engine>(mDisplay);
    mEngine->load("spark/spark.xml");
    const sparks::EmitterInstance* loaded = mEngine->getInstance("sun");
    if (!loaded)
        return;
    state.sun = *loaded;
    state.sun.engine = mEngine.get();
    mEngine->active.push_back(&state.sun);
}

// The camera looks along -z, and so at the origin: through a point just ahead, because at the start it is in
// the origin itself.
void Spark::update(float, float, float progress) {
    const Vector3f eye(0, 0, 1500.0f * progress * progress);
    const Vector3f target = eye - Vector3f(0, 0, 1);
    Matrix4x4Col cameraInverse;
    cameraInverse.setCameraInv(eye, target, 0.0f);
    setView(*mDisplay, Lens(), eye, target);
    mEngine->update(float(mDisplay->getTime()));
    mEngine->draw(&cameraInverse);
}

} // namespace zentrak::kindler
