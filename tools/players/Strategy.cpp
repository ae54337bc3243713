#include "Strategy.h"

#include "Steering.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double approach = 1.0;       // wanted speed per unit of distance, 1/s
constexpr double climbingSpeed = 4.6;  // taken as a run-up too
constexpr double hurriedSpeed = 2.5;   // what it takes to fly across, or to be thrown ahead
constexpr int runUpSteps = 4;
constexpr double touchReach = 1.2;    // a ball so near over a cell may have touched it
constexpr double flyingHeight = 0.8;  // of the ball's middle, which lies at 0.3
constexpr double heightReach = 0.1;   // an elevator so near its end is there
constexpr double deepestDrop = 2.0;
constexpr int freshRest = 36;   // ticks: an elevator that has rested longer may leave too soon
constexpr int restTicks = 550;  // of what rests, with a second to spare
constexpr int ticksPerSecond = steering::ticksPerSecond;

std::vector<CellPosition> checkpoints(const LevelMap& map, CheckpointType type)
{
    return map.cellsWhere([type](const LevelPixel& pixel) {
        if (blockKindOfHue(pixel.hue) != BlockKind::Checkpoint || pixel.value < firstBodyValue)
            return false;
        const auto option = CheckpointOption::ofSaturation(pixel.saturation);
        return option.type == type && (type != CheckpointType::Checkpoint || option.required);
    });
}

double topOf(const LevelMap& map, const CellPosition& cell)
{
    return double(BlockShape::ofValue(map.pixel(cell).value).highHeight);
}

bool isStraight(const Way& way, std::size_t step)
{
    return way[step + 1].column - way[step].column == way[1].column - way[0].column &&
           way[step + 1].row - way[step].row == way[1].row - way[0].row;
}

}  // namespace

Strategy::Strategy(const LevelMap& levelMap, const Temper& playersTemper)
    : map(levelMap),
      temper(playersTemper),
      finder(map, temper.caution),
      flags(checkpoints(map, CheckpointType::Checkpoint)),
      goals(checkpoints(map, CheckpointType::Goal))
{
}

Intent Strategy::decide(const LevelSight& sight, const osg::Vec3d& expectedBall)
{
    ++tick;
    Intent intent;
    const osg::Vec3d seen = sight.view().onBoard();
    const CellPosition seenCell = map.cellAt(seen.x(), seen.y());
    if (map.hasFloor(seenCell))
        noteTouchedCell(seenCell, seen);
    // A flag that has sunk. The ball may have flown over one that has not.
    flags.erase(std::remove(flags.begin(), flags.end(), sight.checkpoint()), flags.end());
    // What it sees is surer than where it thinks that the ball has gone: not into a wall.
    osg::Vec3d ball = expectedBall;
    CellPosition here = map.cellAt(ball.x(), ball.y());
    if (!map.hasFloor(here) ||
        (!(here == seenCell) && map.hasFloor(seenCell) &&
         !map.rollsAt(seenCell, sight.shift(seenCell), here, sight.shift(here), deepestDrop))) {
        here = seenCell;
        ball = seen;
    }
    // A board that moves under a floating ball only hits it.
    if (!map.hasFloor(here) || tick < weightlessUntil || flies(sight, seenCell, seen)) {
        intent.keepsBoard = true;
        return intent;
    }
    const Way& way = wayToTarget(here);
    if (way.empty())
        return isSpentSpring(here) ? follow(wayOff(here), ball, false) : intent;
    const Way open = openPart(sight, way);
    if (open.size() == way.size())
        return follow(open, ball, false);
    if (!map.is(here, BlockKind::Elevator) && waitsForButton(sight, way[open.size()])) {
        const std::vector<CellPosition> shut = shutWith(sight, way[open.size()]);
        const Way toButton = wayToButtonFor(way[open.size()], here, shut);
        // On the button already, it takes the ball to roll off before it can press anew.
        if (toButton.size() > 1)
            return follow(openPart(sight, toButton), ball, false);
        const Way aroundIt = finder.way(here, flags.empty() ? goals : flags, shut);
        if (toButton.empty() && !aroundIt.empty())
            return follow(openPart(sight, aroundIt), ball, false);
    }
    // Who is not sure of where the ball will stop waits a cell away from what will be a hole.
    const bool keepsOff =
        temper.patience > 0 && open.size() > 1 && map.is(way[open.size()], BlockKind::Ghost);
    Intent waiting = follow(keepsOff ? Way(open.begin(), open.end() - 1) : open, ball, true);
    if (open.size() == 1)
        leanOn(sight, here, way[1], waiting);
    return waiting;
}

bool Strategy::flies(const LevelSight& sight, const CellPosition& over,
                     const osg::Vec3d& ball) const
{
    // One that is thrown by a lift has to leave it while it can.
    return !map.is(over, BlockKind::Elevator) &&
           ball.z() > topOf(map, over) + sight.shift(over) + flyingHeight;
}

