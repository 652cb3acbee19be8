#include "allocations.h"
#include "scene_test.h"
#include "ssao.h"
#include "ztk_system.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::SSAO;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

const std::string SCENE = "ssao/scene.o3d";

// Replaces the show's programs by ones that show the inputs of the last pass.
const char* const PLAIN_VERT = "void main() { gl_Position = ftransform(); gl_FrontColor = gl_Color; }\n";
const char* const MARKED_FRAG = // red into the first target, green into the second
    "void main() { gl_FragData[0] = vec4(1.0, 0.0, 0.0, 1.0); gl_FragData[1] = vec4(0.0, 1.0, 0.0, 1.0); }\n";

std::string showing(const std::string& what) {
    return "uniform sampler2D texture0, texture1, texture1_blur;\n"
           "void main() { gl_FragColor = vec4(texture2D(" +
           what + ", gl_TexCoord[0].xy).rgb, 1.0); }\n";
}

class SsaoTest : public test::SceneTest {
protected:
    std::unique_ptr<SSAO> mSsao = std::make_unique<SSAO>(&mCommon);

    void prepare() { test::prepare(*mSsao, display(), "ssao"); }
    void makeNew() { mSsao = std::make_unique<SSAO>(&mCommon); }
    Picture at(float time) {
        return frame([&] { mSsao->update(time, 0.02f, 0.5f); });
    }
    // A cube of this size at this position, seen from (0, 0, 10).
    void writeCube(const Vector3f& place, const Vector3f& scale) {
        writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
            addCamera(root, Vector3f(0, 0, 10));
            scene::setValue(scene::addInstance(root, "cube", box, place)->mScale, scale);
        });
    }
    // The inputs of the last pass, with two plain colours from the first pass.
    Picture given(const std::string& what) {
        writeOwn("ssao/basepass.vert", PLAIN_VERT);
        writeOwn("ssao/basepass.frag", MARKED_FRAG);
        writeOwn("ssao/combine.frag", showing(what));
        makeNew();
        prepare();
        return at(0);
    }
};

} // namespace

TEST_F(SsaoTest, MatchesItsReferencePictures) {
    prepare();
    EXPECT_TRUE(matchesReference("ssao_1", at(1)));
    EXPECT_TRUE(matchesReference("ssao_8", at(8)));
    EXPECT_TRUE(matchesReference("ssao_15", at(15)));
}

TEST_F(SsaoTest, TheFirstFrameIsLikeTheOthers) {
    prepare();
    const Picture first = at(6);
    EXPECT_EQ(test::comparePictures(first, at(6)).mean, 0);
}

TEST_F(SsaoTest, OnePassFillsBothTargets) {
    writeCube(Vector3f(0, 0, 0), Vector3f(2, 2, 2));
    const Picture first = given("texture0"), second = given("texture1");
    EXPECT_EQ(first.at(200, 125)[0], 255);
    EXPECT_EQ(first.at(200, 125)[1], 0);
    EXPECT_EQ(second.at(200, 125)[0], 0);
    EXPECT_EQ(second.at(200, 125)[1], 255);
    EXPECT_EQ(test::brightness(first, 0, 0, 50, 50), 0); // cleared
    EXPECT_EQ(test::brightness(second, 0, 0, 50, 50), 0);
}

TEST_F(SsaoTest, TheBlurReadsTheSecondTargetOnly) {
    writeCube(Vector3f(0, 0, 0), Vector3f(2, 2, 2));
    const Picture blurred = given("texture1_blur");
    int soft = 0;
    for (size_t i = 0; i < blurred.rgba.size(); i += 4) {
        ASSERT_EQ(blurred.rgba[i], 0); // nothing of the first
        soft += blurred.rgba[i + 1] > 20 && blurred.rgba[i + 1] < 235;
    }
    EXPECT_GT(soft, 2000);
    EXPECT_GT(blurred.at(200, 125)[1], 230);
}

