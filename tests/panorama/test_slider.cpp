#include "inputs.h"
#include "pan_flow.h"
#include "pan_slider.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;
using test::ENDLESS;
using test::NO_NUMBER;

namespace {

class SliderTest : public test::InputTest {
protected:
    // 200 pixels wide; the handle of 6 begins at 10 + 194 * position.
    Slider* across(const std::string& attributes = "") {
        return load<Slider>(Box2(10, 20, 210, 36), "direction=\"horisontal\" " + attributes + "/>");
    }
    static float position(Slider* slider) { return slider->mPosition.get(true); }
};

} // namespace

TEST_F(SliderTest, HasDefaults) {
    Slider slider;
    EXPECT_EQ(slider.getType(), "slider");
    EXPECT_EQ(slider.mDirection, 1);
    EXPECT_FALSE(slider.mDragging);
    EXPECT_EQ(slider.mSize, 3.0f);
    EXPECT_EQ(slider.mHoverAmount, 0.0f);
    EXPECT_EQ(slider.mMin, 0.0f);
    EXPECT_EQ(slider.mMax, 1.0f);
    EXPECT_EQ(slider.getValue(), 0.0f);
    Control* clone = slider.clone();
    EXPECT_NE(dynamic_cast<Slider*>(clone), nullptr);
    delete clone;
}

TEST_F(SliderTest, ReadsEachAttributeThatIsNotEmpty) {
    Slider* slider = across("size=\"5\" min=\"-2\" max=\"6.5\" percent=\"0.5\"");
    EXPECT_EQ(slider->mDirection, 0);
    EXPECT_EQ(slider->mSize, 5.0f);
    EXPECT_EQ(slider->mMin, -2.0f);
    EXPECT_EQ(slider->mMax, 6.5f);
    EXPECT_EQ(slider->getValue(), 2.25f);
    reload(slider, "min=\"\"/>");
    EXPECT_EQ(slider->mDirection, 0);
    EXPECT_EQ(slider->mSize, 5.0f);
    EXPECT_EQ(slider->getValue(), 2.25f);
}

TEST_F(SliderTest, DirectionWrittenHorizontalYieldsAVerticalSlider) {
    EXPECT_EQ(load<Slider>(Box2(0, 0, 9, 9), "direction=\"horizontal\"/>")->mDirection, 1);
    EXPECT_EQ(load<Slider>(Box2(0, 0, 9, 9), "direction=\"vertical\"/>")->mDirection, 1);
    EXPECT_EQ(load<Slider>(Box2(0, 0, 9, 9), "direction=\"horisontal\"/>")->mDirection, 0);
}

TEST_F(SliderTest, NumbersAreReadAlikeInALocaleWithADecimalComma) {
    const test::CommaLocale comma;
    if (!comma)
        GTEST_SKIP() << "localedef or its sources are missing";
    Slider* slider = across("max=\"2.5\" percent=\"0.5\"");
    EXPECT_EQ(slider->getValue(), 1.25f);
}