void Strategy::noteTouchedCell(const CellPosition& here, const osg::Vec3d& ball)
{
    if (ball.z() >= topOf(map, here) + touchReach)
        return;
    if (!(here == last))
        touch(here);
    last = here;
}

const Way& Strategy::wayToTarget(const CellPosition& here)
{
    const bool spent = isSpentSpring(here);
    if (!(here == plannedFrom) || flags.size() != plannedFlags || spent != plannedOnSpent) {
        planned = finder.way(here, flags.empty() ? goals : flags,
                             spent ? edgesAbove(here) : std::vector<CellPosition>());
        plannedFrom = here;
        plannedOnSpent = spent;
        plannedFlags = flags.size();
    }
    return planned;
}

Way Strategy::wayToButtonFor(const CellPosition& barrier, const CellPosition& here,
                             const std::vector<CellPosition>& shut) const
{
    const int group = map.pixel(barrier).alpha;
    return finder.way(here, map.cellsWhere([group](const LevelPixel& pixel) {
        return blockKindOfHue(pixel.hue) == BlockKind::Button && pixel.alpha == group;
    }),
                      shut);
}

/// All that the same button would open.
std::vector<CellPosition> Strategy::shutWith(const LevelSight& sight,
                                             const CellPosition& barrier) const
{
    std::vector<CellPosition> shut = map.cellsWhere([&](const LevelPixel& pixel) {
        return blockKindOfHue(pixel.hue) == blockKindOfHue(map.pixel(barrier).hue) &&
               pixel.alpha == map.pixel(barrier).alpha;
    });
    shut.erase(
        std::remove_if(shut.begin(), shut.end(),
                       [&](const CellPosition& cell) { return !waitsForButton(sight, cell); }),
        shut.end());
    return shut;
}

/// Whether the cell will not let the ball pass before somebody presses a button.
bool Strategy::waitsForButton(const LevelSight& sight, const CellPosition& cell) const
{
    const int saturation = map.pixel(cell).saturation;
    if (map.is(cell, BlockKind::Ghost))
        return GhostOption::ofSaturation(saturation).period == 0.0 && !sight.isSolid(cell);
    return map.is(cell, BlockKind::Elevator) &&
           !ElevatorOption::ofSaturation(saturation).automatic && !sight.moves(cell);
}

Way Strategy::openPart(const LevelSight& sight, const Way& way) const
{
    std::size_t length = 1;
    while (length < way.size() && mayStep(sight, way, length))
        ++length;
    return Way(way.begin(), way.begin() + Way::difference_type(length));
}

bool Strategy::mayStep(const LevelSight& sight, const Way& way, std::size_t step) const
{
    const CellPosition& from = way[step - 1];
    const CellPosition& to = way[step];
    if (map.is(to, BlockKind::Ghost))
        return mayEnterGhost(sight, way, step);
    if (map.is(from, BlockKind::Elevator) || map.is(to, BlockKind::Elevator))
        return mayUseElevator(sight, from, to);
    return hasRested(to);
}

bool Strategy::mayEnterGhost(const LevelSight& sight, const Way& way, std::size_t step) const
{
    const CellPosition& to = way[step];
    if (!sight.isSolid(to))
        return false;
    const double period = GhostOption::ofSaturation(map.pixel(to).saturation).period;
    // Once on a bridge, on and away.
    if (period == 0.0 || map.is(way[step - 1], BlockKind::Ghost))
        return true;
    std::size_t end = step;
    while (end < way.size() && map.is(way[end], BlockKind::Ghost))
        ++end;
    const double ticksToCross =
        double(end + 1) / temper.speed / steering::worldSecondsPerTick + temper.patience;
    const double ticksSolid = period * ticksPerSecond;
    const double ticksLeft = ticksSolid - sight.ticksSinceChange(to) - sight.delay();
    // The best moment of a bridge that is too long for any.
    return ticksLeft > std::min(ticksToCross, ticksSolid - sight.delay() - 5.0);
}

bool Strategy::mayUseElevator(const LevelSight& sight, const CellPosition& from,
                              const CellPosition& to) const
{
    if (!map.rollsAt(from, sight.shift(from), to, sight.shift(to), heightReach))
        return false;
    if (map.is(from, BlockKind::Elevator) || !map.is(to, BlockKind::Elevator))
        return true;
    // In time before it leaves again.
    return !ElevatorOption::ofSaturation(map.pixel(to).saturation).automatic ||
           sight.ticksAtRest(to) + sight.delay() < freshRest;
}

