// What the script checker reports, and that it finds nothing in the show's own script.
#include "support.h"

#include <gtest/gtest.h>

using namespace zentrak;

namespace {

using Result = std::pair<int, std::string>;

class CheckScript : public ::testing::Test {
protected:
    test::TempDir mFolder;

    Result run(const std::string& arguments) {
        return test::runCommand("cd " + mFolder.path() + " && " CHECK_SCRIPT " " + arguments);
    }
    // A script of these elements, from line 2 on.
    Result check(const std::string& elements, const std::string& options = "") {
        return checkFile("<script>\n" + elements + "</script>", options);
    }
    Result checkFile(const std::string& text, const std::string& options = "") {
        test::writeFile(mFolder.file("s.xml"), text);
        return run(options + " s.xml");
    }
    // A script with these elements from line 3 on, in a ten second span of "kub".
    Result checkSpan(const std::string& elements) {
        return check("<effect name=\"kub\" start=\"5\" end=\"15\">\n" + elements + "</effect>\n");
    }
};

Result finding(const std::string& text) {
    return {1, text};
}
const Result nothing = {0, ""};

} // namespace

TEST_F(CheckScript, TheScriptOfTheShowHasNoFindings) {
    EXPECT_EQ(run("--length 176 " + test::sourcePath("data/script.xml")), nothing);
}

TEST_F(CheckScript, AWholeScriptHasNone) {
    EXPECT_EQ(check("<!-- all that there is -->\n"
                    "<effect name=\"waxon\" start=\"1\" end=\"9\" state=\"on\">\n"
                    "<trigger name=\"which\" value=\"vaddr\"/>\n"
                    "<effect name=\"rund\" start=\"0\" end=\"8\" state=\"off\">\n"
                    "<trigger name=\"shot\" start=\"-1e-1\" repeat=\"3\"/>\n"
                    "<trigger name=\"shot\" start=\"4\" repeat=\"4\" delay=\"1\"/>\n"
                    "<spline name=\"alpha\" type=\"square\"><key time=\"8.0005\" value=\".5\"/></spline>\n"
                    "</effect></effect>\n"
                    "<effect name=\"credits_qark\" start=\"2\" end=\"3\"><trigger name=\"any\" "
                    "value=\"thing\"/></effect>\n"
                    "<effect name=\"verse one\" start=\"3\" end=\"4\">\n"
                    "<effect start=\"0\" end=\"1\"><effect name=\"grid\" end=\"1\"/></effect></effect>\n"),
              nothing);
}

TEST_F(CheckScript, WhatTheStudioKeepsWithAShowIsKnown) {
    EXPECT_EQ(check("<tempo bpm=\"126\" beats=\"4\" start=\"0.5\"/><bookmark name=\"drop\" time=\"12\"/>\n"
                    "<effect name=\"grid\" end=\"1\"/>\n"),
              nothing);
    EXPECT_EQ(check("<tempo bpm=\"fast\"/>\n<effect name=\"grid\" end=\"1\"/>\n").first, 1);
    EXPECT_EQ(check("<bookmark start=\"1\"/>\n<effect name=\"grid\" end=\"1\"/>\n").first, 1);
}

TEST_F(CheckScript, ASplineWithoutKeysIsNamedWithItsLine) {
    EXPECT_EQ(checkSpan("<trigger name=\"turn\"/>\n<spline name=\"alpha\"></spline>\n"),
              finding("s.xml:4: the spline 'alpha' has no keys: the whole script fails to load\n"));
    EXPECT_EQ(checkSpan("<spline\nname=\"alpha\"/>\n"),
              finding("s.xml:3: the spline 'alpha' has no keys: the whole script fails to load\n"));
}

TEST_F(CheckScript, AnEffectThatIsNoneIsNamed) {
    EXPECT_EQ(check("<effect name=\"gird\" end=\"1\"/>\n"
                    "<effect name=\"fisheye\" end=\"1\"><trigger name=\"which\"/></effect>\n"
                    "<effect name=\"wax on\" end=\"1\"><effect name=\"grid\" end=\"1\"/></effect>\n"
                    "<effect end=\"1\"/>\n"),
              finding("s.xml:2: no effect is named 'gird' (perhaps 'grid'): the span does nothing\n"
                      "s.xml:3: no effect is named 'fisheye': its triggers and splines are ignored\n"
                      "s.xml:4: no effect is named 'wax on' (perhaps 'waxon'): the span only groups\n"
                      "s.xml:5: no effect is named '': the span does nothing\n"));
}

