#include "support/GameTest.h"

#include "FrameGrab.h"
#include "ManualClock.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Ball.h"
#include "level/Block.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/SceneSearch.h"
#include "support/SharedWorld.h"

#include <QApplication>
#include <QKeyEvent>
#include <osg/Math>

#include <algorithm>
#include <cmath>

namespace {

constexpr int tickMilliseconds = 20;
// Of the drawn window's shape, so that the camera's projection stays as it is.
const QSize undrawnSize(40, 30);

/// What the one window of the process has drawn.
FrameGrab& grab()
{
    static auto* const theGrab = new FrameGrab(sharedWorld().game->getCamera());
    return *theGrab;
}

}  // namespace

GameTest::GameTest() : game(*sharedWorld().game), widget(*sharedWorld().widget)
{
    grab();
    draws(false);
    game.messageText->hide();
}

GameTest::~GameTest()
{
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right}) {
        if (game.pauseMenu->isVisible())
            game.pauseMenu->hide();
        if (game.endMenu->isVisible())
            game.endMenu->hide();
        releases(key);
    }
    // Whatever was pressed for less than a tick has its tick here.
    ticks();
}

void GameTest::loads(const LevelPicture& picture, unsigned int number)
{
    writes(picture, number);
    pictureWidth = picture.image().width();
    pictureHeight = picture.image().height();
    game.loadLevel(number);
}

void GameTest::writes(const LevelPicture& picture, unsigned int number)
{
    picture.image().save(QString("data/Rollix/level%1.png").arg(int(number)));
}

std::string GameTest::folder() const
{
    return sharedWorld().folder.path().toStdString();
}

void GameTest::ticks(int count)
{
    for (int i = 0; i < count; ++i)
        GameLoop::instance()->tick();
}

bool GameTest::ticksUntil(const std::function<bool()>& condition, int limit)
{
    for (int i = 0; i < limit; ++i) {
        if (condition())
            return true;
        ticks();
    }
    return condition();
}

void GameTest::waits(int milliseconds)
{
    ManualClock clock;
    clock.passes(milliseconds);
}

void GameTest::plays(int milliseconds)
{
    playsUntil([] { return false; }, milliseconds);
}

bool GameTest::playsUntil(const std::function<bool()>& condition, int limit)
{
    ManualClock clock;
    for (int played = 0; played < limit; played += tickMilliseconds) {
        if (condition())
            return true;
        ticks();
        clock.passes(tickMilliseconds);
    }
    return condition();
}

void GameTest::presses(Qt::Key key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

void GameTest::releases(Qt::Key key)
{
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

void GameTest::holds(Qt::Key key, int tickCount)
{
    presses(key);
    ticks(tickCount);
    releases(key);
}

bool GameTest::picks(const std::string& line)
{
    constexpr int mostLines = 10;
    for (int i = 0; i < mostLines; ++i) {
        const std::vector<std::string> large = largestTextsBelow(game.getSceneData());
        if (std::find(large.begin(), large.end(), line) != large.end()) {
            releases(Qt::Key_Return);
            return true;
        }
        releases(Qt::Key_Down);
    }
    return false;
}

void GameTest::draws(bool on)
{
    game.getCamera()->setCullMask(on ? 0xffffffff : 0);
    // To clear and swap a large window costs more than the rest of a tick.
    widget.resize(on ? GameWorld::windowSize : undrawnSize);
    QCoreApplication::processEvents();
}

QImage GameTest::frame(bool advance)
{
    const bool drawn = game.getCamera()->getCullMask() != 0;
    draws(true);
    if (advance)
        ticks();
    else
        widget.frame();
    // Before the window shrinks again, which draws it anew.
    const QImage image = grab().image();
    draws(drawn);
    return image;
}

osg::Matrixd GameTest::boardPose() const
{
    return board().getTransform()->getMatrix();
}

double GameTest::tiltDegrees() const
{
    const osg::Vec3d up = osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    return osg::RadiansToDegrees(std::acos(std::min(1.0, up.z())));
}

osg::Vec3d GameTest::ballPosition() const
{
    return ball().getTransform()->getMatrix().getTrans();
}

osg::Vec3f GameTest::ballVelocity() const
{
    return game.linearVelocity(ball().getId());
}

void GameTest::putsBall(const osg::Vec3d& position, const osg::Vec3f& velocity)
{
    game.setPose(ball().getId(), osg::Matrixd::translate(position));
    game.setLinearVelocity(ball().getId(), velocity, true);
    game.setAngularVelocity(ball().getId(), osg::Vec3f(), true);
}

Block* GameTest::blockAt(int column, int row) const
{
    const float x = (float(column) - float(pictureWidth) * 0.5f) + 0.5f;
    const float y = (float(pictureHeight) * 0.5f - float(row)) - 0.5f;
    for (const osg::ref_ptr<Block>& block : board().getBlocks())
        if (block->x == x && block->y == y)
            return block;
    return nullptr;
}

Level& GameTest::level() const
{
    return *game.level;
}

Board& GameTest::board() const
{
    return *game.level->board;
}

Ball& GameTest::ball() const
{
    return *game.level->ball;
}