/// A lift that is still up is a wall: a ball that is pressed against it rolls on to it as soon as
/// it comes down.
void Strategy::leanOn(const LevelSight& sight, const CellPosition& here, const CellPosition& next,
                      Intent& intent) const
{
    const bool isWall =
        map.is(next, BlockKind::Elevator) &&
        map.edgeHeight(next, here.column - next.column, here.row - next.row) + sight.shift(next) >
            map.edgeHeight(here, next.column - here.column, next.row - here.row) +
                sight.shift(here) + heightReach;
    if (!isWall)
        return;
    if (next.column != here.column)
        intent.velocity.x() = (next.column - here.column) * temper.waitingSpeed;
    else
        intent.velocity.y() = (here.row - next.row) * temper.waitingSpeed;
}

/// A spring that rests, and not one that is just throwing. It throws at a touch: a ball that lies
/// on it since one lies there for ever.
bool Strategy::isSpentSpring(const CellPosition& cell) const
{
    const auto rests = restsUntil.find({cell.column, cell.row});
    return map.isSpring(cell) && rests != restsUntil.end() &&
           (tick < rests->second || cell == last) &&
           tick > rests->second - restTicks + ticksPerSecond;
}

/// To where the ball can come from again; far enough that the next touch is a new one.
Way Strategy::wayOff(const CellPosition& spring)
{
    int& rests = restsUntil[{spring.column, spring.row}];
    rests = std::max(rests, tick + ticksPerSecond);
    Way way{spring};
    const std::vector<CellPosition> above = edgesAbove(spring);
    const std::vector<CellPosition> around = map.next(spring, deepestDrop);
    const auto beside =
        std::find_if(around.begin(), around.end(), [&above](const CellPosition& cell) {
            return std::find(above.begin(), above.end(), cell) == above.end();
        });
    if (beside != around.end())
        way.push_back(*beside);
    return way;
}

std::vector<CellPosition> Strategy::edgesAbove(const CellPosition& cell) const
{
    std::vector<CellPosition> above;
    for (const CellPosition& beside : map.next(cell, deepestDrop)) {
        const int column = beside.column - cell.column;
        const int row = beside.row - cell.row;
        if (map.edgeHeight(beside, -column, -row) > map.edgeHeight(cell, column, row) + heightReach)
            above.push_back(beside);
    }
    return above;
}

/// What lies still for a while after the ball has touched it.
void Strategy::touch(const CellPosition& cell)
{
    int& rests = restsUntil[{cell.column, cell.row}];
    if (tick < rests || !(map.isSpring(cell) || map.isTrapdoor(cell) || map.isWeight(cell)))
        return;
    rests = tick + restTicks;
    const int saturation = map.pixel(cell).saturation;
    if (map.isTrapdoor(cell))
        rests += int(TrapOption::ofSaturation(saturation).parameter) * ticksPerSecond;
    if (map.isWeight(cell)) {
        weightlessUntil = tick + int(ItemOption::ofSaturation(saturation).amount) * ticksPerSecond;
        rests += weightlessUntil - tick;
    }
}

bool Strategy::hasRested(const CellPosition& cell) const
{
    const auto rests = restsUntil.find({cell.column, cell.row});
    return rests == restsUntil.end() || tick >= rests->second || cell == last;
}

Intent Strategy::follow(const Way& way, const osg::Vec3d& ball, bool stops) const
{
    // To the end of the straight run that the way begins with.
    std::size_t corner = std::min<std::size_t>(1, way.size() - 1);
    while (corner + 1 < way.size() && isStraight(way, corner))
        ++corner;
    Intent intent;
    bool hurries = false;
    bool hastens = map.is(way[0], BlockKind::Ghost);
    double speed = stops ? temper.waitingSpeed : temper.speed;
    for (std::size_t i = 0; i < std::min<std::size_t>(corner, runUpSteps); ++i) {
        intent.climbs = intent.climbs || map.climbs(way[i], way[i + 1]);
        hurries = hurries || map.hurries(way[i], way[i + 1]);
    }
    for (std::size_t i = 0; i <= std::min<std::size_t>(corner, 2); ++i) {
        if (finder.exposure(way[i]) > 0.0)
            speed = std::min(speed, temper.careSpeed);
        // Nobody dawdles on a bridge that may go.
        hastens = hastens || (i > 0 && map.is(way[i], BlockKind::Ghost));
    }
    if (hastens)
        speed = temper.speed;
    intent.velocity.set(
        steering::within((double(map.x(way[corner])) - ball.x()) * approach, speed),
        steering::within((double(map.y(way[corner])) - ball.y()) * approach, speed));
    intent.rolls = intent.climbs || hurries;
    if (intent.rolls) {
        // No braking: a ball that stops on the way up a ramp rolls back, one that dawdles on a
        // trapdoor falls, and whatever throws the ball on needs it to come with a speed.
        const double through = intent.climbs ? climbingSpeed : std::max(temper.speed, hurriedSpeed);
        if (way[1].column != way[0].column)
            intent.velocity.x() = way[1].column > way[0].column ? through : -through;
        else
            intent.velocity.y() = way[1].row < way[0].row ? through : -through;
    }
    return intent;
}
