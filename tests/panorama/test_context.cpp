// Menus: rows, sub-menus, reports, and menus deleted while they are open. Without a font captions have no
// width, so a menu is 30 pixels wide. test_menus has the tests that depend on text.
#include "pan_context.h"

#include "support.h"
#include "tree.h"

#include <memory>

using namespace zentrak;
using namespace zentrak::test;
using namespace zentrak::panorama;
using mathbase::Vector4f;

namespace {

class ContextTest : public TreeTest {
protected:
    Plain* owner = new Plain(Box2(0, 0, 400, 300));
    Heard heard;
    Context menu;

    ContextTest() {
        root.addControl(owner, -1);
        owner->setCallback(&heard);
        menu.setCaption("edit");
    }

    // "cut", "more" with "one" and "two", and "paste", open at (100, 50).
    Context* openMenu() {
        menu.addOption("cut", "");
        Context* more = menu.addOption("more", "");
        more->addOption("one", "");
        more->addOption("two", "");
        menu.addOption("paste", "");
        menu.setPosition(Vector2f(100, 50));
        owner->setContext(&menu);
        owner->heard.clear();
        return more;
    }

    void move(float x, float y) { sendMove(root, Vector2f(), Vector2f(x, y)); }
    void click(float x, float y) {
        move(x, y);
        send(root, "mousedown", Vector2f(x, y));
        send(root, "mouseup", Vector2f(x, y));
    }
};

TEST_F(ContextTest, ItsDefaults) {
    EXPECT_EQ(Context().getType(), "context");
    EXPECT_EQ(Context().getName(), "context");
    EXPECT_EQ(Context().getCaption(), "context");
    EXPECT_EQ(menu.mMargin, 5.0f);
    EXPECT_EQ(menu.mExtraWidth, 20.0f);
    EXPECT_EQ(menu.mRowGap, 5.0f);
    EXPECT_EQ(menu.mFixedWidth, -1.0f);
    EXPECT_EQ(menu.mHighlight, -1);
    EXPECT_EQ(menu.mOpenOption, -1);
    EXPECT_EQ(menu.mSelected, "");
    EXPECT_EQ(menu.mBack.color.first, Vector4f(0, 0, 0, 0.8f));
    EXPECT_EQ(menu.mBack.color.second, Vector4f(0.1f, 0.15f, 0.1f, 0.8f));
    EXPECT_EQ(menu.mBack.border.first, Vector4f(0.1f, 0.1f, 0.1f, 1));
    EXPECT_EQ(menu.mBack.highlight.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(menu.mBack.highlight.second, Vector4f(1, 1, 1, 0.8f));
    EXPECT_EQ(menu.mText.color.first, Vector4f(1, 1, 1, 1));
    EXPECT_EQ(menu.mText.highlight.first, Vector4f(0, 0, 0, 1));
    EXPECT_EQ(menu.mText.highlight.second, Vector4f(1, 1, 0.7f, 1));
    std::unique_ptr<Control> clone(menu.clone());
    EXPECT_NE(dynamic_cast<Context*>(clone.get()), nullptr);
    EXPECT_EQ(clone->getCaption(), "context");
}

TEST_F(ContextTest, AddOptionGivesTheNewRow) {
    Context* row = menu.addOption("Save", "save");
    EXPECT_EQ(row->getCaption(), "Save");
    EXPECT_EQ(row->getName(), "save");
    EXPECT_EQ(row->getType(), "context");
    EXPECT_EQ(row->getParent(), &menu);
    EXPECT_EQ(menu.mControls, (std::vector<Control*>{row}));
}

TEST_F(ContextTest, RowsStayInTheirOrderWhicheverGetsASubMenu) {
    owner->setContext(&menu);
    Context* first = menu.addOption("first", "");
    Context* second = menu.addOption("second", "");
    first->addOption("inner", "");
    EXPECT_EQ(menu.mControls, (std::vector<Control*>{first, second}));
    EXPECT_EQ(owner->getFocus(), nullptr); // a menu doesn't take the focus
}

TEST_F(ContextTest, ARowCanBeInsertedAnywhere) {
    Context* last = menu.addOption("last", "");
    Context* first = new Context;
    menu.addControl(first, 0);
    Context* far = new Context;
    menu.addControl(far, 1000);
    EXPECT_EQ(menu.mControls, (std::vector<Control*>{first, last, far}));
}

TEST_F(ContextTest, ResizeMakesRoomForTheRows) {
    menu.setPosition(Vector2f(100, 50));
    menu.resize();
    EXPECT_EQ(menu.mArea.area, Box2(100, 50, 130, 55)); // none: 2 * 5 - 5
    menu.addOption("a", "");
    menu.resize();
    EXPECT_EQ(menu.mArea.area, Box2(100, 50, 130, 70));
    menu.addOption("b", "");
    menu.addOption("c", "");
    menu.mHighlight = menu.mOpenOption = 1;
    menu.resize();
    EXPECT_EQ(menu.mArea.area, Box2(100, 50, 130, 100)); // 10 + 3 * 15 - 5
    EXPECT_EQ(menu.mHighlight, -1);
    EXPECT_EQ(menu.mOpenOption, -1);
    menu.setFixedWidth(77);
    menu.mMargin = 2;
    menu.mRowGap = 0;
    menu.resize();
    EXPECT_EQ(menu.mArea.area, Box2(100, 50, 177, 84));
    menu.setFixedWidth(0); // not above 0: computed
    menu.resize();
    EXPECT_EQ(menu.mArea.area.x2, 124);
}

TEST_F(ContextTest, SetOptionRenamesARow) {
    menu.addOption("a", "");
    menu.addOption("b", "");
    menu.addOption("c", "");
    menu.setOption("x", 2);
    EXPECT_EQ(menu.getChild(2)->getCaption(), "x");
    menu.setOption("y", -1); // no row under the mouse: the first
    EXPECT_EQ(menu.getChild(0)->getCaption(), "y");
    menu.mHighlight = 1;
    menu.setOption("z", -7);
    EXPECT_EQ(menu.getChild(1)->getCaption(), "z");
    menu.setOption("w", 3); // out of range
    EXPECT_EQ(menu.getChild(2)->getCaption(), "x");
    Context empty;
    empty.setOption("nothing", -1);
    EXPECT_EQ(empty.getChildCount(), 0);
}

TEST_F(ContextTest, SetHighlightMarksTheCurrentRow) {
    menu.addOption("a", "");
    menu.addOption("b", "");
    menu.addOption("b", "");
    EXPECT_EQ(menu.setHighlight("b"), 1); // the first of two
    EXPECT_EQ(menu.mSelected, "b");
    EXPECT_EQ(menu.mHighlight, -1); // which is for the mouse
}

TEST_F(ContextTest, SetHighlightWithAnUnknownCaptionKeepsTheFormerMark) {
    menu.addOption("a", "name");
    menu.setHighlight("a");
    EXPECT_EQ(menu.setHighlight("unknown"), -1);
    EXPECT_EQ(menu.mSelected, "a");
    EXPECT_EQ(menu.setHighlight("name"), -1); // captions count, not names
    EXPECT_EQ(menu.mSelected, "a");
}

TEST_F(ContextTest, DeleteOptionsForgetsTheMarks) {
    menu.addOption("a", "");
    menu.setHighlight("a");
    menu.mHighlight = menu.mOpenOption = 0;
    menu.deleteOptions();
    EXPECT_EQ(menu.getChildCount(), 0);
    EXPECT_EQ(menu.mHighlight, -1);
    EXPECT_EQ(menu.mOpenOption, -1);
    EXPECT_EQ(menu.mSelected, "");
}

TEST_F(ContextTest, TheRowUnderTheMouseIsHighlighted) {
    openMenu(); // rows at 55, 70 and 85
    EXPECT_EQ(menu.mArea.area, Box2(100, 50, 130, 100));
    const struct {
        float x, y;
        int row;
    } places[] = {{115, 55, 0},         {115, 64.9f, 0},    {115, 65, -1},      {115, 69.9f, -1},
                  {115, 70, 1},         {115, 85, 2},       {115, 94, 2},       {115, 95, -1},
                  {115, 54.9f, -1},     {100, 60, 0},       {129, 60, 0},       {130, 60, -1},
                  {99.9f, 60, -1},      {115, 300, -1},     {115, -300, -1},    {NO_NUMBER, 60, -1},
                  {115, NO_NUMBER, -1}, {115, ENDLESS, -1}, {115, -ENDLESS, -1}};
    for (const auto& place : places) {
        move(place.x, place.y);
        EXPECT_EQ(menu.mHighlight, place.row) << place.x << " " << place.y;
    }
}

TEST_F(ContextTest, ASubMenuOpensBesideItsRow) {
    Context* more = openMenu();
    move(115, 75);
    EXPECT_EQ(menu.mOpenOption, 1);
    EXPECT_EQ(more->mArea.area, Box2(132, 65, 162, 65 + 35)); // 2 beside, its margin above the row
    EXPECT_EQ(more->getParent(), &menu);

    move(140, 72); // onto its first row, which is level with the one that opened it
    EXPECT_EQ(menu.mHighlight, -1);
    EXPECT_EQ(menu.mOpenOption, 1);
    EXPECT_EQ(more->mHighlight, 0);

    move(115, 67); // onto a gap
    EXPECT_EQ(menu.mOpenOption, 1);
    EXPECT_EQ(more->mHighlight, -1);
    move(500, 500); // out of it
    EXPECT_EQ(menu.mOpenOption, 1);
    move(115, 90); // onto another row
    EXPECT_EQ(menu.mOpenOption, -1);
}

TEST_F(ContextTest, ARowReportsItsWholePathToWhoOpenedTheMenu) {
    Context* more = openMenu();
    send(root, "mouseup", Vector2f(115, 60)); // of the click that opened it
    move(115, 75);
    click(140, 90);
    // Once the menu is closed, controls get the release too.
    EXPECT_EQ(owner->heard, (std::vector<std::string>{"context edit.more.two", "mouseup"}));
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"edit.more.two"}));
    EXPECT_EQ(heard.contexts, (std::vector<Context*>{&menu}));
    EXPECT_TRUE(heard.actions.empty());
    EXPECT_EQ(root.mContext, nullptr);
    EXPECT_EQ(more->mHighlight, 1);
}

