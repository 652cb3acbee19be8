// The film tool on small shows and on the real one. Its output is read with ffmpeg's tools.
#include "picture.h"
#include "support.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <regex>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using zentrak::test::comparePictures;
using zentrak::test::fileExists;
using zentrak::test::Picture;
using zentrak::test::readFile;
using zentrak::test::readPng;
using zentrak::test::runCommand;
using zentrak::test::sourcePath;
using zentrak::test::TempDir;
using zentrak::test::writeFile;

namespace {

std::string span(const std::string& color, double start, double end) {
    return "<effect name=\"clear\" start=\"" + std::to_string(start) + "\" end=\"" + std::to_string(end) +
           "\"><trigger name=\"type\" value=\"flat\"/><trigger name=\"color\" value=\"" + color +
           "\"/></effect>";
}

// A show that is black up to second 0.5 and white after it, with no music unless a test brings some.
class Film : public testing::Test {
protected:
    Film() {
        script(span("black", 0, 0.5) + span("white", 0.5, 3));
        setup("");
    }

    void script(const std::string& spans) { writeFile(file("script.xml"), "<script>" + spans + "</script>"); }

    void setup(const std::string& more) {
        writeFile(file("setup.xml"), "<demo><display width=\"64\" height=\"40\"/><archive path=\"" +
                                         sourcePath("data") + "/\"/><script filename=\"script.xml\"/>" +
                                         more + "</demo>");
    }

    std::string file(const std::string& name) const { return mShow.file(name); }

    // Runs the tool on the show; its exit status and everything it printed.
    std::pair<int, std::string> run(const std::string& arguments, const std::string& environment = "") const {
        return runCommand("cd '" + mShow.path() + "' && env " + environment + " " ZENTRAK_FILM " " +
                          arguments);
    }

    // One field of ffprobe's description of a film's picture or sound.
    std::string probe(const std::string& stream, const std::string& field,
                      const std::string& film = "film.mp4") const {
        const std::string text =
            runCommand("ffprobe -v error -count_frames -select_streams " + stream +
                       " -show_entries stream=" + field + " -of csv=p=0 '" + file(film) + "'")
                .second;
        return text.substr(0, text.find_first_of("\n,"));
    }

    Picture picture(const std::string& name) const {
        Picture read;
        EXPECT_TRUE(readPng(file(name), read)) << name;
        return read;
    }

private:
    TempDir mShow;
};

} // namespace

TEST_F(Film, EveryFrameIsAtItsExactTime) {
    const auto [status, text] = run("--frames frames --rate 25 --to 1");
    ASSERT_EQ(0, status) << text;
    EXPECT_FALSE(fileExists(file("frames/000025.png")));
    for (int frame = 0; frame < 25; ++frame) {
        char name[32];
        snprintf(name, sizeof name, "frames/%06d.png", frame);
        const Picture read = picture(name);
        ASSERT_EQ(64, read.width);
        ASSERT_EQ(40, read.height);
        // Half a second is 12.5 frames.
        EXPECT_EQ(frame < 13 ? 0 : 255, int(read.at(32, 20)[0])) << name;
    }
}

TEST_F(Film, EndsWithTheScriptWithoutMusic) {
    const auto [status, text] = run("--rate 10 film.mp4");
    ASSERT_EQ(0, status) << text;
    EXPECT_EQ("30", probe("v:0", "nb_read_frames"));
    EXPECT_EQ("", probe("a:0", "codec_name"));
}

TEST_F(Film, EndsWithTheMusicAndHasItsSound) {
    runCommand("sox -n -r 44100 -c 2 '" + file("tone.wav") + "' synth 1.5 sine 440 gain -6");
    setup("<music filename=\"tone.wav\"/>");
    const auto [status, text] = run("--rate 20 --size 128x72 film.mp4");
    ASSERT_EQ(0, status) << text;
    EXPECT_EQ("30", probe("v:0", "nb_read_frames"));
    EXPECT_EQ("128", probe("v:0", "width"));
    EXPECT_EQ("72", probe("v:0", "height"));
    EXPECT_EQ("20/1", probe("v:0", "avg_frame_rate"));
    EXPECT_EQ("44100", probe("a:0", "sample_rate"));
    EXPECT_NEAR(1.5, atof(probe("a:0", "duration").c_str()), 0.03);
}

