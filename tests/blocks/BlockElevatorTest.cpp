#include "blocks/BlockElevator.h"

#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "level/Ball.h"
#include "level/BlockButton.h"
#include "level/Board.h"
#include "level/Level.h"
#include "physics/PhysxManager.h"
#include "support/GameTest.h"

#include <PxPhysicsAPI.h>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <osg/Math>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr int hue = 180;
constexpr int blockValue = 86;  // a cube
constexpr double cubeHeight = 1.0;
constexpr double floorHeight = 0.5;
constexpr unsigned int kinematic = 2;
constexpr unsigned int force = 0;

constexpr int automaticBand = 50;
constexpr int manualBand = 75;
// What steps of three points of saturation stand for, from the band's beginning.
constexpr double travels[] = {-2.0, -1.5, -1.0, -0.5, 0.5, 1.0, 1.5, 2.0, 2.5};
constexpr int travelCount = 9;
constexpr int endlessMilliseconds = 1000 * 3600;
constexpr int longestWay = 30;  // ticks within which every block has arrived

Cell automatic(int step, int alpha = 255)
{
    // The last step's middle would already be the manual band.
    return {hue, std::min(automaticBand + 3 * step, manualBand - 2), blockValue, alpha};
}

Cell manual(int step, int alpha = 255)
{
    return {hue, manualBand + 3 * step, blockValue, alpha};
}

class BlockElevatorTest : public GameTest
{
protected:
    /// A wooden floor with a start cell in its corner.
    static LevelPicture floorOf(int size)
    {
        return LevelPicture(size, size, cells::floor).set(0, 0, cells::start);
    }

    /// One elevator in the middle of the floor; settled, with the ball out of the way.
    Block& loadsOne(const Cell& elevator, int size = 11)
    {
        loads(floorOf(size).set(size / 2, size / 2, elevator));
        parksBall();
        ticks(3);
        Block& block = *blockAt(size / 2, size / 2);
        prolongsRest(block);
        return block;
    }

    /// Nine of them, one of every travel, with floor between them.
    void loadsAll(Cell (*cellOf)(int, int))
    {
        LevelPicture picture = floorOf(13);
        for (int step = 0; step < travelCount; ++step)
            picture.set(columnOf(step), rowOf(step), cellOf(step, 255));
        loads(picture);
        parksBall();
        ticks(3);
        for (int step = 0; step < travelCount; ++step)
            prolongsRest(ofStep(step));
    }

    static int columnOf(int step) { return 2 + 4 * (step % 3); }
    static int rowOf(int step) { return 2 + 4 * (step / 3); }
    Block& ofStep(int step) { return *blockAt(columnOf(step), rowOf(step)); }

    void parksBall()
    {
        game.setMotion(ball().getId(), kinematic);
        game.setPose(ball().getId(), osg::Matrixd::translate(0.0, 0.0, 50.0));
    }

    void unparksBall() { game.setMotion(ball().getId(), 0); }

    osg::Vec3d onBoard(const osg::Vec3d& point) const
    {
        return point * osg::Matrixd::inverse(boardPose());
    }

    /// Where the block is on the board, seen from its home.
    osg::Vec3d way(Block& block) const
    {
        return onBoard(block.getTransform()->getMatrix().getTrans()) -
               osg::Vec3d(block.x, block.y, block.height * 0.5);
    }

    double ballHeight() const { return onBoard(ballPosition()).z(); }

    void putsBallOn(Block& block)
    {
        unparksBall();
        const osg::Vec3d top =
            way(block) + osg::Vec3d(block.x, block.y, block.height + world::ballRadius + 0.005);
        putsBall(top * boardPose());
        ticks(2);
    }

    /// The one sliding joint of the world.
    static const physx::PxD6Joint& slideJoint()
    {
        using namespace physx;
        const PxD6Joint* slide = nullptr;
        int count = 0;
        for (PxU32 i = 0; i < PhysxManager::physics()->getNbScenes(); ++i) {
            PxScene* world = nullptr;
            PhysxManager::physics()->getScenes(&world, 1, i);
            std::vector<PxConstraint*> constraints(world->getNbConstraints());
            world->getConstraints(constraints.data(), PxU32(constraints.size()));
            for (PxConstraint* constraint : constraints) {
                PxU32 kind = 0;
                auto* joint = static_cast<PxJoint*>(constraint->getExternalReference(kind));
                if (kind == PxConstraintExtIDs::eJOINT && joint->is<PxD6Joint>()) {
                    slide = joint->is<PxD6Joint>();
                    ++count;
                }
            }
        }
        EXPECT_EQ(count, 1);
        return *slide;
    }

