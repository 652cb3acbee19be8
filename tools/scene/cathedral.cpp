#include "scenes.h"

#include "scene_file.h"
#include "shape.h"

#include <algorithm>
#include <cmath>

namespace zentrak::scene {

namespace {

// The plan, in units of about a third of a metre; x across, y up, z along.
constexpr int BAYS = 10;
constexpr float BAY = 14.0f;     // from pillar to pillar
constexpr float NAVE = 12.0f;    // half width, to the pillar centres
constexpr float AISLE = 24.0f;   // to the outer walls
constexpr float SPRING = 13.0f;  // where the arches between the pillars start
constexpr float GALLERY = 24.0f; // where the wall with the upper windows starts
constexpr float CORNICE = 36.0f; // where the vault starts
constexpr float CROWN = 46.0f;   // its ridge
constexpr float EAST = 70.0f;    // the end wall

// Added to the texture coordinate u to mark the kind of surface; stone adds nothing.
constexpr float GLASS = 16.0f;
constexpr float LAMP = 32.0f;
constexpr float FLOOR = -16.0f;
constexpr float WOOD = -32.0f;

float pillarZ(int i) {
    return (float(i) - BAYS / 2.0f) * BAY;
}

// Adds the mesh of a shape, centred on its bounding box; `centre` returns the position for its node.
o3d::Mesh& addCentred(o3d::Manager& manager, const Shape& shape, const std::string& name, Vector3f& centre) {
    auto mesh = shape.build(name, {"stone"});
    centre = (mesh->mBoxMin + mesh->mBoxMax) * 0.5f;
    for (Vector3f& vertex : mesh->mVertices)
        vertex -= centre;
    for (o3d::Submesh* submesh : mesh->mSubmeshes)
        submesh->updateBox();
    mesh->updateBox();
    return *addMesh(manager, std::move(mesh));
}

// Places one mesh along both sides of the church, turned to face inwards.
struct Placer {
    o3d::Manager& manager;
    o3d::SceneNode& parent;
    int count = 0;