TEST_F(Film, EachKindOfFilmHasAllFrames) {
    for (const std::string name : {"film.mov", "film.mkv", "film.webm", "film.gif"}) {
        const auto [status, text] = run("--virtual --rate 5 --to 1.2 " + name);
        ASSERT_EQ(0, status) << name << "\n" << text;
        EXPECT_EQ("6", probe("v:0", "nb_read_frames", name)) << name;
    }
}

TEST_F(Film, ATerminalShowsTheProgress) {
    const auto [status, text] =
        runCommand("cd '" + file("") +
                   "' && script -qec '" ZENTRAK_FILM " --rate 5 --to 1 film.mp4' /dev/null </dev/null");
    ASSERT_EQ(0, status) << text;
    EXPECT_NE(std::string::npos, text.find("[########################################] 100 %  0:00 left"))
        << text;
    EXPECT_EQ(std::string::npos, run("--rate 5 --to 1 film.mp4").second.find("%"));
}

TEST_F(Film, SoundAndPictureAgreeToTheSample) {
    // A second of silence and then a burst of noise; the film begins after half a second.
    runCommand("sox -n -r 44100 -c 2 -b 16 '" + file("noise.wav") + "' synth 0.5 whitenoise gain -6 pad 1 1");
    setup("<music filename=\"noise.wav\"/>");
    const auto [status, text] = run("--rate 20 --from 0.5 film.mp4");
    ASSERT_EQ(0, status) << text;
    runCommand("cd '" + file("") +
               "' && ffmpeg -v error -i film.mp4 -f s16le -ac 1 heard.raw && "
               "ffmpeg -v error -ss 0.5 -i noise.wav -f s16le -ac 1 meant.raw");
    const std::string heard = readFile(file("heard.raw")), meant = readFile(file("meant.raw"));
    const auto sample = [](const std::string& bytes, size_t i) {
        return double(int16_t(uint16_t(uint8_t(bytes[2 * i])) | uint16_t(uint8_t(bytes[2 * i + 1]) << 8)));
    };
    ASSERT_GT(heard.size(), 2 * 40000u);
    ASSERT_GT(meant.size(), 2 * 40000u);
    // The shift at which the two match best.
    int best = 0;
    double most = 0;
    for (int shift = -2000; shift <= 2000; ++shift) {
        double sum = 0;
        for (int i = 22000; i < 26000; ++i)
            sum += sample(heard, size_t(i + shift)) * sample(meant, size_t(i));
        if (sum > most) {
            most = sum;
            best = shift;
        }
    }
    EXPECT_EQ(0, best);
}

TEST_F(Film, AStillIsThePictureThatPlayingUpToItGives) {
    // Discs that widen at each shot, over a gradient that fades earlier frames, and particles.
    script("<effect name=\"clear\" start=\"0\" end=\"20\"><trigger name=\"type\" value=\"gradient\"/>"
           "<spline name=\"alpha\"><key time=\"0\" value=\"0.1\"/></spline></effect>"
           "<effect name=\"spark\" start=\"0\" end=\"20\"/>"
           "<effect name=\"rund\" start=\"0\" end=\"20\"><trigger name=\"shot\" repeat=\"9\" delay=\"1\"/>"
           "<spline name=\"alpha\"><key time=\"0\" value=\"1\"/></spline></effect>");
    writeFile(file("spark/spark.xml"), readFile(sourcePath("tests/data/spark/sun.xml")));
    const auto [status, text] = run("--frames frames --rate 10 --to 9 --seed 1");
    ASSERT_EQ(0, status) << text;
    for (const char* second : {"1.5", "8.9"}) {
        const auto [ended, printed] = run("--still " + std::string(second) + " --rate 10 --seed 1 still.png");
        ASSERT_EQ(0, ended) << printed;
        const std::string frame = "frames/0000" + std::string(second[0] == '1' ? "15" : "89") + ".png";
        EXPECT_EQ(readFile(file(frame)), readFile(file("still.png"))) << second;
    }
    EXPECT_GT(comparePictures(picture("frames/000015.png"), picture("frames/000089.png")).changed, 0.02);
}