    void expectAt(Block& block, double travel)
    {
        const osg::Vec3d offset = way(block);
        EXPECT_NEAR(offset.z(), travel, 0.01);
        EXPECT_NEAR(offset.x(), 0.0, 0.01);
        EXPECT_NEAR(offset.y(), 0.0, 0.01);
    }

    static QTimer& restOf(Block& block)
    {
        return *dynamic_cast<BlockElevator&>(block).findChild<QTimer*>();
    }

    /// An automatic elevator rests exactly while it is locked.
    static bool isResting(Block& block) { return restOf(block).isActive(); }

    /// Keeps a block at the ends of its way until the test ends its rest, however slow the machine.
    static void prolongsRest(Block& block) { restOf(block).setInterval(endlessMilliseconds); }

    static void endsRest(Block& block)
    {
        QTimer& rest = restOf(block);
        rest.setInterval(0);
        while (rest.isActive())
            QCoreApplication::processEvents();
        rest.setInterval(endlessMilliseconds);
    }

    /// Tries to push the block along its way with several times the force of its drive; how far it
    /// gave.
    double giveUnderPush(Block& block, double direction)
    {
        const double before = way(block).z();
        double give = 0.0;
        for (int i = 0; i < 15; ++i) {
            game.addForce(block.getId(), osg::Vec3f(0.0f, 0.0f, float(direction * 400.0)), force,
                          true);
            ticks();
            give = std::max(give, std::abs(way(block).z() - before));
        }
        return give;
    }

    void tiltsBoard(int pushTicks, int coastTicks)
    {
        holds(Qt::Key_Up, pushTicks);
        ticks(coastTicks);
    }

    void expectThreeCyclesOfAll()
    {
        for (int cycle = 0; cycle < 3; ++cycle) {
            for (const bool out : {true, false}) {
                for (int step = 0; step < travelCount; ++step) {
                    ASSERT_TRUE(isResting(ofStep(step))) << "travel " << travels[step];
                    endsRest(ofStep(step));
                }
                ticks(longestWay);
                for (int step = 0; step < travelCount; ++step) {
                    SCOPED_TRACE(testing::Message() << "cycle " << cycle << ", travel "
                                                    << travels[step] << (out ? " out" : " home"));
                    expectAt(ofStep(step), out ? travels[step] : 0.0);
                }
            }
        }
    }

    void expectThreeCyclesWithBall(Block& block, double travel)
    {
        for (int cycle = 0; cycle < 3; ++cycle) {
            for (const bool out : {true, false}) {
                SCOPED_TRACE(testing::Message()
                             << "cycle " << cycle << ", travel " << travel << (out ? " out" : ""));
                putsBallOn(block);
                ASSERT_TRUE(isResting(block));
                endsRest(block);
                ASSERT_TRUE(ticksUntil([&] { return isResting(block); }, longestWay));
                ticks(2);
                expectAt(block, out ? travel : 0.0);
            }
        }
    }
};

TEST_F(BlockElevatorTest, LocksAtHomeInTheFirstTickAndStaysWhenNobodySignals)
{
    loadsAll(manual);
    ticks(60);
    for (int step = 0; step < travelCount; ++step) {
        SCOPED_TRACE(travels[step]);
        expectAt(ofStep(step), 0.0);
        EXPECT_LT(giveUnderPush(ofStep(step), travels[step]), 0.03);
    }
}

TEST_F(BlockElevatorTest, IsHeldOnItsWayByNothingButTheDrive)
{
    Block& block = loadsOne(manual(5));
    block.onSignal(nullptr);
    ticks(4);
    EXPECT_GT(giveUnderPush(block, -1.0), 0.1);
}

TEST_F(BlockElevatorTest, IsThereFromAHundredthBeforeTheFarEndOn)
{
    for (const auto& [distance, isThere] : {std::pair(1.483, false), std::pair(1.487, true)}) {
        SCOPED_TRACE(distance);
        Block& block = loadsOne(automatic(6));
        endsRest(block);
        block.getTransform()->setMatrix(
            osg::Matrixd::translate(block.x, block.y, block.height * 0.5 + distance) * boardPose());
        ticks(1);
        EXPECT_EQ(isResting(block), isThere);
    }
}

