#include "effect_script.h"

namespace zentrak::kindler {

void ScriptedEffect::bindSpline(const char* name, float& variable, float (*map)(float value)) {
    mNames.splines.push_back(name);
    mSplines.push_back({&variable, map});
}

void ScriptedEffect::bindTrigger(const char* name, Action action) {
    bindTrigger(name, TriggerNames::UNUSED, {}, std::move(action));
}

void ScriptedEffect::bindTrigger(const char* name, TriggerNames::Use use, std::vector<const char*> words,
                                 Action action) {
    mNames.triggers.push_back({name, use, std::move(words)});
    mActions.push_back(std::move(action));
}

void ScriptedEffect::bindAnyTrigger(Action action) {
    mNames.anyTrigger = true;
    mAnyAction = std::move(action);
}

void ScriptedEffect::updateSpline(float, const std::string& name, float value) {
    for (size_t i = 0; i < mSplines.size(); ++i)
        if (name == mNames.splines[i])
            *mSplines[i].variable = mSplines[i].map ? mSplines[i].map(value) : value;
}

void ScriptedEffect::executeTrigger(float time, const std::string& name, const std::string& value) {
    if (mAnyAction)
        mAnyAction(time, value);
    for (size_t i = 0; i < mActions.size(); ++i)
        if (name == mNames.triggers[i].name)
            mActions[i](time, value);
}

} // namespace zentrak::kindler
