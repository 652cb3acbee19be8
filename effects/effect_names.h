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

// What they answer to, by ascending names.
const std::vector<EffectNames>& effectNames();

} // namespace zentrak::kindler
