// The whole program as users start it: files in a folder, a window, keys, and what it leaves behind.
#include "effect_names.h"
#include "music.h"
#include "program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <vector>

using namespace zentrak::test;

namespace {

// A 320 by 200 window with a white background for 1000 seconds.
constexpr const char* SCRIPT =
    "<script><effect name=\"clear\" end=\"1000\">"
    "<trigger name=\"type\" value=\"flat\"/><trigger name=\"color\" value=\"white\"/>"
    "</effect></script>";

std::string setup(const Program& program, const std::string& more,
                  const std::string& display = "width=\"320\" height=\"200\"") {
    return "<demo><time start=\"0\"/><display title=\"" + program.title() + "\" " + display +
           "/><osd show=\"on\"/><script filename=\"script.xml\"/>" + more + "</demo>";
}

const std::string NOSOUND = "<music mute=\"nosound\"/>";

// A show with its setup in the local file.
void prepare(Program& program, const std::string& more = NOSOUND,
             const std::string& display = "width=\"320\" height=\"200\"") {
    program.write("script.xml", SCRIPT);
    program.write("setup.local.xml", setup(program, more, display));
}

bool isWhite(Program& program) {
    Picture picture;
    return program.grab(picture) && picture.at(picture.width / 2, picture.height / 2)[0] == 255;
}

// Waits until the show draws, and quits it with a key.
void playAndQuit(Program& program, const std::string& key = "Escape", const std::string& environment = "") {
    program.start(environment);
    ASSERT_TRUE(program.focus()) << program.output();
    EXPECT_TRUE(waitFor([&] { return isWhite(program); })) << program.output();
    program.key(key);
    EXPECT_EQ(program.wait(), 0) << program.output();
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(TheProgram, EscQuitsAndSavesTheSetup) {
    Program program;
    prepare(program);
    playAndQuit(program);
    EXPECT_EQ(program.read("setup.local.xml"),
              "<demo>\n<time start=\"0.00\" loop=\"off\"/>\n"
              "<display title=\"" +
                  program.title() +
                  "\" width=\"320\" height=\"200\" fullscreen=\"off\"/>\n"
                  "<osd show=\"on\" location=\"top\" delay=\"2.00\"/>\n<script filename=\"script.xml\"/>\n"
                  "<music mute=\"off\"/>\n</demo>\n");
    EXPECT_FALSE(contains(program.output(), "error:"));
}

TEST(TheProgram, QQuitsAndSavesTheSetup) {
    Program program;
    prepare(program);
    playAndQuit(program, "q");
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "<music mute=\"off\"/>"));
}

TEST(TheProgram, ClosingTheWindowSavesTheSetup) {
    Program program;
    prepare(program);
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
    program.closeWindow();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "<music mute=\"off\"/>"));
}

TEST(TheProgram, KeysChangeWhatIsSaved) {
    Program program;
    prepare(program, "<time start=\"900\"/>" + NOSOUND); // in the white half of the script
    program.write("script.xml", "<script><effect name=\"clear\" end=\"500\"><trigger name=\"type\"/>"
                                "<trigger name=\"color\" value=\"dark_blue\"/></effect>"
                                "<effect name=\"clear\" start=\"500\" end=\"2000\"><trigger name=\"type\"/>"
                                "<trigger name=\"color\" value=\"white\"/></effect></script>");
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
    program.key("m");
    program.key("ctrl+o");
    program.key("alt+t"); // forgets the start time and goes to 0
    EXPECT_TRUE(waitFor([&] { return !isWhite(program); }));
    program.key("Right");
    program.key("ctrl+t"); // takes the time of the frame that was drawn last
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
    const std::string saved = program.read("setup.local.xml");
    EXPECT_TRUE(contains(saved, "<music mute=\"on\"/>")) << saved;
    EXPECT_TRUE(contains(saved, "<osd show=\"off\"")) << saved;
    const size_t at = saved.find("start=\"");
    ASSERT_NE(at, std::string::npos);
    EXPECT_GT(atof(saved.c_str() + at + 7), 0.0) << saved;
    EXPECT_LT(atof(saved.c_str() + at + 7), 500.0) << saved;
}

