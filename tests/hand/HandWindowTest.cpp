#include "HandWindow.h"

#include "HandPad.h"
#include "support/EventLoop.h"
#include "support/VirtualPad.h"

#include <QApplication>
#include <QCursor>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QWebSocket>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace {

constexpr int framesPerSecond = 100;
constexpr int halfASecond = framesPerSecond / 2;
constexpr double degree = 3.141592653589793 / 180.0;
constexpr double degreesPerPixel = 25.0 / 3600.0;
constexpr double leastDegrees = 0.5;

class HandWindowTest : public ::testing::Test
{
protected:
    HandWindowTest()
    {
        EXPECT_TRUE(server.listen(0));
        window.move(300, 200);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        // Pads may only be told of once.
        frames(1);
    }

    const std::vector<PlayedHand>& hands() { return server.player().hands; }

    void frames(int count)
    {
        for (int i = 0; i < count; ++i)
            server.sendFrame();
    }

    void clicks(Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(&window.pad(), button);
    }

    /// Takes the pointer, and lets a level hand settle.
    void takes()
    {
        clicks();
        EXPECT_TRUE(waitUntil([this] { return window.isActiveWindow(); }));
        frames(framesPerSecond);
    }

    /// The true pointer of the display, in steps that its edges leave room for.
    void moves(int right, int down)
    {
        constexpr int longest = 100;  // pixels
        const int steps = std::max(std::abs(right), std::abs(down)) / longest + 1;
        QPoint moved;
        for (int i = 1; i <= steps; ++i) {
            const QPoint now(right * i / steps, down * i / steps);
            QCursor::setPos(QCursor::pos() + now - moved);
            frames(1);
            moved = now;
        }
    }

    void turnsWheel(int notches)
    {
        QWheelEvent event(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, notches * 120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&window.pad(), &event);
    }

    double rightDown() { return hands().empty() ? 0.0 : double(-hands()[0].roll) / degree; }
    double farDown() { return hands().empty() ? 0.0 : double(-hands()[0].pitch) / degree; }
    double tilt() { return std::hypot(rightDown(), farDown()); }

    SensorServer::Behaviour behaviour() const
    {
        SensorServer::Behaviour quick;
        quick.framesPerSecond = framesPerSecond;
        quick.pace = 3.0;
        return quick;
    }

    SensorServer server{behaviour()};
    HandWindow window{server, framesPerSecond};
};

using Button = VirtualPad::Button;

}  // namespace

TEST_F(HandWindowTest, ShowsNoHandUntilSomebodyPlaysIt)
{
    frames(framesPerSecond);
    EXPECT_TRUE(hands().empty());
    moves(300, 100);
    EXPECT_TRUE(hands().empty()) << "the mouse is not taken yet";
}

TEST_F(HandWindowTest, TakesThePointerByAClickWithoutATap)
{
    takes();
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_LT(tilt(), leastDegrees);
    EXPECT_FALSE(server.player().isMoving());
    EXPECT_EQ(QWidget::mouseGrabber(), &window.pad());
}

TEST_F(HandWindowTest, TiltsAsThePointerMovesAndStaysWhereItIsLeft)
{
    takes();
    moves(900, 0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 900 * degreesPerPixel, leastDegrees);
    EXPECT_NEAR(farDown(), 0.0, leastDegrees);
    moves(-900, -720);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 0.0, leastDegrees);
    EXPECT_NEAR(farDown(), 720 * degreesPerPixel, leastDegrees) << "away from the player";
}

TEST_F(HandWindowTest, MovesOnPastTheEdgesOfTheScreen)
{
    takes();
    moves(-3000, 0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), -3000 * degreesPerPixel, leastDegrees);
}

TEST_F(HandWindowTest, ComesLevelByTheMiddleButtonWithinHalfASecond)
{
    takes();
    moves(800, 800);
    frames(halfASecond);
    ASSERT_GT(tilt(), 5.0);
    clicks(Qt::MiddleButton);
    frames(halfASecond);
    EXPECT_LT(tilt(), leastDegrees);
}

