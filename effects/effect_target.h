// Finding the render target that another effect made.
#pragma once

#include "kin_effect.h"

#include <string>

namespace zentrak::kindler {

// The target of this name, which stays its maker's. Throws Exception "No render target of the name '%s'"
// where there is none; the name is in the map from then on, with a null pointer.
Common::FBOData& findTarget(Common& common, const std::string& name);

} // namespace zentrak::kindler