TEST_F(ContextTest, OnlyTheLeftButtonChooses) {
    openMenu();
    move(115, 60);
    send(root, "mouseup", Vector2f(115, 60), 1);
    send(root, "mouseup", Vector2f(115, 60), 2);
    send(root, "mousedown", Vector2f(115, 60), 0);
    EXPECT_TRUE(owner->heard.empty());
    send(root, "mouseup", Vector2f(115, 60), 0);
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"edit.cut"}));
}

TEST_F(ContextTest, AReleaseOnAGapBetweenRowsSendsNothing) {
    openMenu();
    move(115, 60);
    move(115, 67);
    EXPECT_EQ(menu.mHighlight, -1);
    send(root, "mouseup", Vector2f(115, 67));
    EXPECT_EQ(owner->heard, (std::vector<std::string>{"mouseup"})); // the menu has closed
    EXPECT_TRUE(heard.texts.empty());
}

TEST_F(ContextTest, RowsWithTheSameCaptionReportTheSame) {
    menu.addOption("same", "first");
    menu.addOption("same", "second");
    menu.setPosition(Vector2f(100, 50));
    owner->setContext(&menu);
    for (const float y : {60.0f, 75.0f}) {
        owner->setContext(&menu);
        click(115, y);
    }
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"edit.same", "edit.same"}));
}

