#include "fuzz.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace zentrak::fuzz {

namespace {

// Made at its first use, removed when the program ends.
struct Folder {
    std::string path;

    Folder() {
        std::error_code none;
        const bool inMemory = std::filesystem::is_directory("/dev/shm", none);
        path = (inMemory ? std::filesystem::path("/dev/shm") : std::filesystem::temp_directory_path()) /
               "zentrak-fuzz-XXXXXX";
        check(mkdtemp(path.data()) != nullptr);
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

} // namespace

void check(bool holds) {
    if (!holds)
        abort();
}

InFolder::InFolder() : mBefore(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    static const Folder folder;
    check(mBefore >= 0 && chdir(folder.path.c_str()) == 0);
    for (const auto& entry : std::filesystem::directory_iterator("."))
        std::filesystem::remove_all(entry.path());
}

InFolder::~InFolder() {
    check(fchdir(mBefore) == 0 && close(mBefore) == 0);
}

void write(const std::string& name, const void* data, size_t size) {
    std::ofstream out(name, std::ios::binary);
    out.write(static_cast<const char*>(data), std::streamsize(size));
    check(out.good());
}

std::string read(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    check(in.good());
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace zentrak::fuzz