TEST_F(Film, ASeedTakesAwayTheEffectsChance) {
    script(span("white", 0, 9) + "<effect name=\"grid\" start=\"0\" end=\"9\"><spline name=\"alpha\">"
                                 "<key time=\"0\" value=\"1\"/></spline></effect>");
    for (const char* arguments : {"--seed 1 a.png", "--seed 1 b.png", "--seed 2 c.png"}) {
        const auto [status, text] = run("--still 3 --rate 10 " + std::string(arguments));
        ASSERT_EQ(0, status) << text;
    }
    EXPECT_EQ(readFile(file("a.png")), readFile(file("b.png")));
    EXPECT_NE(readFile(file("a.png")), readFile(file("c.png")));
}

TEST_F(Film, AContactSheetHasTwentyFourPictures) {
    const auto [status, text] = run("--rate 10 --sheet sheet.png");
    ASSERT_EQ(0, status) << text;
    const Picture sheet = picture("sheet.png");
    EXPECT_EQ(6 * 328 + 8, sheet.width);
    EXPECT_EQ(4 * 224 + 8, sheet.height);
    EXPECT_EQ(0, int(sheet.at(100, 100)[0])); // the first from the black part, the last from the white one
    EXPECT_EQ(255, int(sheet.at(sheet.width - 100, sheet.height - 100)[0]));
}

TEST_F(Film, CtrlCLeavesAFilmThatPlays) {
    script(span("white", 0, 100000));
    const pid_t child = fork();
    if (child == 0) {
        if (chdir(file("").c_str()) != 0 || !freopen("/dev/null", "w", stdout))
            _exit(126);
        execl(ZENTRAK_FILM, "zentrak-film", "--rate", "10", "film.mp4", static_cast<char*>(nullptr));
        _exit(127);
    }
    // ffmpeg has made the file, so frames are under way.
    while (!fileExists(file("film.mp4")) && waitpid(child, nullptr, WNOHANG) == 0)
        usleep(10000);
    kill(child, SIGINT);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(130, WEXITSTATUS(status));
    EXPECT_GT(atoi(probe("v:0", "nb_read_frames").c_str()), 0);
}

// Keys and sizes of the window, while a film of a show without end is made.
TEST_F(Film, ItsWindowTakesEscapeAndKeepsItsSize) {
    script(span("white", 0, 100000));
    const auto act = [&](const std::string& actions) { // of the shell, on $window
        return runCommand(
            "cd '" + file("") +
            "' && { timeout 100 " ZENTRAK_FILM " --rate 10 film.mp4 2>&1 & } && "
            "window=$(timeout 60 xdotool search --sync --onlyvisible --name '^zentrak-film$') && " +
            actions + "; wait $!");
    };
    const auto [escaped, said] = act("xdotool windowfocus --sync $window && xdotool key Escape");
    EXPECT_EQ(130, escaped) << said;
    EXPECT_GT(atoi(probe("v:0", "nb_read_frames").c_str()), 0);
    const auto [resized, text] = act("xdotool windowsize $window 200 100");
    EXPECT_EQ(1, resized);
    EXPECT_NE(std::string::npos, text.find("the window has become 200x100: it has to stay 64x40")) << text;
}

