#include "Measures.h"

#include "LevelMap.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <algorithm>
#include <random>

namespace {

constexpr Qt::Key arrows[] = {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right};
constexpr int holds[] = {5, 12, 20};  // ticks
constexpr int settling = 30;          // ticks: a ball that was put on its block has come to rest
constexpr int watched = 3 * PlayedGame::ticksPerSecond;
constexpr double kindRise = 1.0;  // world units

constexpr int minutes = 3;
constexpr int shortestHold = 5;  // ticks
constexpr int longestHold = 30;
constexpr int shortestPause = 5;
constexpr int longestPause = 25;

/// Holds the key and watches the ball; true if it was kind.
bool touch(PlayedGame& game, UnkindTouch& report)
{
    game.ticks(settling);
    const double rest = game.view().onBoard().z();
    const auto tick = [&] {
        game.ticks();
        report.rise = std::max(report.rise, game.view().onBoard().z() - rest);
        report.lostLife = report.lostLife || game.livesLost() > 0;
    };
    game.presses(report.key);
    for (int i = 0; i < report.ticks; ++i)
        tick();
    game.releases(report.key);
    for (int i = 0; i < watched && !report.lostLife; ++i)
        tick();
    return !report.lostLife && report.rise < kindRise;
}

template <class Prepare>
void touchAll(PlayedGame& game, const CellPosition& cell, Prepare prepare, FirstTouch& sum)
{
    for (const Qt::Key key : arrows) {
        for (const int hold : holds) {
            prepare();
            UnkindTouch report{cell.column, cell.row, key, hold, 0.0, false};
            ++sum.touches;
            if (!touch(game, report))
                sum.unkind.push_back(report);
        }
    }
}

std::vector<CellPosition> cellsOf(const LevelMap& map, CheckpointType type)
{
    return map.cellsWhere([type](const LevelPixel& pixel) {
        return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint &&
               pixel.value >= firstBodyValue &&
               CheckpointOption::ofSaturation(pixel.saturation).type == type;
    });
}

}  // namespace

FirstTouch firstTouch(PlayedGame& game, const QImage& picture)
{
    const std::vector<CellPosition> starts = cellsOf(LevelMap(picture), CheckpointType::Start);
    FirstTouch sum;
    if (!starts.empty())
        touchAll(
            game, starts.back(), [&] { game.loads(picture, 0); }, sum);
    return sum;
}

FirstTouch touchAfterFalls(PlayedGame& game, const QImage& picture)
{
    const LevelMap map(picture);
    FirstTouch sum;
    for (const CellPosition& flag : cellsOf(map, CheckpointType::Checkpoint)) {
        touchAll(
            game, flag,
            [&] {
                game.loads(picture, 0);
                game.restartsAt(map.x(flag), map.y(flag));
                game.ticks();
            },
            sum);
    }
    return sum;
}

double toddler(PlayedGame& game, const QImage& picture, unsigned int seed)
{
    std::mt19937 dice(seed);
    const auto roll = [&](int least, int most) {
        return std::uniform_int_distribution<>(least, most)(dice);
    };
    game.loads(picture, seed);
    int lost = 0;
    int ticks = 0;
    const auto plays = [&](int count) {
        for (int i = 0; i < count; ++i, ++ticks) {
            game.ticks();
            lost += game.livesLost();
            if (game.state() == GameState::LevelFailed)
                game.forgetsTheEnd();
        }
    };
    while (ticks < minutes * 60 * PlayedGame::ticksPerSecond) {
        const Qt::Key key = arrows[roll(0, 3)];
        game.presses(key);
        plays(roll(shortestHold, longestHold));
        game.releases(key);
        plays(roll(shortestPause, longestPause));
    }
    return double(lost) / minutes;
}
