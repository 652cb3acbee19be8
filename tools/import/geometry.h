// Meshes as the engine wants them: made so that its normals come out as the file's, and that it can make them
// at all.
#pragma once

#include "import/model.h"
#include "import/transform.h"

#include "o3d_mesh.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::importer {

struct MeshLosses {
    size_t flatTriangles = 0;   // left out: without area, or with NaN
    size_t movedTexCoords = 0;  // triangles whose coordinates had no area
    size_t brokenTexCoords = 0; // coordinates that were NaN or infinite: 0 now
};

// One Submesh for each part, with the part's place in the list as its material number; at most 256 parts. The
// Mesh has no positions if nothing of it is left.
//
// The engine smooths over all triangles at a position, so positions are shared where the file's normals
// agree. It also can't take a triangle without area, normals or tangents that cancel out: the former are left
// out, at the latter a corner gets a position and coordinates of its own.
std::unique_ptr<o3d::Mesh> buildMesh(const std::vector<const Part*>& parts, const Space& space,
                                     const Matrix& place, MeshLosses& losses);

} // namespace zentrak::importer
