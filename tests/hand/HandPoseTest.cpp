#include "hand/HandPose.h"

#include "platform/leap/FrameData.h"

#include <Leap.h>
#include <gtest/gtest.h>
#include <osg/MatrixTransform>

#include <cmath>
#include <random>

namespace {

constexpr double pi = 3.141592653589793;
constexpr float cameraAtStart = 3.1415927f;  // behind the player's edge of the board
const osg::Vec3f down(0, 0, -1);
const osg::Vec3f forward(0, 1, 0);

Leap::Hand handWith(const Leap::Vector& palmNormal, const Leap::Vector& direction)
{
    auto data = std::make_shared<Leap::FrameData>();
    data->hands.resize(1);
    data->hands[0].palmNormal = palmNormal;
    data->hands[0].direction = direction;
    return Leap::Frame(data).hands()[0];
}

// Fingertips up by the angle in radians.
Leap::Hand pitchedHand(double angle)
{
    const auto c = float(std::cos(angle));
    const auto s = float(std::sin(angle));
    return handWith(Leap::Vector(0, -c, -s), Leap::Vector(0, s, -c));
}

Leap::Hand rolledHand(double angle)
{
    return handWith(Leap::Vector(float(std::sin(angle)), float(-std::cos(angle)), 0),
                    Leap::Vector(0, 0, -1));
}

osg::Vec3f errorOf(const Leap::Hand& hand, float minAngle, const osg::Quat& board = osg::Quat())
{
    const HandPose pose = handPose(hand, cameraAtStart);
    return alignmentRotation(board, down, pose.down, forward, pose.forward, minAngle);
}

void expectNear(const osg::Vec3f& a, const osg::Vec3f& b, double tolerance)
{
    EXPECT_NEAR(a.x(), b.x(), tolerance);
    EXPECT_NEAR(a.y(), b.y(), tolerance);
    EXPECT_NEAR(a.z(), b.z(), tolerance);
}

class RandomPoses
{
public:
    osg::Vec3f unitVector()
    {
        osg::Vec3f vector(normal(random), normal(random), normal(random));
        vector.normalize();
        return vector;
    }
    osg::Quat orientation()
    {
        osg::Quat quat(normal(random), normal(random), normal(random), normal(random));
        return quat / quat.length();
    }

private:
    std::mt19937 random{11};
    std::normal_distribution<float> normal;
};

}  // namespace

TEST(HandPose, TurnsSensorCoordinatesIntoTheWorlds)
{
    EXPECT_EQ(toOsgVector(Leap::Vector(1, 2, 3)), osg::Vec3f(1, -3, 2));
}

TEST(HandPose, OfAFlatHandIsTheLevelBoardsAtTheFirstCamera)
{
    const HandPose pose = handPose(pitchedHand(0.0), cameraAtStart);
    expectNear(pose.down, down, 1e-6);
    expectNear(pose.forward, forward, 1e-6);
    EXPECT_NEAR(errorOf(pitchedHand(0.0), 0.0f).length(), 0.0, 1e-6);
}

TEST(HandPose, TurnsThePalmsNormalWithTheCameraButNotTheFingers)
{
    const Leap::Hand hand = rolledHand(0.4);
    const HandPose straight = handPose(hand, cameraAtStart);
    const HandPose quarter = handPose(hand, cameraAtStart + float(pi / 2));
    expectNear(straight.down, osg::Vec3f(std::sin(0.4f), 0, -std::cos(0.4f)), 1e-6);
    // The matrix on the left turns by minus the angle.
    expectNear(quarter.down, osg::Vec3f(0, -std::sin(0.4f), -std::cos(0.4f)), 1e-6);
    EXPECT_EQ(quarter.forward, straight.forward);
}

TEST(AlignmentRotation, IsNothingAtNineHundredthsAndAllOfItAtEleven)
{
    EXPECT_EQ(errorOf(pitchedHand(0.09), 0.1f), osg::Vec3f());
    EXPECT_NEAR((errorOf(pitchedHand(0.11), 0.1f) * 2.0f).length(), 0.22, 1e-4);
    EXPECT_EQ(errorOf(rolledHand(-0.09), 0.1f), osg::Vec3f());
    EXPECT_NEAR((errorOf(rolledHand(-0.11), 0.1f) * 2.0f).length(), 0.22, 1e-4);
}

TEST(AlignmentRotation, TellsTheRestPoseFromItsNeighbours)
{
    for (const Leap::Hand& hand : {pitchedHand(0.24), pitchedHand(-0.24), rolledHand(0.24)})
        EXPECT_LT(errorOf(hand, 0.0f).length(), 0.25f);
    for (const Leap::Hand& hand : {pitchedHand(0.26), pitchedHand(-0.26), rolledHand(0.26)})
        EXPECT_GT(errorOf(hand, 0.0f).length(), 0.25f);
}

TEST(AlignmentRotation, LiftsTheFarEdgeForRaisedFingertips)
{
    const osg::Vec3f rotation = errorOf(pitchedHand(0.3), 0.1f);
    expectNear(rotation, osg::Vec3f(0.3f, 0, 0), 1e-5);
    // About +x the edge at +y goes up.
    EXPECT_GT((rotation ^ forward).z(), 0.0f);
}

TEST(AlignmentRotation, LiftsTheRightEdgeForARaisedRightEdgeOfTheHand)
{
    const osg::Vec3f rotation = errorOf(rolledHand(0.3), 0.1f);
    EXPECT_GT((rotation ^ osg::Vec3f(1, 0, 0)).z(), 0.0f);
}

