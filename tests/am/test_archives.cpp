#include "am_archivedirectory.h"
#include "am_archivemanager.h"
#include "am_archivezip.h"
#include "am_testing.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zentrak::test;
using zentrak::am::ArchiveDirectory;
using zentrak::am::ArchiveManager;
using zentrak::am::ArchiveZIP;
using zentrak::am::File;
namespace fs = std::filesystem;

namespace {

// An archive manager, in an empty current folder.
class Archives : public ::testing::Test {
protected:
    TempDir mFolder;
    WorkingDir mWorking{mFolder.path()};
    ArchiveManager mManager;
};

class Directory : public Archives {
protected:
    ArchiveDirectory mDirectory{"."};
};

class Zip : public Archives {};

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

void packZip(const std::string& zip, const std::string& options, const std::string& files) {
    auto [status, text] = runCommand("zip -q " + options + " " + zip + " " + files);
    ASSERT_EQ(status, 0) << text;
}

// Runs `work` in a child process; returns its exit status, or minus the signal that ended it.
int inChild(const std::function<int()>& work) {
    pid_t child = fork();
    if (child == 0)
        _exit(work());
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// From here on no file of this process grows beyond `bytes`: writes come up short, and then the system sends
// SIGXFSZ or, if that is ignored, fails as on a full disk.
void limitFiles(unsigned long bytes) {
    rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

// From here on this process allocates at most `bytes` more. A sanitizer needs its terabytes of address space.
void limitMemory([[maybe_unused]] unsigned long bytes) {
#if !defined(__SANITIZE_ADDRESS__)
    unsigned long pages = std::stoul(readFile("/proc/self/statm"));
    bytes += pages * static_cast<unsigned long>(sysconf(_SC_PAGESIZE));
    rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
#endif
}

// Overwrites a little-endian number `offset` bytes after every occurrence of `mark`.
void patchAfter(std::string& bytes, const std::string& mark, size_t offset, unsigned long value,
                size_t size) {
    for (size_t at = bytes.find(mark); at != std::string::npos; at = bytes.find(mark, at + 1))
        for (size_t i = 0; i < size; ++i)
            bytes[at + offset + i] = char(value >> (8 * i));
}

const std::string cLocalMark("PK\x03\x04"), cCentralMark("PK\x01\x02");

std::string longText() {
    std::string text;
    while (text.size() < 200000)
        text += "all work and no play\n";
    return text.substr(0, 200000);
}

} // namespace

// ---- adding archives

TEST_F(Archives, AnEmptyPathIsNoArchive) {
    EXPECT_EQ(mManager.addArchive(""), -1);
}

TEST_F(Archives, TheIndexCountsWhatWasAdded) {
    EXPECT_EQ(mManager.addArchive("./"), 0);
    EXPECT_EQ(mManager.addArchive("x.zip"), -1);
    EXPECT_EQ(mManager.addArchive("data"), 1);
    EXPECT_EQ(mManager.addArchive("zip://x"), 2);
}

TEST_F(Archives, AProtocolSelectsAZipWhateverTheExtension) {
    fs::copy_file(fixturePath("deflated.zip"), "x");
    EXPECT_EQ(mManager.addArchive("zip://x"), 0);
    EXPECT_EQ(bytesOf(mManager.readFile("hello.txt")), "hello zip\n");
}

TEST_F(Archives, TheProtocolIsLowered) {
    fs::copy_file(fixturePath("deflated.zip"), "x");
    EXPECT_EQ(mManager.addArchive("ZIP://x"), 0);
    EXPECT_EQ(bytesOf(mManager.readFile("hello.txt")), "hello zip\n");
}

TEST_F(Archives, ABareZipIsRefused) {
    fs::copy_file(fixturePath("deflated.zip"), "x.zip");
    for (const char* path : {"x.zip", "foo.tar", "file://x", "zip://", "FILE://x.zip", "my.data", ".", "a/..",
                             "://", "a\\b.c", "zip:/x.zip", "zip//x.zip"}) {
        CaptureStdout output;
        EXPECT_EQ(mManager.addArchive(path), -1) << path;
        EXPECT_EQ(output.text(), "") << path;
    }
    EXPECT_TRUE(mManager.readFile("hello.txt").isNull());
    EXPECT_EQ(mManager.addArchive("next"), 0); // none of them took an index
}

TEST_F(Archives, AProtocolAfterASeparatorIsNone) {
    writeFile("a/zip:/x", "x");
    EXPECT_EQ(mManager.addArchive("a/zip://"), 0);
    EXPECT_EQ(bytesOf(mManager.readFile("x")), "x");
}

TEST_F(Archives, TheBackwardScanStopsAtASeparator) {
    writeFile("a.b/c/x", "x");
    EXPECT_EQ(mManager.addArchive("a.b/c"), 0);
    EXPECT_EQ(bytesOf(mManager.readFile("x")), "x");
}

TEST_F(Archives, AddingAZipIsLogged) {
    CaptureStdout output;
    mManager.addArchive("zip://none.zip");
    EXPECT_EQ(output.text().rfind("[log][addArchive], Adding zip: zip://none.zip (am_archivemanager.cpp:", 0),
              0u)
        << output.text();
}

TEST_F(Archives, AnArchiveThatIsNotThereFindsNothing) {
    EXPECT_EQ(mManager.addArchive("zip://none.zip"), 0);
    EXPECT_EQ(mManager.addArchive("none"), 1);
    EXPECT_TRUE(mManager.readFile("x").isNull());
}

TEST_F(Archives, AMissingFileGivesNoMessage) {
    mManager.addArchive("./");
    CaptureStdout output;
    EXPECT_TRUE(mManager.readFile("none").isNull());
    EXPECT_EQ(output.text(), "");
}

// ---- the order of reading

TEST_F(Archives, TheOrderOfAdditionDecidesBetweenDirectoryAndZip) {
    writeFile("data/hello.txt", "from the directory");
    fs::copy_file(fixturePath("deflated.zip"), "data.zip");
    ArchiveManager reversed;
    mManager.addArchive("data/");
    mManager.addArchive("zip://data.zip");
    reversed.addArchive("zip://data.zip");
    reversed.addArchive("data/");
    EXPECT_EQ(bytesOf(mManager.readFile("hello.txt")), "from the directory");
    EXPECT_EQ(bytesOf(reversed.readFile("hello.txt")), "hello zip\n");
    EXPECT_EQ(bytesOf(mManager.readFile("Upper.TXT")), "Upper\n"); // the first lacks it, the second has it
}

TEST_F(Archives, TheArchiveAskedForDoesNotDecide) {
    writeFile("a/x", "from a");
    writeFile("b/x", "from b");
    writeFile("b/y", "y");
    mManager.addArchive("a");
    mManager.addArchive("b");
    EXPECT_EQ(bytesOf(mManager.readFile("x", 1)), "from a");
    EXPECT_EQ(bytesOf(mManager.readFile("y", 0)), "y");
}

TEST_F(Archives, AnIndexThatNoArchiveHasIsHarmless) {
    mManager.addArchive("./");
    writeFile("x", "x");
    for (int archive : {-2, 1, 1000, INT_MIN, INT_MAX}) {
        EXPECT_EQ(bytesOf(mManager.readFile("x", archive)), "x") << archive;
        EXPECT_FALSE(mManager.writeFile(makeFile("y", "y"), archive)) << archive;
        mManager.flush(archive);
    }
    EXPECT_FALSE(fileExists("y"));
}

TEST_F(Archives, WithoutArchivesNothingIsReadOrWritten) {
    EXPECT_TRUE(mManager.readFile("x", 0).isNull());
    EXPECT_FALSE(mManager.writeFile(makeFile("x", "x")));
    EXPECT_FALSE(mManager.writeFile(makeFile("x", "x"), 0));
}

TEST_F(Archives, AFileOutlivesItsArchive) {
    File file;
    {
        fs::copy_file(fixturePath("stored.zip"), "x");
        ArchiveManager manager;
        manager.addArchive("zip://x");
        file = manager.readFile("hello.txt");
    }
    EXPECT_EQ(bytesOf(file), "hello zip\n");
}

TEST_F(Archives, WritingGoesToTheFirstArchive) {
    fs::create_directory("a");
    fs::create_directory("b");
    mManager.addArchive("a");
    mManager.addArchive("b");
    EXPECT_TRUE(mManager.writeFile(makeFile("x", "first")));
    EXPECT_TRUE(mManager.writeFile(makeFile("x", "second"), 1));
    EXPECT_EQ(readFile("a/x"), "first");
    EXPECT_EQ(readFile("b/x"), "second");
}

TEST_F(Archives, WritingWithAZipInFrontIsRefused) {
    fs::copy_file(fixturePath("deflated.zip"), "x");
    fs::create_directory("a");
    mManager.addArchive("zip://x");
    mManager.addArchive("a");
    EXPECT_FALSE(mManager.writeFile(makeFile("new", "new"), -1));
    EXPECT_FALSE(fileExists("a/new"));
    EXPECT_EQ(readFile("x"), fixture("deflated.zip"));
}

TEST_F(Archives, WritingAllToAnArchiveDoesNothingAndReturnsTrue) {
    EXPECT_TRUE(mManager.writeAllToArchive("x.zip"));
    EXPECT_FALSE(fileExists("x.zip"));
}

TEST_F(Archives, AMissingImageThrows) {
    mManager.addArchive("./");
    EXPECT_EQ(thrownBy([&] { mManager.loadImage("a/none.png", -1, false); }),
              "loadImage, File not found (a/none.png)");
}

TEST_F(Archives, ImagesAreLoadedAndWritten) {
    mManager.addArchive("./");
    fs::copy_file(fixturePath("rgba.png"), "in.png");
    zentrak::am::Image image = mManager.loadImage("in.png", -1, true);
    EXPECT_TRUE(mManager.writeImage("out/copy.PNG", image));
    zentrak::am::Image copy = mManager.loadImage("out/copy.PNG", -1, true);
    ASSERT_EQ(copy->getWidth(), cFixtureWidth);
    EXPECT_EQ(pixel(*copy, 3, 5), fixturePixel(3, 5, true));
    EXPECT_FALSE(mManager.writeImage("copy.jpg", image));
    EXPECT_FALSE(mManager.writeImage("copy.tga", image));
    EXPECT_FALSE(mManager.writeImage("copy.bmp", image));
    EXPECT_FALSE(mManager.writeImage("copy", image));
}

// ---- directories

TEST_F(Directory, ASeparatorIsAppendedToOneThatIsThere) {
    EXPECT_EQ(ArchiveDirectory("data/").getPath(), "data//");
    EXPECT_EQ(ArchiveDirectory("data").getPath(), "data/");
    writeFile("data/x", "x");
    EXPECT_EQ(bytesOf(ArchiveDirectory("data/").read("x")), "x");
}

TEST_F(Directory, AZeroByteFileIsAFileOfLengthZero) {
    writeFile("empty", "");
    File file = mDirectory.read("empty");
    ASSERT_FALSE(file.isNull());
    EXPECT_EQ(file->length, 0);
}

TEST_F(Directory, TheNameIsStoredUnchanged) {
    writeFile("a/x", "x");
    fs::create_directory("b");
    File file = mDirectory.read("b/../a//x");
    ASSERT_FALSE(file.isNull());
    EXPECT_EQ(file->filename, "b/../a//x");
}

TEST_F(Directory, DotsLeadOutOfTheDirectory) {
    writeFile("outside", "outside");
    fs::create_directory("a");
    EXPECT_EQ(bytesOf(ArchiveDirectory("a").read("../outside")), "outside");
}

TEST_F(Directory, ADirectoryIsNoFile) {
    fs::create_directory("sub");
    EXPECT_TRUE(mDirectory.read("sub").isNull());
    EXPECT_TRUE(mDirectory.read("sub/").isNull());
    EXPECT_TRUE(mDirectory.read("").isNull());
    EXPECT_TRUE(mDirectory.read(".").isNull());
    EXPECT_TRUE(mDirectory.read("..").isNull());
}

TEST_F(Directory, APipeIsNotWaitedFor) {
    ASSERT_EQ(mkfifo("pipe", 0666), 0);
    EXPECT_TRUE(mDirectory.read("pipe").isNull());
    EXPECT_FALSE(mDirectory.write(makeFile("pipe", "x")));
    EXPECT_TRUE(fs::is_fifo("pipe"));
    int reader = open("pipe", O_RDONLY | O_NONBLOCK);
    EXPECT_FALSE(mDirectory.write(makeFile("pipe", "x"))); // even with a reader at the other end
    close(reader);
    EXPECT_TRUE(fs::is_fifo("pipe"));
}

TEST_F(Directory, ADeviceIsNoFile) {
    fs::create_symlink("/dev/zero", "zero");
    fs::create_symlink("/dev/full", "full");
    EXPECT_TRUE(mDirectory.read("zero").isNull());
    EXPECT_FALSE(mDirectory.write(makeFile("full", "x")));
    EXPECT_TRUE(fs::is_symlink("full"));
}

TEST_F(Directory, ANameWithAZeroByteIsNoFile) {
    writeFile("x", "x");
    std::string name("x\0y", 3);
    EXPECT_TRUE(mDirectory.read(name).isNull());
    EXPECT_FALSE(mDirectory.write(makeFile(name, "new")));
    EXPECT_EQ(readFile("x"), "x");
}

TEST_F(Directory, ANameThatIsTooLongIsNoFile) {
    std::string name(100000, 'x');
    EXPECT_TRUE(mDirectory.read(name).isNull());
    EXPECT_FALSE(mDirectory.write(makeFile(name, "new")));
}

TEST_F(Directory, WritingCreatesTheDirectoriesOfTheName) {
    EXPECT_TRUE(mDirectory.write(makeFile("sub/dir/file", "deep")));
    EXPECT_EQ(readFile("sub/dir/file"), "deep");
    EXPECT_EQ(namesIn("sub/dir"), std::set<std::string>{"file"});
}

TEST_F(Directory, WritingReplacesTheWholeFile) {
    writeFile("x", "something longer");
    EXPECT_TRUE(mDirectory.write(makeFile("x", "short")));
    EXPECT_EQ(readFile("x"), "short");
    EXPECT_TRUE(mDirectory.write(makeFile("x", "")));
    EXPECT_EQ(readFile("x"), "");
    EXPECT_EQ(namesIn("."), std::set<std::string>{"x"});
}

TEST_F(Directory, ANewFileHasTheModeOfAnyOther) {
    mode_t before = umask(027);
    EXPECT_TRUE(mDirectory.write(makeFile("x", "x")));
    umask(before);
    EXPECT_EQ(fs::status("x").permissions(), fs::perms(0640));
}

TEST_F(Directory, WritingKeepsTheMode) {
    writeFile("x", "old");
    fs::permissions("x", fs::perms(0750));
    EXPECT_TRUE(mDirectory.write(makeFile("x", "new")));
    EXPECT_EQ(readFile("x"), "new");
    EXPECT_EQ(fs::status("x").permissions(), fs::perms(0750));
}

TEST_F(Directory, WritingKeepsTheOwner) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root owns files of others";
    writeFile("x", "old");
    ASSERT_EQ(chown("x", 1234, 2345), 0);
    fs::permissions("x", fs::perms(0600));
    EXPECT_TRUE(mDirectory.write(makeFile("x", "new")));
    struct stat status {};
    ASSERT_EQ(stat("x", &status), 0);
    EXPECT_EQ(status.st_uid, 1234u);
    EXPECT_EQ(status.st_gid, 2345u);
    EXPECT_EQ(status.st_mode & 07777u, 0600u);
}

TEST_F(Directory, WritingFollowsASymbolicLink) {
    writeFile("elsewhere/target", "old");
    fs::create_symlink("elsewhere/target", "second");
    fs::create_symlink(fs::absolute("second"), "first");
    EXPECT_TRUE(mDirectory.write(makeFile("first", "new")));
    EXPECT_TRUE(fs::is_symlink("first"));
    EXPECT_TRUE(fs::is_symlink("second"));
    EXPECT_EQ(readFile("elsewhere/target"), "new");
    EXPECT_EQ(namesIn("elsewhere"), std::set<std::string>{"target"});
}

TEST_F(Directory, WritingThroughALinkToNothingCreatesItsTarget) {
    fs::create_directory("elsewhere");
    fs::create_symlink("elsewhere/target", "link");
    EXPECT_TRUE(mDirectory.write(makeFile("link", "new")));
    EXPECT_TRUE(fs::is_symlink("link"));
    EXPECT_EQ(readFile("elsewhere/target"), "new");
}

TEST_F(Directory, WritingThroughLinksInACircleFails) {
    fs::create_symlink("b", "a");
    fs::create_symlink("a", "b");
    EXPECT_FALSE(mDirectory.write(makeFile("a", "new")));
    EXPECT_EQ(namesIn("."), (std::set<std::string>{"a", "b"}));
}

TEST_F(Directory, AWritableFileInAReadOnlyFolderIsOverwritten) {
    writeFile("folder/x", "old and longer than the new text");
    fs::permissions(".", fs::perms(0755));
    fs::permissions("folder/x", fs::perms(0666));
    fs::permissions("folder", fs::perms(0555));
    for (const std::string& text : {std::string("new"), std::string(5000, 'n')}) {
        EXPECT_EQ(inChild([&] {
                      if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0)
                          return 2;
                      return mDirectory.write(makeFile("folder/x", text)) ? 0 : 1;
                  }),
                  0);
        EXPECT_EQ(readFile("folder/x"), text);
    }
    fs::permissions("folder", fs::perms(0755));
    EXPECT_EQ(namesIn("folder"), std::set<std::string>{"x"});
}

