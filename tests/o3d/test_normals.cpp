#include "o3d_mesh.h"
#include "ztk_system.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

using namespace zentrak;
using o3d::TangentSpace;
using o3d::Vector3f;

namespace {

// Adds a Submesh of local vertices for these positions, with texture coordinates if there are any.
o3d::Submesh& addSubmesh(o3d::Mesh& mesh, const std::vector<int>& positions,
                         const std::vector<std::array<int, 3>>& triangles,
                         const std::vector<Vector3f>& uv = {}) {
    o3d::Submesh* const submesh = new o3d::Submesh;
    mesh.mSubmeshes.push_back(submesh);
    submesh->mParent = &mesh;
    for (const int position : positions) {
        submesh->mIndices.emplace_back();
        submesh->mIndices.back().mValue = position;
    }
    for (const auto& corners : triangles) {
        submesh->mTriangles.emplace_back();
        for (int i = 0; i < 3; ++i)
            submesh->mTriangles.back().mIndex[i] = corners[size_t(i)];
    }
    if (!uv.empty()) {
        submesh->mTexCoords.push_back(new o3d::StructList<Vector3f>);
        submesh->mTexCoords.back()->mList = uv;
    }
    return *submesh;
}

void expectNear(const Vector3f& expected, const Vector3f& found, float tolerance = 1e-6f) {
    EXPECT_NEAR(expected.x, found.x, tolerance);
    EXPECT_NEAR(expected.y, found.y, tolerance);
    EXPECT_NEAR(expected.z, found.z, tolerance);
}

// Are the three of unit length and perpendicular to each other?
void expectFrame(const TangentSpace& space) {
    for (const Vector3f* v : {&space.mNormal, &space.mBinormal, &space.mTangent})
        EXPECT_NEAR(1.0f, v->length(), 1e-5f);
    EXPECT_NEAR(0.0f, space.mNormal.dot(space.mTangent), 1e-5f);
    EXPECT_NEAR(0.0f, space.mNormal.dot(space.mBinormal), 1e-5f);
    EXPECT_NEAR(0.0f, space.mTangent.dot(space.mBinormal), 1e-5f);
}

// One triangle in the plane z = 0, facing +z.
void makeTriangle(o3d::Mesh& mesh) {
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0)};
}

TEST(Normals, AMeshWithoutASubmeshHasThem) {
    o3d::Mesh mesh;
    EXPECT_TRUE(mesh.hasNormals());
    mesh.addNormals();
    EXPECT_TRUE(mesh.hasNormals());
}

TEST(Normals, EverySubmeshNeedsThem) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}}).mTangentSpaces.resize(3);
    EXPECT_TRUE(mesh.hasNormals());
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    EXPECT_FALSE(mesh.hasNormals());
    mesh.addNormals();
    EXPECT_TRUE(mesh.hasNormals());
}

TEST(Normals, RemovingThemLeavesNone) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    mesh.addNormals();
    mesh.removeNormals();
    EXPECT_FALSE(mesh.hasNormals());
    EXPECT_TRUE(mesh.mSubmeshes[0]->mTangentSpaces.empty());
}

TEST(Normals, WithoutTextureCoordinatesTangentsAreZero) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    const o3d::Submesh& submesh = addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    mesh.addNormals();
    ASSERT_EQ(3u, submesh.mTangentSpaces.size());
    for (const TangentSpace& space : submesh.mTangentSpaces) {
        EXPECT_EQ(Vector3f(0, 0, 1), space.mNormal);
        EXPECT_EQ(Vector3f(0, 0, 0), space.mTangent);
        EXPECT_EQ(Vector3f(0, 0, 0), space.mBinormal);
    }
}

