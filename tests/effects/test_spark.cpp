#include "dis_glcheck.h"
#include "effect_test.h"
#include "mb_matrix4x4col.h"
#include "spark.h"
#include "sparks_emitterinstance.h"
#include "sparks_engine.h"
#include "support.h"

#include <cmath>
#include <gtest/gtest.h>
#include <optional>

using namespace zentrak;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class SparkTest : public test::GlTest {
protected:
    kindler::Spark mSpark{nullptr};
    std::optional<test::OwnFiles> mOwn;

    void SetUp() override {
        test::CaptureStdout quiet;
        mOwn.emplace(display());
        mOwn->write("spark/spark.xml", test::readFile(test::sourcePath("tests/data/spark/sun.xml")));
        test::prepare(mSpark, display(), "spark");
        display().setFps(display::DisplayGL::FPS_DELTA, 25);
        sparks::Engine& engine = *mSpark.getEngine();
        engine.random.mState = 1;
        for (sparks::EmitterInstance* instance : engine.active) {
            instance->random.mState = 2;
            for (size_t i = 0; i < instance->emitters.size(); ++i)
                instance->emitters[i]->random.mState = uint32_t(3 + i);
        }
    }

    // Lets the sun burn for so many seconds.
    void burn(double seconds) {
        for (int i = 1; i <= int(seconds * 25); ++i) {
            display().setTime(i / 25.0);
            mSpark.getEngine()->update(float(display().getTime()));
        }
    }

    Picture at(float progress) {
        return frame([&] { mSpark.update(0, 0.04f, progress); });
    }
};

} // namespace

TEST_F(SparkTest, MatchesItsReferencePicturesFromItsCentreAndFromAfar) {
    burn(5);
    EXPECT_TRUE(matchesReference("spark_0", at(0)));
    EXPECT_TRUE(matchesReference("spark_6", at(0.6f)));
    EXPECT_TRUE(matchesReference("spark_9", at(0.93f)));
    EXPECT_TRUE(matchesReference("spark_10", at(1)));
}

TEST_F(SparkTest, FromAfarIsADiscOnADarkGround) {
    burn(5);
    const Picture picture = at(1);
    EXPECT_GT(test::brightness(picture, 240, 120, 400, 280), 40);
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(600, 0), std::pair(0, 360), std::pair(600, 360)})
        EXPECT_LT(test::brightness(picture, x, y, x + 40, y + 40), 1);
}

TEST_F(SparkTest, SitsInTheCentreOfTheEmitterAtTheStart) {
    for (float progress : {0.0f, 1e-30f}) {
        at(progress);
        EXPECT_NEAR(display().mCameraMatrix.mData[14], 0, 1e-6);
        EXPECT_EQ(display().mCameraMatrix, Matrix4x4Col());
    }
}

TEST_F(SparkTest, LeavesBackwardsByTheSquareOfTheProgress) {
    for (float progress : {0.1f, 0.5f, 1.0f}) {
        at(progress);
        Matrix4x4Col camera;
        camera.setCamera(Vector3f(0, 0, 1500 * progress * progress), Vector3f(0, 0, 0), 0);
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(display().mCameraMatrix.mData[i], camera.mData[i], 1e-4) << i;
        EXPECT_EQ(display().mTransformMatrix, Matrix4x4Col());
    }
}

TEST_F(SparkTest, RunsOnTheClockOfTheDisplay) {
    frame([&] {
        display().setTime(2);
        mSpark.update(100, 50, 0);
        EXPECT_EQ(mSpark.getEngine()->lastTime, 2.0f);
        EXPECT_EQ(mSpark.getEngine()->dt, 0.0f);
        EXPECT_EQ(mSpark.getEngine()->live, nullptr);
        display().setTime(2.5);
        mSpark.update(100, 50, 0);
        EXPECT_EQ(mSpark.getEngine()->dt, 0.5f);
        EXPECT_NE(mSpark.getEngine()->live, nullptr);
    });
}

TEST_F(SparkTest, LeavesTheStateThatTheParticlesNeed) {
    burn(1);
    frame([&] {
        glEnable(GL_DEPTH_TEST);
        mSpark.update(0, 0.04f, 0);
        EXPECT_TRUE(glIsEnabled(GL_BLEND));
        EXPECT_TRUE(glIsEnabled(GL_POINT_SMOOTH));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST)); // not touched
        GLint bound = -1, source = 0, target = 0;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        glGetIntegerv(GL_BLEND_SRC, &source);
        glGetIntegerv(GL_BLEND_DST, &target);
        EXPECT_EQ(bound, 0);
        EXPECT_EQ(source, GL_SRC_ALPHA);
        EXPECT_EQ(target, GL_ONE);
    });
}

TEST_F(SparkTest, TheSunIsACopyThatSharesItsEmitters) {
    const sparks::Engine& engine = *mSpark.getEngine();
    ASSERT_EQ(engine.active.size(), 1u);
    ASSERT_EQ(engine.instances.size(), 1u);
    EXPECT_NE(engine.active[0], engine.instances[0]);
    EXPECT_EQ(engine.active[0]->emitters, engine.instances[0]->emitters);
    EXPECT_EQ(engine.active[0]->engine, &engine);
    EXPECT_EQ(engine.instances[0]->engine, nullptr);
    EXPECT_GE(engine.active[0]->emitters.size(), 2u);
}

TEST_F(SparkTest, AMissingSunIsLoggedAndDrawsNothing) {
    test::TempDir folder;
    test::writeFile(folder.file("nothing.txt"), "");
    am::ArchiveManager archives;
    archives.addArchive(folder.path());
    display().setArchive(&archives);
    kindler::Spark other(nullptr);
    std::string said;
    {
        test::CaptureStdout out;
        test::prepare(other, display(), "spark");
        said = out.text();
    }
    display().setArchive(&window().archives());
    EXPECT_NE(said.find("Sparks: Loading spark/spark.xml\n"), std::string::npos);
    EXPECT_NE(said.find("Sparks: No instance 'sun'"), std::string::npos);
    const Picture picture = frame([&] {
        other.update(0, 0.04f, 0);
        other.update(1, 0.04f, 0.5f);
    });
    EXPECT_EQ(test::brightness(picture, 0, 0, 640, 400), 0);
}
