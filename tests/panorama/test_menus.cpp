// The menu bar, menus and captions, pages, windows and scroll bars on a real window: text and drawing, with
// synthetic events, a real mouse, and pictures.
#include "pan_context.h"
#include "pan_frame.h"
#include "pan_layoutstack.h"
#include "pan_menubar.h"
#include "pan_panorama.h"
#include "pan_scrollbars.h"
#include "pan_tabframe.h"
#include "pan_tabview.h"
#include "pan_window.h"

#include "allocations.h"
#include "dis_font.h"
#include "gl_fixture.h"
#include "input.h"
#include "tree.h"

#include <memory>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Vector4f;

namespace {

// A toolkit on a window of 400 by 300.
class MenusTest : public GlTest {
protected:
    std::unique_ptr<Panorama> toolkit;
    Workspace& root;
    Heard heard;

    MenusTest() : toolkit(new Panorama(&window(400, 300).display())), root(toolkit->mWorkspace) {
        root.setDisplay(&display());
        root.setCallback(&heard);
    }

    template <class T>
    T& add(Box2 area, Control* parent = nullptr) {
        T* control = new T;
        control->mArea.area = area;
        (parent ? parent : &root)->addControl(control, -1);
        return *control;
    }

    Picture shown() {
        return frame([&] {
            glClearColor(0.3f, 0.35f, 0.4f, 0);
            glClear(GL_COLOR_BUFFER_BIT);
            toolkit->onDraw();
        });
    }

    float length(const std::string& text) { return root.getRender()->getTextLength(text); }

    void move(float x, float y) { sendMove(root, Vector2f(), Vector2f(x, y)); }
    void down(float x, float y, int button = 0) { send(root, "mousedown", Vector2f(x, y), button); }
    void up(float x, float y, int button = 0) { send(root, "mouseup", Vector2f(x, y), button); }
};

// A bar with the menus "file" (open, recent > (one, two), quit) and "edit" (undo).
class MenubarTest : public MenusTest {
protected:
    Menubar& bar;
    Plain& below;
    float editLeft;

    MenubarTest() : bar(add<Menubar>(Box2(0, 0, 400, 300))), below(add<Plain>(Box2(0, 0, 400, 200), &bar)) {
        loadText(bar, "<menubar id='bar'><item caption='file'><item caption='open'/><item caption='recent'>"
                      "<item caption='one'/><item caption='two'/></item><item caption='quit'/></item>"
                      "<item caption='edit'><item caption='undo'/></item></menubar>");
        bar.setCallback(&heard);
        editLeft = 5 + length("file") + 15;
    }

