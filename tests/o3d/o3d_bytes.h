// Scene files built byte by byte, independently of the library's own writer.
#pragma once

#include "o3d_manager.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>

namespace zentrak::test {

inline std::string bytes(const void* data, size_t length) {
    return std::string(static_cast<const char*>(data), length);
}

inline std::string u8(unsigned value) {
    return std::string(1, char(value));
}
inline std::string u16(unsigned value) {
    return u8(value & 255) + u8(value >> 8);
}
inline std::string u32(uint32_t value) {
    return bytes(&value, 4);
}
inline std::string i32(int32_t value) {
    return bytes(&value, 4);
}
inline std::string f32(float value) {
    return bytes(&value, 4);
}
inline std::string floats(std::initializer_list<float> values) {
    std::string result;
    for (const float value : values)
        result += f32(value);
    return result;
}
inline std::string text(const std::string& value) {
    return value + '\0';
}

// A chunk; no size field if the ID implies the size.
inline std::string chunk(unsigned id, const std::string& payload) {
    const unsigned tag = id & 15;
    return u16(id) + (tag >= 1 && tag <= 7 ? "" : u32(uint32_t(payload.size()))) + payload;
}

inline std::string triangle(int a, int b, int c) {
    return u8(0) + i32(a) + i32(b) + i32(c);
}

inline std::string keyList(unsigned id, unsigned interpolation, unsigned extrapolation,
                           const std::string& keys) {
    return chunk(id, u8(interpolation) + u8(extrapolation) + keys);
}
// A key with its handles on itself.
inline std::string key(float time, float value) {
    return floats({time, value, time, value, time, value});
}

inline std::string file(const std::string& children) {
    return "O3DF\x01\x01" + chunk(0x1000, children);
}

// Loads from a heap block of the exact size, so that sanitizers see any byte read past it.
inline void load(o3d::Manager& manager, const std::string& image) {
    const std::unique_ptr<unsigned char[]> data(new unsigned char[image.size()]);
    memcpy(data.get(), image.data(), image.size());
    manager.load(data.get(), int(image.size()));
}

// A file with every kind of chunk, with distinct values.
std::string everything();

} // namespace zentrak::test
