#include "platform/leap/Conversation.h"
#include "platform/leap/FrameData.h"
#include "platform/leap/MessageParser.h"
#include "platform/leap/Session.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string_view>

namespace {

// Of the processor's time, so that a busy machine does not count; the sanitizers do, so that the
// game has far more air than this.
constexpr double longestParsing = 0.05;  // s

void require(bool condition)
{
    if (!condition)
        std::abort();
}

double processorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

bool isUnit(const Leap::Vector& vector)
{
    return std::fabs(vector.magnitudeSquared() - 1.0f) < 1e-4f;
}

// What the game relies on, whoever sent the message.
void requireSane(const Leap::FrameData& frame)
{
    require(frame.hands.size() <= 8);
    require(frame.pointables.size() <= 64);
    for (const Leap::HandData& hand : frame.hands) {
        require(isUnit(hand.palmNormal) && isUnit(hand.direction));
        require(std::fabs(hand.palmPosition.x) <= 10000.0f);
        require(std::fabs(hand.palmPosition.y) <= 10000.0f);
        require(std::fabs(hand.palmPosition.z) <= 10000.0f);
    }
    for (const Leap::GestureData& gesture : frame.gestures) {
        require(std::isfinite(gesture.progress) && gesture.progress >= 0.0f);
        require(gesture.normal == Leap::Vector() || isUnit(gesture.normal));
    }
}

/// How many messages there were, told at the end: an input has as many as it likes.
struct Count
{
    ~Count() { std::printf("%llu messages\n", messages); }
    unsigned long long messages = 0;
};
Count count;

}  // namespace

/// Every line is one message of the service, after a greeting of either generation.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    for (const char* hello :
         {"{\"version\":6}", "{\"serviceVersion\":\"2.3.1+0\",\"version\":6}"}) {
        const auto session = std::make_shared<Leap::Session>();
        session->enableGesture(Leap::Gesture::TYPE_CIRCLE, true);
        session->enableGesture(Leap::Gesture::TYPE_SCREEN_TAP, true);
        Leap::Conversation conversation(*session);
        require(conversation.receive(hello) == Leap::Conversation::Verdict::Greeted);
        for (std::size_t at = 0; at < text.size();) {
            const std::string_view line = text.substr(at, text.find('\n', at) - at);
            at += line.size() + 1;
            ++count.messages;
            const double begin = processorSeconds();
            const Leap::Message message = Leap::parseMessage(line);
            require(processorSeconds() - begin <= longestParsing);
            requireSane(message.frame);
            if (conversation.receive(line) == Leap::Conversation::Verdict::Hopeless)
                break;
        }
    }
    return 0;
}
