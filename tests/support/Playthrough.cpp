#include "support/Playthrough.h"

#include "game/Rollix.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"
#include "level/Level.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double rollingSpeed = 2.5;  // units a second
constexpr double waitingSpeed = 1.2;  // towards a place where it has to stop
constexpr double flagReach = 1.2;     // a ball so near over a flag's cell has touched it
constexpr double heightReach = 0.1;   // an elevator so near its end is there
constexpr int freshTicks = 60;        // a ghost that has changed longer ago may fade too soon
constexpr int ticksPerSecond = 50;
constexpr int restTicks = 550;  // of what rests, with a second to spare

bool isCheckpoint(const LevelPixel& pixel, int least, int most)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint && pixel.saturation >= least &&
           pixel.saturation <= most;
}

}  // namespace

Playthrough::Playthrough(GameTest& gameTest, unsigned int number, const QImage& picture,
                         const QImage& belief, Pace pace)
    : test(gameTest),
      map(belief),
      keys(
          map, [this](Qt::Key key) { test.presses(key); },
          [this](Qt::Key key) { test.releases(key); }),
      letTimePass(std::move(pace)),
      flags(map.cellsWhere([](const LevelPixel& pixel) { return isCheckpoint(pixel, 79, 90); })),
      goals(map.cellsWhere([](const LevelPixel& pixel) { return isCheckpoint(pixel, 49, 68); }))
{
    keys.setFilter(
        [this](const CellPosition&, const CellPosition& to) { return !map.isDanger(to); });
    keys.setCare(
        [this](const CellPosition&, const CellPosition& to) { return map.isNextToDanger(to); });
    picture.save(QString("data/Rollix/level%1.png").arg(number));
    test.game.loadLevel(number);
    sight = std::make_unique<LevelSight>(test.board(), map);
    tick();
}

Playthrough::Playthrough(GameTest& gameTest, unsigned int number, const Pace& pace)
    : Playthrough(gameTest, number, truePicture(number), truePicture(number), pace)
{
}

