#include "program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
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

std::vector<std::string> Program::printedTimes() const {
    std::vector<std::string> times;
    std::istringstream lines(output());
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line.find_first_not_of("0123456789.") == std::string::npos)
            times.push_back(line);
    return times;
}

double Program::askTime() {
    const size_t before = printedTimes().size();
    key("p");
    std::vector<std::string> times;
    const bool answered = waitFor([&] {
        times = printedTimes();
        return times.size() > before || !running();
    });
    return answered && times.size() > before ? atof(times.back().c_str()) : -1;
}

bool Program::reaches(double seconds) {
    double now = 0;
    while (now >= 0 && now < seconds)
        now = askTime();
    return now >= seconds;
}

} // namespace zentrak::test