TEST_F(CheckScript, ATriggerASplineAndAValueThatNothingAnswersToAreNamed) {
    EXPECT_EQ(
        checkSpan("<trigger name=\"trun\"/>\n<trigger name=\"shot\"/>\n<trigger/>\n"
                  "<trigger name=\"turn\" value=\"left\"/>\n"
                  "<spline name=\"Alpha\"><key time=\"0\" value=\"1\"/></spline>\n"
                  "<spline name=\"zoom\"><key time=\"0\" value=\"1\"/></spline>\n"
                  "<effect name=\"clear\" end=\"1\"><trigger name=\"color\" value=\"dark_grey\"/></effect>\n"
                  "<effect name=\"overlay\" end=\"1\"><trigger name=\"type\" value=\"\"/></effect>\n"
                  "<effect name=\"waxon\" end=\"1\"><trigger name=\"which\" value=\"vadr\"/></effect>\n"),
        finding("s.xml:3: 'kub' answers to no trigger 'trun' (perhaps 'turn')\n"
                "s.xml:4: 'kub' answers to no trigger 'shot'\n"
                "s.xml:5: 'kub' answers to no trigger ''\n"
                "s.xml:6: the trigger 'turn' of 'kub' looks at no value: 'left' is ignored\n"
                "s.xml:7: 'kub' answers to no spline 'Alpha' (perhaps 'alpha')\n"
                "s.xml:8: 'kub' answers to no spline 'zoom'\n"
                "s.xml:9: the trigger 'color' of 'clear' knows no 'dark_grey' (perhaps 'dark_gray')\n"
                "s.xml:10: the trigger 'type' of 'overlay' knows no ''\n"
                "s.xml:11: the trigger 'which' of 'waxon' knows no 'vadr' (perhaps 'vaddr'): the show ends "
                "there\n"));
}

TEST_F(CheckScript, ASpanThatIsNeverActiveIsReportedOnceWithoutItsContents) {
    EXPECT_EQ(
        check("<effect name=\"grid\" start=\"4\" end=\"4\"/>\n"
              "<effect name=\"grid\" start=\"-4\" end=\"-1\"/>\n"
              "<effect name=\"verse\" start=\"4\" end=\"1e-3\"><effect name=\"rund\" start=\"7\" end=\"8\">"
              "<trigger name=\"shot\" start=\"9\"/></effect></effect>\n"),
        finding("s.xml:2: the span is never active: its 'end' of 4 is not above its 'start' of 4\n"
                "s.xml:3: the span is never active: it ends at -1, and the show starts at 0\n"
                "s.xml:4: the span is never active: its 'end' of 0.001 is not above its 'start' of 4\n"));
}

TEST_F(CheckScript, ANestedSpanOutsideItsParentsTimeIsNamed) {
    EXPECT_EQ(checkSpan("<effect name=\"grid\" start=\"10\" end=\"12\"/>\n"
                        "<effect name=\"grid\" start=\"-2\" end=\"0\"/>\n"
                        "<effect name=\"grid\" start=\"-2\" end=\"1\"/>\n"
                        "<effect name=\"grid\" start=\"9\" end=\"12\"/>\n"),
              finding("s.xml:3: the span is never active: it starts at 10, and its parent 'kub' ends at 10\n"
                      "s.xml:4: the span is never active: it ends at 0, and its parent 'kub' starts at 0\n"
                      "s.xml:5: the span starts at -2, before its parent 'kub' at 0\n"
                      "s.xml:6: the span ends at 12, after its parent 'kub' at 10\n"));
}

// What cuts a span also cuts the spans nested in it, at any depth.
TEST_F(CheckScript, TheTimesOfAllParentsCount) {
    EXPECT_EQ(
        check("<effect name=\"a\" start=\"100\" end=\"110\"><effect name=\"b\" start=\"2\" end=\"10\">\n"
              "<effect name=\"grid\" start=\"0\" end=\"9\"/>\n"
              "<effect name=\"grid\" start=\"8\" end=\"9\"/></effect></effect>\n"),
        finding("s.xml:3: the span ends at 9, after its parent 'b' at 8\n"
                "s.xml:4: the span is never active: it starts at 8, and its parent 'b' ends at 8\n"));
}

