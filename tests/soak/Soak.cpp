#include "soak/Soak.h"

#include <QtGlobal>

#include <ctime>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr double linesApart = 10.0;    // s, in a log
constexpr double redrawsApart = 0.25;  // s, on a terminal

/// From the kernel itself: the C library's own call may be that of a clock that stands.
double seconds(clockid_t clock)
{
    timespec time{};
    syscall(SYS_clock_gettime, clock, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

}  // namespace

int soakCount(int shortForm)
{
    bool given = false;
    const int count = qEnvironmentVariableIntValue("ROLLIX_SOAK_COUNT", &given);
    return given ? count : shortForm;
}

Progress::Progress(std::string what_, int total_)
    : what(std::move(what_)), total(total_), onTerminal(isatty(STDERR_FILENO) == 1)
{
}

Progress::~Progress()
{
    if (onTerminal)
        std::cerr << "\r\033[K" << std::flush;
}

void Progress::at(int done, const std::string& note)
{
    const double now = trueSeconds();
    if (now < last + (onTerminal ? redrawsApart : linesApart))
        return;
    last = now;
    std::cerr << (onTerminal ? "\r\033[K" : "") << what << ": " << done << " of " << total
              << (note.empty() ? "" : ", ") << note << (onTerminal ? "" : "\n") << std::flush;
}

double trueSeconds()
{
    return seconds(CLOCK_MONOTONIC);
}

double processorSeconds()
{
    return seconds(CLOCK_PROCESS_CPUTIME_ID);
}

double residentMegabytes()
{
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    double size = 0.0;
    double resident = 0.0;
    statm >> size >> resident;
    return resident * double(sysconf(_SC_PAGESIZE)) / 1024.0 / 1024.0;
}
