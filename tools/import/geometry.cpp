#include "import/geometry.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <unordered_map>

namespace zentrak::importer {

using mathbase::Vector3f;

namespace {

constexpr float SAME_NORMAL = 0.999f;   // cosine of the largest angle between normals that share a position
constexpr float LEAST_SUM = 0.01f;      // of the unit normals at a position
constexpr float LEAST_TANGENT = 1e-4f;  // of the sum of the tangents at a vertex, relative to their lengths
constexpr float LEAST_TEXTURE = 1e-10f; // area of a triangle in the texture, relative to its size squared

struct Corner {
    int position = 0;
    float u = 0, v = 0;
    float layer = 0; // the third coordinate, used only to separate tangents
    bool alone = false;
};

struct Face {
    size_t part;
    Corner corners[3];
    Vector3f normal; // unit
};

bool isFinite(const Vector3f& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

// Twice the area in the texture, with a sign.
float textureArea(const Face& face) {
    const Corner* c = face.corners;
    return (c[1].u - c[0].u) * (c[2].v - c[0].v) - (c[2].u - c[0].u) * (c[1].v - c[0].v);
}

class Builder {
public:
    Builder(const std::vector<const Part*>& parts, const Space& space, const Matrix& place,
            MeshLosses& losses)
        : mParts(parts), mSpace(space), mPlace(place), mTurn(place), mLosses(losses) {
        mMirrored = space.mirrors() != (mTurn.Determinant() < 0);
        mTurn.Inverse().Transpose();
    }

    std::unique_ptr<o3d::Mesh> build() {
        for (size_t i = 0; i < mParts.size(); ++i)
            addPart(i);
        separateOpposed();
        // Removing a corner changes the normal of the others.
        for (int round = 0; round < 3 && separateTangents(); ++round)
            ;
        return finish();
    }

private:
    void addPart(size_t number) {
        const Part& part = *mParts[number];
        std::vector<int> positions(part.positions.size(), -1);
        for (const auto& triangle : part.triangles) {
            Face face{number, {}, Vector3f(0, 0, 0)};
            Vector3f p[3];
            for (int i = 0; i < 3; ++i)
                p[i] = pointOf(part, triangle[i]);
            if (mMirrored)
                std::swap(p[1], p[2]);
            face.normal = (p[1] - p[0]).cross(p[2] - p[0]);
            if (!isFinite(face.normal) || !(face.normal.length() > 0) ||
                !std::isfinite(face.normal.length())) {
                ++mLosses.flatTriangles;
                continue;
            }
            face.normal.normalize();
            for (int i = 0; i < 3; ++i) {
                const uint32_t vertex = triangle[mMirrored && i > 0 ? 3 - i : i];
                if (positions[vertex] < 0)
                    positions[vertex] = positionOf(p[i], normalOf(part, vertex, face.normal));
                face.corners[i].position = positions[vertex];
                setTexCoord(part, vertex, face.corners[i]);
            }
            if (!part.texCoords.empty())
                layOut(face);
            mFaces.push_back(face);
        }
    }

    Vector3f pointOf(const Part& part, uint32_t vertex) const {
        const auto& p = part.positions[vertex];
        const Vector v = mSpace.point(mPlace * Vector(double(p[0]), double(p[1]), double(p[2])));
        return Vector3f(float(v.x), float(v.y), float(v.z));
    }

    Vector3f normalOf(const Part& part, uint32_t vertex, const Vector3f& flat) const {
        if (part.normals.empty())
            return flat;
        const auto& n = part.normals[vertex];
        Vector v = mSpace.direction(mTurn * Vector(double(n[0]), double(n[1]), double(n[2])));
        if (!(v.SquareLength() > 0) || !std::isfinite(v.SquareLength()))
            return flat;
        v.Normalize();
        return Vector3f(float(v.x), float(v.y), float(v.z));
    }

    void setTexCoord(const Part& part, uint32_t vertex, Corner& corner) {
        if (part.texCoords.empty())
            return;
        corner.u = part.texCoords[vertex][0];
        corner.v = 1.0f - part.texCoords[vertex][1]; // v runs downward here
        for (float* const value : {&corner.u, &corner.v})
            if (!std::isfinite(*value)) {
                *value = 0;
                ++mLosses.brokenTexCoords;
            }
    }

    // Gives the triangle an area in the texture, and mirrored triangles a layer of their own.
    void layOut(Face& face) {
        float size = 0, reach = 0;
        for (const Corner& corner : face.corners) {
            size = std::max({size, fabsf(corner.u - face.corners[0].u), fabsf(corner.v - face.corners[0].v)});
            reach = std::max({reach, fabsf(corner.u), fabsf(corner.v)});
        }
        if (!(fabsf(textureArea(face)) > std::max(LEAST_TEXTURE * size * size, 1e-14f))) {
            ++mLosses.movedTexCoords;
            const float step = std::max(1e-4f, reach * 1e-6f);
            face.corners[1].u += step;
            face.corners[2].v += step;
            if (!(fabsf(textureArea(face)) > step * step * 0.01f)) {
                face.corners[1].u += step;
                face.corners[2].v += 2 * step;
            }
        }
        if (textureArea(face) < 0)
            for (Corner& corner : face.corners)
                corner.layer = 1;
    }

    int positionOf(const Vector3f& point, const Vector3f& normal) {
        const auto key = std::make_tuple(point.x + 0.0f, point.y + 0.0f, point.z + 0.0f);
        for (const int position : mAt[key])
            if (mNormals[size_t(position)].dot(normal) > SAME_NORMAL)
                return position;
        mAt[key].push_back(int(mPoints.size()));
        return newPosition(point, normal);
    }

    int newPosition(const Vector3f& point, const Vector3f& normal) {
        mPoints.push_back(point);
        mNormals.push_back(normal);
        return int(mPoints.size()) - 1;
    }

    void isolate(Corner& corner) {
        corner.alone = true;
        corner.position = newPosition(mPoints[size_t(corner.position)], mNormals[size_t(corner.position)]);
    }

    // Where the normals at a position cancel out, as on two sides of a leaf.
    void separateOpposed() {
        std::vector<Vector3f> sums(mPoints.size(), Vector3f(0, 0, 0));
        for (const Face& face : mFaces)
            for (const Corner& corner : face.corners)
                sums[size_t(corner.position)] += face.normal;
        for (Face& face : mFaces)
            for (Corner& corner : face.corners)
                if (!(sums[size_t(corner.position)].length() > LEAST_SUM))
                    isolate(corner);
    }

    // The engine's sum of the tangents at a vertex.
    struct Sum {
        Vector3f tangent{0, 0, 0}, binormal{0, 0, 0};
        float lengths = 0;
        bool isBad(const Vector3f& normal) const {
            Vector3f t = tangent - normal * normal.dot(tangent);
            if (!isFinite(t) || !(t.length() > LEAST_TANGENT * lengths))
                return true;
            t.normalize();
            Vector3f b = binormal - normal * normal.dot(binormal);
            b = b - t * t.dot(b);
            return !isFinite(b) || !(b.length() > LEAST_TANGENT * lengths);
        }
    };

    // Where the tangents at a vertex cancel out, as around the pole of a sphere.
    bool separateTangents() {
        std::vector<Vector3f> normals(mPoints.size(), Vector3f(0, 0, 0));
        for (const Face& face : mFaces)
            for (const Corner& corner : face.corners)
                normals[size_t(corner.position)] += face.normal;
        for (Vector3f& normal : normals)
            if (normal.length() > 0)
                normal.normalize();

        // Corners by what the engine sums over: part and position. It sums only where the coordinates are
        // close; summing a whole layer at a position is coarser, and at worst separates too many corners.
        std::map<std::tuple<size_t, int, float, float, float>, Sum> sums;
        const auto keyOf = [](const Face& face, const Corner& c) {
            return std::make_tuple(face.part, c.position, c.u, c.v, c.layer);
        };
        std::unordered_map<uint64_t, std::vector<Corner>> copies;
        const auto copyKey = [](const Face& face, const Corner& c) {
            return uint64_t(face.part) << 40 | uint64_t(c.position);
        };
        for (const Face& face : mFaces)
            if (!mParts[face.part]->texCoords.empty())
                for (const Corner& corner : face.corners)
                    if (sums.emplace(keyOf(face, corner), Sum()).second)
                        copies[copyKey(face, corner)].push_back(corner);
        for (const Face& face : mFaces) {
            if (mParts[face.part]->texCoords.empty())
                continue;
            const Corner* const c = face.corners;
            const Vector3f e1 = mPoints[size_t(c[1].position)] - mPoints[size_t(c[0].position)];
            const Vector3f e2 = mPoints[size_t(c[2].position)] - mPoints[size_t(c[0].position)];
            const float r = 1.0f / textureArea(face);
            const Vector3f tangent = (e1 * (c[2].v - c[0].v) - e2 * (c[1].v - c[0].v)) * r;
            const Vector3f binormal = (e2 * (c[1].u - c[0].u) - e1 * (c[2].u - c[0].u)) * r;
            for (const Corner& corner : face.corners)
                for (const Corner& copy : copies[copyKey(face, corner)]) {
                    const Vector3f apart(copy.u - corner.u, copy.v - corner.v, copy.layer - corner.layer);
                    if (!(apart.length2() < 0.01f))
                        continue;
                    Sum& sum = sums[keyOf(face, copy)];
                    sum.tangent += tangent;
                    sum.binormal += binormal;
                    sum.lengths += std::min(tangent.length(), binormal.length());
                }
        }
        bool separated = false;
        for (Face& face : mFaces)
            if (!mParts[face.part]->texCoords.empty())
                for (Corner& corner : face.corners)
                    if (!corner.alone && sums[keyOf(face, corner)].isBad(normals[size_t(corner.position)])) {
                        isolate(corner);
                        separated = true;
                    }
        return separated;
    }

    std::unique_ptr<o3d::Mesh> finish() {
        auto mesh = std::make_unique<o3d::Mesh>();
        std::vector<int> numbers(mPoints.size(), -1);
        for (const Face& face : mFaces)
            for (const Corner& corner : face.corners)
                if (numbers[size_t(corner.position)] < 0) {
                    numbers[size_t(corner.position)] = int(mesh->mVertices.size());
                    mesh->mVertices.push_back(mPoints[size_t(corner.position)]);
                }
        size_t face = 0;
        for (size_t part = 0; part < mParts.size(); ++part) {
            auto submesh = std::make_unique<o3d::Submesh>();
            submesh->mParent = mesh.get();
            submesh->mMaterial = int(part);
            const bool textured = !mParts[part]->texCoords.empty();
            auto texCoords = std::make_unique<o3d::StructList<Vector3f>>();
            std::map<std::tuple<int, float, float, float>, int> locals;
            for (; face < mFaces.size() && mFaces[face].part == part; ++face) {
                o3d::Triangle triangle;
                for (int i = 0; i < 3; ++i) {
                    const Corner& corner = mFaces[face].corners[i];
                    const int position = numbers[size_t(corner.position)];
                    const auto [found, isNew] = locals.emplace(
                        std::make_tuple(position, corner.u, corner.v, corner.layer), int(locals.size()));
                    if (isNew) {
                        submesh->mIndices.push_back({position});
                        texCoords->mList.push_back(Vector3f(corner.u, corner.v, corner.layer));
                    }
                    triangle.mIndex[i] = found->second;
                }
                submesh->mTriangles.push_back(triangle);
            }
            if (textured)
                submesh->mTexCoords.push_back(texCoords.release());
            submesh->updateBox();
            mesh->mSubmeshes.push_back(submesh.release());
        }
        mesh->updateBox();
        return mesh;
    }

    const std::vector<const Part*>& mParts;
    const Space& mSpace;
    Matrix mPlace;
    Matrix3 mTurn;
    MeshLosses& mLosses;
    bool mMirrored = false;

    std::vector<Face> mFaces; // by part
    std::vector<Vector3f> mPoints, mNormals;
    std::map<std::tuple<float, float, float>, std::vector<int>> mAt;
};

} // namespace

std::unique_ptr<o3d::Mesh> buildMesh(const std::vector<const Part*>& parts, const Space& space,
                                     const Matrix& place, MeshLosses& losses) {
    return Builder(parts, space, place, losses).build();
}

} // namespace zentrak::importer
