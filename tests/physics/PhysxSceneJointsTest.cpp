#include "physics/PhysxTestScene.h"

#include <algorithm>
#include <string>

using namespace physx;

class PhysxSceneJoints : public PhysxTest
{
protected:
    template <typename Joint>
    Joint* joint(unsigned int id)
    {
        return scene->joints.at(id)->template is<Joint>();
    }

    /// A kinematic board with a hole of one cell, and a block that fills it and slides along z.
    void makeLift(double travel)
    {
        scene->createActor(0, 2);
        for (int x = -1; x <= 1; ++x)
            for (int y = -1; y <= 1; ++y)
                if (x || y)
                    scene->addBoxShape(0, {1, 1, 1}, "holz", osg::Matrixd::translate(x, y, 0.5),
                                       kind::board, kind::boardMask, false);
        scene->finishActor(0, 1.0);
        box(1, 1);
        scene->setPose(1, home);
        scene->step(gameStep);
        scene->createD6Joint(slide, 1, {}, 0, osg::Matrixd::translate(0, 0, travel / 2) * home);
        scene->setD6Drive(slide, PxD6Drive::eZ, 20.0f, 0.0f, 10.0f, true);
    }

    void sendLift(double travel, int direction)
    {
        scene->setD6Motion(slide, PxD6Axis::eZ, PxD6Motion::eLIMITED, float(std::abs(travel) / 2),
                           0.0f);
        scene->driveJoint(slide, osg::Matrixd::translate(0, 0, -travel * direction), {0, 0, 0.1f},
                          {});
    }

    /// Steps until the block is there.
    bool arrives(double z)
    {
        for (int i = 0; i < 300; ++i) {
            scene->step(gameStep);
            if (std::abs(scene->position(1).z() - z) < 0.01)
                return true;
        }
        return false;
    }

    const osg::Matrixd home = osg::Matrixd::translate(0, 0, 0.5);
    static constexpr unsigned int slide = 0, lock = 1;
};

TEST_F(PhysxSceneJoints, RefuseToTieAnObjectToItself)
{
    const std::string words = "I cannot create a joint between an object and itself!\n";
    box(0);
    const osg::Matrixd frame;
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createFixedJoint(5, 0, frame, 0, frame)); }),
              words);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createD6Joint(5, 0, frame, 0, frame)); }), words);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createDistanceJoint(5, 0, frame, 0, frame)); }),
              words);
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(scene->createSphericalJoint(5, PhysxScene::world, frame, 77, frame));
              }),
              words);
    EXPECT_TRUE(scene->joints.empty());
    EXPECT_EQ(scene->scene->getNbConstraints(), 0u);
}

TEST_F(PhysxSceneJoints, RefuseToTieTwoThingsThatCannotMove)
{
    plane(0);
    plane(1);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->createFixedJoint(5, 0, {}, 1, {})); }),
              "Failed to create joint 5\n");
    EXPECT_TRUE(scene->joints.empty());
}

TEST_F(PhysxSceneJoints, TieToTheWorldWithoutAWord)
{
    box(0);
    EXPECT_EQ(outputOf([&] {
                  EXPECT_TRUE(scene->createFixedJoint(0, 0, {}, 0xFFFFFFFF,
                                                      osg::Matrixd::translate(0, 0, 0)));
              }),
              "");
    scene->steps(60);
    EXPECT_NEAR(scene->position(0).length(), 0.0f, 1e-3f);
}

TEST_F(PhysxSceneJoints, BearTheirKind)
{
    box(0);
    scene->createSphericalJoint(0, 0, {}, PhysxScene::world, {});
    scene->createFixedJoint(1, 0, {}, PhysxScene::world, {});
    scene->createDistanceJoint(2, 0, {}, PhysxScene::world, {});
    scene->createD6Joint(3, 0, {}, PhysxScene::world, {});
    EXPECT_TRUE(joint<PxSphericalJoint>(0));
    EXPECT_TRUE(joint<PxFixedJoint>(1));
    EXPECT_TRUE(joint<PxDistanceJoint>(2));
    EXPECT_TRUE(joint<PxD6Joint>(3));
    for (unsigned int id = 0; id < 4; ++id)
        EXPECT_EQ(scene->joints.at(id)->getConstraintFlags() & PxConstraintFlag::eVISUALIZATION,
                  PxConstraintFlag::eVISUALIZATION);
}

