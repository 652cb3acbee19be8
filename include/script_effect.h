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
    // The most firings of one trigger in one frame: more than a show of minutes makes due at a jump. The rest
    // follows in the next frames, so that no repeat count can stop the show.
    static constexpr int MAX_FIRINGS = 2000;

    std::string mName = "new";       // the callback to drive; a span of any other name only groups
    bool mEnabled = false;           // if false, neither the span nor its nested spans run
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

    // One active frame of this span and of all that are nested in it, however deep. `time` is in the frame of
    // mStart. Not to be called again for the same span from a callback.
    void update(const float& time, float delta, std::map<std::string, Callback*>& callbacks);
    // Rewinds the triggers of this span only: those of nested spans keep their counts. `delta` is not used.
    void reverse(float delta);
    // Fires on `callback` what is due at the local `time`, trigger by trigger in file order.
    void executeTriggers(float time, Callback* callback);

private:
    // How far an update in progress has come. Kept here rather than on the call stack, which a deep nest
    // overflows.
    struct Walk {
        Effect* parent;     // null for the span whose update was called
        Callback* callback; // null for a span that only groups
        float time;         // in the frame of mStart
        float local;        // the arguments of postUpdate
        float progress;
        size_t next; // index of the next nested span
    };
    Walk mWalk{};

    void enter(Effect* parent, float time, float delta, const std::map<std::string, Callback*>& callbacks);
};

} // namespace zentrak::script