TEST(Normals, TangentFollowsTheFirstCoordinateAndBinormalTheSecond) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    // The texture is rotated by 90 degrees and mirrored: u runs along +y, v along +x.
    const o3d::Submesh& submesh =
        addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}}, {Vector3f(0, 0, 0), Vector3f(0, 2, 0), Vector3f(3, 0, 0)});
    mesh.addNormals();
    for (const TangentSpace& space : submesh.mTangentSpaces) {
        expectNear(Vector3f(0, 0, 1), space.mNormal);
        expectNear(Vector3f(0, 1, 0), space.mTangent);
        expectNear(Vector3f(1, 0, 0), space.mBinormal);
    }
}

TEST(Normals, SharedVerticesOfAFoldedQuadGetTheUnweightedSum) {
    // A large triangle that faces +z and a small one that faces +x share the edge along y.
    o3d::Mesh mesh;
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(0, 1, 0), Vector3f(-50, 0, 0), Vector3f(0, 0, -0.25f)};
    const o3d::Submesh& submesh = addSubmesh(mesh, {0, 1, 2, 3}, {{0, 1, 2}, {0, 3, 1}});
    mesh.addNormals();
    const float half = 0.70710678f;
    expectNear(Vector3f(half, 0, half), submesh.mTangentSpaces[0].mNormal);
    expectNear(Vector3f(half, 0, half), submesh.mTangentSpaces[1].mNormal);
    expectNear(Vector3f(0, 0, 1), submesh.mTangentSpaces[2].mNormal);
    expectNear(Vector3f(1, 0, 0), submesh.mTangentSpaces[3].mNormal);
}

// The eight corners of a cube around the origin, numbered by the bits of x, y and z.
void makeCube(o3d::Mesh& mesh) {
    for (int i = 0; i < 8; ++i)
        mesh.mVertices.emplace_back((i & 1) != 0 ? 1.0f : -1.0f, (i & 2) != 0 ? 1.0f : -1.0f,
                                    (i & 4) != 0 ? 1.0f : -1.0f);
}

// The corners of its faces, counterclockwise from outside.
const std::array<int, 4> CUBE_FACES[6] = {{1, 3, 7, 5}, {0, 4, 6, 2}, {2, 6, 7, 3},
                                          {0, 1, 5, 4}, {4, 5, 7, 6}, {0, 2, 3, 1}};

TEST(Normals, SmoothAcrossSubmeshesThatShareThePositionsOfACube) {
    o3d::Mesh mesh;
    makeCube(mesh);
    for (const auto& face : CUBE_FACES) {
        // Two triangles at each end of the diagonal, one at the other corners: over both diagonals, each
        // counts equally.
        addSubmesh(mesh, {face[0], face[1], face[2], face[3]}, {{0, 1, 2}, {0, 2, 3}, {0, 1, 3}, {1, 2, 3}},
                   {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(1, 1, 0), Vector3f(0, 1, 0)});
    }
    mesh.addNormals();
    const Vector3f axes[6] = {Vector3f(1, 0, 0),  Vector3f(-1, 0, 0), Vector3f(0, 1, 0),
                              Vector3f(0, -1, 0), Vector3f(0, 0, 1),  Vector3f(0, 0, -1)};
    for (size_t face = 0; face < 6; ++face)
        for (size_t i = 0; i < 4; ++i) {
            const TangentSpace& space = mesh.mSubmeshes[face]->mTangentSpaces[i];
            const Vector3f& corner = mesh.mVertices[size_t(CUBE_FACES[face][i])];
            expectNear(corner.getNormalized(), space.mNormal);
            expectFrame(space);
            // The tangent belongs to its face: the face's u direction, made perpendicular to the smooth
            // normal.
            const Vector3f u =
                mesh.mVertices[size_t(CUBE_FACES[face][1])] - mesh.mVertices[size_t(CUBE_FACES[face][0])];
            EXPECT_GT(space.mTangent.dot(u), 0.5f);
            EXPECT_GT(space.mNormal.dot(axes[face]), 0.5f);
        }
}

