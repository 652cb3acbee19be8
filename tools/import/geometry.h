// Builds meshes for which the engine computes the normals of the model file, without failing on any of them.
#pragma once

#include "import/model.h"
#include "import/transform.h"

#include "o3d_mesh.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::importer {

struct MeshLosses {
    size_t flatTriangles = 0;   // left out: without area, or NaN
    size_t movedTexCoords = 0;  // triangles without area in the texture
    size_t brokenTexCoords = 0; // coordinates that were NaN or infinite: 0 now
};

// One Submesh per part, whose index is its material number; at most 256 parts. The Mesh has no positions if
// nothing is left of it.
//
// The engine smooths over all triangles at a position, so positions are shared only where the file's normals
// agree. It fails on triangles without area, which are left out, and on normals or tangents that cancel out,
// where corners get positions and coordinates of their own.
std::unique_ptr<o3d::Mesh> buildMesh(const std::vector<const Part*>& parts, const Space& space,
                                     const Matrix& place, MeshLosses& losses);

} // namespace zentrak::importer
