// Edits as an author makes them, and their undo.

#include "model.h"
#include "random_edits.h"
#include "studio_editor.h"
#include "support.h"

using namespace zentrak;
using namespace zentrak::test;
using studio::Document;
using studio::Editor;
using studio::Element;
using studio::Kind;

namespace {

struct EditorTest : ::testing::Test {
    Editor editor;
    EditorTest() { editor.open(SCRIPT); }

    int index(const std::string& name, int nth = 0) const {
        const Document& document = editor.getDocument();
        for (int i = 1; i < document.getSize(); ++i)
            if (document[i].name == name && nth-- == 0)
                return i;
        ADD_FAILURE() << "no " << name;
        return 1;
    }
    const Element& at(const std::string& name, int nth = 0) const {
        return editor.getDocument()[index(name, nth)];
    }
    void select(const std::string& name, int nth = 0) { editor.select({at(name, nth).id}); }
    const std::string& text() const { return editor.getDocument().getText(); }
    // The id of a key of the nth curve "alpha".
    uint32_t key(int nth, int spline = 0) const {
        const Document& document = editor.getDocument();
        for (int i = index("alpha", spline) + 1; i < document.getSize(); ++i)
            if (document[i].kind == Kind::KEY && nth-- == 0)
                return document[i].id;
        return 0;
    }
    void undoAll() {
        while (editor.undo()) {
        }
    }
    ~EditorTest() override {
        EXPECT_EQ(readByDocument(editor.getDocument()), readByPlayer(text()));
        undoAll();
        EXPECT_EQ(text(), SCRIPT);
    }
};

} // namespace

TEST_F(EditorTest, ASpanMovesWithItsLength) {
    select("overlay");
    editor.move(1.25, 0);
    EXPECT_EQ(at("overlay").start, 13.25f);
    EXPECT_EQ(at("overlay").end, 15.25f);
    editor.move(-100, 0);
    EXPECT_EQ(at("overlay").start, 0);
    EXPECT_EQ(at("overlay").end, 2);
}

TEST_F(EditorTest, WhatLiesInASelectedSpanMovesOnce) {
    editor.select({at("waxon").id, at("grid").id, at("shot").id});
    editor.move(2, 0);
    EXPECT_EQ(at("waxon").start, 6);
    EXPECT_EQ(at("grid").start, 1);
}

TEST_F(EditorTest, ADragIsOneStep) {
    select("overlay");
    editor.beginGesture();
    for (int i = 1; i <= 30; ++i)
        editor.move(i * 0.1, 0);
    editor.endGesture();
    EXPECT_EQ(at("overlay").start, 15);
    EXPECT_EQ(editor.getUndoCount(), 1u);
    EXPECT_TRUE(editor.undo());
    EXPECT_EQ(text(), SCRIPT);
    EXPECT_TRUE(editor.redo());
    EXPECT_EQ(at("overlay").start, 15);
}

TEST_F(EditorTest, ADragThatComesBackIsNoStep) {
    select("overlay");
    editor.beginGesture();
    editor.move(3, 0);
    editor.move(0, 0);
    editor.endGesture();
    EXPECT_EQ(editor.getUndoCount(), 0u);
    EXPECT_TRUE(editor.isSaved());
}

TEST_F(EditorTest, ACancelledDragLeavesNothing) {
    select("overlay");
    editor.beginGesture();
    editor.duplicate();
    editor.cancelGesture();
    EXPECT_EQ(text(), SCRIPT);
    EXPECT_EQ(editor.getSelected(), std::vector<int>{index("overlay")});
}

TEST_F(EditorTest, AnEndMovesAlone) {
    select("overlay");
    editor.resize(Editor::Edge::LEFT, -2);
    EXPECT_EQ(at("overlay").start, 10);
    editor.resize(Editor::Edge::LEFT, 100);
    EXPECT_EQ(at("overlay").start, 13.99f);
    editor.resize(Editor::Edge::RIGHT, 1);
    EXPECT_EQ(at("overlay").end, 15);
    EXPECT_EQ(at("clear").end, 10.5f);
}

TEST_F(EditorTest, StretchingTakesTheTimesInsideAlong) {
    select("grid");
    editor.stretch(Editor::Edge::RIGHT, 15); // to twice its length
    EXPECT_EQ(at("grid").end, 31);
    EXPECT_EQ(at("shot").start, 4);
    EXPECT_EQ(at("shot").delay, 1);
    EXPECT_EQ(editor.getDocument()[index("alpha", 1) + 2].start, 16);
}

