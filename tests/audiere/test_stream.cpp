// What is heard, sample by sample, from streams on a device that plays into memory.
#include "audiere_fixture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace zentrak::audiere;
using namespace zentrak::test;

namespace {

const int SLOW_FRAME = RATE / 2;

class Stream : public testing::Test {
protected:
    RefPtr<OutputStream> open(int length, int channelCount = 2, int rate = RATE, int readable = -1) {
        mSource = new CountingSource(length, channelCount, rate, readable);
        return AdrOpenSound(mLoopback.device(), mSource.get(), true);
    }

    // Expects `heard` from `at` on to be `count` frames of the counting source from `frame` on.
    static void expectFrames(const std::vector<float>& heard, int at, int frame, int count) {
        ASSERT_LE(size_t(2 * (at + count)), heard.size());
        for (int i = 0; i < count; ++i) {
            ASSERT_NEAR(heard[size_t(2 * (at + i))], CountingSource::sample(frame + i), 2e-7) << at + i;
            ASSERT_NEAR(heard[size_t(2 * (at + i) + 1)], -CountingSource::sample(frame + i), 2e-7) << at + i;
        }
    }

    static void expectSilence(const std::vector<float>& heard, int at = 0) {
        for (size_t i = size_t(2 * at); i < heard.size(); ++i)
            ASSERT_EQ(heard[i], 0) << i / 2;
    }

    Loopback mLoopback;
    RefPtr<CountingSource> mSource; // of the last stream opened
};

} // namespace

TEST_F(Stream, NoneOfNothing) {
    EXPECT_FALSE(AdrOpenSound(nullptr, new CountingSource(1000), true));
    EXPECT_FALSE(AdrOpenSound(mLoopback.device(), nullptr, true));
}

TEST_F(Stream, NoneAtASampleRateBeyondReason) {
    EXPECT_FALSE(open(1000, 2, 0));
    EXPECT_FALSE(open(1000, 2, -44100));
    EXPECT_FALSE(open(1000, 2, 2000000000));
}

TEST_F(Stream, StartsStoppedAtTheBeginning) {
    RefPtr<OutputStream> stream = open(RATE);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 0);
    EXPECT_EQ(stream->getLength(), RATE);
    EXPECT_EQ(stream->getVolume(), 1);
    expectSilence(mLoopback.play(*stream, 1000));
}

TEST_F(Stream, StartsAtTheBeginningOfASourceThatWasReadFrom) {
    RefPtr<SampleSource> source = new CountingSource(RATE);
    source->setPosition(5000);
    RefPtr<OutputStream> stream = AdrOpenSound(mLoopback.device(), source, true);
    stream->play();
    expectFrames(mLoopback.play(*stream, 2000), 0, 0, 2000);
}

TEST_F(Stream, EveryFrameIsHeardOnceAcrossAllBuffers) {
    RefPtr<OutputStream> stream = open(6 * RATE);
    stream->play();
    std::vector<float> heard = mLoopback.play(*stream, 7 * RATE);
    expectFrames(heard, 0, 0, 6 * RATE);
    expectSilence(heard, 6 * RATE);
}

TEST_F(Stream, MonoIsHeardOnBothSides) {
    RefPtr<OutputStream> stream = open(RATE, 1);
    stream->play();
    std::vector<float> heard = mLoopback.play(*stream, RATE);
    for (int i = 0; i < RATE; ++i) {
        ASSERT_NEAR(heard[size_t(2 * i)], CountingSource::sample(i), 2e-7);
        ASSERT_EQ(heard[size_t(2 * i)], heard[size_t(2 * i + 1)]);
    }
}

TEST_F(Stream, PositionIsThatOfTheFrameHeard) {
    RefPtr<OutputStream> stream = open(3 * RATE);
    stream->play();
    EXPECT_EQ(stream->getPosition(), 0);
    for (int heard = 441; heard < 3 * RATE; heard += 441) {
        mLoopback.render(441);
        ASSERT_NEAR(stream->getPosition(), heard, 1);
    }
}

