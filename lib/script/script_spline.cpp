#include "script_spline.h"

#include "script_callback.h"

namespace zentrak::script {

void Spline::update(Callback* callback, float time) {
    callback->updateSpline(time, mName, evaluate(time));
}

} // namespace zentrak::script
