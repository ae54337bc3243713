#include "StickCurve.h"

#include <algorithm>

namespace {

constexpr float deadZone = 0.12f;
constexpr float slopeAtRest = 0.5f;  // of the curve; it ends with the slope 2

}  // namespace

QVector2D curvedStick(const QVector2D& stick)
{
    const float length = stick.length();
    if (length <= deadZone)
        return {};
    const float way = std::min((length - deadZone) / (1.0f - deadZone), 1.0f);
    const float curved = way * (slopeAtRest + (1.0f - slopeAtRest) * way * way);
    return stick * (curved / length);
}

bool isDeflected(const QVector2D& stick)
{
    return stick.length() > deadZone;
}