TEST_F(Directory, AFullDiskLeavesAFileInAReadOnlyFolderWhole) {
    writeFile("folder/x", "old");
    fs::permissions(".", fs::perms(0755));
    fs::permissions("folder/x", fs::perms(0666));
    fs::permissions("folder", fs::perms(0555));
    EXPECT_EQ(inChild([&] {
                  if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0)
                      return 2;
                  signal(SIGXFSZ, SIG_IGN);
                  limitFiles(4096);
                  return mDirectory.write(makeFile("folder/x", std::string(65536, 'n'))) ? 1 : 0;
              }),
              0);
    EXPECT_EQ(readFile("folder/x"), "old");
    fs::permissions("folder", fs::perms(0755));
}

TEST_F(Directory, AFileThatIsAMountOfItsOwnIsOverwritten) {
    writeFile("below", "below");
    writeFile("x", "mounted over");
    const int result = inChild([this] {
        if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return 77;
        if (mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("below", "x", "none", MS_BIND, nullptr) != 0)
            return 77;
        return mDirectory.write(makeFile("x", "new")) && readFile("x") == "new" ? 0 : 1;
    });
    if (result == 77)
        GTEST_SKIP() << "this process may not mount";
    EXPECT_EQ(result, 0);
    EXPECT_EQ(readFile("below"), "new");
    EXPECT_EQ(namesIn("."), (std::set<std::string>{"below", "x"}));
}

