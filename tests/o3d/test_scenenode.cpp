#include "mb_matrix4x4col.h"
#include "o3d_bytes.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;

namespace {

void expectMatrix(const float (&expected)[16], const Matrix4x4Col& matrix, float tolerance) {
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(expected[i], matrix.mData[i], tolerance) << i;
}

// One linear track from `from` at time 0 to `to` at time `length`.
void animate(o3d::TrackBlenderFloat& track, float from, float to, float length) {
    track.mInterpolation = o3d::TrackBlenderFloat::INTERPOLATION_LINEAR;
    track.mKeys = {{0, from, 0, from, 0, from}, {length, to, length, to, length, to}};
}

TEST(SceneNode, NodeWithoutKeysIsAnIdentityMatrix) {
    o3d::Dummy node;
    Matrix4x4Col matrix;
    bool flipped = true;
    node.calculateMatrix(3.0f, matrix, flipped);
    EXPECT_FALSE(flipped);
    expectMatrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, matrix, 0.0f);
}

TEST(SceneNode, NewNodesHaveTheirDefaults) {
    o3d::Dummy node;
    EXPECT_EQ(mathbase::RotationOrder::YZX, node.mRotation.mOrder.value);
    EXPECT_EQ(Vector3f(0, 0, 0), node.mPosition.getValue(1));
    EXPECT_EQ(Vector3f(0, 0, 0), node.mRotation.getValue(1).angles);
    EXPECT_EQ(Vector3f(1, 1, 1), node.mScale.getValue(1));
    EXPECT_EQ(-1, node.mScale.mZ.mIndex);
    o3d::Camera camera;
    EXPECT_FLOAT_EQ(1.57079633f, camera.mAngle.getValue(0));
    o3d::Light light;
    EXPECT_FALSE(light.mFlag5151);
    EXPECT_EQ(1.0f, light.mColor.getValue(0).x);
    EXPECT_EQ(1.0f, light.mColor.getValue(0).w);
    EXPECT_EQ(50.0f, light.mTrack5150.getValue(0));
    EXPECT_EQ(1.0f, light.mTrack5160.getValue(0));
    EXPECT_FLOAT_EQ(0.785398163f, light.mAngle.getValue(0));
}

TEST(SceneNode, TypeIsTheIdOfTheChunk) {
    EXPECT_EQ(0x5000, o3d::Scene().getType());
    EXPECT_EQ(0x5110, o3d::Camera().getType());
    EXPECT_EQ(0x5120, o3d::MeshInstance().getType());
    EXPECT_EQ(0x5130, o3d::Dummy().getType());
    EXPECT_EQ(0x5140, o3d::Light().getType());
    EXPECT_EQ(0x5180, o3d::Armature().getType());
}

TEST(SceneNode, MatrixIsTranslationTimesRotationTimesScale) {
    o3d::Dummy node;
    node.mPosition.mX.mValue = 10;
    node.mPosition.mY.mValue = 20;
    node.mPosition.mZ.mValue = 30;
    node.mRotation.mZ.mValue = 1.57079633f; // x goes to y
    node.mScale.mX.mValue = 2;
    node.mScale.mY.mValue = 3;
    node.mScale.mZ.mValue = 4;
    Matrix4x4Col matrix;
    node.calculateMatrix(0, matrix);
    expectMatrix({0, 2, 0, 0, -3, 0, 0, 0, 0, 0, 4, 0, 10, 20, 30, 1}, matrix, 1e-5f);
}

TEST(SceneNode, AnglesTurnInTheOrderYZX) {
    // The product Ry x Rz x Rx, worked out here in double precision.
    const double a = 0.3, b = -0.7, c = 1.1;
    o3d::Dummy node;
    node.mRotation.mX.mValue = float(a);
    node.mRotation.mY.mValue = float(b);
    node.mRotation.mZ.mValue = float(c);
    Matrix4x4Col matrix;
    node.calculateMatrix(0, matrix);
    for (const Vector3f& v : {Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(0, 0, 1)}) {
        const double y1 = cos(a) * v.y - sin(a) * v.z, z1 = sin(a) * v.y + cos(a) * v.z;
        const double x2 = cos(c) * v.x - sin(c) * y1, y2 = sin(c) * v.x + cos(c) * y1;
        const double x3 = cos(b) * x2 + sin(b) * z1, z3 = -sin(b) * x2 + cos(b) * z1;
        const Vector3f found = matrix.multiply(v);
        EXPECT_NEAR(x3, found.x, 1e-6);
        EXPECT_NEAR(y2, found.y, 1e-6);
        EXPECT_NEAR(z3, found.z, 1e-6);
    }
}

TEST(SceneNode, AnOddNumberOfNegativeScalesIsFlipped) {
    o3d::Dummy node;
    Matrix4x4Col matrix;
    bool flipped = false;
    const auto flips = [&](float x, float y, float z) {
        node.mScale.mX.mValue = x;
        node.mScale.mY.mValue = y;
        node.mScale.mZ.mValue = z;
        node.calculateMatrix(0, matrix, flipped);
        return flipped;
    };
    EXPECT_TRUE(flips(-1, 1, 1));
    EXPECT_FALSE(flips(-1, -1, 1));
    EXPECT_TRUE(flips(-1, -1, -1));
    EXPECT_FALSE(flips(0, -1, 1));
}

