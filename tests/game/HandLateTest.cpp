#include "HandGameTest.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Level.h"

/// Frames that wait for the world while a tick or a key changes what they were for.
class HandLateTest : public HandGameTest
{
public:
    void reachesTheGoal()
    {
        level().complete();
        ASSERT_EQ(game.state, GameState::LevelCompleted);
    }

    int menusUp() const { return int(game.pauseMenu->isVisible()) + game.endMenu->isVisible(); }

    /// The end that came while a frame was waiting is told, and its menu comes with the next.
    void expectTheEnd()
    {
        EXPECT_EQ(game.state, GameState::LevelCompleted);
        EXPECT_EQ(menusUp(), 0);
        EXPECT_TRUE(reads("Well Done!"));
        sees({flatHand()});
        EXPECT_EQ(game.state, GameState::LevelCompleted);
        EXPECT_TRUE(game.endMenu->isVisible());
        EXPECT_EQ(menusUp(), 1);
    }
};

TEST_F(HandLateTest, LeaveTheEndOfALevelAloneThatWasWaitedIn)
{
    seesTooLate({flatHand()}, [this] { reachesTheGoal(); });
    expectTheEnd();
}

TEST_F(HandLateTest, LeaveTheEndOfALevelAloneThatAMenuWasAskedForIn)
{
    startsPlay();
    sees({flatHand()}, {tap()});
    ASSERT_EQ(game.state, GameState::PauseMenu);
    seesTooLate({flatHand()}, [this] { reachesTheGoal(); });
    expectTheEnd();
}

TEST_F(HandLateTest, LeaveTheEndOfALevelAloneThatIsTappedIn)
{
    startsPlay();
    seesTooLate({flatHand()}, [this] { reachesTheGoal(); }, {tap()});
    expectTheEnd();
}

TEST_F(HandLateTest, LeaveTheEndOfALevelAloneThatIsLookedRoundIn)
{
    startsPlay();
    seesTooLate(twoHands(), [this] { reachesTheGoal(); });
    EXPECT_EQ(game.state, GameState::LevelCompleted);
    game.state = GameState::CameraControl;
    game.messageText->hide();
    seesTooLate({flatHand()}, [this] { reachesTheGoal(); });
    expectTheEnd();
}

TEST_F(HandLateTest, BringNoEndMenuUpOverAPauseMenu)
{
    reachesTheGoal();
    seesTooLate({flatHand()}, [this] { releases(Qt::Key_Escape); });
    EXPECT_EQ(game.state, GameState::PauseMenu);
    EXPECT_TRUE(game.pauseMenu->isVisible());
    EXPECT_EQ(menusUp(), 1);
}

TEST_F(HandLateTest, BringNoEndMenuUpOverTheNextLevel)
{
    reachesTheGoal();
    seesTooLate({flatHand()}, [this] { releases(Qt::Key_R); });
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_EQ(menusUp(), 0);
    EXPECT_FALSE(GameLoop::isPaused());
}

TEST_F(HandLateTest, BringNoPauseMenuUpThatAKeyHasClosed)
{
    releases(Qt::Key_Escape);
    ASSERT_EQ(menusUp(), 1);
    seesTooLate({flatHand()}, [this] { releases(Qt::Key_Escape); });
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    EXPECT_EQ(menusUp(), 0);
}

TEST_F(HandLateTest, TurnNoBoardThatWaitsForTheHandAgain)
{
    startsPlay();
    seesTooLate({rolledHand(0.3f)}, [this] {
        level().changeLives(-1, true);
        ASSERT_EQ(game.state, GameState::WaitingForRest);
    });
    EXPECT_LT(commandedTurn().length(), 0.01);
}
