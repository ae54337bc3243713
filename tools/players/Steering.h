#pragma once

#include <algorithm>

/// What players have in common: how the ball answers to the board, and how late people see.
namespace steering {

constexpr int ticksPerSecond = 50;
constexpr double worldSecondsPerTick = 1.0 / 30.0;
constexpr double rollingGravity = 9.81 * 5.0 / 7.0;  // of a solid ball that does not slip
constexpr double climbingTilt = 0.48;  // nearly the board's limit: a ramp rises by 27 degrees
constexpr int fastestEyes = 8;         // ticks: 0.16 s
constexpr int slowestEyes = 13;

/// How late somebody sees, in ticks. A reaction of 0 leaves it to the seed.
inline int eyesOf(unsigned int seed, int reaction)
{
    if (reaction > 0)
        return std::max(reaction, fastestEyes);
    return fastestEyes + int(seed % unsigned(slowestEyes - fastestEyes + 1));
}

inline double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

}  // namespace steering
