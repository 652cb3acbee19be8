// An imported scene held against assimp's own reading of the same file.
#pragma once

#include "import/convert.h"

#include <string>

namespace zentrak::test {

struct Comparison {
    bool refused = false;
    std::string problem; // why it was refused, or what differs; empty where all is well
    std::string format;  // of what was imported
    double worst = 0;    // distance of a vertex or node, of the scene's size
    size_t vertices = 0; // compared, over all times
    size_t nodes = 0;    // likewise
    size_t times = 0;
    importer::Counts counts;
    size_t losses = 0;
};

// How far apart is the same, of the scene's size.
constexpr double SAME = 0.002;

// Imports the file, loads what came of it as the show does, with its normals, and compares the corners of all
// triangles and the origins of all nodes, in the world, at many times. Whatever crashes, in a process of its
// own, is a problem.
Comparison compareImport(const std::string& path);

} // namespace zentrak::test
