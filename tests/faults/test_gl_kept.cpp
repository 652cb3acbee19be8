// The real show over and over: each round has to leave as many OpenGL objects as the one before.
//   ZENTRAK_ROUNDS=21 tests/with_display build/release/tests/faults/test_gl_kept
// plays as many rounds as an hour has, and prints the counts. Without the variable it plays two.
#include "dis_key.h"
#include "kin_gui.h"
#include "played_show.h"

#include <GL/glew.h>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::test;

namespace {

constexpr float STEP = 0.5f;    // seconds of the show between two frames
constexpr float LENGTH = 172;   // seconds, more than the show has
constexpr GLuint NAMES = 65536; // drivers hand out the lowest free names

using Counts = std::map<std::string, int>;

Counts countObjects() {
    const std::pair<const char*, std::function<bool(GLuint)>> kinds[] = {
        {"textures", [](GLuint name) { return glIsTexture(name); }},
        {"buffers", [](GLuint name) { return glIsBuffer(name); }},
        {"framebuffers", [](GLuint name) { return glIsFramebuffer(name); }},
        {"renderbuffers", [](GLuint name) { return glIsRenderbuffer(name); }},
        {"shaders", [](GLuint name) { return glIsShader(name); }},
        {"programs", [](GLuint name) { return glIsProgram(name); }},
        {"queries", [](GLuint name) { return glIsQuery(name); }},
        {"display lists", [](GLuint name) { return glIsList(name); }},
    };
    Counts counts;
    for (const auto& [kind, exists] : kinds)
        for (GLuint name = 1; name <= NAMES; ++name)
            counts[kind] += exists(name);
    return counts;
}

std::string toText(const Counts& counts) {
    std::string text;
    for (const auto& [kind, count] : counts)
        text += std::to_string(count) + " " + kind + "  ";
    return text;
}

} // namespace

TEST(GlKept, EachRoundLeavesAsManyObjects) {
    const char* const text = getenv("ZENTRAK_ROUNDS");
    const int rounds = text ? atoi(text) : 2;
    constexpr int FRAMES = int(LENGTH / STEP); // a round
    const SmallShow show;
    std::vector<Counts> counts;
    const auto afterFrame = [&](kindler::Kindler& kindler, int frames) {
        kindler.setTime(float(frames % FRAMES) * STEP);
        if (frames % 4 == 0) { // opens and closes the editor
            display::KeyEvent tab;
            tab.key = display::KEY_TAB;
            kindler.mGui->onKeyDown(tab);
        }
        if (frames % FRAMES == 0)
            counts.push_back(countObjects());
        return int(counts.size()) < rounds;
    };
    {
        CaptureStdout quiet;
        EXPECT_EQ(playShow(afterFrame), "");
    }
    ASSERT_EQ(int(counts.size()), rounds);
    for (const Counts& round : counts) {
        printf("%s\n", toText(round).c_str());
        EXPECT_EQ(toText(round), toText(counts.front()));
    }
    EXPECT_GT(counts.front()["textures"], 10);
    EXPECT_GT(counts.front()["programs"], 1);
}
