// Drawing into a render target, and showing it through a lens.
#include "border.h"
#include "dis_shader.h"
#include "effect_test.h"
#include "fisheye.h"
#include "support.h"
#include "waxoff.h"
#include "waxon.h"
#include "ztk_system.h"

#include <gtest/gtest.h>

using namespace zentrak;
using test::matchesReference;
using test::Picture;

namespace {

// The current texture over the whole window.
void drawWhole() {
    glBegin(GL_QUADS);
    for (const auto& [s, t] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
        glTexCoord2i(s, t);
        glVertex2i(2 * s - 1, 2 * t - 1);
    }
    glEnd();
}

class WaxOnTest : public test::EffectTest {
protected:
    kindler::Border mBorder{&mCommon}; // what is drawn into the target
    kindler::WaxOn mWaxOn{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::prepare(mBorder, display(), "border");
        mBorder.updateSpline(0, "alpha", 1);
        mBorder.updateSpline(0, "border", -0.2f);
        test::CaptureStdout out;
        test::prepare(mWaxOn, display(), "waxon");
        fflush(stdout);
        mSaid = out.text();
    }
    // A scene for the target: the frame on a coloured ground, and a bar.
    void scene() {
        glClearColor(0.1f, 0.3f, 0.5f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        mBorder.update(0, 0, 0);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glColor4f(1, 0.8f, 0.2f, 1);
        glRectf(-0.5f, 0.1f, 0.1f, 0.5f);
        for (int i = -6; i <= 6; ++i)
            glRectf(-0.8f, 0.1f * float(i) - 0.01f, 0.8f, 0.1f * float(i) + 0.01f);
        display().resetStates();
    }
    Picture inside() {
        return over(0, 0, 0, [&] {
            mWaxOn.update(0, 0, 0);
            scene();
            mWaxOn.postUpdate(0, 0, 0);
        });
    }
    // The target over the whole window.
    Picture showTarget() {
        return over(0, 0, 0, [&] {
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            glEnable(GL_TEXTURE_2D);
            mCommon.mFbos["vaddr"]->mTexture.bind();
            glColor4f(1, 1, 1, 1);
            drawWhole();
            mCommon.mFbos["vaddr"]->mTexture.unbind();
            display().resetStates();
        });
    }

    std::string mSaid;
};

std::string thrownBy(const std::function<void()>& call) {
    test::CaptureStdout out;
    try {
        call();
    } catch (const Exception& e) {
        return e.what();
    }
    return "nothing";
}

} // namespace

TEST_F(WaxOnTest, SetupMakesATargetOf1280By1024WhateverTheWindow) {
    EXPECT_NE(mSaid.find("WaxOn::setup:after()\n"), std::string::npos);
    ASSERT_EQ(mCommon.mFbos.size(), 1u);
    ASSERT_NE(mCommon.mFbos["vaddr"], nullptr);
    EXPECT_EQ(mCommon.mFbos["vaddr"]->mFbo.getWidth(), 1280);
    EXPECT_EQ(mCommon.mFbos["vaddr"]->mFbo.getHeight(), 1024);
    EXPECT_EQ(mCommon.mFbos["vaddr"]->mTexture.getWidth(), 1280);
    EXPECT_EQ(mCommon.mFbos["vaddr"]->mTexture.getHeight(), 1024);
}

TEST_F(WaxOnTest, NestedSpansDrawIntoTheTarget) {
    mWaxOn.executeTrigger(0, "which", "vaddr");
    const Picture screen = inside();
    for (int x = 0; x < 400; x += 11)
        for (int y = 0; y < 250; y += 9)
            ASSERT_EQ(screen.at(x, y)[0] + screen.at(x, y)[1] + screen.at(x, y)[2], 0);
    EXPECT_TRUE(matchesReference("waxon_target", showTarget()));
}

TEST_F(WaxOnTest, WithoutATargetNestedSpansDrawOnTheScreen) {
    const Picture nested = inside();
    const Picture alone = over(0, 0, 0, [&] { scene(); });
    EXPECT_EQ(test::comparePictures(nested, alone).mean, 0);
    EXPECT_TRUE(matchesReference("waxon_none", nested));
    mWaxOn.executeTrigger(0, "which", "vaddr");
    mWaxOn.executeTrigger(0, "which", ""); // and none again
    EXPECT_EQ(test::comparePictures(inside(), alone).mean, 0);
}

TEST_F(WaxOnTest, ANestedEffectDrawsTheSameAsOnTheScreen) {
    mWaxOn.executeTrigger(0, "which", "vaddr");
    inside();
    const Picture through = showTarget();
    const Picture alone = over(0, 0, 0, [&] { scene(); });
    // The target's resolution is not the window's, so fine lines differ a little.
    EXPECT_LT(test::comparePictures(through, alone).mean, 6.0);
}

TEST_F(WaxOnTest, TheTargetStartsEmptyAndClear) {
    mWaxOn.executeTrigger(0, "which", "vaddr");
    inside();
    float depth = 0;
    float colour[4] = {1, 1, 1, 1};
    over(1, 1, 1, [&] {
        mWaxOn.update(0, 0, 0);
        glReadPixels(640, 512, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        glReadPixels(640, 512, 1, 1, GL_RGBA, GL_FLOAT, colour);
        mWaxOn.postUpdate(0, 0, 0);
    });
    EXPECT_EQ(depth, 1.0f);
    for (float c : colour)
        EXPECT_EQ(c, 0.0f);
}

TEST_F(WaxOnTest, TheViewportAndTheStatesAreBackAfterwards) {
    mWaxOn.executeTrigger(0, "which", "vaddr");
    over(0, 0, 0, [&] {
        int before[4], within[4], after[4];
        glGetIntegerv(GL_VIEWPORT, before);
        mWaxOn.update(0, 0, 0);
        glGetIntegerv(GL_VIEWPORT, within);
        glEnable(GL_BLEND);
        mWaxOn.postUpdate(0, 0, 0);
        glGetIntegerv(GL_VIEWPORT, after);
        EXPECT_EQ(within[2], 1280);
        EXPECT_EQ(within[3], 1024);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(before[i], after[i]);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        int target = 1;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &target);
        EXPECT_EQ(target, 0);
    });
}

TEST_F(WaxOnTest, AnUnknownTargetThrowsAndLeavesANullEntry) {
    mWaxOn.executeTrigger(0, "which", "vadder");
    EXPECT_EQ(thrownBy([&] { over(0, 0, 0, [&] { mWaxOn.update(0, 0, 0); }); }),
              "No render target of the name 'vadder'");
    ASSERT_EQ(mCommon.mFbos.count("vadder"), 1u);
    EXPECT_EQ(mCommon.mFbos["vadder"], nullptr);
    // And again, now that the entry is there.
    EXPECT_EQ(thrownBy([&] { over(0, 0, 0, [&] { mWaxOn.postUpdate(0, 0, 0); }); }),
              "No render target of the name 'vadder'");
}

TEST_F(WaxOnTest, AnotherTriggerIsDropped) {
    mWaxOn.executeTrigger(0, "Which", "nowhere");
    inside(); // does not throw
    EXPECT_EQ(mCommon.mFbos.size(), 1u);
}

TEST_F(WaxOnTest, TheEntryIsRemovedWithItsMaker) {
    {
        kindler::WaxOn other(&mCommon);
        test::CaptureStdout out;
        test::prepare(other, display(), "other");
        EXPECT_EQ(mCommon.mFbos.size(), 1u);
    }
    EXPECT_EQ(mCommon.mFbos.count("vaddr"), 0u);
    kindler::Common::FBOData foreign;
    mCommon.mFbos["vaddr"] = &foreign;
    {
        kindler::WaxOn third(&mCommon);
        test::CaptureStdout out;
        test::prepare(third, display(), "third");
        mCommon.mFbos["vaddr"] = &foreign; // another one in its place
    }
    EXPECT_EQ(mCommon.mFbos["vaddr"], &foreign);
}

TEST_F(WaxOnTest, WaxOffClosesWhatAWaxOnOpened) {
    kindler::WaxOff off(&mCommon);
    test::prepare(off, display(), "waxoff");
    mWaxOn.executeTrigger(0, "which", "vaddr");
    off.executeTrigger(0, "which", "vaddr");
    const Picture screen = over(0, 0, 0, [&] {
        mWaxOn.update(0, 0, 0);
        scene();
        off.update(0, 0, 0);
        int target = 1;
        glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &target);
        EXPECT_EQ(target, 0);
        glEnable(GL_BLEND);
        off.update(0, 0, 0); // a second time: nothing is left to close
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
    });
    EXPECT_EQ(screen.at(200, 125)[2], 0);
    EXPECT_TRUE(matchesReference("waxon_target", showTarget()));
}

