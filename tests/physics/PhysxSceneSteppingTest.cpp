#include "base/WorldNumbers.h"
#include "physics/PhysxTestScene.h"

#include <limits>

using namespace physx;

class PhysxSceneStepping : public PhysxTest
{
};

TEST_F(PhysxSceneStepping, UsesTheGravityOfItsCreation)
{
    EXPECT_EQ(scene->scene->getGravity(), PxVec3(0.0f, 0.0f, -world::gravity));
    EXPECT_TRUE(scene->scene->getFlags().isSet(PxSceneFlag::eENABLE_CCD));
    EXPECT_EQ(scene->scene->getCpuDispatcher()->getWorkerCount(), 1u);
}

TEST_F(PhysxSceneStepping, IsRefusedAGravityThatIsNoNumber)
{
    osg::ref_ptr<TestScene> refused = new TestScene;
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(refused->createScene(
                      osg::Vec3f(0.0f, 0.0f, std::numeric_limits<float>::quiet_NaN())));
              }),
              "Unable to create Scene\n");
    EXPECT_EQ(refused->scene, nullptr);
    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(refused->createScene(osg::Vec3f(0.0f, 0.0f, -1.0f))); }),
              "");
    EXPECT_NE(refused->scene, nullptr);
}

TEST_F(PhysxSceneStepping, RunsACommandOfAContactInTheNextStep)
{
    plane(0);
    ball(1, {0, 0, 0.5f});
    scene->contactHandler = [&](const PxContactPairHeader&, const PxContactPair*, PxU32) {
        scene->setLinearVelocity(1, {0, 0, 5}, true);
    };
    while (scene->contacts == 0 && scene->position(1).z() > -1.0f)
        scene->step(gameStep);
    ASSERT_EQ(scene->contacts, 1);
    EXPECT_LT(scene->linearVelocity(1).z(), 1.0f);
    EXPECT_EQ(scene->tasks.size(), 1u);
    scene->step(gameStep);
    EXPECT_GT(scene->linearVelocity(1).z(), 4.0f);
}

TEST_F(PhysxSceneStepping, RunsCommandsInTheirOrder)
{
    box(0, 1);
    scene->setLinearVelocity(0, {1, 0, 0}, true);
    scene->setAngularVelocity(0, {0, 0, 1}, true);
    scene->setLinearVelocity(0, {0, 2, 0}, true);
    EXPECT_EQ(scene->tasks.size(), 4u) << "three, and the motion of the creation";
    scene->step(gameStep);
    EXPECT_NEAR((scene->linearVelocity(0) - osg::Vec3f(0, 2, 0)).length(), 0.0f, 1e-4f);
    EXPECT_GT(scene->body(0)->getAngularVelocity().z, 0.9f) << "the one between ran as well";
    EXPECT_TRUE(scene->tasks.empty());
}

TEST_F(PhysxSceneStepping, HoldsCommandsBackUntilAStepComes)
{
    box(0, 1);
    scene->step(gameStep);
    for (int i = 1; i <= 5; ++i)
        scene->setPose(0, osg::Matrixd::translate(i, 0, 0));
    EXPECT_EQ(scene->position(0), osg::Vec3f());
    scene->step(gameStep);
    EXPECT_EQ(scene->position(0), osg::Vec3f(5, 0, 0));
}

TEST_F(PhysxSceneStepping, NeverRunsWhatWasQueuedBeforeClear)
{
    plane(0);
    scene->addForce(0, {0, 0, 1}, 0, true);
    scene->clear();
    EXPECT_TRUE(scene->tasks.empty());
    EXPECT_EQ(outputOf([&] { scene->step(gameStep); }), "");
}

