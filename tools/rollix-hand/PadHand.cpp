#include "PadHand.h"

#include "CameraSteps.h"
#include "StickCurve.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int secondsToIdle = 10;
constexpr float tremble = 0.05f;    // of a stick that nobody moves
constexpr float leastRaise = 0.5f;  // of a stick that turns the camera too: few push it straight

/// A share of the way from the least that the camera heeds to the most.
float between(float least, float most, float share)
{
    return share == 0.0f ? 0.0f : std::copysign(least + (most - least) * std::fabs(share), share);
}

}  // namespace

bool isTouched(const PadState& pad)
{
    return pad.secondHand || pad.otherButton || isDeflected(pad.leftStick) ||
           isDeflected(pad.rightStick);
}

bool isMoved(const PadState& before, const PadState& now)
{
    return before.secondHand != now.secondHand || before.otherButton != now.otherButton ||
           before.leftStick.distanceToPoint(now.leftStick) > tremble ||
           before.rightStick.distanceToPoint(now.rightStick) > tremble;
}

PadHand::PadHand(int framesPerSecond) : idleLimit(secondsToIdle * framesPerSecond), idle(idleLimit)
{
}

HandWish PadHand::next(const PadState& pad)
{
    idle = isTouched(pad) ? 0 : std::min(idle + 1, idleLimit);

    HandWish wish;
    wish.present = idle < idleLimit;
    wish.secondHand = pad.secondHand || isDeflected(pad.rightStick);
    if (!wish.secondHand) {
        wish.tilt = farthestTilt * curvedStick(pad.leftStick);
        return wish;
    }
    // While a button holds the second hand up, either stick will do.
    const QVector2D stick =
        curvedStick(isDeflected(pad.rightStick) ? pad.rightStick : pad.leftStick);
    wish.yaw = between(cameraSteps::leastYaw, cameraSteps::farthestYaw, stick.x());
    if (std::fabs(stick.y()) > leastRaise)
        wish.lift = between(cameraSteps::leastLift, cameraSteps::farthestLift, stick.y());
    return wish;
}

void PadHand::drop()
{
    idle = idleLimit;
}
