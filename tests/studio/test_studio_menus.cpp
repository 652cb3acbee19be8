// The menus, the keys and the panel, each command as an author gives it.

#include "studio_fixture.h"

#include <cmath>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Box2;
using mathbase::Vector2f;
using studio::Kind;

TEST_F(StudioTest, TheRulersMenuDoesWhatItSays) {
    showBars();
    const auto fromMenu = [&](double time, const std::string& item) {
        click(onRuler(time), 3);
        choose(item);
        frame();
    };
    fromMenu(6, "Bookmark here");
    until("the name's field", [&] { return window().getPanel().hasKeys(); });
    viewer().type("drop");
    key("Return");
    until("the bookmark", [&] { return at("drop").start == 6; });
    fromMenu(8, "Loop from here for two bars");
    EXPECT_EQ(show().getLoop(), std::pair(8.0, 12.0));
    fromMenu(2, "No loop");
    EXPECT_FALSE(show().getLoop());
    fromMenu(1.2, "The first bar begins here");
    EXPECT_NEAR(editor().getDocument().getTempo().start, 1.2f, 1e-3f);
    EXPECT_EQ(editor().getUndoLabel(), "Set tempo");
    editor().undo();
    editor().select({at("grid").id});
    fromMenu(4, "Tempo...");
    until("the tempo's field", [&] { return window().getPanel().findField("Tempo")->hasKeys(); });
    viewer().type("90");
    key("Return");
    until("the tempo", [&] { return editor().getDocument().getTempo().bpm == 90; });
    editor().undo();
    fromMenu(4, "Play from here");
    EXPECT_TRUE(show().isPlaying());
    EXPECT_GE(show().getTime(), 4);
    show().setPlaying(false);
    fromMenu(11, "Section here");
    key("Return");
    frame();
    EXPECT_LT(element("Section"), element("overlay")) << "before what begins there";
    EXPECT_GT(element("Section"), element("grid"));
    editor().undo();
    editor().select({at("overlay").id});
    editor().copy();
    fromMenu(16, "Paste here");
    EXPECT_EQ(at("overlay", 1).start, 16);
    fromMenu(18, "Effect here...");
    viewer().type("xor");
    key("Return");
    until("the effect", [&] { return at("xor").start == 18; });

    click(middle(element("drop")), 3);
    choose("Rename");
    until("the name's field", [&] { return window().getPanel().hasKeys(); });
    key("Escape");
    click(middle(element("drop")), 3);
    choose("Delete");
    EXPECT_EQ(editor().getDocument().getText().find("drop"), std::string::npos);
}

TEST_F(StudioTest, ASpansMenuDoesWhatItSays) {
    showBars();
    const auto fromMenu = [&](const std::string& item) {
        frame();                                                // after an edit or an undo
        click(middle(element("overlay")) + Vector2f(-7, 0), 3); // at 13 s less a bit
        choose(item);
        frame();
    };
    fromMenu("Turn off");
    EXPECT_FALSE(at("overlay").enabled);
    fromMenu("Turn on");
    EXPECT_TRUE(at("overlay").enabled);
    fromMenu("Draw earlier");
    fromMenu("Draw earlier");
    EXPECT_LT(element("overlay"), element("grid"));
    fromMenu("Draw later");
    EXPECT_GT(element("overlay"), element("grid"));
    key("alt+Down");
    until("later", [&] { return element("overlay") > element("Rest"); });
    fromMenu("Loop over it");
    EXPECT_EQ(show().getLoop(), std::pair(12.0, 14.0));
    fromMenu("Loop over it");
    EXPECT_EQ(show().getLoop(), std::pair(12.0, 14.0)) << "and not off";
    show().setLoop(std::nullopt);
    timeline().mSnapping = false;
    fromMenu("Split here");
    EXPECT_NEAR(at("overlay").end, 12.65f, 0.06f);
    EXPECT_EQ(at("overlay", 1).end, 14);
    EXPECT_EQ(at("overlay", 1).start, at("overlay").end);
    editor().undo();
    timeline().mSnapping = true;
    fromMenu("Duplicate");
    EXPECT_EQ(at("overlay", 1).start, 14);
    editor().undo();
    fromMenu("Copy");
    EXPECT_EQ(window().getMessage(), "1 copied");
    show().seek(16);
    key("ctrl+v");
    until("a copy", [&] { return editor().getUndoLabel() == "Paste"; });
    EXPECT_EQ(at("overlay", 1).start, 16);
    editor().undo();
    fromMenu("Cut");
    EXPECT_EQ(editor().getDocument().getText().find("overlay"), std::string::npos);
    editor().undo();
    fromMenu("Rename");
    until("the name's field", [&] { return window().getPanel().findField("Effect")->hasKeys(); });
    key("Escape");
    fromMenu("Nested effect...");
    viewer().type("xor");
    key("Return");
    until("the effect", [&] { return editor().getUndoLabel() == "Add span"; });
    EXPECT_EQ(at("xor").parent, element("overlay"));
    EXPECT_TRUE(timeline().isOpen(element("overlay"))) << "it shows";
    frame();

    // A section from the menu of what is nested goes before the span that holds it.
    click(middle(element("xor")), 3);
    choose("Section here");
    frame();
    EXPECT_GT(element("Section"), element("Rest"));
    EXPECT_LT(element("Section"), element("overlay"));
}