TEST(AlignmentRotation, IsMeasuredFromTheBoardAsItStands)
{
    const osg::Quat tilted(0.3, osg::Vec3d(1, 0, 0));
    EXPECT_NEAR(errorOf(pitchedHand(0.3), 0.0f, tilted).length(), 0.0, 1e-5);
    EXPECT_NEAR(errorOf(pitchedHand(0.0), 0.0f, tilted).length(), 0.3, 1e-5);
}

TEST(AlignmentRotation, BringsAnyPoseToAnyOtherThatIsTiltedOnly)
{
    RandomPoses poses;
    for (int i = 0; i < 2000; ++i) {
        SCOPED_TRACE(i);
        const osg::Quat board = poses.orientation();
        const osg::Vec3f toDown = poses.unitVector();
        osg::Quat tilt;
        tilt.makeRotate(board * down, toDown);
        const osg::Vec3f toForward = tilt * (board * forward);
        const osg::Vec3f vector = alignmentRotation(board, down, toDown, forward, toForward, 0.0f);
        ASSERT_LE(vector.length(), pi + 1e-4);
        const osg::Quat rotation(vector.length(), osg::Vec3d(vector));
        expectNear(rotation * (board * down), toDown, 2e-3);
        expectNear(rotation * (board * forward), toForward, 2e-3);
    }
}

TEST(AlignmentRotation, BringsAnyPoseToAnyOtherThatIsTwistedOnly)
{
    RandomPoses poses;
    for (int i = 0; i < 2000; ++i) {
        SCOPED_TRACE(i);
        const osg::Quat board = poses.orientation();
        const osg::Vec3f toDown = board * down;
        osg::Vec3f toForward = poses.unitVector() ^ toDown;
        toForward.normalize();
        if ((board * forward) * toForward < -0.99f)
            continue;  // of half a turn nobody can tell about which axis it is
        const osg::Vec3f vector = alignmentRotation(board, down, toDown, forward, toForward, 0.0f);
        ASSERT_LE(vector.length(), pi + 1e-4);
        const osg::Quat rotation(vector.length(), osg::Vec3d(vector));
        expectNear(rotation * (board * down), toDown, 2e-3);
        expectNear(rotation * (board * forward), toForward, 2e-3);
    }
}

TEST(AlignmentRotation, LeadsToTheTargetWhenFollowedFrameByFrame)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> angle(-1.0, 1.0);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const osg::Quat target = osg::Quat(angle(random), osg::Vec3d(1, 0, 0)) *
                                 osg::Quat(angle(random), osg::Vec3d(0, 1, 0)) *
                                 osg::Quat(angle(random), osg::Vec3d(0, 0, 1));
        // The board starts within its limit of tilt, and a wrist goes no farther than a radian.
        osg::Quat board(0.5 * angle(random), osg::Vec3d(1, 0, 0), 0.5 * angle(random),
                        osg::Vec3d(0, 1, 0), 0.5 * angle(random), osg::Vec3d(0, 0, 1));
        // The game's gain of 2 at a hundred frames a second, for ten seconds.
        for (int frame = 0; frame < 1000; ++frame) {
            const osg::Vec3f vector =
                alignmentRotation(board, down, target * down, forward, target * forward, 0.1f);
            const osg::Vec3f step = vector * (2.0f * 0.01f);
            board = board * osg::Quat(step.length(), osg::Vec3d(step));
        }
        EXPECT_NEAR((board * down - target * down).length(), 0.0, 0.11);
        EXPECT_NEAR((board * forward - target * forward).length(), 0.0, 0.11);
    }
}

TEST(AlignmentRotation, IsZeroOrLongerThanItsThreshold)
{
    RandomPoses poses;
    for (int i = 0; i < 2000; ++i) {
        const osg::Vec3f vector = alignmentRotation(poses.orientation(), down, poses.unitVector(),
                                                    forward, poses.unitVector(), 1.5f);
        ASSERT_TRUE(vector == osg::Vec3f() || vector.length() > 1.5f - 1e-5f);
        ASSERT_FALSE(vector.isNaN());
    }
}

TEST(AlignmentRotation, IsFiniteWhenTheFingersPointAlongThePalmsTarget)
{
    const osg::Vec3f vector = alignmentRotation(osg::Quat(), down, forward, forward, forward, 0.0f);
    ASSERT_FALSE(vector.isNaN());
    EXPECT_NEAR(vector.length(), pi / 2, 1e-5);
}

TEST(AlignmentRotation, TurnsAHandHeldUpsideDownByHalfATurn)
{
    const osg::Vec3f vector =
        alignmentRotation(osg::Quat(), down, osg::Vec3f(0, 0, 1), forward, forward, 0.1f);
    ASSERT_FALSE(vector.isNaN());
    EXPECT_NEAR(vector.length(), pi, 1e-4);
}

TEST(AlignmentRotation, ReadsATransformsOrientationWhateverItsPlace)
{
    const osg::ref_ptr<osg::MatrixTransform> transform(new osg::MatrixTransform);
    transform->setMatrix(osg::Matrixd::rotate(0.5, osg::Vec3d(1, 0, 0)) *
                         osg::Matrixd::translate(3, 4, 5));
    const osg::Vec3f vector =
        alignmentRotation(transform.get(), down, down, forward, forward, 0.0f);
    expectNear(vector, osg::Vec3f(-0.5f, 0, 0), 1e-5);
}
