#pragma once

#include "platform/leap/GestureRecognizer.h"

#include <cstdint>
#include <map>
#include <string_view>

namespace Leap {

class Session;

/// What one connection to the service says, from its greeting on, made into frames for the session.
/// It knows messages and nothing of sockets.
class Conversation
{
public:
    enum class Verdict {
        GoOn,
        Greeted,  // the service may be sent its settings now
        Hopeless  // nothing useful is to be expected of this connection
    };

    explicit Conversation(Session& session);

    Verdict receive(std::string_view text);
    bool isGreeted() const { return greeted; }

private:
    Verdict greet(const struct Message& message);
    Verdict acceptFrame(FrameData frame);
    void completeGestures(FrameData& frame);

    Session& session;
    bool greeted = false;
    int malformed = 0;  // in a row
    bool anyFrame = false;
    std::int64_t lastId = 0;
    std::int64_t lastTimestamp = 0;

    /// Whose gestures count is decided by the greeting: both at once would report each movement
    /// twice.
    bool serviceRecognizes = false;
    GestureRecognizer recognizer;
    /// The fingers of the gestures that run, for the report that comes after the finger is lost.
    std::map<std::int64_t, Pointable> drawing;
};

}  // namespace Leap
