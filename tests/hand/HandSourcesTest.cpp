// What the hand is told by: a captured pointer and a gamepad.

#include "CameraSteps.h"
#include "HandMotion.h"
#include "HandPlayer.h"
#include "PadHand.h"
#include "PointerHand.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int framesPerSecond = 100;
constexpr float degree = 3.1415927f / 180.0f;

/// The game's camera under two hands: a step a frame, and small ones are none.
class CameraUnderAPointer
{
public:
    CameraUnderAPointer()
    {
        pointer.take();
        frames(framesPerSecond);
        pointer.raiseSecondHand(true);
    }

    void frames(int count)
    {
        for (int i = 0; i < count; ++i) {
            motion.setWish(pointer.wish());
            motion.step(player);
            pointer.sent(motion.yaw(), motion.lift());
            serve();
        }
    }

    PointerHand pointer;
    float angle = 0.0f;   // radians
    float height = 0.0f;  // world units

private:
    void serve()
    {
        if (player.hands.size() != 2)
            return;
        const float turn = (yawOf(player.hands[0]) + yawOf(player.hands[1])) / 60.0f;
        if (std::fabs(turn) > 0.01f)
            angle += turn;
        const float rise = (player.hands[0].palm.y() + player.hands[1].palm.y() - 400.0f) / 300.0f;
        if (std::fabs(rise) > 0.2f)
            height += rise;
    }

    static float yawOf(const PlayedHand& hand)
    {
        return std::atan2(hand.direction().x(), -hand.direction().z());
    }

    HandPlayer player{framesPerSecond, 3.0};
    HandMotion motion{framesPerSecond};
};

PadState leftStick(float x, float y)
{
    PadState pad;
    pad.leftStick = {x, y};
    return pad;
}

}  // namespace

TEST(PointerHand, TiltsBy25DegreesOnTwelveCentimetresOfDesk)
{
    PointerHand hand;
    hand.take();
    hand.move({pointerReach, 0.0f});
    EXPECT_NEAR(hand.wish().tilt.x(), 25.0f * degree, 1e-5f);
    const float dotsPerCentimetre = pointerReach / 12.0f;
    EXPECT_NEAR(dotsPerCentimetre * 2.54f, 800.0f, 100.0f) << "what a usual mouse counts an inch";
}

TEST(PointerHand, StaysWhereItIsLeft)
{
    PointerHand hand;
    hand.take();
    hand.move({300.0f, -200.0f});
    const QVector2D tilt = hand.wish().tilt;
    EXPECT_GT(tilt.x(), 0.0f);
    EXPECT_LT(tilt.y(), 0.0f) << "towards the player, the near edge goes down";
    hand.move({});
    EXPECT_EQ(hand.wish().tilt, tilt);
}

TEST(PointerHand, GoesNoFartherThanAHandAndComesBackAtOnce)
{
    PointerHand hand;
    hand.take();
    for (int i = 0; i < 100; ++i)
        hand.move({1000.0f, 1000.0f});
    EXPECT_NEAR(hand.wish().tilt.length(), farthestTilt, 1e-4f);
    const float before = hand.wish().tilt.x();
    hand.move({-100.0f, 0.0f});
    EXPECT_LT(hand.wish().tilt.x(), before - 0.01f);
}

TEST(PointerHand, IsOnlyThereWhileThePointerIsTaken)
{
    PointerHand hand;
    EXPECT_FALSE(hand.wish().present);
    hand.take();
    hand.move({500.0f, 0.0f});
    EXPECT_TRUE(hand.wish().present);
    hand.letGo();
    EXPECT_FALSE(hand.wish().present);
    hand.take();
    EXPECT_EQ(hand.wish().tilt, QVector2D()) << "it remembers nothing";
}

TEST(PointerHand, DragsTheCameraAsFarAsItGoesAndNoFarther)
{
    for (const float pixels : {900.0f, -1800.0f, 120.0f}) {
        SCOPED_TRACE(pixels);
        CameraUnderAPointer camera;
        for (int i = 0; i < 30; ++i) {
            camera.pointer.move({pixels / 30.0f, 0.0f});
            camera.frames(1);
        }
        camera.frames(3 * framesPerSecond);
        const float asked = pixels / pointerReach * 180.0f * degree;
        EXPECT_NEAR(camera.angle, asked, 0.03f);
        const float reached = camera.angle;
        camera.frames(framesPerSecond);
        EXPECT_EQ(camera.angle, reached);
        EXPECT_EQ(camera.height, 0.0f);
    }
}

