#include "o3d_bytes.h"
#include "support.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::test;
using o3d::Vector3f;

namespace {

// The first mesh of a file, with these children.
std::unique_ptr<o3d::Manager> meshWith(const std::string& children) {
    auto manager = std::make_unique<o3d::Manager>();
    load(*manager, file(chunk(0x2000, text("m") + children)));
    return manager;
}

std::vector<std::string> namesOf(const std::string& children) {
    return meshWith(children)->mMeshes.at(0)->mMaterials;
}

TEST(Mesh, ANewOneIsEmpty) {
    const o3d::Mesh mesh;
    EXPECT_TRUE(mesh.mName.empty() && mesh.mMaterials.empty() && mesh.mVertices.empty() &&
                mesh.mSubmeshes.empty() && mesh.mBoneGroup.empty());
    EXPECT_EQ(Vector3f(0, 0, 0), mesh.mBoxMin);
    EXPECT_EQ(Vector3f(0, 0, 0), mesh.mBoxMax);
}

TEST(Mesh, NameListIsNotEmptiedBetweenNames) {
    EXPECT_EQ((std::vector<std::string>{"a", "ab"}), namesOf(chunk(0x6200, text("a") + text("b"))));
    EXPECT_EQ((std::vector<std::string>{"", "", "x", "x"}),
              namesOf(chunk(0x6200, text("") + text("") + text("x") + text(""))));
}

TEST(Mesh, UnfinishedNameIsDropped) {
    EXPECT_EQ((std::vector<std::string>{"a"}), namesOf(chunk(0x6200, text("a") + "bc")));
    EXPECT_TRUE(namesOf(chunk(0x6200, "bc")).empty());
}

TEST(Mesh, ASecondNameListStartsAfresh) {
    EXPECT_EQ((std::vector<std::string>{"a", "ab", "c", "cd"}),
              namesOf(chunk(0x6200, text("a") + text("b")) + chunk(0x6200, text("c") + text("d"))));
}

TEST(Mesh, TheNamesThatAByteCanNumberAllFit) {
    std::string list;
    for (int i = 0; i < 256; ++i)
        list += text("a name of some length");
    const auto names = namesOf(chunk(0x6200, list));
    ASSERT_EQ(256u, names.size());
    EXPECT_EQ(256 * 21u, names[255].size());
}

TEST(Mesh, TheNamesThatAByteCanNumberFitHoweverLongTheirBeginning) {
    std::string list = text(std::string(100000, 'a'));
    for (int i = 1; i < 256; ++i)
        list += text("");
    const auto names = namesOf(chunk(0x6200, list));
    ASSERT_EQ(256u, names.size());
    EXPECT_EQ(100000u, names[255].size());
}

TEST(Mesh, ANameListThatWouldGrowWithoutBoundIsCut) {
    std::string list;
    for (int i = 0; i < 100000; ++i)
        list += text("a"); // 5 GB of names from 200 KB
    CaptureStdout capture;
    const auto manager = meshWith(chunk(0x6200, list) + chunk(0xFF00, floats({1, 2, 3})));
    const auto& names = manager->mMeshes.at(0)->mMaterials;
    size_t total = 0;
    for (const std::string& name : names)
        total += name.size();
    EXPECT_GT(names.size(), 256u);
    EXPECT_LE(total, 256 * list.size());
    EXPECT_EQ(1u, manager->mMeshes[0]->mVertices.size());
    EXPECT_NE(std::string::npos, capture.text().find("Mesh 'm' has too many material names"));
}

TEST(Mesh, MaterialPastTheEndIsEmpty) {
    const auto manager = meshWith(chunk(0x6200, text("a")));
    const o3d::Mesh& mesh = *manager->mMeshes.at(0);
    EXPECT_EQ("a", mesh.getMaterial(0));
    EXPECT_EQ("", mesh.getMaterial(1));
    EXPECT_EQ("", mesh.getMaterial(-1));
    EXPECT_EQ(&mesh.getMaterial(1), &mesh.getMaterial(1000));
}

TEST(Mesh, RemainderOfAListIsDropped) {
    const auto manager = meshWith(chunk(0xFF00, floats({1, 2, 3, 4, 5})) +
                                  chunk(0x2200, u8(0) + chunk(0xFF30, triangle(0, 0, 0) + "abcdefghijkl") +
                                                    chunk(0xFF60, i32(0) + "abc") +
                                                    chunk(0xFF10, floats({1, 2, 3}) + "abcdefghijk")));
    const o3d::Mesh& mesh = *manager->mMeshes.at(0);
    EXPECT_EQ(1u, mesh.mVertices.size());
    EXPECT_EQ(1u, mesh.mSubmeshes.at(0)->mTriangles.size());
    EXPECT_EQ(1u, mesh.mSubmeshes[0]->mIndices.size());
    EXPECT_EQ(1u, mesh.mSubmeshes[0]->mTexCoords.at(0)->size());
}

TEST(Mesh, LargeListsOfTrianglesComeOverWhole) {
    std::string list;
    for (int i = 0; i < 1000; ++i)
        list += u8(unsigned(i)) + i32(i) + i32(i + 1) + i32(-i);
    const auto manager = meshWith(chunk(0x2200, u8(3) + chunk(0xFF30, list)));
    const auto& triangles = manager->mMeshes.at(0)->mSubmeshes.at(0)->mTriangles;
    ASSERT_EQ(1000u, triangles.size());
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(static_cast<unsigned char>(i), triangles[i].mFlag);
        EXPECT_EQ(i, triangles[i].mIndex[0]);
        EXPECT_EQ(i + 1, triangles[i].mIndex[1]);
        EXPECT_EQ(-i, triangles[i].mIndex[2]);
    }
}