TEST_F(Directory, AFileOfMoreThanAGigabyteIsNotRead) {
    writeFile("huge", "");
    fs::resize_file("huge", uintmax_t(zentrak::am::ArchiveBase::MAX_LENGTH) + 1); // takes no space
    CaptureStdout output;
    EXPECT_TRUE(mDirectory.read("huge").isNull());
    EXPECT_NE(output.text().find("huge' is longer than 1073741824 bytes and is not read"), std::string::npos);
}

TEST_F(Directory, WritingWithoutLinksReplacesALink) {
    writeFile("outside", "outside");
    fs::create_directory("a");
    fs::create_symlink("../outside", "a/x");
    fs::create_symlink("../gone", "a/y");
    ArchiveDirectory a("a");
    for (const char* name : {"x", "y"}) {
        EXPECT_TRUE(a.writeWithoutLinks(makeFile(name, "new")));
        EXPECT_FALSE(fs::is_symlink(fs::path("a") / name));
        EXPECT_EQ(readFile(std::string("a/") + name), "new");
    }
    EXPECT_EQ(readFile("outside"), "outside");
    EXPECT_EQ(namesIn("."), (std::set<std::string>{"a", "outside"}));
}

TEST_F(Directory, WritingWithoutLinksEntersNoLinkedFolder) {
    fs::create_directories("a/real");
    fs::create_directory("outside");
    fs::create_symlink("../outside", "a/link");
    fs::create_symlink("../../outside", "a/real/link");
    ArchiveDirectory a("a");
    for (const char* name : {"link/x", "real/link/x", "link/new/x"})
        EXPECT_FALSE(a.writeWithoutLinks(makeFile(name, "new"))) << name;
    EXPECT_EQ(namesIn("outside"), std::set<std::string>());
    EXPECT_TRUE(a.writeWithoutLinks(makeFile("real//new/./x", "new")));
    EXPECT_EQ(readFile("a/real/new/x"), "new");
}

