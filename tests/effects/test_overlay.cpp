// The mode and "alpha" outlive the effect: each test sets them first.
#include "dis_shader.h"
#include "effect_test.h"
#include "overlay.h"
#include "support.h"
#include "waxon.h"
#include "ztk_system.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using test::matchesReference;
using test::Picture;

namespace {

class OverlayTest : public test::EffectTest {
protected:
    kindler::WaxOn mWaxOn{&mCommon};
    kindler::Overlay mOverlay{&mCommon};

    void SetUp() override {
        EffectTest::SetUp();
        test::CaptureStdout out;
        test::prepare(mOverlay, display(), "overlay");
        test::prepare(mWaxOn, display(), "waxon");
        mOverlay.updateSpline(0, "alpha", 1);
    }
    // Fills the target with discs of several colours.
    void fillTarget() {
        mWaxOn.executeTrigger(0, "which", "vaddr");
        frame([&] {
            mWaxOn.update(0, 0, 0);
            glClearColor(0.08f, 0.1f, 0.2f, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            for (int i = 0; i < 5; ++i) {
                glColor3f(0.3f + 0.15f * float(i), 0.9f - 0.15f * float(i), i % 2 ? 0.7f : 0.2f);
                glRectf(-0.8f + 0.3f * float(i), -0.7f + 0.1f * float(i), -0.6f + 0.3f * float(i),
                        0.3f + 0.1f * float(i));
            }
            mWaxOn.postUpdate(0, 0, 0);
        });
    }
    Picture at(const std::string& type, float time, float progress) {
        mOverlay.executeTrigger(time, "type", type);
        return over(0.3f, 0.1f, 0.4f, [&] { mOverlay.update(time, 0.02f, progress); });
    }
    // The expected picture: a quad over part of clip space, the texture's lower left corner at (s, t0).
    Picture plainQuad(float x, float y, float t0, const std::function<void()>& start,
                      const std::function<void()>& end) {
        return over(0.3f, 0.1f, 0.4f, [&] {
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            start();
            glBegin(GL_QUADS);
            glTexCoord2f(0, t0);
            glVertex2f(-x, -y);
            glTexCoord2f(1, t0);
            glVertex2f(x, -y);
            glTexCoord2f(1, 1 - t0);
            glVertex2f(x, y);
            glTexCoord2f(0, 1 - t0);
            glVertex2f(-x, y);
            glEnd();
            end();
            display().resetStates();
        });
    }
};

} // namespace

TEST_F(OverlayTest, MatchesItsReferencePictures) {
    fillTarget();
    EXPECT_TRUE(matchesReference("overlay_shader_0", at("shader", 0, 0)));
    EXPECT_TRUE(matchesReference("overlay_shader_4", at("shader", 4, 0)));
    EXPECT_TRUE(matchesReference("overlay_shader_10", at("shader", 10, 0)));
    EXPECT_TRUE(matchesReference("overlay_logo", at("logo", 1, 0)));
    EXPECT_TRUE(matchesReference("overlay_finally", at("finally", 1, 0)));
}

TEST_F(OverlayTest, TheShaderShowsTheTargetAsOneCallPerVertexDoes) {
    fillTarget();
    display::ShaderProgram program(&display());
    program.link("overlay/overlay.vert", "overlay/satin.frag");
    for (float time : {0.0f, 3.5f, 9.75f, 10.0f, 60.0f, -2.0f}) {
        const float m = std::max(0.0f, 10 - time);
        const Picture plain = plainQuad(
            1, 1, 0,
            [&] {
                mCommon.mFbos["vaddr"]->mTexture.bind();
                program.bind();
                program.set("satin", mathbase::Vector3f(1, m, m));
                program.set("maxx", 400.0f);
                program.set("maxy", 250.0f);
                glColor4f(1, 1, 1, 1);
            },
            [&] {
                program.unbind();
                mCommon.mFbos["vaddr"]->mTexture.unbind();
            });
        EXPECT_TRUE(test::samePicture(at("shader", time, 0), plain)) << time;
    }
}

TEST_F(OverlayTest, TheSatinIsCalmFromTenSecondsOn) {
    fillTarget();
    EXPECT_EQ(test::comparePictures(at("shader", 10, 0), at("shader", 45, 0)).mean, 0);
    EXPECT_GT(test::comparePictures(at("shader", 0, 0), at("shader", 10, 0)).mean, 1);
}

TEST_F(OverlayTest, TheShaderShowsAnOldPictureWhereNoneWasDrawnInThisFrame) {
    fillTarget();
    const Picture first = at("shader", 20, 0);
    EXPECT_EQ(test::comparePictures(at("shader", 20, 0), first).mean, 0);
}

TEST_F(OverlayTest, TheShaderWithoutATargetThrows) {
    kindler::Common empty;
    kindler::Overlay overlay(&empty);
    test::prepare(overlay, display(), "overlay");
    overlay.executeTrigger(0, "type", "shader");
    test::CaptureStdout out;
    std::string thrown;
    try {
        frame([&] { overlay.update(0, 0, 0); });
    } catch (const Exception& e) {
        thrown = e.what();
    }
    EXPECT_EQ(thrown, "No render target of the name 'vaddr'");
    ASSERT_EQ(empty.mFbos.count("vaddr"), 1u);
    EXPECT_EQ(empty.mFbos["vaddr"], nullptr);
}

TEST_F(OverlayTest, SolidFadesToWhiteOverItsSpan) {
    const Picture none = at("solid", 1, 0), half = at("solid", 1, 0.5f), all = at("solid", 1, 1);
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(399, 249), std::pair(100, 200)}) {
        EXPECT_NEAR(none.at(x, y)[1], 0.1 * 255, 1);
        EXPECT_NEAR(half.at(x, y)[1], 0.55 * 255, 1.5);
        EXPECT_NEAR(half.at(x, y)[0], 0.65 * 255, 1.5);
        EXPECT_EQ(all.at(x, y)[1], 255);
    }
}

