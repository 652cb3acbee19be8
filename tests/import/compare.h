// Compares an imported scene with assimp's reading of the same file.
#pragma once

#include "import/convert.h"

#include <string>

namespace zentrak::test {

struct Comparison {
    bool refused = false;
    std::string problem; // why it was refused, or what differs; empty if nothing
    std::string format;  // of what was imported
    double worst = 0;    // largest distance of a vertex or node, as a fraction of the scene's size
    size_t vertices = 0; // compared, over all times
    size_t nodes = 0;    // likewise
    size_t times = 0;
    importer::Counts counts;
    size_t losses = 0;
};

// The tolerance, as a fraction of the scene's size.
constexpr double SAME = 0.002;

// Imports the file, loads the result as the show does, with normals, and compares the corners of all
// triangles and the origins of all nodes in the world, at many times. A crash happens in a child process and
// is a problem.
Comparison compareImport(const std::string& path);

} // namespace zentrak::test
