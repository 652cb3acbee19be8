// For the benchmarks that have a main of their own: milliseconds, and medians of them.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <unistd.h>
#include <vector>

namespace zentrak::bench {

inline double now(clockid_t clock) {
    timespec t;
    clock_gettime(clock, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) * 1e-6;
}

// Of at least one value.
inline double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// By the clock; as processor time of all threads, which is steadier on a busy machine; and as that of the
// calling thread, without the driver's threads that fill pixels.
struct Times {
    std::vector<double> wall, processor, thread;

    template <class Work>
    void add(const Work& work) {
        const double start[] = {now(CLOCK_MONOTONIC), now(CLOCK_PROCESS_CPUTIME_ID),
                                now(CLOCK_THREAD_CPUTIME_ID)};
        work();
        thread.push_back(now(CLOCK_THREAD_CPUTIME_ID) - start[2]);
        processor.push_back(now(CLOCK_PROCESS_CPUTIME_ID) - start[1]);
        wall.push_back(now(CLOCK_MONOTONIC) - start[0]);
    }
};

// A stream for the results, on standard output, which is theirs alone: what the libraries print goes to
// standard error from now on.
inline FILE* separateResults() {
    FILE* const results = fdopen(dup(STDOUT_FILENO), "w");
    dup2(STDERR_FILENO, STDOUT_FILENO);
    setvbuf(results, nullptr, _IOLBF, 0);
    return results;
}

// The number of rounds: the first argument, or `usual` if there is none. At least 1.
inline int roundsOf(int count, char** arguments, int usual) {
    return count > 1 ? std::max(1, std::atoi(arguments[1])) : usual;
}

} // namespace zentrak::bench
