#include "level/LevelPixel.h"

namespace {

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