TEST_F(HandWindowTest, TapsByTheLeftButtonAndWaitsLevelForTheMenusEnd)
{
    takes();
    moves(900, 0);
    frames(halfASecond);
    clicks();
    frames(halfASecond);
    EXPECT_LT(tilt(), leastDegrees);
    clicks();
    bool tapped = false;
    for (int i = 0; i < halfASecond; ++i) {
        frames(1);
        tapped = tapped || server.player().isTapping();
    }
    EXPECT_TRUE(tapped);
}

TEST_F(HandWindowTest, TapsTwiceForTwoQuickClicks)
{
    takes();
    QTest::mouseClick(&window.pad(), Qt::LeftButton);
    QTest::mouseDClick(&window.pad(), Qt::LeftButton);
    frames(2);
    EXPECT_EQ(server.player().movementCount(), 2);
}

TEST_F(HandWindowTest, DrawsACircleANotchEitherWay)
{
    takes();
    for (const int notch : {-1, 1}) {
        SCOPED_TRACE(notch);
        turnsWheel(notch);
        EXPECT_EQ(server.player().movementCount(), 1);
        float right = 0.0f;
        for (int i = 0; i < framesPerSecond && right == 0.0f; ++i) {
            frames(1);
            right = hands()[0].tipOffset.x();
        }
        EXPECT_GT(float(-notch) * right, 0.0f) << "towards the player is clockwise";
        frames(framesPerSecond);
        EXPECT_FALSE(server.player().isMoving());
    }
}

TEST_F(HandWindowTest, ForgetsTheRestOfAWheelThatWasSpun)
{
    takes();
    turnsWheel(-20);
    EXPECT_EQ(server.player().movementCount(), 3);
}

TEST_F(HandWindowTest, AddsUpTheSmallStepsOfAFineWheel)
{
    takes();
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(server.player().movementCount(), 0);
        QWheelEvent event(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, -30), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&window.pad(), &event);
    }
    EXPECT_EQ(server.player().movementCount(), 1);
}

TEST_F(HandWindowTest, HoldsTheSecondHandUpWithTheRightButton)
{
    takes();
    QTest::mousePress(&window.pad(), Qt::RightButton);
    frames(1);
    ASSERT_EQ(hands().size(), 2u);
    moves(200, 0);
    frames(5);
    EXPECT_GT(hands()[0].direction().x(), 0.2f);
    EXPECT_GT(hands()[1].direction().x(), 0.2f);
    EXPECT_NEAR(hands()[0].normal().y(), -1.0f, 1e-3f);
    QTest::mouseRelease(&window.pad(), Qt::RightButton);
    frames(1);
    EXPECT_EQ(hands().size(), 1u);
}

TEST_F(HandWindowTest, LetsThePointerGoByEscapeAndTheHandGoesLevel)
{
    takes();
    moves(900, 0);
    frames(halfASecond);
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    frames(10);
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_LT(tilt(), 2.0);
    frames(framesPerSecond);
    EXPECT_TRUE(hands().empty());
    const QPoint before = QCursor::pos();
    moves(50, 0);
    EXPECT_EQ(QCursor::pos(), before + QPoint(50, 0)) << "nobody takes the pointer back";
}

TEST_F(HandWindowTest, LetsThePointerGoWithTheFocus)
{
    takes();
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    other.activateWindow();
    ASSERT_TRUE(waitUntil([this] { return !window.isActiveWindow(); }));
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    frames(framesPerSecond);
    EXPECT_TRUE(hands().empty());
}

