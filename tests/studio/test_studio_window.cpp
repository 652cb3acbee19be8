// The studio as an author uses it.

#include "glfw2.h"
#include "studio_fixture.h"
#include "xml_parser.h"

#include <filesystem>

using namespace zentrak;
using namespace zentrak::test;
using mathbase::Box2;
using mathbase::Vector2f;
using studio::Kind;

namespace {

// The colour in the middle of the picture, which is at the upper right.
const uint8_t* pictureAt(const Picture& picture, int x, int y) {
    return picture.at(805 + x, 184 + y);
}

} // namespace

TEST_F(StudioTest, ASpanIsDraggedSavedAndUndone) {
    window();
    const std::string before = script();
    timeline().mSnapping = false;
    drag(middle(element("overlay")), 60, 0);
    const float moved = float(60 / timeline().mScale);
    EXPECT_NEAR(at("overlay").start, 12 + moved, 0.2f);
    EXPECT_NEAR(at("overlay").end - at("overlay").start, 2, 1e-3);
    EXPECT_EQ(script(), before) << "not before it is saved";
    key("ctrl+s");
    until("the file", [&] { return script() == editor().getDocument().getText(); });
    EXPECT_NE(script(), before);
    EXPECT_EQ(readFile(dir().file("script.xml.bak")), before);
    key("ctrl+z");
    until("undo", [&] { return editor().getDocument().getText() == before; });
    EXPECT_EQ(editor().getUndoCount(), 0u);
}

TEST_F(StudioTest, ADragSnapsToBarsAndAltHoldsThatOff) {
    window();
    timeline().mScale = 20; // a beat is ten pixels, and the grid's step a bar
    timeline().mScrollTime = 0;
    frame();
    drag(middle(element("overlay")), 37, 0); // to 13.85
    EXPECT_EQ(at("overlay").start, 14);
    drag(middle(element("overlay")), 33, 0, "alt");
    EXPECT_NEAR(at("overlay").start, 15.65f, 0.01f);
}

TEST_F(StudioTest, AnEndIsDraggedAloneAndStretchesWithShift) {
    window();
    timeline().mScale = 20;
    timeline().mScrollTime = 0;
    frame();
    Box2 bar = timeline().getElementBox(element("grid"));
    drag(Vector2f(bar.x2 - 2, bar.y1 + 5), 40, 0);
    EXPECT_EQ(at("grid").start, 4);
    EXPECT_EQ(at("grid").end, 12);
    bar = timeline().getElementBox(element("grid"));
    drag(Vector2f(bar.x2 - 2, bar.y1 + 5), 160, 0, "shift");
    EXPECT_EQ(at("grid").end, 20);
    EXPECT_EQ(editor().getDocument()[element("alpha") + 2].start, 4) << "the keys go along";
}

TEST_F(StudioTest, EscGivesUpADrag) {
    window();
    const std::string before = editor().getDocument().getText();
    const Vector2f from = middle(element("overlay"));
    moveTo(from);
    viewer().buttonDown(1);
    moveTo(from + Vector2f(50, 0));
    until("the drag", [&] { return editor().getDocument().getText() != before; });
    key("Escape");
    until("the end", [&] { return !timeline().isDragging(); });
    EXPECT_EQ(editor().getDocument().getText(), before);
    viewer().buttonUp(1);
    frame();
    EXPECT_EQ(editor().getUndoCount(), 0u);
}

TEST_F(StudioTest, NumbersAreTyped) {
    window();
    click("overlay");
    until("the panel", [&] { return window().getPanel().findField("Start") != nullptr; });
    const Box2 field = window().getPanel().findField("Start")->getAreaWorld();
    click(Vector2f(field.x1 + 20, field.y1 + 10)); // which selects all of it
    viewer().type("12,125");
    key("Tab");
    until("the start", [&] { return at("overlay").start == 12.125f; });
    viewer().type("13.5");
    key("Return");
    until("the end", [&] { return at("overlay").end == 13.5f; });
    window().getPanel().editField("Start");
    viewer().type("-");
    key("Return");
    until("the refusal", [&] { return window().getMessage() == "Start can't be '-'"; });
    EXPECT_EQ(at("overlay").start, 12.125f);
    EXPECT_EQ(window().getPanel().findField("Start")->getText(), "12.125");
}

