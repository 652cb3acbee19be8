#include "inputs.h"
#include "pan_button.h"
#include "pan_flow.h"

using namespace zentrak;
using namespace zentrak::panorama;
using mathbase::Box2;

namespace {

class ButtonTest : public test::InputTest {};

} // namespace

TEST_F(ButtonTest, StartsOutAsAPlainOne) {
    Button button;
    EXPECT_EQ(button.getType(), "button");
    EXPECT_FALSE(button.pushed);
    EXPECT_FALSE(button.toggled);
    EXPECT_FALSE(button.toggleMode);
    Control* clone = button.clone();
    EXPECT_NE(dynamic_cast<Button*>(clone), nullptr);
    delete clone;
}

TEST_F(ButtonTest, APlainOneSendsItsPressAndItsRelease) {
    Button* button = add<Button>(Box2(10, 10, 60, 30));
    EXPECT_EQ(press(20, 20), 1);
    EXPECT_EQ(takeActions(), Actions({0}));
    EXPECT_EQ(mSource, button);
    EXPECT_TRUE(button->pushed);
    EXPECT_EQ(release(21, 20), 1);
    EXPECT_EQ(takeActions(), Actions({1}));
    EXPECT_FALSE(button->pushed);
    EXPECT_FALSE(button->toggled);
}

TEST_F(ButtonTest, APlainButtonWhoseReleaseFallsOutsideGetsNoAction1) {
    Button* button = add<Button>(Box2(10, 10, 60, 30));
    press(20, 20);
    EXPECT_EQ(release(100, 20), 0);
    EXPECT_EQ(takeActions(), Actions({0}));
    EXPECT_FALSE(button->pushed);
    // The next release on it, of a press elsewhere, does nothing.
    press(100, 20);
    release(20, 20);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ButtonTest, AReleaseOverASiblingIsOneOutside) {
    Flow* flow = add<Flow>(Box2(0, 0, 100, 100)); // whose children keep their order
    Button* upper = new Button;
    Button* lower = new Button;
    flow->addControl(upper);
    flow->addControl(lower);
    flow->setSize(upper, 50);
    flow->setSize(lower, 50);
    flow->setArea(Box2(0, 0, 100, 100));
    press(20, 20);
    EXPECT_TRUE(upper->pushed);
    release(20, 70);
    EXPECT_EQ(takeActions(), Actions({0}));
    move(20, 20);
    EXPECT_FALSE(upper->pushed);
    EXPECT_FALSE(lower->pushed);
    mouse("mouseup", 20, 20);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ButtonTest, APressOnAButtonWithInactiveSetDoesNothing) {
    Button* button = add<Button>(Box2(10, 10, 60, 30));
    button->setInactive(true);
    press(20, 20);
    EXPECT_FALSE(button->pushed);
    release(20, 20);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ButtonTest, OnlyTheLeftButtonOfTheMousePushes) {
    Button* button = add<Button>(Box2(10, 10, 60, 30));
    for (const int other : {1, 2}) {
        press(20, 20, other);
        EXPECT_FALSE(button->pushed);
        release(20, 20, other);
    }
    press(20, 20);
    release(20, 20, 1);
    EXPECT_TRUE(button->pushed);
    EXPECT_EQ(takeActions(), Actions({0}));
}

TEST_F(ButtonTest, AToggleButtonSends0GoingInAnd1ComingOut) {
    Button* button = load<Button>(Box2(10, 10, 60, 30), "toggled=\"true\"/>");
    EXPECT_TRUE(button->toggleMode);
    press(20, 20);
    EXPECT_TRUE(button->pushed);
    EXPECT_EQ(takeActions(), Actions());
    release(20, 20);
    EXPECT_TRUE(button->toggled);
    EXPECT_FALSE(button->pushed);
    EXPECT_EQ(takeActions(), Actions({0}));
    click(20, 20);
    EXPECT_FALSE(button->toggled);
    EXPECT_EQ(takeActions(), Actions({1}));
    press(20, 20);
    release(90, 20);
    EXPECT_FALSE(button->toggled);
    EXPECT_EQ(takeActions(), Actions());
}

TEST_F(ButtonTest, ReadsItsCaption) {
    Button* button = load<Button>(Box2(0, 0, 10, 10), "caption=\"Go\"/>");
    EXPECT_EQ(button->getCaption(), "Go");
    EXPECT_FALSE(button->toggleMode);
    reload(button, "toggled=\"1\"/>");
    EXPECT_EQ(button->getCaption(), "Go");
    EXPECT_FALSE(button->toggleMode);
}

TEST_F(ButtonTest, MayBeDeletedByItsOwnActions) {
    struct Deleter : Callback {
        Workspace* root = nullptr;
        Action when = ACTION_PRESS;
        void controlAction(Control*, Action action) override {
            if (action == when)
                root->deleteControls();
        }
    } deleter;
    deleter.root = &mRoot;
    for (const Action when : {ACTION_PRESS, ACTION_RELEASE}) {
        deleter.when = when;
        add<Button>(Box2(10, 10, 60, 30))->setCallback(&deleter);
        click(20, 20);
        EXPECT_EQ(mRoot.getControlSize(), 0u);
    }
}

TEST_F(ButtonTest, MayBeDeletedByTheActionOfAControlInIt) {
    struct Deleter : Callback {
        Workspace* root = nullptr;
        void controlAction(Control*, Action) override { root->deleteControls(); }
    } deleter;
    deleter.root = &mRoot;
    Button* outer = add<Button>(Box2(10, 10, 60, 30));
    add<Button>(Box2(0, 0, 50, 20), outer)->setCallback(&deleter);
    press(20, 20);
    EXPECT_EQ(mRoot.getControlSize(), 0u);
}

TEST_F(ButtonTest, AHiddenOneGetsNoEvents) {
    Button* button = add<Button>(Box2(10, 10, 60, 30));
    move(20, 20);
    button->setVisible(false);
    press(20, 20);
    EXPECT_FALSE(button->pushed);
    panorama::Event event;
    event.type = "mousedown";
    event.mousePos = mMouse;
    button->mHover = true;
    EXPECT_EQ(button->handleEvent(event), 0);
    EXPECT_FALSE(button->pushed);
    EXPECT_EQ(takeActions(), Actions());
}
