// Finding the render target that another effect made.
#pragma once

#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// The target of this name, owned by the effect that made it. Throws Exception "No render target of the name
// '%s'" if there is none; the map then holds the name with a null pointer.
Common::FBOData& findTarget(Common& common, const std::string& name);

} // namespace zentrak::kindler