TEST_F(Stream, PositionCountsInFramesOfTheSourceNotOfTheDevice) {
    for (int rate : {22050, 48000, 96000}) {
        RefPtr<OutputStream> stream = open(4 * rate, 2, rate);
        stream->play();
        mLoopback.play(*stream, RATE);
        EXPECT_NEAR(stream->getPosition(), rate, rate / 2000) << rate;
        mLoopback.play(*stream, 2 * RATE);
        EXPECT_NEAR(stream->getPosition(), 3 * rate, rate / 2000) << rate;
        EXPECT_TRUE(stream->isPlaying());
        mLoopback.play(*stream, RATE + 100);
        EXPECT_FALSE(stream->isPlaying());
        EXPECT_EQ(stream->getPosition(), 4 * rate);
    }
}

TEST_F(Stream, AnotherSampleRateIsHeardAtTheSamePitch) {
    RefPtr<OutputStream> stream = open(2 * 22050, 2, 22050);
    stream->play();
    std::vector<float> heard = mLoopback.play(*stream, 2 * RATE);
    for (int i = 100; i < 2 * RATE - 200; ++i)
        ASSERT_NEAR(heard[size_t(2 * i)], CountingSource::sample(i) / 2, 5e-5) << i;
}

TEST_F(Stream, TheEndIsReportedOnceTheLastFrameWasHeardAndNotBefore) {
    RefPtr<OutputStream> stream = open(RATE + 123);
    stream->play();
    mLoopback.play(*stream, RATE + 122);
    EXPECT_TRUE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), RATE + 122);
    mLoopback.play(*stream, 1);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), RATE + 123);
    expectSilence(mLoopback.play(*stream, RATE));
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), RATE + 123);
}

TEST_F(Stream, PlayAfterTheEndBeginsAgain) {
    RefPtr<OutputStream> stream = open(1000);
    stream->play();
    mLoopback.play(*stream, 2000);
    ASSERT_FALSE(stream->isPlaying());
    stream->play();
    EXPECT_TRUE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 0);
    std::vector<float> heard = mLoopback.play(*stream, 1500);
    expectFrames(heard, 0, 0, 1000);
    EXPECT_FALSE(stream->isPlaying());
}

TEST_F(Stream, SetPositionAfterTheEndMovesAndStaysSilent) {
    RefPtr<OutputStream> stream = open(1000);
    stream->play();
    mLoopback.play(*stream, 2000);
    stream->setPosition(0);
    EXPECT_EQ(stream->getPosition(), 0);
    expectSilence(mLoopback.play(*stream, 2000));
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 0);
    stream->setPosition(400);
    stream->play();
    expectFrames(mLoopback.play(*stream, 500), 0, 400, 500);
}

TEST_F(Stream, StopKeepsThePositionAndPlayGoesOnWithTheNextFrame) {
    RefPtr<OutputStream> stream = open(4 * RATE);
    stream->play();
    std::vector<float> heard = mLoopback.play(*stream, 30000);
    stream->stop();
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 30000);
    std::vector<float> gap = mLoopback.play(*stream, 2 * RATE);
    expectSilence(gap, 100); // a device may fade out over some frames
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 30000);
    stream->play();
    EXPECT_TRUE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 30000);
    heard = mLoopback.play(*stream, 3 * RATE);
    expectFrames(heard, 0, 30000, 3 * RATE);
    EXPECT_EQ(stream->getPosition(), 30000 + 3 * RATE);
}

TEST_F(Stream, PlayWhilePlayingAndStopWhileStoppedDoNothing) {
    RefPtr<OutputStream> stream = open(4 * RATE);
    stream->stop();
    EXPECT_EQ(stream->getPosition(), 0);
    stream->play();
    mLoopback.play(*stream, 10000);
    stream->play();
    expectFrames(mLoopback.play(*stream, 10000), 0, 10000, 10000);
    stream->stop();
    stream->stop();
    EXPECT_EQ(stream->getPosition(), 20000);
}