// Two triangles that share the edge from (0,0,0) to (0,1,0), each with its own vertices, and a fold along it.
// The texture of the right one is offset by `gap`.
const o3d::Submesh& makeSeam(o3d::Mesh& mesh, const Vector3f& gap) {
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(0, 1, 0), Vector3f(-1, 0, -1), Vector3f(1, 0, -1)};
    const o3d::Submesh& submesh =
        addSubmesh(mesh, {0, 1, 2, 0, 1, 3}, {{0, 1, 2}, {3, 5, 4}},
                   {Vector3f(1, 0, 0), Vector3f(1, 1, 0), Vector3f(0, 0, 0), Vector3f(1, 0, 0) + gap,
                    Vector3f(1, 1, 0) + gap, Vector3f(2, 0, 0) + gap});
    mesh.addNormals();
    return submesh;
}

TEST(Normals, CopiesCloseInTheTextureShareTheirTangents) {
    o3d::Mesh mesh;
    const o3d::Submesh& submesh = makeSeam(mesh, Vector3f(0.09f, 0, 0));
    expectNear(submesh.mTangentSpaces[0].mTangent, submesh.mTangentSpaces[3].mTangent);
    expectNear(Vector3f(1, 0, 0), submesh.mTangentSpaces[0].mTangent);
    expectNear(Vector3f(0, 0, 1), submesh.mTangentSpaces[0].mNormal);
}

TEST(Normals, CopiesFurtherApartHaveTangentsOfTheirOwnAndOneNormal) {
    o3d::Mesh mesh;
    const o3d::Submesh& submesh = makeSeam(mesh, Vector3f(0, 5, 0));
    EXPECT_EQ(submesh.mTangentSpaces[0].mNormal, submesh.mTangentSpaces[3].mNormal);
    // Both are made perpendicular to the shared normal, +z: only x is left of the triangles' directions.
    expectNear(Vector3f(1, 0, 0), submesh.mTangentSpaces[0].mTangent);
    // At the outer corners nothing is shared.
    const float half = 0.70710678f;
    expectNear(Vector3f(half, 0, half), submesh.mTangentSpaces[2].mTangent);
    expectNear(Vector3f(half, 0, -half), submesh.mTangentSpaces[5].mTangent);
}

// The tangents at the seam of a flat quad whose right half has its texture rotated: along +x on the left,
// along +y on the right, where the coordinates differ by `apart` in one direction of the texture.
bool sharesTangents(const Vector3f& apart) {
    o3d::Mesh mesh;
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(0, 1, 0), Vector3f(-1, 0, 0), Vector3f(1, 0, 0)};
    const o3d::Submesh& submesh = addSubmesh(mesh, {0, 1, 2, 0, 1, 3}, {{0, 1, 2}, {3, 5, 4}},
                                             {Vector3f(0, 0, 0), Vector3f(0, 1, 0), Vector3f(-1, 0, 0), apart,
                                              Vector3f(1, 0, 0) + apart, Vector3f(0, -1, 0) + apart});
    mesh.addNormals();
    const Vector3f left = submesh.mTangentSpaces[0].mTangent;
    const bool shared = left.y > 0.5f;
    expectNear(shared ? Vector3f(0.70710678f, 0.70710678f, 0) : Vector3f(1, 0, 0), left);
    expectNear(shared ? left : Vector3f(0, 1, 0), submesh.mTangentSpaces[3].mTangent);
    return shared;
}

TEST(Normals, CoordinatesATenthApartAreNotTheSame) {
    // As a float 0.1 is a little larger, and its square is larger than the float 0.01; one step below counts
    // as the same point.
    EXPECT_FALSE(sharesTangents(Vector3f(0.1f, 0, 0)));
    EXPECT_FALSE(sharesTangents(Vector3f(0, 0.1001f, 0)));
    EXPECT_TRUE(sharesTangents(Vector3f(0.0999f, 0, 0)));
    EXPECT_TRUE(sharesTangents(Vector3f(0, 0, 0)));
}

