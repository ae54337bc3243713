#include "PlayedGame.h"

#include "PlayersClock.h"
#include "SensedHand.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hud/TextHUD.h"
#include "level/BlockCheckpoint.h"
#include "level/Board.h"
#include "level/Level.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <osg/FrameStamp>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int tickMilliseconds = 20;
// All rhythms of ghosts begin anew together after so many seconds.
constexpr double commonPeriod = 30.0;
constexpr int phases = 150;  // ticks by which runs differ in where the rhythms stand
// Off the tick's own grid, so that no rounding puts a change of a ghost into another tick.
constexpr double offTheGrid = 0.007;

}  // namespace

PlayedGame::PlayedGame(Rollix& playedGame, OsgViewerWidget& window)
    : game(playedGame), widget(window)
{
    widget.setDone(true);
}

/// What a frame does to the time that the game knows, and nothing else of it.
void PlayedGame::countFrame()
{
    widget.setDone(false);
    widget.advance();
    widget.setDone(true);
}

void PlayedGame::loads(const QImage& picture, unsigned int seed, unsigned int number)
{
    if (picture != loaded || number != loadedNumber)
        picture.save(QString("data/Rollix/level%1.png").arg(int(number)));
    loaded = picture;
    loadedNumber = number;
    const double now = GameLoop::frameStamp()->getSimulationTime();
    const double phase = double(seed % phases) * tickMilliseconds / 1000.0;
    const double start = (std::floor(now / commonPeriod) + 2.0) * commonPeriod + phase + offTheGrid;
    PlayersClock::advance(std::chrono::nanoseconds(std::llround((start - now) * 1e9)));
    countFrame();
    std::srand(seed);
    game.loadLevel(number);
    game.messageText->hide();
    ticks();
}

void PlayedGame::ticks(int count)
{
    for (int i = 0; i < count; ++i) {
        const int before = lives();
        const bool hadFailed = state() == GameState::LevelFailed;
        GameLoop::instance()->tick();
        countFrame();
        PlayersClock::advance(std::chrono::milliseconds(tickMilliseconds));
        QCoreApplication::processEvents();
        const bool fails = state() == GameState::LevelFailed && !hadFailed;
        lost = fails ? before : std::max(0, before - lives());
    }
}

void PlayedGame::presses(Qt::Key key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

void PlayedGame::releases(Qt::Key key)
{
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

void PlayedGame::seesHand(const osg::Vec3d& up)
{
    showHand(game, up, ++frames);
}

void PlayedGame::restartsAt(float x, float y)
{
    for (BlockCheckpoint* checkpoint : BlockCheckpoint::allCheckpoints)
        if (checkpoint->x == x && checkpoint->y == y)
            game.level->checkpoint = checkpoint;
    game.level->restart(false);
    game.setAngularVelocity(game.level->board->getId(), osg::Vec3f(), true);
}

void PlayedGame::forgetsTheEnd()
{
    game.state = GameState::WaitingForRest;
}

GameState PlayedGame::state() const
{
    return game.state;
}

int PlayedGame::lives() const
{
    return game.level->livesLeft();
}

int PlayedGame::coins() const
{
    return game.level->coinCount();
}
