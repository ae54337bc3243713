#pragma once

/// What all players know of how the ball answers to the board.
namespace steering {

constexpr int ticksPerSecond = 50;
constexpr double worldSecondsPerTick = 1.0 / 30.0;
constexpr double rollingGravity = 9.81 * 5.0 / 7.0;  // of a solid ball that does not slip
constexpr double climbingTilt = 0.48;  // nearly the board's limit: a ramp rises by 27 degrees

}  // namespace steering
