#include "platform/leap/Conversation.h"

#include "FrameWriter.h"
#include "HandPlayer.h"
#include "platform/leap/MessageParser.h"
#include "platform/leap/Session.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Leap {

namespace {

constexpr int framesPerSecond = 100;
constexpr std::int64_t second = 1000000;  // us
const char* const oldService = "{\"serviceVersion\":\"2.3.1+1\",\"version\":6}";
const char* const newService = "{\"version\":6}";
const char* const malformed = "{\"id\":nan}";
constexpr int mostMalformed = 100;

class ConversationTest : public testing::Test
{
protected:
    ConversationTest()
    {
        session->enableGesture(Gesture::TYPE_CIRCLE, true);
        session->enableGesture(Gesture::TYPE_SCREEN_TAP, true);
    }

    void greets(const std::string& hello)
    {
        conversation = std::make_unique<Conversation>(*session);
        ASSERT_EQ(says(hello), Conversation::Verdict::Greeted) << hello;
    }

    Conversation::Verdict says(std::string_view text) { return conversation->receive(text); }

    Frame showsAfter(const PlayedFrame& frame)
    {
        const QByteArray message = frameMessage(frame);
        EXPECT_EQ(says({message.constData(), std::size_t(message.size())}),
                  Conversation::Verdict::GoOn);
        return session->frame();
    }

    /// The taps seen while a finger pokes; `change` may alter each frame before it is sent.
    int tapsOfAPoke(const std::function<void(PlayedFrame&)>& change = nullptr)
    {
        HandPlayer player(framesPerSecond);
        player.hands = {PlayedHand()};
        player.tap();
        int taps = 0;
        while (player.isMoving()) {
            PlayedFrame frame = player.nextFrame();
            frame.gestures.clear();
            frame.tellsGestures = false;
            if (change)
                change(frame);
            taps += showsAfter(frame).gestures().count();
        }
        return taps;
    }

    /// A frame with one circle of the service, drawn by a finger that the frame may hold.
    static std::string circle(int frame, int id, const char* state, bool withFinger, int normalZ)
    {
        const std::string number = std::to_string(id);
        return "{\"id\":" + std::to_string(frame) + ",\"timestamp\":" + std::to_string(frame) +
               ",\"hands\":[],\"pointables\":[" +
               (withFinger ? "{\"id\":" + number + ",\"tipPosition\":[0,0,1],\"direction\":[0,1,0]}"
                           : "") +
               "],\"gestures\":[{\"id\":" + number + ",\"type\":\"circle\",\"state\":\"" + state +
               "\",\"normal\":[0,0," + std::to_string(normalZ) + "],\"pointableIds\":[" + number +
               "]}]}";
    }

    CircleGesture sees(const std::string& message)
    {
        EXPECT_EQ(says(message), Conversation::Verdict::GoOn);
        EXPECT_EQ(session->frame().gestures().count(), 1);
        return CircleGesture(session->frame().gestures()[0]);
    }

    std::shared_ptr<Session> session = std::make_shared<Session>();
    std::unique_ptr<Conversation> conversation;
};

}  // namespace

TEST_F(ConversationTest, TakesTheGesturesOfServicesOfTheFirstTwoGenerationsOnly)
{
    struct Greeting
    {
        const char* version;
        bool recognizes;
    };
    for (const Greeting& greeting :
         {Greeting{"1.3.0+2", true}, Greeting{"2.3.1+30000", true}, Greeting{"3.2.1+1", false},
          Greeting{"4.1.0", false}, Greeting{"22.1", false}, Greeting{"", false},
          Greeting{"two", false}}) {
        SCOPED_TRACE(greeting.version);
        greets("{\"serviceVersion\":\"" + std::string(greeting.version) + "\",\"version\":6}");
        EXPECT_EQ(says(circle(1000, 7, "update", true, 1)), Conversation::Verdict::GoOn);
        EXPECT_EQ(session->frame().gestures().count(), greeting.recognizes ? 1 : 0);
        EXPECT_EQ(tapsOfAPoke(), greeting.recognizes ? 0 : 1) << "never from both";
    }
}

TEST_F(ConversationTest, TellsTheSenseOfACircleWithoutAFingerByItsNormal)
{
    greets(oldService);
    const CircleGesture away = sees(circle(1, 7, "update", false, -1));
    EXPECT_EQ(away.pointable().id(), -1) << "which no finger has";
    EXPECT_GT(away.pointable().direction().angleTo(Vector(0, 0, 1)), 3.1f);
    EXPECT_FLOAT_EQ(away.pointable().direction().angleTo(away.normal()), 0.0f);
}

TEST_F(ConversationTest, RemembersTheFingerOfACircleThatEndsWithoutIt)
{
    greets(oldService);
    // The ends of far more circles than anyone draws are lost on the way.
    int frame = 1;
    for (int id = 1; id <= 200; ++id)
        sees(circle(frame++, id, "start", true, 1));
    sees(circle(frame++, 201, "start", true, 1));
    const CircleGesture ended = sees(circle(frame++, 201, "stop", false, 1));
    EXPECT_EQ(ended.pointable().id(), 201);
    EXPECT_EQ(ended.pointable().direction(), Vector(0, 1, 0));
}

TEST_F(ConversationTest, GoesOnAfterTheSameGreetingAndEndsAfterAnother)
{
    greets(newService);
    EXPECT_EQ(says(newService), Conversation::Verdict::GoOn);
    EXPECT_EQ(says("{\"version\":5}"), Conversation::Verdict::Hopeless);
}

TEST_F(ConversationTest, CountsBadMessagesAnewAfterAGoodOne)
{
    greets(newService);
    for (int round = 1; round <= 2; ++round) {
        for (int i = 1; i < mostMalformed; ++i)
            ASSERT_EQ(says(malformed), Conversation::Verdict::GoOn) << i;
        PlayedFrame frame;
        frame.id = round;
        showsAfter(frame);
    }
    for (int i = 1; i < mostMalformed; ++i)
        ASSERT_EQ(says(malformed), Conversation::Verdict::GoOn) << i;
    EXPECT_EQ(says(malformed), Conversation::Verdict::Hopeless);
}

TEST_F(ConversationTest, FollowsAClockThatHasGoneBack)
{
    greets(newService);
    for (const std::int64_t start : {40 * second, 20 * second}) {
        EXPECT_EQ(tapsOfAPoke([start](PlayedFrame& frame) { frame.timestamp += start; }), 1)
            << "from " << start;
    }
}

}  // namespace Leap
