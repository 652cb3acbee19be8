#include "audiere_fixture.h"
#include "mb_random.h"
#include "support.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace zentrak;
using namespace zentrak::audiere;
using namespace zentrak::test;

namespace {

struct Format {
    explicit Format(SampleSource& source) { source.getFormat(mChannelCount, mSampleRate, mSampleFormat); }
    int mChannelCount, mSampleRate;
    SampleFormat mSampleFormat;
};

// Similarity of two sounds: 1 for equal, 0 for unrelated ones.
double likeness(const std::vector<float>& a, const std::vector<float>& b) {
    double ab = 0, aa = 0, bb = 0;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        ab += double(a[i]) * b[i];
        aa += double(a[i]) * a[i];
        bb += double(b[i]) * b[i];
    }
    return ab / std::sqrt(aa * bb);
}

float largest(const std::vector<float>& samples) {
    float most = 0;
    for (float sample : samples)
        most = std::max(most, std::fabs(sample));
    return most;
}

// Reads and seeks all over a source with a damaged file; it must respect its own length.
void useUp(const std::string& bytes) {
    RefPtr<SampleSource> source = openSource(bytes);
    if (!source)
        return;
    Format format(*source);
    ASSERT_GE(format.mChannelCount, 1);
    ASSERT_LE(format.mChannelCount, 2);
    ASSERT_GT(source->getLength(), 0);
    std::vector<float> part(size_t(5000 * format.mChannelCount));
    int total = 0, count;
    // A damaged length can be hours, for a module too: the first minute will do.
    while (total < 60 * format.mSampleRate && (count = source->read(5000, part.data())) > 0) {
        ASSERT_LE(count, 5000);
        total += count;
        ASSERT_EQ(source->getPosition(), total);
    }
    ASSERT_LE(total, source->getLength());
    for (int target : {total / 2, 0, total, total - 1, -5, 2147483647}) {
        source->setPosition(target);
        ASSERT_GE(source->getPosition(), 0);
        ASSERT_LE(source->getPosition(), source->getLength());
        source->read(100, part.data());
    }
}

} // namespace

// -- every format

class EverySound : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Formats, EverySound, testing::ValuesIn(soundNames()),
                         [](const auto& name) { return name.param; });

TEST_P(EverySound, HasItsFormatAndTheLengthThatItDecodesTo) {
    RefPtr<SampleSource> source = openSource(sound(GetParam()));
    ASSERT_TRUE(source);
    Format format(*source);
    bool mono = GetParam().ends_with("mono"), module = GetParam() == "mod";
    EXPECT_EQ(format.mChannelCount, mono ? 1 : 2);
    EXPECT_EQ(format.mSampleRate, module ? 48000 : 44100);
    EXPECT_EQ(format.mSampleFormat, SF_F32);
    std::vector<float> all = readAll(*source);
    EXPECT_EQ(int(all.size()), source->getLength() * format.mChannelCount);
    EXPECT_EQ(source->getPosition(), source->getLength());
    EXPECT_GT(largest(all), 0.2f);
}

TEST_P(EverySound, ASeekLandsOnTheSample) {
    RefPtr<SampleSource> source = openSource(sound(GetParam()));
    ASSERT_TRUE(source);
    const std::vector<float> all = readAll(*source);
    const int channels = Format(*source).mChannelCount;
    const int length = source->getLength();
    std::vector<int> targets = {0,          length - 1,    length, 1, 1151, 1152, 2 * 1152 + 1,
                                length / 2, length / 2 + 1};
    mathbase::Random random(1);
    for (int i = 0; i < 60; ++i)
        targets.push_back(int((unsigned long)(random.draw()) * (unsigned long)(length) >> 32));
    std::vector<float> part(size_t(2500 * channels));
    for (int target : targets) {
        source->setPosition(target);
        ASSERT_EQ(source->getPosition(), target);
        int count = source->read(2500, part.data());
        ASSERT_EQ(count, std::min(2500, length - target));
        for (int i = 0; i < count * channels; ++i)
            ASSERT_NEAR(part[size_t(i)], all[size_t(target * channels + i)], 1e-6) << target << " + " << i;
    }
}

TEST_P(EverySound, ASeekIsClampedToTheSound) {
    RefPtr<SampleSource> source = openSource(sound(GetParam()));
    float frame[2];
    source->setPosition(-7);
    EXPECT_EQ(source->getPosition(), 0);
    source->setPosition(2000000000);
    EXPECT_EQ(source->getPosition(), source->getLength());
    EXPECT_EQ(source->read(1, frame), 0);
    source->setPosition(source->getLength() - 1);
    EXPECT_EQ(source->read(1, frame), 1);
}

