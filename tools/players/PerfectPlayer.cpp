#include "PerfectPlayer.h"

#include "Steering.h"

#include <algorithm>

namespace {

constexpr double obedience = 1.2;      // wanted acceleration per unit of missing speed, 1/s
constexpr double gentleTilt = 0.2;     // sine of the board's angle
constexpr double tiltObedience = 4.0;  // wanted turn per unit of missing tilt, 1/s
constexpr double largestTurn = 0.35;   // rad/s
constexpr double deadZone = 0.06;      // rad/s: a key gives 0.1 a tick

double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

}  // namespace

PerfectPlayer::PerfectPlayer(PlayedGame& playedGame, const LevelMap& map)
    : Player(playedGame, map, Temper(), 0)
{
}

void PerfectPlayer::move(const Intent& intent)
{
    const PlayerView& seen = sight.view();
    const osg::Vec3d up = seen.up();
    const osg::Vec3d turn = (up - sight.viewBefore().up()) / steering::worldSecondsPerTick;
    if (intent.keepsBoard) {
        drive(-turn.x(), Qt::Key_Right, Qt::Key_Left);
        drive(-turn.y(), Qt::Key_Up, Qt::Key_Down);
        return;
    }
    const osg::Vec2d wanted = wantedVelocity(intent);
    const double mostTilt = intent.climbs ? steering::climbingTilt : gentleTilt;
    const auto turnError = [&](double wantedSpeed, double speed, double tilt, double rate) {
        const double wantedTilt =
            within((wantedSpeed - speed) * obedience / steering::rollingGravity, mostTilt);
        return within((wantedTilt - tilt) * tiltObedience, largestTurn) - rate;
    };
    drive(turnError(wanted.x(), seen.velocity.x(), up.x(), turn.x()), Qt::Key_Right, Qt::Key_Left);
    drive(turnError(wanted.y(), seen.velocity.y(), up.y(), turn.y()), Qt::Key_Up, Qt::Key_Down);
}

void PerfectPlayer::drive(double error, Qt::Key towards, Qt::Key away)
{
    press(towards, error > deadZone);
    press(away, error < -deadZone);
}

void PerfectPlayer::press(Qt::Key key, bool isDown)
{
    if (down[key] == isDown)
        return;
    down[key] = isDown;
    if (isDown)
        game.presses(key);
    else
        game.releases(key);
}

void PerfectPlayer::letGo()
{
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right})
        press(key, false);
}
