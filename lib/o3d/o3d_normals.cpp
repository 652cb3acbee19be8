#include "o3d_mesh.h"
#include "ztk_system.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace zentrak::o3d {

namespace {

// Limit on the tangent additions of addNormals(): a few seconds of work.
constexpr uint64_t MAX_TANGENT_SUMS = 2000000000;

// The local vertices of a Submesh at each position, in ascending order. All Submeshes of a Mesh share one
// map, so that a small Submesh of a large Mesh stays cheap.
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

// Computes the tangent spaces of a Mesh and counts the defects of its geometry.
class NormalMaker {
public:
    // Throws as Mesh::addNormals() does.
    explicit NormalMaker(const Mesh& mesh)
        : mMesh(mesh),
          mCopies(mesh.mVertices.size()),
          mNormals(mesh.mVertices.size(), Vector3f(0.0f, 0.0f, 0.0f)) {
        mesh.checkIndices();
        checkCopies();
        for (const Submesh* submesh : mesh.mSubmeshes) {
            mSpaces.emplace_back(submesh->mIndices.size());
            mCopies.build(submesh->mIndices);
            addTriangles(*submesh, mSpaces.back());
        }
        normaliseSums();
        for (size_t i = 0; i < mSpaces.size(); ++i)
            orthogonalise(*mesh.mSubmeshes[i], mSpaces[i]);
    }

    std::vector<std::vector<TangentSpace>> mSpaces; // by Submesh

    // Would a zero vector have to be normalised?
    bool isFatal() const {
        return mFlatTriangles + mLonePositions + mFoldedPositions + mLoneCoords + mFoldedCoords > 0;
    }

    std::vector<std::string> describe() const {
        static const char fatal[] = "making normals ends the program";
        static const char spoilt[] = "normals or tangents there are not numbers";
        std::vector<std::string> texts;
        const auto add = [&](size_t count, const char* what, const char* then) {
            if (count > 0)
                texts.push_back(std::to_string(count) + " " + what + ": " + then);
        };
        add(mFlatTriangles, "triangles without area", fatal);
        add(mLonePositions, "vertices without a triangle", fatal);
        add(mFoldedPositions, "vertices whose triangles lie back to back", fatal);
        add(mLoneCoords, "texture coordinates without a triangle", fatal);
        add(mFoldedCoords, "texture coordinates whose tangents cancel out", fatal);
        add(mFlatCoords, "triangles without area in the texture", spoilt);
        add(mNotNumbers, "vertices that are not numbers", spoilt);
        return texts;
    }

private:
    // Throws if shared positions would make the work take hours.
    void checkCopies() {
        uint64_t sums = 0;
        for (const Submesh* submesh : mMesh.mSubmeshes) {
            if (submesh->mTexCoords.empty())
                continue;
            mCopies.build(submesh->mIndices);
            for (const Triangle& triangle : submesh->mTriangles)
                for (const int corner : triangle.mIndex)
                    sums += uint64_t(mCopies.count(submesh->mIndices[corner].mValue));
        }
        if (sums > MAX_TANGENT_SUMS)
            throw Exception("Mesh '%s': too many vertices share a position", mMesh.mName.c_str());
    }

    // Returns false and leaves the vector as it is if it has no length.
    static bool normalise(Vector3f& vector) {
        if (vector.length() == 0.0f)
            return false;
        vector.normalize();
        return true;
    }

    // Adds the unit normals of all triangles to their positions, and their tangents and binormals to the
    // tangent spaces of vertices with the same position and nearly the same texture coordinates.
    void addTriangles(const Submesh& submesh, std::vector<TangentSpace>& spaces) {
        const StructList<Vector3f>* uv = submesh.mTexCoords.empty() ? nullptr : submesh.mTexCoords[0];
        for (const Triangle& triangle : submesh.mTriangles) {
            int position[3];
            for (int corner = 0; corner < 3; ++corner)
                position[corner] = submesh.mIndices[triangle.mIndex[corner]].mValue;
            const Vector3f& p0 = mMesh.mVertices[position[0]];
            const Vector3f e1 = mMesh.mVertices[position[1]] - p0;
            const Vector3f e2 = mMesh.mVertices[position[2]] - p0;
            Vector3f n = e1.cross(e2);
            mFlatTriangles += !normalise(n);
            if (uv != nullptr)
                addTangents(triangle, position, e1, e2, *uv, spaces);
            for (const int corner : position)
                mNormals[corner] += n;
        }
    }

