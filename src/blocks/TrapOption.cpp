#include "blocks/TrapOption.h"

#include "level/LevelPixel.h"

TrapOption TrapOption::ofSaturation(int saturation)
{
    if (saturation >= 89)
        return {TrapKind::Mine, double(pixelStep(saturation - 90) / 3)};
    if (saturation >= 79)
        return {TrapKind::Spring, double(pixelStep(saturation - 80) + 5)};
    if (saturation >= 69)
        return {TrapKind::Trapdoor, double(pixelStep(saturation - 70) / 3)};
    if (saturation >= 59)
        return {TrapKind::None, 0.0};
    if (saturation >= 49)
        return {TrapKind::Well, double(pixelStep(saturation - 50) / 2 + 3)};
    return {TrapKind::Mine, 0.0};
}
