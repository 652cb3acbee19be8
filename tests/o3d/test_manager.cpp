#include "o3d_bytes.h"
#include "support.h"
#include "ztk_system.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::test;

namespace {

// The text of the exception that loading throws.
std::string failureOf(const std::string& image) {
    o3d::Manager manager;
    try {
        load(manager, image);
    } catch (const Exception& exception) {
        EXPECT_TRUE(manager.mMeshes.empty() && manager.mScenes.empty());
        return exception.what();
    }
    return "nothing thrown";
}

std::string outputOf(const std::string& image) {
    CaptureStdout capture;
    o3d::Manager manager;
    load(manager, image);
    return capture.text();
}

// Is this the only log line of the output? Its function and line number are up to the compiler.
bool isLogLine(const std::string& output, const std::string& level, const std::string& message) {
    const size_t start = output.find("], ");
    return output.rfind("[" + level + "][", 0) == 0 && start != std::string::npos &&
           output.compare(start + 3, message.size() + 6, message + " (o3d_") == 0;
}

TEST(Manager, EmptyFileIsOfVersionZeroAndFormatVoid) {
    EXPECT_EQ("Manager-file is of wrong version (0:0 of format void)", failureOf(""));
    EXPECT_EQ("Manager-file is of wrong version (0:0 of format void)", failureOf("O3DF\x01"));
    o3d::Manager manager;
    EXPECT_THROW(manager.load(nullptr, 0), Exception);
    EXPECT_THROW(manager.load(nullptr, 100), Exception);
    EXPECT_THROW(manager.load(reinterpret_cast<const unsigned char*>("x"), -1), Exception);
}

TEST(Manager, OtherVersionIsRefused) {
    EXPECT_EQ("Manager-file is of wrong version (1:2 of format O3DF)",
              failureOf("O3DF\x01\x02" + chunk(0x1000, "")));
    EXPECT_EQ("Manager-file is of wrong version (2:1 of format O3DF)",
              failureOf("O3DF\x02\x01" + chunk(0x1000, "")));
    EXPECT_EQ("Manager-file is of wrong version (255:0 of format O3DF)",
              failureOf(std::string("O3DF\xFF\0", 6) + chunk(0x1000, "")));
}

TEST(Manager, OtherFormatIsRefused) {
    EXPECT_EQ("Manager-file is of wrong version (1:1 of format O3DG)",
              failureOf("O3DG\x01\x01" + chunk(0x1000, "")));
    EXPECT_EQ("Manager-file is of wrong version (1:1 of format %s%n)",
              failureOf("%s%n\x01\x01" + chunk(0x1000, "")));
}

TEST(Manager, FirstChunkHasToBeTheMainChunk) {
    const std::string message = "There can only be a main-chunk as the top of the hiarchy! Found ";
    EXPECT_EQ(message + "0x2000", failureOf("O3DF\x01\x01" + chunk(0x2000, text("m"))));
    EXPECT_EQ(message + "0xFFAB", failureOf("O3DF\x01\x01" + chunk(0xFFAB, "")));
    EXPECT_EQ(message + "0x0", failureOf("O3DF\x01\x01"));
    EXPECT_EQ(message + "0x0", failureOf("O3DF\x01\x01" + u16(0x1000))); // no room for its size
}

TEST(Manager, MainChunkWithoutChildrenGivesAManagerWithoutAScene) {
    o3d::Manager manager;
    load(manager, file(""));
    EXPECT_TRUE(manager.mScenes.empty());
    EXPECT_TRUE(manager.mMeshes.empty());
    EXPECT_EQ(nullptr, manager.getScene(""));
}

TEST(Manager, EveryChunkOfAFileIsLoaded) {
    o3d::Manager manager;
    {
        CaptureStdout capture;
        load(manager, everything());
        EXPECT_EQ("", capture.text());
    }

    const o3d::Mesh* mesh = manager.getMesh("mesh");
    ASSERT_NE(nullptr, mesh);
    ASSERT_EQ(4u, mesh->mVertices.size());
    EXPECT_EQ(o3d::Vector3f(1, 1, 1), mesh->mVertices[3]);
    EXPECT_EQ((std::vector<std::string>{"stone", "stonered"}), mesh->mMaterials);
    EXPECT_TRUE(mesh->mBoneGroup.empty());
    ASSERT_EQ(2u, mesh->mSubmeshes.size());
    const o3d::Submesh& first = *mesh->mSubmeshes[0];
    EXPECT_EQ(0, first.mMaterial);
    EXPECT_EQ(mesh, first.mParent);
    ASSERT_EQ(2u, first.mTriangles.size());
    EXPECT_EQ(1, first.mTriangles[1].mIndex[0]);
    EXPECT_EQ(3, first.mTriangles[1].mIndex[1]);
    EXPECT_EQ(2, first.mTriangles[1].mIndex[2]);
    ASSERT_EQ(4u, first.mIndices.size());
    EXPECT_EQ(3, first.mIndices[3].mValue);
    ASSERT_EQ(1u, first.mTexCoords.size());
    ASSERT_EQ(4u, first.mTexCoords[0]->size());
    EXPECT_EQ(o3d::Vector3f(1, 1, 0), (*first.mTexCoords[0])[3]);
    EXPECT_EQ(1, mesh->mSubmeshes[1]->mMaterial);
    EXPECT_TRUE(mesh->mSubmeshes[1]->mTexCoords.empty());

    const o3d::Material* material = manager.getMaterial("stone");
    ASSERT_NE(nullptr, material);
    EXPECT_TRUE(material->mFlag1);
    EXPECT_FALSE(material->mFlag2);
    ASSERT_EQ(1u, material->mAttributes.size());
    EXPECT_EQ("diffuse", material->mAttributes[0]->mName);
    EXPECT_EQ(0.25f, material->mAttributes[0]->mColor.y);
    ASSERT_EQ(1u, material->mAttributes[0]->mTextures.size());
    EXPECT_EQ("image", material->mAttributes[0]->mTextures[0]->mImageName);
    ASSERT_NE(nullptr, manager.getImage("image"));
    EXPECT_EQ("wall.png", manager.getImage("image")->mFileName);

    const o3d::Scene* scene = manager.getScene("scene");
    ASSERT_NE(nullptr, scene);
    EXPECT_EQ(7.0f, scene->mPosition.mX.mValue);
    ASSERT_EQ(4u, scene->mChildren.size());
    const auto& camera = dynamic_cast<const o3d::Camera&>(*scene->mChildren[0]);
    EXPECT_EQ("camera", camera.mName);
    EXPECT_EQ(2u, camera.mAngle.mX.mKeys.size());
    EXPECT_EQ(0.5f, camera.mAngle.mX.mValue);
    const auto& light = dynamic_cast<const o3d::Light&>(*scene->mChildren[1]);
    EXPECT_TRUE(light.mFlag5151);
    EXPECT_EQ(2u, light.mColor.mR.mKeys.size());
    EXPECT_EQ(2.0f, light.mColor.mG.mKeys.at(1).mTime);
    EXPECT_EQ(1u, light.mColor.mB.mKeys.size());
    EXPECT_EQ(3.0f, light.mColor.mA.mKeys.at(0).mTime);
    EXPECT_EQ(0.4f, light.mColor.mA.mValue);
    EXPECT_EQ(0.5f, light.mTrack5150.mX.mValue);
    EXPECT_EQ(0.5f, light.mTrack5160.mX.mValue);
    EXPECT_EQ(0.5f, light.mAngle.mX.mValue);
    const auto& armature = dynamic_cast<const o3d::Armature&>(*scene->mChildren[2]);
    ASSERT_EQ(1u, armature.mBones.size());
    EXPECT_EQ("leaf", armature.mBones[0]->mChildren.at(0)->mName);
    const o3d::SceneNode* node = scene->mChildren[3]->getChild("wall");
    ASSERT_NE(nullptr, node);
    const auto& instance = dynamic_cast<const o3d::MeshInstance&>(*node);
    EXPECT_EQ("mesh", instance.mMeshName);
    EXPECT_EQ("stone", instance.getMaterial(1));
    EXPECT_EQ(1u, instance.mChildren.size());
    EXPECT_EQ(9.0f, instance.mScale.mZ.mValue);
    EXPECT_EQ(1.0f, instance.mRotation.mY.mKeys.at(0).mValue);
}

TEST(Manager, ChildrenOfTheMainChunkComeInAnyOrder) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s")) + chunk(0x4000, text("i")) + chunk(0x2000, text("m")) +
                       chunk(0x6000, text("a")) + chunk(0x4000, text("j"))));
    EXPECT_EQ(0, manager.getMeshIndex("m"));
    EXPECT_EQ(0, manager.getMaterialIndex("a"));
    EXPECT_EQ(1, manager.getImageIndex("j"));
    EXPECT_EQ(manager.mImages[1], manager.getImage("j"));
    EXPECT_NE(nullptr, manager.getScene("s"));
}

