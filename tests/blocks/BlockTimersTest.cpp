// The long delays of traps and items. This program runs on a clock that goes twenty times as fast;
// all times here are the program's own.

#include "BlockTest.h"
#include "blocks/BlockItem.h"
#include "blocks/BlockTrap.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Level.h"

#include <QElapsedTimer>

namespace {

constexpr int trapHue = 0;
constexpr int itemHue = 45;
constexpr int flatHalf = 73;

constexpr double rest = 10.0;
constexpr double tolerance = 0.7;  // seconds of the fast clock; a busy machine is late
constexpr int limit = 30000;

class BlockTimersTest : public BlockTest
{
protected:
    void loadsBlock(const Cell& cell)
    {
        loads(LevelPicture(9, 1).set(0, 0, cells::start).set(4, 0, cell).set(8, 0, cells::floor));
        ticks();
    }

    void loadsTrap(int saturation) { loadsBlock({trapHue, saturation, flatHalf}); }
    void loadsItem(int saturation) { loadsBlock({itemHue, saturation, flatHalf}); }

    Block& block() const { return blockAs<Block>(4, 0); }
    float mineRadius() const { return shapesOf<osg::Sphere>(block()).at(0)->getRadius(); }
    float plungerHeight() const { return shapesOf<osg::Cylinder>(block()).at(0)->getHeight(); }

    bool isSolid()
    {
        putsBall(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.6));
        ticks(12);
        return ballPosition().z() > positionOf(block()).z() + 0.4;
    }

    /// Seconds until the condition holds, while nothing but timers runs.
    double secondsUntil(const std::function<bool()>& condition)
    {
        QElapsedTimer clock;
        clock.start();
        while (!condition() && clock.elapsed() < limit)
            waits(10);
        EXPECT_TRUE(condition());
        return double(clock.elapsed()) / 1000.0;
    }
};

}  // namespace

TEST_F(BlockTimersTest, MineGoesThroughFuseBlastAndRest)
{
    for (int fuse = 1; fuse <= 3; ++fuse) {
        SCOPED_TRACE(fuse);
        loadsTrap(90 + 3 * fuse);
        hoversAbove(block(), 2.0);
        touches(block());
        EXPECT_NEAR(secondsUntil([this] { return mineRadius() > 0.4f; }), fuse, tolerance);
        EXPECT_EQ(level().livesLeft(), 4);
        touches(block());
        EXPECT_NEAR(secondsUntil([this] { return mineRadius() < 0.05f; }), 0.5, tolerance);
        touches(block());
        EXPECT_NEAR(secondsUntil([this] { return mineRadius() > 0.05f; }), rest, tolerance);
        EXPECT_FLOAT_EQ(mineRadius(), 0.1f);
        EXPECT_EQ(level().livesLeft(), 4);
    }
    touches(block());
    EXPECT_NEAR(secondsUntil([this] { return mineRadius() > 0.4f; }), 3.0, tolerance);
    EXPECT_EQ(level().livesLeft(), 3);
}

TEST_F(BlockTimersTest, ASecondContactDoesNotProlongTheFuse)
{
    loadsTrap(99);
    hoversAbove(block(), 2.0);
    touches(block());
    waits(2000);
    touches(block());
    EXPECT_NEAR(secondsUntil([this] { return mineRadius() > 0.4f; }), 1.0, tolerance);
}

TEST_F(BlockTimersTest, TheBallThatHasRolledOffBeforeTheFuseEndsFeelsAWeakBlast)
{
    loadsTrap(93);
    hoversAbove(block(), 1.0);
    touches(block());
    hoversAbove(block(), 3.0);
    secondsUntil([this] { return mineRadius() > 0.4f; });
    EXPECT_EQ(level().livesLeft(), 5);
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(100.0 / 9.0), 0.002);
}

TEST_F(BlockTimersTest, SpringGoesInAfterTenSecondsAndThrowsAgain)
{
    loadsTrap(80);
    hoversAbove(block(), 1.5);
    touches(block());
    EXPECT_NEAR(secondsUntil([this] { return plungerHeight() < 0.5f; }), rest, tolerance);
    EXPECT_FLOAT_EQ(plungerHeight(), 0.3f);
    ticks();
    hoversAbove(block(), 1.5);
    touches(block());
    ticks();
    EXPECT_NEAR(ballVelocity().z(), speedOfForce(10.0), 0.002);
}

TEST_F(BlockTimersTest, TrapdoorOpensAfterItsDelayAndShutsAfterTenSeconds)
{
    for (int delay = 1; delay <= 3; ++delay) {
        SCOPED_TRACE(delay);
        loadsTrap(70 + 3 * delay);
        touches(block());
        waits(delay * 1000 - 700);
        EXPECT_TRUE(isSolid());
        waits(1400);
        EXPECT_FALSE(isSolid());
        waits(8000);
        EXPECT_FALSE(isSolid());
        waits(2500);
        EXPECT_TRUE(isSolid());
    }
}

TEST_F(BlockTimersTest, TrapdoorDropsABallThatSleepsOnIt)
{
    loadsTrap(78);
    const double height = positionOf(block()).z();
    putsBall(positionOf(block()) + osg::Vec3d(0.0, 0.0, 0.56));
    // Two and a half seconds of the world: whatever rests has gone to sleep.
    ticks(75);
    ASSERT_NEAR(ballPosition().z(), height + 0.55, 0.02);
    waits(3500);
    ticks(30);
    EXPECT_LT(ballPosition().z(), height - 1.0);
}

TEST_F(BlockTimersTest, CoinAndHeartComeBackAfterTenSeconds)
{
    loadsItem(90);
    touches(block());
    waits(9000);
    touches(block());
    EXPECT_EQ(level().coinCount(), 10);
    waits(1700);
    touches(block());
    EXPECT_EQ(level().coinCount(), 20);

    loadsItem(60);
    touches(block());
    waits(9000);
    touches(block());
    EXPECT_EQ(level().livesLeft(), 4);
    waits(1700);
    touches(block());
    EXPECT_EQ(level().livesLeft(), 3);
}

TEST_F(BlockTimersTest, WeightLastsItsSecondsAndComesBackTenLater)
{
    const int seconds[] = {1, 4, 7, 10};
    for (int step = 0; step < 4; ++step) {
        SCOPED_TRACE(step);
        loadsItem(step < 3 ? 50 + 3 * step : 58);
        const auto isFalling = [this] {
            putsBall(osg::Vec3d(0.0, 3.0, 5.0));
            ticks();
            return ballVelocity().z() < -0.1f;
        };
        EXPECT_TRUE(isFalling());
        touches(block());
        EXPECT_NEAR(secondsUntil(isFalling), seconds[step], tolerance);
        waits(9000);
        touches(block());
        EXPECT_TRUE(isFalling()) << "it is not back yet";
        waits(1700);
        touches(block());
        EXPECT_FALSE(isFalling());
    }
}