TEST_F(EditorTest, KeysMoveInTimeAndValue) {
    const uint32_t id = key(1);
    editor.select({id});
    editor.move(0.5, -0.25);
    const Element& key = editor.getDocument()[editor.getDocument().find(id)];
    EXPECT_EQ(key.start, 4.5f);
    EXPECT_EQ(key.number, 0.75f);
    EXPECT_NE(text().find("<key value=\"0.75\" time=\"4.5\"/>"), std::string::npos);
}

TEST_F(EditorTest, ASplineGoesWithItsLastKey) {
    editor.select({key(0)});
    editor.removeSelected();
    EXPECT_EQ(at("alpha").mode, 2);
    editor.select({key(0)});
    editor.removeSelected();
    EXPECT_EQ(at("alpha").mode, 1) << "only the other spline is left";
}

TEST_F(EditorTest, ADuplicateFollowsItsOriginal) {
    select("clear");
    editor.duplicate();
    EXPECT_EQ(editor.getSelected(), std::vector<int>{index("clear", 1)});
    EXPECT_EQ(at("clear", 1).start, 10.5f);
    EXPECT_EQ(at("clear", 1).end, 21);
    EXPECT_EQ(at("alpha", 1).mode, 2);
}

TEST_F(EditorTest, ACopyIsPastedAtATime) {
    editor.select({at("clear").id, at("overlay").id});
    editor.copy();
    editor.select({});
    editor.paste(30);
    EXPECT_EQ(at("clear", 1).start, 30);
    EXPECT_EQ(at("clear", 1).end, 40.5f);
    EXPECT_EQ(at("overlay", 1).start, 42);
    EXPECT_EQ(editor.getSelected().size(), 2u);
    EXPECT_EQ(at("drop").name, "drop") << "and they come after all others";
    EXPECT_GT(index("clear", 1), index("drop"));
}

TEST_F(EditorTest, ATriggerIsPastedIntoTheSelectedSpanInItsTime) {
    select("type");
    editor.copy();
    select("grid");
    editor.paste(9); // grid runs from 5 on
    EXPECT_EQ(at("type", 1).start, 4);
    EXPECT_TRUE(editor.getDocument().isInside(index("type", 1), index("grid")));
}

TEST_F(EditorTest, AKeyIsPastedIntoTheCurveOfASelectedKey) {
    editor.select({key(1)});
    editor.copy();
    editor.select({key(0, 1)});
    editor.paste(7); // the span begins at 5
    const int pasted = editor.getSelected().at(0);
    EXPECT_EQ(editor.getDocument()[pasted].start, 2);
    EXPECT_EQ(editor.getDocument()[pasted].parent, index("alpha", 1));
}

TEST_F(EditorTest, BothHalvesOfASplitDrawTheSameCurve) {
    select("waxon");
    editor.split(10);
    EXPECT_EQ(at("waxon").end, 10);
    EXPECT_EQ(at("waxon", 1).start, 10);
    EXPECT_EQ(at("waxon", 1).end, 20);
    EXPECT_FALSE(at("waxon", 1).enabled);
    EXPECT_EQ(at("grid", 1).start, -5);
    EXPECT_EQ(at("grid", 1).end, 10);
    EXPECT_EQ(at("which", 1).start, 0) << "it has fired before the cut, and is due at once";
    editor.undo();
    select("grid");
    editor.split(9); // its own second 4
    EXPECT_EQ(editor.evaluate(index("alpha", 1), 4), 0.5);
    EXPECT_EQ(editor.evaluate(index("alpha", 2), 0), 0.5);
    EXPECT_EQ(editor.evaluate(index("alpha", 2), 4), 1);
    EXPECT_EQ(at("grid").end, 5);
    EXPECT_EQ(at("grid", 1).start, 5);
    EXPECT_EQ(at("shot", 1).start, -2);
}

TEST_F(EditorTest, ASmoothCurveKeepsItsSlopesInASplit) {
    std::vector<double> before;
    for (int i = 0; i < 10; ++i)
        before.push_back(editor.evaluate(index("alpha"), i));
    select("clear");
    editor.split(2);
    for (int i = 2; i < 10; ++i)
        EXPECT_NEAR(editor.evaluate(index("alpha", 1), i - 2), before[size_t(i)], 1e-6);
    for (int i = 0; i <= 2; ++i)
        EXPECT_NEAR(editor.evaluate(index("alpha"), i), before[size_t(i)], 1e-6);
}