TEST_F(Stream, ASeekWhilePlayingIsHeardAtOnceFromThatVeryFrame) {
    RefPtr<OutputStream> stream = open(8 * RATE);
    stream->play();
    mLoopback.play(*stream, 20000);
    for (int target : {300000, 12345, 0, 8 * RATE - 5000}) {
        stream->setPosition(target);
        EXPECT_EQ(stream->getPosition(), target);
        EXPECT_TRUE(stream->isPlaying());
        expectFrames(mLoopback.play(*stream, 4000), 0, target, 4000);
        EXPECT_EQ(stream->getPosition(), target + 4000);
    }
}

TEST_F(Stream, ASeekWhileStoppedStaysStopped) {
    RefPtr<OutputStream> stream = open(8 * RATE);
    stream->play();
    mLoopback.play(*stream, 20000);
    stream->stop();
    stream->setPosition(200000);
    EXPECT_EQ(stream->getPosition(), 200000);
    EXPECT_FALSE(stream->isPlaying());
    expectSilence(mLoopback.play(*stream, 5000), 100);
    EXPECT_EQ(stream->getPosition(), 200000);
    stream->play();
    expectFrames(mLoopback.play(*stream, 5000), 0, 200000, 5000);
}

TEST_F(Stream, ASeekIsClampedToTheSound) {
    RefPtr<OutputStream> stream = open(RATE);
    stream->setPosition(-1);
    EXPECT_EQ(stream->getPosition(), 0);
    stream->setPosition(std::numeric_limits<int>::max());
    EXPECT_EQ(stream->getPosition(), RATE);
    stream->setPosition(std::numeric_limits<int>::min());
    EXPECT_EQ(stream->getPosition(), 0);
}

TEST_F(Stream, ASeekToTheLengthHasRunOut) {
    RefPtr<OutputStream> stream = open(RATE);
    stream->play();
    stream->setPosition(RATE);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), RATE);
    stream->setPosition(RATE);
    stream->play();
    EXPECT_FALSE(stream->isPlaying()); // moved there by the caller: it does not restart
    EXPECT_EQ(stream->getPosition(), RATE);
}

// As if the window were iconified: nobody calls the stream until the end.
TEST_F(Stream, PlaysOnByItself) {
    RefPtr<OutputStream> stream = open(9 * RATE);
    stream->play();
    std::vector<float> heard;
    for (int frame = 0; frame < 9 * RATE; frame += RATE / 4) {
        const std::vector<float> part = mLoopback.render(RATE / 4);
        heard.insert(heard.end(), part.begin(), part.end());
        const int wanted = std::min(9 * RATE, frame + RATE); // a second of the queue's one and a half is left
        ASSERT_TRUE(waitFor([&] { return mSource->getPosition() >= wanted; }));
    }
    expectFrames(heard, 0, 0, 9 * RATE);
    EXPECT_EQ(stream->getPosition(), 9 * RATE);
    EXPECT_FALSE(stream->isPlaying());
}

TEST_F(Stream, ASlowFrameIsNotHeard) {
    RefPtr<OutputStream> stream = open(9 * RATE);
    stream->play();
    int frame = 0;
    for (int i = 0; i < 12; ++i) {
        expectFrames(mLoopback.render(SLOW_FRAME), 0, frame, SLOW_FRAME);
        frame += SLOW_FRAME;
        EXPECT_EQ(stream->getPosition(), frame);
    }
    const std::lock_guard starved(mSource->mReading);
    expectFrames(mLoopback.render(RATE + RATE / 4), 0, frame, RATE + RATE / 4); // still in the queue
}

TEST_F(Stream, ADecoderThatIsLateLeavesASilenceAndIsNotTheEnd) {
    RefPtr<OutputStream> stream = open(9 * RATE);
    stream->play();
    const int queued = 12 * (RATE / 8);
    {
        const std::lock_guard starved(mSource->mReading);
        const std::vector<float> heard = mLoopback.render(7 * RATE);
        expectFrames(heard, 0, 0, queued);
        expectSilence(heard, queued);
    }
    EXPECT_TRUE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), queued);
    expectFrames(mLoopback.play(*stream, 3 * RATE), 0, queued, 3 * RATE);
    EXPECT_EQ(stream->getPosition(), queued + 3 * RATE);
}

