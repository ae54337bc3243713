#pragma once

#include "platform/leap/CircleTracker.h"
#include "platform/leap/FrameData.h"
#include "platform/leap/TapTracker.h"

#include <cstdint>
#include <deque>
#include <map>

namespace Leap {

/// Reports circles and screen taps from the index fingertips alone, for services that no longer
/// recognise gestures. Time is the service's clock only.
class GestureRecognizer
{
public:
    /// Adds to the frame what its fingers do.
    void recognize(FrameData& frame);
    void reset();

private:
    struct Finger
    {
        std::deque<TapTracker::Sample> samples;  // the last three, for the speed
        CircleTracker circle;
        TapTracker tap;
        std::int64_t circleId = 0;
        PointableData pointable;
    };

    void follow(Finger& finger, const HandData& hand, const PointableData& pointable,
                FrameData& frame);
    void lose(Finger& finger, FrameData& frame);
    void report(Finger& finger, const CircleTracker::Report& circle, FrameData& frame);

    std::map<std::int64_t, Finger> fingers;  // by the number of the hand
    std::int64_t nextId = 1;
};

}  // namespace Leap
