#include "platform/leap/TapTracker.h"

#include "platform/leap/VectorMath.h"

#include <cmath>

namespace Leap {

namespace {

constexpr float restSpeed = 40.0f;            // mm/s
constexpr std::int64_t restTime = 50000;      // us
constexpr std::int64_t pokeWindow = 100000;   // us
constexpr std::int64_t longestPoke = 400000;  // us, from rest to the turning point
constexpr std::int64_t returnTime = 250000;   // us
constexpr std::int64_t deadTime = 300000;     // us
constexpr float returnShare = 0.5f;
constexpr float palmShare = 0.5f;

// More than twice what sensors with a recogniser of their own ask for: the hand that steers must
// never tap by accident, as a tap stops the game.
constexpr float leastTravel = 10.0f;  // mm, within pokeWindow
constexpr float leastSpeed = 120.0f;  // mm/s

// The screen stands upright where z is negative.
float forwardTravel(const Vector& from, const Vector& to)
{
    return from.z - to.z;
}

float sidewaysTravel(const Vector& from, const Vector& to)
{
    return std::hypot(to.x - from.x, to.y - from.y);
}

}  // namespace

bool TapTracker::follow(const Sample& sample)
{
    recent.push_back(sample);
    while (sample.time - recent.front().time > pokeWindow)
        recent.pop_front();
    bool tapped = false;
    if (phase == Phase::Poking)
        tapped = poke(sample);
    if (phase != Phase::Poking)
        rest(sample);
    return tapped;
}

void TapTracker::forgetMovement()
{
    phase = Phase::Moving;
    still = false;
    recent.clear();
}

void TapTracker::rest(const Sample& sample)
{
    if (sample.tipSpeed < restSpeed) {
        if (!still) {
            still = true;
            stillSince = sample.time;
        }
        if (sample.time - stillSince >= restTime) {
            phase = Phase::Resting;
            origin = sample;
        }
        return;
    }
    still = false;
    if (phase == Phase::Resting) {
        phase = Phase::Poking;
        turningPoint = origin;
        fastEnough = false;
        poke(sample);
    }
}

bool TapTracker::poke(const Sample& sample)
{
    const float travel = forwardTravel(origin.tip, sample.tip);
    const float farthest = forwardTravel(origin.tip, turningPoint.tip);
    if (travel > farthest) {
        turningPoint = sample;
        const float lately = forwardTravelLately(sample);
        const auto window = float(sample.time - recent.front().time) * 1e-6f;
        fastEnough =
            fastEnough || (lately >= leastTravel && window > 0.0f && sample.pointsForward &&
                           (lately >= leastSpeed * window || sample.tipSpeed >= leastSpeed));
    }
    const bool tooLong = turningPoint.time - origin.time > longestPoke ||
                         sample.time - turningPoint.time > returnTime;
    if (tooLong) {
        forgetMovement();
        return false;
    }
    if (travel > (1.0f - returnShare) * farthest || farthest <= 0.0f)
        return false;
    // The finger is back half way: whatever it was, it is over.
    const bool straight = sidewaysTravel(origin.tip, turningPoint.tip) <= farthest;
    const bool handStayed = forwardTravel(origin.palm, turningPoint.palm) <= palmShare * farthest;
    const bool dead = hasDeadTime && sample.time < deadUntil;
    const bool tapped = fastEnough && farthest >= leastTravel && straight && handStayed && !dead;
    forgetMovement();
    if (tapped) {
        hasDeadTime = true;
        deadUntil = sample.time + deadTime;
    }
    return tapped;
}

float TapTracker::forwardTravelLately(const Sample& sample) const
{
    float travel = 0.0f;
    for (const Sample& earlier : recent)
        travel = std::fmax(travel, forwardTravel(earlier.tip, sample.tip));
    return travel;
}

}  // namespace Leap
