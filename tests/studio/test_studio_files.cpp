// Saving, backup, recovery and what changes on disk.

#include "model.h"
#include "random_edits.h"
#include "studio_files.h"
#include "support.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>

using namespace zentrak::test;
using zentrak::studio::Editor;
using zentrak::studio::FolderWatch;
using zentrak::studio::ScriptFile;

TEST(ScriptFile, ASaveLeavesTheFileBeforeItAsABackup) {
    const TempDir dir;
    ScriptFile file(dir.path(), "script.xml");
    EXPECT_FALSE(file.read());
    EXPECT_EQ(file.save("one", "", false), ScriptFile::Saved::YES);
    EXPECT_FALSE(fileExists(dir.file("script.xml.bak")));
    EXPECT_EQ(file.save("two", "one", false), ScriptFile::Saved::YES);
    EXPECT_EQ(file.save("three", "two", false), ScriptFile::Saved::YES);
    EXPECT_EQ(file.read(), "three");
    EXPECT_EQ(readFile(dir.file("script.xml.bak")), "two");
}

TEST(ScriptFile, WhatChangedOnDiskIsNotOverwrittenUnlessAsked) {
    const TempDir dir;
    ScriptFile file(dir.path(), "script.xml");
    writeFile(dir.file("script.xml"), "another's");
    EXPECT_EQ(file.save("mine", "as I read it", false), ScriptFile::Saved::CHANGED_ON_DISK);
    EXPECT_EQ(file.read(), "another's");
    EXPECT_EQ(file.save("mine", "as I read it", true), ScriptFile::Saved::YES);
    EXPECT_EQ(readFile(dir.file("script.xml.bak")), "another's");
    writeFile(dir.file("script.xml"), " \n"); // nothing to lose
    EXPECT_EQ(file.save("mine again", "as I read it", false), ScriptFile::Saved::YES);
}

TEST(ScriptFile, AFailureLeavesTheFileAlone) {
    const TempDir dir;
    std::filesystem::create_directory(dir.file("script.xml.bak")); // where the backup should go
    writeFile(dir.file("script.xml"), "one");
    ScriptFile file(dir.path(), "script.xml");
    EXPECT_EQ(file.save("two", "one", false), ScriptFile::Saved::FAILED);
    EXPECT_EQ(file.read(), "one");
}

TEST(ScriptFile, AFileThatCannotBeReadIsNotReplaced) {
    const TempDir dir;
    const std::string path = dir.file("script.xml");
    writeFile(path, "one");
    std::filesystem::resize_file(path, (1u << 30) + 1); // longer than what is read; takes no space
    ScriptFile file(dir.path(), "script.xml");
    ASSERT_FALSE(file.read());
    for (const bool overwrite : {false, true})
        EXPECT_EQ(file.save("two", "", overwrite), ScriptFile::Saved::FAILED);
    EXPECT_EQ(std::filesystem::file_size(path), (1u << 30) + 1);
}

TEST(ScriptFile, UnsavedWorkIsKeptBesideTheScriptForTheNextStudio) {
    const TempDir dir;
    {
        ScriptFile file(dir.path(), "script.xml");
        EXPECT_FALSE(file.takeOrphan());
        EXPECT_TRUE(file.keepUnsaved("work"));
        EXPECT_TRUE(file.keepUnsaved("more work"));
        EXPECT_FALSE(file.takeOrphan()) << "it is this one's";
        EXPECT_FALSE(file.read());
    }
    EXPECT_EQ(readFile(dir.file("script.xml.unsaved")), "more work");
    ScriptFile next(dir.path(), "script.xml");
    EXPECT_EQ(next.takeOrphan(), "more work");
    EXPECT_EQ(next.takeOrphan(), "more work") << "until it is dropped";
    next.dropOrphan();
    EXPECT_FALSE(next.takeOrphan());
    EXPECT_TRUE(next.keepUnsaved("new"));
    next.dropUnsaved();
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

TEST(ScriptFile, ASecondStudioLeavesTheWorkOfTheFirstAlone) {
    const TempDir dir;
    auto first = std::make_unique<ScriptFile>(dir.path(), "script.xml");
    ScriptFile second(dir.path(), "script.xml");
    EXPECT_TRUE(first->keepUnsaved("first"));
    EXPECT_FALSE(second.takeOrphan()) << "it is not an orphan";
    EXPECT_TRUE(second.keepUnsaved("second"));
    EXPECT_TRUE(first->keepUnsaved("first again"));
    second.dropUnsaved();
    EXPECT_EQ(readFile(dir.file("script.xml.unsaved")), "first again");
    first.reset();
    EXPECT_EQ(second.takeOrphan(), "first again");
    EXPECT_FALSE(ScriptFile(dir.path(), "script.xml").takeOrphan()) << "the second one asks about it";
    EXPECT_TRUE(second.keepUnsaved("second"));
    EXPECT_EQ(readFile(dir.file("script.xml.unsaved")), "first again") << "until the answer";
    second.dropOrphan();
    EXPECT_EQ(readFile(dir.file("script.xml.unsaved-2")), "second");
}

TEST(ScriptFile, AScriptInAFolderHasItsFilesBesideIt) {
    const TempDir dir;
    std::filesystem::create_directory(dir.file("sub"));
    ScriptFile file(dir.path(), "sub/script.xml");
    EXPECT_TRUE(file.keepUnsaved("work"));
    EXPECT_TRUE(fileExists(dir.file("sub/script.xml.unsaved")));
    EXPECT_FALSE(ScriptFile(dir.path() + "/nowhere", "script.xml").keepUnsaved("work"));
}

// A program that keeps writing is killed at any moment: its files are whole.
TEST(ScriptFile, AKillAtAnyMomentLeavesWholeFiles) {
    const TempDir dir;
    const std::string texts[] = {std::string(200000, 'a'), std::string(300000, 'b')};
    writeFile(dir.file("script.xml"), texts[0]);
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            ScriptFile file(dir.path(), "script.xml");
            for (int i = 0;; i = 1 - i) {
                file.keepUnsaved(texts[i]);
                file.save(texts[i], "", true);
            }
        }
        usleep(useconds_t(3000 + round * 700)); // any moment will do
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        for (const char* name : {"script.xml", "script.xml.bak", "script.xml.unsaved"}) {
            if (!fileExists(dir.file(name)))
                continue;
            const std::string text = readFile(dir.file(name));
            EXPECT_TRUE(text == texts[0] || text == texts[1]) << name << ", " << text.size() << " bytes";
        }
    }
}

