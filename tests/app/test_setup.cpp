// Setup files, read and written back. No test here opens a window.
#include "am_videofile.h"
#include "kin_main.h"
#include "support.h"
#include "xml_iterator.h"
#include "xml_parser.h"
#include "ztk_system.h"

#include <cmath>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace zentrak;
using kindler::Kindler;
using test::CaptureStdout;

namespace {

// An empty current folder.
class SetupFile : public ::testing::Test {
protected:
    test::TempDir mDir;
    test::WorkingDir mWorking{mDir.path()};

    void write(const std::string& name, const std::string& text) { test::writeFile(mDir.file(name), text); }
    std::string read(const std::string& name) { return test::readFile(mDir.file(name)); }

    // The exception text of the setup, or "". What it prints is in mPrinted.
    std::string problem(Kindler& kindler) {
        CaptureStdout out;
        std::string message;
        try {
            kindler.setup();
        } catch (const std::exception& e) {
            message = e.what();
        }
        mPrinted = out.text();
        return message;
    }
    std::string mPrinted;
};

// Reads `elements` as a setup file.
struct Demo : Kindler {
    explicit Demo(const std::string& elements) {
        test::writeFile("setup.xml", "<demo>" + elements + "</demo>");
        setup();
    }
};

} // namespace

TEST_F(SetupFile, TheDriverStartsInItsInitialState) {
    const Kindler kindler{};
    EXPECT_EQ(kindler.mDisplay, nullptr);
    EXPECT_FALSE(kindler.mNoSound);
    EXPECT_FALSE(kindler.mMuted);
    EXPECT_EQ(kindler.mDemoLength, 500.0f);
    EXPECT_EQ(kindler.mMusicFile, "");
    EXPECT_FALSE(kindler.mSetupDone);
    EXPECT_FALSE(kindler.mDisplayEnabled);
    EXPECT_FALSE(kindler.mLoop);
    EXPECT_FALSE(kindler.mPaused);
    EXPECT_EQ(kindler.mStartTime, 0);
    EXPECT_EQ(kindler.mTime, 0);
    EXPECT_EQ(kindler.mRawTime, 0);
    EXPECT_EQ(kindler.mHeight, 0);
    EXPECT_EQ(kindler.mWidth, 0);
    EXPECT_TRUE(kindler.mOsdShow);
    EXPECT_EQ(kindler.mOsdLocation, 0);
    EXPECT_EQ(kindler.mOsdDelay, 2.0f);
    EXPECT_EQ(kindler.mOsdTime, -100.0f);
    EXPECT_TRUE(kindler.mNoListener);
    EXPECT_EQ(kindler.mScriptFile, "");
    EXPECT_EQ(kindler.mVideo, nullptr);
    EXPECT_TRUE(kindler.mFrame.isNull());
}

TEST_F(SetupFile, EveryAttributeIsRead) {
    write("show.xml", "<script><effect name=\"clear\" end=\"9\"/></script>");
    write("setup.xml", R"(<?xml version="1.0"?>
<demo>
    <setup width="800" height="0x258" filename="launch.png" title="Choose"/>
    <music mute="on" filename="music/tune.ogg"/>
    <script filename="show.xml"/>
    <osd show="on" location="bottom" delay="3.5"/>
    <display width="1280" height="0x320" fullscreen="on" title="A show"/>
    <archive path="zip://data.zip"/>
    <time start="12.5" loop="on"/>
</demo>)");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "");
    EXPECT_TRUE(kindler.mSetupDone);
    EXPECT_EQ(kindler.mStartTime, 12.5f);
    EXPECT_TRUE(kindler.mLoop);
    EXPECT_TRUE(kindler.mDisplayEnabled);
    EXPECT_EQ(kindler.mWidth, 1280);
    EXPECT_EQ(kindler.mHeight, 800);
    EXPECT_TRUE(kindler.mFullscreen);
    EXPECT_EQ(kindler.mTitle, "A show");
    EXPECT_TRUE(kindler.mOsdShow);
    EXPECT_EQ(kindler.mOsdLocation, 2);
    EXPECT_EQ(kindler.mOsdDelay, 3.5f);
    EXPECT_EQ(kindler.mScriptFile, "show.xml");
    EXPECT_EQ(kindler.mScript.mScriptLength, 9);
    EXPECT_FALSE(kindler.mNoSound);
    EXPECT_TRUE(kindler.mMuted);
    EXPECT_EQ(kindler.mMusicFile, "music/tune.ogg");
    EXPECT_EQ(kindler.mSetupWidth, 800);
    EXPECT_EQ(kindler.mSetupHeight, 600);
    EXPECT_EQ(kindler.mSetupFilename, "launch.png");
    EXPECT_EQ(kindler.mSetupTitle, "Choose");
    EXPECT_EQ(kindler.mVideo, nullptr);
    EXPECT_NE(mPrinted.find("Kindler: Adding archive: zip://data.zip\n"), std::string::npos) << mPrinted;
}