// What its items do is about the selection, which is therefore what the menu is of.
TEST_F(StudioTest, AMenuBesideABarIsOfThatBar) {
    showBars();
    click("overlay");
    const Box2 bar = timeline().getElementBox(element("grid"));
    click(Vector2f(bar.x2 + 100, bar.y1 + 8), 3);
    EXPECT_EQ(editor().getSelected(), std::vector<int>{element("grid")});
    choose("Turn off");
    EXPECT_FALSE(at("grid").enabled);
    EXPECT_TRUE(at("overlay").enabled);
    // The menu on a name is for the beginning of its span.
    const Box2 label = timeline().getRowBox(4);
    click(Vector2f(label.x1 + 60, label.y1 + 8), 3);
    choose("Play from here");
    EXPECT_NEAR(show().getTime(), 12, 0.2);
    EXPECT_TRUE(show().isPlaying());
}

TEST_F(StudioTest, TriggersAreAddedFromTheirMenu) {
    showBars();
    click(Vector2f(timeline().toX(2), middle(element("clear")).y), 3);
    choose("Trigger...");
    EXPECT_EQ(overlay().getTitle(), "Trigger of clear");
    choose("type = gradient");
    EXPECT_EQ(at("type", 1).value, "gradient");
    EXPECT_EQ(at("type", 1).start, 2);
    EXPECT_TRUE(timeline().isOpen(element("clear")));
    editor().addSpan(0, "kub", 14, 18);
    frame();
    key("a");
    choose("Trigger...");
    choose("expand");
    EXPECT_EQ(at("expand").value, "");
    EXPECT_EQ(at("expand").parent, element("kub"));
    EXPECT_EQ(at("expand").start, 0) << "the time now is before the span";
    click("expand");
    window().getPanel().editField("Repeat");
    viewer().type("8");
    key("Tab");
    viewer().type("0.5");
    key("Return");
    until("the delay", [&] { return at("expand").delay == 0.5f; });
    EXPECT_EQ(at("expand").repeat, 8);
    frame();
    click(middle(element("expand")), 3);
    EXPECT_EQ(overlay().getBox("Rename").getWidth() > 0, true);
    choose("Duplicate");
    EXPECT_EQ(at("expand", 1).start, 0);
    key("ctrl+c");
    key("Escape");
    key("ctrl+v");
    until("the refusal",
          [&] { return window().getMessage() == "Select the span or the curve that it goes into"; });
    EXPECT_EQ(editor().getUndoLabel(), "Duplicate");
}

