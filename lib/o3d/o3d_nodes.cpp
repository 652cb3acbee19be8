#include "o3d_chunk.h"
#include "o3d_load.h"
#include "o3d_scenenode.h"
#include "o3d_value.h"

#include <algorithm>

namespace zentrak::o3d {

// Initial full angles of a Camera and a Light, radians.
static constexpr float CAMERA_ANGLE = 1.57079633f;
static constexpr float LIGHT_ANGLE = 0.78539816f;

static constexpr float LIGHT_TRACK1 = 50.0f;
static constexpr float LIGHT_TRACK2 = 1.0f;

// Scene

int Scene::getType() const {
    return CHUNK_SCENE;
}

void Scene::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        loadChunkItem(id, buffer);
        buffer.closeChunk();
    }
}

void Scene::writeChunk(chunklib::WriteBuffer& buffer) {
    buffer.openChunk(CHUNK_SCENE);
    writeValue(buffer, mName);
    writeCommonChunks(buffer);
    buffer.closeChunk();
}

// Dummy

int Dummy::getType() const {
    return CHUNK_DUMMY;
}

void Dummy::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        loadChunkItem(id, buffer);
        buffer.closeChunk();
    }
}

void Dummy::writeChunk(chunklib::WriteBuffer& buffer) {
    buffer.openChunk(CHUNK_DUMMY);
    writeValue(buffer, mName);
    writeCommonChunks(buffer);
    buffer.closeChunk();
}

// Camera

Camera::Camera() {
    Camera::clear();
}

int Camera::getType() const {
    return CHUNK_CAMERA;
}

void Camera::clear() {
    SceneNode::clear();
    mAngle.clear(CAMERA_ANGLE);
}

void Camera::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_ANGLE)
            mAngle.loadChunk(buffer);
        else
            loadChunkItem(id, buffer);
        buffer.closeChunk();
    }
}

void Camera::writeChunk(chunklib::WriteBuffer& buffer) {
    buffer.openChunk(CHUNK_CAMERA);
    writeValue(buffer, mName);
    mAngle.writeChunk(buffer, CHUNK_ANGLE);
    writeCommonChunks(buffer);
    buffer.closeChunk();
}

// Light

Light::Light() {
    Light::clear();
}

int Light::getType() const {
    return CHUNK_LIGHT;
}

void Light::clear() {
    SceneNode::clear();
    mFlag5151 = false;
    mColor.clear(1.0f);
    mTrack5150.clear(LIGHT_TRACK1);
    mTrack5160.clear(LIGHT_TRACK2);
    mAngle.clear(LIGHT_ANGLE);
}

void Light::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        switch (id) {
        case CHUNK_COLOR:
            mColor.loadChunk(buffer);
            break;
        case CHUNK_LIGHTTRACK2:
            mTrack5160.loadChunk(buffer);
            break;
        case CHUNK_LIGHTTRACK1:
            mTrack5150.loadChunk(buffer);
            break;
        case CHUNK_ANGLE:
            mAngle.loadChunk(buffer);
            break;
        case CHUNK_LIGHTFLAG:
            loadFlag(buffer, mFlag5151);
            break;
        default:
            loadChunkItem(id, buffer);
            break;
        }
        buffer.closeChunk();
    }
}

void Light::writeChunk(chunklib::WriteBuffer& buffer) {
    buffer.openChunk(CHUNK_LIGHT);
    writeValue(buffer, mName);
    mColor.writeChunk(buffer, CHUNK_COLOR);
    mTrack5160.writeChunk(buffer, CHUNK_LIGHTTRACK2);
    mTrack5150.writeChunk(buffer, CHUNK_LIGHTTRACK1);
    mAngle.writeChunk(buffer, CHUNK_ANGLE);
    writeFlag(buffer, CHUNK_LIGHTFLAG, mFlag5151);
    writeCommonChunks(buffer);
    buffer.closeChunk();
}

bool Light::isStatic() const {
    return SceneNode::isStatic() && mColor.isStatic() && mTrack5150.isStatic() && mTrack5160.isStatic() &&
           mAngle.isStatic();
}

float Light::getAnimationLength() const {
    return std::max({SceneNode::getAnimationLength(), mColor.getLength(), mTrack5150.getLength(),
                     mTrack5160.getLength(), mAngle.getLength()});
}

// MeshInstance

MeshInstance::MeshInstance() = default;

int MeshInstance::getType() const {
    return CHUNK_MESHINSTANCE;
}

void MeshInstance::clear() {
    SceneNode::clear();
    mMeshName.clear();
    mMaterials.clear();
}

// Reads a material number and the name that overrides it; the list grows to fit.
static void loadOverride(chunklib::ReadBuffer& buffer, std::vector<std::string>& materials) {
    unsigned char number = 0;
    buffer.loadType(&number, 1);
    if (number >= materials.size())
        materials.resize(number + size_t(1));
    materials[number] = loadName(buffer);
}

void MeshInstance::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    mMeshName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        if (id == CHUNK_MATERIALOVERRIDE)
            loadOverride(buffer, mMaterials);
        else
            loadChunkItem(id, buffer);
        buffer.closeChunk();
    }
}

void MeshInstance::writeChunk(chunklib::WriteBuffer& buffer) {
    buffer.openChunk(CHUNK_MESHINSTANCE);
    writeValue(buffer, mName);
    writeValue(buffer, mMeshName);
    const size_t count = std::min<size_t>(mMaterials.size(), 256); // the number is one byte
    for (size_t i = 0; i < count; ++i) {
        if (mMaterials[i].empty())
            continue;
        const unsigned char number = static_cast<unsigned char>(i);
        buffer.openChunk(CHUNK_MATERIALOVERRIDE);
        buffer.storeType(&number, 1);
        writeValue(buffer, mMaterials[i]);
        buffer.closeChunk();
    }
    writeCommonChunks(buffer);
    buffer.closeChunk();
}

const std::string& MeshInstance::getMaterial(int i) const {
    static const std::string empty;
    return i >= 0 && size_t(i) < mMaterials.size() ? mMaterials[i] : empty;
}

} // namespace zentrak::o3d
