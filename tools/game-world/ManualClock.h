#pragma once

#include <chrono>

/// The time that this process sees: Qt's timers, frame stamps, everything. While one of these
/// lives, it stands still and goes on only as it is told, so that a minute of game with all its
/// timers takes as long as its ticks, and every run is the same run. Afterwards it goes on from
/// where it stands. One inside another is the same clock. Main thread.
///
/// While it lives, nothing may wait in a loop for time to pass.
class ManualClock
{
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    void advance(std::chrono::nanoseconds time);

    /// Advances each of the clocks to its next full minute. The toolkit lets timers of seconds go
    /// off together at round times: runs that shall be alike have to begin at the same one.
    void advanceToFullMinute();

    /// Advances in small steps, and serves the timers that come due.
    void passes(int milliseconds);
};