TEST_F(ContextTest, HandleEventAlwaysGivesZero) {
    openMenu();
    for (const char* type : {"mousemove", "mousedown", "mouseup", "mousewheel", "keydown", "keyup",
                             "keychardown", "keycharup", "reset", "context", ""})
        EXPECT_EQ(send(menu, type, Vector2f(115, 60)), 0) << type;
}

TEST_F(ContextTest, ASharedSubMenuReportsToTheMenuThatOpenedIt) {
    Context other, shared;
    other.setCaption("other");
    shared.setCaption("type");
    shared.addOption("linear", "");
    menu.addControl(&shared, -1);
    other.addControl(&shared, -1);
    menu.setPosition(Vector2f(100, 50));
    owner->setContext(&menu);
    move(115, 60);
    click(140, 60);
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"edit.type.linear"}));
    EXPECT_EQ(heard.contexts, (std::vector<Context*>{&menu}));
    menu.mControls.clear(); // neither owns it
    other.mControls.clear();
}

TEST_F(ContextTest, AFileNestsItsMenus) {
    loadText(menu, "<context><item caption='new'/><item caption='type'><item caption='square'/>"
                   "<item caption='linear'><item caption='steep'/></item></item></context>");
    ASSERT_EQ(menu.getChildCount(), 2);
    EXPECT_EQ(menu.getChild(0)->getCaption(), "new");
    EXPECT_EQ(menu.getChild(0)->getName(), "");
    const Control* type = menu.getChild(1);
    EXPECT_EQ(type->mCaptionText, "type");
    ASSERT_EQ(type->mControls.size(), 2u);
    EXPECT_EQ(type->mControls[1]->mControls[0]->mCaptionText, "steep");
    EXPECT_EQ(menu.getCaption(), "edit"); // set by its creator
}

