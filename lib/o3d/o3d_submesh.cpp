#include "o3d_chunk.h"
#include "o3d_load.h"
#include "o3d_mesh.h"
#include "ztk_system.h"

#include <cstring>
#include <memory>

namespace zentrak::o3d {

static constexpr size_t TRIANGLE_SIZE = 13; // bytes on file

Submesh::Submesh() : mMaterial(0), mParent(nullptr) {
    clear();
}

Submesh::~Submesh() {
    clear();
}

void Submesh::clear() {
    mTriangles.clear();
    mIndices.clear();
    mTangentSpaces.clear();
    for (StructList<Vector3f>* list : mTexCoords)
        delete list;
    mTexCoords.clear();
    mBoxMin = Vector3f(0.0f, 0.0f, 0.0f);
    mBoxMax = Vector3f(0.0f, 0.0f, 0.0f);
}

// In a file, triangles lack the padding that they have in memory.
static void loadTriangles(chunklib::ReadBuffer& buffer, std::vector<Triangle>& list) {
    static constexpr size_t BLOCK = 256;
    unsigned char bytes[BLOCK * TRIANGLE_SIZE];
    const size_t count = presentSize(buffer) / TRIANGLE_SIZE;
    list.clear();
    list.resize(count);
    for (size_t first = 0; first < count; first += BLOCK) {
        const size_t block = std::min(BLOCK, count - first);
        buffer.loadType(bytes, block * TRIANGLE_SIZE);
        for (size_t i = 0; i < block; ++i) {
            const unsigned char* from = bytes + i * TRIANGLE_SIZE;
            list[first + i].mFlag = from[0];
            memcpy(list[first + i].mIndex, from + 1, 12);
        }
    }
}

void Submesh::loadChunk(chunklib::ReadBuffer& buffer) {
    unsigned char material = static_cast<unsigned char>(mMaterial);
    buffer.loadType(&material, 1);
    mMaterial = material;

    while (const uint16_t id = buffer.openChunk()) {
        // A list that doesn't fit in memory ends up empty, and loading goes on.
        switch (id) {
        case CHUNK_TRIANGLES:
            try {
                loadTriangles(buffer, mTriangles);
            } catch (...) {
                mTriangles.clear();
            }
            break;
        case CHUNK_INDICES:
            try {
                loadPlainList(buffer, mIndices);
            } catch (...) {
                mIndices.clear();
            }
            updateBox();
            break;
        case CHUNK_TEXCOORDS: {
            auto list = std::make_unique<StructList<Vector3f>>();
            try {
                loadPlainList(buffer, list->mList);
            } catch (...) {
                list->mList.clear();
            }
            mTexCoords.push_back(list.get());
            list.release();
            break;
        }
        default:
            ZTK_LOG("warning", "o3d", "Submesh: Unknown chunk with ID=0x%X\n", id);
            break;
        }
        buffer.closeChunk();
    }
}

void Submesh::writeChunk(chunklib::WriteBuffer& buffer) const {
    buffer.openChunk(CHUNK_SUBMESH);
    writeValue(buffer, float(mMaterial)); // the loader reads a byte

    // An empty list writes no chunk.
    buffer.openChunk(CHUNK_TRIANGLES);
    for (const Triangle& triangle : mTriangles)
        writeValue(buffer, triangle);
    buffer.closeChunk();

    buffer.openChunk(CHUNK_INDICES);
    buffer.storeType(mIndices.data(), mIndices.size() * sizeof(Index));
    buffer.closeChunk();

    for (const StructList<Vector3f>* list : mTexCoords) {
        buffer.openChunk(CHUNK_TEXCOORDS);
        buffer.storeType(list->mList.data(), list->size() * sizeof(Vector3f));
        buffer.closeChunk();
    }
    buffer.closeChunk();
}

void Submesh::updateBox() {
    mBoxMin = Vector3f(0.0f, 0.0f, 0.0f);
    mBoxMax = Vector3f(0.0f, 0.0f, 0.0f);
    if (mParent == nullptr)
        return;
    const std::vector<Vector3f>& vertices = mParent->mVertices;
    bool started = false;
    for (const Index& index : mIndices) {
        if (index.mValue < 0 || size_t(index.mValue) >= vertices.size())
            continue;
        const Vector3f& vertex = vertices[index.mValue];
        if (!started) {
            mBoxMin = vertex;
            mBoxMax = vertex;
            started = true;
        } else {
            mBoxMin.min(vertex);
            mBoxMax.max(vertex);
        }
    }
}

} // namespace zentrak::o3d
