// Frames, pages, windows and stacks: defaults, boxes and the mouse.
#include "pan_frame.h"
#include "pan_layoutstack.h"
#include "pan_tabframe.h"
#include "pan_tabview.h"
#include "pan_window.h"

#include "tree.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Vector4f;

namespace {

class ContainersTest : public TreeTest {
protected:
    // A new control of this area in `parent`, or in the workspace.
    template <class T>
    T& add(Box2 area, Control* parent = nullptr) {
        T* control = new T;
        control->mArea.area = area;
        (parent ? parent : &root)->addControl(control, -1);
        return *control;
    }
};

typedef ContainersTest FrameTest;
typedef ContainersTest TabViewTest;
typedef ContainersTest WindowTest;
typedef ContainersTest LayoutStackTest;

void expectTabColors(Control& control) {
    EXPECT_EQ(control.mText.color.first, Vector4f(0.5f, 0.5f, 0.5f, 1));
    EXPECT_EQ(control.mText.highlight.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(control.mCaption.color.first, Vector4f(0, 0, 0, 0.9f));
    EXPECT_EQ(control.mCaption.color.second, Vector4f(0.2f, 0.2f, 0.2f, 0.9f));
    EXPECT_EQ(control.mCaption.highlight.first, Vector4f(0.4f, 0.4f, 0.4f, 1));
    EXPECT_EQ(control.mCaption.highlight.second, Vector4f(0.5f, 0.5f, 0.5f, 1));
}

void expectTabBack(Control& control) {
    EXPECT_EQ(control.mBack.color.first, Vector4f(0.323f, 0.323f, 0.54f, 0.91f));
    EXPECT_EQ(control.mBack.color.second, Vector4f(0.323f * 0.1f, 0.323f * 0.1f, 0.54f * 0.1f, 0.91f));
}

void expectBorder(Control& control) {
    EXPECT_EQ(control.mBack.border.first, Vector4f(0.1f, 0.1f, 0.1f, 1));
    EXPECT_EQ(control.mBack.border.second, Vector4f(0, 0, 0, 1));
}

TEST_F(FrameTest, ItsColoursAndItsClone) {
    Frame frame;
    EXPECT_EQ(frame.getType(), "frame");
    EXPECT_EQ(frame.getName(), "control");
    EXPECT_EQ(frame.mBack.color.first, Vector4f(0, 0, 0, 0.6f));
    EXPECT_EQ(frame.mBack.color.second, Vector4f(0, 0, 0, 0.6f));
    expectBorder(frame);
    frame.setCaption("other");
    std::unique_ptr<Control> clone(frame.clone());
    EXPECT_NE(dynamic_cast<Frame*>(clone.get()), nullptr);
    EXPECT_EQ(clone->getCaption(), "control"); // a new one, not a copy
}

TEST_F(FrameTest, APageStartsHiddenAndFillsItsView) {
    TabFrame page;
    EXPECT_EQ(page.getType(), "tabframe");
    EXPECT_EQ(page.getCaption(), "tabframe");
    EXPECT_EQ(page.mBack.color.first, Vector4f(0, 0, 0, 0));
    EXPECT_EQ(page.mBack.color.second, Vector4f(0, 0, 0, 0));
    expectTabColors(page);

    TabView& view = add<TabView>(Box2(10, 20, 210, 120));
    TabFrame& loaded = add<TabFrame>(Box2(0, 0, 5, 5), &view);
    EXPECT_TRUE(loaded.getVisible());
    loadText(loaded, "<tabframe id='p' caption='Page one'><area width='7' height='8'/></tabframe>");
    EXPECT_FALSE(loaded.getVisible());
    EXPECT_TRUE(loaded.getMaximized()); // whatever its area says
    EXPECT_EQ(loaded.mArea.area, Box2(0, 0, 200, 82));
    EXPECT_EQ(loaded.getCaption(), "Page one");
    loadText(loaded, "<tabframe/>");
    EXPECT_EQ(loaded.getCaption(), "Page one"); // an absent caption keeps it
    std::unique_ptr<Control> clone(loaded.clone());
    EXPECT_NE(dynamic_cast<TabFrame*>(clone.get()), nullptr);
    EXPECT_EQ(clone->getType(), "tabframe");
}

TEST_F(TabViewTest, ItsDefaults) {
    TabView view;
    EXPECT_EQ(view.getType(), "tabview");
    EXPECT_FALSE(view.mRaiseOnFocus);
    EXPECT_EQ(view.mTabPadding, 10);
    EXPECT_EQ(view.mHoverTab, -1);
    EXPECT_EQ(view.mTabArea.area, Box2());
    expectTabColors(view);
    expectTabBack(view);
    std::unique_ptr<Control> clone(view.clone());
    EXPECT_NE(dynamic_cast<TabView*>(clone.get()), nullptr);
}

TEST_F(TabViewTest, TheStripIsEighteenHighAndThePagesLieBelow) {
    Plain& parent = add<Plain>(Box2(100, 50, 400, 350));
    TabView& view = add<TabView>(Box2(10, 20, 210, 120), &parent);
    EXPECT_EQ(view.mTabArea.area, Box2(10, 20, 210, 38));
    EXPECT_EQ(view.mTabArea.world, Box2(110, 70, 310, 88));
    EXPECT_EQ(view.mTabArea.clip, Box2(110, 70, 310, 88));
    EXPECT_EQ(view.mChildArea.area, Box2(0, 18, 200, 100));
    EXPECT_EQ(view.mChildArea.world, Box2(110, 88, 310, 170));
    parent.setArea(Box2(100, 50, 200, 75)); // cuts the strip
    EXPECT_EQ(view.mTabArea.clip, Box2(110, 70, 200, 75));
    EXPECT_EQ(view.mChildArea.clip, Box2());
}

// With no font a tab is as wide as its padding: 20.
TEST_F(TabViewTest, APressOnATabShowsOnlyItsPage) {
    TabView& view = add<TabView>(Box2(100, 100, 300, 200));
    for (int i = 0; i < 3; ++i)
        add<TabFrame>(Box2(), &view).setVisible(i == 0);
    const std::vector<Control*> order = view.mControls;

    EXPECT_EQ(sendMove(root, Vector2f(), Vector2f(145, 110)), 1);
    EXPECT_EQ(view.mHoverTab, 2);
    EXPECT_TRUE(order[0]->getVisible());
    send(root, "mousedown", Vector2f(145, 110), 1); // any button will do
    EXPECT_FALSE(order[0]->getVisible());
    EXPECT_FALSE(order[1]->getVisible());
    EXPECT_TRUE(order[2]->getVisible());
    EXPECT_EQ(view.mControls, order);

    sendMove(root, Vector2f(), Vector2f(120, 110)); // the edge belongs to the next one
    EXPECT_EQ(view.mHoverTab, 1);
    sendMove(root, Vector2f(), Vector2f(119, 100));
    EXPECT_EQ(view.mHoverTab, 0);
    sendMove(root, Vector2f(), Vector2f(160, 110)); // after the last
    EXPECT_EQ(view.mHoverTab, -1);
    sendMove(root, Vector2f(), Vector2f(119, 118)); // below the strip
    EXPECT_EQ(view.mHoverTab, -1);
    send(root, "mousedown", Vector2f(119, 118));
    EXPECT_TRUE(order[2]->getVisible());
}

TEST_F(TabViewTest, ATabIsNoLongerHoveredWhenTheMouseHasLeftTheView) {
    TabView& view = add<TabView>(Box2(100, 100, 300, 200));
    add<TabFrame>(Box2(), &view);
    sendMove(root, Vector2f(), Vector2f(110, 110));
    EXPECT_EQ(view.mHoverTab, 0);
    sendMove(root, Vector2f(110, 110), Vector2f(10, 10));
    EXPECT_EQ(view.mHoverTab, -1);
}

TEST_F(TabViewTest, FocusingAPageKeepsTheOrderOfTheTabs) {
    TabView& view = add<TabView>(Box2(100, 100, 300, 200));
    TabFrame& first = add<TabFrame>(Box2(), &view);
    TabFrame& second = add<TabFrame>(Box2(), &view);
    view.setFocus(&first);
    EXPECT_EQ(view.mControls, (std::vector<Control*>{&first, &second}));
}

TEST_F(TabViewTest, LoadShowsTheFirstPage) {
    TabView& view = add<TabView>(Box2(0, 0, 300, 200));
    TabFrame& first = add<TabFrame>(Box2(), &view);
    TabFrame& second = add<TabFrame>(Box2(), &view);
    first.setVisible(false);
    second.setVisible(false);
    loadText(view, "<tabview/>");
    EXPECT_TRUE(first.getVisible());
    EXPECT_FALSE(second.getVisible());
}

TEST_F(TabViewTest, WithoutPagesNothingIsShownAndAPressDoesNothing) {
    TabView& view = add<TabView>(Box2(100, 100, 300, 200));
    loadText(view, "<tabview><area x='100' y='100' w='200' h='100'/></tabview>");
    sendMove(root, Vector2f(), Vector2f(110, 110));
    EXPECT_EQ(view.mHoverTab, -1);
    send(root, "mousedown", Vector2f(110, 110));
    view.mHoverTab = 5; // of pages that have gone
    Event press = makeEvent("mousedown", Vector2f(110, 110));
    view.handleEvent(press);
    EXPECT_EQ(view.getChildCount(), 0);
}

TEST_F(WindowTest, ItsDefaults) {
    Window window;
    EXPECT_EQ(window.getType(), "window");
    EXPECT_FALSE(window.mDragging);
    EXPECT_EQ(window.mTitleArea.area, Box2());
    EXPECT_TRUE(window.mRaiseOnFocus);
    expectTabColors(window);
    expectTabBack(window);
    loadText(window, "<window caption='Colours'/>");
    EXPECT_EQ(window.getCaption(), "Colours");
    std::unique_ptr<Control> clone(window.clone());
    EXPECT_NE(dynamic_cast<Window*>(clone.get()), nullptr);
}

TEST_F(WindowTest, TheTitleIsEighteenHighAndTheChildrenLieBelow) {
    Plain& parent = add<Plain>(Box2(0, 0, 800, 600));
    Window& window = add<Window>(Box2(30, 40, 230, 190), &parent);
    EXPECT_EQ(window.mTitleArea.area, Box2(30, 40, 230, 58));
    EXPECT_EQ(window.mTitleArea.world, Box2(30, 40, 230, 58));
    EXPECT_EQ(window.mTitleArea.clip, Box2(30, 40, 230, 58));
    EXPECT_EQ(window.mChildArea.area, Box2(0, 18, 200, 150));
    EXPECT_EQ(window.mChildArea.world, Box2(30, 58, 230, 190));
    window.setPosition(Vector2f(-50, -8)); // the bar as well
    EXPECT_EQ(window.mTitleArea.world, Box2(-50, -8, 150, 10));
    EXPECT_EQ(window.mTitleArea.clip, Box2(0, 0, 150, 10));
}

TEST_F(WindowTest, IsDraggedOnlyByItsTitle) {
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    sendMove(root, Vector2f(), Vector2f(100, 100)); // below the bar
    send(root, "mousedown", Vector2f(100, 100));
    EXPECT_FALSE(window.mDragging);
    sendMove(root, Vector2f(), Vector2f(100, 50));
    send(root, "mousedown", Vector2f(100, 50), 1); // another button
    EXPECT_FALSE(window.mDragging);
    send(root, "mousedown", Vector2f(100, 50));
    EXPECT_TRUE(window.mDragging);
    EXPECT_EQ(window.mDragStart, Vector2f(100, 50));
    EXPECT_EQ(window.mDragArea, Box2(30, 40, 230, 190));

    sendMove(root, Vector2f(100, 50), Vector2f(107, 61));
    EXPECT_EQ(window.mArea.area, Box2(37, 51, 237, 201));
    EXPECT_EQ(window.mTitleArea.area, Box2(37, 51, 237, 69));
    send(root, "mouseup", Vector2f(107, 61), 1); // another button
    EXPECT_TRUE(window.mDragging);
    send(root, "mouseup", Vector2f(107, 61));
    EXPECT_FALSE(window.mDragging);
    sendMove(root, Vector2f(107, 61), Vector2f(120, 61));
    EXPECT_EQ(window.mArea.area, Box2(37, 51, 237, 201));
}

TEST_F(WindowTest, WithoutTheMouseOverItAPressDragsNothing) {
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    send(window, "mousedown", Vector2f(100, 50));
    EXPECT_FALSE(window.mDragging); // the mouse has not moved there
}

TEST_F(WindowTest, TheDragGoesOnOutsideTheWindow) {
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    sendMove(root, Vector2f(), Vector2f(100, 50));
    send(root, "mousedown", Vector2f(100, 50));
    Event far = makeEvent("mousemove", Vector2f(700, 550));
    send(window, "reset");
    EXPECT_TRUE(window.acceptEvents(far));
    sendMove(root, Vector2f(100, 50), Vector2f(700, 550));
    EXPECT_EQ(window.mArea.area, Box2(630, 540, 830, 690));
    send(root, "mouseup", Vector2f(700, 550));
    send(window, "reset");
    far.mousePos = Vector2f(5, 5);
    EXPECT_FALSE(window.acceptEvents(far));
}

TEST_F(WindowTest, ADragGoesOnOverAnotherControlAndEndsWithAReleaseThere) {
    root.mRaiseOnFocus = false; // the other one stays on top
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    Plain& other = add<Plain>(Box2(400, 0, 800, 600));
    sendMove(root, Vector2f(), Vector2f(100, 50));
    send(root, "mousedown", Vector2f(100, 50));
    sendMove(root, Vector2f(100, 50), Vector2f(500, 60));
    EXPECT_EQ(window.mArea.area, Box2(430, 50, 630, 200));
    send(root, "mouseup", Vector2f(500, 60));
    EXPECT_EQ(other.heard.back(), "reset"); // its only event
    sendMove(root, Vector2f(500, 60), Vector2f(600, 60));
    EXPECT_FALSE(window.mDragging);
    EXPECT_EQ(window.mArea.area, Box2(430, 50, 630, 200));
}

TEST_F(WindowTest, InsideAWorkspaceItCanBeDraggedOffTheScreen) {
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    sendMove(root, Vector2f(), Vector2f(100, 50));
    send(root, "mousedown", Vector2f(100, 50));
    sendMove(root, Vector2f(100, 50), Vector2f(-200, -300));
    EXPECT_EQ(window.mArea.area, Box2(-270, -310, -70, -160));
}

TEST_F(WindowTest, InsideAnotherControlItStopsAtTheTopLeftAndNotAtTheBottomRight) {
    Plain& parent = add<Plain>(Box2(100, 100, 500, 400));
    Window& window = add<Window>(Box2(30, 40, 230, 190), &parent);
    sendMove(root, Vector2f(), Vector2f(200, 150));
    send(root, "mousedown", Vector2f(200, 150));
    ASSERT_TRUE(window.mDragging);
    sendMove(root, Vector2f(200, 150), Vector2f(150, 20));
    EXPECT_EQ(window.mArea.area, Box2(0, 0, 200, 150));
    sendMove(root, Vector2f(150, 20), Vector2f(185, 20)); // each direction by itself
    EXPECT_EQ(window.mArea.area, Box2(15, 0, 215, 150));
    sendMove(root, Vector2f(185, 20), Vector2f(900, 700));
    EXPECT_EQ(window.mArea.area, Box2(730, 590, 930, 740));
}

TEST_F(WindowTest, ItStopsOnWholePixelsOfItsOwn) {
    Plain& parent = add<Plain>(Box2(100, 100, 500, 400));
    Window& window = add<Window>(Box2(30, 40, 230, 190), &parent);
    sendMove(root, Vector2f(), Vector2f(200, 150));
    send(root, "mousedown", Vector2f(200, 150));
    sendMove(root, Vector2f(200, 150), Vector2f(150.25f, 20.5f)); // to -19.75, -89.5
    EXPECT_EQ(window.mArea.area, Box2(0.25f, 0.5f, 200.25f, 150.5f));
}

TEST_F(WindowTest, AScrolledParentMovesTheStop) {
    Plain& parent = add<Plain>(Box2(100, 100, 500, 400));
    Window& window = add<Window>(Box2(30, 40, 230, 190), &parent);
    window.setOffset(Vector2f(10, 20));
    window.setArea(window.mArea.area);
    ASSERT_EQ(window.mArea.world, Box2(120, 120, 320, 270));
    sendMove(root, Vector2f(), Vector2f(150, 125));
    send(root, "mousedown", Vector2f(150, 125));
    ASSERT_TRUE(window.mDragging);
    sendMove(root, Vector2f(150, 125), Vector2f(0, 0));
    EXPECT_EQ(window.mArea.world, Box2(100, 100, 300, 250));
}

TEST_F(WindowTest, ADoubleClickOnTheTitleTogglesMaximizedAndEndsTheDrag) {
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    sendMove(root, Vector2f(), Vector2f(100, 50));
    Event press = makeEvent("mousedown", Vector2f(100, 50));
    press.doubleClick = true;
    root.handleEvent(press);
    EXPECT_TRUE(window.getMaximized());
    EXPECT_FALSE(window.mDragging);
    EXPECT_EQ(window.mArea.area, Box2(0, 0, 800, 600));
    EXPECT_EQ(window.mTitleArea.area, Box2(0, 0, 800, 18));
    root.setArea(Box2(0, 0, 640, 480)); // fills it still
    EXPECT_EQ(window.mArea.area, Box2(0, 0, 640, 480));

    press.mousePos = Vector2f(100, 10);
    press.type = "mousedown";
    sendMove(root, Vector2f(), Vector2f(100, 10));
    root.handleEvent(press);
    EXPECT_FALSE(window.getMaximized());
    EXPECT_FALSE(window.mDragging);
    EXPECT_EQ(window.mArea.area, Box2(30, 40, 230, 190));
}

TEST_F(WindowTest, MaximizedItIsNotDragged) {
    Window& window = add<Window>(Box2(30, 40, 230, 190));
    window.setMaximized(true);
    sendMove(root, Vector2f(), Vector2f(100, 10));
    send(root, "mousedown", Vector2f(100, 10));
    EXPECT_TRUE(window.mDragging);
    sendMove(root, Vector2f(100, 10), Vector2f(200, 200));
    EXPECT_EQ(window.mArea.area, Box2(0, 0, 800, 600));
}

TEST_F(WindowTest, InAParentOfNoSizeADragEnds) {
    Plain& parent = add<Plain>(Box2(100, 100, 100, 100));
    Window& window = add<Window>(Box2(0, 0, 50, 50), &parent);
    window.mDragging = true;
    window.mDragStart = Vector2f(0, 0);
    window.mDragArea = window.mArea.area;
    sendMove(window, Vector2f(), Vector2f(-3000, -70.5f));
    EXPECT_EQ(window.mArea.area, Box2(0, 0.5f, 50, 50.5f));
}

TEST_F(WindowTest, ADragByHugeOrUnknownDistancesEnds) {
    Plain& parent = add<Plain>(Box2(100, 100, 300, 300));
    Window& window = add<Window>(Box2(0, 0, 50, 50), &parent);
    window.mDragging = true;
    window.mDragStart = Vector2f(0, 0);
    window.mDragArea = window.mArea.area;
    for (const float far : {-1e9f, -3e38f, -2e5f}) {
        sendMove(window, Vector2f(), Vector2f(far, far));
        EXPECT_EQ(window.mArea.area.x1, 0) << far; // where single steps would end
        EXPECT_EQ(window.mArea.area.y1, 0) << far;
    }
    const Box2 before = window.mArea.area;
    for (const float none : {ENDLESS, -ENDLESS, NO_NUMBER}) {
        sendMove(window, Vector2f(), Vector2f(none, none));
        EXPECT_EQ(window.mArea.area, before) << none;
    }
}

TEST_F(WindowTest, WithoutAParentItIsDraggedFreely) {
    Window window;
    window.setArea(Box2(0, 0, 100, 100));
    sendMove(window, Vector2f(), Vector2f(50, 5));
    send(window, "mousedown", Vector2f(50, 5));
    ASSERT_TRUE(window.mDragging);
    sendMove(window, Vector2f(50, 5), Vector2f(20, -20));
    EXPECT_EQ(window.mArea.area, Box2(-30, -25, 70, 75));
}

// Deletes the window when it is pressed.
class Closer : public Plain {
public:
    int handleEvent(Event& event) override {
        if (event.type != "mousedown")
            return Plain::handleEvent(event);
        Control* const window = mParent;
        Control* const above = window->getParent();
        for (unsigned i = 0; i < unsigned(above->getChildCount()); ++i)
            if (above->getChild(i) == window)
                above->deleteControl(i);
        return 1;
    }
};

TEST_F(WindowTest, ItsOwnButtonMayDeleteIt) {
    Plain& parent = add<Plain>(Box2(0, 0, 800, 600));
    Window& window = add<Window>(Box2(30, 40, 230, 190), &parent);
    add<Closer>(Box2(0, 0, 50, 50), &window);
    sendMove(root, Vector2f(), Vector2f(40, 70));
    EXPECT_EQ(send(root, "mousedown", Vector2f(40, 70)), 1);
    EXPECT_EQ(parent.getChildCount(), 0);
}

TEST_F(LayoutStackTest, ItsDefaults) {
    LayoutStack stack;
    EXPECT_EQ(stack.getType(), "layoutstack");
    EXPECT_EQ(stack.mDirection, 1);
    EXPECT_EQ(stack.mBack.color.first, Vector4f(1, 1, 0, 0.6f));
    EXPECT_EQ(stack.mBack.color.second, Vector4f(0.8f, 0.8f, 0, 0.6f * 0.8f));
    std::unique_ptr<Control> clone(stack.clone());
    EXPECT_NE(dynamic_cast<LayoutStack*>(clone.get()), nullptr);
}

TEST_F(LayoutStackTest, ChildrenFollowEachOtherAndKeepTheirSizeAndOffsetAcross) {
    LayoutStack& stack = add<LayoutStack>(Box2(100, 100, 400, 400));
    Plain& first = add<Plain>(Box2(5, 50, 45, 60), &stack);
    Plain& second = add<Plain>(Box2(7, 0, 17, 20), &stack);
    Plain& third = add<Plain>(Box2(0, 0, 30, 30), &stack);
    EXPECT_EQ(first.mArea.area, Box2(5, 0, 45, 10));
    EXPECT_EQ(second.mArea.area, Box2(7, 10, 17, 30));
    EXPECT_EQ(third.mArea.area, Box2(0, 30, 30, 60));
    EXPECT_EQ(third.mArea.world, Box2(100, 130, 130, 160));

    stack.setHorisontal();
    EXPECT_EQ(stack.mDirection, 0);
    EXPECT_EQ(first.mArea.area, Box2(0, 0, 40, 10));
    EXPECT_EQ(second.mArea.area, Box2(40, 10, 50, 30));
    EXPECT_EQ(third.mArea.area, Box2(50, 30, 80, 60));

    stack.setVertical();
    EXPECT_EQ(stack.mDirection, 1);
    EXPECT_EQ(second.mArea.area, Box2(40, 10, 50, 30));
}

TEST_F(LayoutStackTest, RemovingOrInsertingAChildMovesTheOthers) {
    LayoutStack& stack = add<LayoutStack>(Box2(0, 0, 400, 400));
    stack.mRaiseOnFocus = false;
    add<Plain>(Box2(0, 0, 10, 10), &stack);
    Plain& last = add<Plain>(Box2(0, 0, 10, 30), &stack);
    stack.deleteControl(0);
    EXPECT_EQ(last.mArea.area, Box2(0, 0, 10, 30));
    stack.deleteControl(9); // nothing there
    Plain* between = new Plain(Box2(0, 0, 10, 25));
    stack.addControl(between, 0);
    EXPECT_EQ(between->mArea.area, Box2(0, 0, 10, 25));
    EXPECT_EQ(last.mArea.area, Box2(0, 25, 10, 55));
}

TEST_F(LayoutStackTest, AChildThatHasGrownMovesTheOthersWithRecalculate) {
    LayoutStack& stack = add<LayoutStack>(Box2(0, 0, 400, 400));
    Plain& first = add<Plain>(Box2(0, 0, 10, 10), &stack);
    Plain& second = add<Plain>(Box2(0, 0, 10, 30), &stack);
    first.setArea(Box2(0, 0, 10, 100));
    stack.recalculate();
    EXPECT_EQ(second.mArea.area, Box2(0, 100, 10, 130));
}

TEST_F(LayoutStackTest, OnlyTheWordOfTheFilesIsHorizontal) {
    LayoutStack& stack = add<LayoutStack>(Box2(0, 0, 400, 400));
    loadText(stack, "<layoutstack direction='horisontal'/>");
    EXPECT_EQ(stack.mDirection, 0);
    loadText(stack, "<layoutstack direction='horizontal'/>");
    EXPECT_EQ(stack.mDirection, 1);
    loadText(stack, "<layoutstack direction='horisontal'/>");
    loadText(stack, "<layoutstack/>");
    EXPECT_EQ(stack.mDirection, 1);
}

TEST_F(LayoutStackTest, TenThousandChildrenAreStacked) {
    LayoutStack& stack = add<LayoutStack>(Box2(0, 0, 400, 400));
    for (int i = 0; i < 10000; ++i)
        add<Plain>(Box2(0, 0, 10, 10), &stack);
    EXPECT_EQ(stack.getChild(9999)->mArea.area, Box2(0, 99990, 10, 100000));
}

TEST_F(ContainersTest, ZeroNegativeAndEnormousAreasAreAccepted) {
    for (const Box2& area :
         {Box2(), Box2(10, 10, -10, -10), Box2(-1e30f, -1e30f, 1e30f, 1e30f),
          Box2(-ENDLESS, -ENDLESS, ENDLESS, ENDLESS), Box2(NO_NUMBER, NO_NUMBER, NO_NUMBER, NO_NUMBER)}) {
        Workspace top;
        top.setArea(area);
        for (Control* control :
             std::vector<Control*>{new Frame, new TabFrame, new TabView, new Window, new LayoutStack}) {
            control->mArea.area = area;
            Control* const inner = control->clone();
            control->addControl(inner, -1);
            top.addControl(control, -1);
            control->setMaximized(true);
            control->setMaximized(false);
        }
        for (const char* type : {"mousemove", "mousedown", "mouseup", "mousewheel", "keydown", "reset"})
            for (const float at : {0.0f, 5.0f, ENDLESS, NO_NUMBER})
                send(top, type, Vector2f(at, at));
        EXPECT_EQ(top.getChildCount(), 5);
    }
}

} // namespace