TEST_F(ContextTest, ItemsNestedThousandsDeepAreCutOffWithALine) {
    std::string text = "<context>";
    for (int i = 0; i < 5000; ++i)
        text += "<item caption='deeper'>";
    for (int i = 0; i < 5000; ++i)
        text += "</item>";
    CaptureStdout printed;
    loadText(menu, text + "</context>");
    int depth = 0;
    const Control* level = &menu;
    for (; !level->mControls.empty(); level = level->mControls[0])
        ++depth;
    EXPECT_EQ(depth, 64);
    EXPECT_NE(printed.text().find("Menus nested deeper than 64 are left out"), std::string::npos);
}

TEST_F(ContextTest, AMenuBuiltTwoThousandDeepWorks) {
    Context* level = &menu;
    for (int i = 0; i < 2000; ++i)
        level = level->addOption("deeper", "");
    owner->setContext(&menu);
    Control* at = &menu;
    for (int i = 0; i < 2000; ++i) { // slide to the right, level by level
        move(at->mArea.area.x1 + 10, at->mArea.area.y1 + 8);
        at = at->mControls[0];
    }
    EXPECT_EQ(at, level);
    EXPECT_EQ(level->getParent()->mArea.area.x1, 1999 * 32);
}

TEST_F(ContextTest, TenThousandRowsAreLaidOutAndHovered) {
    for (int i = 0; i < 10000; ++i)
        menu.addOption("row " + std::to_string(i), "");
    owner->setContext(&menu);
    EXPECT_EQ(menu.mArea.area.y2, 150005);
    for (int i = 0; i < 10000; ++i) {
        move(10, 5 + 15.0f * float(i));
        ASSERT_EQ(menu.mHighlight, i);
        move(10, 5 + 15.0f * float(i) + 10);
        ASSERT_EQ(menu.mHighlight, -1);
    }
    EXPECT_EQ(menu.setHighlight("row 9999"), 9999);
}

TEST_F(ContextTest, RowsWithoutAPitchAreAllTested) {
    menu.addOption("a", "");
    menu.addOption("b", "");
    for (const float gap : {-10.0f, -30.0f, NO_NUMBER, ENDLESS}) {
        menu.mRowGap = gap;
        owner->setContext(&menu);
        for (const float y : {0.0f, 8.0f, -20.0f, NO_NUMBER})
            move(10, y);
    }
    menu.mRowGap = -10;
    owner->setContext(&menu);
    move(10, 8);
    EXPECT_EQ(menu.mHighlight, 1); // the last of those on top of each other
}

