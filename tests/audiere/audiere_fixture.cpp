#include "audiere_fixture.h"

#include "mb_random.h"
#include "support.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <thread>

namespace zentrak::test {

using namespace audiere;

namespace {

// A module of four channels with two instruments (a sustained wave and a decaying noise), slides, and a
// change of tempo: 11 seconds.
std::string makeModule() {
    const int periods[] = {428, 381, 340, 320, 285, 254, 226, 214};
    auto word = [](int value) { return std::string{char(value >> 8), char(value)}; };
    auto instrument = [&](int bytes, int loop) {
        return std::string(22, '\0') + word(bytes / 2) + '\0' + char(50) + word(0) + word(loop / 2);
    };
    std::string module = std::string("a little tune") + std::string(7, '\0');
    module += instrument(32, 32) + instrument(4000, 2);
    for (int i = 2; i < 31; ++i)
        module += instrument(0, 2);
    module += std::string{2, 127, 0, 1} + std::string(126, '\0') + "M.K.";
    mathbase::Random random(7);
    auto draw = [&](int below) { return int((random.draw() >> 16) % unsigned(below)); };
    for (int pattern = 0; pattern < 2; ++pattern) {
        for (int row = 0; row < 64; ++row) {
            for (int channel = 0; channel < 4; ++channel) {
                if (row == 32 && channel == 3) {
                    module += std::string{0, 0, 0x0f, char(150)}; // tempo
                } else if (row % 4 != channel) {
                    module += std::string(4, '\0');
                } else {
                    const int effects[] = {0x000, 0x037, 0xa03, 0x104, 0x448};
                    int period = periods[draw(8)];
                    int effect = effects[draw(5)];
                    int number = 1 + channel % 2;
                    module += std::string{char(period >> 8), char(period), char(number << 4 | effect >> 8),
                                          char(effect)};
                }
            }
        }
    }
    for (int i = 0; i < 32; ++i)
        module += char(int(std::lround(100 * std::sin(2 * M_PI * i / 32))));
    for (int i = 0; i < 4000; ++i)
        module += char((draw(200) - 100) * (4000 - i) / 4000);
    return module;
}

std::map<std::string, std::string> makeSounds() {
    TempDir folder;
    std::string in = folder.path() + "/";
    auto run = [](const std::string& command) {
        auto [status, text] = runCommand(command);
        EXPECT_EQ(status, 0) << command << "\n" << text;
    };
    run("cd " + in + " && sox -R -n -r 44100 -c 2 -b 24 s.wav synth 3 sine 100-6000 pinknoise gain -6");
    run("cd " + in + " && sox -R -D s.wav -b 16 -e signed wav.wav");
    run("cd " + in + " && sox -R -D s.wav -b 8 -e unsigned wav8.wav");
    run("cd " + in + " && sox -R -D s.wav -b 24 -e signed wav24.wav");
    run("cd " + in + " && sox -R -D s.wav -b 32 -e float wavfloat.wav");
    run("cd " + in + " && sox -R -D s.wav -b 16 -e signed wavmono.wav remix 1");
    run("cd " + in + " && flac -s wav.wav -o flac.flac");
    run("cd " + in + " && oggenc -Q -s 1 -q 5 wav.wav -o ogg.ogg");
    run("cd " + in + " && oggenc -Q -s 1 -q 5 wavmono.wav -o oggmono.ogg");
    run("cd " + in + " && lame --quiet -b 128 wav.wav mp3.mp3");
    run("cd " + in + " && lame --quiet -V 3 wav.wav mp3vbr.mp3");
    run("cd " + in + " && lame --quiet -t -V 3 wav.wav mp3bare.mp3");
    std::map<std::string, std::string> sounds;
    for (const char* name : {"wav.wav", "wav8.wav", "wav24.wav", "wavfloat.wav", "wavmono.wav", "flac.flac",
                             "ogg.ogg", "oggmono.ogg", "mp3.mp3", "mp3vbr.mp3", "mp3bare.mp3"}) {
        std::string key = name;
        sounds[key.substr(0, key.find('.'))] = readFile(in + name);
    }
    sounds["mod"] = makeModule();
    return sounds;
}

const std::map<std::string, std::string>& sounds() {
    static const std::map<std::string, std::string> made = makeSounds();
    return made;
}

// A device that can be unplugged.
class LoopbackDevice : public OpenALDevice {
public:
    LoopbackDevice(ALCdevice* device, ALCcontext* context, const Loopback& owner)
        : OpenALDevice(device, context, nullptr), mOwner(owner) {}
    bool isConnected() override { return mOwner.mConnected; }
    RefPtr<OpenALDevice> reopen() const override {
        const Loopback* const next = mOwner.mNext;
        return next ? static_cast<OpenALDevice*>(next->device().get()) : nullptr;
    }

private:
    const Loopback& mOwner;
};

} // namespace

const std::string& sound(const std::string& name) {
    return sounds().at(name);
}

const std::vector<std::string>& soundNames() {
    static const std::vector<std::string> names = {"wav", "wav8",    "wav24", "wavfloat", "wavmono", "flac",
                                                   "ogg", "oggmono", "mp3",   "mp3vbr",   "mp3bare", "mod"};
    return names;
}

RefPtr<File> memoryFile(const std::string& bytes) {
    return AdrCreateMemoryFile(bytes.data(), int(bytes.size()));
}

RefPtr<SampleSource> openSource(const std::string& bytes) {
    return AdrOpenSampleSourceFromFile(memoryFile(bytes), 0);
}

std::vector<float> readAll(SampleSource& source) {
    int channelCount, sampleRate;
    SampleFormat sampleFormat;
    source.getFormat(channelCount, sampleRate, sampleFormat);
    std::vector<float> all;
    std::vector<float> part(size_t(3001 * channelCount));
    while (true) {
        int count = source.read(3001, part.data());
        all.insert(all.end(), part.begin(), part.begin() + count * channelCount);
        if (count < 3001)
            return all;
    }
}

bool waitFor(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            ADD_FAILURE() << "waited in vain";
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

CountingSource::CountingSource(int length, int channelCount, int rate, int readable)
    : mLength(length),
      mChannelCount(channelCount),
      mRate(rate),
      mReadable(readable < 0 ? length : readable) {}

void CountingSource::getFormat(int& channelCount, int& sampleRate, SampleFormat& sampleFormat) {
    channelCount = mChannelCount;
    sampleRate = mRate;
    sampleFormat = SF_F32;
}

int CountingSource::read(int frameCount, void* buffer) {
    const std::lock_guard lock(mReading);
    float* out = static_cast<float*>(buffer);
    const int position = mPosition;
    const int count = std::max(std::min(frameCount, mReadable - position), 0);
    for (int i = 0; i < count; ++i) {
        *out++ = sample(position + i);
        if (mChannelCount == 2)
            *out++ = -sample(position + i);
    }
    mPosition = position + count;
    return count;
}

Loopback::Loopback(int rate) {
    static auto open = reinterpret_cast<LPALCLOOPBACKOPENDEVICESOFT>(
        alcGetProcAddress(nullptr, "alcLoopbackOpenDeviceSOFT"));
    mOpenAL = open(nullptr);
    ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT,
                           ALC_STEREO_SOFT,
                           ALC_FORMAT_TYPE_SOFT,
                           ALC_FLOAT_SOFT,
                           ALC_FREQUENCY,
                           rate,
                           0};
    mDevice = new LoopbackDevice(mOpenAL, alcCreateContext(mOpenAL, attributes), *this);
}

std::vector<float> Loopback::render(int frames) {
    static auto samples =
        reinterpret_cast<LPALCRENDERSAMPLESSOFT>(alcGetProcAddress(nullptr, "alcRenderSamplesSOFT"));
    std::vector<float> heard(size_t(2 * frames));
    samples(mOpenAL, heard.data(), frames);
    return heard;
}

std::vector<float> Loopback::play(OutputStream& stream, int frames) {
    std::vector<float> all;
    while (frames > 0) {
        int count = std::min(frames, 735);
        std::vector<float> part = render(count);
        all.insert(all.end(), part.begin(), part.end());
        stream.isPlaying();
        stream.getPosition();
        frames -= count;
    }
    return all;
}

} // namespace zentrak::test