TEST_F(WaxOnTest, WaxOffWithoutATargetDoesNothing) {
    kindler::WaxOff off(&mCommon);
    test::prepare(off, display(), "waxoff");
    off.executeTrigger(0, "who", "vaddr");
    over(0, 0, 0, [&] {
        glEnable(GL_BLEND);
        off.update(0, 0, 0);
        EXPECT_TRUE(glIsEnabled(GL_BLEND));
        glDisable(GL_BLEND);
    });
    off.executeTrigger(0, "which", "none");
    EXPECT_EQ(thrownBy([&] { over(0, 0, 0, [&] { off.update(0, 0, 0); }); }),
              "No render target of the name 'none'");
}

namespace {

class FisheyeTest : public WaxOnTest {
protected:
    kindler::Fisheye mFisheye{&mCommon};

    void SetUp() override {
        WaxOnTest::SetUp();
        window().archives().addArchive(test::sourcePath("tests/effects/assets"));
        test::prepare(mFisheye, display(), "fisheye");
        mWaxOn.executeTrigger(0, "which", "vaddr");
        inside();
    }
    Picture at(float time, float amount, float brus = 0) {
        return over(0, 0, 0, [&] {
            mFisheye.updateSpline(time, "amount", amount);
            mFisheye.updateSpline(time, "brus", brus);
            mFisheye.update(time, 0.02f, 0.5f);
        });
    }
};

} // namespace

