#include "physics/PhysxTestScene.h"

#include <functional>
#include <iterator>
#include <limits>

using namespace physx;

namespace {

const osg::Vec3f up(0, 0, 1);
}

class PhysxSceneCommands : public PhysxTest
{
protected:
    PxRigidBodyFlags flags(unsigned int id) { return scene->body(id)->getRigidBodyFlags(); }
};

TEST_F(PhysxSceneCommands, ApplyMotionAndPoseBeforeTheFirstSimulation)
{
    box(0, 2);
    scene->setPose(0, osg::Matrixd::translate(1, 2, 3));
    EXPECT_EQ(scene->position(0), osg::Vec3f());
    scene->step(gameStep);
    EXPECT_TRUE(flags(0).isSet(PxRigidBodyFlag::eKINEMATIC));
    EXPECT_EQ(scene->position(0), osg::Vec3f(1, 2, 3));
}

TEST_F(PhysxSceneCommands, LetABodyFallOrFloatByItsMotion)
{
    box(0, 0);
    box(1, 1);
    box(2, 2);
    for (unsigned int id = 0; id < 3; ++id)
        scene->setPose(id, osg::Matrixd::translate(id * 3.0, 0, 0));
    scene->steps(10);
    EXPECT_LT(scene->position(0).z(), -0.3f);
    EXPECT_EQ(scene->position(1).z(), 0.0f);
    EXPECT_EQ(scene->position(2).z(), 0.0f);
}

TEST_F(PhysxSceneCommands, ChangeTheMotionAtTheNextStep)
{
    box(0, 2);
    scene->step(gameStep);
    scene->setMotion(0, 0);
    EXPECT_TRUE(flags(0).isSet(PxRigidBodyFlag::eKINEMATIC));
    scene->steps(5);
    EXPECT_FALSE(flags(0).isSet(PxRigidBodyFlag::eKINEMATIC));
    EXPECT_LT(scene->position(0).z(), 0.0f);
    scene->setMotion(0, 1);
    scene->step(gameStep);
    EXPECT_TRUE(scene->body(0)->getActorFlags().isSet(PxActorFlag::eDISABLE_GRAVITY));
    scene->setMotion(0, 2);
    scene->step(gameStep);
    EXPECT_TRUE(flags(0).isSet(PxRigidBodyFlag::eKINEMATIC));
    EXPECT_TRUE(scene->body(0)->getActorFlags().isSet(PxActorFlag::eDISABLE_GRAVITY));
}

TEST_F(PhysxSceneCommands, LeaveEverythingForAnUnknownMotion)
{
    box(0, 1);
    scene->step(gameStep);
    EXPECT_EQ(outputOf([&] {
                  scene->setMotion(0, 3);
                  scene->step(gameStep);
              }),
              "");
    EXPECT_FALSE(flags(0).isSet(PxRigidBodyFlag::eKINEMATIC));
    EXPECT_TRUE(scene->body(0)->getActorFlags().isSet(PxActorFlag::eDISABLE_GRAVITY));
}

TEST_F(PhysxSceneCommands, BringABodyBackToGravityEvenFromSleep)
{
    box(0, 1);
    scene->steps(60);
    ASSERT_TRUE(scene->body(0)->isSleeping());
    scene->setMotion(0, 0);
    scene->steps(15);
    EXPECT_LT(scene->position(0).z(), -0.5f);
}

TEST_F(PhysxSceneCommands, ComplainOfForcesOnAStaticWhenTheyRun)
{
    plane(5);
    const std::string words = "The actor with id 5 is not dynamic. The force cannot be with him.\n";
    EXPECT_EQ(outputOf([&] { scene->addForce(5, up, 0, true); }), "");
    EXPECT_EQ(outputOf([&] { scene->step(gameStep); }), words);
    EXPECT_EQ(outputOf([&] { scene->addTorque(5, up, 0, true); }), "");
    EXPECT_EQ(outputOf([&] { scene->step(gameStep); }), words);
}

TEST_F(PhysxSceneCommands, ComplainOfForcesOnAKinematicWhenTheyRun)
{
    box(5, 2);
    const std::string words = "The actor with id 5 is kinematic. He won't respond to forces.\n";
    EXPECT_EQ(outputOf([&] { scene->addForce(5, up, 0, true); }), "");
    EXPECT_EQ(outputOf([&] { scene->step(gameStep); }), words);
    EXPECT_EQ(outputOf([&] { scene->addTorque(5, up, 0, true); }), "");
    EXPECT_EQ(outputOf([&] { scene->step(gameStep); }), words);
}

TEST_F(PhysxSceneCommands, ComplainOfClearedForcesAtTheCall)
{
    plane(5);
    box(6, 2);
    scene->step(gameStep);
    EXPECT_EQ(outputOf([&] { scene->clearForce(5, 0); }),
              "The actor with id 5 is not dynamic. The force cannot be with him.\n");
    EXPECT_EQ(outputOf([&] { scene->clearForce(6, 0); }),
              "The actor with id 6 is kinematic. He won't respond to forces.\n");
    EXPECT_TRUE(scene->tasks.empty());
}

