#include "support.h"

#include <gtest/gtest.h>

using namespace zentrak;

namespace {

class CheckLayout : public ::testing::Test {
protected:
    test::TempDir mFolder;

    std::pair<int, std::string> run(const std::string& arguments) {
        return test::runCommand("cd " + mFolder.path() + " && " CHECK_LAYOUT " " + arguments);
    }

    // A layout with these controls from line 3 on, and a style file.
    std::pair<int, std::string> check(const std::string& controls, const std::string& styles = "",
                                      const std::string& options = "") {
        test::writeFile(mFolder.file("s.xml"), "<panorama>\n" + styles + "</panorama>");
        test::writeFile(mFolder.file("l.xml"), "<panorama>\n<workspace style=\"s.xml\"><child>\n" + controls +
                                                   "</child></workspace></panorama>");
        return run(options + " l.xml");
    }
    std::pair<int, std::string> checkStyle(const std::string& styles) {
        test::writeFile(mFolder.file("s.xml"), "<panorama>\n" + styles + "</panorama>");
        return run("s.xml");
    }
};

std::pair<int, std::string> finding(const std::string& text) {
    return {1, text};
}
const std::pair<int, std::string> nothing = {0, ""};

} // namespace

TEST_F(CheckLayout, TheLayoutOfTheShowHasNoFindings) {
    EXPECT_EQ(test::runCommand(CHECK_LAYOUT " --editor " + test::sourcePath("data/layout.xml")), nothing);
}

TEST_F(CheckLayout, EveryTypeWithAllThatItReadsHasNoFindings) {
    test::writeFile(mFolder.file("p.png"), "");
    EXPECT_EQ(
        check(
            "<frame id=\"a\" hidden=\"true\"><area x=\"1\" y=\"-2.5\" width=\"10\" height=\"2e1\"/><child>"
            "<button caption=\"b\" toggled=\"true\" class=\"big\"><area w=\"9\" h=\"9\"/></button>"
            "<checkbox name=\"n\"><option name=\"o\" checked=\"true\"/></checkbox>"
            "<dropdown><option id=\"1\" name=\"one\" default=\"true\"/></dropdown>"
            "<image filename=\"p.png\"/><label text=\"t\" align=\"center\" valign=\"middle\"/>"
            "<layoutstack direction=\"horisontal\"/>"
            "<menubar caption=\"m\"><item caption=\"File\"><item caption=\"Open\" id=\"o\"/></item></menubar>"
            "<panel caption=\"c\"/><radiobutton><option name=\"o\"/></radiobutton>"
            "<scrollbar direction=\"vertical\"/>"
            "<slider direction=\"horisontal\" min=\"0\" max=\"9\" size=\"3\" percent=\"0.5\"/>"
            "<spline type=\"smooth\"><item x=\"0\" y=\"1\"/></spline>"
            "<splineorg type=\"linear\"><item x=\"0\" y=\"1\"/></splineorg><stat/>"
            "<tabview><child><tabframe caption=\"t\"/></child></tabview>"
            "<textinput text=\"\" type=\"numeric\" inactive=\"true\"/>"
            "<treeview id=\"t\" size=\"12\" text=\"x\"><item id=\"1\" text=\"a\" size=\"2\"><item "
            "text=\"b\"/>"
            "</item></treeview><window caption=\"w\"/><workspace style=\"s.xml\"/>"
            "</child></frame><flow direction=\"vertical\"><child><stat><area size=\"10\"/></stat>"
            "<stat><area percent=\"50\"/></stat></child></flow>\n",
            "<!-- colours --><button caption=\"x\"><color name=\"back.color\" first=\"00ff00\" "
            "second=\"00FF0080\"/></button><big><area width=\"1\" height=\"1\"/></big>"),
        nothing);
}

TEST_F(CheckLayout, AnUnknownTypeIsNamedWithItsLine) {
    EXPECT_EQ(check("<label/>\n<lable>\n</lable>\n<frame><child>\n\n<knob/></child></frame>"),
              finding("l.xml:4: unknown type 'lable': it is left out\n"
                      "l.xml:8: unknown type 'knob': it is left out\n"));
}

