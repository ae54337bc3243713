#include "LevelRun.h"

#include "Player.h"
#include "level/BlockOptions.h"
#include "level/BlockShape.h"

#include <algorithm>

namespace {

constexpr double overFloor = 0.6;  // world units: a ball so near over the floor is on it

bool isOver(GameState state)
{
    return state == GameState::LevelCompleted || state == GameState::LevelFailed;
}

}  // namespace

RunResult runLevel(PlayedGame& game, const QImage& picture, const RunWish& wish)
{
    const LevelMap map(picture);
    game.loads(picture, wish.seed);
    const std::unique_ptr<Player> player =
        makePlayer(wish.player, game, map, wish.seed, wish.reaction);
    RunResult result;
    CellPosition last{-1, -1};
    while (!isOver(game.state()) && result.ticks < wish.limit) {
        player->act();
        result.coins = game.coins();
        game.ticks();
        ++result.ticks;
        const osg::Vec3d ball = game.view().onBoard();
        result.track.emplace_back(ball.x(), ball.y());
        if (game.livesLost() > 0) {
            result.livesLost += game.livesLost();
            result.losses.push_back(last);
        }
        const CellPosition here = map.cellAt(ball.x(), ball.y());
        if (map.hasFloor(here)) {
            const double top = double(BlockShape::ofValue(map.pixel(here).value).highHeight);
            if (ball.z() > top - overFloor && ball.z() < top + overFloor)
                last = here;
        }
    }
    player->letGo();
    result.won = game.state() == GameState::LevelCompleted;
    if (result.won)
        result.coins = game.coins();
    return result;
}

int coinsOf(const LevelMap& map)
{
    int coins = 0;
    int bestGoal = 0;
    for (const CellPosition& cell :
         map.cellsWhere([](const LevelPixel& pixel) { return pixel.value >= firstBodyValue; })) {
        const int saturation = map.pixel(cell).saturation;
        if (map.is(cell, BlockKind::Checkpoint)) {
            const auto option = CheckpointOption::ofSaturation(saturation);
            if (option.type == CheckpointType::Checkpoint)
                coins += option.coins;
            else if (option.type == CheckpointType::Goal)
                bestGoal = std::max(bestGoal, option.coins);
        } else if (map.is(cell, BlockKind::Item)) {
            const ItemOption item = ItemOption::ofSaturation(saturation);
            if (item.kind == ItemKind::Coin && item.count > 0)
                coins += int(item.amount);
        }
    }
    return coins + bestGoal;
}