TEST_F(StudioTest, AValueThatCantBeIsRefusedAndSaid) {
    window();
    const auto refused = [&](const char* field, const char* text) {
        window().getPanel().editField(field);
        viewer().type(text);
        key("Return");
        until(text,
              [&] { return window().getMessage() == field + (" can't be '" + std::string(text) + "'"); });
    };
    refused("Beats", "126");
    refused("Tempo", "4b");
    click("overlay");
    refused("State", "4");
    EXPECT_EQ(editor().getDocument().getText(), mScript);
}

TEST_F(StudioTest, WhereNoSpanIsThePictureIsBlack) {
    window();
    show().seek(3);
    EXPECT_GT(int(pictureAt(picture(), 0, 0)[0]), 200);
    editor().select({at("clear").id});
    editor().removeSelected();
    EXPECT_LT(int(pictureAt(picture(), 0, 0)[0]), 5);
}

TEST_F(StudioTest, TimesCanBeTypedInBars) {
    window();
    click("overlay");
    window().getPanel().editField("Start");
    viewer().type("4b");
    key("Tab");
    until("the start", [&] { return at("overlay").start == 8; });
    window().getPanel().editField("Length");
    viewer().type("1.5 bars");
    key("Return");
    until("the length", [&] { return at("overlay").end == 11; });
    editor().addTrigger(element("overlay"), "t", "", 0);
    window().getPanel().editField("Start");
    viewer().type("5b");
    key("Return");
    until("the trigger", [&] { return at("t").start == 2; }); // of its span, which begins at bar 4
}

TEST_F(StudioTest, TriggersAtOneTimeLieBelowEachOther) {
    window();
    timeline().setOpen(element("clear"), true);
    frame();
    click("color");
    EXPECT_EQ(editor().getSelected(), std::vector<int>{element("color")});
    click("type");
    EXPECT_EQ(editor().getSelected(), std::vector<int>{element("type")});
    EXPECT_GT(middle(element("color")).y, middle(element("type")).y + 15);
}

TEST_F(StudioTest, AMenuOnACurveActsOnThatCurve) {
    window();
    timeline().setOpen(element("grid"), true);
    frame();
    click("overlay");
    const Box2 last = timeline().getElementBox(element("alpha") + 2);
    click(Vector2f(last.x2 + 30, last.y2 + 30), 3);
    choose("Delete");
    EXPECT_EQ(editor().getDocument().getText().find("alpha"), std::string::npos);
    EXPECT_EQ(at("overlay").start, 12);
}

TEST_F(StudioTest, WhatIsTypedIntoAFieldIsNoCommand) {
    window();
    click("overlay");
    key("F2");
    until("the field", [&] { return window().getPanel().hasKeys(); });
    viewer().type("span 2e");
    key("Return");
    until("the name", [&] { return at("span 2e").start == 12; });
    EXPECT_FALSE(show().isPlaying());
    EXPECT_TRUE(at("span 2e").enabled);
}

TEST_F(StudioTest, ThePictureFollowsAtTheNextFrame) {
    window();
    show().seek(3);
    EXPECT_GT(int(pictureAt(picture(), 0, 0)[0]), 200) << "white";
    click("clear");
    key("e");
    until("off", [&] { return !at("clear").enabled; });
    key("e");
    until("on", [&] { return at("clear").enabled; });
    editor().set({element("color")}, "value", "black");
    editor().set({element("color")}, "name", "color");
    EXPECT_EQ(at("color").value, "black");
    EXPECT_LT(int(pictureAt(picture(), 0, 0)[0]), 60) << "the trigger fires again";
}

