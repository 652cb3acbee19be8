// The importer: its results, its reports of what is lost, and that nothing crashes it.

#include "compare.h"
#include "import/animation.h"
#include "import/child.h"
#include "import/geometry.h"
#include "import/read_model.h"
#include "import/transfer.h"
#include "import/transform.h"
#include "o3d_manager.h"
#include "support.h"

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cmath>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <numbers>
#include <random>
#include <sys/resource.h>
#include <tuple>
#include <unistd.h>

using namespace zentrak;
using namespace zentrak::importer;

namespace {

constexpr const char* PACKAGE = "/usr/share/assimp/models";
constexpr double PI = std::numbers::pi;

Conversion import(const std::string& path, const Options& options = {}) {
    return convert(readModel(path), options, "scene");
}

std::unique_ptr<o3d::Manager> load(const Conversion& conversion) {
    auto manager = std::make_unique<o3d::Manager>();
    manager->load(reinterpret_cast<const unsigned char*>(conversion.image.data()),
                  int(conversion.image.size()));
    return manager;
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
    return std::any_of(list.begin(), list.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

const o3d::SceneNode* findNode(const o3d::SceneNode& top, const std::string& name) {
    if (top.mName == name)
        return &top;
    for (const o3d::SceneNode* child : top.mChildren)
        if (const o3d::SceneNode* const found = findNode(*child, name))
            return found;
    return nullptr;
}

std::string refusalOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& exception) {
        return exception.what();
    }
    return "not refused";
}

// A tetrahedron, whose sides all face in different directions.
constexpr const char* OBJ = R"(mtllib m.mtl
o solid
v 0 0 0
v 2 0 0
v 0 2 0
v 0 0 2
vt 0 0
vt 1 0
vt 0 0.25
usemtl wood
f 1/1 3/3 2/2
f 1/1 2/2 4/3
usemtl stone
f 1/1 4/2 3/3
f 2/1 3/2 4/3
)";

std::string base64(const std::string& bytes) {
    static const char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (i + k < bytes.size() ? uint8_t(bytes[i + k]) : 0);
        for (size_t k = 0; k < 4; ++k)
            text += i + k > bytes.size() ? '=' : digits[group >> (18 - 6 * k) & 63];
    }
    return text;
}

std::string floats(const std::vector<float>& values) {
    std::string bytes(values.size() * sizeof(float), '\0');
    memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

// A node whose translation, rotation or scale has keys at the seconds 0, 1 and 2.
std::string movingNode(const std::string& interpolation, const std::vector<float>& values,
                       const std::string& path = "translation") {
    const bool rotates = path == "rotation";
    const std::string data = floats({0, 1, 2}) + floats(values);
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"lamp \"A\""}],
        "buffers":[{"byteLength":)" +
           std::to_string(data.size()) + R"(,"uri":"data:application/octet-stream;base64,)" + base64(data) +
           R"("}],"bufferViews":[{"buffer":0,"byteLength":12},{"buffer":0,"byteOffset":12,"byteLength":)" +
           std::to_string(data.size() - 12) + R"(}],
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"SCALAR","min":[0],"max":[2]},
            {"bufferView":1,"componentType":5126,"count":)" +
           std::to_string(values.size() / (rotates ? 4 : 3)) + R"(,"type":")" + (rotates ? "VEC4" : "VEC3") +
           R"("}],
        "animations":[{"samplers":[{"input":0,"output":1,"interpolation":")" +
           interpolation + R"("}],"channels":[{"sampler":0,"target":{"node":0,"path":")" + path +
           R"("}}]}]})";
}

// A glTF file in binary form, with the bytes of its one buffer in place of their base64.
std::string binaryGltf(std::string json, const std::string& data) {
    const size_t uri = json.find(",\"uri\"");
    json.erase(uri, json.find('"', json.find("base64,")) + 1 - uri);
    while (json.size() % 4)
        json += ' ';
    const auto number = [](size_t value) {
        std::string bytes;
        for (int shift = 0; shift < 32; shift += 8)
            bytes += char(value >> shift & 255);
        return bytes;
    };
    return "glTF" + number(2) + number(28 + json.size() + data.size()) + number(json.size()) + "JSON" + json +
           number(data.size()) + std::string("BIN\0", 4) + data;
}

// A node whose matrix shears, and a child that is moved, with the same triangle.
std::string shearedNode() {
    const std::string data = floats({0, 0, 0, 1, 0, 0, 0, 1, 0});
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "nodes":[{"name":"slab","mesh":0,"children":[1],"matrix":[1,0,0,0, 0.7,2,0,0, 0,0.3,1,0, 4,5,6,1]},
            {"name":"on it","mesh":0,"translation":[1,2,3]}],
        "meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
        "buffers":[{"byteLength":36,"uri":"data:application/octet-stream;base64,)" +
           base64(data) + R"("}],"bufferViews":[{"buffer":0,"byteLength":36}],
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]}]})";
}

