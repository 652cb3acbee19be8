// The walk over a scene and the drawing of its meshes, as the effects share them.
#include "am_archivemanager.h"
#include "effect_scene.h"
#include "effect_test.h"
#include "scene/scene_file.h"
#include "scene/shape.h"
#include "ztk_system.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::kindler;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::Picture;

namespace {

// Notes what the walk tells.
struct Notes final : SceneVisitor {
    struct Note {
        std::string name;
        Matrix4x4Col world;
        bool flip;
    };
    std::vector<Note> notes;

    void visit(const o3d::SceneNode& node, const Matrix4x4Col& world, bool flip) override {
        notes.push_back({node.mName, world, flip});
    }
    const Note& of(const std::string& name) const {
        for (const Note& note : notes)
            if (note.name == name)
                return note;
        throw Exception("'%s' was not visited", name.c_str());
    }
    std::string order() const {
        std::string result;
        for (const Note& note : notes)
            result += (result.empty() ? "" : " ") + note.name;
        return result;
    }
};

o3d::Dummy* add(o3d::SceneNode& parent, const char* name, const Vector3f& position, const Vector3f& scale) {
    o3d::Dummy* dummy = scene::addDummy(parent, name, position);
    scene::setValue(dummy->mScale, scale);
    return dummy;
}

Notes walked(const o3d::SceneNode& node, float time = 0, bool flip = false) {
    Notes notes;
    walkScene(node, Matrix4x4Col(), time, flip, notes);
    return notes;
}

const Vector3f ONE(1, 1, 1);

} // namespace

TEST(SceneWalk, GoesFromEachNodeToItsChildrenInTheirOrder) {
    o3d::Scene scene;
    scene.mName = "root";
    o3d::SceneNode* a = add(scene, "a", Vector3f(), ONE);
    add(*a, "aa", Vector3f(), ONE);
    add(*a, "ab", Vector3f(), ONE);
    scene.addChild(new o3d::Light);
    scene.mChildren.back()->mName = "light";
    add(scene, "b", Vector3f(), ONE);
    EXPECT_EQ(walked(scene).order(), "root a aa ab light b");
}

TEST(SceneWalk, ACameraEndsItAtThatNode) {
    o3d::Scene scene;
    scene.mName = "root";
    auto* camera = new o3d::Camera;
    camera->mName = "camera";
    scene.addChild(camera);
    add(*camera, "below", Vector3f(), ONE);
    add(scene, "after", Vector3f(), ONE);
    EXPECT_EQ(walked(scene).order(), "root after");
    EXPECT_EQ(walked(*camera).order(), "");
}

TEST(SceneWalk, AMatrixIsThatOfTheParentTimesItsOwn) {
    o3d::Scene scene;
    o3d::SceneNode* a = add(scene, "a", Vector3f(10, 0, 0), Vector3f(2, 3, 4));
    add(*a, "b", Vector3f(1, 1, 1), Vector3f(5, 5, 5));
    const Notes notes = walked(scene);
    EXPECT_EQ(notes.of("a").world.multiply(Vector3f(1, 1, 1)), Vector3f(12, 3, 4));
    EXPECT_EQ(notes.of("b").world.multiply(Vector3f(1, 0, 0)), Vector3f(10 + 2 * 6, 3, 4));
    Matrix4x4Col lifted;
    lifted.setTranslation(Vector3f(0, 100, 0));
    Notes above;
    walkScene(scene, lifted, 0, false, above);
    EXPECT_EQ(above.of("b").world.multiply(Vector3f(1, 0, 0)), Vector3f(22, 103, 4));
}

TEST(SceneWalk, ASceneIsAPlainGroup) {
    o3d::Scene scene;
    scene.mName = "root";
    scene::setValue(scene.mPosition, Vector3f(7, 8, 9));
    scene::setValue(scene.mScale, Vector3f(-1, 1, 1));
    const Notes notes = walked(scene);
    EXPECT_EQ(notes.of("root").world, Matrix4x4Col());
    EXPECT_FALSE(notes.of("root").flip);
}

