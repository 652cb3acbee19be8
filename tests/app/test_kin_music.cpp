// How the driver opens its music.
#include "kin_music.h"
#include "support.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>

using namespace zentrak;
using namespace zentrak::test;
using zentrak::kindler::Music;

namespace {

am::File fileOf(const std::string& bytes) {
    return am::File(new am::FileStructure("music", bytes.data(), long(bytes.size())));
}

// Three quarters of a second at 8000 Hz.
std::string wav() {
    static const std::string bytes = [] {
        TempDir folder;
        std::string path = folder.file("music.wav");
        EXPECT_EQ(runCommand("sox -R -n -r 8000 -c 1 -b 16 " + path + " synth 0.75 sine 440").first, 0);
        return readFile(path);
    }();
    return bytes;
}

// Run in a child process, since OpenAL looks for its drivers once. Returns 0 if all is well.
int setupWithoutADevice() {
    setenv("ALSOFT_DRIVERS", "none-of-this-name", 1);
    Music music;
    CaptureStdout capture;
    bool opened = music.setup(fileOf(wav()));
    bool text = capture.text() == "[error][setup], No sound device!\n (kin_music:38)\n";
    return opened || !text || music.mDevice || music.mStream || music.mLength != 0 ? 1 : 0;
}

} // namespace

TEST(MusicDeathTest, NoSoundDevice) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(std::_Exit(setupWithoutADevice()), testing::ExitedWithCode(0), "");
}

TEST(Music, FieldsAreInOrder) {
    Music music;
    const void* fields[] = {&music.mLength, &music.mDevice, &music.mStream, &music.mSource,
                            &music.mFile,   &music.mRate,   &music.mPaused};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<const void*>()));
}

TEST(Music, OpensStoppedAtTheBeginningWithLengthAndRate) {
    Music music;
    CaptureStdout capture;
    ASSERT_TRUE(music.setup(fileOf(wav())));
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(music.mLength, 6000);
    EXPECT_EQ(music.mRate, 8000);
    EXPECT_FALSE(music.mPaused);
    EXPECT_FALSE(music.mStream->isPlaying());
    EXPECT_EQ(music.mStream->getPosition(), 0);
}

TEST(Music, ASeekPastTheEndClampsAtTheLength) {
    Music music;
    ASSERT_TRUE(music.setup(fileOf(wav())));
    music.mStream->setPosition(6001);
    EXPECT_EQ(music.mStream->getPosition(), 6000);
}

TEST(Music, AFileThatCannotBeDecoded) {
    for (const std::string& bytes : {std::string("no music at all"), std::string(), wav().substr(0, 30)}) {
        Music music;
        CaptureStdout capture;
        EXPECT_FALSE(music.setup(fileOf(bytes)));
        EXPECT_EQ(capture.text(), "Could not open file\n");
        EXPECT_FALSE(music.mStream);
    }
}

TEST(Music, AFileThatIsMissing) {
    Music music;
    CaptureStdout capture;
    EXPECT_FALSE(music.setup(am::File()));
    EXPECT_EQ(capture.text(), "Could not open file\n");
    EXPECT_FALSE(music.mStream);
}

TEST(Music, ASampleRateThatNoDevicePlays) {
    std::string bytes = wav();
    bytes[24] = 1; // one frame a second
    bytes[25] = 0;
    Music music;
    CaptureStdout capture;
    EXPECT_FALSE(music.setup(fileOf(bytes)));
    EXPECT_EQ(capture.text(), "Could not open sound!, muting\n");
}

TEST(Music, SetupAgainLetsGoOfWhatWasOpen) {
    Music music;
    ASSERT_TRUE(music.setup(fileOf(wav())));
    music.mStream->play();
    music.mPaused = true;
    CaptureStdout capture;
    EXPECT_FALSE(music.setup(am::File()));
    EXPECT_FALSE(music.mStream);
    EXPECT_FALSE(music.mFile);
    EXPECT_FALSE(music.mPaused);
    EXPECT_EQ(music.mLength, 0);
    EXPECT_TRUE(music.setup(fileOf(wav())));
}
