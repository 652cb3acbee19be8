// Loading a 100 MB scene compared with loading it value by value, normals compared with a linear search for
// the copies of a vertex, and sampling a thousand nodes compared with bisection.

#include "cl_readbuffer.h"
#include "cl_writebuffer.h"
#include "mb_matrix4x4col.h"
#include "mb_random.h"
#include "o3d_chunk.h"
#include "o3d_manager.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <new>
#include <string>
#include <vector>

using namespace zentrak;
using o3d::Vector3f;

// Bytes allocated, now and at the peak.

namespace {

size_t gHeld = 0;
size_t gPeak = 0;

void* allocate(size_t size) {
    void* const memory = malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    gHeld += malloc_usable_size(memory);
    gPeak = std::max(gPeak, gHeld);
    return memory;
}

void release(void* memory) {
    gHeld -= malloc_usable_size(memory);
    free(memory);
}

} // namespace

void* operator new(size_t size) {
    return allocate(size);
}
void* operator new[](size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    release(memory);
}

namespace {

// A textured grid of side * side quads with separate vertices for each row of the texture.
void addGrid(o3d::Mesh& mesh, int side) {
    auto* const submesh = new o3d::Submesh;
    submesh->mParent = &mesh;
    mesh.mSubmeshes.push_back(submesh);
    auto* const uv = new o3d::StructList<Vector3f>;
    submesh->mTexCoords.push_back(uv);
    const int first = int(mesh.mVertices.size());
    for (int y = 0; y <= side; ++y)
        for (int x = 0; x <= side; ++x) {
            const float u = float(x), v = float(y);
            mesh.mVertices.emplace_back(u, v, sinf(u * 0.1f) * cosf(v * 0.1f));
            for (int copy = 0; copy < (y % 4 == 0 ? 2 : 1); ++copy) { // a seam at every fourth row
                o3d::Index index;
                index.mValue = first + y * (side + 1) + x;
                submesh->mIndices.push_back(index);
                uv->mList.emplace_back(u * 0.3f, v * 0.3f + 5.0f * float(copy), 0.0f);
            }
        }
    // Local indices of a row: its own triangles use the first copy below, the second above a seam.
    std::vector<int> row(size_t(side) + 2, 0);
    for (int y = 0; y <= side; ++y)
        row[size_t(y) + 1] = row[size_t(y)] + (side + 1) * (y % 4 == 0 ? 2 : 1);
    const auto local = [&](int x, int y, int copy) {
        return row[size_t(y)] + (y % 4 == 0 ? 2 * x + copy : x);
    };
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            o3d::Triangle a, b;
            const int corners[4] = {local(x, y, 1), local(x + 1, y, 1), local(x + 1, y + 1, 0),
                                    local(x, y + 1, 0)};
            a.mIndex[0] = b.mIndex[0] = corners[0];
            a.mIndex[1] = corners[1];
            a.mIndex[2] = b.mIndex[1] = corners[2];
            b.mIndex[2] = corners[3];
            submesh->mTriangles.push_back(a);
            submesh->mTriangles.push_back(b);
        }
    // The first copies of the first row and the second copies of the last row have no triangle: put them
    // where the others are.
    for (int x = 0; x <= side; ++x) {
        uv->mList[size_t(local(x, 0, 0))] = uv->mList[size_t(local(x, 0, 1))];
        if (side % 4 == 0)
            uv->mList[size_t(local(x, side, 1))] = uv->mList[size_t(local(x, side, 0))];
    }
}

// A file of about `size` bytes of grids, in the loader's form.
const std::string& sceneOf(size_t size) {
    static std::string image;
    if (image.size() >= size)
        return image;
    o3d::Mesh mesh;
    addGrid(mesh, 400);
    chunklib::WriteBuffer buffer("O3DF", 1, 1, 1);
    buffer.mData.reserve(size + size / 8);
    const o3d::Submesh& submesh = *mesh.mSubmeshes[0];
    buffer.openChunk(o3d::CHUNK_MAIN);
    while (buffer.mData.size() < size) {
        const unsigned char material = 0;
        buffer.openChunk(o3d::CHUNK_MESH);
        o3d::writeValue(buffer, "mesh" + std::to_string(buffer.mData.size()));
        buffer.openChunk(o3d::CHUNK_VERTICES);
        buffer.store(mesh.mVertices.data(), mesh.mVertices.size() * 12);
        buffer.closeChunk();
        buffer.openChunk(o3d::CHUNK_SUBMESH);
        buffer.store(&material, 1);
        buffer.openChunk(o3d::CHUNK_TRIANGLES);
        for (const o3d::Triangle& triangle : submesh.mTriangles)
            o3d::writeValue(buffer, triangle);
        buffer.closeChunk();
        buffer.openChunk(o3d::CHUNK_INDICES);
        buffer.store(submesh.mIndices.data(), submesh.mIndices.size() * 4);
        buffer.closeChunk();
        buffer.openChunk(o3d::CHUNK_TEXCOORDS);
        buffer.store(submesh.mTexCoords[0]->mList.data(), submesh.mTexCoords[0]->size() * 12);
        buffer.closeChunk();
        buffer.closeChunk();
        buffer.openChunk(o3d::CHUNK_MATERIALNAMES);
        o3d::writeValue(buffer, std::string("stone"));
        buffer.closeChunk();
        buffer.closeChunk();
    }
    buffer.closeChunk();
    image.assign(buffer.mData.begin(), buffer.mData.end());
    return image;
}

