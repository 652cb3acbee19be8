// From a model file's scene to a scene file.
#pragma once

#include "import/model.h"

#include <string>
#include <vector>

namespace zentrak::importer {

struct Options {
    double scale = 1;      // factor of all sizes, after metres
    std::string up;        // "x", "-x", "y"... : the file's axis that is up; empty: as the file says
    double fit = 0;        // above 0: all lies within this distance of the origin, around it
    bool flat = false;     // one mesh for each node, where it stands at time 0, and nothing moves
    bool points = false;   // one mesh of bare positions
    int pointCount = 0;    // so many, spread over the surfaces; 0: the vertices as they are
    std::string animation; // its name or its number from 1; empty: the first
    bool camera = true;    // add one where the file has none
};

struct Counts {
    size_t nodes = 0, meshes = 0, triangles = 0, points = 0, materials = 0, cameras = 0;
    double length = 0; // of the animation, seconds
};

struct Conversion {
    std::string image;                // the scene file
    std::vector<std::string> losses;  // what it lacks of the model, a line each
    std::vector<std::string> remarks; // what is worth knowing
    Counts counts;
};

// `name` is the scene's where the model has none. Throws std::runtime_error for what can't be converted at
// all, and for an animation that there is not.
Conversion convert(const Model& model, const Options& options, const std::string& name);

// The axes of Options::up. Throws std::runtime_error for another word.
Matrix3 axesWithUp(const std::string& up);

} // namespace zentrak::importer
