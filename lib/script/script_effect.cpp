#include "script_effect.h"

namespace zentrak::script {

Effect::~Effect() {
    for (Trigger* trigger : mTriggers)
        delete trigger;
    for (Spline* spline : mSplines)
        delete spline;
    for (Effect* child : mChildren)
        delete child;
}

/*
 * Triggers, splines and the callback itself, then what is nested. Without a callback only the latter.
 */
void Effect::update(const float& time, float delta, std::map<std::string, Callback*>& callbacks) {
    const auto found = callbacks.find(mName);
    if (found == callbacks.end() || !found->second) {
        updateChildren(time, delta, callbacks);
        return;
    }
    Callback* const callback = found->second;
    const float local = time - mStart;
    const float progress = (time - mStart) / (mEnd - mStart);

    if (mNeedReset) {
        callback->resetTriggers();
        mNeedReset = false;
    }
    executeTriggers(local, callback);
    for (size_t i = 0; i < mSplines.size(); ++i)
        mSplines[i]->update(callback, local);
    callback->update(local, delta, progress);
    updateChildren(time, delta, callbacks);
    callback->postUpdate(local, delta, progress);
}

void Effect::updateChildren(const float& time, float delta, std::map<std::string, Callback*>& callbacks) {
    for (size_t i = 0; i < mChildren.size(); ++i) {
        const float local = time - mStart;
        if (mChildren[i]->isActive(local))
            mChildren[i]->update(local, delta, callbacks);
    }
}

void Effect::reverse(float) {
    for (Trigger* trigger : mTriggers)
        trigger->mFired = 0;
    mNeedReset = true;
}

/*
 * After a jump all that has become due of the first trigger comes first, then all of the second: firings are
 * not sorted by the time they were set for.
 */
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
