// Makes the music: compose FILE.wav. Twelve bars at 120 beats a minute, 24 seconds.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <vector>

namespace {

constexpr int RATE = 44100;
constexpr int BEAT = RATE / 2;
constexpr int BARS = 12;
constexpr float TURN = 2 * std::numbers::pi_v<float>;

std::vector<float> sound(size_t(BARS) * 4 * BEAT);

// A tone that dies away in about `seconds`; `pitch` is a MIDI number, `edge` adds overtones.
void tone(int start, float seconds, float pitch, float level, float edge) {
    const float frequency = 440 * std::exp2((pitch - 69) / 12);
    for (int i = 0; i < int(4 * seconds * RATE) && size_t(start + i) < sound.size(); ++i) {
        const float t = float(i) / RATE;
        const float phase = TURN * frequency * t;
        const float wave = std::sin(phase + edge * std::exp(-t / seconds) * std::sin(2 * phase));
        sound[size_t(start + i)] += level * std::min(1.0f, 200 * t) * std::exp(-t / seconds) * wave;
    }
}

void kick(int start) {
    for (int i = 0; i < RATE / 3 && size_t(start + i) < sound.size(); ++i) {
        const float t = float(i) / RATE;
        sound[size_t(start + i)] +=
            0.6f * std::exp(-9 * t) * std::sin(TURN * (45 * t - 6 * std::exp(-25 * t)));
    }
}

void compose() {
    const int roots[] = {45, 41, 48, 43}; // A minor, F, C, G
    const int thirds[] = {3, 4, 4, 4};
    for (int bar = 0; bar < BARS; ++bar) {
        const int root = roots[bar % 4];
        const int chord[] = {0, 7, 12, 12 + thirds[bar % 4], 19, 24, 19, 12 + thirds[bar % 4]};
        const int start = bar * 4 * BEAT;
        tone(start, 1.2f, float(root - 12), 0.25f, 1.0f);
        for (int i = 0; i < 8; ++i)
            tone(start + i * BEAT / 2, 0.25f, float(root + 12 + chord[i]), 0.14f, bar < 4 ? 0.5f : 1.5f);
        for (int beat = 0; bar >= 2 && bar < 11 && beat < 4; ++beat) {
            kick(start + beat * BEAT);
            if (bar >= 4)
                tone(start + beat * BEAT + BEAT / 2, 0.12f, float(root), 0.22f, 3.0f);
        }
    }
    for (size_t i = size_t(3 * BEAT / 4); i < sound.size(); ++i)
        sound[i] += 0.3f * sound[i - size_t(3 * BEAT / 4)]; // an echo
    for (size_t i = 0; i < size_t(4 * BEAT); ++i)
        sound[sound.size() - 1 - i] *= float(i) / float(4 * BEAT);
}

void put(std::FILE* file, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        std::fputc(int(value >> (8 * i) & 255), file);
}

bool write(const char* name) {
    std::FILE* file = std::fopen(name, "wb");
    if (!file)
        return false;
    const uint32_t bytes = uint32_t(2 * sound.size());
    std::fputs("RIFF", file);
    put(file, 36 + bytes, 4);
    std::fputs("WAVEfmt ", file);
    put(file, 16, 4);
    put(file, 1, 2); // PCM
    put(file, 1, 2); // one channel
    put(file, RATE, 4);
    put(file, 2 * RATE, 4);
    put(file, 2, 2);
    put(file, 16, 2); // bits
    std::fputs("data", file);
    put(file, bytes, 4);
    for (const float sample : sound)
        put(file, uint32_t(int(32000 * std::tanh(sample))), 2);
    const bool good = !std::ferror(file);
    return std::fclose(file) == 0 && good;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: compose FILE.wav\n", stderr);
        return 2;
    }
    compose();
    if (!write(argv[1])) {
        std::perror(argv[1]);
        return 1;
    }
    return 0;
}