TEST(Normals, TheThirdCoordinateTakesPartInTheComparison) {
    EXPECT_FALSE(sharesTangents(Vector3f(0, 0, 0.2f)));
    EXPECT_FALSE(sharesTangents(Vector3f(0, 0.08f, 0.08f)));
    EXPECT_TRUE(sharesTangents(Vector3f(0, 0.06f, 0.06f)));
}

// A sphere of `rings` times `segments` quads with poles; the texture wraps round it and is cut along one
// meridian.
o3d::Submesh& makeSphere(o3d::Mesh& mesh, int rings, int segments) {
    std::vector<int> positions;
    std::vector<Vector3f> uv;
    std::vector<std::array<int, 3>> triangles;
    const float pi = 3.14159265f;
    mesh.mVertices = {Vector3f(0, 0, 1), Vector3f(0, 0, -1)};
    for (int ring = 1; ring < rings; ++ring)
        for (int segment = 0; segment < segments; ++segment) {
            const float theta = pi * float(ring) / float(rings);
            const float phi = 2 * pi * float(segment) / float(segments);
            mesh.mVertices.emplace_back(sinf(theta) * cosf(phi), sinf(theta) * sinf(phi), cosf(theta));
        }
    // One more column of local vertices than of positions, for the seam.
    const auto local = [&](int ring, int segment) { return ring * (segments + 1) + segment; };
    for (int ring = 0; ring <= rings; ++ring)
        for (int segment = 0; segment <= segments; ++segment) {
            positions.push_back(ring == 0       ? 0
                                : ring == rings ? 1
                                                : 2 + (ring - 1) * segments + segment % segments);
            uv.emplace_back(float(segment) / float(segments) * 6.2831853f,
                            float(ring) / float(rings) * 3.14159265f, 0.0f);
        }
    for (int ring = 0; ring < rings; ++ring)
        for (int segment = 0; segment < segments; ++segment) {
            if (ring > 0)
                triangles.push_back(
                    {local(ring, segment), local(ring + 1, segment), local(ring, segment + 1)});
            if (ring + 1 < rings)
                triangles.push_back(
                    {local(ring, segment + 1), local(ring + 1, segment), local(ring + 1, segment + 1)});
        }
    return addSubmesh(mesh, positions, triangles, uv);
}

TEST(Normals, OfASpherePointOutwardsAndTangentsRunAroundIt) {
    o3d::Mesh mesh;
    const int rings = 48, segments = 96;
    o3d::Submesh& sphere = makeSphere(mesh, rings, segments);
    mesh.addNormals();
    for (size_t i = 0; i < sphere.mIndices.size(); ++i) {
        const TangentSpace& space = sphere.mTangentSpaces[i];
        const Vector3f& position = mesh.mVertices[size_t(sphere.mIndices[i].mValue)];
        EXPECT_GT(space.mNormal.dot(position), 0.9995f);
        const int ring = int(i) / (segments + 1);
        if (ring < 2 || ring > rings - 2)
            continue; // at the poles the direction is undefined
        expectFrame(space);
        const Vector3f around = Vector3f(-position.y, position.x, 0).getNormalized();
        const Vector3f down = position.cross(around) * -1.0f; // the direction of increasing v
        EXPECT_GT(space.mTangent.dot(around), 0.99f) << i;
        EXPECT_GT(space.mBinormal.dot(down), 0.99f) << i;
    }
}

TEST(Normals, SeamOfASphereHasOneNormalAndNearlyOneTangent) {
    o3d::Mesh mesh;
    const int rings = 24, segments = 64;
    const o3d::Submesh& sphere = makeSphere(mesh, rings, segments);
    mesh.addNormals();
    for (int ring = 2; ring < rings - 1; ++ring) {
        const size_t first = size_t(ring * (segments + 1)), last = first + segments;
        ASSERT_EQ(sphere.mIndices[first].mValue, sphere.mIndices[last].mValue);
        EXPECT_EQ(sphere.mTangentSpaces[first].mNormal, sphere.mTangentSpaces[last].mNormal);
        // Each side sums only its own triangles, so they differ slightly.
        EXPECT_GT(sphere.mTangentSpaces[first].mTangent.dot(sphere.mTangentSpaces[last].mTangent), 0.99f);
        EXPECT_FALSE(sphere.mTangentSpaces[first].mTangent == sphere.mTangentSpaces[last].mTangent);
    }
}

