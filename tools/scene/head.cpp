#include "scenes.h"

#include "mb_random.h"
#include "scene_file.h"
#include "shape.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace zentrak::scene {

namespace {

constexpr int RINGS = 140;    // from the middle of the face to the back of the head
constexpr int SEGMENTS = 160; // around that axis
constexpr int STRIDE = 28;    // of the vertices that glow

// Approximate signed distances, negative inside; accurate enough for ray marching.

float ellipsoid(const Vector3f& p, const Vector3f& centre, const Vector3f& radii) {
    const Vector3f q = p - centre;
    const float k = Vector3f(q.x / radii.x, q.y / radii.y, q.z / radii.z).length();
    return (k - 1.0f) * std::min({radii.x, radii.y, radii.z});
}

float capsule(const Vector3f& p, const Vector3f& a, const Vector3f& b, float ra, float rb) {
    const Vector3f ab = b - a;
    const float t = std::clamp((p - a).dot(ab) / ab.dot(ab), 0.0f, 1.0f);
    return (p - a - ab * t).length() - (ra + (rb - ra) * t);
}

float blend(float a, float b, float k) {
    const float h = std::max(k - fabsf(a - b), 0.0f) / k;
    return std::min(a, b) - h * h * k * 0.25f;
}

float carve(float a, float b, float k) {
    return -blend(-a, b, k);
}

// The head, mirrored in x.
float head(const Vector3f& point) {
    const Vector3f p(fabsf(point.x), point.y, point.z);
    float d = ellipsoid(p, Vector3f(0, 0.13f, -0.07f), Vector3f(0.315f, 0.33f, 0.39f));              // skull
    d = blend(d, ellipsoid(p, Vector3f(0, -0.1f, 0.08f), Vector3f(0.25f, 0.35f, 0.26f)), 0.10f);     // face
    d = blend(d, ellipsoid(p, Vector3f(0, -0.28f, 0.09f), Vector3f(0.205f, 0.155f, 0.2f)), 0.08f);   // jaw
    d = blend(d, ellipsoid(p, Vector3f(0, -0.405f, 0.235f), Vector3f(0.08f, 0.055f, 0.07f)), 0.06f); // chin
    d = blend(d, capsule(p, Vector3f(0, -0.3f, -0.1f), Vector3f(0, -0.8f, -0.14f), 0.165f, 0.19f),
              0.08f); // neck
    d = blend(d, ellipsoid(p, Vector3f(0.195f, -0.075f, 0.205f), Vector3f(0.09f, 0.06f, 0.07f)),
              0.08f); // cheekbone
    d = blend(d, capsule(p, Vector3f(0.03f, 0.075f, 0.315f), Vector3f(0.2f, 0.085f, 0.24f), 0.035f, 0.03f),
              0.05f); // brow
    d = carve(d, ellipsoid(p, Vector3f(0.14f, 0.005f, 0.38f), Vector3f(0.085f, 0.055f, 0.1f)),
              0.05f); // socket
    d = blend(d, ellipsoid(p, Vector3f(0.138f, 0.0f, 0.235f), Vector3f(0.07f, 0.05f, 0.065f)), 0.012f); // eye
    d = blend(d, capsule(p, Vector3f(0, 0.06f, 0.315f), Vector3f(0, -0.135f, 0.42f), 0.03f, 0.038f),
              0.035f); // nose
    d = blend(d, ellipsoid(p, Vector3f(0, -0.15f, 0.425f), Vector3f(0.045f, 0.038f, 0.045f)),
              0.03f); // its tip
    d = blend(d, ellipsoid(p, Vector3f(0.042f, -0.158f, 0.372f), Vector3f(0.027f, 0.028f, 0.042f)),
              0.02f); // its wing
    d = carve(d, ellipsoid(p, Vector3f(0.022f, -0.19f, 0.41f), Vector3f(0.016f, 0.014f, 0.03f)),
              0.012f); // nostril
    d = carve(d, capsule(p, Vector3f(0, -0.2f, 0.385f), Vector3f(0, -0.232f, 0.385f), 0.012f, 0.012f),
              0.02f); // philtrum
    d = blend(d, ellipsoid(p, Vector3f(0.03f, -0.253f, 0.318f), Vector3f(0.085f, 0.022f, 0.05f)),
              0.02f); // upper lip
    d = blend(d, ellipsoid(p, Vector3f(0, -0.295f, 0.318f), Vector3f(0.085f, 0.027f, 0.048f)),
              0.02f); // lower lip
    d = carve(d, capsule(p, Vector3f(0, -0.273f, 0.385f), Vector3f(0.125f, -0.27f, 0.315f), 0.008f, 0.01f),
              0.014f);                                                                             // mouth
    d = carve(d, ellipsoid(p, Vector3f(0, -0.345f, 0.36f), Vector3f(0.1f, 0.022f, 0.05f)), 0.04f); // below it
    d = blend(d, ellipsoid(p, Vector3f(0.325f, -0.03f, -0.06f), Vector3f(0.03f, 0.105f, 0.06f)),
              0.02f); // ear
    d = carve(d, ellipsoid(p, Vector3f(0.36f, -0.02f, -0.05f), Vector3f(0.022f, 0.065f, 0.032f)), 0.015f);
    return std::max(d, -0.56f - p.y); // the neck ends in a cut
}

// Where a ray from inside meets the skin, coming from outside.
Vector3f skin(const Vector3f& direction) {
    const Vector3f centre(0, -0.03f, -0.02f);
    float r = 1.0f;
    for (int i = 0; i < 400; ++i) {
        const float d = head(centre + direction * r);
        if (d < 2e-5f)
            break;
        r -= d * 0.6f;
    }
    return centre + direction * r;
}

// The lines of a face in the picture plane (x, y), for one half; the other mirrors it.
struct Line {
    float weight; // of the vertices near it
    float width;
    std::vector<std::pair<float, float>> points;
};

const std::vector<Line>& faceLines() {
    static const std::vector<Line> lines = {
        // eye: upper lid, lower lid, iris
        {150,
         0.0035f,
         {{0.078f, -0.012f},
          {0.097f, 0.014f},
          {0.125f, 0.028f},
          {0.155f, 0.027f},
          {0.182f, 0.013f},
          {0.2f, -0.008f}}},
        {70,
         0.0035f,
         {{0.078f, -0.012f}, {0.105f, -0.026f}, {0.14f, -0.031f}, {0.175f, -0.024f}, {0.2f, -0.008f}}},
        {120, 0.0045f, {{0.134f, 0.002f}, {0.142f, 0.002f}}},
        // brow
        {170,
         0.0045f,
         {{0.05f, 0.072f}, {0.09f, 0.092f}, {0.14f, 0.105f}, {0.19f, 0.098f}, {0.232f, 0.068f}}},
        // nose: side, wing, base
        {40, 0.0035f, {{0.042f, 0.06f}, {0.028f, 0.0f}, {0.032f, -0.08f}, {0.045f, -0.125f}}},
        {70, 0.0035f, {{0.05f, -0.13f}, {0.067f, -0.15f}, {0.066f, -0.175f}, {0.048f, -0.185f}}},
        {70, 0.0035f, {{0.048f, -0.185f}, {0.026f, -0.191f}, {0.012f, -0.186f}, {0.0f, -0.191f}}},
        // mouth: upper edge, the line between the lips, lower edge
        {70, 0.0035f, {{0.0f, -0.245f}, {0.02f, -0.237f}, {0.055f, -0.248f}, {0.108f, -0.27f}}},
        {130, 0.0035f, {{0.0f, -0.273f}, {0.05f, -0.27f}, {0.108f, -0.27f}}},
        {60, 0.0035f, {{0.0f, -0.318f}, {0.042f, -0.313f}, {0.08f, -0.296f}, {0.108f, -0.271f}}},
        // chin, jaw, the side of the face up to the ear
        {60,
         0.004f,
         {{0.0f, -0.452f},
          {0.05f, -0.447f},
          {0.1f, -0.427f},
          {0.155f, -0.385f},
          {0.205f, -0.325f},
          {0.242f, -0.25f},
          {0.27f, -0.15f},
          {0.29f, -0.05f}}},
        {10, 0.006f, {{0.0f, -0.365f}, {0.035f, -0.372f}}},
        // cheekbone
        {9, 0.012f, {{0.265f, -0.01f}, {0.22f, -0.075f}, {0.16f, -0.1f}}},
        // hairline
        {26,
         0.006f,
         {{0.0f, 0.315f},
          {0.08f, 0.308f},
          {0.16f, 0.275f},
          {0.225f, 0.205f},
          {0.265f, 0.115f},
          {0.28f, 0.03f}}},
        // neck
        {25, 0.006f, {{0.165f, -0.4f}, {0.17f, -0.47f}, {0.185f, -0.56f}}},
        {12, 0.006f, {{0.12f, -0.43f}, {0.08f, -0.5f}, {0.03f, -0.56f}}},
    };
    return lines;
}

float distanceToLine(const Line& line, float x, float y) {
    float nearest = 1e9f;
    for (size_t i = 0; i + 1 < line.points.size(); ++i) {
        const float ax = line.points[i].first, ay = line.points[i].second;
        const float bx = line.points[i + 1].first - ax, by = line.points[i + 1].second - ay;
        const float t = std::clamp(((x - ax) * bx + (y - ay) * by) / (bx * bx + by * by), 0.0f, 1.0f);
        nearest = std::min(nearest, hypotf(x - ax - t * bx, y - ay - t * by));
    }
    return nearest;
}

// The desired density of glowing vertices at a point.
float weight(const Vector3f& p) {
    const float x = fabsf(p.x);
    const float front = smoothstep(-0.05f, 0.12f, p.z);
    float result = 0.7f + 2.3f * front;
    if (p.y < -0.46f)
        result *= 0.5f;
    // The front outline of the skull, and the ears.
    result += 7.0f * expf(-p.z * p.z / (2 * 0.03f * 0.03f)) * (p.y > 0.05f ? 1.0f : 0.3f);
    if (x > 0.31f)
        result += 9.0f * smoothstep(0.31f, 0.345f, x);
    if (p.z > -0.1f)
        for (const Line& line : faceLines()) {
            const float d = distanceToLine(line, x, p.y) / line.width;
            result += line.weight * smoothstep(-0.1f, 0.05f, p.z) * expf(-d * d * 0.5f);
        }
    return result;
}

// Chooses `count` positions, each at a distance from the others that shrinks with the weight there.
std::vector<int> choose(const std::vector<Vector3f>& places, size_t count) {
    std::vector<float> size(places.size());
    for (size_t i = 0; i < places.size(); ++i)
        size[i] = 1.0f / sqrtf(weight(places[i]));
    std::vector<int> order(places.size());
    std::iota(order.begin(), order.end(), 0);
    mathbase::Random random(2017);
    for (size_t i = order.size() - 1; i > 0; --i)
        std::swap(order[i], order[random.draw() / 7 % (i + 1)]);
    // The heaviest positions first, so that the lines are complete before the areas are filled.
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return lroundf(log2f(size[size_t(a)]) * 2) < lroundf(log2f(size[size_t(b)]) * 2);
    });

    std::vector<int> best;
    float low = 0.0f, high = 1.0f;
    for (int step = 0; step < 24; ++step) {
        const float scale = (low + high) / 2;
        std::vector<int> chosen;
        for (const int candidate : order) {
            const Vector3f& place = places[size_t(candidate)];
            const bool free = std::none_of(chosen.begin(), chosen.end(), [&](int other) {
                const float reach = scale * std::min(size[size_t(candidate)], size[size_t(other)]);
                return (places[size_t(other)] - place).length2() < reach * reach;
            });
            if (free)
                chosen.push_back(candidate);
            if (chosen.size() > count)
                break;
        }
        (chosen.size() > count ? low : high) = scale;
        if (chosen.size() <= count)
            best = chosen;
    }
    // The search ends a few short: fill up with the rest.
    for (size_t i = 0; best.size() < count; ++i)
        if (std::find(best.begin(), best.end(), order[i]) == best.end())
            best.push_back(order[i]);
    return best;
}

