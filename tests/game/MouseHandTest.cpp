#include "HandPad.h"
#include "MovedHandTest.h"
#include "hand/HandCamera.h"
#include "hud/MenuHUD.h"

#include <QCursor>
#include <QMouseEvent>
#include <QWheelEvent>
#include <osg/Math>

#include <algorithm>

class MouseHandTest : public MovedHandTest
{
public:
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
};

TEST_F(MouseHandTest, TurnsTheBoardWithinTwoTicksOfTheMouse)
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

TEST_F(MouseHandTest, DragsTheCameraByTheMouseAndStopsWithIt)
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

TEST_F(MouseHandTest, WorksTheMenuByTheMouseAndPlaysOnByItself)
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