TEST_F(StudioTest, AnEffectIsAddedByItsName) {
    window();
    show().seek(6);
    key("a");
    until("the menu", [&] { return overlay().isOpen(); });
    viewer().type("tunn");
    key("Return");
    until("the span", [&] { return editor().getUndoCount() == 1; });
    EXPECT_EQ(at("tunnel").start, 6);
    EXPECT_GT(element("tunnel"), element("grid"));
    EXPECT_LT(element("tunnel"), element("Rest"));
    key("a");
    choose("Trigger...");
    choose("This effect knows no triggers");
    key("Escape");
    until("no menu", [&] { return !overlay().isOpen(); });
}

TEST_F(StudioTest, KeysAreAddedAndDraggedOnTheirTrueTimes) {
    window();
    timeline().setOpen(element("grid"), true);
    timeline().mScale = 20;
    timeline().mScrollTime = 0;
    frame();
    const int curve = element("alpha");
    const Box2 last = timeline().getElementBox(curve + 2);
    EXPECT_NEAR((last.x1 + last.x2) / 2, timeline().toX(6), 1.0) << "second 2 of a span from 4 on";
    drag(middle(curve + 2), 40, 0);
    EXPECT_EQ(editor().getDocument()[curve + 2].start, 4);
    EXPECT_EQ(editor().getDocument()[curve + 2].number, 1);
    drag(middle(curve + 2), 0, 32);
    EXPECT_EQ(editor().getDocument()[curve + 2].number, 0.5f) << "a round value";
    drag(middle(curve + 2), 0, -31);
    EXPECT_EQ(editor().getDocument()[curve + 2].number, 1) << "which it snaps to";
    const size_t before = editor().getUndoCount();
    click(middle(curve + 1), 3);
    choose("Delete");
    EXPECT_EQ(editor().getUndoCount(), before + 1);
    click(middle(curve + 1));
    key("Down");
    until("a nudge", [&] { return editor().getDocument()[curve + 1].number == 0.99f; });
    key("shift+Down");
    until("a larger one", [&] { return editor().getDocument()[curve + 1].number == 0.89f; });
    key("Right");
    until("a step", [&] { return editor().getDocument()[curve + 1].start == 6; });
}

TEST_F(StudioTest, ABoxSelectsWhatItTouches) {
    window();
    const Box2 first = timeline().getElementBox(element("grid")),
               last = timeline().getElementBox(element("overlay"));
    drag(Vector2f(first.x1 - 10, first.y1 + 8), last.x2 + 10 - first.x1, last.y2 - first.y1 - 10);
    EXPECT_EQ(editor().getSelected(), (std::vector<int>{element("grid"), element("overlay")}));
    key("ctrl+d");
    until("copies", [&] { return editor().getUndoCount() == 1; });
    EXPECT_EQ(at("overlay", 1).start, 14);
    EXPECT_EQ(at("grid", 1).start, 10);
}

TEST_F(StudioTest, TheRulerSeeksAndLoops) {
    window();
    const Box2 axis = timeline().getAxis();
    const float y = axis.y1 - 30;
    click(Vector2f(timeline().toX(8), y));
    EXPECT_NEAR(show().getTime(), 8, 0.2);
    drag(Vector2f(timeline().toX(4), y), timeline().toX(8) - timeline().toX(4), 0, "shift");
    ASSERT_TRUE(show().getLoop());
    EXPECT_NEAR(show().getLoop()->first, 4, 0.01);
    EXPECT_NEAR(show().getLoop()->second, 8, 0.01);
    show().seek(7.9);
    key("space");
    until("the loop", [&] { return show().isPlaying() && show().getTime() < 6; });
    EXPECT_GE(show().getTime(), 4);
}

TEST_F(StudioTest, BookmarksAreNamedKeptAndJumpedTo) {
    window();
    show().seek(6);
    key("b");
    until("the name's field", [&] { return window().getPanel().hasKeys(); });
    viewer().type("drop");
    key("Return");
    until("the name", [&] {
        return editor().getDocument().getText().find("<bookmark name=\"drop\" time=\"6\"/>") !=
               std::string::npos;
    });
    show().seek(0);
    key("Next");
    until("the bookmark", [&] { return show().getTime() > 5.9; });
    EXPECT_NEAR(show().getTime(), 6, 0.01);
}

