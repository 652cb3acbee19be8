#include "o3d_bytes.h"
#include "scene/inspect.h"
#include "support.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::test;

namespace {

// The remarks on a file, one per line, without indentation.
std::string remarksOf(const std::string& image) {
    const std::string text = scene::inspect(image).text;
    std::string result;
    size_t at = 0;
    while (at < text.size()) {
        const size_t end = text.find('\n', at);
        const std::string line =
            text.substr(text.find_first_not_of(' ', at), end - text.find_first_not_of(' ', at));
        if (line.rfind("! ", 0) == 0)
            result += line.substr(2) + "\n";
        at = end + 1;
    }
    return result;
}

const std::string noScene = "there is no scene\n";

std::string mesh(const std::string& children) {
    return file(chunk(0x2000, text("m") + children));
}
std::string node(const std::string& children) {
    return file(chunk(0x5000, text("s") + children));
}

TEST(Inspect, PrintsEveryChunkAsATree) {
    const scene::Inspection inspection = scene::inspect(file(
        chunk(0x2000, text("m") + chunk(0xFF00, floats({0, 0, 0, 1, 0, 0, 0, 1, 0})) +
                          chunk(0x2200, u8(0) + chunk(0xFF30, triangle(0, 1, 2)) +
                                            chunk(0xFF60, i32(0) + i32(1) + i32(2))) +
                          chunk(0x6200, text("stone"))) +
        chunk(0x6000, text("stone") + chunk(0x6111, u8(1))) +
        chunk(0x5000, text("s") + chunk(0x5110, text("c") + chunk(0xFA40, chunk(0xF004, f32(1.5f)))) +
                          chunk(0x5120, text("i") + text("m") + chunk(0x6210, u8(0) + text("stone")) +
                                            chunk(0xFA00, keyList(0xFB20, 1, 2, key(-1, 3) + key(4, 2)))))));
    EXPECT_EQ(
        "'O3DF' 1.1, 246 bytes\n"
        "main 0x1000, 234 bytes\n"
        "  mesh 0x2000 'm', 100 bytes\n"
        "    vertices 0xFF00: 3\n"
        "    submesh 0x2200, material number 0, 38 bytes\n"
        "      triangles 0xFF30: 1\n"
        "      indices 0xFF60: 3\n"
        "    material names 0x6200: 'stone'\n"
        "  material 0x6000 'stone', 9 bytes\n"
        "    second flag 0x6111: 1\n"
        "  scene 0x5000 's', 107 bytes\n"
        "    camera 0x5110 'c', 14 bytes\n"
        "      angle 0xFA40, 6 bytes\n"
        "        default 0xF004: 1.5\n"
        "    mesh instance 0x5120 'i' of mesh 'm', 79 bytes\n"
        "      material override 0x6210 of number 0 by 'stone'\n"
        "      position 0xFA00, 56 bytes\n"
        "        keys of component 1 0xFB20: 2, linear, beyond them cyclic, time -1 to 4, value 2 to 3\n"
        "scene 's' is animated up to time 4\n",
        inspection.text);
    EXPECT_EQ(0, inspection.remarks);
}

TEST(Inspect, KnowsEveryChunkThatTheLoaderKnows) {
    const scene::Inspection inspection = scene::inspect(everything());
    EXPECT_EQ("", remarksOf(everything()));
    for (const char* words :
         {"bone group 0x2300 (the loader skips it)", "bone 0x5190 'leaf'", "value 0x7001: 200",
          "file name 0xF020 'wall.png'", "material names 0x6200: 'stone' 'stonered'",
          "keys of component 3 0xFB30: 1, linear, beyond them constant, time 3 to 3, value 1 to 1"})
        EXPECT_NE(std::string::npos, inspection.text.find(words)) << words;
}

TEST(Inspect, ReportsWhatTheLoaderRefuses) {
    const std::string refused = "the loader refuses this format or version: it takes 'O3DF' 1.1\n";
    EXPECT_EQ(refused, remarksOf(""));
    EXPECT_EQ(refused, remarksOf("O3DF\x01\x02"));
    EXPECT_EQ("the loader refuses the file: its first chunk is 0x2000 and not the main chunk\n",
              remarksOf("O3DF\x01\x01" + chunk(0x2000, text("m"))));
}

TEST(Inspect, ReportsWhatTheLoaderSkipsOrMisses) {
    EXPECT_EQ("the loader does not know it here and skips it\n" + noScene,
              remarksOf(file(chunk(0xABC0, "x"))));
    EXPECT_EQ("the loader does not know it here and skips it\n" + noScene,
              remarksOf(mesh(chunk(0xFF30, ""))));
    EXPECT_EQ("4 bytes after the main chunk are not loaded\n" + noScene, remarksOf(file("") + "more"));
    EXPECT_EQ("1 bytes at its end are no chunk\n" + noScene, remarksOf(file("x")));
    EXPECT_EQ("a chunk with ID 0 ends the loading here\n" + noScene, remarksOf(file(chunk(0, "xx"))));
    EXPECT_EQ("the name has no zero byte at its end\n" + noScene, remarksOf(file(chunk(0x4000, "cut"))));
    EXPECT_EQ("the last name has no zero byte and is dropped\n" + noScene,
              remarksOf(mesh(chunk(0x6200, "cut"))));
    EXPECT_EQ("5 bytes at the end are no whole element\n" + noScene,
              remarksOf(mesh(chunk(0xFF00, floats({1, 2, 3}) + "12345"))));
    EXPECT_NE(std::string::npos, remarksOf(mesh(chunk(0x2200, u8(0)) + chunk(0xFF00, "")))
                                     .find("it comes before the vertices of its mesh: its box is lost\n"));
}

TEST(Inspect, ReportsWrongSizes) {
    EXPECT_EQ("it reaches 10 bytes past the end of the file\n" + noScene,
              remarksOf("O3DF\x01\x01" + u16(0x1000) + u32(10)));
    EXPECT_EQ("it reaches 3 bytes past the end of the chunk around it\n",
              remarksOf("O3DF\x01\x01" + u16(0x1000) + u32(8) + u16(0x4000) + u32(5) + text("i") + "1234")
                  .substr(0, std::string("it reaches 3 bytes past the end of the chunk around it\n").size()));
}

TEST(Inspect, ReportsBadKeys) {
    EXPECT_EQ("the times of the keys do not ascend\n",
              remarksOf(node(chunk(0xFA00, keyList(0xFB10, 1, 0, key(2, 0) + key(1, 0))))));
    EXPECT_EQ("interpolation mode 3 is none: it acts as constant\nextrapolation mode 4 is none\n",
              remarksOf(node(chunk(0xFA00, keyList(0xFB10, 3, 4, key(1, 0))))));
}

TEST(Inspect, ReportsNamesWithoutATarget) {
    EXPECT_EQ("mesh instance 'i': there is no mesh 'gone'\n",
              remarksOf(node(chunk(0x5120, text("i") + text("gone")))));
    EXPECT_EQ(
        "texture 't' of material 'a': there is no image 'gone'\n",
        remarksOf(file(
            chunk(0x6000,
                  text("a") +
                      chunk(0x6100, text("x") + chunk(0x7000, text("t") + chunk(0xF030, text("gone"))))) +
            chunk(0x5000, text("s")))));
    EXPECT_EQ(
        "mesh 'm' is there more than once: the last is found\n",
        remarksOf(file(chunk(0x2000, text("m")) + chunk(0x2000, text("m")) + chunk(0x5000, text("s")))));
}

TEST(Inspect, ReportsBadGeometry) {
    const auto remarks = [](const std::string& vertices, const std::string& triangles,
                            const std::string& indices) {
        return remarksOf(
            file(chunk(0x2000, text("m") + chunk(0xFF00, vertices) +
                                   chunk(0x2200, u8(0) + chunk(0xFF30, triangles) + chunk(0xFF60, indices)) +
                                   chunk(0x6200, text("a"))) +
                 chunk(0x6000, text("a")) + chunk(0x5000, text("s"))));
    };
    const std::string three = floats({0, 0, 0, 1, 0, 0, 0, 1, 0}), numbers = i32(0) + i32(1) + i32(2);
    EXPECT_EQ("", remarks(three, triangle(0, 1, 2), numbers));
    EXPECT_EQ("Mesh 'm', submesh 0: triangle 0 uses vertex 3, but there are 3 indices\n",
              remarks(three, triangle(0, 1, 3), numbers));
    EXPECT_EQ("mesh 'm': 1 triangles without area: making normals ends the program\n",
              remarks(three, triangle(0, 1, 2) + triangle(1, 1, 2), numbers));
    EXPECT_EQ("mesh 'm': 1 vertices without a triangle: making normals ends the program\n",
              remarks(three + floats({5, 5, 5}), triangle(0, 1, 2), numbers));
    EXPECT_EQ("mesh 'm': 3 vertices whose triangles lie back to back: making normals ends the program\n",
              remarks(three, triangle(0, 1, 2) + triangle(0, 2, 1), numbers));
    EXPECT_EQ("mesh 'm': 1 vertices that are not numbers: normals or tangents there are not numbers\n",
              remarks(floats({0, 0, NAN, 1, 0, 0, 0, 1, 0}), triangle(0, 1, 2), numbers));
    const std::string flat = chunk(0xFF10, floats({0, 0, 0, 1, 1, 0, 2, 2, 0}));
    EXPECT_EQ(
        "mesh 'm': 1 triangles without area in the texture: normals or tangents there are not numbers\n",
        remarksOf(file(chunk(0x2000, text("m") + chunk(0xFF00, three) +
                                         chunk(0x2200, u8(0) + chunk(0xFF30, triangle(0, 1, 2)) +
                                                           chunk(0xFF60, numbers) + flat)) +
                       chunk(0x5000, text("s")))));
}

TEST(Inspect, AMeshOfOnlyVerticesIsGood) {
    EXPECT_EQ("", remarksOf(file(chunk(0x2000, text("m") + chunk(0xFF00, floats({1, 2, 3}))) +
                                 chunk(0x5000, text("s")))));
}

TEST(Inspect, ReportsMissingMaterialsOfAnInstance) {
    const auto remarks = [](const std::string& names, const std::string& overrides) {
        return remarksOf(file(chunk(0x2000, text("m") + chunk(0xFF00, "") + chunk(0x2200, u8(0)) + names) +
                              chunk(0x6000, text("stone")) +
                              chunk(0x5000, text("s") + chunk(0x5120, text("i") + text("m") + overrides))));
    };
    EXPECT_EQ("mesh instance 'i': material number 0 of mesh 'm' has no name\n", remarks("", ""));
    EXPECT_EQ("", remarks(chunk(0x6200, text("stone")), ""));
    EXPECT_EQ("", remarks("", chunk(0x6210, u8(0) + text("stone"))));
    EXPECT_EQ("", remarks(chunk(0x6200, text("gone")), chunk(0x6210, u8(0) + text("stone"))));
    EXPECT_EQ("mesh instance 'i': there is no material 'gone'\n", remarks(chunk(0x6200, text("gone")), ""));
    EXPECT_EQ("mesh instance 'i': there is no material 'gone'\n",
              remarks(chunk(0x6200, text("stone")), chunk(0x6210, u8(0) + text("gone"))));
}

TEST(Inspect, ReportsWhatNoEffectDraws) {
    const std::string mesh = chunk(0x2000, text("m") + chunk(0xFF00, floats({1, 2, 3})));
    const std::string instance = chunk(0x5120, text("i") + text("m"));
    EXPECT_EQ("mesh instance 'i' is below a camera and is not drawn\n",
              remarksOf(file(mesh + chunk(0x5000, text("s") + chunk(0x5110, text("c") + instance)))));
    EXPECT_EQ("camera 'c' is not a direct child of the scene: no effect finds it\n",
              remarksOf(node(chunk(0x5130, text("d") + chunk(0x5110, text("c"))))));
}

// Compares the remarks with what the loader does.
TEST(Inspect, WhatFollowsAChunkOfIdZeroMovesOutwards) {
    const std::string image =
        file(chunk(0x5000, text("s") + chunk(0x5130, text("d") + chunk(0, "xx") + chunk(0x5130, text("e"))) +
                               chunk(0x5130, text("f"))) +
             chunk(0x5000, text("t")));
    o3d::Manager manager;
    load(manager, image);
    ASSERT_EQ(1u, manager.mScenes.size());
    ASSERT_EQ(2u, manager.mScenes[0]->mChildren.size());
    EXPECT_EQ("d", manager.mScenes[0]->mChildren[0]->mName);
    EXPECT_TRUE(manager.mScenes[0]->mChildren[0]->mChildren.empty());
    EXPECT_EQ("e", manager.mScenes[0]->mChildren[1]->mName);

    const std::string text = scene::inspect(image).text;
    EXPECT_NE(std::string::npos,
              text.find("    dummy 0x5130 'd', 18 bytes\n"
                        "      ! a chunk with ID 0: what follows it is read as part of the "
                        "chunk around this one\n"
                        "    dummy 0x5130 'e', 2 bytes\n"
                        "  0x5130, 2 bytes\n"
                        "  ! the loader does not know it here and skips it\n"
                        "! the last 8 bytes of the main chunk are not loaded\n"))
        << text;
}

TEST(Inspect, AnyBytesWillDo) {
    const std::string image = everything();
    for (size_t length = 0; length < image.size(); length += 3)
        EXPECT_FALSE(scene::inspect(image.substr(0, length)).text.empty());
    for (size_t at = 0; at < image.size(); ++at) {
        std::string changed = image;
        changed[at] = char(0xFF);
        scene::inspect(changed);
    }
    std::string deep =
        "O3DF\x01\x01" + u16(0x1000) + u32(0x7FFFFFFF) + u16(0x5000) + u32(0x7FFFFFFF) + text("s");
    for (int i = 0; i < 100000; ++i)
        deep += u16(0x5130) + u32(0x7FFFFFFF) + text("");
    EXPECT_NE(std::string::npos,
              scene::inspect(deep).text.find("0x5130 lies too deep, and the loader leaves it out"));
}

} // namespace

