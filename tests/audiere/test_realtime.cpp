// Real-time playback on OpenAL's null device, which keeps time. Sample-exact tests are in test_stream.cpp.
#include "audiere_fixture.h"

#include <chrono>
#include <gtest/gtest.h>

using namespace zentrak::audiere;
using namespace zentrak::test;

namespace {

class RealTime : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Formats, RealTime, testing::Values("ogg", "mp3", "mod"),
                         [](const auto& name) { return name.param; });

} // namespace

TEST_P(RealTime, PlaysSeeksStopsAndEnds) {
    RefPtr<AudioDevice> device = AdrOpenDevice("autodetect", nullptr);
    RefPtr<SampleSource> source = openSource(sound(GetParam()));
    RefPtr<OutputStream> stream = AdrOpenSound(device, source, true);
    RefPtr<OutputStream> other = AdrOpenSound(device, new CountingSource(100 * RATE), true);
    ASSERT_TRUE(stream);
    ASSERT_TRUE(other);
    int channelCount, rate;
    SampleFormat sampleFormat;
    source->getFormat(channelCount, rate, sampleFormat);

    // Never backwards, and never ahead of the elapsed time.
    const auto start = std::chrono::steady_clock::now();
    stream->play();
    int last = 0;
    EXPECT_TRUE(waitFor([&] {
        const int position = stream->getPosition();
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        EXPECT_LE(double(position) / rate, passed.count() + 0.001);
        EXPECT_GE(position, last);
        last = position;
        return position > rate / 2;
    }));
    EXPECT_TRUE(stream->isPlaying());

    // Stopped, it stands still while another one plays.
    stream->stop();
    const int stopped = stream->getPosition();
    EXPECT_GE(stopped, last);
    other->play();
    EXPECT_TRUE(waitFor([&] { return other->getPosition() > RATE / 10; }));
    EXPECT_EQ(stream->getPosition(), stopped);
    EXPECT_FALSE(stream->isPlaying());
    stream->play();
    EXPECT_GE(stream->getPosition(), stopped);

    // A seek, and the end.
    stream->setPosition(stream->getLength() - rate / 4);
    EXPECT_GE(stream->getPosition(), stream->getLength() - rate / 4);
    EXPECT_TRUE(waitFor([&] { return !stream->isPlaying(); }));
    EXPECT_EQ(stream->getPosition(), stream->getLength());
}
