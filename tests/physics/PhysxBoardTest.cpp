#include "physics/PhysxTestScene.h"

#include <algorithm>

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
    void makeBoard(int cells = 15, float height = 0.5f)
    {
        scene->createActor(boardId, 1);
        for (int x = 0; x < cells; ++x)
            for (int y = 0; y < cells; ++y)
                addCell(x - cells / 2, y - cells / 2, height);
        addExtras();
        hang();
    }

    virtual void addExtras() {}

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

    /// Blocks with a body of their own on the surface, each fixed to the board.
    void fixBlocks(int rows)
    {
        for (int i = 0; i < rows * rows; ++i) {
            const unsigned int id = firstBlock + i;
            const osg::Matrixd pose = osg::Matrixd::translate(i % rows - (rows - 1) * 0.5,
                                                              i / rows - (rows - 1) * 0.5, 0.75);
            scene->createBox(id, {1, 1, 0.5f}, 1.0, "holz", 1, kind::board, kind::boardMask);
            scene->setPose(id, pose);
            scene->createFixedJoint(scene->nextId(), id, {}, boardId, pose);
            blockPoses.push_back(pose);
        }
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

TEST_F(PhysxBoard, ReachesThirtyDegreesUnderAHeldKeyAndStopsThere)
{
    makeBoard();
    for (int i = 0; i < 200; ++i) {
        holdKey(1, osg::Vec3f(1, 0, 0));
        ASSERT_LE(spin(), 1.0f + 1e-4f);
        ASSERT_LE(tilt(), 31.0);
        if (i == 24)
            std::cerr << "25 steps " << tilt() << "\n";
    }
    std::cerr << "end " << tilt() << "\n";
    EXPECT_NEAR(tilt(), 30.0, 0.5);
}
