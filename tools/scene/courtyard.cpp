#include "scenes.h"

#include "mb_random.h"
#include "scene_file.h"
#include "shape.h"

#include <algorithm>
#include <cmath>

namespace zentrak::scene {

namespace {

// Added to the texture coordinate u to mark the kind of surface; paving and walls add nothing.
constexpr float LAMP = 16.0f; // what glows
constexpr float WOOD = 32.0f;
constexpr float GLAZE = 48.0f;
constexpr float BRASS = 64.0f;
constexpr float PLAIN = 80.0f; // stone without joints

o3d::Mesh& make(o3d::Manager& manager, const std::string& name, const Shape& shape) {
    return *addMesh(manager, shape.build(name, {"stone"}));
}

// A sphere from a subdivided cube, so that it has no poles.
void makeBall(Shape& shape, float radius, int steps, float roughness) {
    const int group = shape.newGroup();
    const auto blown = [&](const Vector3f& p) {
        const Vector3f n = p.getNormalized();
        const float r = radius * (1.0f + roughness * sinf(5 * n.x + 1) * sinf(6 * n.y + 2) * sinf(4 * n.z));
        return n * r;
    };
    const Vector3f axes[6][3] = {{Vector3f(1, 0, 0), Vector3f(0, 1, 0), Vector3f(0, 0, 1)},
                                 {Vector3f(-1, 0, 0), Vector3f(0, 0, 1), Vector3f(0, 1, 0)},
                                 {Vector3f(0, 1, 0), Vector3f(0, 0, 1), Vector3f(1, 0, 0)},
                                 {Vector3f(0, -1, 0), Vector3f(1, 0, 0), Vector3f(0, 0, 1)},
                                 {Vector3f(0, 0, 1), Vector3f(1, 0, 0), Vector3f(0, 1, 0)},
                                 {Vector3f(0, 0, -1), Vector3f(0, 1, 0), Vector3f(1, 0, 0)}};
    for (const auto& axis : axes) {
        const auto place = [&](int i, int k) {
            const float u = tanf((float(i) / float(steps) - 0.5f) * 1.57079633f);
            const float v = tanf((float(k) / float(steps) - 0.5f) * 1.57079633f);
            return blown(axis[0] + axis[1] * u + axis[2] * v);
        };
        for (int i = 0; i < steps; ++i)
            for (int k = 0; k < steps; ++k)
                shape.quad(0, group, place(i, k), place(i + 1, k), place(i + 1, k + 1), place(i, k + 1));
    }
}

} // namespace

std::string makeCourtyard() {
    o3d::Manager manager;
    addMaterial(manager, "stone", mathbase::Vector4f(0.75f, 0.75f, 0.75f, 1.0f));
    auto scene = std::make_unique<o3d::Scene>();
    scene->mName = "courtyard";

    Shape ground;
    ground.box(0, Vector3f(-13, -1, -13), Vector3f(13, 0, 13));
    for (const float side : {-1.0f, 1.0f}) { // four walls with a ledge
        ground.box(0, Vector3f(-13, 0, side * 12.5f - 0.5f), Vector3f(13, 2.2f, side * 12.5f + 0.5f));
        ground.box(0, Vector3f(-13, 2.2f, side * 12.4f - 0.7f), Vector3f(13, 2.6f, side * 12.4f + 0.7f));
        ground.box(0, Vector3f(side * 12.5f - 0.5f, 0, -12), Vector3f(side * 12.5f + 0.5f, 2.2f, 12));
        ground.box(0, Vector3f(side * 12.4f - 0.7f, 2.2f, -11.7f),
                   Vector3f(side * 12.4f + 0.7f, 2.6f, 11.7f));
    }
    addInstance(*scene, "ground", make(manager, "ground", ground), Vector3f(0, 0, 0));

    // Four flights of steps up to a round platform in the centre.
    Shape steps;
    steps.mTextureOffset = PLAIN;
    for (int i = 0; i < 6; ++i) {
        const float s = float(i);
        steps.lathe(0, {{5.0f - 0.45f * s, 0.28f * s}, {5.0f - 0.45f * s, 0.28f * (s + 1)}}, 48);
    }
    addInstance(*scene, "steps", make(manager, "steps", steps), Vector3f(0, 0, 0));

    // A colonnade: columns in two corners, mirrored into the other two, linked by arches.
    Shape column;
    column.mTextureOffset = PLAIN;
    column.box(0, Vector3f(-0.65f, 0, -0.65f), Vector3f(0.65f, 0.4f, 0.65f));
    column.lathe(0, {{0.55f, 0.4f}, {0.58f, 0.6f}, {0.45f, 0.75f}}, 24);
    column.lathe(0, {{0.42f, 0.75f}, {0.36f, 4.4f}}, 32, 16, 0.04f);
    column.lathe(0, {{0.36f, 4.4f}, {0.45f, 4.5f}, {0.42f, 4.6f}, {0.62f, 4.95f}}, 24);
    column.box(0, Vector3f(-0.65f, 4.95f, -0.65f), Vector3f(0.65f, 5.2f, 0.65f));
    o3d::Mesh& columnMesh = make(manager, "column", column);

    Shape arch;
    arch.mTextureOffset = PLAIN;
    auto inner = pointedArch(1.45f, 5.2f, 1.75f, 10);
    auto outer = inner;
    for (size_t i = 0; i < outer.size(); ++i) {
        const float share = float(i) / float(outer.size() - 1);
        outer[i] = share < 0.3f   ? Vector3f(-2.0f, 5.2f + 2.4f * share / 0.3f, 0)
                   : share > 0.7f ? Vector3f(2.0f, 5.2f + 2.4f * (1 - share) / 0.3f, 0)
                                  : Vector3f(-2.0f + 4.0f * (share - 0.3f) / 0.4f, 7.6f, 0);
    }
    arch.band(0, inner, outer, false, 0.9f);
    arch.box(0, Vector3f(-2.1f, 7.6f, -0.7f), Vector3f(2.1f, 8.0f, 0.7f));
    o3d::Mesh& archMesh = make(manager, "arch", arch);

    for (const float mirror : {1.0f, -1.0f}) {
        o3d::Dummy* const row = addDummy(*scene, mirror > 0 ? "east" : "west", Vector3f(0, 0, 0));
        setValue(row->mScale, Vector3f(mirror, 1, 1));
        for (int i = 0; i < 6; ++i) {
            const float z = -10.0f + 4.0f * float(i);
            addInstance(*row, "column" + std::to_string(i), columnMesh, Vector3f(9.5f, 0, z));
            if (i < 5)
                addInstance(*row, "arch" + std::to_string(i), archMesh, Vector3f(9.5f, 0, z + 2.0f),
                            Vector3f(0, 1.57079633f, 0));
        }
    }

    // Crates against the walls and in heaps: dark corners for the occlusion.
    Shape crate;
    crate.mTextureOffset = WOOD;
    crate.box(0, Vector3f(-0.5f, 0, -0.5f), Vector3f(0.5f, 1, 0.5f));
    for (const float a : {-0.56f, 0.44f})
        for (const float b : {-0.56f, 0.44f}) {
            crate.box(0, Vector3f(a, -0.02f, b), Vector3f(a + 0.12f, 1.02f, b + 0.12f));
            crate.box(0, Vector3f(-0.44f, b + 0.52f, a), Vector3f(0.44f, b + 0.62f, a + 0.12f));
            crate.box(0, Vector3f(a, b + 0.52f, -0.44f), Vector3f(a + 0.12f, b + 0.62f, 0.44f));
        }
    o3d::Mesh& crateMesh = make(manager, "crate", crate);
    mathbase::Random random(77);
    for (int i = 0; i < 26; ++i) {
        const float size = 0.7f + 0.8f * random.uniform();
        const float x = -8.0f + 15.0f * random.uniform();
        const float z =
            (random.draw() >> 31) != 0 ? 10.6f - 1.6f * random.uniform() : -10.6f + 1.6f * random.uniform();
        o3d::MeshInstance* const instance =
            addInstance(*scene, "crate" + std::to_string(i), crateMesh,
                        Vector3f(x, i % 4 == 3 ? 1.2f : 0.0f, z), Vector3f(0, 6.28f * random.uniform(), 0));
        setValue(instance->mScale, Vector3f(size, size, size));
    }

    Shape ball;
    ball.mTextureOffset = GLAZE;
    makeBall(ball, 1.0f, 14, 0.0f);
    o3d::Mesh& ballMesh = make(manager, "ball", ball);
    for (int i = 0; i < 9; ++i) {
        const float angle = 0.69813170f * float(i);
        const float size = 0.5f + 0.35f * float(i % 3);
        o3d::MeshInstance* const instance =
            addInstance(*scene, "ball" + std::to_string(i), ballMesh,
                        Vector3f(6.4f * cosf(angle), size, 6.4f * sinf(angle)));
        setValue(instance->mScale, Vector3f(size, size, size));
    }

    // On the platform a knot of rotating rings with a lamp in the middle.
    Shape ringShape;
    ringShape.mTextureOffset = BRASS;
    const int around = 72, across = 14;
    const int group = ringShape.newGroup();
    for (int i = 0; i < around; ++i)
        for (int k = 0; k < across; ++k) {
            const auto place = [&](int a, int b) {
                const float phi = 6.2831853f * float(a % around) / around;
                const float psi = 6.2831853f * float(b % across) / across;
                const float r = 1.0f + 0.09f * cosf(psi);
                return Vector3f(r * cosf(phi), r * sinf(phi), 0.09f * sinf(psi));
            };
            ringShape.quad(0, group, place(i, k), place(i + 1, k), place(i + 1, k + 1), place(i, k + 1));
        }
    o3d::Mesh& ringMesh = make(manager, "ring", ringShape);
    o3d::SceneNode* holder = addDummy(*scene, "rings", Vector3f(0, 3.9f, 0));
    for (int i = 0; i < 4; ++i) {
        const float size = 1.9f - 0.35f * float(i);
        o3d::MeshInstance* ring =
            addInstance(*scene, "ring" + std::to_string(i), ringMesh, Vector3f(0, 3.9f, 0));
        setValue(ring->mScale, Vector3f(size, size, size));
        const float turn = (i % 2 == 0 ? 6.2831853f : -6.2831853f);
        setCurve(ring->mRotation.mX, {0, turn / 2, turn}, 4.0f + float(i), true);
        setCurve(ring->mRotation.mY, {0, turn / 4, turn / 2, turn * 3 / 4, turn}, 2.0f + 0.5f * float(i),
                 true);
    }
    Shape lamp;
    lamp.mTextureOffset = LAMP;
    makeBall(lamp, 0.42f, 10, 0.0f);
    o3d::Mesh& lampMesh = make(manager, "lamp", lamp);
    addInstance(*holder, "heart", lampMesh, Vector3f(0, 0, 0));

    // Lamps between the columns, and some that float up and down by themselves; those cast no shadow.
    for (int i = 0; i < 5; ++i)
        for (const float mirror : {-1.0f, 1.0f})
            addInstance(*scene, "lantern" + std::to_string(i), lampMesh,
                        Vector3f(mirror * 9.5f, 5.0f, -8.0f + 4.0f * float(i)));
    for (int i = 0; i < 6; ++i) {
        const float angle = 1.04719755f * float(i) + 0.4f;
        o3d::MeshInstance* const spark = addInstance(*scene, "ex_spark" + std::to_string(i), lampMesh,
                                                     Vector3f(4.4f * cosf(angle), 2.5f, 4.4f * sinf(angle)));
        setValue(spark->mScale, Vector3f(0.4f, 0.4f, 0.4f));
        setCurve(spark->mPosition.mY, {2.2f, 4.0f, 2.2f}, 1.5f + 0.25f * float(i), true);
    }

    // Once round in 24 seconds, alternately near and low and far and high.
    auto camera = std::make_unique<o3d::Camera>();
    camera->mName = "camera";
    std::vector<float> x, y, z, pitch, heading;
    const int keys = 16;
    float before = 0;
    for (int i = 0; i <= keys; ++i) {
        const float angle = 6.2831853f * float(i) / keys;
        const float distance = 11.5f + 4.1f * cosf(2 * angle); // between the columns, over the walls
        const Vector3f eye(distance * sinf(angle), 6.4f + 2.1f * cosf(angle), distance * cosf(angle));
        const Vector3f angles = lookAt(eye, Vector3f(0, 2.6f, 0));
        x.push_back(eye.x);
        y.push_back(eye.y);
        z.push_back(eye.z);
        pitch.push_back(angles.x);
        // Unwrap the angle where it would jump by a turn.
        heading.push_back(i == 0 ? angles.y : before + remainderf(angles.y - before, 6.2831853f));
        before = heading.back();
    }
    const float step = 24.0f / keys;
    setCurve(camera->mPosition.mX, x, step, true);
    setCurve(camera->mPosition.mY, y, step, true);
    setCurve(camera->mPosition.mZ, z, step, true);
    setCurve(camera->mRotation.mX, pitch, step, true);
    setCurve(camera->mRotation.mY, heading, step, true);
    setCurve(camera->mAngle.mX, {0.85f, 1.0f, 0.85f}, 12.0f, true);
    scene->addChild(camera.release());

    auto light = std::make_unique<o3d::Light>();
    light->mName = "sun";
    setValue(light->mPosition, Vector3f(12, 18, 8));
    scene->addChild(light.release());
    manager.addScene(scene.release());
    return sceneFile(manager);
}

std::string makeStone() {
    // A boulder: a sphere dented by a sum of waves, with its texture wrapped round it.
    const int rings = 60, segments = 102;
    const auto place = [&](int ring, int segment) {
        const float theta = 3.14159265f * float(ring) / rings;
        const float phi = 6.2831853f * float(segment % segments) / segments;
        const Vector3f n(sinf(theta) * cosf(phi), cosf(theta), sinf(theta) * sinf(phi));
        float r = 1.45f;
        r += 0.16f * sinf(2.3f * n.x + 1.1f) * cosf(3.1f * n.y) + 0.09f * sinf(5.2f * n.z + 2.0f * n.x);
        r += 0.05f * sinf(9.0f * n.x + 4.0f * n.y) * sinf(8.0f * n.z + 1.0f) +
             0.02f * sinf(21.0f * n.y + 13.0f * n.x);
        return Vector3f(n.x * r * 1.05f, n.y * r * 0.85f, n.z * r);
    };
    auto mesh = std::make_unique<o3d::Mesh>();
    mesh->mName = "sten";
    mesh->mMaterials = {"stone"};
    auto submesh = std::make_unique<o3d::Submesh>();
    submesh->mParent = mesh.get();
    auto list = std::make_unique<o3d::StructList<Vector3f>>();
    // Each pole is one position; every ring has one more local vertex than positions, for the seam.
    mesh->mVertices.push_back(place(0, 0));
    mesh->mVertices.push_back(place(rings, 0));
    for (int ring = 1; ring < rings; ++ring)
        for (int segment = 0; segment < segments; ++segment)
            mesh->mVertices.push_back(place(ring, segment));
    for (int ring = 0; ring <= rings; ++ring)
        for (int segment = 0; segment <= segments; ++segment) {
            o3d::Index index;
            index.mValue = ring == 0 ? 0 : ring == rings ? 1 : 2 + (ring - 1) * segments + segment % segments;
            submesh->mIndices.push_back(index);
            list->mList.emplace_back(1.0f - float(segment) / segments, float(ring) / rings, 0.0f);
        }
    const auto local = [&](int ring, int segment) { return ring * (segments + 1) + segment; };
    const auto add = [&](int a, int b, int c) {
        o3d::Triangle triangle;
        triangle.mIndex[0] = a;
        triangle.mIndex[1] = b;
        triangle.mIndex[2] = c;
        submesh->mTriangles.push_back(triangle);
    };
    for (int ring = 0; ring < rings; ++ring)
        for (int segment = 0; segment < segments; ++segment) {
            if (ring > 0)
                add(local(ring, segment), local(ring, segment + 1), local(ring + 1, segment));
            if (ring + 1 < rings)
                add(local(ring, segment + 1), local(ring + 1, segment + 1), local(ring + 1, segment));
        }
    submesh->mTexCoords.push_back(list.release());
    submesh->updateBox();
    mesh->mSubmeshes.push_back(submesh.release());
    mesh->updateBox();

    o3d::Manager manager;
    addMaterial(manager, "stone", mathbase::Vector4f(0.6f, 0.58f, 0.55f, 1.0f));
    o3d::Mesh& stone = *addMesh(manager, std::move(mesh));
    auto scene = std::make_unique<o3d::Scene>();
    scene->mName = "sten";
    addInstance(*scene, "sten", stone, Vector3f(0, 0, 0));
    manager.addScene(scene.release());
    return sceneFile(manager);
}

} // namespace zentrak::scene