    void openFile() {
        move(6, 10);
        down(6, 10);
        up(6, 10);
    }
};

TEST_F(MenubarTest, ItsDefaults) {
    Menubar plain;
    EXPECT_EQ(plain.getType(), "menubar");
    EXPECT_FALSE(plain.mOpen);
    EXPECT_FALSE(plain.mJustOpened);
    EXPECT_EQ(plain.mHeight, 20.0f);
    EXPECT_EQ(plain.mLeft, 5.0f);
    EXPECT_EQ(plain.mGap, 15.0f);
    EXPECT_EQ(plain.mActive, -1);
    EXPECT_FALSE(plain.mOverItem);
    EXPECT_TRUE(plain.mMenus.empty());
    EXPECT_EQ(plain.mBack.color.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(plain.mBack.color.second, Vector4f(0.6f, 0.6f, 0.6f, 1));
    EXPECT_EQ(plain.mBack.border.first, Vector4f(0.1f, 0.1f, 0.1f, 0.7f));
    EXPECT_EQ(plain.mBack.highlight.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(plain.mBack.highlight.second, Vector4f(0.4f, 0.4f, 0.4f, 1));
    EXPECT_EQ(plain.mBack.pushed.first, Vector4f(0, 0, 0, 0.8f));
    EXPECT_EQ(plain.mBack.pushed.second, Vector4f(0, 0, 0, 0.8f));
    EXPECT_EQ(plain.mText.color.first, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(plain.mText.highlight.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(plain.mText.pushed.first, Vector4f(1, 1, 1, 1));
    EXPECT_FALSE(Menubar::ContextData().highlight);
    std::unique_ptr<Control> clone(plain.clone());
    EXPECT_NE(dynamic_cast<Menubar*>(clone.get()), nullptr);
}

TEST_F(MenubarTest, LoadMakesAMenuOfEachItem) {
    ASSERT_EQ(bar.mMenus.size(), 2u);
    EXPECT_EQ(bar.mMenus[0]->getCaption(), "file");
    EXPECT_EQ(bar.mMenus[0]->getChildCount(), 3);
    EXPECT_EQ(bar.mMenus[0]->getChild(1)->getChildCount(), 2);
    EXPECT_EQ(bar.mMenus[1]->getChild(0)->getCaption(), "undo");
}

TEST_F(MenubarTest, TheChildrenLiveBelowTheBar) {
    EXPECT_EQ(bar.mArea.area, Box2(0, 0, 400, 300));
    EXPECT_EQ(bar.mChildArea.area, Box2(0, 20, 400, 300));
    EXPECT_EQ(below.mArea.world, Box2(0, 20, 400, 220));
}

TEST_F(MenubarTest, TheCaptionUnderTheMouseIsActive) {
    move(5, 0);
    EXPECT_EQ(bar.mActive, 0);
    EXPECT_TRUE(bar.mOverItem);
    EXPECT_TRUE(bar.mMenus[0]->highlight);
    EXPECT_FALSE(bar.mMenus[1]->highlight);
    move(editLeft - 1, 10); // the gap
    EXPECT_EQ(bar.mActive, -1);
    EXPECT_FALSE(bar.mOverItem);
    EXPECT_FALSE(bar.mMenus[0]->highlight);
    move(editLeft, 19);
    EXPECT_EQ(bar.mActive, 1);
    move(editLeft, 20); // below
    EXPECT_EQ(bar.mActive, -1);
    move(4, 10);
    EXPECT_EQ(bar.mActive, -1);
    EXPECT_EQ(root.mContext, nullptr);
}

TEST_F(MenubarTest, APressOpensTheMenuAndItsReleaseLeavesItOpen) {
    move(6, 10);
    down(6, 10, 1); // not with another button
    EXPECT_FALSE(bar.mOpen);
    down(6, 10);
    EXPECT_TRUE(bar.mOpen);
    EXPECT_TRUE(bar.mJustOpened);
    EXPECT_EQ(root.mContext, bar.mMenus[0]);
    EXPECT_EQ(bar.mMenus[0]->getParent(), &bar);
    const float width = length("recent") + 10 + 20;
    EXPECT_EQ(bar.mMenus[0]->mArea.area, Box2(5, 20, 5 + width, 20 + 50));
    up(6, 10);
    EXPECT_TRUE(bar.mOpen);
    EXPECT_FALSE(bar.mJustOpened);
    EXPECT_EQ(root.mContext, bar.mMenus[0]);
}

TEST_F(MenubarTest, SlidingAlongTheBarSwitchesMenus) {
    openFile();
    move(editLeft + 2, 10);
    EXPECT_EQ(bar.mActive, 1);
    EXPECT_EQ(root.mContext, bar.mMenus[1]);
    EXPECT_EQ(bar.mMenus[1]->mArea.area.x1, editLeft);
    EXPECT_EQ(bar.mMenus[1]->mArea.area.y1, 20);
    move(editLeft - 3, 10); // over the gap it stays
    EXPECT_EQ(bar.mActive, 1);
    EXPECT_EQ(root.mContext, bar.mMenus[1]);
    EXPECT_FALSE(bar.mOverItem);
    move(6, 10);
    EXPECT_EQ(root.mContext, bar.mMenus[0]);
}

TEST_F(MenubarTest, ARowReportsWithTheCaptionOfItsMenu) {
    openFile();
    move(10, 45); // "recent"
    EXPECT_EQ(bar.mMenus[0]->mOpenOption, 1);
    const Box2 inner = bar.mMenus[0]->getChild(1)->mArea.area;
    EXPECT_EQ(inner.x1, bar.mMenus[0]->mArea.area.x2 + 2);
    EXPECT_EQ(inner.y1, 35);
    move(inner.x1 + 6, inner.y1 + 22);
    down(inner.x1 + 6, inner.y1 + 22);
    up(inner.x1 + 6, inner.y1 + 22);
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"file.recent.two"}));
    EXPECT_EQ(heard.contexts, (std::vector<Context*>{bar.mMenus[0]}));
    EXPECT_EQ(root.mContext, nullptr);
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(bar.mActive, -1);
}

TEST_F(MenubarTest, PressDragAndReleaseOnARowChoosesItInOneGo) {
    move(6, 10);
    down(6, 10);
    move(10, 30);
    EXPECT_EQ(bar.mMenus[0]->mHighlight, 0);
    EXPECT_FALSE(bar.mOverItem);
    up(10, 30);
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"file.open"}));
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(root.mContext, nullptr);
}