TEST_F(SsaoTest, TheBlurGoesBothWaysAndKeepsTheSum) {
    writeCube(Vector3f(0, 0, 0), Vector3f(0.3f, 0.3f, 0.3f));
    const Picture blurred = given("texture1_blur"), sharp = given("texture1");
    double before = 0, after = 0;
    for (size_t i = 0; i < sharp.rgba.size(); i += 4) {
        before += sharp.rgba[i + 1];
        after += blurred.rgba[i + 1];
    }
    EXPECT_NEAR(after / before, 1, 0.06);
    // The same on both sides of the middle, along and across.
    for (const int d : {10, 16, 22}) {
        EXPECT_NEAR(blurred.at(199 - d, 125)[1], blurred.at(200 + d, 125)[1], 8) << d;
        EXPECT_NEAR(blurred.at(200, 124 - d * 5 / 8)[1], blurred.at(200, 125 + d * 5 / 8)[1], 8) << d;
        EXPECT_GT(blurred.at(200 + d, 125)[1], 0) << d;
        EXPECT_GT(blurred.at(200, 125 + d * 5 / 8)[1], 0) << d;
    }
}

TEST_F(SsaoTest, NothingWrapsRoundThePicturesEdge) {
    writeCube(Vector3f(-8, 0, 0), Vector3f(3, 9, 1)); // along the left edge
    const Picture blurred = given("texture1_blur");
    EXPECT_GT(blurred.at(1, 125)[1], 200);
    EXPECT_EQ(blurred.at(398, 125)[1], 0);
}

TEST_F(SsaoTest, TheConstantsReachThePrograms) {
    writeCube(Vector3f(0, 0, 0), Vector3f(2, 2, 2));
    const std::string uniforms = "uniform float znear, zfar, glowThresh;\n";
    writeOwn("ssao/basepass.vert", PLAIN_VERT);
    writeOwn("ssao/basepass.frag", uniforms + "void main() { gl_FragData[0] = vec4(znear, zfar / 100.0, "
                                              "glowThresh, 1.0); gl_FragData[1] = vec4(0.0); }\n");
    writeOwn("ssao/combine.frag", showing("texture0"));
    prepare();
    const Picture base = at(0);
    const uint8_t* p = base.at(200, 125);
    EXPECT_NEAR(p[0], 255 * 0.1, 1);
    EXPECT_NEAR(p[1], 255 * 0.5, 1);
    EXPECT_NEAR(p[2], 255 * 0.9, 1);
    writeOwn(
        "ssao/combine.frag",
        "uniform float znear, zfar;\nvoid main() { gl_FragColor = vec4(znear, zfar / 100.0, 0.0, 1.0); }\n");
    makeNew();
    prepare();
    const Picture last = at(0);
    EXPECT_NEAR(last.at(10, 10)[0], 255 * 0.1, 1);
    EXPECT_NEAR(last.at(10, 10)[1], 255 * 0.5, 1);
}

TEST_F(SsaoTest, TheMainTargetIsLeftWithOneDrawBuffer) {
    prepare();
    frame([&] {
        mSsao->update(1, 0.02f, 0.5f);
        // The targets are the only framebuffers; each has one draw buffer.
        int targets = 0;
        for (GLuint name = 1; name < 64; ++name) {
            if (!glIsFramebufferEXT(name))
                continue;
            GLint first = 0, second = 0;
            glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, name);
            glGetIntegerv(GL_DRAW_BUFFER0, &first);
            glGetIntegerv(GL_DRAW_BUFFER1, &second);
            EXPECT_EQ(first, GL_COLOR_ATTACHMENT0_EXT);
            EXPECT_EQ(second, GL_NONE);
            ++targets;
        }
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        EXPECT_GE(targets, 3);
    });
}

TEST_F(SsaoTest, AMirroredLastMeshDoesNotTakeThePictureWithIt) {
    writeCube(Vector3f(0, 0, 0), Vector3f(-2, 2, 2));
    EXPECT_EQ(given("texture0").at(200, 125)[0], 255);
}

