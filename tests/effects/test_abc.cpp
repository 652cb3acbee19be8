#include "abc.h"
#include "allocations.h"
#include "scene_test.h"
#include "ztk_system.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Abc;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

const std::string SCENE = "abc/katedral.o3d";

// A surface of one colour, for pictures that can be computed.
const char* const FLAT_VERT = "void main() { gl_Position = ftransform(); gl_FrontColor = gl_Color; }\n";
const char* const FLAT_FRAG = "void main() { gl_FragColor = gl_Color; }\n";

class AbcTest : public test::SceneTest {
protected:
    Abc mAbc{&mCommon};

    Picture at(float time, unsigned seed = 1) {
        return frame([&] {
            srand(seed); // of the trembling
            glClearColor(0, 0, 1, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            mAbc.update(time, 0.02f, 0.5f);
        });
    }
    // A cube in the middle of the picture, in the plain colour; `parent` is the scale of the node above it.
    void prepareCube(Abc& abc, const Vector3f& scale, const Vector3f& parent = Vector3f(1, 1, 1)) {
        writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
            o3d::SceneNode* above = scene::addDummy(root, "above", Vector3f(0, 0, 0));
            scene::setValue(above->mScale, parent);
            o3d::SceneNode* cube = scene::addInstance(*above, "cube", box, Vector3f(0, 10, 0));
            scene::setValue(cube->mScale, scale);
        });
        writeOwn("abc/abc.vert", FLAT_VERT);
        writeOwn("abc/abc.frag", FLAT_FRAG);
        test::prepare(abc, display(), "abc");
    }
};

struct Counts {
    int ground = 0, black = 0, paint = 0;
};

Counts countsOf(const Picture& picture) {
    Counts counts;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const uint8_t* p = picture.at(x, y);
            ++(p[0] == 0 && p[1] == 0 ? p[2] == 255 ? counts.ground : counts.black : counts.paint);
        }
    return counts;
}

} // namespace

TEST_F(AbcTest, MatchesItsReferencePictures) {
    test::prepare(mAbc, display(), "abc");
    EXPECT_TRUE(matchesReference("abc_1", at(1)));
    EXPECT_TRUE(matchesReference("abc_4", at(4)));
    EXPECT_TRUE(matchesReference("abc_9", at(9)));
}

TEST_F(AbcTest, AMeshIsPaintedWithABlackOutlineAroundIt) {
    prepareCube(mAbc, Vector3f(4, 4, 4));
    const Picture picture = at(0);
    const Counts counts = countsOf(picture);
    EXPECT_GT(counts.paint, 2000);
    EXPECT_GT(counts.black, 100);
    EXPECT_LT(counts.black, counts.paint / 2);
    // Along the middle row: ground, outline, paint, outline, ground.
    std::string row;
    for (int x = 0; x < picture.width; ++x) {
        const uint8_t* p = picture.at(x, picture.height / 2);
        const char c = p[0] || p[1] ? 'p' : p[2] == 255 ? 'g' : 'b';
        if (row.empty() || row.back() != c)
            row += c;
    }
    EXPECT_EQ(row, "gbpbg");
}

TEST_F(AbcTest, TheOutlineIsTheMeshInflated) {
    prepareCube(mAbc, Vector3f(4, 4, 4));
    const Picture picture = at(0);
    int inner = 0, outer = 0;
    for (int x = 0; x < picture.width; ++x) {
        const uint8_t* p = picture.at(x, picture.height / 2);
        inner += p[0] || p[1];
        outer += p[0] || p[1] || p[2] != 255;
    }
    // The shell shows its far faces, which look smaller: the near face of the cube is 8 wide at a distance of
    // about 36, the far face of the shell 8.6 wide at about 45.
    EXPECT_GT(outer, inner + 2);
    EXPECT_LT(outer, inner * 1.2);
}

TEST_F(AbcTest, ThePaintGoesWithTheTime) {
    prepareCube(mAbc, Vector3f(4, 4, 4));
    for (const float time : {3.6f, 4.4f, 8.4f}) {
        const Picture picture = at(time);
        const uint8_t* p = picture.at(picture.width / 2, picture.height / 2);
        const float expected[] = {0.7f * sinf(time) + 1.3f, 0.91f * cosf(1.5f * time) + 1.4f,
                                  sinf(2 * time) + 1.35f};
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(p[c], 255 * std::min(1.0f, expected[c]), 1.5) << time << " " << c;
    }
}