TEST_F(PhysxSceneJoints, TakeEachFrameInTheSpaceOfItsActor)
{
    box(0, 2);
    box(1, 0);
    scene->setPose(0, osg::Matrixd::translate(5, 0, 0));
    scene->setPose(1, osg::Matrixd::translate(5, 3, 0));
    scene->createFixedJoint(0, 1, {}, 0, osg::Matrixd::translate(0, 3, 0));
    scene->steps(60);
    EXPECT_NEAR((scene->position(1) - osg::Vec3f(5, 3, 0)).length(), 0.0f, 1e-3f);
}

TEST_F(PhysxSceneJoints, AreNotKnownAfterTheirRemoval)
{
    box(0);
    scene->createFixedJoint(4, 0, {}, PhysxScene::world, {});
    EXPECT_EQ(outputOf([&] { scene->removeJoint(4); }), "");
    EXPECT_EQ(outputOf([&] { scene->removeJoint(4); }), "I do not know a joint with id 4\n");
}

TEST_F(PhysxSceneJoints, HoldUntilTheStepAfterTheirRemoval)
{
    box(0);
    scene->createFixedJoint(4, 0, {}, PhysxScene::world, {});
    scene->step(gameStep);
    scene->removeJoint(4);
    EXPECT_EQ(scene->scene->getNbConstraints(), 1u);
    EXPECT_TRUE(scene->createFixedJoint(4, 0, {}, PhysxScene::world, {})) << "the id is free";
    scene->step(gameStep);
    EXPECT_EQ(scene->scene->getNbConstraints(), 1u);
    scene->removeJoint(4);
    scene->steps(10);
    EXPECT_EQ(scene->scene->getNbConstraints(), 0u);
    EXPECT_LT(scene->position(0).z(), -0.3f);
}

TEST_F(PhysxSceneJoints, GoOnHoldingWhenTheirIdIsTaken)
{
    box(0);
    scene->createFixedJoint(4, 0, {}, PhysxScene::world, {});
    EXPECT_TRUE(scene->createDistanceJoint(4, 0, {}, PhysxScene::world, {}));
    EXPECT_TRUE(joint<PxDistanceJoint>(4));
    EXPECT_EQ(scene->scene->getNbConstraints(), 2u);
    scene->steps(30);
    EXPECT_NEAR(scene->position(0).z(), 0.0f, 1e-3f);
    scene->clear();
    EXPECT_EQ(scene->scene->getNbConstraints(), 0u);
}

TEST_F(PhysxSceneJoints, AreReleasedByClearWhileTheirRemovalWaits)
{
    box(0);
    box(1);
    scene->createFixedJoint(4, 0, {}, 1, osg::Matrixd::translate(3, 0, 0));
    scene->removeJoint(4);
    scene->clear();
    EXPECT_EQ(scene->scene->getNbConstraints(), 0u);
    scene->step(gameStep);
}

TEST_F(PhysxSceneJoints, ComplainOfEveryUnknownId)
{
    const std::string unknown = "I do not know a joint with id 42\n";
    EXPECT_EQ(outputOf([&] { scene->removeJoint(42); }), unknown);
    EXPECT_EQ(outputOf([&] { scene->driveJoint(42, {}, {}, {}); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setD6Drive(42, 2, 1, 0, 1, true)); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setD6Motion(42, 2, 1, 1, 0)); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setDistanceLimit(42, 0, 1, 1, 1)); }), unknown);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setSphericalLimit(42, 1, 1, -1)); }), unknown);
    EXPECT_TRUE(scene->tasks.empty());
}

