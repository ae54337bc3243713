// The hand that mouse and gamepad move, over the socket in the real game. Two of its frames come in
// a tick, as they do at the rates that both have.

#include "HandGameTest.h"
#include "HandPad.h"
#include "HandWindow.h"
#include "StickCurve.h"
#include "TiltPlayer.h"
#include "game/Rollix.h"
#include "hand/HandCamera.h"
#include "hand/LeapManager.h"
#include "hud/MenuHUD.h"
#include "level/Level.h"
#include "platform/leap/ServiceAddress.h"
#include "support/EventLoop.h"
#include "support/VirtualPad.h"

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QThread>
#include <QWheelEvent>
#include <osg/Math>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int framesPerSecond = 100;
constexpr int framesPerTick = 2;
constexpr int oneSecond = 50;       // ticks
constexpr int longestRun = 15000;   // ticks
constexpr double leastTurn = 0.05;  // rad/s that a ball alone does not give the board

using Button = VirtualPad::Button;

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

class MovedHandTest : public HandGameTest
{
public:
    MovedHandTest()
    {
        EXPECT_TRUE(server.listen(0));
        Leap::setServiceAddress(SensorService::urlOfPort(server.port()));
        const int connections = witness.connections();
        LeapManager::setListener(&witness);
        EXPECT_TRUE(waitUntil([&] { return witness.connections() > connections; }));
        witness.forgets();
    }

    /// The window with all that moves the hand; until then the test holds it.
    void opensWindow()
    {
        window = std::make_unique<HandWindow>(server, framesPerSecond);
        window->move(400, 100);
        window->show();
        QApplication::processEvents();
    }

    /// Sends a frame; returns when the game has served it.
    void handFrame()
    {
        if (HasFatalFailure())
            return;
        server.sendFrame();
        ++sent;
        ASSERT_TRUE(servesEventsUntil([this] { return witness.newestServed() == sent; }));
        if (sent % 1000 == 0)
            witness.forgets();
    }

    void playsTicks(int count = 1)
    {
        for (int i = 0; i < count; ++i) {
            for (int frame = 0; frame < framesPerTick; ++frame)
                handFrame();
            ticks();
        }
    }

    /// Ticks until the condition holds, or -1.
    template <class Condition>
    int playsUntil(Condition condition, int limit = 5 * oneSecond)
    {
        for (int i = 0; i <= limit; ++i) {
            if (condition())
                return i;
            playsTicks();
        }
        return -1;
    }

    bool isPlaying() const { return game.state == GameState::Playing; }

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

    void mouse(QEvent::Type type, Qt::MouseButton button)
    {
        const QPoint middle = window->pad().rect().center();
        QMouseEvent event(type, middle, button, button, Qt::NoModifier);
        QApplication::sendEvent(&window->pad(), &event);
    }

    void clicks(Qt::MouseButton button)
    {
        mouse(QEvent::MouseButtonPress, button);
        mouse(QEvent::MouseButtonRelease, button);
    }

    void turnsWheel(int notches)
    {
        QWheelEvent event(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, notches * 120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&window->pad(), &event);
    }

    /// The display's pointer, one way in a frame.
    static void movesPointer(int right, int down)
    {
        QCursor::setPos(QCursor::pos() + QPoint(right, down));
    }

