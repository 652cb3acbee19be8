#include "o3d_bytes.h"
#include "support.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

using namespace zentrak;
using namespace zentrak::test;

namespace {

std::string write(o3d::Manager& manager) {
    unsigned char* data = nullptr;
    int length = 0;
    manager.write(&data, &length);
    const std::string image = bytes(data, size_t(length));
    delete[] data;
    return image;
}

// Everything in a track, a node or a material as text.

std::string describe(const o3d::TrackBlenderFloat& track) {
    std::ostringstream text;
    text.precision(9);
    text << " {" << track.mValue << " " << track.mInterpolation << track.mExtrapolation;
    for (const auto& key : track.mKeys)
        text << " (" << key.mHandleInTime << " " << key.mHandleInValue << " " << key.mTime << " "
             << key.mValue << " " << key.mHandleOutTime << " " << key.mHandleOutValue << ")";
    return text.str() + "}";
}

std::string describe(const o3d::SceneNode& node) {
    if (node.getType() == 0x5180)
        return "";
    std::ostringstream text;
    text << "[" << std::hex << node.getType() << " '" << node.mName << "'";
    if (node.getType() != 0x5000)
        for (const auto* track :
             {&node.mPosition.mX, &node.mPosition.mY, &node.mPosition.mZ, &node.mRotation.mX,
              &node.mRotation.mY, &node.mRotation.mZ, &node.mScale.mX, &node.mScale.mY, &node.mScale.mZ})
            text << describe(*track);
    if (const auto* camera = dynamic_cast<const o3d::Camera*>(&node))
        text << describe(camera->mAngle.mX);
    if (const auto* light = dynamic_cast<const o3d::Light*>(&node)) {
        text << light->mFlag5151;
        for (const auto* track : {&light->mColor.mR, &light->mColor.mG, &light->mColor.mB, &light->mColor.mA,
                                  &light->mTrack5150.mX, &light->mTrack5160.mX, &light->mAngle.mX})
            text << describe(*track);
    }
    if (const auto* instance = dynamic_cast<const o3d::MeshInstance*>(&node)) {
        text << " '" << instance->mMeshName << "'";
        for (const std::string& name : instance->mMaterials)
            text << " '" << name << "'";
    }
    for (const o3d::SceneNode* child : node.mChildren)
        text << describe(*child);
    return text.str() + "]";
}

std::string describe(const o3d::Material& material) {
    std::ostringstream text;
    text << "'" << material.mName << "' " << material.mFlag1 << material.mFlag2;
    for (const auto* attribute : material.mAttributes) {
        text << " ['" << attribute->mName << "' " << attribute->mColor.x << " " << attribute->mColor.y << " "
             << attribute->mColor.z << " " << attribute->mColor.w;
        for (const o3d::Texture* texture : attribute->mTextures)
            text << " '" << texture->mName << "' '" << texture->mImageName << "' " << texture->mValue;
        text << "]";
    }
    return text.str();
}

// Everything except the meshes.
std::string describe(const o3d::Manager& manager) {
    std::string text;
    for (const o3d::Material* material : manager.mMaterials)
        text += describe(*material) + "\n";
    for (const o3d::Image* image : manager.mImages)
        text += "'" + image->mName + "' '" + image->mFileName + "'\n";
    for (const o3d::Scene* scene : manager.mScenes)
        text += describe(*scene) + "\n";
    return text;
}

void dropMeshes(o3d::Manager& manager) {
    for (o3d::Mesh* mesh : manager.mMeshes)
        delete mesh;
    manager.mMeshes.clear();
    manager.mMeshMap.clear();
}

TEST(RoundTrip, MaterialsImagesAndScenesComeBackAsTheyWere) {
    o3d::Manager first, second;
    load(first, everything());
    dropMeshes(first);
    const std::string before = describe(first);
    EXPECT_GT(before.size(), 1500u);
    load(second, write(first));
    EXPECT_EQ(before, describe(second));
    EXPECT_EQ(0, second.getMaterialIndex("stone"));
    EXPECT_EQ(0, second.getImageIndex("image"));
}

TEST(RoundTrip, WritingTwiceGivesTheSame) {
    o3d::Manager first, second;
    load(first, everything());
    dropMeshes(first);
    const std::string image = write(first);
    load(second, image);
    EXPECT_EQ(image, write(second));
}

// A random node with a random subtree.
o3d::SceneNode* randomNode(std::mt19937& random, int depth);

void fillTrack(o3d::TrackBlenderFloat& track, std::mt19937& random) {
    std::uniform_real_distribution<float> any(-5, 5);
    track.mValue = any(random);
    float time = any(random);
    for (unsigned i = random() % 4; i > 0; --i, time += 3)
        track.mKeys.push_back({time - 1, any(random), time, any(random), time + 1, any(random)});
    if (!track.mKeys.empty()) { // without keys no list is written, and no modes
        track.mInterpolation = int(random() % 4);
        track.mExtrapolation = int(random() % 5);
    }
}

void fillNode(o3d::SceneNode& node, std::mt19937& random, int depth) {
    node.mName = "node" + std::to_string(random() % 1000);
    if (node.getType() != 0x5000)
        for (auto* track :
             {&node.mPosition.mX, &node.mPosition.mY, &node.mPosition.mZ, &node.mRotation.mX,
              &node.mRotation.mY, &node.mRotation.mZ, &node.mScale.mX, &node.mScale.mY, &node.mScale.mZ})
            fillTrack(*track, random);
    for (unsigned i = depth < 5 ? random() % 4 : 0; i > 0; --i)
        node.addChild(randomNode(random, depth + 1));
}

o3d::SceneNode* randomNode(std::mt19937& random, int depth) {
    o3d::SceneNode* node = nullptr;
    switch (random() % 4) {
    case 0: {
        auto* camera = new o3d::Camera;
        fillTrack(camera->mAngle.mX, random);
        node = camera;
        break;
    }
    case 1: {
        auto* light = new o3d::Light;
        light->mFlag5151 = random() % 2 == 0;
        for (auto* track : {&light->mColor.mR, &light->mColor.mG, &light->mColor.mB, &light->mColor.mA,
                            &light->mTrack5150.mX, &light->mTrack5160.mX, &light->mAngle.mX})
            fillTrack(*track, random);
        node = light;
        break;
    }
    case 2: {
        auto* instance = new o3d::MeshInstance;
        instance->mMeshName = "mesh" + std::to_string(random() % 10);
        instance->mMaterials.resize(random() % 5);
        if (!instance->mMaterials.empty())
            instance->mMaterials.back() = "material";
        node = instance;
        break;
    }
    default:
        node = new o3d::Dummy;
    }
    fillNode(*node, random, depth);
    return node;
}

TEST(RoundTrip, RandomScenesComeBackAsTheyWere) {
    std::mt19937 random(12);
    size_t largest = 0;
    for (int round = 0; round < 100; ++round) {
        o3d::Manager first, second;
        o3d::Scene* const scene = new o3d::Scene;
        fillNode(*scene, random, 0);
        first.addScene(scene);
        load(second, write(first));
        EXPECT_EQ(describe(first), describe(second));
        largest = std::max(largest, describe(first).size());
    }
    EXPECT_GT(largest, 10000u);
}

TEST(RoundTrip, WriterOrderIsMeshesMaterialsImagesScenes) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s")) + chunk(0x4000, text("i")) + chunk(0x6000, text("m")) +
                       chunk(0x2000, text("g"))));
    EXPECT_EQ(file(chunk(0x2000, text("g") + chunk(0x6200, u32(0))) +
                   chunk(0x6000, text("m") + chunk(0x6101, u8(0)) + chunk(0x6111, u8(1))) +
                   chunk(0x4000, text("i") + chunk(0xF020, text(""))) + chunk(0x5000, text("s"))),
              write(manager));
}

