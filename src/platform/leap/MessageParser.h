#pragma once

#include "platform/leap/FrameData.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Leap {

/// One text message of the service, as far as it can be trusted.
struct Message
{
    enum class Kind {
        Malformed,  // not of this protocol, or with nothing in it that can be used
        Hello,
        Event,  // about the device; frames tell all that is needed of it
        Frame
    };

    Kind kind = Kind::Malformed;
    int version = 0;             // of a hello; 0 when it is not a whole number
    std::string serviceVersion;  // of a hello; newer services do not tell
    FrameData frame;
};

/// Longer messages are malformed: two hands take 11 KB.
constexpr std::size_t longestMessage = 1 << 20;

/// Reads a message strictly and never fails: a hand, finger or gesture that is not what the
/// protocol says is left out, and a frame without its number, time or list of hands is malformed.
/// Positions farther than ten metres and directions that are no unit vectors do not count; a number
/// that no double holds makes the whole message malformed. The lists are cut at 8 hands, 64 fingers
/// and 64 gestures.
Message parseMessage(std::string_view text);

}  // namespace Leap