TEST(SceneNode, MatrixFollowsTheTime) {
    o3d::Dummy node;
    animate(node.mPosition.mX, 0, 10, 5);
    Matrix4x4Col matrix;
    node.calculateMatrix(2.5f, matrix);
    EXPECT_FLOAT_EQ(5.0f, matrix.mData[12]);
}

TEST(SceneNode, TrackWithOneKeyAndConstantExtrapolationIsStaticAndHoldsItsValue) {
    o3d::Dummy node;
    node.mPosition.mY.mKeys = {{1, 2, 1, 6, 1, 2}};
    EXPECT_TRUE(node.isStatic());
    EXPECT_EQ(6.0f, node.mPosition.getValue(-100).y);
    EXPECT_EQ(6.0f, node.mPosition.getValue(1).y);
    EXPECT_EQ(6.0f, node.mPosition.getValue(100).y);
}

TEST(SceneNode, IsStaticTestsItsNineTracks) {
    o3d::Dummy node;
    EXPECT_TRUE(node.isStatic());
    for (auto* track :
         {&node.mPosition.mX, &node.mPosition.mY, &node.mPosition.mZ, &node.mRotation.mX, &node.mRotation.mY,
          &node.mRotation.mZ, &node.mScale.mX, &node.mScale.mY, &node.mScale.mZ}) {
        animate(*track, 0, 1, 1);
        EXPECT_FALSE(node.isStatic());
        track->mKeys.pop_back();
        EXPECT_TRUE(node.isStatic());
        track->mExtrapolation = 1;
        EXPECT_FALSE(node.isStatic());
        track->clear(0);
    }
}

TEST(SceneNode, IsStaticDoesNotAskChildren) {
    o3d::Dummy node;
    o3d::Dummy* const child = new o3d::Dummy;
    animate(child->mPosition.mX, 0, 1, 1);
    node.addChild(child);
    EXPECT_FALSE(child->isStatic());
    EXPECT_TRUE(node.isStatic());
}

TEST(SceneNode, LightIsStaticOnlyWithAllItsTracks) {
    o3d::Light light;
    EXPECT_TRUE(light.isStatic());
    for (auto* track : {&light.mColor.mR, &light.mColor.mG, &light.mColor.mB, &light.mColor.mA,
                        &light.mTrack5150.mX, &light.mTrack5160.mX, &light.mAngle.mX, &light.mPosition.mX}) {
        animate(*track, 0, 1, 1);
        EXPECT_FALSE(light.isStatic());
        track->clear(0);
    }
    EXPECT_TRUE(light.isStatic());
}

TEST(SceneNode, CameraAngleCountsNeitherForStillnessNorForLength) {
    o3d::Camera camera;
    animate(camera.mAngle.mX, 0, 1, 8);
    EXPECT_TRUE(camera.isStatic());
    EXPECT_EQ(0.0f, camera.getAnimationLength());
}

TEST(SceneNode, AnimationLengthIsThatOfANodeThreeLevelsDown) {
    o3d::Scene scene;
    o3d::SceneNode* node = &scene;
    for (int level = 0; level < 3; ++level) {
        o3d::SceneNode* const child = new o3d::Dummy;
        node->addChild(child);
        node = child;
    }
    EXPECT_EQ(0.0f, scene.getAnimationLength());
    animate(node->mScale.mZ, 0, 1, 42.5f);
    EXPECT_EQ(42.5f, scene.getAnimationLength());
}

TEST(SceneNode, AnimationLengthIsNeverBelowZeroAndTakesOnlyTheLastKey) {
    o3d::Dummy node;
    node.mPosition.mX.mKeys = {{0, 0, -5, 0, 0, 0}};
    EXPECT_EQ(0.0f, node.getAnimationLength());
    node.mPosition.mX.mKeys = {{0, 0, 50, 0, 0, 0}, {0, 0, 3, 0, 0, 0}};
    EXPECT_EQ(3.0f, node.getAnimationLength());
    node.mRotation.mY.mKeys = {{0, 0, 4, 0, 0, 0}};
    EXPECT_EQ(4.0f, node.getAnimationLength());
}

TEST(SceneNode, LightAddsItsTracksToTheLength) {
    o3d::Light light;
    float length = 1;
    for (auto* track : {&light.mColor.mR, &light.mColor.mG, &light.mColor.mB, &light.mColor.mA,
                        &light.mTrack5150.mX, &light.mTrack5160.mX, &light.mAngle.mX}) {
        animate(*track, 0, 1, ++length);
        EXPECT_EQ(length, light.getAnimationLength());
    }
}

