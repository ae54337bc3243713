#include "level/Ball.h"

#include "base/WorldNumbers.h"
#include "blocks/Ribbon.h"
#include "game/Rollix.h"
#include "level/Board.h"
#include "level/Ground.h"
#include "level/Level.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/SceneSearch.h"

#include <osg/ShapeDrawable>

using namespace physx;

namespace {

constexpr double oneStepOfFall = world::gravity * world::secondsPerTick * world::secondsPerTick;

class BallTest : public GameTest
{
protected:
    BallTest() { loads({"S..", "..."}); }

    PxRigidDynamic& body() { return GameInside::bodyOf(game, ball().getId()); }
};

TEST_F(BallTest, IsASmallRedSphereOfWood)
{
    const auto* drawable = dynamic_cast<const osg::ShapeDrawable*>(
        ball().getTransform()->getChild(0)->asGeode()->getDrawable(0));
    ASSERT_NE(drawable, nullptr);
    EXPECT_EQ(drawable->getColor(), osg::Vec4(0.9f, 0.1f, 0.1f, 1.0f));
    EXPECT_EQ(dynamic_cast<const osg::Sphere&>(*drawable->getShape()).getRadius(), 0.3f);

    PxShape* shape = nullptr;
    ASSERT_EQ(body().getShapes(&shape, 1), 1u);
    EXPECT_EQ(static_cast<const PxSphereGeometry&>(shape->getGeometry()).radius, 0.3f);
    EXPECT_EQ(shape->getSimulationFilterData().word0, 4u);
    EXPECT_EQ(shape->getSimulationFilterData().word1, 3u);
    EXPECT_NEAR(body().getMass(), 4.0 / 3.0 * osg::PI * 0.027, 1e-4);
    EXPECT_EQ(body().getLinearDamping(), 0.0f);
    EXPECT_FALSE(body().getActorFlags() & PxActorFlag::eDISABLE_GRAVITY);
    EXPECT_FALSE(valueOf<bool>(ball().getTransform()->getStateSet()->getUniform("a_PortalActive")));
    EXPECT_EQ(ball().getTransform()->getParent(0),
              level().board->getTransform()->getParent(0)->getParent(0))
        << "it hangs beside the board";
    ticks();
    EXPECT_TRUE(body().getRigidBodyFlags() & PxRigidBodyFlag::eENABLE_CCD);
}

TEST_F(BallTest, BeginsHalfAUnitOverItsCheckpoint)
{
    ticks();
    // The pose is put at the start of the step that has passed.
    EXPECT_NEAR(ballPosition().x(), -1.0, 1e-6);
    EXPECT_NEAR(ballPosition().y(), 0.5, 1e-6);
    EXPECT_NEAR(ballPosition().z(), 1.0 - oneStepOfFall, 1e-4);
    loads(LevelPicture(1, 1, {135, 100, 66}));  // a ramp from 0 to 1.5
    ticks();
    EXPECT_NEAR(ballPosition().z(), 2.0 - oneStepOfFall, 1e-4) << "over a ramp's high edge";
}

TEST_F(BallTest, ComesBackAtRest)
{
    ticks(30);
    putsBall(osg::Vec3d(1.0, -0.5, 4.0), osg::Vec3f(3.0f, 2.0f, 1.0f));
    ticks(2);
    game.addForce(ball().getId(), osg::Vec3f(0.0f, 0.0f, 500.0f), 0, true);
    ball().reset();
    ticks();
    EXPECT_NEAR(ballPosition().x(), -1.0, 1e-6);
    EXPECT_NEAR(ballPosition().z(), 1.0 - oneStepOfFall, 1e-4) << "the push is taken back";
    EXPECT_NEAR(ballVelocity().x(), 0.0f, 1e-6f);
    EXPECT_NEAR(ballVelocity().y(), 0.0f, 1e-6f);
    EXPECT_LT(body().getAngularVelocity().magnitude(), 1e-6f);
}

TEST_F(BallTest, StaysWhereItIsWithoutACheckpoint)
{
    loads({"...", "..."});
    putsBall(osg::Vec3d(0.0, 0.0, 50.0), osg::Vec3f(1.0f, 0.0f, 0.0f));
    ticks();
    const osg::Vec3d before = ballPosition();
    ball().reset();
    ticks();
    EXPECT_NEAR(ballPosition().x(), before.x() + world::secondsPerTick, 1e-3);
}

TEST_F(BallTest, StaysOverTheOriginOfALevelOfNothing)
{
    loads(LevelPicture(3, 3));
    EXPECT_TRUE(board().getBlocks().empty());
    ticks();
    EXPECT_NEAR(ballPosition().x(), 0.0, 1e-6);
    EXPECT_NEAR(ballPosition().y(), 0.0, 1e-6);
    EXPECT_GT(ballPosition().z(), -0.1);
}

TEST_F(BallTest, CostsALifeWhenItFallsPastTheDrawnSquareToo)
{
    for (const osg::Vec3d& place : {osg::Vec3d(6.0, 0.0, -5.0), osg::Vec3d(200.0, -90.0, -5.0)}) {
        const int lives = level().livesLeft();
        putsBall(place);
        ticks();
        ASSERT_TRUE(ticksUntil([&] { return level().livesLeft() < lives; }, 120));
        EXPECT_EQ(level().livesLeft(), lives - 1);
        ticks();
        EXPECT_NEAR(ballPosition().x(), -1.0, 1e-3) << "back on the start";
        ticks(10);
        EXPECT_EQ(level().livesLeft(), lives - 1) << "once";
    }
}

TEST_F(BallTest, HasNoGuardAgainstTheGround)
{
    ball().hitGround(level().ground);
    ball().hitGround(level().ground);
    EXPECT_EQ(level().livesLeft(), 3);
}

TEST_F(BallTest, IsSeen)
{
    loads(LevelPicture(9, 9, cells::floor).set(4, 4, cells::start));
    ticks(30);
    const QImage picture = frame();
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            red += qRed(pixel) > 100 && qGreen(pixel) < 60 && qBlue(pixel) < 60;
        }
    }
    // A disc of 0.6 units from some 39 away, at 30 degrees over 600 pixels.
    EXPECT_GT(red, 60);
    EXPECT_LT(red, 600);
}

