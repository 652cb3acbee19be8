#include "support.h"

#include <gtest/gtest.h>

using namespace zentrak;

namespace {

class CheckParticles : public ::testing::Test {
protected:
    test::TempDir mFolder;

    std::pair<int, std::string> check(const std::string& text) {
        test::writeFile(mFolder.file("p.xml"), text);
        auto result = test::runCommand("cd " + mFolder.path() + " && " CHECK_PARTICLES " p.xml");
        return {result.first, result.second};
    }
    std::pair<int, std::string> checkEmitter(const std::string& arguments, const std::string& children = "") {
        return check("<spark><instance name=\"sun\"><emitter name=\"e\" " + arguments + ">" + children +
                     "</emitter></instance></spark>");
    }
};

const std::string whole = "texture=\"0\" rate=\"0x10\" num=\"-1\"";
const std::string place = "p.xml: instance 'sun', emitter 'e': ";

} // namespace

TEST_F(CheckParticles, TheFileOfTheShowHasNoFindings) {
    const auto result = test::runCommand(CHECK_PARTICLES " " + test::sourcePath("data/spark/spark.xml"));
    EXPECT_EQ(result.second, "");
    EXPECT_EQ(result.first, 0);
}

TEST_F(CheckParticles, AWholeEmitterHasNone) {
    EXPECT_EQ(checkEmitter(
                  whole, "<!-- a word --><color v1=\"ff8000\" v2=\"FFFFFF\"/><size v1=\"1.5\" v2=\"2e1\"/>"),
              std::pair(0, std::string()));
}

TEST_F(CheckParticles, SaysWhatIsMissing) {
    EXPECT_EQ(checkEmitter("texture=\"1\""),
              std::pair(1, place + "no 'num': it is 0, and the emitter emits nothing\n" + place +
                               "no 'rate': it is 0, and the emitter emits nothing\n"));
    EXPECT_EQ(checkEmitter(whole, "<mass v1=\"1\"/>"), std::pair(1, place + "no 'v2' of 'mass': it is 0\n"));
    EXPECT_EQ(check("<spark></spark>"), std::pair(1, std::string("p.xml: no instance\n")));
    EXPECT_EQ(check("<spark><instance name=\"sun\"></instance></spark>"),
              std::pair(1, std::string("p.xml: instance 'sun': no emitter: it gives off nothing\n")));
}

TEST_F(CheckParticles, SaysWhatIsNotKnown) {
    EXPECT_EQ(
        checkEmitter(whole + " speed=\"4\"", "<colour v1=\"1\" v2=\"2\"/><size v1=\"3\" v2=\"4\" v3=\"5\"/>"),
        std::pair(1, place + "unknown argument 'speed' of 'emitter' is ignored\n" + place +
                         "unknown tag 'colour' is ignored\n" + place +
                         "unknown argument 'v3' of 'size' is ignored\n"));
    EXPECT_EQ(check("<sparks></sparks>"),
              std::pair(1, std::string("p.xml: the root is 'sparks' and not 'spark': nothing is loaded\n")));
    EXPECT_EQ(checkEmitter(whole, "<mass v1=\"1\" v2=\"1\"/><mass v1=\"2\" v2=\"2\"/>"),
              std::pair(1, place + "a second 'mass' is ignored\n"));
}

TEST_F(CheckParticles, SaysWhatIsReadAsSomethingElse) {
    EXPECT_EQ(checkEmitter("texture=\"8\" rate=\"12.5\" num=\"many\""),
              std::pair(1, place + "'num' of 'many' is read as 0\n" + place +
                               "'num' is 0: it emits nothing\n" + place + "'rate' of '12.5' is read as 12\n" +
                               place + "'texture' is not from 0 to 7\n"));
    EXPECT_EQ(checkEmitter(whole, "<color v1=\"fff\" v2=\"gg0000\"/><speed v1=\"1,5\" v2=\"nan\"/>"),
              std::pair(1, place + "'v1' of 'color' is no colour of six hexadecimal digits: 'fff'\n" + place +
                               "'v2' of 'color' is no colour of six hexadecimal digits: 'gg0000'\n" + place +
                               "'v1' of 'speed' of '1,5' is read as 1\n" + place +
                               "'v2' of 'speed' is no finite number\n"));
    EXPECT_EQ(checkEmitter(whole, "<energy v1=\"-1\" v2=\"1\"/><size v1=\"1\" v2=\"0.5\"/>"),
              std::pair(1, place + "'v1' of 'energy' is below 0.1: such a particle dies in its first step\n" +
                               place +
                               "'v2' of 'size' is below 0.8: such a particle dies in its first step\n"));
    EXPECT_EQ(checkEmitter("texture=\"0\" rate=\"1000000000\" num=\"-1\""),
              std::pair(1, place + "'rate' is above 1000000: the engine leaves particles out\n"));
}

TEST_F(CheckParticles, AFileThatCantBeReadIsAnError) {
    EXPECT_EQ(check("<spark><instance").first, 2);
    EXPECT_EQ(test::runCommand(CHECK_PARTICLES " " + mFolder.file("nowhere.xml")).first, 2);
    EXPECT_EQ(test::runCommand(CHECK_PARTICLES).first, 2);
}
