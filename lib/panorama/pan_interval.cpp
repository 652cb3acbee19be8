#include "pan_interval.h"

#include "glfw2.h"

#include <cmath>

namespace zentrak::panorama {

void Interval::setSpeed(float speed) {
    if (speed > 0)
        mDuration = 1 / speed;
}

void Interval::set(float value, bool immediately) {
    mTarget = value;
    mStarted = false;
    if (immediately) {
        mStart = mLast = value; // at any start time the value is the same
    } else {
        mStart = mLast;
        mStartTime = -10;
    }
}

float Interval::get(bool target) {
    const float now = float(glfw2::glfwGetTime());
    if (mStartTime < 0) {
        mStartTime = now;
        mStarted = true;
    }
    if (now > mStartTime + mDuration || now < mStartTime || target || !(mDuration > 0))
        return mTarget;
    mLast = mStart + (mTarget - mStart) * std::sin((now - mStartTime) / mDuration * 3.1415927f * 0.5f);
    return mLast;
}

} // namespace zentrak::panorama