TEST_F(CheckScript, ATriggerThatNeverFiresOrTooSeldomIsNamed) {
    EXPECT_EQ(checkSpan("<trigger name=\"turn\" start=\"10\"/>\n"
                        "<trigger name=\"turn\" repeat=\"0\"/>\n"
                        "<trigger name=\"turn\" repeat=\"-3\"/>\n"
                        "<trigger name=\"turn\" start=\"8\" repeat=\"5\" delay=\"0.75\"/>\n"
                        "<trigger name=\"turn\" start=\"8\" repeat=\"3\" delay=\"1\"/>\n"
                        "<trigger name=\"turn\" repeat=\"2\" delay=\"0\"/>\n"
                        "<trigger name=\"turn\" delay=\"2\"/>\n"),
              finding("s.xml:3: the trigger 'turn' never fires: it is due at 10, and its span runs to 10\n"
                      "s.xml:4: the trigger 'turn' never fires: its 'repeat' is 0\n"
                      "s.xml:5: the trigger 'turn' never fires: its 'repeat' is -3\n"
                      "s.xml:6: the trigger 'turn' fires 3 times and not 5: its span runs to 10\n"
                      "s.xml:7: the trigger 'turn' fires 2 times and not 3: its span runs to 10\n"
                      "s.xml:8: the trigger 'turn' fires 2 times at once: its 'delay' is 0\n"
                      "s.xml:9: 'delay' without 'repeat' is not read: the trigger 'turn' fires once\n"));
}

TEST_F(CheckScript, AKeyOutsideItsSpanAndASecondSplineOfANameAreNamed) {
    EXPECT_EQ(
        checkSpan("<spline name=\"alpha\">\n<key time=\"-1\" value=\"0\"/>\n<key time=\"10\" value=\"1\"/>\n"
                  "<key time=\"11\" value=\"1\"/></spline>\n"
                  "<spline name=\"alpha\"><key time=\"0\" value=\"1\"/></spline>\n"),
        finding("s.xml:4: the key at -1 of the spline 'alpha' lies before the start of its span\n"
                "s.xml:6: the key at 11 of the spline 'alpha' lies past the end of its span, which is 10 "
                "long\n"
                "s.xml:7: a second spline 'alpha' overrides the first\n"));
}

TEST_F(CheckScript, WithALengthNothingIsSeenPastIt) {
    const std::string spans = "<effect name=\"grid\" start=\"30\" end=\"40\"/>\n"
                              "<effect name=\"rund\" start=\"20\" end=\"40\">\n"
                              "<trigger name=\"shot\" start=\"10\"/><trigger name=\"shot\" start=\"9\"/>\n"
                              "<effect name=\"grid\" start=\"12\" end=\"13\"/></effect>\n";
    EXPECT_EQ(check(spans), nothing);
    EXPECT_EQ(
        check(spans, "--length 30"),
        finding("s.xml:2: the span is never active: it starts at 30, and the show ends at 30\n"
                "s.xml:4: the trigger 'shot' never fires: it is due at 10, and its span runs to 10\n"
                "s.xml:5: the span is never active: it starts at 12, and its parent 'rund' ends at 10\n"));
}

TEST_F(CheckScript, InvalidWordsAndNumbersAreReported) {
    EXPECT_EQ(
        check("<effect name=\"rund\" start=\"0\" end=\"4s\" state=\"OFF\">\n"
              "<trigger name=\"shot\" start=\"one\" repeat=\"2.5\" delay=\"1,5\"/>\n"
              "<spline name=\"alpha\" type=\"Smooth\"><key time=\"0\" value=\"nan\"/>\n<key/></spline>\n"
              "</effect>\n"),
        finding("s.xml:2: 'end' of 'effect' of '4s' is read as 4\n"
                "s.xml:2: 'state' of 'OFF' is neither 'on' nor 'off': the span is on\n"
                "s.xml:3: 'start' of 'trigger' of 'one' is read as 0\n"
                "s.xml:3: 'repeat' of 'trigger' of '2.5' is read as 2\n"
                "s.xml:3: 'delay' of 'trigger' of '1,5' is read as 1\n"
                "s.xml:4: 'type' of 'Smooth' is none (perhaps 'smooth'): the spline is linear\n"
                "s.xml:4: 'value' of 'key' is no finite number\n"
                "s.xml:5: no 'time' of 'key': it is 0\n"
                "s.xml:5: no 'value' of 'key': it is 0\n"));
}

