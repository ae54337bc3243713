#pragma once

#include <QVector2D>

/// What a player wants the hands to do, whatever it is told with.
struct HandWish
{
    bool present = false;
    /// Radians by which the right edge (x) and the far edge (y) of the palm are down.
    QVector2D tilt;
    /// The second hand comes too, and the camera follows: the hands point aside by `yaw` radians,
    /// above 0 to the right, and are `lift` mm over their height of rest.
    bool secondHand = false;
    float yaw = 0.0f;
    float lift = 0.0f;
};

/// 35 degrees: a little over the board's own limit, which the hand has to pass by the game's dead
/// zone to reach it.
constexpr float farthestTilt = 0.61f;
