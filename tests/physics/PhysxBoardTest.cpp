#include "base/WorldNumbers.h"
#include "physics/PhysxTestScene.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace physx;

namespace {

constexpr unsigned int boardId = 1, ballId = 2, firstBlock = 10;
constexpr float coneAngle = 0.5235988f;
constexpr float key = 0.1f;  // what a held key adds to the board's angular velocity in a tick

}  // namespace

/// The world as a level makes it: a flat board of boxes on its five joints, and a ball.
class PhysxBoard : public PhysxTest
{
protected:
    void makeBoard(
        int cells = 15, float height = 0.5f, const std::function<void()>& extras = [] {})
    {
        scene->createActor(boardId, 1);
        for (int x = 0; x < cells; ++x)
            for (int y = 0; y < cells; ++y)
                addCell(x - cells / 2, y - cells / 2, height);
        extras();
        hang();
    }

    void emptyWorld()
    {
        scene->clear();
        scene->createMaterial("holz", 0.2f, 0.05f, 0.0f);
        blockPoses.clear();
    }

    void addCell(float x, float y, float height)
    {
        scene->addBoxShape(boardId, {1, 1, height}, "holz",
                           osg::Matrixd::translate(x, y, height * 0.5), kind::board,
                           kind::boardMask, false);
    }

    void hang()
    {
        scene->finishActor(boardId, 1.0);
        scene->setPose(boardId, {});
        const osg::Matrixd vertical = osg::Matrixd::rotate(osg::PI_2, 0, 1, 0);
        unsigned int joint = scene->nextId();
        scene->createSphericalJoint(joint, boardId, vertical, PhysxScene::world, vertical);
        scene->setSphericalLimit(joint, coneAngle, coneAngle, 0.001f);
        scene->setMaxAngularVelocity(boardId, 1.0f);
        for (const osg::Vec3d& corner : {osg::Vec3d(-8, -8, 0), osg::Vec3d(8, -8, 0),
                                         osg::Vec3d(-8, 8, 0), osg::Vec3d(8, 8, 0)}) {
            joint = scene->nextId();
            const osg::Matrixd frame = osg::Matrixd::translate(corner);
            scene->createDistanceJoint(joint, boardId, frame, PhysxScene::world, frame);
            scene->setDistanceLimit(joint, 0.0f, 1.0f, 10.0f, 1.0f);
        }
        scene->setAngularDamping(boardId, 1.0f);
    }

    void dropBall(const osg::Vec3f& position)
    {
        ball(ballId, position);
        scene->setCcdEnabled(ballId, true);
    }

    /// A ramp on one cell, from the board's surface half a unit up in the given direction.
    void addRamp(const osg::Vec3f& centre, const osg::Vec3f& uphill)
    {
        osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
        for (float x : {-0.5f, 0.5f})
            for (float y : {-0.5f, 0.5f}) {
                const osg::Vec3f corner(x, y, 0);
                const float top = corner * uphill > 0 ? 1.0f : 0.5f;
                vertices->push_back(centre + corner);
                vertices->push_back(centre + corner + osg::Vec3f(0, 0, top));
            }
        scene->addConvexShape(boardId, vertices, "holz", kind::board, kind::boardMask, false);
    }

    /// A block of half a unit with a body of its own, fixed to the board.
    void fixBlock(const osg::Matrixd& pose)
    {
        const auto id = static_cast<unsigned int>(firstBlock + blockPoses.size());
        box(id, 1, {1, 1, 0.5f});
        scene->setPose(id, pose);
        scene->createFixedJoint(scene->nextId(), id, {}, boardId, pose);
        blockPoses.push_back(pose);
    }

    /// A square of such blocks in the middle of the board.
    void fixBlocks(int rows)
    {
        const double first = -(rows - 1) * 0.5;
        for (int i = 0; i < rows * rows; ++i)
            fixBlock(osg::Matrixd::translate(first + i % rows, first + i / rows, 0.75));
        scene->step(gameStep);
    }

