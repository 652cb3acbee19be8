// The colours of the show. The shaders in data/ have them, too.
#pragma once

#include "canvas.h"

namespace zentrak::art {

constexpr Colour ink = {0.055f, 0.058f, 0.068f, 1};
constexpr Colour paper = {0.965f, 0.945f, 0.900f, 1};
constexpr Colour orange = {0.945f, 0.420f, 0.110f, 1};
constexpr Colour teal = {0.020f, 0.500f, 0.510f, 1};

} // namespace zentrak::art
