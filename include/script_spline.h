// A named curve of a span; its key times are seconds of the span's local time.
#pragma once

#include "mb_splinebase.h"

#include <string>

namespace zentrak::script {

class Callback;

class Spline : public mathbase::SplineBase<float, mathbase::SplineBaseKey<float>> {
public:
    std::string mName = "new"; // handed to Callback::updateSpline

    // Hands the value at `time` to callback->updateSpline.
    void update(Callback* callback, float time);
};

} // namespace zentrak::script
