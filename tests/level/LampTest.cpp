#include "level/Board.h"
#include "support/BlockTest.h"
#include "support/DifferingPixels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int elevatorHue = 180;
constexpr int ghostHue = 225;
constexpr int itemHue = 45;
constexpr int trapHue = 0;
constexpr int trapdoorAtOnce = 70;
constexpr int upByOne = 90;  // manual, one unit
constexpr int oneCoin = 48;
constexpr int opaqueSilent = 100;
constexpr int towerValue = 100;
constexpr int floorValue = 73;
constexpr double floorTop = 0.5;

/// What the lamp at (8, -8, 16) makes of the board, looked up in frames.
class LampTest : public BlockTest
{
protected:
    /// Brightness of the frame round a point of the world, 0 to 255.
    double brightnessAt(const QImage& picture, const osg::Vec3d& place) const
    {
        const QImage spot = cutout(picture, pixelOf(place), 2);
        double sum = 0.0;
        for (int y = 0; y < spot.height(); ++y)
            for (int x = 0; x < spot.width(); ++x)
                sum += qGray(spot.pixel(x, y));
        return sum / (spot.width() * spot.height());
    }

    /// The same round a point of the board.
    double brightness(const QImage& picture, const osg::Vec3d& onBoard) const
    {
        return brightnessAt(picture, onBoard * boardPose());
    }

    /// The mean over a way on the board, in which the grain does not count.
    double brightness(const QImage& picture, const osg::Vec3d& from, const osg::Vec3d& to) const
    {
        constexpr int steps = 24;
        double sum = 0.0;
        for (int i = 0; i <= steps; ++i)
            sum += brightness(picture, from + (to - from) * (double(i) / steps));
        return sum / (steps + 1);
    }

    void putsBallAway() { hovers(osg::Vec3d(-3.0, 3.5, 9.0)); }

    /// A floor with one cell in its middle, seen from near by, the ball away.
    void loadsAround(const Cell& middle)
    {
        loads(LevelPicture(9, 9, cells::floor).set(0, 8, cells::start).set(4, 4, middle));
        looksAt(osg::Vec3d(0.0, 0.0, 0.5), 12.0f);
        putsBallAway();
        frame();
    }

    // Behind the middle cell, as the lamp sees it, and before it.
    const osg::Vec3d behind{-0.8, 0.8, floorTop};
    const osg::Vec3d before{1.6, -1.6, floorTop};
};

TEST_F(LampTest, LaysTheBallsShadowBesideItAndMovesItWhenItIsLifted)
{
    loadsAround(cells::floor);
    // Away from the lamp; from the camera the ball stands beside these.
    const osg::Vec3d besideIt(-0.37, 0.06, floorTop);
    const osg::Vec3d furtherOff(-0.85, 0.75, floorTop);
    const QImage bare = frame(false);
    hovers(osg::Vec3d(0.0, 0.0, floorTop + 0.3));
    const QImage resting = frame(false);
    EXPECT_LT(brightness(resting, besideIt), 0.8 * brightness(bare, besideIt));
    EXPECT_GT(brightness(resting, furtherOff), 0.97 * brightness(bare, furtherOff));
    hovers(osg::Vec3d(0.0, 0.0, floorTop + 1.6));
    const QImage lifted = frame(false);
    EXPECT_GT(brightness(lifted, besideIt), 0.9 * brightness(bare, besideIt));
    EXPECT_LT(brightness(lifted, furtherOff), 0.9 * brightness(bare, furtherOff));
}

TEST_F(LampTest, DarkensAFloorTowardsAWallThatIsNotInTheLampsWay)
{
    LevelPicture picture(9, 9, cells::floor);
    for (int row = 0; row < 9; ++row)
        picture.set(0, row, cells::tower);
    loads(picture.set(8, 8, cells::start));
    looksAt(osg::Vec3d(0.0, 0.0, 0.5), 12.0f);
    putsBallAway();
    const QImage seen = frame();
    const double foot = brightness(seen, {-3.43, -3.0, floorTop}, {-3.43, 2.0, floorTop});
    const double middle = brightness(seen, {-2.0, -3.0, floorTop}, {-2.0, 2.0, floorTop});
    EXPECT_LT(foot, 0.93 * middle);
}

TEST_F(LampTest, LetsAnElevatorDarkenItsNeighbourAsItComesUp)
{
    loadsAround({elevatorHue, upByOne, floorValue, 7});
    const double low = brightness(frame(), behind);
    Block& elevator = *blockAt(4, 4);
    elevator.onSignal(nullptr);
    ASSERT_TRUE(ticksUntil([&] { return elevator.lift() > 0.95f; }, 400));
    frame();
    EXPECT_LT(brightness(frame(), behind), 0.8 * low);
}

TEST_F(LampTest, LetsAGhostTakeItsShadowAlong)
{
    loadsAround({ghostHue, opaqueSilent, towerValue, 7});
    waits(600);
    frame();
    const QImage there = frame();
    blockAt(4, 4)->onSignal(nullptr);
    waits(600);
    frame();
    const QImage gone = frame();
    EXPECT_LT(brightness(there, behind), 0.8 * brightness(gone, behind));
    EXPECT_NEAR(brightness(there, before), brightness(gone, before), 3.0);
}