TEST_F(Directory, WritingWithoutLinksStaysInTheFolder) {
    fs::create_directory("a");
    ArchiveDirectory a("a");
    for (const std::string& name : {std::string("../x"), std::string("b/../../x"), std::string("b/.."),
                                    fs::absolute("x").string(), std::string("x\0y", 3), std::string()})
        EXPECT_FALSE(a.writeWithoutLinks(makeFile(name, "new"))) << name;
    EXPECT_EQ(namesIn("."), std::set<std::string>{"a"});
    EXPECT_EQ(namesIn("a"), std::set<std::string>());
    EXPECT_TRUE(a.writeWithoutLinks(makeFile("..x", "new"))); // no step up
    EXPECT_EQ(readFile("a/..x"), "new");
}

TEST_F(Directory, WritingOverADirectoryFails) {
    fs::create_directory("sub");
    for (const char* name : {"sub", "sub/", "", ".", "..", "new/"})
        EXPECT_FALSE(mDirectory.write(makeFile(name, "new"))) << name;
    EXPECT_TRUE(fs::is_directory("sub"));
    EXPECT_EQ(namesIn("sub"), std::set<std::string>());
}

TEST_F(Directory, WritingBelowAFileFails) {
    writeFile("x", "x");
    EXPECT_FALSE(mDirectory.write(makeFile("x/y", "new")));
    EXPECT_EQ(readFile("x"), "x");
    EXPECT_EQ(namesIn("."), std::set<std::string>{"x"});
}

