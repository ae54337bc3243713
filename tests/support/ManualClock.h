#pragma once

/// The time that this process sees: Qt's timers, frame stamps, everything. Linked into a program,
/// it stands still from its first use on and goes on only as it is told, so that a minute of game
/// with all its timers takes as long as its ticks, and every run is the same run.
///
/// Nothing of such a program may wait in a loop for time to pass.
class ManualClock
{
public:
    static void advance(int milliseconds);

    /// Whether the libraries of this program, which bring their own calls, look at this clock.
    static bool isSeenByLibraries();
};