    /// Any way to the right, in steps that the screen has room for.
    void drags(int pixels)
    {
        constexpr int step = 100;
        for (int moved = 0; moved < pixels; moved += step) {
            movesPointer(std::min(step, pixels - moved), 0);
            handFrame();
        }
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

    template <class Condition>
    static bool servesEventsUntil(Condition condition)
    {
        constexpr qint64 limit = 20000;  // milliseconds
        QElapsedTimer clock;
        clock.start();
        while (!condition()) {
            if (clock.elapsed() > limit)
                return false;
            QCoreApplication::processEvents();
            QThread::yieldCurrentThread();
        }
        return true;
    }

    static SensorServer::Behaviour behaviour()
    {
        SensorServer::Behaviour quick;
        quick.framesPerSecond = framesPerSecond;
        quick.pace = 3.0;
        quick.mindsFocus = false;
        return quick;
    }

    SensorServer server{behaviour()};
    std::unique_ptr<HandWindow> window;
    std::int64_t sent = 0;
};

TEST_F(MovedHandTest, BeginsPlayWithTheFirstTouchOfAStick)
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

TEST_F(MovedHandTest, BeginsPlayByItselfWithinASecondOfLettingTheStickGo)
{
    opensWindow();
    VirtualPad pad;
    startsByPad(pad);
    pad.leftStick(1.0, 0.5);
    playsTicks(oneSecond);
    putsBall({0.0, 0.0, -8.0});
    ASSERT_GE(playsUntil([this] { return level().livesLeft() == 4; }), 0);
    playsTicks(oneSecond);
    ASSERT_EQ(game.state, GameState::WaitingForRest) << "no hand at rest is that far off";
    pad.leftStick(0.1, 0.05);
    const int waited = playsUntil([this] { return isPlaying(); });
    EXPECT_GE(waited, 0);
    EXPECT_LE(waited, oneSecond);
}

TEST_F(MovedHandTest, TurnsTheBoardWithinTwoTicksOfTheStick)
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

TEST_F(MovedHandTest, TurnsTheBoardWithinTwoTicksOfTheMouse)
{
    opensWindow();
    clicks(Qt::LeftButton);
    playsTicks(oneSecond);
    ASSERT_TRUE(isPlaying());
    // Up to the game's dead zone, and then over it when all frames before a tick have gone.
    drags(780);
    playsTicks(oneSecond);
    ASSERT_LT(boardTurn().length(), leastTurn);
    for (int i = 0; i < framesPerTick; ++i)
        handFrame();
    movesPointer(400, 0);
    ticks();
    ASSERT_LT(boardTurn().length(), leastTurn);
    playsTicks();
    EXPECT_GT(boardTurn().y(), leastTurn);
}

TEST_F(MovedHandTest, LeavesABoardThatHasComeToRestWhenThePadIsUnplugged)
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

TEST_F(MovedHandTest, TurnsTheCameraByTheRightStickAndPlaysOnByItself)
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

TEST_F(MovedHandTest, DragsTheCameraByTheMouseAndStopsWithIt)
{
    opensWindow();
    clicks(Qt::LeftButton);
    playsTicks(oneSecond);
    const float angle = game.handCamera->angle();
    mouse(QEvent::MouseButtonPress, Qt::RightButton);
    playsTicks(2);
    ASSERT_EQ(game.state, GameState::CameraControl);
    drags(900);
    playsTicks(2 * oneSecond);
    const float turned = game.handCamera->angle();
    EXPECT_NEAR(turned - angle, osg::PI_4, 0.05)
        << "three centimetres are an eighth of the way round";
    playsTicks(oneSecond);
    EXPECT_EQ(game.handCamera->angle(), turned);
    mouse(QEvent::MouseButtonRelease, Qt::RightButton);
    const int waited = playsUntil([this] { return isPlaying(); });
    EXPECT_GE(waited, 0);
    EXPECT_LE(waited, oneSecond);
}

TEST_F(MovedHandTest, WorksTheMenuByThePadAndPlaysOnByItself)
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

TEST_F(MovedHandTest, WorksTheMenuByTheMouseAndPlaysOnByItself)
{
    opensWindow();
    clicks(Qt::LeftButton);
    playsTicks(oneSecond);
    ASSERT_TRUE(isPlaying());
    drags(3000);
    playsTicks(oneSecond);
    EXPECT_NEAR(tiltDegrees(), 3000.0 * 25.0 / 3600.0 - 5.7, 2.0) << "but for the game's dead zone";
    clicks(Qt::LeftButton);
    const int opened = playsUntil([this] { return game.pauseMenu->isVisible(); });
    EXPECT_GE(opened, 0);
    EXPECT_LE(opened, oneSecond / 2);
    for (int i = 0; i < 4 && selectedLine() != "Continue"; ++i) {
        turnsWheel(-1);
        playsTicks(oneSecond);
    }
    EXPECT_EQ(selectedLine(), "Continue");
    turnsWheel(1);
    playsTicks(oneSecond);
    EXPECT_EQ(selectedLine(), "Previous Level");
    turnsWheel(-1);
    playsTicks(oneSecond);
    clicks(Qt::LeftButton);
    playsTicks(oneSecond);
    EXPECT_FALSE(game.pauseMenu->isVisible());
    EXPECT_TRUE(isPlaying());
}

TEST_F(MovedHandTest, WinsByAStickAsWellAsByAHand)
{
    const QImage levels[] = {trueLevel(0), middlingLevel()};
    std::vector<Run> byHand;
    for (const QImage& picture : levels)
        byHand.push_back(playsByHand(picture));
    opensWindow();
    VirtualPad pad;
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
