#include "level/CornerHeights.h"

#include <algorithm>

CornerHeights CornerHeights::of(float lowHeight, float highHeight, int slope)
{
    const auto height = [=](int slopeA, int slopeB) {
        return slope == slopeA || slope == slopeB ? highHeight : lowHeight;
    };
    return {height(0, 3), height(0, 1), height(2, 3), height(1, 2)};
}

float CornerHeights::at(float u, float v) const
{
    const float front = leftFront + (rightFront - leftFront) * u;
    const float back = leftBack + (rightBack - leftBack) * u;
    return front + (back - front) * v;
}

CornerHeights CornerHeights::moved(float part, float lift) const
{
    return {leftFront * part + lift, rightFront * part + lift, leftBack * part + lift,
            rightBack * part + lift};
}

bool CornerHeights::isFlat() const
{
    return leftFront == rightFront && leftFront == leftBack && leftFront == rightBack;
}

float CornerHeights::highest() const
{
    return std::max({leftFront, rightFront, leftBack, rightBack});
}