TEST_F(SsaoTest, TheCornerBetweenWallAndGroundIsDarker) {
    // A floor with a wall on it, seen from the front, in even light.
    writeScene(SCENE, [&](o3d::Scene& root, const o3d::Mesh& box) {
        addCamera(root, Vector3f(0, 4, 10));
        o3d::SceneNode* floor = scene::addInstance(root, "floor", box, Vector3f(0, -2, 0));
        scene::setValue(floor->mScale, Vector3f(9, 1, 9));
        o3d::SceneNode* wall = scene::addInstance(root, "wall", box, Vector3f(0, 1, -3));
        scene::setValue(wall->mScale, Vector3f(9, 3, 1));
    });
    writeOwn("ssao/basepass.frag", "varying vec3 eyePosition;\nuniform float znear, zfar;\n"
                                   "void main() { float d = (-eyePosition.z - znear) / (zfar - znear);\n"
                                   "gl_FragData[0] = vec4(0.5, 0.5, 0.5, d); gl_FragData[1] = vec4(0.0, 0.0, "
                                   "0.0, d); }\n");
    prepare();
    const Picture picture = at(0);
    // Down the middle, the darkest row is the corner, not an end.
    int darkest = 0;
    double least = 1e9;
    for (int y = 60; y < 240; ++y) {
        const double b = test::brightness(picture, 180, y, 220, y + 1);
        if (b < least) {
            least = b;
            darkest = y;
        }
    }
    EXPECT_GT(darkest, 80);
    EXPECT_LT(darkest, 200);
    EXPECT_LT(least, 0.8 * test::brightness(picture, 180, darkest + 40, 220, darkest + 44)); // open floor
}

TEST_F(SsaoTest, BrightSurfacesGlowBeyondTheirEdges) {
    const std::string bright =
        "varying vec3 eyePosition;\nuniform float znear, zfar, glowThresh;\nvoid main() { "
        "float d = (-eyePosition.z - znear) / (zfar - znear); vec3 c = vec3(LEVEL);\n"
        "gl_FragData[0] = vec4(c, d); gl_FragData[1] = vec4(c.r > glowThresh ? c : "
        "vec3(0.0), d); }\n";
    writeCube(Vector3f(0, 0, 0), Vector3f(1, 1, 1));
    Picture pictures[2];
    for (int i = 0; i < 2; ++i) {
        std::string source = bright;
        source.replace(source.find("LEVEL"), 5, i == 0 ? "0.85" : "0.95");
        writeOwn("ssao/basepass.frag", source);
        makeNew();
        prepare();
        pictures[i] = at(0);
    }
    // Beside the cube, whose near face ends 37 pixels from the middle.
    EXPECT_GT(test::brightness(pictures[1], 245, 120, 250, 130),
              test::brightness(pictures[0], 245, 120, 250, 130) + 15);
    EXPECT_NEAR(test::brightness(pictures[1], 0, 0, 20, 20), test::brightness(pictures[0], 0, 0, 20, 20), 1);
}

TEST_F(SsaoTest, LeavesTheStatesReset) {
    prepare();
    frame([&] {
        mSsao->update(1, 0.02f, 0.5f);
        for (const GLenum state : {GL_TEXTURE_2D, GL_DEPTH_TEST, GL_BLEND, GL_CULL_FACE})
            EXPECT_FALSE(glIsEnabled(state));
        GLint program = -1, target = -1, unit = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &target);
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        EXPECT_EQ(program, 0);
        EXPECT_EQ(target, 0);
        EXPECT_EQ(unit, GL_TEXTURE0);
        for (int i = 0; i < 3; ++i) {
            GLint texture = -1;
            glActiveTexture(GLenum(GL_TEXTURE0 + i));
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
            EXPECT_EQ(texture, 0) << i;
        }
        glActiveTexture(GL_TEXTURE0);
        EXPECT_EQ(display().mCurrentVBO, nullptr);
        EXPECT_EQ(display().mCurrentIBO, nullptr);
    });
}

