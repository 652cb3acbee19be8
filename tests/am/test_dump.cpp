#include "am_archivemanager.h"
#include "am_testing.h"
#include "am_videofile.h"
#include "picture.h"

#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <type_traits>

using namespace zentrak::test;
using zentrak::am::ArchiveManager;
using zentrak::am::Image;
using zentrak::am::ImageObject;
using zentrak::am::VideoFile;
using zentrak::am::VideoFileImageDumper;
namespace fs = std::filesystem;

namespace {

class Dump : public ::testing::Test {
protected:
    Dump() {
        mImage->resize(4, 2);
        fill(0);
    }

    void fill(unsigned char value) { std::memset(mImage->getWriteData(), value, 4 * 2 * 4); }

    TempDir mFolder;
    WorkingDir mWorking{mFolder.path()};
    ArchiveManager mArchives;
    Image mImage{new ImageObject()};
    VideoFile::Format mFormat{4, 2, 25, 1};
};

// Lets a test start at a late frame.
class LateDumper : public VideoFileImageDumper {
public:
    void setFrame(int frame) { mFrame = frame; }
};

std::set<std::string> filesBelow(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            names.insert(fs::relative(entry.path(), folder).string());
    return names;
}

} // namespace

TEST_F(Dump, TheFormatIsSixteenBytesCopiedAsAWhole) {
    EXPECT_EQ(sizeof(VideoFile::Format), 16u);
    EXPECT_TRUE(std::is_trivially_copyable_v<VideoFile::Format>);
}

TEST_F(Dump, FramesAreNumberedFromZero) {
    mArchives.addArchive("./");
    std::unique_ptr<VideoFile> video(VideoFile::createForWrite("dump.png", mFormat, &mArchives));
    video->attach(mImage);
    for (unsigned char value : {10, 20, 30}) {
        fill(value);
        EXPECT_TRUE(video->writeFrame());
    }
    EXPECT_EQ(filesBelow("."),
              (std::set<std::string>{"dump.000000.png", "dump.000001.png", "dump.000002.png"}));
    for (int i = 0; i < 3; ++i) {
        Picture picture;
        ASSERT_TRUE(readPng("dump.00000" + std::to_string(i) + ".png", picture));
        EXPECT_EQ(picture.width, 4);
        EXPECT_EQ(picture.height, 2);
        EXPECT_EQ(picture.at(3, 1)[2], (i + 1) * 10);
    }
}

TEST_F(Dump, TheNameSplitsAtItsLastDot) {
    mArchives.addArchive("./");
    for (const char* name : {"a.b.png", "out/put.png", "png", ".png"}) {
        std::unique_ptr<VideoFile> video(VideoFile::createForWrite(name, mFormat, &mArchives));
        video->attach(mImage);
        video->writeFrame();
    }
    EXPECT_EQ(filesBelow("."), (std::set<std::string>{"a.b.000000.png", "out/put.000000.png",
                                                      "png.000000.png", ".000000.png"}));
}

TEST_F(Dump, OnlyPngIsAccepted) {
    for (std::string name : {"dump.avi", "dump.PNG", "dump.jpg", "dump", "dump.", "", "dump.png/x",
                             "a.png.tga", "untitled", "apng"})
        EXPECT_EQ(thrownBy([&] { delete VideoFile::createForWrite(name, mFormat, &mArchives); }),
                  "Could not find something that could write to '" + name + "'");
}

TEST_F(Dump, ANameThatLeavesTheFolderIsRefused) {
    const std::string zero("dump.png\0.png", 13);
    for (const std::string& name : {std::string("../x.png"), std::string("a/../../x.png"),
                                    std::string("a\\..\\x.png"), std::string("/tmp/x.png"), zero})
        EXPECT_EQ(thrownBy([&] { delete VideoFile::createForWrite(name, mFormat, &mArchives); }),
                  std::string("Could not find something that could write to '") + name.c_str() + "'");
}

TEST_F(Dump, AFrameReplacesALink) {
    writeFile("precious", "precious");
    fs::create_symlink("precious", "dump.000000.png");
    mArchives.addArchive("./");
    VideoFileImageDumper dumper;
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    dumper.attach(mImage);
    dumper.writeFrame();
    EXPECT_EQ(readFile("precious"), "precious");
    EXPECT_FALSE(fs::is_symlink("dump.000000.png"));
    Picture picture;
    EXPECT_TRUE(readPng("dump.000000.png", picture));
}

TEST_F(Dump, NoLinkedFolderIsEntered) {
    TempDir outside;
    fs::create_symlink(outside.path(), "frames");
    mArchives.addArchive("./");
    VideoFileImageDumper dumper;
    ASSERT_TRUE(dumper.openForWrite("frames/dump.png", mFormat, &mArchives));
    dumper.attach(mImage);
    EXPECT_TRUE(dumper.writeFrame());
    EXPECT_EQ(filesBelow(outside.path()), std::set<std::string>());
}