TEST(ShowScene, ReportsErrors) {
    test::TempDir folder;
    const std::string show = "cd " + folder.path() + " && " SHOW_SCENE;
    test::writeFile(folder.file("empty"), "");
    const std::pair<int, std::string> usage(2, "usage: zentrak-show-scene FILE...\n");
    EXPECT_EQ(usage, test::runCommand(show));
    EXPECT_EQ(usage, test::runCommand(show + " --help"));
    EXPECT_EQ(std::pair(2, std::string("gone: can't be read: No such file or directory\n")),
              test::runCommand(show + " gone"));
    EXPECT_EQ(std::pair(2, std::string(".: can't be read: Is a directory\n")), test::runCommand(show + " ."));
    EXPECT_EQ(std::pair(1, std::string("empty: 0 bytes\n! the loader refuses this format or version: "
                                       "it takes 'O3DF' 1.1\n1 remark\n")),
              test::runCommand(show + " empty"));
}

TEST(MakeScenes, ReportsErrors) {
    test::TempDir folder;
    const std::string make = "cd " + folder.path() + " && " MAKE_SCENES;
    for (const char* arguments : {"", " face", " faces x", " face --help", " face x y"})
        EXPECT_EQ(std::pair(2, std::string("usage: make_scenes face|cathedral|courtyard|stone FILE\n")),
                  test::runCommand(make + arguments));
    EXPECT_EQ(std::pair(1, std::string("gone/x: can't be written: No such file or directory\n")),
              test::runCommand(make + " stone gone/x"));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}
