#include "blocks/BlockPortal.h"

#include "SparksOfBlock.h"
#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/BlockTest.h"

#include <osgParticle/ParticleSystem>

#include <map>

namespace {

constexpr int portalHue = 315;
constexpr int trapHue = 0;
constexpr int flatOne = 86;
constexpr int linked = 200;  // alpha of a link group

/// The first saturation of each face's band, in the order of the faces.
constexpr int bandOf[] = {90, 80, 70, 60, 50};
constexpr int faceCount = 5;
constexpr int topFace = 4;

constexpr int weak = 0;  // saturation over the band: no pull
constexpr int strong = 6;

constexpr double floorTop = 0.5;

Cell portalCell(int face, int pull = weak, int value = flatOne)
{
    return {portalHue, bandOf[face] + pull, value, linked};
}

osg::Vec3d outward(int face)
{
    return -osg::Vec3d(directionInto(PortalFace(face)));
}

class BlockPortalTest : public BlockTest
{
protected:
    /// Portals side by side on a floor, five cells apart, the first with room to all sides.
    void loadsPortals(const std::vector<Cell>& portals)
    {
        LevelPicture picture(4 + 5 * int(portals.size()), 9, cells::floor);
        picture.set(0, 0, cells::start);
        for (std::size_t i = 0; i < portals.size(); ++i)
            picture.set(4 + 5 * int(i), 4, portals[i]);
        loads(picture);
        ticks(2);
    }

    BlockPortal& portal(int index) const { return blockAs<BlockPortal>(4 + 5 * index, 4); }
    BlockPortal& sender() const { return portal(0); }
    BlockPortal& receiver() const { return portal(1); }

    bool isActiveOnBall() const
    {
        bool active = false;
        ball().getTransform()->getStateSet()->getUniform("a_PortalActive")->get(active);
        return active;
    }

    osg::Matrixf ballUniform(const char* name) const
    {
        osg::Matrixf matrix;
        ball().getTransform()->getStateSet()->getUniform(name)->get(matrix);
        return matrix;
    }

    bool ballFalls()
    {
        putsBall(osg::Vec3d(0.0, 0.0, 8.0));
        ticks();
        return ballVelocity().z() < -0.1f;
    }

    /// Whether a ball that comes along the floor, from where there is no mouth, is stopped.
    bool isSolid(const BlockPortal& block, int face)
    {
        const osg::Vec3d away = face == topFace ? osg::Vec3d(1.0, 0.0, 0.0) : -outward(face);
        osg::Vec3d from = positionOf(block) + away;
        from.z() = floorTop + world::ballRadius;
        putsBall(from, osg::Vec3f(away * -2.0));
        ticks(6);
        return (ballPosition() - positionOf(block)) * away > 0.78;
    }

    /// Sends the ball towards a mouth, in the board's frame, from outside both hulls.
    void rollsInto(const BlockPortal& block, int face, float speed)
    {
        const osg::Vec3d into(directionInto(PortalFace(face)));
        osg::Vec3d from(block.x, block.y, floorTop + world::ballRadius);
        from -= into * 2.6;
        if (face == topFace)
            from.z() = block.height + 2.3;
        putsBall(from * boardPose(),
                 osg::Vec3f(osg::Matrixd::transform3x3(into, boardPose()) * double(speed)));
    }

    /// In the middle of a crossing, the ball at rest at this way from the mouth of the sender,
    /// whose face is 0: the next tick is the first that looks at it there.
    void waitsInMouth(const osg::Vec3d& way)
    {
        sender().onBallEnter(&ball());
        sender().onBallEnter(&ball());
        ASSERT_EQ(sender().getState(), BlockPortal::Sending);
        ticks();  // takes the push in
        const osg::Vec3d mouth(0.3, 0.0, 0.05);
        hovers(mouth * sender().getTransform()->getMatrix() + way);
        if (sender().getState() == BlockPortal::Idle)
            ADD_FAILURE() << "the crossing was over before";
    }

    /// As above, from the way to the state that the sender is in a tick later.
    BlockPortal::PortalState stateInMouth(const osg::Vec3d& way)
    {
        loadsPortals({portalCell(0), portalCell(1)});
        hovers(positionOf(sender()) + osg::Vec3d(0.3, 0.0, 0.4));
        sender().reset();
        waitsInMouth(way);
        ticks();
        return sender().getState();
    }

    /// Rolls in and ticks until the ball has been sent to the other side.
    bool crosses(const BlockPortal& from, const BlockPortal& to, int face, float speed)
    {
        rollsInto(from, face, speed);
        return ticksUntil([&] { return to.getState() == BlockPortal::Releasing; }, 150);
    }

