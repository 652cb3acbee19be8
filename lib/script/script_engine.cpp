#include "script_engine.h"

#include <algorithm>

namespace zentrak::script {

ScriptEngine::~ScriptEngine() {
    for (Effect* effect : mEffects)
        delete effect;
}

void ScriptEngine::addCallback(const std::string& name, Callback* callback) {
    mCallbacks[name] = callback;
}

// The size is read again on each iteration: a callback may change the timeline.
bool ScriptEngine::update(const float& time) {
    if (time < 0)
        return true;
    const float now = time;
    const float delta = now - mPreviousTime;
    mPreviousTime = now;
    if (now > mScriptLength)
        return false;
    for (size_t i = 0; i < mEffects.size(); ++i) {
        Effect& effect = *mEffects[i];
        if (delta < 0)
            effect.reverse(delta);
        if (effect.isActive(now))
            effect.update(now, delta, mCallbacks);
    }
    return true;
}

void ScriptEngine::init() {
    mScriptLength = 0;
    for (const Effect* effect : mEffects)
        mScriptLength = std::max(mScriptLength, effect->mEnd);
}

} // namespace zentrak::script