TEST(SceneWalk, TracksAreReadAtItsTime) {
    o3d::Scene scene;
    o3d::Dummy* a = add(scene, "a", Vector3f(), ONE);
    a->mPosition.mX.mInterpolation = 1;
    for (const auto& [time, value] : {std::pair(0.0f, 0.0f), {2.0f, 8.0f}}) {
        o3d::TrackBlenderFloat::Key key{};
        key.mTime = time;
        key.mValue = value;
        a->mPosition.mX.mKeys.push_back(key);
    }
    EXPECT_EQ(walked(scene, 0.5f).of("a").world.multiply(Vector3f()), Vector3f(2, 0, 0));
    EXPECT_EQ(walked(scene, 2.0f).of("a").world.multiply(Vector3f()), Vector3f(8, 0, 0));
}

TEST(SceneWalk, AnOddNumberOfMirroredNodesFlips) {
    o3d::Scene scene;
    o3d::SceneNode* a = add(scene, "a", Vector3f(), Vector3f(-1, 1, 1));
    o3d::SceneNode* b = add(*a, "b", Vector3f(), Vector3f(1, 1, 1));
    add(*b, "c", Vector3f(), Vector3f(1, 1, -1));
    add(scene, "twice", Vector3f(), Vector3f(-1, -1, 1));
    const Notes notes = walked(scene);
    EXPECT_TRUE(notes.of("a").flip);
    EXPECT_TRUE(notes.of("b").flip);
    EXPECT_FALSE(notes.of("c").flip);
    EXPECT_FALSE(notes.of("twice").flip);
    const Notes other = walked(scene, 0, true);
    EXPECT_FALSE(other.of("a").flip);
    EXPECT_TRUE(other.of("c").flip);
}

TEST(SceneWalk, FindsTheMeshOfAnInstance) {
    o3d::Manager manager;
    auto mesh = std::make_unique<o3d::Mesh>();
    mesh->mName = "stone";
    o3d::Mesh* const stone = scene::addMesh(manager, std::move(mesh));
    o3d::Scene scene;
    const o3d::MeshInstance* instance = scene::addInstance(scene, "here", *stone, Vector3f());
    EXPECT_EQ(asInstance(*instance), instance);
    EXPECT_EQ(asInstance(scene), nullptr);
    EXPECT_EQ(&meshOf(manager, *instance), stone);
    o3d::MeshInstance lost;
    lost.mMeshName = "nowhere";
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(meshOf(manager, lost), "`mesh'");
}

namespace {

// A manager with the mesh "box", half a unit around the origin, of material "stone" in one part.
class SceneDrawTest : public test::EffectTest {
protected:
    o3d::Manager mManager;
    o3d::Mesh* mBox = nullptr;
    SceneMeshes mMeshes;

    void SetUp() override {
        EffectTest::SetUp();
        scene::Shape shape;
        shape.box(0, Vector3f(-0.5f, -0.5f, -0.5f), Vector3f(0.5f, 0.5f, 0.5f));
        mBox = scene::addMesh(mManager, shape.build("box", {"stone"}));
        scene::addMaterial(mManager, "stone", mathbase::Vector4f(1, 1, 1, 1));
        loadMeshes(display(), mManager, mMeshes);
    }
    void TearDown() override { removeMeshes(mMeshes); }

    // The pixels that the box covers, seen from in front.
    size_t drawn(const o3d::MeshInstance* instance, bool flip, float scale = 1) {
        const Picture picture = frame([&] {
            Matrix4x4Col project, camera;
            project.setProject(1, 1.6f, 3.6f, 10); // the near plane cuts what is in front of 0.4
            camera.setCamera(Vector3f(0, 0, 4), Vector3f(0, 0, 0), 0);
            display().setProject(project);
            display().setCamera(camera);
            camera.setScale(Vector3f(scale, 1, 1));
            display().setTransform(camera);
            drawMesh(mManager, mMeshes, *mBox, instance, flip);
            display().setVBO(nullptr);
            display().setIBO(nullptr);
        });
        size_t count = 0;
        for (size_t i = 0; i < picture.rgba.size(); i += 4)
            count += picture.rgba[i] > 0;
        return count;
    }
};

} // namespace

