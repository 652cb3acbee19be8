// The scenes in the source tree: what the effects rely on.

#include "mb_matrix4x4col.h"
#include "o3d_bytes.h"
#include "scene/inspect.h"
#include "scene/scenes.h"
#include "support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Vector3f;

namespace {

const char* const assets[] = {"data/face/face.o3d", "tests/data/abc/katedral.o3d",
                              "tests/data/ssao/scene.o3d", "tests/data/sten/sten.o3d"};

std::string imageOf(const std::string& name) {
    return test::readFile(sourcePath(name));
}

// Walks the scene as drawing effects do: every reference resolves, and instances name their materials
// themselves.
void walk(const o3d::Manager& manager, const o3d::SceneNode& node, std::set<std::string>& meshes) {
    if (const auto* instance = dynamic_cast<const o3d::MeshInstance*>(&node)) {
        const o3d::Mesh* mesh = manager.getMesh(instance->mMeshName);
        ASSERT_NE(nullptr, mesh) << instance->mName;
        meshes.insert(mesh->mName);
        for (size_t i = 0; i < mesh->mSubmeshes.size(); ++i) {
            EXPECT_EQ(int(i), mesh->mSubmeshes[i]->mMaterial);
            EXPECT_NE(nullptr, manager.getMaterial(instance->getMaterial(int(i)))) << instance->mName;
            EXPECT_NE(nullptr, manager.getMaterial(mesh->getMaterial(int(i)))) << mesh->mName;
        }
    }
    for (const o3d::SceneNode* child : node.mChildren)
        walk(manager, *child, meshes);
}

TEST(Assets, LoadWithoutARemarkAndHaveNormals) {
    for (const char* name : assets) {
        const std::string image = imageOf(name);
        EXPECT_EQ(0, scene::inspect(image).remarks) << name;
        o3d::Manager manager;
        CaptureStdout capture;
        load(manager, image);
        ASSERT_EQ(1u, manager.mScenes.size());
        std::set<std::string> meshes;
        walk(manager, *manager.mScenes[0], meshes);
        EXPECT_EQ(manager.mMeshes.size(), meshes.size()) << "a mesh that nothing shows, in " << name;
        for (o3d::Mesh* mesh : manager.mMeshes) {
            mesh->addNormals(); // asserts on a triangle without area or a vertex without a triangle
            for (const o3d::Submesh* submesh : mesh->mSubmeshes)
                for (const o3d::TangentSpace& space : submesh->mTangentSpaces) {
                    EXPECT_NEAR(1.0f, space.mNormal.length(), 1e-4f);
                    EXPECT_NEAR(1.0f, space.mTangent.length(), 1e-4f);
                    EXPECT_NEAR(1.0f, space.mBinormal.length(), 1e-4f);
                }
        }
        EXPECT_EQ("", capture.text());
    }
}

TEST(Assets, FaceHasAllItsVerticesAndStaysNearTheOrigin) {
    o3d::Manager manager;
    load(manager, imageOf("data/face/face.o3d"));
    ASSERT_EQ(1u, manager.mMeshes.size());
    const auto& vertices = manager.mMeshes[0]->mVertices;
    EXPECT_GE(vertices.size(), 20000u);
    for (const Vector3f& vertex : vertices) {
        EXPECT_LT(vertex.length(), 1.0f);
        EXPECT_GT(vertex.length(), 0.05f);
    }
}

TEST(Assets, EveryTwentyEighthVertexOfTheFaceDrawsItsFeatures) {
    o3d::Manager manager;
    load(manager, imageOf("data/face/face.o3d"));
    const auto& vertices = manager.mMeshes[0]->mVertices;
    // The density of the glowing vertices around a point of the picture, relative to that of the whole head.
    const auto density = [&](float x, float y, float radius) {
        double near = 0, all = 0, glowNear = 0, glowAll = 0;
        for (size_t i = 0; i < vertices.size(); ++i) {
            const Vector3f& v = vertices[i];
            const bool inside = v.z > 0 && hypotf(fabsf(v.x) - x * 0.88f, v.y - y * 0.88f - 0.03f) < radius;
            ++all;
            near += inside;
            glowAll += i % 28 == 0;
            glowNear += inside && i % 28 == 0;
        }
        return glowNear / near / (glowAll / all);
    };
    EXPECT_GT(density(0.14f, 0.03f, 0.03f), 1.5);  // eye
    EXPECT_GT(density(0.14f, 0.105f, 0.02f), 2.0); // brow
    EXPECT_GT(density(0.06f, -0.17f, 0.03f), 1.5); // wing of the nose
    EXPECT_GT(density(0.04f, -0.27f, 0.03f), 1.5); // mouth
    EXPECT_LT(density(0.15f, -0.14f, 0.03f), 0.8); // cheek
    EXPECT_LT(density(0.0f, 0.2f, 0.04f), 0.8);    // forehead
}

TEST(Assets, CourtyardHasACameraThatGoesRoundAndBack) {
    o3d::Manager manager;
    load(manager, imageOf("tests/data/ssao/scene.o3d"));
    const auto* camera = dynamic_cast<const o3d::Camera*>(manager.mScenes[0]->getChild("camera"));
    ASSERT_NE(nullptr, camera);
    EXPECT_FALSE(camera->isStatic());
    EXPECT_EQ(24.0f, manager.mScenes[0]->getAnimationLength());
    for (float time = 0; time < 60; time += 0.37f) {
        const Vector3f eye = camera->mPosition.getValue(time);
        mathbase::Quatf rotation;
        mathbase::Matrix4x4Col view;
        rotation.setEuler(camera->mRotation.getValue(time));
        view.buildBlenderCameraInverse(eye, rotation, Vector3f(1, 1, 1));
        EXPECT_LT(eye.length(), 30.0f);
        EXPECT_GT(eye.y, 2.0f);
        // The centre of the scene is near the centre of the picture, in front of the camera.
        const Vector3f middle = view.multiply(Vector3f(0, 2.6f, 0));
        EXPECT_LT(middle.z, -8.0f);
        EXPECT_LT(hypotf(middle.x, middle.y) / -middle.z, 0.05f) << time;
        const float again = camera->mPosition.mX.getValue(time + 24);
        EXPECT_NEAR(eye.x, again, 1e-3f);
    }
}

TEST(Assets, ScenesHaveMirroredNodesAndObjectsWithoutAShadow) {
    o3d::Manager manager;
    load(manager, imageOf("tests/data/ssao/scene.o3d"));
    int flippedNodes = 0, withoutShadow = 0;
    for (const o3d::SceneNode* node : manager.mScenes[0]->mChildren) {
        mathbase::Matrix4x4Col matrix;
        bool flipped = false;
        node->calculateMatrix(0, matrix, flipped);
        flippedNodes += flipped;
        withoutShadow += node->mName.rfind("ex_", 0) == 0;
    }
    EXPECT_EQ(1, flippedNodes);
    EXPECT_EQ(6, withoutShadow);
}

TEST(Assets, KindsOfSurfaceAreDistinguishedByTheirTexture) {
    const std::pair<const char*, std::set<int>> scenes[] = {
        {"tests/data/abc/katedral.o3d", {-2, -1, 0, 1, 2}},
        {"tests/data/ssao/scene.o3d", {0, 1, 2, 3, 4, 5}}};
    for (const auto& [name, expected] : scenes) {
        o3d::Manager manager;
        load(manager, imageOf(name));
        std::set<int> kinds;
        for (const o3d::Mesh* mesh : manager.mMeshes)
            for (const Vector3f& uv : mesh->mSubmeshes.at(0)->mTexCoords.at(0)->mList) {
                const float kind = roundf(uv.x / 16.0f);
                EXPECT_LT(fabsf(uv.x - 16.0f * kind), 7.0f) << mesh->mName;
                kinds.insert(int(kind));
            }
        EXPECT_EQ(expected, kinds) << name;
    }
}

TEST(Assets, TheMakersMakeTheFilesInTheTree) {
    // Not byte for byte: another libm's sine may differ in the last bit. Compares the chunks and their
    // counts.
    const auto chunks = [](const std::string& image) {
        std::string text = scene::inspect(image).text;
        return text.substr(0, text.find('\n')); // format, version and size
    };
    EXPECT_EQ(chunks(imageOf("data/face/face.o3d")), chunks(scene::makeFace()));
    EXPECT_EQ(chunks(imageOf("tests/data/ssao/scene.o3d")), chunks(scene::makeCourtyard()));
    EXPECT_EQ(chunks(imageOf("tests/data/sten/sten.o3d")), chunks(scene::makeStone()));
    EXPECT_EQ(chunks(imageOf("tests/data/abc/katedral.o3d")), chunks(scene::makeCathedral()));
}

} // namespace
