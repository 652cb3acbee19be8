#include "allocations.h"
#include "dis_glcheck.h"
#include "gl_fixture.h"
#include "mb_matrix4x4col.h"
#include "plain_sparks.h"
#include "sparks_testing.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::sparks;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::longLived;
using test::Picture;

namespace {

// Looks along -z from (0, 0, 10), so that a sprite of size 2 at the origin covers the pixels around the
// centre. Each cell of the sprite strip has one opaque colour: bit 0 of its number is red, bit 1 green, bit 2
// blue, and its upper half is white.
class DrawTest : public test::GlTest {
protected:
    test::TempDir mFolder;
    am::ArchiveManager mArchives;
    std::unique_ptr<test::QuietEngine> mEngine;
    Matrix4x4Col mCameraInverse;

    void SetUp() override {
        Picture strip(512, 64);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 512; ++x)
                for (int c = 0; c < 4; ++c)
                    strip.at(x, y)[c] = c == 3 || y < 32 || (x / 64 >> c & 1) ? 255 : 0;
        ASSERT_TRUE(test::writePng(mFolder.file("sparks.png"), strip));
        mArchives.addArchive(mFolder.path());
        window(200, 200).display().setArchive(&mArchives);
        display().setFps(display::DisplayGL::FPS_DELTA, 50);
        display().setTime(0);
        mEngine.reset(new test::QuietEngine(&display()));
        engine().random.mState = 1;
        mCameraInverse.setCameraInv(Vector3f(0, 0, 10), Vector3f(0, 0, 0), 0);
    }
    void TearDown() override {
        mEngine.reset();
        display().setArchive(&window().archives());
    }
    Engine& engine() { return **mEngine; }

    void setCamera() {
        Matrix4x4Col matrix;
        matrix.setProject(1.0f, 1.0f, 0.1f, 100.0f);
        display().setProject(matrix);
        matrix.setCamera(Vector3f(0, 0, 10), Vector3f(0, 0, 0), 0);
        display().setCamera(matrix);
        display().setTransform(Matrix4x4Col());
    }

    // The picture when the display's clock shows `time`.
    Picture at(float time) {
        return frame([&] {
            display().setTime(time);
            setCamera();
            engine().draw(&mCameraInverse);
        });
    }
    // Red at the centre of the only particle, 0 to 1.
    float redAt(float time) { return float(at(time).at(100, 90)[0]) / 255.0f; }

    void add(Spark spark, float time = 0) {
        spark.texture = 1;
        display().setTime(time);
        engine().addSpark(spark);
    }
};

} // namespace

TEST_F(DrawTest, TheAlphaIsEnergyUpToOneTimesIntensity) {
    Spark spark = longLived();
    spark.energy = 3;
    spark.intensity = 0.5f;
    add(spark);
    EXPECT_NEAR(redAt(1), 0.5f, 0.005f);
    engine().live->energy = 0.4f;
    EXPECT_NEAR(redAt(1), 0.2f, 0.005f);
}

TEST_F(DrawTest, FadesInOverAFifthOfASecond) {
    add(longLived());
    EXPECT_NEAR(redAt(0.05f), sinf(3.1415927f * 0.125f), 0.01f);
    EXPECT_NEAR(redAt(0.1f), 0.7071f, 0.01f);
    for (const float age : {0.2f, 0.3f, 0.4f, 0.77f, 5.0f})
        EXPECT_NEAR(redAt(age), 1, 0.005f) << age;
}

TEST_F(DrawTest, IsHiddenUntilItsTimeOffsetIsOver) {
    Spark spark = longLived();
    spark.timeoffset = 1;
    add(spark, 2);
    EXPECT_EQ(redAt(2), 0);
    EXPECT_EQ(redAt(3), 0);                // not before the age is above 0
    EXPECT_EQ(engine().random.mState, 1u); // hidden particles draw no random number
    EXPECT_NEAR(redAt(3.1f), 0.7071f, 0.01f);
    EXPECT_NE(engine().random.mState, 1u);
    spark.timeoffset = NAN;
    engine().live->timeoffset = NAN;
    EXPECT_EQ(redAt(4), 0);
}

TEST_F(DrawTest, FlickersByTheLowestBitOfTheEngine) {
    Spark spark = longLived();
    spark.noise = 0.6f;
    add(spark);
    mathbase::Random random(1);
    int dark = 0;
    for (int i = 0; i < 8; ++i) {
        const uint32_t state = random.draw();
        dark += state & 1;
        EXPECT_NEAR(redAt(1), test::alphaOf(float(state & 1), spark, 1), 0.005f) << i;
        EXPECT_EQ(engine().random.mState, state);
    }
    EXPECT_GT(dark, 0);
    EXPECT_LT(dark, 8);
}

