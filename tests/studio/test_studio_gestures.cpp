// What the mouse does on the timeline.

#include "studio_fixture.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Box2;
using mathbase::Vector2f;
using studio::Kind;

namespace {

Vector2f centerOf(const Box2& box) {
    return Vector2f(std::floor((box.x1 + box.x2) / 2), std::floor((box.y1 + box.y2) / 2));
}

// Many rows, for the timeline to scroll.
std::string manySpans() {
    std::string script = "<script>\n";
    for (int i = 0; i < 60; ++i)
        script += "<effect name=\"group\" start=\"" + std::to_string(i) + "\" end=\"60\"/>\n";
    return script + "</script>\n";
}

} // namespace

TEST_F(StudioTest, TheWheelZoomsAroundTheMousePansAndScrolls) {
    mScript = manySpans();
    window();
    const Vector2f mouse = centerOf(timeline().getAxis());
    moveTo(mouse);
    const double scale = timeline().mScale, time = timeline().toTime(mouse.x);
    viewer().keyDown("ctrl");
    viewer().wheel(2);
    viewer().keyUp("ctrl");
    until("a larger scale", [&] { return timeline().mScale > 1.5 * scale; });
    EXPECT_NEAR(timeline().mScale, 1.25 * 1.25 * scale, 1e-6);
    EXPECT_NEAR(timeline().toTime(mouse.x), time, 1e-4);
    const double left = timeline().mScrollTime;
    viewer().keyDown("shift");
    viewer().wheel(-1);
    viewer().keyUp("shift");
    until("later times", [&] { return timeline().mScrollTime > left; });
    EXPECT_NEAR(timeline().mScrollTime, left + 60 / timeline().mScale, 1e-6);
    viewer().wheel(-2);
    until("lower rows", [&] { return timeline().mScrollRows == 6 * studio::Timeline::BAR_HEIGHT; });
    viewer().wheel(9);
    until("the first row", [&] { return timeline().mScrollRows == 0; });
    viewer().keyDown("ctrl");
    viewer().wheel(-9);
    viewer().keyUp("ctrl");
    until("a smaller scale", [&] { return timeline().mScale < scale; });
}

TEST_F(StudioTest, TheMiddleButtonPansAndTheScrollBarScrollsToTheLastRow) {
    mScript = manySpans();
    showBars();
    timeline().mScrollTime = 4;
    timeline().mScrollRows = 100;
    frame();
    const Vector2f mouse = centerOf(timeline().getAxis());
    moveTo(mouse);
    viewer().buttonDown(2);
    moveTo(mouse + Vector2f(40, 30));
    until("panned", [&] { return timeline().mScrollRows == 70; });
    EXPECT_NEAR(timeline().mScrollTime, 2, 1e-6);
    viewer().buttonUp(2);
    until("the release", [&] { return !timeline().isDragging(); });
    moveTo(mouse);
    EXPECT_EQ(timeline().mScrollRows, 70);

    const Box2 axis = timeline().getAxis();
    timeline().mScrollRows = 0;
    frame();
    drag(Vector2f(axis.x2 + 6, axis.y1 + 20), 0, axis.getHeight());
    const int last = int(timeline().getRows().size()) - 1;
    EXPECT_LE(timeline().getRowBox(last).y2, axis.y2);
    EXPECT_GT(timeline().getRowBox(last).y2, axis.y2 - 2 * studio::Timeline::BAR_HEIGHT);
    const float most = timeline().mScrollRows;
    drag(Vector2f(axis.x2 + 6, axis.y2 - 20), 0, -axis.getHeight() / 2);
    EXPECT_LT(timeline().mScrollRows, most);
    EXPECT_GT(timeline().mScrollRows, 0);
}

TEST_F(StudioTest, ABarStaysAtTheMouseWhenADragZooms) {
    mScript.replace(mScript.find("\"20\""), 4, "\"90\"");
    showBars();
    timeline().mSnapping = false;
    const Vector2f from = centerOf(timeline().getElementBox(element("overlay")));
    moveTo(from);
    viewer().buttonDown(1);
    moveTo(from + Vector2f(100, 0));
    until("a drag", [&] { return at("overlay").start == 17; });
    viewer().keyDown("ctrl");
    viewer().wheel(3);
    viewer().keyUp("ctrl");
    until("a larger scale", [&] { return timeline().mScale > 38; });
    moveTo(from + Vector2f(101, 0));
    until("a move", [&] { return at("overlay").start > 17; });
    EXPECT_NEAR(at("overlay").start, 17 + 1 / timeline().mScale, 1e-3);
    viewer().buttonUp(1);
    until("the release", [&] { return !timeline().isDragging(); });
}

