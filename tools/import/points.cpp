#include "import/points.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

namespace zentrak::importer {

namespace {

Vector pointOf(const Part& part, uint32_t vertex, const Matrix& world) {
    const auto& p = part.positions[vertex];
    return world * Vector(double(p[0]), double(p[1]), double(p[2]));
}

bool isFinite(const Vector& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

struct Triangle {
    Vector a, ab, ac;
    double end; // sum of the areas up to and including this one
};

} // namespace

std::vector<Vector> vertexPoints(const Model& model, const std::vector<Matrix>& world) {
    std::vector<Vector> points;
    std::set<std::tuple<float, float, float>> seen;
    for (size_t i = 0; i < model.nodes.size(); ++i)
        for (const uint32_t number : model.nodes[i].parts) {
            const Part& part = model.parts[number];
            for (uint32_t vertex = 0; vertex < part.positions.size(); ++vertex) {
                const Vector v = pointOf(part, vertex, world[i]);
                if (isFinite(v) && seen.emplace(float(v.x), float(v.y), float(v.z)).second)
                    points.push_back(v);
            }
        }
    return points;
}

std::vector<Vector> spreadPoints(const Model& model, const std::vector<Matrix>& world, int count) {
    std::vector<Triangle> triangles;
    double area = 0;
    for (size_t i = 0; i < model.nodes.size(); ++i)
        for (const uint32_t number : model.nodes[i].parts) {
            const Part& part = model.parts[number];
            for (const auto& corners : part.triangles) {
                const Vector a = pointOf(part, corners[0], world[i]);
                const Vector ab = pointOf(part, corners[1], world[i]) - a;
                const Vector ac = pointOf(part, corners[2], world[i]) - a;
                const double size = (ab ^ ac).Length();
                if (!isFinite(a) || !std::isfinite(size) || size == 0)
                    continue;
                area += size;
                triangles.push_back({a, ab, ac, area});
            }
        }
    std::vector<Vector> points;
    if (triangles.empty())
        return points;
    // One step of the golden ratio along the areas, and two more such steps within the triangle, fill all
    // three directions evenly at any length of the list.
    double along = 0, across = 0.5, up = 0.5;
    for (int i = 0; i < count; ++i) {
        along = std::fmod(along + 0.8191725133961645, 1.0);
        across = std::fmod(across + 0.6710436067037893, 1.0);
        up = std::fmod(up + 0.5497004779019703, 1.0);
        const auto hit = std::upper_bound(triangles.begin(), triangles.end(), along * area,
                                          [](double at, const Triangle& t) { return at < t.end; });
        const Triangle& triangle = hit == triangles.end() ? triangles.back() : *hit;
        const double root = sqrt(across);
        points.push_back(triangle.a + triangle.ab * (root * (1 - up)) + triangle.ac * (root * up));
    }
    return points;
}

} // namespace zentrak::importer