    o3d::MeshInstance* put(const o3d::Mesh& mesh, const Vector3f& place,
                           const Vector3f& angles = Vector3f(0, 0, 0)) {
        return addInstance(parent, mesh.mName + std::to_string(++count), mesh, place, angles);
    }
};

void makePillar(Shape& shape) {
    const auto lathe = [&](const std::vector<std::pair<float, float>>& profile, int flutes, float flute) {
        shape.lathe(0, profile, 32, flutes, flute);
    };
    shape.box(0, Vector3f(-2.3f, 0.0f, -2.3f), Vector3f(2.3f, 0.9f, 2.3f));
    lathe({{2.2f, 0.9f}, {2.2f, 1.4f}, {1.75f, 2.0f}, {1.75f, 2.3f}}, 0, 0.0f);
    lathe({{1.4f, 2.3f}, {1.3f, SPRING - 2.4f}}, 8, 0.1f); // a bundle of shafts
    lathe({{1.55f, SPRING - 2.4f}, {1.6f, SPRING - 2.1f}, {1.35f, SPRING - 2.0f}, {2.1f, SPRING - 0.7f}}, 8,
          0.06f);
    shape.box(0, Vector3f(-2.2f, SPRING - 0.7f, -2.2f), Vector3f(2.2f, SPRING, 2.2f));
}

// The rectangle from (-w, bottom) up, over and down to (w, bottom), with as many points as the arch in it
// has.
std::vector<Vector3f> frameOf(const std::vector<Vector3f>& arch, float w, float bottom, float top) {
    std::vector<Vector3f> frame;
    for (const Vector3f& p : arch) {
        // Where the ray from the foot of the axis leaves the rectangle.
        const float x = p.x, y = p.y - bottom;
        const float scale =
            std::min(fabsf(x) > 1e-4f ? w / fabsf(x) : 1e9f, y > 1e-4f ? (top - bottom) / y : 1e9f);
        frame.emplace_back(x * scale, bottom + y * scale, 0.0f);
    }
    // A corner lies between two points: move the nearest there.
    for (const float side : {-1.0f, 1.0f}) {
        const Vector3f corner(side * w, top, 0.0f);
        *std::min_element(frame.begin() + 1, frame.end() - 1, [&](const Vector3f& a, const Vector3f& b) {
            return (a - corner).length2() < (b - corner).length2();
        }) = corner;
    }
    return frame;
}

// The arcade wall of one bay, with its arch; across the nave it lies in the plane of the pillars.
void makeArcade(Shape& shape) {
    const auto arch = pointedArch(BAY / 2 - 1.7f, SPRING, BAY - 4.4f, 12);
    shape.band(0, arch, frameOf(arch, BAY / 2, SPRING, GALLERY - 0.8f), false, 2.2f);
    // A moulding along the arch, on both faces.
    std::vector<Vector3f> outer = arch;
    for (Vector3f& p : outer) {
        const Vector3f away = Vector3f(p.x, p.y - SPRING, 0.0f).getNormalized();
        p += away * 0.55f;
    }
    shape.band(0, arch, outer, false, 3.0f);
    // A ledge over it.
    shape.box(0, Vector3f(-BAY / 2, GALLERY - 0.8f, -1.5f), Vector3f(BAY / 2, GALLERY, 1.5f));
}

// The closed outline of a window, clockwise, so that the wall lies to its left.
std::vector<Vector3f> windowOutline(float halfWidth, float sill, float spring, float radius, int steps) {
    std::vector<Vector3f> outline = pointedArch(halfWidth, spring, radius, steps);
    outline.emplace_back(halfWidth, sill, 0.0f);
    outline.insert(outline.begin(), Vector3f(-halfWidth, sill, 0.0f));
    return outline;
}

// A wall with one window, between `bottom` and `top`, with tracery and glass.
void makeWindowWall(Shape& shape, float halfBay, float bottom, float top, float halfWidth, float sill,
                    float spring) {
    const float depth = 1.8f;
    const auto hole = windowOutline(halfWidth, sill, spring, halfWidth * 2, 10);
    auto wall = frameOf(std::vector<Vector3f>(hole.begin() + 1, hole.end() - 1), halfBay, spring, top);
    wall.front() = Vector3f(-halfBay, spring, 0.0f);
    wall.back() = Vector3f(halfBay, spring, 0.0f);
    wall.insert(wall.begin(), Vector3f(-halfBay, bottom, 0.0f));
    wall.emplace_back(halfBay, bottom, 0.0f);
    shape.band(0, hole, wall, true, depth);

    // Mullions up to two smaller arches and a round one above them.
    const float thin = 0.35f;
    shape.box(0, Vector3f(-thin / 2, sill, -0.3f), Vector3f(thin / 2, spring + halfWidth * 0.45f, 0.3f));
    for (const float side : {-0.5f, 0.5f}) {
        auto arch = pointedArch(halfWidth / 2, spring - halfWidth * 0.4f, halfWidth, 6);
        for (Vector3f& p : arch)
            p.x += side * halfWidth;
        shape.bar(0, arch, thin, thin, Vector3f(0, 0, 1));
    }
    std::vector<Vector3f> ring;
    for (int i = 0; i <= 16; ++i) {
        const float angle = 6.2831853f * float(i) / 16.0f;
        ring.emplace_back(cosf(angle) * halfWidth * 0.38f,
                          spring + halfWidth * 0.8f + sinf(angle) * halfWidth * 0.38f, 0.0f);
    }
    shape.bar(0, ring, thin, thin, Vector3f(0, 0, 1));
    for (float y = sill + 2.0f; y < spring - 1.0f; y += 2.5f)
        shape.box(0, Vector3f(-halfWidth, y, -0.12f), Vector3f(halfWidth, y + 0.2f, 0.12f));

    // The panes: a slab in the hole. Its inner face is well in front of the outer one, so that it covers the
    // outline drawn around it.
    shape.mTextureOffset = GLASS;
    const Vector3f outside(0.0f, 0.0f, 0.9f), inside(0.0f, 0.0f, -0.05f);
    const int front = shape.newGroup(), back = shape.newGroup();
    const Vector3f middle(0.0f, (sill + spring) / 2, 0.0f);
    for (size_t i = 0; i < hole.size(); ++i) {
        const Vector3f &a = hole[i], &b = hole[(i + 1) % hole.size()];
        shape.triangle(0, front, middle + outside, b + outside, a + outside);
        shape.triangle(0, back, middle + inside, a + inside, b + inside);
    }
    shape.mTextureOffset = 0.0f;
}

// One bay of the vault: two crossing pointed barrels, and ribs along their creases.
float barrel(float x) { // 0 at the sides, 1 at the ridge: a pointed arc
    const float t = 1.0f - std::min(1.0f, fabsf(x));
    return sqrtf(std::max(0.0f, 1.0f - (1.0f - t) * (1.0f - t) * (0.65f + 0.35f * (1.0f - t))));
}

void makeVault(Shape& shape) {
    const int across = 24, along = 16;
    const auto height = [](float x, float z) {
        return CORNICE + (CROWN - CORNICE) * std::max(barrel(x), barrel(z) * 0.96f);
    };
    const auto place = [&](int i, int k, float over) {
        const float x = 2.0f * float(i) / across - 1.0f, z = 2.0f * float(k) / along - 1.0f;
        return Vector3f(x * NAVE, height(x, z) + over, z * BAY / 2);
    };
    const int under = shape.newGroup(), over = shape.newGroup();
    for (int i = 0; i < across; ++i)
        for (int k = 0; k < along; ++k) {
            shape.quad(0, under, place(i, k, 0), place(i + 1, k, 0), place(i + 1, k + 1, 0),
                       place(i, k + 1, 0));
            shape.quad(0, over, place(i, k, 1), place(i, k + 1, 1), place(i + 1, k + 1, 1),
                       place(i + 1, k, 1));
        }
    for (int i = 0; i < across; ++i)
        for (const int k : {0, along}) {
            const int from = k == 0 ? i : i + 1, to = k == 0 ? i + 1 : i;
            shape.quad(0, shape.newGroup(), place(to, k, 0), place(from, k, 0), place(from, k, 1),
                       place(to, k, 1));
        }
    for (int k = 0; k < along; ++k)
        for (const int i : {0, across}) {
            const int from = i == 0 ? k + 1 : k, to = i == 0 ? k : k + 1;
            shape.quad(0, shape.newGroup(), place(i, to, 0), place(i, from, 0), place(i, from, 1),
                       place(i, to, 1));
        }
}

void makeRibs(Shape& shape) {
    const auto rib = [&](float x0, float z0, float x1, float z1, float width) {
        std::vector<Vector3f> curve;
        for (int i = 0; i <= 24; ++i) {
            const float t = float(i) / 24.0f;
            const float x = x0 + (x1 - x0) * t, z = z0 + (z1 - z0) * t;
            const float rise = std::max(barrel(x) * (fabsf(x1 - x0) > 0 ? 1.0f : 0.0f),
                                        barrel(z) * (fabsf(z1 - z0) > 0 ? 0.96f : 0.0f));
            curve.emplace_back(x * NAVE, CORNICE + (CROWN - CORNICE) * rise - 0.3f, z * BAY / 2);
        }
        shape.bar(0, curve, width, 1.0f, Vector3f(0, 1, 0.01f));
    };
    rib(-1, -1, 1, 1, 0.7f);
    rib(-1, 1, 1, -1, 0.7f);
    rib(-1, -1, 1, -1, 1.2f); // the arch from wall to wall
}

// The shaft on the wall that carries a rib, from pillar to vault.
void makeShaft(Shape& shape) {
    shape.lathe(0, {{0.75f, SPRING}, {0.75f, CORNICE - 2.0f}}, 16);
    shape.lathe(0, {{0.9f, CORNICE - 2.0f}, {0.8f, CORNICE - 1.6f}, {1.3f, CORNICE - 0.6f}, {1.3f, CORNICE}},
                16);
}

// The end of the church: three tall windows and a rose.
void makeRose(Shape& shape) {
    const float radius = 7.5f;
    const int spokes = 12;
    const auto circle = [](float r, int count, float turn) {
        std::vector<Vector3f> points;
        for (int i = 0; i < count; ++i) {
            const float angle = turn - 6.2831853f * float(i) / float(count);
            points.emplace_back(cosf(angle) * r, sinf(angle) * r, 0.0f);
        }
        return points;
    };
    shape.band(0, circle(radius, 48, 0), circle(radius + 1.2f, 48, 0), true, 2.6f);
    shape.band(0, circle(1.6f, 24, 0), circle(2.2f, 24, 0), true, 1.4f);
    for (int i = 0; i < spokes; ++i) {
        const float angle = 6.2831853f * float(i) / spokes;
        const Vector3f out(cosf(angle), sinf(angle), 0.0f);
        shape.bar(0, {out * 2.0f, out * (radius * 0.62f)}, 0.4f, 0.5f, Vector3f(0, 0, 1));
        // A small ring between the ends of the spokes.
        const float between = angle + 3.14159265f / spokes;
        std::vector<Vector3f> ring;
        for (int k = 0; k <= 12; ++k) {
            const float a = 6.2831853f * float(k) / 12.0f;
            ring.emplace_back(cosf(between) * radius * 0.79f + cosf(a) * 1.35f,
                              sinf(between) * radius * 0.79f + sinf(a) * 1.35f, 0.0f);
        }
        shape.bar(0, ring, 0.35f, 0.4f, Vector3f(0, 0, 1));
    }
    shape.mTextureOffset = GLASS;
    const auto rim = circle(radius, 48, 0);
    const Vector3f outside(0.0f, 0.0f, 0.9f), inside(0.0f, 0.0f, -0.05f);
    const int front = shape.newGroup(), back = shape.newGroup();
    for (size_t i = 0; i < rim.size(); ++i) {
        const Vector3f &a = rim[i], &b = rim[(i + 1) % rim.size()];
        shape.triangle(0, front, outside, b + outside, a + outside);
        shape.triangle(0, back, inside, a + inside, b + inside);
    }
    shape.mTextureOffset = 0.0f;
}

void makeEndWall(Shape& shape) {
    const float rose = 33.0f, radius = 8.7f;
    std::vector<Vector3f> hole, wall;
    for (int i = 0; i < 48; ++i) {
        const float angle = 3.14159265f * 1.25f - 6.2831853f * float(i) / 48.0f;
        const float x = cosf(angle), y = sinf(angle);
        hole.emplace_back(x * radius, rose + y * radius, 0.0f);
        const float scale =
            std::min(NAVE / std::max(fabsf(x), 1e-4f),
                     (y > 0 ? CROWN + 1.0f - rose : rose - GALLERY + 0.5f) / std::max(fabsf(y), 1e-4f));
        wall.emplace_back(x * scale, rose + y * scale, 0.0f);
    }
    for (const Vector3f& corner : {Vector3f(-NAVE, GALLERY - 0.5f, 0), Vector3f(NAVE, GALLERY - 0.5f, 0),
                                   Vector3f(-NAVE, CROWN + 1.0f, 0), Vector3f(NAVE, CROWN + 1.0f, 0)})
        *std::min_element(wall.begin(), wall.end(), [&](const Vector3f& a, const Vector3f& b) {
            return (a - corner).length2() < (b - corner).length2();
        }) = corner;
    shape.band(0, hole, wall, true, 2.0f);
}

void makeAltar(Shape& shape) {
    for (int step = 0; step < 4; ++step) {
        const float s = float(step);
        shape.box(0, Vector3f(-9.0f + s, s * 0.8f, -7.0f + s * 1.3f),
                  Vector3f(9.0f - s, (s + 1) * 0.8f, 7.0f));
    }
    shape.box(0, Vector3f(-3.6f, 3.2f, 1.0f), Vector3f(3.6f, 6.0f, 3.6f));
    shape.box(0, Vector3f(-4.1f, 6.0f, 0.7f), Vector3f(4.1f, 6.5f, 3.9f));
    shape.box(0, Vector3f(-0.3f, 6.5f, 2.8f), Vector3f(0.3f, 13.0f, 3.3f));
    shape.box(0, Vector3f(-2.0f, 10.3f, 2.8f), Vector3f(2.0f, 10.9f, 3.3f));
}

void makeBench(Shape& shape) {
    shape.mTextureOffset = WOOD;
    shape.box(0, Vector3f(-4.0f, 1.3f, -0.8f), Vector3f(4.0f, 1.6f, 0.6f));
    shape.box(0, Vector3f(-4.0f, 1.6f, 0.45f), Vector3f(4.0f, 3.4f, 0.7f));
    for (const float x : {-4.3f, 4.0f})
        shape.box(0, Vector3f(x, 0.0f, -0.9f), Vector3f(x + 0.3f, 3.7f, 0.8f));
}

void makeLamp(Shape& shape) {
    shape.lathe(0, {{0.06f, 0.0f}, {0.06f, 10.0f}}, 6);
    shape.mTextureOffset = LAMP;
    shape.lathe(0, {{0.2f, -2.4f}, {0.9f, -1.9f}, {1.1f, -1.0f}, {0.8f, -0.2f}, {0.2f, 0.0f}}, 24);
}

} // namespace

std::string makeCathedral() {
    o3d::Manager manager;
    addMaterial(manager, "stone", mathbase::Vector4f(0.8f, 0.76f, 0.7f, 1.0f));
    auto scene = std::make_unique<o3d::Scene>();
    scene->mName = "katedral";

    const auto make = [&](const std::string& name, const auto& fill, Vector3f& centre) -> o3d::Mesh& {
        Shape shape;
        fill(shape);
        return addCentred(manager, shape, name, centre);
    };
    Vector3f c;
    const auto at = [&](float x, float y, float z) { return c + Vector3f(x, y, z); };
    const float quarter = 1.57079633f;

    // Both sides are one group of nodes; the second mirrors the first.
    const auto side = [&](float mirror) {
        o3d::Dummy* const group = addDummy(*scene, mirror > 0 ? "north" : "south", Vector3f(0, 0, 0));
        setValue(group->mScale, Vector3f(mirror, 1, 1));
        return group;
    };
    o3d::Dummy* const sides[2] = {side(1.0f), side(-1.0f)};
    // Turned so that the plane of an outline becomes a wall along z: its x runs along -z.
    const auto wallPlace = [&](float x, float z) { return Vector3f(x + c.z, c.y, z - c.x); };

    o3d::Mesh& pillar = make("pillar", makePillar, c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i <= BAYS; ++i)
            Placer{manager, *group, i}.put(pillar, at(NAVE, 0, pillarZ(i)));
    o3d::Mesh& shaft = make("shaft", makeShaft, c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i <= BAYS; ++i)
            Placer{manager, *group, i}.put(shaft, at(NAVE - 1.2f, 0, pillarZ(i)));
    o3d::Mesh& arcade = make("arcade", makeArcade, c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i < BAYS; ++i)
            Placer{manager, *group, i}.put(arcade, wallPlace(NAVE, pillarZ(i) + BAY / 2),
                                           Vector3f(0, quarter, 0));
    o3d::Mesh& clerestory = make(
        "clerestory",
        [](Shape& s) { makeWindowWall(s, BAY / 2, GALLERY, CORNICE + 9.0f, 3.4f, GALLERY + 2.5f, 34.0f); },
        c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i < BAYS; ++i)
            Placer{manager, *group, i}.put(clerestory, wallPlace(NAVE + 0.4f, pillarZ(i) + BAY / 2),
                                           Vector3f(0, quarter, 0));
    o3d::Mesh& outer = make(
        "aisle", [](Shape& s) { makeWindowWall(s, BAY / 2, 0.0f, GALLERY + 1.0f, 3.2f, 4.5f, 13.0f); }, c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i < BAYS; ++i)
            Placer{manager, *group, i}.put(outer, wallPlace(AISLE, pillarZ(i) + BAY / 2),
                                           Vector3f(0, quarter, 0));
    o3d::Mesh& roof = make(
        "aisleroof",
        [](Shape& s) { s.box(0, Vector3f(0, 0, -BAY / 2), Vector3f(AISLE - NAVE, 1.0f, BAY / 2)); }, c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i < BAYS; ++i)
            Placer{manager, *group, i}.put(roof, at(NAVE, GALLERY, pillarZ(i) + BAY / 2));
    o3d::Mesh& bench = make("bench", makeBench, c);
    for (o3d::Dummy* group : sides)
        for (int i = 0; i < 16; ++i)
            Placer{manager, *group, i}.put(bench, at(6.2f, 0, -22.0f + 4.2f * float(i)));

    o3d::Mesh& vault = make("vault", makeVault, c);
    Placer middle{manager, *scene};
    for (int i = 0; i < BAYS; ++i)
        middle.put(vault, at(0, 0, pillarZ(i) + BAY / 2));
    o3d::Mesh& ribs = make("ribs", makeRibs, c);
    for (int i = 0; i < BAYS; ++i)
        middle.put(ribs, at(0, 0, pillarZ(i) + BAY / 2));
    o3d::Mesh& floor = make(
        "floor",
        [](Shape& s) {
            s.mTextureOffset = FLOOR;
            s.box(0, Vector3f(-AISLE, -1.0f, -BAY / 2), Vector3f(AISLE, 0.0f, BAY / 2));
        },
        c);
    for (int i = 0; i < BAYS; ++i)
        middle.put(floor, at(0, 0, pillarZ(i) + BAY / 2));

    o3d::Mesh& endWall = make("endwall", makeEndWall, c);
    middle.put(endWall, at(0, 0, EAST));
    o3d::Mesh& rose = make("rose", makeRose, c);
    middle.put(rose, at(0, 33.0f, EAST - 0.5f));
    o3d::Mesh& lancet = make(
        "lancet", [](Shape& s) { makeWindowWall(s, NAVE / 3, 0.0f, GALLERY - 0.5f, 2.9f, 4.5f, 15.0f); }, c);
    for (int i = -1; i <= 1; ++i)
        middle.put(lancet, at(float(i) * NAVE * 2 / 3, 0, EAST), Vector3f(0, 0, 0));
    o3d::Mesh& altar = make("altar", makeAltar, c);
    middle.put(altar, at(0, 0, 56.0f));
    // Swinging lamps on long cords.
    o3d::Mesh& lamp = make("lamp", makeLamp, c);
    for (int i = 0; i < 5; ++i) {
        o3d::Dummy* const hook =
            addDummy(*scene, "hook" + std::to_string(i), Vector3f(0, 28.0f, -14.0f + 14.0f * float(i)));
        const float swing = 0.06f + 0.01f * float(i);
        setCurve(hook->mRotation.mZ, {-swing, swing, -swing}, 1.6f + 0.1f * float(i), true);
        addInstance(*hook, "lamp" + std::to_string(i), lamp, c + Vector3f(0, -10.0f, 0));
    }

    auto camera = std::make_unique<o3d::Camera>();
    camera->mName = "camera";
    setValue(camera->mPosition, Vector3f(0, 16, -40));
    setValue(camera->mRotation, lookAt(Vector3f(0, 16, -40), Vector3f(0, 10, 0)));
    camera->mAngle.mX.mValue = 0.78539816f;
    scene->addChild(camera.release());
    manager.addScene(scene.release());
    return sceneFile(manager);
}

} // namespace zentrak::scene