TEST_F(MenubarTest, ASecondClickOnTheCaptionClosesTheMenu) {
    openFile();
    move(7, 10);
    down(7, 10);
    EXPECT_TRUE(bar.mOpen);
    EXPECT_FALSE(bar.mJustOpened);
    up(7, 10);
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(root.mContext, nullptr);
    EXPECT_TRUE(heard.texts.empty());
}

TEST_F(MenubarTest, WhileOpenNothingReachesTheChildren) {
    openFile();
    below.heard.clear();
    move(300, 150);
    send(root, "mousewheel", Vector2f(300, 150));
    down(300, 150);
    EXPECT_TRUE(below.heard.empty());
    EXPECT_TRUE(bar.mOpen);
    up(300, 150); // closes, and is passed on
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(below.heard, (std::vector<std::string>{"mouseup"}));
    move(300, 151);
    EXPECT_EQ(below.heard.back(), "mousemove");
}

TEST_F(MenubarTest, ABarOfItsOwnHeightClosesByAClickElsewhere) {
    bar.setMaximized(false);
    bar.setArea(Box2(0, 0, 400, 20));
    openFile();
    move(300, 150);
    EXPECT_FALSE(bar.mOverItem);
    down(300, 150);
    up(300, 150);
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(root.mContext, nullptr);
    move(6, 10);
    EXPECT_EQ(root.mContext, nullptr); // and opens by a press alone
    EXPECT_EQ(bar.mActive, 0);
    move(300, 150);
    EXPECT_EQ(bar.mActive, -1);
}

TEST_F(MenubarTest, HandleEventAlwaysGivesZero) {
    move(6, 10);
    for (const char* type :
         {"mousemove", "mousedown", "mousemove", "mouseup", "mousewheel", "keydown", "reset"})
        EXPECT_EQ(send(bar, type, Vector2f(6, 10)), 0) << type;
    EXPECT_EQ(send(bar, "mousemove", Vector2f(300, 250)), 0);
}

TEST_F(MenubarTest, ABarDeletedWhileAMenuIsOpenClosesIt) {
    openFile();
    root.deleteControl(0);
    EXPECT_EQ(root.mContext, nullptr);
    move(10, 45);
    up(10, 45);
    shown();
}

TEST_F(MenubarTest, MenusThatHaveGoneAreNotOpened) {
    move(editLeft + 1, 10);
    delete bar.mMenus.back();
    bar.mMenus.pop_back();
    send(bar, "mousedown", Vector2f(editLeft + 1, 10));
    EXPECT_FALSE(bar.mOpen);
    shown();
}

TEST_F(MenubarTest, AnotherMenuClosesTheBar) {
    openFile();
    Context other;
    other.addOption("a", "");
    below.setContext(&other);
    EXPECT_EQ(root.mContext, &other);
    send(bar, "mousemove", Vector2f(6, 10));
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(root.mContext, &other);
    EXPECT_EQ(bar.mActive, 0); // only hovered
}

TEST_F(MenubarTest, ABarThatIsHiddenTakesItsMenuAlong) {
    openFile();
    shown();
    EXPECT_EQ(root.mContext, bar.mMenus[0]);
    bar.setVisible(false);
    shown();
    EXPECT_EQ(root.mContext, nullptr);
    bar.setVisible(true);
    move(editLeft + 1, 10);
    EXPECT_FALSE(bar.mOpen);
    EXPECT_EQ(root.mContext, nullptr);
}

class MenuTextTest : public MenusTest {
protected:
    Plain& owner;
    Context menu;