TEST_F(CheckLayout, AnUnknownAttributeIsNamedWithItsLine) {
    EXPECT_EQ(check("<label\n text=\"a\"\n colour=\"red\"/>\n<button text=\"b\"><area left=\"4\" width=\"1\" "
                    "height=\"1\"/></button>"),
              finding("l.xml:3: unknown attribute 'colour' of 'label'\n"
                      "l.xml:6: unknown attribute 'text' of 'button'\n"
                      "l.xml:6: unknown attribute 'left' of 'area'\n"));
    EXPECT_EQ(check("<dropdown><option id=\"1\" text=\"x\"/></dropdown>"),
              finding("l.xml:3: unknown attribute 'text' of 'option'\n"));
}

TEST_F(CheckLayout, HorizontalIsNoDirection) {
    EXPECT_EQ(
        check("<slider direction=\"horizontal\"/>\n<scrollbar direction=\"horizontal\"/>\n<flow "
              "direction=\"Vertical\"/>"),
        finding("l.xml:3: 'direction' of 'slider' is 'horizontal', and the word is 'horisontal': it is "
                "taken for 'vertical'\n"
                "l.xml:4: 'direction' of 'scrollbar' is 'horizontal', and the word is 'horisontal': both "
                "bars are kept\n"
                "l.xml:5: 'direction' of 'flow' of 'Vertical' is no word for it: it is taken for "
                "'vertical'\n"));
}

TEST_F(CheckLayout, AClassNeedsAStyle) {
    EXPECT_EQ(check("<label class=\"title\"/>\n<label class=\"tilte\"/>", "<title/>"),
              finding("l.xml:4: no style for the class 'tilte'\n"));
    EXPECT_EQ(check("<label/>", "<label/>\n<titel/>"),
              finding("s.xml:3: 'titel' is neither a type nor a class that is used\n"));
}

TEST_F(CheckLayout, ReportsWhatTheEditorNeedsAndLacks) {
    const std::string all = "<frame id=\"main\"/><flow id=\"effects\"/><slider id=\"timeslider\"/>"
                            "<stat id=\"fps_stat\"/><label id=\"fps\"/>";
    EXPECT_EQ(check(all, "", "--editor"), nothing);
    EXPECT_EQ(check("<label/>"), nothing);
    EXPECT_EQ(check("<frame id=\"Main\"/><stat id=\"fps\"/>", "", "--editor"),
              finding("l.xml:1: no control 'main', the container that Tab shows and hides\n"
                      "l.xml:1: no control 'effects', the container of the rows\n"
                      "l.xml:1: no control 'timeslider', what scrolls the timeline\n"
                      "l.xml:1: no control 'fps_stat', the graph of the frame rate\n"
                      "l.xml:3: 'fps', the frame rate in figures, is no 'label'\n"));
}

TEST_F(CheckLayout, ReportsMisreadValues) {
    EXPECT_EQ(
        check("<label align=\"middle\"/><frame hidden=\"yes\"/>\n<slider min=\"1,5\" max=\"inf\" "
              "percent=\"50\"/>\n<slider min=\"1\" max=\"1\" size=\"\"/>\n<textinput type=\"number\"/>"),
        finding("l.xml:3: 'align' of 'label' of 'middle' is no word for it: it is taken for 'left'\n"
                "l.xml:3: 'hidden' of 'frame' of 'yes' is no word for it: it is ignored\n"
                "l.xml:4: 'min' of 'slider' of '1,5' is read as 1\n"
                "l.xml:4: 'max' of 'slider' is no finite number\n"
                "l.xml:4: 'percent' of 'slider' is not from 0 to 1\n"
                "l.xml:5: 'size' of 'slider' is empty: it is ignored\n"
                "l.xml:5: 'min' and 'max' of 'slider' are the same: it has one value\n"
                "l.xml:6: 'type' of 'textinput' of 'number' is no word for it: any text is taken\n"));
}

TEST_F(CheckLayout, ReportsImpossibleAreas) {
    EXPECT_EQ(
        check("<label><area width=\"10\"/></label>\n<label><area width=\"5\" w=\"5\" "
              "height=\"4\"/></label>\n<label><area size=\"5\" maximized=\"true\"/></label>\n<flow><child>"
              "<label><area size=\"x\"/></label></child></flow>"),
        finding("l.xml:3: an 'area' without a 'height' is not seen\n"
                "l.xml:4: 'width' and 'w' of 'area' add up\n"
                "l.xml:5: 'size' of 'area' has a meaning only in a 'flow'\n"
                "l.xml:6: 'size' of 'area' of 'x' is read as 0\n"));
}

