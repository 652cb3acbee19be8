#include "o3d_mesh.h"

#include "o3d_chunk.h"
#include "o3d_load.h"
#include "ztk_system.h"

#include <cassert>
#include <memory>

namespace zentrak::o3d {

// Bytes of names for each byte of a name list. The names of a list build on each other, so that a list of
// zero bytes could grow with the square of its size; this is room for the 256 names that a Submesh can
// number.
static constexpr size_t MAX_NAME_GROWTH = 128;

// Additions to tangents that addNormals() will make: some seconds of work.
static constexpr uint64_t MAX_TANGENT_SUMS = 2000000000;

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

// Appends the names of a list. The text read is not emptied after a name: each name starts with the one
// before it.
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

    // A count, and a numbered chunk for each name; the loader reads bare names.
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
    return false; // the entry that the comparison asks for lies past the end of the list: there is none
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

namespace {

// The local vertices of a Submesh by the position that they stand for: those of one position lie together, in
// ascending order. One map serves all Submeshes of a Mesh in turn, so that a small Submesh of a large Mesh
// costs what the Submesh costs.
class CopyMap {
public:
    explicit CopyMap(size_t positions) : mCount(positions, 0), mStart(positions, 0) {}

    void build(const std::vector<Index>& indices) {
        for (const int position : mUsed)
            mCount[position] = 0;
        mUsed.clear();
        for (const Index& index : indices)
            if (mCount[index.mValue]++ == 0)
                mUsed.push_back(index.mValue);

        int start = 0;
        for (const int position : mUsed) {
            mStart[position] = start;
            start += mCount[position];
            mCount[position] = 0;
        }
        mLocal.resize(indices.size());
        for (size_t i = 0; i < indices.size(); ++i) {
            const int position = indices[i].mValue;
            mLocal[mStart[position] + mCount[position]++] = int(i);
        }
    }

    int count(int position) const { return mCount[position]; }
    const int* begin(int position) const { return mLocal.data() + mStart[position]; }
    const int* end(int position) const { return begin(position) + mCount[position]; }

private:
    std::vector<int> mCount; // by position
    std::vector<int> mStart; // by position, index in mLocal
    std::vector<int> mLocal; // local vertices
    std::vector<int> mUsed;  // positions with a count
};

// Adds the unit normals of all triangles of the Submesh to its positions, and its tangents and binormals to
// the tangent spaces of the vertices that lie at the same place in space and in the texture.
void addTriangles(const Mesh& mesh, Submesh& submesh, const CopyMap& copies,
                  std::vector<Vector3f>& accumulated) {
    const StructList<Vector3f>* uv = submesh.mTexCoords.empty() ? nullptr : submesh.mTexCoords[0];
    for (const Triangle& triangle : submesh.mTriangles) {
        int position[3];
        for (int corner = 0; corner < 3; ++corner)
            position[corner] = submesh.mIndices[triangle.mIndex[corner]].mValue;

        const Vector3f& p0 = mesh.mVertices[position[0]];
        const Vector3f e1 = mesh.mVertices[position[1]] - p0;
        const Vector3f e2 = mesh.mVertices[position[2]] - p0;
        Vector3f n = e1.cross(e2);
        n.normalize();

        if (uv != nullptr) {
            const Vector3f& t0 = (*uv)[triangle.mIndex[0]];
            const Vector3f d1 = (*uv)[triangle.mIndex[1]] - t0;
            const Vector3f d2 = (*uv)[triangle.mIndex[2]] - t0;
            const float r = 1.0f / (d1.x * d2.y - d2.x * d1.y);
            const Vector3f tangent = (e1 * d2.y - e2 * d1.y) * r;
            const Vector3f binormal = (e2 * d1.x - e1 * d2.x) * r;
            for (int corner = 0; corner < 3; ++corner) {
                const Vector3f& place = (*uv)[triangle.mIndex[corner]];
                for (const int* j = copies.begin(position[corner]); j != copies.end(position[corner]); ++j) {
                    if (((*uv)[*j] - place).length2() < 0.01f) {
                        submesh.mTangentSpaces[*j].mTangent += tangent;
                        submesh.mTangentSpaces[*j].mBinormal += binormal;
                    }
                }
            }
        }
        for (const int corner : position)
            accumulated[corner] += n;
    }
}

// Gives each local vertex its normal, and makes tangent and binormal stand square on it and on each other.
void orthogonalise(Submesh& submesh, const std::vector<Vector3f>& normals) {
    const bool textured = !submesh.mTexCoords.empty();
    for (size_t i = 0; i < submesh.mIndices.size(); ++i) {
        TangentSpace& space = submesh.mTangentSpaces[i];
        space.mNormal = normals[submesh.mIndices[i].mValue];
        if (!textured)
            continue;
        const Vector3f normal = space.mNormal;
        Vector3f tangent = space.mTangent;
        tangent = tangent - normal * normal.dot(tangent);
        tangent.normalize();
        Vector3f binormal = space.mBinormal;
        binormal = binormal - normal * normal.dot(binormal);
        binormal = binormal - tangent * tangent.dot(binormal);
        binormal.normalize();
        space.mTangent = tangent;
        space.mBinormal = binormal;
    }
}

// Throws where the copies of positions would make addNormals() take hours.
void checkCopies(const Mesh& mesh, CopyMap& copies) {
    uint64_t sums = 0;
    for (const Submesh* submesh : mesh.mSubmeshes) {
        if (submesh->mTexCoords.empty())
            continue;
        copies.build(submesh->mIndices);
        for (const Triangle& triangle : submesh->mTriangles)
            for (const int corner : triangle.mIndex)
                sums += uint64_t(copies.count(submesh->mIndices[corner].mValue));
    }
    if (sums > MAX_TANGENT_SUMS)
        throw Exception("Mesh '%s': too many vertices share a position", mesh.mName.c_str());
}

} // namespace

void Mesh::addNormals() {
    checkIndices();
    CopyMap copies(mVertices.size());
    checkCopies(*this, copies);

    removeNormals();
    std::vector<Vector3f> accumulated(mVertices.size(), Vector3f(0.0f, 0.0f, 0.0f));
    for (Submesh* submesh : mSubmeshes) {
        submesh->mTangentSpaces.resize(submesh->mIndices.size());
        copies.build(submesh->mIndices);
        addTriangles(*this, *submesh, copies, accumulated);
    }
    for (Vector3f& normal : accumulated)
        normal.normalize();
    for (Submesh* submesh : mSubmeshes)
        orthogonalise(*submesh, accumulated);
}

} // namespace zentrak::o3d