TEST_F(BlockElevatorTest, GoesToTheFarEndAtASignalAndHomeAtTheNext)
{
    loadsAll(manual);
    for (const bool out : {true, false}) {
        for (int step = 0; step < travelCount; ++step)
            ofStep(step).onSignal(nullptr);
        ticks(longestWay);
        for (int step = 0; step < travelCount; ++step) {
            SCOPED_TRACE(travels[step]);
            expectAt(ofStep(step), out ? travels[step] : 0.0);
            EXPECT_FALSE(isResting(ofStep(step)));
        }
    }
}

TEST_F(BlockElevatorTest, IsLockedAtTheFarEnd)
{
    loadsAll(manual);
    for (int step = 0; step < travelCount; ++step)
        ofStep(step).onSignal(nullptr);
    ticks(longestWay);
    for (int step = 0; step < travelCount; ++step) {
        SCOPED_TRACE(travels[step]);
        EXPECT_LT(giveUnderPush(ofStep(step), -travels[step]), 0.03);
    }
}

TEST_F(BlockElevatorTest, RunsThreeCyclesOfEveryTravelOnALevelBoard)
{
    loadsAll(automatic);
    expectThreeCyclesOfAll();
}

TEST_F(BlockElevatorTest, RunsThreeCyclesOfEveryTravelOnATiltedBoard)
{
    loadsAll(automatic);
    tiltsBoard(30, 10);
    ASSERT_GT(tiltDegrees(), 20.0);
    expectThreeCyclesOfAll();
    // Nine blocks that push off have turned it back a little.
    EXPECT_GT(tiltDegrees(), 10.0);
}

TEST_F(BlockElevatorTest, RunsThreeCyclesOfEveryTravelUnderTheBallOnALevelBoard)
{
    for (int step = 0; step < travelCount; ++step) {
        Block& block = loadsOne(automatic(step));
        expectThreeCyclesWithBall(block, travels[step]);
    }
}

TEST_F(BlockElevatorTest, RunsThreeCyclesOfEveryTravelUnderTheBallOnATiltedBoard)
{
    for (int step = 0; step < travelCount; ++step) {
        Block& block = loadsOne(automatic(step));
        tiltsBoard(10, 5);
        ASSERT_GT(tiltDegrees(), 8.0);
        expectThreeCyclesWithBall(block, travels[step]);
        EXPECT_GT(tiltDegrees(), 8.0);
    }
}

TEST_F(BlockElevatorTest, RunsAmongNeighboursThatHaveActorsOfTheirOwn)
{
    LevelPicture picture = floorOf(13);
    const auto columnOfNeighbour = [](int step) {
        return 2 + step;
    };
    for (int step = 0; step < travelCount; ++step)
        picture.set(columnOfNeighbour(step), 6, automatic(step));
    for (int column = 2; column < 11; ++column) {
        picture.set(column, 5, {225, 100, blockValue, 1});  // a ghost that stays
        picture.set(column, 7, {270, 100, blockValue, 1});  // a button
    }
    loads(picture);
    parksBall();
    ticks(3);
    for (int step = 0; step < travelCount; ++step)
        prolongsRest(*blockAt(columnOfNeighbour(step), 6));
    for (int phase = 0; phase < 6; ++phase) {
        for (int step = 0; step < travelCount; ++step) {
            ASSERT_TRUE(isResting(*blockAt(columnOfNeighbour(step), 6))) << travels[step];
            endsRest(*blockAt(columnOfNeighbour(step), 6));
        }
        ticks(longestWay);
        for (int step = 0; step < travelCount; ++step) {
            SCOPED_TRACE(testing::Message() << "phase " << phase << ", " << travels[step]);
            expectAt(*blockAt(columnOfNeighbour(step), 6), phase % 2 ? 0.0 : travels[step]);
        }
    }
}

TEST_F(BlockElevatorTest, CarriesARestingBallUpAndDown)
{
    for (int step = 0; step < travelCount; ++step) {
        SCOPED_TRACE(travels[step]);
        Block& block = loadsOne(manual(step), 21);
        putsBallOn(block);
        for (const double end : {travels[step], 0.0}) {
            const double rest = cubeHeight + end + world::ballRadius;
            block.onSignal(nullptr);
            // It may be thrown up first: the block is much faster than free fall.
            EXPECT_TRUE(ticksUntil(
                [&] {
                    return std::abs(ballHeight() - rest) < 0.02 &&
                           std::abs(ballVelocity().z()) < 0.1f;
                },
                400))
                << "the ball is at " << ballHeight();
            expectAt(block, end);
        }
    }
}

