#include "base/WorldNumbers.h"
#include "frame/GameLoop.h"
#include "frame/OsgViewerWidget.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Board.h"
#include "level/Level.h"
#include "support/GameInside.h"
#include "support/GameTest.h"
#include "support/OutputCapture.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <cmath>
#include <string>

namespace {

using Lines = std::vector<std::string>;

/// The game as it is played by keys.
class RollixKeysTest : public GameTest
{
protected:
    RollixKeysTest()
    {
        // A board so heavy that the ball on its middle does not matter.
        loads(LevelPicture(15, 15, cells::floor).set(7, 7, cells::start));
        ticks(5);
    }

    ~RollixKeysTest() override { game.handCamera->setAngle(3.1415927f); }

    bool accepts(QEvent::Type type, Qt::Key key, bool repeated = false)
    {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), repeated);
        QCoreApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    }

    /// Whether the key, pressed, is accepted; and the same of its release.
    bool acceptsPress(Qt::Key key) { return accepts(QEvent::KeyPress, key); }
    bool acceptsRelease(Qt::Key key) { return accepts(QEvent::KeyRelease, key); }

    void types(Qt::Key key)
    {
        presses(key);
        releases(key);
    }

    /// As a keyboard sends it, with a scan code.
    void sendsTrueKey(QEvent::Type type, Qt::Key key, bool repeated)
    {
        const auto scanCode = quint32(key);
        QKeyEvent event(type, key, Qt::NoModifier, scanCode, 0, 0, QString(), repeated);
        QCoreApplication::sendEvent(&widget, &event);
    }
    void pressesTrueKey(Qt::Key key, bool repeated = false)
    {
        sendsTrueKey(QEvent::KeyPress, key, repeated);
    }
    void releasesTrueKey(Qt::Key key) { sendsTrueKey(QEvent::KeyRelease, key, false); }

    void losesFocus()
    {
        QFocusEvent event(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QCoreApplication::sendEvent(&widget, &event);
    }

    /// Radians a second, in the world.
    osg::Vec3d boardTurn()
    {
        const physx::PxVec3 turn = GameInside::bodyOf(game, board().getId()).getAngularVelocity();
        return {turn.x, turn.y, turn.z};
    }

    osg::Vec3d boardUp() const
    {
        return osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), boardPose());
    }

    /// What the board turns by in one tick; it is put level and still before.
    osg::Vec3d turnOfATick()
    {
        game.setAngularVelocity(board().getId(), osg::Vec3f(), true);
        game.setPose(board().getId(), osg::Matrixd::identity());
        ticks();
        return boardTurn();
    }
};

TEST_F(RollixKeysTest, TiltTheFarEdgeDownAsSeenFromTheCameraAtAnyAngle)
{
    for (const float angle : {3.1415927f, 0.0f, 1.5707964f, -1.0f, 2.5f, 7.0f}) {
        SCOPED_TRACE(angle);
        game.handCamera->setAngle(angle);
        osg::Vec3d away = -game.handCamera->getMatrix().getTrans();
        away.z() = 0.0;
        away.normalize();
        const osg::Vec3d right = away ^ osg::Vec3d(0.0, 0.0, 1.0);
        const std::pair<Qt::Key, osg::Vec3d> keys[] = {{Qt::Key_Up, away},
                                                       {Qt::Key_Down, -away},
                                                       {Qt::Key_Right, right},
                                                       {Qt::Key_Left, -right}};
        for (const auto& [key, edge] : keys) {
            SCOPED_TRACE(key);
            game.setAngularVelocity(board().getId(), osg::Vec3f(), true);
            game.setPose(board().getId(), osg::Matrixd::identity());
            holds(key, 10);
            // The board's normal leans where the edge goes down.
            EXPECT_GT(boardUp() * edge, 0.1);
            EXPECT_NEAR(boardUp() * (edge ^ osg::Vec3d(0.0, 0.0, 1.0)), 0.0, 0.01);
        }
    }
}