TEST(SceneNode, GetChildFindsDirectChildrenOnly) {
    o3d::Scene scene;
    o3d::Dummy* const child = new o3d::Dummy;
    o3d::Dummy* const second = new o3d::Dummy;
    o3d::Dummy* const grandchild = new o3d::Dummy;
    child->mName = "child";
    second->mName = "child";
    grandchild->mName = "grandchild";
    scene.addChild(child);
    scene.addChild(second);
    scene.addChild(nullptr);
    child->addChild(grandchild);
    const o3d::Scene& constant = scene;
    EXPECT_EQ(child, scene.getChild("child"));
    EXPECT_EQ(child, constant.getChild("child"));
    EXPECT_EQ(nullptr, scene.getChild("grandchild"));
    EXPECT_EQ(nullptr, scene.getChild("Child"));
    EXPECT_EQ(grandchild, child->getChild("grandchild"));
    EXPECT_EQ(2u, scene.mChildren.size());
}

TEST(SceneNode, ClearGoesBackToTheDefaults) {
    o3d::Manager manager;
    load(manager, everything());
    o3d::Scene& scene = *manager.mScenes[0];
    auto& camera = dynamic_cast<o3d::Camera&>(*scene.mChildren[0]);
    auto& light = dynamic_cast<o3d::Light&>(*scene.mChildren[1]);
    auto& armature = dynamic_cast<o3d::Armature&>(*scene.mChildren[2]);
    auto& instance = dynamic_cast<o3d::MeshInstance&>(*scene.mChildren[3]->getChild("wall"));
    light.mRotation.mOrder.value = mathbase::RotationOrder::XYZ;
    light.mPosition.mX.getValue(1.0f);

    camera.clear();
    EXPECT_TRUE(camera.mName.empty() && camera.mAngle.mX.mKeys.empty());
    EXPECT_FLOAT_EQ(1.57079633f, camera.mAngle.mX.mValue);

    light.clear();
    EXPECT_EQ(mathbase::RotationOrder::YZX, light.mRotation.mOrder.value);
    EXPECT_TRUE(light.isStatic());
    EXPECT_EQ(0.0f, light.getAnimationLength());
    EXPECT_EQ(-1, light.mPosition.mX.mIndex);
    EXPECT_EQ(0, light.mPosition.mX.mInterpolation);
    EXPECT_EQ(0, light.mPosition.mY.mExtrapolation);
    EXPECT_EQ(Vector3f(0, 0, 0), light.mPosition.getValue(0));
    EXPECT_EQ(Vector3f(0, 0, 0), light.mRotation.getValue(0).angles);
    EXPECT_EQ(Vector3f(1, 1, 1), light.mScale.getValue(0));
    EXPECT_EQ(1.0f, light.mColor.mA.mValue);
    EXPECT_EQ(50.0f, light.mTrack5150.mX.mValue);
    EXPECT_EQ(1.0f, light.mTrack5160.mX.mValue);
    EXPECT_FLOAT_EQ(0.785398163f, light.mAngle.mX.mValue);

    armature.clear();
    EXPECT_TRUE(armature.mBones.empty() && armature.mName.empty());
    instance.clear();
    EXPECT_TRUE(instance.mName.empty() && instance.mMeshName.empty() && instance.mMaterials.empty() &&
                instance.mChildren.empty());
    scene.clear();
    EXPECT_TRUE(scene.mChildren.empty());
}

TEST(SceneNode, ASceneIsNoChildOfANode) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s") + chunk(0x5000, text("inner")))));
    EXPECT_TRUE(manager.mScenes.at(0)->mChildren.empty());
    EXPECT_EQ(1u, manager.mScenes.size());
}

TEST(MeshInstance, MaterialPastTheEndOfTheOverridesIsEmpty) {
    o3d::MeshInstance instance;
    EXPECT_EQ("", instance.getMaterial(5));
    EXPECT_EQ("", instance.getMaterial(-1));
    EXPECT_EQ(&instance.getMaterial(5), &instance.getMaterial(6));
}

std::vector<std::string> overridesOf(const std::string& chunks) {
    o3d::Manager manager;
    load(manager, file(chunk(0x5000, text("s") + chunk(0x5120, text("i") + text("m") + chunks))));
    return dynamic_cast<const o3d::MeshInstance&>(*manager.mScenes.at(0)->mChildren.at(0)).mMaterials;
}

TEST(MeshInstance, OverrideNumberThreeMakesAListOfFour) {
    EXPECT_EQ((std::vector<std::string>{"", "", "", "gold"}),
              overridesOf(chunk(0x6210, u8(3) + text("gold"))));
}

TEST(MeshInstance, ALaterOverrideReplacesAnEarlierOne) {
    const auto found = overridesOf(chunk(0x6210, u8(255) + text("last")) +
                                   chunk(0x6210, u8(1) + text("one")) + chunk(0x6210, u8(1) + text("uno")));
    ASSERT_EQ(256u, found.size());
    EXPECT_EQ("uno", found[1]);
    EXPECT_EQ("last", found[255]);
}

} // namespace
