// The plain values in a .o3d file.
#pragma once

#include "mb_quat.h"
#include "mb_vector2.h"
#include "mb_vector3.h"
#include "mb_vector4.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zentrak::chunklib {
class ReadBuffer;
class WriteBuffer;
} // namespace zentrak::chunklib

namespace zentrak::o3d {

using mathbase::Quatf;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

// A position in a Mesh's vertices, from 0.
struct Index {
    int32_t mValue = 0;
};

// Three local vertex numbers: positions in the index list of the same Submesh, from 0. 13 bytes on file.
struct Triangle {
    unsigned char mFlag = 0; // never read
    int32_t mIndex[3] = {0, 0, 0};
};

// Read and written in order; nothing interprets them.
struct BoneGroupWeight {
    uint32_t mFirst = 0;
    uint32_t mSecond = 0;
};

using BoneGroupWeightList = std::vector<BoneGroupWeight>;

// Unit vectors at a local vertex; binormal and tangent are zero where there are no texture coordinates.
struct TangentSpace {
    Vector3f mNormal{0.0f, 0.0f, 0.0f};
    Vector3f mBinormal{0.0f, 0.0f, 0.0f};
    Vector3f mTangent{0.0f, 0.0f, 0.0f};
};

template <typename T>
struct StructList {
    std::vector<T> mList;

    size_t size() const { return mList.size(); }
    bool empty() const { return mList.empty(); }
    T& operator[](size_t i) { return mList[i]; }
    const T& operator[](size_t i) const { return mList[i]; }
};

// Read one value from the innermost open chunk. Parts of it that no longer fit keep their value; a string
// asserts "false" where the chunk ends before its zero byte.
void loadValue(chunklib::ReadBuffer& buffer, std::string* value);
void loadValue(chunklib::ReadBuffer& buffer, Index* value);
void loadValue(chunklib::ReadBuffer& buffer, Triangle* value);
void loadValue(chunklib::ReadBuffer& buffer, Quatf* value);
void loadValue(chunklib::ReadBuffer& buffer, BoneGroupWeight* value);
void loadValue(chunklib::ReadBuffer& buffer, Vector4f* value);
void loadValue(chunklib::ReadBuffer& buffer, float* value);
void loadValue(chunklib::ReadBuffer& buffer, Vector3f* value);
void loadValue(chunklib::ReadBuffer& buffer, Vector2f* value);

// Append a value to the innermost open chunk, in the form that is read.
void writeValue(chunklib::WriteBuffer& buffer, const std::string& value);
void writeValue(chunklib::WriteBuffer& buffer, const Index& value);
void writeValue(chunklib::WriteBuffer& buffer, const Triangle& value);
void writeValue(chunklib::WriteBuffer& buffer, const Quatf& value);
void writeValue(chunklib::WriteBuffer& buffer, const BoneGroupWeight& value);
void writeValue(chunklib::WriteBuffer& buffer, const Vector4f& value);
void writeValue(chunklib::WriteBuffer& buffer, const float& value);
void writeValue(chunklib::WriteBuffer& buffer, const Vector3f& value);
void writeValue(chunklib::WriteBuffer& buffer, const Vector2f& value);

} // namespace zentrak::o3d
