// A hierarchy of bones in a scene, and the weights that would tie a Mesh to one. Nothing deforms a Mesh.
#pragma once

#include "o3d_scenenode.h"
#include "o3d_value.h"

#include <string>
#include <vector>

namespace zentrak::o3d {

class Armature : public SceneNode {
public:
    class Bone {
    public:
        Bone() = default;
        ~Bone();
        Bone(const Bone&) = delete;
        Bone& operator=(const Bone&) = delete;

        // Reads the chunk that is open.
        void loadChunk(chunklib::ReadBuffer& buffer);
        // Computes the pose of this bone and of all below it, from the parent's rotation and the position of
        // its tail.
        void updatePose(const Quatf& parentRotation, const Vector3f& parentPosition);

        std::string mName;
        std::vector<Bone*> mChildren;             // owned
        Vector3f mHead{0.0f, 0.0f, 0.0f};         // at rest, from the parent's tail
        Vector3f mPosePosition{0.0f, 0.0f, 0.0f}; // computed
        Quatf mRotation;                          // at rest, relative to the parent
        Quatf mPoseRotation;                      // computed
        float mLength = 0.0f;                     // along the local negative z axis
        TrackQuatf mRotationTrack;                // the pose leaves it out
    };

    Armature();
    ~Armature() override;
    int getType() const override;
    void clear() override;
    void loadChunk(chunklib::ReadBuffer& buffer) override;
    // Writes nothing: armatures are lost on writing.
    void writeChunk(chunklib::WriteBuffer& buffer) override;

    // The rest pose of every bone, in the armature's space.
    void updatePose();

    std::vector<Bone*> mBones; // the roots; owned
};

class BoneGroup {
public:
    void clear();
    // The chunk that is open, or the whole chunk. Nothing calls either: a Mesh skips these chunks.
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer) const;

    int mGroup = 0;
    BoneGroupWeightList mWeights;
};

} // namespace zentrak::o3d