    MenuTextTest() : owner(add<Plain>(Box2(0, 0, 400, 300))) {}
};

TEST_F(MenuTextTest, AMenuIsAsWideAsItsWidestCaption) {
    menu.addOption("a", "");
    menu.addOption("the widest of all", "");
    menu.addOption("bb", "");
    owner.setContext(&menu);
    EXPECT_EQ(menu.mArea.area.getWidth(), length("the widest of all") + 10 + 20);
    menu.setFixedWidth(50);
    owner.setContext(&menu);
    EXPECT_EQ(menu.mArea.area.getWidth(), 50);
}

// The rightmost column in which a row of the menu shows text.
int rightmost(const Picture& picture, int x1, int x2, int y1, int y2) {
    int found = -1;
    for (int y = y1; y < y2; ++y)
        for (int x = x1; x < x2; ++x)
            if (picture.at(x, y)[0] > 200)
                found = std::max(found, x);
    return found;
}

TEST_F(MenuTextTest, ACaptionLosesTheCharactersThatHaveNoRoom) {
    menu.setPosition(Vector2f(10, 10));
    menu.addOption("WWWWWWWWWW", "");
    const float letter = length("W");
    for (int letters = 0; letters <= 10; ++letters) {
        menu.setFixedWidth(letter * float(letters) + 10);
        if (letters == 10)
            menu.setFixedWidth(letter * 10 + 40);
        owner.setContext(&menu);
        const int right = rightmost(shown(), 10, 390, 15, 25);
        if (letters == 0)
            EXPECT_EQ(right, -1);
        else
            EXPECT_NEAR(float(right), 15 + letter * float(letters) - 3, 1.0f) << letters;
    }
    menu.setFixedWidth(letter * 4 + 10 - 0.5f); // a little too narrow for four
    owner.setContext(&menu);
    EXPECT_NEAR(float(rightmost(shown(), 10, 390, 15, 25)), 15 + letter * 3 - 3, 1.0f);
}

TEST_F(MenuTextTest, ACaptionLongerThanAnyWindowIsDrawn) {
    menu.addOption(std::string(1000000, 'x'), "");
    menu.addOption(std::string(1000000, 'x'), "")->addOption(std::string(100000, 'y'), "");
    owner.setContext(&menu);
    EXPECT_EQ(menu.mArea.area.getWidth(), length("x") * 1000000 + 30);
    move(10, 25);
    const Picture picture = shown();
    EXPECT_GT(rightmost(picture, 390, 400, 5, 15), 0); // to the very edge
}

TEST_F(MenuTextTest, TenThousandRowsAreDrawnForThoseThatShow) {
    for (int i = 0; i < 10000; ++i)
        menu.addOption("row " + std::to_string(i), "");
    owner.setContext(&menu);
    for (const float top : {0.0f, -75000.0f, -149800.0f, 20000.0f}) {
        menu.setPosition(Vector2f(100, top));
        move(110, 102);
        const Picture picture = shown();
        EXPECT_EQ(rightmost(picture, 106, 300, 0, 300) > 0, top < 300) << top;
    }
    menu.setPosition(Vector2f(100, -75000));
    shown();
    const size_t before = allocationCount();
    size_t after = before;
    frame([&] {
        const size_t start = allocationCount();
        toolkit->onDraw();
        after = before + (allocationCount() - start);
    });
    EXPECT_EQ(after, before);
}

TEST_F(MenuTextTest, DrawingACutCaptionAllocatesNothingOnceWarm) {
    menu.setFixedWidth(100);
    for (int i = 0; i < 20; ++i)
        menu.addOption("a caption that is much longer than the menu is wide " + std::to_string(i), "");
    owner.setContext(&menu);
    move(20, 22);
    for (int i = 0; i < 3; ++i) // in the third, Mesa's software renderer still compiles a shader
        shown();
    size_t allocated = 1;
    frame([&] {
        const size_t start = allocationCount();
        toolkit->onDraw();
        allocated = allocationCount() - start;
    });
    EXPECT_EQ(allocated, 0u);
}

