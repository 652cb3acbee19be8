#include "allocations.h"
#include "clear.h"
#include "effect_test.h"
#include "support.h"

#include <gtest/gtest.h>

using namespace zentrak;
using kindler::Clear;
using mathbase::Vector4f;
using test::matchesReference;
using test::Picture;

namespace {

class ClearTest : public test::GlTest {
protected:
    Clear mClear;

    void SetUp() override {
        mClear.color1 = Vector4f(0.051f, 0.051f, 0.051f, 0);
        mClear.color2 = Vector4f(0, 0, 0, 0);
        mClear.type = "gradient";
        test::prepare(mClear, display(), "clear");
    }
    void trigger(const std::string& name, const std::string& value) {
        test::CaptureStdout out;
        mClear.executeTrigger(1.5f, name, value);
        EXPECT_EQ(out.text(), "name: " + name + ", value: " + value + "\n");
    }
    // The picture over a ground of one grey.
    Picture over(float grey) {
        return frame([&] {
            glClearColor(grey, grey, grey, 1);
            glClear(GL_COLOR_BUFFER_BIT);
            mClear.update(1, 0.02f, 0.5f);
        });
    }
};

void expectColor(const Picture& picture, int r, int g, int b) {
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(639, 399), std::pair(320, 200)}) {
        EXPECT_NEAR(picture.at(x, y)[0], r, 1);
        EXPECT_NEAR(picture.at(x, y)[1], g, 1);
        EXPECT_NEAR(picture.at(x, y)[2], b, 1);
    }
}

} // namespace

TEST_F(ClearTest, TheGradientGoesFromWhiteToLightGrey) {
    mClear.updateSpline(1, "alpha", 1.0f);
    const Picture picture = over(0);
    EXPECT_NEAR(picture.at(320, 0)[0], 255, 1);
    EXPECT_NEAR(picture.at(320, 399)[0], 204, 1);
    EXPECT_NEAR(picture.at(320, 200)[0], 229, 2);
    EXPECT_TRUE(matchesReference("clear_gradient", picture));
}

TEST_F(ClearTest, BelowAnAlphaOfOneTheLastFrameShinesThrough) {
    mClear.updateSpline(1, "alpha", 0.25f);
    const Picture picture = over(0.2f);
    EXPECT_NEAR(picture.at(100, 0)[1], 255 * (0.25 * 1.0 + 0.75 * 0.2), 2);
    EXPECT_NEAR(picture.at(100, 399)[1], 255 * (0.25 * 0.8 + 0.75 * 0.2), 2);
}

TEST_F(ClearTest, WithoutASplineTheGradientCovers) {
    EXPECT_NEAR(over(0).at(5, 5)[2], 254, 2);
}

TEST_F(ClearTest, AnotherSplineIsDropped) {
    mClear.updateSpline(1, "Alpha", 0.0f);
    EXPECT_NEAR(over(0).at(5, 5)[2], 254, 2);
}

TEST_F(ClearTest, AnyOtherTypeClearsToTheFirstColour) {
    trigger("type", "solid");
    EXPECT_EQ(mClear.type, "solid");
    expectColor(over(1), 13, 13, 13);
    trigger("type", "");
    expectColor(over(1), 13, 13, 13);
}

TEST_F(ClearTest, EachColourIsThatOfItsName) {
    trigger("type", "flat");
    trigger("color", "white");
    expectColor(over(0.5f), 255, 255, 255);
    EXPECT_EQ(mClear.color2.r, 0.8f);
    EXPECT_EQ(mClear.color2.a, 1.0f);
    trigger("color", "black");
    expectColor(over(0.5f), 0, 0, 0);
    EXPECT_EQ(mClear.color2.r, 0.8f); // stays
    trigger("color", "cubejox_black");
    expectColor(over(0.5f), 0x0c, 0x0c, 0x0c);
    trigger("color", "cubejox_orange");
    expectColor(over(0.5f), 0xff, 0xd9, 0x74);
    trigger("color", "dark_blue");
    expectColor(over(0.5f), 14, 49, 79);
    EXPECT_EQ(mClear.color1.r, 0.0546875f);
    EXPECT_EQ(mClear.color1.g, 0.19140625f);
    EXPECT_EQ(mClear.color1.b, 0.30859375f);
    trigger("color", "dark_gray");
    expectColor(over(0.5f), 26, 26, 26);
    trigger("color", "mauve"); // changes nothing
    expectColor(over(0.5f), 26, 26, 26);
    trigger("colour", "white"); // nor does an unknown name
    expectColor(over(0.5f), 26, 26, 26);
}

TEST_F(ClearTest, BothTypesClearTheDepth) {
    for (const char* type : {"gradient", "flat"}) {
        mClear.type = type;
        float depth = 0;
        frame([&] {
            glClearDepth(0.25);
            glClear(GL_DEPTH_BUFFER_BIT);
            mClear.update(0, 0, 0);
            glReadPixels(320, 200, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        });
        EXPECT_EQ(depth, 1.0f) << type;
    }
}

TEST_F(ClearTest, BlendingIsOffAfterwards) {
    frame([&] {
        mClear.update(0, 0, 0);
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
    });
}

TEST_F(ClearTest, OnceWarmAFrameAllocatesNothing) {
    size_t asked = 0;
    for (int i = 0; i < 6; ++i)
        frame([&] {
            mClear.type = i % 2 ? "flat" : "gradient";
            const size_t before = test::allocationCount();
            mClear.updateSpline(1, "alpha", 0.5f);
            mClear.update(1, 0.02f, 0.5f);
            asked = i < 2 ? 0 : asked + test::allocationCount() - before;
        });
    EXPECT_EQ(asked, 0u);
}
