#include "SteeringHand.h"

#include "Steering.h"

#include <osg/Math>

#include <algorithm>
#include <cmath>

namespace {

constexpr int fastestEyes = 8;  // ticks: 0.16 s
constexpr int slowestEyes = 13;
constexpr double lag = 0.12;           // seconds
constexpr double mostLead = 0.1;       // radians
constexpr double reach = 0.61;         // radians: 35 degrees
constexpr double tremble = 0.0175;     // radians, root of the mean square: one degree
constexpr double slowestTremor = 1.0;  // Hz
constexpr double fastestTremor = 8.0;
constexpr int wavesPerAxis = 5;
constexpr double secondsPerTick = 1.0 / steering::ticksPerSecond;

int eyesOf(unsigned int seed, int reaction)
{
    if (reaction > 0)
        return std::max(reaction, fastestEyes);
    return fastestEyes + int(seed % unsigned(slowestEyes - fastestEyes + 1));
}

Temper temperOf(unsigned int seed)
{
    std::mt19937 dice(seed);
    Temper temper;
    temper.speed = std::uniform_real_distribution<>(1.7, 2.2)(dice);
    temper.waitingSpeed = 1.0;
    temper.careSpeed = 1.5;
    temper.caution = 1.5;
    temper.patience = 12;
    return temper;
}

double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

}  // namespace

SteeringHand::SteeringHand(PlayedGame& playedGame, const LevelMap& map, unsigned int seed,
                           int reaction)
    : Player(playedGame, map, temperOf(seed), eyesOf(seed, reaction)),
      dice(seed + 1),
      eagerness(std::uniform_real_distribution<>(0.9, 1.1)(dice)),
      gentleTilt(std::uniform_real_distribution<>(0.18, 0.24)(dice))
{
    const double amplitude = tremble * std::sqrt(2.0 / wavesPerAxis);
    for (int i = 0; i < 2 * wavesPerAxis; ++i) {
        waves.push_back({std::uniform_real_distribution<>(slowestTremor, fastestTremor)(dice),
                         std::uniform_real_distribution<>(0.0, 2.0 * osg::PI)(dice), amplitude});
    }
}

void SteeringHand::move(const Intent& intent)
{
    ++tick;
    const PlayerView& seen = sight.view();
    const osg::Vec3d up = seen.up();
    if (seen.state == GameState::WaitingForRest) {
        show(osg::Vec2d(up.x(), up.y()));
        return;
    }
    if (intent.keepsBoard) {
        show(osg::Vec2d(up.x(), up.y()));
        return;
    }
    const osg::Vec2d wanted = wantedVelocity(intent);
    const double mostTilt = intent.climbs ? steering::climbingTilt : gentleTilt;
    const double seconds = sight.delay() * steering::worldSecondsPerTick;
    const auto tiltFor = [&](double speed, double seenSpeed, double tilt, double asked) {
        const double expected =
            seenSpeed + steering::rollingGravity * 0.5 * (tilt + asked) * seconds;
        return within((speed - expected) * eagerness / steering::rollingGravity, mostTilt);
    };
    const osg::Vec2d tilt(tiltFor(wanted.x(), seen.velocity.x(), up.x(), hand.x()),
                          tiltFor(wanted.y(), seen.velocity.y(), up.y(), hand.y()));
    // A hand that is nearly there commands nothing, and people soon lead the board a little.
    show(tilt +
         osg::Vec2d(within(tilt.x() - up.x(), mostLead), within(tilt.y() - up.y(), mostLead)));
}

void SteeringHand::show(const osg::Vec2d& wantedTilt)
{
    hand += (wantedTilt - hand) * (1.0 - std::exp(-secondsPerTick / lag));
    const osg::Vec2d held = hand + tremor();
    osg::Vec3d up(std::sin(within(held.x(), reach)), std::sin(within(held.y(), reach)), 0.0);
    up.z() = std::sqrt(std::max(0.0, 1.0 - up.length2()));
    game.seesHand(up);
}

osg::Vec2d SteeringHand::tremor() const
{
    osg::Vec2d sum;
    for (std::size_t i = 0; i < waves.size(); ++i) {
        const Wave& wave = waves[i];
        sum[i % 2] += wave.amplitude *
                      std::sin(2.0 * osg::PI * wave.frequency * tick * secondsPerTick + wave.phase);
    }
    return sum;
}