TEST(Mesh, EveryTextureCoordinateChunkAddsAList) {
    const auto manager = meshWith(
        chunk(0x2200, u8(0) + chunk(0xFF10, floats({1, 2, 3})) + chunk(0xFF10, floats({4, 5, 6, 7, 8, 9}))));
    const auto& lists = manager->mMeshes.at(0)->mSubmeshes.at(0)->mTexCoords;
    ASSERT_EQ(2u, lists.size());
    EXPECT_EQ(Vector3f(1, 2, 3), (*lists[0])[0]);
    EXPECT_EQ(2u, lists[1]->size());
}

TEST(Mesh, BoxOfASubmeshCoversVerticesThatNoTriangleUses) {
    const auto manager = meshWith(chunk(0xFF00, floats({1, 2, 3, -4, 8, 0, 100, 100, 100, 2, -9, 7})) +
                                  chunk(0x2200, u8(0) + chunk(0xFF60, i32(0) + i32(1) + i32(3))));
    const o3d::Submesh& submesh = *manager->mMeshes.at(0)->mSubmeshes.at(0);
    EXPECT_EQ(Vector3f(-4, -9, 0), submesh.mBoxMin);
    EXPECT_EQ(Vector3f(2, 8, 7), submesh.mBoxMax);
}

TEST(Mesh, BoxOfASubmeshWithoutIndicesIsZero) {
    const auto manager =
        meshWith(chunk(0xFF00, floats({1, 2, 3})) + chunk(0x2200, u8(0) + chunk(0xFF60, i32(0))));
    o3d::Submesh& submesh = *manager->mMeshes.at(0)->mSubmeshes.at(0);
    EXPECT_EQ(Vector3f(1, 2, 3), submesh.mBoxMax);
    submesh.mIndices.clear();
    submesh.updateBox();
    EXPECT_EQ(Vector3f(0, 0, 0), submesh.mBoxMin);
    EXPECT_EQ(Vector3f(0, 0, 0), submesh.mBoxMax);
}

TEST(Mesh, BoxIsTheUnionOfItsSubmeshes) {
    const auto manager = meshWith(chunk(0xFF00, floats({1, 2, 3, -4, 8, 5, 3, -9, 7})) +
                                  chunk(0x2200, u8(0) + chunk(0xFF60, i32(0))) +
                                  chunk(0x2200, u8(0) + chunk(0xFF60, i32(1) + i32(2))));
    o3d::Mesh& mesh = *manager->mMeshes.at(0);
    EXPECT_EQ(Vector3f(-4, -9, 3), mesh.mBoxMin); // not the origin: it starts with the first Submesh's box
    EXPECT_EQ(Vector3f(3, 8, 7), mesh.mBoxMax);
    for (o3d::Submesh* submesh : mesh.mSubmeshes)
        delete submesh;
    mesh.mSubmeshes.clear();
    mesh.updateBox();
    EXPECT_EQ(Vector3f(-4, -9, 3), mesh.mBoxMin); // without a Submesh it stays
}

TEST(Mesh, IndicesOutsideTheVerticesDoNotCountInTheBox) {
    // A Submesh before the vertices, and indices out of range.
    const auto early =
        meshWith(chunk(0x2200, u8(0) + chunk(0xFF60, i32(0))) + chunk(0xFF00, floats({1, 2, 3})));
    const auto wrong =
        meshWith(chunk(0xFF00, floats({1, 2, 3})) +
                 chunk(0x2200, u8(0) + chunk(0xFF60, i32(-1) + i32(1) + i32(0) + i32(2147483647) +
                                                         i32(-2147483647 - 1))));
    const o3d::Mesh& first = *early->mMeshes.at(0);
    EXPECT_EQ(Vector3f(0, 0, 0), first.mBoxMax);
    EXPECT_EQ(1u, first.mVertices.size());
    EXPECT_EQ(Vector3f(1, 2, 3), wrong->mMeshes.at(0)->mBoxMin);
    EXPECT_EQ(Vector3f(1, 2, 3), wrong->mMeshes.at(0)->mBoxMax);
}

TEST(Mesh, ClearOfASubmeshKeepsItsParentAndMaterial) {
    o3d::Manager manager;
    load(manager, everything());
    o3d::Submesh& submesh = *manager.mMeshes.at(0)->mSubmeshes.at(1);
    submesh.mTangentSpaces.resize(3);
    submesh.clear();
    EXPECT_EQ(manager.mMeshes[0], submesh.mParent);
    EXPECT_EQ(1, submesh.mMaterial);
    EXPECT_TRUE(submesh.mTriangles.empty() && submesh.mIndices.empty() && submesh.mTangentSpaces.empty() &&
                submesh.mTexCoords.empty());
    EXPECT_EQ(Vector3f(0, 0, 0), submesh.mBoxMax);
}

TEST(Mesh, ClearEmptiesEverything) {
    o3d::Manager manager;
    load(manager, everything());
    o3d::Mesh& mesh = *manager.mMeshes.at(0);
    mesh.mBoneGroup.push_back(new o3d::BoneGroup);
    mesh.clear();
    EXPECT_TRUE(mesh.mName.empty() && mesh.mMaterials.empty() && mesh.mVertices.empty() &&
                mesh.mSubmeshes.empty() && mesh.mBoneGroup.empty());
    EXPECT_EQ(Vector3f(0, 0, 0), mesh.mBoxMax);
}

} // namespace
