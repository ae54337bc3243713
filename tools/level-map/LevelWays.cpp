#include "LevelWays.h"

#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <queue>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace {

constexpr double tolerance = 0.02;   // of heights, in units
constexpr double throwMargin = 0.3;  // how much higher than an edge a thrown ball has to come

// Straight cells that bring the ball to the speed for a hole of one cell, and to the lesser one for
// a hole whose far side is half a unit lower.
constexpr int longRunUp = 5;
constexpr int shortRunUp = 3;
constexpr double lowerSide = 0.5;

// Under the edge of a portal, the part of its side that feels a ball on the floor before it.
constexpr double mouthTop = 0.1;
constexpr double mouthReach = 1.4;

constexpr double cellsFloatedASecond = 2.0;

constexpr int featEffort = 1000;  // cells that are rolled rather than to jump, be thrown or float

constexpr CellPosition ways[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};

/// What throws the ball: how high, and over how many cells without floor.
struct Thrower
{
    double strength;  // of a spring, or the way of an elevator
    double height;
    int holes;
};

constexpr Thrower springs[] = {{5.0, 0.25, 0}, {8.0, 0.8, 1}, {11.0, 1.65, 2}, {14.0, 2.8, 3}};
constexpr Thrower elevators[] = {
    {0.5, 0.2, 0}, {1.0, 1.25, 1}, {1.5, 3.0, 3}, {2.0, 5.5, 4}, {2.5, 8.7, 5}};

template <std::size_t size>
const Thrower& throwerOf(const Thrower (&throwers)[size], double strength)
{
    const Thrower* thrower = std::begin(throwers);
    while (thrower + 1 != std::end(throwers) && strength > thrower->strength + tolerance)
        ++thrower;
    return *thrower;
}

CellPosition beyond(const CellPosition& cell, const CellPosition& way, int steps = 1)
{
    return {cell.column + steps * way.column, cell.row + steps * way.row};
}

CellPosition opposite(const CellPosition& way)
{
    return {-way.column, -way.row};
}

}  // namespace

LevelWays::LevelWays(const LevelMap& levelMap, const CellPosition& start,
                     std::vector<CellPosition> closedCells)
    : map(levelMap), closed(std::move(closedCells))
{
    for (const CellPosition& cell : map.cellsWhere([](const LevelPixel& pixel) {
             return blockKindOfHue(pixel.hue) == BlockKind::Portal;
         }))
        if (map.hasFloor(cell))
            portals[map.pixel(cell).alpha].push_back(cell);
    openGroups(start);
}

/// Floods the level again as long as what the ball comes to are buttons of further groups.
void LevelWays::openGroups(const CellPosition& start)
{
    const std::vector<CellPosition> all = map.cellsWhere(
        [](const LevelPixel& pixel) { return blockKindOfHue(pixel.hue) == BlockKind::Button; });
    std::size_t before = 0;
    do {
        before = buttons.size();
        fromStart = flood(start);
        for (const CellPosition& button : all)
            if (has(fromStart, button))
                buttons.emplace(map.pixel(button).alpha, button);
    } while (buttons.size() > before);
}

int LevelWays::indexOf(const Place& place) const
{
    return 2 * (place.cell.row * map.width() + place.cell.column) + (place.inside ? 1 : 0);
}

LevelWays::Place LevelWays::placeAt(int index) const
{
    return {{index / 2 % map.width(), index / 2 / map.width()}, index % 2 == 1};
}

bool LevelWays::has(const Flood& flood, const CellPosition& cell) const
{
    return flood[std::size_t(indexOf({cell, false}))].from >= 0 ||
           flood[std::size_t(indexOf({cell, true}))].from >= 0;
}

bool LevelWays::reaches(const CellPosition& cell) const
{
    return has(fromStart, cell);
}

/// The easiest ways come first: a feat is taken where there is no way round of so many cells.
LevelWays::Flood LevelWays::flood(const CellPosition& from) const
{
    using Reachable = std::pair<int, int>;  // effort, index of the place
    Flood steps(std::size_t(2 * map.width() * map.height()), Step{-1, Move::Roll});
    if (!map.contains(from))
        return steps;
    std::vector<int> efforts(steps.size(), std::numeric_limits<int>::max());
    std::priority_queue<Reachable, std::vector<Reachable>, std::greater<>> open;
    const auto enter = [&](int place, const Step& step, int effort) {
        if (effort >= efforts[std::size_t(place)])
            return;
        efforts[std::size_t(place)] = effort;
        steps[std::size_t(place)] = step;
        open.emplace(effort, place);
    };
    const int begin = indexOf({from, false});
    enter(begin, {begin, Move::Roll}, 0);
    while (!open.empty()) {
        const int effort = open.top().first;
        const int here = open.top().second;
        open.pop();
        if (effort > efforts[std::size_t(here)])
            continue;
        spread(placeAt(here), [&](const Place& place, Move by) {
            const bool isFeat = by != Move::Roll && by != Move::Portal;
            enter(indexOf(place), {here, by}, effort + (isFeat ? featEffort : 1));
        });
    }
    return steps;
}

