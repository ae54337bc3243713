#include "BlockWords.h"

#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <cmath>
#include <sstream>

namespace {

template <typename... Parts>
std::string words(const Parts&... parts)
{
    std::ostringstream text;
    (text << ... << parts);
    return text.str();
}

std::string seconds(double count)
{
    return words(count, count == 1.0 ? " second" : " seconds");
}

std::string checkpointInWords(int saturation)
{
    const auto option = CheckpointOption::ofSaturation(saturation);
    if (option.type == CheckpointType::Start)
        return "start";
    if (option.type == CheckpointType::Goal)
        return words("goal, ", option.coins, " coins");
    return words("flag that ", option.required ? "must" : "may", " be passed, ", option.coins,
                 " coins");
}

std::string buttonInWords(int saturation)
{
    const auto behaviour = ButtonOption::ofSaturation(saturation);
    if (behaviour.mode == ButtonMode::OneShot)
        return "button, works once";
    if (behaviour.mode == ButtonMode::Toggle)
        return "button, works at every touch";
    return "button, comes back after " + seconds(behaviour.coolDown);
}

std::string ghostInWords(int saturation)
{
    const auto rhythm = GhostOption::ofSaturation(saturation);
    const std::string start =
        rhythm.initiallyOpaque ? "ghost, starts solid, " : "ghost, starts as air, ";
    return start + (rhythm.period > 0.0 ? "changes every " + seconds(rhythm.period)
                                        : std::string("waits for buttons"));
}

std::string elevatorInWords(int saturation)
{
    const auto way = ElevatorOption::ofSaturation(saturation);
    return words("elevator, ", std::abs(way.travel), way.travel > 0.0 ? " up" : " down",
                 way.automatic ? ", moves by itself" : ", waits for buttons");
}

std::string trapInWords(int saturation)
{
    const TrapOption trap = TrapOption::ofSaturation(saturation);
    switch (trap.kind) {
    case TrapKind::Mine:
        return trap.parameter > 0.0 ? "mine, fuse of " + seconds(trap.parameter) : "mine, no fuse";
    case TrapKind::Spring:
        return words("spring of strength ", trap.parameter);
    case TrapKind::Trapdoor:
        return trap.parameter > 0.0 ? "trapdoor, opens after " + seconds(trap.parameter)
                                    : "trapdoor, opens at once";
    case TrapKind::Well:
        return words("gravity well, pulls in a cube of ", trap.parameter);
    case TrapKind::None:
        break;
    }
    return "trap that does nothing";
}

std::string itemInWords(int saturation)
{
    const ItemOption item = ItemOption::ofSaturation(saturation);
    const auto count = [&](const char* what) {
        return words(item.amount > 0.0 ? "gives " : "takes ", std::abs(item.amount), what);
    };
    if (item.kind == ItemKind::Coin)
        return "item, " + count(" coins");
    if (item.kind == ItemKind::Heart)
        return "item, " + count(std::abs(item.amount) == 1.0 ? " life" : " lives");
    return "weight, no gravity for " + seconds(item.amount);
}

std::string portalInWords(int saturation)
{
    const PortalOption portal = PortalOption::ofSaturation(saturation);
    const char* const sides[] = {"to the right", "to the left", "to the top of the picture",
                                 "to the bottom of the picture", "upward"};
    return words("portal, mouth ", sides[int(portal.face)], ", pull ", portal.strength);
}

}  // namespace

std::string blockInWords(const LevelPixel& pixel)
{
    switch (blockKindOfHue(pixel.hue)) {
    case BlockKind::None:
        return "nothing";
    case BlockKind::Standard:
        return "floor or wall";
    case BlockKind::Checkpoint:
        return checkpointInWords(pixel.saturation);
    case BlockKind::Button:
        return buttonInWords(pixel.saturation);
    case BlockKind::Ghost:
        return ghostInWords(pixel.saturation);
    case BlockKind::Elevator:
        return elevatorInWords(pixel.saturation);
    case BlockKind::Trap:
        return trapInWords(pixel.saturation);
    case BlockKind::Item:
        return itemInWords(pixel.saturation);
    case BlockKind::Portal:
        return portalInWords(pixel.saturation);
    }
    return "nothing";
}

std::string kindInWords(BlockKind kind)
{
    switch (kind) {
    case BlockKind::None:
        break;
    case BlockKind::Standard:
        return "floors and walls";
    case BlockKind::Checkpoint:
        return "flags";
    case BlockKind::Button:
        return "buttons";
    case BlockKind::Ghost:
        return "ghosts";
    case BlockKind::Elevator:
        return "elevators";
    case BlockKind::Trap:
        return "traps";
    case BlockKind::Item:
        return "items";
    case BlockKind::Portal:
        return "portals";
    }
    return "nothing";
}

std::string shapeInWords(const LevelPixel& pixel)
{
    const BlockShape shape = BlockShape::ofValue(pixel.value);
    if (!shape.hasBody)
        return "no body";
    if (shape.slope == flatSlope)
        return words(shape.highHeight, " high");
    const char* const sides[] = {"to the bottom of the picture", "to the right",
                                 "to the top of the picture", "to the left"};
    return words("ramp from ", shape.lowHeight, " to ", shape.highHeight, ", rises ",
                 sides[shape.slope]);
}
