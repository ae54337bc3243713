#include "TiltPlayer.h"

#include "HandGameTest.h"
#include "base/WorldNumbers.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double approach = 1.0;    // wanted speed per unit of distance, 1/s
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

bool isCheckpoint(const LevelPixel& pixel, int least, int most)
{
    return blockKindOfHue(pixel.hue) == BlockKind::Checkpoint && pixel.saturation >= least &&
           pixel.saturation <= most;
}

}  // namespace

TiltPlayer::TiltPlayer(const GameTest& game, const QImage& picture)
    : test(game),
      map(picture),
      planner(
          map, [](Qt::Key) {}, [](Qt::Key) {}),
      flags(map.cellsWhere([](const LevelPixel& pixel) { return isCheckpoint(pixel, 79, 90); })),
      goals(map.cellsWhere([](const LevelPixel& pixel) { return isCheckpoint(pixel, 49, 68); }))
{
}

PlayedHand TiltPlayer::hand()
{
    const PlayerView view{test.ballPosition(), test.ballVelocity(), test.boardPose()};
    const CellPosition here = planner.cellOf(view);
    flags.erase(std::remove(flags.begin(), flags.end(), here), flags.end());
    return leading(tiltTowards(nearest(flags.empty() ? goals : flags, here), view));
}

PlayedHand TiltPlayer::restingHand() const
{
    return handFor(up());
}

osg::Vec3d TiltPlayer::up() const
{
    return osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), test.boardPose());
}

/// Holds the hand so that the board turns towards the tilt. A hand that is nearly there commands
/// nothing, so it goes a little too far until the board is.
PlayedHand TiltPlayer::leading(const osg::Vec2d& tilt) const
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
    return handFor(wanted);
}

CellPosition TiltPlayer::nearest(const std::vector<CellPosition>& cells,
                                 const CellPosition& from) const
{
    CellPosition target = from;
    std::size_t shortest = 0;
    for (const CellPosition& cell : cells) {
        const std::size_t length = planner.wayTo(cell, from).size();
        if (length > 0 && (shortest == 0 || length < shortest)) {
            shortest = length;
            target = cell;
        }
    }
    return target;
}

osg::Vec2d TiltPlayer::tiltTowards(const CellPosition& target, const PlayerView& view) const
{
    const osg::Vec3d ball = planner.onBoard(view);
    const std::vector<CellPosition> way = planner.wayTo(target, planner.cellOf(view));
    osg::Vec3d wanted;
    if (!way.empty()) {
        // The end of the straight run that the way begins with.
        std::size_t corner = std::min<std::size_t>(1, way.size() - 1);
        while (corner + 1 < way.size() &&
               way[corner + 1].column - way[corner].column == way[1].column - way[0].column &&
               way[corner + 1].row - way[corner].row == way[1].row - way[0].row)
            ++corner;
        wanted.set(within((map.x(way[corner]) - ball.x()) * approach, topSpeed),
                   within((map.y(way[corner]) - ball.y()) * approach, topSpeed), 0.0);
    }
    wanted = osg::Matrixd::transform3x3(wanted, view.board);
    return {
        within((wanted.x() - view.velocity.x()) * obedience / world::rollingGravity, gentleTilt),
        within((wanted.y() - view.velocity.y()) * obedience / world::rollingGravity, gentleTilt)};
}