TEST(PointerHand, LiftsTheCameraAsFarAsItGoesAndNoFarther)
{
    for (const float pixels : {1200.0f, -600.0f}) {
        SCOPED_TRACE(pixels);
        CameraUnderAPointer camera;
        camera.pointer.move({0.0f, pixels});
        camera.frames(3 * framesPerSecond);
        EXPECT_NEAR(camera.height, pixels / pointerReach * 30.0f, 0.5f);
        const float reached = camera.height;
        camera.frames(framesPerSecond);
        EXPECT_EQ(camera.height, reached);
        EXPECT_EQ(camera.angle, 0.0f);
    }
}

TEST(PointerHand, HoldsThePalmLevelAfterTheSecondHand)
{
    PointerHand hand;
    hand.take();
    hand.move({500.0f, 0.0f});
    hand.raiseSecondHand(true);
    hand.move({500.0f, 0.0f});
    hand.raiseSecondHand(false);
    EXPECT_EQ(hand.wish().tilt, QVector2D());
}

TEST(PadHand, TiltsByTheLeftStickUpTo35Degrees)
{
    PadHand hand(framesPerSecond);
    EXPECT_NEAR(hand.next(leftStick(1.0f, 0.0f)).tilt.x(), 35.0f * degree, 0.01f);
    EXPECT_NEAR(hand.next(leftStick(0.0f, -1.0f)).tilt.y(), -35.0f * degree, 0.01f);
    EXPECT_EQ(hand.next(leftStick(0.07f, 0.07f)).tilt, QVector2D());
}

TEST(PadHand, ComesWithTheFirstTouchAndGoesTenSecondsAfterTheLast)
{
    PadHand hand(framesPerSecond);
    EXPECT_FALSE(hand.next(PadState()).present);
    EXPECT_FALSE(hand.next(leftStick(0.1f, 0.0f)).present) << "a worn stick is not a touch";
    EXPECT_TRUE(hand.next(leftStick(0.5f, 0.0f)).present);
    for (int i = 1; i < 10 * framesPerSecond; ++i)
        ASSERT_TRUE(hand.next(leftStick(0.1f, 0.0f)).present) << i;
    EXPECT_FALSE(hand.next(leftStick(0.1f, 0.0f)).present);
    EXPECT_TRUE(hand.next(leftStick(0.0f, 0.5f)).present);
}

TEST(PadHand, TellsAHandAtWorkFromAStickThatTrembles)
{
    EXPECT_FALSE(isMoved(leftStick(0.2f, 0.1f), leftStick(0.22f, 0.08f)));
    EXPECT_TRUE(isMoved(leftStick(0.2f, 0.1f), leftStick(0.2f, 0.2f)));
    PadState pressed;
    pressed.otherButton = true;
    EXPECT_TRUE(isMoved(PadState(), pressed));
    EXPECT_TRUE(isMoved(pressed, PadState()));
}

TEST(PadHand, StaysAsLongAsAnythingIsHeld)
{
    PadHand hand(framesPerSecond);
    for (int i = 0; i < 20 * framesPerSecond; ++i)
        ASSERT_TRUE(hand.next(leftStick(0.2f, 0.0f)).present);
}

TEST(PadHand, TurnsTheCameraByTheRightStick)
{
    PadHand hand(framesPerSecond);
    PadState pad;
    pad.rightStick = {0.2f, 0.0f};
    HandWish wish = hand.next(pad);
    EXPECT_TRUE(wish.secondHand);
    EXPECT_GT(wish.yaw * cameraSteps::turnPerYaw, 0.01f) << "the camera heeds it";
    const float slow = wish.yaw;
    pad.rightStick = {-1.0f, 0.0f};
    wish = hand.next(pad);
    EXPECT_LT(wish.yaw, -slow);
    EXPECT_EQ(wish.lift, 0.0f);
    pad.rightStick = {0.0f, 1.0f};
    EXPECT_GT(hand.next(pad).lift * cameraSteps::risePerLift, 0.2f);
    pad.rightStick = {};
    EXPECT_FALSE(hand.next(pad).secondHand);
}

TEST(PadHand, TurnsTheCameraByTheLeftStickWhileTheSecondHandIsHeldUp)
{
    PadHand hand(framesPerSecond);
    PadState pad = leftStick(1.0f, 0.0f);
    pad.secondHand = true;
    const HandWish wish = hand.next(pad);
    EXPECT_TRUE(wish.secondHand);
    EXPECT_GT(wish.yaw, 0.5f);
    EXPECT_EQ(wish.tilt, QVector2D());
}
