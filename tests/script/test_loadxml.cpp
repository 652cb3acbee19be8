// Script files, loaded whole and element by element.
#include "script_loadxml.h"
#include "support.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <gtest/gtest.h>
#include <limits>

using namespace zentrak;
using namespace zentrak::script;
using zentrak::test::CaptureStdout;

namespace {

struct Loaded : ScriptEngine {
    bool ok = false;

    explicit Loaded(const std::string& text) { add(text); }
    void add(const std::string& text) { ok = LoadXML().loadMem(text.data(), long(text.size()), *this); }
};

std::string inEffect(const std::string& body) {
    return "<script><effect name=\"e\" end=\"9\">" + body + "</effect></script>";
}

} // namespace

TEST(LoadXml, ReadsEveryAttributeOfEveryElement) {
    const Loaded script(R"(<?xml version="1.0"?>
<script>
    <effect name="kub" start="10" end="40">
        <trigger name="flash" value="red one" start="2" repeat="4" delay="0.5"/>
        <effect name="grid" state="off" start="5" end="10.5"/>
        <spline name="alpha" type="smooth">
            <key time="0" value="1"/>
            <key time="30" value="-2.5"/>
        </spline>
        <trigger name="turn" start="1"/>
    </effect>
    <effect/>
</script>)");
    ASSERT_TRUE(script.ok);
    EXPECT_EQ(script.mScriptLength, 40);
    ASSERT_EQ(script.mEffects.size(), 2u);

    const Effect& kub = *script.mEffects[0];
    EXPECT_EQ(kub.mName, "kub");
    EXPECT_TRUE(kub.mEnabled);
    EXPECT_EQ(kub.mStart, 10);
    EXPECT_EQ(kub.mEnd, 40);
    EXPECT_TRUE(kub.mNeedReset);
    ASSERT_EQ(kub.mTriggers.size(), 2u);
    EXPECT_EQ(kub.mTriggers[0]->mName, "flash");
    EXPECT_EQ(kub.mTriggers[0]->mValue, "red one");
    EXPECT_EQ(kub.mTriggers[0]->mStart, 2);
    EXPECT_EQ(kub.mTriggers[0]->mRepeat, 4);
    EXPECT_EQ(kub.mTriggers[0]->mDelay, 0.5f);
    EXPECT_EQ(kub.mTriggers[0]->mFired, 0);
    EXPECT_EQ(kub.mTriggers[1]->mName, "turn");
    EXPECT_EQ(kub.mTriggers[1]->mValue, "");
    ASSERT_EQ(kub.mSplines.size(), 1u);
    EXPECT_EQ(kub.mSplines[0]->mName, "alpha");
    EXPECT_EQ(kub.mSplines[0]->mMode, 2);
    ASSERT_EQ(kub.mSplines[0]->mKeys.size(), 2u);
    EXPECT_EQ(kub.mSplines[0]->mKeys[1].time, 30);
    EXPECT_EQ(kub.mSplines[0]->mKeys[1].value, -2.5f);
    EXPECT_EQ(kub.mSplines[0]->mKeys[0].tangentOut, -3.5f * 30); // computed in the file's mode
    ASSERT_EQ(kub.mChildren.size(), 1u);
    EXPECT_EQ(kub.mChildren[0]->mName, "grid");
    EXPECT_FALSE(kub.mChildren[0]->mEnabled);
    EXPECT_EQ(kub.mChildren[0]->mStart, 5);
    EXPECT_EQ(kub.mChildren[0]->mEnd, 10.5f);

    const Effect& bare = *script.mEffects[1];
    EXPECT_EQ(bare.mName, "");
    EXPECT_TRUE(bare.mEnabled);
    EXPECT_EQ(bare.mStart, 0);
    EXPECT_EQ(bare.mEnd, 0);
}