    /// Where a ball's centre rests when that square is on the board.
    static float restingHeight(int rows, float x, float y)
    {
        const bool onBlock = std::max(std::abs(x), std::abs(y)) < rows * 0.5f;
        return onBlock ? 1.3f : 0.8f;
    }

    void placeTilted(float angle, const osg::Vec3f& axis, const osg::Vec3f& velocity)
    {
        scene->setAngularVelocity(boardId, velocity, true);
        scene->setPoseWithAttached(boardId, osg::Matrixd::rotate(angle, axis));
    }

    void holdKey(int ticks, const osg::Vec3f& axis)
    {
        for (int i = 0; i < ticks; ++i) {
            scene->addTorque(boardId, axis * key, 2, true);
            scene->step(gameStep);
        }
    }

    double tilt()
    {
        const PxVec3 normal = scene->actors.at(boardId)->getGlobalPose().q.rotate(PxVec3(0, 0, 1));
        return std::acos(std::min(1.0f, normal.z)) * 180.0 / osg::PI;
    }
    float spin() { return scene->body(boardId)->getAngularVelocity().magnitude(); }

    /// How far the worst block is from its place on the board.
    double worstBlock()
    {
        double worst = 0.0;
        const PxTransform board = scene->actors.at(boardId)->getGlobalPose();
        for (std::size_t i = 0; i < blockPoses.size(); ++i) {
            const PxVec3 place = board.transform(toPxTransform(blockPoses[i])).p;
            const PxVec3 real = scene->actors.at(firstBlock + i)->getGlobalPose().p;
            worst = std::max<double>(worst, (place - real).magnitude());
        }
        return worst;
    }

    std::vector<osg::Matrixd> blockPoses;
};

TEST_F(PhysxBoard, ReachesThirtyDegreesInHalfASecondAndStopsThereHoweverLongAKeyIsHeld)
{
    constexpr int halfASecond = 25;  // ticks of 20 ms
    makeBoard();
    for (int tick = 0; tick < 300; ++tick) {
        holdKey(1, osg::Vec3f(1, 0, 0));
        ASSERT_LE(spin(), 1.0f + 1e-4f);
        // The limit only begins to act past its edge: one step's turn may lie beyond it.
        ASSERT_LE(tilt(), 30.0 + gameStep * 180.0 / osg::PI);
        if (tick >= halfASecond - 1)
            ASSERT_NEAR(tilt(), 30.0, 0.1);
        ASSERT_LT(scene->position(boardId).length(), 1e-3f);
    }
    scene->steps(60);
    EXPECT_NEAR(tilt(), 30.0, 0.1) << "a board left alone keeps its pose";
}

TEST_F(PhysxBoard, MeetsTheConeInEveryDirection)
{
    makeBoard();
    for (int direction = 0; direction < 8; ++direction) {
        SCOPED_TRACE(direction);
        scene->setAngularVelocity(boardId, {}, true);
        scene->setPose(boardId, {});
        const double angle = direction * osg::PI_4;
        holdKey(60, osg::Vec3f(std::cos(angle), std::sin(angle), 0));
        EXPECT_NEAR(tilt(), 30.0, 0.1);
    }
}

TEST_F(PhysxBoard, FeelsNothingOfItsDistanceJointsInPlay)
{
    std::vector<double> tilts[2];
    for (bool withJoints : {true, false}) {
        emptyWorld();
        makeBoard();
        if (!withJoints)
            for (unsigned int joint = 1; joint <= 4; ++joint)
                scene->removeJoint(joint);
        for (int tick = 0; tick < 60; ++tick) {
            holdKey(1, osg::Vec3f(1, 1, 0) / std::sqrt(2.0f));
            tilts[withJoints].push_back(tilt());
        }
    }
    for (std::size_t tick = 0; tick < tilts[0].size(); ++tick)
        ASSERT_NEAR(tilts[0][tick], tilts[1][tick], 1e-3) << tick;
}

