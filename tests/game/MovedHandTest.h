#pragma once

#include "HandGameTest.h"
#include "HandWindow.h"
#include "SensorServer.h"
#include "game/Rollix.h"
#include "platform/leap/ServiceAddress.h"
#include "support/EventLoop.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QThread>

#include <memory>

/// The hand that mouse and gamepad move, over the socket in the real game. Two of its frames come
/// in a tick, as they do at the rates that both have.
class MovedHandTest : public HandGameTest
{
public:
    static constexpr int framesPerSecond = 100;
    static constexpr int framesPerTick = 2;
    static constexpr int oneSecond = 50;       // ticks
    static constexpr double leastTurn = 0.05;  // rad/s that a ball alone does not give the board

    MovedHandTest()
    {
        EXPECT_TRUE(server.listen(0));
        Leap::setServiceAddress(SensorService::urlOfPort(server.port()));
        const int connections = witness.connections();
        service.dropsClients();
        EXPECT_TRUE(
            waitUntil([&] { return witness.connections() > connections && settingsCount() > 0; }));
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

    /// Sends a frame; returns when the game has served it. A service that was kept from its events
    /// for a second, as by a level that loads on a busy machine, is given up and found anew; what
    /// it sent meanwhile is lost.
    void handFrame()
    {
        if (HasFatalFailure())
            return;
        bool served = false;
        while (!served) {
            const qint64 connections = server.connectionCount();
            const int settings = settingsCount();
            server.sendFrame();
            ++sent;
            const auto isServed = [&] {
                return witness.newestServed() == sent;
            };
            const auto isFoundAnew = [&] {
                return server.connectionCount() > connections && settingsCount() > settings;
            };
            ASSERT_TRUE(servesEventsUntil([&] { return isServed() || isFoundAnew(); }));
            served = isServed();
        }
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

    /// How often a client has told its settings; what it says of the focus is the last of them.
    int settingsCount() const { return server.received().filter("focused").size(); }

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