TEST_F(RollixKeysTest, TurnTheBoardFasterByATenthOfARadianASecondInEveryTick)
{
    presses(Qt::Key_Up);
    // Damping takes a thirtieth of it in the same step.
    EXPECT_NEAR(turnOfATick().length(), 0.1 * (1.0 - world::secondsPerTick), 0.002);
    double before = boardTurn().length();
    for (int i = 0; i < 5; ++i) {
        ticks();
        EXPECT_NEAR(boardTurn().length(), (before + 0.1) * (1.0 - world::secondsPerTick), 0.004);
        before = boardTurn().length();
    }
}

TEST_F(RollixKeysTest, CountForOneTickAtLeastHoweverShortTheTap)
{
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right}) {
        SCOPED_TRACE(key);
        types(key);
        EXPECT_NEAR(turnOfATick().length(), 0.1 * (1.0 - 1.0 / 30.0), 0.002);
        EXPECT_LT(turnOfATick().length(), 0.005) << "and for no more";
    }
}

TEST_F(RollixKeysTest, CountForTheTicksOfTheirHoldAlone)
{
    presses(Qt::Key_Up);
    EXPECT_GT(turnOfATick().length(), 0.09);
    accepts(QEvent::KeyPress, Qt::Key_Up, true);
    releases(Qt::Key_Up);
    EXPECT_LT(turnOfATick().length(), 0.005) << "though it has repeated since the tick";
}

TEST_F(RollixKeysTest, AddUp)
{
    presses(Qt::Key_Up);
    presses(Qt::Key_Right);
    EXPECT_NEAR(turnOfATick().length(), std::sqrt(2.0) * 0.1 * (1.0 - world::secondsPerTick),
                0.003);
    presses(Qt::Key_Down);
    presses(Qt::Key_Left);
    EXPECT_LT(turnOfATick().length(), 0.005);
}

TEST_F(RollixKeysTest, BringTheBoardToThirtyDegreesInHalfASecondAndNoFurther)
{
    constexpr int halfASecond = 25;          // ticks of 20 ms
    putsBall(osg::Vec3d(0.0, 0.0, 2000.0));  // a fallen ball would bring the board level
    presses(Qt::Key_Up);
    for (int tick = 1; tick <= 250; ++tick) {
        ticks();
        ASSERT_LE(boardTurn().length(), 1.0 + 1e-3) << "at most a radian a second";
        // The cone acts from its edge on: one step's turn may lie beyond it.
        ASSERT_LE(tiltDegrees(), 32.0);
        if (tick == halfASecond / 2)
            EXPECT_LT(tiltDegrees(), 15.0);
        if (tick >= halfASecond)
            ASSERT_NEAR(tiltDegrees(), 30.0, 0.3) << tick;
    }
}

TEST_F(RollixKeysTest, WorkInEveryState)
{
    for (int state = 0; state <= 6; ++state) {
        SCOPED_TRACE(state);
        game.state = GameState(state);
        presses(Qt::Key_Left);
        EXPECT_GT(turnOfATick().length(), 0.09);
        releases(Qt::Key_Left);
        EXPECT_LT(turnOfATick().length(), 0.01);
        EXPECT_EQ(int(game.state), state);
    }
}

TEST_F(RollixKeysTest, AreAcceptedWhereTheyMeanSomething)
{
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Right, Qt::Key_Down}) {
        SCOPED_TRACE(key);
        EXPECT_TRUE(acceptsPress(key));
        EXPECT_TRUE(acceptsRelease(key));
    }
    for (const Qt::Key key : {Qt::Key_Plus, Qt::Key_Minus, Qt::Key_R}) {
        SCOPED_TRACE(key);
        EXPECT_FALSE(acceptsPress(key));
        EXPECT_TRUE(acceptsRelease(key));
    }
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_Return, Qt::Key_Space, Qt::Key_Equal}) {
        SCOPED_TRACE(key);
        EXPECT_FALSE(acceptsPress(key));
        EXPECT_FALSE(acceptsRelease(key));
    }
    EXPECT_FALSE(acceptsPress(Qt::Key_Escape));
    EXPECT_FALSE(game.pauseMenu->isVisible()) << "it is the release that counts";
    EXPECT_TRUE(acceptsRelease(Qt::Key_Escape));
    EXPECT_TRUE(game.pauseMenu->isVisible());
    EXPECT_FALSE(acceptsPress(Qt::Key_F11));
}

