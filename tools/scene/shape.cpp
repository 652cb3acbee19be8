#include "shape.h"

#include "ztk_system.h"

#include <algorithm>
#include <cmath>

namespace zentrak::scene {

static constexpr float GRID = 1e-5f; // points closer than this are merged

static long cell(float value) {
    return lroundf(value / GRID);
}

int Shape::addPosition(int group, const Vector3f& place) {
    const auto key = std::make_tuple(group, cell(place.x), cell(place.y), cell(place.z));
    const auto found = mPlaces.find(key);
    if (found != mPlaces.end())
        return found->second;
    const int position = int(mPositions.size());
    mPlaces[key] = position;
    mPositions.push_back(place);
    return position;
}

int Shape::addLocal(Part& part, int position, const Vector3f& texCoords) {
    const auto key = std::make_tuple(position, cell(texCoords.x), cell(texCoords.y), cell(texCoords.z));
    const auto found = part.mLocals.find(key);
    if (found != part.mLocals.end())
        return found->second;
    const int local = int(part.mIndices.size());
    part.mLocals[key] = local;
    part.mIndices.emplace_back();
    part.mIndices.back().mValue = position;
    part.mTexCoords.push_back(texCoords);
    return local;
}

void Shape::triangle(int part, int group, const Vector3f& a, const Vector3f& b, const Vector3f& c) {
    const Vector3f normal = (b - a).cross(c - a);
    if (normal.length() < 1e-8f)
        return;
    mLastGroup = std::max(mLastGroup, group);
    if (size_t(part) >= mParts.size())
        mParts.resize(size_t(part) + 1);
    Part& target = mParts[size_t(part)];
    o3d::Triangle result;
    const float x = fabsf(normal.x), y = fabsf(normal.y), z = fabsf(normal.z);
    int corner = 0;
    for (const Vector3f* place : {&a, &b, &c}) {
        // The third coordinate, which no texture lookup uses, separates the planes: their tangents must not
        // be summed.
        Vector3f texCoords(place->x, place->y, 0.0f); // faces along z
        if (y >= x && y >= z)
            texCoords = Vector3f(place->x, place->z, 1.0f);
        else if (x >= z)
            texCoords = Vector3f(place->z, place->y, 2.0f);
        texCoords.x = texCoords.x / mTextureSize + mTextureOffset;
        texCoords.y /= mTextureSize;
        result.mIndex[corner++] = addLocal(target, addPosition(group, *place), texCoords);
    }
    target.mTriangles.push_back(result);
}

void Shape::quad(int part, int group, const Vector3f& a, const Vector3f& b, const Vector3f& c,
                 const Vector3f& d) {
    triangle(part, group, a, b, c);
    triangle(part, group, a, c, d);
}

void Shape::box(int part, const Vector3f& l, const Vector3f& h) {
    const Vector3f p[8] = {Vector3f(l.x, l.y, l.z), Vector3f(h.x, l.y, l.z), Vector3f(l.x, h.y, l.z),
                           Vector3f(h.x, h.y, l.z), Vector3f(l.x, l.y, h.z), Vector3f(h.x, l.y, h.z),
                           Vector3f(l.x, h.y, h.z), Vector3f(h.x, h.y, h.z)};
    static const int faces[6][4] = {{1, 3, 7, 5}, {0, 4, 6, 2}, {2, 6, 7, 3},
                                    {0, 1, 5, 4}, {4, 5, 7, 6}, {0, 2, 3, 1}};
    for (const auto& face : faces)
        quad(part, newGroup(), p[face[0]], p[face[1]], p[face[2]], p[face[3]]);
}

void Shape::lathe(int part, const std::vector<std::pair<float, float>>& profile, int segments, int flutes,
                  float flute) {
    const auto place = [&](const std::pair<float, float>& ring, int segment) {
        const float angle = 6.2831853f * float(segment % segments) / float(segments);
        const float radius = ring.first * (1.0f + flute * cosf(angle * float(flutes)));
        return Vector3f(radius * cosf(angle), ring.second, radius * sinf(angle));
    };
    for (size_t ring = 0; ring + 1 < profile.size(); ++ring) {
        const int group = newGroup();
        for (int i = 0; i < segments; ++i)
            quad(part, group, place(profile[ring], i + 1), place(profile[ring], i),
                 place(profile[ring + 1], i), place(profile[ring + 1], i + 1));
    }
    const int bottom = newGroup(), top = newGroup();
    const Vector3f low(0.0f, profile.front().second, 0.0f), high(0.0f, profile.back().second, 0.0f);
    for (int i = 0; i < segments; ++i) {
        triangle(part, bottom, low, place(profile.front(), i), place(profile.front(), i + 1));
        triangle(part, top, high, place(profile.back(), i + 1), place(profile.back(), i));
    }
}

void Shape::band(int part, const std::vector<Vector3f>& inner, const std::vector<Vector3f>& outer,
                 bool closed, float depth) {
    const Vector3f half(0.0f, 0.0f, depth * 0.5f);
    const size_t count = inner.size();
    const int front = newGroup(), back = newGroup(), inside = newGroup();
    for (size_t i = 0; i + (closed ? 0 : 1) < count; ++i) {
        const size_t j = (i + 1) % count;
        const Vector3f a = inner[i], b = inner[j], c = outer[j], d = outer[i];
        quad(part, front, a + half, b + half, c + half, d + half);
        quad(part, back, b - half, a - half, d - half, c - half);
        quad(part, inside, b + half, a + half, a - half, b - half);
        quad(part, newGroup(), d + half, c + half, c - half, d - half);
    }
    if (closed)
        return;
    const Vector3f a = inner.front(), d = outer.front(), b = inner.back(), c = outer.back();
    quad(part, newGroup(), a + half, d + half, d - half, a - half);
    quad(part, newGroup(), c + half, b + half, b - half, c - half);
}

void Shape::bar(int part, const std::vector<Vector3f>& curve, float width, float height, const Vector3f& up) {
    std::vector<Vector3f> corners[4];
    for (size_t i = 0; i < curve.size(); ++i) {
        const Vector3f along =
            (curve[std::min(i + 1, curve.size() - 1)] - curve[i > 0 ? i - 1 : 0]).getNormalized();
        const Vector3f side = along.cross(up).getNormalized() * (width * 0.5f);
        const Vector3f over = side.cross(along).getNormalized() * (height * 0.5f);
        corners[0].push_back(curve[i] - side - over);
        corners[1].push_back(curve[i] + side - over);
        corners[2].push_back(curve[i] + side + over);
        corners[3].push_back(curve[i] - side + over);
    }
    for (int s = 0; s < 4; ++s) {
        const int group = newGroup();
        for (size_t i = 0; i + 1 < curve.size(); ++i)
            quad(part, group, corners[(s + 1) % 4][i], corners[s][i], corners[s][i + 1],
                 corners[(s + 1) % 4][i + 1]);
    }
    quad(part, newGroup(), corners[0].front(), corners[1].front(), corners[2].front(), corners[3].front());
    quad(part, newGroup(), corners[3].back(), corners[2].back(), corners[1].back(), corners[0].back());
}

std::unique_ptr<o3d::Mesh> Shape::build(const std::string& name,
                                        const std::vector<std::string>& materials) const {
    auto mesh = std::make_unique<o3d::Mesh>();
    mesh->mName = name;
    mesh->mMaterials = materials;
    mesh->mVertices = mPositions;
    for (size_t i = 0; i < mParts.size(); ++i) {
        auto submesh = std::make_unique<o3d::Submesh>();
        submesh->mParent = mesh.get();
        submesh->mMaterial = int(i);
        submesh->mTriangles = mParts[i].mTriangles;
        submesh->mIndices = mParts[i].mIndices;
        auto list = std::make_unique<o3d::StructList<Vector3f>>();
        list->mList = mParts[i].mTexCoords;
        submesh->mTexCoords.push_back(list.release());
        submesh->updateBox();
        mesh->mSubmeshes.push_back(submesh.release());
    }
    mesh->updateBox();
    return mesh;
}

size_t Shape::triangleCount() const {
    size_t count = 0;
    for (const Part& part : mParts)
        count += part.mTriangles.size();
    return count;
}

std::vector<Vector3f> pointedArch(float halfWidth, float spring, float radius, int steps) {
    std::vector<Vector3f> points;
    // The centre of the left arc is to the right of the axis, on the springing line.
    const float centre = radius - halfWidth;
    const float end = acosf(centre / radius);
    for (int i = 0; i <= steps; ++i) {
        const float angle = end * float(i) / float(steps);
        points.emplace_back(centre - radius * cosf(angle), spring + radius * sinf(angle), 0.0f);
    }
    for (int i = steps - 1; i >= 0; --i)
        points.emplace_back(-points[size_t(i)].x, points[size_t(i)].y, 0.0f);
    return points;
}

float smoothstep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

} // namespace zentrak::scene