TEST_F(OverlayTest, FlashStartsWhiteAndFades) {
    const Picture start = at("flash", 1, 0), late = at("flash", 1, 0.75f), end = at("flash", 1, 1);
    EXPECT_EQ(start.at(50, 60)[1], 255);
    EXPECT_NEAR(late.at(50, 60)[1], (0.25 + 0.75 * 0.1) * 255, 1.5);
    EXPECT_NEAR(end.at(50, 60)[1], 0.1 * 255, 1);
}

TEST_F(OverlayTest, ThePicturesAreThoseOfOneCallPerVertex) {
    struct Case {
        const char* type;
        const char* file;
        float width, height;
    };
    mOverlay.updateSpline(0, "alpha", 0.6f);
    for (const Case& c : {Case{"logo", "icons/icons.png", 400, 250}, // pixel for pixel
                          Case{"finally", "overlay/finally.png", 1024, 640}}) {
        display::Texture texture(&display());
        texture.load(c.file, false);
        texture.init();
        const Picture plain = plainQuad(
            float(texture.getWidth()) / c.width, float(texture.getHeight()) / c.height, 1,
            [&] {
                glEnable(GL_BLEND);
                glEnable(GL_TEXTURE_2D);
                texture.bind();
                glColor4f(1, 1, 1, 0.6f);
            },
            [&] { texture.unbind(); });
        EXPECT_TRUE(test::samePicture(at(c.type, 1, 0), plain)) << c.type;
    }
}

TEST_F(OverlayTest, AnAlphaOfZeroDrawsNothing) {
    mOverlay.updateSpline(0, "alpha", 0);
    mOverlay.updateSpline(0, "Alpha", 1);
    const Picture ground = over(0.3f, 0.1f, 0.4f, [] {});
    EXPECT_EQ(test::comparePictures(at("logo", 1, 0), ground).mean, 0);
    EXPECT_EQ(test::comparePictures(at("finally", 1, 0), ground).mean, 0);
}

TEST_F(OverlayTest, AnUnknownTypeDrawsNothing) {
    const Picture ground = over(0.3f, 0.1f, 0.4f, [] {});
    for (const char* type : {"", "Shader", "solid ", "nothing"})
        EXPECT_EQ(test::comparePictures(at(type, 1, 0.5f), ground).mean, 0) << type;
}

TEST_F(OverlayTest, ATypeStaysThroughARewindUntilTheNext) {
    at("solid", 5, 1);
    mOverlay.resetTriggers();
    mOverlay.executeTrigger(0, "Type", "flash");
    const Picture still = over(0.3f, 0.1f, 0.4f, [&] { mOverlay.update(0, -5, 1); });
    EXPECT_EQ(still.at(10, 10)[1], 255);
}

TEST_F(OverlayTest, NoStateIsLeftBehind) {
    fillTarget();
    for (const char* type : {"shader", "solid", "flash", "logo", "finally"}) {
        over(0, 0, 0, [&] {
            mOverlay.executeTrigger(0, "type", type);
            mOverlay.update(1, 0.02f, 0.5f);
            EXPECT_FALSE(glIsEnabled(GL_BLEND)) << type;
            EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D)) << type;
            int texture = 1, program = 1;
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
            glGetIntegerv(GL_CURRENT_PROGRAM, &program);
            EXPECT_EQ(texture, 0) << type;
            EXPECT_EQ(program, 0) << type;
        });
    }
}

TEST_F(OverlayTest, ATimeOfNanIsHarmless) {
    fillTarget();
    for (const char* type : {"shader", "solid", "flash"})
        at(type, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::quiet_NaN());
}