// A camera on an arm of 3 units that turns about y, a quarter turn per second.
std::string turningCamera() {
    const float half = float(std::numbers::sqrt2 / 2);
    const std::string data = floats({0, 1, 2, 0, 0, 0, 1, 0, half, 0, half, 0, 1, 0, 0});
    return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
        "nodes":[{"name":"arm","children":[1]},{"name":"eye","translation":[0,0,3],"camera":0}],
        "cameras":[{"name":"eye","type":"perspective","perspective":{"yfov":0.7,"aspectRatio":1.5,"znear":0.1}}],
        "buffers":[{"byteLength":)" +
           std::to_string(data.size()) + R"(,"uri":"data:application/octet-stream;base64,)" + base64(data) +
           R"("}],"bufferViews":[{"buffer":0,"byteLength":12},{"buffer":0,"byteOffset":12,"byteLength":48}],
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"SCALAR","min":[0],"max":[2]},
            {"bufferView":1,"componentType":5126,"count":3,"type":"VEC4"}],
        "animations":[{"name":"turn","samplers":[{"input":0,"output":1,"interpolation":"LINEAR"}],
            "channels":[{"sampler":0,"target":{"node":0,"path":"rotation"}}]}]})";
}

// One part of triangles, textured.
Part part(const std::vector<std::array<float, 3>>& positions,
          const std::vector<std::array<float, 2>>& texCoords,
          const std::vector<std::array<uint32_t, 3>>& triangles) {
    Part result;
    result.positions = positions;
    result.texCoords = texCoords;
    result.triangles = triangles;
    return result;
}

// A triangle in a root at 0, 5, 0, and one in its child `leaf`, at 10, 0, 0 from there, which moves away from
// x = 10 at the second 0.
Model twoNodes() {
    Model model;
    model.parts.push_back(part({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}, {{0, 1, 2}}));
    model.nodes.resize(2);
    model.nodes[0].name = "root";
    model.nodes[1].name = "leaf";
    model.nodes[1].parent = 0;
    model.nodes[0].parts = model.nodes[1].parts = {0};
    Matrix::Translation(Vector(0, 5, 0), model.nodes[0].matrix);
    Matrix::Translation(Vector(10, 0, 0), model.nodes[1].matrix);
    Animation walk;
    walk.name = "walk";
    walk.channels.resize(1);
    walk.channels[0].node = "leaf";
    walk.channels[0].positions = {{0, {10, 0, 0}}, {1, {90, 0, 0}}};
    model.animations.push_back(walk);
    return model;
}

// Makes the normals, as the show does, in a process of its own.
std::string normalsOf(const Part& source) {
    return refusalOf([&] {
        inChild(
            [&] {
                MeshLosses losses;
                const auto mesh = buildMesh({&source}, Space(Matrix3(), 1), Matrix(), losses);
                mesh->addNormals();
                for (const o3d::TangentSpace& space : mesh->mSubmeshes[0]->mTangentSpaces)
                    for (const auto& v : {space.mNormal, space.mTangent, space.mBinormal})
                        if (!(fabsf(v.length() - 1) < 0.01f))
                            throw std::runtime_error("a normal or tangent is none");
                return std::string();
            },
            60, 4096);
    });
}

} // namespace

TEST(Transform, AnglesComeBackAsTheTurnTheyWere) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> angle(-PI, PI);
    for (int i = 0; i < 2000; ++i) {
        Vector angles(angle(random), angle(random), angle(random));
        if (i % 4 == 0)
            angles.z = i % 8 ? PI / 2 : -PI / 2; // where two angles are about one axis
        const Quaternion turn = fromAngles(angles);
        const Vector back = toAngles(turn, Vector(angle(random), angle(random), angle(random)) * 3.0);
        EXPECT_LT(angleBetween(turn, fromAngles(back)), 1e-6) << i;
        EXPECT_LT((toAngles(turn, angles) - angles).Length(), 1e-6) << i;
    }
}

TEST(Transform, AnglesAreTheEngines) {
    const Vector angles(0.3, -1.1, 0.7);
    const Quaternion turn = fromAngles(angles);
    const mathbase::Quatf engine(mathbase::Eulerf(mathbase::Vector3f(0.3f, -1.1f, 0.7f),
                                                  mathbase::RotationOrder(mathbase::RotationOrder::YZX)));
    EXPECT_NEAR(turn.w, double(engine.w), 1e-6);
    EXPECT_NEAR(turn.x, double(engine.x), 1e-6);
    EXPECT_NEAR(turn.y, double(engine.y), 1e-6);
    EXPECT_NEAR(turn.z, double(engine.z), 1e-6);
}

TEST(Transform, AMatrixThatShearsMirrorsOrFlattensIsDecomposedAndComposedAgain) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> number(-2, 2);
    for (int i = 0; i < 500; ++i) {
        Matrix matrix;
        for (unsigned row = 0; row < 3; ++row)
            for (unsigned column = 0; column < 4; ++column)
                matrix[row][column] = number(random);
        const int flat = i % 4; // columns that are 0
        for (int column = 0; column < flat; ++column)
            for (unsigned row = 0; row < 3; ++row)
                matrix[row][(i / 4 + column) % 3] = 0;
        const Trs parts = decompose(matrix);
        const Matrix again =
            toMatrix(parts.position, parts.rotation, parts.scale) * Matrix(parts.inner.GetMatrix());
        for (unsigned row = 0; row < 3; ++row)
            for (unsigned column = 0; column < 4; ++column)
                EXPECT_NEAR(matrix[row][column], again[row][column], 1e-6) << i;
    }
}

TEST(Transform, EachAxisCanBeUp) {
    for (const auto& [name, axis] : std::map<std::string, Vector>{{"x", {1, 0, 0}},
                                                                  {"-x", {-1, 0, 0}},
                                                                  {"y", {0, 1, 0}},
                                                                  {"-y", {0, -1, 0}},
                                                                  {"z", {0, 0, 1}},
                                                                  {"-z", {0, 0, -1}}}) {
        const Matrix3 axes = axesWithUp(name);
        EXPECT_EQ(Vector(0, 1, 0), axes * axis) << name;
        EXPECT_EQ(1, axes.Determinant()) << name;
    }
    EXPECT_EQ("'w' is not an axis: x, y, z, -x, -y or -z", refusalOf([] { axesWithUp("w"); }));
}

