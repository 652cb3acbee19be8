#include "allocations.h"
#include "dis_display.h"
#include "kasper.h"
#include "scene_test.h"
#include "ztk_system.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

const std::string SCENE = "own/scene.o3d";

class KasperTest : public test::SceneTest {
protected:
    Kasper mKasper;

    // A scene with a camera at (0, 0, 10) and what `fill` adds.
    void load(const std::function<void(o3d::Scene&, const o3d::Mesh&)>& fill) {
        writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
            addCamera(root, Vector3f(0, 0, 10));
            fill(root, box);
        });
        mKasper.loadScene(&display(), SCENE);
    }
    Picture at(float time) {
        return frame([&] {
            display().resetStates();
            glEnable(GL_DEPTH_TEST);
            mKasper.render(time);
        });
    }
    // The shadow map over the whole window.
    Picture lit(float time, const Matrix4x4Col& model = Matrix4x4Col()) {
        return frame([&] {
            mKasper.renderLight(time, model);
            display().resetStates();
            display().setProject(Matrix4x4Col());
            glDisable(GL_CULL_FACE);
            glEnable(GL_TEXTURE_2D);
            glColor4f(1, 1, 1, 1);
            mKasper.getShadowMap().bind();
            glBegin(GL_QUADS);
            for (const auto& [x, y] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
                glTexCoord2i(x, y);
                glVertex2i(2 * x - 1, 2 * y - 1);
            }
            glEnd();
            mKasper.getShadowMap().unbind();
        });
    }
};

// The number of pixels that aren't black; or, in a shadow map, aren't empty.
int drawn(const Picture& picture) {
    int count = 0;
    for (size_t i = 0; i < picture.rgba.size(); i += 4)
        count += picture.rgba[i] || picture.rgba[i + 1] || picture.rgba[i + 2];
    return count;
}
int shadowed(const Picture& picture) {
    int count = 0;
    for (size_t i = 0; i < picture.rgba.size(); i += 4)
        count += picture.rgba[i + 2] < 128; // blue is 0 where there is something
    return count;
}

void expectNear(const Vector3f& a, const Vector3f& b, float range = 1e-4f) {
    EXPECT_NEAR(a.x, b.x, range);
    EXPECT_NEAR(a.y, b.y, range);
    EXPECT_NEAR(a.z, b.z, range);
}

} // namespace

TEST_F(KasperTest, PrintsTheProgressOfLoading) {
    test::CaptureStdout out;
    load([](o3d::Scene&, const o3d::Mesh&) {});
    const std::string text = out.text();
    size_t place = 0;
    for (const char* line :
         {"[log][loadScene], Opening 'own/scene.o3d' (kasper.cpp:", "Loading o3d (kasper.cpp:",
          "Find active camera (kasper.cpp:", "Load meshes (kasper.cpp:", "Loading done (kasper.cpp:"}) {
        const size_t found = text.find(line, place);
        EXPECT_NE(found, std::string::npos) << line << "\n" << text;
        place = found == std::string::npos ? place : found;
    }
}

TEST_F(KasperTest, DrawsThroughTheScenesCamera) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0));
    });
    const Picture picture = at(0);
    // The near face is 2 wide at a distance of 9; the height there is 2 * 9 * tan(22.5 degrees).
    const double side = 2.0 / (2 * 9 * std::tan(0.39269908));
    EXPECT_NEAR(drawn(picture), side * 250 * (side / 1.6) * 400, 150);
    for (const auto& [x, y] : {std::pair(200, 125), std::pair(180, 110), std::pair(220, 140)})
        EXPECT_EQ(picture.at(x, y)[0], 255);
    expectNear(mKasper.getCameraMatrix().multiply(Vector3f(0, 0, 0)), Vector3f(0, 0, 10));
    GLfloat project[16], view[16];
    frame([&] {
        mKasper.render(0);
        glGetFloatv(GL_PROJECTION_MATRIX, project);
        glGetFloatv(GL_MODELVIEW_MATRIX, view);
    });
    Matrix4x4Col expected;
    expected.setProject(0.78539816f, 1.6f, 0.5f, 1000);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(project[i], expected.mData[i], 1e-4f) << i;
    EXPECT_NEAR(view[14], -10, 1e-4f);
}