TEST_F(BlockElevatorTest, RestsOneSecondAtEachEnd)
{
    constexpr int timerSlack = 60;  // a coarse timer may come by a twentieth too early
    loads(floorOf(11).set(5, 5, automatic(5)));
    parksBall();
    Block& block = *blockAt(5, 5);
    EXPECT_EQ(restOf(block).interval(), 1000);
    EXPECT_TRUE(restOf(block).isSingleShot());
    for (const double end : {0.0, 1.0, 0.0}) {
        QElapsedTimer clock;
        clock.start();
        ASSERT_TRUE(ticksUntil([&] { return isResting(block); }, longestWay));
        ticks(2);
        expectAt(block, end);
        ASSERT_TRUE(playsUntil([&] { return !isResting(block); }, 10000));
        EXPECT_GE(clock.elapsed(), 1000 - timerSlack);
    }
}

TEST_F(BlockElevatorTest, LeavesAtOnceAtASignalDuringItsRest)
{
    Block& block = loadsOne(automatic(5));
    ASSERT_TRUE(isResting(block));
    block.onSignal(nullptr);
    EXPECT_FALSE(isResting(block));
    ticks(2);
    EXPECT_GT(way(block).z(), 0.03);
    ticks(longestWay);
    ASSERT_TRUE(isResting(block));
    expectAt(block, 1.0);
    block.onSignal(nullptr);
    EXPECT_FALSE(isResting(block));
    ticks(2);
    EXPECT_LT(way(block).z(), 0.97);
}

TEST_F(BlockElevatorTest, TurnsRoundAtASignalOnItsWay)
{
    loadsAll(manual);
    for (int step = 0; step < travelCount; ++step) {
        SCOPED_TRACE(travels[step]);
        Block& block = ofStep(step);
        block.onSignal(nullptr);
        ticks(4);
        const double reached = way(block).z() / travels[step];
        EXPECT_GT(reached, 0.05);
        EXPECT_LT(reached, 0.95);
        block.onSignal(nullptr);
        ticks(longestWay);
        expectAt(block, 0.0);
        EXPECT_LT(giveUnderPush(block, travels[step]), 0.03);
    }
}

TEST_F(BlockElevatorTest, TakesTwoSignalsBetweenTicks)
{
    Block& block = loadsOne(manual(5));
    block.onSignal(nullptr);
    block.onSignal(nullptr);
    ticks(longestWay);
    expectAt(block, 0.0);
    EXPECT_LT(giveUnderPush(block, 1.0), 0.03);
    block.onSignal(nullptr);
    ticks(longestWay);
    expectAt(block, 1.0);
}

TEST_F(BlockElevatorTest, SinksBelowTheBoardWithANegativeTravel)
{
    Block& block = loadsOne(manual(0));
    block.onSignal(nullptr);
    ticks(longestWay);
    const double top = way(block).z() + block.height;
    EXPECT_NEAR(top, -1.0, 0.01);
    EXPECT_LT(top, 0.0);
}

TEST_F(BlockElevatorTest, GoesHomeAtARestartOnItsWayOutAndRestsFromThatMoment)
{
    for (const bool tilted : {false, true}) {
        SCOPED_TRACE(tilted);
        Block& block = loadsOne(automatic(7));
        if (tilted)
            tiltsBoard(30, 10);
        endsRest(block);
        ticks(5);
        ASSERT_GT(way(block).z(), 0.3);
        ASSERT_FALSE(isResting(block));

        level().restart(true);
        ASSERT_TRUE(ticksUntil([&] { return isResting(block); }, longestWay));
        parksBall();
        ticks(3);
        expectAt(block, 0.0);
        EXPECT_NEAR(tiltDegrees(), 0.0, 0.2);
        endsRest(block);
        ticks(longestWay);
        expectAt(block, 2.0);
    }
}

