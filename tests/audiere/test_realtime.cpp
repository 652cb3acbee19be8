// Real playing, on the device that keeps time and is heard by nobody. How late this machine is cannot be told
// from the stream's doing, so the bounds are those of a machine that stalls; exact ones are in
// test_stream.cpp.
#include "audiere_fixture.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

using namespace zentrak::audiere;
using namespace zentrak::test;

namespace {

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

void sleep(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

class RealTime : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Formats, RealTime, testing::Values("ogg", "mp3", "mod"),
                         [](const auto& name) { return name.param; });

} // namespace

TEST_P(RealTime, PlaysSeeksStopsAndEnds) {
    RefPtr<AudioDevice> device = AdrOpenDevice("autodetect", nullptr);
    RefPtr<SampleSource> source = openSource(sound(GetParam()));
    RefPtr<OutputStream> stream = AdrOpenSound(device, source, true);
    ASSERT_TRUE(stream);
    int channelCount, rate;
    SampleFormat sampleFormat;
    source->getFormat(channelCount, rate, sampleFormat);

    // never ahead of the time passed, and never far behind it
    Clock::time_point before = Clock::now();
    stream->play();
    int last = 0;
    while (seconds(Clock::now() - before) < 0.8) {
        sleep(15);
        Clock::time_point asked = Clock::now();
        int position = stream->getPosition();
        double heard = double(position) / rate;
        EXPECT_LE(heard, seconds(Clock::now() - before) + 0.001);
        EXPECT_GE(heard, seconds(asked - before) - 0.3);
        EXPECT_GE(position, last);
        EXPECT_TRUE(stream->isPlaying());
        last = position;
    }
    EXPECT_GT(last, rate / 4);

    // stopped it stands still
    stream->stop();
    int stopped = stream->getPosition();
    EXPECT_GE(stopped, last);
    sleep(200);
    EXPECT_EQ(stream->getPosition(), stopped);
    EXPECT_FALSE(stream->isPlaying());
    stream->play();
    EXPECT_GE(stream->getPosition(), stopped);

    // a seek, and the end when half a second was heard
    Clock::time_point sought = Clock::now();
    stream->setPosition(stream->getLength() - rate / 2);
    EXPECT_GE(stream->getPosition(), stream->getLength() - rate / 2);
    while (stream->isPlaying() && seconds(Clock::now() - sought) < 5)
        sleep(5);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_GE(seconds(Clock::now() - sought), 0.49);
    EXPECT_EQ(stream->getPosition(), stream->getLength());
}