TEST(Import, APartOfEachMaterialBecomesASubmeshWithItsName) {
    const test::TempDir folder;
    test::writeFile(folder.file("m.mtl"),
                    "newmtl wood\nKd 0.5 0.25 0\nmap_Kd grain.png\nnewmtl stone\nKd 1 1 1\n");
    test::writeFile(folder.file("a.obj"), OBJ);
    const auto manager = load(import(folder.file("a.obj")));
    ASSERT_EQ(2u, manager->mMaterials.size());
    ASSERT_TRUE(manager->getMaterial("wood"));
    ASSERT_TRUE(manager->getMaterial("stone"));
    const o3d::Material::Attribute& diffuse = *manager->getMaterial("wood")->mAttributes[0];
    EXPECT_EQ("diffuse", diffuse.mName);
    EXPECT_FLOAT_EQ(0.25f, diffuse.mColor.y);
    ASSERT_EQ(1u, diffuse.mTextures.size());
    EXPECT_EQ("grain.png", manager->getImage(diffuse.mTextures[0]->mImageName)->mFileName);
    size_t triangles = 0;
    for (const o3d::Mesh* mesh : manager->mMeshes)
        for (const o3d::Submesh* submesh : mesh->mSubmeshes)
            triangles += submesh->mTriangles.size();
    EXPECT_EQ(4u, triangles);
}

TEST(Import, TextureCoordinatesRunDown) {
    const test::TempDir folder;
    test::writeFile(folder.file("a.obj"), OBJ);
    const auto manager = load(import(folder.file("a.obj")));
    float least = 9, most = -9;
    for (const o3d::Mesh* mesh : manager->mMeshes)
        for (const o3d::Submesh* submesh : mesh->mSubmeshes)
            for (const auto& coordinates : submesh->mTexCoords[0]->mList) {
                least = std::min(least, coordinates.y);
                most = std::max(most, coordinates.y);
            }
    EXPECT_FLOAT_EQ(0.75f, least);
    EXPECT_FLOAT_EQ(1.0f, most);
}

TEST(Import, AFileWithoutACameraGetsOneThatSeesAllOfIt) {
    const test::TempDir folder;
    test::writeFile(folder.file("a.obj"), OBJ);
    const Conversion with = import(folder.file("a.obj"));
    EXPECT_TRUE(contains(with.remarks, "the file has no camera"));
    const auto manager = load(with);
    const auto* const camera = dynamic_cast<o3d::Camera*>(manager->mScenes[0]->mChildren[0]);
    ASSERT_TRUE(camera);
    mathbase::Matrix4x4Col view;
    view.buildBlenderCameraInverse(camera->mPosition.getValue(0),
                                   mathbase::Quatf(camera->mRotation.getValue(0)),
                                   mathbase::Vector3f(1, 1, 1));
    const float slope = tanf(camera->mAngle.getValue(0) / 2);
    for (const o3d::Mesh* mesh : manager->mMeshes)
        for (const auto& vertex : mesh->mVertices) {
            const auto seen = view * vertex;
            EXPECT_LT(fabsf(seen.x), -seen.z * slope);
            EXPECT_LT(fabsf(seen.y), -seen.z * slope);
        }
    Options options;
    options.camera = false;
    const auto without = load(import(folder.file("a.obj"), options));
    for (const o3d::SceneNode* node : without->mScenes[0]->mChildren)
        EXPECT_FALSE(dynamic_cast<const o3d::Camera*>(node));
}

// So far away that its camera stands, as a float, where it looks to.
TEST(Import, AModelFarFromTheOriginGetsACamera) {
    test::TempDir folder;
    test::writeFile(folder.file("a.obj"), "v 1e9 1e9 1e9\nv 1e9 1e9 1e9\nv 1e9 1e9 1e9\nf 1 2 3\n");
    const auto manager = load(import(folder.file("a.obj")));
    ASSERT_EQ(manager->mScenes.size(), 1u);
    EXPECT_EQ(manager->mScenes[0]->mChildren[0]->mName, "camera");
}

TEST(Import, InvalidDataFromTheReadingProcessIsRefused) {
    Model model;
    model.nodes.resize(2);
    model.nodes[1].parent = 0;
    model.nodes[1].parts = {0};
    model.parts.resize(1);
    model.parts[0].positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    model.parts[0].triangles = {{0, 1, 2}};
    const auto refusal = [](Model sent) { return refusalOf([&] { fromBytes(toBytes(sent)); }); };
    EXPECT_EQ(refusal(model), "not refused");
    const std::string nonsense = "the reading process sent invalid data";
    for (const auto& spoil : std::vector<std::function<void(Model&)>>{
             [](Model& m) { m.nodes[0].parent = 1; }, [](Model& m) { m.nodes[1].parent = -2; },
             [](Model& m) { m.nodes[1].parts[0] = 1; }, [](Model& m) { m.parts[0].triangles[0][2] = 3; },
             [](Model& m) { m.parts[0].normals.resize(2); },
             [](Model& m) { m.parts[0].texCoords.resize(4); }}) {
        Model spoiled = model;
        spoil(spoiled);
        EXPECT_EQ(refusal(spoiled), nonsense);
    }
}

