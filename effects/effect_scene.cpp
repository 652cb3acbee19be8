#include "effect_scene.h"

#include "am_archivemanager.h"
#include "am_file.h"
#include "dis_display.h"
#include "dis_glcheck.h"
#include "o3d_chunk.h"
#include "ztk_system.h"

#include <cassert>
#include <climits>

namespace zentrak::kindler {

using mathbase::Matrix4x4Col;

void loadSceneFile(display::DisplayGL& display, o3d::Manager& manager, const std::string& name) {
    am::File file;
    if (display.mArchiveManager)
        file = display.mArchiveManager->readFile(name);
    if (file.isNull())
        throw Exception("File '%s' not found", name.c_str());
    if (file->length > INT_MAX)
        throw Exception("File '%s' is too large", name.c_str());
    const size_t before = manager.mMeshes.size();
    readNamed(name, [&] { manager.load(file->data, int(file->length)); });
    try {
        for (size_t i = before; i < manager.mMeshes.size(); ++i)
            manager.mMeshes[i]->checkIndices();
    } catch (const Exception& problem) {
        throw Exception("File '%s': %s", name.c_str(), problem.what());
    }
}

void loadMeshes(display::DisplayGL& display, const o3d::Manager& manager, SceneMeshes& meshes) {
    for (o3d::Mesh* mesh : manager.mMeshes) {
        auto made = std::make_unique<gimli::Mesh>(&display);
        made->load(mesh, 1);
        gimli::Mesh*& entry = meshes[mesh->mName];
        delete entry;
        entry = made.release();
    }
}

void removeMeshes(SceneMeshes& meshes) {
    for (const auto& [name, mesh] : meshes)
        delete mesh;
    meshes.clear();
}

void walkScene(const o3d::SceneNode& node, const Matrix4x4Col& parent, float time, bool flip,
               SceneVisitor& visitor) {
    const int type = node.getType();
    if (type == o3d::CHUNK_CAMERA)
        return;
    Matrix4x4Col world = parent;
    if (type != o3d::CHUNK_SCENE) {
        Matrix4x4Col local;
        bool flipped = false;
        node.calculateMatrix(time, local, flipped);
        world.multiplyFromRight(local);
        flip = flip != flipped;
    }
    visitor.visit(node, world, flip);
    for (const o3d::SceneNode* child : node.mChildren)
        if (child)
            walkScene(*child, world, time, flip, visitor);
}

const o3d::MeshInstance* asInstance(const o3d::SceneNode& node) {
    return node.getType() == o3d::CHUNK_MESHINSTANCE ? static_cast<const o3d::MeshInstance*>(&node) : nullptr;
}

const o3d::Mesh& meshOf(const o3d::Manager& manager, const o3d::MeshInstance& instance) {
    const o3d::Mesh* mesh = manager.getMesh(instance.mMeshName);
    assert(mesh);
    return *mesh;
}

void drawMesh(const o3d::Manager& manager, const SceneMeshes& meshes, const o3d::Mesh& mesh,
              const o3d::MeshInstance* instance, bool flip) {
    GL_CHECK_STATUS();
    if (mesh.mSubmeshes.empty())
        return;
    GL_CALL(glEnable(GL_CULL_FACE));
    if (flip)
        GL_CALL(glFrontFace(GL_CW));
    else
        GL_CALL(glFrontFace(GL_CCW));
    const float twosided = 0;
    GL_CALL(glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, twosided));

    const auto found = meshes.find(mesh.mName);
    if (found == meshes.end() || !found->second)
        return;
    for (size_t i = 0; i < mesh.mSubmeshes.size(); ++i) {
        const int number = mesh.mSubmeshes[i]->mMaterial;
        const std::string* name = instance ? &instance->getMaterial(number) : nullptr;
        if (!name || name->empty())
            name = &mesh.getMaterial(number);
        if (name->empty())
            throw Exception("drawmesh::trianglelist without material");
        const o3d::Material* m = manager.getMaterial(*name);
        assert(m);
        found->second->drawSubmesh(int(i));
    }
    GL_CHECK_STATUS();
}

} // namespace zentrak::kindler
