#include "TapPlayer.h"

#include "Steering.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int fastestEyes = 8;  // ticks: 0.16 s
constexpr int slowestEyes = 13;
constexpr int shortestTap = 2;  // ticks: 40 ms
constexpr int longestTap = 4;
constexpr int restTicks = 8;          // between two taps of a finger
constexpr double tiltPerTick = 0.09;  // radians that a tick of a key turns the board in the end
constexpr double turnToCome = 0.9;    // seconds: what is left of a turn, by its rate
constexpr double worthATap = 0.7;     // of what the shortest tap does, at first
constexpr double leastWorth = 0.25;   // the same when nothing has happened for a while
constexpr double impatience = 0.01;   // by which that falls a tick
constexpr double slip = 0.15;  // share of taps that come out a tick longer, and as many shorter

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
    temper.speed = std::uniform_real_distribution<>(1.4, 1.9)(dice);
    temper.waitingSpeed = 0.9;
    temper.careSpeed = 1.2;
    temper.caution = 1.5;
    temper.patience = 12;
    return temper;
}

double within(double value, double limit)
{
    return std::clamp(value, -limit, limit);
}

}  // namespace

TapPlayer::TapPlayer(PlayedGame& playedGame, const LevelMap& map, unsigned int seed, int reaction)
    : Player(playedGame, map, temperOf(seed), eyesOf(seed, reaction)),
      dice(seed + 1),
      eagerness(std::uniform_real_distribution<>(0.8, 1.0)(dice)),
      gentleTilt(std::uniform_real_distribution<>(0.2, 0.3)(dice))
{
}

void TapPlayer::move(const Intent& intent)
{
    const PlayerView& seen = sight.view();
    const osg::Vec3d up = seen.up();
    const osg::Vec3d turn = (up - sight.viewBefore().up()) / steering::worldSecondsPerTick;
    const osg::Vec2d wanted = wantedVelocity(intent);
    const double mostTilt = intent.climbs ? steering::climbingTilt : gentleTilt;
    const double seconds = sight.delay() * steering::worldSecondsPerTick;
    const auto wantedTilt = [&](const Finger& finger, double speed, double seenSpeed, double tilt,
                                double rate) {
        if (intent.keepsBoard)
            return tilt;
        const double between = 0.5 * (tilt + tiltToCome(finger, tilt, rate));
        const double expected = seenSpeed + steering::rollingGravity * between * seconds;
        return within((speed - expected) * eagerness / steering::rollingGravity, mostTilt);
    };
    move(across, wantedTilt(across, wanted.x(), seen.velocity.x(), up.x(), turn.x()), up.x(),
         turn.x());
    move(along, wantedTilt(along, wanted.y(), seen.velocity.y(), up.y(), turn.y()), up.y(),
         turn.y());
}

double TapPlayer::tiltToCome(const Finger& finger, double tilt, double turn) const
{
    double ticks = 0.0;
    for (const int press : finger.since)
        ticks += press;
    return tilt + turnToCome * turn + tiltPerTick * ticks;
}

void TapPlayer::move(Finger& finger, double wantedTilt, double tilt, double turn)
{
    if (finger.pressed > 0 && --finger.pressed == 0)
        release(finger);
    else if (finger.rest > 0)
        --finger.rest;

    if (finger.pressed == 0 && finger.rest == 0) {
        const double missing = wantedTilt - tiltToCome(finger, tilt, turn);
        const double worth = std::max(leastWorth, worthATap - impatience * finger.idle++);
        if (std::abs(missing) > worth * shortestTap * tiltPerTick)
            tap(finger, missing > 0.0 ? 1 : -1, int(std::lround(std::abs(missing) / tiltPerTick)));
    }
    finger.since.push_back(finger.pressed > 0 ? finger.direction : 0);
    if (int(finger.since.size()) > sight.delay())
        finger.since.pop_front();
}

void TapPlayer::tap(Finger& finger, int direction, int ticks)
{
    const double luck = std::uniform_real_distribution<>(0.0, 1.0)(dice);
    const int slipped = luck < slip ? 1 : luck > 1.0 - slip ? -1 : 0;
    finger.idle = 0;
    finger.direction = direction;
    finger.pressed = std::max(shortestTap, std::min(ticks, longestTap) + slipped);
    game.presses(direction > 0 ? finger.positive : finger.negative);
}

void TapPlayer::release(Finger& finger)
{
    game.releases(finger.direction > 0 ? finger.positive : finger.negative);
    finger.rest = restTicks;
}

void TapPlayer::letGo()
{
    for (Finger* finger : {&across, &along}) {
        if (finger->pressed > 0)
            release(*finger);
        finger->pressed = 0;
    }
}