    /// Lets the first portal begin crossings until this one is drawn for one; false if it never is.
    bool drawsReceiver(int wanted)
    {
        for (int i = 0; i < 200; ++i) {
            sender().onBallEnter(&ball());
            sender().onBallEnter(&ball());
            if (portal(wanted).getState() == BlockPortal::Receiving)
                return true;
            board().reset(true);
        }
        return false;
    }

    /// Far from all portals, and at rest there.
    void parksBall() { hovers(osg::Vec3d(0.0, 0.0, 20.0)); }

    /// Until the ball has touched the body inside the block.
    bool beginsCrossing(const BlockPortal& from, int face, float speed)
    {
        rollsInto(from, face, speed);
        return ticksUntil([&] { return from.getState() == BlockPortal::Sending; }, 150);
    }
};

void expectPoints(const osg::Vec3Array& points, const std::vector<osg::Vec3f>& expected)
{
    ASSERT_EQ(points.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_LT((points[i] - expected[i]).length(), 1e-5f) << "point " << i;
}

}  // namespace

TEST(PortalShape, DirectionsPointFromTheMouthIntoTheBlock)
{
    const osg::Vec3f expected[] = {osg::Vec3f(-1, 0, 0), osg::Vec3f(1, 0, 0), osg::Vec3f(0, -1, 0),
                                   osg::Vec3f(0, 1, 0), osg::Vec3f(0, 0, -1)};
    for (int face = 0; face < faceCount; ++face)
        EXPECT_EQ(directionInto(PortalFace(face)), expected[face]);
}

TEST(PortalShape, CornersFollowTheSlope)
{
    // By slope: at (-x, -y), (+x, -y), (-x, +y), (+x, +y).
    const float expected[5][4] = {
        {2, 2, 1, 1}, {1, 2, 1, 2}, {1, 1, 2, 2}, {2, 1, 2, 1}, {1, 1, 1, 1}};
    for (int slope = 0; slope <= 4; ++slope) {
        SCOPED_TRACE(slope);
        const CornerHeights corners = CornerHeights::of(1.0f, 2.0f, slope);
        EXPECT_EQ(corners.leftFront, expected[slope][0]);
        EXPECT_EQ(corners.rightFront, expected[slope][1]);
        EXPECT_EQ(corners.leftBack, expected[slope][2]);
        EXPECT_EQ(corners.rightBack, expected[slope][3]);
    }
}

TEST(PortalShape, MouthLiesBehindTheMiddleOfItsFace)
{
    // Of a flat block of height 1: a side mouth reaches from 0.2 to 0.9 over the board, and the top
    // one lies at 0.8; all seen from half the height.
    const osg::Vec3f expected[] = {osg::Vec3f(0.3f, 0.0f, 0.05f), osg::Vec3f(-0.3f, 0.0f, 0.05f),
                                   osg::Vec3f(0.0f, 0.3f, 0.05f), osg::Vec3f(0.0f, -0.3f, 0.05f),
                                   osg::Vec3f(0.0f, 0.0f, 0.3f)};
    for (int face = 0; face < faceCount; ++face) {
        SCOPED_TRACE(face);
        const PortalShape shape(PortalFace(face), CornerHeights::of(1.0f, 1.0f, 4), 1.0f);
        EXPECT_LT((shape.mouthCenter - expected[face]).length(), 1e-5f);
    }
}

TEST(PortalShape, RampHasItsHullsAlongTheSlope)
{
    // From 0.5 at the left to 1.5 at the right; half the height is 0.75.
    const CornerHeights corners = CornerHeights::of(0.5f, 1.5f, 1);
    const PortalShape back(PortalFace::Back, corners, 1.5f);
    expectPoints(*back.innerHull,
                 {osg::Vec3f(-0.4f, -0.4f, -0.65f), osg::Vec3f(-0.4f, -0.4f, -0.35f),
                  osg::Vec3f(-0.4f, 0.4f, -0.65f), osg::Vec3f(-0.4f, 0.4f, -0.35f),
                  osg::Vec3f(0.4f, -0.4f, -0.65f), osg::Vec3f(0.4f, -0.4f, 0.65f),
                  osg::Vec3f(0.4f, 0.4f, -0.65f), osg::Vec3f(0.4f, 0.4f, 0.65f)});
    // The bottom goes by the higher corner of the face: 1.5 - 0.8.
    expectPoints(*back.outerHull, {osg::Vec3f(-0.4f, 0.3f, -0.35f), osg::Vec3f(-0.4f, 2.0f, -0.35f),
                                   osg::Vec3f(-0.4f, 0.3f, -0.05f), osg::Vec3f(-0.4f, 2.0f, -0.05f),
                                   osg::Vec3f(0.4f, 0.3f, 0.65f), osg::Vec3f(0.4f, 2.0f, 0.65f),
                                   osg::Vec3f(0.4f, 0.3f, -0.05f), osg::Vec3f(0.4f, 2.0f, -0.05f)});
    EXPECT_LT((back.mouthCenter - osg::Vec3f(0.0f, 0.3f, 0.05f)).length(), 1e-5f);

    const PortalShape top(PortalFace::Top, corners, 1.5f);
    expectPoints(*top.outerHull, {osg::Vec3f(-0.4f, 0.4f, -0.45f), osg::Vec3f(-0.4f, 0.4f, 1.25f),
                                  osg::Vec3f(0.4f, 0.4f, 0.55f), osg::Vec3f(0.4f, 0.4f, 2.25f),
                                  osg::Vec3f(-0.4f, -0.4f, -0.45f), osg::Vec3f(-0.4f, -0.4f, 1.25f),
                                  osg::Vec3f(0.4f, -0.4f, 0.55f), osg::Vec3f(0.4f, -0.4f, 2.25f)});
}

TEST_F(BlockPortalTest, BallCrossesBetweenAllPairsOfFaces)
{
    for (int from = 0; from < faceCount; ++from) {
        for (int to = 0; to < faceCount; ++to) {
            SCOPED_TRACE(testing::Message() << "from face " << from << " to face " << to);
            // Into a mouth on top the ball falls fast enough.
            loadsPortals(
                {portalCell(from, from == topFace ? weak : strong), portalCell(to, strong)});
            osg::Vec3f before;
            rollsInto(sender(), from, 1.5f);
            ASSERT_TRUE(ticksUntil(
                [&] {
                    if (receiver().getState() == BlockPortal::Releasing)
                        return true;
                    before = ballVelocity();
                    return false;
                },
                150));

            // The velocity of the entry, turned from the way in to the way out, one push, and
            // gravity again.
            const osg::Matrixd turn = osg::Matrixd::rotate(-outward(from), outward(to));
            const osg::Vec3d expected =
                osg::Matrixd::transform3x3(osg::Vec3d(before), turn) +
                outward(to) * speedOfForce(2.0) -
                osg::Vec3d(0.0, 0.0, world::gravity * world::secondsPerTick);
            const osg::Vec3d velocity(ballVelocity());
            EXPECT_NEAR(velocity * outward(to), expected * outward(to), 0.35);
            EXPECT_NEAR((velocity - expected).length(), 0.0, 0.6);
            EXPECT_GT(velocity * outward(to), 1.0);
            EXPECT_GT((ballPosition() - positionOf(receiver())) * outward(to), 0.6);
            EXPECT_EQ(sender().getState(), BlockPortal::Idle);

            ASSERT_TRUE(ticksUntil([&] { return receiver().getState() == BlockPortal::Idle; }, 60));
            EXPECT_FALSE(isActiveOnBall());
            EXPECT_TRUE(isSolid(receiver(), to));
            EXPECT_TRUE(isSolid(sender(), from));
            EXPECT_TRUE(ballFalls());
        }
    }
}

TEST_F(BlockPortalTest, VelocityTurnsByTheCrossingExactly)
{
    // In the air, where nothing but the portal acts on the ball.
    for (int from = 0; from < faceCount; ++from) {
        SCOPED_TRACE(from);
        loadsPortals({portalCell(from), portalCell(topFace)});
        const osg::Vec3d into = -outward(from);
        osg::Vec3d start = positionOf(sender()) + osg::Vec3d(0.0, 0.0, 0.31) - into * 1.6;
        if (from == topFace)
            start = positionOf(sender()) - into * 2.0;
        game.setMotion(ball().getId(), 1);
        putsBall(start, osg::Vec3f(into * 3.0));
        ASSERT_TRUE(ticksUntil([&] { return sender().getState() == BlockPortal::Sending; }, 60));
        osg::Vec3d before(ballVelocity());
        ticks();
        EXPECT_NEAR((osg::Vec3d(ballVelocity()) - before - into * speedOfForce(3.0)).length(), 0.0,
                    0.01)
            << "the push in";
        while (sender().getState() == BlockPortal::Sending) {
            before = osg::Vec3d(ballVelocity());
            ticks();
        }
        ASSERT_EQ(receiver().getState(), BlockPortal::Releasing);
        const osg::Matrixd turn = osg::Matrixd::rotate(into, outward(topFace));
        const osg::Vec3d expected =
            osg::Matrixd::transform3x3(before, turn) +
            outward(topFace) * (speedOfForce(2.0) - world::gravity * world::secondsPerTick);
        EXPECT_NEAR((osg::Vec3d(ballVelocity()) - expected).length(), 0.0, 0.01);
    }
}

TEST_F(BlockPortalTest, BallIsPutWhereItsPlaceInTheSenderSays)
{
    loadsPortals({portalCell(0), portalCell(3)});
    game.setMotion(ball().getId(), 1);
    putsBall(positionOf(sender()) + osg::Vec3d(1.6, 0.05, 0.31), osg::Vec3f(-3.0f, 0.0f, 0.0f));
    osg::Vec3d before;
    ASSERT_TRUE(ticksUntil(
        [&] {
            if (receiver().getState() == BlockPortal::Releasing)
                return true;
            before = ballPosition() - positionOf(sender());
            return false;
        },
        60));
    // A quarter turn brings the way in, -x, to the way out, -y; one unit out of the receiver.
    const osg::Vec3d expected =
        positionOf(receiver()) + osg::Vec3d(-before.y(), before.x() - 1.0, before.z());
    const osg::Vec3d moved = osg::Vec3d(ballVelocity()) * world::secondsPerTick;
    EXPECT_NEAR((ballPosition() - expected - moved).length(), 0.0, 0.01);
}

TEST_F(BlockPortalTest, PortalAloneLetsTheBallThroughAndIsSolidAgain)
{
    loads(LevelPicture(11, 5, cells::floor)
              .set(0, 0, cells::start)
              .set(5, 2, portalCell(1, strong))
              .set(2, 0, {trapHue, 63, flatOne, linked}));
    ticks(2);
    auto& alone = blockAs<BlockPortal>(5, 2);
    rollsInto(alone, 1, 3.0f);
    ASSERT_TRUE(ticksUntil([&] { return alone.getState() == BlockPortal::Attracting; }, 60));
    bool sent = false;
    EXPECT_TRUE(ticksUntil(
        [&] {
            sent = sent || alone.getState() == BlockPortal::Sending;
            return alone.getState() == BlockPortal::Idle;
        },
        200));
    EXPECT_FALSE(sent);
    EXPECT_FALSE(isActiveOnBall());
    EXPECT_TRUE(isSolid(alone, 1));
}

TEST_F(BlockPortalTest, PullGrowsWithDistanceAndStrength)
{
    const float strength[] = {0.0f, 0.5f, 1.0f, 1.5f};
    const int step[] = {0, 3, 6, 8};
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        loadsPortals({portalCell(topFace, step[i])});
        const osg::Vec3d place = positionOf(sender()) + osg::Vec3d(0.0, 0.0, 1.4);
        hovers(place);
        ASSERT_EQ(sender().getState(), BlockPortal::Attracting);
        ticks();
        // The point that pulls lies half a unit behind the mouth, which is 0.3 over the middle.
        EXPECT_NEAR(ballVelocity().z(), -speedOfForce(strength[i] * 1.6), 0.005);
        EXPECT_NEAR(ballVelocity().x(), 0.0, 0.005);
    }
}