TEST(Manager, DataAfterTheMainChunkIsIgnored) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s"))) + chunk(0x1000, chunk(0x5000, text("t"))) + "rubbish");
    EXPECT_EQ(1u, manager.mScenes.size());
}

TEST(Manager, ASecondLoadAddsToTheFirst) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s")) + chunk(0x2000, text("m"))));
    load(manager, file(chunk(0x5000, text("t")) + chunk(0x2000, text("n"))));
    EXPECT_EQ(2u, manager.mScenes.size());
    EXPECT_EQ(0, manager.getMeshIndex("m"));
    EXPECT_EQ(1, manager.getMeshIndex("n"));
}

TEST(Manager, ARefusedFileLeavesWhatWasThere) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s"))));
    EXPECT_THROW(load(manager, "O3DF\x01\x02"), Exception);
    EXPECT_EQ(1u, manager.mScenes.size());
}

TEST(Manager, OfTwoMeshesWithOneNameTheLaterIsFoundAndBothAreDestroyed) {
    o3d::Manager manager;
    load(manager,
         file(chunk(0x2000, text("m") + chunk(0xFF00, floats({1, 2, 3}))) + chunk(0x2000, text("m"))));
    ASSERT_EQ(2u, manager.mMeshes.size());
    EXPECT_EQ(manager.mMeshes[1], manager.getMesh("m"));
    EXPECT_EQ(1, manager.getMeshIndex("m"));
    EXPECT_EQ(1u, manager.mMeshes[0]->mVertices.size());
    manager.clear(); // sanitizers see a Mesh that is leaked or freed twice
    EXPECT_TRUE(manager.mMeshes.empty());
    EXPECT_EQ(nullptr, manager.getMesh("m"));
}

