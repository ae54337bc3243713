#include "support/KeyPlayer.h"

#include "base/WorldNumbers.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double approach = 1.0;       // wanted speed per unit of distance, 1/s
constexpr double obedience = 1.2;      // wanted acceleration per unit of missing speed, 1/s
constexpr double gentleTilt = 0.2;     // sine of the board's angle
constexpr double climbingTilt = 0.48;  // nearly the board's limit: a ramp rises by 27 degrees
constexpr double climbingSpeed = 3.5;  // taken as a run-up too
constexpr int runUpSteps = 4;
constexpr double deepestDrop = 1.5;    // world units
constexpr double tiltObedience = 4.0;  // wanted turn per unit of missing tilt, 1/s
constexpr double largestTurn = 0.35;   // rad/s
constexpr double deadZone = 0.06;      // rad/s: a key gives 0.1 a tick

double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

}  // namespace

KeyPlayer::KeyPlayer(const LevelMap& levelMap, KeyAction pressAction, KeyAction releaseAction)
    : map(levelMap),
      pressKey(std::move(pressAction)),
      releaseKey(std::move(releaseAction)),
      allowed([](const CellPosition&, const CellPosition&) { return true; }),
      careful([](const CellPosition&, const CellPosition&) { return false; })
{
}

osg::Vec3d KeyPlayer::onBoard(const PlayerView& view) const
{
    return view.ball * osg::Matrixd::inverse(view.board);
}

CellPosition KeyPlayer::cellOf(const PlayerView& view) const
{
    const osg::Vec3d ball = onBoard(view);
    return map.cellAt(ball.x(), ball.y());
}

std::vector<CellPosition> KeyPlayer::wayTo(const CellPosition& target,
                                           const CellPosition& from) const
{
    const auto takesCare = [this](const CellPosition& here, const CellPosition& next) {
        return allowed(here, next) && !careful(here, next);
    };
    std::vector<CellPosition> way = map.way(from, target, takesCare, drop);
    if (way.empty())
        way = map.way(from, target, allowed, drop);
    // Off the floor, as on top of a wall, any way down will do.
    return way.empty() ? map.way(from, target, allowed, deepestDrop) : way;
}

void KeyPlayer::follow(const std::vector<CellPosition>& way, const PlayerView& view)
{
    // To the end of the straight run that the way begins with.
    std::size_t corner = std::min<std::size_t>(1, way.size() - 1);
    while (corner + 1 < way.size() &&
           way[corner + 1].column - way[corner].column == way[1].column - way[0].column &&
           way[corner + 1].row - way[corner].row == way[1].row - way[0].row)
        ++corner;
    bool climbing = false;
    bool hurrying = false;
    for (std::size_t i = 0; i < std::min<std::size_t>(corner, runUpSteps); ++i) {
        climbing = climbing || map.climbs(way[i], way[i + 1]);
        hurrying = hurrying || map.hurries(way[i], way[i + 1]);
    }
    largestTilt = climbing ? climbingTilt : gentleTilt;

    const osg::Vec3d ball = onBoard(view);
    osg::Vec2d wanted(within((map.x(way[corner]) - ball.x()) * approach, speed),
                      within((map.y(way[corner]) - ball.y()) * approach, speed));
    if (climbing || hurrying) {
        // No braking: a ball that stops on the way up a ramp rolls back, one that dawdles on a
        // trapdoor falls, and whatever throws the ball on needs it to come with a speed.
        const double through = climbing ? climbingSpeed : speed;
        if (way[1].column != way[0].column)
            wanted.x() = way[1].column > way[0].column ? through : -through;
        else
            wanted.y() = way[1].row < way[0].row ? through : -through;
    }
    steer(wanted, view);
}

void KeyPlayer::hold(const PlayerView& view)
{
    steer(osg::Vec2d(0.0, 0.0), view);
}

osg::Vec3d KeyPlayer::turnOf(const osg::Vec3d& up)
{
    const osg::Vec3d turn = (up - lastUp) / world::secondsPerTick;
    lastUp = up;
    return turn;
}

void KeyPlayer::steer(const osg::Vec2d& wantedVelocity, const PlayerView& view)
{
    // The board turns freely about its vertical axis: what is wanted on it has to be turned along.
    const osg::Vec3d wanted = osg::Matrixd::transform3x3(
        osg::Vec3d(wantedVelocity.x(), wantedVelocity.y(), 0.0), view.board);
    const osg::Vec3d up = osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), view.board);
    const osg::Vec3d turn = turnOf(up);

    const auto turnError = [&](double wantedSpeed, double currentSpeed, double tilt, double rate) {
        const double wantedTilt =
            within((wantedSpeed - currentSpeed) * obedience / world::rollingGravity, largestTilt);
        return within((wantedTilt - tilt) * tiltObedience, largestTurn) - rate;
    };
    drive(turnError(wanted.x(), view.velocity.x(), up.x(), turn.x()), Qt::Key_Right, Qt::Key_Left);
    drive(turnError(wanted.y(), view.velocity.y(), up.y(), turn.y()), Qt::Key_Up, Qt::Key_Down);
}

void KeyPlayer::keepStill(const PlayerView& view)
{
    const osg::Vec3d turn =
        turnOf(osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), view.board));
    drive(-turn.x(), Qt::Key_Right, Qt::Key_Left);
    drive(-turn.y(), Qt::Key_Up, Qt::Key_Down);
}

void KeyPlayer::drive(double error, Qt::Key towards, Qt::Key away)
{
    press(towards, error > deadZone);
    press(away, error < -deadZone);
}

void KeyPlayer::press(Qt::Key key, bool isDown)
{
    if (down[key] == isDown)
        return;
    down[key] = isDown;
    if (isDown)
        pressKey(key);
    else
        releaseKey(key);
}

void KeyPlayer::letGo()
{
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right})
        press(key, false);
}