TEST_F(KasperTest, NodesMoveWithTheirParentsAndTheTime) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        o3d::SceneNode* parent = scene::addDummy(root, "parent", Vector3f(1, 0, 0));
        scene::setCurve(parent->mPosition.mX, {1, 3}, 1, false);
        scene::addInstance(*parent, "cube", box, Vector3f(0, 2, 0));
    });
    mKasper.updateBox(0);
    expectNear(mKasper.getBoxMin(), Vector3f(0, 1, -1));
    expectNear(mKasper.getBoxMax(), Vector3f(2, 3, 1));
    mKasper.updateBox(1);
    expectNear(mKasper.getBoxMin(), Vector3f(2, 1, -1));
    expectNear(mKasper.getBoxMax(), Vector3f(4, 3, 1));
}

TEST_F(KasperTest, TheBoxIsResetAndLeavesOutWhatCastsNoShadow) {
    expectNear(mKasper.getBoxMin(), Vector3f(0, 0, 0), 0);
    expectNear(mKasper.getBoxMax(), Vector3f(0, 0, 0), 0);
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "a", box, Vector3f(5, 6, 7));
        scene::addInstance(root, "b", box, Vector3f(9, 6, 7));
        scene::addInstance(root, "ex_c", box, Vector3f(100, 0, 0));
        scene::addInstance(*root.mChildren[0], "under the camera", box, Vector3f(0, 100, 0));
    });
    mKasper.updateBox(0);
    expectNear(mKasper.getBoxMin(), Vector3f(4, 5, 6)); // and not from the origin
    expectNear(mKasper.getBoxMax(), Vector3f(10, 7, 8));
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "ex_only", box, Vector3f(1, 2, 3));
    });
    mKasper.updateBox(0);
    expectNear(mKasper.getBoxMin(), Vector3f(4, 5, 6)); // nothing to compute a new box from
}

TEST_F(KasperTest, ANodeOfACameraStopsTheWalkAtThatNode) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(*root.mChildren[0], "below", box, Vector3f(0, 0, 0));
    });
    EXPECT_EQ(drawn(at(0)), 0);
}

TEST_F(KasperTest, AnObjectNamedExIsVisibleButCastsNoShadow) {
    // Two boxes side by side, both in reach of a light whose map covers only the first.
    const auto boxes = [this](const char* second) {
        load([&](o3d::Scene& root, const o3d::Mesh& box) {
            o3d::SceneNode* ground = scene::addInstance(root, "ground", box, Vector3f(0, -2, 0));
            scene::setValue(ground->mScale, Vector3f(2, 1, 2));
            if (second)
                scene::addInstance(root, second, box, Vector3f(3.2f, -2, 0));
        });
    };
    boxes("ex_lamp");
    const int seen = drawn(at(0)), shadows = shadowed(lit(0));
    boxes("lamp");
    EXPECT_EQ(seen, drawn(at(0)));
    boxes(nullptr);
    EXPECT_GT(seen, drawn(at(0)) + 500);
    EXPECT_GT(shadows, 500);
    EXPECT_EQ(shadows, shadowed(lit(0)));
}

TEST_F(KasperTest, AnOddNumberOfMirroredNodesDrawsWithClockwiseFaces) {
    struct Case {
        Vector3f outer, inner;
        GLint winding;
    };
    const Vector3f one(1, 1, 1), x(-1, 1, 1), y(1, -1, 1), all(-1, -1, -1), two(-1, -1, 1);
    for (const Case& c : {Case{one, one, GL_CCW}, Case{x, one, GL_CW}, Case{one, y, GL_CW},
                          Case{x, y, GL_CCW}, Case{all, one, GL_CW}, Case{two, one, GL_CCW}}) {
        load([&](o3d::Scene& root, const o3d::Mesh& box) {
            o3d::SceneNode* parent = scene::addDummy(root, "outer", Vector3f(0, 0, 0));
            scene::setValue(parent->mScale, c.outer);
            scene::setValue(scene::addInstance(*parent, "inner", box, Vector3f(0, 0, 0))->mScale, c.inner);
        });
        frame([&] {
            GLint winding = 0;
            mKasper.render(0);
            glGetIntegerv(GL_FRONT_FACE, &winding);
            EXPECT_EQ(winding, c.winding);
            EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
        });
    }
}

