#include "level/BlockShape.h"

#include <algorithm>

namespace {

constexpr float levelHeight = 0.5f;  // one level of the board, in world units

/// From `flatValue` on: first the flat block of this level (none for level 0), then its ramps, four
/// directions for each higher level.
struct ValueBand
{
    int flatValue;
    int firstRampValue;
    int baseLevel;
};

constexpr ValueBand valueBands[] = {
    {100, 101, 4}, {95, 96, 3}, {86, 87, 2}, {73, 74, 1}, {56, 57, 0},
};

}  // namespace

CornerHeights CornerHeights::of(float lowHeight, float highHeight, int slope)
{
    const auto heightAt = [=](int x, int y) {
        if (slope == flatSlope)
            return lowHeight;
        const CellSide& high = highSides[slope];
        return x * high.x + y * high.y > 0 ? highHeight : lowHeight;
    };
    return {heightAt(-1, -1), heightAt(1, -1), heightAt(-1, 1), heightAt(1, 1)};
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

BlockShape BlockShape::ofValue(int value)
{
    if (value < firstBodyValue)
        return {false, 0.0f, 0.0f, 0};
    const ValueBand* band = valueBands;
    while (value < band->flatValue)
        ++band;
    const float base = float(band->baseLevel) * levelHeight;
    if (value < band->firstRampValue)
        return {true, base, base, flatSlope};
    const int step = value - band->firstRampValue;
    const int highLevel = band->baseLevel + step / 4 + 1;
    return {true, base, float(highLevel) * levelHeight, step % 4};
}