TEST_F(SetupFile, AbsentAttributesTakeTheirDefaults) {
    const Demo setup("<time/><display/><osd/><music/><setup/>");
    EXPECT_TRUE(setup.mSetupDone);
    EXPECT_TRUE(setup.mDisplayEnabled);
    EXPECT_EQ(setup.mStartTime, 0);
    EXPECT_FALSE(setup.mLoop);
    EXPECT_EQ(setup.mWidth, 0);
    EXPECT_EQ(setup.mHeight, 0);
    EXPECT_FALSE(setup.mFullscreen);
    EXPECT_EQ(setup.mTitle, "");
    EXPECT_FALSE(setup.mOsdShow); // the osd element doesn't say "on"
    EXPECT_EQ(setup.mOsdLocation, 0);
    EXPECT_EQ(setup.mOsdDelay, 2.0f);
    EXPECT_FALSE(setup.mNoSound);
    EXPECT_FALSE(setup.mMuted);
    EXPECT_EQ(setup.mMusicFile, "");
}

TEST_F(SetupFile, WithoutAnOsdElementTheDisplayShows) {
    const Demo setup("<time/>");
    EXPECT_TRUE(setup.mOsdShow);
    EXPECT_FALSE(setup.mDisplayEnabled);
}

TEST_F(SetupFile, OfSeveralElementsTheLastOneWins) {
    const Demo setup(
        "<display width=\"100\" fullscreen=\"on\" title=\"one\"/><time start=\"3\" loop=\"on\"/>"
        "<osd show=\"off\" location=\"bottom\" delay=\"9\"/><display width=\"200\" title=\"two\"/>"
        "<time start=\"4\" loop=\"off\"/><osd show=\"on\"/><music filename=\"a\" mute=\"on\"/>"
        "<music filename=\"b\" mute=\"off\"/>");
    EXPECT_EQ(setup.mWidth, 200);
    EXPECT_EQ(setup.mTitle, "two");
    EXPECT_FALSE(setup.mFullscreen); // cleared by each element
    EXPECT_EQ(setup.mStartTime, 4);
    EXPECT_TRUE(setup.mLoop);     // only ever set
    EXPECT_FALSE(setup.mOsdShow); // only ever cleared
    EXPECT_EQ(setup.mOsdLocation, 0);
    EXPECT_EQ(setup.mOsdDelay, 2.0f);
    EXPECT_EQ(setup.mMusicFile, "b");
    EXPECT_TRUE(setup.mMuted); // only ever set
}

TEST_F(SetupFile, ScriptsAddUp) {
    write("one.xml", "<script><effect name=\"a\" end=\"3\"/></script>");
    write("two.xml", "<script><effect name=\"b\" end=\"5\"/></script>");
    const Demo setup("<script filename=\"one.xml\"/><script filename=\"two.xml\"/>");
    ASSERT_EQ(setup.mScript.mEffects.size(), 2u);
    EXPECT_EQ(setup.mScript.mEffects[0]->mName, "a");
    EXPECT_EQ(setup.mScript.mEffects[1]->mName, "b");
    EXPECT_EQ(setup.mScript.mScriptLength, 5);
    EXPECT_EQ(setup.mScriptFile, "two.xml");
}

