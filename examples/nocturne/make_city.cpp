// Makes the city: make_city FILE.o3d. Towers in blocks of three units around a golden spire with turning
// rings, lanterns that rise over it, and a camera that spirals in for sixteen seconds.

#include "command/command.h"
#include "mb_random.h"
#include "scene/scene_file.h"
#include "scene/shape.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>

using namespace zentrak;
using namespace zentrak::scene;

namespace {

// Added to the texture coordinate u: the kind of surface (show/ssao/basepass.frag). Towers have none.
constexpr float LANTERN = 16.0f;
constexpr float GOLD = 32.0f;
constexpr float STREETS = 48.0f;

constexpr float TURN = 6.2831853f;
constexpr float BLOCK = 3.0f;
constexpr int BLOCKS = 7;    // to each side of the spire
constexpr float EDGE = 6.3f; // of the city, in blocks

o3d::Mesh& make(o3d::Manager& manager, const char* name, const Shape& shape) {
    return *addMesh(manager, shape.build(name, {"stone"}));
}

void addTowers(o3d::Manager& manager, o3d::Scene& scene) {
    mathbase::Random random(20);
    Shape towers;
    for (int i = -BLOCKS; i <= BLOCKS; ++i)
        for (int k = -BLOCKS; k <= BLOCKS; ++k) {
            const float distance = std::hypot(float(i), float(k));
            if (distance < 1.2f || distance > BLOCKS + 0.5f)
                continue;
            const float x = BLOCK * float(i), z = BLOCK * float(k);
            const float height =
                (1.2f + 4.2f * random.uniform()) * (0.6f + 2.2f * std::exp(-0.35f * distance));
            const float half = 0.75f + 0.4f * random.uniform();
            const float top = 0.35f + 0.3f * random.uniform();
            if (distance > EDGE)
                continue;
            towers.box(0, Vector3f(x - half, 0, z - half), Vector3f(x + half, height, z + half));
            towers.box(0, Vector3f(x - top, height, z - top), Vector3f(x + top, height * 1.25f, z + top));
        }
    addInstance(scene, "towers", make(manager, "towers", towers), Vector3f(0, 0, 0));

    Shape ground;
    ground.mTextureOffset = STREETS;
    ground.box(0, Vector3f(-24, -0.5f, -24), Vector3f(24, 0, 24));
    addInstance(scene, "ground", make(manager, "ground", ground), Vector3f(0, 0, 0));
}

o3d::Mesh& makeRing(o3d::Manager& manager) {
    Shape ring;
    ring.mTextureOffset = GOLD;
    const int around = 64, across = 8;
    const int group = ring.newGroup();
    const auto place = [&](int a, int b) {
        const float phi = TURN * float(a % around) / around, psi = TURN * float(b % across) / across;
        const float r = 1.0f + 0.05f * std::cos(psi);
        return Vector3f(r * std::cos(phi), r * std::sin(phi), 0.05f * std::sin(psi));
    };
    for (int i = 0; i < around; ++i)
        for (int k = 0; k < across; ++k)
            ring.quad(0, group, place(i, k), place(i + 1, k), place(i + 1, k + 1), place(i, k + 1));
    return make(manager, "ring", ring);
}

void addSpire(o3d::Manager& manager, o3d::Scene& scene) {
    Shape spire;
    spire.mTextureOffset = GOLD;
    spire.lathe(
        0, {{1.3f, 0}, {1.1f, 0.6f}, {0.5f, 1.2f}, {0.34f, 6.0f}, {0.55f, 6.3f}, {0.1f, 6.6f}, {0.03f, 11}},
        32, 8, 0.12f);
    addInstance(scene, "spire", make(manager, "spire", spire), Vector3f(0, 0, 0));
    const o3d::Mesh& ring = makeRing(manager);
    for (int i = 0; i < 4; ++i) {
        o3d::MeshInstance* const node = addInstance(scene, "ring", ring, Vector3f(0, 8.2f, 0));
        const float size = 2.6f - 0.45f * float(i), turn = i % 2 == 0 ? TURN : -TURN;
        setValue(node->mScale, Vector3f(size, size, size));
        setCurve(node->mRotation.mX, {0.3f * float(i), 0.3f * float(i) + turn}, 5.0f + float(i), true);
        setCurve(node->mRotation.mY, {0, turn / 2, turn}, 3.0f + 0.5f * float(i), true);
    }
}

void addLanterns(o3d::Manager& manager, o3d::Scene& scene) {
    mathbase::Random random(7);
    Shape shape;
    shape.mTextureOffset = LANTERN;
    shape.lathe(0, {{0.10f, -0.22f}, {0.20f, -0.10f}, {0.22f, 0.10f}, {0.12f, 0.26f}}, 12);
    const o3d::Mesh& lantern = make(manager, "lantern", shape);
    for (int i = 0; i < 40; ++i) {
        const float angle = 2.3999632f * float(i), distance = 2.2f + 0.33f * float(i);
        const float from = 2 + 4 * random.uniform(), rise = 3 + 5 * random.uniform();
        o3d::MeshInstance* const node = addInstance(
            scene, "lantern", lantern, Vector3f(distance * std::cos(angle), 0, distance * std::sin(angle)));
        setCurve(node->mPosition.mY, {from, from + 0.6f * rise, from + rise}, 8, false);
    }
}

// From over the roofs, down between the towers, and up to the rings.
void addCamera(o3d::Scene& scene) {
    auto camera = std::make_unique<o3d::Camera>();
    camera->mName = "camera";
    std::vector<float> x, y, z, pitch, heading;
    const int keys = 16;
    for (int i = 0; i <= keys; ++i) {
        const float share = float(i) / keys;
        const float angle = 0.4f + 4.2f * share;
        const float distance = 21 - 13.5f * smoothstep(0, 0.8f, share);
        const float height = 9.5f - 3.0f * std::sin(0.5f * TURN * share) + 2.5f * smoothstep(0.6f, 1, share);
        const Vector3f eye(distance * std::sin(angle), height, distance * std::cos(angle));
        const Vector3f angles = lookAt(eye, Vector3f(0, 4.2f + 3.4f * smoothstep(0.2f, 0.9f, share), 0));
        x.push_back(eye.x);
        y.push_back(eye.y);
        z.push_back(eye.z);
        pitch.push_back(angles.x);
        // The angle goes on where it would jump by a turn.
        heading.push_back(i == 0 ? angles.y
                                 : heading.back() + std::remainder(angles.y - heading.back(), TURN));
    }
    const float step = 16.0f / keys;
    setCurve(camera->mPosition.mX, x, step, false);
    setCurve(camera->mPosition.mY, y, step, false);
    setCurve(camera->mPosition.mZ, z, step, false);
    setCurve(camera->mRotation.mX, pitch, step, false);
    setCurve(camera->mRotation.mY, heading, step, false);
    camera->mAngle.mX.mValue = 0.8f;
    scene.addChild(camera.release());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fputs("usage: make_city FILE.o3d\n", stderr);
        return 2;
    }
    try {
        o3d::Manager manager;
        addMaterial(manager, "stone", mathbase::Vector4f(1, 1, 1, 1));
        auto scene = std::make_unique<o3d::Scene>();
        scene->mName = "city";
        addTowers(manager, *scene);
        addSpire(manager, *scene);
        addLanterns(manager, *scene);
        addCamera(*scene);
        manager.addScene(scene.release());
        const std::string image = sceneFile(manager);
        return command::writeFile(argv[1], image.data(), image.size()) ? 0 : 1;
    } catch (const std::exception& exception) {
        fprintf(stderr, "make_city: %s\n", exception.what());
        return 1;
    }
}