TEST_F(EditorTest, NewElementsGoWhereTheyBelong) {
    select("clear");
    editor.addSpan(0, "kub", 1, 3);
    EXPECT_LT(index("kub"), index("waxon"));
    EXPECT_EQ(editor.getSelected(), std::vector<int>{index("kub")});
    editor.addSpline(index("kub"), "alpha", 0.5);
    editor.addTrigger(index("kub"), "turn", "", 1.5);
    editor.addKey(index("alpha", 1), 1, 0.75);
    editor.addKey(index("alpha", 1), -1, 0.25);
    EXPECT_EQ(editor.evaluate(index("alpha", 1), 1), 0.75);
    EXPECT_EQ(editor.evaluate(index("alpha", 1), -1), 0.25);
    editor.addSpan(index("overlay"), "nested", 0, 1);
    editor.addSection(index("overlay"), "The end");
    EXPECT_EQ(index("The end") + 1, index("overlay"));
    editor.addBookmark(7.5, "hit \"it\"");
    EXPECT_EQ(at("hit \"it\"").start, 7.5f);
    EXPECT_EQ(editor.getDocument().getTempo().bpm, 120);
    editor.setTempo({126, 3, 0.5});
    EXPECT_EQ(editor.getDocument().getTempo().bpm, 126);
    EXPECT_EQ(editor.getDocument().getTempo().beats, 3);
}

TEST_F(EditorTest, ANewSpanIsDrawnOverWhatRunsAtItsBeginning) {
    editor.addSpan(0, "xor", 11, 13);
    EXPECT_GT(index("xor"), index("waxon"));
    EXPECT_LT(index("xor"), index("Finale"));
    editor.select({});
    editor.addSpan(0, "later", 100, 110, {"alpha"});
    EXPECT_EQ(editor.evaluate(index("later") + 1, 5), 1);
    EXPECT_GT(index("later"), index("drop"));
}

TEST_F(EditorTest, SectionsAndSpansAreRenamed) {
    editor.rename(index("Intro"), "Opening -- part 1");
    EXPECT_NE(text().find("<!-- Opening - part 1 -->"), std::string::npos);
    editor.rename(index("overlay"), "border");
    EXPECT_EQ(at("border").start, 12);
}

TEST_F(EditorTest, TheOrderOfDrawingChangesByOnePlace) {
    select("overlay");
    editor.reorder(-1); // over the section's head
    EXPECT_LT(index("overlay"), index("Finale"));
    editor.reorder(-1);
    EXPECT_LT(index("overlay"), index("waxon"));
    EXPECT_EQ(editor.getSelected(), std::vector<int>{index("overlay")});
    editor.reorder(1);
    EXPECT_GT(index("overlay"), index("waxon"));
}

TEST_F(EditorTest, OnlySpansAndSectionsHaveAnOrderOfDrawing) {
    select("which");
    editor.reorder(1);
    editor.select({at("waxon").id, at("overlay").id}); // nor do two at once
    editor.reorder(1);
    select("overlay"); // the last one
    editor.reorder(1);
    EXPECT_EQ(text(), SCRIPT);
    EXPECT_EQ(editor.getUndoCount(), 0u);
}

TEST_F(EditorTest, WhatIsSelectedTwiceCountsOnce) {
    const uint32_t waxon = at("waxon").id, overlay = at("overlay").id;
    editor.select({waxon, overlay, waxon});
    EXPECT_EQ(editor.getSelection(), (std::vector<uint32_t>{waxon, overlay}));
    editor.toggle(waxon);
    EXPECT_EQ(editor.getSelection(), std::vector<uint32_t>{overlay});
    editor.toggle(waxon);
    EXPECT_EQ(editor.getSelection(), (std::vector<uint32_t>{overlay, waxon}));
    editor.toggle(overlay + 1000); // which is nowhere
    EXPECT_EQ(editor.getSelection().size(), 2u);
}

TEST_F(EditorTest, SpansAreTurnedOffAndOnTogether) {
    editor.select({at("waxon").id, at("overlay").id});
    editor.toggleEnabled();
    EXPECT_TRUE(at("waxon").enabled);
    editor.toggleEnabled();
    EXPECT_FALSE(at("waxon").enabled);
    EXPECT_FALSE(at("overlay").enabled);
}

TEST_F(EditorTest, TheFileOnDiskComesInAsAStep) {
    std::string other = SCRIPT;
    other.replace(other.find("10.50"), 5, "9");
    select("overlay");
    editor.replace(other, "Reload");
    editor.setSavedText(other);
    EXPECT_TRUE(editor.isSaved());
    EXPECT_EQ(at("clear").end, 9);
    EXPECT_EQ(editor.getSelected(), std::vector<int>{index("overlay")});
    EXPECT_THROW(editor.replace("<script>", "Reload"), Exception);
    editor.undo();
    EXPECT_FALSE(editor.isSaved());
}

