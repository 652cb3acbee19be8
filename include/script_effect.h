// One span of the timeline, with its triggers, its splines and the spans nested in it.
#pragma once

#include "script_callback.h"
#include "script_spline.h"
#include "script_trigger.h"

#include <map>
#include <string>
#include <vector>

namespace zentrak::script {

// A plain record that the editor may change between frames. It owns what its three vectors point to.
class Effect {
public:
    // Firings of one trigger in one frame. A trigger that has more of them due goes on in the next frame, so
    // that no repeat count can stop the show.
    static constexpr int MAX_FIRINGS = 1000000;

    std::string mName = "new";       // the callback to drive; a span of any other name only groups
    bool mEnabled = false;           // off, neither the span nor what is nested in it runs
    float mStart = 0;                // seconds: script time, or the parent's local time
    float mEnd = 0;                  // the same; the span runs up to but not including it
    bool mNeedReset = true;          // resetTriggers is due on the next active frame
    std::vector<Effect*> mChildren;  // owned
    std::vector<Trigger*> mTriggers; // owned
    std::vector<Spline*> mSplines;   // owned

    Effect() = default;
    ~Effect();
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    // Whether the span is enabled and covers `time`, which is in the frame of mStart and mEnd.
    bool isActive(float time) const { return time >= mStart && mEnd > time && mEnabled; }

    // One active frame. `time` is in the frame of mStart.
    void update(const float& time, float delta, std::map<std::string, Callback*>& callbacks);
    // Rewinds the triggers of this span alone: those of nested spans keep their counts. `delta` is not used.
    void reverse(float delta);
    // Fires on `callback` what is due at the local `time`, trigger by trigger in file order.
    void executeTriggers(float time, Callback* callback);

private:
    void updateChildren(const float& time, float delta, std::map<std::string, Callback*>& callbacks);
};

} // namespace zentrak::script