// The same algorithm with a linear search instead of the map, written from its description.
std::vector<std::vector<TangentSpace>> plainNormals(const o3d::Mesh& mesh) {
    std::vector<std::vector<TangentSpace>> result;
    std::vector<Vector3f> sums(mesh.mVertices.size(), Vector3f(0, 0, 0));
    for (const o3d::Submesh* submesh : mesh.mSubmeshes) {
        std::vector<TangentSpace> spaces(submesh->mIndices.size());
        for (const o3d::Triangle& triangle : submesh->mTriangles) {
            const int* t = triangle.mIndex;
            const auto position = [&](int local) { return submesh->mIndices[size_t(local)].mValue; };
            const auto place = [&](int local) { return mesh.mVertices[size_t(position(local))]; };
            const Vector3f e1 = place(t[1]) - place(t[0]), e2 = place(t[2]) - place(t[0]);
            if (!submesh->mTexCoords.empty()) {
                const auto& uv = submesh->mTexCoords[0]->mList;
                const auto at = [&](int local) { return uv[size_t(local)]; };
                const Vector3f d1 = at(t[1]) - at(t[0]), d2 = at(t[2]) - at(t[0]);
                const float r = 1.0f / (d1.x * d2.y - d2.x * d1.y);
                for (int corner = 0; corner < 3; ++corner)
                    for (size_t j = 0; j < spaces.size(); ++j)
                        if (position(int(j)) == position(t[corner]) &&
                            (uv[j] - at(t[corner])).length2() < 0.01f) {
                            spaces[j].mTangent += (e1 * d2.y - e2 * d1.y) * r;
                            spaces[j].mBinormal += (e2 * d1.x - e1 * d2.x) * r;
                        }
            }
            for (int corner = 0; corner < 3; ++corner)
                sums[size_t(position(t[corner]))] += e1.cross(e2).getNormalized();
        }
        result.push_back(spaces);
    }
    for (size_t s = 0; s < result.size(); ++s)
        for (size_t i = 0; i < result[s].size(); ++i) {
            TangentSpace& space = result[s][i];
            space.mNormal = sums[size_t(mesh.mSubmeshes[s]->mIndices[i].mValue)].getNormalized();
            if (mesh.mSubmeshes[s]->mTexCoords.empty())
                continue;
            const Vector3f n = space.mNormal;
            space.mTangent = (space.mTangent - n * n.dot(space.mTangent)).getNormalized();
            space.mBinormal = space.mBinormal - n * n.dot(space.mBinormal);
            space.mBinormal =
                (space.mBinormal - space.mTangent * space.mTangent.dot(space.mBinormal)).getNormalized();
        }
    return result;
}