TEST_F(PhysxSceneStepping, IsEmptyAfterClearAndReadyForAnotherLevel)
{
    PxScene* before = scene->scene;
    for (int level = 0; level < 3; ++level) {
        SCOPED_TRACE(level);
        scene->clear();
        EXPECT_TRUE(scene->actors.empty());
        EXPECT_TRUE(scene->joints.empty());
        EXPECT_TRUE(scene->materials.empty());
        EXPECT_EQ(scene->scene, before);
        EXPECT_EQ(scene->scene->getNbActors(PxActorTypeFlag::eRIGID_STATIC |
                                            PxActorTypeFlag::eRIGID_DYNAMIC),
                  0u);
        EXPECT_EQ(scene->scene->getNbConstraints(), 0u);
        EXPECT_TRUE(scene->createMaterial("holz", 0.2f, 0.05f, 0.0f));
        EXPECT_TRUE(plane(0));
        EXPECT_TRUE(ball(1, {0, 0, 0.5f}));
        EXPECT_TRUE(scene->createDistanceJoint(scene->nextId(), 1, {}, PhysxScene::world, {}));
        scene->steps(5);
    }
}

TEST_F(PhysxSceneStepping, ReportsATouchOnceAndNoRestingContact)
{
    plane(0);
    ball(1, {0, 0, 0.4f});
    PxU32 pointCount = 0;
    scene->contactHandler = [&](const PxContactPairHeader&, const PxContactPair* pairs, PxU32) {
        pointCount = pairs[0].contactCount;
    };
    scene->steps(60);
    EXPECT_EQ(scene->contacts, 1);
    EXPECT_GE(pointCount, 1u);
}

TEST_F(PhysxSceneStepping, CollidesASolidPairOfOtherWordsWithoutAReport)
{
    scene->createPlane(0, "holz", {0, 0, 0}, {0, 0, 1}, 1, 8);
    ball(1, {0, 0, 0.5f});
    scene->steps(60);
    EXPECT_NEAR(scene->position(1).z(), world::ballRadius, 0.02f);
    EXPECT_EQ(scene->contacts, 0);
}

TEST_F(PhysxSceneStepping, ReportsATriggerOnlyForMatchingWords)
{
    for (unsigned int mask : {kind::boardMask, 8u}) {
        SCOPED_TRACE(mask);
        scene->clear();
        scene->createMaterial("holz", 0.2f, 0.05f, 0.0f);
        scene->createActor(0, 2);
        scene->addBoxShape(0, {2, 2, 2}, "holz", {}, kind::board, mask, true);
        scene->finishActor(0, 1.0);
        ball(1, {0, 0, 2});
        scene->entered = scene->left = 0;
        scene->steps(60);
        EXPECT_LT(scene->position(1).z(), -2.0f) << "a trigger stops nobody";
        EXPECT_EQ(scene->entered, mask == kind::boardMask ? 1 : 0);
        EXPECT_EQ(scene->left, mask == kind::boardMask ? 1 : 0);
    }
}

TEST_F(PhysxSceneStepping, FiltersByBothWordsOfBothShapes)
{
    const PxPairFlags solid = PxPairFlag::eSOLVE_CONTACT | PxPairFlag::eDETECT_DISCRETE_CONTACT |
                              PxPairFlag::eDETECT_CCD_CONTACT;
    const PxPairFlags told =
        solid | PxPairFlag::eNOTIFY_TOUCH_FOUND | PxPairFlag::eNOTIFY_CONTACT_POINTS;
    const PxPairFlags trigger = PxPairFlag::eTRIGGER_DEFAULT;
    const PxPairFlags incoming = PxPairFlag::eNOTIFY_TOUCH_CCD;
    const PxFilterObjectAttributes attributes[] = {0, PxFilterObjectFlag::eTRIGGER};
    for (PxU32 group0 : {0u, 2u})
        for (PxU32 mask0 : {0u, 4u})
            for (PxU32 group1 : {0u, 4u})
                for (PxU32 mask1 : {0u, 3u})
                    for (int triggers = 0; triggers < 4; ++triggers) {
                        const bool match = (group0 & mask1) && (group1 & mask0);
                        PxPairFlags flags = incoming;
                        const PxFilterFlags result = filterShader(
                            attributes[triggers & 1], PxFilterData(group0, mask0, 0, 0),
                            attributes[triggers >> 1], PxFilterData(group1, mask1, 0, 0), flags,
                            nullptr, 0);
                        EXPECT_EQ(result, PxFilterFlags());
                        if (triggers)
                            EXPECT_EQ(flags, match ? trigger : incoming);
                        else
                            EXPECT_EQ(flags, match ? told : solid);
                    }
}

