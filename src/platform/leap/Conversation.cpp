#include "platform/leap/Conversation.h"

#include "platform/leap/MessageParser.h"
#include "platform/leap/Session.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace Leap {

namespace {

constexpr int acceptedVersion = 6;
constexpr int mostMalformed = 100;
constexpr std::int64_t clockReset = 1000000;  // us backwards; less is a frame out of order
constexpr std::size_t mostDrawing = 64;

// Fingers point away from the player, more or less: enough to tell a circle's sense by.
const Pointable unknownFinger(-1, Vector(0.0f, 0.0f, -1.0f));

// The services of these generations recognise gestures; later ones may send an empty list for ever.
bool recognizesGestures(const std::string& serviceVersion)
{
    char* end = nullptr;
    const long major = std::strtol(serviceVersion.c_str(), &end, 10);
    return *end == '.' && (major == 1 || major == 2);
}

}  // namespace

Conversation::Conversation(Session& session_) : session(session_) {}

Conversation::Verdict Conversation::receive(std::string_view text)
{
    Message message = parseMessage(text);
    if (!greeted)
        return greet(message);
    switch (message.kind) {
    case Message::Kind::Frame:
        malformed = 0;
        return acceptFrame(std::move(message.frame));
    case Message::Kind::Hello:
        return message.version == acceptedVersion ? Verdict::GoOn : Verdict::Hopeless;
    case Message::Kind::Event:
        malformed = 0;
        return Verdict::GoOn;
    case Message::Kind::Malformed:
        break;
    }
    return ++malformed >= mostMalformed ? Verdict::Hopeless : Verdict::GoOn;
}

Conversation::Verdict Conversation::greet(const Message& message)
{
    if (message.kind != Message::Kind::Hello || message.version != acceptedVersion)
        return Verdict::Hopeless;
    greeted = true;
    serviceRecognizes = recognizesGestures(message.serviceVersion);
    session.connected();
    return Verdict::Greeted;
}

Conversation::Verdict Conversation::acceptFrame(FrameData frame)
{
    if (anyFrame && frame.id == lastId)
        return Verdict::GoOn;
    if (anyFrame && lastTimestamp - frame.timestamp > clockReset) {
        recognizer.reset();
        drawing.clear();
    }
    anyFrame = true;
    lastId = frame.id;
    lastTimestamp = frame.timestamp;
    completeGestures(frame);
    session.publish(std::move(frame));
    return Verdict::GoOn;
}

void Conversation::completeGestures(FrameData& frame)
{
    if (!serviceRecognizes) {
        frame.gestures.clear();
        recognizer.recognize(frame);
        return;
    }
    for (GestureData& gesture : frame.gestures) {
        const auto known = drawing.find(gesture.id);
        if (!gesture.pointable.isValid() && known != drawing.end())
            gesture.pointable = known->second;
        if (gesture.state == Gesture::STATE_STOP)
            drawing.erase(gesture.id);
        else
            drawing[gesture.id] = gesture.pointable;
        // The end of the oldest was lost, or it would not be here any more.
        if (drawing.size() > mostDrawing)
            drawing.erase(drawing.begin());
        if (!gesture.pointable.isValid())
            gesture.pointable = unknownFinger;
    }
}

}  // namespace Leap