TEST_F(CheckScript, AMisspeltAttributeAndElementAreNamed) {
    EXPECT_EQ(
        checkFile(
            "<script lang=\"en\">\n<efect/>\n"
            "<effect name=\"grid\" strat=\"1\" end=\"3\">text</effect>\n"
            "<effect name=\"rund\" end=\"2\"><triger/><trigger name=\"shot\" at=\"1\"><key/></trigger>\n"
            "<spline name=\"alpha\" kind=\"x\"><key time=\"0\" value=\"1\" valeu=\"2\"/><keys/></spline>"
            "</effect></script>"),
        finding("s.xml:1: unknown attribute 'lang' of 'script' is ignored\n"
                "s.xml:2: unknown element 'efect' in 'script' is ignored (perhaps 'effect')\n"
                "s.xml:3: unknown attribute 'strat' of 'effect' is ignored (perhaps 'start')\n"
                "s.xml:3: text in 'effect' is ignored\n"
                "s.xml:4: unknown element 'triger' in 'effect' is ignored (perhaps 'trigger')\n"
                "s.xml:4: unknown attribute 'at' of 'trigger' is ignored\n"
                "s.xml:4: unknown element 'key' in 'trigger' is ignored\n"
                "s.xml:5: unknown attribute 'kind' of 'spline' is ignored\n"
                "s.xml:5: unknown attribute 'valeu' of 'key' is ignored (perhaps 'value')\n"
                "s.xml:5: unknown element 'keys' in 'spline' is ignored (perhaps 'key')\n"));
}

TEST_F(CheckScript, AFileOfAnotherKindAndAnEmptyScriptAreNamed) {
    EXPECT_EQ(checkFile("<?xml version=\"1.0\"?>\n<demo></demo>"),
              finding("s.xml:2: the root is 'demo' and not 'script': nothing is loaded\n"));
    EXPECT_EQ(check(""), finding("s.xml:1: no 'effect': nothing plays\n"));
}

TEST_F(CheckScript, NoDeeperThanItCanCheck) {
    std::string open, close;
    for (int i = 0; i < 257; ++i) {
        open += "<effect name=\"group " + std::to_string(i) + "\" end=\"1\">\n";
        close += "</effect>";
    }
    EXPECT_EQ(
        check(open + close),
        finding("s.xml:258: effects are nested more than 256 deep: what is further in is not checked\n"));
}

TEST_F(CheckScript, AFileThatCantBeReadIsAnErrorThatGivesTheLine) {
    const Result broken = checkFile("<script>\n<effect name=\"grid\">\n<script>");
    EXPECT_EQ(broken.first, 2);
    EXPECT_NE(broken.second.find("(error at line 3, col "), std::string::npos) << broken.second;
    EXPECT_NE(broken.second.find("s.xml: is not XML: (error at line 3, col "), std::string::npos)
        << broken.second;
    EXPECT_EQ(run("nowhere.xml"), Result(2, "nowhere.xml: can't be read: No such file or directory\n"));
}

TEST_F(CheckScript, PrintsItsUsage) {
    const Result usage(2, "usage: zentrak-check-script [--length SECONDS] FILE...\n");
    EXPECT_EQ(run(""), usage);
    EXPECT_EQ(run("--length 4"), usage);
    EXPECT_EQ(run("--length long s.xml"), usage);
    EXPECT_EQ(run("--length -1 s.xml"), usage);
    EXPECT_EQ(run("--length"), usage);
    EXPECT_EQ(run("--help"), usage);
}

// The worst file determines the exit status, and every file is checked.
TEST_F(CheckScript, SeveralFilesAreCheckedInTurn) {
    test::writeFile(mFolder.file("good.xml"), "<script><effect name=\"grid\" end=\"1\"/></script>");
    test::writeFile(mFolder.file("bad.xml"), "<script><effect name=\"gird\" end=\"1\"/></script>");
    EXPECT_EQ(run("good.xml good.xml"), nothing);
    EXPECT_EQ(run("good.xml bad.xml"),
              finding("bad.xml:1: no effect is named 'gird' (perhaps 'grid'): the span does nothing\n"));
    EXPECT_EQ(run("nowhere.xml bad.xml").first, 2);
}
