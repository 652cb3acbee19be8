// Effects whose splines and triggers are declared where they are bound.
#pragma once

#include "kin_effect.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::kindler {

// A trigger, and what an effect makes of its value.
struct TriggerNames {
    enum Use {
        UNUSED, // nothing
        WORDS,  // one of `words`; any other does nothing
        TARGET, // the name of a render target, one of `words`; any other ends the show
    };

    const char* name;
    Use use;
    std::vector<const char*> words;
};

// What an effect answers to.
struct EffectNames {
    const char* name; // registered
    std::vector<const char*> splines;
    std::vector<TriggerNames> triggers;
    bool anyTrigger; // it answers to triggers of every name, and ignores their values
};

// The constructor of an effect binds each of its splines and triggers; other names are ignored.
class ScriptedEffect : public Effect {
public:
    using Action = std::function<void(float time, const std::string& value)>;

    void updateSpline(float time, const std::string& name, float value) override;
    void executeTrigger(float time, const std::string& name, const std::string& value) override;

    // What is bound; the registered name is null.
    const EffectNames& getNames() const { return mNames; }

protected:
    // `variable` has to live as long as the effect. It gets the spline's values, changed by `map` if there is
    // one. Names are literals.
    void bindSpline(const char* name, float& variable, float (*map)(float value) = nullptr);
    void bindTrigger(const char* name, Action action);
    void bindTrigger(const char* name, TriggerNames::Use use, std::vector<const char*> words, Action action);
    void bindAnyTrigger(Action action);

private:
    struct Spline {
        float* variable;
        float (*map)(float value);
    };

    EffectNames mNames{};
    std::vector<Spline> mSplines; // in the order of mNames.splines
    std::vector<Action> mActions; // in the order of mNames.triggers
    Action mAnyAction;
};

} // namespace zentrak::kindler