TEST_F(SetupFile, OnIsWrittenInLowerCase) {
    const Demo setup("<time loop=\"On\"/><display fullscreen=\"ON\"/><osd show=\"On\"/><music mute=\"On\"/>");
    EXPECT_FALSE(setup.mLoop);
    EXPECT_FALSE(setup.mFullscreen);
    EXPECT_FALSE(setup.mOsdShow);
    EXPECT_FALSE(setup.mMuted);
}

TEST_F(SetupFile, ADelayOfZeroIsTwoSecondsAndANegativeOneIsKept) {
    EXPECT_EQ(Demo("<osd delay=\"0\"/>").mOsdDelay, 2.0f);
    EXPECT_EQ(Demo("<osd delay=\"0.0\"/>").mOsdDelay, 2.0f);
    EXPECT_EQ(Demo("<osd delay=\"word\"/>").mOsdDelay, 2.0f);
    EXPECT_EQ(Demo("<osd delay=\"-1\"/>").mOsdDelay, -1.0f);
}

TEST_F(SetupFile, AnyOtherLocationIsTheTop) {
    EXPECT_EQ(Demo("<osd location=\"middle\"/>").mOsdLocation, 1);
    EXPECT_EQ(Demo("<osd location=\"bottom\"/>").mOsdLocation, 2);
    EXPECT_EQ(Demo("<osd location=\"top\"/>").mOsdLocation, 0);
    EXPECT_EQ(Demo("<osd location=\"Bottom\"/>").mOsdLocation, 0);
}

TEST_F(SetupFile, SizesTakeTheBaseThatTheyAreWrittenIn) {
    const Demo setup("<display width=\"010\" height=\"0x10\"/>");
    EXPECT_EQ(setup.mWidth, 8);
    EXPECT_EQ(setup.mHeight, 16);
}

TEST_F(SetupFile, AbsurdNumbersAreClamped) {
    const Demo setup("<display width=\"99999999999999999999\" height=\"-4294966016\"/>"
                     "<time start=\"1e99\"/><osd delay=\"nan\"/>");
    EXPECT_EQ(setup.mWidth, 2147483647);
    EXPECT_EQ(setup.mHeight, -2147483647 - 1);
    EXPECT_TRUE(std::isinf(setup.mStartTime));
    EXPECT_TRUE(std::isnan(setup.mOsdDelay));
}

TEST_F(SetupFile, ANegativeStartKeepsItsValue) {
    EXPECT_EQ(Demo("<time start=\"-5\"/>").mStartTime, -5.0f);
}

TEST_F(SetupFile, MuteOnIsStoredAndNosoundForbidsSound) {
    const Demo on("<music mute=\"on\"/>");
    EXPECT_TRUE(on.mMuted);
    EXPECT_FALSE(on.mNoSound);
    const Demo nosound("<music mute=\"nosound\"/>");
    EXPECT_FALSE(nosound.mMuted);
    EXPECT_TRUE(nosound.mNoSound);
}

TEST_F(SetupFile, ADumpTakesItsNameAndRateAndSilencesTheMusic) {
    write("setup.xml", "<demo><music filename=\"tune.ogg\"/><dump name=\"film.png\" rate=\"25.5\"/></demo>");
    Kindler setup;
    EXPECT_EQ(problem(setup), "");
    ASSERT_NE(setup.mVideo, nullptr);
    EXPECT_EQ(setup.mDumpRate, 25.5f);
    EXPECT_EQ(setup.mVideo->getFormat().mRate, 25);
    EXPECT_EQ(setup.mVideo->getFormat().mScale, 1);
    EXPECT_TRUE(setup.mNoSound);
    EXPECT_EQ(setup.mMusicFile, "tune.ogg");
    EXPECT_NE(mPrinted.find("Dumping to 'film.png' (rate='25.500000'fps)"), std::string::npos) << mPrinted;
}