TEST_F(StudioTest, CurvesAreAddedAndChangedFromTheirMenu) {
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"cubejox\"");
    showBars();
    click(middle(element("cubejox")), 3);
    choose("Curve...");
    EXPECT_EQ(overlay().getTitle(), "Curve of cubejox");
    choose("alpha"); // is there already
    EXPECT_TRUE(overlay().isOpen());
    choose("zoom");
    EXPECT_FALSE(overlay().isOpen());
    EXPECT_EQ(editor().getDocument().getChildren(element("zoom"), Kind::KEY).size(), 2u);
    frame();
    const int curve = element("alpha");
    const Box2 low = timeline().getElementBox(curve + 1), high = timeline().getElementBox(curve + 2);
    const float half = std::floor((low.y1 + high.y2) / 2);
    const auto fromMenu = [&](const std::string& item) {
        click(Vector2f(timeline().toX(item == "Add key here" ? 8 : 7), half), 3);
        choose(item);
        frame();
    };
    fromMenu("Add key here");
    EXPECT_EQ(editor().getDocument()[curve + 3].start, 4) << "in the time of its span";
    EXPECT_NEAR(editor().getDocument()[curve + 3].number, 0.5f, 0.03f);
    fromMenu("Make it square");
    EXPECT_EQ(at("alpha").mode, 0);
    show().seek(7); // its value now stands beside it
    frame();
    fromMenu("Make it smooth");
    EXPECT_EQ(at("alpha").mode, 2);
    frame();
    fromMenu("Make it linear");
    EXPECT_EQ(at("alpha").mode, 1);
    fromMenu("Rename");
    until("the name's field", [&] { return window().getPanel().findField("Curve")->hasKeys(); });
    viewer().type("bw");
    key("Return");
    until("the name", [&] { return at("bw").kind == Kind::SPLINE; });
    editor().select({at("overlay").id});
    frame();
    key("a");
    choose("Curve...");
    choose("alpha");
    EXPECT_EQ(editor().getDocument()[element("alpha") + 1].number, 1);
    editor().addSpan(0, "nothing", 2, 4);
    frame();
    key("a");
    choose("Curve...");
    choose("This effect knows no curves");
    EXPECT_TRUE(overlay().isOpen());
}

// The elements that a menu is about may be gone once the script is another one.
TEST_F(StudioTest, AMenuClosesWhenTheScriptChangesBeneathIt) {
    showBars();
    click(middle(element("overlay")), 3);
    ASSERT_TRUE(overlay().isOpen());
    const std::string other = "<script>\n</script>\n";
    writeFile(dir().file("script.xml"), other);
    until("the change", [&] { return editor().getDocument().getText() == other; });
    EXPECT_FALSE(overlay().isOpen());
}

TEST_F(StudioTest, ARightClickAfterTypingOpensTheMenu) {
    showBars();
    click("overlay");
    window().getPanel().editField("Start");
    viewer().type("12.5");
    click(middle(element("grid")), 3); // which takes over what was typed
    EXPECT_EQ(at("overlay").start, 12.5f);
    frame();
    EXPECT_TRUE(overlay().isOpen());
}