TEST_F(EditorTest, TimesSnapToTheNearestTargetInReach) {
    studio::Snap snap;
    snap.reach = 0.2;
    snap.tempo = {120, 4, 0.1f};
    snap.step = 0.5;
    snap.targets = {3.3};
    EXPECT_NEAR(snap(1.0), 1.1, 1e-6);
    EXPECT_NEAR(snap(3.25), 3.3, 1e-6);
    EXPECT_EQ(snap(3.84), 3.84);
    const double edges[] = {10.0, 12.25};
    EXPECT_NEAR(snap.shift(0.3, edges), 0.35, 1e-6) << "12.6 is the nearer one";
    snap.on = false;
    EXPECT_EQ(snap(1.0), 1.0);
}

TEST_F(EditorTest, EdgesAreThoseOfWhatIsNotSelected) {
    select("waxon");
    const std::vector<double> edges = getEdges(editor);
    EXPECT_EQ(edges, (std::vector<double>{0, 10.5, 12, 14, 12}));
}

namespace {

// Every way of writing a script that an author's other tools may have.
std::vector<std::pair<std::string, std::string>> fileShapes() {
    const std::string script = SCRIPT;
    std::string windows = script, mixed = script, spaces = script, spread = script, dense = script;
    for (size_t i = 0; (i = windows.find('\n', i)) != std::string::npos; i += 2)
        windows.insert(i, "\r");
    for (size_t i = 0, n = 0; (i = mixed.find('\n', i)) != std::string::npos; i += 2)
        if (++n % 3 == 0)
            mixed.insert(i, "\r");
    for (size_t i = 0; (i = spaces.find('\t', i)) != std::string::npos;)
        spaces.replace(i, 1, "   ");
    for (size_t i = 0; (i = spread.find(" start=", i)) != std::string::npos; i += 4)
        spread.replace(i, 1, "\n\t\t \t");
    std::erase(dense, '\n');
    std::erase(dense, '\t');
    const std::string comments =
        "<!-- one --><script><!-- two -->\n<!-- three\n of\n lines --><effect name=a start=0 end=4>"
        "<!-- in it --><trigger name=t/><!-- - --></effect><!--four--></script><!-- five -->";
    std::string noEnd = script;
    noEnd.pop_back();
    return {{"as it is", script},
            {"CR and LF", windows},
            {"of both line ends", mixed},
            {"spaces", spaces},
            {"attributes over several lines", spread},
            {"in one line", dense},
            {"comments", comments},
            {"no line end at the end", noEnd},
            {"empty", "<script>\n</script>"},
            {"text between", "<script>a<effect/>b c\n<effect/> d</script>"}};
}

// After every edit, positions are those of the text parsed from scratch, and the player reads what the author
// sees. With everything undone the file is as it was.
void playSession(const std::string& script, unsigned seed, int edits) {
    std::mt19937 random(seed);
    Editor editor;
    editor.open(script);
    for (int i = 0; i < edits; ++i) {
        editAtRandom(editor, random);
        const std::string& text = editor.getDocument().getText();
        Document fresh;
        ASSERT_NO_THROW(fresh.load(text)) << text;
        ASSERT_EQ(dump(editor.getDocument(), false), dump(fresh, false)) << text;
        ASSERT_EQ(readByDocument(editor.getDocument()), readByPlayer(text)) << text;
        for (int k = 0; k < editor.getDocument().getSize(); ++k)
            ASSERT_EQ(editor.getDocument().find(editor.getDocument()[k].id), k);
    }
    EXPECT_GT(editor.getUndoCount(), size_t(edits) / 10);
    const std::string last = editor.getDocument().getText();
    int steps = 0;
    while (editor.undo())
        ++steps;
    ASSERT_EQ(editor.getDocument().getText(), script);
    EXPECT_TRUE(editor.isSaved());
    for (; steps > 0; --steps)
        ASSERT_TRUE(editor.redo());
    ASSERT_EQ(editor.getDocument().getText(), last);
}

} // namespace

TEST(EditorSession, UndoneToItsBeginningEveryShapeOfFileIsAsItWasToTheByte) {
    for (const auto& [shape, script] : fileShapes())
        for (unsigned seed = 1; seed <= 12; ++seed) {
            SCOPED_TRACE(shape + ", seed " + std::to_string(seed));
            ASSERT_NO_FATAL_FAILURE(playSession(script, seed, 100));
        }
}

TEST(EditorSession, SoIsTheShowAfterALongSession) {
    ASSERT_NO_FATAL_FAILURE(playSession(readFile(sourcePath("data/script.xml")), 7, 150));
    ASSERT_NO_FATAL_FAILURE(playSession(SCRIPT, 7, 600));
}