TEST_F(BlockElevatorTest, GoesHomeWhenTheFallOfTheLastLifeRestartsTheLevel)
{
    Block& block = loadsOne(manual(7));
    block.onSignal(nullptr);
    ticks(5);
    level().changeLives(-4, false);
    unparksBall();
    putsBall(osg::Vec3d(20.0, 0.0, -9.5));
    ASSERT_TRUE(ticksUntil([&] { return level().livesLeft() == 5; }, 30));
    parksBall();
    ticks(longestWay);
    expectAt(block, 0.0);
    EXPECT_LT(giveUnderPush(block, 1.0), 0.03);
}

TEST_F(BlockElevatorTest, StaysWhereItIsAtARestartAtHome)
{
    Block& block = loadsOne(manual(7));
    level().restart(true);
    parksBall();
    for (int i = 0; i < 10; ++i) {
        ticks();
        expectAt(block, 0.0);
    }
    EXPECT_LT(giveUnderPush(block, 1.0), 0.03);
}

TEST_F(BlockElevatorTest, KeepsItsEndWhenARestartOnlyPutsTheBallBack)
{
    Block& block = loadsOne(manual(7));
    block.onSignal(nullptr);
    ticks(longestWay);
    tiltsBoard(30, 10);
    level().restart(false);
    parksBall();
    ticks(3);
    expectAt(block, 2.0);
    EXPECT_NEAR(tiltDegrees(), 0.0, 0.2);
}

TEST_F(BlockElevatorTest, IsKeptFromItsEndByABallThatBlocksTheWay)
{
    for (const int step : {0, 3, 4, 8}) {
        SCOPED_TRACE(travels[step]);
        Block& block = loadsOne(automatic(step));
        // On the way out for a block that goes up, on the way home for one that comes up.
        const bool up = travels[step] > 0.0;
        if (!up) {
            endsRest(block);
            ticks(longestWay);
            ASSERT_TRUE(isResting(block));
        }
        const double middle = block.height + (up ? 0.5 : -0.5) * std::abs(travels[step]);
        game.setPose(ball().getId(),
                     osg::Matrixd::translate(block.x, block.y, middle + world::ballRadius));
        ticks(2);
        endsRest(block);
        for (int i = 0; i < 100; ++i) {
            ticks();
            ASSERT_FALSE(isResting(block));
        }
        EXPECT_NEAR(way(block).z(), middle - block.height, 0.1);

        unparksBall();
        putsBall(osg::Vec3d(0.0, 0.0, 20.0));
        ASSERT_TRUE(ticksUntil([&] { return isResting(block); }, longestWay));
        ticks(2);
        expectAt(block, up ? travels[step] : 0.0);
    }
}

TEST_F(BlockElevatorTest, IsWorkedByAButtonOfItsGroup)
{
    LevelPicture picture = floorOf(11);
    picture.set(5, 5, manual(5, 254)).set(8, 8, manual(5, 253)).set(3, 5, {270, 50, 86, 254});
    loads(picture);
    parksBall();
    ticks(3);
    Block& linked = *blockAt(5, 5);
    Block& stranger = *blockAt(8, 8);
    putsBallOn(*blockAt(3, 5));
    ticks(longestWay);
    expectAt(linked, 1.0);
    expectAt(stranger, 0.0);
}

TEST_F(BlockElevatorTest, IsCalledBackByTheSecondSignalOfABlueButton)
{
    constexpr int blue = 60;  // of a second
    LevelPicture picture = floorOf(11);
    picture.set(5, 5, manual(5, 254)).set(3, 5, {270, blue, blockValue, 254});
    loads(picture);
    parksBall();
    ticks(3);
    Block& linked = *blockAt(5, 5);
    putsBallOn(*blockAt(3, 5));
    parksBall();
    ticks(longestWay);
    expectAt(linked, 1.0);
    dynamic_cast<BlockButton&>(*blockAt(3, 5)).cooledDown();
    ticks(longestWay);
    expectAt(linked, 0.0);
    EXPECT_LT(giveUnderPush(linked, 1.0), 0.03);
}