TEST_F(StudioTest, SectionsFoldAndSelectWhatIsInThem) {
    window();
    const size_t rows = timeline().getRows().size();
    const Box2 head = timeline().getRowBox(0);
    click(Vector2f(head.x1 + 10, head.y1 + 10));
    until("a fold", [&] { return timeline().getRows().size() == rows - 2; });
    click(Vector2f(head.x1 + 10, head.y1 + 10));
    until("all of it", [&] { return timeline().getRows().size() == rows; });
    click(Vector2f(head.x1 + 60, head.y1 + 10));
    EXPECT_EQ(editor().getSelected(),
              (std::vector<int>{element("Opening"), element("clear"), element("grid")}));
}

TEST_F(StudioTest, LeavingAsksAndCanBeGivenUp) {
    window();
    editor().select({at("overlay").id});
    key("Right");
    until("an edit", [&] { return !editor().isSaved(); });
    EXPECT_TRUE(until("the title", [&] {
        return show().getDisplay().mWindowMode.title == "script.xml * - Zentrak studio";
    }));
    viewer().requestClose();
    until("the question", [&] { return overlay().isDialog(); });
    EXPECT_EQ(overlay().getTitle(), "Save script.xml before you leave?");
    choose("Cancel");
    EXPECT_TRUE(show().getDisplay().update());
    key("ctrl+q");
    until("the question again", [&] { return overlay().isDialog(); });
    const std::string text = editor().getDocument().getText();
    choose("Save");
    EXPECT_EQ(script(), text);
    EXPECT_FALSE(fileExists(dir().file("script.xml.unsaved")));
}

TEST_F(StudioTest, AfterAKillTheNextStartOffersWhatWasNotSaved) {
    window();
    const std::string before = script();
    editor().select({at("overlay").id});
    editor().move(3, 0);
    const std::string work = editor().getDocument().getText();
    frame();
    EXPECT_EQ(readFile(dir().file("script.xml.unsaved")), work);
    killed();
    EXPECT_EQ(script(), before);
    window();
    EXPECT_TRUE(overlay().isDialog());
    choose("Restore");
    EXPECT_EQ(editor().getDocument().getText(), work);
    EXPECT_FALSE(editor().isSaved());
    EXPECT_TRUE(editor().undo());
    EXPECT_EQ(editor().getDocument().getText(), before);
}

TEST_F(StudioTest, AScriptThatChangesOnDiskIsLoaded) {
    window();
    std::string other = script();
    other.replace(other.find("\"12\""), 4, "\"11\"");
    writeFile(dir().file("script.xml"), other);
    until("the change", [&] { return at("overlay").start == 11; });
    EXPECT_TRUE(editor().isSaved());
    editor().undo();
    EXPECT_EQ(at("overlay").start, 12);
}

TEST_F(StudioTest, UnsavedWorkIsNotLostToAChangeOnDiskNorTheOtherWayRound) {
    window();
    editor().select({at("grid").id});
    editor().move(1, 0);
    const std::string mine = editor().getDocument().getText();
    std::string other = script();
    other.replace(other.find("\"12\""), 4, "\"11\"");
    writeFile(dir().file("script.xml"), other);
    until("the question", [&] { return overlay().isDialog(); });
    EXPECT_EQ(editor().getDocument().getText(), mine);
    choose("Keep mine");
    EXPECT_EQ(script(), other);
    EXPECT_FALSE(editor().isSaved());
    key("ctrl+s");
    until("the file", [&] { return script() == mine; });
    EXPECT_EQ(readFile(dir().file("script.xml.bak")), other);
}