TEST_F(RollixKeysTest, ChangeTheLevelAtOnceWhenTheyAreReleased)
{
    writes({"S"}, 1);
    OutputCapture output;
    presses(Qt::Key_Plus);
    EXPECT_EQ(level().number, 0u);
    releases(Qt::Key_Plus);
    EXPECT_EQ(level().number, 1u);
    const osg::observer_ptr<Level> before = game.level.get();
    types(Qt::Key_R);
    EXPECT_EQ(level().number, 1u);
    EXPECT_FALSE(before.valid()) << "another one of the same number";
    game.state = GameState::Playing;
    types(Qt::Key_Minus);
    EXPECT_EQ(level().number, 0u);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_EQ(output.lines(),
              (Lines{"reading level data/Rollix/level1.png", "reading level data/Rollix/level1.png",
                     "reading level data/Rollix/level0.png"}));
}

TEST_F(RollixKeysTest, GoBelowTheFirstLevel)
{
    OutputCapture output;
    types(Qt::Key_Minus);
    EXPECT_EQ(output.text(), "reading level data/Rollix/level-1.png\n");
    EXPECT_EQ(int(level().number), -1);
    EXPECT_TRUE(board().getBlocks().empty());
    ticks(5);
    types(Qt::Key_Plus);
    EXPECT_EQ(level().number, 0u);
    EXPECT_EQ(board().getBlocks().size(), 225u);
}

TEST_F(RollixKeysTest, StayHeldThroughALevelChange)
{
    presses(Qt::Key_Up);
    types(Qt::Key_R);
    ticks(10);
    EXPECT_GT(tiltDegrees(), 5.0);
    releases(Qt::Key_Up);
}

TEST_F(RollixKeysTest, CountOnlyByTheirTrueRelease)
{
    presses(Qt::Key_Up);
    EXPECT_FALSE(accepts(QEvent::KeyRelease, Qt::Key_Up, true));
    EXPECT_GT(turnOfATick().length(), 0.09) << "a key that is held down repeats";
    OutputCapture output;
    accepts(QEvent::KeyRelease, Qt::Key_R, true);
    accepts(QEvent::KeyRelease, Qt::Key_Escape, true);
    EXPECT_EQ(output.text(), "");
    EXPECT_FALSE(game.pauseMenu->isVisible());
}

TEST_F(RollixKeysTest, OpenAndCloseThePauseMenuByEscape)
{
    for (int state : {1, 2, 3, 4, 5, 6}) {
        SCOPED_TRACE(state);
        game.state = GameState(state);
        types(Qt::Key_Escape);
        EXPECT_EQ(game.state, GameState::PauseMenu);
        EXPECT_TRUE(game.pauseMenu->isVisible());
        EXPECT_TRUE(GameLoop::isPaused());
        types(Qt::Key_Escape);
        EXPECT_EQ(game.state, GameState::WaitingForRest);
        EXPECT_FALSE(game.pauseMenu->isVisible());
        EXPECT_FALSE(GameLoop::isPaused());
    }
    EXPECT_EQ(level().number, 0u);
}

TEST_F(RollixKeysTest, GoToTheMenuWhileItIsUp)
{
    types(Qt::Key_Escape);
    const Level* before = game.level;
    OutputCapture output;
    for (const Qt::Key key : {Qt::Key_R, Qt::Key_Plus, Qt::Key_Minus})
        EXPECT_FALSE(acceptsRelease(key));
    EXPECT_TRUE(acceptsRelease(Qt::Key_Down));
    EXPECT_TRUE(acceptsRelease(Qt::Key_Up));
    EXPECT_EQ(game.level, before);
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(game.state, GameState::PauseMenu);
    types(Qt::Key_Escape);
}

