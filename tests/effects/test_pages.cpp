// The tables of docs/authoring.md against the effects: their names, and the files that they load.
#include "effect_names.h"
#include "effect_test.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

using namespace zentrak;
using namespace zentrak::kindler;
using test::Picture;

namespace {

using Names = std::set<std::string>;
using Row = std::vector<std::string>; // its cells

// The rows of the table whose head starts with these cells.
std::vector<Row> table(const std::string& head) {
    std::istringstream page(test::readFile(test::sourcePath("docs/authoring.md")));
    std::vector<Row> rows;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.compare(0, head.size(), head) == 0) {
            inside = std::getline(page, line).good(); // and the line below it
            continue;
        }
        inside = inside && !line.empty() && line[0] == '|';
        if (!inside)
            continue;
        Row row;
        std::istringstream cells(line.substr(1));
        for (std::string cell; std::getline(cells, cell, '|');)
            row.push_back(cell);
        rows.push_back(row);
    }
    EXPECT_FALSE(rows.empty()) << head;
    return rows;
}

// The texts in backticks.
Names quoted(const std::string& cell) {
    static const std::regex quote("`([^`]*)`");
    Names names;
    for (std::sregex_iterator it(cell.begin(), cell.end(), quote), end; it != end; ++it)
        names.insert((*it)[1]);
    return names;
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    const size_t at = text.find(what);
    return at == std::string::npos ? text : text.replace(at, what.size(), with);
}

struct LoadedFile {
    std::string name;
    int width = 0, height = 0; // of a picture
    bool required = true;
};

// A file that an effect loads, according to the page.
std::vector<LoadedFile> filesOf(const std::string& effect) {
    std::vector<LoadedFile> files;
    for (const Row& row : table("| effect | file | size")) {
        if (!quoted(row[0]).count(effect))
            continue;
        LoadedFile file;
        std::sscanf(row[2].c_str(), "%d x %d", &file.width, &file.height);
        file.required = row[3].find("may be missing") == std::string::npos;
        const std::string name = *quoted(row[1]).begin();
        const bool numbered = name.find("NN") != std::string::npos;
        for (int n = 1; n <= (numbered ? 19 : 1); ++n) {
            char digits[16];
            std::snprintf(digits, sizeof digits, "%02d", n);
            file.name = replaced(name, "NN", digits);
            if (effect.find('_') != std::string::npos)
                file.name = replaced(file.name, "KEY", effect.substr(effect.find('_') + 1));
            files.push_back(file);
        }
    }
    return files;
}

// Every fourth pixel is white, the others are transparent.
Picture sparsePicture(int width, int height) {
    Picture picture(width, height);
    for (size_t i = 0; i < picture.rgba.size(); i += 16)
        std::fill_n(&picture.rgba[i], 4, uint8_t(255));
    return picture;
}

class PageTest : public test::EffectTest {
protected:
    // Sets an effect up with a folder that holds only `files`, and draws it. Returns what is thrown, or "".
    std::string load(const CatalogueEntry& entry, const std::vector<LoadedFile>& files) {
        test::TempDir folder;
        for (const LoadedFile& file : files) {
            std::filesystem::create_directories(std::filesystem::path(folder.file(file.name)).parent_path());
            if (file.width)
                test::writePng(folder.file(file.name), sparsePicture(file.width, file.height));
            else
                test::writeFile(folder.file(file.name),
                                test::readFile(test::sourcePath("data/" + file.name)));
        }
        am::ArchiveManager archives;
        archives.addArchive(folder.path());
        am::ArchiveManager* const before = display().mArchiveManager;
        display().setArchive(&archives);
        const std::string result = test::thrown([&] {
            test::CaptureStdout out;
            const auto effect = entry.make(mCommon);
            test::prepare(*effect, display(), entry.name);
            effect->executeTrigger(0, "type", "logo"); // of Overlay: without the target
            over(0, 0, 0, [&] { effect->update(1, 0.02f, 0.5f); });
        });
        display().setArchive(before);
        return result;
    }
};

} // namespace

TEST(EffectPage, ListsEveryEffectWithItsSplinesAndTriggers) {
    Names listed;
    for (const Row& row : table("| name | draws")) {
        for (const std::string& effect : quoted(row[0])) {
            listed.insert(effect);
            const auto names = std::find_if(effectNames().begin(), effectNames().end(),
                                            [&](const EffectNames& each) { return effect == each.name; });
            ASSERT_NE(names, effectNames().end()) << effect;
            EXPECT_EQ(quoted(row[2]), Names(names->splines.begin(), names->splines.end())) << effect;
            Names triggers;
            for (const TriggerNames& trigger : names->triggers) {
                triggers.insert(trigger.name);
                triggers.insert(trigger.words.begin(), trigger.words.end());
            }
            Names told = quoted(row[3]);
            if (effect == "overlay")
                told.erase("waxon");
            EXPECT_EQ(told, triggers) << effect;
            EXPECT_EQ(row[3].find("any name:") != std::string::npos, names->anyTrigger) << effect;
        }
    }
    EXPECT_EQ(listed.size(), effectNames().size());
}

TEST(EffectPage, GivesTheSizesOfThePicturesInData) {
    for (const EffectNames& effect : effectNames()) {
        for (const LoadedFile& file : filesOf(effect.name)) {
            if (!file.name.ends_with(".png"))
                continue;
            Picture picture;
            ASSERT_TRUE(test::readPng(test::sourcePath("data/" + file.name), picture)) << file.name;
            EXPECT_EQ(picture.width, file.width) << file.name;
            EXPECT_EQ(picture.height, file.height) << file.name;
        }
    }
}

TEST_F(PageTest, EachEffectNeedsTheFilesOfItsRowsAndNoOthers) {
    for (const CatalogueEntry& entry : effectCatalogue()) {
        const std::vector<LoadedFile> files = filesOf(entry.name);
        EXPECT_EQ(load(entry, files), "") << entry.name;
        for (size_t missing = 0; missing < files.size(); ++missing) {
            std::vector<LoadedFile> rest = files;
            rest.erase(rest.begin() + long(missing));
            EXPECT_EQ(load(entry, rest).empty(), !files[missing].required)
                << entry.name << " without " << files[missing].name;
        }
    }
}
