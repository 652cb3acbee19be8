#include "fake_time.h"

#include <ctime>
#include <dlfcn.h>

static thread_local zentrak::test::FakeTime* fake = nullptr;

// Replace the libraries' functions, and forward to them if there is no FakeTime.

extern "C" double glfwGetTime() {
    static const auto real = reinterpret_cast<double (*)()>(dlsym(RTLD_NEXT, "glfwGetTime"));
    return fake ? fake->read() : real();
}

extern "C" int nanosleep(const timespec* length, timespec* rest) {
    using Function = int (*)(const timespec*, timespec*);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "nanosleep"));
    if (!fake)
        return real(length, rest);
    fake->sleep(double(length->tv_sec) + 1e-9 * double(length->tv_nsec));
    return 0;
}

namespace zentrak::test {

FakeTime::FakeTime() {
    fake = this;
}

FakeTime::~FakeTime() {
    fake = nullptr;
}

void FakeTime::clear() {
    sleeps.clear();
    readings = 0;
}

double FakeTime::read() {
    ++readings;
    return mNow += TICK;
}

void FakeTime::sleep(double seconds) {
    sleeps.push_back(seconds);
    mNow += seconds;
}

} // namespace zentrak::test
