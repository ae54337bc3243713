#include "level/LevelPixel.h"

#include <algorithm>

namespace {

constexpr float levelHeight = 0.5f;  // one level of the board, in world units

struct HueRange
{
    int first;
    int last;
    BlockKind kind;
};

// Inclusive, the first match counts. Red lies on both sides of the circle's seam.
constexpr HueRange hueRanges[] = {
    {80, 100, BlockKind::Standard},  {125, 145, BlockKind::Checkpoint},
    {260, 280, BlockKind::Button},   {215, 235, BlockKind::Ghost},
    {170, 190, BlockKind::Elevator}, {-10, 10, BlockKind::Trap},
    {350, 370, BlockKind::Trap},     {35, 55, BlockKind::Item},
    {305, 325, BlockKind::Portal},
};

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

int rounded(double number)
{
    return int(number + 0.5);
}

}  // namespace

LevelPixel LevelPixel::decode(QRgb argb)
{
    qreal hue = 0.0;
    qreal saturation = 0.0;
    qreal value = 0.0;
    qreal alpha = 0.0;
    QColor::fromRgba(argb).getHsvF(&hue, &saturation, &value, &alpha);
    return {rounded(hue * 360.0), rounded(saturation * 100.0), rounded(value * 100.0),
            rounded(alpha * 255.0)};
}

BlockKind blockKindOfHue(int hue)
{
    for (const HueRange& range : hueRanges) {
        if (hue >= range.first && hue <= range.last)
            return range.kind;
    }
    return BlockKind::None;
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
    const float high = float(band->baseLevel + step / 4 + 1) * levelHeight;
    return {true, base, high, step % 4};
}

int pixelStep(int offset)
{
    return 3 * int(std::max(offset, 0) / 3.0 + 0.5);
}