TEST_F(PhysxSceneJoints, ComplainOfWhatTheirKindCannotDo)
{
    box(0, 1);
    scene->step(gameStep);
    scene->createFixedJoint(1, 0, {}, PhysxScene::world, {});
    const std::string kindName = scene->joints.at(1)->getConcreteTypeName();
    EXPECT_EQ(outputOf([&] { scene->driveJoint(1, {}, {}, {}); }),
              "Joint 1 is not a D6 joint but a " + kindName + "! He cannot drive.\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setD6Drive(1, 2, 1, 0, 1, true)); }),
              "Joint 1 is not a D6 joint! He cannot have a D6 drive.\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setD6Motion(1, 2, 1, 1, 0)); }),
              "Joint 1 is not a D6 joint! He cannot have a D6 joint limit.\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setDistanceLimit(1, 0, 1, 1, 1)); }),
              "Joint 1 is not a distance joint! He cannot have a distance joint limit.\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setSphericalLimit(1, 1, 1, -1)); }),
              "Joint 1 is not a spherical joint! He cannot have a spherical joint limit.\n");
    EXPECT_TRUE(scene->tasks.empty());
}

TEST_F(PhysxSceneJoints, RefuseDrivesThatTheyDoNotHave)
{
    box(0, 1);
    scene->createD6Joint(3, 0, {}, PhysxScene::world, {});
    EXPECT_EQ(
        outputOf([&] { EXPECT_TRUE(scene->setD6Drive(3, PxD6Drive::eSLERP, 1, 0, 1, true)); }), "");
    for (unsigned int drive : {6u, 7u, 1000000u, 0xFFFFFFFFu})
        EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setD6Drive(3, drive, 1, 0, 1, true)); }),
                  "Joint 3 has no drive " + std::to_string(drive) + ". I cannot set it.\n");
}

TEST_F(PhysxSceneJoints, RefuseAxesAndMotionsThatTheyDoNotHave)
{
    box(0, 1);
    scene->createD6Joint(3, 0, {}, PhysxScene::world, {});
    PxD6Joint& d6 = *joint<PxD6Joint>(3);
    EXPECT_TRUE(scene->setD6Motion(3, PxD6Axis::eSWING2, PxD6Motion::eFREE, 0, 0));
    const auto refuses = [&](unsigned int axis, unsigned int motion) {
        EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setD6Motion(3, axis, motion, 5, 0)); }),
                  "Joint 3 has no motion " + std::to_string(motion) + " on an axis " +
                      std::to_string(axis) + ". I cannot set it.\n");
    };
    const PxReal before = d6.getDistanceLimit().value;
    refuses(6, PxD6Motion::eFREE);
    refuses(0xFFFFFFFFu, PxD6Motion::eLIMITED);
    refuses(PxD6Axis::eZ, 3);
    refuses(PxD6Axis::eZ, 0xFFFFFFFFu);
    for (int axis = 0; axis < PxD6Axis::eCOUNT; ++axis)
        EXPECT_EQ(d6.getMotion(static_cast<PxD6Axis::Enum>(axis)),
                  axis == PxD6Axis::eSWING2 ? PxD6Motion::eFREE : PxD6Motion::eLOCKED);
    EXPECT_EQ(d6.getDistanceLimit().value, before);
}

TEST_F(PhysxSceneJoints, FreeAnAxisWithoutALimit)
{
    box(0);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    const PxJointLinearLimit before = joint<PxD6Joint>(0)->getDistanceLimit();
    EXPECT_TRUE(scene->setD6Motion(0, PxD6Axis::eZ, PxD6Motion::eFREE, 5, 5));
    EXPECT_EQ(joint<PxD6Joint>(0)->getMotion(PxD6Axis::eZ), PxD6Motion::eFREE);
    EXPECT_EQ(joint<PxD6Joint>(0)->getMotion(PxD6Axis::eX), PxD6Motion::eLOCKED);
    const PxJointLinearLimit after = joint<PxD6Joint>(0)->getDistanceLimit();
    EXPECT_EQ(after.value, before.value);
    EXPECT_EQ(after.contactDistance_deprecated, before.contactDistance_deprecated);
    scene->steps(60);
    EXPECT_LT(scene->position(0).z(), -10.0f);
}