TEST(Manager, ClearEmptiesListsAndMaps) {
    o3d::Manager manager;
    load(manager, everything());
    manager.clear();
    EXPECT_TRUE(manager.mMeshes.empty() && manager.mMaterials.empty() && manager.mScenes.empty() &&
                manager.mImages.empty());
    EXPECT_TRUE(manager.mMeshMap.empty() && manager.mMaterialMap.empty() && manager.mImageMap.empty());
    load(manager, everything());
    EXPECT_EQ(0, manager.getMeshIndex("mesh"));
}

TEST(Manager, SceneWithAnEmptyNameIsFoundByIt) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s")) + chunk(0x5000, text(""))));
    EXPECT_EQ(manager.mScenes[1], manager.getScene(""));
}

TEST(Manager, OfTwoScenesWithOneNameTheFirstIsFound) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s")) + chunk(0x5000, text("s"))));
    const o3d::Manager& constant = manager;
    EXPECT_EQ(manager.mScenes[0], manager.getScene("s"));
    EXPECT_EQ(manager.mScenes[0], constant.getScene("s"));
    EXPECT_EQ(nullptr, constant.getScene("S"));
}

TEST(Manager, NamesThatAreNotThereGiveNullAndMinusOne) {
    o3d::Manager manager;
    load(manager, everything());
    const o3d::Manager& constant = manager;
    EXPECT_EQ(-1, manager.getImageIndex("nothing"));
    EXPECT_EQ(-1, manager.getMeshIndex("nothing"));
    EXPECT_EQ(-1, manager.getMaterialIndex("nothing"));
    EXPECT_EQ(nullptr, constant.getImage("nothing"));
    EXPECT_EQ(nullptr, constant.getMesh("nothing"));
    EXPECT_EQ(nullptr, constant.getMaterial("nothing"));
    EXPECT_EQ(manager.mMaterials[0], constant.getMaterial("stone"));
    EXPECT_EQ(manager.mMeshes[0], constant.getMesh("mesh"));
    EXPECT_EQ(manager.mImages[0], constant.getImage("image"));
}

TEST(Manager, IndexOfMinusOneInTheMapGivesNull) {
    o3d::Manager manager;
    manager.mMeshMap["gone"] = -1;
    manager.mMeshMap["past"] = 7;
    EXPECT_EQ(nullptr, manager.getMesh("gone"));
    EXPECT_EQ(-1, manager.getMeshIndex("gone"));
    EXPECT_EQ(nullptr, manager.getMesh("past"));
}

TEST(Manager, AddSceneTakesTheScene) {
    o3d::Manager manager;
    o3d::Scene* const scene = new o3d::Scene;
    scene->mName = "made";
    manager.addScene(scene);
    manager.addScene(nullptr);
    EXPECT_EQ(scene, manager.getScene("made"));
    EXPECT_EQ(1u, manager.mScenes.size());
}