TEST(Normals, RandomMeshesAgreeWithAPlainSearch) {
    std::mt19937 random(4);
    std::uniform_real_distribution<float> any(-1, 1);
    for (int round = 0; round < 60; ++round) {
        o3d::Mesh mesh;
        const int positions = 8 + int(random() % 20);
        for (int i = 0; i < positions; ++i)
            mesh.mVertices.emplace_back(any(random), any(random), any(random));
        const int submeshes = 1 + int(random() % 3);
        for (int s = 0; s < submeshes; ++s) {
            std::vector<int> indices;
            std::vector<Vector3f> uv;
            std::vector<std::array<int, 3>> triangles;
            // Every position in every Submesh, some several times, at texture coordinates that often
            // coincide.
            for (int i = 0; i < positions * 3; ++i) {
                indices.push_back(i < positions ? i : int(random() % unsigned(positions)));
                uv.emplace_back(float(random() % 8) * 0.07f, float(random() % 8) * 0.07f,
                                float(random() % 2) * 0.05f);
            }
            const auto good = [&](const std::array<int, 3>& t) {
                const auto at = [&](int i) { return uv[size_t(t[size_t(i)])]; };
                const auto of = [&](int i) { return indices[size_t(t[size_t(i)])]; };
                const Vector3f d1 = at(1) - at(0), d2 = at(2) - at(0);
                return of(0) != of(1) && of(1) != of(2) && of(2) != of(0) &&
                       fabsf(d1.x * d2.y - d2.x * d1.y) > 1e-4f;
            };
            for (int i = 0; i < positions * 3;) {
                const auto n = unsigned(indices.size());
                const std::array<int, 3> t = {i, int(random() % n), int(random() % n)};
                if (good(t)) {
                    triangles.push_back(t);
                    ++i;
                }
            }
            addSubmesh(mesh, indices, triangles, s == 1 ? std::vector<Vector3f>() : uv);
        }
        mesh.addNormals();
        const auto expected = plainNormals(mesh);
        for (size_t s = 0; s < expected.size(); ++s) {
            ASSERT_EQ(expected[s].size(), mesh.mSubmeshes[s]->mTangentSpaces.size());
            for (size_t i = 0; i < expected[s].size(); ++i) {
                EXPECT_EQ(expected[s][i].mNormal, mesh.mSubmeshes[s]->mTangentSpaces[i].mNormal);
                EXPECT_EQ(expected[s][i].mTangent, mesh.mSubmeshes[s]->mTangentSpaces[i].mTangent);
                EXPECT_EQ(expected[s][i].mBinormal, mesh.mSubmeshes[s]->mTangentSpaces[i].mBinormal);
            }
        }
    }
}

TEST(Normals, AddingThemAgainGivesTheSame) {
    o3d::Mesh mesh;
    o3d::Submesh& sphere = makeSphere(mesh, 12, 70);
    mesh.addNormals();
    const std::vector<TangentSpace> before = sphere.mTangentSpaces;
    mesh.addNormals();
    for (size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(before[i].mNormal, sphere.mTangentSpaces[i].mNormal);
        EXPECT_EQ(before[i].mTangent, sphere.mTangentSpaces[i].mTangent);
    }
}

TEST(NormalsDeathTest, ATriangleWithoutAreaAsserts) {
    o3d::Mesh mesh;
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(2, 0, 0)};
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    EXPECT_DEATH(mesh.addNormals(), "length!=0");
}

TEST(NormalsDeathTest, APositionWithoutATriangleAsserts) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    mesh.mVertices.emplace_back(5.0f, 5.0f, 5.0f);
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    EXPECT_DEATH(mesh.addNormals(), "length!=0");
}

TEST(NormalsDeathTest, AVertexWithoutATangentAsserts) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    // A copy of the first vertex that no triangle uses, far away in the texture.
    addSubmesh(mesh, {0, 1, 2, 0}, {{0, 1, 2}},
               {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(9, 9, 0)});
    EXPECT_DEATH(mesh.addNormals(), "length!=0");
}

// The text of the exception that addNormals() throws. The Mesh must be unchanged.
std::string failureOf(o3d::Mesh& mesh) {
    mesh.mName = "bad";
    for (o3d::Submesh* submesh : mesh.mSubmeshes)
        submesh->mTangentSpaces.resize(1);
    try {
        mesh.addNormals();
    } catch (const Exception& exception) {
        for (const o3d::Submesh* submesh : mesh.mSubmeshes)
            EXPECT_EQ(1u, submesh->mTangentSpaces.size());
        return exception.what();
    }
    return "nothing thrown";
}

TEST(NormalsDeathTest, TheFaultIsLoggedWithTheNameBeforeTheAbort) {
    o3d::Mesh mesh;
    mesh.mName = "stone";
    mesh.mVertices = {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(2, 0, 0)};
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
    EXPECT_DEATH(
        {
            dup2(2, 1);
            setlinebuf(stdout);
            mesh.addNormals();
        },
        "Mesh 'stone': 1 triangles without area: making normals ends the program");
}

