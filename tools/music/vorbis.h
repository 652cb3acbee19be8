// Writes a track as an Ogg Vorbis file.
#pragma once

#include "synth.h"

#include <string>

namespace zentrak::music {

// Quality from -0.1 to 1. The output is reproducible to the byte. Throws std::runtime_error if the file can't
// be written.
void writeVorbis(const std::string& path, const Track& track, float quality, const std::string& title);

} // namespace zentrak::music
