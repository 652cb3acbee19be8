// The programs that make the show's pictures, compared with the pictures in the source tree.
#include "picture.h"
#include "support.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

using namespace zentrak::test;

namespace {

struct Maker {
    const char* program;
    const char* folder; // the folder in the tree that it fills
    int pictures;
};

const Maker makers[] = {{MAKE_SCREEN_ART, "data", 4},
                        {MAKE_VOXEL_ART, "data", 33},
                        {MAKE_SPARK_ART, "data", 1},
                        {MAKE_STONE_ART, "tests/data/sten", 2}};

} // namespace

// Compares the pixels, with alpha: another libm's sine may differ in the last bit, and another zlib packs
// differently.
TEST(Art, TheMakersMakeTheFilesInTheTree) {
    for (const Maker& maker : makers) {
        TempDir folder;
        ASSERT_EQ(runCommand(std::string(maker.program) + " " + folder.path()).first, 0) << maker.program;
        int pictures = 0;
        for (const auto& file : std::filesystem::recursive_directory_iterator(folder.path())) {
            const std::filesystem::path& path = file.path();
            if (path.extension() != ".png")
                continue;
            ++pictures;
            const std::string name = std::filesystem::relative(path, folder.path()).string();
            Picture made, there;
            ASSERT_TRUE(readPng(path.string(), made)) << name;
            ASSERT_TRUE(readPng(sourcePath(std::string(maker.folder) + "/" + name), there)) << name;
            ASSERT_EQ(made.width, there.width) << name;
            ASSERT_EQ(made.height, there.height) << name;
            double sum = 0;
            for (size_t i = 0; i < made.rgba.size(); ++i)
                sum += std::abs(int(made.rgba[i]) - int(there.rgba[i]));
            EXPECT_LT(sum / double(made.rgba.size()), 0.01) << name;
        }
        EXPECT_EQ(pictures, maker.pictures) << maker.program;
    }
}

TEST(Art, TheMakersReportErrors) {
    for (const Maker& maker : makers) {
        const std::string name = std::filesystem::path(maker.program).filename().string();
        TempDir folder;
        for (const char* arguments : {"", " --help", " one two"})
            EXPECT_EQ(runCommand("cd " + folder.path() + " && " + maker.program + arguments),
                      (std::pair<int, std::string>(2, "usage: " + name + " FOLDER\n")));
        EXPECT_TRUE(std::filesystem::is_empty(folder.path())); // no folder of the name "--help"
    }
    const auto [status, text] = runCommand(std::string(MAKE_SPARK_ART) + " /proc/no/such/folder");
    EXPECT_EQ(status, 1);
    EXPECT_NE(text.find("/proc/no/such/folder/sparks.png"), std::string::npos) << text;
}

TEST(Art, APictureThatCantBeWrittenIsReportedAndTheOldOneKept) {
    TempDir folder;
    std::filesystem::create_symlink("/dev/full", folder.file("sparks.png"));
    EXPECT_EQ(runCommand("cd " + folder.path() + " && " MAKE_SPARK_ART " ."),
              (std::pair<int, std::string>(1, "./sparks.png: can't be written: No space left on device\n")));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("sparks.png")));
    std::filesystem::remove(folder.file("sparks.png"));
    std::filesystem::create_directories(folder.file("spark/spark.xml"));
    EXPECT_EQ(runCommand("cd " + folder.path() + " && " MAKE_SPARK_ART " ."),
              (std::pair<int, std::string>(1, "./spark/spark.xml: can't be written: Is a directory\n")));
}

TEST(Art, TheFontMakerReportsErrors) {
    TempDir folder;
    const std::string make = "cd " + folder.path() + " && " MAKE_FONT;
    writeFile(folder.file("text"), "no font");
    for (const char* arguments :
         {"", " text", " --help x", " text x.png 7", " text x.png 16x", " text x.png 16 3"}) {
        const auto [status, text] = runCommand(make + arguments);
        EXPECT_EQ(status, 2) << arguments;
        EXPECT_EQ(text.find("usage: zentrak-make-font FONT.ttf OUT.png [CELL]"), 0u) << arguments << text;
    }
    EXPECT_EQ(runCommand(make + " text x.png"),
              (std::pair<int, std::string>(1, "zentrak-make-font: text is no font that can be read\n")));
    EXPECT_FALSE(std::filesystem::exists(folder.file("x.png")));
}
