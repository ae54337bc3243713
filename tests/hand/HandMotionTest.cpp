#include "HandMotion.h"

#include "HandPlayer.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int usualRate = 100;          // frames a second
constexpr float gamesDeadZone = 0.1f;   // radians
constexpr float leastRadians = 0.035f;  // nobody sees it

float tiltOf(const PlayedHand& hand)
{
    return std::hypot(hand.pitch, hand.roll);
}

float degreesBetween(const PlayedHand& hand, const PlayedHand& other)
{
    const QQuaternion turn = hand.orientation().conjugated() * other.orientation();
    const float half = turn.vector().length();
    return 2.0f * std::asin(std::min(half, 1.0f)) * 180.0f / 3.1415927f;
}

class HandMotionTest : public ::testing::Test
{
protected:
    explicit HandMotionTest(int rate = usualRate)
        : player(rate, 3.0), motion(rate), framesPerSecond(rate)
    {
    }

    PlayedFrame frame()
    {
        motion.step(player);
        return player.nextFrame();
    }

    void frames(int count)
    {
        for (int i = 0; i < count; ++i)
            frame();
    }

    void wishes(const QVector2D& tilt)
    {
        HandWish wish;
        wish.present = true;
        wish.tilt = tilt;
        motion.setWish(wish);
    }

    void wishesTwo(float yaw = 0.0f, float lift = 0.0f)
    {
        HandWish wish;
        wish.present = true;
        wish.secondHand = true;
        wish.yaw = yaw;
        wish.lift = lift;
        motion.setWish(wish);
    }

    void wishesNone() { motion.setWish(HandWish()); }

    std::vector<PlayedHand> hands() { return player.hands; }

    /// Frames until the condition holds, or -1.
    template <class Condition>
    int framesUntil(Condition condition)
    {
        for (int i = 1; i <= 5 * framesPerSecond; ++i) {
            frame();
            if (condition())
                return i;
        }
        return -1;
    }

    HandPlayer player;
    HandMotion motion;
    int framesPerSecond;
};

class HandMotionAtRate : public HandMotionTest, public ::testing::WithParamInterface<int>
{
protected:
    HandMotionAtRate() : HandMotionTest(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Rates, HandMotionAtRate, ::testing::Values(60, 100, 200));

}  // namespace

TEST_F(HandMotionTest, ShowsNoHandThatNobodyWishesFor)
{
    frames(3);
    EXPECT_TRUE(hands().empty());
}

TEST_F(HandMotionTest, HoldsTheHandLevelAtTheHeightOfRest)
{
    wishes({});
    frame();
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_EQ(hands()[0].normal(), QVector3D(0, -1, 0));
    EXPECT_EQ(hands()[0].direction(), QVector3D(0, 0, -1));
    EXPECT_EQ(hands()[0].palm, QVector3D(0, 200, 0));
}

TEST_F(HandMotionTest, LowersTheEdgesThatAreWished)
{
    wishes({0.4f, 0.0f});
    frames(30);
    EXPECT_NEAR(hands()[0].normal().x(), -std::sin(0.4f), 1e-3f) << "right edge down";
    wishes({0.0f, 0.4f});
    frames(30);
    EXPECT_NEAR(hands()[0].direction().y(), -std::sin(0.4f), 1e-3f) << "far edge down";
}

TEST_P(HandMotionAtRate, TurnsByTenDegreesAFrameAtTheMost)
{
    unsigned int draw = 1;
    const auto random = [&draw] {
        draw = draw * 1664525u + 1013904223u;
        return float(draw >> 8) / float(1u << 24) * 2.0f - 1.0f;
    };
    PlayedHand before;
    bool wasHere = false;
    float farthest = 0.0f;
    for (int i = 0; i < 20000; ++i) {
        if (i % 7 == 0) {
            HandWish wish;
            wish.present = random() > -0.9f;
            wish.tilt = farthestTilt * QVector2D(random(), random());
            wish.secondHand = i % 700 > 500;
            wish.yaw = 0.7f * random();
            motion.setWish(wish);
        }
        if (i % 900 == 0)
            motion.tap();
        frame();
        if (hands().empty()) {
            wasHere = false;
            continue;
        }
        if (wasHere && hands()[0].id == before.id)
            farthest = std::max(farthest, degreesBetween(before, hands()[0]));
        before = hands()[0];
        wasHere = true;
    }
    EXPECT_LE(farthest, 10.0f);
    EXPECT_GT(farthest, 6.0f) << "else nothing was tried";
}

TEST_P(HandMotionAtRate, IsWhereItIsWishedWithinATenthOfASecond)
{
    wishes({});
    frames(2);
    wishes({farthestTilt, 0.0f});
    frames(framesPerSecond / 10);
    EXPECT_NEAR(tiltOf(hands()[0]), farthestTilt, leastRadians);
}

TEST_P(HandMotionAtRate, IsPastTheGamesDeadZoneWithinAHundredthOfASecondOrTheNextFrame)
{
    wishes({});
    frames(2);
    wishes({0.3f, 0.0f});
    frames(std::max(1, framesPerSecond / 100));
    EXPECT_GT(tiltOf(hands()[0]), gamesDeadZone);
}