// Whatever is done to the show, even in its editor, only the settings are written.
TEST(TheProgram, WritesNothingButItsSettings) {
    Program program;
    prepare(program);
    const auto files = [&] {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(program.dir().path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        std::erase(names, "output");
        std::erase(names, "grab.png");
        return names;
    };
    const std::vector<std::string> before = files();
    program.start();
    ASSERT_TRUE(program.focus()) << program.output();
    EXPECT_TRUE(waitFor([&] { return isWhite(program); })) << program.output();
    for (const char* key : {"Tab", "ctrl+s", "ctrl+t", "space", "Delete", "Tab", "Escape"})
        program.key(key);
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_EQ(files(), before);
    EXPECT_EQ(program.read("script.xml"), SCRIPT);
}

TEST(TheProgram, PPrintsTheTime) {
    Program program;
    prepare(program);
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
    program.key("space"); // pauses, so that both are equal
    program.key("p");
    program.key("p");
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
    const std::vector<std::string> times = program.printedTimes();
    ASSERT_EQ(times.size(), 2u) << program.output();
    EXPECT_GT(atof(times[0].c_str()), 0.0);
    EXPECT_EQ(times[0].size() - times[0].find('.'), 7u) << times[0]; // six decimals
    EXPECT_EQ(times[0], times[1]);
}

TEST(TheProgram, TheEndOfTheMusicExitsWithoutSaving) {
    Program program;
    prepare(program, "<music filename=\"tune.wav\" mute=\"on\"/>");
    program.write("tune.wav", makeWav(4000));
    const std::string before = program.read("setup.local.xml");
    EXPECT_EQ(program.run(), 0);
    EXPECT_EQ(program.read("setup.local.xml"), before);
    EXPECT_FALSE(contains(program.output(), "error:")) << program.output();
}

TEST(TheProgram, TheEndOfTheMusicClosesTheSoundDevice) {
    Program program;
    prepare(program, "<music filename=\"tune.wav\"/>");
    program.write("tune.wav", makeWav(800));
    EXPECT_EQ(program.run(), 0);
    EXPECT_FALSE(contains(program.output(), "AL lib")) << program.output(); // its complaint at exit
}

TEST(TheProgram, TheLogIsCompleteHoweverTheProgramEnds) {
    for (const int signal : {SIGINT, SIGTERM, SIGSEGV, SIGKILL}) {
        Program program;
        prepare(program);
        program.start("ASAN_OPTIONS=handle_segv=0"); // a sanitizer would turn the signal into an exit status
        ASSERT_TRUE(program.focus());
        EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
        kill(program.pid(), signal);
        EXPECT_EQ(program.wait(), -1);
        EXPECT_TRUE(contains(program.output(), "name: color, value: white\n")) << program.output();
    }
}

TEST(TheProgram, APauseIsNotTheEndOfTheMusic) {
    Program program;
    prepare(program, "<music filename=\"tune.wav\"/>");
    program.write("tune.wav", makeWav(120 * 8000));
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
    program.key("space");
    const double paused = program.askTime();
    EXPECT_EQ(program.askTime(), paused); // it keeps drawing and answering
    program.key("space");
    EXPECT_TRUE(program.reaches(paused + 0.01));
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
}

TEST(TheProgram, ALoopPlaysOnPastTheEndOfTheMusic) {
    Program program;
    prepare(program, "<time loop=\"on\"/><music filename=\"tune.wav\"/>");
    program.write("tune.wav", makeWav(800));
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
    EXPECT_TRUE(program.reaches(0.5)); // the music lasts a tenth of a second
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "loop=\"on\""));
}

TEST(TheProgram, WithoutSoundThereIsNoEndAndTheLastPictureStays) {
    Program program;
    program.write("script.xml", "<script><effect name=\"clear\" end=\"0.5\"><trigger name=\"type\"/>"
                                "<trigger name=\"color\" value=\"white\"/></effect></script>");
    program.write("setup.xml", setup(program, NOSOUND));
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return isWhite(program); }));
    EXPECT_TRUE(program.reaches(1));
    EXPECT_TRUE(isWhite(program));
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_FALSE(program.has("setup.local.xml"));
}

TEST(TheProgram, PlaysInFullScreen) {
    Program program;
    prepare(program, NOSOUND, "width=\"640\" height=\"480\" fullscreen=\"on\"");
    program.start();
    ASSERT_TRUE(program.focus()) << program.output();
    const std::string screen = runCommand("xdotool getdisplaygeometry").second; // "1400 1100"
    EXPECT_TRUE(waitFor([&] {
        Picture picture;
        return program.grab(picture) &&
               std::to_string(picture.width) + " " + std::to_string(picture.height) + "\n" == screen &&
               picture.at(picture.width - 1, picture.height - 1)[0] == 255;
    })) << screen;
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "fullscreen=\"on\""));
}

// -- what is missing or broken

