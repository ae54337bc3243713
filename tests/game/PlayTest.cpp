#include "base/WorldNumbers.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/GameInside.h"
#include "support/GameTest.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr double floorHeight = 0.5;
constexpr double radius = 0.3;
constexpr double restHeight = floorHeight + radius;

/// The ball on the true board: what a player relies on.
class PlayTest : public GameTest
{
protected:
    void loadsFloor(int cells = 15)
    {
        loads(LevelPicture(cells, cells, cells::floor).set(cells / 2, cells / 2, cells::start));
        ticks();
    }

    /// Puts the board to a tilt about an axis, where it stays by itself.
    void tilts(double degrees, const osg::Vec3d& axis)
    {
        game.setAngularVelocity(board().getId(), osg::Vec3f(), true);
        game.setPoseWithAttached(board().getId(),
                                 osg::Matrixd::rotate(osg::DegreesToRadians(degrees), axis));
    }

    /// Puts the ball at a place that is given on the board.
    void putsBallOnBoard(const osg::Vec3d& place, const osg::Vec3d& axis, double degrees)
    {
        putsBall(place * osg::Matrixd::rotate(osg::DegreesToRadians(degrees), axis));
    }

    void comesToRest(const osg::Vec3d& place)
    {
        putsBall(place);
        ticks(30);
        ASSERT_LT(ballVelocity().length(), 0.01f);
    }
};

TEST_F(PlayTest, LetsTheBallRestForAMinute)
{
    loadsFloor();
    // On the seam of four boxes, and in the middle of one.
    for (const osg::Vec3d& place : {osg::Vec3d(3.5, 2.5, 0.9), osg::Vec3d(-4.0, 3.0, 0.9)}) {
        comesToRest(place);
        const osg::Vec3d before = ballPosition();
        EXPECT_NEAR(before.z(), restHeight, 0.02);
        ticks(1800);
        const double drift = (ballPosition() - before).length();
        RecordProperty("driftIn1800Ticks", std::to_string(drift));
        RecordProperty("tiltAfter1800Ticks", std::to_string(tiltDegrees()));
        EXPECT_LT(drift, 0.01);
        EXPECT_LT(tiltDegrees(), 0.2);
    }
}

TEST_F(PlayTest, KeepsTheBoardsPoseUnderTheBall)
{
    loadsFloor();
    tilts(5.0, osg::Vec3d(0.0, 1.0, 0.0));
    putsBall(osg::Vec3d(0.0, 0.0, 3000.0));
    ticks(100);
    EXPECT_NEAR(tiltDegrees(), 5.0, 0.01) << "without the ball";

    loadsFloor();
    comesToRest(osg::Vec3d(6.0, 0.0, 0.82));
    double sag = 0.0;
    for (int tick = 0; tick < 60; ++tick) {
        // A hand over the sensor keeps the board awake.
        game.addTorque(board().getId(), osg::Vec3f(), 2, true);
        ticks();
        sag = std::max(sag, tiltDegrees());
    }
    RecordProperty("degreesOfSagInTwoSeconds", std::to_string(sag));
    EXPECT_GT(sag, 0.01) << "the ball has a weight";
    EXPECT_LT(sag, 1.0);
}

TEST_F(PlayTest, RollsTheBallDownATiltedBoard)
{
    for (const double degrees : {5.0, 10.0, 20.0}) {
        SCOPED_TRACE(degrees);
        loadsFloor(21);
        const osg::Vec3d axis(0.0, 1.0, 0.0);
        tilts(degrees, axis);
        ticks();
        putsBallOnBoard(osg::Vec3d(-7.0, 0.0, restHeight), axis, degrees);
        ticks(21);
        // A solid ball that does not slip: 5/7 of the slope's pull.
        const double expected = 20.0 * world::secondsPerTick * world::rollingGravity *
                                std::sin(osg::DegreesToRadians(degrees));
        EXPECT_NEAR(ballVelocity().length(), expected, expected * 0.1 + 0.05);
        EXPECT_GT(ballVelocity().x(), 0.0f);
    }
}