// The studio is killed at any moment: the work is recovered up to the last finished edit, or with the current
// one.
TEST(ScriptFile, AKillAtAnyMomentLosesAtMostTheEditUnderWay) {
    constexpr unsigned EDITS = 400;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const TempDir dir;
        int report[2];
        ASSERT_EQ(pipe(report), 0);
        const auto work = [seed](const std::function<void(const std::string&)>& done) {
            std::mt19937 random(seed);
            Editor editor;
            editor.open(SCRIPT);
            for (unsigned i = 0; i < EDITS; ++i) {
                editAtRandom(editor, random);
                done(editor.getDocument().getText());
            }
        };
        const pid_t child = fork();
        if (child == 0) {
            ScriptFile file(dir.path(), "script.xml");
            work([&](const std::string& text) {
                if (!file.keepUnsaved(text) || write(report[1], "x", 1) != 1)
                    _exit(1);
            });
            _exit(0);
        }
        close(report[1]);
        // Any number of edits, and then any moment within the next.
        const unsigned least = seed * 7 % 80 + 1;
        unsigned finished = 0;
        char byte;
        while (finished < least && read(report[0], &byte, 1) == 1)
            ++finished;
        usleep(seed * 37);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        while (read(report[0], &byte, 1) == 1)
            ++finished;
        close(report[0]);
        std::vector<std::string> texts;
        work([&](const std::string& text) { texts.push_back(text); });
        const std::optional<std::string> orphan = ScriptFile(dir.path(), "script.xml").takeOrphan();
        ASSERT_TRUE(orphan);
        ASSERT_GE(finished, least);
        EXPECT_TRUE(*orphan == texts[finished - 1] || (finished < EDITS && *orphan == texts[finished]))
            << "after " << finished << " edits:\n"
            << *orphan;
    }
}

TEST(FolderWatch, WhatChangesIsNamedOnce) {
    const TempDir dir;
    std::filesystem::create_directories(dir.file("tunnel"));
    writeFile(dir.file("script.xml"), "one");
    writeFile(dir.file("tunnel/tunnel.frag"), "one");
    FolderWatch watch(dir.path());
    EXPECT_TRUE(watch.poll().empty());
    writeFile(dir.file("tunnel/tunnel.frag"), "longer");
    writeFile(dir.file("new.png"), "new");
    EXPECT_EQ(watch.poll(), (std::vector<std::string>{"new.png", "tunnel/tunnel.frag"}));
    EXPECT_TRUE(watch.poll().empty());
    std::filesystem::remove(dir.file("new.png"));
    EXPECT_EQ(watch.poll(), std::vector<std::string>{"new.png"});
    // Replaced by one of the same size, as editors do.
    writeFile(dir.file("other"), "onf");
    watch.poll();
    std::filesystem::rename(dir.file("other"), dir.file("script.xml"));
    EXPECT_EQ(watch.poll(), (std::vector<std::string>{"script.xml", "other"}));
}

TEST(FolderWatch, TheStudiosOwnFilesAndHiddenOnesArePassedOver) {
    const TempDir dir;
    FolderWatch watch(dir.path());
    for (const char* name : {"script.xml.bak", "script.xml.unsaved", "script.xml.unsaved-2",
                             ".zentrak-1-0.tmp", ".hidden", "script.xml~"})
        writeFile(dir.file(name), "x");
    std::filesystem::create_directory_symlink(dir.path(), dir.file("circle"));
    EXPECT_TRUE(watch.poll().empty());
}
