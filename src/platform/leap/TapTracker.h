#pragma once

#include "platform/leap/Leap.h"

#include <cstdint>
#include <deque>

namespace Leap {

/// Finds taps at an upright screen in the path of one fingertip, for services that report none: the
/// finger rests, pokes forward and comes back, while the hand stays.
class TapTracker
{
public:
    struct Sample
    {
        std::int64_t time = 0;  // microseconds, greater than the one before
        Vector tip;             // mm
        Vector palm;            // mm
        float tipSpeed = 0.0f;  // mm/s
        bool pointsForward = false;
    };

    /// True when the tap is complete, which is on the way back.
    bool follow(const Sample& sample);
    /// Also keeps the dead time after the last tap.
    void forgetMovement();

private:
    enum class Phase { Moving, Resting, Poking };

    void rest(const Sample& sample);
    bool poke(const Sample& sample);
    float forwardTravelLately(const Sample& sample) const;

    Phase phase = Phase::Moving;
    bool still = false;
    std::int64_t stillSince = 0;
    Sample origin;        // where the finger rested last
    Sample turningPoint;  // the farthest forward of the poke
    bool fastEnough = false;
    std::deque<Sample> recent;
    std::int64_t deadUntil = 0;
    bool hasDeadTime = false;
};

}  // namespace Leap
