// Shared by all tests: temporary folders, whole files, child processes, and captured output.
#pragma once

#include <limits>
#include <string>
#include <utility>

namespace zentrak::test {

constexpr float ENDLESS = std::numeric_limits<float>::infinity();
constexpr float NO_NUMBER = std::numeric_limits<float>::quiet_NaN();

// An empty folder in the system's temporary folder, deleted with its contents on destruction.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return mPath; } // without a separator at its end
    std::string file(const std::string& name) const { return mPath + "/" + name; }

private:
    std::string mPath;
};

// Makes `path` the current folder until destroyed.
class WorkingDir {
public:
    explicit WorkingDir(const std::string& path);
    ~WorkingDir();
    WorkingDir(const WorkingDir&) = delete;
    WorkingDir& operator=(const WorkingDir&) = delete;

private:
    std::string mBefore;
};

// Whole files; a failure to open or write fails the running test.
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);
bool fileExists(const std::string& path);

// A path below the root of the source tree, or of the build tree.
std::string sourcePath(const std::string& name);
std::string binaryPath(const std::string& name);

// Runs a shell command; returns its exit status, and its stdout and stderr together.
std::pair<int, std::string> runCommand(const std::string& command);

// Captures what is written to file descriptor 1 until destroyed, by stdio and iostreams alike.
class CaptureStdout {
public:
    CaptureStdout();
    ~CaptureStdout();
    CaptureStdout(const CaptureStdout&) = delete;
    CaptureStdout& operator=(const CaptureStdout&) = delete;

    std::string text(); // everything since the start

private:
    int mSaved;
    std::string mPath;
};

} // namespace zentrak::test
