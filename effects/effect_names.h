// The effects of the show: the one place where they are registered.
#pragma once

#include "effect_script.h"

#include <functional>
#include <memory>
#include <vector>

namespace zentrak::kindler {

struct CatalogueEntry {
    const char* name; // registered
    std::function<std::unique_ptr<ScriptedEffect>(Common& common)> make;
};

// Every effect of the show, in the order in which they are built.
const std::vector<CatalogueEntry>& effectCatalogue();

// One of each, in the same order; destroyed in the reverse order.
class EffectSet {
public:
    explicit EffectSet(Common& common);
    ~EffectSet();
    EffectSet(const EffectSet&) = delete;
    EffectSet& operator=(const EffectSet&) = delete;

    // Calls add(name, effect) for each: `[&](auto name, auto& effect) { kindler.addCallback(name, effect); }`
    template <typename Add>
    void forEach(Add add) {
        for (size_t i = 0; i < mEffects.size(); ++i)
            add(effectCatalogue()[i].name, *mEffects[i]);
    }

private:
    std::vector<std::unique_ptr<ScriptedEffect>> mEffects;
};

// What they answer to, by ascending names.
const std::vector<EffectNames>& effectNames();

} // namespace zentrak::kindler