TEST_F(PhysxSceneStepping, LetsOnlyBodiesOfOneFamilyPassThroughEachOther)
{
    for (const auto& [family, passes] : {std::pair(0u, false), {1u, false}, {2u, true}}) {
        SCOPED_TRACE(family);
        scene->clear();
        scene->createMaterial("holz", 0.2f, 0.05f, 0.0f);
        box(0, 2, {2, 2, 1});
        scene->setFamily(0, family == 0 ? 0 : 2);
        box(1);
        scene->setPose(1, osg::Matrixd::translate(0, 0, 2));
        EXPECT_TRUE(scene->setFamily(1, family));
        scene->steps(60);
        EXPECT_EQ(scene->position(1).z() < 0.0f, passes);
    }
}

TEST_F(PhysxSceneStepping, TellsOfTheTouchOfAFamilyWithAnother)
{
    box(0, 2, {2, 2, 1});
    scene->setFamily(0, 1);
    ball(1, {0, 0, 1});
    scene->steps(30);
    EXPECT_EQ(scene->contacts, 1);
    EXPECT_GT(scene->position(1).z(), 0.7f);
}

TEST_F(PhysxSceneStepping, RecognisesActorsInEitherOrder)
{
    plane(0);
    ball(1, {0, 0, 1});
    ball(2, {2, 0, 1});
    PxContactPairHeader header;
    header.actors[0] = scene->actors.at(0);
    header.actors[1] = scene->actors.at(1);
    EXPECT_TRUE(scene->isContactBetween(0, 1, header));
    EXPECT_TRUE(scene->isContactBetween(1, 0, header));
    EXPECT_FALSE(scene->isContactBetween(1, 2, header));
    EXPECT_FALSE(scene->isContactBetween(1, 1, header));
    EXPECT_TRUE(scene->isContactOf(0, header));
    EXPECT_TRUE(scene->isContactOf(1, header));
    EXPECT_FALSE(scene->isContactOf(2, header));
    EXPECT_TRUE(scene->isActor(1, scene->actors.at(1)));
    EXPECT_FALSE(scene->isActor(2, scene->actors.at(1)));
}

TEST_F(PhysxSceneStepping, AnswersForUnknownIdsWithoutAWord)
{
    PxContactPairHeader header;
    header.actors[0] = header.actors[1] = nullptr;
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(scene->isContactBetween(7, 8, header));
                  EXPECT_FALSE(scene->isContactOf(7, header));
                  EXPECT_FALSE(scene->isActor(7, nullptr));
              }),
              "");
    EXPECT_TRUE(scene->actors.empty());
}

TEST_F(PhysxSceneStepping, RecognisesShapesInEitherOrder)
{
    box(0, 2);
    ball(1, {0, 0, 2});
    PxShape* board = nullptr;
    PxShape* sphere = nullptr;
    scene->actors.at(0)->getShapes(&board, 1);
    scene->actors.at(1)->getShapes(&sphere, 1);
    PxContactPair pair;
    pair.shapes[0] = board;
    pair.shapes[1] = sphere;
    EXPECT_TRUE(scene->isShapeContactBetween(2, 4, pair));
    EXPECT_TRUE(scene->isShapeContactBetween(4, 2, pair));
    EXPECT_FALSE(scene->isShapeContactBetween(1, 4, pair));
    EXPECT_FALSE(scene->isShapeContactBetween(2, 2, pair));
    EXPECT_TRUE(scene->isShapeContactOf(2, pair));
    EXPECT_TRUE(scene->isShapeContactOf(4, pair));
    EXPECT_FALSE(scene->isShapeContactOf(1, pair));
}
