#include "HandGameTest.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "level/Level.h"

/// Every way from one state to another: those of the sensor's thread come with a frame and no tick,
/// those of the main thread come without a frame.
class HandStatesTest : public HandGameTest
{
public:
    /// The state is reached on this thread, with the sensor silent.
    void expectWithoutFrame(GameState state)
    {
        EXPECT_EQ(game.state, state);
        EXPECT_TRUE(witness.served().empty());
    }

    void opens(const osg::ref_ptr<MenuHUD>& menu, GameState state)
    {
        game.state = state;
        sees({});
        ASSERT_TRUE(menu->isVisible());
    }
};

TEST_F(HandStatesTest, WaitingBecomesCameraControlByTwoHands)
{
    for (const GameState state : {GameState::WaitingForRest, GameState::Initial}) {
        game.state = state;
        sees(twoHands());
        expectLastFrame(state, GameState::CameraControl);
    }
}

TEST_F(HandStatesTest, CameraControlStaysWithTwoHandsAndEndsWithFewer)
{
    const std::vector<std::vector<PlayedHand>> fewer{{}, {flatHand()}};
    for (const auto& hands : fewer) {
        sees(twoHands());
        sees(twoHands());
        expectLastFrame(GameState::CameraControl, GameState::CameraControl);
        sees(hands);
        expectLastFrame(GameState::CameraControl, GameState::WaitingForRest);
    }
}

TEST_F(HandStatesTest, WaitingBecomesPlayingByTheRestPose)
{
    for (const GameState state : {GameState::WaitingForRest, GameState::Initial}) {
        game.state = state;
        sees({flatHand()});
        expectLastFrame(state, GameState::Playing);
    }
}

TEST_F(HandStatesTest, InitialBecomesWaitingByAnyFrame)
{
    game.state = GameState::Initial;
    sees({});
    expectLastFrame(GameState::Initial, GameState::WaitingForRest);
}

TEST_F(HandStatesTest, PlayingBecomesCameraControlByTwoHands)
{
    startsPlay();
    sees(twoHands());
    expectLastFrame(GameState::Playing, GameState::CameraControl);
}

TEST_F(HandStatesTest, PlayingBecomesPauseByATap)
{
    startsPlay();
    sees({flatHand()}, {circle(true)});
    expectLastFrame(GameState::Playing, GameState::Playing);
    sees({flatHand()}, {tap()});
    expectLastFrame(GameState::Playing, GameState::PauseMenu);
}

TEST_F(HandStatesTest, AnyStateWithoutAMenuBecomesPauseByEscape)
{
    for (const GameState state :
         {GameState::Initial, GameState::CameraControl, GameState::WaitingForRest,
          GameState::Playing, GameState::PauseMenu, GameState::LevelCompleted,
          GameState::LevelFailed}) {
        SCOPED_TRACE(int(state));
        game.state = state;
        releases(Qt::Key_Escape);
        expectWithoutFrame(GameState::PauseMenu);
        EXPECT_TRUE(game.pauseMenu->isVisible());
        releases(Qt::Key_Escape);
        expectWithoutFrame(GameState::WaitingForRest);
        EXPECT_FALSE(game.pauseMenu->isVisible());
    }
}

TEST_F(HandStatesTest, PauseBecomesWaitingByEveryLineOnBothThreads)
{
    for (const char* const line : {"Restart", "Next Level", "Previous Level", "Continue"}) {
        SCOPED_TRACE(line);
        loads({"S"}, 4);
        opens(game.pauseMenu, GameState::PauseMenu);
        selects(line);
        sees({flatHand()}, {tap()});
        expectLastFrame(GameState::PauseMenu, GameState::WaitingForRest);
        opens(game.pauseMenu, GameState::PauseMenu);
        witness.forgets();
        releases(Qt::Key_Return);
        expectWithoutFrame(GameState::WaitingForRest);
        ticks();
    }
}

TEST_F(HandStatesTest, AnEndedLevelBecomesWaitingByEveryLineOnBothThreads)
{
    for (const GameState state : {GameState::LevelCompleted, GameState::LevelFailed}) {
        for (const char* const line : {"Restart", "Next Level", "Previous Level"}) {
            SCOPED_TRACE(line);
            loads({"S"}, 4);
            opens(game.endMenu, state);
            selects(line);
            sees({flatHand()}, {tap()});
            expectLastFrame(state, GameState::WaitingForRest);
            opens(game.endMenu, state);
            witness.forgets();
            releases(Qt::Key_Return);
            expectWithoutFrame(GameState::WaitingForRest);
            ticks();
        }
    }
}

TEST_F(HandStatesTest, AnyStateBecomesWaitingByAFallAndFailedByTheLast)
{
    for (const GameState state :
         {GameState::CameraControl, GameState::WaitingForRest, GameState::Playing,
          GameState::PauseMenu, GameState::LevelCompleted}) {
        loads({"S"});
        game.state = state;
        putsBall({5.0, 5.0, -8.0});
        ASSERT_TRUE(ticksUntil([&] { return level().livesLeft() == 4; }, 100));
        expectWithoutFrame(GameState::WaitingForRest);
        level().changeLives(-3, false);
        game.state = state;
        putsBall({5.0, 5.0, -8.0});
        ASSERT_TRUE(ticksUntil([&] { return level().livesLeft() == 5; }, 100));
        expectWithoutFrame(GameState::LevelFailed);
    }
}

TEST_F(HandStatesTest, PlayingBecomesCompletedByTheGoal)
{
    loads({"S...G"});
    ticks();
    startsPlay();
    witness.forgets();
    putsBall({2.0, 0.0, 1.1});
    ASSERT_TRUE(ticksUntil([&] { return game.state != GameState::Playing; }, 100));
    expectWithoutFrame(GameState::LevelCompleted);
}

TEST_F(HandStatesTest, AnyStateBecomesWaitingByALevelChange)
{
    for (const GameState state :
         {GameState::Initial, GameState::CameraControl, GameState::WaitingForRest,
          GameState::Playing, GameState::PauseMenu, GameState::LevelCompleted,
          GameState::LevelFailed}) {
        game.state = state;
        releases(Qt::Key_R);
        expectWithoutFrame(GameState::WaitingForRest);
    }
}

TEST_F(HandStatesTest, AStateThatNobodyKnowsIsLeftAlone)
{
    game.state = static_cast<GameState>(7);
    sees(twoHands(), {tap()});
    expectLastFrame(static_cast<GameState>(7), static_cast<GameState>(7));
}
