#include "platform/leap/FrameData.h"

#include <Leap.h>
#include <gtest/gtest.h>

#include <type_traits>

using namespace Leap;

static_assert(Gesture::TYPE_CIRCLE == 4 && Gesture::TYPE_SCREEN_TAP == 5);
static_assert(Gesture::STATE_START == 1 && Gesture::STATE_STOP == 3);
static_assert(std::is_copy_constructible_v<Controller>, "the menu takes it by value");

TEST(LeapVector, MeasuresAnglesFromZeroToPi)
{
    EXPECT_FLOAT_EQ(Vector(1, 0, 0).angleTo(Vector(0, 5, 0)), 1.5707964f);
    EXPECT_FLOAT_EQ(Vector(0, 0, -1).angleTo(Vector(0, 0, 1)), 3.1415927f);
    // Rounding may bring the cosine over 1.
    EXPECT_NEAR(Vector(0.1f, 0.7f, 0.3f).angleTo(Vector(0.1f, 0.7f, 0.3f)), 0.0f, 1e-3f);
    EXPECT_EQ(Vector(0, 0, 0).angleTo(Vector(0, 0, 1)), 0.0f);
}

TEST(LeapFrame, IsEmptyWithoutData)
{
    const Frame frame;
    EXPECT_FALSE(frame.isValid());
    EXPECT_TRUE(frame.hands().isEmpty());
    EXPECT_EQ(frame.gestures().count(), 0);
    const Hand hand = frame.hands()[0];
    EXPECT_FALSE(hand.isValid());
    EXPECT_EQ(hand.palmNormal(), Vector());
    const Gesture gesture = frame.gestures()[3];
    EXPECT_EQ(gesture.type(), Gesture::TYPE_INVALID);
    EXPECT_EQ(gesture.state(), Gesture::STATE_INVALID);
    EXPECT_FALSE(CircleGesture(gesture).pointable().isValid());
}

TEST(LeapFrame, OutlivesItsListsAndTheyOutliveIt)
{
    HandList hands;
    Gesture gesture;
    {
        auto data = std::make_shared<FrameData>();
        data->hands.resize(1);
        data->hands[0].palmPosition = Vector(1, 2, 3);
        data->gestures.resize(1);
        data->gestures[0].type = Gesture::TYPE_CIRCLE;
        data->gestures[0].progress = 1.5f;
        const Frame frame(data);
        hands = frame.hands();
        gesture = frame.gestures()[0];
    }
    EXPECT_EQ(hands.count(), 1);
    EXPECT_EQ(hands[0].palmPosition(), Vector(1, 2, 3));
    EXPECT_FALSE(hands[-1].isValid());
    EXPECT_FALSE(hands[1].isValid());
    EXPECT_FLOAT_EQ(CircleGesture(gesture).progress(), 1.5f);
}

TEST(LeapCircleGesture, IsInvalidWhenMadeOfATap)
{
    auto data = std::make_shared<FrameData>();
    data->gestures.resize(1);
    data->gestures[0].type = Gesture::TYPE_SCREEN_TAP;
    data->gestures[0].progress = 1.0f;
    const CircleGesture circle(Frame(data).gestures()[0]);
    EXPECT_FALSE(circle.isValid());
    EXPECT_EQ(circle.progress(), 0.0f);
}
