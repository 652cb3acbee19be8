// The whole program with the real show under random real keys, mouse and window events, determined by a seed.
//   ZENTRAK_SOAK_SECONDS=600 ZENTRAK_SOAK_SEED=7 tests/with_display build/release/tests/app/test_tireless
// prints the memory, files and threads of the process twenty times. Without the variables it takes a few
// seconds, with the seed 1.
#include "program.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

using namespace zentrak::test;

namespace {

using Clock = std::chrono::steady_clock;

int setting(const char* name, int otherwise) {
    const char* const text = getenv(name);
    return text ? atoi(text) : otherwise;
}

struct Usage {
    long memory = 0; // resident, MB
    long files = 0;
    long threads = 0;
};

Usage usageOf(pid_t pid) {
    Usage usage;
    const std::string folder = "/proc/" + std::to_string(pid);
    std::ifstream status(folder + "/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:" && status >> usage.memory)
            usage.memory /= 1024;
        if (word == "Threads:")
            status >> usage.threads;
    }
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(folder + "/fd"))
        ++usage.files;
    return usage;
}

class Hands {
public:
    Hands(Program& program, unsigned seed) : mProgram(program), mRandom(seed) {}

    long count() const { return mCount; }

    // One window event, then twenty of keys and mouse, in one call of xdotool.
    void act() {
        changeWindow();
        look();
        mActs.clear();
        for (int i = 0; i < 20; ++i, ++mCount)
            useKeysOrMouse();
        // Clicks the picture to take the focus from the editor, whose rows and menus take the keys. A small
        // window doesn't show the picture.
        if (mWidth < 500 || mHeight < 400) {
            add("windowsize --sync " + mProgram.viewer().window() + " 640 480");
            mWidth = 640;
            mHeight = 480;
        }
        add("mousemove --window " + mProgram.viewer().window() + " -- " + std::to_string(mWidth * 3 / 4) +
            " " + std::to_string(mHeight / 4) + " click --repeat 2 1");
        const auto [status, text] = runCommand("timeout 60 xdotool" + mActs);
        EXPECT_EQ(status, 0) << mActs << text;
    }

private:
    Program& mProgram;
    std::mt19937 mRandom;
    long mCount = 0;
    int mWidth = 0, mHeight = 0; // of the window, pixels
    std::string mActs;
    OtherWindow mOther;

    int number(int end) { return int(mRandom() % unsigned(end)); }
    void add(const std::string& act) { mActs += " " + act; }

    void changeWindow() {
        Viewer& viewer = mProgram.viewer();
        ++mCount;
        switch (number(8)) {
        case 0:
            runCommand("timeout 60 xdotool windowsize " + viewer.window() + " " +
                       std::to_string(2 * (1 + number(600))) + " " + std::to_string(2 * (1 + number(450))));
            break;
        case 1:
            viewer.iconify();
            break;
        case 2:
            viewer.fullScreen(true);
            break;
        case 3:
            viewer.fullScreen(false);
            break;
        case 4:
            mOther.focus();
            break;
        default:
            break;
        }
        viewer.focus();
    }

    // The pointer has to stay inside: the frame has a button that closes the window.
    void look() {
        const auto [status, text] =
            runCommand("timeout 60 xdotool getwindowgeometry " + mProgram.viewer().window());
        const size_t at = text.find("Geometry: ");
        ASSERT_NE(at, std::string::npos) << text;
        ASSERT_EQ(sscanf(text.c_str() + at, "Geometry: %dx%d", &mWidth, &mHeight), 2);
    }

    void move() {
        add("mousemove --window " + mProgram.viewer().window() + " -- " +
            std::to_string(number(std::max(mWidth - 2, 1)) + 1) + " " +
            std::to_string(number(std::max(mHeight - 2, 1)) + 1));
    }

