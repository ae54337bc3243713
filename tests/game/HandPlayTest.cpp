#include "HandGameTest.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Ball.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/SceneSearch.h"

#include <QImage>
#include <osg/Geode>
#include <osg/Math>
#include <osg/NodeVisitor>
#include <osgText/Text>

#include <cmath>

namespace {

constexpr float quarterTurn = 1.5707964f;
constexpr float facingCamera = 3.1415927f;
constexpr double precision = 1e-4;  // rad/s; the sensor writes six digits
const char* const prompt = "Bring your hand in rest position.";

void expectNear(const osg::Vec3d& measured, const osg::Vec3d& expected, double tolerance)
{
    EXPECT_NEAR(measured.x(), expected.x(), tolerance);
    EXPECT_NEAR(measured.y(), expected.y(), tolerance);
    EXPECT_NEAR(measured.z(), expected.z(), tolerance);
}

int greenerPixels(const QImage& image, const QImage& than)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qGreen(image.pixel(x, y)) > qGreen(than.pixel(x, y)) + 20;
    return count;
}

}  // namespace

class HandPlayTest : public HandGameTest
{
public:
    /// Whether a frame drawn now would show the guide plate.
    bool isGuideUp()
    {
        struct Counter : osg::NodeVisitor
        {
            Counter() : osg::NodeVisitor(TRAVERSE_ACTIVE_CHILDREN) {}
            void apply(osg::Geode&) override { ++geodes; }
            int geodes = 0;
        } counter;
        if (counter.validNodeMask(guide()))
            guide().getCullCallback()->run(&guide(), &counter);
        return counter.geodes > 0;
    }
};

TEST_F(HandPlayTest, BeginsWithTheFirstFrameOfAFlatHandOverALevelBoard)
{
    sees({flatHand()});
    expectLastFrame(GameState::WaitingForRest, GameState::Playing);
}

TEST_F(HandPlayTest, BeginsWithinAQuarterOfARadian)
{
    for (const float sign : {1.0f, -1.0f}) {
        game.state = GameState::WaitingForRest;
        sees({rolledHand(sign * 0.26f)});
        EXPECT_EQ(game.state, GameState::WaitingForRest);
        sees({rolledHand(sign * 0.24f)});
        EXPECT_EQ(game.state, GameState::Playing);
    }
}

TEST_F(HandPlayTest, BeginsOnlyWhenTheHandMatchesTheBoardAsItStands)
{
    holds(Qt::Key_Right, 20);
    const double tilt = osg::DegreesToRadians(tiltDegrees());
    ASSERT_GT(tilt, 0.3);
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    const osg::Vec3d up = osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    sees({handFor(up)});
    EXPECT_EQ(game.state, GameState::Playing);
}

TEST_F(HandPlayTest, CountsATwistAgainstTheRestPose)
{
    PlayedHand hand = flatHand();
    hand.yaw = 0.26f;
    sees({hand});
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    hand.yaw = 0.24f;
    sees({hand});
    EXPECT_EQ(game.state, GameState::Playing);
}

TEST_F(HandPlayTest, TurnsTheGuidePlateAsThePalmWhileTheHandIsOff)
{
    const osg::Matrixd untouched = guide().getMatrix();
    sees({rolledHand(0.24f)});
    EXPECT_EQ(guide().getMatrix(), untouched);
    game.state = GameState::WaitingForRest;
    PlayedHand hand = rolledHand(0.26f);
    hand.yaw = 0.5f;
    sees({hand});
    const QVector3D palm = hand.normal();
    const osg::Vec3d down =
        osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, -1.0), guide().getMatrix());
    expectNear(down, osg::Vec3d(palm.x(), -palm.z(), palm.y()), 1e-5);
    // The shortest way from the level plate: the twist of the hand is not shown.
    double angle = 0.0;
    osg::Vec3d axis;
    guide().getMatrix().getRotate().getRotate(angle, axis);
    EXPECT_NEAR(angle, 0.26, 1e-5);
    EXPECT_NEAR(axis.z(), 0.0, 1e-5);
}

TEST_F(HandPlayTest, DrawsTheGuidePlateFromTheFirstHandOnUntilPlayBegins)
{
    const QImage unseen = frame(false);
    sees({});
    game.messageText->hide();
    EXPECT_EQ(greenerPixels(frame(false), unseen), 0);
    sees({rolledHand(0.3f)});
    game.messageText->hide();
    const int platePixels = greenerPixels(frame(false), unseen);
    EXPECT_GT(platePixels, 5000);
    sees({rolledHand(-0.3f)});
    game.messageText->hide();
    EXPECT_GT(greenerPixels(frame(false), unseen), 5000);
    sees({flatHand()});
    ASSERT_EQ(game.state, GameState::Playing);
    EXPECT_EQ(greenerPixels(frame(false), unseen), 0);
}

