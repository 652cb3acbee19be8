#include "o3d_bytes.h"
#include "support.h"
#include "ztk_system.h"

#include <gtest/gtest.h>

#include <random>

using namespace zentrak;
using namespace zentrak::test;

namespace {

// Uses a scene as a program does: walks it, samples it, looks up names, poses bones, measures boxes.
void use(const o3d::SceneNode& node) {
    mathbase::Matrix4x4Col matrix;
    bool flipped = false;
    for (const float time : {-3.0f, 0.0f, 1.5f, 100.0f})
        node.calculateMatrix(time, matrix, flipped);
    node.isStatic();
    node.getAnimationLength();
    for (const o3d::SceneNode* child : node.mChildren)
        use(*child);
}

void use(o3d::Manager& manager) {
    for (const o3d::Scene* scene : manager.mScenes) {
        use(*scene);
        for (o3d::SceneNode* child : scene->mChildren)
            if (auto* armature = dynamic_cast<o3d::Armature*>(child))
                armature->updatePose();
    }
    for (o3d::Mesh* mesh : manager.mMeshes) {
        EXPECT_NE(nullptr, manager.getMesh(mesh->mName));
        mesh->updateBox();
        for (int i = -1; i < 4; ++i)
            mesh->getMaterial(i);
        try {
            mesh->checkIndices();
        } catch (const Exception&) {
        }
    }
}

// Loads, uses and writes any data.
void survive(const std::string& image) {
    o3d::Manager manager;
    try {
        load(manager, image);
    } catch (const Exception&) {
    }
    use(manager);
    unsigned char* data = nullptr;
    int length = 0;
    manager.write(&data, &length);
    delete[] data;
}

TEST(BadInput, AFileCutAtEveryByteGivesWhatIsThere) {
    const std::string image = everything();
    CaptureStdout capture;
    for (size_t length = 0; length < image.size(); ++length) {
        o3d::Manager manager;
        if (length < 12)
            EXPECT_THROW(load(manager, image.substr(0, length)), Exception) << length;
        else
            EXPECT_NO_THROW(load(manager, image.substr(0, length))) << length;
        use(manager);
    }
    // All but the last byte: only the last component of the last track is lost.
    o3d::Manager manager;
    load(manager, image.substr(0, image.size() - 1));
    EXPECT_EQ(4u, manager.mScenes.at(0)->mChildren.size());
}

TEST(BadInput, EveryByteChangedIsSurvived) {
    const std::string image = everything();
    CaptureStdout capture;
    for (size_t at = 6; at < image.size(); ++at)
        for (const unsigned value : {0x00u, 0x01u, 0x7Fu, 0x80u, 0xFFu, unsigned(image[at] ^ 1)}) {
            std::string changed = image;
            changed[at] = char(value);
            survive(changed);
        }
}

TEST(BadInput, RandomChangesAreSurvived) {
    const std::string image = everything();
    std::mt19937 random(21);
    CaptureStdout capture;
    for (int round = 0; round < 4000; ++round) {
        std::string changed = image;
        for (unsigned i = 1 + random() % 12; i > 0; --i) {
            const size_t at = 6 + random() % (changed.size() - 6);
            switch (random() % 4) {
            case 0:
                changed[at] = char(random());
                break;
            case 1: // a size or a number at a limit
                changed.replace(at, 4, u32(uint32_t(-1) >> (random() % 33 & 31)));
                break;
            case 2:
                changed.erase(at, random() % 20);
                break;
            default:
                changed.insert(at, changed.substr(6 + random() % (changed.size() - 6), random() % 60));
            }
            if (changed.size() < 20)
                break;
        }
        survive(changed);
    }
}

TEST(BadInput, SizesPastTheEndAllocateOnlyWhatIsThere) {
    // Each list claims 4 GB and holds two elements.
    const auto claim = [](unsigned id, const std::string& payload) {
        return u16(id) + u32(0xFFFFFFF0) + payload;
    };
    const auto loaded = [](const std::string& chunks) {
        auto manager = std::make_unique<o3d::Manager>();
        load(*manager, "O3DF\x01\x01" + u16(0x1000) + u32(0xFFFFFFFF) + chunks);
        return manager;
    };
    const std::string six = floats({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(2u, loaded(claim(0x2000, text("m") + claim(0xFF00, six)))->mMeshes.at(0)->mVertices.size());
    const auto submesh = [&](const std::string& list) {
        return loaded(claim(0x2000, text("m") + claim(0x2200, u8(0) + list)));
    };
    EXPECT_EQ(2u, submesh(claim(0xFF30, triangle(0, 1, 2) + triangle(0, 1, 2) + "rest"))
                      ->mMeshes.at(0)
                      ->mSubmeshes.at(0)
                      ->mTriangles.size());
    EXPECT_EQ(2u, submesh(claim(0xFF60, i32(0) + i32(1)))->mMeshes.at(0)->mSubmeshes.at(0)->mIndices.size());
    EXPECT_EQ(2u, submesh(claim(0xFF10, six))->mMeshes.at(0)->mSubmeshes.at(0)->mTexCoords.at(0)->size());
    const auto scene = loaded(
        claim(0x5000, text("s") + claim(0xFA00, claim(0xFB10, u8(1) + u8(0) + key(0, 1) + key(1, 2)))));
    EXPECT_EQ(2u, scene->mScenes.at(0)->mPosition.mX.mKeys.size());
}

TEST(BadInput, AMillionNestedNodesAreCutAtALimit) {
    for (const unsigned id : {0x5130u, 0x5190u}) {
        // Written from the outside in: each chunk claims the rest of the file.
        const std::string head = id == 0x5190 ? text("") + std::string(32, '\0') : text("");
        const size_t levels = 1000000;
        std::string image =
            "O3DF\x01\x01" + u16(0x1000) + u32(0x7FFFFFFF) + u16(0x5000) + u32(0x7FFFFFFF) + text("s");
        if (id == 0x5190)
            image += u16(0x5180) + u32(0x7FFFFFFF) + text("armature");
        for (size_t i = 0; i < levels; ++i)
            image += u16(id) + u32(0x7FFFFFFF) + head;
        CaptureStdout capture;
        o3d::Manager manager;
        load(manager, image);
        EXPECT_NE(std::string::npos,
                  capture.text().find("Chunks nested deeper than 2000, the rest is left out"));
        size_t depth = 0;
        for (const o3d::SceneNode* node = manager.mScenes.at(0); node != nullptr; ++depth)
            node = node->mChildren.empty() ? nullptr : node->mChildren[0];
        if (id == 0x5190) {
            auto& armature = dynamic_cast<o3d::Armature&>(*manager.mScenes[0]->mChildren.at(0));
            depth = 0;
            for (const auto* bone = armature.mBones.at(0); bone != nullptr; ++depth)
                bone = bone->mChildren.empty() ? nullptr : bone->mChildren[0];
        }
        EXPECT_GT(depth, 1900u);
        EXPECT_LE(depth, 2000u);
        use(manager);
    }
}

TEST(BadInput, NodesThatEndBeforeTheirChildrenDoNotMultiply) {
    // Each node only has room for its child's header, and each child claims the rest of the file. Read again
    // after every level, this would create 2^60 nodes.
    std::string image =
        "O3DF\x01\x01" + u16(0x1000) + u32(0x7FFFFFFF) + u16(0x5000) + u32(0x7FFFFFFF) + text("s");
    for (int i = 0; i < 60; ++i)
        image += u16(0x5130) + u32(7) + text("") + u16(0x5130) + u32(0x7FFFFFFF) + text("");
    o3d::Manager manager;
    load(manager, image);
    use(manager);
    size_t nodes = 0;
    std::vector<const o3d::SceneNode*> open = {manager.mScenes.at(0)};
    while (!open.empty()) {
        const o3d::SceneNode* node = open.back();
        open.pop_back();
        ++nodes;
        open.insert(open.end(), node->mChildren.begin(), node->mChildren.end());
    }
    EXPECT_LT(nodes, 1000u);
}

TEST(BadInput, NamesThatPointNowhereOrInACircleAreOnlyNames) {
    o3d::Manager manager;
    load(manager,
         file(chunk(0x5000, text("s") + chunk(0x5120, text("s") + text("missing"))) +
              chunk(0x6000,
                    text("m") +
                        chunk(0x6100, text("m") + chunk(0x7000, text("m") + chunk(0xF030, text("m")))))));
    EXPECT_EQ(nullptr,
              manager.getMesh(dynamic_cast<o3d::MeshInstance&>(*manager.mScenes[0]->mChildren[0]).mMeshName));
    EXPECT_EQ(nullptr, manager.getImage("m"));
}

TEST(BadInput, ANameAsLongAsTheFileIsKept) {
    const std::string name(300000, '%');
    o3d::Manager manager;
    CaptureStdout capture;
    load(manager, file(chunk(0x2000, text(name) + chunk(0x2200, u8(0) + chunk(0xFF60, i32(7)))) +
                       chunk(0x4000, name)));
    EXPECT_EQ(name, manager.mMeshes.at(0)->mName);
    EXPECT_NE(nullptr, manager.getImage(name));
    EXPECT_THROW(manager.mMeshes[0]->addNormals(),
                 Exception); // the message with the name is truncated, not overrun
}

} // namespace