TEST_F(HandWindowTest, TiltsByAStickWhileAnotherWindowHasTheFocus)
{
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    other.activateWindow();
    ASSERT_TRUE(waitUntil([&] { return other.isActiveWindow(); }));
    VirtualPad pad;
    pad.leftStick(1.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 35.0, leastDegrees);
    pad.leftStick(0.0, 1.0);
    frames(halfASecond);
    EXPECT_NEAR(farDown(), 35.0, leastDegrees) << "pushed away, the far edge goes down";
    pad.leftStick(0.0, 0.0);
    frames(halfASecond);
    EXPECT_LT(tilt(), leastDegrees);
    EXPECT_EQ(hands().size(), 1u);
}

TEST_F(HandWindowTest, HearsAPadThatWasThereBeforeIt)
{
    VirtualPad pad;
    SensorServer otherServer{behaviour()};
    HandWindow late(otherServer, framesPerSecond);
    pad.leftStick(1.0, 0.0);
    for (int i = 0; i < halfASecond; ++i)
        otherServer.sendFrame();
    ASSERT_EQ(otherServer.player().hands.size(), 1u);
    EXPECT_LT(otherServer.player().hands[0].roll, -0.5f);
}

TEST_F(HandWindowTest, ComesLevelAndGoesWhenThePadIsUnpluggedInTheMiddleOfATilt)
{
    VirtualPad pad;
    pad.leftStick(0.7, -0.7);
    frames(halfASecond);
    ASSERT_GT(tilt(), 20.0);
    pad.unplugs();
    frames(10);
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_LT(tilt(), 2.0);
    frames(framesPerSecond);
    EXPECT_TRUE(hands().empty());

    VirtualPad again;
    again.leftStick(1.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 35.0, leastDegrees) << "and in again at any time";
}

TEST_F(HandWindowTest, FollowsThePadThatWasTouchedLast)
{
    VirtualPad one;
    VirtualPad two;
    one.leftStick(1.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 35.0, leastDegrees);
    two.leftStick(-1.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), -35.0, leastDegrees);
    one.leftStick(0.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), -35.0, leastDegrees) << "to let go is not to touch";
    two.unplugs();
    frames(2 * framesPerSecond);
    EXPECT_TRUE(hands().empty());
    one.leftStick(1.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 35.0, leastDegrees);
}

TEST_F(HandWindowTest, IsNotTakenByAPadWhoseWornStickTrembles)
{
    VirtualPad worn;
    VirtualPad held;
    worn.leftStick(0.0, 0.3);
    frames(1);
    held.leftStick(1.0, 0.0);
    for (int i = 0; i < halfASecond; ++i) {
        worn.leftStick(0.0, 0.3 + 0.02 * (i % 2));
        frames(1);
    }
    EXPECT_NEAR(rightDown(), 35.0, leastDegrees);
    EXPECT_NEAR(farDown(), 0.0, leastDegrees);
}

TEST_F(HandWindowTest, HoldsLevelUnderAStickThatNeverCentres)
{
    VirtualPad pad;
    pad.leftStick(0.6, 0.0);
    frames(halfASecond);
    ASSERT_GT(rightDown(), 5.0);
    for (int i = 0; i < 2 * framesPerSecond; ++i) {
        pad.leftStick(0.1 * std::cos(0.1 * i), 0.1 * std::sin(0.1 * i));
        frames(1);
    }
    EXPECT_LT(tilt(), 0.01);
}

TEST_F(HandWindowTest, TapsAndCirclesByTheButtonsOfThePad)
{
    VirtualPad pad;
    frames(1);
    pad.holds(Button::A);
    frames(20);
    EXPECT_TRUE(server.player().isTapping());
    frames(framesPerSecond);
    EXPECT_FALSE(server.player().isMoving()) << "a button that is held is one press";
    for (const Button button : {Button::CrossDown, Button::CrossUp}) {
        pad.holds(button);
        frames(15);
        EXPECT_EQ(server.player().movementCount(), 1);
        EXPECT_EQ(hands()[0].tipOffset.x() > 0.0f, button == Button::CrossDown);
        frames(framesPerSecond);
    }
}