std::vector<Stride> LevelWays::way(const CellPosition& from, const CellPosition& to) const
{
    const Flood steps = flood(from);
    if (!map.contains(to) || !has(steps, to))
        return {};
    int at = indexOf({to, false});
    if (steps[std::size_t(at)].from < 0)
        at = indexOf({to, true});
    std::vector<Stride> way;
    for (; steps[std::size_t(at)].from != at; at = steps[std::size_t(at)].from)
        way.push_back({placeAt(at).cell, steps[std::size_t(at)].by});
    way.push_back({from, Move::Roll});
    std::reverse(way.begin(), way.end());
    return way;
}

std::vector<bool> LevelWays::reachedFrom(const CellPosition& from,
                                         const std::vector<CellPosition>& cells) const
{
    const Flood steps = flood(from);
    std::vector<bool> reached;
    reached.reserve(cells.size());
    for (const CellPosition& cell : cells)
        reached.push_back(has(steps, cell));
    return reached;
}

void LevelWays::spread(const Place& place, const Reached& reached) const
{
    if (place.inside) {
        cross(place.cell, reached);
        return;
    }
    const CellPosition& cell = place.cell;
    const int saturation = map.pixel(cell).saturation;
    for (const CellPosition& way : ways) {
        const Heights heights = heightsWhereLeft(cell, way);
        for (const double height : heights)
            roll(cell, way, height, reached);
        jump(cell, way, heights.front(), reached);
        const double highest = *std::max_element(heights.begin(), heights.end());
        const auto isThrownBy = [&](const Thrower& thrower) {
            fly(cell, way, highest + std::max(0.0, thrower.height - throwMargin), thrower.holes,
                Move::Throw, reached);
        };
        if (map.isSpring(cell))
            isThrownBy(throwerOf(springs, TrapOption::ofSaturation(saturation).parameter));
        if (map.is(cell, BlockKind::Elevator) && isWorked(cell))
            isThrownBy(
                throwerOf(elevators, std::abs(ElevatorOption::ofSaturation(saturation).travel)));
        if (map.isWeight(cell))
            fly(cell, way, highest,
                int(ItemOption::ofSaturation(saturation).amount * cellsFloatedASecond), Move::Float,
                reached);
    }
}

void LevelWays::roll(const CellPosition& from, const CellPosition& way, double height,
                     const Reached& reached) const
{
    const CellPosition next = beyond(from, way);
    if (!carries(next))
        return;
    if (entersMouth(from, height, next))
        reached({next, true}, Move::Roll);
    for (const double edge : heightsWhereEntered(next, way))
        if (edge <= height + tolerance)
            land(next, Move::Roll, reached);
}

void LevelWays::jump(const CellPosition& from, const CellPosition& way, double height,
                     const Reached& reached) const
{
    const CellPosition hole = beyond(from, way);
    const CellPosition target = beyond(from, way, 2);
    if (!isLowerThan(hole, height - lowerSide) || !carries(target))
        return;
    const int run = runUp(from, way);
    const double highest = run >= longRunUp ? height : height - lowerSide;
    for (const double edge : heightsWhereEntered(target, way))
        if (run >= shortRunUp && edge <= highest + tolerance)
            land(target, Move::Jump, reached);
}

void LevelWays::fly(const CellPosition& from, const CellPosition& way, double height, int holes,
                    Move by, const Reached& reached) const
{
    for (int distance = 1; distance <= holes + 1; ++distance) {
        const CellPosition cell = beyond(from, way, distance);
        if (carries(cell)) {
            for (const double edge : heightsWhereEntered(cell, way))
                if (edge <= height + tolerance)
                    land(cell, by, reached);
        }
        if (!isLowerThan(cell, height))
            return;
    }
}

void LevelWays::cross(const CellPosition& portal, const Reached& reached) const
{
    for (const CellPosition& partner : portals.at(map.pixel(portal).alpha)) {
        if (partner == portal)
            continue;
        const double top = BlockShape::ofValue(map.pixel(partner).value).highHeight;
        for (const CellPosition& way : ways) {
            const CellPosition exit = beyond(partner, way);
            const bool fromTop = map.hasMouthOnTop(partner);
            if (!carries(exit) || !(fromTop || exit == map.beforeMouth(partner)))
                continue;
            for (const double edge : heightsWhereEntered(exit, way))
                if (edge <= (fromTop ? top + tolerance : top - mouthTop))
                    land(exit, Move::Portal, reached);
        }
    }
}

