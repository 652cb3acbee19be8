// Scenes as effects draw them: the meshes on the card, the walk over the nodes, and the drawing of one mesh.
#pragma once

#include "gml_mesh.h"
#include "mb_matrix4x4col.h"
#include "o3d_manager.h"

#include <map>
#include <memory>
#include <string>

namespace zentrak::kindler {

// By the name of the o3d::Mesh. The map owns them: removeMeshes().
using SceneMeshes = std::map<std::string, gimli::Mesh*>;

// Reads a file of the display's archives into `manager`. Throws "File '%s' not found", what
// o3d::Manager::load throws, and "File '%s': %s" with what o3d::Mesh::checkIndices throws of one of its
// meshes.
void loadSceneFile(display::DisplayGL& display, o3d::Manager& manager, const std::string& name);

// Makes the buffers of every mesh of `manager`; of two with one name, the later replaces the earlier. Throws
// and asserts what gimli::Mesh::load does; the map then holds what was made so far.
void loadMeshes(display::DisplayGL& display, const o3d::Manager& manager, SceneMeshes& meshes);
void removeMeshes(SceneMeshes& meshes); // deletes them and empties the map

// Called for each node of a walk.
class SceneVisitor {
public:
    // `world` takes the node's coordinates to the world's, at the time of the walk, and lasts for the call.
    // `flip`: an odd number of nodes from the root to this one mirror.
    virtual void visit(const o3d::SceneNode& node, const mathbase::Matrix4x4Col& world, bool flip) = 0;

protected:
    ~SceneVisitor() = default;
};

// Visits `node` and all below it, each node before its children, children in order. `parent` is the parent's
// transform to the world, `flip` whether it mirrors. A camera is skipped with all below it. A Scene's own
// tracks have no effect.
void walkScene(const o3d::SceneNode& node, const mathbase::Matrix4x4Col& parent, float time, bool flip,
               SceneVisitor& visitor);

// The node as an instance, or null if it is something else; and the mesh of an instance. Asserts that it
// exists.
const o3d::MeshInstance* asInstance(const o3d::SceneNode& node);
const o3d::Mesh& meshOf(const o3d::Manager& manager, const o3d::MeshInstance& instance);

// Draws the submeshes of `mesh` in order under the current matrices, with front faces clockwise if `flip`.
// Leaves GL_CULL_FACE on and the front face as set. `instance` may be null. Draws nothing for a mesh without
// submeshes or without an entry in the map. The material of a submesh has the name that the instance gives to
// its number, or else the mesh: throws "drawmesh::trianglelist without material" if both are empty, and
// asserts "m" if there is none of that name.
void drawMesh(const o3d::Manager& manager, const SceneMeshes& meshes, const o3d::Mesh& mesh,
              const o3d::MeshInstance* instance, bool flip);

} // namespace zentrak::kindler