TEST(TheProgram, WithoutASetupFileReportsItAndExitsWithZero) {
    Program program;
    EXPECT_EQ(program.run(), 0);
    EXPECT_EQ(program.output(),
              "[error][Exception], [Kindler] Could not load 'setup.[local.]xml' (ztk_system:171)\n"
              "error: [Kindler] Could not load 'setup.[local.]xml'\n");
}

TEST(TheProgram, AFolderNamedAsTheSetupFileIsNone) {
    Program program;
    std::filesystem::create_directory(program.dir().file("setup.xml"));
    EXPECT_EQ(program.run(), 0);
    EXPECT_TRUE(contains(program.output(), "\nerror: [Kindler] Could not load 'setup.[local.]xml'\n"));
}

TEST(TheProgram, AnotherRootEndsQuietly) {
    Program program;
    program.write("setup.xml", "<show></show>");
    EXPECT_EQ(program.run(), 0);
    EXPECT_EQ(program.output(), "Could not open file\n"); // the music, without its name
}

TEST(TheProgram, WithoutADisplayElementShowsNothingAndSaves) {
    Program program;
    program.write("setup.local.xml", "<demo><music mute=\"nosound\"/></demo>");
    EXPECT_EQ(program.run(), 0);
    EXPECT_EQ(program.read("setup.local.xml"),
              "<demo>\n<music mute=\"off\"/>\n<time start=\"0.00\" loop=\"off\"/>\n</demo>\n");
}

TEST(TheProgram, ABrokenLocalFileIsReportedAndKept) {
    for (const char* text :
         {"", "<demo", "<demo><a", "<demo><a b", "<demo><a b=", "<demo><a b=\"", "<demo><a b=\"c\"",
          "<demo><a b=\"c\"/", "<demo><a/></demo", "<demo><!-- ", "<demo><?a ", "<demo>text", "<demo><!D",
          "<demo><a b=\"\n\"/></demo>", "<demo><!----></demo>", "<demo><?a></demo>", "<demo/>",
          "<demo><a_b/></demo>", "\377\376<\0d"}) {
        Program program;
        program.write("setup.local.xml", text);
        EXPECT_EQ(program.run(), 0) << text;
        EXPECT_EQ(program.output().find("[error][Exception], "), 0u) << text << program.output();
        EXPECT_TRUE(contains(program.output(), "\nerror: (error at line ")) << text << program.output();
        EXPECT_EQ(program.read("setup.local.xml"), text);
    }
}

TEST(TheProgram, AMissingScriptIsReported) {
    Program program;
    program.write("setup.local.xml", setup(program, NOSOUND));
    EXPECT_EQ(program.run(), 0);
    EXPECT_TRUE(contains(program.output(), "\nerror: [Kindler] Could not find the script: 'script.xml'\n"));
    EXPECT_EQ(program.read("setup.local.xml"), setup(program, NOSOUND));
}

// The log names the file before the error ends the program.
TEST(TheProgram, AFileThatCannotBeReadIsNamed) {
    const struct {
        const char* name;
        const char* bytes; // null: the file is missing
    } cases[] = {{"setup.local.xml", "<demo"},  {"script.xml", "<script"},
                 {"layout.xml", "<panorama"},   {"style.xml", "<panorama"},
                 {"spark/spark.xml", "<spark"}, {"border/border2.png", "\211PNG, but no picture"},
                 {"face/face.o3d", nullptr}};
    for (const auto& [name, bytes] : cases) {
        Program program;
        prepare(program);
        const std::string path = program.dir().file(name);
        const std::filesystem::path folder = std::filesystem::path(path).parent_path();
        if (std::filesystem::is_symlink(folder)) { // a link to data/: replace it by a folder of its own
            const std::filesystem::path source = std::filesystem::canonical(folder);
            std::filesystem::remove(folder);
            std::filesystem::copy(source, folder, std::filesystem::copy_options::recursive);
        }
        std::filesystem::remove(path);
        if (bytes)
            program.write(name, bytes);
        EXPECT_EQ(program.run(), 0) << name;
        const std::string output = program.output();
        const size_t at = output.find("The file '" + std::string(name) + "' can't be read");
        EXPECT_NE(at, std::string::npos) << name << output;
        EXPECT_GT(output.find("\nerror: "), at) << name << output;
    }
}

TEST(TheProgram, AnEffectThatCannotLoadIsReportedAndTheSetupSaved) {
    Program program;
    prepare(program);
    std::filesystem::remove(program.dir().file("border"));
    EXPECT_EQ(program.run(), 0);
    EXPECT_TRUE(contains(program.output(), "Loading effect: border.")) << program.output();
    EXPECT_TRUE(contains(program.output(), "\nerror: loadImage, File not found (border/border2.png)\n"))
        << program.output();
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "<music mute=\"off\"/>"));
}