void LevelWays::land(const CellPosition& cell, Move by, const Reached& reached) const
{
    const bool drawsIn = map.is(cell, BlockKind::Portal) && map.hasMouthOnTop(cell);
    reached({cell, drawsIn}, by);
}

bool LevelWays::isClosed(const CellPosition& cell) const
{
    return std::find(closed.begin(), closed.end(), cell) != closed.end();
}

/// Whether it moves or changes: by itself, or by a button in reach.
bool LevelWays::isWorked(const CellPosition& cell) const
{
    const LevelPixel& pixel = map.pixel(cell);
    if (buttons.count(pixel.alpha))
        return true;
    if (map.is(cell, BlockKind::Ghost))
        return GhostOption::ofSaturation(pixel.saturation).period > 0.0;
    return map.is(cell, BlockKind::Elevator) &&
           ElevatorOption::ofSaturation(pixel.saturation).automatic;
}

/// Whether the ball can be on its block, at some time, without being lost.
bool LevelWays::carries(const CellPosition& cell) const
{
    if (!map.hasFloor(cell) || isClosed(cell))
        return false;
    const int saturation = map.pixel(cell).saturation;
    if (map.is(cell, BlockKind::Ghost))
        return GhostOption::ofSaturation(saturation).initiallyOpaque || isWorked(cell);
    if (map.is(cell, BlockKind::Trap)) {
        const TrapOption trap = TrapOption::ofSaturation(saturation);
        return trap.kind != TrapKind::Mine || trap.parameter > 0.0;
    }
    return true;
}

bool LevelWays::canBeAir(const CellPosition& cell) const
{
    if (!map.hasFloor(cell))
        return true;
    return map.is(cell, BlockKind::Ghost) &&
           (isWorked(cell) ||
            !GhostOption::ofSaturation(map.pixel(cell).saturation).initiallyOpaque);
}

/// Whether a ball at this height can be over the cell.
bool LevelWays::isLowerThan(const CellPosition& cell, double height) const
{
    if (isClosed(cell))
        return false;
    if (canBeAir(cell))
        return true;
    const double top = BlockShape::ofValue(map.pixel(cell).value).highHeight;
    const Heights all = shifts(cell);
    return top + *std::min_element(all.begin(), all.end()) <= height + tolerance;
}

bool LevelWays::entersMouth(const CellPosition& from, double height,
                            const CellPosition& portal) const
{
    if (!map.is(portal, BlockKind::Portal) || !(map.beforeMouth(portal) == from))
        return false;
    const double top = BlockShape::ofValue(map.pixel(portal).value).highHeight;
    return top - height > mouthTop && top - height < mouthReach;
}

/// How high a block may stand over what the picture says; that comes first.
LevelWays::Heights LevelWays::shifts(const CellPosition& cell) const
{
    if (!map.is(cell, BlockKind::Elevator) || !isWorked(cell))
        return {0.0};
    return {0.0, ElevatorOption::ofSaturation(map.pixel(cell).saturation).travel};
}

LevelWays::Heights LevelWays::heightsWhereLeft(const CellPosition& cell,
                                               const CellPosition& way) const
{
    const double edge = map.edgeHeight(cell, way.column, way.row);
    // Off the side of a ramp the ball goes at its lower end.
    const double base = edge < 0.0 ? BlockShape::ofValue(map.pixel(cell).value).lowHeight : edge;
    Heights heights = shifts(cell);
    for (double& height : heights)
        height += base;
    return heights;
}

LevelWays::Heights LevelWays::heightsWhereEntered(const CellPosition& cell,
                                                  const CellPosition& way) const
{
    const double edge = map.edgeHeight(cell, -way.column, -way.row);
    // Over the side of a ramp the ball comes from above only.
    const double base = edge < 0.0 ? BlockShape::ofValue(map.pixel(cell).value).highHeight : edge;
    Heights heights = shifts(cell);
    for (double& height : heights)
        height += base;
    return heights;
}

/// How many cells in a row the ball can roll along, to and fro, before it leaves the cell this way.
int LevelWays::runUp(const CellPosition& cell, const CellPosition& way) const
{
    const CellPosition back = opposite(way);
    int count = 1;
    for (CellPosition here = cell;; here = beyond(here, back), ++count) {
        const CellPosition next = beyond(here, back);
        if (count == longRunUp || !carries(next) || map.is(next, BlockKind::Portal))
            return count;
        const double near = map.edgeHeight(here, back.column, back.row);
        const double far = map.edgeHeight(next, way.column, way.row);
        if (near < 0.0 || far < 0.0 || std::abs(near - far) > tolerance)
            return count;
    }
}