TEST(LoadXml, ADelayWithoutRepeatIsNotRead) {
    const Loaded script(inEffect("<trigger delay=\"3\"/><trigger delay=\"3\" repeat=\"\"/>"));
    for (const Trigger* trigger : script.mEffects[0]->mTriggers) {
        EXPECT_EQ(trigger->mRepeat, 1);
        EXPECT_EQ(trigger->mDelay, 0);
    }
    EXPECT_EQ(script.mEffects[0]->mTriggers.size(), 2u);
}

TEST(LoadXml, ARepeatWithoutDelayFiresEveryTenthOfASecond) {
    const Loaded script(inEffect("<trigger repeat=\"3\"/><trigger repeat=\"3\" delay=\"\"/>"));
    for (const Trigger* trigger : script.mEffects[0]->mTriggers) {
        EXPECT_EQ(trigger->mRepeat, 3);
        EXPECT_EQ(trigger->mDelay, 0.1f);
    }
}

TEST(LoadXml, ARepeatOfZeroIsPresent) {
    const Loaded script(inEffect("<trigger repeat=\"0\"/><trigger repeat=\"word\" delay=\"word\"/>"));
    EXPECT_EQ(script.mEffects[0]->mTriggers[0]->mRepeat, 0);
    EXPECT_EQ(script.mEffects[0]->mTriggers[0]->mDelay, 0.1f);
    EXPECT_EQ(script.mEffects[0]->mTriggers[1]->mRepeat, 0);
    EXPECT_EQ(script.mEffects[0]->mTriggers[1]->mDelay, 0);
}

TEST(LoadXml, OnlyTheExactStateOffDisables) {
    const Loaded script(
        "<script><effect state=\"on\"/><effect state=\"OFF\"/><effect/><effect state=\" off\"/>"
        "<effect state=\"off\"/></script>");
    ASSERT_EQ(script.mEffects.size(), 5u);
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(script.mEffects[size_t(i)]->mEnabled) << i;
    EXPECT_FALSE(script.mEffects[4]->mEnabled);
}

TEST(LoadXml, OnlyTheExactTypesSquareAndSmoothAreNotLinear) {
    const std::string key = "<key/></spline>";
    const Loaded script(inEffect("<spline type=\"square\">" + key + "<spline type=\"smooth\">" + key +
                                 "<spline type=\"Smooth\">" + key + "<spline type=\"linear\">" + key +
                                 "<spline>" + key));
    ASSERT_TRUE(script.ok);
    const int modes[] = {0, 2, 1, 1, 1};
    ASSERT_EQ(script.mEffects[0]->mSplines.size(), 5u);
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(script.mEffects[0]->mSplines[i]->mMode, modes[i]) << i;
}

TEST(LoadXml, KeysInAnyOrderEndUpSorted) {
    const Loaded script(inEffect("<spline><key time=\"5\" value=\"50\"/><key time=\"-1\" value=\"2\"/>"
                                 "<key time=\"3\" value=\"30\"/></spline>"));
    const auto& keys = script.mEffects[0]->mSplines[0]->mKeys;
    ASSERT_EQ(keys.size(), 3u);
    EXPECT_EQ(keys[0].time, -1);
    EXPECT_EQ(keys[1].time, 3);
    EXPECT_EQ(keys[2].time, 5);
    EXPECT_EQ(keys[1].value, 30);
}

TEST(LoadXml, AnEndBelowTheStartStillCountsForTheLength) {
    const Loaded script("<script><effect start=\"20\" end=\"12\"/></script>");
    EXPECT_EQ(script.mScriptLength, 12);
}

TEST(LoadXml, ASplineWithoutKeysFailsTheLoadAndNothingPlays) {
    CaptureStdout out;
    const Loaded script("<script><effect name=\"first\" end=\"5\"/><effect name=\"second\" end=\"6\">"
                        "<effect name=\"inner\"><spline name=\"alpha\"></spline></effect></effect>"
                        "<effect name=\"third\" end=\"7\"/></script>");
    EXPECT_FALSE(script.ok);
    ASSERT_EQ(script.mEffects.size(), 1u); // what was read before stays
    EXPECT_EQ(script.mEffects[0]->mName, "first");
    EXPECT_EQ(script.mScriptLength, 0);
    EXPECT_NE(out.text().find("The script's spline 'alpha' of effect 'inner' has no keys"),
              std::string::npos);
}