TEST_F(StudioTest, DoubleClicksRenameUnfoldAddAKeyAndPlay) {
    showBars();
    const Box2 row = timeline().getRowBox(2);
    doubleClick(Vector2f(row.x1 + 60, row.y1 + 10));
    ASSERT_TRUE(window().getPanel().hasKeys());
    viewer().type("rund");
    key("Return");
    until("the name", [&] { return at("rund").start == 4; });

    const Vector2f bar = centerOf(timeline().getElementBox(element("rund")));
    doubleClick(bar);
    EXPECT_TRUE(timeline().isOpen(element("rund")));
    const int curve = element("alpha");
    const Box2 low = timeline().getElementBox(curve + 1), high = timeline().getElementBox(curve + 2);
    doubleClick(Vector2f(timeline().toX(8) + 3, (centerOf(low).y + centerOf(high).y) / 2));
    const std::vector<int> keys = editor().getDocument().getChildren(curve, Kind::KEY);
    ASSERT_EQ(keys.size(), 3u);
    const studio::Element& key = editor().getDocument()[keys[2]];
    EXPECT_EQ(key.start, 4) << "on the grid";
    EXPECT_NEAR(key.number, 0.5f, 0.03f);
    EXPECT_EQ(std::round(key.number * 100) / 100, key.number) << "a round value";
    EXPECT_EQ(editor().getSelected(), std::vector<int>{keys[2]});
    doubleClick(bar);
    EXPECT_FALSE(timeline().isOpen(element("rund")));

    doubleClick(onRuler(8));
    EXPECT_TRUE(show().isPlaying());
    EXPECT_GE(show().getTime(), 8);
    EXPECT_LT(show().getTime(), 12);
}

// A second press that soon follows the first is a press like any other where a double click means nothing.
TEST_F(StudioTest, ClicksInQuickSuccessionAllCount) {
    showBars();
    const Box2 row = timeline().getRowBox(1);
    doubleClick(Vector2f(row.x1 + 4 + 8, row.y1 + 10)); // the triangle
    EXPECT_FALSE(timeline().isOpen(element("clear")));
    timeline().setOpen(element("grid"), true);
    frame();
    const int key = element("alpha") + 2;
    const Vector2f from = centerOf(timeline().getElementBox(key));
    moveTo(from + Vector2f(1, 1));
    moveTo(from);
    EXPECT_EQ(runCommand("xdotool click 1 mousedown 1").first, 0);
    moveTo(from + Vector2f(40, 0));
    EXPECT_EQ(runCommand("xdotool mouseup 1").first, 0);
    until("the release", [&] { return !timeline().isDragging(); });
    EXPECT_EQ(editor().getDocument()[key].start, 4);
}

TEST_F(StudioTest, CtrlAndShiftAddToTheSelectionAndTakeFromIt) {
    showBars();
    const auto clickWith = [&](const std::string& held, Vector2f place) {
        moveTo(place + Vector2f(1, 1));
        moveTo(place);
        viewer().keyDown(held);
        viewer().click(1);
        viewer().keyUp(held);
        frame();
    };
    const auto onBar = [&](const char* name) { return centerOf(timeline().getElementBox(element(name))); };
    const auto selected = [&](std::vector<std::string> names) {
        std::vector<std::string> have;
        for (const uint32_t id : editor().getSelection()) // each once
            have.push_back(editor().getDocument()[editor().getDocument().find(id)].name);
        std::sort(have.begin(), have.end());
        std::sort(names.begin(), names.end());
        EXPECT_EQ(have, names);
    };
    click("overlay");
    clickWith("ctrl", onBar("grid"));
    selected({"grid", "overlay"});
    clickWith("shift", onBar("clear"));
    selected({"clear", "grid", "overlay"});
    clickWith("ctrl", onBar("overlay"));
    selected({"clear", "grid"});
    const Box2 head = timeline().getRowBox(0);
    clickWith("shift", Vector2f(head.x1 + 60, head.y1 + 10));
    selected({"Opening", "clear", "grid"});
    clickWith("ctrl", Vector2f(head.x1 + 60, head.y1 + 10));
    selected({"clear", "grid"});

    // A box adds to it too, and counts nothing twice.
    const Box2 first = timeline().getElementBox(element("grid")),
               last = timeline().getElementBox(element("overlay"));
    drag(Vector2f(first.x1 - 10, first.y1 + 8), last.x2 + 10 - first.x1, last.y2 - first.y1 - 10, "shift");
    selected({"clear", "grid", "overlay"});
    const std::string before = editor().getDocument().getText();
    window().getPanel().editField("State");
    viewer().type("off");
    key("Return");
    until("off", [&] { return !at("overlay").enabled; });
    EXPECT_FALSE(at("grid").enabled);
    EXPECT_NO_THROW(studio::Document().load(editor().getDocument().getText()));
    editor().undo();
    EXPECT_EQ(editor().getDocument().getText(), before);
    click(Vector2f(last.x2 + 40, last.y1 + 5)); // empty ground
    selected({});
}

