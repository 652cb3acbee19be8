// Solids built from triangles, as a mesh of a scene file.
#pragma once

#include "o3d_mesh.h"

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace zentrak::scene {

using mathbase::Vector3f;

// Collects triangles, counterclockwise from outside, in parts of one material each: part i becomes Submesh i
// with material number i. Corners within 1e-5 in the same smoothing group share a position, so that the
// surface is smooth there; different groups make an edge. Degenerate triangles are left out, with every
// position that no other triangle uses, so that the mesh has valid normals.
class Shape {
public:
    // Texture coordinates are those of the axis plane that the triangle faces most, in units of
    // `mTextureSize`, plus `mTextureOffset` in u.
    void triangle(int part, int group, const Vector3f& a, const Vector3f& b, const Vector3f& c);
    void quad(int part, int group, const Vector3f& a, const Vector3f& b, const Vector3f& c,
              const Vector3f& d);

    // A new smoothing group: for a face with hard edges.
    int newGroup() { return ++mLastGroup; }

    // Box with six flat faces.
    void box(int part, const Vector3f& lowest, const Vector3f& highest);
    // Revolves the profile (radius, height), listed upwards, round the y axis and closes both ends; the
    // radius swells by the fraction `flute` at each of the `flutes` ridges. Ring i to i + 1 is smooth;
    // corners of the profile are edges.
    void lathe(int part, const std::vector<std::pair<float, float>>& profile, int segments, int flutes = 0,
               float flute = 0.0f);
    // The band between two curves of equally many points in the plane z = 0, extruded by `depth` around it.
    // `outer` must lie to the left of `inner`. Closed curves join their ends; open ones get end faces.
    void band(int part, const std::vector<Vector3f>& inner, const std::vector<Vector3f>& outer, bool closed,
              float depth);
    // A bar of rectangular section along a curve; `up` is roughly perpendicular to it.
    void bar(int part, const std::vector<Vector3f>& curve, float width, float height, const Vector3f& up);

    // The mesh, which the caller owns. The names are those of the parts' materials.
    std::unique_ptr<o3d::Mesh> build(const std::string& name,
                                     const std::vector<std::string>& materials) const;

    size_t triangleCount() const;

    float mTextureSize = 4.0f;
    float mTextureOffset = 0.0f;

private:
    struct Part {
        std::map<std::tuple<int, long, long, long>, int> mLocals; // by position and texture coordinates
        std::vector<o3d::Index> mIndices;
        std::vector<Vector3f> mTexCoords;
        std::vector<o3d::Triangle> mTriangles;
    };

    int addPosition(int group, const Vector3f& place);
    int addLocal(Part& part, int position, const Vector3f& texCoords);

    std::map<std::tuple<int, long, long, long>, int> mPlaces;
    std::vector<Vector3f> mPositions;
    std::vector<Part> mParts;
    int mLastGroup = 0;
};

// A pointed arch from (-halfWidth, spring) over its apex to (halfWidth, spring), with 2 * steps + 1 points.
// `radius` is that of its two arcs; at twice the half width they meet at 60 degrees.
std::vector<Vector3f> pointedArch(float halfWidth, float spring, float radius, int steps);

// Hermite interpolation: 0 below `low`, 1 above `high`.
float smoothstep(float low, float high, float x);

} // namespace zentrak::scene