TEST_F(AbcTest, TheShellTremblesDifferentlyInEachFrame) {
    test::prepare(mAbc, display(), "abc");
    EXPECT_EQ(test::comparePictures(at(2, 7), at(2, 7)).mean, 0);
    EXPECT_GT(test::comparePictures(at(2, 7), at(2, 8)).changed, 0.001);
}

TEST_F(AbcTest, ThreeNumbersAreDrawnForEveryNodeButACamera) {
    writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
        addCamera(root, Vector3f(0, 0, 5));
        scene::addInstance(root, "cube", box, Vector3f(0, 10, 0));
        scene::addDummy(root, "empty", Vector3f(0, 0, 0));
    });
    test::prepare(mAbc, display(), "abc");
    at(1, 5);
    const int next = rand();
    srand(5);
    for (int i = 0; i < 3 * 3; ++i) // the scene, the cube and the empty one
        (void)rand();
    EXPECT_EQ(next, rand());
}

TEST_F(AbcTest, AMirroredMeshIsDrawnWithClockwiseFaces) {
    prepareCube(mAbc, Vector3f(4, 4, 4));
    const Picture plain = at(0);
    const Vector3f one(1, 1, 1), big(4, 4, 4);
    const std::pair<Vector3f, Vector3f> mirrors[] = {{Vector3f(-4, 4, 4), one}, {big, Vector3f(1, 1, -1)}};
    for (const auto& [own, parent] : mirrors) {
        Abc mirrored(&mCommon);
        prepareCube(mirrored, own, parent);
        GLint winding = 0;
        const Picture picture = frame([&] {
            srand(1);
            glClearColor(0, 0, 1, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            mirrored.update(0, 0.02f, 0.5f);
            glGetIntegerv(GL_FRONT_FACE, &winding);
        });
        EXPECT_EQ(winding, GL_CW);
        // The cube is its own mirror image; with its faces reversed, the far ones would show.
        const Counts a = countsOf(plain), b = countsOf(picture);
        EXPECT_NEAR(a.paint, b.paint, 0.02 * a.paint);
        EXPECT_NEAR(a.black, b.black, 0.25 * a.black);
    }
}

TEST_F(AbcTest, ACameraStopsTheWalk) {
    writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
        addCamera(root, Vector3f(0, 0, 5));
        o3d::MeshInstance* cube = scene::addInstance(*root.mChildren[0], "cube", box, Vector3f(0, 0, 0));
        scene::setValue(cube->mScale, Vector3f(8, 8, 8));
    });
    test::prepare(mAbc, display(), "abc");
    EXPECT_EQ(countsOf(at(1)).ground, 400 * 250);
}

TEST_F(AbcTest, LeavesNoBufferAndNoProgramBound) {
    test::prepare(mAbc, display(), "abc");
    frame([&] {
        mAbc.update(1, 0.02f, 0.5f);
        GLint program = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        EXPECT_EQ(program, 0);
        EXPECT_EQ(display().mCurrentVBO, nullptr);
        EXPECT_EQ(display().mCurrentIBO, nullptr);
    });
}

TEST_F(AbcTest, AsksForNoMemoryOnceWarm) {
    test::prepare(mAbc, display(), "abc");
    size_t asked = 1;
    for (int i = 0; i < 6; ++i)
        frame([&] {
            glFinish();
            const size_t before = test::allocationCount();
            mAbc.update(3 + 0.02f * float(i), 0.02f, 0.5f);
            glFinish();
            asked = test::allocationCount() - before;
        });
    EXPECT_EQ(asked, 0u);
}

TEST_F(AbcTest, RemovingItsMeshesIsLogged) {
    test::CaptureStdout out;
    { Abc abc(&mCommon); }
    EXPECT_NE(out.text().find("[log][~Abc], abc: Removing meshes (abc.cpp:"), std::string::npos);
}