TEST_F(BlockPortalTest, WithoutPullABallThatRollsInByItselfCrosses)
{
    loadsPortals({portalCell(0, weak), portalCell(1, weak)});
    EXPECT_TRUE(crosses(sender(), receiver(), 0, 2.0f));
}

TEST_F(BlockPortalTest, BallThatTouchesBothBodiesInOneStepCrossesAtOnce)
{
    loadsPortals({portalCell(0), portalCell(1)});
    hovers(positionOf(sender()) + osg::Vec3d(0.6, 0.0, 0.31));
    EXPECT_EQ(sender().getState(), BlockPortal::Sending);
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
}

TEST_F(BlockPortalTest, BallDropsIntoAMouthOnTop)
{
    loadsPortals({portalCell(topFace), portalCell(0)});
    putsBall(positionOf(sender()) + osg::Vec3d(0.0, 0.0, 2.0));
    EXPECT_TRUE(ticksUntil([&] { return receiver().getState() == BlockPortal::Releasing; }, 60));
    EXPECT_GT(ballVelocity().x(), 2.0f);
}

TEST_F(BlockPortalTest, RampsArePortalsToo)
{
    constexpr int rampToRight = 75;  // from 0.5 at -x to 1.0 at +x
    loadsPortals({portalCell(0, strong, rampToRight), portalCell(0, strong, rampToRight)});
    EXPECT_TRUE(crosses(sender(), receiver(), 0, 2.0f));
    EXPECT_GT(ballVelocity().x(), 1.0f);
}