TEST_F(Dump, WithoutAnArchiveManagerNothingAccepts) {
    EXPECT_EQ(thrownBy([&] { delete VideoFile::createForWrite("dump.png", mFormat, nullptr); }),
              "Could not find something that could write to 'dump.png'");
}

TEST_F(Dump, NothingReads) {
    EXPECT_EQ(thrownBy([] { delete VideoFile::createForRead("dump.png"); }),
              "Could not find something that could read from 'dump.png'");
    EXPECT_EQ(thrownBy([] { delete VideoFile::createForRead(nullptr, 0); }),
              "Could not find something that could read from buffer");
    VideoFileImageDumper dumper;
    EXPECT_FALSE(dumper.readFrame());
}

TEST_F(Dump, AZipInFrontMakesItSilentlyWriteNothing) {
    mArchives.addArchive("zip://none");
    mArchives.addArchive("./");
    VideoFileImageDumper dumper;
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    dumper.attach(mImage);
    CaptureStdout output;
    EXPECT_TRUE(dumper.writeFrame());
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(filesBelow("."), std::set<std::string>());
}

TEST_F(Dump, AFrameThatCanNotBeWrittenIsSilentAndStillCounts) {
    mArchives.addArchive("./");
    VideoFileImageDumper dumper;
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    dumper.attach(mImage);
    fs::create_directory("dump.000000.png"); // in the way
    EXPECT_TRUE(dumper.writeFrame());
    EXPECT_TRUE(dumper.writeFrame());
    EXPECT_EQ(filesBelow("."), std::set<std::string>{"dump.000001.png"});
}

TEST_F(Dump, AMillionFramesWidenTheNumber) {
    mArchives.addArchive("./");
    LateDumper dumper;
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    dumper.attach(mImage);
    dumper.setFrame(999999);
    dumper.writeFrame();
    dumper.writeFrame();
    EXPECT_EQ(filesBelow("."), (std::set<std::string>{"dump.999999.png", "dump.1000000.png"}));
}

TEST_F(Dump, ReportsTheFormatItWasOpenedWith) {
    VideoFileImageDumper dumper;
    EXPECT_EQ(dumper.getWidth(), 0);
    EXPECT_EQ(dumper.getHeight(), 0);
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    EXPECT_EQ(dumper.getWidth(), 4);
    EXPECT_EQ(dumper.getHeight(), 2);
    EXPECT_EQ(dumper.getFormat().mRate, 25);
    EXPECT_EQ(dumper.getFormat().mScale, 1);
    EXPECT_FALSE(dumper.openForWrite("dump.avi", VideoFile::Format{}, &mArchives));
    EXPECT_EQ(dumper.getWidth(), 4); // a refusal changes nothing
}

TEST_F(Dump, OpeningAgainStartsAtZero) {
    mArchives.addArchive("./");
    VideoFileImageDumper dumper;
    dumper.attach(mImage);
    for (const char* name : {"a.png", "b.png"}) {
        ASSERT_TRUE(dumper.openForWrite(name, mFormat, &mArchives));
        dumper.writeFrame();
    }
    EXPECT_EQ(filesBelow("."), (std::set<std::string>{"a.000000.png", "b.000000.png"}));
}

TEST_F(Dump, TheAttachedImageIsSharedWithItsOwner) {
    VideoFileImageDumper dumper;
    dumper.attach(mImage);
    EXPECT_EQ(mImage.getRef(), 2);
    dumper.close();
    EXPECT_EQ(mImage.getRef(), 1);
}

TEST_F(Dump, ACachedOrANullImageThrows) {
    mArchives.addArchive("./");
    writeFile("a.png", fixture("rgba.png"));
    VideoFileImageDumper dumper;
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    EXPECT_EQ(thrownBy([&] { dumper.writeFrame(); }),
              "Image::operator*() Attempt to dereference (NULL)ImageObject!");
    Image shared = mArchives.loadImage("a.png", -1, false);
    dumper.attach(shared);
    EXPECT_EQ(thrownBy([&] { dumper.writeFrame(); }), "ImageObbject::getWriteData, Access not allowed!");
}

TEST_F(Dump, AClosedDumperWritesNothing) {
    mArchives.addArchive("./");
    VideoFileImageDumper dumper;
    EXPECT_FALSE(dumper.writeFrame());
    ASSERT_TRUE(dumper.openForWrite("dump.png", mFormat, &mArchives));
    dumper.attach(mImage);
    dumper.close();
    EXPECT_FALSE(dumper.writeFrame());
    EXPECT_EQ(filesBelow("."), std::set<std::string>());
}
