#include "HandGameTest.h"
#include "frame/GameLoop.h"
#include "game/Rollix.h"
#include "hud/MenuHUD.h"
#include "hud/TextHUD.h"
#include "level/Level.h"
#include "support/OutputCapture.h"

#include <osg/observer_ptr>

#include <atomic>
#include <thread>

namespace {

const char* const menuLines[] = {"Restart", "Next Level", "Previous Level", "Continue"};

}  // namespace

class HandMenuTest : public HandGameTest
{
public:
    /// Play, a tap, and the frame that brings the menu up.
    void opensPauseMenu()
    {
        startsPlay();
        sees({flatHand()}, {tap()});
        sees({flatHand()});
        EXPECT_TRUE(game.pauseMenu->isVisible());
    }

    void completesLevel()
    {
        const GameLoop::Lock worldLock;
        level().complete();
        EXPECT_EQ(game.state, GameState::LevelCompleted);
    }

    /// Level 4, between two others.
    void loadsTheMiddleOne()
    {
        writes({"S"}, 3);
        writes({"S"}, 5);
        loads({"S"}, 4);
    }

    /// Picks a line by hand; the level that the next tick leads to.
    unsigned int levelAfter(const std::string& line)
    {
        selects(line);
        sees({flatHand()}, {tap()});
        EXPECT_EQ(game.state, GameState::WaitingForRest);
        EXPECT_FALSE(GameLoop::isPaused());
        const osg::observer_ptr<Level> before(&level());
        sees({});
        EXPECT_TRUE(before.valid()) << "the sensor's thread changes no level";
        std::string said;
        {
            const OutputCapture output;
            ticks();
            said = output.text();
        }
        EXPECT_EQ(said,
                  "reading level data/Rollix/level" + std::to_string(level().number) + ".png\n");
        EXPECT_FALSE(before.valid());
        ticks();
        return level().number;
    }
};

TEST_F(HandMenuTest, ComesWithTheFrameAfterTheTap)
{
    startsPlay();
    sees({flatHand()}, {tap()});
    expectLastFrame(GameState::Playing, GameState::PauseMenu);
    EXPECT_FALSE(game.pauseMenu->isVisible());
    EXPECT_FALSE(GameLoop::isPaused());
    sees({});
    expectLastFrame(GameState::PauseMenu, GameState::PauseMenu);
    EXPECT_TRUE(game.pauseMenu->isVisible());
    EXPECT_TRUE(GameLoop::isPaused());
}

TEST_F(HandMenuTest, IsOnlyShownByItsFirstFrameAndDrivenByTheOthers)
{
    startsPlay();
    sees({flatHand()}, {tap()});
    const std::vector<PlayedGesture> gestures{circle(true), tap()};
    sees({flatHand()}, gestures);
    EXPECT_TRUE(game.pauseMenu->isVisible());
    const std::string shown = selectedLine();
    sees({flatHand()}, {circle(true)});
    EXPECT_NE(selectedLine(), shown);
    sees({flatHand()}, {circle(false)});
    EXPECT_EQ(selectedLine(), shown);
}

TEST_F(HandMenuTest, GoesOnePlaceACircleAndRoundInBothSenses)
{
    opensPauseMenu();
    selects("Restart");
    for (int i = 1; i <= 4; ++i) {
        sees({flatHand()}, {circle(true)});
        EXPECT_EQ(selectedLine(), menuLines[i % 4]);
    }
    for (int i = 3; i >= 0; --i) {
        sees({flatHand()}, {circle(false, 7.0)});
        EXPECT_EQ(selectedLine(), menuLines[i]) << "seven turns are one step";
    }
    expectLastFrame(GameState::PauseMenu, GameState::PauseMenu);
}

TEST_F(HandMenuTest, CountsACircleAtItsEndAndOnlyAWholeOne)
{
    opensPauseMenu();
    selects("Restart");
    for (const char* const state : {"start", "update"}) {
        sees({flatHand()}, {circle(true, 3.0, state)});
        EXPECT_EQ(selectedLine(), "Restart") << state;
    }
    sees({flatHand()}, {circle(true, 0.9)});
    EXPECT_EQ(selectedLine(), "Restart");
    sees({flatHand()}, {circle(true, 0.91)});
    EXPECT_EQ(selectedLine(), "Next Level");
}