TEST_F(StudioTest, AClickOnOneOfSeveralSelectsItAlone) {
    showBars();
    editor().select({at("grid").id, at("overlay").id});
    click("overlay");
    EXPECT_EQ(editor().getSelected(), std::vector<int>{element("overlay")});
    editor().addBookmark(6, "drop");
    frame();
    click("drop");
    EXPECT_NEAR(show().getTime(), 6, 0.01) << "a bookmark is gone to";
}

TEST_F(StudioTest, TheTimeIsDraggedInTheRulerAndCtrlSnapsIt) {
    showBars();
    drag(onRuler(4), 43, 0);
    EXPECT_NEAR(show().getTime(), 6.15, 1e-3);
    drag(onRuler(4), 43, 0, "ctrl");
    EXPECT_NEAR(show().getTime(), 6, 1e-3);
    drag(onRuler(4), -300, 0);
    EXPECT_EQ(show().getTime(), 0);
    show().setLoop(std::pair(2.0, 4.0));
    moveTo(onRuler(8));
    viewer().keyDown("shift");
    viewer().click(1);
    viewer().keyUp("shift");
    until("no loop", [&] { return !show().getLoop(); });
    EXPECT_EQ(show().getTime(), 0) << "a click with Shift seeks nowhere";
}

TEST_F(StudioTest, ShiftInADragKeepsAKeyOnOneAxis) {
    showBars();
    timeline().setOpen(element("grid"), true);
    frame();
    const int index = element("alpha") + 2;
    const auto keyAt = [&] {
        const studio::Element& it = editor().getDocument()[index];
        return std::pair(it.start, it.number);
    };
    const Vector2f from = centerOf(timeline().getElementBox(index));
    moveTo(from);
    viewer().buttonDown(1);
    moveTo(from + Vector2f(40, 32));
    until("both", [&] { return keyAt() == std::pair(4.0f, 0.5f); });
    viewer().keyDown("shift");
    moveTo(from + Vector2f(40, 31));
    until("in time", [&] { return keyAt() == std::pair(4.0f, 1.0f); });
    moveTo(from + Vector2f(20, 32));
    until("in value", [&] { return keyAt() == std::pair(2.0f, 0.5f); });
    viewer().buttonUp(1);
    viewer().keyUp("shift");
    until("the release", [&] { return !timeline().isDragging(); });
    EXPECT_EQ(editor().getUndoCount(), 1u);
}

// A press elsewhere takes the mouse; another button on the timeline gives the drag up.
TEST_F(StudioTest, ADragEndsWhenTheMouseIsTaken) {
    showBars();
    click("overlay");
    timeline().mScrollTime = 4;
    frame();
    const Vector2f mouse = centerOf(timeline().getAxis());
    const Box2 field = window().getPanel().findField("Start")->getAreaWorld();
    moveTo(mouse);
    viewer().buttonDown(2);
    moveTo(Vector2f(field.x1 + 20, field.y1 + 10));
    until("a drag", [&] { return timeline().isDragging(); });
    viewer().click(1);
    until("the field", [&] { return window().getPanel().hasKeys(); });
    EXPECT_FALSE(timeline().isDragging());
    const double left = timeline().mScrollTime;
    viewer().buttonUp(2);
    moveTo(mouse);
    EXPECT_EQ(timeline().mScrollTime, left);

    const std::string before = editor().getDocument().getText();
    timeline().mScrollTime = 0;
    frame();
    const Vector2f bar = centerOf(timeline().getElementBox(element("overlay")));
    moveTo(bar);
    viewer().buttonDown(1);
    moveTo(bar + Vector2f(50, 0));
    until("a drag", [&] { return editor().getDocument().getText() != before; });
    viewer().click(3);
    until("the end", [&] { return !timeline().isDragging(); });
    EXPECT_EQ(editor().getDocument().getText(), before);
    EXPECT_FALSE(overlay().isOpen()) << "not a menu too";
    viewer().buttonUp(1);
    frame();
}