TEST_F(LampTest, LetsATrapdoorTakeItsShadowAlongAndBringItBack)
{
    loadsAround({trapHue, trapdoorAtOnce, towerValue});
    frame();
    const double shut = brightness(frame(), behind);
    touches(*blockAt(4, 4));
    frame();
    const double open = brightness(frame(), behind);
    EXPECT_LT(shut, 0.8 * open);
    blockAt(4, 4)->reset();
    frame();
    EXPECT_NEAR(brightness(frame(), behind), shut, 2.0);
}

TEST_F(LampTest, LaysACoinsShadowOnTheFloorUntilItIsTaken)
{
    loadsAround({itemHue, oneCoin, floorValue});
    // Where the camera sees past the coin.
    const osg::Vec3d shadow(0.1, 0.3, floorTop);
    frame();
    const QImage there = frame();
    touches(*blockAt(4, 4));
    frame();
    const QImage taken = frame();
    EXPECT_LT(brightness(there, shadow), 0.8 * brightness(taken, shadow));
    EXPECT_NEAR(brightness(there, behind), brightness(taken, behind), 3.0);
}

TEST_F(LampTest, TurnsTheShadowsWithTheBoard)
{
    // Where the shadow of a tower ends only once the lamp sinks towards the board.
    const osg::Vec3d end(-1.75, 1.75, floorTop);
    const auto levelAndTilted = [&](const Cell& middle) {
        loadsAround(middle);
        frame();
        const double level = brightness(frame(), end);
        // The far left corner goes down.
        presses(Qt::Key_Up);
        presses(Qt::Key_Left);
        ticks(40);
        releases(Qt::Key_Up);
        releases(Qt::Key_Left);
        EXPECT_GT(tiltDegrees(), 20.0);
        frame();
        return std::make_pair(level, brightness(frame(), end));
    };
    const auto [levelBare, tiltedBare] = levelAndTilted(cells::floor);
    const auto [levelShaded, tiltedShaded] = levelAndTilted(cells::tower);
    EXPECT_GT(levelShaded, 0.97 * levelBare);
    EXPECT_LT(tiltedShaded, 0.8 * tiltedBare);
}

/// The ground ten units under a board of nine by nine cells, from the first camera.
class GroundLightTest : public LampTest
{
protected:
    GroundLightTest()
    {
        loads(LevelPicture(9, 9, cells::floor).set(4, 4, cells::start));
        frame();
        seen = frame();
    }

    osg::Vec3d onGround(double x, double y) const { return {x, y, -9.95}; }

    QImage seen;
};

TEST_F(GroundLightTest, HasTheBoardsShadowAwayFromTheLamp)
{
    // Beside the board as the camera sees it, to the left and as far to the right.
    for (const double y : {0.0, 2.5, 5.0}) {
        const double lit = brightnessAt(seen, onGround(8.0, y));
        EXPECT_NEAR(brightnessAt(seen, onGround(-8.0, y)) / lit, 0.38, 0.06) << y;
    }
}

TEST_F(GroundLightTest, HasAShadowWithASoftEdge)
{
    // In front of the board, where the shadow ends to the right.
    const double lit = brightnessAt(seen, onGround(8.0, 0.0));
    EXPECT_NEAR(brightnessAt(seen, onGround(-1.0, 0.0)) / lit, 0.45, 0.07);
    EXPECT_NEAR(brightnessAt(seen, onGround(2.0, 0.0)) / lit, 0.64, 0.07);
    EXPECT_NEAR(brightnessAt(seen, onGround(3.0, 0.0)) / lit, 0.74, 0.07);
    EXPECT_NEAR(brightnessAt(seen, onGround(5.0, 0.0)) / lit, 0.95, 0.07);
}

TEST_F(GroundLightTest, MovesTheBoardsShadowWithTheBoard)
{
    // The left side goes down: further under the lamp, the board hides less of it from here.
    const osg::Vec3d place = onGround(-11.0, 5.0);
    const double level = brightnessAt(seen, place);
    holds(Qt::Key_Left, 40);
    ASSERT_GT(tiltDegrees(), 20.0);
    EXPECT_GT(std::abs(brightnessAt(frame(), place) - level), 8.0);
}

TEST_F(GroundLightTest, HasAGrain)
{
    double darkest = 255.0;
    double palest = 0.0;
    // Across the grain, where no shadow falls.
    for (double y = -3.0; y < 5.0; y += 0.2) {
        const double there = brightnessAt(seen, onGround(9.0, y));
        darkest = std::min(darkest, there);
        palest = std::max(palest, there);
    }
    EXPECT_GT(palest, darkest + 5.0);
    EXPECT_LT(palest, 2.0 * darkest);
}

TEST_F(GroundLightTest, FadesIntoTheSkyAtItsEdge)
{
    const auto blue = [&](double x) {
        return qBlue(seen.pixel(pixelOf(onGround(x, 0.0))));
    };
    EXPECT_LT(blue(12.0), 90);
    EXPECT_NEAR(blue(15.2), 153, 2);
    for (double x = 12.0; x < 15.2; x += 0.1)
        EXPECT_LT(std::abs(blue(x + 0.1) - blue(x)), 20) << x;
}

TEST_F(LampTest, KeepsTheGrainStillUnderAStillBall)
{
    loads(LevelPicture(9, 9, cells::floor).set(4, 4, cells::start));
    looksAt(osg::Vec3d(0.0, 0.0, 0.5), 6.0f);
    ticks(120);
    const QImage first = frame();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(differingPixels(first, frame(), 2), 0);
}

}  // namespace
