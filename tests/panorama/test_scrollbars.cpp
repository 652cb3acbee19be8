// Scroll bars: positions of tracks, thumbs and children, and the mouse.
#include "pan_scrollbars.h"
#include "pan_window.h"

#include "tree.h"

#include <memory>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Vector4f;

namespace {

// Bars of their own size around a child of 400 by 600. The view is 188 by 88, its overflow 212 by 512; the
// thumbs travel 158 and 58 pixels.
class ScrollbarsTest : public TreeTest {
protected:
    Heard heard;
    Scrollbars* bars = new Scrollbars;
    Plain* child = new Plain(Box2(0, 0, 400, 600));

    ScrollbarsTest() {
        root.setCallback(&heard);
        Plain* holder = new Plain(Box2(100, 200, 300, 300));
        root.addControl(holder, -1);
        holder->addControl(bars, -1);
        bars->addControl(child, -1);
        bars->setArea(bars->mArea.area);
    }

    int wheel(float delta, int control = 0) {
        Event event = makeEvent("mousewheel", Vector2f(150, 250));
        event.wheelDelta = delta;
        event.control = control;
        return root.handleEvent(event);
    }
};

TEST_F(ScrollbarsTest, ItsDefaults) {
    Scrollbars plain;
    EXPECT_EQ(plain.getType(), "scrollbar");
    EXPECT_TRUE(plain.getMaximized());
    EXPECT_TRUE(plain.mVertical);
    EXPECT_TRUE(plain.mHorisontal);
    EXPECT_EQ(plain.mBarSize, 12.0f);
    EXPECT_EQ(plain.mThumbSize, 30.0f);
    EXPECT_EQ(plain.mPosX, 0);
    EXPECT_EQ(plain.mPosY, 0);
    EXPECT_EQ(plain.mBack.border.first, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(plain.mBack.border.second, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(plain.mBack.color.first, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(plain.mBack.color.second, Vector4f(0.2f, 0.2f, 0.2f, 1));
    EXPECT_EQ(plain.mBack.pushed.second, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(plain.mCaption.color.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(plain.mCaption.color.second, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(plain.mCaption.pushed.first, Vector4f(1, 1, 1, 0.71f));
    EXPECT_EQ(plain.mCaption.pushed.second, Vector4f(1, 1, 1, 0.71f));
    std::unique_ptr<Control> clone(plain.clone());
    EXPECT_NE(dynamic_cast<Scrollbars*>(clone.get()), nullptr);
}

TEST_F(ScrollbarsTest, ItFillsItsParent) {
    EXPECT_EQ(bars->mArea.area, Box2(0, 0, 200, 100));
    EXPECT_EQ(bars->mArea.world, Box2(100, 200, 300, 300));
}

TEST_F(ScrollbarsTest, TracksCornerThumbsAndView) {
    EXPECT_EQ(bars->mTrackVertical, Box2(288, 200, 300, 288));
    EXPECT_EQ(bars->mTrackHorisontal, Box2(100, 288, 288, 300));
    EXPECT_EQ(bars->mCorner, Box2(288, 288, 300, 300));
    EXPECT_EQ(bars->mThumbVertical, Box2(288, 200, 300, 230));
    EXPECT_EQ(bars->mThumbHorisontal, Box2(100, 288, 130, 300));
    EXPECT_EQ(bars->mChildArea.area, Box2(0, 0, 188, 88));
    EXPECT_EQ(bars->mChildArea.world, Box2(100, 200, 288, 288));
}

TEST_F(ScrollbarsTest, WithDirectionVerticalThereIsNoHorizontalBar) {
    loadText(*bars, "<scrollbar direction='vertical'/>");
    EXPECT_TRUE(bars->mVertical);
    EXPECT_FALSE(bars->mHorisontal);
    EXPECT_EQ(bars->mChildArea.area, Box2(0, 0, 188, 100));
    EXPECT_EQ(bars->mTrackVertical, Box2(288, 200, 300, 300));
    EXPECT_EQ(bars->mCorner, Box2());
    sendMove(root, Vector2f(), Vector2f(110, 295)); // where the other thumb was
    send(root, "mousedown", Vector2f(110, 295));
    EXPECT_FALSE(bars->mDragHorisontal);
    send(root, "mousedown", Vector2f(295, 295)); // and the corner
    EXPECT_FALSE(bars->mDragResize);
    wheel(-1, display::KEYMOD_LCTRL);
    EXPECT_EQ(bars->mPosX, 0);
}

TEST_F(ScrollbarsTest, WithDirectionHorisontalThereIsNoVerticalBar) {
    loadText(*bars, "<scrollbar direction='horisontal'/>");
    EXPECT_FALSE(bars->mVertical);
    EXPECT_TRUE(bars->mHorisontal);
    EXPECT_EQ(bars->mChildArea.area, Box2(0, 0, 200, 88));
    EXPECT_EQ(bars->mTrackHorisontal, Box2(100, 288, 300, 300));
    sendMove(root, Vector2f(), Vector2f(295, 210));
    send(root, "mousedown", Vector2f(295, 210));
    EXPECT_FALSE(bars->mDragVertical);
    wheel(-1);
    EXPECT_EQ(bars->mPosY, 0);
    EXPECT_EQ(child->mOffset, Vector2f(0, 0));
}

TEST_F(ScrollbarsTest, AnyOtherDirectionKeepsBothBars) {
    loadText(*bars, "<scrollbar direction='horizontal'/>");
    EXPECT_TRUE(bars->mVertical);
    EXPECT_TRUE(bars->mHorisontal);
}

TEST_F(ScrollbarsTest, TheChildrenGoAsFarAsTheyOverflow) {
    bars->mPosX = 79; // half way
    bars->mPosY = 58; // all the way
    bars->buildScrollbars();
    EXPECT_EQ(bars->mThumbHorisontal, Box2(179, 288, 209, 300));
    EXPECT_EQ(bars->mThumbVertical, Box2(288, 258, 300, 288));
    EXPECT_EQ(child->mOffset, Vector2f(106, 512));
    EXPECT_EQ(child->mArea.world, Box2(-6, -312, 394, 288));
    EXPECT_EQ(child->mArea.clip, Box2(100, 200, 288, 288));
}

TEST_F(ScrollbarsTest, ThumbsStayOnTheirTracks) {
    bars->mPosX = -5;
    bars->mPosY = 1000;
    bars->buildScrollbars();
    EXPECT_EQ(bars->mPosX, 0);
    EXPECT_EQ(bars->mPosY, 58);
    bars->mPosX = NO_NUMBER;
    bars->mPosY = ENDLESS;
    bars->buildScrollbars();
    EXPECT_EQ(bars->mPosX, 0);
    EXPECT_EQ(bars->mPosY, 58);
    EXPECT_EQ(child->mOffset, Vector2f(0, 512));
}

TEST_F(ScrollbarsTest, ASmallerViewTakesItsThumbsBack) {
    bars->mPosX = 158;
    bars->mPosY = 58;
    bars->buildScrollbars();
    bars->setArea(Box2(0, 0, 100, 80));
    EXPECT_EQ(bars->mPosX, 58);
    EXPECT_EQ(bars->mPosY, 38);
    EXPECT_EQ(child->mOffset, Vector2f(400 - 88, 600 - 68));
}

TEST_F(ScrollbarsTest, ATrackNoLongerThanItsThumbScrollsNothing) {
    for (const float size : {0.0f, 12.0f, 30.0f, 42.0f}) { // 42: exactly as long
        bars->setArea(Box2(0, 0, size, size));
        bars->mPosX = bars->mPosY = 10;
        bars->buildScrollbars();
        EXPECT_EQ(bars->mPosX, 0) << size;
        EXPECT_EQ(bars->mPosY, 0) << size;
        EXPECT_EQ(child->mOffset, Vector2f(0, 0)) << size;
        wheel(-1);
        wheel(-1, display::KEYMOD_RCTRL);
        EXPECT_EQ(child->mOffset, Vector2f(0, 0)) << size;
    }
}

TEST_F(ScrollbarsTest, TheWheelScrollsFiftyPixelsOfContent) {
    EXPECT_EQ(wheel(-1), 1);
    EXPECT_FLOAT_EQ(bars->mPosY, 50.0f * 58 / 600);
    EXPECT_EQ(bars->mPosX, 0);
    EXPECT_EQ(heard.actions, (std::vector<int>{7}));
    EXPECT_EQ(heard.sources, (std::vector<Control*>{bars}));
    EXPECT_EQ(wheel(2), 1);
    EXPECT_EQ(bars->mPosY, 0);
    EXPECT_EQ(wheel(-1, display::KEYMOD_LCTRL), 1);
    EXPECT_FLOAT_EQ(bars->mPosX, 50.0f * 158 / 400);
    EXPECT_EQ(wheel(-1, display::KEYMOD_RCTRL | display::KEYMOD_LSHIFT), 1);
    EXPECT_FLOAT_EQ(bars->mPosX, 100.0f * 158 / 400);
    EXPECT_EQ(bars->mPosY, 0);
    EXPECT_EQ(wheel(-1, display::KEYMOD_LSHIFT), 1);
    EXPECT_FLOAT_EQ(bars->mPosY, 50.0f * 58 / 600);
}

TEST_F(ScrollbarsTest, TheWheelWithNothingToScrollStillMovesTheThumb) {
    child->setArea(Box2(0, 0, 50, 40));
    EXPECT_EQ(wheel(-0.25f), 1);
    EXPECT_FLOAT_EQ(bars->mPosY, 0.25f * 50 * 58 / 40);
    EXPECT_EQ(child->mOffset, Vector2f(0, 0));
    EXPECT_EQ(heard.actions, (std::vector<int>{7}));
}

TEST_F(ScrollbarsTest, TheWheelWithoutChildrenDoesNotDivideByZero) {
    bars->deleteControls();
    wheel(-1);
    EXPECT_EQ(bars->mPosY, 58); // the end
    wheel(0);
    EXPECT_EQ(bars->mPosY, 58); // 0 by 0 is no step
    wheel(1);
    EXPECT_EQ(bars->mPosY, 0);
}

TEST_F(ScrollbarsTest, AWheelStepOfNanMovesNothing) {
    wheel(-1);
    const float before = bars->mPosY;
    EXPECT_EQ(wheel(NO_NUMBER), 1);
    EXPECT_EQ(bars->mPosY, before);
    wheel(-ENDLESS);
    EXPECT_EQ(bars->mPosY, 58);
    wheel(ENDLESS);
    EXPECT_EQ(bars->mPosY, 0);
    EXPECT_EQ(child->mOffset, Vector2f(0, 0));
}

// Handles the wheel itself.
class Taker : public Plain {
public:
    using Plain::Plain;
    int handleEvent(Event& event) override {
        return event.type == "mousewheel" ? 1 : Plain::handleEvent(event);
    }
};

TEST_F(ScrollbarsTest, AWheelThatAChildHasTakenDoesNotScroll) {
    bars->addControl(new Taker(Box2(0, 0, 400, 600)), -1);
    sendMove(root, Vector2f(), Vector2f(150, 250));
    EXPECT_EQ(wheel(-1), 1);
    EXPECT_EQ(bars->mPosY, 0);
    EXPECT_TRUE(heard.actions.empty());
}

TEST_F(ScrollbarsTest, AThumbIsDraggedWithTheLeftButton) {
    sendMove(root, Vector2f(), Vector2f(295, 210));
    send(root, "mousedown", Vector2f(295, 210), 1);
    EXPECT_FALSE(bars->mDragVertical);
    send(root, "mousedown", Vector2f(295, 210));
    EXPECT_TRUE(bars->mDragVertical);
    EXPECT_FALSE(bars->mDragHorisontal);
    EXPECT_FALSE(bars->mDragResize);
    EXPECT_TRUE(heard.actions.empty());
    sendMove(root, Vector2f(295, 210), Vector2f(500, 239)); // far from the bar
    EXPECT_EQ(bars->mPosY, 29);
    EXPECT_EQ(bars->mPosX, 0);
    EXPECT_EQ(child->mOffset, Vector2f(0, 256));
    EXPECT_EQ(heard.actions, (std::vector<int>{7}));
    send(root, "mouseup", Vector2f(500, 239), 2); // any button
    EXPECT_FALSE(bars->mDragVertical);
    EXPECT_EQ(heard.actions, (std::vector<int>{7, 7}));
    EXPECT_EQ(heard.sources, (std::vector<Control*>{bars, bars}));
    sendMove(root, Vector2f(500, 239), Vector2f(500, 300));
    EXPECT_EQ(bars->mPosY, 29);
    EXPECT_EQ(heard.actions.size(), 2u);
}

TEST_F(ScrollbarsTest, ADragGoesOnOverAnotherControlAndEndsWithAReleaseThere) {
    root.mRaiseOnFocus = false; // the other one stays on top
    Plain* other = new Plain(Box2(400, 200, 600, 300));
    root.addControl(other, -1);
    sendMove(root, Vector2f(), Vector2f(295, 210));
    send(root, "mousedown", Vector2f(295, 210));
    sendMove(root, Vector2f(295, 210), Vector2f(450, 239));
    EXPECT_TRUE(bars->mDragVertical);
    EXPECT_EQ(bars->mPosY, 29); // once
    send(root, "mouseup", Vector2f(450, 239));
    EXPECT_EQ(std::count(other->heard.begin(), other->heard.end(), "reset"), ptrdiff_t(other->heard.size()));
    sendMove(root, Vector2f(450, 239), Vector2f(450, 250));
    EXPECT_FALSE(bars->mDragVertical);
    EXPECT_EQ(bars->mPosY, 29);
}

TEST_F(ScrollbarsTest, TheOtherThumbGoesSideways) {
    sendMove(root, Vector2f(), Vector2f(110, 295));
    send(root, "mousedown", Vector2f(110, 295));
    EXPECT_TRUE(bars->mDragHorisontal);
    sendMove(root, Vector2f(110, 295), Vector2f(189, 200));
    EXPECT_EQ(bars->mPosX, 79);
    EXPECT_EQ(bars->mPosY, 0);
    EXPECT_EQ(child->mOffset, Vector2f(106, 0));
    Event move = makeEvent("mousemove", Vector2f(189, 200));
    move.mouseDelta = Vector2f(NO_NUMBER, NO_NUMBER);
    bars->handleEvent(move);
    EXPECT_EQ(bars->mPosX, 79);
}

TEST_F(ScrollbarsTest, APressOffTheThumbDragsNothing) {
    sendMove(root, Vector2f(), Vector2f(295, 230)); // one below
    send(root, "mousedown", Vector2f(295, 230));
    EXPECT_FALSE(bars->mDragVertical);
    send(root, "mouseup", Vector2f(295, 230));
    EXPECT_TRUE(heard.actions.empty());
}

TEST_F(ScrollbarsTest, WhatIsHeldGetsTheEventsWhereverTheMouseIs) {
    send(*bars, "reset");
    Event far = makeEvent("mousemove", Vector2f(5, 5));
    EXPECT_FALSE(bars->acceptEvents(far));
    for (bool Scrollbars::*held :
         {&Scrollbars::mDragVertical, &Scrollbars::mDragHorisontal, &Scrollbars::mDragResize}) {
        bars->*held = true;
        EXPECT_TRUE(bars->acceptEvents(far));
        bars->*held = false;
    }
}

// The same in a window of 200 by 118 at (100, 182), whose child area is where the holder's was.
class ResizeTest : public TreeTest {
protected:
    Window* window = new Window;
    Scrollbars* bars = new Scrollbars;

    ResizeTest() {
        window->mArea.area = Box2(100, 182, 300, 300);
        root.addControl(window, -1);
        window->addControl(bars, -1);
    }

    void pressCorner() {
        const Vector2f corner(bars->mCorner.x1 + 5, bars->mCorner.y1 + 5);
        sendMove(root, Vector2f(), corner);
        send(root, "mousedown", corner);
    }

    void drag(float x, float y) { // to the right and down
        Event move = makeEvent("mousemove", Vector2f(1, 1));
        move.mouseDelta = Vector2f(-x, -y);
        bars->handleEvent(move);
    }
};

TEST_F(ResizeTest, TheCornerDragsTheSizeOfTheWindow) {
    pressCorner();
    EXPECT_TRUE(bars->mDragResize);
    drag(10, 20);
    EXPECT_EQ(window->mArea.area, Box2(100, 182, 310, 320));
    EXPECT_EQ(bars->mArea.world.x2, 310);
    send(root, "mouseup", Vector2f(1, 1));
    EXPECT_FALSE(bars->mDragResize);
    drag(10, 20);
    EXPECT_EQ(window->mArea.area, Box2(100, 182, 310, 320));
}

TEST_F(ResizeTest, TheWindowStaysAboveEightyPixelsBothWays) {
    pressCorner();
    drag(-119, -37);
    EXPECT_EQ(window->mArea.area, Box2(100, 182, 181, 263)); // 81 by 81
    drag(-1, 0);
    EXPECT_EQ(window->mArea.area, Box2(100, 182, 181, 263));
    drag(100, -1); // neither side moves if one can't
    EXPECT_EQ(window->mArea.area, Box2(100, 182, 181, 263));
    drag(NO_NUMBER, NO_NUMBER);
    drag(ENDLESS, ENDLESS);
    EXPECT_EQ(window->mArea.area, Box2(100, 182, 181, 263));
}

TEST_F(ResizeTest, AMaximizedWindowHasNoCornerToDrag) {
    window->setMaximized(true);
    pressCorner();
    EXPECT_FALSE(bars->mDragResize);
}

TEST_F(ScrollbarsTest, TheCornerInAnythingButAWindowDragsNothing) {
    sendMove(root, Vector2f(), Vector2f(295, 295));
    send(root, "mousedown", Vector2f(295, 295));
    EXPECT_TRUE(bars->mDragResize);
    sendMove(root, Vector2f(295, 295), Vector2f(400, 400));
    EXPECT_EQ(bars->getParent()->mArea.area, Box2(100, 200, 300, 300));
    EXPECT_TRUE(heard.actions.empty());
}

TEST_F(ScrollbarsTest, WithoutAParentNothingIsDraggedAndNothingBreaks) {
    Scrollbars alone;
    alone.setArea(Box2(0, 0, 200, 100));
    send(alone, "mousedown", Vector2f(195, 95));
    EXPECT_FALSE(alone.mDragResize);
    alone.mDragResize = true;
    sendMove(alone, Vector2f(195, 95), Vector2f(220, 95));
    Event wheelEvent = makeEvent("mousewheel", Vector2f(10, 10));
    wheelEvent.wheelDelta = -1;
    EXPECT_EQ(alone.handleEvent(wheelEvent), 1);
}

// Deletes the source of an action.
class Remover : public Callback {
public:
    void controlAction(Control* source, Action) override {
        if (Control* parent = source->getParent())
            parent->deleteControl(0);
    }
};

TEST_F(ScrollbarsTest, TheReceiverOfAStepMayDeleteIt) {
    Remover remover;
    for (const char* type : {"mousewheel", "mousemove", "mouseup"}) {
        Plain holder(Box2(0, 0, 200, 100));
        holder.setArea(holder.mArea.area);
        Scrollbars* inner = new Scrollbars;
        inner->setCallback(&remover);
        holder.addControl(inner, -1);
        inner->mDragVertical = true;
        send(*inner, type, Vector2f(10, 10));
        EXPECT_EQ(holder.getChildCount(), 0) << type;
    }
}

TEST_F(ScrollbarsTest, FortyInEachOtherAreLaidOut) {
    Workspace top;
    top.setArea(Box2(0, 0, 2000, 2000));
    Control* parent = &top;
    for (int i = 0; i < 40; ++i) {
        Scrollbars* inner = new Scrollbars;
        parent->addControl(inner, -1);
        parent = inner;
    }
    top.setArea(Box2(0, 0, 1000, 1000));
    EXPECT_EQ(parent->mArea.area, Box2(0, 0, 1000 - 39 * 12, 1000 - 39 * 12));
}

TEST_F(ScrollbarsTest, ZeroNegativeAndEnormousAreasAreAccepted) {
    for (const Box2& area :
         {Box2(), Box2(10, 10, -10, -10), Box2(-1e30f, -1e30f, 1e30f, 1e30f),
          Box2(-ENDLESS, -ENDLESS, ENDLESS, ENDLESS), Box2(NO_NUMBER, NO_NUMBER, NO_NUMBER, NO_NUMBER)}) {
        bars->setArea(area);
        for (const char* type : {"mousemove", "mousedown", "mousemove", "mousewheel", "mouseup", "reset"})
            for (const float at : {0.0f, 5.0f, ENDLESS, NO_NUMBER})
                send(*bars, type, Vector2f(at, at));
        child->setArea(area);
        bars->buildScrollbars();
    }
}

} // namespace