TEST(Normals, FaultsAreCounted) {
    using Faults = std::vector<std::string>;
    const std::string fatal = ": making normals ends the program";
    const std::string spoilt = ": normals or tangents there are not numbers";
    const std::vector<Vector3f> coords = {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0)};
    const auto faults = [](const auto& change) {
        o3d::Mesh mesh;
        makeTriangle(mesh);
        change(mesh);
        return mesh.findFaults();
    };
    EXPECT_EQ(Faults(), faults([&](o3d::Mesh& mesh) { addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}}, coords); }));
    EXPECT_EQ(Faults{"3 vertices whose triangles lie back to back" + fatal}, faults([](o3d::Mesh& mesh) {
                  addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}, {0, 2, 1}});
              }));
    EXPECT_EQ(Faults{"1 texture coordinates without a triangle" + fatal}, faults([](o3d::Mesh& mesh) {
                  addSubmesh(mesh, {0, 1, 2, 0}, {{0, 1, 2}},
                             {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(9, 9, 0)});
              }));
    // A copy nearby in the texture has the tangents of the triangle next to it.
    EXPECT_EQ(Faults(), faults([](o3d::Mesh& mesh) {
                  addSubmesh(mesh, {0, 1, 2, 0}, {{0, 1, 2}},
                             {Vector3f(0, 0, 0), Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(0, 0, 0)});
              }));
    EXPECT_EQ(Faults{"1 triangles without area in the texture" + spoilt}, faults([](o3d::Mesh& mesh) {
                  addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}},
                             {Vector3f(0, 0, 0), Vector3f(1, 1, 0), Vector3f(2, 2, 0)});
              }));
    EXPECT_EQ(Faults{"1 vertices that are not numbers" + spoilt}, faults([](o3d::Mesh& mesh) {
                  mesh.mVertices[1].y = NAN;
                  addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
              }));
}

TEST(Normals, NumbersOutsideTheirListsAreRefused) {
    for (const int wrong : {3, -1, 2147483647}) {
        o3d::Mesh mesh;
        makeTriangle(mesh);
        addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}});
        addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}, {0, wrong, 2}});
        EXPECT_EQ("Mesh 'bad', submesh 1: triangle 1 uses vertex " + std::to_string(wrong) +
                      ", but there are 3 indices",
                  failureOf(mesh));
    }
    for (const int wrong : {3, -1, 2147483647}) {
        o3d::Mesh mesh;
        makeTriangle(mesh);
        addSubmesh(mesh, {0, wrong, 2}, {{0, 1, 2}});
        EXPECT_EQ("Mesh 'bad', submesh 0: index 1 is " + std::to_string(wrong) + ", but there are 3 vertices",
                  failureOf(mesh));
    }
}

TEST(Normals, TooFewTextureCoordinatesAreRefused) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    addSubmesh(mesh, {0, 1, 2}, {{0, 1, 2}}, {Vector3f(0, 0, 0), Vector3f(1, 0, 0)});
    EXPECT_EQ("Mesh 'bad', submesh 0: 2 texture coordinates for 3 indices", failureOf(mesh));
}

TEST(Normals, CopiesThatWouldTakeHoursAreRefused) {
    o3d::Mesh mesh;
    makeTriangle(mesh);
    const int copies = 60000;
    std::vector<int> positions;
    std::vector<Vector3f> uv;
    std::vector<std::array<int, 3>> triangles;
    for (int i = 0; i < copies * 3; ++i) {
        positions.push_back(i % 3);
        uv.push_back(mesh.mVertices[size_t(i % 3)]);
    }
    for (int i = 0; i < copies; ++i)
        triangles.push_back({3 * i, 3 * i + 1, 3 * i + 2});
    addSubmesh(mesh, positions, triangles, uv);
    EXPECT_EQ("Mesh 'bad': too many vertices share a position", failureOf(mesh));
}

} // namespace
