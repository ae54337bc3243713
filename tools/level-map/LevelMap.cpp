#include "LevelMap.h"

#include "base/WorldNumbers.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <algorithm>
#include <cmath>
#include <deque>

namespace {

constexpr double edgeTolerance = 0.02;
constexpr int steps[4][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};

constexpr double springMargin = 0.3;  // how much higher than the edge the ball has to come
constexpr int longestFlight = 6;      // cells that are crossed without gravity

double springRise(const LevelPixel& pixel)
{
    const TrapOption trap = TrapOption::ofSaturation(pixel.saturation);
    if (blockKindOfHue(pixel.hue) != BlockKind::Trap || trap.kind != TrapKind::Spring)
        return 0.0;
    const double speed =
        world::springForce * trap.parameter * world::secondsPerTick / world::ballMass;
    return speed * speed / (2.0 * world::gravity) - springMargin;
}

}  // namespace

LevelMap::LevelMap(const QImage& picture) : columns(picture.width()), rows(picture.height())
{
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            pixels.push_back(LevelPixel::decode(picture.pixel(column, row)));
}

const LevelPixel& LevelMap::pixel(const CellPosition& cell) const
{
    return pixels[std::size_t(cell.row * columns + cell.column)];
}

bool LevelMap::hasFloor(const CellPosition& cell) const
{
    return contains(cell) && blockKindOfHue(pixel(cell).hue) != BlockKind::None &&
           BlockShape::ofValue(pixel(cell).value).hasBody;
}

float LevelMap::x(const CellPosition& cell) const
{
    return (float(cell.column) - float(columns) * 0.5f) + 0.5f;
}

float LevelMap::y(const CellPosition& cell) const
{
    return (float(rows) * 0.5f - float(cell.row)) - 0.5f;
}

CellPosition LevelMap::cellAt(double x, double y) const
{
    return {int(std::floor(x + columns * 0.5)), int(std::floor(rows * 0.5 - y))};
}

bool LevelMap::contains(const CellPosition& cell) const
{
    return cell.column >= 0 && cell.column < columns && cell.row >= 0 && cell.row < rows;
}

std::vector<CellPosition> LevelMap::cellsWhere(const PixelTest& is) const
{
    std::vector<CellPosition> found;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column)
            if (is(pixel({column, row})))
                found.push_back({column, row});
    }
    return found;
}

double LevelMap::edgeHeight(const CellPosition& cell, int towardsColumn, int towardsRow) const
{
    const BlockShape shape = BlockShape::ofValue(pixel(cell).value);
    if (shape.slope == flatSlope)
        return shape.highHeight;
    const CellSide& high = highSides[shape.slope];
    const int along = high.x * towardsColumn - high.y * towardsRow;  // rows count downward
    if (along == 0)
        return -1.0;  // the side of a ramp: nothing rolls over it
    return along > 0 ? shape.highHeight : shape.lowHeight;
}

std::vector<double> LevelMap::shifts(const CellPosition& cell) const
{
    if (!is(cell, BlockKind::Elevator))
        return {0.0};
    return {0.0, ElevatorOption::ofSaturation(pixel(cell).saturation).travel};
}

bool LevelMap::rolls(const CellPosition& from, const CellPosition& to, double drop) const
{
    if (!hasFloor(from) || !hasFloor(to))
        return false;
    for (const double fromShift : shifts(from)) {
        for (const double toShift : shifts(to))
            if (rollsAt(from, fromShift, to, toShift, drop))
                return true;
    }
    return false;
}

bool LevelMap::rollsAt(const CellPosition& from, double fromShift, const CellPosition& to,
                       double toShift, double drop) const
{
    if (is(from, BlockKind::Portal))
        return false;
    if (is(to, BlockKind::Portal) && !hasMouthOnTop(to))
        return entersPortal(from, to);
    const int column = to.column - from.column;
    const int row = to.row - from.row;
    const double leave = edgeHeight(from, column, row);
    const double enter = edgeHeight(to, -column, -row);
    if (leave < 0.0 || enter < 0.0)
        return false;
    const double rise = enter + toShift - leave - fromShift;
    return rise <= springRise(pixel(from)) + edgeTolerance && rise >= -drop - edgeTolerance;
}

bool LevelMap::is(const CellPosition& cell, BlockKind kind) const
{
    return contains(cell) && blockKindOfHue(pixel(cell).hue) == kind;
}

bool LevelMap::isDanger(const CellPosition& cell) const
{
    const int saturation = pixel(cell).saturation;
    if (is(cell, BlockKind::Item))
        return ItemOption::ofSaturation(saturation).count < 0;
    if (!is(cell, BlockKind::Trap))
        return false;
    const TrapOption trap = TrapOption::ofSaturation(saturation);
    return trap.kind == TrapKind::Mine || trap.kind == TrapKind::Well ||
           (trap.kind == TrapKind::Trapdoor && trap.parameter == 0.0);
}

bool LevelMap::isNextToDanger(const CellPosition& cell) const
{
    return std::any_of(
        std::begin(steps), std::end(steps),
        [&](const auto& step) {
            const CellPosition next{cell.column + step[0], cell.row + step[1]};
            return contains(next) && isDanger(next);
        });
}

