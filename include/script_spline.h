// A named curve of a span; its key times are seconds of the span's local time.
#pragma once

#include "mb_splinebase.h"

#include <string>

namespace zentrak::script {

class Callback;

class Spline : public mathbase::SplineBase<float, mathbase::SplineBaseKey<float>> {
public:
    std::string mName = "new"; // handed to Callback::updateSpline

    // Calls callback->updateSpline with the value at `time`.
    void update(Callback* callback, float time);
};

} // namespace zentrak::script