// The script uses only one of them.
TEST(TheProgram, LoadsEveryEffectOfTheTableOfNamesAndNoOtherInItsOrder) {
    Program program;
    prepare(program);
    playAndQuit(program);
    std::vector<std::string> loaded, listed;
    const std::string output = program.output(), start = "[log][loadEffects], Loading effect: ";
    for (size_t at = output.find(start); at != std::string::npos; at = output.find(start, at)) {
        at += start.size();
        loaded.push_back(output.substr(at, output.find(". (kin_main.cpp:", at) - at));
    }
    for (const zentrak::kindler::EffectNames& names : zentrak::kindler::effectNames())
        listed.push_back(names.name);
    EXPECT_EQ(listed, loaded) << output;
    EXPECT_TRUE(std::is_sorted(loaded.begin(), loaded.end()));
}

TEST(TheProgram, AScriptThatCannotBeLoadedPlaysNothing) {
    Program program;
    prepare(program);
    program.write("script.xml",
                  "<script><effect name=\"clear\" end=\"1000\"><trigger name=\"type\"/>"
                  "<trigger name=\"color\" value=\"white\"/><spline name=\"alpha\"/></effect></script>");
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(program.reaches(0.1));
    EXPECT_FALSE(isWhite(program));
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
    EXPECT_TRUE(contains(program.output(), "The script's spline 'alpha' of effect 'clear' has no keys"));
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "<music mute=\"off\"/>"));
}

TEST(TheProgram, AScriptOfBrokenXmlIsReported) {
    Program program;
    prepare(program);
    program.write("script.xml", "<script>\n<effect name=\"clear\n");
    EXPECT_EQ(program.run(), 0);
    EXPECT_TRUE(
        contains(program.output(),
                 "\nerror: (error at line 2, col 20); You must close the value using \" (when reading tag at "
                 "1:9)\n"))
        << program.output();
}

TEST(TheProgram, MissingAndUndecodableMusicLeavesTheShowSilent) {
    for (const char* name : {"missing.ogg", "noise.ogg", "folder", ""}) {
        Program program;
        prepare(program, std::string("<music filename=\"") + name + "\"/>");
        program.write("noise.ogg", "OggS, but no music");
        std::filesystem::create_directory(program.dir().file("folder"));
        playAndQuit(program);
        EXPECT_TRUE(contains(program.output(), "Could not open file\n")) << name << program.output();
        const bool isNamed =
            contains(program.output(), "The music '" + std::string(name) + "' is not played");
        EXPECT_EQ(isNamed, *name != 0) << name;
    }
}

TEST(TheProgram, WithoutASoundDevicePlaysSilently) {
    Program program;
    prepare(program, "<music filename=\"tune.wav\"/>");
    program.write("tune.wav", makeWav(800));
    playAndQuit(program, "Escape", "ALSOFT_DRIVERS=none");
    EXPECT_TRUE(contains(program.output(), "[error][setup], No sound device!\n (kin_music:38)\n"))
        << program.output();
}

TEST(TheProgram, WithoutAScreenReportsItAndStillSaves) {
    Program program;
    prepare(program);
    EXPECT_EQ(program.run("-u DISPLAY -u WAYLAND_DISPLAY"), 0);
    EXPECT_TRUE(contains(program.output(), "\nerror: Could not open window\n")) << program.output();
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "<music mute=\"off\"/>"));
}

TEST(TheProgram, AWindowManagerThatNeverShowsTheWindowDoesNotStopTheShow) {
    for (const char* fullscreen : {"off", "on"}) {
        Program program;
        prepare(program, "<music filename=\"tune.wav\"/>",
                std::string("width=\"320\" height=\"200\" fullscreen=\"") + fullscreen + "\"");
        program.write("tune.wav", makeWav(800));
        EXPECT_EQ(program.run("ZENTRAK_WM=none '" + sourcePath("tests/with_display") + "' '" +
                              binaryPath("tests/support/never_maps") + "'"),
                  0)
            << program.output(); // ends with the music
        EXPECT_TRUE(contains(program.output(), "glfw2: the window manager has not shown the window yet"))
            << program.output();
        EXPECT_TRUE(contains(program.output(), "name: color, value: white\n")) << program.output();
    }
}

