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
const std::string place = "p.xml:1: ";

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

TEST_F(CheckParticles, ReportsWhatIsMissing) {
    EXPECT_EQ(checkEmitter("texture=\"1\""),
              std::pair(1, place + "no 'num': it is 0, and the emitter emits nothing\n" + place +
                               "no 'rate': it is 0, and the emitter emits nothing\n"));
    EXPECT_EQ(checkEmitter(whole, "<mass v1=\"1\"/>"), std::pair(1, place + "no 'v2' of 'mass': it is 0\n"));
    EXPECT_EQ(check("<spark></spark>"), std::pair(1, place + "no instance\n"));
    EXPECT_EQ(check("<spark><instance name=\"sun\"></instance></spark>"),
              std::pair(1, place + "the instance has no emitter: it gives off nothing\n"));
}

TEST_F(CheckParticles, ReportsUnknownElements) {
    EXPECT_EQ(
        checkEmitter(whole + " speed=\"4\"", "<colour v1=\"1\" v2=\"2\"/><size v1=\"3\" v2=\"4\" v3=\"5\"/>"),
        std::pair(1, place + "unknown argument 'speed' of 'emitter' is ignored\n" + place +
                         "unknown tag 'colour' is ignored\n" + place +
                         "unknown argument 'v3' of 'size' is ignored\n"));
    EXPECT_EQ(check("<sparks></sparks>"),
              std::pair(1, place + "the root is 'sparks' and not 'spark': nothing is loaded\n"));
    EXPECT_EQ(checkEmitter(whole, "<mass v1=\"1\" v2=\"1\"/><mass v1=\"2\" v2=\"2\"/>"),
              std::pair(1, place + "a second 'mass' is ignored\n"));
}

TEST_F(CheckParticles, ReportsMisreadValues) {
    EXPECT_EQ(checkEmitter("texture=\"8\" rate=\"12.5\" num=\"many\""),
              std::pair(1, place + "'num' of 'many' is read as 0\n" + place +
                               "'num' is 0: the emitter emits nothing\n" + place +
                               "'rate' of '12.5' is read as 12\n" + place +
                               "'texture' is not from 0 to 7\n"));
    EXPECT_EQ(checkEmitter(whole, "<color v1=\"fff\" v2=\"gg0000\"/><speed v1=\"1,5\" v2=\"nan\"/>"),
              std::pair(1, place + "'v1' of 'color' is no colour of six hexadecimal digits: 'fff'\n" + place +
                               "'v2' of 'color' is no colour of six hexadecimal digits: 'gg0000'\n" + place +
                               "'v1' of 'speed' of '1,5' is read as 1\n" + place +
                               "'v2' of 'speed' is no finite number\n"));
    EXPECT_EQ(checkEmitter(whole, "<energy v1=\"-1\" v2=\"1\"/><size v1=\"1\" v2=\"0.5\"/>"),
              std::pair(1, place + "'v1' of 'energy' is below 0.1: such a particle dies in its first step\n" +
                               place +
                               "'v2' of 'size' is below 0.8: such a particle dies in its first step\n"));
    EXPECT_EQ(checkEmitter("texture=\"0\" rate=\"-5\" num=\"0\""),
              std::pair(1, place + "'num' is 0: the emitter emits nothing\n" + place +
                               "'rate' is not above 0: the emitter emits nothing\n"));
    EXPECT_EQ(checkEmitter("texture=\"0\" rate=\"1000000000\" num=\"-1\""),
              std::pair(1, place + "'rate' is above 1000000: the engine leaves particles out\n"));
}

TEST_F(CheckParticles, GivesTheLineOfEachFinding) {
    EXPECT_EQ(check("<spark>\n<instance name=\"sun\">\n<emitter " + whole +
                    ">\n<mass v1=\"1\"/>\n<size v1=\"2\"\nv2=\"x\"/>\nsome words\n</emitter>\n</instance>\n"
                    "<instance name=\"sun\"></instance><other/></spark>"),
              std::pair(1, std::string("p.xml:4: no 'v2' of 'mass': it is 0\n"
                                       "p.xml:5: 'v2' of 'size' of 'x' is read as 0\n"
                                       "p.xml:5: 'v2' of 'size' is below 0.8: such a particle dies in its "
                                       "first step\n"
                                       "p.xml:7: text in 'emitter' is ignored\n"
                                       "p.xml:10: a second instance 'sun' can't be found by its name\n"
                                       "p.xml:10: the instance has no emitter: it gives off nothing\n"
                                       "p.xml:10: unknown tag 'other' is ignored\n")));
}

TEST_F(CheckParticles, AFileThatCantBeReadIsAnErrorThatSaysWhy) {
    const auto broken = check("<spark><instance");
    EXPECT_EQ(broken.first, 2);
    EXPECT_NE(
        broken.second.find("p.xml: is not XML: (error at line 1, col 17); EOF (when reading tag at 1:8)\n"),
        std::string::npos)
        << broken.second;
    const auto empty = check("");
    EXPECT_EQ(empty.first, 2);
    EXPECT_NE(empty.second.find("p.xml: is not XML: "), std::string::npos) << empty.second;
    const std::string in = "cd " + mFolder.path() + " && " CHECK_PARTICLES;
    EXPECT_EQ(test::runCommand(in + " nowhere.xml"),
              std::pair(2, std::string("nowhere.xml: can't be read: No such file or directory\n")));
    EXPECT_EQ(test::runCommand(in + " ."), std::pair(2, std::string(".: can't be read: Is a directory\n")));
    const std::pair<int, std::string> usage(2, "usage: zentrak-check-particles FILE...\n");
    EXPECT_EQ(test::runCommand(in), usage);
    EXPECT_EQ(test::runCommand(in + " --help"), usage);
    EXPECT_EQ(test::runCommand(in + " p.xml -x"), usage);
}