QImage Playthrough::truePicture(unsigned int number)
{
    return QImage(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
}

PlayerView Playthrough::view() const
{
    return {test.ballPosition(), test.ballVelocity(), test.boardPose()};
}

bool Playthrough::over() const
{
    return test.game.state == GameState::LevelCompleted ||
           test.game.state == GameState::LevelFailed || played >= limit;
}

void Playthrough::tick()
{
    const int livesBefore = test.level().livesLeft();
    test.ticks();
    letTimePass();
    ++played;
    lost += std::max(0, livesBefore - test.level().livesLeft());
}

bool Playthrough::finishes(int longestRun)
{
    limit = longestRun;
    while (!over()) {
        sight->look();
        const PlayerView now = view();
        noteTouchedCell(now);
        play(now);
        tick();
    }
    keys.letGo();
    return test.game.state == GameState::LevelCompleted;
}

void Playthrough::noteTouchedCell(const PlayerView& now)
{
    const CellPosition here = keys.cellOf(now);
    if (!map.contains(here))
        return;
    const double top = BlockShape::ofValue(map.pixel(here).value).highHeight;
    if (keys.onBoard(now).z() >= top + flagReach)
        return;
    flags.erase(std::remove(flags.begin(), flags.end(), here), flags.end());
    if (!(here == last))
        touch(here);
    last = here;
}

void Playthrough::play(const PlayerView& now)
{
    const CellPosition here = keys.cellOf(now);
    // A board that moves under a floating ball only hits it.
    if (!map.hasFloor(here) || played < weightlessUntil) {
        keys.keepStill(now);
        return;
    }
    const Way way = wayToTarget(here);
    if (way.empty()) {
        keys.hold(now);
        return;
    }
    const Way open = openPart(way);
    keys.setSpeed(open.size() < way.size() ? waitingSpeed : rollingSpeed);
    if (open.size() < way.size() && !map.is(here, BlockKind::Elevator) &&
        waitsForButton(way[open.size()])) {
        const Way toButton = wayToButtonFor(way[open.size()], here);
        // On the button already, it takes the ball to roll off before it can press anew.
        if (toButton.size() > 1) {
            keys.setSpeed(rollingSpeed);
            keys.follow(openPart(toButton), now);
            return;
        }
    }
    keys.follow(open, now);
}

Playthrough::Way Playthrough::wayToTarget(const CellPosition& here) const
{
    return shortestWay(here, flags.empty() ? goals : flags);
}

Playthrough::Way Playthrough::shortestWay(const CellPosition& here,
                                          const std::vector<CellPosition>& targets) const
{
    Way shortest;
    for (const CellPosition& cell : targets) {
        Way way = keys.wayTo(cell, here);
        if (!way.empty() && (shortest.empty() || way.size() < shortest.size()))
            shortest = std::move(way);
    }
    return shortest;
}

Playthrough::Way Playthrough::wayToButtonFor(const CellPosition& barrier,
                                             const CellPosition& here) const
{
    const int group = map.pixel(barrier).alpha;
    return shortestWay(here, map.cellsWhere([group](const LevelPixel& pixel) {
        return blockKindOfHue(pixel.hue) == BlockKind::Button && pixel.alpha == group;
    }));
}

/// Whether the cell will not let the ball pass before somebody presses a button.
bool Playthrough::waitsForButton(const CellPosition& cell) const
{
    const int saturation = map.pixel(cell).saturation;
    if (map.is(cell, BlockKind::Ghost))
        return GhostOption::ofSaturation(saturation).period == 0.0 && !sight->isSolid(cell);
    return map.is(cell, BlockKind::Elevator) &&
           !ElevatorOption::ofSaturation(saturation).automatic && !sight->moves(cell);
}

Playthrough::Way Playthrough::openPart(const Way& way)
{
    std::size_t length = 1;
    while (length < way.size() && mayStep(way[length - 1], way[length]))
        ++length;
    return Way(way.begin(), way.begin() + Way::difference_type(length));
}

bool Playthrough::mayStep(const CellPosition& from, const CellPosition& to)
{
    if (map.is(to, BlockKind::Ghost))
        return mayEnterGhost(from, to);
    if (map.is(from, BlockKind::Elevator) || map.is(to, BlockKind::Elevator))
        return map.rollsAt(from, sight->shift(from), to, sight->shift(to), heightReach);
    return hasRested(to);
}

bool Playthrough::mayEnterGhost(const CellPosition& from, const CellPosition& to)
{
    if (!sight->isSolid(to))
        return false;
    const bool hasRhythm = GhostOption::ofSaturation(map.pixel(to).saturation).period > 0.0;
    // Once on a bridge, on and away.
    return !hasRhythm || map.is(from, BlockKind::Ghost) || sight->ticksSinceChange(to) < freshTicks;
}

/// What lies still for a while after the ball has touched it.
void Playthrough::touch(const CellPosition& cell)
{
    int& rests = restsUntil[{cell.column, cell.row}];
    if (played < rests || !(map.isSpring(cell) || map.isTrapdoor(cell) || map.isWeight(cell)))
        return;
    rests = played + restTicks;
    const int saturation = map.pixel(cell).saturation;
    if (map.isTrapdoor(cell))
        rests += int(TrapOption::ofSaturation(saturation).parameter) * ticksPerSecond;
    if (map.isWeight(cell)) {
        weightlessUntil =
            played + int(ItemOption::ofSaturation(saturation).amount) * ticksPerSecond;
        rests += weightlessUntil - played;
    }
}

bool Playthrough::hasRested(const CellPosition& cell) const
{
    const auto rests = restsUntil.find({cell.column, cell.row});
    return rests == restsUntil.end() || played >= rests->second || cell == last;
}