TEST_F(StudioTest, ASaveAsksBeforeItOverwritesWhatItHasNotSeen) {
    window();
    window().setWatching(false);
    editor().select({at("grid").id});
    editor().move(1, 0);
    writeFile(dir().file("script.xml"), mScript + "<!-- theirs -->");
    key("ctrl+s");
    until("the question", [&] { return overlay().isDialog(); });
    EXPECT_EQ(overlay().getTitle(), "script.xml has changed on disk");
    choose("Cancel");
    EXPECT_EQ(script(), mScript + "<!-- theirs -->");
}

TEST_F(StudioTest, ABrokenScriptLeavesTheLastOneRunningAndSaysWhere) {
    window();
    writeFile(dir().file("script.xml"), "<script>\n\t<effect name=\"clear\n</script>\n");
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_EQ(window().getErrors()[0].substr(0, 19), "script.xml: line 2:");
    EXPECT_EQ(at("overlay").start, 12);
    writeFile(dir().file("script.xml"), mScript);
    until("no error", [&] { return window().getErrors().empty(); });
}

TEST_F(StudioTest, AScriptThatIsBrokenAtTheStartIsOpenedOnceItIsMended) {
    writeFile(dir().file("script.xml"), "<script>\n\t<effect name=\"clear\n</script>\n");
    window();
    EXPECT_TRUE(overlay().isDialog());
    EXPECT_EQ(overlay().getTitle(), "script.xml can't be read");
    ASSERT_FALSE(window().getErrors().empty());
    EXPECT_EQ(window().getErrors()[0].substr(0, 19), "script.xml: line 2:");
    writeFile(dir().file("script.xml"), "<script>\n\n\n<effect name=</script>\n");
    until("the other error", [&] { return window().getErrors()[0].substr(0, 19) == "script.xml: line 4:"; });
    writeFile(dir().file("script.xml"), mScript);
    until("the script", [&] { return !overlay().isOpen(); });
    EXPECT_EQ(at("overlay").start, 12);
    EXPECT_TRUE(editor().isSaved());
    EXPECT_EQ(editor().getUndoCount(), 0u);
    EXPECT_TRUE(window().getErrors().empty());
}

TEST_F(StudioTest, InPlaceOfABrokenScriptTheBackupOrUnsavedWorkCanBeTaken) {
    writeFile(dir().file("script.xml"), "broken");
    writeFile(dir().file("script.xml.bak"), mScript);
    window();
    choose("Backup");
    EXPECT_EQ(at("overlay").start, 12);
    EXPECT_EQ(script(), "broken") << "until it is saved";
    editor().select({at("overlay").id});
    editor().move(1, 0);
    const std::string work = editor().getDocument().getText();
    frame();
    killed();
    window();
    choose("Unsaved work");
    EXPECT_EQ(editor().getDocument().getText(), work);
    key("ctrl+s");
    until("the file", [&] { return script() == work; });
    EXPECT_EQ(readFile(dir().file("script.xml.bak")), "broken");
}

TEST_F(StudioTest, AScriptThatIsNotThereIsMadeByASave) {
    mScript.clear();
    window();
    EXPECT_TRUE(editor().isSaved());
    key("a");
    until("the menu", [&] { return overlay().isOpen(); });
    viewer().type("clear");
    key("Return");
    until("the span", [&] { return editor().getUndoCount() == 1; });
    EXPECT_FALSE(fileExists(dir().file("script.xml")));
    key("ctrl+s");
    until("the file", [&] { return fileExists(dir().file("script.xml")); });
    EXPECT_EQ(script(), editor().getDocument().getText());
}