TEST_F(PhysxBoard, HangsOnItsJointsWithoutAnyShape)
{
    scene->createActor(boardId, 1);
    EXPECT_EQ(outputOf([&] {
                  hang();
                  holdKey(60, osg::Vec3f(1, 0, 0));
              }),
              "");
    EXPECT_NEAR(tilt(), 30.0, 0.1);
}

TEST_F(PhysxBoard, CarriesARestingBallForAMinuteWithoutDrift)
{
    makeBoard();
    dropBall({3, 2, 1});
    scene->steps(60);
    const osg::Vec3f place = scene->position(ballId);
    ASSERT_NEAR(place.z(), 0.8f, 0.005f);
    scene->steps(1800);
    EXPECT_LT((scene->position(ballId) - place).length(), 1e-3f);
    EXPECT_LT(tilt(), 0.01);
}

TEST_F(PhysxBoard, SagsLittleUnderABallThatLeansOnIt)
{
    makeBoard();
    dropBall({6, 0, 0.8f});
    for (int i = 0; i < 60; ++i) {
        // Sensor and keys keep the board awake in play; at rest, it and the ball fall asleep.
        scene->addTorque(boardId, {}, 2, true);
        scene->step(gameStep);
    }
    EXPECT_GT(tilt(), 0.05) << "the ball has a weight";
    EXPECT_LT(tilt(), 0.5);
}

TEST_F(PhysxBoard, LetsTheBallRollDownWhenItTilts)
{
    constexpr float slant = 0.1745f;  // ten degrees
    makeBoard();
    placeTilted(slant, {0, 1, 0}, {});
    scene->step(gameStep);
    dropBall(osg::Vec3f(-2, 0, 0.8f) * osg::Matrixd::rotate(slant, osg::Vec3f(0, 1, 0)));
    scene->steps(30);
    const double rolling = world::rollingGravity * std::sin(slant);  // after a second
    EXPECT_NEAR(scene->linearVelocity(ballId).length(), rolling, 0.1);
    EXPECT_NEAR(scene->body(ballId)->getAngularVelocity().magnitude() * world::ballRadius, rolling,
                0.1)
        << "it rolls and does not slide";
}

TEST_F(PhysxBoard, KeepsAFastBallWithinItsWalls)
{
    for (bool ownBodies : {false, true})
        for (float speed : {5.0f, 20.0f, 40.0f}) {
            SCOPED_TRACE(testing::Message() << speed << (ownBodies ? " fixed" : " merged"));
            emptyWorld();
            makeBoard(15, 0.5f, [&] {
                for (int y = -7; y <= 7 && !ownBodies; ++y)
                    addCell(5, y, 1.0f);
            });
            for (int y = -7; y <= 7 && ownBodies; ++y)
                fixBlock(osg::Matrixd::translate(5, y, 0.75));
            dropBall({0, 0, 0.82f});
            scene->steps(15);
            scene->setLinearVelocity(ballId, {speed, 0, 0}, true);
            for (int i = 0; i < 60; ++i) {
                scene->step(gameStep);
                ASSERT_LT(scene->position(ballId).x(), 4.25f);
                ASSERT_GT(scene->position(ballId).z(), 0.75f);
            }
        }
}

