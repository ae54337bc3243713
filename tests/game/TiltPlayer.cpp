#include "TiltPlayer.h"

#include "HandGameTest.h"
#include "base/WorldNumbers.h"

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

double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

Temper gentle()
{
    Temper temper;
    temper.speed = topSpeed;
    return temper;
}

osg::Vec2d tiltFor(const Intent& intent, const PlayerView& view)
{
    const osg::Vec3d wanted = osg::Matrixd::transform3x3(
        osg::Vec3d(intent.velocity.x(), intent.velocity.y(), 0.0), view.board);
    return {
        within((wanted.x() - view.velocity.x()) * obedience / world::rollingGravity, gentleTilt),
        within((wanted.y() - view.velocity.y()) * obedience / world::rollingGravity, gentleTilt)};
}

}  // namespace

TiltPlayer::TiltPlayer(Rollix& game, const QImage& picture)
    : map(picture), sight(game, map, 0), strategy(map, gentle())
{
}

PlayedHand TiltPlayer::hand()
{
    sight.look();
    const PlayerView& view = sight.view();
    return leading(tiltFor(strategy.decide(sight, view.onBoard()), view));
}

PlayedHand TiltPlayer::restingHand() const
{
    return handFor(sight.view().up());
}

/// Holds the hand so that the board turns towards the tilt. A hand that is nearly there commands
/// nothing, so it goes a little too far until the board is.
PlayedHand TiltPlayer::leading(const osg::Vec2d& tilt) const
{
    const osg::Vec3d now = sight.view().up();
    osg::Vec2d missing = tilt - osg::Vec2d(now.x(), now.y());
    const double distance = missing.normalize();
    double lead = 0.0;
    if (distance > closeEnough)
        lead = std::clamp(distance * leadPerTilt, leastLead, mostLead);
    osg::Vec3d wanted(now.x() + missing.x() * lead, now.y() + missing.y() * lead, 0.0);
    wanted.z() = std::sqrt(1.0 - std::min(0.9, wanted.length2()));
    wanted.normalize();
    return handFor(wanted);
}