TEST_F(KasperTest, TheLightTakesInTheWholeBox) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "a", box, Vector3f(8, 0, 0));
        scene::addInstance(root, "b", box, Vector3f(-3, 5, 2));
    });
    lit(0);
    EXPECT_GT(mKasper.getLightNear(), 0);
    EXPECT_GT(mKasper.getLightFar(), mKasper.getLightNear());
    const Vector3f low = mKasper.getBoxMin(), high = mKasper.getBoxMax();
    for (int i = 0; i < 8; ++i) {
        const Vector3f corner(i & 1 ? low.x : high.x, i & 2 ? low.y : high.y, i & 4 ? low.z : high.z);
        const Vector3f p = mKasper.getLightMatrix().multiply(corner);
        for (const float f : {p.x, p.y, p.z}) {
            EXPECT_GT(f, 0);
            EXPECT_LT(f, 1);
        }
    }
}

TEST_F(KasperTest, TheShadowMapHoldsTheDepthAlongTheLight) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0));
    });
    const Picture map = lit(0);
    // The corner towards the light is the nearest point; depth grows evenly over the map.
    const Vector3f corner = mKasper.getLightMatrix().multiply(Vector3f(1, 1, 1));
    const Vector3f face = mKasper.getLightMatrix().multiply(Vector3f(0, 1, 0));
    for (const Vector3f& p : {corner, face}) {
        const uint8_t* pixel = map.at(int(p.x * 400), int((1 - p.y) * 250));
        EXPECT_NEAR(pixel[0] / 255.0, p.z, 0.02);
        EXPECT_NEAR(pixel[1] / 255.0, p.z * p.z, 0.02);
        EXPECT_EQ(pixel[2], 0);
    }
    EXPECT_LT(corner.z, face.z);
    EXPECT_EQ(map.at(2, 2)[2], 255); // nothing
}

TEST_F(KasperTest, TheModelPlacesTheSceneBeforeTheLight) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0));
    });
    Matrix4x4Col model;
    model.setTranslation(Vector3f(20, 0, -7));
    const Picture there = lit(0, model);
    expectNear(mKasper.getBoxMin(), Vector3f(19, -1, -8));
    expectNear(mKasper.getBoxMax(), Vector3f(21, 1, -6));
    EXPECT_LT(test::comparePictures(there, lit(0)).mean, 0.5); // the light moves with the box
}

TEST_F(KasperTest, TheCourtyardHasItsShadowMap) {
    mKasper.loadScene(&display(), "ssao/scene.o3d");
    EXPECT_TRUE(matchesReference("kasper_light", lit(3)));
    EXPECT_GT(shadowed(lit(3)), 10000);
    EXPECT_TRUE(mKasper.getShadowMap().hasMipmaps());
}

TEST_F(KasperTest, WithoutMeshesTheShadowMapIsEmpty) {
    load([](o3d::Scene&, const o3d::Mesh&) {});
    EXPECT_EQ(shadowed(lit(0)), 0);
    for (const float f : mKasper.getLightMatrix().mData)
        EXPECT_TRUE(std::isfinite(f));
}

TEST_F(KasperTest, LeavesTheTargetTheProgramAndTheBuffersUnbound) {
    mKasper.loadScene(&display(), "ssao/scene.o3d");
    frame([&] {
        mKasper.renderLight(1, Matrix4x4Col());
        GLint target = -1, program = -1, texture = -1;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &target);
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        EXPECT_EQ(target, 0);
        EXPECT_EQ(program, 0);
        EXPECT_EQ(texture, 0);
        EXPECT_EQ(display().mCurrentVBO, nullptr);
        EXPECT_EQ(display().mCurrentIBO, nullptr);
    });
}

TEST_F(KasperTest, AsksForNoMemoryOnceWarm) {
    mKasper.loadScene(&display(), "ssao/scene.o3d");
    size_t asked = 1;
    for (int i = 0; i < 6; ++i)
        frame([&] {
            glFinish();
            const size_t before = test::allocationCount();
            mKasper.updateBox(float(i));
            mKasper.renderLight(float(i), Matrix4x4Col());
            mKasper.render(float(i));
            glFinish();
            asked = test::allocationCount() - before;
        });
    EXPECT_EQ(asked, 0u);
}

