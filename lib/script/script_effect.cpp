#include "script_effect.h"

namespace zentrak::script {

// Destroys nested spans iteratively: the nesting may be deeper than the call stack.
Effect::~Effect() {
    for (Trigger* trigger : mTriggers)
        delete trigger;
    for (Spline* spline : mSplines)
        delete spline;
    while (!mChildren.empty()) {
        Effect* const child = mChildren.back();
        mChildren.pop_back();
        mChildren.insert(mChildren.end(), child->mChildren.begin(), child->mChildren.end());
        child->mChildren.clear();
        delete child;
    }
}

void Effect::update(const float& time, float delta, std::map<std::string, Callback*>& callbacks) {
    enter(nullptr, time, delta, callbacks);
    for (Effect* effect = this; effect;) {
        Walk& walk = effect->mWalk;
        if (walk.next < effect->mChildren.size()) {
            Effect* const child = effect->mChildren[walk.next++];
            const float local = walk.time - effect->mStart;
            if (child->isActive(local)) {
                child->enter(effect, local, delta, callbacks);
                effect = child;
            }
        } else {
            if (walk.callback)
                walk.callback->postUpdate(walk.local, delta, walk.progress);
            effect = walk.parent;
        }
    }
}

// Runs this span itself: its triggers, splines and update, but not its nested spans.
void Effect::enter(Effect* parent, float time, float delta,
                   const std::map<std::string, Callback*>& callbacks) {
    const float local = time - mStart;
    const float progress = local / (mEnd - mStart);
    const auto found = callbacks.find(mName);
    Callback* const callback = found != callbacks.end() ? found->second : nullptr;
    mWalk = {parent, callback, time, local, progress, 0};
    if (!callback)
        return;
    if (mNeedReset) {
        callback->resetTriggers();
        mNeedReset = false;
    }
    executeTriggers(local, callback);
    for (size_t i = 0; i < mSplines.size(); ++i)
        mSplines[i]->update(callback, local);
    callback->update(local, delta, progress);
}

void Effect::reverse(float) {
    for (Trigger* trigger : mTriggers)
        trigger->mFired = 0;
    mNeedReset = true;
}

// Firings are not sorted by time: after a jump all due firings of the first trigger come first, then those of
// the second.
void Effect::executeTriggers(float time, Callback* callback) {
    for (size_t i = 0; i < mTriggers.size(); ++i) {
        Trigger& trigger = *mTriggers[i];
        for (int left = MAX_FIRINGS; left > 0 && trigger.mFired < trigger.mRepeat &&
                                     time >= trigger.mStart + float(trigger.mFired) * trigger.mDelay;
             --left) {
            callback->executeTrigger(time, trigger.mName, trigger.mValue);
            ++trigger.mFired;
        }
    }
}

} // namespace zentrak::script