bool LevelMap::isSpring(const CellPosition& cell) const
{
    return contains(cell) && springRise(pixel(cell)) > 0.0;
}

bool LevelMap::isTrapdoor(const CellPosition& cell) const
{
    return is(cell, BlockKind::Trap) &&
           TrapOption::ofSaturation(pixel(cell).saturation).kind == TrapKind::Trapdoor;
}

bool LevelMap::isWeight(const CellPosition& cell) const
{
    return is(cell, BlockKind::Item) &&
           ItemOption::ofSaturation(pixel(cell).saturation).kind == ItemKind::Weight;
}

bool LevelMap::hurries(const CellPosition& from, const CellPosition& to) const
{
    const auto carriesOn = [this](const CellPosition& cell) {
        return isSpring(cell) || isTrapdoor(cell) || isWeight(cell);
    };
    return carriesOn(from) || carriesOn(to) || is(to, BlockKind::Portal);
}

bool LevelMap::hasMouthOnTop(const CellPosition& portal) const
{
    return PortalOption::ofSaturation(pixel(portal).saturation).face == PortalFace::Top;
}

CellPosition LevelMap::beforeMouth(const CellPosition& portal) const
{
    switch (PortalOption::ofSaturation(pixel(portal).saturation).face) {
    case PortalFace::Right:
        return {portal.column + 1, portal.row};
    case PortalFace::Left:
        return {portal.column - 1, portal.row};
    case PortalFace::Back:
        return {portal.column, portal.row - 1};
    case PortalFace::Front:
        return {portal.column, portal.row + 1};
    case PortalFace::Top:
        break;
    }
    return {-1, -1};
}

bool LevelMap::entersPortal(const CellPosition& from, const CellPosition& to) const
{
    return hasFloor(from) && beforeMouth(to) == from;
}

std::vector<CellPosition> LevelMap::crossings(const CellPosition& portal) const
{
    std::vector<CellPosition> ends;
    for (const CellPosition& partner : cellsWhere([&](const LevelPixel& other) {
             return blockKindOfHue(other.hue) == BlockKind::Portal &&
                    other.alpha == pixel(portal).alpha;
         }))
        if (!(partner == portal) && hasFloor(beforeMouth(partner)))
            ends.push_back(beforeMouth(partner));
    return ends;
}

std::vector<CellPosition> LevelMap::flights(const CellPosition& weight) const
{
    std::vector<CellPosition> ends;
    for (const auto& step : steps) {
        CellPosition end{weight.column + step[0], weight.row + step[1]};
        int length = 1;
        for (; contains(end) && !hasFloor(end) && length <= longestFlight; ++length)
            end = {end.column + step[0], end.row + step[1]};
        if (length > 1 && hasFloor(end) &&
            edgeHeight(end, -step[0], -step[1]) <= edgeHeight(weight, step[0], step[1]))
            ends.push_back(end);
    }
    return ends;
}

/// Where the ball can be next without having rolled there.
std::vector<CellPosition> LevelMap::leaps(const CellPosition& from) const
{
    if (is(from, BlockKind::Portal))
        return crossings(from);
    if (isWeight(from))
        return flights(from);
    return {};
}

std::vector<CellPosition> LevelMap::next(const CellPosition& from, double drop) const
{
    std::vector<CellPosition> reachable = leaps(from);
    for (const auto& step : steps) {
        const CellPosition beside{from.column + step[0], from.row + step[1]};
        if (contains(beside) && rolls(from, beside, drop))
            reachable.push_back(beside);
    }
    return reachable;
}

bool LevelMap::climbs(const CellPosition& from, const CellPosition& to) const
{
    const int column = std::clamp(to.column - from.column, -1, 1);
    const int row = std::clamp(to.row - from.row, -1, 1);
    const auto rises = [&](const CellPosition& cell) {
        return hasFloor(cell) &&
               edgeHeight(cell, column, row) > edgeHeight(cell, -column, -row) + edgeTolerance;
    };
    return rises(from) || rises(to);
}

std::vector<CellPosition> LevelMap::way(const CellPosition& from, const CellPosition& to,
                                        const StepFilter& allowed, double drop) const
{
    if (!contains(from) || !contains(to))
        return {};
    const auto index = [this](const CellPosition& cell) {
        return std::size_t(cell.row * columns + cell.column);
    };
    std::vector<int> cameFrom(pixels.size(), -1);
    std::deque<CellPosition> open{from};
    cameFrom[index(from)] = int(index(from));
    while (!open.empty() && cameFrom[index(to)] < 0) {
        const CellPosition cell = open.front();
        open.pop_front();
        for (const CellPosition& reached : next(cell, drop)) {
            if (cameFrom[index(reached)] >= 0 || !allowed(cell, reached))
                continue;
            cameFrom[index(reached)] = int(index(cell));
            open.push_back(reached);
        }
    }
    if (cameFrom[index(to)] < 0)
        return {};
    std::vector<CellPosition> way{to};
    while (!(way.back() == from)) {
        const int before = cameFrom[index(way.back())];
        way.push_back({before % columns, before / columns});
    }
    std::reverse(way.begin(), way.end());
    return way;
}