TEST(Import, DataThatTheReadingProcessCutsShortIsRefused) {
    Model model = twoNodes();
    const std::string whole = toBytes(model);
    ASSERT_EQ(refusalOf([&] { fromBytes(whole); }), "not refused");
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_EQ(refusalOf([&] { fromBytes(whole.substr(0, size)); }), "the reading process ended too early")
            << size;
}

TEST(Import, AFlatSceneHasEachMeshWhereItsNodeStandsAtTheStart) {
    Options options;
    options.flat = true;
    const Conversion flat = convert(twoNodes(), options, "scene");
    EXPECT_TRUE(contains(flat.losses, "animation 'walk': nothing moves in a flat scene"));
    const auto manager = load(flat);
    ASSERT_EQ(2u, manager->mMeshes.size());
    EXPECT_EQ(0.0f, manager->mMeshes[0]->mBoxMin.x);
    EXPECT_EQ(5.0f, manager->mMeshes[0]->mBoxMin.y);
    EXPECT_EQ(10.0f, manager->mMeshes[1]->mBoxMin.x);
    EXPECT_EQ(11.0f, manager->mMeshes[1]->mBoxMax.x);
    EXPECT_EQ(5.0f, manager->mMeshes[1]->mBoxMin.y);
    const o3d::SceneNode* const leaf = manager->mScenes[0]->mChildren.back();
    EXPECT_EQ("leaf", leaf->mName);
    EXPECT_EQ(0.0f, leaf->mPosition.getValue(0.5f).length());
}

TEST(Import, TreesAndFlatScenesFitIntoARadius) {
    for (const bool flat : {false, true}) {
        Options options;
        options.flat = flat;
        options.fit = 3;
        options.camera = false;
        const auto manager = load(convert(twoNodes(), options, "scene"));
        float reach = 0;
        const std::function<void(const o3d::SceneNode&, mathbase::Vector3f)> visit =
            [&](const o3d::SceneNode& node, mathbase::Vector3f place) {
                place += node.mPosition.getValue(0);
                if (const auto* const instance = dynamic_cast<const o3d::MeshInstance*>(&node))
                    for (const auto& vertex : manager->getMesh(instance->mMeshName)->mVertices)
                        reach = std::max(reach, (place + vertex).length());
                for (const o3d::SceneNode* child : node.mChildren)
                    visit(*child, place);
            };
        visit(*manager->mScenes[0], {0, 0, 0});
        EXPECT_NEAR(3.0f, reach, 0.01f) << (flat ? "flat" : "tree");
    }
}

TEST(Import, WhatASceneCannotHaveIsReported) {
    const std::pair<std::function<void(Model&)>, const char*> cases[] = {
        {[](Model& m) { m.nodes[1].matrix.a1 = NAN; },
         "node 'leaf': its transform is not a number: it is ignored"},
        {[](Model& m) { m.animations[0].channels[0].node = "ghost"; },
         "node 'ghost': it is animated but not in the scene"},
        {[](Model& m) { m.animations[0].channels[0].disordered = 1; },
         "node 'leaf': its keys are out of order: they are sorted by time"},
        {[](Model& m) { m.animations[0].others = {"leaf"}; },
         "node 'leaf': its vertex animation is left out"},
        {[](Model& m) {
             m.parts[0].texCoords = {{NAN, 0}, {1, 0}, {0, INFINITY}};
         },
         "node 'root': 2 texture coordinates are not numbers: 0 now"},
        {[](Model& m) { m.parts[0].badTriangles = 3; },
         "node 'root': 3 triangles have invalid vertex indices"},
        {[](Model& m) { m.parts[0].texCoordSets = 2; },
         "node 'root': of 2 sets of texture coordinates the first is kept"},
        {[](Model& m) { m.parts[0].depthCoords = 1; },
         "node 'root': the third texture coordinate is left out"},
        {[](Model& m) {
             m.cameras.push_back({"leaf", {}, {0, 0, 1}, {0, 1, 0}, 1, 1});
         },
         "node 'leaf': its camera is orthographic: it gets a perspective"},
        {[](Model& m) {
             m.lights.push_back({"leaf", {}, {0, 0, 1}, {}, 0, 1});
         },
         "node 'leaf': an ambient light is left out"},
    };
    for (const auto& [spoil, loss] : cases) {
        Model model = twoNodes();
        EXPECT_FALSE(contains(convert(model, Options(), "scene").losses, loss));
        spoil(model);
        const Conversion result = convert(model, Options(), "scene");
        EXPECT_TRUE(contains(result.losses, loss)) << loss;
        load(result);
    }
}

TEST(Import, AShearedNodeKeepsItsShapeAndItsChildren) {
    const test::TempDir folder;
    test::writeFile(folder.file("a.gltf"), shearedNode());
    const auto manager = load(import(folder.file("a.gltf")));
    EXPECT_TRUE(findNode(*manager->mScenes[0], "slab.shear"));
    const test::Comparison comparison = test::compareImport(folder.file("a.gltf"));
    EXPECT_EQ("", comparison.problem);
    EXPECT_EQ(6u, comparison.vertices);
    EXPECT_LT(comparison.worst, 1e-6);
}

