#include "HandGameTest.h"
#include "LevelMap.h"
#include "LevelSight.h"
#include "Strategy.h"
#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "level/Ball.h"
#include "level/Level.h"

#include <QImage>

#include <algorithm>
#include <cmath>

namespace {

constexpr double topSpeed = 2.0;    // units/s
constexpr double obedience = 1.2;   // wanted acceleration per unit of missing speed, 1/s
constexpr double gentleTilt = 0.2;  // sine of the board's angle
constexpr double leastLead = 0.11;  // radians: a smaller one commands nothing
constexpr double mostLead = 0.45;
constexpr double leadPerTilt = 2.0;    // how far the hand goes ahead, per missing tilt
constexpr double closeEnough = 0.015;  // sine of the angle that is not worth a move
constexpr int longestRun = 15000;      // ticks

double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

}  // namespace

/// A player with a hand and eyes, and no other way into the game.
class HandWinsTest : public HandGameTest
{
public:
    void loadsTrueLevel(unsigned int number)
    {
        picture = QImage(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
        picture.save(QString("data/Rollix/level%1.png").arg(number));
        game.loadLevel(number);
        ticks();
    }

    osg::Vec3d up() const
    {
        return osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    }

    /// Holds the hand so that the board turns towards the tilt. A hand that is nearly there
    /// commands nothing, so it goes a little too far until the board is.
    PlayedHand leading(const osg::Vec2d& tilt) const
    {
        const osg::Vec3d now = up();
        osg::Vec2d missing = tilt - osg::Vec2d(now.x(), now.y());
        const double distance = missing.normalize();
        double lead = 0.0;
        if (distance > closeEnough)
            lead = std::clamp(distance * leadPerTilt, leastLead, mostLead);
        osg::Vec3d wanted(now.x() + missing.x() * lead, now.y() + missing.y() * lead, 0.0);
        wanted.z() = std::sqrt(1.0 - std::min(0.9, wanted.length2()));
        wanted.normalize();
        PlayedHand hand = handFor(wanted);
        return hand;
    }

    bool finishes()
    {
        const LevelMap map(picture);
        LevelSight sight(game, map, 0);
        Temper temper;
        temper.speed = topSpeed;
        Strategy strategy(map, temper);
        for (int tick = 0; tick < longestRun; ++tick) {
            if (game.state == GameState::LevelCompleted || game.state == GameState::LevelFailed)
                break;
            sight.look();
            const PlayerView& view = sight.view();
            const Intent intent = strategy.decide(sight, view.onBoard());
            if (game.state == GameState::WaitingForRest)
                sees({handFor(up())});
            else
                sees({leading(tiltFor(intent, view))});
            ticks();
        }
        return game.state == GameState::LevelCompleted;
    }

private:
    static osg::Vec2d tiltFor(const Intent& intent, const PlayerView& view)
    {
        const osg::Vec3d wanted = osg::Matrixd::transform3x3(
            osg::Vec3d(intent.velocity.x(), intent.velocity.y(), 0.0), view.board);
        return {within((wanted.x() - view.velocity.x()) * obedience / world::rollingGravity,
                       gentleTilt),
                within((wanted.y() - view.velocity.y()) * obedience / world::rollingGravity,
                       gentleTilt)};
    }

    QImage picture;
};

TEST_F(HandWinsTest, TheFirstLevelAndGoesOnToTheSecond)
{
    loadsTrueLevel(1);
    loadsTrueLevel(0);
    ASSERT_TRUE(finishes());
    sees({flatHand()});
    ASSERT_TRUE(game.endMenu->isVisible());
    selects("Next Level");
    sees({flatHand()}, {tap()});
    ticks();
    EXPECT_EQ(level().number, 1u);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::Playing);
}