TEST_F(PhysxBoard, LetsTheBallRideRampsOfEveryDirection)
{
    const osg::Vec3f uphill[] = {{0, -1, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
    for (const osg::Vec3f& direction : uphill) {
        SCOPED_TRACE(testing::Message() << direction.x() << ' ' << direction.y());
        emptyWorld();
        makeBoard(15, 0.5f, [&] { addRamp(direction * 3, direction); });
        dropBall({0, 0, 0.8f});
        scene->steps(5);
        scene->setLinearVelocity(ballId, direction * 5, true);
        float highest = 0.0f;
        for (int i = 0; i < 60; ++i) {
            scene->step(gameStep);
            highest = std::max(highest, scene->position(ballId).z());
        }
        EXPECT_GT(highest, 1.25f) << "half a unit up, and no step at the foot of it";
        EXPECT_GT(scene->position(ballId) * direction, 4.0f) << "and over the top";
        EXPECT_NEAR((scene->position(ballId) ^ direction).length(), scene->position(ballId).z(),
                    0.01f)
            << "straight ahead";
    }
}

TEST_F(PhysxBoard, ComesLevelWithEveryBlockThatIsFixedToIt)
{
    for (int rows : {3, 8, 16}) {
        SCOPED_TRACE(rows);
        emptyWorld();
        makeBoard(17);
        fixBlocks(rows);
        holdKey(60, osg::Vec3f(1, 0, 0));
        ASSERT_NEAR(tilt(), 30.0, 0.1);
        dropBall({2, 2, restingHeight(rows, 2, 2)});
        scene->setAngularVelocity(boardId, {}, true);
        scene->setPoseWithAttached(boardId, {});
        scene->step(gameStep);
        EXPECT_LT(tilt(), 0.1);
        EXPECT_LT(worstBlock(), 0.001);
        EXPECT_LT(scene->linearVelocity(ballId).length(), 0.33f) << "a step of free fall at most";
    }
}

TEST_F(PhysxBoard, StandsStillAtOnceWhenItsTurningIsTakenAwayBefore)
{
    makeBoard(17);
    fixBlocks(8);
    placeTilted(coneAngle * 0.5f, {1, 0, 0}, {1, 0, 0});
    scene->steps(5);
    ASSERT_GT(spin(), 0.7f);
    dropBall({2, 2, restingHeight(8, 2, 2)});
    scene->setAngularVelocity(boardId, {}, true);
    scene->setLinearVelocity(boardId, {}, true);
    scene->setPoseWithAttached(boardId, {});
    scene->step(gameStep);
    EXPECT_LT(tilt(), 0.1);
    EXPECT_LT(worstBlock(), 0.001);
    EXPECT_LT(scene->linearVelocity(ballId).length(), 0.01f);
}

TEST_F(PhysxBoard, GoesOnTurningFromItsNewPoseAsItDidFromTheOld)
{
    for (int rows : {0, 8}) {
        SCOPED_TRACE(rows);
        emptyWorld();
        makeBoard(17);
        fixBlocks(rows);
        placeTilted(coneAngle * 0.5f, {1, 0, 0}, {0.9f, 0, 0});
        scene->step(gameStep);
        const float before = spin();
        ASSERT_GT(before, 0.8f);
        scene->setPoseWithAttached(boardId, {});
        scene->step(gameStep);
        EXPECT_NEAR(spin(), before, 0.05f);
        EXPECT_NEAR(tilt(), before * gameStep * 180.0 / osg::PI, 0.1);
        EXPECT_LT(worstBlock(), 0.005);
    }
}

TEST_F(PhysxBoard, TakesASlidingBlockAlongWhereItIs)
{
    makeBoard();
    const osg::Matrixd home = osg::Matrixd::translate(2, 0, 0.75);
    fixBlock(home);
    const unsigned int slide = scene->nextId(), lift = firstBlock + 1;
    box(lift, 1, {1, 1, 0.5f});
    scene->setPose(lift, osg::Matrixd::translate(-3, 0, 1.25));
    scene->createD6Joint(slide, lift, {}, boardId, osg::Matrixd::translate(-3, 0, 1.25));
    scene->setD6Motion(slide, PxD6Axis::eZ, PxD6Motion::eLIMITED, 0.5f, 0.0f);
    scene->steps(5);
    holdKey(60, osg::Vec3f(0, 1, 0));
    const PxTransform board = scene->actors.at(boardId)->getGlobalPose();
    const PxVec3 place = board.transformInv(scene->actors.at(lift)->getGlobalPose().p);
    scene->setAngularVelocity(boardId, {}, true);
    scene->setPoseWithAttached(boardId, {});
    scene->step(gameStep);
    EXPECT_LT(tilt(), 0.1);
    EXPECT_NEAR((scene->position(lift) - toOsgVec3(place)).length(), 0.0f, 0.01f);
    EXPECT_LT(worstBlock(), 0.001);
}
