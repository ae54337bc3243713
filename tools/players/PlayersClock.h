#pragma once

#include <chrono>

/// The time that this process sees: Qt's timers, frame stamps, everything. Linked into a program,
/// it can be stopped; from then on it goes on only as it is told, so that a minute of game with all
/// its timers takes as long as its ticks, and every run is the same run.
///
/// Nothing of such a program may wait in a loop for time to pass.
class PlayersClock
{
public:
    /// Before anything has asked for the time that is to be told by this clock; for good.
    static void stop();

    /// Of a stopped clock.
    static void advance(std::chrono::nanoseconds time);

    /// Whether the libraries of this program, which bring their own calls, look at this clock, once
    /// it is stopped.
    static bool isSeenByLibraries();
};