TEST_F(HandPlayTest, ShowsTheGuidePlateWhileItWaitsAndAHandIsSeenAndNoLonger)
{
    EXPECT_FALSE(isGuideUp());
    sees({rolledHand(0.3f)});
    EXPECT_TRUE(isGuideUp());
    sees({});
    EXPECT_FALSE(isGuideUp()) << "the hand has gone";
    sees({rolledHand(0.3f)});
    EXPECT_TRUE(isGuideUp()) << "and is back";
    sees({flatHand()});
    ASSERT_EQ(game.state, GameState::Playing);
    sees({});
    level().changeLives(-1, true);
    ASSERT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_FALSE(isGuideUp()) << "nobody has seen a hand since the fall";
    sees({rolledHand(0.3f)});
    sees(twoHands());
    EXPECT_FALSE(isGuideUp());
    sees({});
    ASSERT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_FALSE(isGuideUp()) << "both hands went at once";
    sees({rolledHand(0.3f)});
    loads({"S.."});
    EXPECT_FALSE(isGuideUp()) << "a new level has a plate of its own";
}

TEST_F(HandPlayTest, TakesTheGuidePlateAwayWhenTheHandGoesBehindAMenu)
{
    sees({rolledHand(0.3f)});
    releases(Qt::Key_Escape);
    EXPECT_FALSE(isGuideUp());
    sees({});
    releases(Qt::Key_Escape);
    ASSERT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_FALSE(isGuideUp());
}

TEST_F(HandPlayTest, TakesTheGuidePlateAwayWhenTheServiceGoes)
{
    sees({rolledHand(0.3f)});
    ASSERT_TRUE(isGuideUp());
    service.stops();
    EXPECT_TRUE(holdsWithin(20000, [this] {
        const GameLoop::Lock worldLock;
        return !isGuideUp();
    }));
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_TRUE(service.comesBack());
}

TEST_F(HandPlayTest, LeavesTheMessageOfALevelBeforeToTheSensorWhenThereIsOne)
{
    level().complete();
    loads({"S.."});
    sees({rolledHand(0.5f)});
    holds(Qt::Key_Left, 1);
    EXPECT_TRUE(reads("Well Done!"));
}

TEST_F(HandPlayTest, AsksForTheRestPoseInGreen)
{
    sees({});
    const osgText::Text* text = textReading(prompt, game.getSceneData());
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->getColor(), osg::Vec4(0.0f, 0.9f, 0.0f, 1.0f));
}

TEST_F(HandPlayTest, AsksForTheRestPoseOnlyWhenAFrameComes)
{
    ticks(3);
    EXPECT_FALSE(game.messageText->isVisible());
    sees({});
    EXPECT_TRUE(game.messageText->isVisible());
    EXPECT_TRUE(reads(prompt));
    sees({rolledHand(0.5f)});
    EXPECT_TRUE(reads(prompt));
    sees({flatHand()});
    EXPECT_FALSE(game.messageText->isVisible());
    EXPECT_FALSE(reads(prompt));
}

TEST_F(HandPlayTest, CommandsNothingWithinATenthOfARadian)
{
    startsPlay();
    sees({rolledHand(0.09f)});
    expectNear(commandedTurn(), osg::Vec3d(), precision);
}

TEST_F(HandPlayTest, StopsAMovingBoardWhenTheHandIsWithinATenth)
{
    startsPlay();
    game.setAngularVelocity(board().getId(), osg::Vec3f(0.0f, -0.6f, 0.0f), true);
    ticks();
    ASSERT_LT(boardTurn().y(), -0.4);
    sees({rolledHand(0.09f)});
    expectNear(commandedTurn(), osg::Vec3d(), precision);
    ticks();
    EXPECT_LT(boardTurn().length(), 0.02) << "but for what the ball does to it";
}

TEST_F(HandPlayTest, TurnsTheBoardByTwiceTheErrorASecond)
{
    startsPlay();
    for (const float roll : {0.11f, 0.3f, -0.2f}) {
        SCOPED_TRACE(roll);
        sees({rolledHand(roll)});
        // To the right of the player, downwards for a hand that looks left.
        expectNear(commandedTurn(), osg::Vec3d(0.0, -2.0 * roll, 0.0), precision);
    }
}

TEST_F(HandPlayTest, LowersTheFarEdgeWithTheFingertips)
{
    startsPlay();
    PlayedHand hand = flatHand();
    hand.pitch = -0.2f;
    sees({hand});
    expectNear(commandedTurn(), osg::Vec3d(-0.4, 0.0, 0.0), precision);
    ticks();
    EXPECT_LT(osg::Matrixd::transform3x3(osg::Vec3d(0.0, 1.0, 0.0), boardPose()).z(), 0.0);
}

TEST_F(HandPlayTest, TwistsTheBoardWithTheFingers)
{
    startsPlay();
    PlayedHand hand = flatHand();
    hand.yaw = 0.3f;
    sees({hand});
    expectNear(commandedTurn(), osg::Vec3d(0.0, 0.0, -0.6), precision);
}