TEST_F(ContextTest, EmptyCaptionsAreRowsToo) {
    menu.addOption("", "");
    menu.setCaption("");
    owner->setContext(&menu);
    click(10, 8);
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"."}));
    EXPECT_EQ(menu.setHighlight(""), 0);
}

TEST_F(ContextTest, WithoutAParentNothingIsReported) {
    menu.addOption("a", "");
    menu.setPosition(Vector2f(0, 0));
    menu.resize();
    send(menu, "mousemove", Vector2f(10, 8));
    EXPECT_EQ(menu.mHighlight, 0);
    EXPECT_EQ(send(menu, "mouseup", Vector2f(10, 8)), 0);
    menu.draw(); // nothing to draw with
    EXPECT_TRUE(owner->heard.empty());
}

TEST_F(ContextTest, RowsThatWereTakenAwayWhileOpenAreForgotten) {
    openMenu();
    move(115, 75);
    ASSERT_EQ(menu.mOpenOption, 1);
    menu.deleteControl(2);
    menu.deleteControl(1);
    send(root, "mousewheel", Vector2f(140, 72));
    send(root, "mouseup", Vector2f(140, 72));
    EXPECT_TRUE(heard.texts.empty());
    menu.deleteControls();
    menu.mHighlight = 3;
    send(menu, "mouseup", Vector2f(115, 75));
    EXPECT_TRUE(heard.texts.empty());
}

TEST_F(ContextTest, AMenuDeletedWhileOpenIsClosed) {
    Context* gone = new Context;
    gone->addOption("a", "");
    owner->setContext(gone);
    ASSERT_EQ(root.mContext, gone);
    delete gone;
    EXPECT_EQ(root.mContext, nullptr);
    move(10, 10);
    send(root, "mouseup", Vector2f(10, 10));
}

TEST_F(ContextTest, AMenuWhoseOwnerIsDeletedWhileItIsOpenIsClosed) {
    openMenu();
    move(115, 75);
    root.deleteControl(0); // the owner
    EXPECT_EQ(root.mContext, nullptr);
    EXPECT_EQ(menu.getParent(), nullptr);
    click(115, 60);
    EXPECT_TRUE(heard.texts.empty());

    Plain* next = new Plain(Box2(0, 0, 100, 100)); // it can be opened again, from elsewhere
    root.addControl(next, -1);
    next->setContext(&menu);
    EXPECT_EQ(menu.getParent(), next);
    EXPECT_EQ(root.mContext, &menu);
}

TEST_F(ContextTest, AMenuWhoseOwnersParentIsDeletedIsClosedToo) {
    Plain* inner = new Plain(Box2(0, 0, 10, 10));
    owner->addControl(inner, -1);
    inner->setContext(&menu);
    root.deleteControl(0);
    EXPECT_EQ(root.mContext, nullptr);
    EXPECT_EQ(menu.getParent(), nullptr);
}

TEST_F(ContextTest, ARowDeletedDirectlyLeavesItsMenu) {
    Context* more = openMenu();
    move(115, 75);
    delete more;
    EXPECT_EQ(menu.getChildCount(), 2u);
    move(115, 75); // where "paste" is now
    send(root, "mouseup", Vector2f(115, 75));
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"edit.paste"}));
}

TEST_F(ContextTest, AControlThatBecomesARowLeavesItsParent) {
    Context* row = new Context;
    owner->addControl(row, -1);
    menu.addControl(row, -1);
    EXPECT_EQ(owner->getChildCount(), 0u);
    EXPECT_EQ(menu.getChildCount(), 1u);
    menu.addControl(nullptr, 0);
    EXPECT_EQ(menu.getChildCount(), 1u);
}

