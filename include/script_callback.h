// What the script drives: the five calls through which a timeline reaches whatever draws it.
#pragma once

#include <string>

namespace zentrak::script {

// `time` is the local time of the span in seconds, `delta` the change of the script time since the last frame
// (negative after a rewind), `progress` the elapsed part of the span, from 0 to just below 1. Nothing is
// called in a frame in which no span of this callback is active.
class Callback {
public:
    virtual ~Callback() {}

    // Go back to the state before the first trigger.
    virtual void resetTriggers() {}
    // One firing; `time` is the current time, not the one at which the firing was due.
    virtual void executeTrigger(float /*time*/, const std::string& /*name*/, const std::string& /*value*/) {}
    // The value of a spline at `time`.
    virtual void updateSpline(float /*time*/, const std::string& /*name*/, float /*value*/) {}
    // After triggers and splines, before the nested spans.
    virtual void update(float time, float delta, float progress) = 0;
    // After the nested spans.
    virtual void postUpdate(float /*time*/, float /*delta*/, float /*progress*/) {}
};

} // namespace zentrak::script