TEST(Import, MoreMaterialsThanAMeshCanNumberMakeSeveralMeshes) {
    Model model = twoNodes();
    model.parts.resize(300, model.parts[0]);
    for (uint32_t i = 0; i < 300; ++i) {
        model.surfaces.push_back({"m" + std::to_string(i), {}, {}});
        model.parts[i].material = i;
        model.nodes[1].parts.resize(i + 1, i);
    }
    const auto manager = load(convert(model, Options(), "scene"));
    size_t submeshes = 0;
    for (const char* name : {"leaf.part1", "leaf.part2"}) {
        const auto* const piece =
            dynamic_cast<const o3d::MeshInstance*>(findNode(*manager->mScenes[0], name));
        ASSERT_TRUE(piece) << name;
        submeshes += manager->getMesh(piece->mMeshName)->mSubmeshes.size();
    }
    EXPECT_EQ(300u, submeshes);
}

TEST(Import, ACameraOnAMovingArmIsInTheSceneItselfAndMoves) {
    const test::TempDir folder;
    test::writeFile(folder.file("a.gltf"), turningCamera());
    const auto manager = load(import(folder.file("a.gltf")));
    const auto* const camera = dynamic_cast<o3d::Camera*>(manager->mScenes[0]->mChildren[0]);
    ASSERT_TRUE(camera);
    EXPECT_EQ("eye", camera->mName);
    EXPECT_NEAR(0.7f, camera->mAngle.getValue(0), 1e-4f);
    for (float time = -0.5f; time < 2.6f; time += 0.0731f) {
        const float angle = std::clamp(time, 0.0f, 2.0f) * float(PI) / 2;
        const auto position = camera->mPosition.getValue(time);
        EXPECT_NEAR(3 * sinf(angle), position.x, 0.001f) << time;
        EXPECT_NEAR(0.0f, position.y, 0.001f) << time;
        EXPECT_NEAR(3 * cosf(angle), position.z, 0.001f) << time;
        mathbase::Matrix4x4Col view;
        view.buildBlenderCameraInverse(position, mathbase::Quatf(camera->mRotation.getValue(time)),
                                       mathbase::Vector3f(1, 1, 1));
        const auto ahead = view * mathbase::Vector3f(0, 0, 0);
        EXPECT_NEAR(0.0f, ahead.x, 0.005f) << time;
        EXPECT_NEAR(-3.0f, ahead.z, 0.005f) << time;
        const auto above = view * mathbase::Vector3f(0, 1, 0);
        EXPECT_NEAR(1.0f, above.y, 0.005f) << time;
    }
}

TEST(Import, AJumpOfTheKeysStaysAJump) {
    Channel channel;
    channel.positions = {{0, {0, 0, 0}}, {1, {1, 0, 0}}, {1, {5, 0, 0}}, {2, {6, 0, 0}}};
    channel.rotations = {
        {0, Quaternion()}, {1, Quaternion()}, {1, fromAngles({0, 2, 0})}, {2, fromAngles({0, 2, 0})}};
    o3d::TrackVector3f position, scale;
    o3d::TrackEulerf rotation;
    std::vector<std::string> losses;
    setTracks(channel, Space(Matrix3(), 1), position, rotation, scale, losses);
    EXPECT_TRUE(losses.empty());
    EXPECT_NEAR(0.999f, position.mX.getValue(0.999f), 1e-5f);
    EXPECT_NEAR(5.001f, position.mX.getValue(1.001f), 1e-5f);
    EXPECT_NEAR(0.0f, rotation.mY.getValue(0.999f), 1e-5f);
    EXPECT_NEAR(2.0f, rotation.mY.getValue(1.001f), 1e-5f);
    for (size_t i = 1; i < position.mX.mKeys.size(); ++i)
        EXPECT_LT(position.mX.mKeys[i - 1].mTime, position.mX.mKeys[i].mTime);
}

TEST(Import, KeysOfGltfAreInterpolatedAsSpecified) {
    const test::TempDir folder;
    const auto positionOf = [&](const Conversion& conversion, float time) {
        const auto manager = load(conversion);
        return manager->mScenes[0]->mChildren.back()->mPosition.getValue(time);
    };
    test::writeFile(folder.file("step.gltf"), movingNode("STEP", {0, 0, 0, 1, 1, 1, 3, 3, 3}));
    const Conversion step = import(folder.file("step.gltf"));
    EXPECT_TRUE(step.losses.empty());
    EXPECT_NEAR(0.0f, positionOf(step, 0.99f).y, 1e-5f);
    EXPECT_NEAR(1.0f, positionOf(step, 1.01f).y, 1e-5f);
    EXPECT_NEAR(1.0f, positionOf(step, 1.99f).y, 1e-5f);
    EXPECT_NEAR(3.0f, positionOf(step, 2.01f).y, 1e-5f);
    test::writeFile(folder.file("step.glb"), binaryGltf(movingNode("STEP", {0, 0, 0, 1, 1, 1, 3, 3, 3}),
                                                        floats({0, 1, 2, 0, 0, 0, 1, 1, 1, 3, 3, 3})));
    EXPECT_NEAR(0.0f, positionOf(import(folder.file("step.glb")), 0.99f).y, 1e-5f);
    const auto nodeOf = [](const o3d::Manager& manager) { return manager.mScenes[0]->mChildren.back(); };
    test::writeFile(folder.file("scale.gltf"), movingNode("STEP", {1, 1, 1, 2, 2, 2, 3, 3, 3}, "scale"));
    const auto scaled = load(import(folder.file("scale.gltf")));
    EXPECT_NEAR(1.0f, nodeOf(*scaled)->mScale.getValue(0.99f).x, 1e-5f);
    EXPECT_NEAR(2.0f, nodeOf(*scaled)->mScale.getValue(1.01f).x, 1e-5f);
    test::writeFile(folder.file("turn.gltf"),
                    movingNode("STEP", {0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 1}, "rotation"));
    const auto turned = load(import(folder.file("turn.gltf")));
    EXPECT_NEAR(0.0f, nodeOf(*turned)->mRotation.getValue(0.99f).angles.y, 1e-4f);
    EXPECT_NEAR(float(PI), fabsf(nodeOf(*turned)->mRotation.getValue(1.01f).angles.y), 1e-4f);
    test::writeFile(folder.file("line.gltf"), movingNode("LINEAR", {0, 0, 0, 1, 1, 1, 3, 3, 3}));
    EXPECT_NEAR(0.5f, positionOf(import(folder.file("line.gltf")), 0.5f).y, 1e-5f);
    const std::vector<float> curve = {0, 0, 0,  0, 0, 0, 0, 9, 0, 0, 9, 0, 1, 1,
                                      1, 0, -9, 0, 0, 0, 0, 3, 3, 3, 0, 0, 0};
    test::writeFile(folder.file("curve.gltf"), movingNode("CUBICSPLINE", curve));
    EXPECT_TRUE(
        contains(import(folder.file("curve.gltf")).losses, "its curves between keys become straight lines"));
}

