// Model files of all kinds, read by assimp in a process of its own.
#pragma once

#include "import/model.h"

#include <string>

namespace zentrak::importer {

struct Limits {
    int seconds = 60;     // wall clock
    int megabytes = 4096; // not enforced with sanitizers
};

// Throws std::runtime_error, without the file's name, if assimp refuses the file, crashes, or exceeds the
// limits.
Model readModel(const std::string& path, const Limits& limits = {});

// The post-processing that readModel() asks assimp for.
extern const unsigned READ_FLAGS;

} // namespace zentrak::importer
