#include "o3d_scenenode.h"

#include "o3d_armature.h"
#include "o3d_chunk.h"
#include "o3d_load.h"

#include <algorithm>
#include <memory>

namespace zentrak::o3d {

SceneNode::SceneNode() = default;

SceneNode::~SceneNode() {
    SceneNode::clear();
}

void SceneNode::clear() {
    for (SceneNode* child : mChildren)
        delete child;
    mChildren.clear();
    mName.clear();
    mPosition.clear(0.0f);
    mRotation.clear();
    mScale.clear(1.0f);
}

bool SceneNode::isStatic() const {
    return mPosition.isStatic() && mRotation.isStatic() && mScale.isStatic();
}

float SceneNode::getAnimationLength() const {
    float length = std::max({0.0f, mPosition.getLength(), mRotation.getLength(), mScale.getLength()});
    for (const SceneNode* child : mChildren)
        length = std::max(length, child->getAnimationLength());
    return length;
}

SceneNode* SceneNode::getChild(const std::string& name) {
    return const_cast<SceneNode*>(static_cast<const SceneNode*>(this)->getChild(name));
}

const SceneNode* SceneNode::getChild(const std::string& name) const {
    for (const SceneNode* child : mChildren)
        if (child->mName == name)
            return child;
    return nullptr;
}

void SceneNode::addChild(SceneNode* child) {
    if (child != nullptr)
        mChildren.push_back(child);
}

// A new node of the class for this chunk ID, or null.
static std::unique_ptr<SceneNode> createNode(int id) {
    switch (id) {
    case CHUNK_CAMERA:
        return std::make_unique<Camera>();
    case CHUNK_MESHINSTANCE:
        return std::make_unique<MeshInstance>();
    case CHUNK_DUMMY:
        return std::make_unique<Dummy>();
    case CHUNK_LIGHT:
        return std::make_unique<Light>();
    case CHUNK_ARMATURE:
        return std::make_unique<Armature>();
    default:
        return nullptr;
    }
}

void SceneNode::loadChunkItem(int id, chunklib::ReadBuffer& buffer) {
    switch (id) {
    case CHUNK_POSITION:
        mPosition.loadChunk(buffer);
        return;
    case CHUNK_ROTATION:
        mRotation.loadChunk(buffer);
        return;
    case CHUNK_SCALE:
        mScale.loadChunk(buffer);
        return;
    default:
        break;
    }

    std::unique_ptr<SceneNode> child = createNode(id);
    if (child == nullptr || !checkDepth(buffer))
        return;
    try {
        child->loadChunk(buffer);
    } catch (...) {
        // It stays among the children, reset to its initial state.
        child->clear();
    }
    mChildren.push_back(child.get());
    child.release();
}

void SceneNode::writeCommonChunks(chunklib::WriteBuffer& buffer) {
    if (getType() != CHUNK_SCENE) {
        mPosition.writeChunk(buffer, CHUNK_POSITION);
        mRotation.writeChunk(buffer, CHUNK_ROTATION);
        mScale.writeChunk(buffer, CHUNK_SCALE);
    }
    for (SceneNode* child : mChildren)
        child->writeChunk(buffer);
}

void SceneNode::calculateMatrix(float time, mathbase::Matrix4x4Col& result) const {
    bool flipped = false;
    calculateMatrix(time, result, flipped);
}

void SceneNode::calculateMatrix(float time, mathbase::Matrix4x4Col& result, bool& flipped) const {
    const mathbase::Vector3f scale = mScale.getValue(time);
    mathbase::Quatf rotation;
    rotation.setEuler(mRotation.getValue(time));
    const mathbase::Vector3f position = mPosition.getValue(time);
    result.buildPRS(position, rotation, scale);
    flipped = scale.x * scale.y * scale.z < 0.0f;
}

} // namespace zentrak::o3d
