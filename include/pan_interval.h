// A value that glides to its target, fast at first and then settling, by the time of the window.
#pragma once

namespace zentrak::panorama {

class Interval {
public:
    float mDuration = 0.3f;    // of a glide, seconds: the inverse of the speed
    float mStart = 0;          // the value that the glide comes from
    float mTarget = 0;         // and the one that it goes to
    float mLast = 0;           // the last value on the way that was asked for
    float mStartTime = -10.0f; // seconds; below 0 the glide starts when it is next asked for
    bool mStarted = false;     // a glide has started since the value was set

    void setSpeed(float speed); // glides a second; ignored unless above 0

    // The new target: at once, or by a glide from the value last returned.
    void set(float value, bool immediately);

    // The value now, or, with `target`, the one that it will be. A clock that was set back ends the glide.
    float get(bool target);
};

} // namespace zentrak::panorama
