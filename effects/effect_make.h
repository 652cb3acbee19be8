// Makes the effects of the show by their names, one at a time.
#pragma once

#include "kin_effect.h"

#include <memory>
#include <string>

namespace zentrak::kindler {

// A new effect of the show, as the show sets it up, before its setup(); null for a name that no effect has.
// `common` must outlive it.
std::unique_ptr<Effect> makeEffect(const std::string& name, Common* common);

} // namespace zentrak::kindler
