#include "audiere_fixture.h"

#include <cstdlib>
#include <gtest/gtest.h>

using namespace zentrak::audiere;
using namespace zentrak::test;

// Run in a child process, since OpenAL looks for its drivers once. Returns 0 if there is no device by either
// name.
static int withoutDrivers() {
    setenv("ALSOFT_DRIVERS", "none-of-this-name", 1);
    return AdrOpenDevice("autodetect", nullptr) || AdrOpenDevice("", "") ? 1 : 0;
}

TEST(DeviceDeathTest, NoneWithoutASoundDevice) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(std::_Exit(withoutDrivers()), testing::ExitedWithCode(0), "");
}

TEST(Device, AutodetectEmptyAndNullAreTheSystemsOwn) {
    EXPECT_TRUE(AdrOpenDevice("autodetect", nullptr));
    EXPECT_TRUE(AdrOpenDevice("", ""));
    EXPECT_TRUE(AdrOpenDevice(nullptr, nullptr));
}

TEST(Device, NoneOfAnotherName) {
    EXPECT_FALSE(AdrOpenDevice("no such device", nullptr));
}

TEST(Device, LivesAsLongAsItsStream) {
    RefPtr<AudioDevice> device = AdrOpenDevice("autodetect", nullptr);
    RefPtr<SampleSource> source = openSource(sound("ogg"));
    RefPtr<OutputStream> stream = AdrOpenSound(device, source, true);
    ASSERT_TRUE(stream);
    device = nullptr;
    source = nullptr;
    stream->play();
    EXPECT_TRUE(stream->isPlaying());
    stream->setPosition(RATE);
    EXPECT_GE(stream->getPosition(), RATE);
}