TEST_F(SetupFile, ADumpWithoutARateHasSixtyFramesASecond) {
    EXPECT_EQ(Demo("<dump name=\"film.png\"/>").mDumpRate, 60.0f);
    EXPECT_EQ(Demo("<dump name=\"film.png\" rate=\"\"/>").mDumpRate, 60.0f);
    EXPECT_EQ(Demo("<dump name=\"film.png\" rate=\"0\"/>").mDumpRate, 0.0f);
}

TEST_F(SetupFile, ADumpWithoutAMusicElementDoesNotForbidSound) {
    EXPECT_FALSE(Demo("<dump name=\"film.png\"/>").mNoSound);
}

TEST_F(SetupFile, ADumpWithoutANameGoesToUntitled) {
    write("setup.xml", "<demo><dump/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "Could not find something that could write to 'untitled'");
    EXPECT_FALSE(kindler.mSetupDone);
}

TEST_F(SetupFile, ADumpOfAnUnknownFormatIsAProblem) {
    write("setup.xml", "<demo><dump name=\"film.avi\"/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "Could not find something that could write to 'film.avi'");
}

TEST_F(SetupFile, AnAbsurdRateHurtsNothing) {
    const struct {
        const char* text;
        int rate;
    } rates[] = {
        {"nan", 0}, {"inf", 2147483647}, {"-inf", -2147483647 - 1}, {"-2.7", -2}, {"1e30", 2147483647}};
    for (const auto& [text, rate] : rates)
        EXPECT_EQ(
            Demo(std::string("<dump name=\"film.png\" rate=\"") + text + "\"/>").mVideo->getFormat().mRate,
            rate)
            << text;
}

TEST_F(SetupFile, TwoDumpsWriteToTheLast) {
    const Demo setup("<dump name=\"one.png\" rate=\"10\"/><dump name=\"two.png\" rate=\"20\"/>");
    EXPECT_EQ(setup.mVideo->getFormat().mRate, 20);
}

TEST_F(SetupFile, WithoutEitherFileTheSetupThrows) {
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "[Kindler] Could not load 'setup.[local.]xml'");
    EXPECT_FALSE(kindler.mSetupDone);
    EXPECT_EQ(mPrinted,
              "[error][Exception], [Kindler] Could not load 'setup.[local.]xml' (ztk_system:171)\n");
}

TEST_F(SetupFile, AFolderOfThatNameIsNotASetupFile) {
    std::filesystem::create_directory(mDir.file("setup.local.xml"));
    std::filesystem::create_directory(mDir.file("setup.xml"));
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "[Kindler] Could not load 'setup.[local.]xml'");
}

