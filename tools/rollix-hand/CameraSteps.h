#pragma once

/// What the game's camera makes of two hands. Each frame is a step of its own, and a step that is
/// too small is none.
namespace cameraSteps {

constexpr float turnPerYaw = 2.0f / 60.0f;    // radians a frame, a radian of both hands' yaw
constexpr float risePerLift = 2.0f / 300.0f;  // world units a frame, a mm of both palms' lift
constexpr float leastTurn = 0.01f;            // radians
constexpr float leastRise = 0.2f;             // world units

// Hands that are sure to be over these limits, and as far as they go.
constexpr float leastYaw = 0.33f;  // radians
constexpr float farthestYaw = 0.7f;
constexpr float leastLift = 33.0f;  // mm
constexpr float farthestLift = 60.0f;

}  // namespace cameraSteps
