#include "HandWindow.h"

#include "HandPad.h"

#include <QApplication>
#include <QCheckBox>
#include <QProcess>
#include <QPushButton>
#include <QTcpServer>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cmath>

namespace {

class HandWindowTest : public ::testing::Test
{
protected:
    HandWindowTest()
    {
        EXPECT_TRUE(server.listen(0));
        window.resize(600, 560);
        window.show();
        QApplication::processEvents();
    }

    // Shares of the pad, from its middle.
    void mouseTo(double x, double y)
    {
        const QSize size = window.pad().size();
        QMouseEvent event(QEvent::MouseMove,
                          QPointF(0.5 * (1.0 + x) * size.width(), 0.5 * (1.0 - y) * size.height()),
                          Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&window.pad(), &event);
    }

    const std::vector<PlayedHand>& hands() { return server.player().hands; }

    QPushButton* button(const QString& text)
    {
        for (auto* candidate : window.findChildren<QPushButton*>())
            if (candidate->text().remove('&').startsWith(text))
                return candidate;
        return nullptr;
    }

    SensorServer server{SensorServer::Behaviour()};
    HandWindow window{server};
};

}  // namespace

TEST_F(HandWindowTest, HoldsAFlatHandAtFirst)
{
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_EQ(hands()[0].normal(), QVector3D(0, -1, 0));
    EXPECT_EQ(hands()[0].direction(), QVector3D(0, 0, -1));
    EXPECT_EQ(hands()[0].palm.y(), 200.0f);
}

TEST_F(HandWindowTest, LowersTheHandWhereTheMouseIs)
{
    mouseTo(0.5, 0.0);
    EXPECT_LT(hands()[0].normal().x(), -0.2f) << "right edge down: the palm looks left";
    mouseTo(0.0, 0.5);
    EXPECT_LT(hands()[0].direction().y(), -0.2f) << "far edge down: the fingers look down";
    mouseTo(0.0, 0.0);
    EXPECT_NEAR(hands()[0].normal().y(), -1.0f, 1e-3f);
}

TEST_F(HandWindowTest, LeavesALevelHandWhenTheMouseGoes)
{
    mouseTo(0.7, 0.7);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&window.pad(), &leave);
    EXPECT_EQ(hands()[0].normal(), QVector3D(0, -1, 0));
}

TEST_F(HandWindowTest, LiftsTheHandByTheWheel)
{
    QWheelEvent up(QPointF(50, 50), QPointF(50, 50), QPoint(), QPoint(0, 240), Qt::NoButton,
                   Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&window.pad(), &up);
    EXPECT_EQ(hands()[0].palm.y(), 230.0f);
    for (int i = 0; i < 50; ++i)
        QApplication::sendEvent(&window.pad(), &up);
    EXPECT_EQ(hands()[0].palm.y(), 450.0f);
}

TEST_F(HandWindowTest, BringsASecondHandByKeyAndTurnsBoth)
{
    QTest::keyClick(&window, Qt::Key_S);
    ASSERT_EQ(hands().size(), 2u);
    EXPECT_TRUE(hands()[1].isLeft);
    EXPECT_NE(hands()[0].id, hands()[1].id);
    mouseTo(0.5, 0.0);
    EXPECT_GT(hands()[0].direction().x(), 0.2f);
    EXPECT_GT(hands()[1].direction().x(), 0.2f);
    EXPECT_NEAR(hands()[0].normal().y(), -1.0f, 1e-5f);
    QTest::keyClick(&window, Qt::Key_S);
    EXPECT_EQ(hands().size(), 1u);
}

TEST_F(HandWindowTest, BringsANewHandAfterTheFirstWasTakenAway)
{
    const int id = hands()[0].id;
    QTest::keyClick(&window, Qt::Key_H);
    EXPECT_TRUE(hands().empty());
    QTest::keyClick(&window, Qt::Key_H);
    ASSERT_EQ(hands().size(), 1u);
    EXPECT_NE(hands()[0].id, id);
}

TEST_F(HandWindowTest, PlaysTheGesturesOfItsButtons)
{
    for (const char* text : {"Tap", "Circle: next", "Circle back"}) {
        SCOPED_TRACE(text);
        ASSERT_NE(button(text), nullptr);
        button(text)->click();
        EXPECT_TRUE(server.player().isMoving());
        int moved = 0;
        for (int i = 0; i < 1000 && server.player().isMoving(); ++i) {
            server.sendFrame();
            moved += hands()[0].tipOffset.length() > 5.0f;
            mouseTo(0.001 * i, 0.0);
        }
        EXPECT_FALSE(server.player().isMoving());
        EXPECT_GT(moved, 5) << "the mouse must not take the finger off its way";
    }
}

TEST_F(HandWindowTest, DrawsTheHandThatItSends)
{
    server.sendFrame();
    const QImage level = window.pad().grab().toImage();
    mouseTo(0.8, 0.0);
    server.sendFrame();
    const QImage tilted = window.pad().grab().toImage();
    EXPECT_NE(level, tilted);
    QTest::keyClick(&window, Qt::Key_H);
    server.sendFrame();
    EXPECT_NE(window.pad().grab().toImage(), tilted);
}

TEST(RollixHand, SaysThatThePortIsTakenAndGivesUp)
{
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost));
    QProcess program;
    program.start(QStringLiteral(ROLLIX_HAND_PROGRAM),
                  {"--port", QString::number(taken.serverPort())});
    ASSERT_TRUE(program.waitForFinished(30000));
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(program.readAllStandardOutput().toStdString(),
              "Port " + std::to_string(taken.serverPort()) +
                  " is not to be had: The bound address is already in use. Is a sensor service "
                  "running already?\n");
}