TEST_F(StudioTest, TheKeysPlayLoopZoomAndGoThroughBookmarks) {
    mScript = "<script>\n\t<tempo bpm=\"120\" beats=\"4\" start=\"0\"/>\n"
              "\t<bookmark name=\"one\" time=\"2\"/>\n\t<bookmark name=\"two\" time=\"10\"/>\n"
              "\t<effect name=\"group\" start=\"0\" end=\"40\"/>\n"
              "\t<effect name=\"grid\" start=\"4\" end=\"8\"/>\n</script>\n";
    showBars();
    moveTo(onRuler(6));
    key("p");
    until("playing", [&] { return show().isPlaying(); });
    EXPECT_GE(show().getTime(), 6);
    EXPECT_LT(show().getTime(), 7);
    key("space");
    until("paused", [&] { return !show().isPlaying(); });
    moveTo(Vector2f(800, 100)); // on the picture
    const double stopped = show().getTime();
    key("p");
    key("m");
    until("mute", [&] { return show().isMuted(); });
    EXPECT_FALSE(show().isPlaying()) << "the mouse is on no time";
    EXPECT_EQ(show().getTime(), stopped);
    key("m");
    until("no mute", [&] { return !show().isMuted(); });

    key("Next");
    until("the bookmark after", [&] { return std::fabs(show().getTime() - 10) < 0.01; });
    key("Next");
    until("no further one", [&] { return window().getMessage() == "There is no bookmark after this"; });
    key("Prior");
    until("the one before", [&] { return std::fabs(show().getTime() - 2) < 0.01; });
    EXPECT_EQ(window().getMessage(), "one");
    key("Prior");
    until("none before", [&] { return window().getMessage() == "There is no bookmark before this"; });

    key("z");
    until("a refusal", [&] { return window().getMessage() == "No span is selected"; });
    click("grid");
    key("z");
    until("closer", [&] { return timeline().mScale > 100; });
    EXPECT_LT(timeline().toTime(timeline().getAxis().x1), 4);
    EXPECT_GT(timeline().toTime(timeline().getAxis().x2), 8);
    key("l");
    until("a loop", [&] { return show().getLoop() == std::pair(4.0, 8.0); });
    key("l");
    until("no loop", [&] { return !show().getLoop(); });
    key("ctrl+0");
    until("all of it", [&] { return timeline().toTime(timeline().getAxis().x2) > 40; });
    key("Escape");
    until("nothing selected", [&] { return editor().getSelection().empty(); });
    show().seek(11);
    key("l");
    until("two bars", [&] { return show().getLoop() == std::pair(10.0, 14.0); });

    key("s");
    until("a refusal", [&] { return window().getMessage() == "No selected span covers the time now"; });
    key("ctrl+v");
    until("a refusal", [&] { return window().getMessage() == "Nothing was copied"; });
    key("ctrl+plus");
    until("larger", [&] { return window().getScale() == 1.25f; });
    key("ctrl+minus");
    key("ctrl+minus");
    until("smaller", [&] { return window().getScale() == 0.75f; });
}

TEST_F(StudioTest, TheKeysScrollFoldAndFindTheSectionsPlace) {
    std::string rows;
    for (int i = 0; i < 30; ++i)
        rows += "\t<effect name=\"group\" start=\"30\" end=\"40\"/>\n";
    mScript.replace(mScript.find("</script>"), 0, rows);
    showBars();
    key("Down");
    until("a row down", [&] { return timeline().mScrollRows == studio::Timeline::BAR_HEIGHT; });
    key("Up");
    until("a row up", [&] { return timeline().mScrollRows == 0; });
    const size_t count = timeline().getRows().size();
    key("alt+Right");
    until("all unfolded", [&] { return timeline().getRows().size() == count + 2; });
    key("alt+Left");
    until("all folded", [&] { return timeline().getRows().size() == count; });
    timeline().setOpen(element("Rest"), false);
    frame();
    EXPECT_LT(timeline().getRows().size(), 6u);
    show().seek(25);
    frame();
    key("g"); // before the first that begins later
    until("a section", [&] { return window().getPanel().hasKeys(); });
    viewer().type("End");
    key("Return");
    until("its name", [&] { return editor().getUndoLabel() == "Rename"; });
    EXPECT_EQ(at("End").next, element("group"));
    // What is found in a folded section unfolds it, and lies in sight.
    timeline().setOpen(element("End"), false);
    editor().select({at("group", 29).id});
    frame();
    key("ctrl+d");
    until("a copy", [&] { return editor().getUndoLabel() == "Duplicate"; });
    EXPECT_TRUE(timeline().isOpen(element("End")));
    const Box2 bar = timeline().getElementBox(element("group", 30)), axis = timeline().getAxis();
    EXPECT_GE(bar.y1, axis.y1);
    EXPECT_LE(bar.y2, axis.y2);
    timeline().mScrollRows = 1000;
    editor().select({at("clear").id});
    frame();
    key("ctrl+d");
    until("a copy", [&] { return editor().getUndoCount() == 4; });
    EXPECT_EQ(at("clear", 1).start, 20);
    EXPECT_GE(timeline().getElementBox(element("clear", 1)).y1, axis.y1);
}