TEST_F(PhysxSceneCommands, ComplainOfVelocitiesWhenTheyRun)
{
    plane(5);
    box(6, 2);
    EXPECT_EQ(outputOf([&] {
                  scene->setLinearVelocity(5, up, true);
                  scene->setAngularVelocity(5, up, true);
                  scene->setLinearVelocity(6, up, true);
                  scene->setAngularVelocity(6, up, true);
              }),
              "");
    EXPECT_EQ(outputOf([&] { scene->step(gameStep); }),
              "The actor with id 5 is not dynamic. I cannot set a velocity.\n"
              "The actor with id 5 is not dynamic. I cannot set a velocity.\n"
              "The actor with id 6 is kinematic. He won't respond to velocities.\n"
              "The actor with id 6 is kinematic. He won't respond to velocities.\n");
}

TEST_F(PhysxSceneCommands, ComplainOfWhatAStaticCannotHave)
{
    plane(5);
    const std::string who = "The actor with id 5 is not dynamic. ";
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(scene->linearVelocity(5), osg::Vec3f()); }),
              who + "I cannot read a velocity.\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setAngularDamping(5, 1)); }),
              who + "He can't have damping.\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(scene->setMaxAngularVelocity(5, 1)); }),
              who + "He cannot have a maximum angular velocity.\n");
    EXPECT_EQ(outputOf([&] { scene->setCcdEnabled(5, true); }), who + "I cannot use CCD.\n");
    EXPECT_EQ(outputOf([&] { scene->setMotion(5, 0); }), who + "I cannot respond to forces.\n");
    EXPECT_TRUE(scene->tasks.empty());
}

TEST_F(PhysxSceneCommands, PushABodyByEachForceMode)
{
    // Mass 8, pushed once with 16 along x: force and acceleration count for one step only.
    const float expected[] = {2.0f / 30, 2.0f, 16.0f, 16.0f / 30};
    for (unsigned int mode = 0; mode < 4; ++mode) {
        SCOPED_TRACE(mode);
        scene->createBox(mode, {2, 2, 2}, 1.0, "holz", 1, 2, 4);
        scene->setPose(mode, osg::Matrixd::translate(0, mode * 10.0, 0));
        scene->addForce(mode, {16, 0, 0}, mode, true);
        scene->step(gameStep);
        EXPECT_NEAR(scene->linearVelocity(mode).x(), expected[mode], 1e-3f);
    }
}

TEST_F(PhysxSceneCommands, TurnABodyByATorque)
{
    box(0, 1);
    scene->addTorque(0, {0, 0, 0.5f}, 2, true);
    scene->step(gameStep);
    EXPECT_NEAR(scene->body(0)->getAngularVelocity().z, 0.5f, 0.02f);
}

TEST_F(PhysxSceneCommands, WakeASleepingBodyByNothingIfTheyAreToAndNotOtherwise)
{
    // A push that is more than nothing wakes a body in any case.
    constexpr unsigned int velocityChange = PhysxScene::forceModeVelocityChange;
    const std::function<void(bool)> pushes[] = {
        [&](bool wake) { scene->addForce(0, {}, velocityChange, wake); },
        [&](bool wake) { scene->addTorque(0, {}, velocityChange, wake); },
        [&](bool wake) { scene->setLinearVelocity(0, {}, wake); },
        [&](bool wake) { scene->setAngularVelocity(0, {}, wake); },
    };
    box(0, 1);
    for (std::size_t i = 0; i < std::size(pushes); ++i) {
        SCOPED_TRACE(i);
        for (const bool wake : {false, true}) {
            scene->steps(60);
            ASSERT_TRUE(scene->body(0)->isSleeping());
            pushes[i](wake);
            scene->step(gameStep);
            EXPECT_NE(scene->body(0)->isSleeping(), wake);
        }
    }
}

TEST_F(PhysxSceneCommands, TakeAForceBackBeforeItActs)
{
    box(0, 1);
    scene->step(gameStep);
    scene->addForce(0, {16, 0, 0}, 0, true);
    scene->clearForce(0, 0);
    scene->step(gameStep);
    EXPECT_EQ(scene->linearVelocity(0), osg::Vec3f());
}

TEST_F(PhysxSceneCommands, DropWhatIsNotANumber)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    box(0, 1);
    scene->setPose(0, osg::Matrixd::translate(nan, 0, 0));
    scene->addForce(0, {nan, 0, 0}, 2, true);
    scene->addTorque(0, {nan, 0, 0}, 2, true);
    scene->setLinearVelocity(0, {nan, 0, 0}, true);
    scene->setAngularVelocity(0, {nan, 0, 0}, true);
    scene->step(gameStep);
    EXPECT_EQ(scene->position(0), osg::Vec3f());
}

