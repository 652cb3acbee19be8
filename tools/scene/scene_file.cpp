#include "scene_file.h"

#include "cl_writebuffer.h"
#include "o3d_chunk.h"
#include "ztk_system.h"

#include <cmath>

namespace zentrak::scene {

namespace {

void writeBone(chunklib::WriteBuffer& buffer, const o3d::Armature::Bone& bone) {
    buffer.openChunk(o3d::CHUNK_BONE);
    o3d::writeValue(buffer, bone.mName);
    o3d::writeValue(buffer, bone.mHead);
    o3d::writeValue(buffer, bone.mRotation);
    o3d::writeValue(buffer, bone.mLength);
    bone.mRotationTrack.writeChunk(buffer, o3d::CHUNK_BONEROTATION);
    for (const o3d::Armature::Bone* child : bone.mChildren)
        writeBone(buffer, *child);
    buffer.closeChunk();
}

void writeSubmesh(chunklib::WriteBuffer& buffer, const o3d::Mesh& mesh, const o3d::Submesh& submesh) {
    if (submesh.mMaterial < 0 || submesh.mMaterial > 255)
        throw Exception("Mesh '%s': material number %d is none (0 to 255)", mesh.mName.c_str(),
                        submesh.mMaterial);
    const unsigned char material = static_cast<unsigned char>(submesh.mMaterial);
    buffer.openChunk(o3d::CHUNK_SUBMESH);
    buffer.storeType(&material, 1);
    buffer.openChunk(o3d::CHUNK_TRIANGLES);
    for (const o3d::Triangle& triangle : submesh.mTriangles)
        o3d::writeValue(buffer, triangle);
    buffer.closeChunk();
    buffer.openChunk(o3d::CHUNK_INDICES);
    for (const o3d::Index& index : submesh.mIndices)
        o3d::writeValue(buffer, index);
    buffer.closeChunk();
    for (const auto* list : submesh.mTexCoords) {
        buffer.openChunk(o3d::CHUNK_TEXCOORDS);
        for (const Vector3f& coordinates : list->mList)
            o3d::writeValue(buffer, coordinates);
        buffer.closeChunk();
    }
    buffer.closeChunk();
}

// The loader does not clear its string between the names of a list: if a name starts with the one before it,
// only the rest is written; otherwise a new list begins.
void writeNames(chunklib::WriteBuffer& buffer, const o3d::Mesh& mesh) {
    buffer.openChunk(o3d::CHUNK_MATERIALNAMES);
    std::string before;
    for (const std::string& name : mesh.mMaterials) {
        if (!name.starts_with(before)) {
            buffer.closeChunk();
            buffer.openChunk(o3d::CHUNK_MATERIALNAMES);
            before.clear();
        }
        o3d::writeValue(buffer, name.substr(before.size()));
        before = name;
    }
    buffer.closeChunk();
}

void writeMesh(chunklib::WriteBuffer& buffer, const o3d::Mesh& mesh) {
    mesh.checkIndices();
    buffer.openChunk(o3d::CHUNK_MESH);
    o3d::writeValue(buffer, mesh.mName);
    buffer.openChunk(o3d::CHUNK_VERTICES);
    for (const Vector3f& vertex : mesh.mVertices)
        o3d::writeValue(buffer, vertex);
    buffer.closeChunk();
    for (const o3d::Submesh* submesh : mesh.mSubmeshes)
        writeSubmesh(buffer, mesh, *submesh);
    writeNames(buffer, mesh);
    buffer.closeChunk();
}

} // namespace

void WritableArmature::writeChunk(chunklib::WriteBuffer& buffer) {
    buffer.openChunk(o3d::CHUNK_ARMATURE);
    o3d::writeValue(buffer, mName);
    for (const Bone* bone : mBones)
        writeBone(buffer, *bone);
    writeCommonChunks(buffer);
    buffer.closeChunk();
}

std::string sceneFile(const o3d::Manager& manager) {
    chunklib::WriteBuffer buffer(o3d::FORMAT, o3d::VERSION_FIRST, o3d::VERSION_SECOND,
                                 chunklib::WriteBuffer::FLAG_TYPETAG | chunklib::WriteBuffer::FLAG_KEEPEMPTY);
    buffer.openChunk(o3d::CHUNK_MAIN);
    for (const o3d::Mesh* mesh : manager.mMeshes)
        writeMesh(buffer, *mesh);
    for (const o3d::Material* material : manager.mMaterials)
        material->writeChunk(buffer);
    for (const o3d::Image* image : manager.mImages)
        image->writeChunk(buffer);
    for (o3d::Scene* scene : manager.mScenes)
        scene->writeChunk(buffer);
    buffer.closeChunk();
    return std::string(buffer.mData.begin(), buffer.mData.end());
}

o3d::Mesh* addMesh(o3d::Manager& manager, std::unique_ptr<o3d::Mesh> mesh) {
    manager.mMeshMap[mesh->mName] = int(manager.mMeshes.size());
    manager.mMeshes.push_back(mesh.release());
    return manager.mMeshes.back();
}

o3d::Material* addMaterial(o3d::Manager& manager, const std::string& name, const mathbase::Vector4f& color) {
    auto material = std::make_unique<o3d::Material>();
    material->mName = name;
    auto attribute = std::make_unique<o3d::Material::Attribute>();
    attribute->mName = "diffuse";
    attribute->mColor = color;
    material->mAttributes.push_back(attribute.release());
    manager.mMaterialMap[name] = int(manager.mMaterials.size());
    manager.mMaterials.push_back(material.release());
    return manager.mMaterials.back();
}

o3d::MeshInstance* addInstance(o3d::SceneNode& parent, const std::string& name, const o3d::Mesh& mesh,
                               const Vector3f& position, const Vector3f& angles) {
    auto instance = std::make_unique<o3d::MeshInstance>();
    instance->mName = name;
    instance->mMeshName = mesh.mName;
    instance->mMaterials = mesh.mMaterials;
    setValue(instance->mPosition, position);
    setValue(instance->mRotation, angles);
    o3d::MeshInstance* const result = instance.get();
    parent.addChild(instance.release());
    return result;
}

o3d::Dummy* addDummy(o3d::SceneNode& parent, const std::string& name, const Vector3f& position) {
    auto dummy = std::make_unique<o3d::Dummy>();
    dummy->mName = name;
    setValue(dummy->mPosition, position);
    o3d::Dummy* const result = dummy.get();
    parent.addChild(dummy.release());
    return result;
}

void setValue(o3d::TrackVector3f& track, const Vector3f& value) {
    track.mX.mValue = value.x;
    track.mY.mValue = value.y;
    track.mZ.mValue = value.z;
}

void setValue(o3d::TrackEulerf& track, const Vector3f& value) {
    track.mX.mValue = value.x;
    track.mY.mValue = value.y;
    track.mZ.mValue = value.z;
}

void setCurve(o3d::TrackBlenderFloat& track, const std::vector<float>& values, float step, bool closed) {
    track.mInterpolation = o3d::TrackBlenderFloat::INTERPOLATION_BEZIER;
    // A full rotation ends whole turns from where it starts: they become the offset of the repetition.
    track.mExtrapolation = closed ? o3d::TrackBlenderFloat::EXTRAPOLATION_CYCLIC_OFFSET
                                  : o3d::TrackBlenderFloat::EXTRAPOLATION_CONSTANT;
    track.mKeys.clear();
    const size_t last = values.size() - 1;
    const float rise = values[last] - values[0];
    for (size_t i = 0; i < values.size(); ++i) {
        float before = values[i > 0 ? i - 1 : 0], after = values[i < last ? i + 1 : last];
        if (closed && i == 0)
            before = values[last - 1] - rise;
        if (closed && i == last)
            after = values[1] + rise;
        const float slope = (after - before) * 0.5f; // per step
        const float time = step * float(i);
        track.mKeys.push_back({time - step / 3, values[i] - slope / 3, time, values[i], time + step / 3,
                               values[i] + slope / 3});
    }
}

Vector3f lookAt(const Vector3f& eye, const Vector3f& target) {
    const Vector3f back = (eye - target).getNormalized();
    const Vector3f right = Vector3f(0.0f, 1.0f, 0.0f).cross(back).getNormalized();
    const Vector3f up = back.cross(right);
    // The node's axes in the world are right, back and down; right stays level, so there is no rotation about
    // z.
    return Vector3f(atan2f(up.y, back.y), atan2f(-right.z, right.x), 0.0f);
}

} // namespace zentrak::scene