TEST_F(StudioTest, OfSeveralScriptsOneIsEditedAndAllArePlayed) {
    const std::string white = "<script>\n<effect name=\"clear\" start=\"0\" end=\"20\">\n"
                              "<trigger name=\"type\" value=\"flat\"/>\n"
                              "<trigger name=\"color\" value=\"white\"/>\n</effect>\n</script>\n";
    writeFile(dir().file("ground.xml"), white);
    writeFile(dir().file("setup.xml"),
              "<demo><display width=\"1280\" height=\"800\"/><script filename=\"ground.xml\"/>"
              "<script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    mScript = "<script>\n<effect name=\"group\" start=\"0\" end=\"20\"/>\n</script>\n";
    window();
    EXPECT_EQ(at("group").end, 20);
    show().seek(3);
    EXPECT_GT(int(pictureAt(picture(), 0, 0)[0]), 200) << "the other script plays";
    std::string black = white;
    black.replace(black.find("white"), 5, "black");
    writeFile(dir().file("ground.xml"), black);
    EXPECT_TRUE(until("the other one's change", [&] { return pictureAt(picture(), 0, 0)[0] < 60; }));
    writeFile(dir().file("ground.xml"), "<script>");
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_EQ(window().getErrors()[0].substr(0, 11), "ground.xml:");
    EXPECT_LT(int(pictureAt(picture(), 0, 150)[0]), 60) << "it goes on as it was";
    writeFile(dir().file("ground.xml"), white);
    until("no error", [&] { return window().getErrors().empty(); });
    key("ctrl+o");
    choose("ground.xml");
    until("it is open", [&] { return element("clear") > 0; });
    editor().set({element("color")}, "value", "black");
    EXPECT_LT(int(pictureAt(picture(), 0, 0)[0]), 60);
    key("ctrl+s");
    until("the file", [&] { return readFile(dir().file("ground.xml")) == black; });
    EXPECT_EQ(script(), mScript);
}

TEST_F(StudioTest, ThePlayersEditorShowsAChangeOfItsLayout) {
    window();
    const std::string good = readFile(dir().file("layout.xml"));
    const Picture before = picture();
    key("F9");
    until("the player's editor", [&] { return window().isPreviewing(); });
    const Picture shown = picture();
    EXPECT_GT(comparePictures(before, shown).changed, 0.2);
    std::string other = good;
    other.replace(other.find("\"Timeline\""), 10, "\"A far longer heading\"");
    writeFile(dir().file("layout.xml"), other);
    EXPECT_TRUE(until("the change", [&] { return comparePictures(shown, picture()).changed > 0.0005; }));
    const Picture changed = picture();
    writeFile(dir().file("layout.xml"), "<panorama><workspace></workspace></panorama>");
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_LT(comparePictures(changed, picture()).changed, 0.2) << "the last good one stays";
    writeFile(dir().file("layout.xml"), good);
    until("no error", [&] { return window().getErrors().empty(); });
    key("Escape");
    until("the studio", [&] { return !window().isPreviewing(); });
    EXPECT_LT(comparePictures(before, picture()).changed, 0.02);
    EXPECT_EQ(editor().getUndoCount(), 0u);
}

TEST_F(StudioTest, ASceneThatCantBeReadLeavesTheLastOneRunning) {
    copyFolder("face");
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"face\"");
    window();
    show().seek(7);
    frame();
    const Picture before = picture();
    const std::string good = readFile(dir().file("face/face.o3d"));
    for (const std::string& bad : {std::string("nonsense"), std::string(), good.substr(0, 9)}) {
        const std::string error = breakAndMend("face/face.o3d", bad, "face/face.o3d", [&] {
            EXPECT_LT(comparePictures(before, picture()).changed, 0.06) << "but for the error on it";
        });
        EXPECT_EQ(error.substr(0, 12), "effect face:");
    }
}

TEST_F(StudioTest, ParticlesThatCantBeReadAreNamed) {
    copyFolder("spark");
    for (const char* bad : {"<spark><instance", "<spark></spark>", "<other></other>"})
        breakAndMend("spark/spark.xml", bad, "spark/spark.xml");
}

TEST_F(StudioTest, AShaderIsLoadedAgainAndABrokenOneNamesItsLine) {
    copyFolder("tunnel");
    const std::string error =
        breakAndMend("tunnel/tunnel.frag", "void main() {\n    nonsense;\n}\n", "tunnel/tunnel.frag");
    EXPECT_NE(error.find(":2"), std::string::npos) << error;
}