TEST(Import, RepetitionsAreKeptOrReported) {
    Channel channel;
    channel.positions = {{0, {0, 0, 0}}, {1, {0, 1, 0}}, {2, {0, 0, 0}}};
    channel.before = channel.after = Beyond::REPEAT;
    o3d::TrackVector3f position, scale;
    o3d::TrackEulerf rotation;
    std::vector<std::string> losses;
    setTracks(channel, Space(Matrix3(), 1), position, rotation, scale, losses);
    EXPECT_TRUE(losses.empty());
    EXPECT_NEAR(0.5f, position.mY.getValue(6.5f), 1e-5f);
    channel.before = channel.after = Beyond::EXTRAPOLATE;
    setTracks(channel, Space(Matrix3(), 1), position, rotation, scale, losses);
    EXPECT_TRUE(contains(losses, "it stands still there"));
}

TEST(Import, ATurnThroughAllAnglesStaysWithinTheStatedError) {
    Channel channel;
    std::mt19937 random(5);
    std::uniform_real_distribution<double> angle(-PI, PI);
    for (int i = 0; i < 40; ++i)
        channel.rotations.push_back({double(i), fromAngles({angle(random), angle(random), angle(random)})});
    o3d::TrackVector3f position, scale;
    o3d::TrackEulerf rotation;
    std::vector<std::string> losses;
    setTracks(channel, Space(Matrix3(), 1), position, rotation, scale, losses);
    EXPECT_TRUE(losses.empty());
    for (double time = 0; time < 39; time += 0.0173) {
        const Quaternion expected = poseAt(channel, Trs(), time).rotation;
        const auto found = rotation.getValue(float(time)).angles;
        EXPECT_LT(angleBetween(expected, fromAngles({double(found.x), double(found.y), double(found.z)})),
                  MAX_TURN_ERROR * 1.1)
            << time;
    }
}

TEST(Import, AMeshThatTheEngineCouldNotLightIsMadeSoThatItCan) {
    // Two sides of a leaf that share their corners; a pyramid whose tip has the texture all round it; a
    // texture that is mirrored at an edge; one that is a single point.
    EXPECT_EQ("not refused", normalsOf(part({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 0}, {1, 0}, {0, 1}},
                                            {{0, 1, 2}, {0, 2, 1}})));
    EXPECT_EQ("not refused", normalsOf(part({{0, 1, 0}, {1, 0, 0}, {0, 0, -1}, {-1, 0, 0}, {0, 0, 1}},
                                            {{0.5, 1}, {0, 0}, {0.25, 0}, {0.5, 0}, {0.75, 0}},
                                            {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}})));
    EXPECT_EQ("not refused", normalsOf(part({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 0, 0}},
                                            {{0, 0}, {1, 0}, {1, 1}, {0, 0}}, {{0, 1, 2}, {1, 3, 2}})));
    EXPECT_EQ("not refused", normalsOf(part({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                                            {{0.3f, 0.3f}, {0.3f, 0.3f}, {0.3f, 0.3f}, {0.3f, 0.3f}},
                                            {{0, 1, 2}, {0, 2, 3}})));
}

TEST(Import, TrianglesWithoutAreaAreCountedAndLeftOut) {
    MeshLosses losses;
    const Part source = part({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {NAN, 0, 0}}, {},
                             {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}});
    const auto mesh = buildMesh({&source}, Space(Matrix3(), 1), Matrix(), losses);
    EXPECT_EQ(2u, losses.flatTriangles);
    EXPECT_EQ(1u, mesh->mSubmeshes[0]->mTriangles.size());
    EXPECT_EQ(3u, mesh->mVertices.size());
}

TEST(Import, FlatMirroredNodesKeepTheirOutside) {
    const Part source = part({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}, {{0, 1, 2}});
    Matrix mirror;
    mirror.a1 = -1;
    MeshLosses losses;
    const auto mesh = buildMesh({&source}, Space(Matrix3(), 1), mirror, losses);
    const auto& v = mesh->mVertices;
    const auto& indices = mesh->mSubmeshes[0]->mIndices;
    const auto at = [&](int i) {
        return v[size_t(indices[size_t(mesh->mSubmeshes[0]->mTriangles[0].mIndex[i])].mValue)];
    };
    EXPECT_GT((at(1) - at(0)).cross(at(2) - at(0)).z, 0.0f);
}