TEST_F(DrawTest, EachCellIsAnEighthOfTheStripUpsideDown) {
    for (int cell = 0; cell < 8; ++cell) {
        display().setTime(0);
        Spark spark = longLived();
        spark.size = 4;
        spark.texture = cell;
        engine().addSpark(spark);
        const Picture picture = at(1);
        for (int c = 0; c < 3; ++c) {
            EXPECT_EQ(picture.at(100, 75)[c], cell >> c & 1 ? 255 : 0) << cell;
            EXPECT_EQ(picture.at(100, 125)[c], 255) << cell; // the cell's upper half
        }
        engine().live->size = 0;
        engine().update(0);
    }
}

TEST_F(DrawTest, AddsLightWithoutSorting) {
    Spark spark = longLived();
    spark.intensity = 0.25f;
    for (int i = 0; i < 3; ++i) {
        spark.position.z = float(i % 2);
        add(spark);
    }
    EXPECT_NEAR(redAt(1), 0.75f, 0.015f);
}

TEST_F(DrawTest, ACameraWithoutAxesFailsItsAssertion) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    SUCCEED();
    Matrix4x4Col zero;
    zero.setZero();
    EXPECT_DEATH(engine().draw(&zero), "length!=0");
}

TEST_F(DrawTest, IsThePictureOfOneCallPerVertex) {
    mathbase::Random random(7);
    for (int i = 0; i < 500; ++i) {
        Spark spark = longLived();
        spark.position = random.unitSphere() * (12 * random.uniform());
        spark.size = 0.2f + 2 * random.uniform();
        spark.colour = Vector3f(random.uniform(), random.uniform(), random.uniform());
        spark.intensity = 0.3f * random.uniform();
        spark.noise = random.uniform();
        spark.energy = 0.1f + 2 * random.uniform();
        spark.timeoffset = 1.2f * random.uniform();
        spark.texture = int(8 * random.uniform());
        engine().addSpark(spark);
    }
    mCameraInverse.setCameraInv(Vector3f(0, 0, 10), Vector3f(0, 0, 0), 0.7f);
    Picture plain;
    for (bool culled : {false, true}) {
        engine().random.mState = 1;
        const Picture batched = frame([&] {
            display().setTime(1);
            if (culled)
                glEnable(GL_CULL_FACE);
            setCamera();
            engine().draw(&mCameraInverse);
        });
        plain = frame([&] {
            display().setTime(1);
            if (culled)
                glEnable(GL_CULL_FACE);
            setCamera();
            mathbase::Random flicker(1);
            test::drawPlainSparks(engine(), mCameraInverse, 1, flicker);
        });
        const auto difference = test::comparePictures(batched, plain);
        EXPECT_LT(difference.mean, 0.2) << culled;
        EXPECT_LT(difference.changed, 0.001) << culled;
        double sum = 0;
        for (uint8_t byte : plain.rgba)
            sum += byte;
        EXPECT_GT(sum / double(plain.rgba.size()), 70); // not black
    }
}

TEST_F(DrawTest, LeavesBlendingForTheCallerToMind) {
    add(longLived());
    frame([&] {
        display().setTime(1);
        glEnable(GL_DEPTH_TEST);
        engine().draw(&mCameraInverse);
        EXPECT_TRUE(glIsEnabled(GL_BLEND));
        EXPECT_TRUE(glIsEnabled(GL_POINT_SMOOTH));
        EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        GLint bound = -1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(bound, 0);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_BLEND);
    });
}

TEST_F(DrawTest, NanAndInfinityAreDrawnHarmlessly) {
    for (float value : {NAN, INFINITY, -INFINITY, 1e38f}) {
        Spark spark = longLived();
        spark.position.x = value;
        add(spark);
        spark = longLived();
        spark.size = value;
        add(spark);
        spark = longLived();
        spark.colour.x = spark.intensity = value;
        add(spark);
        spark = longLived();
        spark.texture = std::isnan(value) ? INT_MAX : INT_MIN;
        add(spark);
    }
    at(1);
    EXPECT_EQ(test::countOf(engine().live), 16);
}

TEST_F(DrawTest, AMissingStripIsAnError) {
    test::TempDir empty;
    am::ArchiveManager none;
    none.addArchive(empty.path());
    display().setArchive(&none);
    add(longLived());
    EXPECT_THROW(at(1), Exception);
    display().setArchive(&mArchives);
}

TEST_F(DrawTest, AllocatesNothingOnceWarm) {
    Spark spark = longLived();
    spark.size = 1;
    for (int i = 0; i < 3000; ++i)
        add(spark);
    at(1);
    at(1);
    size_t used = 0;
    frame([&] {
        display().setTime(1);
        setCamera();
        const size_t before = test::allocationCount();
        engine().draw(&mCameraInverse);
        used = test::allocationCount() - before;
    });
    EXPECT_EQ(used, 0u);
}