TEST_F(StudioTest, ABrokenLayoutIsNamed) {
    breakAndMend("layout.xml", "<panorama>\n<flow id=>\n", "layout.xml:");
}

// What the effects share is theirs alone: neither a click on a span nor a file that can't be used changes it.
TEST_F(StudioTest, ASelectionAndABrokenShaderLeaveThePictureAlone) {
    copyFolder("kub");
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"kub\"");
    window();
    show().seek(8);
    frame();
    const Picture before = picture();
    click("overlay");
    key("Escape");
    until("nothing selected", [&] { return editor().getSelection().empty(); });
    const auto same = [&](const Picture& after, int top) {
        size_t differ = 0;
        for (int y = top; y < 170; y += 2)
            for (int x = -280; x < 280; x += 2)
                differ += std::abs(int(pictureAt(before, x, y)[0]) - int(pictureAt(after, x, y)[0])) > 24;
        return differ < 200;
    };
    EXPECT_TRUE(same(picture(), -170));
    writeFile(dir().file("kub/kub.frag"), "nonsense");
    until("the error", [&] { return !window().getErrors().empty(); });
    EXPECT_EQ(window().getErrors()[0].substr(0, 11), "effect kub:");
    EXPECT_LT(window().getErrors().size(), 8u);
    EXPECT_TRUE(same(picture(), 20)) << "below the error";
    std::filesystem::remove_all(dir().file("kub"));
    std::filesystem::copy(sourcePath("data/kub"), dir().file("kub"));
    until("no error", [&] { return window().getErrors().empty(); });
}

TEST_F(StudioTest, WhatAnEffectThrowsEndsThatEffectAlone) {
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"waxon\"");
    mScript.replace(mScript.find("<spline"), 0, "<trigger name=\"which\" value=\"nowhere\"/>");
    window();
    show().seek(5);
    until("the failure", [&] { return !window().getErrors().empty(); });
    EXPECT_EQ(window().getErrors()[0].substr(0, 13), "effect waxon:");
    EXPECT_GT(int(pictureAt(picture(), 0, 100)[0]), 200) << "the others go on";
    editor().set({element("which")}, "value", "vaddr");
    frame();
    EXPECT_TRUE(window().getErrors().empty());
}

TEST_F(StudioTest, AReplayBringsEffectsToWhatPlayingWouldGive) {
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"greet\"");
    mScript.replace(mScript.find("<spline"), 0,
                    "<trigger name=\"next\" start=\"0\" repeat=\"5\" delay=\"1\"/>");
    window();
    show().seek(8.5); // all at once: five greetings in one place
    frame();
    const Picture jumped = picture();
    key("r");
    until("the switch", [&] { return show().isReplaying(); });
    show().seek(8.5);
    EXPECT_TRUE(show().getProgress());
    until("the replay", [&] { return !show().getProgress(); });
    EXPECT_NEAR(show().getTime(), 8.5, 1e-3);
    EXPECT_GT(comparePictures(jumped, picture()).changed, 0.003);
}

TEST_F(StudioTest, AllThatFollowsIsSelectedAndMovedAtOnce) {
    window();
    editor().addBookmark(13, "later");
    show().seek(4); // where the grid begins
    key("ctrl+shift+a");
    until("the selection", [&] { return editor().getSelection().size() == 3; });
    key("shift+Right");
    until("the move", [&] { return at("overlay").start == 14; });
    EXPECT_EQ(at("clear").start, 0);
    EXPECT_EQ(at("grid").start, 6);
    EXPECT_EQ(at("later").start, 15);
}

TEST_F(StudioTest, TheInterfaceScales) {
    mWidth = 1300;
    mHeight = 1000;
    window().setScale(2);
    timeline().fit();
    frame();
    EXPECT_EQ(timeline().mArea.world.x2, 650);
    click("overlay");
    EXPECT_EQ(editor().getSelected(), std::vector<int>{element("overlay")});
    timeline().mSnapping = false;
    drag(middle(element("overlay")), 20, 0);
    EXPECT_NEAR(at("overlay").start, 12 + 20 / timeline().mScale, 0.3);
}

