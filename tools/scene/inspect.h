// What a scene file holds, as a text.
#pragma once

#include <string>

namespace zentrak::scene {

struct Inspection {
    std::string text; // a line for each chunk, indented by its depth, and remarks after "! "
    int remarks;      // what a loader skips, misses or stumbles over
};

// The file image as a tree: every chunk with its ID and size, names, counts, key ranges, and what the loader
// would skip or miss. Any bytes will do; nothing throws or crashes.
Inspection inspect(const std::string& image);

} // namespace zentrak::scene
