// zentrak-film as a function, for a demo with effects of its own.
#pragma once

#include "kin_main.h"

#include <functional>
#include <memory>

namespace zentrak::film {

// Builds the effects and adds them to the driver, whose window is not open yet. What it returns owns them,
// and goes before the window does.
using MakeEffects = std::function<std::shared_ptr<void>(kindler::Kindler& kindler)>;

// All of zentrak-film, by its command line. Returns the exit status, with errors on standard error.
int run(int argc, char** argv, const MakeEffects& makeEffects);

} // namespace zentrak::film
