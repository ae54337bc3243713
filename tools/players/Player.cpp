#include "Player.h"

#include "PerfectPlayer.h"
#include "Steering.h"
#include "SteeringHand.h"
#include "TapPlayer.h"

Player::Player(PlayedGame& playedGame, const LevelMap& map, const Temper& temper, int delay)
    : game(playedGame), sight(playedGame.rollix(), map, delay), strategy(map, temper)
{
}

void Player::act()
{
    sight.look();
    move(strategy.decide(sight, expectedBall()));
}

osg::Vec3d Player::expectedBall() const
{
    const PlayerView& seen = sight.view();
    const double seconds = sight.delay() * steering::worldSecondsPerTick;
    const osg::Vec3d up = seen.up();
    const osg::Vec3d pull = osg::Vec3d(up.x(), up.y(), 0.0) * steering::rollingGravity;
    const osg::Vec3d there = seen.ball + seen.velocity * seconds + pull * (0.5 * seconds * seconds);
    return there * osg::Matrixd::inverse(seen.board);
}

osg::Vec2d Player::wantedVelocity(const Intent& intent) const
{
    // The board turns freely about its vertical axis: what is wanted on it has to be turned along.
    const osg::Vec3d wanted = osg::Matrixd::transform3x3(
        osg::Vec3d(intent.velocity.x(), intent.velocity.y(), 0.0), sight.view().board);
    return {wanted.x(), wanted.y()};
}

std::unique_ptr<Player> makePlayer(const std::string& name, PlayedGame& game, const LevelMap& map,
                                   unsigned int seed, int reaction)
{
    if (name == "perfect")
        return std::make_unique<PerfectPlayer>(game, map);
    if (name == "taps")
        return std::make_unique<TapPlayer>(game, map, seed, reaction);
    if (name == "hand")
        return std::make_unique<SteeringHand>(game, map, seed, reaction);
    return nullptr;
}