TEST_F(Film, SaysWhatIsWrongWithFfmpeg) {
    const auto fake = [&](const std::string& commands) {
        writeFile(file("bin/ffmpeg"), "#!/bin/sh\n" + commands + "\n");
        chmod(file("bin/ffmpeg").c_str(), 0755);
    };
    const std::pair<const char*, const char*> cases[] = {
        {"exit 3", "ffmpeg failed on '.*film.mp4' \\(status 3\\)"},
        {"exec <&-; exit 0", "ffmpeg has stopped writing '.*film.mp4'"},
    };
    for (const auto& [commands, words] : cases) {
        fake(commands);
        const auto [status, text] = run("--rate 10 film.mp4", "PATH=" + file("bin") + ":/usr/bin:/bin");
        EXPECT_EQ(1, status) << text;
        EXPECT_TRUE(std::regex_search(text, std::regex(words))) << text;
    }
    const auto [status, text] = run("--rate 10 film.mp4", "PATH=/nowhere");
    EXPECT_EQ(1, status);
    EXPECT_NE(std::string::npos, text.find("ffmpeg can't be started: is the package ffmpeg installed?"))
        << text;
}

TEST_F(Film, WorksWithoutADisplay) {
    const auto [status, text] = run("--still 1 still.png", "-u DISPLAY");
    ASSERT_EQ(0, status) << text;
    EXPECT_EQ(255, int(picture("still.png").at(32, 20)[0]));
}

TEST_F(Film, LeavesSettingsAsTheyAre) {
    const std::string settings =
        "<demo><time start=\"0.7\"/><display width=\"64\" height=\"40\"/><archive path=\"" +
        sourcePath("data") + "/\"/><script filename=\"script.xml\"/></demo>";
    writeFile(file("setup.local.xml"), settings);
    const auto [status, text] = run("--still 0.1 still.png");
    ASSERT_EQ(0, status) << text;
    EXPECT_EQ(settings, readFile(file("setup.local.xml")));
    EXPECT_EQ(0, int(picture("still.png").at(32, 20)[0])); // the start time in the settings is ignored
}

TEST_F(Film, ReportsBadArguments) {
    for (const char* arguments :
         {"", "--size 64 film.mp4", "--size 65x40 film.mp4", "--rate 0 film.mp4", "--rate",
          "--from x film.mp4", "--from 2 --to 1 film.mp4", "--still 1", "--still 1 --to 2 a.png",
          "a.mp4 b.mp4", "--fast a.mp4", "--seed -1 a.mp4", "--to 1e9 a.mp4", "--from nan a.mp4"}) {
        const auto [status, text] = run(arguments);
        EXPECT_EQ(2, status) << arguments;
        EXPECT_NE(std::string::npos, text.find("zentrak-film: ")) << arguments << text;
        EXPECT_NE(std::string::npos, text.find("usage: ")) << arguments << text;
    }
    const auto [status, text] = run("--help");
    EXPECT_EQ(0, status);
    EXPECT_EQ(0u, text.find("usage: "));
}

TEST_F(Film, ReportsWhatItCannotDo) {
    const std::pair<const char*, const char*> cases[] = {
        {"film.avi", "'.*film.avi' has to end in .mp4"},
        {"--from 5 film.mp4", "the show ends at 3.000 seconds"},
        {"--still 1 nowhere/still.png", "nowhere/still.png"},
        {"--to 1 nowhere/film.mp4", "nowhere/film.mp4"},
        {"--to 1 --rate 5 --sheet nowhere/sub/../../setup.xml/sheet.png", "setup.xml"},
        {"--show missing film.mp4", "can't enter 'missing'"},
    };
    for (const auto& [arguments, words] : cases) {
        const auto [status, text] = run(arguments);
        EXPECT_EQ(1, status) << arguments << text;
        EXPECT_TRUE(std::regex_search(text, std::regex(words))) << arguments << text;
    }
    EXPECT_EQ(1, run("--still 1 still.png", "-u DISPLAY PATH=/nowhere").first); // no Xvfb
    writeFile(file("setup.xml"), "<demo><display width=\"65\" height=\"40\"/></demo>");
    EXPECT_NE(std::string::npos,
              run("film.mp4")
                  .second.find("the width and the height of a film are even numbers, not 65x40: see --size"));
    writeFile(file("setup.xml"), "<demo></demo>");
    EXPECT_NE(std::string::npos, run("film.mp4").second.find("no display element"));
}
