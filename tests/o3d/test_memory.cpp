// Loading when memory runs out, at each allocation in turn.
#include "allocations.h"
#include "o3d_bytes.h"
#include "support.h"

#include <gtest/gtest.h>

#include <new>

using namespace zentrak;
using namespace zentrak::test;

namespace {

// Loads with memory for `calls` allocations. The next one fails and, unless `once`, all after it.
void loadFailing(o3d::Manager& manager, const std::string& image, long calls, bool once) {
    refuseAllocation(size_t(calls) + 1, !once);
    try {
        manager.load(reinterpret_cast<const unsigned char*>(image.data()), int(image.size()));
    } catch (const std::bad_alloc&) {
        EXPECT_LT(calls, 4); // before the first chunk nothing can be recovered
    }
    refuseAllocation(0);
}

size_t countNodes(const o3d::SceneNode& node) {
    size_t count = 1;
    for (const o3d::SceneNode* child : node.mChildren) {
        EXPECT_NE(nullptr, child);
        count += countNodes(*child);
    }
    return count;
}

TEST(Memory, RunningOutAtAnyAllocationLosesNothingThatWasMade) {
    const std::string image = everything();
    CaptureStdout capture;
    long calls = 0;
    {
        o3d::Manager manager;
        const size_t before = allocationCount();
        manager.load(reinterpret_cast<const unsigned char*>(image.data()), int(image.size()));
        calls = long(allocationCount() - before);
    }
    EXPECT_GT(calls, 100);
    for (const bool once : {false, true}) {
        size_t nodes = 0;
        for (long call = 0; call <= calls; ++call) {
            o3d::Manager manager;
            loadFailing(manager, image, call, once);
            // What was loaded can be walked, searched and destroyed; sanitizers see what is missing.
            nodes = 0;
            for (const o3d::Scene* scene : manager.mScenes)
                nodes += countNodes(*scene);
            for (const o3d::Mesh* mesh : manager.mMeshes)
                EXPECT_NE(nullptr, manager.getMesh(mesh->mName));
            for (const auto& [name, index] : manager.mMaterialMap)
                EXPECT_LE(index, int(manager.mMaterials.size())) << name;
        }
        EXPECT_EQ(7u, nodes);
    }
}

TEST(Memory, AListWithoutMemoryIsEmptyAndTheRestIsLoaded) {
    // As each allocation in turn fails, at some point it is that of the triangles.
    o3d::Manager manager;
    std::string triangles;
    for (int i = 0; i < 1000; ++i)
        triangles += triangle(0, 0, 0);
    const std::string image =
        file(chunk(0x2000, text("m") + chunk(0xFF00, floats({1, 2, 3})) +
                               chunk(0x2200, u8(5) + chunk(0xFF30, triangles) + chunk(0xFF60, i32(0))) +
                               chunk(0x6200, text("name"))));
    bool found = false;
    for (long call = 0; call < 40 && !found; ++call) {
        manager.clear();
        loadFailing(manager, image, call, true);
        found = manager.mMeshes.size() == 1 && manager.mMeshes[0]->mSubmeshes.size() == 1 &&
                manager.mMeshes[0]->mSubmeshes[0]->mTriangles.empty();
    }
    ASSERT_TRUE(found);
    EXPECT_EQ(1u, manager.mMeshes[0]->mSubmeshes[0]->mIndices.size());
    EXPECT_EQ(5, manager.mMeshes[0]->mSubmeshes[0]->mMaterial);
    EXPECT_EQ("name", manager.mMeshes[0]->getMaterial(0));
}

} // namespace
