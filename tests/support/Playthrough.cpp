#include "support/Playthrough.h"

#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Level.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int longestRun = 15000;  // ticks: five minutes of play
constexpr double flagReach = 1.2;  // a ball so near over a flag's cell has touched it

bool isCheckpoint(const LevelPixel& pixel, int least, int most)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint && pixel.saturation >= least &&
           pixel.saturation <= most;
}

QImage truePicture(unsigned int number)
{
    return QImage(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
}

}  // namespace

Playthrough::Playthrough(GameTest& gameTest, unsigned int number)
    : test(gameTest),
      picture(truePicture(number)),
      map(picture),
      keys(
          map, [this](Qt::Key key) { test.presses(key); },
          [this](Qt::Key key) { test.releases(key); }),
      flags(map.cellsWhere([](const LevelPixel& pixel) { return isCheckpoint(pixel, 79, 90); })),
      goals(map.cellsWhere([](const LevelPixel& pixel) { return isCheckpoint(pixel, 49, 68); }))
{
    picture.save(QString("data/Rollix/level%1.png").arg(number));
    test.game.loadLevel(number);
    test.ticks();
}

PlayerView Playthrough::view() const
{
    return {test.ballPosition(), test.ballVelocity(), test.boardPose()};
}

bool Playthrough::over() const
{
    return test.game.state == GameState::LevelCompleted ||
           test.game.state == GameState::LevelFailed || played >= longestRun;
}

bool Playthrough::nextTarget(CellPosition& target) const
{
    const std::vector<CellPosition>& open = flags.empty() ? goals : flags;
    const CellPosition here = keys.cellOf(view());
    std::size_t shortest = 0;
    for (const CellPosition& cell : open) {
        const std::size_t length = keys.wayTo(cell, here).size();
        if (length > 0 && (shortest == 0 || length < shortest)) {
            shortest = length;
            target = cell;
        }
    }
    return shortest > 0;
}

void Playthrough::tick()
{
    const int livesBefore = test.level().livesLeft();
    test.ticks();
    ++played;
    if (test.level().livesLeft() < livesBefore)
        ++fallen;
}

bool Playthrough::finishes()
{
    while (!over()) {
        const PlayerView now = view();
        const CellPosition here = keys.cellOf(now);
        const double top =
            map.contains(here) ? BlockShape::ofValue(map.pixel(here).value).highHeight : 0.0;
        if (keys.onBoard(now).z() < top + flagReach)
            flags.erase(std::remove(flags.begin(), flags.end(), here), flags.end());
        CellPosition target{};
        if (nextTarget(target))
            keys.rollTowards(target, now);
        else
            keys.hold(now);
        tick();
    }
    keys.letGo();
    return test.game.state == GameState::LevelCompleted;
}