TEST_F(BlockPortalTest, CrossingWorksOnATiltedBoard)
{
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left}) {
        for (const int to : {0, 2, topFace}) {
            SCOPED_TRACE(testing::Message() << "key " << key << ", to face " << to);
            loadsPortals({portalCell(0, strong), portalCell(to, strong)});
            presses(key);
            ASSERT_TRUE(ticksUntil([&] { return tiltDegrees() > 20.0; }, 200));
            releases(key);
            game.setAngularVelocity(board().getId(), osg::Vec3f(), true);
            EXPECT_TRUE(crosses(sender(), receiver(), 0, 2.5f));
            const osg::Vec3d way = osg::Matrixd::transform3x3(outward(to), boardPose());
            EXPECT_GT(osg::Vec3d(ballVelocity()) * way, 1.0);
            EXPECT_GT((ballPosition() - positionOf(receiver())) * way, 0.6);
        }
    }
}

TEST_F(BlockPortalTest, ReceiverOfAnEscapedBallStaysOpenUntilTheRunStartsOver)
{
    loadsPortals({portalCell(0), portalCell(1)});
    ASSERT_TRUE(beginsCrossing(sender(), 0, 2.0f));
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
    putsBall(positionOf(sender()) + osg::Vec3d(0.0, 0.0, 5.0));
    ticks(2);
    EXPECT_EQ(sender().getState(), BlockPortal::Idle);
    EXPECT_FALSE(isActiveOnBall());
    EXPECT_TRUE(ballFalls());

    EXPECT_FALSE(isSolid(receiver(), 1));
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
    level().restart(false);
    ticks(2);
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);

    level().restart(true);
    ticks(2);
    EXPECT_EQ(receiver().getState(), BlockPortal::Idle);
    EXPECT_TRUE(isSolid(receiver(), 1));
}

