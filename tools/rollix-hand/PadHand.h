#pragma once

#include "HandWish.h"

#include <QVector2D>

/// A gamepad as it is held at a moment; sticks from -1 to 1, up and right above 0.
struct PadState
{
    QVector2D leftStick;
    QVector2D rightStick;
    bool secondHand = false;
    bool otherButton = false;
};

/// Whether anything of it is held.
bool isTouched(const PadState& pad);
/// Whether a hand was at work between the two, and not only a stick that trembles.
bool isMoved(const PadState& before, const PadState& now);

/// The hand that a gamepad plays. It comes with the first touch, and goes some seconds after the
/// last, so that a pad which lies about does not keep the arrow keys from the board.
class PadHand
{
public:
    explicit PadHand(int framesPerSecond);

    /// The next frame's.
    HandWish next(const PadState& pad);
    /// Nobody holds it any more.
    void drop();

private:
    int idleLimit;  // frames
    int idle;
};
