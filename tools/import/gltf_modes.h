// The interpolation of the keys in a glTF file, which assimp 5 discards.
#pragma once

#include <string>
#include <vector>

namespace zentrak::importer {

enum class KeyMode { LINEAR, STEP, CUBIC };

struct KeyModes {
    std::string node; // as assimp names it
    std::string path; // "translation", "rotation" or "scale"
    KeyMode mode;
};

// The channels that aren't linear, for each animation in the file's order. Empty if the file isn't glTF 2 or
// can't be parsed.
std::vector<std::vector<KeyModes>> readKeyModes(const std::string& path);

} // namespace zentrak::importer