TEST_F(CheckLayout, ReportsInvalidColors) {
    EXPECT_EQ(
        checkStyle("<label><color name=\"text.colour\" first=\"fff\" second=\"#ffffff\"/></label>\n"
                   "<label><color name=\"back.pushed\" first=\"00000000\" second=\"00000g\"/></label>"),
        finding("s.xml:2: 'text.colour' is no name of a 'color'\n"
                "s.xml:2: 'first' of 'color' is no colour of six or eight hexadecimal digits: 'fff'\n"
                "s.xml:2: 'second' of 'color' is no colour of six or eight hexadecimal digits: '#ffffff'\n"
                "s.xml:3: a second style 'label'\n"
                "s.xml:3: 'second' of 'color' is no colour of six or eight hexadecimal digits: "
                "'00000g'\n"));
}

TEST_F(CheckLayout, ReportsElementsThatAreNotRead) {
    EXPECT_EQ(check("<frame>\n<label/>\n<border/>\nhello</frame><label id=\"a\"/><label id=\"a\"/>"),
              finding("l.xml:4: a 'label' that stands in 'frame' without a 'child' round it\n"
                      "l.xml:5: unknown element 'border' in 'frame'\n"
                      "l.xml:6: text in 'frame' is ignored\n"
                      "l.xml:6: a second control named 'a' can't be found by it\n"));
    EXPECT_EQ(check("<image filename=\"gone.png\"/>"),
              finding("l.xml:3: the picture 'gone.png' is not there\n"));
}

TEST_F(CheckLayout, AFileOfAnotherKindOrNoneAtAll) {
    test::writeFile(mFolder.file("x.xml"), "<script>\n</script>");
    EXPECT_EQ(run("x.xml"), finding("x.xml:1: the root is 'script' and not 'panorama': nothing is loaded\n"));
    EXPECT_EQ(run("--editor x.xml"),
              finding("x.xml:1: the root is 'script' and not 'panorama': nothing is loaded\n"));
    EXPECT_EQ(run("gone.xml"),
              std::pair(2, std::string("gone.xml: can't be read: No such file or directory\n")));
    for (const char* arguments : {"", "--editor", "--help", "x.xml --editor"})
        EXPECT_EQ(run(arguments),
                  std::pair(2, std::string("usage: zentrak-check-layout [--editor] FILE...\n")));

    test::writeFile(mFolder.file("x.xml"), "<panorama><workspace");
    const auto broken = run("x.xml");
    EXPECT_EQ(broken.first, 2);
    EXPECT_NE(broken.second.find("x.xml: is not XML: (error at line 1, col 21); EOF"), std::string::npos)
        << broken.second;

    test::writeFile(mFolder.file("x.xml"), "<panorama>\n<workspace style=\"gone.xml\"/>\n<workspace><child>\n"
                                           "</child></workspace></panorama>");
    const auto unstyled = run("x.xml");
    EXPECT_EQ(unstyled.first, 2);
    EXPECT_NE(unstyled.second.find("x.xml:2: the style 'gone.xml' can't be read\n"), std::string::npos);
    EXPECT_NE(unstyled.second.find("x.xml:3: the workspace has no 'style'\n"), std::string::npos);
}

TEST_F(CheckLayout, DeepNestingEndsTheCheckAndNotTheProgram) {
    std::string deep;
    for (int i = 0; i < 20000; ++i)
        deep += "<frame><child>";
    deep += "<label/>";
    for (int i = 0; i < 20000; ++i)
        deep += "</child></frame>";
    EXPECT_EQ(check(deep), finding("l.xml:3: 'frame' stands too deep to be looked into\n"));
}

TEST_F(CheckLayout, TheWorstOfSeveralFilesIsTheStatus) {
    test::writeFile(mFolder.file("good.xml"), "<panorama><label/></panorama>");
    test::writeFile(mFolder.file("bad.xml"), "<panorama><label size=\"1\"/></panorama>");
    EXPECT_EQ(run("bad.xml good.xml"), finding("bad.xml:1: unknown attribute 'size' of 'label'\n"));
    EXPECT_EQ(run("bad.xml gone.xml").first, 2);
}