TEST(TheProgram, PlaysFromAZip) {
    Program program;
    program.write("script.xml", SCRIPT);
    program.write("zipped/tune.wav", makeWav(4000));
    ASSERT_EQ(runCommand("cd '" + program.dir().path() + "' && zip -q -m show.zip script.xml zipped/tune.wav")
                  .first,
              0);
    ASSERT_FALSE(program.has("script.xml"));
    program.write("setup.xml",
                  setup(program, "<archive path=\"zip://show.zip\"/><music filename=\"zipped/tune.wav\"/>"));
    EXPECT_EQ(program.run(), 0); // ends with the music
    EXPECT_FALSE(contains(program.output(), "error:")) << program.output();
    EXPECT_TRUE(contains(program.output(), "name: color, value: white\n")) << program.output();
}

TEST(TheProgram, MissingAndTruncatedZipsAreArchivesWithoutFiles) {
    Program program;
    prepare(program, NOSOUND + "<archive path=\"zip://none.zip\"/><archive path=\"zip://half.zip\"/>"
                               "<archive path=\"zip://.\"/><archive path=\"no/such/folder\"/>");
    program.write("text", std::string(5000, 'a'));
    ASSERT_EQ(runCommand("cd '" + program.dir().path() + "' && zip -q -m whole.zip text").first, 0);
    const std::string whole = program.read("whole.zip");
    program.write("half.zip", whole.substr(0, whole.size() - 30));
    playAndQuit(program);
}

TEST(TheProgram, AWindowWithoutASizeGetsOne) {
    for (const char* size :
         {"", "width=\"0\" height=\"0\"", "width=\"-5\" height=\"-2147483648\"", "width=\"word\""}) {
        Program program;
        prepare(program, NOSOUND, size);
        playAndQuit(program);
        EXPECT_FALSE(contains(program.output(), "error:")) << size;
    }
}

TEST(TheProgram, AnEnormousWindowIsReportedAndNothingIsLost) {
    for (const char* size : {"width=\"1000000000\" height=\"1000000000\"",
                             "width=\"320\" height=\"99999999999999\"", "width=\"40000\" height=\"2\""}) {
        Program program;
        prepare(program, NOSOUND, size);
        EXPECT_EQ(program.run(), 0) << size;
        EXPECT_TRUE(contains(program.output(), "\nerror: Could not open window\n"))
            << size << program.output();
        EXPECT_TRUE(contains(program.read("setup.local.xml"), "<music mute=\"off\"/>"));
    }
}

TEST(TheProgram, NumbersThatAreNanAreHarmless) {
    Program program;
    prepare(program, NOSOUND + "<time start=\"nan\"/><osd show=\"on\" delay=\"nan\"/>");
    playAndQuit(program);
    EXPECT_TRUE(contains(program.read("setup.local.xml"), "delay=\"nan\""))
        << program.read("setup.local.xml");
}

TEST(TheProgram, AStartFarPastTheEndShowsNothingAndCanBeLeft) {
    Program program;
    prepare(program, "<time start=\"1e30\"/>" + NOSOUND);
    program.start();
    ASSERT_TRUE(program.focus());
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
}

TEST(TheProgram, ADumpLeavesNumberedPictures) {
    Program program;
    prepare(program, "<dump name=\"frame.png\" rate=\"10\"/><music filename=\"none.ogg\"/>");
    program.start();
    ASSERT_TRUE(program.focus());
    EXPECT_TRUE(waitFor([&] { return program.has("frame.000003.png"); }));
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0);
    Picture picture;
    ASSERT_TRUE(readPng(program.dir().file("frame.000002.png"), picture));
    EXPECT_EQ(picture.width, 320);
    EXPECT_EQ(picture.height, 200);
    EXPECT_EQ(picture.at(160, 7)[0], 255);
}

TEST(TheProgram, APercentInAMessageIsHarmless) {
    Program program;
    program.write("setup.xml", "<demo><script filename=\"%s%n%d 100%\"/></demo>");
    EXPECT_EQ(program.run(), 0);
    EXPECT_TRUE(contains(program.output(), "\nerror: [Kindler] Could not find the script: '%s%n%d 100%'\n"))
        << program.output();
}

TEST(TheProgram, AnOverlongNameIsHarmless) {
    const std::string name(20000, 'x');
    Program program;
    program.write("setup.xml",
                  "<demo><archive path=\"" + name + "\"/><script filename=\"" + name + "\"/></demo>");
    EXPECT_EQ(program.run(), 0);
    EXPECT_TRUE(contains(program.output(), "\nerror: [Kindler] Could not find the script: 'xxx"));
}
