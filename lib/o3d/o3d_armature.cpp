#include "o3d_armature.h"

#include "o3d_chunk.h"
#include "o3d_load.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace zentrak::o3d {

Armature::Bone::~Bone() {
    for (Bone* child : mChildren)
        delete child;
}

void Armature::Bone::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    loadValue(buffer, &mHead);
    loadValue(buffer, &mRotation);
    loadValue(buffer, &mLength);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_BONE) {
            if (checkDepth(buffer)) {
                try {
                    auto child = std::make_unique<Bone>();
                    child->loadChunk(buffer);
                    mChildren.push_back(child.get());
                    child.release();
                } catch (...) {
                    // The child is dropped; its siblings may still be readable.
                }
            }
        } else if (id == CHUNK_BONEROTATION) {
            mRotationTrack.loadChunk(buffer);
        } else {
            printf("Other chunk with ID=0x%0X\n", id);
        }
        buffer.closeChunk();
    }
}

void Armature::Bone::updatePose(const Quatf& parentRotation, const Vector3f& parentPosition) {
    mPosePosition = parentPosition + parentRotation * mHead;
    mPoseRotation = parentRotation * mRotation;
    const Vector3f tail = mPosePosition + mPoseRotation * Vector3f(0.0f, 0.0f, -mLength);
    for (Bone* child : mChildren)
        child->updatePose(mPoseRotation, tail);
}

Armature::Armature() = default;

Armature::~Armature() {
    Armature::clear();
}

int Armature::getType() const {
    return CHUNK_ARMATURE;
}

void Armature::clear() {
    SceneNode::clear();
    for (Bone* bone : mBones)
        delete bone;
    mBones.clear();
}

void Armature::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_BONE) {
            if (checkDepth(buffer)) {
                auto bone = std::make_unique<Bone>();
                bone->loadChunk(buffer);
                mBones.push_back(bone.get());
                bone.release();
            }
        } else {
            loadChunkItem(id, buffer);
        }
        buffer.closeChunk();
    }
}

void Armature::writeChunk(chunklib::WriteBuffer& /*buffer*/) {}

void Armature::updatePose() {
    for (Bone* bone : mBones)
        bone->updatePose(Quatf(1.0f, 0.0f, 0.0f, 0.0f), Vector3f(0.0f, 0.0f, 0.0f));
}

void BoneGroup::clear() {
    mGroup = 0;
    mWeights.clear();
}

void BoneGroup::loadChunk(chunklib::ReadBuffer& buffer) {
    constexpr size_t weightSize = 8;
    // The chunk size includes the group number, so half a weight at the end counts as a whole one.
    const size_t count = std::min(buffer.currentChunkSize(), buffer.remaining()) / weightSize;
    int32_t group = mGroup;
    buffer.loadType(&group, 4);
    mGroup = group;
    mWeights.assign(count, BoneGroupWeight());
    for (BoneGroupWeight& weight : mWeights)
        loadValue(buffer, &weight);
}

void BoneGroup::writeChunk(chunklib::WriteBuffer& buffer) const {
    const int32_t group = mGroup;
    buffer.openChunk(CHUNK_BONEGROUP);
    buffer.storeType(&group, 4);
    for (const BoneGroupWeight& weight : mWeights)
        writeValue(buffer, weight);
    buffer.closeChunk();
}

} // namespace zentrak::o3d
