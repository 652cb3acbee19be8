#include "o3d_bytes.h"
#include "scene/scene_file.h"
#include "scene/shape.h"
#include "ztk_system.h"

#include "mb_matrix4x4col.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Matrix4x4Col;
using mathbase::Quatf;
using mathbase::Vector3f;

namespace {

TEST(SceneFile, MeshesComeBackAsTheyWere) {
    o3d::Manager first, second;
    load(first, everything());
    load(second, scene::sceneFile(first));
    ASSERT_EQ(1u, second.mMeshes.size());
    const o3d::Mesh &a = *first.mMeshes[0], &b = *second.mMeshes[0];
    EXPECT_EQ(a.mName, b.mName);
    EXPECT_EQ(a.mMaterials, b.mMaterials);
    EXPECT_EQ(a.mVertices, b.mVertices);
    EXPECT_EQ(a.mBoxMin, b.mBoxMin);
    EXPECT_EQ(a.mBoxMax, b.mBoxMax);
    ASSERT_EQ(a.mSubmeshes.size(), b.mSubmeshes.size());
    for (size_t s = 0; s < a.mSubmeshes.size(); ++s) {
        EXPECT_EQ(a.mSubmeshes[s]->mMaterial, b.mSubmeshes[s]->mMaterial);
        ASSERT_EQ(a.mSubmeshes[s]->mTriangles.size(), b.mSubmeshes[s]->mTriangles.size());
        for (size_t t = 0; t < a.mSubmeshes[s]->mTriangles.size(); ++t)
            for (int corner = 0; corner < 3; ++corner)
                EXPECT_EQ(a.mSubmeshes[s]->mTriangles[t].mIndex[corner],
                          b.mSubmeshes[s]->mTriangles[t].mIndex[corner]);
        ASSERT_EQ(a.mSubmeshes[s]->mTexCoords.size(), b.mSubmeshes[s]->mTexCoords.size());
        for (size_t list = 0; list < a.mSubmeshes[s]->mTexCoords.size(); ++list)
            EXPECT_EQ(a.mSubmeshes[s]->mTexCoords[list]->mList, b.mSubmeshes[s]->mTexCoords[list]->mList);
    }
    EXPECT_EQ(first.mMaterials.size(), second.mMaterials.size());
    EXPECT_EQ(first.mImages.size(), second.mImages.size());
}

TEST(SceneFile, AnEmptyManagerGivesAFileThatLoads) {
    o3d::Manager first, second;
    load(second, scene::sceneFile(first));
    EXPECT_TRUE(second.mScenes.empty());
}

TEST(SceneFile, AWritableArmatureComesBack) {
    o3d::Manager first, second;
    auto* const scene = new o3d::Scene;
    first.addScene(scene);
    auto* const armature = new scene::WritableArmature;
    armature->mName = "arm";
    scene->addChild(armature);
    auto* const root = new o3d::Armature::Bone;
    root->mName = "root";
    root->mHead = Vector3f(1, 2, 3);
    root->mRotation = Quatf(0, 1, 0, 0);
    root->mLength = 4;
    armature->mBones.push_back(root);
    auto* const leaf = new o3d::Armature::Bone;
    leaf->mName = "leaf";
    root->mChildren.push_back(leaf);
    load(second, scene::sceneFile(first));
    const auto* found = dynamic_cast<const o3d::Armature*>(second.mScenes.at(0)->getChild("arm"));
    ASSERT_NE(nullptr, found);
    EXPECT_EQ("root", found->mBones.at(0)->mName);
    EXPECT_EQ(Vector3f(1, 2, 3), found->mBones[0]->mHead);
    EXPECT_EQ(Quatf(0, 1, 0, 0), found->mBones[0]->mRotation);
    EXPECT_EQ(4.0f, found->mBones[0]->mLength);
    EXPECT_EQ("leaf", found->mBones[0]->mChildren.at(0)->mName);
}

std::string failureOf(const o3d::Manager& manager) {
    try {
        scene::sceneFile(manager);
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "nothing thrown";
}

TEST(SceneFile, MaterialNamesNeedNotStartAlike) {
    o3d::Manager manager;
    load(manager, everything());
    const std::vector<std::string> names = {"stone", "stone wall", "wood", "", "wood", "woodwork", "w"};
    manager.mMeshes[0]->mMaterials = names;
    o3d::Manager again;
    load(again, scene::sceneFile(manager));
    EXPECT_EQ(names, again.mMeshes[0]->mMaterials);
}

TEST(SceneFile, WhatAFileCantHoldIsRefused) {
    o3d::Manager manager;
    load(manager, everything());
    o3d::Mesh& mesh = *manager.mMeshes[0];
    mesh.mSubmeshes[0]->mMaterial = 256;
    EXPECT_EQ("Mesh 'mesh': material number 256 is none (0 to 255)", failureOf(manager));
    mesh.mSubmeshes[0]->mMaterial = 255;
    EXPECT_EQ("nothing thrown", failureOf(manager));
    mesh.mSubmeshes[0]->mIndices[1].mValue = 4;
    EXPECT_EQ("Mesh 'mesh', submesh 0: index 1 is 4, but there are 4 vertices", failureOf(manager));
}

TEST(SceneFile, LookAtTurnsACameraLikeTheViewMatrix) {
    for (const Vector3f& eye :
         {Vector3f(3, 2, 5), Vector3f(-4, 0, 1), Vector3f(0, 9, -2), Vector3f(1, -3, 0.1f)}) {
        const Vector3f target(0.5f, 1, -0.25f);
        Quatf rotation;
        o3d::Camera camera;
        scene::setValue(camera.mRotation, scene::lookAt(eye, target));
        rotation.setEuler(camera.mRotation.getValue(0));
        Matrix4x4Col found, expected;
        found.buildBlenderCameraInverse(eye, rotation, Vector3f(1, 1, 1));
        expected.setCamera(eye, target, 0);
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(expected.mData[i], found.mData[i], 1e-5f) << i;
    }
}

TEST(SceneFile, AClosedCurveGoesThroughItsValuesAndOnWithoutAKink) {
    o3d::TrackBlenderFloat track;
    const std::vector<float> values = {1, 4, -2, 0, 1};
    scene::setCurve(track, values, 2.0f, true);
    for (size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(values[i], track.getValue(2.0f * float(i)), 1e-5f);
        EXPECT_NEAR(values[i], track.getValue(8.0f + 2.0f * float(i)), 1e-5f);
    }
    for (float time = 0.5f; time < 8; time += 0.5f)
        EXPECT_NEAR(track.getValue(time), track.getValue(time - 8), 1e-4f);
    const float step = 0.01f;
    EXPECT_NEAR((track.getValue(8) - track.getValue(8 - step)) / step,
                (track.getValue(step) - track.getValue(0)) / step, 0.1f);
    // A full rotation continues.
    scene::setCurve(track, {0, 2, 4, 6}, 1.0f, true);
    EXPECT_NEAR(6.0f + 2.0f, track.getValue(4.0f), 1e-5f);
}

TEST(Shape, ABoxHasSixFlatFacesThatLookOutwards) {
    scene::Shape shape;
    shape.box(0, Vector3f(1, 2, 3), Vector3f(2, 4, 6));
    const auto mesh = shape.build("box", {"stone"});
    EXPECT_EQ(24u, mesh->mVertices.size());
    EXPECT_EQ(12u, shape.triangleCount());
    EXPECT_EQ(Vector3f(1, 2, 3), mesh->mBoxMin);
    EXPECT_EQ(Vector3f(2, 4, 6), mesh->mBoxMax);
    mesh->addNormals();
    const o3d::Submesh& submesh = *mesh->mSubmeshes.at(0);
    const Vector3f centre(1.5f, 3, 4.5f);
    for (size_t i = 0; i < submesh.mIndices.size(); ++i) {
        const Vector3f& n = submesh.mTangentSpaces[i].mNormal;
        EXPECT_FLOAT_EQ(1.0f, std::max({fabsf(n.x), fabsf(n.y), fabsf(n.z)}));
        EXPECT_GT(n.dot(mesh->mVertices[size_t(submesh.mIndices[i].mValue)] - centre), 0.0f);
    }
}

// The volume inside a closed surface, by the divergence of (x, y, z) / 3; and is every edge used once in each
// direction?
float volumeOf(const o3d::Mesh& mesh, bool& closed) {
    double volume = 0;
    std::map<std::pair<std::tuple<long, long, long>, std::tuple<long, long, long>>, int> edges;
    const auto key = [](const Vector3f& p) {
        return std::make_tuple(lroundf(p.x * 1e4f), lroundf(p.y * 1e4f), lroundf(p.z * 1e4f));
    };
    for (const o3d::Submesh* submesh : mesh.mSubmeshes)
        for (const o3d::Triangle& triangle : submesh->mTriangles) {
            Vector3f corner[3];
            for (int i = 0; i < 3; ++i)
                corner[i] = mesh.mVertices[size_t(submesh->mIndices[size_t(triangle.mIndex[i])].mValue)];
            volume += double(corner[0].dot(corner[1].cross(corner[2]))) / 6;
            for (int i = 0; i < 3; ++i) {
                ++edges[{key(corner[i]), key(corner[(i + 1) % 3])}];
                --edges[{key(corner[(i + 1) % 3]), key(corner[i])}];
            }
        }
    closed = true;
    for (const auto& [edge, count] : edges)
        closed = closed && count == 0;
    return float(volume);
}

TEST(Shape, SolidsAreClosedAndEncloseTheirVolume) {
    bool closed = false;
    scene::Shape box, lathe, band, open, bar;
    box.box(0, Vector3f(1, 2, 3), Vector3f(2, 4, 6));
    EXPECT_FLOAT_EQ(6.0f, volumeOf(*box.build("m", {"s"}), closed));
    EXPECT_TRUE(closed);
    lathe.lathe(0, {{2, 0}, {2, 5}}, 64);
    EXPECT_NEAR(3.14159f * 4 * 5, volumeOf(*lathe.build("m", {"s"}), closed), 0.2f);
    EXPECT_TRUE(closed);
    const auto ring = [](float r) {
        return std::vector<Vector3f>{Vector3f(-r, -r, 0), Vector3f(-r, r, 0), Vector3f(r, r, 0),
                                     Vector3f(r, -r, 0)};
    };
    band.band(0, ring(1), ring(2), true, 0.5f);
    EXPECT_NEAR((16 - 4) * 0.5f, volumeOf(*band.build("m", {"s"}), closed), 1e-4f);
    EXPECT_TRUE(closed);
    open.band(0, ring(1), ring(2), false, 0.5f);
    EXPECT_NEAR((16 - 4) * 0.75f * 0.5f, volumeOf(*open.build("m", {"s"}), closed), 1e-4f);
    EXPECT_TRUE(closed);
    bar.bar(0, {Vector3f(0, 0, 0), Vector3f(3, 0, 0), Vector3f(7, 0, 0)}, 0.5f, 2, Vector3f(0, 1, 0));
    EXPECT_NEAR(7.0f, volumeOf(*bar.build("m", {"s"}), closed), 1e-4f);
    EXPECT_TRUE(closed);
}

TEST(Shape, APointedArchRisesFromItsSpringingToItsPoint) {
    const auto arch = scene::pointedArch(2, 5, 4, 8);
    ASSERT_EQ(17u, arch.size());
    EXPECT_NEAR(-2.0f, arch.front().x, 1e-5f);
    EXPECT_NEAR(5.0f, arch.front().y, 1e-5f);
    EXPECT_NEAR(2.0f, arch.back().x, 1e-5f);
    EXPECT_NEAR(0.0f, arch[8].x, 1e-5f);
    EXPECT_NEAR(5.0f + 4.0f * 0.8660254f, arch[8].y, 1e-5f);
}

TEST(Shape, TrianglesWithoutAreaAreLeftOutWithTheirPositions) {
    scene::Shape shape;
    shape.triangle(0, 0, Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(2, 0, 0));
    shape.triangle(0, 0, Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0));
    EXPECT_EQ(3u, shape.build("m", {"s"})->mVertices.size());
}

} // namespace