TEST_F(Directory, WritingNoFileFails) {
    EXPECT_FALSE(mDirectory.write(File()));
    File odd(new zentrak::am::FileStructure());
    odd->filename = "odd";
    odd->length = 10; // and no data
    EXPECT_FALSE(mDirectory.write(odd));
    odd->length = -1;
    EXPECT_FALSE(mDirectory.write(odd));
    EXPECT_EQ(namesIn("."), std::set<std::string>());
}

// A read-only file is not replaced behind its owner's back.
TEST_F(Directory, WritingOverAReadOnlyFileFails) {
    fs::permissions(".", fs::perms(0777));
    writeFile("x", "old");
    fs::permissions("x", fs::perms(0444));
    EXPECT_EQ(inChild([this] {
                  if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0)
                      return 2;
                  return mDirectory.write(makeFile("x", "new")) ? 1 : 0;
              }),
              0);
    EXPECT_EQ(readFile("x"), "old");
    EXPECT_EQ(namesIn("."), std::set<std::string>{"x"});
}

TEST_F(Directory, AFullDiskLeavesTheOldFileWhole) {
    writeFile("setup.local.xml", "<demo>old</demo>");
    for (unsigned long room : {0UL, 1UL, 4096UL, 65535UL}) {
        EXPECT_EQ(inChild([&] {
                      signal(SIGXFSZ, SIG_IGN);
                      limitFiles(room);
                      return mDirectory.write(makeFile("setup.local.xml", std::string(65536, 'n'))) ? 1 : 0;
                  }),
                  0)
            << room;
        EXPECT_EQ(readFile("setup.local.xml"), "<demo>old</demo>") << room;
        EXPECT_EQ(namesIn("."), std::set<std::string>{"setup.local.xml"}) << room;
    }
}

