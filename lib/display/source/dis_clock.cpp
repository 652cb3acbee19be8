#include "dis_clock.h"

#include "glfw2.h"

namespace zentrak::display {

using glfw2::glfwGetTime;

Clock::Clock() {
    reset();
}

void Clock::reset() {
    mManualUpdate = false;
    mStartTime = float(glfwGetTime());
    mCurrentTime = 0;
}

void Clock::setTime(float t) {
    mStartTime = float(glfwGetTime()) - t;
}

float Clock::getTime() const {
    return mManualUpdate ? mCurrentTime : float(glfwGetTime()) - mStartTime;
}

void Clock::sleep(float s) const {
    glfw2::glfwSleep(s);
}

void Clock::update() {
    mManualUpdate = true;
    mCurrentTime = float(glfwGetTime()) - mStartTime;
}

} // namespace zentrak::display