TEST_F(FisheyeTest, MatchesItsReferencePicture) {
    mFisheye.executeTrigger(0, "which", "vaddr");
    EXPECT_TRUE(matchesReference("fisheye_flat", at(1, 0)));
    EXPECT_TRUE(matchesReference("fisheye_lens", at(1, 0.8f)));
    EXPECT_TRUE(matchesReference("fisheye_hollow", at(2, -0.5f)));
}

TEST_F(FisheyeTest, WithoutALensItIsTheTarget) {
    mFisheye.executeTrigger(0, "which", "vaddr");
    EXPECT_LT(test::comparePictures(at(1, 0), showTarget()).mean, 0.5);
}

TEST_F(FisheyeTest, IsThePictureOfOneCallPerVertex) {
    mFisheye.executeTrigger(0, "which", "vaddr");
    const Picture drawn = at(3, 0.5f, 0.2f);
    display::ShaderProgram program(&display());
    program.link("fisheye/fisheye.vert", "fisheye/fisheye.frag");
    const Picture plain = over(0, 0, 0, [&] {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        mCommon.mFbos["vaddr"]->mTexture.bind();
        program.bind();
        program.set("texture", 0);
        program.set("amount", 0.5f * 1.2f); // the effect multiplies the spline by 1.2
        program.set("second", 3.0f);
        program.set("brus", 0.2f);
        glColor4f(1, 1, 1, 1);
        drawWhole();
        program.unbind();
        mCommon.mFbos["vaddr"]->mTexture.unbind();
    });
    EXPECT_TRUE(test::samePicture(drawn, plain));
}

TEST_F(FisheyeTest, WithoutATargetNothingIsDrawnButTheMatricesAreIdentity) {
    const Picture nothing = at(1, 0.5f);
    EXPECT_EQ(nothing.at(200, 125)[0] + nothing.at(200, 125)[2], 0);
    over(0, 0, 0, [&] {
        display().resetStates(); // a perspective
        mFisheye.update(0, 0, 0);
        float project[16];
        glGetFloatv(GL_PROJECTION_MATRIX, project);
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(project[i], i % 5 == 0 ? 1.0f : 0.0f);
    });
}

TEST_F(FisheyeTest, AnUnknownTargetThrows) {
    mFisheye.executeTrigger(0, "which", "lens");
    EXPECT_EQ(thrownBy([&] { at(1, 0); }), "No render target of the name 'lens'");
}