    void addTangents(const Triangle& triangle, const int (&position)[3], const Vector3f& e1,
                     const Vector3f& e2, const StructList<Vector3f>& uv, std::vector<TangentSpace>& spaces) {
        const Vector3f& t0 = uv[triangle.mIndex[0]];
        const Vector3f d1 = uv[triangle.mIndex[1]] - t0;
        const Vector3f d2 = uv[triangle.mIndex[2]] - t0;
        const float area = d1.x * d2.y - d2.x * d1.y;
        mFlatCoords += area == 0.0f;
        const float r = 1.0f / area;
        const Vector3f tangent = (e1 * d2.y - e2 * d1.y) * r;
        const Vector3f binormal = (e2 * d1.x - e1 * d2.x) * r;
        for (int corner = 0; corner < 3; ++corner) {
            const Vector3f& place = uv[triangle.mIndex[corner]];
            for (const int* j = mCopies.begin(position[corner]); j != mCopies.end(position[corner]); ++j) {
                if ((uv[*j] - place).length2() < 0.01f) {
                    spaces[*j].mTangent += tangent;
                    spaces[*j].mBinormal += binormal;
                }
            }
        }
    }

    void normaliseSums() {
        std::vector<char> used(mNormals.size());
        for (const Submesh* submesh : mMesh.mSubmeshes)
            for (const Triangle& triangle : submesh->mTriangles)
                for (const int corner : triangle.mIndex)
                    used[submesh->mIndices[corner].mValue] = 1;
        for (size_t i = 0; i < mNormals.size(); ++i) {
            const Vector3f& place = mMesh.mVertices[i];
            mNotNumbers += !std::isfinite(place.x) || !std::isfinite(place.y) || !std::isfinite(place.z);
            if (!normalise(mNormals[i]))
                ++(used[i] ? mFoldedPositions : mLonePositions);
        }
    }

    // Gives each local vertex its normal, and makes tangent and binormal perpendicular to it and to each
    // other.
    void orthogonalise(const Submesh& submesh, std::vector<TangentSpace>& spaces) {
        const bool textured = !submesh.mTexCoords.empty();
        std::vector<char> used(spaces.size());
        for (const Triangle& triangle : submesh.mTriangles)
            for (const int corner : triangle.mIndex)
                used[corner] = 1;
        for (size_t i = 0; i < spaces.size(); ++i) {
            TangentSpace& space = spaces[i];
            space.mNormal = mNormals[submesh.mIndices[i].mValue];
            if (!textured)
                continue;
            const Vector3f normal = space.mNormal;
            Vector3f tangent = space.mTangent;
            tangent = tangent - normal * normal.dot(tangent);
            bool isGood = normalise(tangent);
            Vector3f binormal = space.mBinormal;
            binormal = binormal - normal * normal.dot(binormal);
            binormal = binormal - tangent * tangent.dot(binormal);
            isGood = normalise(binormal) && isGood;
            if (!isGood)
                ++(used[i] ? mFoldedCoords : mLoneCoords);
            space.mTangent = tangent;
            space.mBinormal = binormal;
        }
    }

    const Mesh& mMesh;
    CopyMap mCopies;
    std::vector<Vector3f> mNormals; // by position
    size_t mFlatTriangles = 0;
    size_t mLonePositions = 0;
    size_t mFoldedPositions = 0;
    size_t mLoneCoords = 0;
    size_t mFoldedCoords = 0;
    size_t mFlatCoords = 0;
    size_t mNotNumbers = 0;
};

} // namespace

std::vector<std::string> Mesh::findFaults() const {
    return NormalMaker(*this).describe();
}

void Mesh::addNormals() {
    NormalMaker made(*this);
    for (const std::string& text : made.describe())
        ZTK_LOG("error", "o3d", "Mesh '%s': %s", mName.c_str(), text.c_str());
    if (made.isFatal())
        Vector3f(0.0f, 0.0f, 0.0f).normalize(); // asserts
    for (size_t i = 0; i < mSubmeshes.size(); ++i)
        mSubmeshes[i]->mTangentSpaces = std::move(made.mSpaces[i]);
}

} // namespace zentrak::o3d
