#include "MovedHandTest.h"
#include "StickCurve.h"
#include "TiltPlayer.h"
#include "hand/HandCamera.h"
#include "hud/MenuHUD.h"
#include "level/Level.h"
#include "support/VirtualPad.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Button = VirtualPad::Button;

constexpr int longestRun = 15000;  // ticks

QImage trueLevel(unsigned int number)
{
    return QImage(QString(ROLLIX_SOURCE_DIR "/data/Rollix/level%1.png").arg(number));
}

/// Corners, a flag off the straight way, and holes in the floor beside it.
QImage middlingLevel()
{
    return LevelPicture({
                            "TTTTTTTTTTTTT",
                            "TS....#.....T",
                            "T####.#.###.T",
                            "T.....#.#...T",
                            "T.#####.#.##T",
                            "T.......#..RT",
                            "T####.###.##T",
                            "T  ...#.....T",
                            "T  .###.###.T",
                            "T  .....#..GT",
                            "TTTTTTTTTTTTT",
                        })
        .image();
}

}  // namespace

class GamepadHandTest : public MovedHandTest
{
public:
    /// By pad: play has begun under a level hand.
    void startsByPad(VirtualPad& pad)
    {
        pad.leftStick(0.2, 0.0);
        handFrame();
        pad.leftStick(0.0, 0.0);
        playsTicks(oneSecond);
        ASSERT_TRUE(isPlaying());
        ASSERT_LT(tiltDegrees(), 1.0);
    }

    void loadsPicture(const QImage& picture)
    {
        picture.save("data/Rollix/level0.png");
        game.loadLevel(0);
        ticks();
    }

    struct Run
    {
        bool won = false;
        int livesLost = 0;
        int ticks = 0;
    };

    /// Plays the level; `act` holds the hand as the player wants it, or lets it come to rest.
    template <class Act>
    Run plays(const QImage& picture, Act act)
    {
        loadsPicture(picture);
        TiltPlayer player(game, picture);
        Run run;
        while (run.ticks < longestRun && game.state != GameState::LevelCompleted &&
               game.state != GameState::LevelFailed) {
            const int lives = level().livesLeft();
            act(player);
            playsTicks();
            run.livesLost += std::max(0, lives - level().livesLeft());
            ++run.ticks;
        }
        run.won = game.state == GameState::LevelCompleted;
        return run;
    }

    /// A hand over a sensor.
    Run playsByHand(const QImage& picture)
    {
        return plays(
            picture,
            [this](TiltPlayer& player) {
                const PlayedHand wanted = player.hand();
                server.player().hands = {isPlaying() ? wanted : player.restingHand()};
            });
    }

    /// Nothing but the two numbers of a stick, let go while the game waits.
    Run playsByStick(const QImage& picture, VirtualPad& pad)
    {
        return plays(
            picture,
            [&](TiltPlayer& player) {
                const PlayedHand wanted = player.hand();
                const QVector2D stick =
                    isPlaying() ? stickFor(QVector2D(-wanted.roll, -wanted.pitch)) : QVector2D();
                pad.leftStick(double(stick.x()), double(stick.y()));
            });
    }

    static QVector2D stickFor(const QVector2D& tilt)
    {
        const float share = std::min(tilt.length() / farthestTilt, 1.0f);
        float low = 0.0f;
        float high = 1.0f;
        for (int i = 0; i < 20; ++i) {
            const float middle = 0.5f * (low + high);
            (curvedStick({middle, 0.0f}).x() < share ? low : high) = middle;
        }
        return high * tilt.normalized();
    }
};

TEST_F(GamepadHandTest, BeginsPlayWithTheFirstTouchOfAStick)
{
    opensWindow();
    VirtualPad pad;
    playsTicks(oneSecond);
    EXPECT_EQ(game.state, GameState::WaitingForRest);
    pad.leftStick(0.3, 0.0);
    const int waited = playsUntil([this] { return isPlaying(); });
    EXPECT_GE(waited, 0);
    EXPECT_LE(waited, 1);
}

TEST_F(GamepadHandTest, BeginsPlayByItselfWithinASecondOfLettingTheStickGo)
{
    opensWindow();
    VirtualPad pad;
    startsByPad(pad);
    pad.leftStick(1.0, 0.5);
    playsTicks(oneSecond);
    loads({"#####", "#.S.#", "#####"});
    playsTicks(oneSecond);
    ASSERT_EQ(game.state, GameState::WaitingForRest) << "no hand at rest is that far off";
    pad.leftStick(0.1, 0.05);
    const int waited = playsUntil([this] { return isPlaying(); });
    EXPECT_GE(waited, 0);
    EXPECT_LE(waited, oneSecond);
}