constexpr size_t HUNDRED_MEGABYTES = 100000000;

// Loads a 100 MB scene. "memory" is the peak, including the file image, as a multiple of the file size.
void load(benchmark::State& state) {
    const std::string& image = sceneOf(HUNDRED_MEGABYTES);
    double memory = 0;
    for (auto _ : state) {
        o3d::Manager manager;
        const size_t before = gHeld;
        gPeak = gHeld;
        manager.load(reinterpret_cast<const unsigned char*>(image.data()), int(image.size()));
        memory = 1.0 + double(gPeak - before) / double(image.size());
        state.PauseTiming();
        manager.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(image.size()));
    state.counters["memory"] = memory;
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

// The same lists with a bounds check per value, growing as they are read.
template <typename T>
void loadList(chunklib::ReadBuffer& buffer, std::vector<T>& list, uint32_t size) {
    for (uint32_t i = buffer.currentChunkSize() / size; i > 0; --i) {
        T value;
        o3d::loadValue(buffer, &value);
        list.push_back(value);
    }
}

void loadValueByValue(benchmark::State& state) {
    const std::string& image = sceneOf(HUNDRED_MEGABYTES);
    double memory = 0;
    for (auto _ : state) {
        std::vector<std::unique_ptr<o3d::Mesh>> meshes;
        const size_t before = gHeld;
        gPeak = gHeld;
        chunklib::ReadBuffer buffer(image.data(), int(image.size()));
        buffer.openChunk();
        while (buffer.openChunk() != 0) {
            meshes.push_back(std::make_unique<o3d::Mesh>());
            o3d::loadValue(buffer, &meshes.back()->mName);
            while (const uint16_t id = buffer.openChunk()) {
                if (id == o3d::CHUNK_VERTICES)
                    loadList(buffer, meshes.back()->mVertices, 12);
                if (id == o3d::CHUNK_SUBMESH) {
                    auto* const submesh = new o3d::Submesh;
                    submesh->mParent = meshes.back().get();
                    meshes.back()->mSubmeshes.push_back(submesh);
                    char material = 0;
                    buffer.loadType(&material, 1);
                    while (const uint16_t inner = buffer.openChunk()) {
                        if (inner == o3d::CHUNK_TRIANGLES)
                            loadList(buffer, submesh->mTriangles, 13);
                        if (inner == o3d::CHUNK_INDICES)
                            loadList(buffer, submesh->mIndices, 4);
                        if (inner == o3d::CHUNK_TEXCOORDS) {
                            submesh->mTexCoords.push_back(new o3d::StructList<Vector3f>);
                            loadList(buffer, submesh->mTexCoords.back()->mList, 12);
                        }
                        buffer.closeChunk();
                    }
                    submesh->updateBox();
                }
                buffer.closeChunk();
            }
            meshes.back()->updateBox();
            buffer.closeChunk();
        }
        memory = 1.0 + double(gPeak - before) / double(image.size());
        state.PauseTiming();
        meshes.clear();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(image.size()));
    state.counters["memory"] = memory;
}
BENCHMARK(loadValueByValue)->Unit(benchmark::kMillisecond);

// Items are triangles.
void addNormals(benchmark::State& state) {
    o3d::Mesh mesh;
    addGrid(mesh, int(state.range(0)));
    for (auto _ : state)
        mesh.addNormals();
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(mesh.mSubmeshes[0]->mTriangles.size()));
}
BENCHMARK(addNormals)->Arg(32)->Arg(700)->Unit(benchmark::kMillisecond);