TEST_F(Directory, AFullDiskLeavesNoNewFile) {
    EXPECT_EQ(inChild([&] {
                  signal(SIGXFSZ, SIG_IGN);
                  limitFiles(100);
                  return mDirectory.write(makeFile("sub/new", std::string(101, 'n'))) ? 1 : 0;
              }),
              0);
    EXPECT_EQ(namesIn("sub"), std::set<std::string>());
}

TEST_F(Directory, AKillInMidWriteLeavesTheOldFileWhole) {
    writeFile("setup.local.xml", "<demo>old</demo>");
    EXPECT_EQ(inChild([&] {
                  limitFiles(4096); // the write after the first 4096 bytes is fatal
                  rlimit none{0, 0};
                  setrlimit(RLIMIT_CORE, &none);
                  signal(SIGXFSZ, SIG_DFL);
                  mDirectory.write(makeFile("setup.local.xml", std::string(65536, 'n')));
                  return 0;
              }),
              -SIGXFSZ);
    EXPECT_EQ(readFile("setup.local.xml"), "<demo>old</demo>");
    EXPECT_TRUE(
        mDirectory.write(makeFile("setup.local.xml", "<demo>new</demo>"))); // and nothing is in the way
    EXPECT_EQ(readFile("setup.local.xml"), "<demo>new</demo>");
}

TEST_F(Directory, FullDirectoriesAreCreatedFromTheSecondComponentOn) {
    EXPECT_TRUE(ArchiveDirectory::createFullDirectory("./one/two/file"));
    EXPECT_TRUE(fs::is_directory("one/two"));
    EXPECT_FALSE(fileExists("one/two/file"));
    EXPECT_TRUE(ArchiveDirectory::createFullDirectory("./one/two/file")); // again
    EXPECT_TRUE(ArchiveDirectory::createFullDirectory(".//..//./\\"));    // nothing after the start
    EXPECT_TRUE(ArchiveDirectory::createFullDirectory(""));
    EXPECT_TRUE(ArchiveDirectory::createFullDirectory("back\\slash"));
    EXPECT_TRUE(fs::is_directory("back"));
    EXPECT_TRUE(ArchiveDirectory::createFullDirectory(mFolder.file("absolute/file")));
    EXPECT_TRUE(fs::is_directory("absolute"));
    writeFile("plain", "x");
    EXPECT_FALSE(ArchiveDirectory::createFullDirectory("plain/sub/file"));
}

// ---- zip files

TEST_F(Zip, StoredAndDeflatedEntriesAreRead) {
    for (const char* name : {"stored.zip", "deflated.zip"}) {
        ArchiveZIP zip(fixturePath(name));
        EXPECT_EQ(bytesOf(zip.read("hello.txt")), "hello zip\n") << name;
        EXPECT_EQ(bytesOf(zip.read("sub/deep.txt")), "deep\n") << name;
        EXPECT_EQ(bytesOf(zip.read("sub/rgba.png")), fixture("rgba.png")) << name;
    }
}

TEST_F(Zip, AnEntryThatPacksFarMoreThanMostIsRead) {
    EXPECT_EQ(bytesOf(ArchiveZIP(fixturePath("deflated.zip")).read("long.txt")), longText());
}

