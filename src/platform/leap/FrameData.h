#pragma once

#include "platform/leap/Leap.h"

#include <cstdint>
#include <vector>

namespace Leap {

struct HandData
{
    std::int64_t id = -1;
    Vector palmPosition;
    Vector palmNormal;
    Vector direction;
};

/// A finger as the service reports it.
struct PointableData
{
    std::int64_t id = -1;
    std::int64_t handId = -1;  // may name no hand of the frame
    int finger = -1;           // 0 thumb to 4 little finger; -1 when the service does not tell
    bool extended = true;
    Vector tipPosition;  // zero when the service tells nonsense
    Vector direction;
};

struct GestureData
{
    std::int64_t id = -1;
    Gesture::Type type = Gesture::TYPE_INVALID;
    Gesture::State state = Gesture::STATE_INVALID;
    float progress = 0.0f;  // turns of a circle
    Vector normal;          // of a circle
    /// A copy and not a number: a gesture outlives its frame when that frame is never delivered.
    Pointable pointable;
};

/// One frame, written once by the socket's thread and never changed after it was published.
struct FrameData
{
    std::int64_t id = -1;
    std::int64_t timestamp = 0;  // microseconds on the service's clock
    std::vector<HandData> hands;
    std::vector<PointableData> pointables;
    std::vector<GestureData> gestures;
};

}  // namespace Leap
