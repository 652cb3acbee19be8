// A stand-alone timer on the display's time base.
#pragma once

namespace zentrak::display {

// Runs freely until the first update(); from then on it stands still between updates. Seconds, in single
// precision. It can be made before a display.
class Clock {
public:
    Clock(); // runs from 0

    void reset();          // runs freely from 0 again, as just made
    void setTime(float t); // what getTime gives now; a clock that stands still shows it at its next update
    float getTime() const;
    void sleep(float s) const; // nothing for a negative or endless time
    void update();

    bool mManualUpdate; // stands still between updates
    float mStartTime;   // the time base's value at 0
    float mCurrentTime; // what a clock that stands still shows
};

} // namespace zentrak::display