TEST_F(Zip, AZipMadeByTheStockToolIsRead) {
    writeFile("text", longText());
    writeFile("some where/n\xc3\xa4me", "name");
    packZip("deflated", "-9", "text 'some where/n\xc3\xa4me'");
    packZip("stored", "-0", "text");
    fs::rename("deflated.zip", "d");
    fs::rename("stored.zip", "s");
    EXPECT_EQ(bytesOf(ArchiveZIP("d").read("text")), longText());
    EXPECT_EQ(bytesOf(ArchiveZIP("d").read("./some where/n\xc3\xa4me")), "name");
    EXPECT_EQ(bytesOf(ArchiveZIP("s").read("text")), longText());
}

// Zip files written to a pipe, in the large-file format, with a comment, and appended to a program.
TEST_F(Zip, EveryFormThatTheStockToolWritesIsRead) {
    writeFile("text", longText());
    for (const char* command :
         {"zip -q - text | cat > z", "zip -q -fz z.zip text && mv z.zip z", "zip -q -fz- - text | cat > z",
          "echo word | zip -q -z z.zip text && mv z.zip z",
          "zip -q z.zip text && cat /bin/true z.zip > z && rm z.zip",
          "zip -q z.zip text && cat /bin/true z.zip > z && zip -q -A z && rm z.zip"}) {
        fs::remove("z");
        ASSERT_EQ(runCommand(command).first, 0) << command;
        EXPECT_EQ(bytesOf(ArchiveZIP("z").read("text")), longText()) << command;
    }
}

TEST_F(Zip, AnEmptyEntryIsAFileOfLengthZero) {
    for (const char* name : {"stored.zip", "deflated.zip"}) {
        File file = ArchiveZIP(fixturePath(name)).read("empty.txt");
        ASSERT_FALSE(file.isNull()) << name;
        EXPECT_EQ(file->length, 0) << name;
    }
}

TEST_F(Zip, ALeadingDotAndSeparatorAreDropped) {
    ArchiveZIP zip(fixturePath("stored.zip"));
    for (const char* name :
         {"hello.txt", "./hello.txt", "/hello.txt", "\\hello.txt", ".\\hello.txt", ".hello.txt"}) {
        File file = zip.read(name);
        EXPECT_EQ(bytesOf(file), "hello zip\n") << name;
        ASSERT_FALSE(file.isNull());
        EXPECT_EQ(file->filename, name); // as asked for
    }
    for (const char* name :
         {"//hello.txt", "././hello.txt", "../hello.txt", "sub/../hello.txt", "sub\\deep.txt"})
        EXPECT_TRUE(zip.read(name).isNull()) << name;
}

TEST_F(Zip, CaseCounts) {
    ArchiveZIP zip(fixturePath("stored.zip"));
    EXPECT_EQ(bytesOf(zip.read("Upper.TXT")), "Upper\n");
    EXPECT_TRUE(zip.read("upper.txt").isNull());
    EXPECT_TRUE(zip.read("HELLO.TXT").isNull());
}

TEST_F(Zip, OnlyFilesAreFound) {
    ArchiveZIP zip(fixturePath("stored.zip"));
    for (const std::string& name :
         {std::string(""), std::string("."), std::string("/"), std::string("./"), std::string("sub"),
          std::string("none"), std::string("hello.txt\0x", 11), std::string(100000, 'x')})
        EXPECT_TRUE(zip.read(name).isNull()) << name.substr(0, 20);
    EXPECT_EQ(bytesOf(zip.read("hello.txt")), "hello zip\n"); // the cursor is unaffected
}

TEST_F(Zip, AFolderIsAFileOfNoBytes) {
    for (const char* name : {"sub/", "./sub/", "/sub/"}) {
        File file = ArchiveZIP(fixturePath("stored.zip")).read(name);
        ASSERT_FALSE(file.isNull()) << name;
        EXPECT_EQ(file->length, 0) << name;
        EXPECT_EQ(file->filename, name);
    }
}

TEST_F(Zip, WritingIsRefused) {
    fs::copy_file(fixturePath("stored.zip"), "x");
    ArchiveZIP zip("x");
    EXPECT_FALSE(zip.write(makeFile("hello.txt", "new")));
    EXPECT_FALSE(zip.write(File()));
    EXPECT_EQ(readFile("x"), fixture("stored.zip"));
}

TEST_F(Zip, NothingIsFoundInAFileThatIsNotAZip) {
    writeFile("text", "no zip at all");
    writeFile("nothing", "");
    fs::create_directory("directory");
    ASSERT_EQ(mkfifo("pipe", 0666), 0);
    for (const char* path : {"none", "text", "nothing", "directory", "pipe", "/dev/zero", ""})
        EXPECT_TRUE(ArchiveZIP(path).read("hello.txt").isNull()) << path;
}