TEST_F(SetupFile, WithBothFilesTheDefaultHasNoEffectAtAll) {
    write("setup.xml", "this is <not even> xml");
    write("setup.local.xml", "<demo><time start=\"7\"/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "");
    EXPECT_EQ(kindler.mStartTime, 7);
    EXPECT_FALSE(kindler.mDisplayEnabled);
}

TEST_F(SetupFile, AnotherRootIsIgnored) {
    write("setup.xml", "<show><display width=\"100\"/><script filename=\"missing.xml\"/></show>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "");
    EXPECT_FALSE(kindler.mSetupDone);
    EXPECT_FALSE(kindler.mDisplayEnabled);
    EXPECT_EQ(kindler.mWidth, 0);
    kindler.run(); // shows nothing and returns
    EXPECT_EQ(kindler.mDisplay, nullptr);
}

TEST_F(SetupFile, BrokenXmlIsReportedWithItsPosition) {
    const struct {
        const char* text;
        const char* problem;
    } cases[] = {
        {"", "(error at line 1, col 1); EOF (when reading tag at 1:1)"},
        {"<demo", "(error at line 1, col 6); EOF (when reading tag at 1:1)"},
        {"<demo/>", "(error at line 1, col 8); Root tag is closed! (when reading tag at 1:1)"},
        {"<demo><time start=\"1\n\"/></demo>",
         "(error at line 1, col 21); You must close the value using \" (when reading tag at 1:7)"},
        {"<demo><time start/></demo>", "(error at line 1, col 19); '=' expected! (when reading tag at 1:7)"},
        {"<demo>\n<!----></demo>",
         "(error at line 2, col 5); Xml: Ill formatted comment! (when reading tag at 1:7)"},
        {"<?xml ?a?><demo></demo>",
         "(error at line 1, col 7); Xml: Ill formed <?xml?> tag (when reading tag at 1:1)"},
    };
    for (const auto& [text, expected] : cases) {
        write("setup.xml", text);
        Kindler kindler;
        EXPECT_EQ(problem(kindler), expected) << text;
        EXPECT_FALSE(kindler.mSetupDone);
    }
}

TEST_F(SetupFile, AMissingScriptIsAProblem) {
    write("setup.xml", "<demo><script filename=\"show 100%.xml\"/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "[Kindler] Could not find the script: 'show 100%.xml'");
    EXPECT_EQ(kindler.mScriptFile, "show 100%.xml");
    EXPECT_FALSE(kindler.mSetupDone);
}

TEST_F(SetupFile, AScriptElementWithoutANameIsAMissingScript) {
    write("setup.xml", "<demo><script/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "[Kindler] Could not find the script: ''");
}

TEST_F(SetupFile, AScriptThatCanNotBeLoadedPlaysNothing) {
    write("show.xml", "<script><effect name=\"a\" end=\"9\"/><effect><spline/></effect></script>");
    const Demo setup("<script filename=\"show.xml\"/>");
    EXPECT_TRUE(setup.mSetupDone);
    EXPECT_EQ(setup.mScript.mScriptLength, 0);
}

TEST_F(SetupFile, AScriptOfBrokenXmlIsAProblem) {
    write("show.xml", "<script><effect");
    write("setup.xml", "<demo><script filename=\"show.xml\"/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "(error at line 1, col 16); EOF (when reading tag at 1:9)");
}

TEST_F(SetupFile, AScriptMayBeInAZipNamedLaterInTheFile) {
    write("show.xml", "<script><effect name=\"zipped\" end=\"4\"/></script>");
    ASSERT_EQ(test::runCommand("zip -q -m data.zip show.xml").first, 0);
    ASSERT_FALSE(test::fileExists("show.xml"));
    const Demo setup("<script filename=\"show.xml\"/><archive path=\"zip://data.zip\"/>");
    EXPECT_EQ(setup.mScript.mScriptLength, 4);
}

TEST_F(SetupFile, AZipWithoutItsProtocolIsRefusedWithOnlyALogLine) {
    write("show.xml", "<script></script>");
    ASSERT_EQ(test::runCommand("zip -q -m data.zip show.xml").first, 0);
    write("setup.xml", "<demo><archive path=\"data.zip\"/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "");
    EXPECT_TRUE(kindler.mSetupDone);
    EXPECT_TRUE(kindler.mArchives.readFile("show.xml").isNull());
    const std::string& out = mPrinted;
    EXPECT_EQ(out.find("[log][setup], Kindler: Adding archive: data.zip\n (kin_setup.cpp:"), 0u) << out;
    EXPECT_EQ(out.find('\n', out.find('\n') + 1), out.size() - 1) << out; // two line ends: this and no more
}

TEST_F(SetupFile, AMissingOrTruncatedZipIsAnArchiveWithoutFiles) {
    write("show.xml", "<script></script>");
    ASSERT_EQ(test::runCommand("zip -q -m whole.zip show.xml").first, 0);
    const std::string whole = read("whole.zip");
    write("half.zip", whole.substr(0, whole.size() / 2));
    write("setup.xml", "<demo><archive path=\"zip://half.zip\"/><archive path=\"zip://none.zip\"/>"
                       "<archive path=\"\"/><archive/></demo>");
    Kindler kindler;
    EXPECT_EQ(problem(kindler), "");
    EXPECT_TRUE(kindler.mArchives.readFile("show.xml").isNull());
}

TEST_F(SetupFile, ASecondSetupDoesNothing) {
    Demo setup("<time start=\"3\"/>");
    write("setup.xml", "<demo><time start=\"4\"/></demo>");
    setup.setup();
    EXPECT_EQ(setup.mStartTime, 3);
}

// -- saving

TEST_F(SetupFile, SavingChangesItsOwnValuesAndNothingElse) {
    write("setup.local.xml",
          "<?xml version=\"1.0\"?>\n<demo>\n<!-- mine -->\n<time start=\"1\" note=\"n\"/>\n"
          "<time start=\"2\"/>\n<archive path=\"data\"/>\n"
          "<display width=\"320\" height=\"200\" title=\"T\"/>\n<display fullscreen=\"maybe\"/>\n"
          "<osd location=\"middle\" show=\"on\"/>\n<osd show=\"on\"/>\n"
          "<music filename=\"a.ogg\"/>\n<music mute=\"off\"/>\n"
          "<other thing=\"5\"><nested/></other>\n</demo>\n");
    {
        Kindler kindler;
        kindler.setup();
        kindler.mStartTime = 61.256f;
        kindler.mMuted = true;
        kindler.mOsdLocation = 2;
        kindler.mOsdDelay = 0.5f;
        kindler.mLoop = true;
        kindler.mFullscreen = true;
    } // the destructor saves
    EXPECT_EQ(
        read("setup.local.xml"),
        "<?xml version=\"1.0\"?>\n\n<demo>\n<!-- mine -->\n<time start=\"61.26\" note=\"n\" loop=\"on\"/>\n"
        "<time start=\"2\"/>\n<archive path=\"data\"/>\n"
        "<display width=\"320\" height=\"200\" title=\"T\" fullscreen=\"on\"/>\n"
        "<display fullscreen=\"maybe\"/>\n"
        "<osd location=\"bottom\" show=\"on\" delay=\"0.50\"/>\n"
        "<osd show=\"on\" location=\"bottom\" delay=\"0.50\"/>\n"
        "<music filename=\"a.ogg\" mute=\"on\"/>\n<music mute=\"on\"/>\n"
        "<other thing=\"5\">\n<nested/>\n</other>\n</demo>\n");
}

TEST_F(SetupFile, SavingWritesTheOtherHalfOfEachValue) {
    write("setup.local.xml",
          "<demo><time/><display fullscreen=\"on\"/><osd show=\"on\"/><music mute=\"on\"/></demo>");
    {
        Kindler kindler;
        kindler.setup();
        kindler.mFullscreen = false;
        kindler.mMuted = false;
        kindler.mOsdShow = false;
        kindler.mOsdLocation = 1;
    }
    EXPECT_EQ(read("setup.local.xml"),
              "<demo>\n<time start=\"0.00\" loop=\"off\"/>\n<display fullscreen=\"off\"/>\n"
              "<osd show=\"off\" location=\"middle\" delay=\"2.00\"/>\n"
              "<music mute=\"off\"/>\n</demo>\n");
}

TEST_F(SetupFile, SavingAddsAMissingTimeElement) {
    write("setup.local.xml", "<demo><display/></demo>");
    {
        Kindler kindler;
        kindler.setup();
        kindler.mStartTime = 8;
    }
    EXPECT_EQ(read("setup.local.xml"),
              "<demo>\n<display fullscreen=\"off\"/>\n<time start=\"8.00\" loop=\"off\"/>\n</demo>\n");
}

TEST_F(SetupFile, NosoundIsReplacedByOffAtTheFirstNormalEnd) {
    write("setup.local.xml", "<demo><music mute=\"nosound\"/></demo>");
    { Kindler().setup(); }
    EXPECT_NE(read("setup.local.xml").find("<music mute=\"off\"/>"), std::string::npos)
        << read("setup.local.xml");
}

TEST_F(SetupFile, ANegativeStartIsSavedAsItIs) {
    write("setup.local.xml", "<demo><time start=\"-5\"/></demo>");
    { Kindler().setup(); }
    EXPECT_NE(read("setup.local.xml").find("start=\"-5.00\""), std::string::npos);
}

TEST_F(SetupFile, WithoutALocalFileNothingIsWritten) {
    write("setup.xml", "<demo><time start=\"3\"/></demo>");
    {
        Kindler kindler;
        kindler.setup();
        kindler.mStartTime = 99;
    }
    EXPECT_FALSE(test::fileExists(mDir.file("setup.local.xml")));
    EXPECT_EQ(read("setup.xml"), "<demo><time start=\"3\"/></demo>");
}

TEST_F(SetupFile, WithoutACompleteSetupNothingIsWritten) {
    const std::string text = "<demo><time start=\"3\"/><script filename=\"none.xml\"/></demo>";
    write("setup.local.xml", text);
    {
        Kindler kindler;
        EXPECT_NE(problem(kindler), "");
    }
    EXPECT_EQ(read("setup.local.xml"), text);
}

TEST_F(SetupFile, ALocalFileThatWasBrokenMeanwhileIsLeftAlone) {
    for (const char* text : {"<demo><time start=\"3", "<other><time/></other>", ""}) {
        write("setup.local.xml", "<demo></demo>");
        {
            Kindler kindler;
            kindler.setup();
            write("setup.local.xml", text);
        }
        EXPECT_EQ(read("setup.local.xml"), text);
    }
}

TEST_F(SetupFile, AnEndByAnExceptionSavesToo) {
    write("setup.local.xml", "<demo><time start=\"3\"/></demo>");
    try {
        Kindler kindler;
        kindler.setup();
        kindler.mStartTime = 5;
        throw std::runtime_error("anything");
    } catch (const std::runtime_error&) {
    }
    EXPECT_NE(read("setup.local.xml").find("start=\"5.00\""), std::string::npos);
}

TEST_F(SetupFile, ADiskThatIsFullWhileSavingLeavesTheOldFileWhole) {
    const std::string text = "<demo><time start=\"3\"/><other>" + std::string(9000, 'x') + "</other></demo>";
    write("setup.local.xml", text);
    Kindler kindler;
    kindler.setup();
    kindler.mStartTime = 5;
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {100, before.rlim_max};
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    kindler.saveXml();
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(read("setup.local.xml"), text);
    kindler.saveXml();
    EXPECT_NE(read("setup.local.xml").find("start=\"5.00\""), std::string::npos);
}

TEST_F(SetupFile, SettingsThatCanNotBeSavedAreLogged) {
    write("setup.local.xml", "<demo><other>" + std::string(100000, 'x') + "</other></demo>");
    Kindler kindler;
    kindler.setup();
    CaptureStdout out;
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {50000, before.rlim_max}; // enough for what is printed
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    kindler.saveXml();
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    EXPECT_NE(out.text().find("The settings can't be saved in 'setup.local.xml'"), std::string::npos);
}

TEST_F(SetupFile, NoValueBecomesElementsWhenItIsSaved) {
    write("setup.local.xml", "<demo><display title='\"/><script filename=\"evil.xml\"/><a b=\"'/>"
                             "<!x '><script filename=\"evil.xml\"/>'><!y z>"
                             "<a><b c='\"/><script a=\"'/></a></demo>");
    Kindler().setup(); // and its destructor saves
    EXPECT_EQ(
        read("setup.local.xml"),
        "<demo>\n<display title=\"'/><script filename='evil.xml'/><a b='\" fullscreen=\"off\"/>\n<!y z>\n"
        "<a>\n<b c=\"'/><script a='\"/>\n</a>\n<time start=\"0.00\" loop=\"off\"/>\n</demo>\n");
    xml::XmlParser saved;
    saved.parse(read("setup.local.xml"));
    EXPECT_FALSE(++saved.createIterator("script"));
}

// Declarations are written without quotes; an element without a name is read as something else.
TEST_F(SetupFile, WhatCouldNotBeReadAgainIsNotSaved) {
    write("setup.local.xml", "<demo><!a \"b.c\"><!d e\"f\"></ / a=\"b\"/><><!i></><!g h><k "
                             "l=\"m\"><!\"n\"></k><time start=\"7\"/></demo>");
    for (int i = 0; i < 3; ++i) {
        Kindler kindler;
        kindler.setup();
        EXPECT_EQ(kindler.mStartTime, 7);
        kindler.saveXml();
        EXPECT_EQ(read("setup.local.xml"),
                  "<demo>\n<!g h>\n<k l=\"m\"/>\n<time start=\"7.00\" loop=\"off\"/>\n</demo>\n");
    }
}

TEST_F(SetupFile, QuotesInTheHeaderCanBeReadAgain) {
    write("setup.local.xml", "<?xml version='the \"first\"' =\"'\"?><demo><time start=\"7\"/></demo>");
    for (int i = 0; i < 3; ++i) {
        Kindler kindler;
        kindler.setup();
        EXPECT_EQ(kindler.mStartTime, 7);
        kindler.saveXml();
        EXPECT_EQ(read("setup.local.xml"), "<?xml version=\"the 'first'\" =\"'\"?>\n\n<demo>\n<time "
                                           "start=\"7.00\" loop=\"off\"/>\n</demo>\n");
    }
}

TEST_F(SetupFile, CommentsAndTextStayAsTheyAreHoweverOftenTheyAreSaved) {
    write("setup.local.xml", "<demo>\n<!-- \"so\" -->\nstray 'text'\n<time start=\"0\"/>\n</demo>");
    for (int i = 0; i < 3; ++i) {
        Kindler().setup();
        EXPECT_EQ(read("setup.local.xml"), "<demo>\n<!-- \"so\" -->\n'stray 'text''\n"
                                           "<time start=\"0.00\" loop=\"off\"/>\n</demo>\n");
    }
}

TEST_F(SetupFile, AnEmptyElementNamedAsItsParentDoesNotEndItWhenItIsSaved) {
    write("setup.local.xml", "<demo><demo></demo><a><a></a><b/></a><time start=\"7\"/></demo>");
    for (int i = 0; i < 2; ++i) {
        Kindler kindler;
        kindler.setup();
        EXPECT_EQ(kindler.mStartTime, 7);
    }
    EXPECT_EQ(read("setup.local.xml"), "<demo>\n<demo>\n</demo>\n<a>\n<a>\n</a>\n<b/>\n</a>\n"
                                       "<time start=\"7.00\" loop=\"off\"/>\n</demo>\n");
}

TEST_F(SetupFile, BrokenFilesAreNamedInTheLog) {
    write("setup.xml", "<demo");
    Kindler first;
    problem(first);
    EXPECT_NE(mPrinted.find("The file 'setup.xml' can't be read"), std::string::npos) << mPrinted;
    write("setup.local.xml", "<demo");
    Kindler second;
    problem(second);
    EXPECT_NE(mPrinted.find("The file 'setup.local.xml' can't be read"), std::string::npos) << mPrinted;
    for (const char* script : {"<script", "<show></show>", "<script><effect><spline/></effect></script>"}) {
        write("setup.local.xml", "<demo><script filename=\"show.xml\"/></demo>");
        write("show.xml", script);
        Kindler third;
        problem(third);
        EXPECT_NE(mPrinted.find("'show.xml' can't be "), std::string::npos) << mPrinted;
    }
}

TEST_F(SetupFile, AShowOfNothingIsLogged) {
    write("setup.xml", "<demo><display width=\"320\" height=\"200\"/></demo>");
    Kindler kindler;
    problem(kindler);
    EXPECT_NE(mPrinted.find("There is nothing to play: no script in 'setup.xml'"), std::string::npos)
        << mPrinted;
}

TEST_F(SetupFile, AbsurdValuesAreSavedWhole) {
    write("setup.local.xml", "<demo><osd/></demo>");
    {
        Kindler kindler;
        kindler.setup();
        kindler.mStartTime = 3.0e38f; // 39 digits
        kindler.mOsdDelay = NAN;
        kindler.mOsdLocation = 77;
    }
    const std::string text = read("setup.local.xml");
    EXPECT_NE(text.find("start=\"300000000549775575777803994281145270272.00\""), std::string::npos) << text;
    EXPECT_NE(text.find("location=\"top\" delay=\"nan\""), std::string::npos) << text;
}
