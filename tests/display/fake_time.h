// Time without waiting, for tests of pacing.
#pragma once

#include <vector>

namespace zentrak::test {

// While it lives, the thread that made it sees a fake clock, which each reading advances by TICK and each
// sleep by its length, without waiting (see fake_time.cpp). One at a time; made after the window is open.
class FakeTime {
public:
    static constexpr double TICK = 1.0 / 4096; // seconds

    FakeTime();
    ~FakeTime();
    FakeTime(const FakeTime&) = delete;
    FakeTime& operator=(const FakeTime&) = delete;

    // What happened since the last clear().
    std::vector<double> sleeps; // seconds
    int readings = 0;
    void clear();

    double read();
    void sleep(double seconds);

private:
    double mNow = 0;
};

} // namespace zentrak::test
