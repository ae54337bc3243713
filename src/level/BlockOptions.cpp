#include "level/BlockOptions.h"

#include <algorithm>

namespace {

constexpr int coinsOfFlag = 10;
constexpr int coinsOfGoal = 50;
constexpr int coinsOfPiece = 10;

// Long enough that one touch, in which the ball bounces, fires a toggle button only once.
constexpr float toggleCoolDown = 1.0f;

constexpr int firstSilentStep = 17;  // from here on in its band a ghost has no rhythm
constexpr double unitsPerStep = 0.5;

int steps(int offset)
{
    return pixelStep(offset) / 3;
}

CheckpointOption flag(bool required, int offset)
{
    return {CheckpointType::Checkpoint, required, (steps(offset) + 1) * coinsOfFlag};
}

ItemOption coins(int count)
{
    return {ItemKind::Coin, count, double(count * coinsOfPiece)};
}

ItemOption hearts(int count)
{
    return {ItemKind::Heart, count, double(count)};
}

PortalOption mouth(PortalFace face, int offset)
{
    return {face, float(pixelStep(offset)) / 6.0f};
}

}  // namespace

int pixelStep(int offset)
{
    return 3 * int(std::max(offset, 0) / 3.0 + 0.5);
}

CheckpointOption CheckpointOption::ofSaturation(int saturation)
{
    if (saturation >= 91)
        return {CheckpointType::Start, false, coinsOfFlag};
    if (saturation >= 79)
        return flag(true, saturation - 80);
    if (saturation >= 69)
        return flag(false, saturation - 70);
    if (saturation >= 49)
        return {CheckpointType::Goal, false, (steps(saturation - 50) + 1) * coinsOfGoal};
    return flag(false, 0);
}

ButtonOption ButtonOption::ofSaturation(int saturation)
{
    if (saturation >= 91)
        return {ButtonMode::OneShot, 0.0f};
    if (saturation >= 59)
        return {ButtonMode::Timed, float(steps(saturation - 60) + 1)};
    if (saturation >= 49)
        return {ButtonMode::Toggle, toggleCoolDown};
    return {ButtonMode::OneShot, 0.0f};
}

GhostOption GhostOption::ofSaturation(int saturation)
{
    const bool opaque = saturation >= 79;
    const int offset = saturation - (opaque ? 80 : 50);
    if (offset >= firstSilentStep)
        return {opaque, 0.0};
    return {opaque, (steps(offset) + 1) * unitsPerStep};
}

ElevatorOption ElevatorOption::ofSaturation(int saturation)
{
    const bool automatic = saturation < 74;
    const int step = steps(saturation - (automatic ? 50 : 75));
    // Three and four stand for one step down and one up: there is none for no way at all.
    return {automatic, unitsPerStep * (step > 3 ? step - 3 : step - 4)};
}

TrapOption TrapOption::ofSaturation(int saturation)
{
    if (saturation >= 89)
        return {TrapKind::Mine, double(steps(saturation - 90))};
    if (saturation >= 79)
        return {TrapKind::Spring, double(pixelStep(saturation - 80) + 5)};
    if (saturation >= 69)
        return {TrapKind::Trapdoor, double(steps(saturation - 70))};
    if (saturation >= 59)
        return {TrapKind::None, 0.0};
    if (saturation >= 49) {
        const int strength = pixelStep(saturation - 50) / 2 + 3;
        return {TrapKind::Well, double(strength)};
    }
    return {TrapKind::Mine, 0.0};
}

ItemOption ItemOption::ofSaturation(int saturation)
{
    if (saturation >= 89)
        return coins(steps(saturation - 90) + 1);
    if (saturation >= 79)
        return coins(-steps(saturation - 80) - 1);
    if (saturation >= 69)
        return hearts(steps(saturation - 70) + 1);
    if (saturation >= 59)
        return hearts(-steps(saturation - 60) - 1);
    if (saturation >= 49)
        return {ItemKind::Weight, 0, double(pixelStep(saturation - 50) + 1)};
    return coins(1);
}

PortalOption PortalOption::ofSaturation(int saturation)
{
    if (saturation >= 89)
        return mouth(PortalFace::Right, saturation - 90);
    if (saturation >= 79)
        return mouth(PortalFace::Left, saturation - 80);
    if (saturation >= 69)
        return mouth(PortalFace::Back, saturation - 70);
    if (saturation >= 59)
        return mouth(PortalFace::Front, saturation - 60);
    if (saturation >= 49)
        return mouth(PortalFace::Top, saturation - 50);
    return {PortalFace::Right, 0.0f};
}