TEST_F(AbcTest, AMissingSceneIsAnError) {
    am::ArchiveManager nothing;
    display().setArchive(&nothing);
    EXPECT_EQ(test::thrown([&] { test::prepare(mAbc, display(), "abc"); }),
              "File 'abc/katedral.o3d' not found");
    EXPECT_EQ(countsOf(at(1)).ground, 400 * 250); // and draws nothing
    display().setArchive(nullptr);
    EXPECT_EQ(test::thrown([&] { mAbc.setup(); }), "File 'abc/katedral.o3d' not found");
}

TEST_F(AbcTest, AFileWithoutASceneIsAnError) {
    o3d::Manager manager;
    scene::addMaterial(manager, "stone", mathbase::Vector4f(1, 1, 1, 1));
    writeOwn(SCENE, scene::sceneFile(manager));
    EXPECT_EQ(test::thrown([&] { test::prepare(mAbc, display(), "abc"); }), "No scene in 'abc/katedral.o3d'");
    EXPECT_EQ(countsOf(at(1)).ground, 400 * 250);
}

TEST_F(AbcTest, AFileThatIsNoSceneFileIsAnError) {
    writeOwn(SCENE, "no scene at all");
    EXPECT_NE(test::thrown([&] { test::prepare(mAbc, display(), "abc"); }), "");
    EXPECT_EQ(countsOf(at(1)).ground, 400 * 250);
}

TEST_F(AbcTest, AMissingShaderIsAnError) {
    writeOwn("only/abc/katedral.o3d", test::readFile(test::sourcePath("tests/data/abc/katedral.o3d")));
    am::ArchiveManager some;
    some.addArchive(mOwn.file("only"));
    display().setArchive(&some);
    EXPECT_EQ(test::thrown([&] { test::prepare(mAbc, display(), "abc"); }),
              "Display::Resource; File 'abc/abc.vert' could not be read");
    EXPECT_EQ(countsOf(at(1)).ground, 400 * 250);
    display().setArchive(&window().archives());
    mAbc.setup(); // a second try, with everything it needs
    EXPECT_LT(countsOf(at(1)).ground, 1000);
}

TEST_F(AbcTest, AShaderThatDoesNotCompileIsAnError) {
    writeOwn("abc/abc.frag", "this is no program\n");
    EXPECT_EQ(test::thrown([&] {
                  test::prepare(mAbc, display(), "abc");
              }).find("Could not compile 'abc/abc.frag'."),
              0u);
}

TEST_F(AbcTest, ASecondSetupLoadsAgain) {
    test::prepare(mAbc, display(), "abc");
    const Picture first = at(2);
    mAbc.setup();
    EXPECT_EQ(test::comparePictures(first, at(2)).mean, 0);
}

TEST_F(AbcTest, CanBeSetUpAgainInANewWindow) {
    test::prepare(mAbc, display(), "abc");
    at(2);
    display().setFullscreen(true);
    display().setFullscreen(false);
    mAbc.setup();
    EXPECT_LT(countsOf(at(2)).ground, 1000);
}

TEST_F(AbcTest, RunsAtAnyTime) {
    test::prepare(mAbc, display(), "abc");
    for (const float time : {-5.0f, 1e9f, NAN, INFINITY, 2.0f})
        at(time);
    EXPECT_LT(countsOf(at(2)).ground, 1000);
}

using AbcDeathTest = AbcTest;

TEST_F(AbcDeathTest, ANodeWithoutItsMeshFailsItsAssertion) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
        scene::addInstance(root, "cube", box, Vector3f(0, 0, 0))->mMeshName = "missing";
    });
    EXPECT_DEATH(
        {
            test::prepare(mAbc, display(), "abc");
            at(1);
        },
        "mesh");
}

namespace {
class AbcOddTest : public test::SceneTest {
protected:
    void SetUp() override { window(333, 502).archives().addArchive(test::sourcePath("tests/data")); }
};
} // namespace

TEST_F(AbcOddTest, FillsAWindowOfOddSize) {
    Abc abc(&mCommon);
    test::prepare(abc, display(), "abc");
    const Picture picture = frame([&] {
        glClearColor(0, 0, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        abc.update(2, 0.02f, 0.5f);
    });
    EXPECT_LT(countsOf(picture).ground, 2000);
}