TEST_F(MenusTest, ATabIsAsWideAsItsCaptionAndItsPadding) {
    TabView& view = add<TabView>(Box2(50, 40, 350, 200));
    for (const char* caption : {"first", "second", "third"})
        add<TabFrame>(Box2(), &view).setCaption(caption);
    const float second = 50 + length("first") + 20, third = second + length("second") + 20;
    for (const auto& [x, tab] : std::vector<std::pair<float, int>>{{50, 0},
                                                                   {second - 1, 0},
                                                                   {second, 1},
                                                                   {third - 1, 1},
                                                                   {third, 2},
                                                                   {third + length("third") + 19, 2},
                                                                   {third + length("third") + 20, -1}}) {
        move(x, 45);
        EXPECT_EQ(view.mHoverTab, tab) << x;
    }
}

TEST_F(MenusTest, PictureOfPages) {
    TabView& view = add<TabView>(Box2(20, 20, 380, 280));
    view.mBack.pushed = {Vector4f(0.1f, 0.1f, 0.25f, 1), Vector4f(0.05f, 0.05f, 0.1f, 1)};
    for (const char* caption : {"Effects", "Music", "Colours of the sky", "Last"}) {
        TabFrame& page = add<TabFrame>(Box2(), &view);
        page.setMaximized(true);
        page.setVisible(false);
        page.setCaption(caption);
        page.mBack.color = {Vector4f(0.1f, 0.1f, 0.25f, 0.8f), Vector4f(0.05f, 0.05f, 0.1f, 0.8f)};
    }
    view.getChild(1)->setVisible(true);
    move(200, 30); // over the third
    EXPECT_EQ(view.mHoverTab, 2);
    EXPECT_TRUE(matchesReference("panorama_tabs", shown()));
}

TEST_F(MenusTest, PictureOfWindows) {
    Window& back = add<Window>(Box2(20, 20, 220, 160));
    back.setCaption("Behind");
    Window& front = add<Window>(Box2(120, 90, 370, 280));
    front.setCaption("In front");
    Window& inner = add<Window>(Box2(150, 110, 320, 240), &front); // cut by its parent
    inner.setCaption("Cut off by its parent");
    root.setFocus(&front);
    EXPECT_TRUE(matchesReference("panorama_windows", shown()));
}

TEST_F(MenusTest, PictureOfBars) {
    Frame& frame = add<Frame>(Box2(20, 20, 200, 280));
    Scrollbars& bars = add<Scrollbars>(Box2(), &frame);
    add<LayoutStack>(Box2(10, 10, 300, 500), &bars);
    bars.setArea(bars.mArea.area);
    bars.mPosX = 40;
    bars.mPosY = 60;
    bars.buildScrollbars();
    Frame& other = add<Frame>(Box2(220, 20, 380, 280));
    Scrollbars& vertical = add<Scrollbars>(Box2(), &other);
    loadText(vertical, "<scrollbar direction='vertical'/>");
    vertical.mDragVertical = true;
    EXPECT_TRUE(matchesReference("panorama_bars", shown()));
}

TEST_F(MenuTextTest, PictureOfAMenu) {
    menu.setCaption("spline");
    menu.addOption("add key", "");
    menu.addOption("-------", "");
    Context* type = menu.addOption("type of the curve", "");
    menu.addOption("delete", "");
    type->addOption("square", "");
    type->addOption("linear", "");
    type->addOption("smooth", "");
    menu.setHighlight("delete");
    menu.setPosition(Vector2f(30, 40));
    owner.setContext(&menu);
    move(60, 40 + 5 + 30 + 5);
    ASSERT_EQ(menu.mOpenOption, 2);
    const Box2 inner = type->mArea.area;
    type->setHighlight("smooth");
    move(60, 40 + 5 + 30 + 6); // stays on the row
    EXPECT_TRUE(matchesReference("panorama_menu_row", shown()));
    move(inner.x1 + 10, inner.y1 + 22);
    EXPECT_EQ(type->mHighlight, 1);
    EXPECT_TRUE(matchesReference("panorama_menu_inner", shown()));
}

TEST_F(MenubarTest, PictureOfABar) {
    move(6, 10);
    EXPECT_TRUE(matchesReference("panorama_menubar_hovered", shown()));
    openFile();
    move(10, 45);
    EXPECT_TRUE(matchesReference("panorama_menubar_open", shown()));
}