TEST_F(ContextTest, ASharedSubMenuOutlivesWhoOpenedIt) {
    Context shared;
    shared.addOption("linear", "");
    {
        Context first, second;
        first.addOption("plain", "");
        first.addControl(&shared, -1);
        second.addControl(&shared, -1);
        owner->setContext(&first);
        move(10, 23);
        EXPECT_EQ(shared.getParent(), &first);
        first.mControls.pop_back();
        second.mControls.pop_back();
    }
    EXPECT_EQ(shared.getParent(), nullptr);
    EXPECT_EQ(send(shared, "mouseup", Vector2f(10, 8)), 0);
}

TEST_F(ContextTest, AMenuOutlivesItsWorkspace) {
    auto top = std::make_unique<Workspace>();
    top->setArea(Box2(0, 0, 100, 100));
    Plain* inner = new Plain(Box2(0, 0, 10, 10));
    top->addControl(inner, -1);
    menu.addOption("a", "");
    inner->setContext(&menu);
    top.reset();
    EXPECT_EQ(menu.getParent(), nullptr);
    send(menu, "mousemove", Vector2f(10, 8));
    send(menu, "mouseup", Vector2f(10, 8));
}

// Deletes something when an option is chosen.
class Answerer : public Plain {
public:
    std::function<void()> answer;

    using Plain::Plain;
    int handleEvent(Event& event) override {
        if (event.type == "context")
            answer();
        return 0;
    }
};

TEST_F(ContextTest, TheReceiverOfAChoiceMayDeleteTheMenu) {
    Answerer* answerer = new Answerer(Box2(0, 0, 10, 10));
    root.addControl(answerer, -1);
    for (const bool inSubMenu : {false, true}) {
        Context* gone = new Context;
        gone->setPosition(Vector2f(100, 50));
        Context* row = gone->addOption("a", "");
        if (inSubMenu)
            row->addOption("b", "");
        bool answered = false;
        answerer->answer = [&] {
            delete gone;
            answered = true;
        };
        answerer->setContext(gone);
        move(115, 60);
        click(inSubMenu ? 140.0f : 115.0f, 60);
        EXPECT_TRUE(answered);
        EXPECT_EQ(root.mContext, nullptr);
    }
}

TEST_F(ContextTest, TheReceiverOfAChoiceMayDeleteTheRows) {
    Answerer* answerer = new Answerer(Box2(0, 0, 10, 10));
    root.addControl(answerer, -1);
    menu.setPosition(Vector2f(100, 50));
    menu.addOption("a", "")->addOption("b", "");
    answerer->answer = [&] { menu.deleteOptions(); };
    answerer->setContext(&menu);
    move(115, 60);
    click(140, 60);
    EXPECT_EQ(menu.getChildCount(), 0);
}

TEST_F(ContextTest, TheReceiverOfAChoiceMayDeleteItself) {
    Answerer* answerer = new Answerer(Box2(0, 0, 10, 10));
    root.addControl(answerer, -1);
    answerer->setCallback(&heard);
    menu.setPosition(Vector2f(100, 50));
    menu.addOption("a", "");
    answerer->answer = [&] { root.deleteControl(1); };
    answerer->setContext(&menu);
    click(115, 60);
    EXPECT_EQ(root.getChildCount(), 1);
    EXPECT_EQ(menu.getParent(), nullptr);
    EXPECT_TRUE(heard.texts.empty()); // nobody is left to act
}

TEST_F(ContextTest, ARowOfAnotherClassIsOnlyACaption) {
    Plain* odd = new Plain(Box2(0, 0, 10, 10));
    odd->setCaption("odd");
    odd->addControl(new Plain, -1);
    menu.addControl(odd, -1);
    owner->setContext(&menu);
    move(10, 8);
    EXPECT_EQ(menu.mHighlight, 0);
    EXPECT_EQ(menu.mOpenOption, -1);
    send(root, "mouseup", Vector2f(10, 8));
    EXPECT_EQ(heard.texts, (std::vector<std::string>{"edit.odd"}));
}

} // namespace
