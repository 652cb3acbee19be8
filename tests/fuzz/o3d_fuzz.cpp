// Reads any bytes as a scene file. Whatever loads must be consistent, drawable and writable, and the
// inspector must describe it.

#include "fuzz.h"
#include "o3d_chunk.h"
#include "o3d_manager.h"
#include "scene/inspect.h"
#include "ztk_system.h"

#include "mb_matrix4x4col.h"

#include <cstdint>
#include <string>

using namespace zentrak;
using fuzz::check;

namespace {

size_t walk(const o3d::Manager& manager, const o3d::SceneNode& node, size_t depth) {
    check(depth <= o3d::MAX_DEPTH);
    mathbase::Matrix4x4Col matrix;
    bool flipped = false;
    for (const float time : {-7.0f, 0.0f, 3.3f})
        node.calculateMatrix(time, matrix, flipped);
    check(node.getAnimationLength() >= 0.0f || depth > 2);
    if (const auto* instance = dynamic_cast<const o3d::MeshInstance*>(&node)) {
        manager.getMesh(instance->mMeshName);
        instance->getMaterial(0);
    }
    size_t count = 1;
    for (const o3d::SceneNode* child : node.mChildren)
        count += walk(manager, *child, depth + 1);
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    o3d::Manager manager;
    try {
        manager.load(data, int(size));
    } catch (const Exception&) {
    }
    size_t nodes = 0;
    for (const o3d::Scene* scene : manager.mScenes)
        nodes += walk(manager, *scene, 0);
    check(nodes <= 6 * size + 1); // repeated reading is bounded
    for (o3d::Mesh* mesh : manager.mMeshes) {
        check(manager.getMesh(mesh->mName) != nullptr);
        check(mesh->mVertices.size() <= size && mesh->mMaterials.size() <= 6 * size);
        mesh->updateBox();
        try {
            mesh->checkIndices();
        } catch (const Exception&) {
        }
    }
    unsigned char* written = nullptr;
    int length = 0;
    manager.write(&written, &length);
    check(length >= 6);
    delete[] written;
    check(!scene::inspect(std::string(reinterpret_cast<const char*>(data), size)).text.empty());
    return 0;
}
