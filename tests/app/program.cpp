#include "program.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zentrak::test {

bool waitFor(const std::function<bool()>& condition, double seconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

Program::Program() {
    static int count = 0;
    mTitle = "Show " + std::to_string(++count) + " of " + std::to_string(getpid());
    for (const auto& entry : std::filesystem::directory_iterator(sourcePath("data")))
        if (entry.is_directory())
            std::filesystem::create_symlink(entry.path(), mDir.file(entry.path().filename().string()));
    for (const char* name : {"layout.xml", "style.xml", "fonthelvete2.png"})
        std::filesystem::create_symlink(sourcePath("data") + "/" + name, mDir.file(name));
}

Program::~Program() {
    if (running()) {
        kill(mPid, SIGKILL);
        waitpid(mPid, &mStatus, 0);
    }
}

void Program::write(const std::string& name, const std::string& bytes) {
    const std::filesystem::path path = mDir.file(name);
    std::filesystem::create_directories(path.parent_path());
    writeFile(path.string(), bytes);
}

void Program::start(const std::string& environment) {
    const std::string command =
        "exec env " + environment + " '" + binaryPath("app/zentrak") + "' an argument that is ignored";
    mViewer.reset();
    mPid = fork();
    if (mPid == 0) {
        const int out = open(mDir.file("output").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (chdir(mDir.path().c_str()) != 0 || out < 0)
            _exit(126);
        setenv("ALSOFT_DRIVERS", "null", 1);
        dup2(out, STDOUT_FILENO);
        dup2(out, STDERR_FILENO);
        execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
}

bool Program::running() {
    if (mPid > 0 && waitpid(mPid, &mStatus, WNOHANG) == mPid)
        mPid = -1;
    return mPid > 0;
}

int Program::wait() {
    if (!waitFor([this] { return !running(); }))
        return -1;
    return WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : -1;
}

std::string Program::output() const {
    return readFile(mDir.file("output"));
}

bool Program::focus() {
    const std::string search = "xdotool search --name '^" + mTitle + "$' 2>/dev/null";
    if (!waitFor([&] { return runCommand(search).first == 0 || !running(); }) || !running())
        return false;
    mViewer = std::make_unique<Viewer>(mTitle, [] {});
    mViewer->focus();
    return running();
}

bool Program::grab(Picture& picture) {
    const std::string path = mDir.file("grab.png");
    return runCommand("import -silent -window " + mViewer->window() + " '" + path + "'").first == 0 &&
           readPng(path, picture);
}

} // namespace zentrak::test