TEST_F(SceneDrawTest, MirroredMeshesDrawWithClockwiseFaces) {
    // The front face lies ahead of the near plane: what is seen are the faces that look away from the eye.
    EXPECT_EQ(drawn(nullptr, false), 0u);
    EXPECT_GT(drawn(nullptr, true), 500u);
    EXPECT_GT(drawn(nullptr, false, -1), 500u); // mirrored, and not told
    EXPECT_EQ(drawn(nullptr, true, -1), 0u);
}

TEST_F(SceneDrawTest, SetsTheVisibleFaces) {
    frame([&] {
        GLint front = 0;
        GLboolean twoSided = GL_TRUE;
        glDisable(GL_CULL_FACE);
        glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, 1);
        drawMesh(mManager, mMeshes, *mBox, nullptr, true);
        EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
        glGetIntegerv(GL_FRONT_FACE, &front);
        EXPECT_EQ(front, GL_CW);
        glGetBooleanv(GL_LIGHT_MODEL_TWO_SIDE, &twoSided);
        EXPECT_FALSE(twoSided);
        drawMesh(mManager, mMeshes, *mBox, nullptr, false);
        glGetIntegerv(GL_FRONT_FACE, &front);
        EXPECT_EQ(front, GL_CCW);
    });
}

TEST_F(SceneDrawTest, AnInstancesMaterialComesBeforeTheMeshs) {
    mBox->mMaterials.clear();
    o3d::MeshInstance instance;
    instance.mMaterials = {"stone"};
    EXPECT_GT(drawn(&instance, true), 500u);
    instance.mMaterials.clear();
    mBox->mMaterials = {"stone"}; // an empty one selects the mesh's
    EXPECT_GT(drawn(&instance, true), 500u);
}

TEST_F(SceneDrawTest, ASubmeshWithoutAMaterialRaises) {
    mBox->mMaterials = {""};
    o3d::MeshInstance instance;
    for (const o3d::MeshInstance* each :
         {static_cast<const o3d::MeshInstance*>(nullptr), static_cast<const o3d::MeshInstance*>(&instance)}) {
        try {
            drawMesh(mManager, mMeshes, *mBox, each, false);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& exception) {
            EXPECT_STREQ("drawmesh::trianglelist without material", exception.what());
        }
    }
}

TEST_F(SceneDrawTest, AMaterialThatIsNotThereAsserts) {
    mBox->mMaterials = {"water"};
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(drawMesh(mManager, mMeshes, *mBox, nullptr, false), "`m'");
}

TEST_F(SceneDrawTest, WithoutSubmeshesOrWithoutBuffersNothingIsDrawn) {
    o3d::Mesh empty;
    glDisable(GL_CULL_FACE);
    drawMesh(mManager, mMeshes, empty, nullptr, false);
    EXPECT_FALSE(glIsEnabled(GL_CULL_FACE)); // it returned at once
    removeMeshes(mMeshes);
    EXPECT_EQ(drawn(nullptr, true), 0u);
    mMeshes["box"] = nullptr;
    EXPECT_EQ(drawn(nullptr, true), 0u);
}

TEST_F(SceneDrawTest, OfTwoMeshesWithOneNameTheLaterIsDrawn) {
    scene::Shape shape;
    shape.box(0, Vector3f(-0.1f, -0.1f, -0.1f), Vector3f(0.1f, 0.1f, 0.1f));
    scene::addMesh(mManager, shape.build("box", {"stone"}));
    SceneMeshes meshes;
    loadMeshes(display(), mManager, meshes);
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes["box"]->mBoxMax, Vector3f(0.1f, 0.1f, 0.1f));
    removeMeshes(meshes);
    EXPECT_TRUE(meshes.empty());
}

TEST_F(SceneDrawTest, AFileComesFromTheArchives) {
    o3d::Manager manager;
    loadSceneFile(display(), manager, "face/face.o3d");
    EXPECT_EQ(manager.mMeshes.size(), 1u);
    try {
        loadSceneFile(display(), manager, "face/nobody.o3d");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Exception& exception) {
        EXPECT_STREQ("File 'face/nobody.o3d' not found", exception.what());
    }
}
