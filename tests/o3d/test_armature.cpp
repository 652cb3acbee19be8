#include "cl_readbuffer.h"
#include "cl_writebuffer.h"
#include "o3d_bytes.h"

#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::test;
using o3d::Armature;
using o3d::Quatf;
using o3d::Vector3f;

namespace {

void expectNear(const Vector3f& expected, const Vector3f& found) {
    EXPECT_NEAR(expected.x, found.x, 1e-6f);
    EXPECT_NEAR(expected.y, found.y, 1e-6f);
    EXPECT_NEAR(expected.z, found.z, 1e-6f);
}

Armature::Bone* addBone(std::vector<Armature::Bone*>& bones, const Vector3f& head, float length) {
    Armature::Bone* const bone = new Armature::Bone;
    bone->mHead = head;
    bone->mLength = length;
    bones.push_back(bone);
    return bone;
}

TEST(Armature, ANewBoneHasNoRotationAndNoPosition) {
    const Armature::Bone bone;
    EXPECT_EQ(Vector3f(0, 0, 0), bone.mHead);
    EXPECT_EQ(Vector3f(0, 0, 0), bone.mPosePosition);
    EXPECT_EQ(Quatf(1, 0, 0, 0), bone.mRotation);
    EXPECT_EQ(Quatf(1, 0, 0, 0), bone.mPoseRotation);
    EXPECT_EQ(Quatf(1, 0, 0, 0), bone.mRotationTrack.getValue(0));
}

TEST(Armature, ABoneExtendsAlongNegativeZAndItsChildStartsAtTheTail) {
    Armature armature;
    Armature::Bone* const root = addBone(armature.mBones, Vector3f(1, 0, 0), 2);
    Armature::Bone* const child = addBone(root->mChildren, Vector3f(0, 0, 0), 1);
    armature.updatePose();
    expectNear(Vector3f(1, 0, 0), root->mPosePosition);
    expectNear(Vector3f(1, 0, -2), child->mPosePosition); // the root's tail
}

TEST(Armature, WithoutBonesTheresNothingToPose) {
    Armature armature;
    armature.updatePose();
    EXPECT_TRUE(armature.mBones.empty());
}

TEST(Armature, RotationsAddUpAlongTheBones) {
    Armature armature;
    Armature::Bone* const root = addBone(armature.mBones, Vector3f(0, 0, 0), 3);
    Armature::Bone* const child = addBone(root->mChildren, Vector3f(1, 0, 0), 2);
    Armature::Bone* const leaf = addBone(child->mChildren, Vector3f(0, 0, 0), 1);
    root->mRotation.setRotX(1.57079633f); // -z goes to y
    child->mRotation.setRotX(1.57079633f);
    armature.updatePose();
    expectNear(Vector3f(0, 0, 0), root->mPosePosition);
    expectNear(Vector3f(1, 3, 0), child->mPosePosition);
    expectNear(Vector3f(1, 3, 2), leaf->mPosePosition); // -z goes to z by both
    expectNear(Vector3f(1, 0, 0), leaf->mPoseRotation * Vector3f(1, 0, 0));
    expectNear(Vector3f(0, -1, 0), leaf->mPoseRotation * Vector3f(0, 1, 0));
}

TEST(Armature, TheRotationTrackPlaysNoPartInThePose) {
    Armature armature;
    Armature::Bone* const root = addBone(armature.mBones, Vector3f(0, 0, 0), 3);
    root->mRotationTrack.mW.mValue = 0;
    root->mRotationTrack.mX.mValue = 1;
    armature.updatePose();
    EXPECT_EQ(Quatf(1, 0, 0, 0), root->mPoseRotation);
}

TEST(Armature, BonesAreLoadedWithTheirPlainValues) {
    o3d::Manager manager;
    load(manager, everything());
    const auto& armature = dynamic_cast<const Armature&>(*manager.mScenes[0]->getChild("skeleton"));
    ASSERT_EQ(1u, armature.mBones.size());
    const Armature::Bone& root = *armature.mBones[0];
    EXPECT_EQ("root", root.mName);
    EXPECT_EQ(Vector3f(1, 0, 0), root.mHead);
    EXPECT_EQ(Quatf(1, 0, 0, 0), root.mRotation);
    EXPECT_EQ(2.0f, root.mLength);
    EXPECT_EQ(2u, root.mRotationTrack.mW.mKeys.size());
    EXPECT_EQ(7.0f, armature.mPosition.mX.mValue);
}

TEST(Armature, WritesNothing) {
    o3d::Manager manager;
    load(manager, everything());
    chunklib::WriteBuffer buffer("O3DF", 1, 1, 3);
    manager.mScenes[0]->getChild("skeleton")->writeChunk(buffer);
    EXPECT_EQ(6u, buffer.mData.size());
}

TEST(BoneGroup, CountsItsWeightsByTheSizeOfTheChunk) {
    const std::string stream = "O3DF\x01\x01" + chunk(0x2300, i32(-5) + u32(1) + u32(2) + u32(3) + u32(4));
    chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
    buffer.openChunk();
    o3d::BoneGroup group;
    group.loadChunk(buffer);
    EXPECT_EQ(-5, group.mGroup);
    ASSERT_EQ(2u, group.mWeights.size());
    EXPECT_EQ(3u, group.mWeights[1].mFirst);
    EXPECT_EQ(4u, group.mWeights[1].mSecond);

    chunklib::WriteBuffer writer("O3DF", 1, 1, 1);
    group.writeChunk(writer);
    EXPECT_EQ(stream, std::string(writer.mData.begin(), writer.mData.end()));
    group.clear();
    EXPECT_EQ(0, group.mGroup);
    EXPECT_TRUE(group.mWeights.empty());
}

TEST(BoneGroup, HalfAWeightAtTheEndCounts) {
    const std::string stream = "O3DF\x01\x01" + chunk(0x2300, i32(7) + u32(1) + u32(2) + u32(3));
    chunklib::ReadBuffer buffer(stream.data(), int(stream.size()));
    buffer.openChunk();
    o3d::BoneGroup group;
    group.loadChunk(buffer);
    ASSERT_EQ(2u, group.mWeights.size()); // 16 bytes by 8
    EXPECT_EQ(3u, group.mWeights[1].mFirst);
    EXPECT_EQ(0u, group.mWeights[1].mSecond);
}

TEST(BoneGroupDeathTest, AMeshFromAFileHasNoneToGive) {
    o3d::Manager manager;
    load(manager, everything());
    o3d::Mesh& mesh = *manager.mMeshes[0];
    EXPECT_DEATH(mesh.getBoneGroup(0), "groupID < \\(int\\)mBoneGroup\\.size\\(\\)");
    EXPECT_DEATH(mesh.getBoneGroup(-1), "groupID >= 0");
}

TEST(BoneGroupDeathTest, AnEmptyPlaceHasNoneToGive) {
    o3d::Mesh mesh;
    mesh.mBoneGroup.push_back(nullptr);
    EXPECT_DEATH(mesh.getBoneGroup(0), "mBoneGroup\\[groupID\\]!=0");
}

TEST(BoneGroup, AMeshGivesTheWeightsOfItsGroups) {
    o3d::Mesh mesh;
    mesh.mBoneGroup.push_back(new o3d::BoneGroup);
    mesh.mBoneGroup[0]->mWeights.resize(3);
    EXPECT_EQ(3u, mesh.getBoneGroup(0).size());
    const o3d::Mesh& constant = mesh;
    EXPECT_EQ(&mesh.getBoneGroup(0), &constant.getBoneGroup(0));
}

TEST(BoneGroup, HasBoneGroupIsFalseInsideTheListAndPastIt) {
    o3d::Mesh mesh;
    mesh.mBoneGroup.push_back(new o3d::BoneGroup);
    for (const int group : {-1, 0, 1, 2, 1000000})
        EXPECT_FALSE(mesh.hasBoneGroup(group)) << group;
}

} // namespace