TEST(RoundTrip, ASceneWritesNoTransformTracksAndOtherNodesThemFirst) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s") + chunk(0xFA00, chunk(0xF006, floats({1, 2, 3}))) +
                                         chunk(0x5130, text("d") + chunk(0x5130, text("e"))))));
    const std::string tracks = chunk(0xFA00, chunk(0xF006, floats({0, 0, 0}))) +
                               chunk(0xFA10, chunk(0xF006, floats({0, 0, 0}))) +
                               chunk(0xFA20, chunk(0xF006, floats({1, 1, 1})));
    EXPECT_EQ(file(chunk(0x5000,
                         text("s") + chunk(0x5130, text("d") + tracks + chunk(0x5130, text("e") + tracks)))),
              write(manager));
}

TEST(RoundTrip, MeshIsWrittenAsTheWriterWouldHaveIt) {
    o3d::Manager manager;
    load(manager, everything());
    const o3d::Mesh* mesh = manager.mMeshes[0];
    for (o3d::Scene* scene : manager.mScenes)
        scene->clear();
    const std::string expected =
        chunk(0x2000, text("mesh") + chunk(0xFF00, floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 1})) +
                          chunk(0x2200, f32(0) + chunk(0xFF30, triangle(0, 1, 2) + triangle(1, 3, 2)) +
                                            chunk(0xFF60, i32(0) + i32(1) + i32(2) + i32(3)) +
                                            chunk(0xFF10, floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0}))) +
                          chunk(0x2200, f32(1) + chunk(0xFF30, triangle(0, 1, 2)) +
                                            chunk(0xFF60, i32(1) + i32(3) + i32(2))) +
                          chunk(0x6200, u32(2) + chunk(0x6210, u32(0) + text("stone")) +
                                            chunk(0x6210, u32(1) + text("stonered"))));
    EXPECT_EQ(0u, write(manager).find(expected) - 12) << mesh->mName; // right after the header and main chunk
}