TEST_F(BlockElevatorTest, MayBeARamp)
{
    constexpr int ramps[] = {57, 69, 75, 84, 99};
    LevelPicture picture = floorOf(13);
    for (int i = 0; i < 5; ++i) {
        Cell cell = manual(i % 2 ? 7 : 1);
        cell.value = ramps[i];
        picture.set(2 + 2 * i, 6, cell);
    }
    loads(picture);
    parksBall();
    ticks(3);
    for (const bool out : {true, false}) {
        for (int i = 0; i < 5; ++i)
            blockAt(2 + 2 * i, 6)->onSignal(nullptr);
        ticks(longestWay);
        for (int i = 0; i < 5; ++i) {
            SCOPED_TRACE(testing::Message() << "value " << ramps[i] << (out ? " out" : " home"));
            Block& ramp = *blockAt(2 + 2 * i, 6);
            const double travel = i % 2 ? 2.0 : -1.5;
            EXPECT_FALSE(ramp.corners().isFlat());
            expectAt(ramp, out ? travel : 0.0);
            EXPECT_LT(giveUnderPush(ramp, out ? -travel : travel), 0.03);
        }
    }
}

TEST_F(BlockElevatorTest, RidesItsJointByTheNumbersOfItsTravel)
{
    using namespace physx;
    for (int step = 0; step < travelCount; ++step) {
        SCOPED_TRACE(travels[step]);
        Block& block = loadsOne(manual(step));
        const float travel = float(travels[step]);
        const PxD6Joint& slide = slideJoint();
        for (const PxD6Axis::Enum axis :
             {PxD6Axis::eX, PxD6Axis::eY, PxD6Axis::eTWIST, PxD6Axis::eSWING1, PxD6Axis::eSWING2})
            EXPECT_EQ(slide.getMotion(axis), PxD6Motion::eLOCKED) << axis;
        EXPECT_EQ(slide.getMotion(PxD6Axis::eZ), PxD6Motion::eLIMITED);
        const PxJointLinearLimit limit = slide.getDistanceLimit();
        EXPECT_FLOAT_EQ(limit.value, std::abs(travel) * 0.5f);
        EXPECT_EQ(limit.contactDistance_deprecated, 0.0f);

        EXPECT_EQ(slide.getLocalPose(PxJointActorIndex::eACTOR0), PxTransform(PxIdentity));
        const PxTransform onBoard = slide.getLocalPose(PxJointActorIndex::eACTOR1);
        EXPECT_LT((onBoard.p - PxVec3(block.x, block.y, 0.5f + travel * 0.5f)).magnitude(), 1e-4f)
            << "halfway along";

        for (int drive = 0; drive < PxD6Drive::eCOUNT; ++drive) {
            const PxD6JointDrive numbers = slide.getDrive(PxD6Drive::Enum(drive));
            const bool vertical = drive == PxD6Drive::eZ;
            EXPECT_EQ(numbers.stiffness, vertical ? 20.0f : 0.0f) << drive;
            EXPECT_EQ(numbers.damping, 0.0f) << drive;
            if (vertical) {
                EXPECT_EQ(numbers.forceLimit, 10.0f);
                EXPECT_TRUE(numbers.flags.isSet(PxD6JointDriveFlag::eACCELERATION));
            }
        }
        for (const float direction : {-1.0f, 1.0f, -1.0f}) {
            SCOPED_TRACE(direction);
            PxVec3 linear;
            PxVec3 angular;
            slide.getDriveVelocity(linear, angular);
            EXPECT_EQ(linear, PxVec3(0.0f, 0.0f, 0.1f)) << "whatever the direction";
            EXPECT_EQ(angular, PxVec3(0.0f));
            EXPECT_EQ(slide.getDrivePosition().p, PxVec3(0.0f, 0.0f, -travel * direction));
            EXPECT_EQ(slide.getDrivePosition().q, PxQuat(PxIdentity));
            block.onSignal(nullptr);
            ticks(longestWay);
        }
    }
}

TEST_F(BlockElevatorTest, StopsBeingCalledWhenItsLevelGoes)
{
    loads(floorOf(5));
    ticks();
    const std::size_t others = GameLoop::frameTaskCount();
    loads(floorOf(5).set(2, 2, manual(5)).set(3, 3, automatic(5)));
    ticks();
    EXPECT_EQ(GameLoop::frameTaskCount(), others + 2);
    loads(floorOf(5));
    ticks();
    EXPECT_EQ(GameLoop::frameTaskCount(), others);
}

TEST_F(BlockElevatorTest, LeavesALevelInTheMiddleOfItsWay)
{
    loadsAll(automatic);
    for (int step = 0; step < travelCount; ++step)
        endsRest(ofStep(step));
    ticks(4);
    loads(floorOf(5));
    ticks(5);
    loadsAll(automatic);
    for (int step = 0; step < travelCount; ++step)
        expectAt(ofStep(step), 0.0);
}

}  // namespace
