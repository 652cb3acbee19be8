#include "gml_mesh.h"

#include "dis_glcheck.h"
#include "dis_vertexformat.h"
#include "ztk_system.h"

#include <cassert>
#include <climits>
#include <cstdint>

namespace zentrak::gimli {

using display::IBO;
using display::VertexP3N3T2A4A4;
using mathbase::Vector2f;
using mathbase::Vector3f;
using mathbase::Vector4f;

namespace {

// The smallest index type for this many vertices.
IBO::Format indexFormat(int vertices) {
    return vertices <= 255 ? IBO::FORMAT_UINT8 : vertices <= 65535 ? IBO::FORMAT_UINT16 : IBO::FORMAT_UINT32;
}

} // namespace

Mesh::Mesh(display::DisplayGL* display) : mVBO(nullptr), mIBO(nullptr), mDisplay(display) {}

void Mesh::clear() {
    mIBO.clear();
    mVBO.clear();
    mSubmeshes.clear();
    mVertices = mIndices = 0;
}

void Mesh::load(o3d::Mesh* mesh, int) {
    if (!mesh->hasNormals())
        mesh->addNormals();
    load(static_cast<const o3d::Mesh*>(mesh), 0);
}

void Mesh::load(const o3d::Mesh* mesh, int) {
    assert(mDisplay!=0);
    clear();
    mVBO.setDisplay(mDisplay);
    mIBO.setDisplay(mDisplay);
    mBoxMin = mesh->mBoxMin;
    mBoxMax = mesh->mBoxMax;
    mName = mesh->mName;
    try {
        layOut(*mesh);
        if (mVertices == 0 || mIndices == 0)
            return;
        makeBuffers();
        fillIndices(*mesh);
        fillVertices(*mesh);
    } catch (...) {
        clear();
        throw;
    }
}

// Computes where each Submesh lies in the two buffers.
void Mesh::layOut(const o3d::Mesh& mesh) {
    int64_t vertices = 0, indices = 0;
    for (const o3d::Submesh* part : mesh.mSubmeshes) {
        vertices += part->mTriangles.empty() ? 0 : int64_t(part->mIndices.size());
        indices += part->mIndices.empty() ? 0 : 3 * int64_t(part->mTriangles.size());
    }
    if (vertices > INT_MAX || indices > INT_MAX)
        throw Exception("Mesh '%.100s' is too large for the graphics card", mesh.mName.c_str());

    mSubmeshes.assign(mesh.mSubmeshes.size(), Submesh());
    for (size_t i = 0; i < mSubmeshes.size(); ++i) {
        const o3d::Submesh& part = *mesh.mSubmeshes[i];
        if (part.mTriangles.empty() || part.mIndices.empty())
            continue;
        mesh.checkIndices(i);
        Submesh& submesh = mSubmeshes[i];
        submesh.mFirstIndex = mIndices;
        submesh.mIndexCount = int(3 * part.mTriangles.size());
        submesh.mFirstVertex = mVertices;
        submesh.mVertexCount = int(part.mIndices.size());
        submesh.mMode = GL_TRIANGLES;
        mIndices += submesh.mIndexCount;
        mVertices += submesh.mVertexCount;
    }
}

void Mesh::makeBuffers() {
    mVBO.setup(VertexP3N3T2A4A4::format, mVertices, nullptr);
    GL_CHECK_STATUS();
    mIBO.setup(indexFormat(mVertices), mIndices, nullptr);
    GL_CHECK_STATUS();
}

void Mesh::fillIndices(const o3d::Mesh& mesh) {
    std::vector<uint32_t> numbers;
    mIBO.bind();
    for (size_t i = 0; i < mSubmeshes.size(); ++i) {
        const Submesh& submesh = mSubmeshes[i];
        if (submesh.mIndexCount < 1)
            continue;
        numbers.clear();
        for (const o3d::Triangle& triangle : mesh.mSubmeshes[i]->mTriangles)
            for (const int32_t local : triangle.mIndex)
                numbers.push_back(uint32_t(local));
        mIBO.replace(submesh.mFirstIndex, submesh.mIndexCount, numbers.data(), submesh.mFirstVertex,
                     IBO::FORMAT_UINT32);
    }
    mIBO.unbind();
}

// Attributes that the mesh lacks are left uninitialised.
void Mesh::fillVertices(const o3d::Mesh& mesh) {
    mVBO.bind();
    auto* vertex = static_cast<VertexP3N3T2A4A4*>(mVBO.lock(true, false));
    if (!vertex)
        throw Exception("Mesh '%.100s': the graphics card gives no room for its vertices", mName.c_str());
    for (size_t i = 0; i < mSubmeshes.size(); ++i) {
        if (mSubmeshes[i].mIndexCount < 1)
            continue;
        const o3d::Submesh& part = *mesh.mSubmeshes[i];
        const bool hasSpaces = part.mTangentSpaces.size() >= part.mIndices.size();
        if (!hasSpaces)
            ZTK_LOG("warning", "o3d", "Mesh '%s' has no normals", mName.c_str());
        const o3d::StructList<Vector3f>* uv = nullptr;
        if (!part.mTexCoords.empty()) {
            uv = part.mTexCoords.front();
            assert(uv!=0);
        }
        for (size_t j = 0; j < part.mIndices.size(); ++j, ++vertex) {
            vertex->p = mesh.mVertices[size_t(part.mIndices[j].mValue)];
            if (hasSpaces) {
                const o3d::TangentSpace& space = part.mTangentSpaces[j];
                vertex->n = space.mNormal;
                vertex->a1 = Vector4f(space.mTangent, 0);
                vertex->a2 = Vector4f(space.mBinormal, 0);
            }
            if (uv)
                vertex->t1 = Vector2f((*uv)[j].x, (*uv)[j].y);
        }
    }
    mVBO.unlock();
    mVBO.unbind();
    GL_CHECK_STATUS();
}

void Mesh::drawSubmesh(int index) {
    if (index >= 0 && size_t(index) < mSubmeshes.size())
        drawSubmesh(index, static_cast<unsigned int>(mSubmeshes[size_t(index)].mMode));
}

void Mesh::drawSubmesh(int index, unsigned int mode) {
    if (index < 0 || size_t(index) >= mSubmeshes.size())
        return;
    const Submesh& submesh = mSubmeshes[size_t(index)];
    if (submesh.mIndexCount < 1 || submesh.mVertexCount < 1)
        return;
    mDisplay->setVBO(&mVBO);
    mDisplay->setIBO(&mIBO);
    mDisplay->draw(mode, submesh.mFirstIndex, submesh.mIndexCount, submesh.mFirstVertex,
                   submesh.mVertexCount);
}

void Mesh::superDraw() {
    for (int i = 0; size_t(i) < mSubmeshes.size(); ++i)
        drawSubmesh(i);
}

} // namespace zentrak::gimli
