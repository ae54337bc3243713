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
        // What a client says of the focus is the last of its settings.
        EXPECT_TRUE(waitUntil([&] {
            return witness.connections() > connections &&
                   !server.received().filter("focused").isEmpty();
        }));
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
