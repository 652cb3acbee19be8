// A model as bare points.
#pragma once

#include "import/model.h"

namespace zentrak::importer {

// `world` holds a matrix for each node. Both functions leave out NaN and infinities.

// All vertices, each position once.
std::vector<Vector> vertexPoints(const Model& model, const std::vector<Matrix>& world);

// `count` points spread evenly over the area of all triangles, the same each time. Every n-th of them is
// spread as evenly. Empty without triangles.
std::vector<Vector> spreadPoints(const Model& model, const std::vector<Matrix>& world, int count);

} // namespace zentrak::importer
