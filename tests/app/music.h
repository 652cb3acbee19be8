// Short pieces of sound for tests.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>

namespace zentrak::test {

// A WAV file of one channel at 8000 frames a second: `frames` frames of a quiet 440 Hz.
inline std::string makeWav(int frames) {
    std::string wav;
    auto put = [&](uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            wav += char(value >> (8 * i));
    };
    const uint32_t size = uint32_t(frames) * 2;
    wav += "RIFF";
    put(36 + size, 4);
    wav += "WAVEfmt ";
    put(16, 4);
    put(1, 2); // PCM
    put(1, 2); // channels
    put(8000, 4);
    put(16000, 4);
    put(2, 2);
    put(16, 2);
    wav += "data";
    put(size, 4);
    for (int i = 0; i < frames; ++i)
        put(uint32_t(int(3000 * std::sin(i * 2 * 3.14159265 * 440 / 8000))), 2);
    return wav;
}

} // namespace zentrak::test
