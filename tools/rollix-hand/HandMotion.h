#pragma once

#include "HandWish.h"
#include "PlayedHand.h"

#include <QVector3D>

class HandPlayer;

/// Moves the hands as living ones would from one frame to the next, towards what is wished for:
/// nothing jumps, and a hand comes level before it does anything that leaves the board to itself.
/// Its clock is the frames'.
class HandMotion
{
public:
    explicit HandMotion(int framesPerSecond);

    void setWish(const HandWish& newWish) { wish = newWish; }
    /// As soon as the palm is level, so that the board waits level in the menu that comes.
    void tap();

    /// Puts the player's hands where they are in the next frame.
    void step(HandPlayer& player);

    bool isHere() const { return here; }
    bool hasSecondHand() const { return secondHand; }
    /// What both hands do for the camera: 0 while there are not two.
    float yaw() const { return secondHand ? pose.y() : 0.0f; }  // radians
    float lift() const;                                         // mm

private:
    void come();
    void moveTowards(const QVector3D& wantedPose, const QVector3D& wantedPalm);
    bool isCalmFor(float seconds) const;

    int framesPerSecond;
    float share;  // of the way to go, in one frame
    HandWish wish;
    int tapsToCome = 0;

    bool here = false;
    bool secondHand = false;
    QVector3D pose;  // pitch, yaw and roll of the right hand, radians
    QVector3D palm;  // mm
    int calmFrames = 0;
    int handNumber = 1;  // a hand that comes back is a new one for the service
};
