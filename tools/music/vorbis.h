// Writes a track as an Ogg Vorbis file.
#pragma once

#include "synth.h"

#include <string>

namespace zentrak::music {

// Quality from -0.1 to 1. The same track gives the same bytes each time. Throws std::runtime_error when the
// file can't be written.
void writeVorbis(const std::string& path, const Track& track, float quality, const std::string& title);

} // namespace zentrak::music