TEST_F(BlockPortalTest, BallEscapesBeyondFourFifthsOfAUnitFromTheMouth)
{
    // Up along the mouth's plane, and out of the mouth.
    for (const osg::Vec3d& direction : {osg::Vec3d(0.0, 0.0, 1.0), osg::Vec3d(0.6, 0.0, 0.8)}) {
        SCOPED_TRACE(direction.x());
        EXPECT_EQ(stateInMouth(direction * 0.797), BlockPortal::Sending);
        EXPECT_EQ(stateInMouth(direction * 0.803), BlockPortal::Idle);
        EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
        EXPECT_FALSE(isActiveOnBall());
    }
}

TEST_F(BlockPortalTest, BallCrossesATenthOfAUnitBehindThePlaneOfTheMouth)
{
    EXPECT_EQ(stateInMouth(osg::Vec3d(-0.097, 0.0, 0.3)), BlockPortal::Sending);
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
    EXPECT_EQ(stateInMouth(osg::Vec3d(-0.103, 0.0, 0.3)), BlockPortal::Idle);
    EXPECT_EQ(receiver().getState(), BlockPortal::Releasing);
}

TEST_F(BlockPortalTest, PlaneOfTheMouthDoesNotTurnWithTheBoard)
{
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right}) {
        SCOPED_TRACE(key);
        loadsPortals({portalCell(0), portalCell(1)});
        presses(key);
        ASSERT_TRUE(ticksUntil([&] { return tiltDegrees() > 22.0; }, 200));
        releases(key);
        game.setAngularVelocity(board().getId(), osg::Vec3f(), true);
        hovers(positionOf(sender()) + osg::Vec3d(0.3, 0.0, 0.4));
        sender().reset();

        // High over the mouth, a point on this side of the one plane is on that side of the other.
        const osg::Vec3d into(-1.0, 0.0, 0.0);
        const osg::Vec3d turned = osg::Matrixd::transform3x3(into, boardPose());
        const bool leansOut = turned.z() > 0.0;
        const osg::Vec3d way(leansOut ? -0.05 : -0.16, 0.0, 0.5);
        ASSERT_EQ(way * turned > 0.1, leansOut);
        waitsInMouth(way);
        ticks();
        EXPECT_EQ(receiver().getState(),
                  leansOut ? BlockPortal::Receiving : BlockPortal::Releasing);
    }
}