TEST(LoadXml, AFailedSecondLoadKeepsTheLengthOfTheFirst) {
    Loaded script("<script><effect name=\"a\" end=\"5\"/></script>");
    script.add("<script><effect name=\"b\" end=\"50\"/><effect><spline/></effect></script>");
    EXPECT_FALSE(script.ok);
    EXPECT_EQ(script.mEffects.size(), 2u);
    EXPECT_EQ(script.mScriptLength, 5);
}

TEST(LoadXml, SeveralScriptsAddUp) {
    Loaded script("<script><effect name=\"a\" end=\"5\"/></script>");
    script.add("<script><effect name=\"b\" end=\"3\"/></script>");
    EXPECT_TRUE(script.ok);
    ASSERT_EQ(script.mEffects.size(), 2u);
    EXPECT_EQ(script.mEffects[1]->mName, "b");
    EXPECT_EQ(script.mScriptLength, 5);
}

TEST(LoadXml, AnotherRootFailsAndAddsNothing) {
    const Loaded script("<demo><effect end=\"5\"/></demo>");
    EXPECT_FALSE(script.ok);
    EXPECT_TRUE(script.mEffects.empty());
    EXPECT_EQ(script.mScriptLength, 0);
}

TEST(LoadXml, AnEmptyScriptLoads) {
    const Loaded script("<script></script>");
    EXPECT_TRUE(script.ok);
    EXPECT_TRUE(script.mEffects.empty());
}

TEST(LoadXml, BrokenXmlThrowsWithItsPosition) {
    ScriptEngine engine;
    const std::string text = "<script>\n<effect name=\"a\n\"/></script>";
    try {
        LoadXML().loadMem(text.data(), long(text.size()), engine);
        FAIL() << "no exception";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(),
                     "(error at line 2, col 16); You must close the value using \" (when reading tag at "
                     "1:9)");
    }
    EXPECT_TRUE(engine.mEffects.empty());
}

TEST(LoadXml, CommentsAndTextAmongTheElementsAreNothing) {
    const Loaded script(
        "<script>words<!-- a note --><effect name=\"a\" end=\"2\">more<!-- and --></effect></script>");
    EXPECT_TRUE(script.ok);
    EXPECT_EQ(script.mEffects.size(), 1u);
}

TEST(LoadXml, NoNestIsTooDeepToLoadPlayAndFree) {
    constexpr int DEPTH = 300000;
    std::string text = "<script>";
    for (int i = 0; i < DEPTH; ++i)
        text += "<effect name=\"e\" end=\"9\">";
    for (int i = 0; i < DEPTH; ++i)
        text += "</effect>";
    struct Counter : Callback {
        int entered = 0, left = 0;
        void update(float, float, float) override { ++entered; }
        void postUpdate(float, float, float) override { ++left; }
    } counter;
    Loaded nest(text + "</script>");
    EXPECT_TRUE(nest.ok);
    nest.addCallback("e", &counter);
    nest.update(1);
    EXPECT_EQ(counter.entered, DEPTH);
    EXPECT_EQ(counter.left, DEPTH);
}

TEST(LoadXml, ASpanThatHoldsOneThatCannotBeLoadedIsNotLoadedEither) {
    xml::XmlParser parser;
    parser.parse(std::string("<root><effect><effect name=\"whole\"/><effect><effect end=\"1\"/><effect>"
                             "<spline/></effect></effect></effect></root>"));
    const xml::XmlParser& root = parser;
    xml::IteratorConst effects = root.createIterator("effect");
    ASSERT_TRUE(++effects);
    Effect effect;
    EXPECT_FALSE(LoadXML().loadEffect(effects, &effect));
    ASSERT_EQ(effect.mChildren.size(), 1u);
    EXPECT_EQ(effect.mChildren[0]->mName, "whole");
}