TEST_F(SliderTest, TheValueLiesBetweenTheBounds) {
    Slider* slider = across("min=\"10\" max=\"20\"");
    slider->setValue(12.5f, true);
    EXPECT_EQ(position(slider), 0.25f);
    EXPECT_EQ(slider->getValue(), 12.5f);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(SliderTest, AValueThatIsSetMayLieOutsideTheBoundsUntilTheUserMovesIt) {
    Slider* slider = across("min=\"10\" max=\"20\"");
    slider->setValue(25, true);
    EXPECT_EQ(position(slider), 1.5f);
    EXPECT_EQ(slider->getValue(), 25.0f);
    slider->setValue(0, true);
    EXPECT_EQ(position(slider), -1.0f);
    move(50, 28);
    wheel(50, 28, 1);
    EXPECT_EQ(position(slider), 0.0f);
}

TEST_F(SliderTest, TurnIsAStepOfTheWheelWhereverTheMouseIs) {
    Slider* slider = across("percent=\"0.5\"");
    slider->turn(2);
    EXPECT_FLOAT_EQ(slider->getValue(), 0.7f);
    EXPECT_EQ(takeActions(), Actions({8}));
}

TEST_F(SliderTest, BoundsMayBeTurnedRound) {
    Slider* slider = across("min=\"1\" max=\"-1\"");
    slider->setValue(0.5f, true);
    EXPECT_EQ(position(slider), 0.25f);
    EXPECT_EQ(slider->getValue(), 0.5f);
}

TEST_F(SliderTest, AClickBesideTheHandleMovesByExactlyAFifthOfTheRange) {
    Slider* slider = across("percent=\"0.5\" max=\"10\"");
    EXPECT_EQ(press(200, 28), 1);
    EXPECT_EQ(slider->getValue(), 7.0f);
    EXPECT_FALSE(slider->mDragging);
    release(200, 28);
    click(20, 28);
    EXPECT_EQ(slider->getValue(), 5.0f);
    for (int i = 0; i < 4; ++i)
        click(12, 28);
    EXPECT_EQ(slider->getValue(), 0.0f);
    for (int i = 0; i < 9; ++i)
        click(209, 28);
    EXPECT_EQ(slider->getValue(), 10.0f);
    EXPECT_EQ(takeActions(), Actions(15, 8));
    EXPECT_EQ(mSource, slider);
}

TEST_F(SliderTest, ADragFollowsTheMouseAlsoOutside) {
    Slider* slider = across("percent=\"0.5\""); // the handle begins at 107
    press(110, 28);
    EXPECT_TRUE(slider->mDragging);
    EXPECT_EQ(takeActions(), Actions());
    move(60, 28);
    EXPECT_EQ(slider->getValue(), 0.25f);
    EXPECT_EQ(takeActions(), Actions({8}));
    move(160, 300);
    EXPECT_EQ(slider->getValue(), 0.75f);
    move(700, 300);
    EXPECT_EQ(slider->getValue(), 1.0f);
    move(0, 0);
    EXPECT_EQ(slider->getValue(), 0.0f);
    EXPECT_EQ(takeActions(), Actions({8, 8, 8}));
    release(0, 0);
    takeActions();
    EXPECT_FALSE(slider->mDragging);
    EXPECT_EQ(slider->mHoverAmount, 0.0f);
    move(100, 28);
    EXPECT_EQ(slider->getValue(), 0.0f);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(SliderTest, ADragInAFlowGoesOnOverTheOthersAndEndsThere) {
    Flow* flow = add<Flow>(Box2(0, 0, 200, 100)); // whose children keep their order
    Slider* slider = new Slider;
    Slider* other = new Slider;
    for (Slider* each : {slider, other}) {
        flow->addControl(each);
        flow->setSize(each, 50);
        each->mDirection = 0;
    }
    flow->setArea(Box2(0, 0, 200, 100));
    press(3, 25);
    EXPECT_TRUE(slider->mDragging);
    move(50, 75);
    EXPECT_EQ(slider->getValue(), 0.25f);
    EXPECT_EQ(takeActions(), Actions({8}));
    mouse("mouseup", 50, 75);
    move(150, 25);
    EXPECT_FALSE(slider->mDragging);
    EXPECT_EQ(slider->getValue(), 0.25f);
    EXPECT_EQ(other->getValue(), 0.0f);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(SliderTest, TheHandleIsHitTwoPixelsBeforeItAndFourAfter) {
    Slider* slider = across("percent=\"0.5\""); // the handle spans 107 to 113
    const auto hit = [&](float x) {
        move(x, 28);
        return slider->mHoverAmount;
    };
    EXPECT_EQ(hit(104), 0.0f);
    EXPECT_EQ(hit(105), 1.0f);
    EXPECT_EQ(hit(110), 1.0f);
    EXPECT_EQ(hit(116), 1.0f);
    EXPECT_EQ(hit(117), 0.0f);
}

TEST_F(SliderTest, TheWheelMovesByATenthAndTheOtherWayOnAVerticalOne) {
    Slider* slider = across("percent=\"0.5\"");
    move(50, 28);
    EXPECT_EQ(wheel(50, 28, 2), 1);
    EXPECT_FLOAT_EQ(slider->getValue(), 0.7f);
    slider->mDirection = 1;
    wheel(50, 28, 2);
    EXPECT_FLOAT_EQ(slider->getValue(), 0.5f);
    EXPECT_EQ(takeActions(), Actions({8, 8}));
    move(500, 500);
    EXPECT_EQ(wheel(500, 500, 2), 0);
    EXPECT_FLOAT_EQ(slider->getValue(), 0.5f);
}

TEST_F(SliderTest, ThePositionNeverLeavesItsRangeWhateverTheWheelOrADragDoes) {
    Slider* slider = across("percent=\"0.5\"");
    const auto inside = [&] { return position(slider) >= 0 && position(slider) <= 1; };
    move(50, 28);
    for (const float steps : {1000.0f, -1000.0f, ENDLESS, -ENDLESS, NO_NUMBER}) {
        wheel(50, 28, steps);
        EXPECT_TRUE(inside()) << steps;
    }
    slider->setValue(0.5f, true);
    press(110, 28);
    for (const float x : {-1e30f, 1e30f, ENDLESS, -ENDLESS, NO_NUMBER}) {
        mouse("mousemove", x, 28);
        EXPECT_TRUE(inside()) << x;
    }
    mouse("mouseup", 0, 0);
    reload(slider, "percent=\"7\"/>");
    EXPECT_EQ(position(slider), 1.0f);
    reload(slider, "percent=\"nan\"/>");
    EXPECT_TRUE(inside());
}

TEST_F(SliderTest, WithBothBoundsTheSameAClickGivesThatValue) {
    Slider* slider = across("min=\"4\" max=\"4\"");
    slider->setValue(4, true); // a quotient that is not a number
    click(200, 28);
    EXPECT_EQ(slider->getValue(), 4.0f);
}

TEST_F(SliderTest, BoundsAndSizesOfNanAreIgnored) {
    Slider* slider = across("min=\"nan\" max=\"inf\" size=\"-inf\"");
    EXPECT_EQ(slider->mMin, 0.0f);
    EXPECT_EQ(slider->mMax, 1.0f);
    EXPECT_EQ(slider->mSize, 3.0f);
    reload(slider, "max=\"1e300\" size=\"-4\"/>");
    EXPECT_EQ(slider->mMax, 1.0f);
    EXPECT_EQ(slider->mSize, 3.0f);
    for (const float value : {NO_NUMBER, ENDLESS, -ENDLESS}) {
        slider->setValue(value, true);
        slider->turn(1);
        EXPECT_TRUE(slider->getValue() >= 0 && slider->getValue() <= 1) << value;
    }
    reload(slider, "min=\"-3e38\" max=\"3e38\" percent=\"0.5\"/>");
    EXPECT_EQ(slider->getValue(), 0.0f);
}

TEST_F(SliderTest, WithoutASizeEventsAreHarmless) {
    for (const Box2 area : {Box2(), Box2(5, 5, 5, 40), Box2(40, 40, 5, 5), Box2(0, 0, 2, 2)}) {
        Slider* slider = add<Slider>(area);
        slider->setValue(0.5f, true);
        click(5, 5);
        wheel(5, 5, 1);
        move(6, 6);
        EXPECT_TRUE(std::isfinite(slider->getValue()));
    }
}

TEST_F(SliderTest, APressWithInactiveSetDoesNothing) {
    Slider* slider = across("percent=\"0.5\"");
    slider->setInactive(true);
    click(200, 28);
    press(110, 28);
    EXPECT_FALSE(slider->mDragging);
    EXPECT_EQ(slider->getValue(), 0.5f);
    EXPECT_EQ(takeActions(), Actions());
}