TEST_F(Stream, AStopAfterADecoderWasLateLosesNothing) {
    RefPtr<OutputStream> stream = open(9 * RATE);
    stream->play();
    {
        const std::lock_guard starved(mSource->mReading);
        mLoopback.render(7 * RATE);
    }
    stream->stop();
    const int queued = 12 * (RATE / 8);
    EXPECT_EQ(stream->getPosition(), queued);
    mLoopback.render(RATE);
    stream->play();
    expectFrames(mLoopback.play(*stream, RATE), 0, queued, RATE);
}

TEST_F(Stream, TheEndWithinALongFrameIsTheEnd) {
    RefPtr<OutputStream> stream = open(RATE);
    stream->play();
    mLoopback.render(7 * RATE);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), RATE);
}

TEST_F(Stream, ADamagedSoundEndsWhereItCannotBeReadAnyFurther) {
    RefPtr<OutputStream> stream = open(4 * RATE, 2, RATE, 70000);
    stream->play();
    std::vector<float> heard = mLoopback.play(*stream, 80000);
    expectFrames(heard, 0, 0, 70000);
    expectSilence(heard, 70000);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 70000);
    stream->setPosition(3 * RATE);
    stream->play();
    EXPECT_FALSE(stream->isPlaying());
}

TEST_F(Stream, VolumeIsClampedAndHeard) {
    RefPtr<OutputStream> stream = open(8 * RATE);
    stream->setPosition(2 * RATE);
    stream->setVolume(0.5f);
    EXPECT_EQ(stream->getVolume(), 0.5f);
    stream->play();
    std::vector<float> heard = mLoopback.play(*stream, 20000);
    EXPECT_NEAR(heard[2 * 15000], CountingSource::sample(2 * RATE + 15000) / 2, 1e-6);
    stream->setVolume(0);
    mLoopback.play(*stream, 5000); // the change is ramped over some frames
    expectSilence(mLoopback.play(*stream, 5000));
    EXPECT_EQ(stream->getPosition(), 2 * RATE + 30000); // it plays on while muted
    stream->setVolume(7);
    EXPECT_EQ(stream->getVolume(), 1);
    mLoopback.play(*stream, 5000);
    expectFrames(mLoopback.play(*stream, 5000), 0, 2 * RATE + 35000, 5000);
    stream->setVolume(-3);
    EXPECT_EQ(stream->getVolume(), 0);
    stream->setVolume(std::nanf(""));
    EXPECT_EQ(stream->getVolume(), 0);
}

TEST_F(Stream, SamplesThatAreNotNumbersAreSilent) {
    class Broken : public CountingSource {
    public:
        Broken() : CountingSource(RATE) {}
        int read(int frameCount, void* buffer) override {
            int count = CountingSource::read(frameCount, buffer);
            float* samples = static_cast<float*>(buffer);
            for (int i = 0; i < 2 * count; i += 3)
                samples[i] = i % 2 ? std::nanf("") : std::numeric_limits<float>::infinity();
            return count;
        }
    };
    RefPtr<OutputStream> stream = AdrOpenSound(mLoopback.device(), new Broken, true);
    stream->play();
    for (float sample : mLoopback.play(*stream, RATE))
        ASSERT_LE(std::fabs(sample), 8);
    RefPtr<OutputStream> after = open(RATE);
    after->play();
    expectFrames(mLoopback.play(*after, 20000), 0, 0, 20000);
}

TEST_F(Stream, AnUnpluggedDevicePlaysOnInSilenceToTheEnd) {
    RefPtr<OutputStream> stream = open(RATE / 2);
    stream->play();
    mLoopback.play(*stream, 10000);
    mLoopback.mConnected = false;
    const int before = stream->getPosition();
    EXPECT_GE(before, 10000);
    EXPECT_TRUE(waitFor([&] { return stream->getPosition() > before; }));
    stream->stop();
    EXPECT_FALSE(stream->isPlaying());
    const int stopped = stream->getPosition();
    EXPECT_LE(stopped, RATE / 2);
    RefPtr<OutputStream> other = open(RATE / 10); // to show that time passes
    other->play();
    EXPECT_TRUE(waitFor([&] { return !other->isPlaying(); }));
    EXPECT_EQ(other->getPosition(), RATE / 10);
    EXPECT_EQ(stream->getPosition(), stopped);
    stream->play();
    EXPECT_TRUE(waitFor([&] { return !stream->isPlaying(); }));
    EXPECT_EQ(stream->getPosition(), RATE / 2);
}