// The tangents alone, finding the copies of each corner by searching all vertices.
void tangentsBySearch(benchmark::State& state) {
    o3d::Mesh mesh;
    addGrid(mesh, int(state.range(0)));
    const o3d::Submesh& submesh = *mesh.mSubmeshes[0];
    const std::vector<Vector3f>& uv = submesh.mTexCoords[0]->mList;
    std::vector<o3d::TangentSpace> spaces(submesh.mIndices.size());
    for (auto _ : state) {
        std::fill(spaces.begin(), spaces.end(), o3d::TangentSpace());
        for (const o3d::Triangle& triangle : submesh.mTriangles) {
            const auto place = [&](int corner) {
                return mesh.mVertices[size_t(submesh.mIndices[size_t(triangle.mIndex[corner])].mValue)];
            };
            const auto at = [&](int corner) { return uv[size_t(triangle.mIndex[corner])]; };
            const Vector3f e1 = place(1) - place(0), e2 = place(2) - place(0);
            const Vector3f d1 = at(1) - at(0), d2 = at(2) - at(0);
            const float r = 1.0f / (d1.x * d2.y - d2.x * d1.y);
            for (int corner = 0; corner < 3; ++corner) {
                const int position = submesh.mIndices[size_t(triangle.mIndex[corner])].mValue;
                for (size_t j = 0; j < spaces.size(); ++j)
                    if (submesh.mIndices[j].mValue == position && (uv[j] - at(corner)).length2() < 0.01f) {
                        spaces[j].mTangent += (e1 * d2.y - e2 * d1.y) * r;
                        spaces[j].mBinormal += (e2 * d1.x - e1 * d2.x) * r;
                    }
            }
        }
        benchmark::DoNotOptimize(spaces.data());
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(submesh.mTriangles.size()));
}
BENCHMARK(tangentsBySearch)->Arg(32)->Unit(benchmark::kMillisecond);

// A thousand nodes of nine tracks with twenty Bezier keys each.
struct Nodes {
    std::vector<o3d::Dummy> nodes;
    float length = 38.0f;

    Nodes() : nodes(1000) {
        mathbase::Random random(1);
        for (o3d::Dummy& node : nodes)
            for (auto* track : tracksOf(node))
                for (int i = 0; i < 20; ++i) {
                    const float time = 2.0f * float(i), reach = 0.2f + 0.8f * random.uniform();
                    const float value = 0.5f + random.uniform();
                    track->mInterpolation = 2;
                    track->mKeys.push_back({time - reach, value - random.uniform(), time, value, time + reach,
                                            value + random.uniform()});
                }
    }

    static std::vector<o3d::TrackBlenderFloat*> tracksOf(o3d::Dummy& node) {
        return {&node.mPosition.mX, &node.mPosition.mY, &node.mPosition.mZ,
                &node.mRotation.mX, &node.mRotation.mY, &node.mRotation.mZ,
                &node.mScale.mX,    &node.mScale.mY,    &node.mScale.mZ};
    }
};

void sampleNodes(benchmark::State& state) {
    Nodes scene;
    float time = 0;
    mathbase::Matrix4x4Col matrix;
    for (auto _ : state) {
        time = fmodf(time + 0.0167f, scene.length);
        for (const o3d::Dummy& node : scene.nodes) {
            node.calculateMatrix(time, matrix);
            benchmark::DoNotOptimize(matrix);
        }
    }
}
BENCHMARK(sampleNodes)->Unit(benchmark::kMillisecond);

// The same tracks, each time found by bisection to the limit of single precision.
float bisect(const o3d::TrackBlenderFloat& track, float time) {
    size_t segment = 0;
    while (segment + 2 < track.mKeys.size() && track.mKeys[segment + 1].mTime <= time)
        ++segment;
    const auto& a = track.mKeys[segment];
    const auto& b = track.mKeys[segment + 1];
    const auto curve = [](double u, double p0, double p1, double p2, double p3) {
        const double v = 1 - u;
        return v * v * v * p0 + 3 * u * v * v * p1 + 3 * u * u * v * p2 + u * u * u * p3;
    };
    double low = 0, high = 1;
    for (int i = 0; i < 24; ++i) {
        const double middle = (low + high) / 2;
        (curve(middle, a.mTime, a.mHandleOutTime, b.mHandleInTime, b.mTime) < time ? low : high) = middle;
    }
    return float(curve((low + high) / 2, a.mValue, a.mHandleOutValue, b.mHandleInValue, b.mValue));
}

void sampleNodesByBisection(benchmark::State& state) {
    Nodes scene;
    float time = 0;
    for (auto _ : state) {
        time = fmodf(time + 0.0167f, scene.length);
        for (o3d::Dummy& node : scene.nodes) {
            float sum = 0;
            for (const auto* track :
                 {&node.mPosition.mX, &node.mPosition.mY, &node.mPosition.mZ, &node.mRotation.mX,
                  &node.mRotation.mY, &node.mRotation.mZ, &node.mScale.mX, &node.mScale.mY, &node.mScale.mZ})
                sum += bisect(*track, time);
            benchmark::DoNotOptimize(sum);
        }
    }
}
BENCHMARK(sampleNodesByBisection)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
