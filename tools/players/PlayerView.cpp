#include "PlayerView.h"

#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"

PlayerView PlayerView::of(Rollix& game)
{
    const Level& level = *game.level;
    return {level.ball->getTransform()->getMatrix().getTrans(),
            game.linearVelocity(level.ball->getId()), level.board->getTransform()->getMatrix(),
            game.state};
}