TEST_F(Stream, ADeviceThatIsBackIsPlayedOnFromWhereTheMusicHasCome) {
    Loopback next;
    RefPtr<OutputStream> stream = open(8 * RATE);
    stream->setVolume(0.5f);
    stream->play();
    mLoopback.play(*stream, 10000);
    mLoopback.mNext = &next;
    mLoopback.mConnected = false;
    std::vector<float> heard;
    ASSERT_TRUE(waitFor([&] {
        heard = next.render(1000);
        return heard.back() != 0;
    }));
    const int frame = int(std::lround(heard.end()[-2] / CountingSource::sample(1) / 0.5f));
    EXPECT_GE(frame, 10000);
    heard = next.play(*stream, 20000);
    for (int i = 1000; i < 20000; ++i)
        ASSERT_EQ(heard[size_t(2 * i)], 0.5f * CountingSource::sample(frame + 1 + i)) << i;
    EXPECT_GE(stream->getPosition(), frame + 20000);
    next.play(*stream, 8 * RATE);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), 8 * RATE);
    stream->play(); // from the beginning
    heard = next.render(1000);
    EXPECT_LT(heard[200], CountingSource::sample(1000));
    EXPECT_TRUE(stream->isPlaying());
}

TEST_F(Stream, TwoStreamsOnTwoDevicesDoNotMeet) {
    Loopback other;
    RefPtr<OutputStream> first = open(2 * RATE);
    RefPtr<OutputStream> second = AdrOpenSound(other.device(), new CountingSource(2 * RATE), true);
    second->setPosition(RATE);
    first->play();
    second->play();
    expectFrames(mLoopback.play(*first, 10000), 0, 0, 10000);
    expectFrames(other.play(*second, 10000), 0, RATE, 10000);
    expectFrames(mLoopback.play(*first, RATE), 0, 10000, RATE);
    first = nullptr;
    expectFrames(other.play(*second, 10000), 0, RATE + 10000, 10000);
}

TEST_F(Stream, MoreStreamsThanTheDeviceTakesAreNone) {
    std::vector<RefPtr<OutputStream>> streams;
    RefPtr<OutputStream> stream;
    while (streams.size() < 5000 && (stream = open(100, 2, 8000)))
        streams.push_back(stream);
    EXPECT_GE(streams.size(), 16u);
    EXPECT_LT(streams.size(), 5000u);
    streams.clear();
    EXPECT_TRUE(open(100));
}

// Files of every kind: what is heard is what the source decodes, also after a seek.
class HeardFile : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Formats, HeardFile, testing::Values("wav", "flac", "ogg", "mp3", "mod"),
                         [](const auto& name) { return name.param; });

TEST_P(HeardFile, IsWhatTheSourceDecodesAlsoAfterASeek) {
    RefPtr<SampleSource> source = openSource(sound(GetParam()));
    int channelCount, rate;
    SampleFormat sampleFormat;
    source->getFormat(channelCount, rate, sampleFormat);
    std::vector<float> all = readAll(*source);
    Loopback loopback(rate);
    RefPtr<OutputStream> stream = AdrOpenSound(loopback.device(), source, true);
    auto expectHeard = [&](const std::vector<float>& heard, size_t frame) {
        for (size_t i = 0; i < heard.size(); ++i)
            ASSERT_NEAR(heard[i], all[2 * frame + i], 2e-6) << frame << " + " << i;
    };
    stream->play();
    expectHeard(loopback.play(*stream, 30000), 0);
    for (int target : {100001, 12347, 0, 77777}) {
        stream->setPosition(target);
        expectHeard(loopback.play(*stream, 25000), size_t(target));
    }
    stream->setPosition(stream->getLength() - 3000);
    loopback.play(*stream, 2999);
    EXPECT_TRUE(stream->isPlaying());
    loopback.play(*stream, 1);
    EXPECT_FALSE(stream->isPlaying());
    EXPECT_EQ(stream->getPosition(), stream->getLength());
}
