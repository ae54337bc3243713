#pragma once

#include "CameraDrag.h"
#include "HandWish.h"

#include <QVector2D>

/// 25 degrees of tilt, in pixels: some 12 cm of desk with a mouse that counts 760 to the inch.
constexpr float pointerReach = 3600.0f;

/// The hand that a captured pointer plays: it tilts as the pointer goes, and stays where that is
/// left. While the second hand is up, the same motion drags the camera.
class PointerHand
{
public:
    /// A hand comes, level.
    void take();
    void letGo();
    bool isTaken() const { return taken; }

    /// Pixels, to the right and up.
    void move(const QVector2D& pixels);
    /// The palm goes level and stays there until the pointer moves on.
    void level();
    void raiseSecondHand(bool up);

    HandWish wish() const;
    /// What both hands point aside (radians) and are lifted (mm) in the frame that is sent.
    void sent(float yaw, float lift);

private:
    bool taken = false;
    bool secondHand = false;
    QVector2D tilt;  // radians
    CameraDrag camera;
};