TEST_P(EverySound, CutShortItIsRefusedOrPlaysWhatIsLeft) {
    const std::string& whole = sound(GetParam());
    for (size_t size :
         {size_t(1), size_t(3), size_t(4), size_t(12), size_t(40), size_t(44), size_t(45), size_t(100),
          size_t(600), size_t(1084), size_t(1500), size_t(5000), whole.size() / 2, whole.size() - 1}) {
        SCOPED_TRACE(size);
        useUp(whole.substr(0, size));
    }
    if (GetParam() != "mod" && GetParam() != "oggmono") { // one needs its samples, the other is a single page
        RefPtr<SampleSource> half = openSource(whole.substr(0, whole.size() / 2));
        ASSERT_TRUE(half);
        int frames = int(readAll(*half).size()) / Format(*half).mChannelCount;
        EXPECT_GT(frames, 44100); // of three seconds
        EXPECT_LT(frames, 2 * 44100);
    }
}

// Chained streams in a file may differ in channels and rate; a hole in the first must not lead into the
// second.
TEST_P(EverySound, AnotherOneAfterItDoesNotCrash) {
    for (const std::string& next : soundNames()) {
        SCOPED_TRACE(next);
        std::string bytes = sound(GetParam());
        useUp(bytes + sound(next));
        bytes[bytes.size() / 2] = char(bytes[bytes.size() / 2] ^ 0x55);
        useUp(bytes + sound(next));
    }
}

TEST_P(EverySound, DamagedItDoesNotCrash) {
    mathbase::Random random(3);
    for (int trial = 0; trial < 12; ++trial) {
        SCOPED_TRACE(trial);
        std::string bytes = sound(GetParam());
        for (int i = 0; i < 40; ++i) {
            const uint32_t state = random.draw();
            // the header more often
            size_t end = trial % 2 ? bytes.size() : std::min<size_t>(bytes.size(), 1100);
            bytes[size_t((unsigned long)(state)*end >> 32)] = char(state >> 8);
        }
        useUp(bytes);
    }
}

// -- what they sound like

TEST(Source, LosslessFormatsGiveTheSameSamples) {
    std::vector<float> wav = readAll(*openSource(sound("wav")));
    std::vector<float> flac = readAll(*openSource(sound("flac")));
    EXPECT_EQ(wav, flac);
    EXPECT_EQ(wav.size(), 2u * 3 * 44100);
    EXPECT_GT(likeness(wav, readAll(*openSource(sound("wav8")))), 0.999);
    EXPECT_GT(likeness(wav, readAll(*openSource(sound("wav24")))), 0.999999);
    EXPECT_GT(likeness(wav, readAll(*openSource(sound("wavfloat")))), 0.999999);
}

TEST(Source, LossyFormatsSoundAlikeWithoutAShift) {
    std::vector<float> wav = readAll(*openSource(sound("wav")));
    for (const char* name : {"ogg", "mp3", "mp3vbr"}) {
        std::vector<float> other = readAll(*openSource(sound(name)));
        EXPECT_EQ(other.size(), wav.size()) << name;
        EXPECT_GT(likeness(wav, other), 0.97) << name;
    }
}

TEST(Source, AnMp3WithoutALengthInItsHeaderPlaysWhole) {
    EXPECT_GE(openSource(sound("mp3bare"))->getLength(), 3 * 44100);
}

TEST(Source, AModulePlaysOnceThrough) {
    RefPtr<SampleSource> source = openSource(sound("mod"));
    // 2 patterns of 64 rows of 6 ticks; a tick is 2.5 / tempo seconds; 32 rows at 125, the rest at 150.
    double seconds = (32 / 125.0 + 96 / 150.0) * 6 * 2.5;
    EXPECT_NEAR(source->getLength(), seconds * 48000, 50);
}

// With a lost page the first stream is shorter than the file says: what is missing must not be read from the
// following stream, which has fewer channels.
TEST(Source, AStreamOfAnotherFormatIsNotReachedThroughAHole) {
    TempDir folder;
    writeFile(folder.file("mono.wav"), sound("wavmono"));
    ASSERT_EQ(runCommand("cd " + folder.path() + " && oggenc -Q -s 2 mono.wav").first, 0);
    std::string bytes = sound("ogg");
    bytes[bytes.size() / 2] = char(bytes[bytes.size() / 2] ^ 0x55);
    const std::vector<float> damaged = readAll(*openSource(bytes));
    const RefPtr<SampleSource> chained = openSource(bytes + readFile(folder.file("mono.ogg")));
    ASSERT_TRUE(chained);
    EXPECT_EQ(chained->getLength(), 3 * RATE);
    EXPECT_LT(damaged.size(), 2u * 3 * RATE);
    EXPECT_EQ(readAll(*chained), damaged);
}

