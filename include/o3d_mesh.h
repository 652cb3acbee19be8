// The geometry of a .o3d file, and normals and tangents computed from it.
#pragma once

#include "o3d_armature.h"
#include "o3d_value.h"

#include <string>
#include <vector>

namespace zentrak::o3d {

class Mesh;

// Triangles of one material, with vertex numbers of their own: local vertex i is at position mIndices[i] of
// the Mesh. Two local vertices with one position and different texture coordinates make a seam.
class Submesh {
public:
    Submesh();
    ~Submesh();
    Submesh(const Submesh&) = delete;
    Submesh& operator=(const Submesh&) = delete;

    // Empties everything but the material number and the parent.
    void clear();
    // Reads the chunk that is open, or writes the whole chunk.
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer) const;
    // The box of all positions in the index list, used by a triangle or not; all zero without any. An index
    // outside the parent's vertices does not count.
    void updateBox();

    Vector3f mBoxMin;
    Vector3f mBoxMax;
    int mMaterial; // index in the Mesh's material names
    std::vector<Triangle> mTriangles;
    std::vector<Index> mIndices;
    std::vector<StructList<Vector3f>*> mTexCoords; // owned; the first list counts, parallel to mIndices
    std::vector<TangentSpace> mTangentSpaces;      // parallel to mIndices, or empty
    Mesh* mParent;                                 // not owned
};

class Mesh {
public:
    Mesh();
    ~Mesh();
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    void clear();
    // Reads the chunk that is open, or writes the whole chunk. What is written is not what is read: the
    // material numbers and names take another form (docs/formats.md).
    void loadChunk(chunklib::ReadBuffer& buffer);
    void writeChunk(chunklib::WriteBuffer& buffer) const;

    // Whether every Submesh has tangent spaces. True without any Submesh.
    bool hasNormals() const;
    // Makes the tangent spaces of all Submeshes. Normals are smooth over all triangles at a position, of any
    // Submesh, without weights; tangents are smooth where the texture coordinates are closer than 0.1. Logs
    // what findFaults() finds, and asserts "length!=0" if any of it leaves a vertex without a normal or a
    // tangent. Throws as checkIndices() does, and on geometry that would take hours (a position with ten
    // thousands of vertices in ten thousands of triangles); the Mesh is then as it was.
    void addNormals();
    // What is wrong with the geometry for addNormals(), a sentence each, such as "2 triangles without area:
    // making normals ends the program". Throws as addNormals() does.
    std::vector<std::string> findFaults() const;
    void removeNormals();
    // The union of the Submeshes' boxes; without a Submesh it stays as it was.
    void updateBox();
    // Throws Exception, with the Mesh's name and the fault, if a triangle uses a local vertex that its
    // Submesh lacks, an index a position that the Mesh lacks, or the first texture coordinate list is shorter
    // than the index list. A file may contain such a Mesh: call this before following its indices.
    void checkIndices() const;
    void checkIndices(size_t submesh) const; // of one of them, counted from 0

    // The name of material number `i`; empty where there is none.
    const std::string& getMaterial(int i) const;

    // Weights of a group. Asserts that there is such a group, which no file brings.
    BoneGroupWeightList& getBoneGroup(int groupID);
    const BoneGroupWeightList& getBoneGroup(int groupID) const;
    // Always false: the comparison is reversed on purpose.
    bool hasBoneGroup(int groupID) const;

    std::string mName;
    std::vector<std::string> mMaterials; // names, by the Submeshes' material numbers
    std::vector<Vector3f> mVertices;     // positions
    std::vector<Submesh*> mSubmeshes;    // owned
    Vector3f mBoxMin;
    Vector3f mBoxMax;
    std::vector<BoneGroup*> mBoneGroup; // owned; stays empty when loading
};

} // namespace zentrak::o3d
