#include "blocks/ItemOption.h"

#include "level/LevelPixel.h"

namespace {

constexpr int coinsOfPiece = 10;

/// One to four pieces.
int pieces(int offset)
{
    return pixelStep(offset) / 3 + 1;
}

ItemOption coins(int count)
{
    return {ItemKind::Coin, count, double(count * coinsOfPiece)};
}

ItemOption hearts(int count)
{
    return {ItemKind::Heart, count, double(count)};
}

}  // namespace

ItemOption ItemOption::ofSaturation(int saturation)
{
    if (saturation >= 89)
        return coins(pieces(saturation - 90));
    if (saturation >= 79)
        return coins(-pieces(saturation - 80));
    if (saturation >= 69)
        return hearts(pieces(saturation - 70));
    if (saturation >= 59)
        return hearts(-pieces(saturation - 60));
    if (saturation >= 49)
        return {ItemKind::Weight, 0, double(pixelStep(saturation - 50) + 1)};
    return coins(1);
}