// With a real mouse.
class MouseTest : public MenusTest {
protected:
    Viewer viewer;

    MouseTest() : viewer("test", [this] { display().update(); }) {
        viewer.focus();
        viewer.moveTo(390, 290);
    }

    void click(int x, int y) {
        viewer.moveTo(x, y);
        viewer.click(1);
    }
};

TEST_F(MouseTest, ChoosesFromAMenuBar) {
    Menubar& bar = add<Menubar>(Box2(0, 0, 400, 300));
    loadText(bar, "<menubar><item caption='file'><item caption='open'/><item caption='recent'>"
                  "<item caption='one'/><item caption='two'/></item></item></menubar>");
    bar.setCallback(&heard);
    click(10, 10);
    viewer.until("the menu", [&] { return root.mContext && bar.mOpen && !bar.mJustOpened; });
    viewer.moveTo(15, 45);
    viewer.until("the row", [&] { return bar.mMenus[0]->mOpenOption == 1; });
    const Box2 inner = bar.mMenus[0]->getChild(1)->mArea.area;
    click(int(inner.x1) + 8, int(inner.y1) + 8);
    viewer.until("the choice", [&] { return !heard.texts.empty(); });
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"file.recent.one"}));
    viewer.until("the end of it", [&] { return !bar.mOpen && !root.mContext; });
}

TEST_F(MouseTest, DragsAndMaximizesAWindow) {
    Window& win = add<Window>(Box2(50, 50, 250, 200));
    viewer.moveTo(100, 60);
    viewer.until("the mouse", [&] { return win.mHover; });
    viewer.buttonDown(1);
    viewer.until("the press", [&] { return win.mDragging; });
    viewer.moveTo(140, 90);
    viewer.until("the move", [&] { return win.mArea.area == Box2(90, 80, 290, 230); });
    viewer.buttonUp(1);
    viewer.until("the release", [&] { return !win.mDragging; });
    viewer.moveTo(150, 88);
    viewer.until("the mouse again", [&] { return display().mMouseX == 150; });
    viewer.click(1);
    viewer.click(1);
    viewer.until("the whole window", [&] { return win.getMaximized(); });
    EXPECT_EQ(win.mArea.area, Box2(0, 0, 400, 300));
}

TEST_F(MouseTest, ScrollsByTheWheelAndByTheThumb) {
    Frame& holder = add<Frame>(Box2(50, 50, 250, 200));
    Scrollbars& bars = add<Scrollbars>(Box2(), &holder);
    Plain& child = add<Plain>(Box2(0, 0, 600, 600), &bars);
    bars.setArea(bars.mArea.area);
    viewer.moveTo(100, 100);
    viewer.until("the mouse", [&] { return bars.mHover; });
    viewer.wheel(-2);
    viewer.until("the wheel", [&] { return bars.mPosY > 0 && child.mOffset.y > 0; });
    EXPECT_EQ(bars.mPosX, 0);
    viewer.keyDown("Control_L");
    viewer.wheel(-1);
    viewer.until("the wheel with Ctrl", [&] { return bars.mPosX > 0; });
    viewer.keyUp("Control_L");
    const float before = bars.mPosY;
    const int x = int(bars.mThumbVertical.x1) + 5, y = int(bars.mThumbVertical.y1) + 5;
    viewer.moveTo(x, y);
    viewer.until("the mouse on the thumb", [&] { return display().mMouseY == float(y); });
    viewer.buttonDown(1);
    viewer.until("the press", [&] { return bars.mDragVertical; });
    viewer.moveTo(x, y + 20);
    viewer.until("the drag", [&] { return bars.mPosY == before + 20; });
    viewer.buttonUp(1);
    viewer.until("the release", [&] { return !bars.mDragVertical; });
}

TEST_F(MouseTest, ChangesThePage) {
    TabView& view = add<TabView>(Box2(50, 50, 350, 200));
    for (const char* caption : {"first", "second"})
        add<TabFrame>(Box2(), &view).setCaption(caption);
    const int second = 50 + int(length("first")) + 20 + 10;
    click(second, 58);
    viewer.until("the page",
                 [&] { return view.getChild(1)->getVisible() && !view.getChild(0)->getVisible(); });
}

} // namespace
