// A named event of a span, fired once or at regular intervals.
#pragma once

#include <string>

namespace zentrak::script {

struct Trigger {
    int mFired = 0;            // firings done since the last rewind
    std::string mName = "new"; // handed to Callback::executeTrigger
    std::string mValue;        // handed to Callback::executeTrigger
    float mStart = 0;          // first firing, seconds of the span's local time
    int mRepeat = 1;           // total number of firings
    float mDelay = 0;          // seconds between firings
};

} // namespace zentrak::script
