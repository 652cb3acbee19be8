#include "effect_test.h"
#include "face.h"
#include "ztk_system.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Face;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class FaceTest : public test::EffectTest {
protected:
    Face mFace{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mFace, display(), "face");
    }

    Picture at(float time, float alpha = 0.4f) {
        return over(0, 0, 0.02f, [&] {
            mFace.updateSpline(time, "alpha", alpha);
            mFace.update(time, 0.02f, 0);
        });
    }
    // With whole sprites.
    Picture wholeAt(float time, float alpha = 0.4f) {
        const test::SendEverything all(true);
        return at(time, alpha);
    }

    // Replaces the vertices of the scene's only mesh.
    void setVertices(const std::vector<Vector3f>& vertices) {
        mFace.getScene().mMeshes.front()->mVertices = vertices;
    }
    Picture nothing() {
        return over(0, 0, 0.02f, [] {});
    }
};

} // namespace

TEST_F(FaceTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("face_0", at(0)));
    EXPECT_TRUE(matchesReference("face_left", at(0.35f)));
    EXPECT_TRUE(matchesReference("face_right", at(2.75f)));
    EXPECT_TRUE(matchesReference("face_bright", at(3.1f, 1)));
}

TEST_F(FaceTest, NothingVisibleIsCutOffTheSprites) {
    for (float time : {0.0f, 0.3f, 0.7f, 2.9f})
        EXPECT_TRUE(test::samePicture(at(time), wholeAt(time))) << time;
}

TEST_F(FaceTest, IsDarkFromBehindAndAtAnAlphaOfZero) {
    EXPECT_EQ(test::comparePictures(at(1.5708f), nothing()).mean, 0); // the eye is at z = -1.3
    EXPECT_EQ(test::comparePictures(at(0, 0), nothing()).mean, 0);
    EXPECT_GT(test::covered(at(0), nothing()), 0.02);
}

TEST_F(FaceTest, OnlyItsSplineChangesIt) {
    const Picture before = at(0, 0.3f);
    mFace.updateSpline(0, "alp", 1);
    mFace.updateSpline(0, "Alpha", 1);
    mFace.executeTrigger(0, "alpha", "1");
    EXPECT_EQ(test::comparePictures(over(0, 0, 0.02f, [&] { mFace.update(0, 0, 0); }), before).mean, 0);
}

TEST_F(FaceTest, EveryTwentyEighthVertexGlows) {
    ASSERT_EQ(mFace.getScene().mMeshes.size(), 1u);
    std::vector<Vector3f> vertices(28, Vector3f(0.3f, 0.2f, 0));
    vertices[0] = Vector3f(-0.2f, 0, 0.1f);
    setVertices({vertices[0]});
    const Picture one = at(0);
    EXPECT_GT(test::comparePictures(one, nothing()).mean, 0.001);
    setVertices(vertices); // none of the others
    EXPECT_EQ(test::comparePictures(at(0), one).mean, 0);
    vertices.push_back(Vector3f(0.2f, 0, 0.1f)); // the twenty-ninth
    setVertices(vertices);
    EXPECT_GT(test::comparePictures(at(0), one).mean, 0.001);
}

TEST_F(FaceTest, SpritesAcrossTheEdgesAreCutWhereItDoesNotShow) {
    std::vector<Vector3f> vertices;
    for (int i = 0; i < 400; ++i) { // from the eye to well behind the centre, and to twice the view's width
        const float depth = 0.05f + 0.01f * float(i), a = 2.39996f * float(i);
        const float edge = depth * 0.41421f * (0.8f + 0.4f * float(i % 7) / 3.0f);
        vertices.resize(vertices.size() + 28, Vector3f(9, 9, 9));
        vertices[size_t(28 * i)] = Vector3f(1.6f * edge * cosf(a), edge * sinf(a), 1.3f - depth);
    }
    setVertices(vertices);
    for (float time : {0.0f, 0.05f, -0.1f}) {
        const Picture drawn = at(time, 1);
        EXPECT_TRUE(test::samePicture(drawn, wholeAt(time, 1))) << time;
        EXPECT_GT(test::covered(drawn, nothing()), 0.01) << time;
    }
}

TEST_F(FaceTest, AMeshWithoutVerticesDrawsNothing) {
    setVertices({});
    EXPECT_EQ(test::comparePictures(at(0), nothing()).mean, 0);
}

TEST_F(FaceTest, AVertexAtTheOriginAsserts) {
    testing::GTEST_FLAG(death_test_style) = "fast";
    setVertices({Vector3f(0, 0, 0)});
    EXPECT_DEATH(mFace.update(0, 0, 0), "length!=0");
}

TEST_F(FaceTest, LeavesBlendingOnAndAdditive) {
    frame([&] {
        mFace.update(0, 0, 0);
        GLint source, destination;
        glGetIntegerv(GL_BLEND_SRC, &source);
        glGetIntegerv(GL_BLEND_DST, &destination);
        EXPECT_TRUE(glIsEnabled(GL_BLEND));
        EXPECT_EQ(source, GL_SRC_ALPHA);
        EXPECT_EQ(destination, GL_ONE);
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    });
}

TEST_F(FaceTest, TimesAndBrightnessThatAreNotNumbersAreHarmless) {
    const Picture before = at(0);
    for (float odd : {NAN, INFINITY, -INFINITY, 1e30f}) {
        at(odd);
        at(0, odd);
    }
    EXPECT_EQ(test::comparePictures(at(0), before).mean, 0);
}

TEST_F(FaceTest, ASecondSetupLoadsTheSceneInPlaceOfTheFirst) {
    const Picture before = at(0);
    mFace.setup();
    EXPECT_EQ(mFace.getScene().mMeshes.size(), 1u);
    EXPECT_EQ(test::comparePictures(at(0), before).mean, 0);
}

TEST_F(FaceTest, PrintsTheNumberOfMeshes) {
    test::CaptureStdout capture;
    Face face(&mCommon);
    test::prepare(face, display(), "face");
    EXPECT_NE(capture.text().find("Meshes: 1\n"), std::string::npos);
}

TEST(FaceFiles, AMissingSceneIsReported) {
    test::TempDir empty;
    test::GlWindow window(64, 64);
    am::ArchiveManager archives;
    archives.addArchive(empty.path());
    window.display().setArchive(&archives);
    kindler::Common common;
    Face face(&common);
    EXPECT_THROW(test::prepare(face, window.display(), "face"), Exception);
    window.display().setArchive(&window.archives());
}