TEST_F(PhysxSceneCommands, LeaveABodyOutsideTheSceneInPeace)
{
    scene->createActor(0, 0);
    EXPECT_EQ(outputOf([&] {
                  scene->addForce(0, up, 0, true);
                  scene->addTorque(0, up, 0, true);
                  scene->clearForce(0, 0);
                  scene->setLinearVelocity(0, up, true);
                  scene->setPose(0, osg::Matrixd::translate(1, 0, 0));
                  scene->step(gameStep);
              }),
              "");
    EXPECT_EQ(scene->position(0), osg::Vec3f(1, 0, 0));
}

TEST_F(PhysxSceneCommands, ReadTheVelocityOfTheLastStep)
{
    box(0, 1);
    scene->setLinearVelocity(0, {1, 2, 3}, true);
    EXPECT_EQ(scene->linearVelocity(0), osg::Vec3f());
    scene->step(gameStep);
    EXPECT_NEAR((scene->linearVelocity(0) - osg::Vec3f(1, 2, 3)).length(), 0.0f, 1e-4f);
}

TEST_F(PhysxSceneCommands, SetDampingAndMaximumAtOnce)
{
    box(0, 1);
    EXPECT_TRUE(scene->setAngularDamping(0, 1.5f));
    EXPECT_TRUE(scene->setMaxAngularVelocity(0, 0.7f));
    EXPECT_FLOAT_EQ(scene->body(0)->getAngularDamping(), 1.5f);
    EXPECT_NEAR(scene->body(0)->getMaxAngularVelocity(), 0.7f, 1e-5f);
}

TEST_F(PhysxSceneCommands, PutStaticsAndKinematicsToAPoseWithoutImpartingVelocity)
{
    plane(0);
    box(1, 2);
    ball(2, {0, 0, 3});
    scene->setPose(1, osg::Matrixd::translate(0, 0, 2));
    scene->setPose(0,
                   osg::Matrixd::rotate(-osg::PI_2, 0, 1, 0) * osg::Matrixd::translate(0, 0, -9));
    scene->step(gameStep);
    EXPECT_EQ(scene->position(0), osg::Vec3f(0, 0, -9));
    scene->steps(30);
    scene->setPose(1, osg::Matrixd::translate(5, 0, 2));
    scene->step(gameStep);
    EXPECT_EQ(scene->position(1), osg::Vec3f(5, 0, 2));
    EXPECT_NEAR(scene->linearVelocity(2).x(), 0.0f, 1e-3f);
}

TEST_F(PhysxSceneCommands, StopCollisionsButNotTriggers)
{
    scene->createActor(0, 2);
    scene->addBoxShape(0, {4, 4, 1}, "holz", {}, kind::board, kind::boardMask, false);
    scene->addBoxShape(0, {4, 4, 1}, "holz", osg::Matrixd::translate(0, 0, -3), kind::board,
                       kind::boardMask, true);
    scene->finishActor(0, 1.0);
    ball(1, {0, 0, 0.9f});
    scene->steps(60);
    ASSERT_GT(scene->position(1).z(), 0.7f);
    ASSERT_EQ(scene->entered, 0);

    scene->setCollisionEnabled(0, false);
    scene->steps(60);
    EXPECT_LT(scene->position(1).z(), -4.0f) << "a ball that slept on it has to wake and fall";
    EXPECT_EQ(scene->entered, 1);
    EXPECT_EQ(scene->left, 1);

    scene->setPose(1, osg::Matrixd::translate(0, 0, 0.9));
    scene->setLinearVelocity(1, {}, true);
    scene->setCollisionEnabled(0, true);
    scene->steps(30);
    EXPECT_GT(scene->position(1).z(), 0.7f);
}

TEST_F(PhysxSceneCommands, KeepTheWishForCcdThroughAKinematicTime)
{
    box(0, 0);
    EXPECT_EQ(outputOf([&] {
                  scene->setCcdEnabled(0, true);
                  scene->step(gameStep);
                  EXPECT_TRUE(flags(0).isSet(PxRigidBodyFlag::eENABLE_CCD));
                  scene->setMotion(0, 2);
                  scene->step(gameStep);
                  EXPECT_TRUE(flags(0).isSet(PxRigidBodyFlag::eKINEMATIC));
                  EXPECT_FALSE(flags(0).isSet(PxRigidBodyFlag::eENABLE_CCD));
                  scene->setMotion(0, 1);
                  scene->step(gameStep);
                  EXPECT_TRUE(flags(0).isSet(PxRigidBodyFlag::eENABLE_CCD));
                  scene->setMotion(0, 2);
                  scene->setCcdEnabled(0, true);
                  scene->setCcdEnabled(0, false);
                  scene->setMotion(0, 0);
                  scene->step(gameStep);
                  EXPECT_FALSE(flags(0).isSet(PxRigidBodyFlag::eENABLE_CCD));
              }),
              "");
}
