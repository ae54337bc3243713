#include "StickCurve.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

QVector2D towards(int degrees, float length)
{
    const double angle = degrees * 3.141592653589793 / 180.0;
    return {length * float(std::cos(angle)), length * float(std::sin(angle))};
}

}  // namespace

TEST(StickCurve, LeavesAStickAtRestThatDoesNotQuiteCentre)
{
    for (int degrees = 0; degrees < 360; degrees += 15) {
        SCOPED_TRACE(degrees);
        EXPECT_EQ(curvedStick(towards(degrees, 0.1f)), QVector2D());
        EXPECT_FALSE(isDeflected(towards(degrees, 0.1f)));
        EXPECT_TRUE(isDeflected(towards(degrees, 0.13f)));
    }
}

TEST(StickCurve, BeginsAtNothingAndEndsAtOneInEveryDirection)
{
    for (int degrees = 0; degrees < 360; degrees += 15) {
        SCOPED_TRACE(degrees);
        EXPECT_LT(curvedStick(towards(degrees, 0.125f)).length(), 0.01f);
        EXPECT_NEAR(curvedStick(towards(degrees, 1.0f)).length(), 1.0f, 1e-5f);
        EXPECT_NEAR(curvedStick(towards(degrees, 1.4f)).length(), 1.0f, 1e-5f);
    }
}

TEST(StickCurve, KeepsTheDirection)
{
    for (int degrees = 0; degrees < 360; degrees += 15) {
        const QVector2D curved = curvedStick(towards(degrees, 0.6f)).normalized();
        EXPECT_NEAR((curved - towards(degrees, 1.0f)).length(), 0.0f, 1e-5f) << degrees;
    }
}

TEST(StickCurve, GrowsAllTheWayAndFasterFartherOut)
{
    float before = 0.0f;
    float step = 0.0f;
    for (float length = 0.14f; length <= 1.0f; length += 0.02f) {
        const float now = curvedStick({length, 0.0f}).x();
        EXPECT_GT(now, before + step - 1e-5f) << length;
        step = now - before;
        before = now;
    }
    EXPECT_LT(curvedStick({0.56f, 0.0f}).x(), 0.35f) << "half the way is a third of the tilt";
}
