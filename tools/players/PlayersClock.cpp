#include "PlayersClock.h"

#include <QElapsedTimer>
#include <osg/Timer>

#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr long long nanosecondsPerSecond = 1000000000;
constexpr long long grid = 60 * nanosecondsPerSecond;
constexpr int clockCount = 16;

std::atomic<bool> stopped{false};
// Zero for a clock that nobody has asked for yet: it stops at the next full minute then. The
// toolkit lets timers of seconds go off together at round times of the clock, so each run has to
// begin at the same one.
std::atomic<long long> stoppedAt[clockCount];
std::atomic<long long> advanced{0};

long long trueTime(clockid_t clock)
{
    timespec time{};
    syscall(SYS_clock_gettime, clock, &time);
    return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

long long shownTime(clockid_t clock)
{
    if (!stopped || clock < 0 || clock >= clockCount)
        return trueTime(clock);
    long long start = 0;
    const long long now = (trueTime(clock) / grid + 1) * grid;
    if (!stoppedAt[clock].compare_exchange_strong(start, now))
        return start + advanced;
    return now + advanced;
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

void PlayersClock::stop()
{
    stopped = true;
}

void PlayersClock::advance(std::chrono::nanoseconds time)
{
    advanced += time.count();
}

bool PlayersClock::isSeenByLibraries()
{
    QElapsedTimer qtClock;
    qtClock.start();
    const osg::Timer_t osgStart = osg::Timer::instance()->tick();
    advance(std::chrono::seconds(1));
    const double osgSeconds =
        osg::Timer::instance()->delta_s(osgStart, osg::Timer::instance()->tick());
    return qtClock.elapsed() == 1000 && osgSeconds > 0.999 && osgSeconds < 1.001;
}