TEST_F(HandPlayTest, MeasuresTheErrorAgainstTheBoardAsItStands)
{
    startsPlay();
    for (int i = 0; i < 300; ++i) {
        sees({rolledHand(0.3f)});
        ticks();
    }
    // The board comes as near as the dead zone and stops there.
    EXPECT_NEAR(osg::DegreesToRadians(tiltDegrees()), 0.2, 0.02);
    const osg::Vec3d up = osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    EXPECT_LT(up.x(), 0.0);
}

TEST_F(HandPlayTest, TurnsThePalmWithTheCameraButNotTheFingers)
{
    startsPlay();
    game.handCamera->setAngle(facingCamera + quarterTurn);
    // Were the fingers turned as well, a flat hand would ask for a quarter of a turn.
    sees({flatHand()});
    expectNear(commandedTurn(), osg::Vec3d(), precision);
    sees({rolledHand(0.2f)});
    expectNear(commandedTurn(), osg::Vec3d(-0.4, 0.0, 0.0), precision);
}

TEST_F(HandPlayTest, AsksForTheRestPoseAsSeenByATurnedCamera)
{
    holds(Qt::Key_Right, 20);
    const osg::Vec3d up = osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    ASSERT_GT(up.x(), 0.25);
    game.handCamera->setAngle(facingCamera + quarterTurn);
    sees({handFor(up)});
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    // What the right edge is to the world is the far edge to who looks from there.
    sees({handFor(osg::Vec3d(-up.y(), up.x(), up.z()))});
    EXPECT_EQ(game.state, GameState::Playing);
}

TEST_F(HandPlayTest, LetsTheBoardGoOnWhenTheHandLeaves)
{
    startsPlay();
    sees({rolledHand(0.3f)});
    ticks(2);
    const osg::Vec3d before = boardTurn();
    ASSERT_LT(before.y(), -0.4);
    sees({});
    expectLastFrame(GameState::Playing, GameState::Playing);
    expectNear(commandedTurn(), before, 0.0);
    ticks(2);
    EXPECT_LT(boardTurn().y(), 0.8 * before.y());
    EXPECT_FALSE(game.messageText->isVisible());
}

TEST_F(HandPlayTest, FollowsTheFirstHandOfTheList)
{
    startsPlay();
    PlayedHand other = rolledHand(0.2f);
    other.id = 77;
    sees({other});
    expectNear(commandedTurn(), osg::Vec3d(0.0, -0.4, 0.0), precision);
}

TEST_F(HandPlayTest, HasTheLastOfTheFramesBetweenTwoTicksDecide)
{
    startsPlay();
    for (const float roll : {0.3f, -0.4f, 0.2f})
        sees({rolledHand(roll)});
    expectNear(commandedTurn(), osg::Vec3d(0.0, -0.4, 0.0), precision);
}

TEST_F(HandPlayTest, TakesTwoHandsForTheCameraBeforeATap)
{
    startsPlay();
    sees(twoHands(), {tap()});
    expectLastFrame(GameState::Playing, GameState::CameraControl);
    sees(twoHands());
    EXPECT_FALSE(game.pauseMenu->isVisible());
}

TEST_F(HandPlayTest, TurnsAndLiftsTheCameraByTwoHandsAndWaitsWhenOneLeaves)
{
    startsPlay();
    std::vector<PlayedHand> hands = twoHands();
    for (PlayedHand& hand : hands)
        hand.yaw = 0.6f;
    sees(hands);
    EXPECT_NEAR(game.handCamera->angle(), facingCamera + 1.2f / 60.0f, 1e-5);
    expectNear(commandedTurn(), osg::Vec3d(), precision);
    sees({flatHand()});
    expectLastFrame(GameState::CameraControl, GameState::WaitingForRest);
    EXPECT_FALSE(game.messageText->isVisible()) << "the frame that ends it only ends it";
    sees({flatHand()});
    expectLastFrame(GameState::WaitingForRest, GameState::Playing);
}

TEST_F(HandPlayTest, IgnoresATapBeforePlay)
{
    sees({rolledHand(0.5f)}, {tap()});
    expectLastFrame(GameState::WaitingForRest, GameState::WaitingForRest);
    sees({rolledHand(0.5f)});
    EXPECT_FALSE(game.pauseMenu->isVisible());
    sees({flatHand()}, {tap()});
    expectLastFrame(GameState::WaitingForRest, GameState::Playing);
}

TEST_F(HandPlayTest, AsksForTheRestPoseAgainAfterAFall)
{
    startsPlay();
    putsBall({0.0, 0.0, -8.0});
    ASSERT_TRUE(ticksUntil([&] { return level().livesLeft() == 4; }, 100));
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    sees({rolledHand(0.5f)});
    EXPECT_TRUE(reads(prompt));
    expectNear(commandedTurn(), osg::Vec3d(), precision);
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::Playing);
}