    void useKeysOrMouse() {
        static const char* const keys[] = {"Left",   "Right",  "space",  "m",   "t",   "ctrl+t",
                                           "alt+t",  "o",      "ctrl+o", "p",   "Tab", "Insert",
                                           "Delete", "Return", "Home",   "End", "Up",  "Down",
                                           "Prior",  "Next",   "F1",     "a",   "1",   "shift+a"};
        const std::string button = std::to_string(1 + number(3));
        switch (number(10)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return add("key " + std::string(keys[number(int(std::size(keys)))]));
        case 4:
            return move();
        case 5:
            move();
            return add("click " + button);
        case 6:
            move();
            return add("click --repeat 2 --delay 20 1");
        case 7:
            move();
            return add("click " + std::to_string(4 + number(2)));
        default:
            move();
            add("mousedown " + button);
            for (int steps = number(4); steps >= 0; --steps)
                move();
            return add("mouseup " + button);
        }
    }
};

// A show that outlasts its music, so that the test decides when it ends.
void prepare(Program& program) {
    for (const char* name : {"script.xml", "sparks.png"})
        program.write(name, readFile(sourcePath("data") + "/" + name));
    program.write("setup.local.xml", "<demo><time start=\"0\" loop=\"on\"/><display title=\"" +
                                         program.title() +
                                         "\" width=\"640\" height=\"400\"/><script filename=\"script.xml\"/>"
                                         "<music filename=\"music/zentrak.ogg\"/></demo>");
}

bool isPaused(Program& program) {
    return program.askTime() == program.askTime();
}

// Restarts the show, lets it play, pauses it, and quits. Returns how many seconds the music is ahead: P
// prints the time of the picture, and Ctrl+T saves the time of the music as the start time.
double quitAndCompare(Program& program) {
    if (isPaused(program))
        program.key("space");
    for (const char* key : {"space", "space", "alt+t"}) // music that ran out plays again after a pause
        program.key(key);
    EXPECT_TRUE(program.reaches(2));
    program.key("space");
    EXPECT_TRUE(isPaused(program));
    const double picture = program.askTime();
    program.key("ctrl+t");
    program.key("Escape");
    EXPECT_EQ(program.wait(), 0) << program.output();
    const std::string saved = program.read("setup.local.xml");
    const size_t at = saved.find("start=\"");
    return at == std::string::npos ? NAN : atof(saved.c_str() + at + 7) - picture;
}

} // namespace

TEST(TheShow, StandsAnythingThatAViewerDoes) {
    const int seconds = setting("ZENTRAK_SOAK_SECONDS", 4);
    Program program;
    prepare(program);
    program.start();
    ASSERT_TRUE(program.focus()) << program.output();
    Usage early, now;
    long acts = 0;
    {
        Hands hands(program, unsigned(setting("ZENTRAK_SOAK_SEED", 1)));
        const auto start = Clock::now();
        int part = 0; // twentieths of the time
        for (double passed = 0; passed < seconds && !HasFailure();) {
            hands.act();
            ASSERT_GE(program.askTime(), 0) << "no answer after " << hands.count() << " acts\n"
                                            << program.output();
            passed = std::chrono::duration<double>(Clock::now() - start).count();
            if (passed * 20 < seconds * (part + 1))
                continue;
            part = int(passed * 20 / seconds);
            now = usageOf(program.pid());
            if (passed * 5 < seconds || early.memory == 0)
                early = now;
            if (seconds >= 60)
                printf("%5.0f s %6ld acts %5ld MB %3ld files %3ld threads\n", passed, hands.count(),
                       now.memory, now.files, now.threads);
        }
        acts = hands.count();
        program.viewer().fullScreen(false);
        program.viewer().focus();
    }
    const double ahead = quitAndCompare(program);
    EXPECT_LT(std::fabs(ahead), 0.25);
    EXPECT_LE(now.files, early.files);
    EXPECT_LE(now.threads, early.threads);
    if (seconds >= 300) {
        EXPECT_LE(now.memory, early.memory + early.memory / 10);
    }
    printf("%ld acts in %d seconds, the music is %.3f s ahead\n", acts, seconds, ahead);
}