TEST_F(HandMenuTest, ServesAllGesturesOfAFrameInTheirOrder)
{
    opensPauseMenu();
    selects("Previous Level");
    sees({flatHand()}, {circle(true), tap()});
    EXPECT_FALSE(game.pauseMenu->isVisible());
    expectLastFrame(GameState::PauseMenu, GameState::WaitingForRest);
    opensPauseMenu();
    EXPECT_EQ(selectedLine(), "Continue");
    // The tap closes the menu; the circle behind it still counts.
    sees({flatHand()}, {tap(), circle(true)});
    EXPECT_FALSE(game.pauseMenu->isVisible());
    opensPauseMenu();
    EXPECT_EQ(selectedLine(), "Restart");
}

TEST_F(HandMenuTest, KeepsItsPlaceUntilItComesAgain)
{
    opensPauseMenu();
    selects("Continue");
    sees({flatHand()}, {tap()});
    EXPECT_FALSE(game.pauseMenu->isVisible());
    opensPauseMenu();
    EXPECT_EQ(selectedLine(), "Continue");
}

TEST_F(HandMenuTest, GoesOnWithTheLevelByContinue)
{
    opensPauseMenu();
    selects("Continue");
    const osg::observer_ptr<Level> before(&level());
    sees({flatHand()}, {tap()});
    expectLastFrame(GameState::PauseMenu, GameState::WaitingForRest);
    EXPECT_FALSE(GameLoop::isPaused());
    ticks(3);
    EXPECT_TRUE(before.valid());
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::Playing);
}

TEST_F(HandMenuTest, HasItsChoiceServedByTheNextTick)
{
    const std::pair<const char*, unsigned int> choices[] = {
        {"Restart", 4}, {"Next Level", 5}, {"Previous Level", 3}};
    for (const auto& [line, number] : choices) {
        SCOPED_TRACE(line);
        loadsTheMiddleOne();
        opensPauseMenu();
        EXPECT_EQ(levelAfter(line), number);
    }
}

TEST_F(HandMenuTest, ComesWithTheNextFrameAfterALevelWasCompleted)
{
    startsPlay();
    completesLevel();
    ticks(3);
    EXPECT_FALSE(game.endMenu->isVisible());
    sees({});
    expectLastFrame(GameState::LevelCompleted, GameState::LevelCompleted);
    EXPECT_TRUE(game.endMenu->isVisible());
    EXPECT_TRUE(GameLoop::isPaused());
    EXPECT_TRUE(reads("Well Done!"));
    EXPECT_FALSE(reads("Continue"));
}

TEST_F(HandMenuTest, ComesWithTheNextFrameAfterTheLastFall)
{
    for (int lives = 5; lives > 0; --lives) {
        startsPlay();
        putsBall({0.0, 0.0, -8.0});
        ASSERT_TRUE(ticksUntil([&] { return game.state != GameState::Playing; }, 100));
    }
    EXPECT_EQ(game.state, GameState::LevelFailed);
    EXPECT_FALSE(game.endMenu->isVisible());
    sees({flatHand()});
    expectLastFrame(GameState::LevelFailed, GameState::LevelFailed);
    EXPECT_TRUE(game.endMenu->isVisible());
    EXPECT_TRUE(reads("Not even close..."));
}

TEST_F(HandMenuTest, LeadsFromAFinishedLevelToAnyOther)
{
    const std::pair<const char*, unsigned int> choices[] = {
        {"Restart", 4}, {"Next Level", 5}, {"Previous Level", 3}};
    for (const auto& [line, number] : choices) {
        SCOPED_TRACE(line);
        loadsTheMiddleOne();
        completesLevel();
        sees({flatHand()});
        EXPECT_EQ(levelAfter(line), number);
        EXPECT_FALSE(game.endMenu->isVisible());
    }
}

