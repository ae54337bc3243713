#include "level/LevelPixel.h"

namespace {

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
    for (const HueRange& range : hueRanges)
        if (hue >= range.first && hue <= range.last)
            return range.kind;
    return BlockKind::None;
}

bool hasOwnBody(BlockKind kind)
{
    return kind != BlockKind::None && kind != BlockKind::Standard;
}
