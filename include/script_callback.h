// What the script drives: the five operations through which a timeline talks to whatever draws it.
#pragma once

#include <string>

namespace zentrak::script {

// `time` is the local time of the span in seconds, `delta` the step of the script time since the last frame
// (negative on the frame after a rewind), `progress` the part of the span that has passed, from 0 to just
// below 1. Nothing is called on a frame in which no span of this callback is active.
class Callback {
public:
    virtual ~Callback() {}

    // The state before the first trigger is wanted again.
    virtual void resetTriggers() {}
    // One firing; `time` is the time now, not the one that the firing was set for.
    virtual void executeTrigger(float /*time*/, const std::string& /*name*/, const std::string& /*value*/) {}
    // The value of one spline at `time`.
    virtual void updateSpline(float /*time*/, const std::string& /*name*/, float /*value*/) {}
    // After triggers and splines, before the nested spans.
    virtual void update(float time, float delta, float progress) = 0;
    // After the nested spans.
    virtual void postUpdate(float /*time*/, float /*delta*/, float /*progress*/) {}
};

} // namespace zentrak::script