TEST(Manager, UnknownChunksAreReportedInTheWayOfTheirLevel) {
    const std::string unknown = chunk(0xABC0, "payload");
    const auto material = [](const std::string& children) {
        return file(chunk(0x6000, text("m") + children));
    };
    EXPECT_TRUE(isLogLine(outputOf(file(unknown)), "warning", "Unknown chunk with ID=0xABC0\n"));
    EXPECT_TRUE(isLogLine(outputOf(file(chunk(0x2000, text("m") + unknown))), "warning",
                          "mesh::Unknown chunk with ID=0xABC0\n"));
    EXPECT_TRUE(isLogLine(outputOf(file(chunk(0x2000, text("m") + chunk(0x2200, u8(0) + unknown)))),
                          "warning", "Submesh: Unknown chunk with ID=0xABC0\n"));
    EXPECT_TRUE(isLogLine(outputOf(material(unknown)), "warning", "Material:Unknown chunk with ID=0xABC0\n"));
    EXPECT_TRUE(isLogLine(outputOf(material(chunk(0x6100, text("a") + unknown))), "warning",
                          "material-attribute: Unknown chunk with ID=0xABC0\n"));
    EXPECT_EQ("Unknown chunk with ID=0xABC0\n",
              outputOf(material(chunk(0x6100, text("a") + chunk(0x7000, text("t") + unknown)))));
    EXPECT_EQ("Unknown chunk with ID=0xABC0\n", outputOf(file(chunk(0x4000, text("i") + unknown))));
    const std::string bone = chunk(0x5190, text("b") + floats({0, 0, 0, 1, 0, 0, 0, 1}) + unknown);
    EXPECT_EQ("Other chunk with ID=0xABC0\n",
              outputOf(file(chunk(0x5000, text("s") + chunk(0x5180, text("a") + bone)))));
}

TEST(Manager, UnknownChunksInNodesAndTracksAreIgnoredSilently) {
    const std::string unknown = chunk(0xABC0, "payload");
    const auto scene = [](const std::string& children) { return file(chunk(0x5000, text("s") + children)); };
    EXPECT_EQ("", outputOf(scene(unknown)));
    for (const unsigned type : {0x5110u, 0x5130u, 0x5140u, 0x5180u})
        EXPECT_EQ("", outputOf(scene(chunk(type, text("n") + unknown))));
    EXPECT_EQ("", outputOf(scene(chunk(0x5120, text("n") + text("m") + unknown))));
    for (const unsigned track : {0xFA00u, 0xFA10u, 0xFA20u})
        EXPECT_EQ("", outputOf(scene(chunk(track, unknown))));
    EXPECT_EQ("",
              outputOf(scene(chunk(0x5140, text("l") + chunk(0xFA30, unknown) + chunk(0xFA40, unknown)))));
    const std::string bone = text("b") + floats({0, 0, 0, 1, 0, 0, 0, 1}) + chunk(0xFA50, unknown);
    EXPECT_EQ("", outputOf(scene(chunk(0x5180, text("a") + chunk(0x5190, bone)))));
}

TEST(Manager, BoneGroupInAMeshIsSkippedSilently) {
    EXPECT_EQ("", outputOf(file(chunk(0x2000, text("m") + chunk(0x2300, i32(1) + i32(2) + i32(3))))));
}

TEST(Manager, UnknownChunksAreSkippedWhole) {
    const std::string unknown = chunk(0xABC0, chunk(0x2000, text("no"))); // would be a Mesh, were it read
    o3d::Manager manager;
    load(manager, file(unknown + chunk(0x2000, text("m") + unknown + chunk(0xFF00, floats({1, 2, 3})))));
    EXPECT_EQ(nullptr, manager.getMesh("no"));
    ASSERT_NE(nullptr, manager.getMesh("m"));
    EXPECT_EQ(1u, manager.getMesh("m")->mVertices.size());
}

TEST(Manager, ChunkWithIdZeroEndsThePayload) {
    o3d::Manager manager;
    load(manager, file(chunk(0x2000, text("a")) + chunk(0, "xx") + chunk(0x2000, text("b"))));
    EXPECT_EQ(1u, manager.mMeshes.size());
}

TEST(Manager, NameWithoutItsZeroByteEndsWithTheChunk) {
    o3d::Manager manager;
    load(manager, file(chunk(0x4000, "cut") + chunk(0x4000, text("whole")) + chunk(0x4000, "")));
    EXPECT_NE(nullptr, manager.getImage("cut"));
    EXPECT_NE(nullptr, manager.getImage("whole"));
    EXPECT_NE(nullptr, manager.getImage(""));
}

TEST(Manager, AnEmptyManagerWritesAHeaderThatLoadRefuses) {
    o3d::Manager manager;
    unsigned char* data = nullptr;
    int length = 77;
    manager.write(&data, &length);
    const std::string image = bytes(data, size_t(length));
    delete[] data;
    EXPECT_EQ("O3DF\1\1", image); // an empty main chunk leaves no trace
    EXPECT_EQ("There can only be a main-chunk as the top of the hiarchy! Found 0x0", failureOf(image));
}

} // namespace
