#pragma once

/// The numbers of the world that game, tools and tests reckon with, each in its one place. Lengths
/// are in cells of the board, times in seconds of the world.
namespace world {

constexpr float gravity = 9.81f;  // straight down

/// What a solid ball that does not slip feels of it along its way.
constexpr float rollingGravity = gravity * 5.0f / 7.0f;

/// A step of the world, one in each tick of the loop: 1/30.
constexpr float secondsPerTick = 0.033333335f;

constexpr float ballRadius = 0.3f;
constexpr double ballDensity = 1.0;
constexpr double ballMass =
    4.0 / 3.0 * 3.14159265358979 * ballRadius * ballRadius * ballRadius * ballDensity;

/// What a spring throws with for each unit of its strength, for one tick.
constexpr float springForce = 2.0f;

}  // namespace world