TEST_F(StudioTest, WhilePausedAndStillItDrawsOnlyWhatChanges) {
    window();
    Viewer author("script.xml - Zentrak studio", [this] { window().step(); });
    const auto rest = [&] { author.until("rest", [&] { return window().isResting(); }); };
    const auto drawnInTenSteps = [&] {
        rest();
        const size_t before = window().getFrameCount();
        for (int i = 0; i < 10; ++i)
            window().step();
        return window().getFrameCount() - before;
    };
    EXPECT_EQ(drawnInTenSteps(), 0u);
    for (const int x : {600, 640}) {
        const size_t before = window().getFrameCount();
        author.moveTo(x, 500);
        author.until("a move", [&] { return window().getFrameCount() > before; });
        rest();
        EXPECT_LE(window().getFrameCount() - before, 3u) << "one event, one frame";
    }
    std::string other = script();
    other.replace(other.find("\"12\""), 4, "\"11\"");
    writeFile(dir().file("script.xml"), other);
    author.until("a change on disk", [&] { return at("overlay").start == 11; });
    EXPECT_EQ(drawnInTenSteps(), 0u) << "with its message";
    author.until("the message's end", [&] { return window().getMessage().empty(); });
    author.key("space");
    author.until("the key", [&] { return show().isPlaying(); });
    const size_t before = window().getFrameCount();
    for (int i = 0; i < 10; ++i)
        window().step();
    EXPECT_EQ(window().getFrameCount() - before, 10u);
    author.key("space");
    author.until("the key", [&] { return !show().isPlaying(); });
    EXPECT_EQ(drawnInTenSteps(), 0u);
}

// Particles move by the clock of the window, as they do in the player.
TEST_F(StudioTest, WhatMovesWhilePausedIsDrawn) {
    mWidth = 640;
    mHeight = 480;
    mScript.replace(mScript.find("name=\"grid\""), 11, "name=\"spark\"");
    mScript.replace(mScript.find("white"), 5, "black");
    writeFile(dir().file("spark/spark.xml"), readFile(sourcePath("tests/data/spark/sun.xml")));
    window();
    show().seek(9);
    const double end = glfw2::glfwGetTime() + studio::Show::STILL + 1;
    while (glfw2::glfwGetTime() < end) {
        EXPECT_TRUE(window().step());
        ASSERT_FALSE(window().isResting());
    }
}

// Keys and clicks by the hundred, wherever they fall: what is left can be undone to the file.
TEST_F(StudioTest, WhateverIsPressedUndoLeadsBackToTheFile) {
    window();
    const char* const keys[] = {"a",      "b",         "s",      "e",           "g",      "l",      "n",
                                "f",      "r",         "Return", "Delete",      "ctrl+d", "ctrl+c", "ctrl+v",
                                "ctrl+x", "ctrl+a",    "Left",   "shift+Right", "Up",     "ctrl+z", "ctrl+y",
                                "alt+Up", "alt+Right", "Tab",    "F1",          "F2",     "Escape", "Escape",
                                "plus",   "minus",     "Next",   "Home",        "End",    "space"};
    unsigned random = 12345;
    const auto next = [&random](unsigned most) {
        random = random * 1664525u + 1013904223u;
        return (random >> 8) % most;
    };
    for (int round = 0; round < 60; ++round) {
        viewer().moveTo(int(next(1280)), int(next(800)));
        if (next(2))
            viewer().click(int(next(3)) + 1);
        std::string all;
        for (int i = 0; i < 3; ++i)
            all += std::string(i ? " " : "") + keys[next(unsigned(std::size(keys)))];
        runCommand("xdotool key " + all);
        frame();
    }
    key("Escape");
    frame();
    overlay().close();
    window().getPanel().leaveKeys();
    timeline().cancelDrag();
    while (editor().undo()) {
    }
    EXPECT_EQ(editor().getDocument().getText(), mScript);
    EXPECT_EQ(script(), mScript) << "nothing was saved";
}