TEST_F(PlayTest, RidesRampsOfAllFourDirections)
{
    struct Way
    {
        int slope;
        osg::Vec3f uphill;
    };
    for (const Way& way :
         {Way{0, {0, -1, 0}}, Way{1, {1, 0, 0}}, Way{2, {0, 1, 0}}, Way{3, {-1, 0, 0}}}) {
        for (const bool dynamic : {false, true}) {
            SCOPED_TRACE(testing::Message() << way.slope << (dynamic ? " dynamic" : " merged"));
            const int ramp = 74 + way.slope;  // from 0.5 up to 1.0
            LevelPicture picture(11, 11, cells::floor);
            const auto cellAt = [&](int distance) {
                return std::pair<int, int>(5 + int(way.uphill.x()) * distance,
                                           5 - int(way.uphill.y()) * distance);
            };
            const auto set = [&](int distance, const Cell& cell) {
                picture.set(cellAt(distance).first, cellAt(distance).second, cell);
            };
            set(0, cells::start);
            set(2, dynamic ? Cell{135, 70, ramp} : Cell{90, 100, ramp});
            set(3, cells::wall);
            set(4, cells::wall);
            loads(picture);
            comesToRest(osg::Vec3d(0.0, 0.0, restHeight));
            game.setLinearVelocity(ball().getId(), way.uphill * 5.0f, true);
            game.setAngularVelocity(ball().getId(),
                                    (osg::Vec3f(0, 0, 1) ^ way.uphill) * (5.0f / world::ballRadius),
                                    true);
            EXPECT_TRUE(
                ticksUntil([&] { return osg::Vec3f(ballPosition()) * way.uphill > 3.0f; }, 60));
            EXPECT_NEAR(ballPosition().z(), 1.0 + radius, 0.25) << "half a unit higher up";
            const osg::Vec3f aside = osg::Vec3f(ballPosition()) ^ way.uphill;
            EXPECT_LT(std::fabs(aside.z()), 0.1f) << "straight ahead";
        }
    }
}

TEST_F(PlayTest, KeepsAFastBallWithinItsWalls)
{
    for (const bool dynamic : {false, true}) {
        for (const float speed : {20.0f, 40.0f}) {
            SCOPED_TRACE(testing::Message() << speed << (dynamic ? " dynamic" : " merged"));
            LevelPicture picture(15, 15, cells::floor);
            for (int row = 0; row < 15; ++row)
                picture.set(12, row, dynamic ? Cell{135, 100, 86} : cells::wall);
            loads(picture);
            comesToRest(osg::Vec3d(0.0, 0.0, restHeight));
            game.setLinearVelocity(ball().getId(), osg::Vec3f(speed, 0.0f, 0.0f), true);
            double farthest = 0.0;
            double lowest = restHeight;
            for (int tick = 0; tick < 40; ++tick) {
                ticks();
                farthest = std::max(farthest, ballPosition().x());
                lowest = std::min(lowest, ballPosition().z());
            }
            EXPECT_GT(farthest, 4.0) << "it came as far as the wall";
            EXPECT_LT(farthest, 4.5 - radius + 0.1);
            EXPECT_GT(lowest, restHeight - 0.05) << "and not into the floor";
        }
    }
}

TEST_F(PlayTest, DoesNotLetAFallingBallThroughTheFloor)
{
    loadsFloor();
    putsBall(osg::Vec3d(2.0, 3.0, 30.0), osg::Vec3f(0.0f, 0.0f, -40.0f));
    double lowest = 30.0;
    for (int tick = 0; tick < 60; ++tick) {
        ticks();
        lowest = std::min(lowest, ballPosition().z());
    }
    EXPECT_GT(lowest, restHeight - 0.3);
    EXPECT_EQ(level().livesLeft(), 5);
}

TEST_F(PlayTest, CarriesTheBallThroughTurnsOfTheBoard)
{
    // A basin with walls all round: nothing that the keys do throws the ball out.
    LevelPicture picture(11, 11, cells::floor);
    for (int i = 0; i < 11; ++i)
        picture.set(i, 0, cells::tower)
            .set(i, 10, cells::tower)
            .set(0, i, cells::tower)
            .set(10, i, cells::tower);
    picture.set(5, 5, cells::start);
    loads(picture);
    for (int round = 0; round < 2; ++round)
        for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Right, Qt::Key_Down, Qt::Key_Left})
            holds(key, 50);
    EXPECT_EQ(level().livesLeft(), 5);
    const osg::Vec3d place = ballPosition() * osg::Matrixd::inverse(boardPose());
    EXPECT_NEAR(place.z(), restHeight, 0.1);
}

}  // namespace