TEST_F(BlockPortalTest, EnteringMeansNothingToAPortalThatReleasesTheBall)
{
    loadsPortals({portalCell(0), portalCell(1)});
    ASSERT_TRUE(crosses(sender(), receiver(), 0, 2.0f));
    receiver().onBallEnter(&ball());
    receiver().onBallEnter(&ball());
    EXPECT_EQ(receiver().getState(), BlockPortal::Releasing);
    EXPECT_EQ(sender().getState(), BlockPortal::Idle);
    ticks();
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    receiver().onBallLeave(&ball());
    EXPECT_EQ(receiver().getState(), BlockPortal::Idle);
}

TEST_F(BlockPortalTest, LeavingAnIdlePortalDoesNotDisturbTheCrossingOfAnother)
{
    loadsPortals({portalCell(0), portalCell(1), portalCell(0)});
    sender().onBallEnter(&ball());
    sender().onBallEnter(&ball());
    BlockPortal& idle = portal(receiver().getState() == BlockPortal::Idle ? 1 : 2);
    ASSERT_EQ(idle.getState(), BlockPortal::Idle);
    ASSERT_TRUE(isActiveOnBall());
    idle.onBallLeave(&ball());
    EXPECT_TRUE(isActiveOnBall());
    EXPECT_EQ(sender().getState(), BlockPortal::Sending);
}

TEST_F(BlockPortalTest, NextCrossingIsShownAtItsOwnReceiver)
{
    const int faces[] = {0, 3, topFace};
    loadsPortals({portalCell(faces[0]), portalCell(faces[1]), portalCell(faces[2])});
    parksBall();
    for (const int wanted : {1, 2, 1}) {
        SCOPED_TRACE(wanted);
        ASSERT_TRUE(drawsReceiver(wanted));
        ticks();
        const osg::Matrixf arrival = osg::Matrixf::translate(outward(faces[wanted])) *
                                     osg::Matrixf(portal(wanted).getTransform()->getMatrix());
        EXPECT_EQ(ballUniform("a_PortalReceiverMatrix"), arrival);
        EXPECT_EQ(ballUniform("a_PortalSenderMatrix"),
                  osg::Matrixf(sender().getTransform()->getMatrix()));
        EXPECT_EQ(ballUniform("a_PortalRotationMatrix"),
                  osg::Matrixf::rotate(osg::Vec3f(-outward(faces[0])),
                                       osg::Vec3f(outward(faces[wanted]))));
        // As after an arrival.
        sender().reset();
        portal(wanted).reset();
    }
}

TEST_F(BlockPortalTest, FallWhileTheMouthPullsLeavesThePortalSolidAndIdle)
{
    loadsPortals({portalCell(topFace, strong), portalCell(1)});
    hovers(positionOf(sender()) + osg::Vec3d(0.0, 0.0, 1.4));
    ASSERT_EQ(sender().getState(), BlockPortal::Attracting);
    level().changeLives(-1, true);
    ticks(2);
    EXPECT_EQ(sender().getState(), BlockPortal::Idle);
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    const osg::Vec3f velocity = ballVelocity();
    ticks();
    EXPECT_NEAR((ballVelocity() - velocity).z(), -world::gravity * world::secondsPerTick, 1e-3)
        << "nothing pulls at the ball, which has its gravity";
    EXPECT_NEAR(ballVelocity().x(), 0.0, 1e-3);
    EXPECT_TRUE(isSolid(sender(), topFace));
}

TEST_F(BlockPortalTest, EachCrossingDrawsAmongTheOthersEvenly)
{
    loadsPortals({portalCell(0), portalCell(1), portalCell(2), portalCell(3)});
    std::map<int, int> drawn;
    constexpr int crossings = 600;
    for (int i = 0; i < crossings; ++i) {
        sender().onBallEnter(&ball());
        sender().onBallEnter(&ball());
        for (int index = 1; index <= 3; ++index) {
            if (portal(index).getState() == BlockPortal::Receiving)
                ++drawn[index];
            portal(index).reset();
        }
        EXPECT_EQ(sender().getState(), BlockPortal::Sending);
        sender().reset();
    }
    // Two hundred each; a fair draw leaves this range once in a hundred thousand runs.
    for (int index = 1; index <= 3; ++index) {
        EXPECT_GT(drawn[index], 148) << index;
        EXPECT_LT(drawn[index], 252) << index;
    }
    EXPECT_EQ(drawn[1] + drawn[2] + drawn[3], crossings);
    ticks();
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
}