TEST(Import, PointsAreFittedAndSpread) {
    const test::TempDir folder;
    test::writeFile(folder.file("a.obj"), OBJ);
    Options options;
    options.points = true;
    options.fit = 1;
    const auto corners = load(import(folder.file("a.obj"), options));
    ASSERT_EQ(1u, corners->mMeshes.size());
    EXPECT_EQ(4u, corners->mMeshes[0]->mVertices.size());
    EXPECT_TRUE(corners->mMeshes[0]->mSubmeshes.empty());
    options.pointCount = 2800;
    const auto spread = load(import(folder.file("a.obj"), options));
    const auto& points = spread->mMeshes[0]->mVertices;
    ASSERT_EQ(2800u, points.size());
    // Every 28th is spread as evenly: about a share of the area on the slanted side.
    int slanted = 0;
    const float slant = points.empty() ? 0 : 2.0f / sqrtf(12.0f); // of the fitted solid: x + y + z there
    for (size_t i = 0; i < points.size(); i += 28) {
        EXPECT_LE(points[i].length(), 1.0001f);
        EXPECT_GT(points[i].length(), 0.0f);
        slanted += points[i].x + points[i].y + points[i].z > slant * 2 - sqrtf(3.0f) - 0.001f;
    }
    EXPECT_NEAR(100 * 0.366, slanted, 8);
}

TEST(Import, LossesAreReportedWithTheNameOfTheNode) {
    if (!std::filesystem::exists(PACKAGE))
        GTEST_SKIP() << "assimp-testmodels is not installed";
    const std::string models = PACKAGE;
    EXPECT_TRUE(contains(
        import(models + "/glTF2/glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf").losses,
        "node 'AnimatedMorphCube': 2 morph targets are left out"));
    EXPECT_TRUE(
        contains(import(models + "/glTF2/simple_skin/simple_skin.gltf").losses, "it is deformed by 2 bones"));
}

TEST(Import, AnFbxFileStatesItsUnit) {
    if (!std::filesystem::exists(PACKAGE))
        GTEST_SKIP() << "assimp-testmodels is not installed";
    // In centimetres (phong_cube) and in metres (box).
    for (const auto& [name, unit] : {std::pair("phong_cube.fbx", 0.01), std::pair("box.fbx", 1.0)})
        EXPECT_NEAR(unit, readModel(std::string(PACKAGE) + "/FBX/" + name).unit, 1e-6) << name;
}

TEST(Import, AModelStandsUprightInMetres) {
    Model model;
    model.unit = 0.01;
    model.axes = axesWithUp("z");
    model.nodes.resize(1);
    model.nodes[0].name = "box";
    model.nodes[0].parts = {0};
    model.parts.push_back(part({{0, 0, 0}, {100, 0, 0}, {0, 0, 250}}, {}, {{0, 1, 2}}));
    const auto manager = load(convert(model, Options(), "scene"));
    EXPECT_FLOAT_EQ(1.0f, manager->mMeshes[0]->mBoxMax.x);
    EXPECT_FLOAT_EQ(2.5f, manager->mMeshes[0]->mBoxMax.y);
    Options options;
    options.up = "y";
    options.scale = 2;
    EXPECT_FLOAT_EQ(5.0f, load(convert(model, options, "scene"))->mMeshes[0]->mBoxMax.z);
}

TEST(Import, OneOfSeveralAnimationsIsChosenByNameOrNumber) {
    Model model;
    model.nodes.resize(1);
    model.nodes[0].name = "box";
    for (const char* name : {"walk", "run"}) {
        Animation animation;
        animation.name = name;
        animation.channels.resize(1);
        animation.channels[0].node = "box";
        const double speed = model.animations.empty() ? 1 : 3;
        animation.channels[0].positions = {{0, {0, 0, 0}}, {speed, {speed, 0, 0}}};
        model.animations.push_back(animation);
    }
    Options options;
    EXPECT_EQ(1, convert(model, options, "scene").counts.length);
    EXPECT_TRUE(contains(convert(model, options, "scene").losses, "animation 'run' is left out"));
    options.animation = "run";
    EXPECT_EQ(3, convert(model, options, "scene").counts.length);
    options.animation = "2";
    EXPECT_EQ(3, convert(model, options, "scene").counts.length);
    options.animation = "fly";
    EXPECT_EQ("it has no animation 'fly'", refusalOf([&] { convert(model, options, "scene"); }));
}

TEST(Import, ATreeThatTheLoaderCouldNotTakeIsRefused) {
    Model model;
    for (int i = 0; i < 2500; ++i) {
        model.nodes.emplace_back();
        model.nodes.back().parent = i - 1;
        model.nodes.back().matrix.a4 = 1;
    }
    EXPECT_EQ("its nodes are nested more than 1900 deep",
              refusalOf([&] { convert(model, Options(), "scene"); }));
}

TEST(Child, ACrashAndAnEndlessLoopAreRefusals) {
    EXPECT_EQ("done", inChild([] { return std::string("done"); }, 10, 1024));
    EXPECT_EQ("no good", refusalOf([] {
                  inChild([]() -> std::string { throw std::runtime_error("no good"); }, 10, 1024);
              }));
    EXPECT_EQ(0u, refusalOf([] {
                      inChild(
                          []() -> std::string {
                              raise(SIGSEGV);
                              return "";
                          },
                          10, 1024);
                  }).find("the reader crashed on it"));
    EXPECT_EQ("it takes more than 1 seconds to read", refusalOf([] {
                  inChild(
                      []() -> std::string {
                          for (;;)
                              pause();
                      },
                      1, 1024);
              }));
}

