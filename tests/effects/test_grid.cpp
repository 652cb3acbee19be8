#include "allocations.h"
#include "effect_test.h"
#include "grid.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Grid;
using mathbase::Matrix4x4Col;
using mathbase::Vector3f;
using test::matchesReference;
using test::Picture;

namespace {

class GridTest : public test::GlTest {
protected:
    test::FixedRandom mFixed{1};
    Grid mGrid{nullptr};

    void SetUp() override { test::prepare(mGrid, display(), "grid"); }

    Picture at(float time, float alpha = 1) {
        return frame([&] {
            glClearColor(1, 0.85f, 0.45f, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            mGrid.updateSpline(time, "alpha", alpha);
            mGrid.update(time, 0.02f, 0);
        });
    }
};

// The same picture, one call per vertex.
void drawPlainly(display::DisplayGL& display, float time, float alpha) {
    mathbase::Random random(475904815u); // a start of 1 and two draws
    float offset[50], col[50];
    for (int i = 0; i < 50; ++i) {
        offset[i] = 2 * 3.14159265f * random.uniform() - 3.14159265f;
        col[i] = 0.05f * random.uniform() + 0.05f;
    }
    Matrix4x4Col matrix;
    matrix.setProject(3.14159265f / 4, 1.6f, 0.15f, 10000);
    display.setProject(matrix);
    for (int i = 0; i < 50; ++i) {
        matrix.setCamera(Vector3f(3 * sinf(offset[i] * time), 3 * cosf(offset[i] * 1.2f * time), 5),
                         Vector3f(0, 0, 0), 0);
        display.setCamera(matrix);
        display.setTransform(Matrix4x4Col());
        glEnable(GL_BLEND);
        glBegin(GL_TRIANGLES);
        for (int e = 0; e <= 18; e += 2) {
            const float o = offset[49 - i];
            const float a = 2 * 3.14159265f * float(e) / 20 + o;
            const float b = 2 * 3.14159265f * float(e + 1) / 20 + o;
            const float m = (a + b) / 2;
            glColor4f(0, 0, 0, 0);
            glVertex3f(sinf(m), cosf(m), 0);
            glColor4f(0, 0, 0, col[i] * alpha);
            glVertex3f(20 * sinf(a), 20 * cosf(a), 0);
            glVertex3f(20 * sinf(b), 20 * cosf(b), 0);
        }
        glEnd();
        glDisable(GL_BLEND);
    }
}

} // namespace

TEST_F(GridTest, MatchesItsReferencePictures) {
    EXPECT_TRUE(matchesReference("grid_0", at(0)));
    EXPECT_TRUE(matchesReference("grid_3", at(3.25f)));
    EXPECT_TRUE(matchesReference("grid_40", at(40.5f, 0.5f)));
}

TEST_F(GridTest, IsThePictureOfOneCallPerVertex) {
    for (float time : {0.0f, 7.5f}) {
        const Picture plain = frame([&] {
            glClearColor(1, 0.85f, 0.45f, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            drawPlainly(display(), time, 1);
        });
        const auto difference = test::comparePictures(at(time), plain);
        EXPECT_LT(difference.mean, 0.2);
        EXPECT_LT(difference.changed, 0.001);
    }
}

TEST_F(GridTest, AnAlphaOfZeroDrawsNothing) {
    const Picture picture = at(2, 0);
    for (int x = 0; x < 640; x += 7)
        EXPECT_EQ(picture.at(x, 150)[0], 255);
}

TEST_F(GridTest, DarkensOnlyAndMoreWithMoreAlpha) {
    const Picture half = at(2, 0.5f), whole = at(2, 1);
    double sumHalf = 0, sumWhole = 0;
    for (int y = 0; y < 400; y += 3)
        for (int x = 0; x < 640; x += 3) {
            EXPECT_LE(whole.at(x, y)[0], half.at(x, y)[0]);
            sumHalf += half.at(x, y)[0];
            sumWhole += whole.at(x, y)[0];
        }
    EXPECT_LT(sumWhole, sumHalf * 0.97);
}

TEST_F(GridTest, AnotherSplineIsDropped) {
    const Picture before = at(2, 1);
    const Picture after = frame([&] {
        glClearColor(1, 0.85f, 0.45f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        mGrid.updateSpline(2, "beta", 0);
        mGrid.update(2, 0.02f, 0);
    });
    EXPECT_EQ(test::comparePictures(before, after).mean, 0);
}

TEST_F(GridTest, LeavesTheLastCameraAndNoBlending) {
    frame([&] {
        mGrid.update(1, 0.02f, 0);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_EQ(display().mTransformMatrix, Matrix4x4Col());
        EXPECT_NE(display().mCameraMatrix, Matrix4x4Col());
        float modelview[16];
        glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(modelview[i], display().mCameraMatrix.mData[i]);
    });
}

TEST_F(GridTest, AnyTimeIsHarmless) {
    for (float time : {-5.0f, 1e6f, 1e38f})
        at(time);
}

TEST_F(GridTest, OnceWarmAFrameAllocatesNothing) {
    size_t asked = 0;
    for (int i = 0; i < 4; ++i)
        frame([&] {
            const size_t before = test::allocationCount();
            mGrid.updateSpline(1, "alpha", 0.5f);
            mGrid.update(float(i), 0.02f, 0.5f);
            asked = i < 1 ? 0 : asked + test::allocationCount() - before;
        });
    EXPECT_EQ(asked, 0u);
}