TEST_F(SsaoTest, AsksForNoMemoryOnceWarm) {
    prepare();
    size_t asked = 1;
    for (int i = 0; i < 6; ++i)
        frame([&] {
            glFinish();
            const size_t before = test::allocationCount();
            mSsao->update(3 + 0.02f * float(i), 0.02f, 0.5f);
            glFinish();
            asked = test::allocationCount() - before;
        });
    EXPECT_EQ(asked, 0u);
}

TEST_F(SsaoTest, ASceneWithoutACameraIsAnError) {
    writeScene(SCENE, [](o3d::Scene&, const o3d::Mesh&) {});
    EXPECT_EQ(test::thrown([&] { prepare(); }), "No camera in scene 'yard' in 'ssao/scene.o3d'");
    EXPECT_EQ(test::brightness(at(1), 0, 0, 400, 250), 0); // and draws nothing
}

TEST_F(SsaoTest, AMissingSceneIsAnError) {
    am::ArchiveManager nothing;
    display().setArchive(&nothing);
    EXPECT_EQ(test::thrown([&] { prepare(); }), "File 'ssao/scene.o3d' not found");
    EXPECT_EQ(test::brightness(at(1), 0, 0, 400, 250), 0);
    display().setArchive(&window().archives());
}

TEST_F(SsaoTest, AMissingShaderIsAnError) {
    for (const char* missing : {"basepass.vert", "basepass.frag", "combine.vert", "combine.frag",
                                "blurX.frag", "blurY.frag", "blur.vert"}) {
        const test::TempDir own;
        std::filesystem::copy(test::sourcePath("tests/data/ssao"), own.file("ssao"));
        std::filesystem::copy(test::sourcePath("tests/data/kasper"), own.file("kasper"));
        std::filesystem::remove(own.file("ssao/" + std::string(missing)));
        am::ArchiveManager some;
        some.addArchive(own.path());
        display().setArchive(&some);
        makeNew();
        EXPECT_EQ(test::thrown([&] { prepare(); }),
                  "Display::Resource; File 'ssao/" + std::string(missing) + "' could not be read");
        EXPECT_EQ(test::brightness(at(1), 0, 0, 400, 250), 0);
        display().setArchive(&window().archives());
    }
}

TEST_F(SsaoTest, ASecondSetupLoadsAgain) {
    prepare();
    const Picture first = at(2);
    mSsao->setup();
    EXPECT_EQ(test::comparePictures(first, at(2)).mean, 0);
}

TEST_F(SsaoTest, CanBeSetUpAgainInANewWindow) {
    prepare();
    const Picture first = at(2);
    display().setFullscreen(true);
    display().setFullscreen(false);
    mSsao->setup();
    const Picture second = at(2);
    ASSERT_EQ(first.width, second.width);
    EXPECT_LT(test::comparePictures(first, second).mean, 0.5);
    EXPECT_GT(test::brightness(second, 0, 0, second.width, second.height), 10);
}

TEST_F(SsaoTest, RunsAtAnyTime) {
    prepare();
    const Picture first = at(2);
    for (const float time : {-5.0f, 1e9f, NAN, INFINITY})
        at(time);
    EXPECT_EQ(test::comparePictures(first, at(2)).mean, 0);
}

namespace {
class SsaoOddTest : public test::SceneTest {
protected:
    void SetUp() override { window(333, 502).archives().addArchive(test::sourcePath("tests/data")); }
};

} // namespace

TEST_F(SsaoOddTest, FillsAWindowOfOddSize) {
    SSAO ssao(&mCommon);
    test::prepare(ssao, display(), "ssao");
    const Picture picture = frame([&] { ssao.update(2, 0.02f, 0.5f); });
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(330, 0), std::pair(0, 499), std::pair(330, 499)})
        EXPECT_GT(test::brightness(picture, x, y, x + 3, y + 3), 2);
}
