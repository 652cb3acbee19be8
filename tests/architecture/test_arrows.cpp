// Reads all include lines of the program and fails on any that goes up the floors of docs/architecture.md.

#include "support.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Room {
    const char* name;
    const char* prefix; // of its public headers in include/; empty if it has none
    int floor;
};

const Room rooms[] = {
    {"system", "ztk_", 0}, {"mathbase", "mb_", 0},    {"am", "am_", 1},
    {"xml", "xml_", 1},    {"chunklib", "cl_", 1},    {"trace", "trc_", 1},
    {"glfw2", "glfw2", 1}, {"audiere", "audiere", 1}, {"display", "dis_", 2},
    {"o3d", "o3d_", 2},    {"script", "script_", 2},  {"panorama", "pan_", 3},
    {"gimli", "gml_", 3},  {"sparks", "sparks_", 3},  {"effects", "kin_effect", 4},
    {"app", "kin_", 5},    {"author", "studio_", 6},  {"tools", "", 6},
};

const Room* roomNamed(const std::string& name) {
    for (const Room& room : rooms)
        if (name == room.name)
            return &room;
    return nullptr;
}

// The headers of the tools, which have no prefix.
std::set<std::string> headersOfTools() {
    std::set<std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(zentrak::test::sourcePath("tools")))
        if (entry.path().extension() == ".h")
            result.insert(entry.path().filename().string());
    return result;
}

// The room of a header by its prefix as included; the order of the table resolves kin_effect before kin_.
const Room* roomOfHeader(const std::string& include) {
    static const std::set<std::string> ofTools = headersOfTools();
    const std::string file = fs::path(include).filename().string();
    for (const Room& room : rooms)
        if (*room.prefix && file.rfind(room.prefix, 0) == 0)
            return &room;
    return ofTools.count(file) ? roomNamed("tools") : nullptr;
}

struct Include {
    std::string name;
    bool angled;
    int line;
};

std::vector<Include> includesOf(const fs::path& path) {
    static const std::regex pattern("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"].*");
    std::vector<Include> result;
    std::ifstream in(path);
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
        std::smatch match;
        if (std::regex_match(text, match, pattern))
            result.push_back({match[2], match[1] == "<", line});
    }
    return result;
}

struct Source {
    fs::path path;
    const Room* room;
};

// Every source and header of the program, with its room.
std::vector<Source> allSources() {
    std::vector<Source> result;
    fs::path root = zentrak::test::sourcePath("");
    for (const char* top : {"include", "lib", "effects", "app", "author", "tools"}) {
        for (const auto& entry : fs::recursive_directory_iterator(root / top)) {
            std::string extension = entry.path().extension().string();
            if (!entry.is_regular_file() || (extension != ".h" && extension != ".cpp"))
                continue;
            const Room* room = nullptr;
            fs::path below = fs::relative(entry.path(), root);
            if (below.begin()->string() == "include")
                room = roomOfHeader(entry.path().filename().string());
            else if (below.begin()->string() == "lib")
                room = roomNamed(std::next(below.begin())->string());
            else
                room = roomNamed(below.begin()->string());
            result.push_back({below, room});
        }
    }
    return result;
}

} // namespace

TEST(Arrows, EverySourceBelongsToARoom) {
    std::vector<Source> sources = allSources();
    EXPECT_FALSE(sources.empty());
    for (const Source& source : sources)
        EXPECT_NE(source.room, nullptr) << source.path << " has the prefix or the folder of no library";
}

TEST(Arrows, NoIncludeRunsUp) {
    for (const Source& source : allSources()) {
        if (source.room == nullptr)
            continue;
        for (const Include& include : includesOf(zentrak::test::sourcePath(source.path.string()))) {
            const Room* target = include.angled ? nullptr : roomOfHeader(include.name);
            if (target == nullptr || target == source.room)
                continue;
            // On the ground floor, system is below mathbase.
            const int floor = target == roomNamed("system") ? -1 : target->floor;
            EXPECT_LT(floor, source.room->floor) << source.path << ":" << include.line << " includes "
                                                 << include.name << " of " << target->name;
        }
    }
}

TEST(Arrows, AnEffectNeverIncludesAnotherEffect) {
    for (const Source& source : allSources()) {
        if (source.room == nullptr || std::string(source.room->name) != "effects" ||
            source.path.begin()->string() != "effects" || source.path.stem() == "effect_names")
            continue; // the catalogue creates them all
        for (const Include& include : includesOf(zentrak::test::sourcePath(source.path.string()))) {
            bool ofEffects =
                !include.angled && fs::exists(zentrak::test::sourcePath("effects/" + include.name));
            bool own = fs::path(include.name).stem() == source.path.stem();
            bool common = include.name.rfind("effect_", 0) == 0;
            bool renderer = include.name == "kasper.h"; // a scene renderer, not an effect
            EXPECT_TRUE(!ofEffects || own || common || renderer)
                << source.path << ":" << include.line << " includes " << include.name;
        }
    }
}

// The tools may use anything.
TEST(Arrows, OutsideLibrariesStayWhereTheyBelong) {
    // The start of the include's name, and the rooms that may use it.
    const std::map<std::string, std::set<std::string>> owners = {
        {"GLFW/", {"glfw2"}},
        {"AL/", {"audiere"}},
        {"sndfile", {"audiere"}},
        {"libopenmpt", {"audiere"}},
        {"minizip/", {"am"}},
        {"png", {"am"}},
        {"jpeglib", {"am"}},
        {"GL/", {"display", "gimli", "panorama", "sparks", "effects", "app", "author"}},
    };
    for (const Source& source : allSources()) {
        for (const Include& include : includesOf(zentrak::test::sourcePath(source.path.string()))) {
            for (const auto& [start, allowed] : owners) {
                if (include.angled && include.name.rfind(start, 0) == 0 && source.room != nullptr &&
                    source.room != roomNamed("tools")) {
                    EXPECT_TRUE(allowed.count(source.room->name) == 1)
                        << source.path << ":" << include.line << " includes " << include.name;
                }
            }
        }
    }
}