// Moves the chosen vertices to every STRIDE-th index, from the first.
void reorder(o3d::Mesh& mesh) {
    const size_t count = mesh.mVertices.size();
    const std::vector<int> chosen = choose(mesh.mVertices, (count + STRIDE - 1) / STRIDE);
    std::vector<char> taken(count, 0);
    for (const int i : chosen)
        taken[size_t(i)] = 1;
    std::vector<Vector3f> vertices;
    std::vector<int> moved(count);
    size_t next = 0;
    for (size_t place = 0; place < count; ++place) {
        size_t from = 0;
        if (place % STRIDE == 0) {
            from = size_t(chosen[place / STRIDE]);
        } else {
            while (taken[next] != 0)
                ++next;
            from = next++;
        }
        moved[from] = int(place);
        vertices.push_back(mesh.mVertices[from]);
    }
    mesh.mVertices = vertices;
    for (o3d::Submesh* submesh : mesh.mSubmeshes)
        for (o3d::Index& index : submesh->mIndices)
            index.mValue = moved[size_t(index.mValue)];
}

} // namespace

std::string makeFace() {
    // Rings around the axis that points out of the face, denser at the front.
    std::vector<Vector3f> places;
    for (int ring = 0; ring <= RINGS; ++ring)
        for (int segment = 0; segment < SEGMENTS; ++segment) {
            const float share = float(ring) / RINGS;
            const float away = 3.14159265f * (0.55f * share + 0.45f * share * share);
            const float around = 6.2831853f * float(segment) / SEGMENTS;
            places.push_back(
                skin(Vector3f(sinf(away) * cosf(around), sinf(away) * sinf(around), cosf(away))));
        }
    Shape shape;
    const auto place = [&](int ring, int segment) {
        return places[size_t(ring * SEGMENTS + segment % SEGMENTS)];
    };
    shape.mTextureSize = 1.0f;
    for (int ring = 0; ring < RINGS; ++ring)
        for (int segment = 0; segment < SEGMENTS; ++segment)
            shape.quad(0, 0, place(ring, segment), place(ring + 1, segment), place(ring + 1, segment + 1),
                       place(ring, segment + 1));

    o3d::Manager manager;
    addMaterial(manager, "skin", mathbase::Vector4f(0.9f, 0.75f, 0.65f, 1.0f));
    o3d::Mesh& mesh = *addMesh(manager, shape.build("face", {"skin"}));
    reorder(mesh);
    // The viewer looks from 1.3 away with a field of view that the whole head just fills.
    for (Vector3f& vertex : mesh.mVertices)
        vertex = vertex * 0.88f + Vector3f(0.0f, 0.03f, 0.0f);
    for (o3d::Submesh* submesh : mesh.mSubmeshes)
        submesh->updateBox();
    mesh.updateBox();
    auto scene = std::make_unique<o3d::Scene>();
    scene->mName = "face";
    addInstance(*scene, "face", mesh, Vector3f(0, 0, 0));
    manager.addScene(scene.release());
    return sceneFile(manager);
}

} // namespace zentrak::scene