TEST(Source, SurroundIsMixedDownToTwoChannels) {
    TempDir folder;
    std::string name = folder.file("six.wav");
    // 440, 550, 660, 770, 880 and 990 Hz on left, right, centre, subwoofer, rear left and rear right
    ASSERT_EQ(runCommand("sox -R -n -r 44100 -c 6 -b 16 " + name +
                         " synth 1 sine 440 sine 550 sine 660 sine 770 sine 880 sine 990 gain -10 && "
                         "cd " +
                         folder.path() + " && flac -s six.wav -o six.flac && oggenc -Q -q 9 six.wav")
                  .first,
              0);
    for (const char* file : {"six.wav", "six.flac", "six.ogg"}) {
        RefPtr<SampleSource> source = openSource(readFile(folder.file(file)));
        ASSERT_TRUE(source) << file;
        ASSERT_EQ(Format(*source).mChannelCount, 2) << file;
        ASSERT_EQ(source->getLength(), 44100);
        std::vector<float> all = readAll(*source);
        ASSERT_EQ(all.size(), 88200u);
        // The level of a tone in a channel over a whole second, relative to that in the file.
        auto strength = [&](int channel, double frequency) {
            double re = 0, im = 0;
            for (int i = 0; i < 44100; ++i) {
                re += all[size_t(2 * i + channel)] * std::cos(2 * M_PI * frequency * i / 44100);
                im += all[size_t(2 * i + channel)] * std::sin(2 * M_PI * frequency * i / 44100);
            }
            return std::sqrt(re * re + im * im) / 22050 / std::pow(10, -0.5);
        };
        const double left[] = {1, 0, std::sqrt(0.5), 0, 1, 0}, right[] = {0, 1, std::sqrt(0.5), 0, 0, 1};
        for (int tone = 0; tone < 6; ++tone) {
            EXPECT_NEAR(strength(0, 440 + 110 * tone), left[tone], 0.01) << file << " " << tone;
            EXPECT_NEAR(strength(1, 440 + 110 * tone), right[tone], 0.01) << file << " " << tone;
        }
    }
}

// -- what is not sound

TEST(Source, NoneOfANullFileAnEmptyFileOrAnUnknownFormat) {
    EXPECT_FALSE(AdrOpenSampleSourceFromFile(nullptr, 0));
    EXPECT_FALSE(openSource(""));
    EXPECT_FALSE(AdrOpenSampleSourceFromFile(memoryFile(sound("wav")), 1));
}

TEST(Source, NoneOfOtherFiles) {
    EXPECT_FALSE(openSource("<demo><music filename=\"music/zentrak.ogg\"/></demo>\n"));
    EXPECT_FALSE(openSource(std::string(100000, '\0')));
    EXPECT_FALSE(openSource(std::string(100000, '\xff')));
    EXPECT_FALSE(openSource(readFile(sourcePath("tests/audiere/test_source.cpp"))));
    EXPECT_FALSE(openSource(readFile(binaryPath("CMakeCache.txt"))));
    mathbase::Random random(1);
    std::string noise;
    for (int i = 0; i < 200000; ++i)
        noise += char(random.draw() >> 24);
    EXPECT_FALSE(openSource(noise));
}

// An executable of several megabytes has many bytes that look like MP3 frame headers; so has this.
TEST(Source, NoneOfAFileWithAnMp3InTheMiddle) {
    EXPECT_FALSE(openSource(readFile(binaryPath("tests/audiere/test_audiere"))));
    EXPECT_FALSE(openSource(readFile("/bin/ls")));
    EXPECT_FALSE(openSource("some words first: " + sound("mp3")));
    EXPECT_TRUE(openSource(sound("mp3")));
}

TEST(Source, NoneOfASoundWithoutAFrame) {
    EXPECT_FALSE(openSource(sound("wav").substr(0, 44)));
}

TEST(Source, TheFileCanBeLetGo) {
    RefPtr<File> file = memoryFile(sound("flac"));
    RefPtr<SampleSource> source = AdrOpenSampleSourceFromFile(file, 0);
    file = nullptr;
    EXPECT_EQ(readAll(*source).size(), 2u * 3 * 44100);
}