TEST_F(Zip, EncryptedEntriesAreNotRead) {
    EXPECT_TRUE(ArchiveZIP(fixturePath("encrypted.zip")).read("hello.txt").isNull());
}

TEST_F(Zip, ABadChecksumIsNotRead) {
    for (const char* name : {"stored.zip", "deflated.zip"}) {
        std::string bytes = fixture(name);
        size_t at = bytes.find("deep\n");
        ASSERT_NE(at, std::string::npos);
        bytes[at] = 'D';
        writeFile("x", bytes);
        EXPECT_TRUE(ArchiveZIP("x").read("sub/deep.txt").isNull()) << name;
        EXPECT_EQ(bytesOf(ArchiveZIP("x").read("hello.txt")), "hello zip\n") << name;
    }
}

// However much is missing at the end, an entry is returned complete or not at all.
TEST_F(Zip, TruncatedAtEveryByteItGivesNothingWrong) {
    for (const char* name : {"stored.zip", "deflated.zip"}) {
        const std::string bytes = fixture(name);
        int found = 0;
        for (size_t length = 0; length <= bytes.size(); ++length) {
            MemoryFile truncated(bytes.substr(0, length));
            File file = ArchiveZIP(truncated.path()).read("sub/rgba.png");
            if (file.isNull())
                continue;
            ++found;
            ASSERT_EQ(bytesOf(file), fixture("rgba.png")) << name << " " << length;
        }
        EXPECT_GE(found, 1) << name; // at least in the whole file
    }
}

TEST_F(Zip, WithAnyByteChangedItGivesNothingWrong) {
    for (const char* name : {"stored.zip", "deflated.zip"}) {
        const std::string bytes = fixture(name);
        ArchiveZIP whole(fixturePath(name));
        for (size_t i = 0; i < bytes.size(); ++i) {
            std::string changed = bytes;
            changed[i] = char(changed[i] ^ 0xff);
            MemoryFile damaged(changed);
            ArchiveZIP zip(damaged.path());
            for (const char* entry : {"sub/rgba.png", "hello.txt", "empty.txt"}) {
                std::string text = bytesOf(zip.read(entry));
                ASSERT_TRUE(text == "(null)" || text == bytesOf(whole.read(entry)))
                    << name << " " << i << " " << entry;
            }
        }
    }
}

// A header may claim any size: memory use follows the actual data. The child has room for the bytes but not
// for the claim.
TEST_F(Zip, AClaimOfGigabytesIsNotAllocated) {
    for (unsigned long claim : {0x7fffffffUL, 0xfffffff0UL}) {
        std::string bytes = fixture("deflated.zip");
        patchAfter(bytes, cLocalMark, 22, claim, 4);
        patchAfter(bytes, cCentralMark, 24, claim, 4);
        writeFile("x", bytes);
        EXPECT_EQ(inChild([] {
                      limitMemory(64UL << 20);
                      return bytesOf(ArchiveZIP("x").read("long.txt")) == longText() ? 0 : 1;
                  }),
                  0)
            << claim;
    }
}

TEST_F(Zip, AnEntryLongerThanAnyFileIsRefusedByName) {
    ASSERT_EQ(runCommand("truncate -s 2100000000 long && zip -q -1 long.zip long && rm long").first, 0);
    CaptureStdout output;
    EXPECT_TRUE(ArchiveZIP("long.zip").read("long").isNull());
    EXPECT_NE(output.text().find("'long' is longer than 1073741824 bytes and is not read"),
              std::string::npos);
}

// The stream ends before the claimed size: its checksum still shows whether it is complete.
TEST_F(Zip, AnEntryThatEndsEarlyIsAsLongAsItsBytes) {
    std::string bytes = fixture("deflated.zip");
    patchAfter(bytes, cLocalMark, 22, 250000, 4);
    patchAfter(bytes, cCentralMark, 24, 250000, 4);
    writeFile("x", bytes);
    EXPECT_EQ(bytesOf(ArchiveZIP("x").read("long.txt")), longText());
    patchAfter(bytes, cLocalMark, 14, 0x12345678, 4);
    patchAfter(bytes, cCentralMark, 16, 0x12345678, 4);
    writeFile("y", bytes);
    EXPECT_TRUE(ArchiveZIP("y").read("long.txt").isNull());
}

TEST_F(Zip, AnEntryLongerThanItClaimsIsNotRead) {
    std::string bytes = fixture("deflated.zip");
    patchAfter(bytes, cLocalMark, 22, 1000, 4);
    patchAfter(bytes, cCentralMark, 24, 1000, 4);
    writeFile("x", bytes);
    EXPECT_TRUE(ArchiveZIP("x").read("long.txt").isNull());
}
