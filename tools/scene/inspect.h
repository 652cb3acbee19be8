// Describes a scene file as text.
#pragma once

#include <string>

namespace zentrak::scene {

struct Inspection {
    std::string text; // one line per chunk, indented by depth, and remarks after "! "
    int remarks;      // number of remarks: what a loader would skip, miss or fail on
};

// The file image as a tree: every chunk with its ID and size, names, counts, key ranges, and what the loader
// would skip or miss. Accepts any bytes; never throws.
Inspection inspect(const std::string& image);

} // namespace zentrak::scene
