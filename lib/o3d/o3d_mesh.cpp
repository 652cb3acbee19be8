#include "o3d_mesh.h"

#include "o3d_chunk.h"
#include "o3d_load.h"
#include "ztk_system.h"

#include <cassert>
#include <memory>

namespace zentrak::o3d {

// Limit on the bytes of names per byte of a name list. Each name starts with the one before it, so they could
// grow with the square of the list; this leaves room for the 256 names that a Submesh can refer to.
static constexpr size_t MAX_NAME_GROWTH = 256;

Mesh::Mesh() {
    clear();
}

Mesh::~Mesh() {
    clear();
}

void Mesh::clear() {
    for (Submesh* submesh : mSubmeshes)
        delete submesh;
    for (BoneGroup* group : mBoneGroup)
        delete group;
    mSubmeshes.clear();
    mBoneGroup.clear();
    mMaterials.clear();
    mVertices.clear();
    mName.clear();
    mBoxMin = Vector3f(0.0f, 0.0f, 0.0f);
    mBoxMax = Vector3f(0.0f, 0.0f, 0.0f);
}

// Appends the names of a list. Each name starts with the one before it: the string is not cleared in between.
static void loadMaterialNames(chunklib::ReadBuffer& buffer, Mesh& mesh) {
    const size_t limit = presentSize(buffer) * MAX_NAME_GROWTH;
    size_t total = 0;
    std::string name;
    while (buffer.checkBoundaries(1)) {
        char character = 0;
        buffer.loadType(&character, 1);
        if (character != '\0') {
            name += character;
            continue;
        }
        total += name.size();
        if (total > limit) {
            ZTK_LOG("warning", "o3d", "Mesh '%s' has too many material names, %d kept\n", mesh.mName.c_str(),
                    int(mesh.mMaterials.size()));
            return;
        }
        mesh.mMaterials.push_back(name);
    }
}

void Mesh::loadChunk(chunklib::ReadBuffer& buffer) {
    mName = loadName(buffer);
    while (const uint16_t id = buffer.openChunk()) {
        switch (id) {
        case CHUNK_VERTICES:
            loadPlainList(buffer, mVertices);
            break;
        case CHUNK_SUBMESH: {
            auto submesh = std::make_unique<Submesh>();
            submesh->mParent = this;
            submesh->loadChunk(buffer);
            mSubmeshes.push_back(submesh.get());
            submesh.release();
            break;
        }
        case CHUNK_MATERIALNAMES:
            loadMaterialNames(buffer, *this);
            break;
        case CHUNK_BONEGROUP:
            break;
        default:
            ZTK_LOG("warning", "o3d", "mesh::Unknown chunk with ID=0x%X\n", id);
            break;
        }
        buffer.closeChunk();
    }
    updateBox();
}

void Mesh::writeChunk(chunklib::WriteBuffer& buffer) const {
    buffer.openChunk(CHUNK_MESH);
    writeValue(buffer, mName);

    buffer.openChunk(CHUNK_VERTICES);
    static_assert(sizeof(Vector3f) == 12);
    buffer.storeType(mVertices.data(), mVertices.size() * sizeof(Vector3f));
    buffer.closeChunk();

    for (const Submesh* submesh : mSubmeshes)
        submesh->writeChunk(buffer);

    // A count, then a numbered chunk per name, although the loader reads bare names.
    buffer.openChunk(CHUNK_MATERIALNAMES);
    const uint32_t count = uint32_t(mMaterials.size());
    buffer.storeType(&count, 4);
    for (uint32_t i = 0; i < count; ++i) {
        if (mMaterials[i].empty())
            continue;
        buffer.openChunk(CHUNK_MATERIALOVERRIDE);
        buffer.storeType(&i, 4);
        writeValue(buffer, mMaterials[i]);
        buffer.closeChunk();
    }
    buffer.closeChunk();

    buffer.closeChunk();
}

void Mesh::updateBox() {
    for (size_t i = 0; i < mSubmeshes.size(); ++i) {
        const Submesh& submesh = *mSubmeshes[i];
        if (i == 0) {
            mBoxMin = submesh.mBoxMin;
            mBoxMax = submesh.mBoxMax;
        } else {
            mBoxMin.min(submesh.mBoxMin);
            mBoxMax.max(submesh.mBoxMax);
        }
    }
}

const std::string& Mesh::getMaterial(int i) const {
    static const std::string empty;
    return i >= 0 && size_t(i) < mMaterials.size() ? mMaterials[i] : empty;
}

BoneGroupWeightList& Mesh::getBoneGroup(int groupID) {
    return const_cast<BoneGroupWeightList&>(static_cast<const Mesh*>(this)->getBoneGroup(groupID));
}

const BoneGroupWeightList& Mesh::getBoneGroup(int groupID) const {
    assert(groupID >= 0);
    assert(groupID < (int)mBoneGroup.size());
    assert(mBoneGroup[groupID]!=0);
    return mBoneGroup[groupID]->mWeights;
}

bool Mesh::hasBoneGroup(int groupID) const {
    if (groupID < int(mBoneGroup.size()))
        return false;
    // The comparison asks for the entry past the end of the list, which doesn't exist.
    return false;
}

bool Mesh::hasNormals() const {
    for (const Submesh* submesh : mSubmeshes)
        if (submesh->mTangentSpaces.empty())
            return false;
    return true;
}

void Mesh::removeNormals() {
    for (Submesh* submesh : mSubmeshes)
        submesh->mTangentSpaces.clear();
}

void Mesh::checkIndices() const {
    for (size_t i = 0; i < mSubmeshes.size(); ++i)
        checkIndices(i);
}

void Mesh::checkIndices(size_t submeshNumber) const {
    const Submesh& submesh = *mSubmeshes[submeshNumber];
    const int number = int(submeshNumber);
    const int vertices = int(mVertices.size());
    const int locals = int(submesh.mIndices.size());
    for (int i = 0; i < locals; ++i) {
        const int value = submesh.mIndices[size_t(i)].mValue;
        if (value < 0 || value >= vertices)
            throw Exception("Mesh '%s', submesh %d: index %d is %d, but there are %d vertices", mName.c_str(),
                            number, i, value, vertices);
    }
    for (size_t t = 0; t < submesh.mTriangles.size(); ++t)
        for (const int corner : submesh.mTriangles[t].mIndex)
            if (corner < 0 || corner >= locals)
                throw Exception("Mesh '%s', submesh %d: triangle %d uses vertex %d, but there are %d indices",
                                mName.c_str(), number, int(t), corner, locals);
    if (submesh.mTexCoords.empty() || !submesh.mTexCoords[0])
        return;
    if (submesh.mTexCoords[0]->size() < submesh.mIndices.size())
        throw Exception("Mesh '%s', submesh %d: %d texture coordinates for %d indices", mName.c_str(), number,
                        int(submesh.mTexCoords[0]->size()), locals);
}

} // namespace zentrak::o3d