TEST(LoadXml, AScriptThatCannotBeReadIsNamedInTheLog) {
    const test::TempDir dir;
    ScriptEngine engine;
    CaptureStdout out;
    EXPECT_FALSE(LoadXML().load(dir.file("missing.xml").c_str(), engine));
    EXPECT_NE(out.text().find("The script '" + dir.file("missing.xml") + "' can't be read"),
              std::string::npos);
    test::writeFile(dir.file("broken.xml"), "<script");
    EXPECT_THROW(LoadXML().load(dir.file("broken.xml").c_str(), engine), Exception);
    EXPECT_NE(out.text().find("The file '" + dir.file("broken.xml") + "' can't be read"), std::string::npos);
}

TEST(LoadXml, AbsurdNumbersAreHarmless) {
    Loaded script(
        "<script><effect name=\"e\" start=\"nan\" end=\"1e999\"><trigger repeat=\"2000000000\" "
        "delay=\"-1e30\"/>"
        "<spline><key time=\"inf\" value=\"nan\"/><key time=\"nan\"/><key time=\"-inf\" value=\"1e40\"/>"
        "</spline></effect><effect name=\"e\" start=\"-1e38\" end=\"1e38\"><spline type=\"smooth\">"
        "<key time=\"nan\"/><key time=\"0\"/><key time=\"nan\" value=\"inf\"/><key time=\"1\"/></spline>"
        "</effect></script>");
    EXPECT_TRUE(script.ok);
    struct Nothing : Callback {
        void update(float, float, float) override {}
    } nothing;
    script.addCallback("e", &nothing);
    for (float time : {0.0f, 0.5f, 3.0e38f, 1.0f, std::numeric_limits<float>::infinity()})
        script.update(time);
}

TEST(LoadXml, LoadReadsAPlainFile) {
    const test::TempDir dir;
    test::writeFile(dir.file("show.xml"), "<script><effect name=\"a\" end=\"5\"/></script>");
    ScriptEngine engine;
    EXPECT_TRUE(LoadXML().load(dir.file("show.xml").c_str(), engine));
    EXPECT_EQ(engine.mEffects.size(), 1u);
    EXPECT_FALSE(LoadXML().load(dir.file("missing.xml").c_str(), engine));
    EXPECT_FALSE(LoadXML().load(dir.path().c_str(), engine)); // a directory
    EXPECT_EQ(engine.mEffects.size(), 1u);
}

TEST(LoadXml, LoadMemRefusesASizeBelowZero) {
    ScriptEngine engine;
    EXPECT_FALSE(LoadXML().loadMem("", -1, engine));
}

TEST(LoadXml, EachElementIsReadIntoARecordOfTheCaller) {
    xml::XmlParser parser;
    const std::string text =
        "<root><effect name=\"e\" start=\"1\" end=\"2\"/><trigger name=\"t\" repeat=\"2\"/>"
        "<spline name=\"s\"><key time=\"1\" value=\"4\"/></spline><spline name=\"none\"/></root>";
    parser.parse(text);
    const xml::XmlParser& root = parser;
    LoadXML loader;
    Effect effect;
    Trigger trigger;
    Spline spline, none;

    xml::IteratorConst effects = root.createIterator("effect");
    ASSERT_TRUE(++effects);
    EXPECT_TRUE(loader.loadEffect(effects, &effect));
    EXPECT_EQ(effect.mName, "e");
    EXPECT_EQ(effect.mEnd, 2);
    xml::IteratorConst triggers = root.createIterator("trigger");
    ASSERT_TRUE(++triggers);
    EXPECT_TRUE(loader.loadTrigger(triggers, &trigger));
    EXPECT_EQ(trigger.mName, "t");
    EXPECT_EQ(trigger.mRepeat, 2);
    xml::IteratorConst splines = root.createIterator("spline");
    ASSERT_TRUE(++splines);
    EXPECT_TRUE(loader.loadSpline(splines, &spline));
    EXPECT_EQ(spline.mName, "s");
    EXPECT_EQ(spline.mKeys.size(), 1u);
    ASSERT_TRUE(++splines);
    EXPECT_FALSE(loader.loadSpline(splines, &none));
}
