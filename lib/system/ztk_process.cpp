#include "ztk_process.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <sys/resource.h>
#include <unistd.h>

namespace zentrak {

namespace {

// Bytes that count for RLIMIT_DATA.
long memoryInUse() {
    long pages = 0;
    FILE* const file = fopen("/proc/self/statm", "re");
    if (file) {
        if (fscanf(file, "%*s %*s %*s %*s %*s %ld", &pages) != 1)
            pages = 0;
        fclose(file);
    }
    return pages * sysconf(_SC_PAGESIZE);
}

void boundMemory() {
    const long half = sysconf(_SC_PHYS_PAGES) / 2 * sysconf(_SC_PAGESIZE);
    rlimit data{};
    if (getrlimit(RLIMIT_DATA, &data) != 0 || data.rlim_cur != RLIM_INFINITY || memoryInUse() >= half)
        return;
    data.rlim_cur = rlim_t(half);
    setrlimit(RLIMIT_DATA, &data);
}

void say(const char* text) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, strlen(text));
}

// With async-signal-safe calls only. The signal then ends the process as it would have.
void onCrash(int number) {
    say("error: the program crashed: ");
    say(sigdescr_np(number));
    say("\n");
    signal(number, SIG_DFL);
    raise(number);
}

} // namespace

long getMemoryBound() {
    rlimit data{};
    return getrlimit(RLIMIT_DATA, &data) == 0 && data.rlim_cur != RLIM_INFINITY ? long(data.rlim_cur) : 0;
}

void boundProcess() {
    boundMemory();
    rlimit core{};
    if (getrlimit(RLIMIT_CORE, &core) == 0) {
        core.rlim_cur = 0;
        setrlimit(RLIMIT_CORE, &core);
    }
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) {
        struct sigaction old {};
        if (sigaction(number, nullptr, &old) == 0 && old.sa_handler == SIG_DFL)
            signal(number, onCrash);
    }
}

} // namespace zentrak
