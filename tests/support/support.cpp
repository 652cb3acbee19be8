#include "support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace zentrak::test {

namespace {

std::string makeFolder(const std::filesystem::path& parent) {
    std::string pattern = (parent / "zentrak-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        ADD_FAILURE() << "no temporary folder from " << pattern;
    return pattern;
}

// Holds the folders of this process and of its death tests: those die without deleting theirs.
class TempRoot {
public:
    TempRoot() {
        if (const char* parents = std::getenv("ZENTRAK_TEST_FOLDER")) {
            mPath = parents;
            return;
        }
        mPath = makeFolder(std::filesystem::temp_directory_path());
        mOwner = getpid();
        setenv("ZENTRAK_TEST_FOLDER", mPath.c_str(), 1);
    }

    ~TempRoot() {
        std::error_code ignored;
        if (mOwner == getpid()) // and not a fork
            std::filesystem::remove_all(mPath, ignored);
    }

    const std::string& path() const { return mPath; }

private:
    std::string mPath;
    pid_t mOwner = 0;
};

} // namespace

TempDir::TempDir() {
    static const TempRoot root;
    mPath = makeFolder(root.path());
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

WorkingDir::WorkingDir(const std::string& path) : mBefore(std::filesystem::current_path().string()) {
    std::filesystem::current_path(path);
}

WorkingDir::~WorkingDir() {
    std::error_code ignored;
    std::filesystem::current_path(mBefore, ignored);
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << "cannot read " << path;
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeFile(const std::string& path, const std::string& bytes) {
    std::filesystem::path parent = std::filesystem::path(path).parent_path();
    if (!parent.empty())
        std::filesystem::create_directories(parent);
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), std::streamsize(bytes.size()));
    out.close();
    EXPECT_TRUE(out.good()) << "cannot write " << path;
}

bool fileExists(const std::string& path) {
    return std::filesystem::exists(path);
}

std::string sourcePath(const std::string& name) {
    return std::string(ZENTRAK_SOURCE_DIR) + "/" + name;
}

std::string binaryPath(const std::string& name) {
    return std::string(ZENTRAK_BINARY_DIR) + "/" + name;
}

std::pair<int, std::string> runCommand(const std::string& command) {
    std::string text;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return {-1, text};
    }
    char part[4096];
    size_t got;
    while ((got = fread(part, 1, sizeof part, pipe)) > 0)
        text.append(part, got);
    int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

CaptureStdout::CaptureStdout() {
    fflush(stdout);
    std::cout.flush();
    mSaved = dup(1);
    std::string pattern = (std::filesystem::temp_directory_path() / "zentrak-out-XXXXXX").string();
    int file = mkstemp(pattern.data());
    mPath = pattern;
    dup2(file, 1);
    close(file);
}

CaptureStdout::~CaptureStdout() {
    fflush(stdout);
    std::cout.flush();
    dup2(mSaved, 1);
    close(mSaved);
    unlink(mPath.c_str());
}

std::string CaptureStdout::text() {
    fflush(stdout);
    std::cout.flush();
    return readFile(mPath);
}

} // namespace zentrak::test