TEST_F(RollixKeysTest, StaySetWhenTheMenuTakesTheirRelease)
{
    types(Qt::Key_Escape);
    presses(Qt::Key_Up);
    releases(Qt::Key_Up);
    types(Qt::Key_Escape);
    EXPECT_GT(turnOfATick().length(), 0.09);
    types(Qt::Key_Up);
    EXPECT_LT(turnOfATick().length(), 0.01) << "until the key is pressed and released again";
}

TEST_F(RollixKeysTest, StaySetWhenAMenuComesBetweenPressAndRelease)
{
    presses(Qt::Key_Right);
    types(Qt::Key_Escape);
    releases(Qt::Key_Right);
    types(Qt::Key_Escape);
    EXPECT_GT(turnOfATick().length(), 0.09);
    types(Qt::Key_Right);
}

TEST_F(RollixKeysTest, AreLetGoOfWhenTheFocusGoesAndStayThatWay)
{
    pressesTrueKey(Qt::Key_Up);
    EXPECT_GT(turnOfATick().length(), 0.09);
    losesFocus();
    EXPECT_LT(turnOfATick().length(), 0.005);
    // The focus comes back while the key is down, and goes before it is up.
    pressesTrueKey(Qt::Key_Up, true);
    losesFocus();
    EXPECT_LT(turnOfATick().length(), 0.005) << "stuck";
    pressesTrueKey(Qt::Key_Up);
    EXPECT_GT(turnOfATick().length(), 0.09) << "pressed anew";
    releasesTrueKey(Qt::Key_Up);
    EXPECT_LT(turnOfATick().length(), 0.005);
}

TEST_F(RollixKeysTest, DoNothingElseWhenTheFocusGoes)
{
    OutputCapture output;
    for (const Qt::Key key : {Qt::Key_R, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Escape}) {
        SCOPED_TRACE(key);
        pressesTrueKey(key);
        losesFocus();
        releasesTrueKey(key);
        EXPECT_FALSE(game.pauseMenu->isVisible());
    }
    EXPECT_EQ(output.text(), "");
    pressesTrueKey(Qt::Key_R);
    releasesTrueKey(Qt::Key_R);
    EXPECT_EQ(output.text(), "reading level data/Rollix/level0.png\n") << "pressed anew";
}

TEST_F(RollixKeysTest, BringTheEndMenuUpByReturnWhenALevelHasEnded)
{
    for (const GameState ended : {GameState::LevelCompleted, GameState::LevelFailed}) {
        SCOPED_TRACE(int(ended));
        if (ended == GameState::LevelCompleted)
            game.levelCompleted();
        else
            game.levelFailed();
        EXPECT_TRUE(acceptsRelease(Qt::Key_Return));
        EXPECT_TRUE(game.endMenu->isVisible());
        EXPECT_TRUE(GameLoop::isPaused());
        EXPECT_EQ(game.state, ended);
        types(Qt::Key_Escape);
        EXPECT_FALSE(game.endMenu->isVisible());
        EXPECT_EQ(game.state, ended);
        types(Qt::Key_Return);
        EXPECT_TRUE(game.endMenu->isVisible()) << "as often as one likes";
        types(Qt::Key_Escape);
    }
}

TEST_F(RollixKeysTest, LeadFromAFinishedLevelToTheNextWithoutASensor)
{
    writes({"S"}, 1);
    game.levelCompleted();
    types(Qt::Key_Return);
    ASSERT_TRUE(picks("Next Level"));
    ticks();
    EXPECT_EQ(level().number, 1u);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_TRUE(game.messageText->isVisible());
    presses(Qt::Key_Left);
    EXPECT_FALSE(game.messageText->isVisible());
    releases(Qt::Key_Left);
    EXPECT_FALSE(acceptsRelease(Qt::Key_Return)) << "nothing has ended here";
    EXPECT_FALSE(game.endMenu->isVisible());
}

