#include "hand/HandCamera.h"

#include "platform/leap/FrameData.h"

#include <Leap.h>
#include <gtest/gtest.h>
#include <osg/ref_ptr>

#include <cmath>
#include <memory>

namespace {

constexpr float pi = 3.1415927f;

Leap::HandData handAt(float height, float yaw = 0.0f)
{
    Leap::HandData hand;
    hand.palmPosition = Leap::Vector(0, height, 0);
    hand.palmNormal = Leap::Vector(0, -1, 0);
    hand.direction = Leap::Vector(std::sin(yaw), 0, -std::cos(yaw));
    return hand;
}

Leap::Frame frameOf(std::initializer_list<Leap::HandData> hands)
{
    auto data = std::make_shared<Leap::FrameData>();
    data->hands = hands;
    return Leap::Frame(data);
}

class HandCameraTest : public ::testing::Test
{
protected:
    HandCameraTest()
    {
        camera->setHeight(30.0f);
        camera->setDistance(25.0f);
        camera->setAngle(pi);
        camera->setCenter(osg::Vec3f(0, -2, 0));
        camera->setVerticalAxisFixed(true);
    }

    osg::Vec3d eye() const { return camera->getMatrix().getTrans(); }
    osg::Vec3d lookDirection() const
    {
        return osg::Matrixd::transform3x3(osg::Vec3d(0, 0, -1), camera->getMatrix());
    }
    // Of the eye, which the four numbers alone determine.
    void expectEye(double x, double y, double z) const
    {
        EXPECT_NEAR(eye().x(), x, 1e-4);
        EXPECT_NEAR(eye().y(), y, 1e-4);
        EXPECT_NEAR(eye().z(), z, 1e-4);
    }

    osg::ref_ptr<HandCamera> camera = new HandCamera;
};

}  // namespace

TEST_F(HandCameraTest, StandsBehindThePlayersEdgeAtTheStart)
{
    expectEye(0, -25, 30);
    osg::Vec3d toCentre = osg::Vec3d(0, -2, 0) - eye();
    toCentre.normalize();
    EXPECT_NEAR((lookDirection() - toCentre).length(), 0.0, 1e-5);
}

TEST_F(HandCameraTest, CirclesTheWorldsAxisAndNotThePointLookedAt)
{
    for (float angle = -7.0f; angle < 7.0f; angle += 0.37f) {
        camera->setAngle(angle);
        EXPECT_NEAR(std::hypot(eye().x(), eye().y()), 25.0, 1e-4);
        EXPECT_NEAR(eye().x(), 25.0 * std::sin(angle), 1e-4);
        EXPECT_NEAR(eye().y(), 25.0 * std::cos(angle), 1e-4);
    }
}

TEST_F(HandCameraTest, RestsUnderTwoNeutralHands)
{
    EXPECT_TRUE(camera->handleFrame(frameOf({handAt(180), handAt(220)})));
    EXPECT_EQ(camera->angle(), pi);
    expectEye(0, -25, 30);
}

TEST_F(HandCameraTest, LeavesItAllToFewerThanTwoHands)
{
    EXPECT_FALSE(camera->handleFrame(frameOf({})));
    EXPECT_FALSE(camera->handleFrame(Leap::Frame()));
    EXPECT_FALSE(camera->handleFrame(frameOf({handAt(900, 1.5f)})));
    EXPECT_EQ(camera->angle(), pi);
    expectEye(0, -25, 30);
}

TEST_F(HandCameraTest, DropsSmallStepsInsteadOfAddingThemUp)
{
    for (int i = 0; i < 100; ++i)
        EXPECT_TRUE(camera->handleFrame(frameOf({handAt(215, 0.25f), handAt(215, 0.25f)})));
    EXPECT_EQ(camera->angle(), pi);
    expectEye(0, -25, 30);
}

TEST_F(HandCameraTest, RisesAndSinksByARateInEveryFrame)
{
    for (int i = 1; i <= 10; ++i) {
        EXPECT_TRUE(camera->handleFrame(frameOf({handAt(235), handAt(235)})));
        expectEye(0, -25, 30.0 + i * 70.0 / 300.0);
    }
    for (int i = 0; i < 200; ++i)
        camera->handleFrame(frameOf({handAt(100), handAt(100)}));
    EXPECT_LT(eye().z(), -50.0) << "nothing stops it at the board";
}

TEST_F(HandCameraTest, TurnsByARateInEveryFrameAndNeverWraps)
{
    for (int i = 1; i <= 300; ++i) {
        camera->handleFrame(frameOf({handAt(200, 0.6f), handAt(200, 0.6f)}));
        ASSERT_NEAR(camera->angle(), pi + i * 1.2 / 60.0, 1e-3);
    }
    EXPECT_GT(camera->angle(), 9.0f);
}

TEST_F(HandCameraTest, StandsStillForHandsTurnedAgainstEachOther)
{
    camera->handleFrame(frameOf({handAt(200, 0.8f), handAt(200, -0.8f)}));
    EXPECT_EQ(camera->angle(), pi);
}

TEST_F(HandCameraTest, LooksAtTheFirstTwoHandsOnly)
{
    camera->handleFrame(frameOf({handAt(200), handAt(200), handAt(900, 1.0f)}));
    EXPECT_EQ(camera->angle(), pi);
    expectEye(0, -25, 30);
}

TEST_F(HandCameraTest, ComesBackFromWhereverTheMouseHasMovedIt)
{
    camera->setByMatrix(osg::Matrixd::translate(100, 100, 100));
    EXPECT_GT((eye() - osg::Vec3d(0, -25, 30)).length(), 50.0);
    camera->updateView();
    expectEye(0, -25, 30);
}

TEST_F(HandCameraTest, KeepsTheWheelAndTheModelSizeOfTheBase)
{
    class Opened : public HandCamera
    {
    public:
        int flags() const { return _flags; }
    };
    EXPECT_EQ(osg::ref_ptr<Opened>(new Opened)->flags(),
              Opened::UPDATE_MODEL_SIZE | Opened::PROCESS_MOUSE_WHEEL);
    EXPECT_FALSE(camera->getAutoComputeHomePosition());
}