TEST_F(StudioTest, ThePanelsNumbersStepAndItsListsChoose) {
    showBars();
    const auto& tempo = [&] { return editor().getDocument().getTempo(); };
    window().getPanel().editField("Tempo");
    key("Up");
    until("a beat more", [&] { return tempo().bpm == 121; });
    const auto set = [&](const char* field, const char* text) {
        window().getPanel().editField(field);
        viewer().type(text);
        key("Return");
        until("the value", [&] { return !window().getPanel().hasKeys(); });
    };
    set("Tempo", "90");
    set("Beats", "3");
    set("First bar", "0.5");
    EXPECT_EQ(tempo().start, 0.5f);
    EXPECT_EQ(tempo().bpm, 90);
    EXPECT_EQ(tempo().beats, 3);
    EXPECT_NE(editor().getDocument().getText().find("<tempo bpm=\"90\" beats=\"3\" start=\"0.5\"/>"),
              std::string::npos);
    EXPECT_EQ(editor().getSelection().size(), 0u);

    const auto choice = [&](const char* field) {
        const Box2 box = window().getPanel().findField(field)->getAreaWorld();
        click(Vector2f(box.x2 + 12, box.y1 + 10));
    };
    click("overlay");
    choice("State");
    choose("off");
    EXPECT_FALSE(at("overlay").enabled);
    choice("Effect");
    choose("border");
    EXPECT_EQ(at("border").start, 12);

    window().getPanel().editField("Start");
    key("Up");
    until("a hundredth later", [&] { return at("border").start == 12.01f; });
    // The field keeps the keys: a number is stepped as often as it takes.
    key("Up");
    until("another", [&] { return at("border").start == 12.02f; });
    key("Down");
    until("and back", [&] { return at("border").start == 12.01f; });
    key("Escape");

    // Values that differ stay as they are.
    editor().select({at("border").id, at("grid").id});
    frame();
    EXPECT_EQ(window().getPanel().findField("Start")->getText(), "");
    window().getPanel().editField("Start");
    key("Up");
    key("Tab");
    until("the other field", [&] { return window().getPanel().findField("End")->hasKeys(); });
    EXPECT_EQ(at("border").start, 12.01f);
    EXPECT_EQ(at("grid").start, 4);
}

TEST_F(StudioTest, TheBarsSwitchesWork) {
    showBars();
    const auto press = [&](const std::string& label) {
        const Box2 box = window().getBar().getBox(label);
        click(Vector2f(std::floor((box.x1 + box.x2) / 2), std::floor((box.y1 + box.y2) / 2)));
    };
    press("Mute");
    EXPECT_TRUE(show().isMuted());
    press("Follow");
    EXPECT_FALSE(timeline().mFollow);
    press("Snap");
    EXPECT_FALSE(timeline().mSnapping);
    press("Loop");
    EXPECT_TRUE(show().getLoop());
    press("Play");
    EXPECT_TRUE(show().isPlaying());
    press("Pause");
    EXPECT_FALSE(show().isPlaying());
    editor().select({at("overlay").id});
    editor().move(1, 0);
    press("Save");
    EXPECT_EQ(script(), editor().getDocument().getText());
    press("Help");
    EXPECT_TRUE(overlay().isOpen());
    key("Escape");
    until("no help", [&] { return !overlay().isOpen(); });
}

TEST_F(StudioTest, ReturnUnfoldsAndAAddsToTheSpanOfWhatIsSelected) {
    showBars();
    editor().select({at("Opening").id, at("overlay").id});
    key("Return");
    until("unfolded", [&] { return timeline().isOpen(element("overlay")); });
    EXPECT_FALSE(timeline().isOpen(element("Opening")));
    key("Return");
    until("folded", [&] { return !timeline().isOpen(element("overlay")); });
    EXPECT_TRUE(timeline().isOpen(element("Opening")));
    timeline().setOpen(element("grid"), true);
    frame();
    click(middle(element("alpha") + 1)); // a key
    key("a");
    until("the menu", [&] { return overlay().isOpen(); });
    EXPECT_EQ(overlay().getTitle(), "Add to grid");
    key("Escape");
}

TEST_F(StudioTest, CtrlSInAFieldSavesWhatIsTyped) {
    window();
    click("overlay");
    window().getPanel().editField("Start");
    viewer().type("12.5");
    key("ctrl+s");
    until("the file", [&] { return script() != mScript; });
    EXPECT_NE(script().find("start=\"12.5\""), std::string::npos);
    EXPECT_FALSE(window().getPanel().hasKeys());
}
