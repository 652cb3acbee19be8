// Converts a model to a scene file.
#pragma once

#include "import/model.h"

#include <string>
#include <vector>

namespace zentrak::importer {

struct Options {
    double scale = 1;      // factor for everything, from metres
    std::string up;        // "x", "-x", "y"... : the file's axis that is up; empty: as the file says
    double fit = 0;        // above 0: everything is fitted within this distance of the origin
    bool flat = false;     // one mesh per node, in its pose at time 0, without animation
    bool points = false;   // one mesh of bare positions
    int pointCount = 0;    // spread over the surfaces; 0: the vertices as they are
    std::string animation; // its name or its number from 1; empty: the first
    bool camera = true;    // add one where the file has none
};

struct Counts {
    size_t nodes = 0, meshes = 0, triangles = 0, points = 0, materials = 0, cameras = 0;
    double length = 0; // of the animation, seconds
};

struct Conversion {
    std::string image;                // the scene file
    std::vector<std::string> losses;  // what is missing of the model, a line each
    std::vector<std::string> remarks; // what is worth knowing
    Counts counts;
};

// `name` is for a scene without a name. Throws std::runtime_error for a model that can't be converted, and if
// the chosen animation doesn't exist.
Conversion convert(const Model& model, const Options& options, const std::string& name);

// The axes of Options::up. Throws std::runtime_error for another word.
Matrix3 axesWithUp(const std::string& up);

} // namespace zentrak::importer