TEST(RoundTrip, FirstDifferenceMaterialNumberIsWrittenAsAFloatAndReadAsAByte) {
    o3d::Manager manager;
    load(manager, file(chunk(0x2000, text("m") + chunk(0x2200, u8(200)))));
    EXPECT_EQ(200, manager.mMeshes.at(0)->mSubmeshes.at(0)->mMaterial);
    const std::string image = write(manager);
    EXPECT_NE(std::string::npos, image.find(chunk(0x2200, f32(200))));
    // The first byte of 200.0f is 0, and the other three are taken for the start of a chunk.
    o3d::Manager second;
    CaptureStdout capture;
    load(second, image);
    EXPECT_EQ(0, second.mMeshes.at(0)->mSubmeshes.at(0)->mMaterial);
}

TEST(RoundTrip, SecondDifferenceMaterialNamesAreWrittenAsChunksAndReadAsBareTexts) {
    o3d::Manager manager;
    load(manager, file(chunk(0x2000, text("m") + chunk(0x6200, text("ab") + text("c")))));
    manager.mMeshes.at(0)->mMaterials.insert(manager.mMeshes[0]->mMaterials.begin(),
                                             ""); // an empty name is left out
    const std::string payload =
        u32(3) + chunk(0x6210, u32(1) + text("ab")) + chunk(0x6210, u32(2) + text("abc"));
    const std::string image = write(manager);
    EXPECT_NE(std::string::npos, image.find(chunk(0x6200, payload)));

    std::vector<std::string> expected;
    std::string name;
    for (const char character : payload)
        if (character == '\0')
            expected.push_back(name);
        else
            name += character;
    o3d::Manager second;
    load(second, image);
    EXPECT_EQ(expected, second.mMeshes.at(0)->mMaterials);
    EXPECT_NE(manager.mMeshes[0]->mMaterials, second.mMeshes[0]->mMaterials);
}

TEST(RoundTrip, ThirdDifferenceArmaturesAreLost) {
    o3d::Manager first, second;
    load(first, everything());
    dropMeshes(first);
    EXPECT_NE(nullptr, first.mScenes[0]->getChild("skeleton"));
    load(second, write(first));
    EXPECT_EQ(nullptr, second.mScenes[0]->getChild("skeleton"));
    EXPECT_EQ(first.mScenes[0]->mChildren.size() - 1, second.mScenes[0]->mChildren.size());
}

TEST(RoundTrip, FourthDifferenceBoneGroupsAreNotWritten) {
    o3d::Manager manager;
    load(manager, file(chunk(0x2000, text("m"))));
    manager.mMeshes.at(0)->mBoneGroup.push_back(new o3d::BoneGroup);
    manager.mMeshes[0]->mBoneGroup[0]->mWeights.resize(2);
    EXPECT_EQ(file(chunk(0x2000, text("m") + chunk(0x6200, u32(0)))), write(manager));
}

TEST(RoundTrip, OverridesPastAByteAreNotWritten) {
    o3d::Manager first, second;
    load(first, file(chunk(0x5000, text("s") + chunk(0x5120, text("i") + text("m")))));
    auto& instance = dynamic_cast<o3d::MeshInstance&>(*first.mScenes[0]->mChildren[0]);
    instance.mMaterials.resize(300, "x");
    load(second, write(first));
    EXPECT_EQ(256u, dynamic_cast<o3d::MeshInstance&>(*second.mScenes[0]->mChildren[0]).mMaterials.size());
}

} // namespace
