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

// Makes the buffers of every mesh of `manager`; of two with one name those of the later. Throws and asserts
// what gimli::Mesh::load does; what is made by then is in the map.
void loadMeshes(display::DisplayGL& display, const o3d::Manager& manager, SceneMeshes& meshes);
void removeMeshes(SceneMeshes& meshes); // deletes them and empties the map

// What the walk tells about.
class SceneVisitor {
public:
    // A node and its place in the world at the time of the walk. `flip` tells whether an odd number of nodes
    // from the root to here mirrors. The matrix lasts for the call.
    virtual void visit(const o3d::SceneNode& node, const mathbase::Matrix4x4Col& world, bool flip) = 0;

protected:
    ~SceneVisitor() = default;
};

// Visits `node`, whose parent lies at `parent` and is mirrored if `flip`, and all below it: each node ahead
// of its children, these in their order. A camera is passed over, with all below it. A Scene's own tracks
// play no part.
void walkScene(const o3d::SceneNode& node, const mathbase::Matrix4x4Col& parent, float time, bool flip,
               SceneVisitor& visitor);

// The instance that a node is, or null; and its mesh, which asserts that there is one.
const o3d::MeshInstance* asInstance(const o3d::SceneNode& node);
const o3d::Mesh& meshOf(const o3d::Manager& manager, const o3d::MeshInstance& instance);

// Draws the submeshes of `mesh` in their order under the matrices as they are, with the front faces clockwise
// if `flip`; GL_CULL_FACE and the front face stay as set here. `instance` may be null. Nothing for a mesh
// without submeshes or without an entry in the map. A submesh's material is looked up by the name that the
// instance gives to its number, else by the mesh's: throws "drawmesh::trianglelist without material" where
// both are empty, and asserts "m" where there is none of that name.
void drawMesh(const o3d::Manager& manager, const SceneMeshes& meshes, const o3d::Mesh& mesh,
              const o3d::MeshInstance* instance, bool flip);

} // namespace zentrak::kindler