TEST_F(HandMenuTest, LeavesThePraiseUpUntilPlayBeginsAgain)
{
    loadsTheMiddleOne();
    completesLevel();
    sees({flatHand()});
    levelAfter("Next Level");
    sees({rolledHand(0.5f)});
    EXPECT_TRUE(reads("Well Done!"));
    EXPECT_FALSE(reads("Bring your hand in rest position."));
    sees({flatHand()});
    EXPECT_EQ(game.state, GameState::Playing);
    EXPECT_FALSE(reads("Well Done!"));
}

TEST_F(HandMenuTest, ComesBackWithTheNextFrameWhenEscapeHidesTheEndMenu)
{
    completesLevel();
    sees({});
    releases(Qt::Key_Escape);
    EXPECT_FALSE(game.endMenu->isVisible());
    EXPECT_EQ(game.state, GameState::LevelCompleted);
    sees({});
    EXPECT_TRUE(game.endMenu->isVisible());
}

TEST_F(HandMenuTest, TakesKeysAndGesturesInTurn)
{
    releases(Qt::Key_Escape);
    EXPECT_EQ(game.state, GameState::PauseMenu);
    selects("Restart");
    releases(Qt::Key_Down);
    EXPECT_EQ(selectedLine(), "Next Level");
    sees({flatHand()}, {circle(false)});
    EXPECT_EQ(selectedLine(), "Restart");
    releases(Qt::Key_Escape);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    sees({flatHand()});
    expectLastFrame(GameState::WaitingForRest, GameState::Playing);
}

TEST_F(HandMenuTest, LetsAKeyWaitUntilTheOtherThreadIsDoneWithTheWorld)
{
    std::atomic<bool> locked{false};
    bool shownMeanwhile = false;
    std::thread other([&] {
        const GameLoop::Lock worldLock;
        locked = true;
        shownMeanwhile = holdsWithin(100, [&] { return game.state != GameState::WaitingForRest; });
    });
    while (!locked)
        std::this_thread::yield();
    releases(Qt::Key_Escape);
    other.join();
    EXPECT_FALSE(shownMeanwhile);
    EXPECT_TRUE(game.pauseMenu->isVisible());
}

TEST_F(HandMenuTest, StandsKeysAndGesturesAtOnce)
{
    releases(Qt::Key_Escape);
    sees({});
    selects("Restart");
    // A hundred steps of each, four lines: all of them together lead back.
    constexpr int steps = 100;
    std::int64_t last = 0;
    for (int i = 0; i < steps; ++i) {
        PlayedFrame frame = nextFrame({flatHand()});
        frame.gestures = {circle(true)};
        last = frame.id;
        service.sendsText(frameMessage(frame));
        releases(Qt::Key_Down);
    }
    EXPECT_TRUE(witness.waitsForFrame(last));
    EXPECT_EQ(selectedLine(), "Restart");
}

TEST_F(HandMenuTest, IsWorkedByAFingerThatOnlyMoves)
{
    // What the finger of a hand does in the frames of a service that reports no gestures.
    SensorServer::Behaviour newer;
    newer.recognizesGestures = false;
    SensorService silent(newer);
    const int connections = witness.connections();
    service.dropsClients();
    ASSERT_TRUE(witness.waitsForConnections(connections + 1));
    ASSERT_TRUE(silent.hasClient());
    const auto plays = [&] {
        // One frame at a time, as a tap or a circle's end is looked for in each.
        for (int i = 0; i < 60; ++i) {
            witness.forgets();
            silent.sendsFrames();
            ASSERT_TRUE(witness.waitsForFrames(1));
        }
    };
    silent.shows({flatHand()});
    plays();
    ASSERT_EQ(game.state, GameState::Playing);
    silent.taps();
    plays();
    plays();
    ASSERT_TRUE(game.pauseMenu->isVisible());
    const std::string shown = selectedLine();
    silent.circles(1.2, true);
    plays();
    plays();
    plays();
    EXPECT_NE(selectedLine(), shown);
    silent.circles(1.2, false);
    plays();
    plays();
    plays();
    EXPECT_EQ(selectedLine(), shown);
    silent.taps();
    plays();
    plays();
    EXPECT_FALSE(game.pauseMenu->isVisible());
}