TEST_F(BlockPortalTest, PortalInAnyStateCanBeDrawn)
{
    loadsPortals({portalCell(0), portalCell(1)});
    receiver().onBallEnter(&ball());
    ASSERT_EQ(receiver().getState(), BlockPortal::Attracting);
    sender().onBallEnter(&ball());
    sender().onBallEnter(&ball());
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
}

TEST_F(BlockPortalTest, EventsMeanNothingWhileABallIsUnderWay)
{
    loadsPortals({portalCell(0), portalCell(1)});
    sender().onBallEnter(&ball());
    sender().onBallEnter(&ball());
    sender().onBallEnter(&ball());
    sender().onBallLeave(&ball());
    EXPECT_EQ(sender().getState(), BlockPortal::Sending);
    receiver().onBallEnter(&ball());
    receiver().onBallLeave(&ball());
    EXPECT_EQ(receiver().getState(), BlockPortal::Receiving);
}

TEST_F(BlockPortalTest, RestartInTheMiddleOfACrossingLeavesACleanLevel)
{
    loadsPortals({portalCell(0), portalCell(1)});
    ASSERT_TRUE(beginsCrossing(sender(), 0, 2.0f));
    EXPECT_TRUE(isActiveOnBall());
    level().restart(true);
    ticks(3);
    EXPECT_EQ(sender().getState(), BlockPortal::Idle);
    EXPECT_EQ(receiver().getState(), BlockPortal::Idle);
    EXPECT_FALSE(isActiveOnBall());
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
    EXPECT_TRUE(ballFalls());
    EXPECT_TRUE(isSolid(sender(), 0));
    EXPECT_TRUE(isSolid(receiver(), 1));
    EXPECT_TRUE(crosses(sender(), receiver(), 0, 2.0f));
}

TEST_F(BlockPortalTest, LevelThatGoesInTheMiddleOfACrossingTakesItsTaskAlong)
{
    loadsPortals({portalCell(0), portalCell(1)});
    ASSERT_TRUE(beginsCrossing(sender(), 0, 2.0f));
    // The viewer keeps what it has drawn last.
    frame();
    EXPECT_EQ(GameLoop::frameTaskCount(), 1u);
    osg::observer_ptr<Block> old = &sender();
    loadsPortals({portalCell(0), portalCell(1)});
    EXPECT_FALSE(old.valid());
    EXPECT_EQ(GameLoop::frameTaskCount(), 0u);
}

TEST_F(BlockPortalTest, BallCarriesTheMatricesOfItsCrossing)
{
    loadsPortals({portalCell(0), portalCell(3)});
    const osg::StateSet* state = ball().getTransform()->getStateSet();
    for (const char* name :
         {"a_PortalSenderMatrix", "a_PortalReceiverMatrix", "a_PortalRotationMatrix"})
        EXPECT_FALSE(state->getUniform(name)) << name;

    ASSERT_TRUE(beginsCrossing(sender(), 0, 2.0f));
    ticks();
    const osg::Matrixf place(sender().getTransform()->getMatrix());
    EXPECT_EQ(ballUniform("a_PortalSenderMatrix"), place);
    const osg::Matrixf arrival = osg::Matrixf::translate(0.0f, -1.0f, 0.0f) *
                                 osg::Matrixf(receiver().getTransform()->getMatrix());
    EXPECT_EQ(ballUniform("a_PortalReceiverMatrix"), arrival);
    EXPECT_EQ(ballUniform("a_PortalRotationMatrix"),
              osg::Matrixf::rotate(osg::Vec3f(-1.0f, 0.0f, 0.0f), osg::Vec3f(0.0f, -1.0f, 0.0f)));

    ASSERT_TRUE(ticksUntil([&] { return receiver().getState() == BlockPortal::Releasing; }, 60));
    ticks();
    EXPECT_EQ(ballUniform("a_PortalReceiverMatrix"),
              osg::Matrixf(receiver().getTransform()->getMatrix()));
}

