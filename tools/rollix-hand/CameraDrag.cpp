#include "CameraDrag.h"

#include "CameraSteps.h"
#include "PointerHand.h"

#include <algorithm>
#include <cmath>

using namespace cameraSteps;

namespace {

// The way on the desk that tilts the palm by 25 degrees takes the camera to the other side, and up
// by its height.
constexpr float turnPerPixel = 3.1415927f / pointerReach;
constexpr float risePerPixel = 30.0f / pointerReach;

/// A frame's step towards what is owed: none if it would be more than that.
float stepFor(float owed, float perUnit, float leastStep, float least, float most)
{
    if (std::fabs(owed) < leastStep)
        return 0.0f;
    return std::copysign(std::clamp(std::fabs(owed) / perUnit, least, most), owed);
}

float paid(float unit, float perUnit, float leastStep)
{
    const float step = unit * perUnit;
    return std::fabs(step) > leastStep ? step : 0.0f;
}

}  // namespace

void CameraDrag::drag(const QVector2D& pixels)
{
    turn += pixels.x() * turnPerPixel;
    rise += pixels.y() * risePerPixel;
}

void CameraDrag::forget()
{
    turn = 0.0f;
    rise = 0.0f;
}

float CameraDrag::yaw() const
{
    return stepFor(turn, turnPerYaw, leastTurn, leastYaw, farthestYaw);
}

float CameraDrag::lift() const
{
    return stepFor(rise, risePerLift, leastRise, leastLift, farthestLift);
}

void CameraDrag::pay(float yawDone, float liftDone)
{
    turn -= paid(yawDone, turnPerYaw, leastTurn);
    rise -= paid(liftDone, risePerLift, leastRise);
}