TEST_F(RollixKeysTest, BringNoMenuUpByReturnOutsideOfAnEnd)
{
    for (const GameState state :
         {GameState::CameraControl, GameState::WaitingForRest, GameState::Playing}) {
        game.state = state;
        EXPECT_FALSE(acceptsRelease(Qt::Key_Return));
        EXPECT_FALSE(game.endMenu->isVisible());
    }
    game.levelCompleted();
    types(Qt::Key_Escape);
    ASSERT_TRUE(picks("Continue"));
    EXPECT_FALSE(game.endMenu->isVisible()) << "the pause menu has had it";
}

TEST_F(RollixKeysTest, TakeAMessageAwayOnlyInALevelThatIsNotItsOwn)
{
    game.levelFailed();
    types(Qt::Key_Up);
    EXPECT_TRUE(game.messageText->isVisible());
    types(Qt::Key_R);
    EXPECT_TRUE(game.messageText->isVisible());
    types(Qt::Key_A);
    EXPECT_TRUE(game.messageText->isVisible()) << "it is the arrows that play";
    accepts(QEvent::KeyPress, Qt::Key_Up, true);
    EXPECT_TRUE(game.messageText->isVisible()) << "held since before";
    types(Qt::Key_Escape);
    types(Qt::Key_Down);
    types(Qt::Key_Escape);
    EXPECT_TRUE(game.messageText->isVisible()) << "that was the menu's";
    types(Qt::Key_Down);
    EXPECT_FALSE(game.messageText->isVisible());
    game.levelCompleted();
    types(Qt::Key_Down);
    EXPECT_TRUE(game.messageText->isVisible()) << "a new one";
}

TEST_F(RollixKeysTest, LeaveTheEndMenuToTheNextSensorFrameWhenEscapeHidesIt)
{
    for (const GameState state : {GameState::LevelCompleted, GameState::LevelFailed}) {
        game.state = state;
        game.endMenu->show();
        types(Qt::Key_Escape);
        EXPECT_FALSE(game.endMenu->isVisible());
        EXPECT_FALSE(game.pauseMenu->isVisible());
        EXPECT_EQ(game.state, state);
    }
}

TEST_F(RollixKeysTest, ContinueAFinishedLevel)
{
    game.levelCompleted();
    const Level* finished = game.level;
    types(Qt::Key_Escape);
    EXPECT_EQ(game.state, GameState::PauseMenu);
    EXPECT_TRUE(picks("Continue"));
    EXPECT_FALSE(game.pauseMenu->isVisible());
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    ticks(3);
    EXPECT_EQ(game.level, finished);
}

TEST_F(RollixKeysTest, AreAllThatCountsBesidesTheHand)
{
    const Level* before = game.level;
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseMove,
                                    QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick}) {
        QMouseEvent event(type, QPointF(20, 20), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
        EXPECT_FALSE(event.isAccepted());
    }
    ticks(5);
    EXPECT_EQ(game.level, before);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_LT(tiltDegrees(), 0.1);
}

TEST_F(RollixKeysTest, LetsTheMouseMoveTheCameraUntilItsNextMove)
{
    const auto eye = [this] {
        osg::Vec3d position;
        osg::Vec3d center;
        osg::Vec3d up;
        game.getCamera()->getViewMatrixAsLookAt(position, center, up);
        return position;
    };
    const auto drags = [this](QEvent::Type type, const QPointF& to) {
        QMouseEvent event(type, to, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
        ticks();
    };
    game.handCamera->updateView();
    ticks();
    const osg::Vec3d before = eye();
    drags(QEvent::MouseButtonPress, QPointF(300, 300));
    drags(QEvent::MouseMove, QPointF(360, 330));
    EXPECT_GT((eye() - before).length(), 1.0);
    drags(QEvent::MouseButtonRelease, QPointF(360, 330));
    game.handCamera->updateView();
    ticks();
    EXPECT_NEAR((eye() - before).length(), 0.0, 1e-3);
}

}  // namespace