TEST_F(KasperTest, WithoutASceneNothingHappens) {
    frame([&] {
        mKasper.render(1);
        mKasper.renderLight(1, Matrix4x4Col());
        mKasper.updateBox(1);
        mKasper.renderNode(nullptr, Matrix4x4Col(), 1, false, false, false);
        mKasper.drawMesh(nullptr, nullptr, false);
    });
}

TEST_F(KasperTest, ASceneWithoutACameraIsAnError) {
    writeScene(SCENE, [](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0));
        // A camera that isn't a direct child of the scene doesn't count.
        addCamera(*scene::addDummy(root, "holder", Vector3f(0, 0, 0)), Vector3f(0, 0, 10));
    });
    EXPECT_EQ(test::thrown([&] { mKasper.loadScene(&display(), SCENE); }),
              "No camera in scene 'yard' in 'own/scene.o3d'");
    EXPECT_EQ(drawn(at(0)), 0);
}

TEST_F(KasperTest, AFileWithoutASceneIsAnError) {
    o3d::Manager manager;
    scene::addMaterial(manager, "stone", mathbase::Vector4f(1, 1, 1, 1));
    writeOwn(SCENE, scene::sceneFile(manager));
    EXPECT_EQ(test::thrown([&] { mKasper.loadScene(&display(), SCENE); }), "No scene in 'own/scene.o3d'");
    EXPECT_EQ(drawn(at(0)), 0);
}

TEST_F(KasperTest, AMissingFileIsAnErrorAndTheOldSceneIsGone) {
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0));
    });
    EXPECT_GT(drawn(at(0)), 0);
    EXPECT_EQ(test::thrown([&] { mKasper.loadScene(&display(), "no/such.o3d"); }),
              "File 'no/such.o3d' not found");
    EXPECT_EQ(drawn(at(0)), 0);
}

TEST_F(KasperTest, AMissingShaderIsAnError) {
    writeOwn("only/scene.o3d", test::readFile(test::sourcePath("tests/data/ssao/scene.o3d")));
    am::ArchiveManager some;
    some.addArchive(mOwn.file("only"));
    display().setArchive(&some);
    EXPECT_EQ(test::thrown([&] { mKasper.loadScene(&display(), "scene.o3d"); }),
              "Display::Resource; File 'kasper/apple.vert' could not be read");
    EXPECT_EQ(drawn(at(0)), 0);
    display().setArchive(&window().archives());
}

TEST_F(KasperTest, ASecondSceneTakesTheFirstOnesPlace) {
    const auto cube = [](const Vector3f& place) {
        return [=](o3d::Scene& root, const o3d::Mesh& box) { scene::addInstance(root, "cube", box, place); };
    };
    load(cube(Vector3f(-2, 0, 0)));
    const Picture left = at(0);
    load(cube(Vector3f(2, 0, 0)));
    lit(0);
    EXPECT_EQ(at(0).at(100, 125)[0], 0);
    load(cube(Vector3f(-2, 0, 0)));
    EXPECT_EQ(test::comparePictures(left, at(0)).mean, 0);
}

TEST_F(KasperTest, ANodeWithoutKeysAndTimesOfNanAreAccepted) {
    mKasper.loadScene(&display(), "ssao/scene.o3d");
    for (const float time : {NAN, INFINITY, -INFINITY, -3.0f, 1e9f}) {
        at(time);
        lit(time);
        mKasper.updateBox(time);
    }
    load([](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0)); // no node has a key
    });
    EXPECT_EQ(test::comparePictures(at(0), at(1000)).mean, 0);
    EXPECT_GT(drawn(at(NAN)), 500);
}

using KasperDeathTest = KasperTest;

TEST_F(KasperDeathTest, AMissingMeshFailsItsAssertion) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(
        {
            load([](o3d::Scene& root, const o3d::Mesh& box) {
                scene::addInstance(root, "cube", box, Vector3f(0, 0, 0))->mMeshName = "missing";
            });
            at(0);
        },
        "mesh");
}
