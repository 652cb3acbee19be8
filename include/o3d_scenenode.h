// A node of a scene: its own animated transform, its name and its children.
#pragma once

#include "mb_matrix4x4col.h"
#include "o3d_track.h"

#include <string>
#include <vector>

namespace zentrak::o3d {

// Nodes hold no state that changes with time. To draw a tree, walk it with the time to be shown: each node
// returns its local transform at that time, which leaves out its parents'.
class SceneNode {
public:
    SceneNode();
    SceneNode(const SceneNode&) = delete;
    SceneNode& operator=(const SceneNode&) = delete;

    // The ID of the node's chunk, one for each class (o3d_chunk.h).
    virtual int getType() const = 0;
    virtual ~SceneNode();
    // Back to the state of a new node; the children are destroyed.
    virtual void clear();
    // Reads the chunk that is open, or writes the whole chunk.
    virtual void loadChunk(chunklib::ReadBuffer& buffer) = 0;
    virtual void writeChunk(chunklib::WriteBuffer& buffer) = 0;
    // Whether the node's own tracks are constant. Children don't count.
    virtual bool isStatic() const;
    // The greatest time of a last key among the node's own tracks and those of all below it; never below 0.
    virtual float getAnimationLength() const;

    // The first direct child of exactly that name, or null.
    SceneNode* getChild(const std::string& name);
    const SceneNode* getChild(const std::string& name) const;
    // Appends the child, which this node owns from then on. Null is ignored.
    void addChild(SceneNode* child);

    // What all nodes have in common: creates and loads a child for a node's ID, loads a transform track for a
    // track's, and ignores any other. The chunk is open before and after.
    void loadChunkItem(int id, chunklib::ReadBuffer& buffer);
    // The transform tracks, except of a Scene, and every child.
    void writeCommonChunks(chunklib::WriteBuffer& buffer);

    // The local transform at `time`: translation x rotation x scale. `flipped` is set to whether it mirrors.
    void calculateMatrix(float time, mathbase::Matrix4x4Col& result) const;
    void calculateMatrix(float time, mathbase::Matrix4x4Col& result, bool& flipped) const;

    TrackVector3f mPosition;
    TrackEulerf mRotation;
    TrackVector3f mScale{1.0f};
    std::string mName;
    std::vector<SceneNode*> mChildren; // owned
};

// The root of a tree. Its transform tracks have no effect.
class Scene : public SceneNode {
public:
    int getType() const override;
    void loadChunk(chunklib::ReadBuffer& buffer) override;
    void writeChunk(chunklib::WriteBuffer& buffer) override;
};

// Only its transform, for its children.
class Dummy : public SceneNode {
public:
    int getType() const override;
    void loadChunk(chunklib::ReadBuffer& buffer) override;
    void writeChunk(chunklib::WriteBuffer& buffer) override;
};

// Looks along its local negative y axis, with negative z up; Matrix4x4Col::buildBlenderCameraInverse makes
// the view of it.
class Camera : public SceneNode {
public:
    Camera();
    int getType() const override;
    void clear() override;
    void loadChunk(chunklib::ReadBuffer& buffer) override;
    void writeChunk(chunklib::WriteBuffer& buffer) override;

    TrackFloat mAngle; // field of view, radians
};

class Light : public SceneNode {
public:
    Light();
    int getType() const override;
    void clear() override;
    void loadChunk(chunklib::ReadBuffer& buffer) override;
    void writeChunk(chunklib::WriteBuffer& buffer) override;
    bool isStatic() const override;
    float getAnimationLength() const override;

    // Nothing fixes the meaning of those that are named after their chunk.
    bool mFlag5151;
    TrackColor4f mColor;
    TrackFloat mTrack5150;
    TrackFloat mTrack5160;
    TrackFloat mAngle; // radians
};

// Puts a Mesh of the Manager into the scene, by name.
class MeshInstance : public SceneNode {
public:
    MeshInstance();
    int getType() const override;
    void clear() override;
    void loadChunk(chunklib::ReadBuffer& buffer) override;
    void writeChunk(chunklib::WriteBuffer& buffer) override;

    // The name that replaces material number `i` of the Mesh in this instance; empty where nothing does.
    const std::string& getMaterial(int i) const;

    std::string mMeshName;
    std::vector<std::string> mMaterials; // by material number; empty: the Mesh's own
};

} // namespace zentrak::o3d
