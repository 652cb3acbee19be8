#include "border.h"
#include "dis_texture.h"
#include "effect_test.h"

#include <gtest/gtest.h>

using namespace zentrak;
using test::matchesReference;
using test::Picture;

namespace {

class BorderTest : public test::EffectTest {
protected:
    kindler::Border mBorder{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mBorder, display(), "border");
    }
    Picture at(float alpha, float border) {
        return over(0.2f, 0.5f, 0.6f, [&] {
            mBorder.updateSpline(0, "alpha", alpha);
            mBorder.updateSpline(0, "border", border);
            mBorder.update(1, 0.02f, 0.5f);
        });
    }
};

} // namespace

TEST_F(BorderTest, MatchesItsReferencePicture) {
    EXPECT_TRUE(matchesReference("border_in_place", at(1, 0)));
    EXPECT_TRUE(matchesReference("border_pushed_out", at(1, 0.4f)));
    EXPECT_TRUE(matchesReference("border_faint", at(0.4f, 0)));
}

TEST_F(BorderTest, IsThePictureOfOneCallPerVertex) {
    display::Texture texture(&display());
    texture.load("border/border2.png", false);
    texture.init();
    for (float border : {0.0f, 0.25f, -0.3f}) {
        const Picture plain = over(0.2f, 0.5f, 0.6f, [&] {
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            glMatrixMode(GL_MODELVIEW);
            glLoadIdentity();
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
            glEnable(GL_TEXTURE_2D);
            texture.bind();
            glRotatef(50 * border, 0, 0, 1);
            glColor4f(1, 1, 1, 0.7f);
            const float corners[4][4] = {{0, 1, -1, -1}, {1, 1, 1, -1}, {1, 0, 1, 1}, {0, 0, -1, 1}};
            glBegin(GL_QUADS);
            for (const auto& [s, t, x, y] : corners) {
                glTexCoord2f(s, t);
                glVertex2f(x * (1 + border), y * (1 + border));
            }
            glEnd();
            texture.unbind();
            display().resetStates();
        });
        EXPECT_TRUE(test::samePicture(at(0.7f, border), plain)) << border;
    }
}

TEST_F(BorderTest, AnAlphaOfZeroDrawsNothing) {
    const Picture ground = over(0.2f, 0.5f, 0.6f, [] {});
    EXPECT_EQ(test::comparePictures(at(0, 0), ground).mean, 0);
    EXPECT_GT(test::covered(at(1, 0), ground), 0.05);
}

TEST_F(BorderTest, AnotherSplineIsDropped) {
    const Picture before = at(1, 0.1f);
    const Picture after = over(0.2f, 0.5f, 0.6f, [&] {
        mBorder.updateSpline(0, "Alpha", 0);
        mBorder.updateSpline(0, "borders", 3);
        mBorder.update(1, 0.02f, 0.5f);
    });
    EXPECT_EQ(test::comparePictures(before, after).mean, 0);
}

TEST_F(BorderTest, TheStatesAreResetAfterwards) {
    over(0, 0, 0, [&] {
        mBorder.update(1, 0.02f, 0);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
        EXPECT_FALSE(glIsEnabled(GL_CULL_FACE));
        float color[4];
        glGetFloatv(GL_CURRENT_COLOR, color);
        EXPECT_EQ(color[3], 0.5f);
        int texture = 1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        EXPECT_EQ(texture, 0);
    });
}