TEST_F(HandWindowTest, BringsTheSecondHandByTheRightStickOrByB)
{
    VirtualPad pad;
    pad.rightStick(1.0, 0.0);
    frames(framesPerSecond);
    ASSERT_EQ(hands().size(), 2u);
    EXPECT_GT(hands()[0].direction().x(), 0.3f);
    pad.rightStick(0.0, 0.0);
    frames(2);
    EXPECT_EQ(hands().size(), 1u);
    frames(framesPerSecond);
    pad.holds(Button::B);
    frames(2);
    EXPECT_EQ(hands().size(), 2u);
    pad.holds(Button::B, false);
    frames(2);
    EXPECT_EQ(hands().size(), 1u);
}

TEST_F(HandWindowTest, GivesTheHandToWhicheverWasUsedLast)
{
    VirtualPad pad;
    takes();
    moves(900, 0);
    frames(halfASecond);
    pad.leftStick(-1.0, 0.0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), -35.0, leastDegrees);
    moves(72, 0);
    frames(halfASecond);
    EXPECT_NEAR(rightDown(), 972 * degreesPerPixel, leastDegrees) << "a stick held still waits";
    pad.leftStick(-0.9, 0.0);
    frames(halfASecond);
    EXPECT_LT(rightDown(), -20.0);
}

TEST_F(HandWindowTest, DrawsTheHandThatItSends)
{
    frames(1);
    const QImage nobody = window.pad().grab().toImage();
    VirtualPad pad;
    pad.leftStick(0.2, 0.0);
    frames(halfASecond);
    const QImage nearlyLevel = window.pad().grab().toImage();
    EXPECT_NE(nearlyLevel, nobody);
    pad.leftStick(1.0, 0.0);
    frames(halfASecond);
    EXPECT_NE(window.pad().grab().toImage(), nearlyLevel);
}

TEST_F(HandWindowTest, SaysWhetherAGameListens)
{
    EXPECT_EQ(window.status(), "No game listens yet.");
    {
        QWebSocket game;
        game.open(QUrl(QString("ws://127.0.0.1:%1/v6.json").arg(server.port())));
        EXPECT_TRUE(waitUntil([this] { return window.status() == "The game listens."; }));
    }
    EXPECT_TRUE(waitUntil([this] { return window.status() == "No game listens yet."; }));
}

TEST_F(HandWindowTest, LetsNoFrameWaitForTheAnswerToTheOneBefore)
{
    QWebSocket game;
    game.open(QUrl(QString("ws://127.0.0.1:%1/v6.json").arg(server.port())));
    ASSERT_TRUE(waitUntil([this] { return server.clientCount() == 1; }));
    const auto sockets = server.findChildren<QTcpSocket*>();
    ASSERT_EQ(sockets.size(), 1);
    EXPECT_EQ(sockets[0]->socketOption(QAbstractSocket::LowDelayOption).toInt(), 1);
}

TEST_F(HandWindowTest, LeavesWithALevelHandWhenItIsClosed)
{
    VirtualPad pad;
    pad.leftStick(1.0, 0.0);
    frames(halfASecond);
    const quint16 port = server.port();
    bool left = false;
    QObject::connect(&window, &HandWindow::left, [&] { left = true; });
    window.close();
    frames(10);
    EXPECT_FALSE(left);
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_LT(tilt(), 2.0) << "though the stick is still held";
    frames(framesPerSecond);
    EXPECT_TRUE(left);
    EXPECT_TRUE(hands().empty());
    EXPECT_TRUE(QTcpServer().listen(QHostAddress::LocalHost, port));
}

TEST(RollixHand, SaysInOneLineThatThePortIsTakenAndGivesUp)
{
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost));
    QProcess program;
    program.start(QStringLiteral(ROLLIX_HAND_PROGRAM),
                  {"--port", QString::number(taken.serverPort())});
    ASSERT_TRUE(program.waitForFinished(30000));
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(program.readAllStandardOutput().toStdString(),
              "A hand or a sensor's service is here already: port " +
                  std::to_string(taken.serverPort()) + " is taken.\n");
}