#ifndef __SANITIZE_ADDRESS__
TEST(Child, MemoryEndsAtTheLimit) {
    EXPECT_EQ("it takes more than 512 MB of memory",
              refusalOf([] { inChild([] { return std::string(600u << 20, 'x'); }, 10, 512); }));
}
#endif

TEST(Child, AReaderThatCannotBeStartedIsARefusal) {
    rlimit before{};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    const rlimit none{3, before.rlim_max};
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &none));
    const std::string refusal = refusalOf([] { inChild([] { return std::string("done"); }, 10, 1024); });
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &before));
    EXPECT_EQ("can't start the reader: Too many open files", refusal);
}

TEST(Program, TakesItsOptions) {
    const test::TempDir folder;
    const test::WorkingDir inFolder(folder.path());
    test::writeFile("a.obj", OBJ);
    test::writeFile("walk.gltf", movingNode("LINEAR", {0, 0, 0, 1, 1, 1, 3, 3, 3}));
    const auto run = [&](const std::string& arguments) {
        return test::runCommand(ZENTRAK_IMPORT " " + arguments);
    };
    const std::tuple<const char*, int, const char*> cases[] = {
        {"--flat --fit=2 --no-camera a.obj", 0, "0 cameras"},
        {"--flat --fit=2 --no-camera a.obj", 0, "note: fitted into 2 units around the origin"},
        {"--points a.obj", 0, "3 points"},
        {"--points a.obj", 0, "lost: 1 points at the origin"},
        {"--points=100 a.obj", 0, "100 points"},
        {"--points=0 a.obj", 2, "--points"},
        {"--fit=x a.obj", 2, "--fit"},
        {"--seconds=0 a.obj", 2, "--seconds"},
        {"--flat=1 a.obj", 2, "--flat"},
        {"--flat walk.gltf", 0, "lost: animation '"},
        {"--animation=1 walk.gltf", 0, "2 seconds"},
        {"--animation=fly walk.gltf", 1, "walk.gltf: it has no animation 'fly'"},
        {"--seconds=9 --up=z a.obj", 0, "4 triangles"},
        {".", 1, ".: can't be read: it is a folder"},
    };
    for (const auto& [arguments, status, words] : cases) {
        const auto result = run(arguments);
        EXPECT_EQ(status, result.first) << arguments;
        EXPECT_NE(std::string::npos, result.second.find(words)) << arguments << "\n" << result.second;
    }
}

TEST(Program, ReportsWhatItRefuses) {
    const test::TempDir folder;
    const std::string program = ZENTRAK_IMPORT;
    const auto run = [&](const std::string& arguments) {
        return test::runCommand(program + " " + arguments);
    };
    EXPECT_EQ(2, run("").first);
    EXPECT_EQ(2, run("--what a.obj").first);
    EXPECT_EQ(2, run("--up=w a.obj").first);
    EXPECT_EQ(2, run("--scale=0 a.obj").first);
    EXPECT_EQ(0, run("--help").first);
    const auto missing = run(folder.file("none.obj"));
    EXPECT_EQ(1, missing.first);
    EXPECT_NE(std::string::npos, missing.second.find("none.obj: can't be read: No such file"));
    test::writeFile(folder.file("a.txt"), "no model at all\n");
    const auto text = run(folder.file("a.txt"));
    EXPECT_EQ(1, text.first);
    EXPECT_NE(std::string::npos, text.second.find("a.txt: it is of no kind that assimp knows"));
    test::writeFile(folder.file("a.obj"), OBJ);
    const test::WorkingDir inFolder(folder.path());
    EXPECT_EQ(0, run("a.obj").first);
    EXPECT_TRUE(test::fileExists("a.o3d"));
    EXPECT_EQ(0, run("--dry-run a.obj b.o3d").first);
    EXPECT_FALSE(test::fileExists("b.o3d"));
}

// The smallest file of each format that imports at all. The whole package: import_survey (docs/import.md).
TEST(Package, TheSmallestOfEachFormatMatchesAssimp) {
    if (!std::filesystem::exists(PACKAGE))
        GTEST_SKIP() << "assimp-testmodels is not installed";
    const Assimp::Importer importer;
    std::map<std::string, std::vector<std::pair<uintmax_t, std::string>>> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(PACKAGE)) {
        std::string kind = entry.path().extension().string();
        std::transform(kind.begin(), kind.end(), kind.begin(),
                       [](unsigned char c) { return char(tolower(c)); });
        if (entry.is_regular_file() && !kind.empty() && importer.IsExtensionSupported(kind))
            files[kind].emplace_back(entry.file_size(), entry.path().string());
    }
    int formats = 0;
    for (auto& [kind, list] : files) {
        std::sort(list.begin(), list.end());
        for (size_t i = 0; i < std::min<size_t>(list.size(), 3); ++i) {
            const test::Comparison result = test::compareImport(list[i].second);
            EXPECT_EQ(std::string::npos, result.problem.find("crashed")) << list[i].second;
            if (result.refused)
                continue;
            EXPECT_EQ("", result.problem) << list[i].second;
            EXPECT_LE(result.worst, 0.0005) << list[i].second;
            ++formats;
            break;
        }
    }
    EXPECT_GE(formats, 40);
}
