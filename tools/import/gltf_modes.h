// How a glTF file wants its keys joined, which assimp 5 reads and forgets.
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

// Of each animation of the file, in its order, what is not linear. Empty for a file that is no glTF 2, and
// for one that can't be understood.
std::vector<std::vector<KeyModes>> readKeyModes(const std::string& path);

} // namespace zentrak::importer
