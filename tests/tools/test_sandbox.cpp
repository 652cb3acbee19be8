// tools/sandbox: a show in it reads and writes nothing outside of its folder. Needs bubblewrap, and a system
// that lets it make name spaces.

#include "support.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace zentrak::test;

namespace {

constexpr const char* SCRIPT = "<script><effect name=\"clear\" end=\"1\"></effect></script>";

class Sandbox : public testing::Test {
protected:
    TempDir mShow, mElsewhere;

    void SetUp() override {
        if (runCommand("bwrap --unshare-all --ro-bind / / true").first != 0)
            GTEST_SKIP() << "bubblewrap is missing, or may not make name spaces";
        writeFile(mElsewhere.file("script.xml"), SCRIPT);
    }

    void writeSetup(const std::string& text) { writeFile(mShow.file("setup.local.xml"), text); }

    std::pair<int, std::string> playIn(const std::string& sandbox) const {
        return runCommand("cd '" + mShow.path() + "' && ALSOFT_DRIVERS=null " + sandbox + " '" ZENTRAK "'");
    }
    std::pair<int, std::string> play() const {
        return playIn("'" + sourcePath("tools/sandbox") + "' '" + mShow.path() + "'");
    }
};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_F(Sandbox, AShowReadsNothingElsewhere) {
    writeSetup("<demo><archive path=\"" + mElsewhere.path() +
               "\"/><script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>");
    const std::string refusal = "error: [Kindler] Could not find the script: 'script.xml'";
    EXPECT_FALSE(contains(playIn("").second, refusal));
    const auto [status, output] = play();
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(contains(output, refusal)) << output;
}

TEST_F(Sandbox, AShowWritesNothingAtAll) {
    const std::string setup = "<demo><script filename=\"script.xml\"/><music mute=\"nosound\"/></demo>";
    writeFile(mShow.file("script.xml"), SCRIPT);
    writeSetup(setup);
    const auto [status, output] = play();
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(contains(output, "The settings can't be saved")) << output;
    EXPECT_EQ(readFile(mShow.file("setup.local.xml")), setup);
    playIn("");
    EXPECT_NE(readFile(mShow.file("setup.local.xml")), setup);
}