TEST_F(BallTest, TakesItsTrailAlong)
{
    osg::ref_ptr<osg::MatrixTransform> transform = ball().getTransform();
    EXPECT_NE(dynamic_cast<Ribbon*>(transform->getUpdateCallback()), nullptr);
    game.loadLevel(0);
    EXPECT_EQ(transform->getUpdateCallback(), nullptr);
}

class GroundTest : public GameTest
{
};

TEST_F(GroundTest, IsAnEndlessPlaneUnderADarkSquare)
{
    loads({"S"});
    const PxRigidActor* actor = GameInside::actorsOf(game).at(level().ground->getId());
    PxShape* shape = nullptr;
    ASSERT_EQ(actor->getShapes(&shape, 1), 1u);
    EXPECT_EQ(shape->getGeometry().getType(), PxGeometryType::ePLANE);
    EXPECT_EQ(shape->getSimulationFilterData().word0, 1u);
    EXPECT_EQ(shape->getSimulationFilterData().word1, 4u);
    const PxTransform pose = actor->getGlobalPose() * shape->getLocalPose();
    EXPECT_NEAR(pose.p.z, -10.0f, 1e-4f);
    EXPECT_NEAR(pose.q.rotate(PxVec3(1, 0, 0)).z, 1.0f, 1e-5f) << "up is free";
}

TEST_F(GroundTest, IsDrawnThirtyUnitsWide)
{
    loads({"S"});
    // The level's own group is the board group's parent; the ground is its first child.
    osg::Group* levelRoot = board().getTransform()->getParent(0)->getParent(0);
    const auto* drawable =
        dynamic_cast<const osg::ShapeDrawable*>(levelRoot->getChild(0)->asGeode()->getDrawable(0));
    ASSERT_NE(drawable, nullptr);
    EXPECT_EQ(drawable->getColor(), osg::Vec4(0.2f, 0.2f, 0.2f, 1.0f));
    const auto& box = dynamic_cast<const osg::Box&>(*drawable->getShape());
    EXPECT_EQ(box.getCenter(), osg::Vec3(0.0f, 0.0f, -10.0f));
    EXPECT_EQ(box.getHalfLengths() * 2.0f, osg::Vec3(30.0f, 30.0f, 0.1f));
}

}  // namespace
