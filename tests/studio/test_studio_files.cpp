// Saving, backup, recovery and what changes on disk.

#include "studio_files.h"
#include "support.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zentrak::test;
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
}

TEST(ScriptFile, AFailureLeavesTheFileAlone) {
    const TempDir dir;
    std::filesystem::create_directory(dir.file("script.xml.bak")); // where the backup should go
    writeFile(dir.file("script.xml"), "one");
    ScriptFile file(dir.path(), "script.xml");
    EXPECT_EQ(file.save("two", "one", false), ScriptFile::Saved::FAILED);
    EXPECT_EQ(file.read(), "one");
}

TEST(ScriptFile, UnsavedWorkIsKeptBesideTheScript) {
    const TempDir dir;
    ScriptFile file(dir.path(), "script.xml");
    EXPECT_FALSE(file.readUnsaved());
    EXPECT_TRUE(file.keepUnsaved("work"));
    EXPECT_EQ(ScriptFile(dir.path(), "script.xml").readUnsaved(), "work");
    EXPECT_FALSE(file.read());
    file.dropUnsaved();
    EXPECT_FALSE(file.readUnsaved());
}

// A program that writes all the time is killed at any moment: what it has kept is whole.
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
    for (const char* name :
         {"script.xml.bak", "script.xml.unsaved", ".zentrak-1-0.tmp", ".hidden", "script.xml~"})
        writeFile(dir.file(name), "x");
    std::filesystem::create_directory_symlink(dir.path(), dir.file("circle"));
    EXPECT_TRUE(watch.poll().empty());
}
