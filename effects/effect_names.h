// The names that the effects of the show answer to, for whoever checks a script.
#pragma once

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

struct EffectNames {
    const char* name; // registered
    std::vector<const char*> splines;
    std::vector<TriggerNames> triggers;
    bool anyTrigger; // it answers to triggers of every name, and looks at no value
};

// Of every effect of the show, by ascending names.
const std::vector<EffectNames>& effectNames();

} // namespace zentrak::kindler