TEST_F(GamepadHandTest, TurnsTheBoardWithinTwoTicksOfTheStick)
{
    opensWindow();
    VirtualPad pad;
    for (const int framesBefore : {0, 1, 2}) {
        SCOPED_TRACE(framesBefore);
        startsByPad(pad);
        // Just after a tick, between its two frames, and just before the next, all frames gone.
        for (int i = 0; i < framesBefore; ++i)
            handFrame();
        pad.leftStick(0.7, 0.0);
        for (int i = framesBefore; i < framesPerTick; ++i)
            handFrame();
        ticks();
        if (framesBefore == framesPerTick)
            playsTicks();
        EXPECT_GT(boardTurn().y(), leastTurn);
        pad.leftStick(0.0, 0.0);
        playsTicks(oneSecond);
        loads({"#####", "#.S.#", "#####"});
        ticks();
    }
}

TEST_F(GamepadHandTest, LeavesABoardThatHasComeToRestWhenThePadIsUnplugged)
{
    opensWindow();
    VirtualPad pad;
    startsByPad(pad);
    pad.leftStick(1.0, 0.0);
    playsTicks(oneSecond);
    ASSERT_GT(tiltDegrees(), 25.0);
    pad.unplugs();
    const int gone = playsUntil([this] { return server.player().hands.empty(); });
    EXPECT_GT(gone, 0);
    EXPECT_LE(gone, oneSecond);
    const double left = tiltDegrees();
    EXPECT_LT(left, 7.0) << "as near to the level as a hand brings it";
    playsTicks(oneSecond);
    EXPECT_NEAR(tiltDegrees(), left, 5.0) << "nothing but the ball goes on turning it";
    EXPECT_TRUE(isPlaying());

    holds(Qt::Key_Right, 20);
    EXPECT_GT(tiltDegrees(), left + 5.0) << "now the keys have it";
}

TEST_F(GamepadHandTest, TurnsTheCameraByTheRightStickAndPlaysOnByItself)
{
    opensWindow();
    VirtualPad pad;
    startsByPad(pad);
    pad.leftStick(0.0, 1.0);
    playsTicks(oneSecond);
    ASSERT_GT(tiltDegrees(), 25.0);
    const float angle = game.handCamera->angle();
    pad.rightStick(1.0, 0.0);
    const int came =
        playsUntil([this] { return game.state == GameState::CameraControl; }, oneSecond);
    EXPECT_GE(came, 0);
    EXPECT_LT(tiltDegrees(), 10.0) << "the board was level first";
    playsTicks(oneSecond / 2);
    EXPECT_GT(game.handCamera->angle(), angle + 0.5f);
    pad.leftStick(0.0, 0.0);
    pad.rightStick(0.0, 0.0);
    const int waited = playsUntil([this] { return isPlaying(); });
    EXPECT_GE(waited, 0);
    EXPECT_LE(waited, oneSecond);
}

TEST_F(GamepadHandTest, WorksTheMenuByThePadAndPlaysOnByItself)
{
    opensWindow();
    VirtualPad pad;
    startsByPad(pad);
    pad.leftStick(1.0, 0.0);
    playsTicks(oneSecond);
    const auto presses = [&](Button button) {
        pad.holds(button);
        playsTicks(2);
        pad.holds(button, false);
        playsTicks(oneSecond);
    };
    pad.holds(Button::A);
    const int opened = playsUntil([this] { return game.pauseMenu->isVisible(); });
    EXPECT_GE(opened, 0);
    EXPECT_LE(opened, oneSecond / 2);
    pad.holds(Button::A, false);
    pad.leftStick(0.0, 0.0);
    playsTicks(oneSecond / 2);
    for (int i = 0; i < 4 && selectedLine() != "Previous Level"; ++i)
        presses(Button::CrossDown);
    EXPECT_EQ(selectedLine(), "Previous Level");
    presses(Button::CrossDown);
    EXPECT_EQ(selectedLine(), "Continue");
    presses(Button::CrossUp);
    EXPECT_EQ(selectedLine(), "Previous Level");
    presses(Button::CrossDown);
    presses(Button::A);
    EXPECT_FALSE(game.pauseMenu->isVisible());
    EXPECT_TRUE(isPlaying());
}

TEST_F(GamepadHandTest, WinsByAStickAsWellAsByAHand)
{
    const QImage levels[] = {trueLevel(0), middlingLevel()};
    std::vector<Run> byHand;
    for (const QImage& picture : levels)
        byHand.push_back(playsByHand(picture));
    opensWindow();
    VirtualPad pad;
    loads({"#####", "#.S.#", "#####"});
    startsByPad(pad);
    for (std::size_t i = 0; i < byHand.size(); ++i) {
        SCOPED_TRACE(i);
        const Run byStick = playsByStick(levels[i], pad);
        EXPECT_TRUE(byHand[i].won);
        EXPECT_TRUE(byStick.won);
        EXPECT_LE(byStick.livesLost, byHand[i].livesLost);
        RecordProperty("ticks_by_hand_" + std::to_string(i), byHand[i].ticks);
        RecordProperty("ticks_by_stick_" + std::to_string(i), byStick.ticks);
    }
}