TEST_F(PhysxSceneJoints, LimitALinearAxis)
{
    box(0);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    EXPECT_TRUE(scene->setD6Motion(0, PxD6Axis::eZ, PxD6Motion::eLIMITED, 1.5f, 0.2f));
    const PxJointLinearLimit limit = joint<PxD6Joint>(0)->getDistanceLimit();
    EXPECT_EQ(limit.value, 1.5f);
    EXPECT_EQ(limit.contactDistance_deprecated, 0.2f);
    EXPECT_EQ(limit.restitution, 0.0f);
    EXPECT_EQ(limit.bounceThreshold, 0.0f);
    EXPECT_EQ(limit.stiffness, 0.0f);
    EXPECT_EQ(limit.damping, 0.0f);
    scene->steps(90);
    EXPECT_NEAR(scene->position(0).z(), -1.5f, 0.02f);
}

TEST_F(PhysxSceneJoints, LockAnAxisWithoutTheLimitOfAnother)
{
    box(0);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    scene->setD6Motion(0, PxD6Axis::eZ, PxD6Motion::eLIMITED, 1.5f, 0.2f);
    EXPECT_TRUE(scene->setD6Motion(0, PxD6Axis::eX, PxD6Motion::eLOCKED, 5, 5));
    EXPECT_EQ(joint<PxD6Joint>(0)->getMotion(PxD6Axis::eX), PxD6Motion::eLOCKED);
    EXPECT_EQ(joint<PxD6Joint>(0)->getDistanceLimit().value, 1.5f);
}

TEST_F(PhysxSceneJoints, TakeTheDefaultContactDistanceOfALinearLimit)
{
    box(0);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    scene->setD6Motion(0, PxD6Axis::eZ, PxD6Motion::eLIMITED, 1.5f, -1.0f);
    EXPECT_FLOAT_EQ(joint<PxD6Joint>(0)->getDistanceLimit().contactDistance_deprecated, 0.01f);
}

TEST_F(PhysxSceneJoints, HandTheDriveOver)
{
    box(0, 1);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    EXPECT_TRUE(scene->setD6Drive(0, PxD6Drive::eZ, 20, 3, 10, true));
    PxD6JointDrive drive = joint<PxD6Joint>(0)->getDrive(PxD6Drive::eZ);
    EXPECT_EQ(drive.stiffness, 20.0f);
    EXPECT_EQ(drive.damping, 3.0f);
    EXPECT_EQ(drive.forceLimit, 10.0f);
    EXPECT_TRUE(drive.flags.isSet(PxD6JointDriveFlag::eACCELERATION));
    EXPECT_TRUE(scene->setD6Drive(0, PxD6Drive::eZ, 20, 3, 10, false));
    drive = joint<PxD6Joint>(0)->getDrive(PxD6Drive::eZ);
    EXPECT_FALSE(drive.flags.isSet(PxD6JointDriveFlag::eACCELERATION));
}

TEST_F(PhysxSceneJoints, WakeTheirBodiesWhenTheyAreDriven)
{
    box(0, 1);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    scene->setD6Motion(0, PxD6Axis::eX, PxD6Motion::eFREE, 0, 0);
    scene->setD6Drive(0, PxD6Drive::eX, 20, 10, 100, true);
    scene->steps(90);
    ASSERT_TRUE(scene->body(0)->isSleeping());
    scene->driveJoint(0, osg::Matrixd::translate(-2, 0, 0), {}, {});
    EXPECT_TRUE(scene->body(0)->isSleeping());
    scene->steps(90);
    EXPECT_NEAR(scene->position(0).x(), 2.0f, 0.05f);
    PxVec3 linear, angular;
    joint<PxD6Joint>(0)->getDriveVelocity(linear, angular);
    EXPECT_EQ(linear, PxVec3(0.0f));
}

