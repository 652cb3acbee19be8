#include "import/child.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zentrak::importer {

namespace {

#if defined(__has_feature) // Clang's way to ask
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
constexpr bool SANITIZED = true;
#else
constexpr bool SANITIZED = false;
#endif

// The first byte that the child sends.
constexpr char GOOD = '+';
constexpr char FAILED = '-';

void limit(int resource, uint64_t amount) {
    const rlimit value{amount, amount};
    setrlimit(resource, &value);
}

bool sendAll(int file, const std::string& bytes) {
    for (size_t sent = 0; sent < bytes.size();) {
        const ssize_t count = write(file, bytes.data() + sent, bytes.size() - sent);
        if (count < 0 && errno != EINTR)
            return false;
        sent += size_t(std::max<ssize_t>(count, 0));
    }
    return true;
}

[[noreturn]] void runChild(const std::function<std::string()>& work, int pipe, int seconds, int megabytes) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, uint64_t(seconds) + 5); // in case the parent can't end it
    if (!SANITIZED)
        limit(RLIMIT_AS, uint64_t(megabytes) << 20);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        if (!SANITIZED)
            signal(number, SIG_DFL);
    const int nowhere = open("/dev/null", O_WRONLY);
    if (nowhere >= 0)
        dup2(nowhere, STDOUT_FILENO);

    std::string answer;
    try {
        answer = GOOD + work();
    } catch (const std::bad_alloc&) {
        answer = FAILED + std::string("it takes more than ") + std::to_string(megabytes) + " MB of memory";
    } catch (const std::exception& exception) {
        answer = FAILED + std::string(exception.what());
    } catch (...) {
        answer = FAILED + std::string("the reader failed");
    }
    _exit(sendAll(pipe, answer) ? 0 : 1);
}

// Reads up to the end of the stream; false if the time is over first.
bool receiveAll(int file, int seconds, std::string& bytes) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    std::string part(1 << 20, '\0');
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return false;
        pollfd wait{file, POLLIN, 0};
        if (poll(&wait, 1, int(left)) <= 0)
            continue;
        const ssize_t count = read(file, part.data(), part.size());
        if (count == 0)
            return true;
        if (count > 0)
            bytes.append(part, 0, size_t(count));
        else if (errno != EINTR)
            return true;
    }
}

} // namespace

std::string inChild(const std::function<std::string()>& work, int seconds, int megabytes) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error(std::string("can't start the reader: ") + strerror(errno));
    fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        const int problem = errno;
        close(ends[0]);
        close(ends[1]);
        throw std::runtime_error(std::string("can't start the reader: ") + strerror(problem));
    }
    if (child == 0) {
        close(ends[0]);
        runChild(work, ends[1], seconds, megabytes);
    }
    close(ends[1]);
    std::string bytes;
    const bool inTime = receiveAll(ends[0], seconds, bytes);
    close(ends[0]);
    if (!inTime)
        kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        ;

    if (!inTime)
        throw std::runtime_error("it takes more than " + std::to_string(seconds) + " seconds to read");
    if (WIFSIGNALED(status))
        throw std::runtime_error(std::string("the reader crashed on it (") + strsignal(WTERMSIG(status)) +
                                 ")");
    if (WEXITSTATUS(status) != 0 || bytes.empty())
        throw std::runtime_error("the reader crashed on it (status " + std::to_string(WEXITSTATUS(status)) +
                                 ")");
    if (bytes[0] != GOOD)
        throw std::runtime_error(bytes.substr(1));
    return bytes.substr(1);
}

} // namespace zentrak::importer