TEST_P(HandMotionAtRate, ComesLevelAndWaitsForTheBoardBeforeItGoes)
{
    wishes({0.5f, 0.2f});
    frames(framesPerSecond);
    wishesNone();
    const int gone = framesUntil([this] { return hands().empty(); });
    EXPECT_GE(gone, framesPerSecond / 2);
    EXPECT_LE(gone, framesPerSecond);
}

TEST_F(HandMotionTest, IsLevelLongBeforeItGoes)
{
    wishes({0.5f, 0.2f});
    frames(usualRate);
    wishesNone();
    frames(usualRate / 10);
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_LT(tiltOf(hands()[0]), leastRadians);
}

TEST_F(HandMotionTest, ComesBackAsANewHand)
{
    wishes({});
    frames(2);
    const int id = hands()[0].id;
    wishesNone();
    ASSERT_GT(framesUntil([this] { return hands().empty(); }), 0);
    wishes({});
    frame();
    EXPECT_NE(hands()[0].id, id);
}

TEST_F(HandMotionTest, BringsTheSecondHandWhenTheBoardHasFollowedTheFirstToTheLevel)
{
    wishes({0.5f, 0.0f});
    frames(usualRate);
    wishesTwo(0.5f);
    const int came = framesUntil([this] { return hands().size() == 2; });
    EXPECT_GE(came, usualRate / 2);
    EXPECT_LE(came, usualRate);
    EXPECT_LT(tiltOf(hands()[0]), leastRadians);
    EXPECT_TRUE(hands()[1].isLeft);
    EXPECT_NE(hands()[0].id, hands()[1].id);
}

TEST_F(HandMotionTest, BringsTheSecondHandAtOnceToAHandThatHasBeenLevel)
{
    wishes({});
    frames(usualRate);
    wishesTwo();
    frame();
    EXPECT_EQ(hands().size(), 2u);
}

TEST_F(HandMotionTest, TurnsAndLiftsBothHandsAndNeitherTilts)
{
    wishes({});
    frames(usualRate);
    wishesTwo(0.6f, 50.0f);
    frames(20);
    ASSERT_EQ(hands().size(), 2u);
    for (const PlayedHand& hand : hands()) {
        EXPECT_NEAR(hand.direction().x(), std::sin(0.6f), 1e-3f);
        EXPECT_NEAR(hand.normal().y(), -1.0f, 1e-5f);
        EXPECT_NEAR(hand.palm.y(), 250.0f, 0.1f);
    }
    EXPECT_NEAR(motion.yaw(), 0.6f, 1e-3f);
    EXPECT_NEAR(motion.lift(), 50.0f, 0.1f);
}

TEST_F(HandMotionTest, IsAtRestWithinATenthOfASecondAfterTheSecondHandHasGone)
{
    wishes({});
    frames(usualRate);
    wishesTwo(0.7f, 60.0f);
    frames(usualRate);
    wishes({});
    frame();
    EXPECT_EQ(hands().size(), 1u);
    EXPECT_EQ(motion.yaw(), 0.0f);
    frames(usualRate / 10);
    EXPECT_LT(degreesBetween(hands()[0], PlayedHand()), 1.0f);
    EXPECT_NEAR(hands()[0].palm.y(), 200.0f, 1.0f);
}

TEST_F(HandMotionTest, TapsOnceAndOnlyWhenItIsLevel)
{
    wishes({0.5f, 0.0f});
    frames(usualRate);
    motion.tap();
    int taps = 0;
    int reported = 0;
    for (int i = 1; i <= 2 * usualRate; ++i) {
        const PlayedFrame sent = frame();
        for (const PlayedGesture& gesture : sent.gestures) {
            EXPECT_EQ(gesture.type, PlayedGesture::Type::ScreenTap);
            EXPECT_LT(tiltOf(sent.hands[0]), leastRadians);
            reported = i;
            ++taps;
        }
    }
    EXPECT_EQ(taps, 1);
    EXPECT_LE(reported, 4 * usualRate / 10) << "nobody waits longer for a menu";
    EXPECT_GT(tiltOf(hands()[0]), 0.4f) << "then it is where it is wished again";
}

TEST_F(HandMotionTest, ComesForATapThatNoHandIsThereFor)
{
    motion.tap();
    int taps = 0;
    for (int i = 0; i < usualRate; ++i)
        taps += int(frame().gestures.size());
    EXPECT_EQ(taps, 1);
}

TEST_F(HandMotionTest, LeavesTheFingerToTheGesture)
{
    wishes({});
    frame();
    player.circle(1.0, true);
    int moved = 0;
    for (int i = 0; i < usualRate && player.isMoving(); ++i) {
        wishes({0.001f * float(i), 0.0f});
        frame();
        moved += hands()[0].tipOffset.length() > 5.0f;
    }
    EXPECT_GT(moved, 5);
}
