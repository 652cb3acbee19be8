// The whole program when the system fails it. test_program.cpp has missing and broken files.
#include "music.h"
#include "program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

using namespace zentrak::test;

namespace {

constexpr const char* SCRIPT =
    "<script><effect name=\"clear\" end=\"100000\">"
    "<trigger name=\"type\" value=\"flat\"/><trigger name=\"color\" value=\"white\"/>"
    "</effect></script>";
constexpr const char* DRAWN = "name: color, value: white\n"; // logged in the first frame

void prepare(Program& program, const std::string& more = "<music mute=\"nosound\"/>",
             const std::string& size = "width=\"320\" height=\"200\"") {
    program.write("script.xml", SCRIPT);
    program.write("setup.local.xml", "<demo><display title=\"" + program.title() + "\" " + size +
                                         "/><script filename=\"script.xml\"/>" + more + "</demo>");
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

bool isSaved(const Program& program) {
    return contains(program.read("setup.local.xml"), "<music mute=\"off\"/>");
}

// A command prefix that gives the show mounts of its own, made by `mounts`. Empty if that isn't allowed.
std::string withMounts(const std::string& mounts) {
    if (runCommand("unshare -rm true").first != 0)
        return "";
    return "unshare -rm sh -c '" + mounts + " && exec \"$@\"' sh";
}

// A PulseAudio of the test's own, whose one device plays to nobody.
class SoundServer {
public:
    static bool isInstalled() { return runCommand("which pulseaudio pactl").first == 0; }

    ~SoundServer() { end(); }

    void start() {
        mPid = fork();
        if (mPid == 0) {
            setenv("HOME", mDir.path().c_str(), 1);
            setenv("XDG_RUNTIME_DIR", mDir.path().c_str(), 1);
            const std::string command =
                "exec pulseaudio -n --daemonize=no --use-pid-file=no --exit-idle-time=-1 -L "
                "module-null-sink -L 'module-native-protocol-unix auth-anonymous=1 socket=" +
                socket() + "' >/dev/null 2>&1";
            execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        EXPECT_TRUE(waitFor([this] { return control("info").first == 0; }));
    }
    void end() {
        if (mPid > 0 && kill(mPid, SIGKILL) == 0)
            waitpid(mPid, nullptr, 0);
        mPid = -1;
        std::filesystem::remove(socket());
    }

    std::string environment() const { return "PULSE_SERVER=unix:" + socket(); }
    std::pair<int, std::string> control(const std::string& command) const {
        return runCommand("env " + environment() + " pactl " + command + " 2>/dev/null");
    }
    bool isPlaying() const {
        const auto [status, streams] = control("list short sink-inputs");
        return status == 0 && !streams.empty();
    }

private:
    std::string socket() const { return mDir.file("socket"); }

    TempDir mDir;
    pid_t mPid = -1;
};

// Loses the sound and gets it back, while the show plays.
void playThrough(SoundServer& server, const std::function<void()>& lose,
                 const std::function<void()>& giveBack) {
    server.start();
    Program program;
    prepare(program, "<music filename=\"tune.wav\"/>");
    program.write("tune.wav", makeWav(600 * 8000));
    program.start("ALSOFT_DRIVERS=pulse " + server.environment());
    ASSERT_TRUE(program.focus()) << program.output();
    const auto plays = [&] { return server.isPlaying(); };
    EXPECT_TRUE(waitFor(plays));
    for (int times = 0; times < 2; ++times) {
        lose();
        EXPECT_TRUE(waitFor([&] { return !server.isPlaying(); }));
        EXPECT_TRUE(program.reaches(program.askTime() + 0.5)) << "the show stood still in silence";
        giveBack();
        EXPECT_TRUE(waitFor(plays)) << "the sound is not back";
    }
    lose();
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_FALSE(contains(program.output(), "error:")) << program.output();
}

} // namespace

TEST(TheWorld, ADiskThatFillsUpDuringADumpStopsNeitherTheShowNorItsSettings) {
    Program program;
    prepare(program, "<dump name=\"out/frame.png\"/><music mute=\"nosound\"/>");
    std::filesystem::create_directories(program.dir().file("out"));
    std::filesystem::create_directories(program.dir().file("kept"));
    const std::string mounts = withMounts("mount -t tmpfs -o size=32k none out");
    if (mounts.empty())
        GTEST_SKIP() << "no mounts of our own here";
    // Copies for as long as the show runs, because the disk disappears with it.
    program.start(mounts + " sh -c \"(while cp -r out/. kept/; do sleep 0.1; done) & exec \\\"\\$@\\\"\" sh");
    ASSERT_TRUE(program.focus()) << program.output();
    const auto full = [&] { return std::filesystem::exists(program.dir().file("kept/frame.000003.png")); };
    EXPECT_TRUE(waitFor(full)) << program.output();
    EXPECT_TRUE(program.reaches(3));
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_TRUE(isSaved(program));
    int whole = 0;
    for (const auto& entry : std::filesystem::directory_iterator(program.dir().file("kept"))) {
        Picture picture;
        if (entry.path().extension() == ".png" && std::filesystem::file_size(entry.path()) > 0)
            whole += readPng(entry.path().string(), picture);
    }
    EXPECT_GT(whole, 2);
    EXPECT_FALSE(program.has("kept/frame.000060.png")); // it was full long before
}

TEST(TheWorld, AReadOnlyFolderIsPlayedFrom) {
    Program program;
    prepare(program);
    const std::string before = program.read("setup.local.xml");
    const std::string mounts = withMounts("mount --bind . . && mount -o remount,bind,ro . && cd \"$PWD\"");
    if (mounts.empty())
        GTEST_SKIP() << "no mounts of our own here";
    program.start(mounts);
    ASSERT_TRUE(program.focus()) << program.output();
    EXPECT_GE(program.askTime(), 0);
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_TRUE(contains(program.output(), "The settings can't be saved in 'setup.local.xml'"))
        << program.output();
    EXPECT_EQ(program.read("setup.local.xml"), before);
}

// One at a time. If an effect needs the function, the show ends with that effect's text; otherwise it plays
// on.
TEST(TheWorld, AContextWithoutAnExtensionPlaysOrSaysWhatIsMissing) {
    for (const char* extension :
         {"GL_ARB_shader_objects", "GL_ARB_vertex_shader", "GL_ARB_fragment_shader",
          "GL_ARB_shading_language_100", "GL_ARB_vertex_buffer_object", "GL_EXT_framebuffer_object",
          "GL_ARB_framebuffer_object", "GL_ARB_multitexture", "GL_ARB_texture_non_power_of_two",
          "GL_ARB_texture_float", "GL_ARB_texture_cube_map", "GL_ARB_draw_buffers",
          "GL_EXT_texture_filter_anisotropic"}) {
        Program program;
        prepare(program, "<music filename=\"tune.wav\"/>");
        program.write("tune.wav", makeWav(8000)); // ends the show after a second
        EXPECT_EQ(program.run(std::string("MESA_EXTENSION_OVERRIDE=-") + extension), 0) << extension;
        const std::string output = program.output();
        EXPECT_NE(contains(output, DRAWN), contains(output, "\nerror: ")) << extension << output;
    }
}

TEST(TheWorld, ALostDisplayEndsTheProgramWithAMessage) {
    Program program;
    prepare(program);
    const std::string before = program.read("setup.local.xml");
    program.start("ZENTRAK_WM=none '" + sourcePath("tests/with_display") + "'");
    ASSERT_TRUE(waitFor([&] {
        return (program.has("output") && contains(program.output(), DRAWN)) || !program.running();
    })) << program.output();
    EXPECT_EQ(runCommand("pkill -KILL -P " + std::to_string(program.pid()) + " -x Xvfb").first, 0);
    EXPECT_NE(program.wait(), 0); // Xlib ends the process itself
    EXPECT_FALSE(program.running());
    EXPECT_TRUE(contains(program.output(), "X connection") ||
                contains(program.output(), "XIO:  fatal IO error"))
        << program.output();
    EXPECT_EQ(program.read("setup.local.xml"), before);
}

TEST(TheWorld, ATinyWindowPlays) {
    for (const char* size : {"width=\"1\" height=\"1\"", "width=\"2\" height=\"900\""}) {
        Program program;
        prepare(program, "<music filename=\"tune.wav\"/>", size);
        program.write("tune.wav", makeWav(4000));
        EXPECT_EQ(program.run(), 0) << size;
        EXPECT_TRUE(contains(program.output(), DRAWN)) << size << program.output();
        EXPECT_FALSE(contains(program.output(), "error:")) << size << program.output();
    }
}

TEST(TheWorld, ASoundServerThatRestartsIsPlayedToAgain) {
    if (!SoundServer::isInstalled())
        GTEST_SKIP() << "PulseAudio is missing";
    SoundServer server;
    playThrough(
        server, [&] { server.end(); }, [&] { server.start(); });
}

TEST(TheWorld, ASoundDeviceThatIsTakenAwayAndBackIsPlayedToAgain) {
    if (!SoundServer::isInstalled())
        GTEST_SKIP() << "PulseAudio is missing";
    SoundServer server;
    playThrough(
        server, [&] { server.control("unload-module module-null-sink"); },
        [&] { server.control("load-module module-null-sink"); });
}

// The computer's clock, which a user or the network sets; needs libfaketime.
TEST(TheWorld, AClockThatJumpsMovesNothing) {
    const std::string library = "/usr/lib/x86_64-linux-gnu/faketime/libfaketime.so.1";
    if (!fileExists(library))
        GTEST_SKIP() << "libfaketime is missing";
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer wants to be the first library, and libfaketime has to be";
#endif
    Program program;
    prepare(program);
    program.write("jump", "+0");
    program.start("LD_PRELOAD=" + library + " FAKETIME_TIMESTAMP_FILE='" + program.dir().file("jump") +
                  "' FAKETIME_NO_CACHE=1 FAKETIME_DONT_FAKE_MONOTONIC=1");
    ASSERT_TRUE(program.focus()) << program.output();
    for (const char* jump : {"+400d", "-400d", "+0"}) {
        const double before = program.askTime();
        program.write("jump", jump);
        EXPECT_TRUE(program.reaches(before + 0.1)) << jump;
        const double after = program.askTime();
        EXPECT_LT(after, before + DEADLINE) << jump;
    }
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0) << program.output();
    EXPECT_TRUE(isSaved(program));
}