TEST_F(PhysxSceneJoints, HandTheDriveVelocitiesOver)
{
    box(0, 1);
    scene->createD6Joint(0, 0, {}, PhysxScene::world, {});
    scene->driveJoint(0, {}, {1, 2, 3}, {4, 5, 6});
    scene->step(gameStep);
    PxVec3 linear, angular;
    joint<PxD6Joint>(0)->getDriveVelocity(linear, angular);
    EXPECT_EQ(linear, PxVec3(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(angular, PxVec3(4.0f, 5.0f, 6.0f));
}

TEST_F(PhysxSceneJoints, TakeTheDefaultContactDistanceOfACone)
{
    box(0);
    scene->createSphericalJoint(0, 0, {}, PhysxScene::world, {});
    EXPECT_TRUE(scene->setSphericalLimit(0, 0.5f, 0.1f, -1.0f));
    EXPECT_FLOAT_EQ(joint<PxSphericalJoint>(0)->getLimitCone().contactDistance_deprecated, 0.049f);
    EXPECT_TRUE(scene->setSphericalLimit(0, 1.0f, 1.0f, -1.0f));
    EXPECT_FLOAT_EQ(joint<PxSphericalJoint>(0)->getLimitCone().contactDistance_deprecated, 0.1f);
}

TEST_F(PhysxSceneJoints, HandTheConeOver)
{
    box(0);
    scene->createSphericalJoint(0, 0, {}, PhysxScene::world, {});
    scene->setSphericalLimit(0, 0.5f, 0.4f, 0.001f);
    const PxJointLimitCone cone = joint<PxSphericalJoint>(0)->getLimitCone();
    EXPECT_EQ(cone.yAngle, 0.5f);
    EXPECT_EQ(cone.zAngle, 0.4f);
    EXPECT_EQ(cone.contactDistance_deprecated, 0.001f);
    EXPECT_EQ(cone.bounceThreshold, 0.5f);
    EXPECT_EQ(cone.restitution, 0.0f);
    EXPECT_EQ(cone.stiffness, 0.0f);
    EXPECT_EQ(cone.damping, 0.0f);
    EXPECT_TRUE(joint<PxSphericalJoint>(0)->getSphericalJointFlags().isSet(
        PxSphericalJointFlag::eLIMIT_ENABLED));
}

TEST_F(PhysxSceneJoints, HaveNoMinimumForANegativeDistance)
{
    box(0);
    scene->createDistanceJoint(0, 0, {}, PhysxScene::world, {});
    EXPECT_TRUE(scene->setDistanceLimit(0, -1, 2, 0.5f, 3));
    PxDistanceJoint* distance = joint<PxDistanceJoint>(0);
    EXPECT_FALSE(
        distance->getDistanceJointFlags().isSet(PxDistanceJointFlag::eMIN_DISTANCE_ENABLED));
    EXPECT_TRUE(
        distance->getDistanceJointFlags().isSet(PxDistanceJointFlag::eMAX_DISTANCE_ENABLED));
    EXPECT_FALSE(distance->getDistanceJointFlags().isSet(PxDistanceJointFlag::eSPRING_ENABLED));
    EXPECT_EQ(distance->getMaxDistance(), 2.5f);
    EXPECT_EQ(distance->getStiffness(), 3.0f);
    EXPECT_TRUE(scene->setDistanceLimit(0, 0, -1, 0.5f, 3));
    EXPECT_TRUE(
        distance->getDistanceJointFlags().isSet(PxDistanceJointFlag::eMIN_DISTANCE_ENABLED));
    EXPECT_FALSE(
        distance->getDistanceJointFlags().isSet(PxDistanceJointFlag::eMAX_DISTANCE_ENABLED));
}

TEST_F(PhysxSceneJoints, GiveTheToleranceToTheirDistancesAndKeepNone)
{
    box(0);
    scene->createDistanceJoint(0, 0, {}, PhysxScene::world, {});
    PxDistanceJoint* distance = joint<PxDistanceJoint>(0);
    scene->setDistanceLimit(0, 3.0f, 8.0f, 0.5f, 1.0f);
    EXPECT_EQ(distance->getMinDistance(), 2.5f);
    EXPECT_EQ(distance->getMaxDistance(), 8.5f);
    EXPECT_EQ(distance->getTolerance(), 0.0f);
    // As the board's are.
    scene->setDistanceLimit(0, 0.0f, 1.0f, 10.0f, 1.0f);
    EXPECT_EQ(distance->getMinDistance(), 0.0f);
    EXPECT_EQ(distance->getMaxDistance(), 11.0f);
    EXPECT_EQ(distance->getTolerance(), 0.0f);
}

TEST_F(PhysxSceneJoints, HoldWithinMinimumLessToleranceOnly)
{
    box(0, 1);
    scene->setPose(0, osg::Matrixd::translate(6, 0, 0));
    scene->createDistanceJoint(0, 0, {}, PhysxScene::world, {});
    scene->setDistanceLimit(0, 3.0f, 8.0f, 0.5f, 1.0f);
    scene->setLinearVelocity(0, {-3, 0, 0}, true);
    scene->steps(34);
    EXPECT_NEAR(scene->position(0).x(), 2.6f, 0.01f) << "no push beyond two and a half units";
    EXPECT_NEAR(scene->linearVelocity(0).x(), -3.0f, 0.01f);
    float nearest = 6.0f;
    for (int i = 0; i < 60; ++i) {
        scene->step(gameStep);
        nearest = std::min(nearest, scene->position(0).x());
    }
    EXPECT_LT(nearest, 2.55f);
    EXPECT_GT(nearest, 2.3f);
}

TEST_F(PhysxSceneJoints, HoldPastMaximumPlusToleranceOnly)
{
    box(0, 1);
    scene->createDistanceJoint(0, 0, {}, PhysxScene::world, {});
    scene->setDistanceLimit(0, 0, 1, 10, 1);
    scene->setLinearVelocity(0, {6, 0, 0}, true);
    scene->steps(54);
    EXPECT_NEAR(scene->position(0).x(), 10.8f, 0.01f) << "no pull within eleven units";
    EXPECT_NEAR(scene->linearVelocity(0).x(), 6.0f, 0.01f);
    float farthest = 0.0f;
    for (int i = 0; i < 120; ++i) {
        scene->step(gameStep);
        farthest = std::max(farthest, scene->position(0).x());
    }
    EXPECT_GT(farthest, 10.9f);
    EXPECT_LT(farthest, 11.25f);
}

TEST_F(PhysxSceneJoints, CarryALiftThroughItsHoleOverManyLockedCycles)
{
    // Without care for the second joint, the release of the lock lets the lift collide with the
    // board from their next meeting on: it hangs on the rim on its way home.
    for (double travel : {-2.0, -1.5, -1.0, -0.5, 0.5, 1.0, 1.5, 2.0, 2.5}) {
        SCOPED_TRACE(travel);
        scene->clear();
        scene->createMaterial("holz", 0.2f, 0.05f, 0.0f);
        makeLift(travel);
        for (int cycle = 0; cycle < 12; ++cycle) {
            SCOPED_TRACE(cycle);
            const bool out = cycle % 2 == 0;
            const double target = 0.5 + (out ? travel : 0.0);
            sendLift(travel, out ? 1 : -1);
            if (cycle)
                scene->removeJoint(lock);
            ASSERT_TRUE(arrives(target)) << scene->position(1).z();
            scene->createFixedJoint(lock, 1, {}, 0, osg::Matrixd::translate(0, 0, target));
            scene->steps(20);
            ASSERT_NEAR(scene->position(1).z(), target, 0.005);
        }
    }
}

TEST_F(PhysxSceneJoints, KeepAPairFromCollidingWhoseFirstCannotMoveWhenOneOfThemGoes)
{
    plane(0);
    ball(1, {0, 0, 2});
    // A plane's own x axis is its normal.
    const osg::Matrixd over = osg::Matrixd::translate(2, 0, 0);
    const osg::Matrixd upright = osg::Matrixd::rotate(osg::Vec3d(1, 0, 0), osg::Vec3d(0, 0, 1));
    scene->createD6Joint(slide, 0, over, 1, upright);
    scene->setD6Motion(slide, PxD6Axis::eX, PxD6Motion::eFREE, 0.0f, 0.0f);
    scene->createFixedJoint(lock, 0, over, 1, upright);
    scene->steps(5);
    ASSERT_NEAR(scene->position(1).z(), 2.0f, 0.01f);
    scene->removeJoint(lock);
    scene->steps(90);
    EXPECT_LT(scene->position(1).z(), -1.0f) << "the tied ball falls through the plane";
}
