// A model as bare points.
#pragma once

#include "import/model.h"

namespace zentrak::importer {

// `world` holds a matrix for each node. Both leave out what is not a number.

// All vertices, each position once.
std::vector<Vector> vertexPoints(const Model& model, const std::vector<Matrix>& world);

// `count` points spread evenly over all triangles, by area, the same each time; any that are as many apart in
// the list are spread as evenly. None without triangles.
std::vector<Vector> spreadPoints(const Model& model, const std::vector<Matrix>& world, int count);

} // namespace zentrak::importer
