// The code printed in docs/effects.md and docs/demo.md is the code that is built.
#include "disc.h"
#include "effect_test.h"

#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace zentrak;
using namespace zentrak::kindler;
using test::Picture;
using test::readFile;
using test::sourcePath;

namespace {

// The blocks of C++ in a page.
std::vector<std::string> blocks(const std::string& page) {
    static const std::string head = "\n```cpp\n", foot = "\n```\n";
    const std::string text = readFile(sourcePath(page));
    std::vector<std::string> found;
    for (size_t at = text.find(head); at != std::string::npos; at = text.find(head, at)) {
        at += head.size();
        const size_t end = text.find(foot, at);
        if (end == std::string::npos) {
            ADD_FAILURE() << page << ": a block without an end";
            break;
        }
        found.push_back(text.substr(at, end + 1 - at));
        at = end;
    }
    return found;
}

// A line without its comment and its indentation.
std::string plain(const std::string& line) {
    return std::regex_replace(line, std::regex("^ +| *//.*$"), "");
}

class DiscTest : public test::GlTest {
protected:
    Disc mDisc{nullptr};

    // The red of the centre after `delta` seconds.
    int centre(float delta) {
        const Picture picture = frame([&] { mDisc.update(1, delta, 0.5f); });
        return picture.at(picture.width / 2, picture.height / 2)[0];
    }
};

} // namespace

TEST_F(DiscTest, IsAsBrightAsItsAlphaAndFlashesForASecond) {
    test::OwnFiles files(display());
    files.write("disc/disc.png", test::whitePicture(16, 16));
    test::prepare(mDisc, display(), "disc");
    EXPECT_EQ(0, centre(0.02f));
    mDisc.updateSpline(1, "alpha", 0.5f);
    EXPECT_NEAR(128, centre(0.02f), 2);
    mDisc.executeTrigger(1, "flash", "");
    EXPECT_EQ(255, centre(0));
    EXPECT_NEAR(128, centre(1), 2);
}

TEST(Pages, TheEffectOfEffectsMdIsTheDisc) {
    const std::vector<std::string> shown = blocks("docs/effects.md");
    ASSERT_EQ(2u, shown.size());
    EXPECT_EQ(readFile(sourcePath("tests/effects/disc.h")), shown[0]);
    EXPECT_EQ(readFile(sourcePath("tests/effects/disc.cpp")), shown[1]);
}

// test_new builds and runs the template.
TEST(Pages, TheCodeOfDemoMdIsInTheTemplate) {
    std::set<std::string> code;
    for (const char* file : {"petals.h", "petals.cpp", "model.h", "model.cpp"}) {
        std::istringstream lines(readFile(sourcePath(std::string("tools/template/") + file)));
        for (std::string line; std::getline(lines, line);)
            code.insert(plain(line));
    }
    const std::vector<std::string> shown = blocks("docs/demo.md");
    ASSERT_GE(shown.size(), 6u);
    for (const std::string& block : shown) {
        std::istringstream lines(block);
        for (std::string line; std::getline(lines, line);)
            EXPECT_TRUE(code.count(plain(line))) << "not in the template: " << line;
    }
}
