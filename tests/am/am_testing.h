// Shared by the tests of assets: fixtures, exception texts, and pixels as numbers.
#pragma once

#include "am_file.h"
#include "am_image.h"
#include "support.h"
#include "ztk_system.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace zentrak::test {

inline std::string fixturePath(const std::string& name) {
    return sourcePath("tests/am/fixtures/" + name);
}
inline std::string fixture(const std::string& name) {
    return readFile(fixturePath(name));
}

inline am::File makeFile(const std::string& name, const std::string& bytes) {
    return am::File(new am::FileStructure(name, bytes.data(), long(bytes.size())));
}

inline std::string bytesOf(const am::File& file) {
    if (file.isNull())
        return "(null)";
    return std::string(reinterpret_cast<const char*>(file->data), size_t(file->length));
}

// The text of the zentrak::Exception that the call throws, or "(nothing)".
inline std::string thrownBy(const std::function<void()>& call) {
    try {
        call();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "(nothing)";
}

// An in-memory file, for tests that need thousands.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& bytes) : mFd(memfd_create("zentrak", MFD_CLOEXEC)) {
        EXPECT_EQ(write(mFd, bytes.data(), bytes.size()), ssize_t(bytes.size()));
    }
    ~MemoryFile() { close(mFd); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(mFd); }

private:
    int mFd;
};

// A pixel as 0xAARRGGBB: its four bytes blue, green, red, alpha as one word.
inline unsigned pixel(const am::ImageObject& image, int x, int y) {
    const unsigned char* p = image.getData() + (size_t(y) * size_t(image.getWidth()) + size_t(x)) * 4;
    return unsigned(p[3]) << 24 | unsigned(p[2]) << 16 | unsigned(p[1]) << 8 | p[0];
}

constexpr int cFixtureWidth = 33;
constexpr int cFixtureHeight = 17;

// The picture that tests/am/fixtures/make.sh draws.
inline unsigned fixturePixel(int x, int y, bool alpha) {
    unsigned a = !alpha || (x + y) % 2 ? 255 : 40;
    return a << 24 | unsigned(x * 7) << 16 | unsigned(y * 14) << 8 | unsigned(255 - x * 7);
}

} // namespace zentrak::test
