#include "ManualClock.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr long long nanosecondsPerSecond = 1000000000;
constexpr std::chrono::milliseconds longestStep{10};

// Those that tell how late it is; the others tell what has been used up.
constexpr clockid_t clocks[] = {CLOCK_REALTIME,        CLOCK_MONOTONIC,        CLOCK_MONOTONIC_RAW,
                                CLOCK_REALTIME_COARSE, CLOCK_MONOTONIC_COARSE, CLOCK_BOOTTIME};
constexpr int clockLimit = 8;

// Asked from the first moment of the process on, by any thread.
std::atomic<bool> stopped{false};
std::atomic<long long> stoppedAt[clockLimit];
std::atomic<long long> ahead{0};  // of the true time, while the clocks run
int depth = 0;

long long trueTime(clockid_t clock)
{
    timespec time{};
    syscall(SYS_clock_gettime, clock, &time);
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

bool isManual(clockid_t clock)
{
    return std::find(std::begin(clocks), std::end(clocks), clock) != std::end(clocks);
}

long long shownTime(clockid_t clock)
{
    if (!isManual(clock))
        return trueTime(clock);
    return stopped ? stoppedAt[clock].load() : trueTime(clock) + ahead;
}

}  // namespace

// The dynamic linker finds a program's own definitions before the C library's.
extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const long long now = shownTime(clock);
    time->tv_sec = now / nanosecondsPerSecond;
    time->tv_nsec = now % nanosecondsPerSecond;
    return 0;
}

int gettimeofday(timeval* time, void*) noexcept
{
    const long long now = shownTime(CLOCK_REALTIME);
    time->tv_sec = now / nanosecondsPerSecond;
    time->tv_usec = now % nanosecondsPerSecond / 1000;
    return 0;
}

time_t time(time_t* result) noexcept
{
    const time_t now = shownTime(CLOCK_REALTIME) / nanosecondsPerSecond;
    if (result)
        *result = now;
    return now;
}
}

ManualClock::ManualClock()
{
    if (depth++ > 0)
        return;
    for (const clockid_t clock : clocks)
        stoppedAt[clock] = shownTime(clock);
    stopped = true;
}

ManualClock::~ManualClock()
{
    if (--depth > 0)
        return;
    ahead = stoppedAt[CLOCK_MONOTONIC] - trueTime(CLOCK_MONOTONIC);
    stopped = false;
}

void ManualClock::advance(std::chrono::nanoseconds time)
{
    for (const clockid_t clock : clocks)
        stoppedAt[clock] += time.count();
}

void ManualClock::advanceToFullMinute()
{
    constexpr long long minute = 60 * nanosecondsPerSecond;
    for (const clockid_t clock : clocks)
        stoppedAt[clock] = (stoppedAt[clock] / minute + 1) * minute;
}

void ManualClock::passes(int milliseconds)
{
    std::chrono::milliseconds left(milliseconds);
    while (left.count() > 0) {
        const std::chrono::milliseconds step = std::min(left, longestStep);
        advance(step);
        QCoreApplication::processEvents();
        left -= step;
    }
}