TEST_F(BlockPortalTest, BallIsDrawnAtBothMouthsWhileItCrosses)
{
    loadsPortals({portalCell(2), portalCell(2)});
    looksAt(osg::Vec3d(0.0, 0.0, 0.5), 9.0f);
    game.handCamera->setHeight(5.0f);
    ASSERT_TRUE(beginsCrossing(sender(), 2, 2.0f));
    ASSERT_TRUE(
        ticksUntil([&] { return ballPosition().y() - positionOf(sender()).y() < 0.42; }, 20));
    ASSERT_EQ(sender().getState(), BlockPortal::Sending);

    const osg::Vec3d mouth(0.0, 0.55, 0.3);
    const QPoint in = pixelOf(positionOf(sender()) + mouth);
    const QPoint out = pixelOf(positionOf(receiver()) + mouth);
    const QImage split = frame(false);
    const int half = 40;
    EXPECT_GT(redPixels(cutout(split, in, 40)), half);
    EXPECT_GT(redPixels(cutout(split, out, 40)), half);

    ball().getTransform()->getStateSet()->getUniform("a_PortalActive")->set(false);
    const QImage inOnePiece = frame(false);
    EXPECT_GT(redPixels(cutout(inOnePiece, in, 40)), redPixels(cutout(split, in, 40)));
    EXPECT_LT(redPixels(cutout(inOnePiece, out, 40)), half / 4);
}

TEST_F(BlockPortalTest, MouthIsABlueCylinderThatOpensOutward)
{
    for (int face = 0; face < faceCount; ++face) {
        SCOPED_TRACE(face);
        loadsPortals({portalCell(face)});
        const auto mouths = shapesOf<osg::Cylinder>(sender());
        ASSERT_EQ(mouths.size(), 1u);
        EXPECT_FLOAT_EQ(mouths[0]->getRadius(), 0.4f);
        EXPECT_FLOAT_EQ(mouths[0]->getHeight(), 0.5f);
        const osg::Vec3d axis = mouths[0]->getRotation() * osg::Vec3d(0.0, 0.0, 1.0);
        EXPECT_NEAR((axis - outward(face)).length(), 0.0, 1e-6);
    }
}

TEST_F(BlockPortalTest, SparksComeFromAUnitBeforeTheMouthAndAreDrawnIn)
{
    // Of blocks of height 1: the mouth is 0.05 over the block's middle, the one on top 0.3.
    const osg::Vec3d sources[] = {
        {1.3, 0.0, 0.05}, {-1.3, 0.0, 0.05}, {0.0, 1.3, 0.05}, {0.0, -1.3, 0.05}, {0.0, 0.0, 1.3}};
    const osg::Vec3f winds[] = {{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}};
    for (int face = 0; face < faceCount; ++face) {
        SCOPED_TRACE(face);
        loadsPortals({portalCell(face)});
        const SparksOfBlock sparks(sender());
        const osgParticle::Particle& spark = sparks.system->getDefaultParticleTemplate();
        EXPECT_EQ(spark.getShape(), osgParticle::Particle().getShape()) << "as the library has it";
        EXPECT_FLOAT_EQ(spark.getSizeRange().minimum, 0.01f);
        EXPECT_FLOAT_EQ(spark.getSizeRange().maximum, 0.02f);
        EXPECT_EQ(spark.getColorRange().minimum, osg::Vec4f(1.0f, 1.0f, 0.0f, 1.0f));
        EXPECT_EQ(spark.getColorRange().maximum, osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
        sparks.expectsCommonSettings();
        sparks.expectsRate(50.0f, 100.0f);
        sparks.expectsSource({sources[face], sources[face] + osg::Vec3d(0.01, 0.01, 0.01)});
        sparks.expectsWind(winds[face]);
    }
}

TEST_F(BlockPortalTest, SparksGoOnOnATiltingBoardAndLeaveNothingBehindWithTheLevel)
{
    loadsPortals({portalCell(0)});
    const auto systems = drawablesOf<osgParticle::ParticleSystem>(sender());
    ASSERT_EQ(systems.size(), 1u);
    osg::observer_ptr<const osgParticle::ParticleSystem> sparks = systems[0];
    const auto living = [&] {
        return sparks->numParticles() - sparks->numDeadParticles();
    };
    draws(true);
    EXPECT_TRUE(playsUntil([&] { return living() > 30; }, 10000));
    presses(Qt::Key_Up);
    EXPECT_TRUE(playsUntil([&] { return tiltDegrees() > 15.0; }, 20000));
    releases(Qt::Key_Up);
    plays(1000);  // a spark's life: all of them are new
    EXPECT_GT(living(), 20);
    EXPECT_LT(living(), 140);
    // They stay about their mouth, wherever the board goes.
    EXPECT_LT((sparks->getBoundingBox().center() - osg::Vec3f(1.3f, 0.0f, 0.0f)).length(), 1.5f);

    loadsPortals({portalCell(0)});
    EXPECT_FALSE(sparks.valid());
}
