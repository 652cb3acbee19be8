#include "support.h"
#include "ztk_process.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <new>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace zentrak;

#if !defined(__SANITIZE_ADDRESS__) &&                                                                        \
    !defined(__SANITIZE_THREAD__) // which map terabytes and report crashes themselves

namespace {

long halfOfMemory() {
    return sysconf(_SC_PHYS_PAGES) / 2 * sysconf(_SC_PAGESIZE);
}

// Each in a process of its own: a bound can't be undone.
[[noreturn]] void endWith(bool good) {
    _exit(good ? 0 : 1);
}

// Not touched: this takes address space, and no memory.
bool canHave(long bytes) {
    return mmap(nullptr, size_t(bytes), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) !=
           MAP_FAILED;
}

} // namespace

TEST(BoundProcess, GetsNoMoreThanHalfOfTheMachinesMemory) {
    const auto child = [] {
        boundProcess();
        bool threw = false;
        try {
            operator delete(operator new(size_t(halfOfMemory())));
        } catch (const std::bad_alloc&) {
            threw = true;
        }
        endWith(getMemoryBound() == halfOfMemory() && !canHave(halfOfMemory()) && threw &&
                canHave(halfOfMemory() / 2));
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST(BoundProcess, ALimitOfTheUsersStays) {
    const auto child = [] {
        rlimit data{};
        getrlimit(RLIMIT_DATA, &data);
        data.rlim_cur = std::min(rlim_t(halfOfMemory()) * 2, data.rlim_max);
        setrlimit(RLIMIT_DATA, &data);
        boundProcess();
        endWith(getMemoryBound() == long(data.rlim_cur));
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

TEST(BoundProcess, ACrashIsReportedAndLeavesNoCoreFile) {
    test::TempDir folder;
    for (const int number : {SIGSEGV, SIGABRT, SIGFPE}) {
        const auto child = [&] {
            test::WorkingDir inside(folder.path());
            rlimit core{};
            getrlimit(RLIMIT_CORE, &core);
            core.rlim_cur = core.rlim_max;
            setrlimit(RLIMIT_CORE, &core);
            boundProcess();
            raise(number);
        };
        EXPECT_EXIT(child(), testing::KilledBySignal(number), "error: the program crashed: ");
    }
    EXPECT_EQ(test::runCommand("ls '" + folder.path() + "'").second, "");
}

TEST(BoundProcess, AHandlerThatIsThereStays) {
    const auto child = [] {
        signal(SIGSEGV, [](int) { endWith(true); });
        boundProcess();
        raise(SIGSEGV);
    };
    EXPECT_EXIT(child(), testing::ExitedWithCode(0), "");
}

#endif
